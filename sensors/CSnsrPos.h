#pragma once
// CSnsrPos: a position fix (type 1, "Geo Position").
#include "core/platform/CV3.h"
#include "sensors/CSnsrInf.h"

class CSnsrPos : public CSnsrInf {
public:
    CV3 m_geo;            // degrees: x longitude, y latitude, z height
    CV3 m_local;          // local frame, metres; shown instead of m_geo when its length is above 0
    float m_posA = 0.0f;  // further values of the fix: carried, stored,
    float m_posB = 0.0f;  // and taken from the earlier record when interpolating
    float m_posC = 0.0f;
    WORD m_posWord = 0;

    CSnsrPos() { m_type = tPos; }
    CSnsrPos(const CSnsrPos&) = default;
    CSnsrPos& operator=(const CSnsrPos&) = default;
    ~CSnsrPos() override = default;

    // Head, then CV3 m_geo, CV3 m_local (three f64 each), f32 m_posA, m_posB,
    // m_posC, u16 m_posWord.
    void Serialize(CArchive& ar) override;
    // "X:%1.2lf Y:%1.2lf Z:%1.2lf" of m_local when its length is above 0;
    // otherwise latitude then longitude in degrees, minutes and seconds,
    // "52°30"00.000'N, 01°15"00.000'W".
    CString GetString(unsigned int nFlags = 0) const override;

    // Position at time t from a (earlier, not null) and b (later, or null)
    // into out (not null): m_geo and m_local linearly in double, the f32 and
    // word fields from a. b null or equal times copy a. t outside the pair
    // extrapolates; longitudes do not wrap. out->m_time is NOT written: a
    // position result keeps the time stamp out already had (hosts that fill
    // one result record per ping stamp it themselves). Base fields untouched.
    static void Interpolate(double t, const CSnsrPos* a, const CSnsrPos* b, CSnsrPos* out);

    // A signed angle in degrees as degrees, minutes and seconds,
    // "%02d°%02d"%06.3lf'%c". `hemi` holds two letters: the first for values
    // of 0 and above, the second for negative ones (e.g. "NS", "EW"). Seconds
    // of 59.9995 or more carry into the minutes, 60 minutes into the degrees,
    // so the text never shows 60 seconds or minutes. Seconds are exact to the
    // double arithmetic (about 1e-9 s for angles below 360). An angle of 2^31
    // degrees or more, or NaN, shows its whole degrees with zero minutes and
    // seconds ("nan°00"00.000'N").
    static CString GetDegString(double value, const char16_t* hemi);
    static CString GetDegString(double value, const char* hemi);
    static CString GetDegString(double value, const wchar_t* hemi);
};
