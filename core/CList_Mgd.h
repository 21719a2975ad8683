#pragma once
// CList_Mgd<T>: doubly linked list that owns its elements. Each element is a
// separate heap object of type T (made by new); every operation that removes
// a node also deletes its element. AddHead, AddTail, InsertAfter and
// InsertBefore adopt the object they are given: the caller gives up the
// pointer.
//
// T must be default-constructible and copy-assignable (assignment, SetSize
// and Grow make and assign elements).
//
// Positions are node pointers (CZanPtr*). A position stays valid until its
// node is removed; exchanging elements, ShiftUp/ShiftDn/ShiftToHead/Swap and
// ShiftToTail keep it valid, and so does an assignment that does not shorten
// the list below its place (assignment reuses nodes and elements).
// The list takes no lock.
//
// Copying: the copy constructor makes a deep copy, exactly as operator=
// into an empty list does. (Copying only head and tail would leave two lists
// deleting the same nodes and elements.)
//
// CList_Mgd<CTmVal> is compiled complete into the library (hosts link to it):
// its explicit instantiation sits in CTmVal's source file.
#include "core/CList_Ptr.h"

template <class T>
class CList_Mgd : public CZanList {
public:
    // An empty list.
    CList_Mgd() = default;
    // RemoveAll: deletes every node and element.
    virtual ~CList_Mgd() { RemoveAll(); }
    // A deep copy of src: new T elements assigned from src's, in order.
    CList_Mgd(const CList_Mgd& src) : CZanList() { AssignFrom(src.m_pHead); }
    // Deep copy by reuse: this list's elements, from the head, are assigned
    // from src's in order; missing ones are made with new T and appended,
    // surplus ones are removed with their nodes. Nodes and elements that
    // remain keep their addresses. Self-assignment assigns each element to
    // itself.
    CList_Mgd& operator=(const CList_Mgd& src)
    {
        AssignFrom(src.m_pHead);
        return *this;
    }
    // The same with a list of borrowed pointers as source. The source's
    // elements must not be this list's own elements in another order.
    CList_Mgd& operator=(const CList_Ptr<T*>& src)
    {
        AssignFrom(src.m_pHead);
        return *this;
    }

    // Empties out, then adds a pointer to each element of this list, in
    // order. The elements remain this list's; out borrows them.
    void FillPtrList(CList_Ptr<T*>& out) const
    {
        out.RemoveAll();
        for (const CZanPtr* p = m_pHead; p; p = p->m_pNext) out.AddTail(static_cast<T*>(p->m_pElem));
    }

    // The first / last element; null when the list is empty.
    T* GetHead() const { return static_cast<T*>(ElemAt(m_pHead)); }
    T* GetTail() const { return static_cast<T*>(ElemAt(m_pTail)); }
    // The element at pos; pos then moves to the next (GetNext) or previous
    // (GetPrev) node, null past the end. A null pos returns null.
    T* GetNext(CZanPtr*& pos) const
    {
        if (!pos) return nullptr;
        T* const e = static_cast<T*>(pos->m_pElem);
        pos = pos->m_pNext;
        return e;
    }
    T* GetPrev(CZanPtr*& pos) const
    {
        if (!pos) return nullptr;
        T* const e = static_cast<T*>(pos->m_pElem);
        pos = pos->m_pPrev;
        return e;
    }
    // The element at pos; null with a null pos.
    T* GetAt(CZanPtr* pos) const { return static_cast<T*>(ElemAt(pos)); }
    // Puts elem in place of the element at pos, adopting it. The previous
    // element is neither deleted nor copied: it goes back to the caller.
    // Nothing with a null pos.
    void SetAt(CZanPtr* pos, const T* elem)
    {
        if (pos) pos->m_pElem = const_cast<T*>(elem);
    }

    // A new node at that end holding elem (adopted), returned.
    CZanPtr* AddHead(T* elem) { return LinkHead(elem); }
    CZanPtr* AddTail(T* elem) { return LinkTail(elem); }
    // A new node behind pos holding elem (adopted), returned; at the tail
    // when pos is null or the tail.
    CZanPtr* InsertAfter(CZanPtr* pos, T* elem) { return LinkAfter(pos, elem); }
    // A new node ahead of pos holding elem (adopted), returned. With a null
    // pos, or when pos is the head, nothing is inserted and the result is
    // null: elem stays the caller's (unlike CList_Ptr::InsertBefore).
    CZanPtr* InsertBefore(CZanPtr* pos, const T* elem)
    {
        if (!pos || pos == m_pHead) return nullptr;
        return LinkBefore(pos, const_cast<T*>(elem));
    }

    // Deletes that node and its element; nothing when empty.
    void RemoveHead()
    {
        if (m_pHead) RemoveAt(m_pHead);
    }
    void RemoveTail()
    {
        if (m_pTail) RemoveAt(m_pTail);
    }
    // Deletes every node and element.
    void RemoveAll()
    {
        while (m_pTail) RemoveAt(m_pTail);
    }
    // Deletes node pos (of this list) and its element; nothing with a null pos.
    void RemoveAt(CZanPtr* pos)
    {
        if (pos) delete static_cast<T*>(Unlink(pos));
    }
    // RemoveAt on the node ahead of pos; RemoveTail when pos is null or the
    // head.
    void RemoveBefore(CZanPtr* pos)
    {
        if (pos && pos->m_pPrev) RemoveAt(pos->m_pPrev);
        else RemoveTail();
    }
    // RemoveAt on the node behind pos; RemoveHead when pos is null or the
    // tail.
    void RemoveAfter(CZanPtr* pos)
    {
        if (pos && pos->m_pNext) RemoveAt(pos->m_pNext);
        else RemoveHead();
    }
    // RemoveAt on the first node holding this pointer; nothing if none does.
    void Remove(T* elem) { RemoveAt(FindElem(elem, nullptr)); }

    // First node at or behind start (the head when start is null) holding
    // this pointer; null if none. Pointers are compared, not contents.
    CZanPtr* Find(T* elem, CZanPtr* start = nullptr) const { return FindElem(elem, start); }
    using CZanList::GetIndex;
    // Zero-based place of the first node holding elem; -1 if none.
    int GetIndex(T* elem) const { return IndexOfElem(elem); }

    // Makes the list n elements long: appends new T at the tail, or removes
    // from the tail (deleting elements). Equal: nothing.
    void SetSize(unsigned int n)
    {
        unsigned int have = static_cast<unsigned int>(GetCount());
        for (; have < n; ++have) LinkTail(new T);
        for (; have > n; --have) RemoveTail();
    }
    // delta > 0 appends that many new T; delta < 0 removes that many from the
    // tail, stopping when the list is empty; 0 does nothing.
    void Grow(int delta)
    {
        for (; delta > 0; --delta) LinkTail(new T);
        for (; delta < 0 && m_pTail; ++delta) RemoveTail();
    }

    // Exchanges the element at pos with the next / previous node's; nothing at
    // the tail / head. pos must not be null.
    void ShiftUp(CZanPtr* pos)
    {
        if (pos->m_pNext) Exchange(pos, pos->m_pNext);
    }
    void ShiftDn(CZanPtr* pos)
    {
        if (pos->m_pPrev) Exchange(pos, pos->m_pPrev);
    }
    // Exchanges the element at pos with the head's; the elements between
    // stay where they are. pos must not be null.
    void ShiftToHead(CZanPtr* pos) { Exchange(pos, m_pHead); }
    // Moves the node itself to the tail, so the elements behind it move up
    // by one. Nothing with a null pos, in a one-node list, or at the tail.
    void ShiftToTail(CZanPtr* pos)
    {
        if (pos && pos != m_pTail) RelinkToTail(pos);
    }
    // Exchanges the elements of two nodes (neither null).
    void Swap(CZanPtr* a, CZanPtr* b) { Exchange(a, b); }

private:
    void AssignFrom(const CZanPtr* src)
    {
        CZanPtr* cur = m_pHead;
        for (; src; src = src->m_pNext) {
            T* dst;
            if (cur) {
                dst = static_cast<T*>(cur->m_pElem);
                cur = cur->m_pNext;
            } else {
                dst = new T;
                LinkTail(dst);
            }
            *dst = *static_cast<const T*>(src->m_pElem);
        }
        while (cur) {
            CZanPtr* const next = cur->m_pNext;
            RemoveAt(cur);
            cur = next;
        }
    }
};
