#pragma once
// CSnsrMarker: a marker value, handled as an altitude (type 14).
#include "sensors/CSnsrInf.h"

class CSnsrMarker : public CSnsrInf {
public:
    float m_mark = 0.0f;  // metres, as CSnsrAlt

    CSnsrMarker() { m_type = tMarker; }
    CSnsrMarker(const CSnsrMarker&) = default;
    CSnsrMarker& operator=(const CSnsrMarker&) = default;
    ~CSnsrMarker() override = default;

    // Head, then f32 m_mark.
    void Serialize(CArchive& ar) override;
    // "%1.2lf" of m_mark in the user's length unit, with its symbol.
    CString GetString(unsigned int nFlags = 0) const override;

    // m_mark linearly in double between a (earlier, not null) and b (later, or
    // null), rounded to float, into out (not null). b null or equal times
    // copy a; t outside the pair extrapolates. out->m_time becomes t; the
    // other base fields of out are not written.
    static void Interpolate(double t, const CSnsrMarker* a, const CSnsrMarker* b, CSnsrMarker* out);
};
