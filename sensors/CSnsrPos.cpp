#include "sensors/CSnsrPos.h"

#include <cmath>
#include <cwchar>

void CSnsrPos::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    m_geo.Serialize(ar);
    m_local.Serialize(ar);
    if (ar.IsStoring()) ar << m_posA << m_posB << m_posC << m_posWord;
    else ar >> m_posA >> m_posB >> m_posC >> m_posWord;
}

CString CSnsrPos::GetString(unsigned int) const
{
    if (m_local.Length() > 0.0) return CString::Fmt(u"X:%1.2lf Y:%1.2lf Z:%1.2lf", m_local.x, m_local.y, m_local.z);
    // Latitude first, as positions are read aloud, although x is the longitude.
    return CString::Fmt(u"%s, %s", GetDegString(m_geo.y, u"NS"), GetDegString(m_geo.x, u"EW"));
}

void CSnsrPos::Interpolate(double t, const CSnsrPos* a, const CSnsrPos* b, CSnsrPos* out)
{
    // The time stamp of out is left alone on purpose: a position result keeps
    // the stamp its holder gave it, which recordings and hosts built on this
    // record already rely on. Every other class stamps its result with t.
    (void)t;
    if (CopiesA(a, b)) {
        out->m_geo = a->m_geo;
        out->m_local = a->m_local;
    } else {
        const double f = Frac(t, a, b);
        out->m_geo = CV3(Lerp(a->m_geo.x, b->m_geo.x, f), Lerp(a->m_geo.y, b->m_geo.y, f),
                         Lerp(a->m_geo.z, b->m_geo.z, f));
        out->m_local = CV3(Lerp(a->m_local.x, b->m_local.x, f), Lerp(a->m_local.y, b->m_local.y, f),
                           Lerp(a->m_local.z, b->m_local.z, f));
    }
    out->m_posA = a->m_posA;
    out->m_posB = a->m_posB;
    out->m_posC = a->m_posC;
    out->m_posWord = a->m_posWord;
}

CString CSnsrPos::GetDegString(double value, const char16_t* hemi)
{
    const double v = std::fabs(value);
    const char16_t letter = hemi ? hemi[value < 0.0 ? 1 : 0] : u'?';
    // Degrees that no int holds (a damaged record's NaN or 1e20) are shown
    // whole, without minutes and seconds to split off.
    if (!(v < 2147483647.0)) return CString::Fmt(u"%.0lf\u00B0%02d\"%06.3lf'%c", v, 0, 0.0, letter);
    int deg = static_cast<int>(std::floor(v));
    int min = static_cast<int>(std::floor((v - deg) * 60.0));
    double sec = (v - (min / 60.0 + deg)) * 3600.0;
    // Seconds that would print as 60.000 carry into the minutes, and 60
    // minutes into the degrees.
    if (sec >= 59.9995) {
        ++min;
        sec = 0.0;
    }
    if (min >= 60) {
        deg += min / 60;
        min %= 60;
    }
    return CString::Fmt(u"%02d\u00B0%02d\"%06.3lf'%c", deg, min, sec, letter);
}

CString CSnsrPos::GetDegString(double value, const char* hemi)
{
    const char16_t h[2] = {hemi ? static_cast<char16_t>(static_cast<unsigned char>(hemi[0])) : u'?',
                           hemi ? static_cast<char16_t>(static_cast<unsigned char>(hemi[1])) : u'?'};
    return GetDegString(value, h);
}

CString CSnsrPos::GetDegString(double value, const wchar_t* hemi)
{
    const char16_t h[2] = {hemi ? static_cast<char16_t>(hemi[0]) : u'?', hemi ? static_cast<char16_t>(hemi[1]) : u'?'};
    return GetDegString(value, h);
}
