#include "sensors/CSnsrMarker.h"

#include "core/platform/Zan.h"

void CSnsrMarker::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_mark;
    else ar >> m_mark;
}

CString CSnsrMarker::GetString(unsigned int) const { return ZUnits::Get(ZUnits::Length, m_mark, u"%1.2lf", 1); }

void CSnsrMarker::Interpolate(double t, const CSnsrMarker* a, const CSnsrMarker* b, CSnsrMarker* out)
{
    out->m_mark = CopiesA(a, b) ? a->m_mark : Lerp(a->m_mark, b->m_mark, Frac(t, a, b));
    out->m_time = t;
}
