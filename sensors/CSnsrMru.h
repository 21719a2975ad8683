#pragma once
// CSnsrMru: motion, pitch, roll and heave (type 3, "Motion").
#include "sensors/CSnsrInf.h"

class CSnsrMru : public CSnsrInf {
public:
    float m_pitch = 0.0f;  // degrees
    float m_roll = 0.0f;   // degrees
    float m_heave = 0.0f;  // metres (shown in the user's length unit)
    float m_mruA = 0.0f;   // two further values, carried and interpolated
    float m_mruB = 0.0f;

    CSnsrMru() { m_type = tMru; }
    CSnsrMru(const CSnsrMru&) = default;
    CSnsrMru& operator=(const CSnsrMru&) = default;
    ~CSnsrMru() override = default;

    // Head, then f32 m_pitch, m_roll, m_heave, m_mruB, m_mruA: the last two
    // in the reverse of their order in memory, in both directions.
    void Serialize(CArchive& ar) override;
    // "%sH, %6.2lf°P, %6.2lf°R": the heave in the user's length unit
    // ("%6.2lf" and the unit), then pitch and roll.
    CString GetString(unsigned int nFlags = 0) const override;

    // All five values linearly in double between a (earlier, not null) and b
    // (later, or null), rounded to float, into out (not null); b null or
    // equal times copy a; t outside the pair extrapolates. out->m_time
    // becomes t; the other base fields of out are not written.
    static void Interpolate(double t, const CSnsrMru* a, const CSnsrMru* b, CSnsrMru* out);
};
