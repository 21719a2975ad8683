#include "sensors/CSnsrArt.h"

void CSnsrArt::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_axis << m_angle << m_angleLo << m_angleHi;
    else ar >> m_axis >> m_angle >> m_angleLo >> m_angleHi;
}

CString CSnsrArt::GetString(unsigned int) const
{
    static const char16_t* const fmts[3] = {
        u"RX:%6.2lf\u00B0 (%6.2lf\u00B0-%6.2lf\u00B0)",
        u"RY:%6.2lf\u00B0 (%6.2lf\u00B0-%6.2lf\u00B0)",
        u"RZ:%6.2lf\u00B0 (%6.2lf\u00B0-%6.2lf\u00B0)",
    };
    if (m_axis < 0 || m_axis > 2) return CString();
    return CString::Fmt(fmts[m_axis], m_angle, m_angleLo, m_angleHi);
}

void CSnsrArt::Interpolate(double t, const CSnsrArt* a, const CSnsrArt* b, CSnsrArt* out)
{
    if (CopiesA(a, b)) {
        out->m_angle = a->m_angle;
        out->m_angleLo = a->m_angleLo;
        out->m_angleHi = a->m_angleHi;
    } else {
        const double f = Frac(t, a, b);
        out->m_angle = Lerp(a->m_angle, b->m_angle, f);
        out->m_angleLo = Lerp(a->m_angleLo, b->m_angleLo, f);
        out->m_angleHi = Lerp(a->m_angleHi, b->m_angleHi, f);
    }
    out->m_axis = a->m_axis;
    out->m_time = t;
}
