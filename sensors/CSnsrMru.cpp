#include "sensors/CSnsrMru.h"

#include "core/platform/Zan.h"

void CSnsrMru::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    // The two further values are stored B before A.
    if (ar.IsStoring()) ar << m_pitch << m_roll << m_heave << m_mruB << m_mruA;
    else ar >> m_pitch >> m_roll >> m_heave >> m_mruB >> m_mruA;
}

CString CSnsrMru::GetString(unsigned int) const
{
    return CString::Fmt(u"%sH, %6.2lf\u00B0P, %6.2lf\u00B0R", ZUnits::Get(ZUnits::Length, m_heave, u"%6.2lf", 1),
                        m_pitch, m_roll);
}

void CSnsrMru::Interpolate(double t, const CSnsrMru* a, const CSnsrMru* b, CSnsrMru* out)
{
    if (CopiesA(a, b)) {
        out->m_pitch = a->m_pitch;
        out->m_roll = a->m_roll;
        out->m_heave = a->m_heave;
        out->m_mruA = a->m_mruA;
        out->m_mruB = a->m_mruB;
    } else {
        const double f = Frac(t, a, b);
        out->m_pitch = Lerp(a->m_pitch, b->m_pitch, f);
        out->m_roll = Lerp(a->m_roll, b->m_roll, f);
        out->m_heave = Lerp(a->m_heave, b->m_heave, f);
        out->m_mruA = Lerp(a->m_mruA, b->m_mruA, f);
        out->m_mruB = Lerp(a->m_mruB, b->m_mruB, f);
    }
    out->m_time = t;
}
