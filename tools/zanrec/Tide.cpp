#include "Tide.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace zanrec {

bool LoadTide(const std::string& path, CTideObj& tide, std::string& why)
{
    // ReadTHL says nothing about a file it cannot open; find out first.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!f || std::filesystem::is_directory(path)) {
        why = "cannot open tide file " + path;
        return false;
    }
    f.reset();
    // The library reports every point it reads to the console; a tool run
    // wants only the result.
    const Zan::Sink old = Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
    tide.ReadTHL(CString::FromUtf8(path));
    Zan::SetSink(old);
    if (tide.GetCount() < 2) {
        why = "tide file " + path + " holds " + std::to_string(tide.GetCount()) +
              " tide points; a table needs two or more lines \"d/m/Y H:M[:S],height\"";
        return false;
    }
    tide.m_fileName = CString::FromUtf8(path);
    tide.m_strName = CString::FromUtf8(std::filesystem::path(path).stem().string());
    return true;
}

std::optional<double> TideAt(CTideObj& tide, double t)
{
    const double h = tide.GetTide(t);
    if (h == CTideObj::kNoTide) return std::nullopt;
    return h;
}

std::string TidePathFor(const std::string& recording)
{
    return std::filesystem::path(recording).replace_extension(".tid").string();
}

void WriteSynthTide(const std::string& path, double t0, double t1)
{
    constexpr double kHalfCycle = 6.0 * 3600.0 + 12.5 * 60.0;
    constexpr double kLow = 0.62, kHigh = 4.37;  // metres above chart datum
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::fopen(path.c_str(), "w"), std::fclose);
    if (!f) throw std::runtime_error("cannot write tide file " + path);
    std::fprintf(f.get(), "Date,Time,Height (m)\n");
    // Low water half a cycle's half before t0: the survey sees the tide
    // rising at its fastest.
    const double firstLow = t0 - kHalfCycle / 2;
    const int before = static_cast<int>(std::ceil(12.0 * 3600.0 / kHalfCycle));
    const int after = static_cast<int>(std::ceil((t1 - firstLow + 12.0 * 3600.0) / kHalfCycle));
    for (int k = -before; k <= after; ++k) {
        const double t = std::round(firstLow + k * kHalfCycle);
        // Springs and neaps, slowly: each high and low a little different.
        const double swing = 0.08 * std::sin(k * 0.45);
        const double h = (k % 2 == 0 ? kLow - swing : kHigh + swing);
        std::fprintf(f.get(), "%s,%.2f\n", CTm80(t).FormatGmt(u"%d/%m/%Y %H:%M:%S").Utf8().c_str(), h);
    }
    if (std::fflush(f.get()) != 0) throw std::runtime_error("cannot write tide file " + path);
}

} // namespace zanrec
