#include "sensors/CSnsrGyro.h"

#include "core/platform/ML.h"

#include <cmath>

void CSnsrGyro::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_heading << m_gyroAux;
    else ar >> m_heading >> m_gyroAux;
}

CString CSnsrGyro::GetString(unsigned int) const { return CString::Fmt(u"%7.2lf\u00B0T", m_heading); }

void CSnsrGyro::Interpolate(double t, const CSnsrGyro* a, const CSnsrGyro* b, CSnsrGyro* out)
{
    if (CopiesA(a, b)) {
        out->m_heading = a->m_heading;
        out->m_time = t;
        return;
    }
    const double f = Frac(t, a, b);
    // Compass degrees (clockwise from north) to mathematical angles
    // (anticlockwise from east), kept positive by the 720.
    const double ta = std::fmod(720.0 - a->m_heading + 90.0, 360.0) * ML::d2r;
    const double tb = std::fmod(720.0 - b->m_heading + 90.0, 360.0) * ML::d2r;
    const double x = std::cos(ta) + f * (std::cos(tb) - std::cos(ta));
    const double y = std::sin(ta) + f * (std::sin(tb) - std::sin(ta));
    // Opposite headings half way give x exactly 0; take the axis by y.
    double th;
    if (x != 0.0) th = std::atan2(y, x);
    else th = y <= 0.0 ? -ML::pi_2 : ML::pi_2;
    out->m_heading = static_cast<float>(std::fmod(720.0 - th * ML::r2d + 90.0, 360.0));
    out->m_time = t;
}
