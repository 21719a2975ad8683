// The tide selection box: its list of the tables alive, and the pick that
// writes the bound pointer.
#include "EnvTestUtil.h"

#include <memory>

namespace {

std::vector<std::string> Texts(const CZList& list)
{
    std::vector<std::string> out;
    for (unsigned int i = 0; i < list.m_nSize; ++i) out.push_back(list.m_ppItems[i]->m_strText.Utf8());
    return out;
}

// A host panel holding one tide selection.
class CHostPanel : public CZanWnd {
public:
    CTideObj* m_pTide = nullptr;
    CTideCb* m_pCb = nullptr;
    CHostPanel()
    {
        InsText(60, u"Tide", 0, nullptr);
        m_pCb = static_cast<CTideCb*>(InsCtrl(120, new CTideCb(m_pTide), nullptr));
        NewLn();
    }
};

}  // namespace

TEST(TideCb, WithNoTableOnlySelectHereIsOffered)
{
    ASSERT_TRUE(CTideObj::s_tides.IsEmpty());
    CTideCb cb;
    CZList list;
    EXPECT_EQ(cb.FillCombo(list, nullptr), nullptr);
    EXPECT_EQ(Texts(list), std::vector<std::string>{"<Select Here>"});
    EXPECT_EQ(list.m_ppItems[0]->m_pData, nullptr);

    CHostPanel host;
    host.UpdateCtrls();
    EXPECT_EQ(host.m_pCb->GetCount(), 1);
    EXPECT_EQ(host.m_pCb->m_strText, u"<Select Here>");
}

TEST(TideCb, EveryTableGetsAnEntryAndTheCurrentOneIsReturned)
{
    CTideObj a, b;  // both "Default"
    CTideObj c;
    c.m_strName = u"Dover";
    CTideCb cb;
    CZList list;
    EXPECT_EQ(cb.FillCombo(list, nullptr), nullptr);
    EXPECT_EQ(Texts(list), (std::vector<std::string>{"<Select Here>", "Default", "Default", "Dover"}));
    EXPECT_EQ(list.m_ppItems[1]->m_pData, static_cast<void*>(&a));
    EXPECT_EQ(list.m_ppItems[2]->m_pData, static_cast<void*>(&b));
    EXPECT_EQ(list.m_ppItems[3]->m_pData, static_cast<void*>(&c));

    CZList again;
    CZLEnt* cur = cb.FillCombo(again, &b);
    EXPECT_EQ(cur, again.m_ppItems[2]);
    int stranger = 0;
    CZList third;
    EXPECT_EQ(cb.FillCombo(third, &stranger), nullptr);
    // The callback appends: the list is the caller's to empty.
    cur = cb.FillCombo(third, &c);
    EXPECT_EQ(cur, third.m_ppItems[7]);
    EXPECT_EQ(third.m_nSize, 8u);
}

TEST(TideCb, PickingWritesTheBoundPointerAndTheListFollowsTheTables)
{
    auto dover = std::make_unique<CTideObj>();
    dover->m_strName = u"Dover";
    CTideObj calais;
    calais.m_strName = u"Calais";

    CHostPanel host;
    // InitTide filled the list for the present value at once.
    EXPECT_EQ(host.m_pCb->GetCount(), 3);
    EXPECT_EQ(host.m_pCb->m_pListTarget, host.m_pCb);

    ASSERT_TRUE(CZDriver::Pick(host.m_pCb, u"Calais"));
    EXPECT_EQ(host.m_pTide, &calais);
    EXPECT_EQ(host.m_pCb->m_strText, u"Calais");
    ASSERT_TRUE(CZDriver::Pick(host.m_pCb, u"<Select Here>"));
    EXPECT_EQ(host.m_pTide, nullptr);
    ASSERT_TRUE(CZDriver::Pick(host.m_pCb, 1));
    EXPECT_EQ(host.m_pTide, dover.get());

    // The host points it elsewhere; the box shows that table.
    host.m_pTide = &calais;
    host.UpdateCtrls();
    EXPECT_EQ(host.m_pCb->m_strText, u"Calais");

    // A table that goes leaves the list at the next rebuild.
    host.m_pTide = nullptr;
    dover.reset();
    host.UpdateCtrls();
    EXPECT_EQ(host.m_pCb->GetCount(), 2);
    EXPECT_FALSE(CZDriver::Pick(host.m_pCb, u"Dover"));

    // A box made unbound and bound later behaves the same.
    CTideObj* other = &calais;
    CTideCb late;
    late.InitTide(other);
    EXPECT_EQ(late.GetCount(), 2);
    ASSERT_TRUE(CZDriver::Pick(&late, 0));
    EXPECT_EQ(other, nullptr);
}

TEST(TideCb, BoxPaintsToAPicture)
{
    CTideObj dover;
    dover.m_strName = u"Dover";
    CHostPanel host;
    host.m_pTide = &dover;
    host.UpdateCtrls();
    envtest::Picture(host, "TideCb");
}
