#pragma once
// CSnsrVTG: course and speed over ground, the fields of a VTG sentence
// (type 10, "Course/Speed").
#include "sensors/CSnsrInf.h"

class CSnsrVTG : public CSnsrInf {
public:
    float m_courseT = 0.0f;   // course over ground, true, degrees
    float m_courseM = 0.0f;   // second course field of the sentence
    float m_speedKts = 0.0f;  // knots
    float m_speedKmh = 0.0f;  // second speed field of the sentence

    CSnsrVTG() { m_type = tVTG; }
    CSnsrVTG(const CSnsrVTG&) = default;
    CSnsrVTG& operator=(const CSnsrVTG&) = default;
    ~CSnsrVTG() override = default;

    // Head, then f32 m_courseT, m_courseM, m_speedKts, m_speedKmh.
    void Serialize(CArchive& ar) override;
    // "%1.1f°T %1.1fkts" of m_courseT and m_speedKts.
    CString GetString(unsigned int nFlags = 0) const override;

    // All four values linearly in double, rounded to float. Courses are plain
    // numbers here: 359 and 1 meet at 180 (use CSnsrGyro for a wrapping
    // angle). b null or equal times copy a; t outside the pair extrapolates.
    // out->m_time becomes t; other base fields untouched.
    static void Interpolate(double t, const CSnsrVTG* a, const CSnsrVTG* b, CSnsrVTG* out);
};
