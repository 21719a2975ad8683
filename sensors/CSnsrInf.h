#pragma once
// CSnsrInf: base of the time-stamped sensor records, their type table and the
// factory that makes a record from a type id or from another record.
//
// A record is a plain object with public fields and no lock; whoever holds it
// owns it. Every class of the family derives directly from CSnsrInf and sets
// its own type id in its default constructor.
#include "core/platform/CArchive.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

class CSnsrInf {
public:
    // Type ids. 12 and 13 are the stream carriers, which the factory refuses;
    // 15 (PPS) and 16 (Annotate) are plain CSnsrInf records.
    enum : BYTE {
        tRaw = 0, tPos = 1, tGyro = 2, tMru = 3, tDepth = 4, tArt = 5, tSOS = 6, tTime = 7, tAlt = 8,
        tClient = 9, tVTG = 10, tSettings = 11, tSCADA = 12, tStallPing = 13, tMarker = 14, tPPS = 15,
        tAnnotate = 16, tTemp = 17, tPressure = 18, tClientBinary = 19
    };
    static constexpr int s_nTypes = 20;
    // Display names by type id; entries 12 and 13 are empty. Read-only.
    static CString s_types[s_nTypes];

    double m_time = 0.0;  // time stamp; the scale is the host's
    BYTE m_type = 0;      // type id (tRaw for a plain record)
    BYTE m_bank = 0;      // sensor bank (unit) that produced the record
    WORD m_aux = 0;       // carried and stored, never read here
    CString m_raw;        // raw text of the sensor message

    CSnsrInf() = default;
    CSnsrInf(const CSnsrInf&) = default;
    CSnsrInf& operator=(const CSnsrInf&) = default;
    virtual ~CSnsrInf() = default;

    // Stores or loads the common head: u8 m_type, u8 m_bank, string m_raw,
    // u16 m_aux, f64 m_time (the time last). Loading overwrites m_type with
    // the stored byte, whatever the class. Archive exceptions pass through,
    // leaving the record partly loaded.
    virtual void Serialize(CArchive& ar);
    // The record as one line of text; the argument is not read. Here: m_raw.
    virtual CString GetString(unsigned int nFlags = 0) const;

    // A new default record of the class for `type`, owned by the caller and
    // released through the virtual destructor. Null for 12, 13 and anything
    // above 19 (negative ids count as above 19). 15 and 16 give a plain
    // record whose m_type is 0 until it is loaded or set.
    static CSnsrInf* Create(int type);
    // A new copy of `src` (not null), in the class of its m_type. Null for
    // ids 12, 13 and above 18: a client binary block (19) cannot be copied.
    // Ids 0, 15 and 16 copy as a plain record keeping src's id. A src whose
    // object is not of the class its m_type names also gives null.
    static CSnsrInf* CreateCopy(const CSnsrInf* src);

protected:
    // Shared by the classes' Interpolate. Values are copied from a when b is
    // null or the two share a time stamp.
    static bool CopiesA(const CSnsrInf* a, const CSnsrInf* b) { return !b || a->m_time == b->m_time; }
    // Where t lies between a (0) and b (1); not limited, so t outside the
    // pair extrapolates.
    static double Frac(double t, const CSnsrInf* a, const CSnsrInf* b)
    {
        return (t - a->m_time) / (b->m_time - a->m_time);
    }
    // va + f (vb - va) in double; the float form rounds the result to single.
    static double Lerp(double va, double vb, double f) { return va + f * (vb - va); }
    static float Lerp(float va, float vb, double f)
    {
        return static_cast<float>(Lerp(static_cast<double>(va), static_cast<double>(vb), f));
    }
};
