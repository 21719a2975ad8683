#pragma once
// CZanPtr: one node of the library's linked lists, and the position a caller
// holds while walking one. A null position means "no such node".
//
// CZanList: the node bookkeeping that CList_Ptr and CList_Mgd share. It is
// untyped (elements are plain pointers) so that the typed lists stay thin
// wrappers; it has no virtual operation, so a list derived from it keeps the
// layout vtable, m_pHead, m_pTail.

class CZanPtr {
public:
    // Every node is a separate heap object; all three fields start null.
    CZanPtr() = default;
    virtual ~CZanPtr();
    CZanPtr(const CZanPtr&) = delete;
    CZanPtr& operator=(const CZanPtr&) = delete;

    CZanPtr* m_pPrev = nullptr;  // null at the head
    CZanPtr* m_pNext = nullptr;  // null at the tail
    void* m_pElem = nullptr;     // the element pointer
};

class CZanList {
public:
    CZanPtr* m_pHead = nullptr;  // both null when the list is empty
    CZanPtr* m_pTail = nullptr;

    // The first / last node; null when empty.
    CZanPtr* GetHeadPos() const { return m_pHead; }
    CZanPtr* GetTailPos() const { return m_pTail; }
    // Non-zero when the list has no node.
    int IsEmpty() const { return m_pHead == nullptr; }
    // Number of nodes; walks the list.
    int GetCount() const;
    // The node at zero-based `index`; null when index < 0 or >= GetCount().
    // Walks the list.
    CZanPtr* FindIndex(int index) const;
    // Zero-based place of node `pos`; -1 when pos is null or not in this list.
    int GetIndex(CZanPtr* pos) const;

protected:
    CZanList() = default;
    ~CZanList() = default;
    CZanList(const CZanList&) = delete;
    CZanList& operator=(const CZanList&) = delete;

    static void* ElemAt(const CZanPtr* pos) { return pos ? pos->m_pElem : nullptr; }
    // First node at or behind `start` (the head when start is null) whose
    // element pointer equals p; null if none.
    CZanPtr* FindElem(const void* p, CZanPtr* start) const;
    // Zero-based place of the first node holding p; -1 if none.
    int IndexOfElem(const void* p) const;

    CZanPtr* LinkHead(void* p);
    CZanPtr* LinkTail(void* p);
    // Behind pos; at the tail when pos is null or the tail.
    CZanPtr* LinkAfter(CZanPtr* pos, void* p);
    // Ahead of pos, which must be a node of this list other than the head.
    CZanPtr* LinkBefore(CZanPtr* pos, void* p);
    // Unlinks and deletes node pos (not null), returning its element.
    void* Unlink(CZanPtr* pos);
    // Deletes every node, leaving the elements alone.
    void UnlinkAll();
    // Moves node pos (not null, not the tail) to the tail.
    void RelinkToTail(CZanPtr* pos);
    static void Exchange(CZanPtr* a, CZanPtr* b)
    {
        void* const t = a->m_pElem;
        a->m_pElem = b->m_pElem;
        b->m_pElem = t;
    }
};
