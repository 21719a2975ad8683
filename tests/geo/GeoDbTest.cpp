// The geodetic records and their database file: comparison, archive form,
// the reader's grammar and merge rule, the writer, the shipped database.
#include "GeoTestUtil.h"

#include <cmath>

using namespace geotest;

namespace {

class GeoDb : public GeoState {};

std::string Lines(std::initializer_list<const char*> lines)
{
    std::string s;
    for (const char* l : lines) s += std::string(l) + "\n";
    return s;
}

} // namespace

TEST(GeoRecords, DefaultsAreThePublishedOnes)
{
    const CSphd s;
    EXPECT_EQ(s.m_name, CString(u"WGS84"));
    EXPECT_EQ(s.m_semiMajor, 6378137.0);
    EXPECT_EQ(s.m_semiMinor, 6356752.314);
    EXPECT_EQ(s.m_ecc2, 0.006694380023);
    EXPECT_EQ(s.m_invFlat, 298.2572);
    const CProj p;
    EXPECT_EQ(p.m_name, CString(u"UTM_30"));
    EXPECT_EQ(p.m_latOrigin, 0.0);
    EXPECT_EQ(p.m_lonOrigin, -0.0523598775598);
    EXPECT_EQ(p.m_falseEast, 500000.0);
    EXPECT_EQ(p.m_falseNorth, 0.0);
    EXPECT_EQ(p.m_scale, 0.9996);
    const CShft t;
    EXPECT_EQ(t.m_name, CString(u"NO_SHIFT"));
    EXPECT_EQ(t.m_dX + t.m_dY + t.m_dZ + t.m_rotX + t.m_rotY + t.m_rotZ + t.m_ppm, 0.0);
}

TEST(GeoRecords, ComparisonRules)
{
    CSphd a, b;
    EXPECT_EQ(a == b, 1);
    b.m_name = u"wgs84";  // names compare case-sensitively
    EXPECT_EQ(a == b, 0);
    b = a;
    b.m_invFlat = std::nextafter(a.m_invFlat, 1e9);  // even the unused 1/f must be exactly equal
    EXPECT_EQ(a == b, 0);

    CShft s, t;
    EXPECT_EQ(s == t, 1);
    t.m_ppm = 1e-300;
    EXPECT_EQ(s == t, 0);

    // Projection origins match within the threshold, strictly; the other
    // numbers exactly.
    CProj p, q;
    q.m_latOrigin = p.m_latOrigin + 0.5 * ML::threshold;
    q.m_lonOrigin = p.m_lonOrigin - 0.5 * ML::threshold;
    EXPECT_EQ(p == q, 1);
    q.m_lonOrigin = p.m_lonOrigin + 2.0 * ML::threshold;
    EXPECT_EQ(p == q, 0);
    q = p;
    q.m_scale = std::nextafter(p.m_scale, 2.0);
    EXPECT_EQ(p == q, 0);
    q = p;
    q.m_falseNorth = 10000000.0;
    EXPECT_EQ(p == q, 0);
}

TEST(GeoRecords, ArchiveFormIsNameThenNumbersInFieldOrder)
{
    CSphd s;
    s.m_name = u"AB";
    CProj p;
    p.m_name = u"P";
    p.m_latOrigin = 0.25;
    CShft t;
    t.m_name = u"";
    t.m_dX = 1.0;
    t.m_ppm = -2.5;
    const auto got = Store([&](CArchive& ar) {
        s.Serialize(ar);
        p.Serialize(ar);
        t.Serialize(ar);
    });
    std::vector<BYTE> want;
    PutStr(want, "AB");
    for (double d : {6378137.0, 6356752.314, 0.006694380023, 298.2572}) PutF64(want, d);
    PutStr(want, "P");
    for (double d : {0.25, -0.0523598775598, 500000.0, 0.0, 0.9996}) PutF64(want, d);
    PutStr(want, "");
    for (double d : {1.0, 0.0, 0.0, 0.0, 0.0, 0.0, -2.5}) PutF64(want, d);
    EXPECT_EQ(got, want);

    CLoader in(want);
    CSphd s2;
    CProj p2;
    CShft t2;
    s2.m_name = u"x";
    s2.Serialize(in.ar);
    p2.Serialize(in.ar);
    t2.Serialize(in.ar);
    EXPECT_EQ(s2 == s, 1);
    EXPECT_EQ(p2.m_latOrigin, 0.25);
    EXPECT_EQ(p2 == p, 1);
    EXPECT_EQ(t2 == t, 1);
}

TEST_F(GeoDb, ReaderFillsEachColumnInFileOrder)
{
    CScratch dir;
    CConsole con;
    const auto path = dir.Write("db.csv", Lines({
                                               "% comment",
                                               "SPHD,  My Sphd  ,6356000.5,6378000.25,0.0067,298.5",
                                               "PROJ,Grid,400000,-100000,-2,49,0.9996012717",
                                               "SHIFT,S1,1,2,3,4,5,6,7",
                                           }));
    Geo::ReadDb(W(path));
    EXPECT_TRUE(con.m_lines.empty());
    ASSERT_EQ(Geo::sphds.GetCount(), 1);
    const CSphd& s = *Geo::sphds.GetHead();
    EXPECT_EQ(s.m_name, CString(u"My Sphd"));  // trimmed at both ends, inner blank kept
    EXPECT_EQ(s.m_semiMinor, 6356000.5);       // the minor axis comes first
    EXPECT_EQ(s.m_semiMajor, 6378000.25);
    EXPECT_EQ(s.m_ecc2, 0.0067);
    EXPECT_EQ(s.m_invFlat, 298.5);
    ASSERT_EQ(Geo::projs.GetCount(), 1);
    const CProj& p = *Geo::projs.GetHead();
    EXPECT_EQ(p.m_falseEast, 400000.0);
    EXPECT_EQ(p.m_falseNorth, -100000.0);
    EXPECT_EQ(p.m_lonOrigin, -2.0 * ML::d2r);  // longitude before latitude, degrees to radians
    EXPECT_EQ(p.m_latOrigin, 49.0 * ML::d2r);
    EXPECT_EQ(p.m_scale, 0.9996012717);
    ASSERT_EQ(Geo::shfts.GetCount(), 1);
    const CShft& t = *Geo::shfts.GetHead();
    EXPECT_EQ(t.m_name, CString(u"S1"));
    EXPECT_EQ(t.m_dX, 1.0);
    EXPECT_EQ(t.m_dY, 2.0);
    EXPECT_EQ(t.m_dZ, 3.0);
    EXPECT_EQ(t.m_rotX, 4.0);
    EXPECT_EQ(t.m_rotY, 5.0);
    EXPECT_EQ(t.m_rotZ, 6.0);
    EXPECT_EQ(t.m_ppm, 7.0);
}

TEST_F(GeoDb, ReaderReportsEveryLineThatFitsNoForm)
{
    CScratch dir;
    CConsole con;
    const auto path = dir.Write("db.csv", Lines({
                                               "sphd,Lower,1,2,3,4",         // keyword in lower case
                                               " SPHD,Blank,1,2,3,4",        // blank before the keyword
                                               "SPHD ,Gap,1,2,3,4",          // blank before the comma
                                               "SPHD,Short,1,2,3",           // three numbers
                                               "",                           // an empty line
                                               "PROJ,Four,1,2,3,4",          // a number short
                                               "SHIFT,Seven,1,2,3,4,5,6,x",  // not a number
                                               "SPHD,,1,2,3,4",              // no name
                                               "SPHD, Ok ,1, 2,\t3,  4 trailing text, 9",
                                           }));
    Geo::ReadDb(W(path));
    const std::vector<std::string> want = {
        "Geo: Unrecognised string sphd,Lower,1,2,3,4",  "Geo: Unrecognised string  SPHD,Blank,1,2,3,4",
        "Geo: Unrecognised string SPHD ,Gap,1,2,3,4",   "Geo: Unrecognised string SPHD,Short,1,2,3",
        "Geo: Unrecognised string ",                    "Geo: Unrecognised string PROJ,Four,1,2,3,4",
        "Geo: Unrecognised string SHIFT,Seven,1,2,3,4,5,6,x", "Geo: Unrecognised string SPHD,,1,2,3,4",
    };
    EXPECT_EQ(con.m_lines, want);
    for (int level : con.m_levels) EXPECT_EQ(level, 0);
    // Blanks before numbers are allowed; what follows the last number is ignored.
    ASSERT_EQ(Geo::sphds.GetCount(), 1);
    EXPECT_EQ(Geo::sphds.GetHead()->m_name, CString(u"Ok"));
    EXPECT_EQ(Geo::sphds.GetHead()->m_invFlat, 4.0);
    EXPECT_EQ(Geo::projs.GetCount(), 0);
    EXPECT_EQ(Geo::shfts.GetCount(), 0);
}

TEST_F(GeoDb, MissingOrUnwritableFileIsReportedAndChangesNothing)
{
    CScratch dir;
    Geo::sphds.AddTail(new CSphd);
    CConsole con;
    const std::string missing = dir.Path("nope.csv");
    Geo::ReadDb(W(missing));
    const std::string folder = dir.Path("");
    Geo::WriteDb(W(dir.Path("no/such/folder/db.csv")));
    ASSERT_EQ(con.m_lines.size(), 2u);
    EXPECT_EQ(con.m_lines[0], "Geo: Unable to open " + missing);
    EXPECT_EQ(con.m_lines[1], "Geo: Unable to open " + dir.Path("no/such/folder/db.csv"));
    EXPECT_EQ(Geo::sphds.GetCount(), 1);
}

TEST_F(GeoDb, WriteErrorIsReportedNotThrown)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full here";
    Geo::sphds.AddTail(new CSphd);
    CConsole con;
    EXPECT_NO_THROW(Geo::WriteDb(u"/dev/full"));
    ASSERT_EQ(con.m_lines.size(), 1u);
    EXPECT_EQ(con.m_lines[0], "Geo: Unable to open /dev/full");
}

TEST_F(GeoDb, EmptyOrCommentOnlyFilesLeaveTheListsAlone)
{
    CScratch dir;
    CConsole con;
    Geo::projs.AddTail(new CProj);
    Geo::ReadDb(W(dir.Write("empty.csv", "")));
    Geo::ReadDb(W(dir.Write("comments.csv", "% a\n%\n%SPHD,X,1,2,3,4\n")));
    EXPECT_TRUE(con.m_lines.empty());
    EXPECT_EQ(Geo::sphds.GetCount(), 0);
    EXPECT_EQ(Geo::projs.GetCount(), 1);
    EXPECT_EQ(Geo::shfts.GetCount(), 0);
}

TEST_F(GeoDb, MergeDropsEqualRecordsAndKeepsNamesakes)
{
    CScratch dir;
    const auto path = dir.Write("db.csv", Lines({
                                               "SPHD,A,1,2,3,4",
                                               "SPHD,A,1,2,3,5",  // same name, other numbers
                                               "SPHD,A,1,2,3,4",  // equal to the first
                                               "PROJ,P,1,2,3,4,5",
                                               "SHIFT,T,1,2,3,4,5,6,7",
                                           }));
    Geo::ReadDb(W(path));
    Geo::ReadDb(W(path));  // the second reading adds nothing
    ASSERT_EQ(Geo::sphds.GetCount(), 2);
    EXPECT_EQ(Geo::projs.GetCount(), 1);
    EXPECT_EQ(Geo::shfts.GetCount(), 1);

    CSphd* first = Geo::sphds.GetHead();
    CSphd* second = Geo::sphds.GetTail();
    EXPECT_EQ(Geo::GetSphd(u"A"), first);
    EXPECT_EQ(Geo::GetSphd(u"a"), nullptr);
    CSphd probe = *second;  // a record outside the list
    EXPECT_EQ(Geo::FindSphd(probe), second);
    probe.m_ecc2 = 9.0;
    EXPECT_EQ(Geo::FindSphd(probe), nullptr);
    EXPECT_NE(Geo::GetProj(u"P"), nullptr);
    EXPECT_NE(Geo::GetShft(u"T"), nullptr);
    EXPECT_EQ(Geo::GetShft(u"P"), nullptr);
    CShft t = *Geo::GetShft(u"T");
    EXPECT_EQ(Geo::FindShft(t), Geo::shfts.GetHead());
}

TEST_F(GeoDb, ProjectionWithinThresholdIsTheSameRecord)
{
    CProj p;
    p.m_name = u"P";
    p.m_latOrigin = 10.0 * ML::d2r;
    p.m_lonOrigin = 20.0 * ML::d2r;
    Geo::projs.AddTail(new CProj(p));
    CScratch dir;
    // 1e-8 degree is 1.7e-10 rad, under the threshold; 1e-6 degree is not.
    Geo::ReadDb(W(dir.Write("db.csv", Lines({"PROJ,P,500000,0,20.00000001,9.99999999,0.9996",
                                              "PROJ,P,500000,0,20.000001,10,0.9996"}))));
    ASSERT_EQ(Geo::projs.GetCount(), 2);
    EXPECT_EQ(Geo::projs.GetHead()->m_lonOrigin, 20.0 * ML::d2r);
    EXPECT_NEAR(Geo::projs.GetTail()->m_lonOrigin, 20.000001 * ML::d2r, 1e-15);
    CProj near = p;
    near.m_latOrigin += 0.9 * ML::threshold;
    EXPECT_EQ(Geo::FindProj(near), Geo::projs.GetHead());
}

TEST_F(GeoDb, LongLinesArriveInPiecesOf1023Characters)
{
    CScratch dir;
    CConsole con;
    // A comment of exactly 1023 characters is one piece; what follows on the
    // same line arrives as a line of its own and is read as a record.
    const std::string comment = "%" + std::string(1022, 'c');
    // A record of exactly 1023 characters leaves its line end as an empty line.
    std::string full = "SPHD,Full,1,2,3,4 ";
    full += std::string(1023 - full.size(), 'x');
    std::string text = comment + "SPHD,Tail,1,2,3,4\n" + full + "\n" + "SHIFT,Last,1,2,3,4,5,6,7";  // no final line end
    Geo::ReadDb(W(dir.Write("db.csv", text)));
    ASSERT_EQ(Geo::sphds.GetCount(), 2);
    EXPECT_EQ(Geo::sphds.GetHead()->m_name, CString(u"Tail"));
    EXPECT_EQ(Geo::sphds.GetTail()->m_name, CString(u"Full"));
    EXPECT_EQ(Geo::shfts.GetCount(), 1);
    const std::vector<std::string> want = {"Geo: Unrecognised string "};
    EXPECT_EQ(con.m_lines, want);
}

TEST_F(GeoDb, WindowsLineEndsAndWideNamesReadAlike)
{
    CScratch dir;
    CConsole con;
    Geo::ReadDb(W(dir.Write("db.csv", "% x\r\nSPHD,K\xC3\xB8" "benhavn,1,2,3,4\r\nPROJ,P,1,2,3,4,5\r\n")));
    EXPECT_TRUE(con.m_lines.empty());
    ASSERT_EQ(Geo::sphds.GetCount(), 1);
    EXPECT_EQ(Geo::sphds.GetHead()->m_name, CString(u"K\u00F8benhavn"));
    EXPECT_EQ(Geo::projs.GetCount(), 1);
}

TEST_F(GeoDb, WriterProducesTheDocumentedText)
{
    CSphd s;
    s.m_name = u"S one";
    CProj p;
    p.m_name = u"P";
    p.m_lonOrigin = -3.0 * ML::d2r;
    p.m_latOrigin = 49.0 * ML::d2r;
    CShft t;
    t.m_name = u"T";
    t.m_dX = -446.448;
    t.m_rotZ = 1.0 / 3.0;
    t.m_ppm = 20.4894;
    Geo::sphds.AddTail(new CSphd(s));
    Geo::projs.AddTail(new CProj(p));
    Geo::shfts.AddTail(new CShft(t));
    CScratch dir;
    const std::string path = dir.Path("out.csv");
    Geo::WriteDb(W(path));
    const std::string want =
        "% -- SPHEROIDS --\n"
        "% SPHD, Name, Semi_Minor, Semi_Major, Eccentricity, Flattening\n"
        "SPHD, S one, 6356752.314, 6378137, 0.006694380023, 298.2572\n"
        "% -- PROJECTIONS --\n"
        "% PROJ, Name, False_East, False_North, Longitude_Origin, Latitude_Origin, Scale_Factor_on_CM\n"
        "PROJ, P, 500000, 0, -3, 49, 0.9996\n"
        "% -- DATUM SHIFTS --\n"
        "% SHIFT, Name, X, Y, Z, AX, AY, AZ, Scale\n"
        "SHIFT, T, -446.448, 0, 0, 0, 0, 0.33333333333333, 20.4894\n";
    EXPECT_EQ(CScratch::Read(path), want);

    // The output replaces an earlier file.
    Geo::ClearDb();
    Geo::WriteDb(W(path));
    EXPECT_EQ(CScratch::Read(path),
              "% -- SPHEROIDS --\n% SPHD, Name, Semi_Minor, Semi_Major, Eccentricity, Flattening\n"
              "% -- PROJECTIONS --\n"
              "% PROJ, Name, False_East, False_North, Longitude_Origin, Latitude_Origin, Scale_Factor_on_CM\n"
              "% -- DATUM SHIFTS --\n% SHIFT, Name, X, Y, Z, AX, AY, AZ, Scale\n");
}

TEST_F(GeoDb, WrittenFileReadsBackToTheSameRecordsInOrder)
{
    // Awkward numbers: 14 significant digits bring them back within the
    // last bits; the shipped database adds 128 ordinary records.
    Geo::ReadDb(Geo::DefaultDbPath());
    CSphd s;
    s.m_name = u"  odd  name ";
    s.m_semiMajor = ML::pi * 1e6;
    s.m_ecc2 = 1.0 / 3.0;
    s.m_invFlat = 1e-300;
    Geo::sphds.AddTail(new CSphd(s));
    CProj p;
    p.m_name = u"P";
    p.m_lonOrigin = 1.0 / 7.0;
    p.m_latOrigin = -0.7;
    Geo::projs.AddTail(new CProj(p));
    CShft t;
    t.m_name = u"T";
    t.m_rotX = -1.0 / 9.0;
    Geo::shfts.AddTail(new CShft(t));

    CList_Mgd<CSphd> sphds;
    CList_Mgd<CProj> projs;
    CList_Mgd<CShft> shfts;
    sphds = Geo::sphds;
    projs = Geo::projs;
    shfts = Geo::shfts;

    CScratch dir;
    const std::string path = dir.Path("round.csv");
    Geo::WriteDb(W(path));
    Geo::ClearDb();
    CConsole con;
    Geo::ReadDb(W(path));
    EXPECT_TRUE(con.m_lines.empty());
    ASSERT_EQ(Geo::sphds.GetCount(), sphds.GetCount());
    ASSERT_EQ(Geo::projs.GetCount(), projs.GetCount());
    ASSERT_EQ(Geo::shfts.GetCount(), shfts.GetCount());
    auto close = [](double a, double b) { return std::fabs(a - b) <= 1e-13 * std::fabs(b) + 1e-300; };
    CZanPtr* q = sphds.GetHeadPos();
    for (CZanPtr* pos = Geo::sphds.GetHeadPos(); pos;) {
        const CSphd& a = *Geo::sphds.GetNext(pos);
        const CSphd& b = *sphds.GetNext(q);
        CString name = b.m_name;
        EXPECT_EQ(a.m_name, name.Trim());  // the reader trims what the writer wrote whole
        EXPECT_TRUE(close(a.m_semiMajor, b.m_semiMajor) && close(a.m_semiMinor, b.m_semiMinor) &&
                    close(a.m_ecc2, b.m_ecc2) && close(a.m_invFlat, b.m_invFlat))
            << a.m_name;
    }
    q = projs.GetHeadPos();
    for (CZanPtr* pos = Geo::projs.GetHeadPos(); pos;) {
        const CProj& a = *Geo::projs.GetNext(pos);
        const CProj& b = *projs.GetNext(q);
        EXPECT_EQ(a == b, 1) << a.m_name;  // origins within the threshold, the rest exact
    }
    q = shfts.GetHeadPos();
    for (CZanPtr* pos = Geo::shfts.GetHeadPos(); pos;) {
        const CShft& a = *Geo::shfts.GetNext(pos);
        const CShft& b = *shfts.GetNext(q);
        EXPECT_EQ(a.m_name, b.m_name);
        EXPECT_TRUE(close(a.m_dX, b.m_dX) && close(a.m_rotX, b.m_rotX) && close(a.m_rotZ, b.m_rotZ) &&
                    close(a.m_ppm, b.m_ppm))
            << a.m_name;
    }
}

TEST_F(GeoDb, ClearDbFreesRecordsAndNullsTheSelection)
{
    Geo::ClearDb();  // on empty lists it only nulls the selection
    EXPECT_EQ(Geo::pSphdP, nullptr);
    Geo::sphds.AddTail(new CSphd);
    Geo::projs.AddTail(new CProj);
    Geo::shfts.AddTail(new CShft);
    Geo::pSphdP = Geo::pSphdS = Geo::sphds.GetHead();
    Geo::pProjP = Geo::pProjS = Geo::projs.GetHead();
    Geo::pShift = Geo::shfts.GetHead();
    Geo::ClearDb();
    EXPECT_TRUE(Geo::sphds.IsEmpty() && Geo::projs.IsEmpty() && Geo::shfts.IsEmpty());
    EXPECT_EQ(Geo::pSphdP, nullptr);
    EXPECT_EQ(Geo::pProjP, nullptr);
    EXPECT_EQ(Geo::pSphdS, nullptr);
    EXPECT_EQ(Geo::pProjS, nullptr);
    EXPECT_EQ(Geo::pShift, nullptr);
}

TEST_F(GeoDb, ShippedDatabaseHoldsConsistentPublishedRecords)
{
    const CString path = Geo::DefaultDbPath();
    ASSERT_TRUE(std::filesystem::exists(path.Utf8())) << path;
    CConsole con;
    Geo::ReadDb(path);
    EXPECT_TRUE(con.m_lines.empty());
    EXPECT_EQ(Geo::sphds.GetCount(), 7);
    EXPECT_EQ(Geo::projs.GetCount(), 121);
    EXPECT_GE(Geo::shfts.GetCount(), 5);
    for (const char16_t* n : {u"WGS84", u"GRS80", u"Airy_1830", u"International_1924", u"Clarke_1866",
                              u"Clarke_1880_Arc", u"Bessel_1841"}) {
        const CSphd* s = Geo::GetSphd(n);
        ASSERT_NE(s, nullptr) << CString(n);
        // The four columns agree: b, e² and 1/f from the two defining ones.
        const double f = 1.0 / s->m_invFlat;
        EXPECT_NEAR(s->m_semiMinor, s->m_semiMajor * (1.0 - f), 1e-6) << CString(n);
        EXPECT_NEAR(s->m_ecc2, f * (2.0 - f), 1e-15) << CString(n);
    }
    EXPECT_EQ(Geo::GetSphd(u"WGS84")->m_invFlat, 298.257223563);
    EXPECT_EQ(Geo::GetSphd(u"Airy_1830")->m_semiMinor, 6356256.909);
    for (int zone = 1; zone <= 60; ++zone) {
        const CProj* n = Geo::GetProj(CString::Fmt(u"UTM_%dN", zone));
        const CProj* s = Geo::GetProj(CString::Fmt(u"UTM_%dS", zone));
        ASSERT_TRUE(n && s) << zone;
        EXPECT_NEAR(n->m_lonOrigin * ML::r2d, 6.0 * zone - 183.0, 1e-12);
        EXPECT_EQ(n->m_falseNorth, 0.0);
        EXPECT_EQ(s->m_falseNorth, 10000000.0);
        EXPECT_EQ(s->m_scale, 0.9996);
    }
    const CProj* bng = Geo::GetProj(u"British_National_Grid");
    ASSERT_NE(bng, nullptr);
    EXPECT_EQ(bng->m_scale, 0.9996012717);
    EXPECT_NEAR(bng->m_latOrigin * ML::r2d, 49.0, 1e-12);

    // The published check point of the National Grid: OSGB36 52°39'27.2531"N
    // 1°43'4.5177"E is E 651409.903, N 313177.270.
    CV3 enz;
    GeoConv::llh2enz(*Geo::GetSphd(u"Airy_1830"), *bng,
                     CV3((1.0 + 43.0 / 60.0 + 4.5177 / 3600.0) * ML::d2r, (52.0 + 39.0 / 60.0 + 27.2531 / 3600.0) * ML::d2r,
                         0.0),
                     enz);
    EXPECT_NEAR(enz.x, 651409.903, 0.001);
    EXPECT_NEAR(enz.y, 313177.270, 0.001);
}
