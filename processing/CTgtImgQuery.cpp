// Queries on one place of a CTgtImg: the sample nearest a range and bearing,
// and the echo level round a sample.
#include "image/CTgtImg.h"

#include "ping/CPing.h"

#include <algorithm>
#include <cmath>

bool CTgtImg::GetRngBrg(double rng, double brg, int& rngIdx, int& brgIdx)
{
    const CPing* ping = Ping();
    const double m = static_cast<double>(ping->m_sosXd) * 0.5 / static_cast<double>(ping->m_modFreq);
    const double* tbl = ping->m_pBrgTbl;
    if (!(m > 0.0) || !tbl) return false;
    // The window must hold a bearing and lie within the table.
    if (m_nEndBrg <= m_nStartBrg || m_nEndBrg > static_cast<UINT>(std::max<int>(ping->m_numBeams, 0))) return false;
    const double line = std::floor(rng / m + 0.5);

    // Bisection over the window's bearings; lo ends on the smaller bearing
    // whichever way the table runs.
    int lo = static_cast<int>(m_nStartBrg), hi = static_cast<int>(m_nEndBrg) - 1;
    if (tbl[lo] > tbl[hi]) std::swap(lo, hi);
    while (std::abs(hi - lo) > 1) {
        const int mid = (lo + hi) / 2;
        if (brg < tbl[mid]) hi = mid;
        else lo = mid;
    }
    const int nearest = std::fabs(tbl[lo] - brg) < std::fabs(tbl[hi] - brg) ? lo : hi;

    if (!(line >= static_cast<double>(m_nStartRng) && line < static_cast<double>(m_nEndRng))) return false;
    if (nearest < static_cast<int>(m_nStartBrg) || nearest >= static_cast<int>(m_nEndBrg)) return false;
    rngIdx = static_cast<int>(line);
    brgIdx = nearest;
    return true;
}

double CTgtImg::GetIntensityDB(int rngIdx, int brgIdx, int win)
{
    if (!m_pImg) return 0.0;
    if (rngIdx < 0 || static_cast<UINT>(rngIdx) < m_nStartRng || static_cast<UINT>(rngIdx) >= m_nEndRng) return 0.0;
    if (brgIdx < 0 || static_cast<UINT>(brgIdx) < m_nStartBrg || static_cast<UINT>(brgIdx) >= m_nEndBrg) return 0.0;
    if (Ping()->m_gainMode != 1) return 0.0;

    const long long w = std::max(win, 0);
    const long long r0 = std::max<long long>(m_nStartRng, rngIdx - w), r1 = std::min<long long>(m_nEndRng - 1LL, rngIdx + w);
    const long long c0 = std::max<long long>(m_nStartBrg, brgIdx - w), c1 = std::min<long long>(m_nEndBrg - 1LL, brgIdx + w);
    double best = -84.0;
    for (long long r = r0; r <= r1; ++r) {
        // The gain the line was recorded with: the first word of its record,
        // 1 when there is no record (or it holds 0).
        double g = 1.0;
        if (m_pLX && static_cast<unsigned long long>(r) * 4 + 2 <= m_nLXBytes) {
            const unsigned word = m_pLX[r * 4] | (m_pLX[r * 4 + 1] << 8);
            if (word != 0) g = word;
        }
        const unsigned long long rowStart = static_cast<unsigned long long>(r) * m_nBrgs;
        if (rowStart >= m_nImgBytes) continue;
        for (long long c = c0; c <= c1; ++c) {
            if (rowStart + static_cast<unsigned long long>(c) >= m_nImgBytes) break;
            const BYTE v = m_pImg[rowStart + static_cast<unsigned long long>(c)];
            double level = -84.0;
            if (v != 0) level = std::clamp(20.0 * std::log10(v / g * 0.015625), -84.0, 12.0);
            best = std::max(best, level);
        }
    }
    return best;
}
