// Speed of sound panel: acceptance range, the three modes, settings keys and
// the panels' collection in a settings file.
#include "EnvTestUtil.h"

#include <memory>

using envtest::W;

namespace {

CSnsrSOS Reading(float sos, int bank = 0, double time = 100.0)
{
    CSnsrSOS r;
    r.m_sos = sos;
    r.m_bank = static_cast<BYTE>(bank);
    r.m_time = time;
    return r;
}

// Sends a reading the way the host does, to every listening panel.
void Send(CSnsrSOS r) { CZanWnd::SnsrMsg(12, &r); }

CZCtrl* Field(CSpdSnd& p, const char16_t* label) { return CZDriver::Find(p, label); }

}  // namespace

TEST(SpdSnd, NewPanelHasItsDefaultsControlsAndListsAndLeavesThemWhenDestroyed)
{
    const int panels = CSpdSnd::s_spdSnd.GetCount();
    const int listeners = CZanWnd::s_snsrRx.GetCount();
    auto p = std::make_unique<CSpdSnd>();
    EXPECT_EQ(p->m_xdSos, 1500.0);
    EXPECT_EQ(p->m_avgSos, 1500.0);
    EXPECT_EQ(p->m_useManual, 0);
    EXPECT_EQ(p->m_manSos, 1499.2);
    EXPECT_EQ(p->m_live, 1);
    EXPECT_EQ(p->m_bank, 0);
    EXPECT_EQ(p->m_sosTime, 0.0);
    EXPECT_EQ(p->m_minSos, 1350.0);
    EXPECT_EQ(p->m_maxSos, 1600.0);
    EXPECT_EQ(p->m_stat.GetSize(), 25u);
    EXPECT_EQ(p->m_nFlag, 1);
    EXPECT_EQ(p->m_strTitle, u"Speed of Sound");
    EXPECT_TRUE(p->m_strName.IsEmpty());
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetTail(), p.get());
    EXPECT_EQ(CZanWnd::s_snsrRx.GetTail(), p.get());

    // Six rows of the flow layout: texts, fields, two check boxes, the bank box.
    ASSERT_NE(Field(*p, u"Xd SOS"), nullptr);
    EXPECT_EQ(Field(*p, u"Xd SOS")->m_rcLay, CRect(65, 5, 115, 21));
    EXPECT_EQ(Field(*p, u"Avg SOS")->m_rcLay, CRect(180, 5, 230, 21));
    EXPECT_EQ(Field(*p, u"Use Manual SOS")->m_rcLay, CRect(5, 23, 117, 39));
    EXPECT_EQ(Field(*p, u"Man SOS")->m_rcLay, CRect(182, 23, 232, 39));
    EXPECT_EQ(Field(*p, u"Live Update")->m_nKind, CZCtrl::kCheck);
    auto* bank = dynamic_cast<CZCombo*>(Field(*p, u"Bank"));
    ASSERT_NE(bank, nullptr);
    EXPECT_EQ(bank->GetCount(), 8);
    EXPECT_EQ(bank->m_strText, u"0");
    EXPECT_EQ(Field(*p, u"Xd SOS")->m_strText, u"1500");

    // The fields take 1350 to 1600, both ends.
    EXPECT_FALSE(CZDriver::Type(Field(*p, u"Man SOS"), u"1349.9"));
    EXPECT_FALSE(CZDriver::Type(Field(*p, u"Man SOS"), u"1600.1"));
    EXPECT_TRUE(CZDriver::Type(Field(*p, u"Man SOS"), u"1350"));
    EXPECT_TRUE(CZDriver::Type(Field(*p, u"Man SOS"), u"1600"));
    EXPECT_EQ(p->m_manSos, 1600.0);
    EXPECT_TRUE(CZDriver::Pick(bank, 3));
    EXPECT_EQ(p->m_bank, 3);

    // Created by class name as a CSpdSnd; the second type reports that class.
    std::unique_ptr<CObject> byName(CRuntimeClass::CreateObject(CString(u"CSpdSnd")));
    ASSERT_NE(byName, nullptr);
    EXPECT_EQ(byName->GetRuntimeClass(), CSpdSnd::GetThisClass());
    CSpdSndPfl pfl;
    EXPECT_EQ(pfl.GetRuntimeClass(), CSpdSnd::GetThisClass());
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetTail(), &pfl);
    byName.reset();

    CSpdSnd* raw = p.get();
    p.reset();
    EXPECT_EQ(CSpdSnd::s_spdSnd.Find(raw, nullptr), nullptr);
    EXPECT_EQ(CZanWnd::s_snsrRx.Find(raw, nullptr), nullptr);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetCount(), panels + 1);  // pfl remains
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listeners + 1);
    Send(Reading(1480.0f));  // only live panels are reached
    EXPECT_EQ(pfl.m_xdSos, 1480.0);
}

TEST(SpdSnd, OnlyTheBanksSpeedRecordsCount)
{
    CSpdSnd p;
    p.m_bank = 2;
    Send(Reading(1480.0f, 1));
    CSnsrInf other;  // a record of another type on the right bank
    other.m_type = CSnsrInf::tDepth;
    other.m_bank = 2;
    CZanWnd::SnsrMsg(12, &other);
    p.OnSnsrMsg(0, nullptr);
    EXPECT_EQ(p.m_stat.GetCount(), 0u);
    EXPECT_EQ(p.m_xdSos, 1500.0);
    EXPECT_EQ(p.m_sosTime, 0.0);

    Send(Reading(1480.0f, 2, 77.5));
    EXPECT_EQ(p.m_stat.GetCount(), 1u);
}

TEST(SpdSnd, LiveAverageIsTakenAtOnceWithinBothEndsAndRefusedOutside)
{
    CSpdSnd p;
    // The first reading is the average of one value.
    Send(Reading(1480.0f, 0, 10.0));
    EXPECT_EQ(p.m_xdSos, 1480.0);
    EXPECT_EQ(p.m_avgSos, 1480.0);
    EXPECT_EQ(p.m_sosTime, 10.0);
    EXPECT_EQ(CZDriver::Find(p, u"Xd SOS")->m_strText, u"1480");  // refreshed
    EXPECT_EQ(p.GetXd(35.0), 1480.0);
    EXPECT_EQ(p.GetAvg(), 1480.0);

    // An average of 1349.9 is refused: speeds stay, the time says stale, and
    // the controls are not refreshed.
    CSpdSnd q;
    q.SetSOS(1500.0, 5.0);
    q.m_xdSos = 1456.0;  // what a refresh would show
    Send(Reading(1349.9f, 0, 11.0));
    EXPECT_EQ(q.m_xdSos, 1456.0);
    EXPECT_EQ(q.m_avgSos, 1500.0);
    EXPECT_EQ(q.m_sosTime, 0.0);
    EXPECT_EQ(CZDriver::Find(q, u"Xd SOS")->m_strText, u"1500");

    // Exactly 1350.0 and 1600.0 are accepted: 1300 and 1400 average 1350.
    CSpdSnd r;
    Send(Reading(1300.0f, 0, 12.0));
    EXPECT_EQ(r.m_sosTime, 0.0);
    Send(Reading(1400.0f, 0, 13.0));
    EXPECT_EQ(r.m_xdSos, 1350.0);
    EXPECT_EQ(r.m_sosTime, 13.0);
    CSpdSnd s;
    Send(Reading(1600.0f, 0, 14.0));
    EXPECT_EQ(s.m_xdSos, 1600.0);
    Send(Reading(1600.5f, 0, 15.0));  // average 1600.25
    EXPECT_EQ(s.m_xdSos, 1600.0);
    EXPECT_EQ(s.m_sosTime, 0.0);
}

TEST(SpdSnd, AverageRunsOverTheLast25Readings)
{
    CSpdSnd p;
    for (int i = 0; i < 25; ++i) Send(Reading(1400.0f));
    EXPECT_EQ(p.m_xdSos, 1400.0);
    for (int i = 0; i < 5; ++i) Send(Reading(1525.0f));
    EXPECT_EQ(p.m_stat.GetCount(), 25u);
    EXPECT_DOUBLE_EQ(p.m_xdSos, (20 * 1400.0 + 5 * 1525.0) / 25.0);
}

TEST(SpdSnd, ManualModeTakesTheManualSpeedYetKeepsFillingTheStatistics)
{
    CSpdSnd p;
    CZCtrl* manual = CZDriver::Find(p, u"Use Manual SOS");
    ASSERT_TRUE(CZDriver::Click(manual));  // CtrlChanged through the callback
    EXPECT_EQ(p.m_useManual, 1);
    EXPECT_EQ(p.m_xdSos, 1499.2);
    EXPECT_EQ(p.m_avgSos, 1499.2);
    EXPECT_EQ(CZDriver::Find(p, u"Xd SOS")->m_strText, u"1499.2");

    Send(Reading(1480.0f, 0, 20.0));
    Send(Reading(1482.0f, 0, 21.0));
    EXPECT_EQ(p.m_stat.GetCount(), 2u);
    EXPECT_EQ(p.m_xdSos, 1499.2);
    EXPECT_EQ(p.m_sosTime, 0.0);
    p.SetSOS(1450.0, 22.0);  // the host's value is ignored too
    EXPECT_EQ(p.m_xdSos, 1499.2);
    EXPECT_EQ(p.m_sosTime, 0.0);

    // Leaving the manual mode takes up the average gathered meanwhile.
    ASSERT_TRUE(CZDriver::Click(manual));
    EXPECT_EQ(p.m_useManual, 0);
    EXPECT_EQ(p.m_xdSos, 1481.0);
    EXPECT_EQ(p.m_avgSos, 1481.0);
}

TEST(SpdSnd, FrozenModeIgnoresReadingsButTakesTheHostsValue)
{
    CSpdSnd p;
    ASSERT_TRUE(CZDriver::Click(CZDriver::Find(p, u"Live Update")));
    EXPECT_EQ(p.m_live, 0);
    Send(Reading(1480.0f, 0, 30.0));
    EXPECT_EQ(p.m_stat.GetCount(), 1u);
    EXPECT_EQ(p.m_xdSos, 1500.0);
    p.SetSOS(1470.0, 31.0);
    EXPECT_EQ(p.m_xdSos, 1470.0);
    EXPECT_EQ(p.m_avgSos, 1470.0);
    EXPECT_EQ(p.m_sosTime, 31.0);
    EXPECT_EQ(CZDriver::Find(p, u"Xd SOS")->m_strText, u"1500");  // SetSOS refreshes nothing
    p.SetSOS(1700.0, 32.0);
    EXPECT_EQ(p.m_xdSos, 1470.0);
    EXPECT_EQ(p.m_sosTime, 0.0);
    // With neither switch the manual speed is what CtrlChanged takes.
    p.CtrlChanged();
    EXPECT_EQ(p.m_xdSos, 1499.2);
    EXPECT_EQ(p.m_avgSos, 1499.2);
}

TEST(SpdSnd, CtrlChangedWithAnAverageOutOfRangeKeepsTheSpeedsButRefreshes)
{
    CSpdSnd p;
    p.m_stat.SetValue(1200.0);
    p.m_xdSos = 1455.0;
    p.m_avgSos = 1456.0;
    p.CtrlChanged();
    EXPECT_EQ(p.m_xdSos, 1455.0);
    EXPECT_EQ(p.m_avgSos, 1456.0);
    EXPECT_EQ(CZDriver::Find(p, u"Xd SOS")->m_strText, u"1455");
    EXPECT_EQ(CZDriver::Find(p, u"Avg SOS")->m_strText, u"1456");
}

TEST(SpdSnd, SetMinMaxNarrowsWhatIsAcceptedButNotTheFields)
{
    CSpdSnd p;
    p.SetMinMax(1400.0, 1500.0);
    double lo = 0, hi = 0;
    p.GetMinMax(lo, hi);
    EXPECT_EQ(lo, 1400.0);
    EXPECT_EQ(hi, 1500.0);

    Send(Reading(1380.0f, 0, 40.0));
    EXPECT_EQ(p.m_xdSos, 1500.0);
    EXPECT_EQ(p.m_sosTime, 0.0);
    p.SetSOS(1500.0, 41.0);
    EXPECT_EQ(p.m_sosTime, 41.0);
    p.SetSOS(1500.5, 42.0);
    EXPECT_EQ(p.m_xdSos, 1500.0);
    EXPECT_EQ(p.m_sosTime, 0.0);
    p.SetSOS(1400.0, 43.0);
    EXPECT_EQ(p.m_xdSos, 1400.0);

    EXPECT_TRUE(CZDriver::Type(CZDriver::Find(p, u"Man SOS"), u"1360"));
    EXPECT_EQ(p.m_manSos, 1360.0);
}

TEST(SpdSnd, AssignmentCopiesValuesAndStatisticsButNotListPlaces)
{
    CSpdSnd a, b;
    a.m_strName = u"Fwd";
    a.m_xdSos = 1490.0;
    a.m_avgSos = 1491.0;
    a.m_useManual = 1;
    a.m_manSos = 1492.0;
    a.m_live = 0;
    a.m_bank = 5;
    a.m_sosTime = 9.0;
    a.SetMinMax(1410.0, 1590.0);
    a.m_stat.SetValue(1440.0);
    a.m_stat.SetValue(1460.0);
    const int count = CSpdSnd::s_spdSnd.GetCount();
    b = a;
    EXPECT_EQ(b.m_strName, u"Fwd");
    EXPECT_EQ(b.m_xdSos, 1490.0);
    EXPECT_EQ(b.m_avgSos, 1491.0);
    EXPECT_EQ(b.m_useManual, 1);
    EXPECT_EQ(b.m_manSos, 1492.0);
    EXPECT_EQ(b.m_live, 0);
    EXPECT_EQ(b.m_bank, 5);
    EXPECT_EQ(b.m_sosTime, 9.0);
    EXPECT_EQ(b.m_minSos, 1410.0);
    EXPECT_EQ(b.m_maxSos, 1590.0);
    EXPECT_EQ(b.m_stat.GetCount(), 2u);
    EXPECT_EQ(b.m_stat.GetAvg(), 1450.0);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetCount(), count);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetIndex(&b), CSpdSnd::s_spdSnd.GetIndex(&a) + 1);
}

TEST(SpdSnd, GetSpdSndFindsTheFirstPanelOfThatExactName)
{
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"Fwd"), nullptr);  // empty list
    CSpdSnd a, b, c;
    a.m_strName = u"Fwd";
    b.m_strName = u"Aft";
    c.m_strName = u"Fwd";
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"Fwd"), &a);
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"Aft"), &b);
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"fwd"), nullptr);
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"Fwd "), nullptr);
    EXPECT_EQ(CSpdSnd::GetSpdSnd(u"Stern"), nullptr);
}

TEST(SpdSnd, SettingsKeysTypesAndOrder)
{
    CSpdSnd p;
    p.m_useManual = 1;
    p.m_manSos = 1488.5;
    p.m_bank = 4;
    CZSetObj obj(u"Fwd", u"No Data");
    p.Settings(obj);
    ASSERT_EQ(obj.m_items.size(), 6u);
    const char16_t* keys[] = {u"SosXd", u"SosAvg", u"SosManual", u"SosUseManual", u"SosLive", u"SosBank"};
    const CZSetObj::Type types[] = {CZSetObj::F64, CZSetObj::F64, CZSetObj::I32,
                                    CZSetObj::F64, CZSetObj::I32, CZSetObj::I32};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(obj.m_items[i].m_key, keys[i]);
        EXPECT_EQ(obj.m_items[i].m_type, types[i]) << i;
    }
    // The switch under "SosManual", the speed under "SosUseManual".
    EXPECT_EQ(obj.FindItem(u"SosManual")->m_n, 1);
    EXPECT_EQ(obj.FindItem(u"SosUseManual")->m_d, 1488.5);
    EXPECT_EQ(obj.FindItem(u"SosBank")->m_n, 4);
}

TEST(SpdSnd, SaveSetAndLoadSetThroughASettingsFile)
{
    envtest::CScratch dir;
    const std::string file = dir.Path("sos.json");
    {
        CSpdSnd fwd, aft;
        fwd.m_strName = u"Fwd";
        fwd.m_xdSos = 1490.0;
        fwd.m_avgSos = 1490.5;
        fwd.m_useManual = 1;
        fwd.m_manSos = 1495.25;
        aft.m_strName = u"Aft";
        aft.m_live = 0;
        aft.m_bank = 6;
        CZSet set;
        set.AddCol(u"Other")->AddObj(u"x", u"");
        CSpdSnd::SaveSet(set);
        CSpdSnd::SaveSet(set);  // saving again replaces the collection
        ASSERT_EQ(set.GetCol(u"SpdSnd")->GetCount(), 2);
        EXPECT_EQ(set.GetCol(u"SpdSnd")->GetHead()->m_strName, u"Fwd");
        EXPECT_EQ(set.GetCol(u"SpdSnd")->GetHead()->m_strText, u"No Data");
        // A panel that no longer exists when loading.
        CSpdSnd stern;
        stern.m_strName = u"Stern";
        stern.m_manSos = 1501.0;
        CSpdSnd::SaveSet(set);
        ASSERT_TRUE(set.Save(W(file)));
    }
    ASSERT_EQ(CSpdSnd::s_spdSnd.GetCount(), 0);

    CZSet set;
    ASSERT_TRUE(set.Load(W(file)));
    CSpdSnd fwd, aft;
    fwd.m_strName = u"Fwd";
    aft.m_strName = u"Aft";
    CSpdSnd::LoadSet(set, 0);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetCount(), 2);  // "Stern" skipped
    EXPECT_EQ(fwd.m_xdSos, 1490.0);
    EXPECT_EQ(fwd.m_avgSos, 1490.5);
    EXPECT_EQ(fwd.m_useManual, 1);
    EXPECT_EQ(fwd.m_manSos, 1495.25);
    EXPECT_EQ(fwd.m_live, 1);
    EXPECT_EQ(aft.m_live, 0);
    EXPECT_EQ(aft.m_bank, 6);
    EXPECT_EQ(aft.m_manSos, 1499.2);

    // With create, the missing panel comes as a plain CSpdSnd of that name.
    CSpdSnd::LoadSet(set, 1);
    ASSERT_EQ(CSpdSnd::s_spdSnd.GetCount(), 3);
    std::unique_ptr<CSpdSnd> stern(CSpdSnd::GetSpdSnd(u"Stern"));
    ASSERT_NE(stern, nullptr);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetTail(), stern.get());
    EXPECT_EQ(dynamic_cast<CSpdSndPfl*>(stern.get()), nullptr);
    EXPECT_EQ(stern->GetRuntimeClass(), CSpdSnd::GetThisClass());
    EXPECT_EQ(stern->m_manSos, 1501.0);
    EXPECT_EQ(CZanWnd::s_snsrRx.Find(stern.get(), nullptr) != nullptr, true);

    // Without the collection, or with an empty one, nothing happens.
    CZSet none;
    CSpdSnd::LoadSet(none, 1);
    none.AddCol(u"SpdSnd");
    CSpdSnd::LoadSet(none, 1);
    EXPECT_EQ(CSpdSnd::s_spdSnd.GetCount(), 3);
}

TEST(SpdSnd, PanelPaintsToAPicture)
{
    CSpdSnd p;
    p.m_strName = u"Fwd";
    Send(Reading(1487.5f, 0, 1.0));
    envtest::Picture(p, "SpdSnd");
}
