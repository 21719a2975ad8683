#include "targets/CTgtRec.h"

#include "core/platform/CArchive.h"

CTgtRec::CTgtRec(const CTgtRec& src) : CList_Ptr<CTgt*>()
{
    *this = src;
}

CTgtRec::~CTgtRec()
{
    ClearTgts();
}

CTgtRec& CTgtRec::operator=(const CTgtRec& src)
{
    if (&src == this) return *this;
    m_ping = src.m_ping;
    m_sonarNo = src.m_sonarNo;
    m_tgtSide = src.m_tgtSide;
    m_recVal1 = src.m_recVal1;
    m_recVal2 = src.m_recVal2;
    m_elevDeg = src.m_elevDeg;
    m_sosAvg = src.m_sosAvg;
    m_frame = src.m_frame;

    CZanPtr* dst = m_pHead;
    for (CZanPtr* s = src.m_pHead; s; s = s->m_pNext) {
        const CTgt& t = *static_cast<const CTgt*>(s->m_pElem);
        if (dst) {
            *static_cast<CTgt*>(dst->m_pElem) = t;
            dst = dst->m_pNext;
        } else {
            AddTail(new CTgt(t));
        }
    }
    DeleteFrom(dst);
    return *this;
}

void CTgtRec::ClearTgts()
{
    for (CZanPtr* p = m_pHead; p; p = p->m_pNext) delete static_cast<CTgt*>(p->m_pElem);
    RemoveAll();
}

void CTgtRec::DeleteFrom(CZanPtr* pos)
{
    while (pos) {
        CZanPtr* const next = pos->m_pNext;
        delete static_cast<CTgt*>(pos->m_pElem);
        RemoveAt(pos);
        pos = next;
    }
}

void CTgtRec::Serialize(CArchive& ar)
{
    m_ping.Serialize(ar);
    if (ar.IsStoring())
        ar << m_sonarNo << m_tgtSide << m_recVal1 << m_recVal2 << m_elevDeg << m_sosAvg;
    else
        ar >> m_sonarNo >> m_tgtSide >> m_recVal1 >> m_recVal2 >> m_elevDeg >> m_sosAvg;
}

void CTgtRec::SerializeRB(CArchive& ar)
{
    SerializeList(ar, false);
}

void CTgtRec::SerializeTgt(CArchive& ar)
{
    SerializeList(ar, true);
}

bool CTgtRec::SerializeAcousticZoom(CArchive& ar)
{
    return m_ping.SerializeAcousticZoom(ar);
}

namespace {

void SerializeOne(CTgt& t, CArchive& ar, bool bPos)
{
    if (bPos) t.SerializeTgt(ar);
    else t.SerializeRngBrg(ar);
}

} // namespace

void CTgtRec::SerializeList(CArchive& ar, bool bPos)
{
    if (ar.IsStoring()) {
        ar << static_cast<int>(GetCount());
        for (CZanPtr* p = m_pHead; p; p = p->m_pNext) SerializeOne(*static_cast<CTgt*>(p->m_pElem), ar, bPos);
        return;
    }
    int n = 0;
    ar >> n;
    CZanPtr* pos = m_pHead;
    for (int i = 0; i < n; ++i) {
        CTgt* t;
        if (pos) {
            t = static_cast<CTgt*>(pos->m_pElem);
            pos = pos->m_pNext;
        } else {
            t = new CTgt;
            AddTail(t);
        }
        SerializeOne(*t, ar, bPos);
    }
    DeleteFrom(pos);
}
