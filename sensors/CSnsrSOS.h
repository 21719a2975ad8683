#pragma once
// CSnsrSOS: a speed of sound (type 6).
#include "sensors/CSnsrInf.h"

class CSnsrSOS : public CSnsrInf {
public:
    float m_sos = 1500.0f;  // metres per second

    CSnsrSOS() { m_type = tSOS; }
    CSnsrSOS(const CSnsrSOS&) = default;
    CSnsrSOS& operator=(const CSnsrSOS&) = default;
    ~CSnsrSOS() override = default;

    // Head, then f32 m_sos.
    void Serialize(CArchive& ar) override;
    // "%1.1f" of m_sos.
    CString GetString(unsigned int nFlags = 0) const override;

    // m_sos linearly in double between a (earlier, not null) and b (later, or
    // null), rounded to float, into out (not null). b null or equal times
    // copy a; t outside the pair extrapolates. out->m_time becomes t; the
    // other base fields of out are not written.
    static void Interpolate(double t, const CSnsrSOS* a, const CSnsrSOS* b, CSnsrSOS* out);
};
