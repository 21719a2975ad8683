#pragma once
// CArrType: one transducer array of a sonar head, and CArrType::s_types, the
// fixed catalogue of every array the system knows. A CPing names its arrays by
// row number in this catalogue (m_rx1Idx, m_tx1Idx, m_rx2Idx, m_tx2Idx), and
// all its frequency and beam geometry comes from the row it names.
#include "core/platform/CString.h"
#include "core/platform/CV3.h"

class CArrType {
public:
    // Number of rows of s_types.
    static constexpr int s_nTypes = 27;

    int m_type;                 // 1 receive array, 4 transmit array, 2 pinger or 96-element transmit array
    CString m_name;             // display name; not unique ("RX" stands on 9 rows)
    unsigned int m_freq;        // operating frequency, Hz
    unsigned int m_sampleRate;  // sample rate, Hz (m_freq / 8, rounded down)
    unsigned short m_nElements; // number of elements
    float m_pitch;              // element spacing, metres; 0 on single-element rows
    double m_clkPeriod;         // period of the array's clock, seconds
    unsigned short m_flags;     // family bit (0x1000: the 256-element receive array, 0x40: the ring)
    CV3 m_pos;                  // position in the head, metres; zero where none is known
    float m_rotX;               // rotation, degrees
    float m_rotY;               // rotation, degrees
    float m_rotZ;               // rotation, degrees

    // Stores each argument in the field of the same name. `flags` comes last
    // although its field stands before m_pos. `pos` is taken by const
    // reference so that a temporary may be passed; the row keeps a copy.
    CArrType(int type, CString name, unsigned int freq, unsigned int sampleRate, unsigned short nElements,
             float pitch, double clkPeriod, const CV3& pos, float rotX, float rotY, float rotZ,
             unsigned short flags);
    CArrType(const CArrType&) = default;
    CArrType& operator=(const CArrType&) = default;
    ~CArrType() = default;

    // The catalogue, read by row number 0..26. Built at library load before
    // any other static object of the library, and never changed afterwards.
    static CArrType s_types[s_nTypes];
};
