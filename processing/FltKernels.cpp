// The filter kernels of CTgtImgFlt.
//
// Every kernel reduces, for the sample at column x, to two sums along its row
// window: T, whose terms depend on the window's peak and the pattern position
// k, and B (D or C), whose terms also depend on the source byte b at that
// position. Both are summed from the window's first column, exactly as the
// kernel's steps say, so results match a plain evaluation bit for bit.
//
// What makes it fast without changing a single rounding:
// - the window peak is a sliding maximum over bytes (mx is always b/255.0 of
//   the greatest byte, since that division is monotonic);
// - the peak's level, gate and the whole-window T are worked out once per
//   peak byte, not per pixel;
// - once a peak byte has served enough pixels, its B terms for every (k, b)
//   are tabled, so a pixel's B is a run of loads and adds in the same order:
//   no square root or division is left in the loop. The table is filled only
//   for bytes up to the peak (no byte in a window exceeds its peak), and only
//   when the pixels already served would have cost as much, so small images
//   never pay for it. The tables of a Filter run are shared by its threads
//   and kept for the next run while kernel and settings stay (CFltTables);
// - Flt2's terms are cheap, so it sums four neighbouring pixels at a time in
//   vector registers instead, each lane in its own pixel's order.
// Windows clipped by the row's ends are evaluated term by term.
#include "processing/CTgtImgFlt.h"

#include "core/CacheLineAllocator.hpp"
#include "image/CTgtImg.h"
#include "processing/FltTables.hpp"
#include "processing/ImgMath.hpp"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>  // SSE2, part of every x86-64
#endif

namespace {

using imgmath::ToByte;

// s(b): a source byte as intensity, b / 255.0 (worked out when compiling,
// with the same rounding).
struct SourceLevels {
    double v[256];
    constexpr SourceLevels() : v()
    {
        for (int b = 0; b < 256; ++b) v[b] = b / 255.0;
    }
};
constexpr SourceLevels s_lvl;

// The lesser of v and t, or 0 if that is below 0.
inline double Clamp(double v, double t)
{
    const double m = std::min(v, t);
    return m < 0.0 ? 0.0 : m;
}

// Clamp without a branch, for a sign that follows the echoes: on busy lines
// a mispredicted branch per pixel costs more than the sums, while where the
// sign is steady the branch is the quicker. maxsd(0, m) is 0 > m ? 0 : m,
// the same choice.
inline double ClampMixed(double v, double t)
{
#ifdef __SSE2__
    return _mm_cvtsd_f64(_mm_max_sd(_mm_setzero_pd(), _mm_set_sd(std::min(v, t))));
#else
    return Clamp(v, t);
#endif
}

struct Params {
    const double* pat;
    int nPat;
    double offset;
    double bias;
    // Pattern entry k; positions past the table (Flt2 with an odd size) are 0.0.
    double P(int k) const { return k < nPat ? pat[k] : 0.0; }
};

// What is known of a window from its peak byte alone.
struct Peak {
    double lvl = 0.0;   // mx (Flt1) or M (Flt2-4)
    double root = 0.0;  // sqrt(lvl)
    bool gate = false;  // the pixel is decided without sums
    bool known = false;
};

// T and what the kernels make of it with the bias.
struct Sums {
    double T = 0.0;
    double biasT = 0.0;  // bias * T
    double Tp = 0.0;     // T * (1 - bias)
    Sums() = default;
    Sums(const Params& prm, double t) : T(t), biasT(prm.bias * t), Tp(t * (1.0 - prm.bias)) {}
};

// ---- The four kernels, as their steps say. ----

struct K1 {
    static constexpr int kId = 1;
    static constexpr bool kVector = false;
    static constexpr bool kGateWrites = true;  // a gated pixel is written 0
    static int Half(int nPat) { return nPat / 2; }
    static void MakePeak(const Params& prm, int mb, Peak& pk)
    {
        pk.lvl = s_lvl.v[mb];
        pk.gate = prm.offset >= pk.lvl;
    }
    static double TermT(const Params& prm, double mx, int k) { return mx * prm.P(k); }
    // B's term is TermB(Key(k), b): the part that doesn't depend on b first.
    static double Key(const Params& prm, double mx, int k) { return mx * prm.P(k); }
    static double TermB(double key, double, int b) { return std::sqrt(std::fabs(key - s_lvl.v[b])); }
    static int Split(int) { return INT_MAX; }
    static BYTE Finish(const Params&, const Peak& pk, const Sums& s, double D, double, BYTE)
    {
        const double T = s.T;
        const double R = Clamp(T - D, T);
        if (T == 0.0) return 0;
        const double y = pk.root * R / T;
        return y > 1.0 ? 255 : ToByte(y * 255.0);
    }
};

// M of Flt2, Flt3 and Flt4: the peak lifted by the offset, 1.0 at most; at
// 0.05 or below the pixel is gated.
inline void LiftedPeak(const Params& prm, int mb, Peak& pk)
{
    double M = s_lvl.v[mb] + prm.offset;
    pk.gate = false;
    if (M >= 1.0) M = 1.0;
    else if (M <= 0.05) pk.gate = true;
    pk.lvl = M;
}

struct K2 {
    static constexpr int kId = 2;
    static constexpr bool kGateWrites = false;  // a gated pixel is left alone
    // Its terms are cheap enough to compute four pixels at a time in vector
    // registers rather than to look up.
    static constexpr bool kVector = true;
    static int Half(int nPat) { return (nPat + 1) / 2; }
    static void MakePeak(const Params& prm, int mb, Peak& pk) { LiftedPeak(prm, mb, pk); }
    static double TermT(const Params& prm, double M, int k) { return M * prm.P(k); }
    static double Key(const Params& prm, double M, int k) { return M * prm.P(k); }
    static double TermB(double key, double, int b) { return std::min(s_lvl.v[b], key); }
    static int Split(int) { return INT_MAX; }
    static BYTE Finish(const Params&, const Peak& pk, const Sums& s, double C, double, BYTE)
    {
        const double R = Clamp(C - s.biasT, s.Tp);
        if (s.Tp == 0.0) return 0;
        return ToByte(R / s.Tp * 255.0 * pk.lvl);
    }
};

struct K3 {
    static constexpr int kId = 3;
    static constexpr bool kVector = false;
    static constexpr bool kGateWrites = true;
    static int Half(int nPat) { return nPat / 2; }
    static void MakePeak(const Params& prm, int mb, Peak& pk) { LiftedPeak(prm, mb, pk); }
    static double TermT(const Params& prm, double, int k) { return prm.P(k); }
    static double Key(const Params& prm, double, int k) { return prm.P(k); }
    static double TermB(double key, double M, int b) { return std::min(s_lvl.v[b] / M, key); }
    static int Split(int) { return INT_MAX; }
    static BYTE Finish(const Params&, const Peak&, const Sums& s, double C, double, BYTE)
    {
        const double R = Clamp(C - s.biasT, s.Tp);
        if (s.Tp == 0.0) return 0;
        return ToByte(R / s.Tp * 255.0);
    }
};

struct K4 {
    static constexpr int kId = 4;
    static constexpr bool kVector = false;
    static constexpr bool kGateWrites = false;
    static int Half(int nPat) { return nPat / 2; }
    static void MakePeak(const Params& prm, int mb, Peak& pk) { LiftedPeak(prm, mb, pk); }
    static double TermT(const Params& prm, double M, int k) { return M * prm.P(k); }
    static double Key(const Params& prm, double M, int k) { return M * prm.P(k); }
    static double TermB(double key, double, int b) { return std::sqrt(std::fabs(key - s_lvl.v[b])); }
    // The first h samples of the window go to D1, the rest to D2.
    static int Split(int h) { return h; }
    static BYTE Finish(const Params&, const Peak& pk, const Sums& s, double D1, double D2, BYTE old)
    {
        const double T = s.T;
        const double D = std::min(D1, D2);
        const double R = ClampMixed(T - D, T);
        const double r = Clamp(R - s.biasT, s.Tp);
        if (s.Tp == 0.0) return 0;
        const double y = pk.root * r / s.Tp;
        return ToByte(std::min(255.0, y * 255.0) + old);
    }
};

// out[i] = the greater of a[i] and b[i], for n bytes.
inline void MaxOf(const BYTE* a, const BYTE* b, BYTE* out, int n)
{
    int i = 0;
#ifdef __SSE2__
    for (; i + 16 <= n; i += 16) {
        const __m128i va = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
        const __m128i vb = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_max_epu8(va, vb));
    }
#endif
    for (; i < n; ++i) out[i] = std::max(a[i], b[i]);
}

// Pixels whose B sums are run side by side, so that their additions, each
// a chain of its own, overlap.
constexpr int kLanes = 4;

// Runs kernel K over rows [r0, r1) of a w-wide plane.
template <class K>
class RowRunner {
public:
    // tables: shared tables of this kernel and settings, or null for tables
    // of this call alone.
    RowRunner(const Params& prm, int w, CFltTables* tables)
        : m_prm(prm), m_w(w), m_h(K::Half(prm.nPat)), m_win(2 * m_h), m_split(std::min(K::Split(m_h), m_win))
    {
        if (!tables) {
            m_own = std::make_unique<CFltTables>();
            m_own->Reset(K::kId, prm.pat, prm.nPat, prm.offset, prm.bias, m_win);
            tables = m_own.get();
        }
        m_tables = tables;
        m_peakByte.resize(static_cast<size_t>(w));
        m_spans[0].resize(static_cast<size_t>(w));
        m_spans[1].resize(static_cast<size_t>(w));
        if (K::kVector) m_level.resize(static_cast<size_t>(w));
    }

    void Run(const BYTE* src, BYTE* dst, int r0, int r1)
    {
        for (int r = r0; r < r1; ++r) Row(src + static_cast<size_t>(r) * m_w, dst + static_cast<size_t>(r) * m_w);
    }

private:
    // m_peakByte[x] = greatest byte of window x (0 for an empty window).
    // Inside the row the windows all span L = 2h columns: maxima over spans of
    // 1, 2, 4, ... columns are built by doubling, and a window is covered by
    // two (overlapping) spans of the largest power of two P <= L. The clipped
    // windows at the ends are scanned.
    void PeakBytes(const BYTE* s)
    {
        const int w = m_w, h = m_h, L = m_win;
        BYTE* peak = m_peakByte.data();
        if (L == 0) {
            std::memset(peak, 0, static_cast<size_t>(w));
            return;
        }
        const BYTE* cur = s;
        int P = 1;
        for (int n = 0; 2 * P <= L && 2 * P <= w; ++n) {
            BYTE* next = m_spans[n & 1].data();
            const int last = w - 2 * P;  // spans of 2P starting at 0..last
            MaxOf(cur, cur + P, next, last + 1);
            cur = next;
            P *= 2;
        }
        const int x0 = std::min(h, w), x1 = std::max(x0, w - h + 1);  // interior: x - h >= 0, x + h <= w
        for (int x = x0; x < x1; ++x) peak[x] = std::max(cur[x - h], cur[x - h + L - P]);
        for (int x = 0; x < w; ++x) {
            if (x == x0) x = x1;
            if (x >= w) break;
            const int lo = std::max(x - h, 0), hi = std::min(x + h, w);
            BYTE m = 0;
            for (int i = lo; i < hi; ++i) m = std::max(m, s[i]);
            peak[x] = m;
        }
    }

    const Peak& PeakOf(int mb)
    {
        Peak& pk = m_peaks[mb];
        if (!pk.known) {
            K::MakePeak(m_prm, mb, pk);
            pk.root = std::sqrt(pk.lvl);
            double T = 0.0;
            for (int k = 0; k < m_win; ++k) T += K::TermT(m_prm, pk.lvl, k);
            m_sums[mb] = Sums(m_prm, T);
            pk.known = true;
        }
        return pk;
    }

    // The B-term table of peak byte mb once it has earned one, else null.
    const double* TableOf(int mb)
    {
        if (m_tab[mb]) return m_tab[mb];
        if (m_win == 0 || m_win > CFltTables::kMaxWindow) return nullptr;
        if (const double* t = m_tables->Get(mb)) return m_tab[mb] = t;
        // Filling costs m_win * (mb + 1) terms, about what mb + 1 pixels cost
        // term by term: table once that many have been served.
        if (++m_uses[mb] < std::max(mb + 1, 16)) return nullptr;
        double* t = m_tables->Claim(mb);
        if (!t) return nullptr;  // another thread is filling it
        const double lvl = PeakOf(mb).lvl;
        for (int k = 0; k < m_win; ++k) {
            const double key = K::Key(m_prm, lvl, k);
            for (int b = 0; b <= mb; ++b) t[k * 256 + b] = K::TermB(key, lvl, b);
        }
        m_tables->Publish(mb, t);
        return m_tab[mb] = t;
    }

    // The sums of a window clipped by the row's ends, term by term.
    void Clipped(const BYTE* s, BYTE* d, int x, const Peak& pk)
    {
        const int lo = std::max(x - m_h, 0), hi = std::min(x + m_h, m_w);
        double T = 0.0, B1 = 0.0, B2 = 0.0;
        int n = 0;
        for (int i = lo; i < hi; ++i, ++n) {
            const int k = i - x + m_h;
            T += K::TermT(m_prm, pk.lvl, k);
            const double v = K::TermB(K::Key(m_prm, pk.lvl, k), pk.lvl, s[i]);
            if (n < m_split) B1 += v;
            else B2 += v;
        }
        d[x] = K::Finish(m_prm, pk, Sums(m_prm, T), B1, B2, d[x]);
    }

    // An unclipped window whose peak has no table yet, term by term.
    void Direct(const BYTE* s, BYTE* d, int x, int mb, const Peak& pk)
    {
        const BYTE* sp = s + x - m_h;
        double B1 = 0.0, B2 = 0.0;
        int k = 0;
        for (; k < m_split; ++k) B1 += K::TermB(K::Key(m_prm, pk.lvl, k), pk.lvl, sp[k]);
        for (; k < m_win; ++k) B2 += K::TermB(K::Key(m_prm, pk.lvl, k), pk.lvl, sp[k]);
        d[x] = K::Finish(m_prm, pk, m_sums[mb], B1, B2, d[x]);
    }

    // kLanes unclipped windows with tables, their sums side by side: four
    // independent chains of additions, each in its own order.
    void Batch(const BYTE* s, BYTE* d)
    {
        static_assert(kLanes == 4);
        const double *t0 = m_tab[m_batchPeak[0]], *t1 = m_tab[m_batchPeak[1]], *t2 = m_tab[m_batchPeak[2]],
                     *t3 = m_tab[m_batchPeak[3]];
        const BYTE *s0 = s + m_batchX[0] - m_h, *s1 = s + m_batchX[1] - m_h, *s2 = s + m_batchX[2] - m_h,
                   *s3 = s + m_batchX[3] - m_h;
        double a0 = 0.0, a1 = 0.0, a2 = 0.0, a3 = 0.0;
        int k = 0;
        for (; k < m_split; ++k, t0 += 256, t1 += 256, t2 += 256, t3 += 256) {
            a0 += t0[s0[k]];
            a1 += t1[s1[k]];
            a2 += t2[s2[k]];
            a3 += t3[s3[k]];
        }
        double c0 = 0.0, c1 = 0.0, c2 = 0.0, c3 = 0.0;
        for (; k < m_win; ++k, t0 += 256, t1 += 256, t2 += 256, t3 += 256) {
            c0 += t0[s0[k]];
            c1 += t1[s1[k]];
            c2 += t2[s2[k]];
            c3 += t3[s3[k]];
        }
        const double B1[kLanes] = {a0, a1, a2, a3}, B2[kLanes] = {c0, c1, c2, c3};
        for (int j = 0; j < kLanes; ++j) {
            const int x = m_batchX[j], mb = m_batchPeak[j];
            d[x] = K::Finish(m_prm, m_peaks[mb], m_sums[mb], B1[j], B2[j], d[x]);
        }
    }

    // Flt2 inside the row: four neighbouring pixels per step, lane j summing
    // pixel x + j in the order of its own window. Lanes of gated pixels are
    // worked out and dropped.
    void VectorRow(const BYTE* s, BYTE* d)
    {
        PeakBytes(s);
        double* sd = m_level.data();
        for (int i = 0; i < m_w; ++i) sd[i] = s_lvl.v[s[i]];
        const int h = m_h;
        const int x0 = std::min(h, m_w), x1 = std::min(std::max(x0, m_w - h + 1), m_w);
        int x = x0;
        for (; x + 4 <= x1; x += 4) {
            const Peak* pk[4];
            bool any = false;
            for (int j = 0; j < 4; ++j) {
                pk[j] = &PeakOf(m_peakByte[static_cast<size_t>(x + j)]);
                any = any || !pk[j]->gate;
            }
            if (!any) continue;
            double C[4];
            const double* sp = sd + x - h;
#ifdef __SSE2__
            // Two lanes a register; _mm_min_pd(key, v) is key < v ? key : v,
            // which is std::min(v, key).
            const __m128d M01 = _mm_set_pd(pk[1]->lvl, pk[0]->lvl), M23 = _mm_set_pd(pk[3]->lvl, pk[2]->lvl);
            __m128d C01 = _mm_setzero_pd(), C23 = _mm_setzero_pd();
            for (int k = 0; k < m_win; ++k) {
                const __m128d p = _mm_set1_pd(m_prm.P(k));
                C01 = _mm_add_pd(C01, _mm_min_pd(_mm_mul_pd(M01, p), _mm_loadu_pd(sp + k)));
                C23 = _mm_add_pd(C23, _mm_min_pd(_mm_mul_pd(M23, p), _mm_loadu_pd(sp + k + 2)));
            }
            _mm_storeu_pd(C, C01);
            _mm_storeu_pd(C + 2, C23);
#else
            for (int j = 0; j < 4; ++j) {
                double c = 0.0;
                for (int k = 0; k < m_win; ++k) c += std::min(sp[j + k], pk[j]->lvl * m_prm.P(k));
                C[j] = c;
            }
#endif
            for (int j = 0; j < 4; ++j)
                if (!pk[j]->gate)
                    d[x + j] = K::Finish(m_prm, *pk[j], m_sums[m_peakByte[static_cast<size_t>(x + j)]], C[j], 0.0,
                                         d[x + j]);
        }
        for (int i = 0; i < m_w; ++i) {
            if (i == x0) i = x;  // the vector steps have done [x0, x)
            if (i >= m_w) break;
            const int mb = m_peakByte[static_cast<size_t>(i)];
            const Peak& p = PeakOf(mb);
            if (p.gate) {
                if (K::kGateWrites) d[i] = 0;
            } else if (i < h || i + h > m_w) {
                Clipped(s, d, i, p);
            } else {
                Direct(s, d, i, mb, p);
            }
        }
    }

    void Row(const BYTE* s, BYTE* d)
    {
        if constexpr (K::kVector) {
            VectorRow(s, d);
            return;
        }
        PeakBytes(s);
        const int h = m_h;
        int nBatch = 0;
        for (int x = 0; x < m_w; ++x) {
            const int mb = m_peakByte[static_cast<size_t>(x)];
            const Peak& pk = PeakOf(mb);
            if (pk.gate) {
                if (K::kGateWrites) d[x] = 0;
            } else if (x < h || x + h > m_w) {
                Clipped(s, d, x, pk);
            } else if (TableOf(mb)) {
                m_batchX[nBatch] = x;
                m_batchPeak[nBatch] = mb;
                if (++nBatch == kLanes) {
                    Batch(s, d);
                    nBatch = 0;
                }
            } else {
                Direct(s, d, x, mb, pk);
            }
        }
        // The last few: one pixel each through the table, same order.
        for (int j = 0; j < nBatch; ++j) {
            const int x = m_batchX[j], mb = m_batchPeak[j];
            const double* t = m_tab[mb];
            const BYTE* sp = s + x - h;
            double B1 = 0.0, B2 = 0.0;
            int k = 0;
            for (; k < m_split; ++k) B1 += t[k * 256 + sp[k]];
            for (; k < m_win; ++k) B2 += t[k * 256 + sp[k]];
            d[x] = K::Finish(m_prm, m_peaks[mb], m_sums[mb], B1, B2, d[x]);
        }
    }

    const Params m_prm;
    const int m_w;
    const int m_h;
    const int m_win;
    const int m_split;  // window samples that go to the first sum
    zan::LineVector<BYTE> m_peakByte;
    zan::LineVector<BYTE> m_spans[2];
    zan::LineVector<double> m_level;  // s(i) of the row, for the vector steps
    Peak m_peaks[256];
    Sums m_sums[256];  // an unclipped window's sums, by peak byte
    int m_uses[256] = {};
    const double* m_tab[256] = {};  // tables known to this call
    CFltTables* m_tables = nullptr;
    std::unique_ptr<CFltTables> m_own;
    int m_batchX[kLanes] = {};
    int m_batchPeak[kLanes] = {};
};

// Rows [startRow, endRow) cut to the image; false when there's nothing to do.
bool Slice(const CTgtImg* pImg, const CTgtImgFlt* pFlt, int& startRow, int& endRow, bool needSource)
{
    if (!pImg || !pFlt || !pImg->m_pImg || pImg->m_nBrgs == 0 || pImg->m_nRngs == 0) return false;
    if (needSource && !pFlt->m_pBuf) return false;
    startRow = std::max(startRow, 0);
    endRow = static_cast<int>(std::min<long long>(endRow, pImg->m_nRngs));
    return startRow < endRow;
}

// The kernel settings of a filter. With no pattern there is no window to
// fill: every sum is 0.
Params ParamsOf(const CTgtImgFlt* pFlt)
{
    static const double kNoPat = 0.0;
    return Params{pFlt->m_pPat ? pFlt->m_pPat : &kNoPat, pFlt->m_pPat ? std::max(pFlt->m_nPat, 0) : 0, pFlt->m_offset,
                  pFlt->m_bias};
}

template <class K>
bool Fits(const CFltTables* t, const Params& prm)
{
    return t && t->Matches(K::kId, prm.pat, prm.nPat, prm.offset, prm.bias, 2 * K::Half(prm.nPat));
}

// The filter's shared tables serve when they are this kernel's and settings';
// else the call keeps tables of its own.
template <class K>
void RunKernel(CTgtImg* pImg, CTgtImgFlt* pFlt, CFltTables* tables, int startRow, int endRow)
{
    if (!Slice(pImg, pFlt, startRow, endRow, true)) return;
    const Params prm = ParamsOf(pFlt);
    CFltTables* shared = Fits<K>(tables, prm) ? tables : nullptr;
    RowRunner<K> runner(prm, static_cast<int>(pImg->m_nBrgs), shared);
    runner.Run(pFlt->m_pBuf, pImg->m_pImg, startRow, endRow);
}

}  // namespace

void CTgtImgFlt::Flt1(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow)
{
    RunKernel<K1>(pImg, pFlt, pFlt->m_pTables.get(), startRow, endRow);
}

void CTgtImgFlt::Flt2(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow)
{
    RunKernel<K2>(pImg, pFlt, pFlt->m_pTables.get(), startRow, endRow);
}

void CTgtImgFlt::Flt3(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow)
{
    RunKernel<K3>(pImg, pFlt, pFlt->m_pTables.get(), startRow, endRow);
}

void CTgtImgFlt::Flt4(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow)
{
    RunKernel<K4>(pImg, pFlt, pFlt->m_pTables.get(), startRow, endRow);
}

template <class K>
void Prepare(std::unique_ptr<CFltTables>& tables, const CTgtImgFlt* pFlt)
{
    const Params prm = ParamsOf(pFlt);
    if (!tables) tables = std::make_unique<CFltTables>();
    if (!Fits<K>(tables.get(), prm)) tables->Reset(K::kId, prm.pat, prm.nPat, prm.offset, prm.bias, 2 * K::Half(prm.nPat));
}

void CTgtImgFlt::PrepareTables()
{
    switch (m_filterId) {
    case 1: Prepare<K1>(m_pTables, this); break;
    case 2: Prepare<K2>(m_pTables, this); break;
    case 3: Prepare<K3>(m_pTables, this); break;
    case 4: Prepare<K4>(m_pTables, this); break;
    default: break;
    }
}

void CTgtImgFlt::Flt5(CTgtImg*, CTgtImgFlt*, int, int) {}
void CTgtImgFlt::Flt6(CTgtImg*, CTgtImgFlt*, int, int) {}

void CTgtImgFlt::Flt0(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow)
{
    if (!Slice(pImg, pFlt, startRow, endRow, false)) return;
    // The mapping depends on the byte alone: work it out once per byte.
    BYTE map[256];
    for (int v = 0; v < 256; ++v) {
        double y = v / 255.0;
        if (pFlt->m_lowTgt == 0) y = y * y;
        else if (pFlt->m_lowTgt == 2) y = std::sqrt(y);
        y = y * pFlt->m_scale;
        map[v] = y > 1.0 ? 255 : ToByte(y * 255.0);
    }
    const size_t w = pImg->m_nBrgs;
    BYTE* p = pImg->m_pImg + static_cast<size_t>(startRow) * w;
    BYTE* const end = pImg->m_pImg + static_cast<size_t>(endRow) * w;
    for (; p < end; ++p) *p = map[*p];
}
