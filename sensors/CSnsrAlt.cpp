#include "sensors/CSnsrAlt.h"

#include "core/platform/Zan.h"

void CSnsrAlt::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_alt;
    else ar >> m_alt;
}

CString CSnsrAlt::GetString(unsigned int) const { return ZUnits::Get(ZUnits::Length, m_alt, u"%1.2lf", 1); }

void CSnsrAlt::Interpolate(double t, const CSnsrAlt* a, const CSnsrAlt* b, CSnsrAlt* out)
{
    out->m_alt = CopiesA(a, b) ? a->m_alt : Lerp(a->m_alt, b->m_alt, Frac(t, a, b));
    out->m_time = t;
}
