#pragma once
// CTm80: a time, seconds since 1970-01-01 00:00:00 UTC in its first field.
// CTmPrd: a period timer on the steady clock.
#include "core/platform/CString.h"

#include <cstdint>

class CTm80 {
public:
    double m_t = 0.0;  // seconds since 1970-01-01 UTC; 0.0 by default

    CTm80() = default;
    explicit CTm80(double t) : m_t(t) {}
    virtual ~CTm80() = default;
    CTm80(const CTm80&) = default;
    CTm80& operator=(const CTm80&) = default;

    // Sets the time from a UTC calendar date: four-digit year, month and day
    // from 1, hour 0-23, minute, second, and a fraction of a second added.
    void SetTime(int year, int month, int day, int hour, int minute, int second, double fraction);
    // strftime-style text (%d %m %Y %H %M %S and the others of strftime); the
    // first by local time, the second by UTC. Other characters stand as they are.
    // A time that is not finite or lies beyond time_t's range is taken as the
    // epoch.
    CString Format(const CString& fmt) const;
    CString FormatGmt(const CString& fmt) const;
    // The current time.
    static CTm80 Now();
};

class CTmPrd {
public:
    std::int64_t m_start = 0;  // steady-clock counts
    std::int64_t m_stop = 0;
    double m_msPerCount;       // milliseconds per count

    CTmPrd();
    void Start();
    void Stop();
    // (m_stop - m_start) * m_msPerCount.
    double Ms() const { return static_cast<double>(m_stop - m_start) * m_msPerCount; }
};
