#pragma once
// CSnsrGyro: a true heading (type 2, "Heading").
#include "sensors/CSnsrInf.h"

class CSnsrGyro : public CSnsrInf {
public:
    float m_heading = 0.0f;  // true heading, degrees, 0 to 360
    float m_gyroAux = 0.0f;  // second value: stored and copied, not interpolated

    CSnsrGyro() { m_type = tGyro; }
    CSnsrGyro(const CSnsrGyro&) = default;
    CSnsrGyro& operator=(const CSnsrGyro&) = default;
    ~CSnsrGyro() override = default;

    // Head, then f32 m_heading, f32 m_gyroAux.
    void Serialize(CArchive& ar) override;
    // "%7.2lf°T" of m_heading.
    CString GetString(unsigned int nFlags = 0) const override;

    // Heading at time t from a (earlier, not null) and b (later, or null)
    // into out (not null). The two headings are interpolated as unit vectors
    // on the circle, so 350 and 10 meet at north; the result is in [0, 360]
    // (a result a hair below 360 may round to 360.0f). Opposite headings pass
    // near the centre of the circle, where the direction jumps; the length of
    // the vector is dropped. b null or equal times copy a's heading. t outside
    // the pair extrapolates. out->m_time becomes t; m_gyroAux and the other
    // base fields of out are not written.
    static void Interpolate(double t, const CSnsrGyro* a, const CSnsrGyro* b, CSnsrGyro* out);
};
