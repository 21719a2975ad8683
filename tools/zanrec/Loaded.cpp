#include "Loaded.h"

#include "Road.h"

#include <cmath>
#include <cstdio>

namespace zanrec {

bool LoadRecording(const std::string& path, Loaded& out)
{
    out.rr = ReadRecording(path);
    if (out.rr.frames.empty() && out.rr.badFrame < 0 && !out.rr.error.empty()) {
        std::fprintf(stderr, "zanrec: %s\n", out.rr.error.c_str());
        return false;
    }
    for (size_t i = 0; i < out.rr.frames.size(); ++i) {
        const Frame& f = out.rr.frames[i];
        if (f.kind == static_cast<std::uint8_t>(FrameKind::Ping)) {
            out.pings.push_back(static_cast<int>(i));
        } else if (f.kind == static_cast<std::uint8_t>(FrameKind::Sensor)) {
            std::string why;
            auto rec = LoadSensor(f.type, f.payload, why);
            if (!rec) {
                if (out.badSensor < 0) {
                    out.badSensor = static_cast<int>(i);
                    out.sensorError = "frame " + std::to_string(i) + " at byte " + std::to_string(f.offset) + ": " + why;
                }
                continue;
            }
            if (!out.hasRef && rec->m_type == CSnsrInf::tPos) {
                // The survey's origin is the first fix that is a place on
                // the earth; a damaged one is kept as a record only.
                const auto& p = static_cast<const CSnsrPos&>(*rec);
                if (std::fabs(p.m_geo.y) <= 90.0 && std::fabs(p.m_geo.x) <= 180.0) {
                    out.ref.SetOrigin(p.m_geo.y, p.m_geo.x);
                    out.hasRef = true;
                }
            }
            out.nav.Add(std::move(rec));
        }
    }
    out.nav.Finish();
    return true;
}

bool LoadPing(const Loaded& rec, int index, CTgtImg& img, std::string& why)
{
    const Frame& f = rec.rr.frames[static_cast<size_t>(rec.pings[static_cast<size_t>(index)])];
    try {
        if (!LoadImage(img, f.payload)) {
            why = "frame " + std::to_string(rec.pings[static_cast<size_t>(index)]) + " at byte " +
                  std::to_string(f.offset) + ": ping record has bytes left over";
            return false;
        }
    } catch (const std::exception& e) {
        why = "frame " + std::to_string(rec.pings[static_cast<size_t>(index)]) + " at byte " +
              std::to_string(f.offset) + ": " + e.what();
        return false;
    }
    return true;
}

} // namespace zanrec
