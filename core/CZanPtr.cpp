#include "core/CZanPtr.h"

CZanPtr::~CZanPtr() = default;

int CZanList::GetCount() const
{
    int n = 0;
    for (const CZanPtr* p = m_pHead; p; p = p->m_pNext) ++n;
    return n;
}

CZanPtr* CZanList::FindIndex(int index) const
{
    if (index < 0) return nullptr;
    CZanPtr* p = m_pHead;
    while (p && index-- > 0) p = p->m_pNext;
    return p;
}

int CZanList::GetIndex(CZanPtr* pos) const
{
    int i = 0;
    for (const CZanPtr* p = m_pHead; p; p = p->m_pNext, ++i)
        if (p == pos) return i;
    return -1;
}

CZanPtr* CZanList::FindElem(const void* e, CZanPtr* start) const
{
    for (CZanPtr* p = start ? start : m_pHead; p; p = p->m_pNext)
        if (p->m_pElem == e) return p;
    return nullptr;
}

int CZanList::IndexOfElem(const void* e) const
{
    int i = 0;
    for (const CZanPtr* p = m_pHead; p; p = p->m_pNext, ++i)
        if (p->m_pElem == e) return i;
    return -1;
}

CZanPtr* CZanList::LinkHead(void* e)
{
    auto* n = new CZanPtr;
    n->m_pElem = e;
    n->m_pNext = m_pHead;
    if (m_pHead) m_pHead->m_pPrev = n;
    else m_pTail = n;
    m_pHead = n;
    return n;
}

CZanPtr* CZanList::LinkTail(void* e)
{
    auto* n = new CZanPtr;
    n->m_pElem = e;
    n->m_pPrev = m_pTail;
    if (m_pTail) m_pTail->m_pNext = n;
    else m_pHead = n;
    m_pTail = n;
    return n;
}

CZanPtr* CZanList::LinkAfter(CZanPtr* pos, void* e)
{
    if (!pos || pos == m_pTail) return LinkTail(e);
    auto* n = new CZanPtr;
    n->m_pElem = e;
    n->m_pPrev = pos;
    n->m_pNext = pos->m_pNext;
    pos->m_pNext->m_pPrev = n;
    pos->m_pNext = n;
    return n;
}

CZanPtr* CZanList::LinkBefore(CZanPtr* pos, void* e)
{
    auto* n = new CZanPtr;
    n->m_pElem = e;
    n->m_pNext = pos;
    n->m_pPrev = pos->m_pPrev;
    pos->m_pPrev->m_pNext = n;
    pos->m_pPrev = n;
    return n;
}

void* CZanList::Unlink(CZanPtr* pos)
{
    if (pos->m_pPrev) pos->m_pPrev->m_pNext = pos->m_pNext;
    else m_pHead = pos->m_pNext;
    if (pos->m_pNext) pos->m_pNext->m_pPrev = pos->m_pPrev;
    else m_pTail = pos->m_pPrev;
    void* const e = pos->m_pElem;
    delete pos;
    return e;
}

void CZanList::UnlinkAll()
{
    CZanPtr* p = m_pHead;
    m_pHead = m_pTail = nullptr;
    while (p) {
        CZanPtr* const next = p->m_pNext;
        delete p;
        p = next;
    }
}

void CZanList::RelinkToTail(CZanPtr* pos)
{
    // Take it out...
    if (pos->m_pPrev) pos->m_pPrev->m_pNext = pos->m_pNext;
    else m_pHead = pos->m_pNext;
    pos->m_pNext->m_pPrev = pos->m_pPrev;
    // ...and hang it behind the tail.
    pos->m_pPrev = m_pTail;
    pos->m_pNext = nullptr;
    m_pTail->m_pNext = pos;
    m_pTail = pos;
}
