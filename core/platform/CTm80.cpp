#include "core/platform/CTm80.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace {
// Days from 1970-01-01 to a proleptic Gregorian date (Howard Hinnant's algorithm).
long long DaysFromCivil(long long y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const long long era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<long long>(doe) - 719468;
}

CString FormatTm(const std::tm& tm, const CString& fmt)
{
    const std::string f = fmt.Utf8();
    if (f.empty()) return CString();
    std::string out(f.size() * 4 + 64, '\0');
    const size_t n = std::strftime(out.data(), out.size(), f.c_str(), &tm);
    out.resize(n);
    return CString::FromUtf8(out);
}

// Whole seconds as a time_t. A time beyond what time_t holds (a damaged
// record's NaN or 1e300) reads as the epoch rather than overflowing.
std::time_t ToTimeT(double t)
{
    const double s = std::floor(t);
    return s > -9.0e18 && s < 9.0e18 ? static_cast<std::time_t>(s) : 0;
}

} // namespace

void CTm80::SetTime(int year, int month, int day, int hour, int minute, int second, double fraction)
{
    m_t = static_cast<double>(DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day))) * 86400.0 +
          hour * 3600.0 + minute * 60.0 + second + fraction;
}

CString CTm80::Format(const CString& fmt) const
{
    const std::time_t t = ToTimeT(m_t);
    std::tm tm {};
    localtime_r(&t, &tm);
    return FormatTm(tm, fmt);
}

CString CTm80::FormatGmt(const CString& fmt) const
{
    const std::time_t t = ToTimeT(m_t);
    std::tm tm {};
    gmtime_r(&t, &tm);
    return FormatTm(tm, fmt);
}

CTm80 CTm80::Now()
{
    using namespace std::chrono;
    return CTm80(duration<double>(system_clock::now().time_since_epoch()).count());
}

CTmPrd::CTmPrd()
    : m_msPerCount(1000.0 * std::chrono::steady_clock::period::num / std::chrono::steady_clock::period::den)
{
}

void CTmPrd::Start() { m_start = m_stop = std::chrono::steady_clock::now().time_since_epoch().count(); }
void CTmPrd::Stop() { m_stop = std::chrono::steady_clock::now().time_since_epoch().count(); }
