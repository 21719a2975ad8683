#include "sensors/CSnsrTime.h"

void CSnsrTime::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_zda.m_t << m_zoneHr << m_zoneMin;
    else ar >> m_zda.m_t >> m_zoneHr >> m_zoneMin;
}

CString CSnsrTime::GetString(unsigned int) const
{
    return CString::Fmt(u"%s, %d-%d", m_zda.FormatGmt(u"%Y/%m/%d %H:%M:%S......."), m_zoneHr, m_zoneMin);
}

void CSnsrTime::Interpolate(double t, const CSnsrTime* a, const CSnsrTime* b, CSnsrTime* out)
{
    out->m_zda.m_t = CopiesA(a, b) ? a->m_zda.m_t : Lerp(a->m_zda.m_t, b->m_zda.m_t, Frac(t, a, b));
    out->m_zoneHr = a->m_zoneHr;
    out->m_zoneMin = a->m_zoneMin;
    out->m_time = t;
}
