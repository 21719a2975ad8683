#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// An element that counts its live instances, so leaks and double deletes
// show as a wrong count.
struct Item {
    static inline int s_live = 0;
    int v = 0;
    Item() { ++s_live; }
    explicit Item(int x) : v(x) { ++s_live; }
    Item(const Item& o) : v(o.v) { ++s_live; }
    Item& operator=(const Item&) = default;
    ~Item() { --s_live; }
};

template <class L>
std::vector<int> Values(const L& l)
{
    std::vector<int> out;
    for (CZanPtr* p = l.GetHeadPos(); p;) out.push_back(l.GetNext(p)->v);
    return out;
}

// Links agree in both directions and end at head and tail.
void CheckLinks(const CZanList& l)
{
    const CZanPtr* prev = nullptr;
    for (const CZanPtr* p = l.m_pHead; p; p = p->m_pNext) {
        ASSERT_EQ(p->m_pPrev, prev);
        prev = p;
    }
    ASSERT_EQ(l.m_pTail, prev);
}

class Mgd : public ::testing::Test {
protected:
    void SetUp() override { Item::s_live = 0; }
    void TearDown() override
    {
        list.RemoveAll();
        EXPECT_EQ(Item::s_live, 0);
    }
    void Fill(std::initializer_list<int> vs)
    {
        for (int v : vs) list.AddTail(new Item(v));
    }
    CList_Mgd<Item> list;
};

} // namespace

TEST(ListLayout, NodeAndListsArePointerSized)
{
    CZanPtr n;
    EXPECT_EQ(n.m_pPrev, nullptr);
    EXPECT_EQ(n.m_pNext, nullptr);
    EXPECT_EQ(n.m_pElem, nullptr);
    EXPECT_TRUE(std::has_virtual_destructor_v<CZanPtr>);
    EXPECT_EQ(sizeof(CList_Ptr<Item*>), 3 * sizeof(void*));
    EXPECT_EQ(sizeof(CList_Mgd<Item>), 3 * sizeof(void*));
    EXPECT_TRUE(std::has_virtual_destructor_v<CList_Ptr<Item*>>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CList_Mgd<Item>>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CDSArray<Item>>);
}

TEST(ListPtr, EmptyListAnswersNull)
{
    CList_Ptr<Item*> l;
    EXPECT_NE(l.IsEmpty(), 0);
    EXPECT_EQ(l.GetCount(), 0);
    EXPECT_EQ(l.GetHead(), nullptr);
    EXPECT_EQ(l.GetTail(), nullptr);
    EXPECT_EQ(l.RemoveHead(), nullptr);
    EXPECT_EQ(l.RemoveTail(), nullptr);
    EXPECT_EQ(l.m_pHead, nullptr);
    EXPECT_EQ(l.m_pTail, nullptr);
    EXPECT_EQ(l.FindIndex(0), nullptr);
    EXPECT_EQ(l.GetIndex(static_cast<CZanPtr*>(nullptr)), -1);
    CZanPtr* pos = nullptr;
    EXPECT_EQ(l.GetNext(pos), nullptr);
    EXPECT_EQ(l.GetPrev(pos), nullptr);
    EXPECT_EQ(l.GetAt(nullptr), nullptr);
    l.RemoveAt(nullptr);
    l.SetAt(pos, nullptr);
    EXPECT_EQ(l.MoveUp(nullptr), nullptr);
    EXPECT_EQ(l.MoveDown(nullptr), nullptr);
}

TEST(ListPtr, RemovingDownToOneAndNone)
{
    Item a(1), b(2), c(3);
    CList_Ptr<Item*> l;
    l.AddTail(&b);
    l.AddHead(&a);
    l.AddTail(&c);
    EXPECT_EQ(l.GetCount(), 3);
    EXPECT_EQ(l.RemoveHead(), &a);
    EXPECT_EQ(l.RemoveHead(), &b);
    EXPECT_EQ(l.m_pHead, l.m_pTail);
    EXPECT_EQ(l.GetHead(), &c);
    EXPECT_EQ(l.GetTail(), &c);
    EXPECT_EQ(l.RemoveTail(), &c);
    EXPECT_EQ(l.m_pHead, nullptr);
    EXPECT_EQ(l.m_pTail, nullptr);
    EXPECT_EQ(a.v + b.v + c.v, 6);  // the elements were borrowed, not deleted
}

TEST(ListPtr, WalkingAndFinding)
{
    Item it[4] = {Item(0), Item(1), Item(2), Item(3)};
    CList_Ptr<Item*> l;
    for (auto& i : it) l.AddTail(&i);
    EXPECT_EQ(l.FindIndex(-1), nullptr);
    EXPECT_EQ(l.FindIndex(4), nullptr);
    EXPECT_EQ(l.FindIndex(3), l.m_pTail);
    EXPECT_EQ(l.GetAt(l.FindIndex(2)), &it[2]);

    CZanPtr* pos = l.GetTailPos();
    EXPECT_EQ(l.GetNext(pos), &it[3]);  // the last element, then no position
    EXPECT_EQ(pos, nullptr);
    pos = l.GetHeadPos();
    EXPECT_EQ(l.GetPrev(pos), &it[0]);
    EXPECT_EQ(pos, nullptr);

    CZanPtr* p2 = l.FindIndex(2);
    EXPECT_EQ(l.Find(&it[2], p2), p2);  // the start node itself counts
    EXPECT_EQ(l.Find(&it[1], p2), nullptr);
    EXPECT_EQ(l.Find(&it[1], nullptr), l.FindIndex(1));
    Item twin(2);
    EXPECT_EQ(l.Find(&twin), nullptr);  // pointers, not contents
    EXPECT_EQ(l.GetIndex(&it[3]), 3);
    EXPECT_EQ(l.GetIndex(&twin), -1);
    EXPECT_EQ(l.GetIndex(p2), 2);
    CList_Ptr<Item*> other;
    other.AddTail(&it[0]);
    EXPECT_EQ(l.GetIndex(other.GetHeadPos()), -1);
    CheckLinks(l);
}

TEST(ListPtr, InsertingAtTheEnds)
{
    Item a(1), b(2), c(3), d(4), e(5);
    CList_Ptr<Item*> l;
    CZanPtr* pb = l.InsertBefore(nullptr, &b);  // empty list: becomes head and tail
    EXPECT_EQ(l.m_pHead, pb);
    EXPECT_EQ(l.m_pTail, pb);
    CZanPtr* pa = l.InsertBefore(nullptr, &a);  // null: at the head
    EXPECT_EQ(l.m_pHead, pa);
    CZanPtr* pd = l.InsertAfter(pb, &d);  // the tail: a new tail
    EXPECT_EQ(l.m_pTail, pd);
    l.InsertBefore(pd, &c);  // in the middle
    l.InsertAfter(nullptr, &e);  // null: at the tail
    EXPECT_EQ(Values(l), (std::vector<int>{1, 2, 3, 4, 5}));
    Item z(0);
    EXPECT_EQ(l.InsertBefore(pa, &z), l.m_pHead);  // ahead of the head
    EXPECT_EQ(Values(l), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    CheckLinks(l);
}

TEST(ListPtr, RemovingHeadAndTailElements)
{
    Item a(1), b(2), c(3);
    CList_Ptr<Item*> l;
    l.AddTail(&a);
    CZanPtr* pb = l.AddTail(&b);
    l.AddTail(&c);
    l.Remove(&a);
    EXPECT_EQ(l.m_pHead, pb);
    l.Remove(&c);
    EXPECT_EQ(l.m_pTail, pb);
    l.Remove(&c);  // no longer there: nothing
    EXPECT_EQ(l.GetCount(), 1);
    CheckLinks(l);
    CZanPtr* pos = pb;
    l.SetAt(pos, &c);
    EXPECT_EQ(l.GetHead(), &c);
    l.RemoveAt(pb);
    EXPECT_NE(l.IsEmpty(), 0);
}

TEST(ListPtr, MoveUpAndDownFollowTheElement)
{
    Item it[3] = {Item(0), Item(1), Item(2)};
    CList_Ptr<Item*> l;
    for (auto& i : it) l.AddTail(&i);
    CZanPtr* tail = l.GetTailPos();
    EXPECT_EQ(l.MoveUp(tail), tail);  // at the tail: nothing
    EXPECT_EQ(Values(l), (std::vector<int>{0, 1, 2}));
    CZanPtr* pos = l.GetHeadPos();
    pos = l.MoveUp(pos);
    EXPECT_EQ(pos, l.FindIndex(1));
    EXPECT_EQ(l.GetAt(pos), &it[0]);
    EXPECT_EQ(Values(l), (std::vector<int>{1, 0, 2}));
    pos = l.MoveUp(pos);
    EXPECT_EQ(pos, tail);
    EXPECT_EQ(Values(l), (std::vector<int>{1, 2, 0}));
    pos = l.MoveDown(pos);
    EXPECT_EQ(l.GetAt(pos), &it[0]);
    EXPECT_EQ(Values(l), (std::vector<int>{1, 0, 2}));
    CZanPtr* head = l.GetHeadPos();
    EXPECT_EQ(l.MoveDown(head), head);  // at the head: nothing
    EXPECT_EQ(Values(l), (std::vector<int>{1, 0, 2}));
}

TEST(ListPtr, AssignmentAndCopyShareElements)
{
    Item it[3] = {Item(0), Item(1), Item(2)};
    CList_Ptr<Item*> a, b;
    for (auto& i : it) a.AddTail(&i);
    b.AddTail(&it[2]);
    b = a;
    EXPECT_EQ(Values(b), (std::vector<int>{0, 1, 2}));
    EXPECT_NE(b.GetHeadPos(), a.GetHeadPos());  // own nodes
    EXPECT_EQ(b.GetHead(), &it[0]);             // shared elements
    b = b;
    EXPECT_EQ(b.GetCount(), 3);
    CList_Ptr<Item*> c(a);
    a.RemoveAll();
    EXPECT_EQ(Values(c), (std::vector<int>{0, 1, 2}));
    CheckLinks(c);
}

TEST_F(Mgd, EmptyListAndOneNode)
{
    EXPECT_NE(list.IsEmpty(), 0);
    list.RemoveHead();
    list.RemoveTail();
    list.RemoveBefore(nullptr);
    list.RemoveAfter(nullptr);
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.m_pTail, nullptr);
    Fill({1, 2});
    list.RemoveHead();
    EXPECT_EQ(list.m_pHead, list.m_pTail);
    EXPECT_EQ(Item::s_live, 1);
    list.RemoveTail();
    EXPECT_EQ(list.m_pHead, nullptr);
    EXPECT_EQ(list.m_pTail, nullptr);
    EXPECT_EQ(Item::s_live, 0);
}

TEST_F(Mgd, InsertBeforeTheHeadIsRefused)
{
    auto* e = new Item(9);
    EXPECT_EQ(list.InsertBefore(nullptr, e), nullptr);  // empty list, null position
    EXPECT_NE(list.IsEmpty(), 0);
    Fill({1, 3});
    EXPECT_EQ(list.InsertBefore(nullptr, e), nullptr);
    EXPECT_EQ(list.InsertBefore(list.GetHeadPos(), e), nullptr);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 3}));
    e->v = 2;
    CZanPtr* p = list.InsertBefore(list.GetTailPos(), e);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(list.GetAt(p), e);  // adopted, not copied
    CZanPtr* t = list.InsertAfter(list.GetTailPos(), new Item(4));
    EXPECT_EQ(list.m_pTail, t);
    list.InsertAfter(nullptr, new Item(5));
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3, 4, 5}));
    CheckLinks(list);
}

TEST_F(Mgd, RemoveBeforeAndAfterWrapAround)
{
    Fill({1, 2, 3, 4});
    list.RemoveBefore(list.GetHeadPos());  // the head has nothing ahead: the tail goes
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3}));
    list.RemoveAfter(list.GetTailPos());  // the tail has nothing behind: the head goes
    EXPECT_EQ(Values(list), (std::vector<int>{2, 3}));
    list.RemoveAfter(list.GetHeadPos());
    EXPECT_EQ(Values(list), (std::vector<int>{2}));
    EXPECT_EQ(Item::s_live, 1);
    list.RemoveBefore(list.GetHeadPos());  // one node: empties the list
    EXPECT_NE(list.IsEmpty(), 0);
    Fill({7});
    list.RemoveAfter(list.GetHeadPos());
    EXPECT_NE(list.IsEmpty(), 0);
    Fill({1, 2, 3});
    list.RemoveBefore(list.GetTailPos());
    EXPECT_EQ(Values(list), (std::vector<int>{1, 3}));
    CheckLinks(list);
    EXPECT_EQ(Item::s_live, 2);
}

TEST_F(Mgd, RemoveDeletesElements)
{
    Fill({1, 2, 3});
    Item* head = list.GetHead();
    list.Remove(head);
    EXPECT_EQ(Item::s_live, 2);
    EXPECT_EQ(list.GetHead()->v, 2);
    list.Remove(list.GetTail());
    EXPECT_EQ(list.m_pHead, list.m_pTail);
    Item stranger(5);
    list.Remove(&stranger);  // not in the list: nothing
    EXPECT_EQ(list.GetCount(), 1);
    list.RemoveAt(nullptr);
    EXPECT_EQ(list.GetCount(), 1);
}

TEST_F(Mgd, SetAtHandsTheOldElementBack)
{
    Fill({1, 2});
    CZanPtr* pos = list.GetTailPos();
    Item* old = list.GetAt(pos);
    auto* neu = new Item(8);
    list.SetAt(pos, neu);
    EXPECT_EQ(list.GetTail(), neu);
    EXPECT_EQ(old->v, 2);  // still alive, now the caller's
    delete old;
    list.SetAt(nullptr, old);  // null position: nothing
    EXPECT_EQ(Values(list), (std::vector<int>{1, 8}));
}

TEST_F(Mgd, ShiftToHeadExchangesShiftToTailMoves)
{
    Fill({1, 2, 3, 4});
    CZanPtr* third = list.FindIndex(2);
    list.ShiftToHead(third);
    EXPECT_EQ(Values(list), (std::vector<int>{3, 2, 1, 4}));

    list.RemoveAll();
    Fill({1, 2, 3, 4});
    CZanPtr* first = list.GetHeadPos();
    Item* e1 = list.GetAt(first);
    list.ShiftToTail(first);
    EXPECT_EQ(Values(list), (std::vector<int>{2, 3, 4, 1}));
    EXPECT_EQ(list.m_pTail, first);  // the node itself moved: the position follows
    EXPECT_EQ(list.GetAt(first), e1);
    CheckLinks(list);
    list.ShiftToTail(list.GetTailPos());  // at the tail: nothing
    list.ShiftToTail(nullptr);
    EXPECT_EQ(Values(list), (std::vector<int>{2, 3, 4, 1}));
    CZanPtr* mid = list.FindIndex(1);
    list.ShiftToTail(mid);
    EXPECT_EQ(Values(list), (std::vector<int>{2, 4, 1, 3}));
    CheckLinks(list);

    list.RemoveAll();
    Fill({5});
    list.ShiftToTail(list.GetHeadPos());  // one node: nothing
    list.ShiftToHead(list.GetHeadPos());
    EXPECT_EQ(Values(list), (std::vector<int>{5}));
    CheckLinks(list);
}

TEST_F(Mgd, ShiftUpDownAndSwap)
{
    Fill({1, 2, 3});
    list.ShiftUp(list.GetTailPos());  // at the tail: nothing
    list.ShiftDn(list.GetHeadPos());  // at the head: nothing
    EXPECT_EQ(Values(list), (std::vector<int>{1, 2, 3}));
    list.ShiftUp(list.GetHeadPos());
    EXPECT_EQ(Values(list), (std::vector<int>{2, 1, 3}));
    list.ShiftDn(list.GetTailPos());
    EXPECT_EQ(Values(list), (std::vector<int>{2, 3, 1}));
    list.Swap(list.GetHeadPos(), list.GetTailPos());
    EXPECT_EQ(Values(list), (std::vector<int>{1, 3, 2}));
}

TEST_F(Mgd, AssignmentReusesNodesAndElements)
{
    Fill({1, 2, 3});
    std::vector<CZanPtr*> nodes;
    std::vector<Item*> elems;
    for (CZanPtr* p = list.GetHeadPos(); p; p = p->m_pNext) {
        nodes.push_back(p);
        elems.push_back(list.GetAt(p));
    }

    CList_Mgd<Item> longer;
    for (int v : {10, 20, 30, 40, 50}) longer.AddTail(new Item(v));
    list = longer;  // appends two
    EXPECT_EQ(Values(list), (std::vector<int>{10, 20, 30, 40, 50}));
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(list.FindIndex(static_cast<int>(i)), nodes[i]);
        EXPECT_EQ(list.GetAt(nodes[i]), elems[i]);
    }
    EXPECT_NE(list.GetTail(), longer.GetTail());  // copies, not shared
    EXPECT_EQ(Item::s_live, 10);

    CList_Mgd<Item> shorter;
    shorter.AddTail(new Item(7));
    shorter.AddTail(new Item(8));
    list = shorter;  // removes the surplus tail
    EXPECT_EQ(Values(list), (std::vector<int>{7, 8}));
    EXPECT_EQ(list.GetHeadPos(), nodes[0]);
    EXPECT_EQ(list.GetTailPos(), nodes[1]);
    EXPECT_EQ(list.GetTail(), elems[1]);
    EXPECT_EQ(Item::s_live, 9);
    CheckLinks(list);

    list = list;
    EXPECT_EQ(Values(list), (std::vector<int>{7, 8}));

    CList_Mgd<Item> empty;
    list = empty;
    EXPECT_NE(list.IsEmpty(), 0);
    EXPECT_EQ(Item::s_live, 7);

    CList_Mgd<Item> copy(longer);
    EXPECT_EQ(Values(copy), (std::vector<int>{10, 20, 30, 40, 50}));
    EXPECT_NE(copy.GetHead(), longer.GetHead());
}

TEST_F(Mgd, AssignmentFromBorrowedPointersAndFillPtrList)
{
    Item a(4), b(5);
    CList_Ptr<Item*> src;
    src.AddTail(&a);
    src.AddTail(&b);
    Fill({1});
    Item* first = list.GetHead();
    list = src;
    EXPECT_EQ(Values(list), (std::vector<int>{4, 5}));
    EXPECT_EQ(list.GetHead(), first);
    EXPECT_NE(list.GetTail(), &b);

    CList_Ptr<Item*> out;
    out.AddTail(&a);
    list.FillPtrList(out);
    ASSERT_EQ(out.GetCount(), 2);
    EXPECT_EQ(out.GetHead(), list.GetHead());
    EXPECT_EQ(out.GetTail(), list.GetTail());
    out.RemoveAll();  // borrowed: the elements live on
    EXPECT_EQ(Item::s_live, 4);
}

TEST_F(Mgd, SetSizeAndGrow)
{
    list.SetSize(3);
    EXPECT_EQ(list.GetCount(), 3);
    EXPECT_EQ(Item::s_live, 3);
    list.GetHead()->v = 1;
    CZanPtr* head = list.GetHeadPos();
    list.SetSize(3);  // equal: nothing
    list.SetSize(1);
    EXPECT_EQ(list.GetHeadPos(), head);  // removed from the tail
    EXPECT_EQ(Values(list), (std::vector<int>{1}));
    list.Grow(2);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 0, 0}));
    list.Grow(0);
    EXPECT_EQ(list.GetCount(), 3);
    list.Grow(-1);
    EXPECT_EQ(Values(list), (std::vector<int>{1, 0}));
    list.Grow(-10);  // more than there is: empty, and no harm
    EXPECT_NE(list.IsEmpty(), 0);
    EXPECT_EQ(Item::s_live, 0);
    list.Grow(2);
    list.SetSize(0);
    EXPECT_EQ(list.m_pHead, nullptr);
    EXPECT_EQ(Item::s_live, 0);
}

TEST(DSArray, SetSizeKeepsLowElementsAndFrees)
{
    Item::s_live = 0;
    {
        CDSArray<Item> a;
        EXPECT_EQ(a.m_nSize, 0u);
        EXPECT_EQ(a.m_ppItems, nullptr);
        a.SetSize(3);
        EXPECT_EQ(Item::s_live, 3);
        a.m_ppItems[0]->v = 10;
        Item* first = a.m_ppItems[0];
        a.SetSize(5);
        EXPECT_EQ(a.m_ppItems[0], first);
        EXPECT_EQ(a.m_ppItems[0]->v, 10);
        EXPECT_EQ(a.m_ppItems[4]->v, 0);
        EXPECT_EQ(Item::s_live, 5);
        a.SetSize(2);
        EXPECT_EQ(a.m_nSize, 2u);
        EXPECT_EQ(a.m_ppItems[0], first);
        EXPECT_EQ(Item::s_live, 2);
        a.Append(new Item(7));
        EXPECT_EQ(a.m_nSize, 3u);
        EXPECT_EQ(a.m_ppItems[2]->v, 7);
        a.SetSize(0);
        EXPECT_EQ(a.m_ppItems, nullptr);
        EXPECT_EQ(a.m_nSize, 0u);
        EXPECT_EQ(Item::s_live, 0);
        a.Append(new Item(1));
        a.Append(new Item(2));
    }
    EXPECT_EQ(Item::s_live, 0);  // the destructor resizes to 0
}

TEST(DSArray, AssignmentReusesElements)
{
    Item::s_live = 0;
    {
        CDSArray<Item> a, b;
        for (int v : {1, 2, 3}) a.Append(new Item(v));
        b.SetSize(1);
        Item* keep = b.m_ppItems[0];
        b = a;
        ASSERT_EQ(b.m_nSize, 3u);
        EXPECT_EQ(b.m_ppItems[0], keep);
        EXPECT_EQ(b.m_ppItems[0]->v, 1);
        EXPECT_EQ(b.m_ppItems[2]->v, 3);
        EXPECT_NE(b.m_ppItems[2], a.m_ppItems[2]);
        CDSArray<Item> c(b);
        EXPECT_EQ(c.m_ppItems[1]->v, 2);
        a.SetSize(0);
        b = a;
        EXPECT_EQ(b.m_ppItems, nullptr);
        EXPECT_EQ(Item::s_live, 3);
    }
    EXPECT_EQ(Item::s_live, 0);
}

TEST(ListPtr, PointersToConst)
{
    const Item a(1), b(2);
    CList_Ptr<const Item*> l;
    l.AddTail(&a);
    CZanPtr* pos = l.InsertBefore(l.GetHeadPos(), &b);
    EXPECT_EQ(l.GetHead(), &b);
    l.SetAt(pos, &a);
    EXPECT_EQ(l.GetIndex(&a), 0);
    EXPECT_EQ(l.Find(&b), nullptr);
}
