#include "sensors/CSnsrVTG.h"

void CSnsrVTG::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_courseT << m_courseM << m_speedKts << m_speedKmh;
    else ar >> m_courseT >> m_courseM >> m_speedKts >> m_speedKmh;
}

CString CSnsrVTG::GetString(unsigned int) const
{
    return CString::Fmt(u"%1.1f\u00B0T %1.1fkts", m_courseT, m_speedKts);
}

void CSnsrVTG::Interpolate(double t, const CSnsrVTG* a, const CSnsrVTG* b, CSnsrVTG* out)
{
    if (CopiesA(a, b)) {
        out->m_courseT = a->m_courseT;
        out->m_courseM = a->m_courseM;
        out->m_speedKts = a->m_speedKts;
        out->m_speedKmh = a->m_speedKmh;
    } else {
        const double f = Frac(t, a, b);
        out->m_courseT = Lerp(a->m_courseT, b->m_courseT, f);
        out->m_courseM = Lerp(a->m_courseM, b->m_courseM, f);
        out->m_speedKts = Lerp(a->m_speedKts, b->m_speedKts, f);
        out->m_speedKmh = Lerp(a->m_speedKmh, b->m_speedKmh, f);
    }
    out->m_time = t;
}
