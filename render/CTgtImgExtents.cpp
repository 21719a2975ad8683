// CTgtImg::SetupExtents: where each bearing of an image lies in the world.
#include "image/CTgtImg.h"

#include "core/platform/CMat.h"
#include "core/platform/ML.h"
#include "ping/CArrType.h"
#include "ping/CPing.h"

#include <algorithm>
#include <cmath>

namespace {

// Radius of the ring array, metres: added to the horizontal distance of every
// point of a ring image.
constexpr double kRingRadius = 0.0954844435875365;
// The receive row's family word that marks the ring.
constexpr unsigned short kRingFlags = 0x0040;

} // namespace

void CTgtImg::SetupExtents(CMat& sonar, CMat& tilt)
{
    if (m_vStart.empty() || m_vEnd.empty() || m_vDir.empty()) return;
    CPing& ping = m_tgtRec.m_ping;
    const double a = m_tgtRec.m_elevDeg * ML::d2r;
    const double nearM = m_nStartRng * ping.m_rlTime * 0.5 * m_tgtRec.m_sosAvg;
    const double farM = m_nEndRng * ping.m_rlTime * 0.5 * m_tgtRec.m_sosAvg;
    m_tgtRec.m_frame = sonar;

    // The window's bearings, cut to what the vectors hold (a wider window
    // would write past them).
    std::size_t n = m_nEndBrg > m_nStartBrg ? m_nEndBrg - m_nStartBrg : 0;
    n = std::min({n, m_vStart.size(), m_vEnd.size(), m_vDir.size()});

    // A row index beyond the catalogue is taken as a line array.
    const bool ring = ping.m_rx1Idx < CArrType::s_nTypes && CArrType::s_types[ping.m_rx1Idx].m_flags == kRingFlags;
    if (ring) {
        const double h0 = std::cos(a) * nearM + kRingRadius;
        const double h1 = std::cos(a) * farM + kRingRadius;
        const double z0 = nearM * std::sin(a);
        const double z1 = farM * std::sin(a);
        for (std::size_t i = 0; i < n; ++i) {
            // The angle goes by the bearing itself, so a window that starts
            // above bearing 0 keeps the true directions.
            const double x = static_cast<double>(m_nStartBrg + i);
            const double th = x * ML::pi2 / m_nBrgs;
            m_vStart[i] = sonar.LocalToGlobal(CV3(std::cos(th) * h0, std::sin(th) * h0, z0));
            m_vEnd[i] = sonar.LocalToGlobal(CV3(std::cos(th) * h1, std::sin(th) * h1, z1));
            m_vDir[i] = m_vEnd[i] - m_vStart[i];
            m_vDir[i].Normalise();
        }
        return;
    }

    // Line array: the bearing table, indexed from 0 with the window's place;
    // entries beyond the table are not read and their vectors stay.
    const std::size_t nTbl = ping.m_pBrgTbl && ping.m_numBeams > 0 ? static_cast<std::size_t>(ping.m_numBeams) : 0;
    n = std::min(n, nTbl);
    const double angle = ML::pi_2 - a;
    for (std::size_t i = 0; i < n; ++i) {
        const double brg = ML::pi_2 - ping.m_pBrgTbl[i];
        if (m_nStartRng > 0) TgtCalc::RT(&sonar, nearM, brg, &tilt, angle, m_vStart[i]);
        else m_vStart[i] = sonar.Org();
        TgtCalc::RT(&sonar, farM, brg, &tilt, angle, m_vEnd[i]);
        m_vDir[i] = m_vEnd[i] - m_vStart[i];
        m_vDir[i].Normalise();
    }
}
