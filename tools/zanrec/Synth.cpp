// zanrec synth: a synthetic survey run along the road of a ping into a recording.
#include "Commands.h"
#include "Nav.h"
#include "Progress.h"
#include "Recording.h"
#include "Road.h"
#include "Survey.h"
#include "Tide.h"

#include <cstdio>
#include <stdexcept>

namespace zanrec {

int Synth(const SynthOptions& o, SynthReport* report)
{
    if (o.pings < 1 || o.beams < 8 || o.beams > 4096 || o.ranges < 16 || o.ranges > 20000) {
        std::fprintf(stderr, "zanrec: synth needs 1 or more pings, 8..4096 beams and 16..20000 ranges\n");
        return 2;
    }
    try {
        SurveyConfig cfg;
        cfg.pings = o.pings;
        cfg.beams = o.beams;
        cfg.ranges = o.ranges;
        cfg.seed = o.seed;
        Survey survey(cfg);
        GridRef ref{cfg.originLat, cfg.originLon};
        auto nav = SynthNav(survey, ref, cfg.startTime, survey.EndTime());
        Road road(survey, o.raw, o.filter);
        RecordingWriter w(o.out);
        StepTimes times;
        size_t next = 0;
        Progress prog("synth: ping", o.pings);
        double rawBytes = 0, recBytes = 0;
        for (int i = 0; i < o.pings; ++i) {
            const double t = survey.PingTime(i);
            // Sensor records up to the ping's time go first, as a host logs them.
            for (; next < nav.size() && nav[next]->m_time <= t; ++next) {
                auto bytes = StoreSensor(*nav[next]);
                w.Write(FrameKind::Sensor, nav[next]->m_type, bytes.data(), bytes.size());
            }
            PingResult r = road.Run(i, survey.PoseAt(t), times);
            w.Write(FrameKind::Ping, 0, r.record.data(), r.record.size());
            rawBytes += r.rawBytes;
            recBytes += static_cast<double>(r.record.size());
            prog.Step(i + 1);
        }
        for (; next < nav.size(); ++next) {
            auto bytes = StoreSensor(*nav[next]);
            w.Write(FrameKind::Sensor, nav[next]->m_type, bytes.data(), bytes.size());
        }
        w.Close();
        prog.Done();
        // High and low waters round the survey, for --tide.
        const std::string tidePath = o.tideOut.empty() ? TidePathFor(o.out) : o.tideOut;
        WriteSynthTide(tidePath, cfg.startTime, survey.EndTime());
        if (report) {
            const double n = times.pings ? times.pings : 1;
            const double ms[7] = {times.fill, times.normalise, times.filter, times.extents, times.create, times.detect,
                                  times.record};
            for (int k = 0; k < 7; ++k) report->ms[k] = ms[k] / n;
            report->pings = times.pings;
            report->imageBytes = rawBytes;
            report->recordBytes = recBytes;
            report->fileBytes = static_cast<double>(w.BytesWritten());
            report->sensorRecords = nav.size();
            report->tideFile = tidePath;
        } else
            std::printf("%s: %d pings of %d beams x %d ranges, %zu sensor records, %.0f bytes (image planes %.0f bytes); "
                        "tide in %s\n",
                        o.out.c_str(), o.pings, o.beams, o.ranges, nav.size(), static_cast<double>(w.BytesWritten()),
                        rawBytes, tidePath.c_str());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "zanrec: synth: %s\n", e.what());
        return 1;
    }
    return 0;
}

} // namespace zanrec
