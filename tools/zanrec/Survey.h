#pragma once
// A synthetic survey: a vessel running a straight line over a sloping,
// gently rolling seabed, with a forward-looking multibeam sonar tilted down,
// and a few strong objects on the bottom (a pipe, a box, a wreck-like
// cluster). Everything is deterministic for a seed.
//
// World axes are the library's: x east, y north, z down, metres from the
// survey origin.
#include <zandata/ZanData.h>

#include <cstdint>
#include <random>
#include <vector>

namespace zanrec {

struct SurveyConfig {
    int pings = 40;
    int beams = 256;
    int ranges = 1000;
    std::uint32_t seed = 1;
    double pingRate = 5.0;     // pings per second
    double speed = 2.0;        // m/s over the ground
    double headingDeg = 30.0;  // course of the survey line
    double startTime = 1767225600.0;  // 2026-01-01 00:00:00 UTC
    double originLat = 50.0;   // degrees, where the line starts
    double originLon = -1.0;
};

// The vessel's state at a time, from the survey's own model.
struct Pose {
    double t = 0.0;
    double x = 0.0, y = 0.0;  // east, north from the origin, m
    double heading = 0.0;     // rad, clockwise from north
    double pitch = 0.0, roll = 0.0, heave = 0.0;  // rad, rad, m (down)
    double depth = 0.0;       // sonar depth below the surface, m
    double altitude = 0.0;    // sonar height above the seabed, m
    double sos = 1500.0;      // speed of sound at the sonar, m/s
};

class Survey {
public:
    explicit Survey(const SurveyConfig& cfg);

    const SurveyConfig& Config() const { return m_cfg; }
    double PingTime(int i) const { return m_cfg.startTime + i / m_cfg.pingRate; }
    double EndTime() const { return PingTime(m_cfg.pings - 1) + 1.0; }
    Pose PoseAt(double t) const;
    // Depth of the seabed at a world point, m.
    double SeabedDepth(double x, double y) const;

    // The sonar's depression below the horizontal, degrees.
    static constexpr double kTiltDeg = 20.0;
    // Range lines per second of the image (5 cm lines at 1500 m/s).
    static constexpr int kModFreq = 15000;
    // Receive and transmit rows of the catalogue: the 256-element 240 kHz head.
    static constexpr int kRxRow = 6;
    static constexpr int kTxRow = 7;
    // Half the fan's width, degrees.
    static constexpr double kHalfFanDeg = 60.0;

    // Fills the ping's parameters and bearing table for ping i (the image's
    // ping must be set before its planes are sized).
    void SetupPing(CPing& ping, int i) const;
    // Sizes and fills the raw 16-bit plane of `img` for ping i at the pose,
    // with speckle, the seabed return, the objects and a range-dependent gain.
    // Some pings also get a zoom region.
    void FillRaw(CTgtImg& img, int i, const Pose& pose);
    // The sonar's frame for a pose (the head sits 1 m ahead of the vessel's
    // reference point).
    static CMat SonarFrame(const Pose& p);

private:
    SurveyConfig m_cfg;
    std::mt19937 m_rng;
    struct Scatterer {
        CV3 p;
        double strength;
    };
    std::vector<Scatterer> m_objects;
};

} // namespace zanrec
