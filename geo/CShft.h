#pragma once
// CShft: one seven-parameter datum shift (Helmert, position-vector rotations)
// of the geodetic database, from a primary datum to a secondary one.
#include "core/platform/CString.h"

class CArchive;

class CShft {
public:
    // The record's name, the key of Geo::GetShft (case-sensitive).
    CString m_name = u"NO_SHIFT";
    // Translation, metres.
    double m_dX = 0.0, m_dY = 0.0, m_dZ = 0.0;
    // Rotation about each axis, arc-seconds (database columns AX, AY, AZ).
    double m_rotX = 0.0, m_rotY = 0.0, m_rotZ = 0.0;
    // Scale change, parts per million (database column "Scale").
    double m_ppm = 0.0;

    CShft() = default;
    CShft(const CShft&) = default;
    CShft& operator=(const CShft&) = default;
    ~CShft() = default;

    // 1 when the names are equal (case-sensitive) and all seven numbers are
    // exactly equal, else 0.
    int operator==(const CShft& o) const;

    // Name, then dX, dY, dZ, rotX, rotY, rotZ, ppm as f64.
    void Serialize(CArchive& ar);
};
