#include "sensors/CSnsrPressure.h"

void CSnsrPressure::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) ar << m_pressure << m_pressUnit << m_tempVal << m_tempUnit;
    else ar >> m_pressure >> m_pressUnit >> m_tempVal >> m_tempUnit;
}

double CSnsrPressure::GetDepthInMetres() const
{
    const double p = m_pressure;
    for (const char16_t* u : {u"mH2O", u"mWS", u"mWK", u"mWG", u"mWC"})
        if (m_pressUnit == u) return p - s_mPerBar;
    // Absolute pressures: to bar, less the atmosphere, as a water column.
    struct Scale {
        const char16_t* unit;
        double toBar;
    };
    static constexpr Scale scales[] = {{u"mbar", 0.001}, {u"bar", 1.0},  {u"Pa", 1e-5},
                                       {u"hPa", 0.001},  {u"kPa", 0.01}, {u"MPa", 10.0}};
    for (const Scale& s : scales)
        if (m_pressUnit == s.unit) return (p * s.toBar - 1.0) * s_mPerBar;
    return p;
}

double CSnsrPressure::GetTemperatureInCelsius() const
{
    const double v = m_tempVal;
    if (m_tempUnit == u"\u00B0C") return v;
    if (m_tempUnit == u"\u00B0F") return (v - 32.0) / 1.8;
    if (m_tempUnit == u"K") return v - 273.15;
    return v;
}

CString CSnsrPressure::GetString(unsigned int) const
{
    double d = GetDepthInMetres();
    // Rounding noise just above the surface shows as 0.00, never as -0.00.
    if (d > -0.01 && d <= 0.0) d = 0.0;
    CString s = CString::Fmt(u"%3.2lf%s (%3.2lfm)", m_pressure, m_pressUnit, d);
    if (!m_tempUnit.IsEmpty()) s.AppendFormat(u" %3.2lf%s", m_tempVal, m_tempUnit);
    return s;
}
