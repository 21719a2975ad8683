#pragma once
// CProj: one Transverse Mercator projection of the geodetic database.
//
// In memory and in the archive the two origin angles are radians; the
// database text holds them in degrees (Geo::ReadDb, Geo::WriteDb convert).
#include "core/platform/CString.h"

class CArchive;

class CProj {
public:
    // The record's name, the key of Geo::GetProj (case-sensitive).
    CString m_name = u"UTM_30";
    // Latitude of origin φ0, radians.
    double m_latOrigin = 0.0;
    // Central meridian λ0, radians (minus 3 degrees by default).
    double m_lonOrigin = -0.0523598775598;
    // False easting E0 and false northing N0, metres.
    double m_falseEast = 500000.0;
    double m_falseNorth = 0.0;
    // Scale factor k0 on the central meridian.
    double m_scale = 0.9996;

    CProj() = default;
    CProj(const CProj&) = default;
    CProj& operator=(const CProj&) = default;
    ~CProj() = default;

    // 1 when the names are equal (case-sensitive), both origin angles differ
    // by strictly less than ML::threshold radians, and false easting, false
    // northing and scale are exactly equal; else 0. The tolerance lets a
    // record that went through the 14-digit degrees of the text file match
    // its original.
    int operator==(const CProj& o) const;

    // Name, then φ0, λ0 (radians), E0, N0, k0 as f64.
    void Serialize(CArchive& ar);
};
