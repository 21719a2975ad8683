#pragma once
// CSnsrAlt: an altitude above the bottom (type 8).
#include "sensors/CSnsrInf.h"

class CSnsrAlt : public CSnsrInf {
public:
    float m_alt = 0.0f;  // metres

    CSnsrAlt() { m_type = tAlt; }
    CSnsrAlt(const CSnsrAlt&) = default;
    CSnsrAlt& operator=(const CSnsrAlt&) = default;
    ~CSnsrAlt() override = default;

    // Head, then f32 m_alt.
    void Serialize(CArchive& ar) override;
    // "%1.2lf" of m_alt in the user's length unit, with its symbol.
    CString GetString(unsigned int nFlags = 0) const override;

    // m_alt linearly in double between a (earlier, not null) and b (later, or
    // null), rounded to float, into out (not null). b null or equal times
    // copy a; t outside the pair extrapolates. out->m_time becomes t; the
    // other base fields of out are not written.
    static void Interpolate(double t, const CSnsrAlt* a, const CSnsrAlt* b, CSnsrAlt* out);
};
