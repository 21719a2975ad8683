#include "sensors/CSnsrZ.h"

#include "core/platform/Zan.h"

void CSnsrZ::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_depth << m_depthFactor << m_rawUnits;
    else ar >> m_depth >> m_depthFactor >> m_rawUnits;
}

CString CSnsrZ::GetString(unsigned int) const
{
    if (m_rawUnits) return CString::Fmt(u"%7.2lf", m_depth);
    return ZUnits::Get(ZUnits::Length, m_depth, u"%7.2lf", 1);
}

void CSnsrZ::Interpolate(double t, const CSnsrZ* a, const CSnsrZ* b, CSnsrZ* out)
{
    out->m_depth = CopiesA(a, b) ? a->m_depth : Lerp(a->m_depth, b->m_depth, Frac(t, a, b));
    out->m_depthFactor = a->m_depthFactor;
    out->m_rawUnits = a->m_rawUnits;
    out->m_time = t;
}
