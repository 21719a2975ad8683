// The geodetic selection panel: its combo boxes over the database lists,
// the selection by name in the settings, and loading another database.
#include "GeoTestUtil.h"

using namespace geotest;
using zantest::CChooser;

namespace {

const char* kDb =
    "% two of each but one shift\n"
    "SPHD, WGS84, 6356752.314245179, 6378137, 0.0066943799901413173, 298.257223563\n"
    "SPHD, GRS80, 6356752.314140356, 6378137, 0.0066943800229007878, 298.257222101\n"
    "PROJ, UTM_30N, 500000, 0, -3, 0, 0.9996\n"
    "PROJ, UTM_31N, 500000, 0, 3, 0, 0.9996\n"
    "SHIFT, ED50_to_WGS84, -87, -98, -121, 0, 0, 0, 0\n";

const char16_t* kRows[] = {u"Spheroid 1", u"Projection 1", u"Datum Shift", u"Spheroid 2", u"Projection 2"};

CZCombo* Box(CGeoSel& p, const char16_t* row) { return dynamic_cast<CZCombo*>(CZDriver::Find(p, row)); }

std::vector<std::string> Texts(const CZCombo* cb)
{
    std::vector<std::string> out;
    for (unsigned int i = 0; i < cb->m_list.m_nSize; ++i) out.push_back(cb->m_list.m_ppItems[i]->m_strText.Utf8());
    return out;
}

std::string Sel(const CZSetObj& obj, const char16_t* key)
{
    const CZSetObj::CItem* it = obj.FindItem(key);
    return it ? it->m_str.Utf8() : "<missing>";
}


class GeoSelPanel : public GeoState {
protected:
    void Load() { Geo::ReadDb(W(m_dir.Write("GeoDB.csv", kDb))); }
    CScratch m_dir;
};

}  // namespace

TEST_F(GeoSelPanel, ConstructionSetsThePathAndReadsNothing)
{
    const CString old = Zan::projDir;
    Zan::projDir = u"/survey/project/";
    CGeoSel p;
    Zan::projDir = old;
    EXPECT_EQ(p.m_gdbName, u"/survey/project/GeoDB.csv");
    EXPECT_TRUE(Geo::sphds.IsEmpty());
    EXPECT_EQ(p.GetCtrlCount(), 0);

    std::unique_ptr<CObject> obj(CRuntimeClass::CreateObject(CString(u"CGeoSel")));
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(obj->GetRuntimeClass(), CGeoSel::GetThisClass());
    EXPECT_TRUE(obj->IsKindOf(CZanWnd::GetThisClass()));

    CGeoSel q;
    q.m_gdbName = u"other.csv";
    q.m_strTitle = u"Geodesy";
    p = q;
    EXPECT_EQ(p.m_gdbName, u"other.csv");
    EXPECT_EQ(p.m_strTitle, u"Geodesy");
}

TEST_F(GeoSelPanel, EmptyDatabaseOffersOnlySelectHere)
{
    CGeoSel p;
    p.SetupCtrls();
    EXPECT_EQ(p.GetCtrlCount(), 12);
    for (const char16_t* row : kRows) {
        CZCombo* cb = Box(p, row);
        ASSERT_NE(cb, nullptr) << CString(row);
        EXPECT_EQ(Texts(cb), std::vector<std::string>{"<Select Here>"});
        EXPECT_EQ(cb->m_strText, u"<Select Here>");
    }
    CZList list;
    EXPECT_EQ(p.FillSphdCb(list, nullptr), nullptr);
    EXPECT_EQ(p.FillProjCb(list, nullptr), nullptr);
    EXPECT_EQ(p.FillShiftCb(list, nullptr), nullptr);
    EXPECT_EQ(list.m_nSize, 3u);
    EXPECT_EQ(list.m_ppItems[0]->m_pData, nullptr);
}

TEST_F(GeoSelPanel, RowsListTheRecordsAndAPickWritesTheSelection)
{
    Load();
    CGeoSel p;
    p.SetupCtrls();
    EXPECT_EQ(Box(p, u"Spheroid 1")->m_rcLay, CRect(80, 0, 230, 16));
    EXPECT_EQ(Box(p, u"Projection 2")->m_rcLay, CRect(80, 72, 230, 88));
    CZCtrl* load = CZDriver::Find(p, u"Load Database");
    ASSERT_NE(load, nullptr);
    EXPECT_EQ(load->m_rcLay, CRect(0, 90, 80, 106));
    CZCtrl* path = p.GetCtrl(11);
    EXPECT_EQ(path->m_nKind, CZCtrl::kText);
    EXPECT_EQ(path->m_rcLay, CRect(80, 90, 230, 106));

    EXPECT_EQ(Texts(Box(p, u"Spheroid 2")), (std::vector<std::string>{"<Select Here>", "WGS84", "GRS80"}));
    EXPECT_EQ(Texts(Box(p, u"Projection 1")), (std::vector<std::string>{"<Select Here>", "UTM_30N", "UTM_31N"}));
    EXPECT_EQ(Texts(Box(p, u"Datum Shift")), (std::vector<std::string>{"<Select Here>", "ED50_to_WGS84"}));

    CSphd* grs = Geo::GetSphd(u"GRS80");
    ASSERT_TRUE(CZDriver::Pick(Box(p, u"Spheroid 1"), u"GRS80"));
    EXPECT_EQ(Geo::pSphdP, grs);
    ASSERT_TRUE(CZDriver::Pick(Box(p, u"Projection 2"), u"UTM_31N"));
    EXPECT_EQ(Geo::pProjS, Geo::GetProj(u"UTM_31N"));
    ASSERT_TRUE(CZDriver::Pick(Box(p, u"Datum Shift"), u"ED50_to_WGS84"));
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
    EXPECT_EQ(Geo::pSphdS, nullptr);

    // The callback returns the entry of the selected record.
    CZList list;
    CZLEnt* e = p.FillSphdCb(list, grs);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->m_strText, u"GRS80");
    EXPECT_EQ(e->m_pData, static_cast<void*>(grs));

    // "<Select Here>" carries no record: the selection goes back to null,
    // and a conversion that needs it fails.
    ASSERT_TRUE(CZDriver::Pick(Box(p, u"Spheroid 1"), u"<Select Here>"));
    EXPECT_EQ(Geo::pSphdP, nullptr);
    Geo::type = 0;
    Geo::pShift = nullptr;
    CV3 out(1, 2, 3);
    EXPECT_EQ(Geo::LLH_ENZ(CV3(-3.0, 50.0, 0.0), out, 0), 0);
    EXPECT_EQ(out.x, 1.0);

    // The host changes a selection; the box shows it at the next update.
    Geo::pSphdS = grs;
    p.UpdateCtrls();
    EXPECT_EQ(Box(p, u"Spheroid 2")->m_strText, u"GRS80");
}

TEST_F(GeoSelPanel, StoringWithNothingSelectedWritesNullFiveTimes)
{
    Load();
    CGeoSel p;
    p.m_gdbName = u"/db/GeoDB.csv";
    CZSetObj obj(u"GeoSel", u"");
    p.Settings(obj);
    EXPECT_EQ(Sel(obj, u"GDBName"), "/db/GeoDB.csv");
    for (const char16_t* key : {u"SphdPSel", u"ProjPSel", u"ShiftSel", u"SphdSSel", u"ProjSSel"})
        EXPECT_EQ(Sel(obj, key), "NULL") << CString(key);
    // After the database and indices of the geodesy state, in this order.
    const size_t n = obj.m_items.size();
    ASSERT_GE(n, 6u);
    const char16_t* tail[] = {u"GDBName", u"SphdPSel", u"ProjPSel", u"ShiftSel", u"SphdSSel", u"ProjSSel"};
    for (size_t i = 0; i < 6; ++i) EXPECT_EQ(obj.m_items[n - 6 + i].m_key, tail[i]);
    EXPECT_NE(obj.FindItem(u"PriSphd"), nullptr);
    EXPECT_EQ(obj.FindItem(u"PriSphd")->m_n, -1);
    EXPECT_GT(obj.GetDataCount(), 0);
}

TEST_F(GeoSelPanel, SettingsRoundTripThroughAFileAndTheNameWins)
{
    Load();
    Geo::pSphdP = Geo::GetSphd(u"GRS80");
    Geo::pProjP = Geo::GetProj(u"UTM_31N");
    Geo::pShift = Geo::GetShft(u"ED50_to_WGS84");
    Geo::pSphdS = Geo::GetSphd(u"WGS84");
    Geo::pProjS = nullptr;
    CGeoSel p;
    p.m_gdbName = u"/db/GeoDB.csv";
    p.SetupCtrls();
    CZSet set;
    p.Settings(*set.AddCol(u"Panels")->AddObj(u"GeoSel", u""));
    ASSERT_TRUE(set.Save(W(m_dir.Path("settings.json"))));

    Geo::ClearDb();
    CZSet back;
    ASSERT_TRUE(back.Load(W(m_dir.Path("settings.json"))));
    CZSetObj* obj = back.GetCol(u"Panels")->GetHead();
    CGeoSel q;
    q.SetupCtrls();
    q.Settings(*obj);
    EXPECT_EQ(q.m_gdbName, u"/db/GeoDB.csv");
    EXPECT_EQ(Geo::sphds.GetCount(), 2);
    EXPECT_EQ(Geo::pSphdP, Geo::GetSphd(u"GRS80"));
    EXPECT_EQ(Geo::pProjP, Geo::GetProj(u"UTM_31N"));
    EXPECT_EQ(Geo::pShift, Geo::GetShft(u"ED50_to_WGS84"));
    EXPECT_EQ(Geo::pSphdS, Geo::GetSphd(u"WGS84"));
    EXPECT_EQ(Geo::pProjS, nullptr);
    EXPECT_EQ(Box(q, u"Spheroid 1")->m_strText, u"GRS80");  // the controls were updated
    EXPECT_EQ(Box(q, u"Projection 2")->m_strText, u"<Select Here>");

    // Index and name disagree: the name, read last, wins; "NULL" or an
    // unknown name gives null even where the index names a record.
    Geo::ClearDb();
    CZSetObj edited;
    edited.SetStoring();
    for (CZanPtr* pos = obj->m_data.GetHeadPos(); pos;) edited.AddLine(*obj->m_data.GetNext(pos));
    int zero = 0;
    for (const char16_t* key : {u"PriSphd", u"PriProj", u"DtmShift", u"SecSphd", u"SecProj"}) edited.Item(key, zero);
    CString name = u"WGS84";
    edited.Item(u"SphdPSel", name);
    name = u"NULL";
    edited.Item(u"ProjPSel", name);
    name = u"No_Such_Shift";
    edited.Item(u"ShiftSel", name);
    edited.SetLoading();
    q.Settings(edited);
    EXPECT_EQ(Geo::pSphdP, Geo::GetSphd(u"WGS84"));  // index 0 is WGS84 too
    EXPECT_EQ(Geo::pProjP, nullptr);                  // index 0 said UTM_30N
    EXPECT_EQ(Geo::pShift, nullptr);
    EXPECT_EQ(Geo::pSphdS, Geo::sphds.GetHead());     // no name: the index stands
    EXPECT_EQ(Geo::pProjS, Geo::projs.GetHead());
}

TEST_F(GeoSelPanel, LoadingADatabaseClearsEverySelection)
{
    Load();
    CGeoSel p;
    p.m_gdbName = W(m_dir.Path("GeoDB.csv"));
    p.SetupCtrls();
    Geo::pSphdP = Geo::sphds.GetHead();
    Geo::pSphdS = Geo::sphds.GetTail();
    Geo::pProjP = Geo::projs.GetHead();
    Geo::pProjS = Geo::projs.GetTail();
    Geo::pShift = Geo::shfts.GetHead();

    // No chooser, or one that declines: nothing changes.
    p.SelectDB();
    EXPECT_EQ(Geo::pShift, Geo::shfts.GetHead());
    {
        CChooser declines("");
        ASSERT_TRUE(CZDriver::Click(CZDriver::Find(p, u"Load Database")));
        ASSERT_EQ(declines.m_dialogs.size(), 1u);
        const CFileDialog& dlg = declines.m_dialogs[0];
        EXPECT_TRUE(dlg.m_bOpenFileDialog);
        EXPECT_EQ(dlg.m_strFileName, u"*.csv");
        EXPECT_EQ(dlg.m_strTitle, u"Select Geodetic Database to Load");
        EXPECT_EQ(dlg.m_strInitialDir, p.m_gdbName);
        const auto filters = dlg.GetFilters();
        ASSERT_EQ(filters.size(), 2u);
        EXPECT_EQ(filters[0], std::make_pair(CString(u"CSV Files (*.csv)"), CString(u"*.csv")));
        EXPECT_EQ(filters[1], std::make_pair(CString(u"All Files"), CString(u"*.*")));
        EXPECT_NE(Geo::pSphdP, nullptr);
    }

    // Another database: the old records and every selection go.
    const std::string other = m_dir.Write("Other.csv", "SPHD, Bessel_1841, 6356078.963, 6377397.155, "
                                                       "0.006674372230614, 299.1528128\n");
    {
        CChooser picks(other);
        ASSERT_TRUE(CZDriver::Click(CZDriver::Find(p, u"Load Database")));
    }
    EXPECT_EQ(p.m_gdbName, W(other));
    EXPECT_EQ(Geo::sphds.GetCount(), 1);
    EXPECT_TRUE(Geo::projs.IsEmpty());
    EXPECT_EQ(Geo::pSphdP, nullptr);
    EXPECT_EQ(Geo::pSphdS, nullptr);
    EXPECT_EQ(Geo::pProjP, nullptr);
    EXPECT_EQ(Geo::pProjS, nullptr);
    EXPECT_EQ(Geo::pShift, nullptr);
    EXPECT_EQ(Texts(Box(p, u"Spheroid 1")), (std::vector<std::string>{"<Select Here>", "Bessel_1841"}));
    EXPECT_EQ(Box(p, u"Spheroid 1")->m_strText, u"<Select Here>");
    EXPECT_EQ(CZDriver::Find(p, u"Load Database") != nullptr, true);
    EXPECT_EQ(p.GetCtrl(11)->m_strText, W(other));

    // A file that won't open: reported, and the lists stay empty.
    Geo::pSphdP = Geo::sphds.GetHead();
    CConsole console;
    {
        CChooser picks(m_dir.Path("missing.csv"));
        p.SelectDB();
    }
    EXPECT_TRUE(Geo::sphds.IsEmpty());
    EXPECT_EQ(Geo::pSphdP, nullptr);
    ASSERT_EQ(console.m_lines.size(), 1u);
    EXPECT_EQ(console.m_lines[0].rfind("Geo: Unable to open", 0), 0u);
}

TEST_F(GeoSelPanel, PanelPaintsToAPicture)
{
    Geo::ReadDb(Geo::DefaultDbPath());
    Geo::pSphdP = Geo::GetSphd(u"WGS84");
    Geo::pProjP = Geo::projs.GetHead();
    CGeoSel p;
    p.m_gdbName = Geo::DefaultDbPath();
    p.SetupCtrls();
    CScratch scratch;
    const char* dir = std::getenv("ZAN_PICTURE_DIR");
    const std::string path = dir && *dir ? (std::filesystem::path(dir) / "GeoSel.png").string()
                                         : scratch.Path("GeoSel.png");
    ASSERT_TRUE(p.SavePicture(W(path)));
    EXPECT_GT(std::filesystem::file_size(path), 100u);
}
