#pragma once
// CSnsrZ: a depth (type 4, "Depth").
#include "sensors/CSnsrInf.h"

class CSnsrZ : public CSnsrInf {
public:
    float m_depth = 0.0f;        // metres
    float m_depthFactor = 1.0f;  // further value of the reading, carried and stored
    WORD m_rawUnits = 0;         // non-zero: the text shows the plain number

    CSnsrZ() { m_type = tDepth; }
    CSnsrZ(const CSnsrZ&) = default;
    CSnsrZ& operator=(const CSnsrZ&) = default;
    ~CSnsrZ() override = default;

    // Head, then f32 m_depth, f32 m_depthFactor, u16 m_rawUnits.
    void Serialize(CArchive& ar) override;
    // "%7.2lf" of m_depth: as it is when m_rawUnits is non-zero, otherwise in
    // the user's length unit with its symbol.
    CString GetString(unsigned int nFlags = 0) const override;

    // m_depth linearly (double, rounded to float); m_depthFactor and
    // m_rawUnits from a. b null or equal times copy a; t outside the pair
    // extrapolates. out->m_time becomes t; other base fields untouched.
    static void Interpolate(double t, const CSnsrZ* a, const CSnsrZ* b, CSnsrZ* out);
};
