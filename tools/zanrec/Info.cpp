// zanrec info, dump and sensors: what a recording holds.
#include "Commands.h"
#include "Loaded.h"
#include "Road.h"
#include "Tide.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace zanrec {
namespace {

std::string Blocks(unsigned s)
{
    static const char* const names[] = {"raw", "pa", "img", "comp", "rb", "tgt", "vec"};
    std::string out;
    for (int b = 0; b < 7; ++b)
        if (s & (1u << b)) out += (out.empty() ? "" : ",") + std::string(names[b]);
    return out.empty() ? "-" : out;
}

std::string TimeText(double t)
{
    CTm80 tm(t);
    char frac[16];
    std::snprintf(frac, sizeof frac, "%.3f", t - std::floor(t));
    return tm.FormatGmt(u"%Y-%m-%d %H:%M:%S").Utf8() + (frac + 1);
}

// The compressed size of an image's intensity plane at its own level.
unsigned CompressedSize(CTgtImg& img)
{
    if (!img.m_pImg || img.m_nImgBytes == 0) return 0;
    std::vector<unsigned char> buf(img.m_nImgBytes);
    return img.Compress(img.m_pImg, buf.data(), static_cast<unsigned char>(img.m_nCompLevel));
}

// Reports the first damage of a recording; returns the exit code.
int ReportDamage(const Loaded& rec)
{
    if (!rec.rr.error.empty()) {
        std::fprintf(stderr, "zanrec: %s\n", rec.rr.error.c_str());
        return 1;
    }
    if (rec.badSensor >= 0) {
        std::fprintf(stderr, "zanrec: damaged sensor record: %s\n", rec.sensorError.c_str());
        return 1;
    }
    return 0;
}

} // namespace

int Info(const std::string& file, const std::string& tidePath)
{
    CTideObj tide;
    std::string tideError;
    if (!tidePath.empty() && !LoadTide(tidePath, tide, tideError)) {
        std::fprintf(stderr, "zanrec: %s\n", tideError.c_str());
        return 2;
    }
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    std::printf("%-5s %-23s %-11s %-22s %10s %10s %5s %4s%s\n", "ping", "time (UTC)", "size", "blocks", "record", "compressed",
                "tgts", "bnds", tidePath.empty() ? "" : "   tide m");
    CTgtImg* img = CTgtImg::GetImg();
    int rc = 0;
    for (size_t k = 0; k < rec.pings.size(); ++k) {
        std::string why;
        if (!LoadPing(rec, static_cast<int>(k), *img, why)) {
            std::fprintf(stderr, "zanrec: %s: damaged ping record: %s\n", file.c_str(), why.c_str());
            rc = 1;
            break;
        }
        char size[32];
        std::snprintf(size, sizeof size, "%ux%u", img->m_nBrgs, img->m_nRngs);
        std::string tideText;
        if (!tidePath.empty()) {
            char h[16] = "        -";  // no tide at this time
            if (const auto t = TideAt(tide, PingTime(*img))) std::snprintf(h, sizeof h, " %8.3f", *t);
            tideText = h;
        }
        std::printf("%-5zu %-23s %-11s %-22s %10zu %10u %5d %4d%s\n", k, TimeText(PingTime(*img)).c_str(), size,
                    Blocks(img->m_nState).c_str(), rec.rr.frames[static_cast<size_t>(rec.pings[k])].payload.size(),
                    CompressedSize(*img), img->m_tgtRec.GetCount(), img->m_bnds.GetCount(), tideText.c_str());
    }
    CTgtImg::DelImg(img);
    if (!rec.nav.Empty()) {
        std::printf("\n%-16s %6s %-23s %-23s %8s\n", "sensor", "count", "first (UTC)", "last (UTC)", "rate Hz");
        for (const auto& [type, run] : rec.nav.All()) {
            const double t0 = run.front()->m_time, t1 = run.back()->m_time;
            const double rate = run.size() > 1 && t1 > t0 ? (run.size() - 1) / (t1 - t0) : 0.0;
            std::printf("%-16s %6zu %-23s %-23s %8.2f\n", CSnsrInf::s_types[type].Utf8().c_str(), run.size(),
                        TimeText(t0).c_str(), TimeText(t1).c_str(), rate);
        }
    }
    return rc ? rc : ReportDamage(rec);
}

int Sensors(const std::string& file, const std::string& type, const std::string& at)
{
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    int want = -1;
    if (!type.empty()) {
        for (int k = 0; k < CSnsrInf::s_nTypes; ++k)
            if (CSnsrInf::s_types[k].CompareNoCase(CString::FromUtf8(type)) == 0 || std::to_string(k) == type) want = k;
        if (want < 0) {
            std::fprintf(stderr, "zanrec: unknown sensor type '%s'\n", type.c_str());
            return 2;
        }
    }
    if (!at.empty()) {
        char* end = nullptr;
        const double t = std::strtod(at.c_str(), &end);
        if (!end || *end) {
            std::fprintf(stderr, "zanrec: --at takes seconds since 1970 (UTC), not '%s'\n", at.c_str());
            return 2;
        }
        for (const auto& r : rec.nav.At(t))
            if (want < 0 || r->m_type == want)
                std::printf("%s %-16s %s\n", TimeText(t).c_str(), CSnsrInf::s_types[r->m_type].Utf8().c_str(),
                            r->GetString().Utf8().c_str());
        return ReportDamage(rec);
    }
    for (const auto& [t, run] : rec.nav.All()) {
        if (want >= 0 && t != want) continue;
        for (const auto& r : run)
            std::printf("%s %-16s bank %u  %s\n", TimeText(r->m_time).c_str(), CSnsrInf::s_types[t].Utf8().c_str(),
                        r->m_bank, r->GetString().Utf8().c_str());
    }
    return ReportDamage(rec);
}

int Catalogue()
{
    std::printf("%-4s %-4s %-14s %8s %7s %5s %9s %6s\n", "row", "type", "name", "freq Hz", "rate Hz", "elems", "pitch m",
                "flags");
    for (int i = 0; i < CArrType::s_nTypes; ++i) {
        const CArrType& r = CArrType::s_types[i];
        std::printf("%-4d %-4d %-14s %8u %7u %5u %9.6f 0x%04X\n", i, r.m_type, r.m_name.Utf8().c_str(), r.m_freq,
                    r.m_sampleRate, static_cast<unsigned>(r.m_nElements), static_cast<double>(r.m_pitch),
                    static_cast<unsigned>(r.m_flags));
    }
    return 0;
}

} // namespace zanrec
