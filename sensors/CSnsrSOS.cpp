#include "sensors/CSnsrSOS.h"

void CSnsrSOS::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_sos;
    else ar >> m_sos;
}

CString CSnsrSOS::GetString(unsigned int) const { return CString::Fmt(u"%1.1f", m_sos); }

void CSnsrSOS::Interpolate(double t, const CSnsrSOS* a, const CSnsrSOS* b, CSnsrSOS* out)
{
    out->m_sos = CopiesA(a, b) ? a->m_sos : Lerp(a->m_sos, b->m_sos, Frac(t, a, b));
    out->m_time = t;
}
