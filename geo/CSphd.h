#pragma once
// CSphd: one spheroid (reference ellipsoid) of the geodetic database.
#include "core/platform/CString.h"

class CArchive;

class CSphd {
public:
    // The record's name, the key of Geo::GetSphd (case-sensitive).
    CString m_name = u"WGS84";
    // Semi-major axis a, metres.
    double m_semiMajor = 6378137.0;
    // Semi-minor axis b, metres.
    double m_semiMinor = 6356752.314;
    // First eccentricity squared e² (the database column "Eccentricity").
    double m_ecc2 = 0.006694380023;
    // Inverse flattening 1/f (the database column "Flattening"). Carried,
    // compared and stored; no conversion reads it.
    double m_invFlat = 298.2572;

    // The four numbers are independent: none is derived from the others, and
    // the conversions take a, b and e² each from its own field.
    CSphd() = default;
    CSphd(const CSphd&) = default;
    CSphd& operator=(const CSphd&) = default;
    ~CSphd() = default;

    // 1 when the names are equal (case-sensitive) and all four numbers are
    // exactly equal, else 0.
    int operator==(const CSphd& o) const;

    // Name, then a, b, e², 1/f as f64; the same order storing and loading.
    void Serialize(CArchive& ar);
};
