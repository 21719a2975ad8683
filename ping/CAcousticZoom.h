#pragma once
// CAcousticZoom: the parameters of an acoustic zoom, a second image within a
// ping covering part of the sonar's fan with its own beams and range-line
// spacing. Held by value as CPing::m_zoom; its image planes belong to
// CTgtImg. Its body is recorded in the zoom block, the one versioned record
// of the ping model (CPing::SerializeAcousticZoom writes the block's head).
#include "core/platform/Types.h"

class CArchive;

// A group of working values of a zoom region: two integers, then two doubles.
// Not recorded.
struct CAzSet {
    int m_n[2] = {0, 0};
    double m_d[2] = {0.0, 0.0};
};

class CAcousticZoom {
public:
    // Layout of the body that SerializeAcousticZoom writes; a block is headed
    // with this number when stored.
    static constexpr unsigned short s_writeVersion = 2;

    unsigned short m_azHead = 0;   // head word of the region
    bool m_azOn = false;           // true: a zoom region exists
    double m_azFactor = 1.5;       // factor of the region
    unsigned short m_azDecim = 1;  // zoom range line = this many of the ping's m_baseMF lines
    short m_azNumBeams = 0;        // beams of the zoom image
    double m_azArg1 = 0.0;         // first value of the region
    double m_azArg2 = 0.0;         // second value of the region
    CAzSet m_azSetA;               // first group of working values (not recorded)
    CAzSet m_azSetB;               // second group of working values (not recorded)

    CAcousticZoom() = default;
    CAcousticZoom(const CAcousticZoom&) = default;
    CAcousticZoom& operator=(const CAcousticZoom&) = default; // every field, both groups included

    // Writes or reads the body of the zoom block.
    //
    // Storing ignores `version` and always writes the version 2 layout:
    // u16 m_azHead, u8 m_azOn (1 or 0), and only when m_azOn: f64 m_azArg1,
    // f64 m_azArg2, u16 m_azDecim, i16 m_azNumBeams, f64 m_azFactor
    // (3 bytes off, 31 bytes on).
    //
    // Loading reads the layout of `version`: m_azHead and m_azOn, then, when
    // the region is on, version 0 nothing more before m_azDecim; version 1 two
    // bytes that are dropped; version 2 and above m_azArg1 and m_azArg2. Then
    // m_azDecim, m_azNumBeams and m_azFactor, and for version 1 a trailing
    // CV3 record (24 bytes) that is dropped. A region read as off leaves every
    // other field as it was.
    //
    // Returns m_azOn: false when the region is off, true when a whole body
    // went through. A short stream raises CArchiveException cause 3.
    bool SerializeAcousticZoom(CArchive& ar, unsigned short version);
};
