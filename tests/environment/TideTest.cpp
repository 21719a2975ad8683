// Tide tables: the line forms of tide files, the interpolation rules with
// their cached interval, corrections, settings lines and the panel.
#include "EnvTestUtil.h"

#include <cmath>
#include <memory>

using envtest::W;

namespace {

double Tm(int y, int mo, int d, int h, int mi, int s)
{
    CTm80 t;
    t.SetTime(y, mo, d, h, mi, s, 0.0);
    return t.m_t;
}

const double T0 = Tm(2014, 12, 25, 10, 30, 0);
constexpr double kNo = -32768.0;

// A table of (time offset from T0 in seconds, height) points, in the order given.
void Fill(CTideObj& t, std::initializer_list<std::pair<double, double>> pts)
{
    t.RemoveAll();
    t.m_pLo = t.m_pHi = nullptr;
    for (auto [dt, v] : pts) t.AddTail(new CTmVal(T0 + dt, v));
}

}  // namespace

TEST(TideLine, BothExampleLinesGiveTheSamePoint)
{
    double t1 = 0, v1 = 0, t2 = 0, v2 = 0;
    ASSERT_TRUE(CTideObj::ParseLine(u"25/12/2014,10:30:00,1.25", t1, v1));
    ASSERT_TRUE(CTideObj::ParseLine(u"25/12/14 10:30 1.25", t2, v2));
    EXPECT_EQ(t1, T0);
    EXPECT_EQ(t2, T0);
    EXPECT_EQ(v1, 1.25);
    EXPECT_EQ(v2, 1.25);
}

TEST(TideLine, EverySixFormsTheYearRuleAndWhatIsNotAPoint)
{
    struct Case {
        const char16_t* line;
        double t;
        double v;
    };
    const double t5 = Tm(2015, 2, 1, 3, 4, 5);
    const double t0 = Tm(2015, 2, 1, 3, 4, 0);
    const Case cases[] = {
        {u"01/02/2015,03:04:05,1.5", t5, 1.5},
        {u"1/2/2015 3:4:5,-0.75", t5, -0.75},
        {u"1/2/15 03:04:05 2", t5, 2.0},
        {u"1/2/2015,3:4,0.5", t0, 0.5},
        {u"1/2/2015 3:4,0.25", t0, 0.25},
        {u"1/2/2015 3:4 4.125", t0, 4.125},
        {u"1/2/2015 3:4:5 1.5 m high water", t5, 1.5},  // the rest is ignored
        {u"1/2/2015,3:4:5, 1.5,extra", t5, 1.5},
        {u"1/2/99 3:4:5 1", Tm(2099, 2, 1, 3, 4, 5), 1.0},  // below 100: this century
        {u"1/2/100 3:4:5 1", Tm(100, 2, 1, 3, 4, 5), 1.0},
        {u"1/2/1999 3:4:5 1", Tm(1999, 2, 1, 3, 4, 5), 1.0},
    };
    for (const Case& c : cases) {
        double t = 0, v = 0;
        EXPECT_TRUE(CTideObj::ParseLine(c.line, t, v)) << CString(c.line);
        EXPECT_EQ(t, c.t) << CString(c.line);
        EXPECT_EQ(v, c.v) << CString(c.line);
    }
    for (const char16_t* bad : {u"Date,Time,Height", u"", u"1/2/2015", u"1/2/2015 3:4", u"1/2/2015,3:4:5",
                                u"1-2-2015 3:4:5 1.0", u" Tide table for Dover"}) {
        double t = 7, v = 8;
        EXPECT_FALSE(CTideObj::ParseLine(bad, t, v)) << CString(bad);
        EXPECT_EQ(t, 7);
        EXPECT_EQ(v, 8);
    }
}

TEST(TideFile, ReadsEveryFormSkipsHeadingsAndReportsEachPoint)
{
    envtest::CScratch dir;
    const std::string path = dir.Write("dover.tid",
                                       "Tide heights, Dover\r\n"
                                       "Date,Time,Height\r\n"
                                       "25/12/2014,10:30:00,1.25\r\n"
                                       "25/12/14 16:45 5.5\r\n"
                                       "\r\n"
                                       "26/12/2014 23:00:30,0.75\n"
                                       "end of file");
    CTideObj t;
    Fill(t, {{0, 9.0}});
    envtest::CConsole console;
    t.ReadTHL(W(path));
    ASSERT_EQ(t.GetCount(), 3);
    EXPECT_EQ(t.GetHead()->m_tm, T0);
    EXPECT_EQ(t.GetHead()->m_val, 1.25);
    EXPECT_EQ(t.GetAt(t.FindIndex(1))->m_tm, Tm(2014, 12, 25, 16, 45, 0));
    EXPECT_EQ(t.GetTail()->m_tm, Tm(2014, 12, 26, 23, 0, 30));
    EXPECT_EQ(t.GetTail()->m_val, 0.75);
    EXPECT_EQ(t.m_pLo, nullptr);
    EXPECT_TRUE(t.m_fileName.IsEmpty());  // the caller's to set
    ASSERT_EQ(console.m_lines.size(), 3u);
    EXPECT_EQ(console.m_lines[0], "25/12/2014 10:30:00: 25/12/2014,10:30:00,1.25");
    EXPECT_EQ(console.m_lines[1], "25/12/2014 16:45:00: 25/12/14 16:45 5.5");
    EXPECT_EQ(console.m_lines[2], "26/12/2014 23:00:30: 26/12/2014 23:00:30,0.75");
    EXPECT_EQ(console.m_levels, std::vector<int>(3, 0));
}

TEST(TideFile, AFileOfHeadingsEmptiesTheTableAndMissingFilesChangeNothing)
{
    envtest::CScratch dir;
    CTideObj t;
    Fill(t, {{0, 3.0}, {3600, 1.0}});
    envtest::CConsole console;
    t.ReadTHL(u"");
    t.ReadTHL(W(dir.Path("missing.csv")));
    t.ReadTHL(W(dir.Path("")));  // a folder is no tide file
    EXPECT_EQ(t.GetCount(), 2);
    EXPECT_TRUE(console.m_lines.empty());

    t.ReadTHL(W(dir.Write("words.csv", "Date,Time,Height\nno data today\n")));
    EXPECT_TRUE(t.IsEmpty());
    EXPECT_TRUE(console.m_lines.empty());
    for (double dt : {-1.0, 0.0, 1800.0, 3600.0}) {
        EXPECT_EQ(t.GetRaw(T0 + dt), kNo);
        EXPECT_EQ(t.GetTide(T0 + dt), kNo);
    }
}

TEST(TideRaw, EmptyAndSinglePointTablesHaveNoTide)
{
    CTideObj t;
    EXPECT_EQ(t.GetRaw(T0), kNo);
    Fill(t, {{0, 2.0}});
    for (double dt : {-1.0, 0.0, 1.0}) EXPECT_EQ(t.GetRaw(T0 + dt), kNo) << dt;
}

TEST(TideRaw, EndsOfTheTable)
{
    CTideObj t;
    Fill(t, {{0, 3.0}, {3600, 1.0}, {7200, 2.5}});
    EXPECT_EQ(t.GetRaw(T0), 3.0);               // the first point's own time
    EXPECT_EQ(t.GetRaw(T0 + 3600), 1.0);        // an inner point starts its interval
    EXPECT_EQ(t.GetRaw(T0 + 7200), kNo);        // the last point's own time
    EXPECT_EQ(t.GetRaw(T0 - 0.001), kNo);
    EXPECT_EQ(t.GetRaw(T0 + 7200.001), kNo);
    t.m_bGraph = 1;
    EXPECT_EQ(t.GetRaw(T0), 3.0);
    EXPECT_EQ(t.GetRaw(T0 + 7200), kNo);
}

TEST(TideRaw, SineAndStraightLineAtAHalfAndAQuarter)
{
    CTideObj t;
    Fill(t, {{0, 3.0}, {3600, 1.0}});
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 1800), 2.0);
    EXPECT_NEAR(t.GetRaw(T0 + 900), 2.0 + std::sqrt(0.5), 1e-12);  // about 2.71
    EXPECT_NEAR(t.GetRaw(T0 + 2700), 2.0 - std::sqrt(0.5), 1e-12);
    // Flat at the turns: a minute from high water it has barely moved.
    EXPECT_GT(t.GetRaw(T0 + 60), 2.998);

    t.m_bGraph = 1;
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 1800), 2.0);
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 900), 2.5);  // the same interval, now straight
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 60), 3.0 - 2.0 / 60.0);
}

TEST(TideRaw, ASecondQueryInTheSameIntervalUsesTheCacheWithoutAWalk)
{
    CTideObj t;
    Fill(t, {{0, 3.0}, {3600, 1.0}, {7200, 3.0}});
    CTmVal* a = t.GetHead();
    CTmVal* b = t.GetAt(t.FindIndex(1));
    CTmVal* c = t.GetTail();
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 1800), 2.0);
    EXPECT_EQ(t.m_pLo, a);
    EXPECT_EQ(t.m_pHi, b);

    // A point slipped in behind the head: a walk would now end at it, the
    // cached interval still holds a and b.
    t.InsertAfter(t.GetHeadPos(), new CTmVal(T0 + 1000, 0.0));
    EXPECT_NEAR(t.GetRaw(T0 + 900), 2.0 + std::sqrt(0.5), 1e-12);
    EXPECT_EQ(t.m_pLo, a);
    EXPECT_EQ(t.m_pHi, b);

    // Outside the cached interval the walk runs again.
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 5400), 2.0);
    EXPECT_EQ(t.m_pLo, b);
    EXPECT_EQ(t.m_pHi, c);
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 500), 3.0 - 1.5 * (std::sin(-ML::pi_2 + 0.5 * ML::pi) + 1.0));
    EXPECT_EQ(t.m_pHi->m_val, 0.0);
}

TEST(TideRaw, PointsNoLaterThanTheOneBeforeArePassedOver)
{
    CTideObj t;
    // Two points at one time: the second is passed over, no zero interval.
    Fill(t, {{0, 3.0}, {0, 9.0}, {3600, 1.0}});
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 1800), 2.0);
    EXPECT_EQ(t.m_pLo, t.GetHead());
    EXPECT_DOUBLE_EQ(t.GetRaw(T0), 3.0);

    // A point earlier than the one before it is passed over too.
    Fill(t, {{0, 3.0}, {3600, 1.0}, {1800, 9.0}, {7200, 3.0}});
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 5400), 2.0);
    EXPECT_EQ(t.m_pLo->m_val, 1.0);
    EXPECT_EQ(t.m_pHi, t.GetTail());
    // Before it in the list the walk ends at the first later point.
    EXPECT_DOUBLE_EQ(t.GetRaw(T0 + 1800), 2.0);
    EXPECT_EQ(t.m_pHi->m_tm, T0 + 3600);

    // The head and tail bound the table, whatever lies between.
    Fill(t, {{0, 3.0}, {9000, 5.0}, {3600, 1.0}});
    EXPECT_EQ(t.GetRaw(T0 + 4000), kNo);  // after the tail
}

TEST(TideCorrections, GetTideShiftsScalesAndOffsets)
{
    CTideObj t;
    Fill(t, {{0, 3.0}, {3600, 1.0}, {7200, 3.0}});
    t.m_shift = 3600.0;
    EXPECT_DOUBLE_EQ(t.GetTide(T0 + 1800), t.GetRaw(T0 + 5400));
    EXPECT_DOUBLE_EQ(t.GetTide(T0), 1.0);
    EXPECT_EQ(t.GetTide(T0 + 3600), kNo);  // an hour later is the last point
    EXPECT_EQ(t.GetTide(T0 - 3601), kNo);
    t.m_scale = 2.0;
    t.m_offset = -0.5;
    EXPECT_DOUBLE_EQ(t.GetTide(T0), 1.5);
    EXPECT_DOUBLE_EQ(t.GetTide(T0 + 1800), 3.5);
    EXPECT_EQ(t.GetTide(T0 + 3600), kNo);  // the sentinel is never corrected
    t.m_shift = -3600.0;
    EXPECT_EQ(t.GetTide(T0), kNo);
    EXPECT_DOUBLE_EQ(t.GetTide(T0 + 3600), 5.5);
}

TEST(TideSettings, TableTravelsAsDataLinesWithTwoDecimals)
{
    CTideObj t;
    t.m_strName = u"Dover";
    t.m_colour = 0xFF00A0u;
    t.m_fileName = u"/data/dover.tid";
    t.m_shift = -1800.0;
    t.m_offset = 0.125;
    t.m_scale = 0.9;
    t.m_bGraph = 1;
    Fill(t, {{0, 1.25}, {3600, 2.346}, {7230, -0.004}, {9000, 4.999}});

    CZSetObj out(u"Dover", u"");
    t.Settings(out);
    ASSERT_EQ(out.m_items.size(), 6u);
    const char16_t* keys[] = {u"Colour", u"FName", u"Shift", u"Offset", u"Scale", u"Graph"};
    const CZSetObj::Type types[] = {CZSetObj::U32, CZSetObj::Str, CZSetObj::F64,
                                    CZSetObj::F64, CZSetObj::F64, CZSetObj::I32};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(out.m_items[i].m_key, keys[i]);
        EXPECT_EQ(out.m_items[i].m_type, types[i]) << i;
    }
    std::vector<std::string> lines;
    for (CZanPtr* pos = out.m_data.GetHeadPos(); pos;) lines.push_back(out.m_data.GetNext(pos)->Utf8());
    EXPECT_EQ(lines, (std::vector<std::string>{"25/12/2014 10:30:00,1.25", "25/12/2014 11:30:00,2.35",
                                               "25/12/2014 12:30:30,-0.00", "25/12/2014 13:00:00,5.00"}));

    // Through a file, into a table that had other points and a cache.
    envtest::CScratch dir;
    CZSet set;
    set.AddCol(u"Tide")->AddObj(u"Dover", u"")->operator=(out);
    ASSERT_TRUE(set.Save(W(dir.Path("tide.json"))));
    CZSet back;
    ASSERT_TRUE(back.Load(W(dir.Path("tide.json"))));
    CZSetObj* in = back.GetCol(u"Tide")->GetHead();
    in->AddLine(u"a line of no point");
    in->AddLine(u"26/12/14 01:02:03,7.5");  // two-digit year
    in->AddLine(u"26/12/2014 01:02,7.5");   // no seconds: not the settings form

    CTideObj u;
    Fill(u, {{0, 8.0}, {10, 9.0}});
    u.GetRaw(T0 + 5);
    envtest::CConsole console;
    u.Settings(*in);
    EXPECT_TRUE(console.m_lines.empty());
    EXPECT_EQ(u.m_pLo, nullptr);
    EXPECT_EQ(u.m_pHi, nullptr);
    EXPECT_EQ(u.m_colour, 0xFF00A0u);
    EXPECT_EQ(u.m_fileName, u"/data/dover.tid");
    EXPECT_EQ(u.m_shift, -1800.0);
    EXPECT_EQ(u.m_offset, 0.125);
    EXPECT_EQ(u.m_scale, 0.9);
    EXPECT_EQ(u.m_bGraph, 1);
    EXPECT_EQ(u.m_strName, u"Default");  // the base's settings are not involved
    ASSERT_EQ(u.GetCount(), 5);
    std::vector<double> vals, tms;
    for (CZanPtr* pos = u.GetHeadPos(); pos;) {
        const CTmVal* p = u.GetNext(pos);
        vals.push_back(p->m_val);
        tms.push_back(p->m_tm);
    }
    EXPECT_EQ(vals, (std::vector<double>{1.25, 2.35, -0.0, 5.0, 7.5}));
    EXPECT_EQ(tms, (std::vector<double>{T0, T0 + 3600, T0 + 7230, T0 + 9000, Tm(2014, 12, 26, 1, 2, 3)}));
}

TEST(TideObj, AssignmentCopiesTheTableAndFieldsButNoCache)
{
    CTideObj a, b;
    a.m_strName = u"A";
    a.m_colour = 7;
    a.m_fileName = u"a.csv";
    a.m_shift = 60;
    a.m_offset = 1;
    a.m_scale = 2;
    a.m_bGraph = 1;
    Fill(a, {{0, 3.0}, {3600, 1.0}});
    Fill(b, {{0, 5.0}, {100, 6.0}, {200, 7.0}});
    a.GetRaw(T0 + 10);
    b.GetRaw(T0 + 150);
    ASSERT_NE(b.m_pLo, nullptr);
    const int tides = CTideObj::s_tides.GetCount();

    b = a;
    EXPECT_EQ(b.m_pLo, nullptr);
    EXPECT_EQ(b.m_pHi, nullptr);
    EXPECT_EQ(b.m_strName, u"A");
    EXPECT_EQ(b.m_colour, 7u);
    EXPECT_EQ(b.m_fileName, u"a.csv");
    EXPECT_EQ(b.m_shift, 60.0);
    EXPECT_EQ(b.m_offset, 1.0);
    EXPECT_EQ(b.m_scale, 2.0);
    EXPECT_EQ(b.m_bGraph, 1);
    ASSERT_EQ(b.GetCount(), 2);
    EXPECT_NE(b.GetHead(), a.GetHead());
    EXPECT_EQ(b.GetTail()->m_val, 1.0);
    EXPECT_EQ(b.GetTide(T0 + 1740), a.GetTide(T0 + 1740));
    EXPECT_EQ(CTideObj::s_tides.GetCount(), tides);
}

TEST(TideObj, TablesAreFoundByNameAndLeaveTheListWhenDestroyed)
{
    EXPECT_EQ(CTideObj::GetTideObj(u"Default"), nullptr);
    auto a = std::make_unique<CTideObj>();
    auto b = std::make_unique<CTideObj>();
    EXPECT_EQ(a->m_strName, u"Default");
    EXPECT_EQ(CTideObj::GetTideObj(u"Default"), a.get());
    b->m_strName = u"Dover";
    EXPECT_EQ(CTideObj::GetTideObj(u"Dover"), b.get());
    EXPECT_EQ(CTideObj::GetTideObj(u"dover"), nullptr);
    a.reset();
    EXPECT_EQ(CTideObj::GetTideObj(u"Default"), nullptr);
    EXPECT_EQ(CTideObj::s_tides.GetHead(), b.get());

    // Made by class name, with its table behind the list base.
    std::unique_ptr<CObject> obj(CRuntimeClass::CreateObject(CString(u"CTideObj")));
    ASSERT_NE(obj, nullptr);
    auto* made = dynamic_cast<CTideObj*>(obj.get());
    ASSERT_NE(made, nullptr);
    CList_Mgd<CTmVal>& table = *made;
    table.AddTail(new CTmVal(T0, 1.0));
    table.AddTail(new CTmVal(T0 + 60, 2.0));
    made->m_bGraph = 1;
    EXPECT_DOUBLE_EQ(made->GetTide(T0 + 30), 1.5);
    EXPECT_EQ(CTideObj::s_tides.GetCount(), 2);
}

TEST(TidePanel, BrowseReadsTheChosenFileAndWithoutAChoiceChangesNothing)
{
    envtest::CScratch dir;
    const std::string path = dir.Write("hw.csv", "25/12/2014,10:30:00,3.0\n25/12/2014,16:30:00,1.0\n");
    CTideObj t;
    t.m_fileName = u"/old/tide.csv";
    Fill(t, {{0, 8.0}, {10, 9.0}});

    t.Browse();  // no chooser: nothing is chosen
    EXPECT_EQ(t.m_fileName, u"/old/tide.csv");
    EXPECT_EQ(t.GetHead()->m_val, 8.0);
    {
        envtest::CChooser declines("");
        t.Browse();
        ASSERT_EQ(declines.m_dialogs.size(), 1u);
        const CFileDialog& dlg = declines.m_dialogs[0];
        EXPECT_TRUE(dlg.m_bOpenFileDialog);
        EXPECT_EQ(dlg.m_strFileName, u"*.csv");
        EXPECT_EQ(dlg.m_strTitle, u"Tide file to Load");
        EXPECT_EQ(dlg.m_strInitialDir, u"/old/tide.csv");
        const auto filters = dlg.GetFilters();
        ASSERT_EQ(filters.size(), 3u);
        EXPECT_EQ(filters[0], std::make_pair(CString(u"Csv Files (*.csv)"), CString(u"*.csv")));
        EXPECT_EQ(filters[1], std::make_pair(CString(u"Tid Files (*.tid)"), CString(u"*.tid")));
        EXPECT_EQ(filters[2], std::make_pair(CString(u"All Files"), CString(u"*.*")));
        EXPECT_EQ(t.m_fileName, u"/old/tide.csv");
        EXPECT_EQ(t.GetCount(), 2);
    }
    envtest::CChooser picks(path);
    envtest::CConsole console;
    t.SetupCtrls();
    ASSERT_TRUE(CZDriver::Click(CZDriver::Find(t, u"...")));
    EXPECT_EQ(t.m_fileName, W(path));
    ASSERT_EQ(t.GetCount(), 2);
    EXPECT_DOUBLE_EQ(t.GetTide(T0 + 3 * 3600), 2.0);
    EXPECT_EQ(console.m_lines.size(), 2u);
}

TEST(TidePanel, ControlsShowTheShiftInMinutesAndPaint)
{
    CTideObj t;
    t.m_strName = u"Dover";
    t.m_fileName = u"dover.tid";
    t.m_shift = 5400.0;
    t.m_offset = 0.25;
    t.SetupCtrls();
    EXPECT_EQ(t.GetCtrlCount(), 11);
    CZCtrl* file = CZDriver::Find(t, u"Tide File");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->m_nKind, CZCtrl::kText);
    EXPECT_EQ(file->m_strText, u"dover.tid");
    EXPECT_EQ(file->m_rcLay, CRect(80, 0, 232, 16));
    EXPECT_EQ(CZDriver::Find(t, u"...")->m_rcLay, CRect(232, 0, 248, 16));
    CZCtrl* shift = CZDriver::Find(t, u"Phase Shift (')");
    EXPECT_EQ(shift->m_strText, u"90");
    EXPECT_TRUE(CZDriver::Type(shift, u"-2.5"));
    EXPECT_DOUBLE_EQ(t.m_shift, -150.0);
    EXPECT_TRUE(CZDriver::Type(CZDriver::Find(t, u"Datum Scale"), u"1.05"));
    EXPECT_EQ(t.m_scale, 1.05);
    EXPECT_EQ(CZDriver::Find(t, u"Datum Offset (m)")->m_rcLay, CRect(80, 36, 130, 52));
    CZCtrl* graph = CZDriver::Find(t, u"Use Graph");
    EXPECT_EQ(graph->m_nKind, CZCtrl::kCheck);
    EXPECT_TRUE(CZDriver::Click(graph));
    EXPECT_EQ(t.m_bGraph, 1);
    envtest::Picture(t, "TideObj");
}
