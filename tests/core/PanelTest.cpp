// The panel framework: run-time classes, the flow layout, controls bound to
// host variables, the user driver and the panels' message lists.
#include "core/platform/CZDriver.h"
#include "core/platform/CZanWnd.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

// A panel as the library's panels are written: run-time class record,
// controls bound to its own fields, handlers, message overrides.
class CTestPanel : public CZanWnd {
public:
    static CRuntimeClass classCTestPanel;
    static CRuntimeClass* GetThisClass() { return &classCTestPanel; }
    static CObject* CreateObject() { return new CTestPanel; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCTestPanel; }

    double m_sos = 1500.0;
    double m_shift = 3600.0;
    int m_bUse = 0;
    int m_bank = 3;
    CString m_file = u"tide.csv";
    void* m_pSel = nullptr;
    int m_nChanged = 0, m_nClicked = 0, m_nFills = 0;
    std::vector<int> m_snsr, m_info, m_data;
    CZanWnd* m_pVictim = nullptr;  // destroyed by the next sensor message, if set

    CTestPanel()
    {
        m_strName = u"Test";
        s_snsrRx.AddTail(this);
        s_infoRx.AddTail(this);
    }
    void Changed() { ++m_nChanged; }
    void Clicked() { ++m_nClicked; }
    CZLEnt* Fill(CZList& list, void* current)
    {
        ++m_nFills;
        auto* none = new CZLEnt(u"<Select Here>");
        list.Append(none);
        CZLEnt* found = nullptr;
        for (int i = 0; i < 3; ++i) {
            auto* e = new CZLEnt(CString::Fmt(u"Item %d", i));
            e->m_pData = &s_items[i];
            list.Append(e);
            if (e->m_pData == current) found = e;
        }
        return found;
    }
    void OnSnsrMsg(int id, void*) override
    {
        m_snsr.push_back(id);
        if (m_pVictim) delete std::exchange(m_pVictim, nullptr);
    }
    void OnInfoMsg(int id, void*) override { m_info.push_back(id); }
    void OnDataMsg(int id, void*) override { m_data.push_back(id); }

    static int s_items[3];
};
int CTestPanel::s_items[3];
CRuntimeClass CTestPanel::classCTestPanel = CRuntimeClass::Of<CTestPanel, CZanWnd>("CTestPanel");

ZanHandler H(void (CTestPanel::*f)()) { return static_cast<ZanHandler>(f); }
ZanListFill F(CZLEnt* (CTestPanel::*f)(CZList&, void*)) { return static_cast<ZanListFill>(f); }

} // namespace

TEST(RuntimeClass, CreatesPanelsByNameAndKnowsTheirAncestry)
{
    CRuntimeClass* rc = CRuntimeClass::FromName("CTestPanel");
    ASSERT_EQ(rc, CTestPanel::GetThisClass());
    EXPECT_EQ(rc->m_pBaseClass, CZanWnd::GetThisClass());
    EXPECT_EQ(rc->m_nObjectSize, static_cast<int>(sizeof(CTestPanel)));

    std::unique_ptr<CObject> obj(CRuntimeClass::CreateObject(CString(u"CTestPanel")));
    ASSERT_NE(obj, nullptr);
    EXPECT_EQ(obj->GetRuntimeClass(), rc);
    EXPECT_TRUE(obj->IsKindOf(CZanWnd::GetThisClass()));
    EXPECT_TRUE(obj->IsKindOf(CWnd::GetThisClass()));
    EXPECT_TRUE(obj->IsKindOf(CObject::GetThisClass()));
    EXPECT_FALSE(obj->IsKindOf(CZCtrl::GetThisClass()));
    EXPECT_EQ(dynamic_cast<CTestPanel*>(obj.get())->m_strName, u"Test");

    EXPECT_EQ(CRuntimeClass::FromName("CNoSuchPanel"), nullptr);
    EXPECT_EQ(CRuntimeClass::CreateObject(CString(u"CNoSuchPanel")), nullptr);
    // CObject itself can't be created by name.
    EXPECT_EQ(CRuntimeClass::CreateObject(CString(u"CObject")), nullptr);
    std::unique_ptr<CObject> base(CRuntimeClass::CreateObject(CString(u"CZanWnd")));
    EXPECT_EQ(base->GetRuntimeClass(), CZanWnd::GetThisClass());
}

TEST(CtrlCat, FlowLayoutPlacesControlsWhereTheCallsMoveThePosition)
{
    CZanWnd p;
    double a = 0, b = 0, c = 0;
    int chk = 0, idx = 0;
    p.ShiftY(5, 5);
    CZCtrl* t1 = p.InsText(60, u"Xd SOS");
    CZCtrl* f1 = p.InsCtrl(50, 64, a);
    p.ShiftX(5);
    CZCtrl* t2 = p.InsText(60, u"Avg SOS");
    CZCtrl* f2 = p.InsCtrl(50, 64, b);
    p.ShiftY(18, 5);
    CZCtrl* k1 = p.InsCtrl(112, 256, chk);
    p.ShiftX(5);
    p.InsText(60, u"Man SOS");
    CZCtrl* f3 = p.InsCtrl(50, 64, c);
    p.NewLn();
    CZCtrl* t4 = p.InsText(60, u"Bank");
    CZCtrl* cb = p.InsCtrl(50, 512, idx);
    p.NewLn();
    p.NewLn();
    CZCtrl* t5 = p.InsText(30, u"End", 2);

    EXPECT_EQ(t1->m_rcLay, CRect(5, 5, 65, 21));
    EXPECT_EQ(f1->m_rcLay, CRect(65, 5, 115, 21));
    EXPECT_EQ(t2->m_rcLay, CRect(120, 5, 180, 21));
    EXPECT_EQ(f2->m_rcLay, CRect(180, 5, 230, 21));
    EXPECT_EQ(k1->m_rcLay, CRect(5, 23, 117, 39));
    EXPECT_EQ(f3->m_rcLay, CRect(182, 23, 232, 39));
    EXPECT_EQ(t4->m_rcLay, CRect(5, 41, 65, 57));  // NewLn returns to the column of ShiftY
    EXPECT_EQ(cb->m_rcLay, CRect(65, 41, 115, 57));
    EXPECT_EQ(t5->m_rcLay, CRect(5, 77, 35, 93));
    EXPECT_EQ(t5->m_nAlign, 2);
    EXPECT_EQ(p.GetCtrlExtent(), CSize(232, 93));

    // Kinds and classes by the kind word and the variable's type.
    EXPECT_EQ(t1->m_nKind, CZCtrl::kStatic);
    EXPECT_EQ(f1->m_nKind, CZCtrl::kNumber);
    EXPECT_EQ(k1->m_nKind, CZCtrl::kCheck);
    EXPECT_NE(dynamic_cast<CZCombo*>(cb), nullptr);
    EXPECT_EQ(p.GetCtrlCount(), 10);
    EXPECT_EQ(p.GetCtrl(1), f1);
    EXPECT_EQ(p.GetCtrl(10), nullptr);
    EXPECT_EQ(CZDriver::Find(p, u"Man SOS"), f3);

    // A window made later gets every control placed at the layout's origin.
    ASSERT_TRUE(p.Create(CRect(100, 100, 400, 200)));
    EXPECT_NE(f1->GetSafeHwnd(), nullptr);
    EXPECT_EQ(f1->m_pParent, &p);
    p.LayoutCtrls(CRect(10, 20, 300, 100));
    EXPECT_EQ(f1->m_rect, CRect(75, 25, 125, 41));
    CZCtrl* late = p.InsText(10, u"late");
    EXPECT_EQ(late->m_rect, CRect(45, 97, 55, 113));
    EXPECT_NE(late->GetSafeHwnd(), nullptr);

    p.ClearCtrls();
    EXPECT_EQ(p.GetCtrlCount(), 0);
    EXPECT_EQ(p.InsText(10, u"x")->m_rcLay, CRect(0, 0, 10, 16));
}

TEST(CtrlBinding, NumberFieldRoundTripsRefusesOutOfRangeAndCallsBackOncePerChange)
{
    CTestPanel p;
    CZCtrl* f = p.InsCtrl(50, 64, p.m_sos);
    f->SetRange(1350.0, 1600.0);
    f->SetCallback(&p, H(&CTestPanel::Changed));
    EXPECT_EQ(f->m_strText, u"1500");  // shown as soon as bound

    EXPECT_TRUE(CZDriver::Type(f, u"1480.5"));
    EXPECT_EQ(p.m_sos, 1480.5);
    EXPECT_EQ(p.m_nChanged, 1);
    EXPECT_TRUE(CZDriver::Type(f, u" 1480.5 "));  // the same value: no change, no call
    EXPECT_EQ(p.m_nChanged, 1);

    EXPECT_FALSE(CZDriver::Type(f, u"1349.99"));
    EXPECT_FALSE(CZDriver::Type(f, u"1600.01"));
    EXPECT_FALSE(CZDriver::Type(f, u"15OO"));
    EXPECT_FALSE(CZDriver::Type(f, u""));
    EXPECT_EQ(p.m_sos, 1480.5);
    EXPECT_EQ(f->m_strText, u"1480.5");  // the field shows the variable again
    EXPECT_EQ(p.m_nChanged, 1);

    EXPECT_TRUE(CZDriver::Type(f, u"1350"));  // both ends are allowed
    EXPECT_TRUE(CZDriver::Type(f, u"1600"));
    EXPECT_EQ(p.m_sos, 1600.0);
    EXPECT_EQ(p.m_nChanged, 3);

    // The host changes the variable; UpdateCtrls shows it and calls nobody.
    p.m_sos = 1234.5678912345;
    p.UpdateCtrls();
    EXPECT_EQ(f->m_strText, u"1234.57");
    // Taking back a field the user didn't touch keeps every digit.
    p.RetreiveCtrls();
    EXPECT_EQ(p.m_sos, 1234.5678912345);
    EXPECT_EQ(p.m_nChanged, 3);
}

TEST(CtrlBinding, DisplayScaleShowsOneUnitAndStoresAnother)
{
    CTestPanel p;
    CZCtrl* f = p.InsCtrl(50, 64, p.m_shift);
    f->m_scale = 0.016666666666666666;  // seconds shown as minutes
    p.UpdateCtrls();
    EXPECT_EQ(f->m_strText, u"60");
    EXPECT_TRUE(CZDriver::Type(f, u"1.5"));
    EXPECT_DOUBLE_EQ(p.m_shift, 90.0);
    EXPECT_EQ(f->m_strText, u"1.5");
    // The range is in shown units.
    f->SetRange(-10.0, 10.0);
    EXPECT_FALSE(CZDriver::Type(f, u"11"));
    EXPECT_TRUE(CZDriver::Type(f, u"-10"));
    EXPECT_DOUBLE_EQ(p.m_shift, -600.0);
}

TEST(CtrlBinding, TextCheckComboAndButtonControls)
{
    CTestPanel p;
    CZCtrl* file = p.InsCtrl(152, 32, p.m_file);
    file->SetCallback(&p, H(&CTestPanel::Changed));
    EXPECT_EQ(file->m_strText, u"tide.csv");
    EXPECT_TRUE(CZDriver::Type(file, u"other.tid"));
    EXPECT_EQ(p.m_file, u"other.tid");
    EXPECT_EQ(p.m_nChanged, 1);

    CZCtrl* chk = p.InsCtrl(112, 256, p.m_bUse);
    chk->m_strLabel = u"Use Manual SOS";
    chk->SetCallback(&p, H(&CTestPanel::Changed));
    EXPECT_EQ(CZDriver::Find(p, u"Use Manual SOS"), chk);
    EXPECT_TRUE(CZDriver::Click(chk));
    EXPECT_EQ(p.m_bUse, 1);
    EXPECT_TRUE(CZDriver::Click(chk));
    EXPECT_EQ(p.m_bUse, 0);
    EXPECT_EQ(p.m_nChanged, 3);
    p.m_bUse = 7;
    p.UpdateCtrls();
    EXPECT_EQ(chk->m_nCheck, 1);

    auto* bank = dynamic_cast<CZCombo*>(p.InsCtrl(50, 512, p.m_bank));
    ASSERT_NE(bank, nullptr);
    bank->LoadIndex(8);
    bank->SetCallback(&p, H(&CTestPanel::Changed));
    p.UpdateCtrls();
    EXPECT_EQ(bank->GetCount(), 8);
    EXPECT_EQ(bank->GetCurSel(), 3);
    EXPECT_EQ(bank->m_strText, u"3");
    EXPECT_TRUE(CZDriver::Pick(bank, 5));
    EXPECT_EQ(p.m_bank, 5);
    EXPECT_TRUE(CZDriver::Pick(bank, u"5"));
    EXPECT_EQ(p.m_nChanged, 4);
    EXPECT_FALSE(CZDriver::Pick(bank, 8));
    EXPECT_FALSE(CZDriver::Pick(chk, 0));
    EXPECT_EQ(p.m_bank, 5);

    CZBtn* btn = p.InsBtn(16, u"...", 0, &p, H(&CTestPanel::Clicked));
    EXPECT_TRUE(CZDriver::Click(btn));
    EXPECT_TRUE(CZDriver::Click(CZDriver::Find(p, u"...")));
    EXPECT_EQ(p.m_nClicked, 2);
}

TEST(CtrlBinding, ObjectComboIsBuiltByItsCallbackAndWritesThePointer)
{
    CTestPanel p;
    auto* cb = dynamic_cast<CZCombo*>(p.InsCtrl(150, 512, &p.m_pSel));
    ASSERT_NE(cb, nullptr);
    cb->SetListCallback(&p, F(&CTestPanel::Fill));
    cb->SetCallback(&p, H(&CTestPanel::Changed));
    p.UpdateCtrls();
    EXPECT_EQ(p.m_nFills, 1);
    EXPECT_EQ(cb->GetCount(), 4);  // emptied before the callback, not appended to
    // No selection: the callback returns null and the null entry is shown.
    EXPECT_EQ(cb->m_strText, u"<Select Here>");

    EXPECT_TRUE(CZDriver::Pick(cb, u"Item 1"));
    EXPECT_EQ(p.m_pSel, &CTestPanel::s_items[1]);
    EXPECT_EQ(p.m_nChanged, 1);
    p.UpdateCtrls();
    EXPECT_EQ(cb->GetCount(), 4);
    EXPECT_EQ(cb->m_strText, u"Item 1");
    EXPECT_TRUE(CZDriver::Pick(cb, 0));
    EXPECT_EQ(p.m_pSel, nullptr);
    EXPECT_EQ(p.m_nChanged, 2);
    EXPECT_FALSE(CZDriver::Pick(cb, u"Item 9"));
    // A pointer the list doesn't hold shows nothing.
    int stranger = 0;
    p.m_pSel = &stranger;
    p.UpdateCtrls();
    EXPECT_EQ(cb->GetCurSel(), -1);
    EXPECT_EQ(cb->m_strText, u"");

    // AddString returns indexes in order; without a callback the entry is
    // found by its data.
    void* q = nullptr;
    auto* plain = dynamic_cast<CZCombo*>(p.InsCtrl(50, 512, &q));
    EXPECT_EQ(plain->AddString(u"a", &CTestPanel::s_items[0]), 0);
    EXPECT_EQ(plain->AddString(u"b", &CTestPanel::s_items[2]), 1);
    q = &CTestPanel::s_items[2];
    plain->Update(0);
    EXPECT_EQ(plain->m_strText, u"b");
}

TEST(ZanWnd, MessagesReachTheirListsAndADestroyedPanelGetsNoMore)
{
    const int before = CZanWnd::s_wnds.GetCount();
    auto* a = new CTestPanel;
    auto* b = new CTestPanel;
    auto* quiet = new CZanWnd;  // in no receiver list
    EXPECT_EQ(CZanWnd::s_wnds.GetCount(), before + 3);

    CZanWnd::SnsrMsg(1, nullptr);
    CZanWnd::InfoMsg(101, nullptr);
    CZanWnd::DataMsg(12001, nullptr);
    EXPECT_EQ(a->m_snsr, std::vector<int>{1});
    EXPECT_EQ(b->m_info, std::vector<int>{101});
    EXPECT_EQ(b->m_data, std::vector<int>{12001});

    // a destroys b while the message goes round: b must not be called.
    a->m_pVictim = b;
    CZanWnd::SnsrMsg(2, nullptr);
    EXPECT_EQ(a->m_snsr, (std::vector<int>{1, 2}));
    EXPECT_EQ(CZanWnd::s_snsrRx.Find(b, nullptr), nullptr);
    EXPECT_EQ(CZanWnd::s_infoRx.Find(b, nullptr), nullptr);
    EXPECT_EQ(CZanWnd::s_wnds.Find(b, nullptr), nullptr);

    // A panel that joined a list twice leaves both places.
    const int listening = CZanWnd::s_snsrRx.GetCount();
    CZanWnd::s_snsrRx.AddTail(a);
    delete a;
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), listening - 1);
    CZanWnd::SnsrMsg(3, nullptr);
    CZanWnd::InfoMsg(4, nullptr);
    CZanWnd::DataMsg(5, nullptr);
    delete quiet;
    EXPECT_EQ(CZanWnd::s_wnds.GetCount(), before);
}

TEST(ZanWnd, AssignmentCopiesNamesButNotListsOrControls)
{
    CTestPanel a, b;
    a.m_strTitle = u"Title";
    a.m_nFlag = 1;
    a.InsText(10, u"x");
    b.m_strName = u"Other";
    b = a;
    EXPECT_EQ(b.m_strName, u"Test");
    EXPECT_EQ(b.m_strTitle, u"Title");
    EXPECT_EQ(b.m_nFlag, 1);
    EXPECT_EQ(b.GetCtrlCount(), 0);
    EXPECT_EQ(CZanWnd::s_snsrRx.GetCount(), 2);
}

TEST(Wnd, PaintCycleVisibilityAndContexts)
{
    CZanWnd p;
    EXPECT_EQ(p.GetDC(), nullptr);
    EXPECT_FALSE(p.IsWindowVisible());
    ASSERT_TRUE(p.Create(CRect(0, 0, 120, 40)));
    EXPECT_FALSE(p.Create(CRect(0, 0, 10, 10)));
    EXPECT_TRUE(p.IsWindowVisible());
    EXPECT_TRUE(p.GetUpdateRect(nullptr));
    p.UpdateWindow();
    EXPECT_EQ(p.m_nPaints, 1);
    CRect upd(1, 1, 1, 1);
    EXPECT_FALSE(p.GetUpdateRect(&upd));
    EXPECT_TRUE(upd.IsRectEmpty());
    p.UpdateWindow();  // nothing marked: no paint
    EXPECT_EQ(p.m_nPaints, 1);

    p.ShowWindow(SW_HIDE);
    p.Invalidate();
    p.UpdateWindow();  // hidden: stays marked
    EXPECT_EQ(p.m_nPaints, 1);
    p.ShowWindow(SW_SHOW);
    p.UpdateWindow();
    EXPECT_EQ(p.m_nPaints, 2);

    // A control's context paints at the control's place, clipped to it.
    double v = 1.0;
    CZCtrl* f = p.InsCtrl(20, 64, v);
    CDC* dc = f->GetDC();
    ASSERT_NE(dc, nullptr);
    dc->FillSolidRect(CRect(-5, -5, 100, 100), RGB(255, 0, 0));
    EXPECT_TRUE(f->ReleaseDC(dc));
    EXPECT_FALSE(f->ReleaseDC(dc));
    std::vector<CRgb> px(120 * 40);
    ASSERT_TRUE(p.GetRGBA(px.data()));
    EXPECT_EQ(px[5 * 120 + 5], CRgb(255, 0, 0, 255));
    EXPECT_EQ(px[15 * 120 + 19], CRgb(255, 0, 0, 255));
    EXPECT_NE(px[16 * 120 + 5], CRgb(255, 0, 0, 255));
    EXPECT_NE(px[5 * 120 + 20], CRgb(255, 0, 0, 255));

    EXPECT_TRUE(p.DestroyWindow());
    EXPECT_EQ(p.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(p.GetRGBA(px.data()));
}
