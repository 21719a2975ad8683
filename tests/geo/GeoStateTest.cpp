// The geodesy state: routing of the top-level conversions by type, shift and
// selection, the convergence and axis names, and the archive and settings
// forms of the whole database and selection.
#include "GeoTestUtil.h"

#include <cmath>

using namespace geotest;

namespace {

class GeoSel : public GeoState {
protected:
    void SetUp() override
    {
        GeoState::SetUp();
        Geo::type = 0;
        m_sphdP = Add(Geo::sphds, u"GRS80", 6378137.0, 6356752.314140356, 0.0066943800229007878);
        m_sphdS = Add(Geo::sphds, u"Airy_1830", 6377563.396, 6356256.909, 0.0066705400741492319);
        m_projP = new CProj;
        m_projP->m_name = u"UTM_30N";
        Geo::projs.AddTail(m_projP);
        m_projS = new CProj;
        m_projS->m_name = u"BNG";
        m_projS->m_latOrigin = 49.0 * ML::d2r;
        m_projS->m_lonOrigin = -2.0 * ML::d2r;
        m_projS->m_falseEast = 400000.0;
        m_projS->m_falseNorth = -100000.0;
        m_projS->m_scale = 0.9996012717;
        Geo::projs.AddTail(m_projS);
        m_shift = new CShft;
        m_shift->m_name = u"ETRS89_to_OSGB36";
        m_shift->m_dX = -446.448;
        m_shift->m_dY = 125.157;
        m_shift->m_dZ = -542.06;
        m_shift->m_rotX = -0.1502;
        m_shift->m_rotY = -0.247;
        m_shift->m_rotZ = -0.8421;
        m_shift->m_ppm = 20.4894;
        Geo::shfts.AddTail(m_shift);
    }
    static CSphd* Add(CList_Mgd<CSphd>& list, const char16_t* name, double a, double b, double e2)
    {
        auto* s = new CSphd;
        s->m_name = name;
        s->m_semiMajor = a;
        s->m_semiMinor = b;
        s->m_ecc2 = e2;
        list.AddTail(s);
        return s;
    }
    void SelectAll()
    {
        Geo::pSphdP = m_sphdP;
        Geo::pProjP = m_projP;
        Geo::pSphdS = m_sphdS;
        Geo::pProjS = m_projS;
        Geo::pShift = m_shift;
    }
    CSphd* m_sphdP = nullptr;
    CSphd* m_sphdS = nullptr;
    CProj* m_projP = nullptr;
    CProj* m_projS = nullptr;
    CShft* m_shift = nullptr;
};

const CV3 kLondon(-0.1275, 51.5072, 45.0);  // degrees and metres

CV3 Grid(const CSphd& s, const CProj& p, const CV3& deg)
{
    CV3 enz(0.0, 0.0, -1.0);
    GeoConv::llh2enz(s, p, CV3(deg.x * ML::d2r, deg.y * ML::d2r, deg.z), enz);
    return enz;
}

} // namespace

TEST_F(GeoSel, NothingSelectedFailsAndLeavesTheOutputAlone)
{
    const CV3 sentinel(1.0, 2.0, 3.0);
    for (int shift : {0, 1}) {
        CV3 out = sentinel;
        EXPECT_EQ(Geo::LLH_ENZ(kLondon, out, shift), 0);
        EXPECT_EQ(out, sentinel);
        EXPECT_EQ(Geo::ENZ_LLH(CV3(500000.0, 5700000.0, 0.0), out, shift), 0);
        EXPECT_EQ(out, sentinel);
    }
    EXPECT_EQ(Geo::Conv(kLondon), 0.0);
    // A shift alone, or secondary records alone, are not enough for shift 1.
    Geo::pShift = m_shift;
    Geo::pSphdS = m_sphdS;
    Geo::pProjS = m_projS;
    CV3 out = sentinel;
    EXPECT_EQ(Geo::LLH_ENZ(kLondon, out, 1), 0);
    EXPECT_EQ(Geo::ENZ_LLH(CV3(530000.0, 180000.0, 0.0), out, 1), 0);
    EXPECT_EQ(out, sentinel);
}

TEST_F(GeoSel, PrimaryRecordsAloneIgnoreTheShiftFlag)
{
    Geo::pSphdP = m_sphdP;
    Geo::pProjP = m_projP;
    const CV3 want = Grid(*m_sphdP, *m_projP, kLondon);
    for (int shift : {0, 1, -7}) {
        CV3 out(0.0, 0.0, 99.0);
        ASSERT_EQ(Geo::LLH_ENZ(kLondon, out, shift), 1);
        EXPECT_EQ(out.x, want.x);
        EXPECT_EQ(out.y, want.y);
        EXPECT_EQ(out.z, 99.0);  // not written on this path
        CV3 back(0.0, 0.0, 77.0);
        ASSERT_EQ(Geo::ENZ_LLH(out, back, shift), 1);
        EXPECT_NEAR(back.x, kLondon.x, 1e-9);
        EXPECT_NEAR(back.y, kLondon.y, 1e-9);
        EXPECT_EQ(back.z, 77.0);
    }
    EXPECT_NE(Geo::Conv(kLondon), 0.0);
}

TEST_F(GeoSel, WithAShiftTheGridIsTheSecondary)
{
    // shift 0: the position is on the secondary datum already; only the
    // secondary records are needed.
    Geo::pShift = m_shift;
    Geo::pSphdS = m_sphdS;
    Geo::pProjS = m_projS;
    CV3 out(0.0, 0.0, 5.0);
    ASSERT_EQ(Geo::LLH_ENZ(kLondon, out, 0), 1);
    const CV3 direct = Grid(*m_sphdS, *m_projS, kLondon);
    EXPECT_EQ(out.x, direct.x);
    EXPECT_EQ(out.y, direct.y);
    EXPECT_EQ(out.z, 5.0);
    CV3 back(0.0, 0.0, 6.0);
    ASSERT_EQ(Geo::ENZ_LLH(out, back, 0), 1);
    EXPECT_NEAR(back.y, kLondon.y, 1e-9);
    EXPECT_EQ(back.z, 6.0);

    // shift 1: across the shift from the primary datum; all four needed.
    EXPECT_EQ(Geo::LLH_ENZ(kLondon, out, 1), 0);
    SelectAll();
    ASSERT_EQ(Geo::LLH_ENZ(kLondon, out, 1), 1);
    CV3 xyz, xyzS, llhS, want(0.0, 0.0, 5.0);
    GeoConv::llh2xyz(*m_sphdP, CV3(kLondon.x * ML::d2r, kLondon.y * ML::d2r, kLondon.z), xyz);
    GeoConv::DShift(*m_shift, xyz, xyzS, 0);
    GeoConv::xyz2llh(*m_sphdS, xyzS, llhS);
    GeoConv::llh2enz(*m_sphdS, *m_projS, llhS, want);
    EXPECT_EQ(out.x, want.x);
    EXPECT_EQ(out.y, want.y);
    EXPECT_EQ(out.z, 5.0);
    // The datum shift moves London by about 100 m on the grid.
    EXPECT_GT(std::hypot(out.x - direct.x, out.y - direct.y), 50.0);
    EXPECT_LT(std::hypot(out.x - direct.x, out.y - direct.y), 200.0);

    // And back, with a height written on this path only.
    CV3 llh(0.0, 0.0, -1.0);
    ASSERT_EQ(Geo::ENZ_LLH(CV3(out.x, out.y, llhS.z), llh, 1), 1);
    EXPECT_NEAR(llh.x, kLondon.x, 1e-6);
    EXPECT_NEAR(llh.y, kLondon.y, 1e-6);
    EXPECT_NEAR(llh.z, kLondon.z, 0.05);
    // The convergence stays on the primary records.
    EXPECT_DOUBLE_EQ(Geo::Conv(kLondon),
                     GeoConv::GetConv(*m_sphdP, *m_projP, CV3(kLondon.x * ML::d2r, kLondon.y * ML::d2r, 0.0)) *
                         ML::r2d);
}

TEST_F(GeoSel, LineSampleGridNeedsNoRecordAndPassesHeightThrough)
{
    Geo::type = 1;
    Geo::concession = 1;
    Geo::loSystem = 17;
    CV3 out;
    ASSERT_EQ(Geo::LLH_ENZ(CV3(15.9, -29.8, -12.5), out, 1), 1);
    EXPECT_NEAR(out.y, 347083.98, 0.005);   // Line
    EXPECT_NEAR(out.x, -126714.63, 0.005);  // Sample
    EXPECT_EQ(out.z, -12.5);
    CV3 back;
    ASSERT_EQ(Geo::ENZ_LLH(out, back, 0), 1);
    EXPECT_NEAR(back.x, 15.9, 1e-5);
    EXPECT_NEAR(back.y, -29.8, 1e-5);
    EXPECT_EQ(back.z, -12.5);
    EXPECT_EQ(Geo::Conv(out), -50.0);

    Geo::concession = 0;
    ASSERT_EQ(Geo::LLH_ENZ(CV3(16.2, -28.5, 0.0), out, 0), 1);
    EXPECT_NEAR(out.y, 27814.65, 0.005);
    EXPECT_NEAR(out.x, -36998.39, 0.005);
}

TEST_F(GeoSel, OtherTypesFail)
{
    SelectAll();
    Geo::type = 2;
    const CV3 sentinel(4.0, 5.0, 6.0);
    CV3 out = sentinel;
    EXPECT_EQ(Geo::LLH_ENZ(kLondon, out, 0), 0);
    EXPECT_EQ(Geo::ENZ_LLH(kLondon, out, 1), 0);
    EXPECT_EQ(out, sentinel);
    EXPECT_EQ(Geo::Conv(kLondon), 0.0);
    CString a(u"a"), b(u"b"), c(u"c"), d(u"d");
    Geo::Units(a, b, c, d);
    EXPECT_EQ(a + b + c + d, CString(u"abcd"));
    Geo::type = -1;
    EXPECT_EQ(Geo::LLH_ENZ(kLondon, out, 0), 0);
}

TEST_F(GeoSel, AxisNamesByType)
{
    CString xn, xu, yn, yu;
    Geo::type = 0;
    Geo::Units(xn, xu, yn, yu);
    EXPECT_EQ(xn + u"|" + xu + u"|" + yn + u"|" + yu, CString(u"Easting|mE|Northing|mN"));
    Geo::type = 1;
    Geo::Units(xn, xu, yn, yu);
    EXPECT_EQ(xn + u"|" + xu + u"|" + yn + u"|" + yu, CString(u"Sample|mS|Line|mL"));
}

// --- Archive form -------------------------------------------------------

TEST_F(GeoState, EmptyStateStoresCountsIndicesAndFormats)
{
    Geo::degreeFmt = 3;
    Geo::dirFmt = 4;
    const auto got = Store([](CArchive& ar) { Geo::Serialize(ar); });
    std::vector<BYTE> want;
    for (int v : {0, 0, 0, -1, -1, -1, -1, -1, 3, 4}) PutI32(want, v);
    EXPECT_EQ(got, want);
}

TEST_F(GeoState, StoredBlockIsByteExactWithTheShiftBetweenPrimaryAndSecondary)
{
    auto* s0 = new CSphd;
    s0->m_name = u"S0";
    auto* s1 = new CSphd;
    s1->m_name = u"S1";
    s1->m_semiMajor = 1.5;
    Geo::sphds.AddTail(s0);
    Geo::sphds.AddTail(s1);
    auto* p0 = new CProj;
    p0->m_name = u"P0";
    Geo::projs.AddTail(p0);
    auto* t0 = new CShft;
    t0->m_name = u"T0";
    t0->m_rotY = 0.5;
    Geo::shfts.AddTail(t0);
    CSphd stranger;  // set but not in the list: stores as -1
    Geo::pSphdP = s1;
    Geo::pProjP = p0;
    Geo::pShift = t0;
    Geo::pSphdS = &stranger;
    Geo::pProjS = nullptr;
    Geo::degreeFmt = 1;
    Geo::dirFmt = 0;
    const auto got = Store([](CArchive& ar) { Geo::Serialize(ar); });
    Geo::pSphdS = nullptr;

    std::vector<BYTE> want;
    PutI32(want, 2);
    PutStr(want, "S0");
    for (double d : {6378137.0, 6356752.314, 0.006694380023, 298.2572}) PutF64(want, d);
    PutStr(want, "S1");
    for (double d : {1.5, 6356752.314, 0.006694380023, 298.2572}) PutF64(want, d);
    PutI32(want, 1);
    PutStr(want, "P0");
    for (double d : {0.0, -0.0523598775598, 500000.0, 0.0, 0.9996}) PutF64(want, d);
    PutI32(want, 1);
    PutStr(want, "T0");
    for (double d : {0.0, 0.0, 0.0, 0.0, 0.5, 0.0, 0.0}) PutF64(want, d);
    for (int v : {1, 0, 0, -1, -1, 1, 0}) PutI32(want, v);
    EXPECT_EQ(got, want);

    // Store, clear, load: the same records and the same selection.
    Geo::ClearDb();
    Geo::degreeFmt = Geo::dirFmt = 9;
    CLoader in(got);
    Geo::Serialize(in.ar);
    ASSERT_EQ(Geo::sphds.GetCount(), 2);
    EXPECT_EQ(Geo::sphds.GetTail()->m_semiMajor, 1.5);
    EXPECT_EQ(Geo::pSphdP, Geo::sphds.GetTail());
    EXPECT_EQ(Geo::pProjP, Geo::projs.GetHead());
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
    EXPECT_EQ(Geo::pShift->m_rotY, 0.5);
    EXPECT_EQ(Geo::pSphdS, nullptr);
    EXPECT_EQ(Geo::pProjS, nullptr);
    EXPECT_EQ(Geo::degreeFmt, 1);
    EXPECT_EQ(Geo::dirFmt, 0);
    // And it stores back to the same bytes.
    EXPECT_EQ(Store([](CArchive& ar) { Geo::Serialize(ar); }), got);

    // Loading again appends: the lists double, the selection stays at the
    // first copies.
    CLoader again(got);
    Geo::Serialize(again.ar);
    EXPECT_EQ(Geo::sphds.GetCount(), 4);
    EXPECT_EQ(Geo::projs.GetCount(), 2);
    EXPECT_EQ(Geo::shfts.GetCount(), 2);
    EXPECT_EQ(Geo::pSphdP, Geo::sphds.GetAt(Geo::sphds.FindIndex(1)));
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
}

TEST_F(GeoState, IndicesPastTheEndGiveNull)
{
    std::vector<BYTE> bytes;
    PutI32(bytes, 1);
    PutStr(bytes, "S");
    for (int i = 0; i < 4; ++i) PutF64(bytes, 1.0);
    PutI32(bytes, 0);
    PutI32(bytes, 0);
    for (int v : {1, 0, -5, 0, 7, 2, 2}) PutI32(bytes, v);
    CLoader in(bytes);
    Geo::Serialize(in.ar);
    EXPECT_EQ(Geo::pSphdP, nullptr);  // index 1 of a one-record list
    EXPECT_EQ(Geo::pProjP, nullptr);  // empty list
    EXPECT_EQ(Geo::pShift, nullptr);  // negative
    EXPECT_EQ(Geo::pSphdS, Geo::sphds.GetHead());
    EXPECT_EQ(Geo::pProjS, nullptr);
}

TEST_F(GeoState, DamagedCountRaisesBeforeAllocating)
{
    std::vector<BYTE> bytes;
    PutI32(bytes, 50000000);
    PutStr(bytes, "S");
    int cause = -1;
    try {
        CLoader in(bytes);
        Geo::Serialize(in.ar);
    } catch (const CArchiveException& e) {
        cause = e.m_cause;
    }
    EXPECT_EQ(cause, CArchiveException::endOfFile);
    EXPECT_EQ(Geo::sphds.GetCount(), 0);

    // A block cut short inside a record leaves the records before it.
    std::vector<BYTE> cut;
    PutI32(cut, 2);
    PutStr(cut, "A");
    for (int i = 0; i < 4; ++i) PutF64(cut, 1.0);
    PutStr(cut, "B");
    for (int i = 0; i < 4; ++i) PutF64(cut, 1.0);
    cut.erase(cut.end() - 3, cut.end());  // cut inside the last number
    cause = -1;
    try {
        CLoader in(cut);
        Geo::Serialize(in.ar);
    } catch (const CArchiveException& e) {
        cause = e.m_cause;
    }
    EXPECT_EQ(cause, CArchiveException::endOfFile);
}

// --- Settings form ------------------------------------------------------

TEST_F(GeoSel, SettingsGoThroughARealSettingsFile)
{
    SelectAll();
    Geo::pProjP = nullptr;
    Geo::degreeFmt = 5;
    Geo::dirFmt = 6;
    CZSet set;
    CZSetObj* obj = set.AddCol(u"Geodesy")->AddObj(u"Geo", u"geodesy state");
    Geo::Settings(*obj);

    // The data lines are the database text, without line ends.
    std::vector<std::string> lines;
    for (CZanPtr* pos = obj->m_data.GetHeadPos(); pos;) lines.push_back(obj->m_data.GetNext(pos)->Utf8());
    const std::vector<std::string> want = {
        "% -- SPHEROIDS --",
        "% SPHD, Name, Semi_Minor, Semi_Major, Eccentricity, Flattening",
        "SPHD, GRS80, 6356752.3141404, 6378137, 0.0066943800229008, 298.2572",
        "SPHD, Airy_1830, 6356256.909, 6377563.396, 0.0066705400741492, 298.2572",
        "% -- PROJECTIONS --",
        "% PROJ, Name, False_East, False_North, Longitude_Origin, Latitude_Origin, Scale_Factor_on_CM",
        "PROJ, UTM_30N, 500000, 0, -2.9999999999983, 0, 0.9996",  // the default's digits
        "PROJ, BNG, 400000, -100000, -2, 49, 0.9996012717",
        "% -- DATUM SHIFTS --",
        "% SHIFT, Name, X, Y, Z, AX, AY, AZ, Scale",
        "SHIFT, ETRS89_to_OSGB36, -446.448, 125.157, -542.06, -0.1502, -0.247, -0.8421, 20.4894",
    };
    EXPECT_EQ(lines, want);
    struct Key {
        const char16_t* key;
        int value;
    };
    for (const Key& k : {Key{u"PriSphd", 0}, Key{u"PriProj", -1}, Key{u"DtmShift", 0}, Key{u"SecSphd", 1},
                         Key{u"SecProj", 1}, Key{u"DegreeFmt", 5}, Key{u"DirFmt", 6}}) {
        const CZSetObj::CItem* item = obj->FindItem(k.key);
        ASSERT_NE(item, nullptr) << CString(k.key);
        EXPECT_EQ(item->m_n, k.value) << CString(k.key);
    }

    CScratch dir;
    const CString path = W(dir.Path("settings.json"));
    ASSERT_TRUE(set.Save(path));
    CZSet loaded;
    ASSERT_TRUE(loaded.Load(path));
    CZSetObj* in = loaded.GetCol(u"Geodesy")->GetObj(u"Geo");
    ASSERT_NE(in, nullptr);
    ASSERT_TRUE(in->IsLoading());

    Geo::ClearDb();
    Geo::degreeFmt = Geo::dirFmt = 0;
    CConsole con;
    Geo::Settings(*in);
    EXPECT_TRUE(con.m_lines.empty());
    ASSERT_EQ(Geo::sphds.GetCount(), 2);
    ASSERT_EQ(Geo::projs.GetCount(), 2);
    ASSERT_EQ(Geo::shfts.GetCount(), 1);
    EXPECT_EQ(Geo::pSphdP, Geo::sphds.GetHead());
    EXPECT_EQ(Geo::pProjP, nullptr);
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
    EXPECT_EQ(Geo::pSphdS, Geo::sphds.GetTail());
    EXPECT_EQ(Geo::pProjS, Geo::projs.GetTail());
    EXPECT_EQ(Geo::pProjS->m_scale, 0.9996012717);
    EXPECT_NEAR(Geo::pProjS->m_latOrigin, 49.0 * ML::d2r, 1e-15);
    EXPECT_EQ(Geo::degreeFmt, 5);
    EXPECT_EQ(Geo::dirFmt, 6);

    // Loading the same object again merges: nothing is added.
    Geo::Settings(*in);
    EXPECT_EQ(Geo::sphds.GetCount(), 2);
    EXPECT_EQ(Geo::projs.GetCount(), 2);
}

TEST_F(GeoState, SettingsWithoutKeysSelectTheFirstRecords)
{
    CZSetObj obj(u"Geo", u"");
    obj.SetLoading();
    obj.AddLine(u"% a comment");
    obj.AddLine(u"SPHD,A,1,2,3,4");
    obj.AddLine(u"SPHD,B,1,2,3,4");
    obj.AddLine(u"PROJ,P,1,2,3,4,5");
    obj.AddLine(u"SHIFT,T,1,2,3,4,5,6,7");
    obj.AddLine(u"nonsense");
    obj.AddLine(u"");
    CConsole con;
    Geo::degreeFmt = 7;
    Geo::Settings(obj);
    const std::vector<std::string> want = {"Geo: Unrecognised string nonsense", "Geo: Unrecognised string "};
    EXPECT_EQ(con.m_lines, want);
    EXPECT_EQ(Geo::pSphdP, Geo::sphds.GetHead());
    EXPECT_EQ(Geo::pSphdS, Geo::sphds.GetHead());
    EXPECT_EQ(Geo::pProjP, Geo::projs.GetHead());
    EXPECT_EQ(Geo::pProjS, Geo::projs.GetHead());
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
    EXPECT_EQ(Geo::degreeFmt, 7);  // a missing key leaves the value alone

    // -1 and past-the-end indices give null.
    CZSetObj store(u"Geo", u"");
    int minus = -1, past = 9;
    store.Item(u"PriSphd", minus);
    store.Item(u"PriProj", past);
    store.Item(u"DtmShift", minus);
    store.Item(u"SecSphd", past);
    store.Item(u"SecProj", minus);
    store.SetLoading();
    Geo::Settings(store);
    EXPECT_EQ(Geo::pSphdP, nullptr);
    EXPECT_EQ(Geo::pProjP, nullptr);
    EXPECT_EQ(Geo::pShift, nullptr);
    EXPECT_EQ(Geo::pSphdS, nullptr);
    EXPECT_EQ(Geo::pProjS, nullptr);
    EXPECT_EQ(Geo::sphds.GetCount(), 2);
}

TEST(GeoStatics, ValuesAtLoad)
{
    // Other tests restore what they change, so these are the load values.
    EXPECT_EQ(Geo::concession, 1);
    EXPECT_EQ(Geo::loSystem, 17);
    EXPECT_EQ(Geo::degreeFmt, 2);
    EXPECT_EQ(Geo::dirFmt, 2);
    EXPECT_EQ(Geo::type, 0);
    EXPECT_EQ(Geo::pSphdP, nullptr);
    EXPECT_EQ(Geo::pShift, nullptr);
    Geo g, h;
    g = h;  // the assignment exists and does nothing
}
