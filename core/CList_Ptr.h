#pragma once
// CList_Ptr<T*>: doubly linked list of borrowed pointers. The list owns its
// nodes (CZanPtr, one heap object each) but never the elements: removing a
// node leaves its element alive. There is no stored count.
//
// Positions are node pointers (CZanPtr*). A position stays valid until its
// node is removed; MoveUp, MoveDown and exchanging elements keep it valid.
// The list takes no lock: a list shared between threads is guarded by its
// owner.
//
// Copying: the copy constructor makes an independent list holding the same
// element pointers, exactly as operator= does. (Copying only head and tail
// would leave two lists destroying the same nodes.)
//
// CList_Ptr<CTgt*> is compiled complete into the library (hosts link to it):
// its explicit instantiation sits in targets/CTgt.cpp.
#include "core/CZanPtr.h"

template <class T>
class CList_Ptr;

template <class T>
class CList_Ptr<T*> : public CZanList {
public:
    // An empty list.
    CList_Ptr() = default;
    // Deletes every node; the elements live on.
    virtual ~CList_Ptr() { UnlinkAll(); }
    // A new list of nodes holding the same element pointers, in order.
    CList_Ptr(const CList_Ptr& src) : CZanList() { Append(src); }
    // RemoveAll, then a node for each element pointer of src, in order.
    // The elements are shared, not copied. Self-assignment changes nothing.
    CList_Ptr& operator=(const CList_Ptr& src)
    {
        if (&src != this) {
            RemoveAll();
            Append(src);
        }
        return *this;
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
    // Replaces the element pointer at pos; nothing with a null pos.
    void SetAt(CZanPtr*& pos, T* elem)
    {
        if (pos) pos->m_pElem = Raw(elem);
    }

    // A new node at that end, returned.
    CZanPtr* AddHead(T* elem) { return LinkHead(Raw(elem)); }
    CZanPtr* AddTail(T* elem) { return LinkTail(Raw(elem)); }
    // A new node behind pos, returned; at the tail when pos is null or the tail.
    CZanPtr* InsertAfter(CZanPtr* pos, T* elem) { return LinkAfter(pos, Raw(elem)); }
    // A new node ahead of pos, returned; at the head when pos is null or the
    // head.
    CZanPtr* InsertBefore(CZanPtr* pos, T* elem)
    {
        if (!pos || pos == m_pHead) return LinkHead(Raw(elem));
        return LinkBefore(pos, Raw(elem));
    }

    // Deletes that node and returns its element; null when empty.
    T* RemoveHead() { return m_pHead ? static_cast<T*>(Unlink(m_pHead)) : nullptr; }
    T* RemoveTail() { return m_pTail ? static_cast<T*>(Unlink(m_pTail)) : nullptr; }
    // Deletes every node; the elements live on.
    void RemoveAll() { UnlinkAll(); }
    // Unlinks and deletes node pos, which must belong to this list; nothing
    // with a null pos.
    void RemoveAt(CZanPtr* pos)
    {
        if (pos) Unlink(pos);
    }
    // RemoveAt on the first node holding elem; nothing if none does.
    void Remove(T* elem) { RemoveAt(FindElem(elem, nullptr)); }

    // First node at or behind start (the head when start is null) holding
    // this pointer; null if none. Pointers are compared, not contents.
    CZanPtr* Find(T* elem, CZanPtr* start = nullptr) const { return FindElem(elem, start); }
    using CZanList::GetIndex;
    // Zero-based place of the first node holding elem; -1 if none.
    int GetIndex(T* elem) const { return IndexOfElem(elem); }

    // Exchanges the element at pos with the next node's and returns that next
    // node, so the caller's position follows the element. With a null pos or
    // at the tail, returns pos and changes nothing.
    CZanPtr* MoveUp(CZanPtr* pos)
    {
        if (!pos || !pos->m_pNext) return pos;
        Exchange(pos, pos->m_pNext);
        return pos->m_pNext;
    }
    // The same toward the head: exchanges with the previous node, returns it.
    CZanPtr* MoveDown(CZanPtr* pos)
    {
        if (!pos || !pos->m_pPrev) return pos;
        Exchange(pos, pos->m_pPrev);
        return pos->m_pPrev;
    }

private:
    // Nodes hold plain pointers; a list of pointers to const gives them back
    // as such.
    static void* Raw(T* e) { return const_cast<void*>(static_cast<const void*>(e)); }
    void Append(const CList_Ptr& src)
    {
        for (const CZanPtr* p = src.m_pHead; p; p = p->m_pNext) LinkTail(p->m_pElem);
    }
};
