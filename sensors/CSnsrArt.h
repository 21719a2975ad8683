#pragma once
// CSnsrArt: the angle of an articulation axis (type 5, "Articulation").
#include "sensors/CSnsrInf.h"

class CSnsrArt : public CSnsrInf {
public:
    int m_axis = 0;           // 0 RX, 1 RY, 2 RZ
    float m_angle = 0.0f;     // degrees
    float m_angleLo = 0.0f;   // ends of the range shown beside the angle, degrees
    float m_angleHi = 0.0f;

    CSnsrArt() { m_type = tArt; }
    CSnsrArt(const CSnsrArt&) = default;
    CSnsrArt& operator=(const CSnsrArt&) = default;
    ~CSnsrArt() override = default;

    // Head, then i32 m_axis, f32 m_angle, m_angleLo, m_angleHi.
    void Serialize(CArchive& ar) override;
    // "RX:%6.2lf° (%6.2lf°-%6.2lf°)" of angle, low and high ("RY", "RZ" for
    // axes 1 and 2); any other axis gives an empty string.
    CString GetString(unsigned int nFlags = 0) const override;

    // The three angles linearly (double, rounded to float, no wrapping);
    // m_axis from a. b null or equal times copy a; t outside the pair
    // extrapolates. out->m_time becomes t; other base fields untouched.
    static void Interpolate(double t, const CSnsrArt* a, const CSnsrArt* b, CSnsrArt* out);
};
