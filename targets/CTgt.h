#pragma once
// CTgt: one target found in a ping's image. It is a CV3 (its world position,
// metres, z positive downward) followed by where it lay in the image, how
// strong it was and its class. A plain value class, copied freely; a CTgtRec
// owns the targets of one ping.
#include "core/CList_Ptr.h"
#include "core/platform/CV3.h"
#include "core/platform/Types.h"

class CArchive;

class CTgt : public CV3 {
public:
    unsigned int m_rngK = 0;     // range, thousandths of a range line (input of CPing::GetTime)
    unsigned int m_brgK = 0;     // bearing, thousandths of a beam line (input of CPing::GetBrg)
    double m_tgtValue = 0.0;     // value carried with the target
    unsigned short m_level = 0;  // strength, 0 to 255 for drawing
    BYTE m_kind = 0;             // class: 0 not drawn, 1 to 3 pick the colour
    BYTE m_tgtByte = 0;          // further byte, stored and restored
    BYTE m_rollMark = 0;         // 1 or 2 on the targets that roll compensation marks; not recorded
    float m_roll = 0.0f;         // roll value of the ping; not recorded

    // Position (0, 0, 0), every other field zero.
    CTgt() = default;
    // Copy every field, position and roll fields included.
    CTgt(const CTgt&) = default;
    CTgt& operator=(const CTgt&) = default;
    // Writes a position into the target: x, y and z only; every other field
    // stays.
    CV3& operator=(const CV3& v)
    {
        x = v.x;
        y = v.y;
        z = v.z;
        return *this;
    }

    // Position form, both directions: the CV3 record (three f64) then the
    // 20-byte tail below; 44 bytes.
    void SerializeTgt(CArchive& ar);
    // Range and bearing form, both directions: the 20-byte tail alone,
    //   u32 m_rngK, u32 m_brgK, f64 m_tgtValue, u16 m_level, u8 m_kind,
    //   u8 m_tgtByte.
    // x, y and z are neither written nor read. m_rollMark and m_roll are never
    // recorded; reading leaves them as they were.
    void SerializeRngBrg(CArchive& ar);
};

// The target list (base of CTgtRec) is compiled complete into the library,
// in CTgt.cpp, for hosts that link to it.
extern template class CList_Ptr<CTgt*>;
