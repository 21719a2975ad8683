#include "Survey.h"

#include <algorithm>
#include <cmath>

namespace zanrec {
namespace {
constexpr double kPi = 3.14159265358979323846;
constexpr double kD2R = kPi / 180.0;
constexpr double kSonarDepth = 1.5;     // below the surface, m
constexpr double kBeamSigmaDeg = 7.0;   // vertical beam pattern, 1/e half-width
} // namespace

Survey::Survey(const SurveyConfig& cfg) : m_cfg(cfg), m_rng(cfg.seed)
{
    // Objects on the bottom ahead of the start of the line, placed along the
    // track so that the fan sweeps over them.
    const double h = cfg.headingDeg * kD2R;
    const CV3 fwd(std::sin(h), std::cos(h), 0), stbd(std::cos(h), -std::sin(h), 0);
    auto on = [&](double ahead, double side) {
        CV3 p = fwd * ahead + stbd * side;
        p.z = SeabedDepth(p.x, p.y) - 0.2;
        return p;
    };
    std::uniform_real_distribution<double> u(-1.0, 1.0);
    // A pipe across the line, 30 m ahead.
    for (double s = -25.0; s <= 25.0; s += 0.25) m_objects.push_back({on(30.0 + 0.15 * s, s), 2.5});
    // A box, 4 m by 2 m, 22 m ahead and 9 m to starboard.
    for (double a = -2.0; a <= 2.0; a += 0.25)
        for (double b = -1.0; b <= 1.0; b += 0.5) m_objects.push_back({on(22.0 + b, 9.0 + a), 3.0});
    // A wreck-like cluster 40 m ahead, 10 m to port.
    for (int k = 0; k < 60; ++k) m_objects.push_back({on(40.0 + 5.0 * u(m_rng), -10.0 + 3.0 * u(m_rng)), 4.0});
}

double Survey::SeabedDepth(double x, double y) const
{
    return 14.0 + 0.04 * y + 0.6 * std::sin(x / 17.0) + 0.3 * std::cos(y / 9.0);
}

Pose Survey::PoseAt(double t) const
{
    Pose p;
    p.t = t;
    const double s = (t - m_cfg.startTime) * m_cfg.speed;
    const double h = m_cfg.headingDeg * kD2R;
    // A slow weave about the line, so that the track isn't a ruler.
    const double weave = 0.8 * std::sin((t - m_cfg.startTime) / 6.0);
    p.x = s * std::sin(h) + weave * std::cos(h);
    p.y = s * std::cos(h) - weave * std::sin(h);
    p.heading = h + 0.02 * std::cos((t - m_cfg.startTime) / 6.0);
    p.pitch = 1.5 * kD2R * std::sin(2 * kPi * t / 7.3);
    p.roll = 3.0 * kD2R * std::sin(2 * kPi * t / 5.1);
    p.heave = 0.25 * std::sin(2 * kPi * t / 6.7);
    p.depth = kSonarDepth + p.heave;
    p.altitude = SeabedDepth(p.x, p.y) - p.depth;
    p.sos = 1490.0 + 3.0 * std::sin((t - m_cfg.startTime) / 40.0);
    return p;
}

CMat Survey::SonarFrame(const Pose& p)
{
    const CV3 org(p.x + std::sin(p.heading), p.y + std::cos(p.heading), p.depth);
    return CMat(org, p.heading, p.pitch, p.roll);
}

void Survey::SetupPing(CPing& ping, int i) const
{
    ping.m_pingID = static_cast<BYTE>(i & 0xFF);
    ping.m_active = 1;
    ping.m_rx1Idx = kRxRow;
    ping.m_tx1Idx = kTxRow;
    ping.m_rx1ID = 1;
    ping.m_tx1ID = 1;
    ping.m_modFreq = kModFreq;
    ping.m_baseMF = kModFreq;
    ping.m_bfGain = 2;
    ping.m_aperture = static_cast<float>(2 * kHalfFanDeg);
    ping.SetNumBeams(m_cfg.beams);
    ping.SetSOSAtXd(1500.0f);
    // Beams at equal steps of the sine of the bearing across the fan.
    const double smax = std::sin(kHalfFanDeg * kD2R);
    for (int b = 0; b < m_cfg.beams; ++b)
        ping.m_pBrgTbl[b] = std::asin(smax * ((2.0 * b + 1.0) / m_cfg.beams - 1.0));
    ping.m_startRngL = 0;
    ping.m_endRngL = m_cfg.ranges;
    ping.m_startRngM = 0.0f;
    ping.m_endRngM = static_cast<float>(ping.GetImgRLM(m_cfg.ranges));
}

void Survey::FillRaw(CTgtImg& img, int i, const Pose& pose)
{
    const int B = m_cfg.beams, R = m_cfg.ranges;
    img.AllocQI(static_cast<unsigned>(R), static_cast<unsigned>(2 * B));
    img.m_nStartBrg = 0;
    img.m_nEndBrg = static_cast<UINT>(B);
    img.m_nStartRng = 0;
    img.m_nEndRng = static_cast<UINT>(R);
    CPing& ping = *img.Ping();
    const double lineM = 1500.0 * 0.5 / kModFreq;
    const double a = kTiltDeg * kD2R, sigma = kBeamSigmaDeg * kD2R;
    const double smax = std::sin(kHalfFanDeg * kD2R);
    const CMat frame = SonarFrame(pose);

    std::vector<double> echo(static_cast<size_t>(R) * B, 0.0);
    // The seabed: each sample's ray meets the bottom where its depression
    // gives the water depth at that range; the vertical beam pattern weighs it.
    for (int b = 0; b < B; ++b) {
        const double brg = ping.m_pBrgTbl[b];
        for (int l = 1; l < R; ++l) {
            const double r = l * lineM;
            const CV3 h = frame.LocalToGlobal(CV3(r * std::cos(a) * std::sin(brg), r * std::cos(a) * std::cos(brg), 0));
            const double dz = SeabedDepth(h.x, h.y) - pose.depth;
            if (dz <= 0 || dz >= r) continue;
            const double th = std::asin(dz / r);
            const double w = std::exp(-((th - a) / sigma) * ((th - a) / sigma));
            echo[static_cast<size_t>(l) * B + b] = 0.22 * w * (0.4 + std::sin(th));
        }
    }
    // The objects, as small bright blobs where they fall in the fan.
    for (const auto& s : m_objects) {
        const CV3 loc = frame.GlobalToLocal(s.p);
        const double r = loc.Length();
        if (r < 1.0) continue;
        const double brg = std::atan2(loc.x, loc.y), th = std::asin(loc.z / r);
        if (std::fabs(std::sin(brg)) >= smax) continue;
        const double w = std::exp(-((th - a) / sigma) * ((th - a) / sigma));
        const int l0 = static_cast<int>(r / lineM);
        const int b0 = static_cast<int>((std::sin(brg) / smax + 1.0) * B / 2.0);
        for (int dl = -2; dl <= 2; ++dl)
            for (int db = -1; db <= 1; ++db) {
                const int l = l0 + dl, b = b0 + db;
                if (l < 0 || l >= R || b < 0 || b >= B) continue;
                const double f = std::exp(-0.5 * (dl * dl + 2.0 * db * db));
                echo[static_cast<size_t>(l) * B + b] += s.strength * w * f;
            }
    }
    // Speckle (Rayleigh), a noise floor and a gain that rises with range.
    std::uniform_real_distribution<double> u(1e-9, 1.0);
    auto* q = reinterpret_cast<WORD*>(img.m_pQI);
    for (int l = 0; l < R; ++l) {
        const double gain = 0.55 + 0.9 * l / R;
        for (int b = 0; b < B; ++b) {
            const double speckle = std::sqrt(-2.0 * std::log(u(m_rng))) * 0.8;
            const double v = (0.02 + echo[static_cast<size_t>(l) * B + b]) * speckle * gain * 65535.0;
            q[static_cast<size_t>(l) * B + b] = static_cast<WORD>(std::clamp(v, 0.0, 65535.0));
        }
    }
    (void)i;
}

} // namespace zanrec
