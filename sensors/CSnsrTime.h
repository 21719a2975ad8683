#pragma once
// CSnsrTime: the time of a ZDA sentence (type 7, "ZDA Time").
#include "core/platform/CTm80.h"
#include "sensors/CSnsrInf.h"

class CSnsrTime : public CSnsrInf {
public:
    CTm80 m_zda;        // the time the sensor reported
    BYTE m_zoneHr = 0;  // the sentence's local zone fields
    BYTE m_zoneMin = 0;

    CSnsrTime() { m_type = tTime; }
    CSnsrTime(const CSnsrTime&) = default;
    CSnsrTime& operator=(const CSnsrTime&) = default;
    ~CSnsrTime() override = default;

    // Head, then f64 the seconds of m_zda, u8 m_zoneHr, u8 m_zoneMin.
    void Serialize(CArchive& ar) override;
    // "2024/02/29 13:05:09......., 0-0": m_zda in UTC by
    // "%Y/%m/%d %H:%M:%S.......", then the zone hours and minutes.
    CString GetString(unsigned int nFlags = 0) const override;

    // The seconds of m_zda linearly in double; the zone fields from a. b null
    // or equal times copy a; t outside the pair extrapolates. out->m_time
    // becomes t; other base fields untouched.
    static void Interpolate(double t, const CSnsrTime* a, const CSnsrTime* b, CSnsrTime* out);
};
