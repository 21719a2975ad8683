#include "render/DspRow.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define ZAN_DSP_X86 1
#include <immintrin.h>
// GCC 12 takes the deliberately undefined pass-through operand inside some
// AVX-512 intrinsics for an uninitialised variable.
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#endif

namespace zan_dsp {

BYTE DepthIndexByte(double depth, double dMin, double scale, int nc)
{
    const double t = (depth - dMin) * scale + 0.5;
    if (t >= static_cast<double>(nc)) return static_cast<BYTE>(nc - 1);  // floor(t) >= nc as well
    if (!(t >= -2147483648.0)) return 0;  // not a number, or below the 32-bit integers
    int q = static_cast<int>(t);           // toward zero
    if (static_cast<double>(q) > t) --q;   // floor
    return static_cast<BYTE>(static_cast<unsigned>(q) & 0xFFu);
}

void Planes::Set(const CRgb* t)
{
    for (int i = 0; i < 256; ++i) {
        r[i] = t[i].r;
        g[i] = t[i].g;
        b[i] = t[i].b;
        a[i] = t[i].a;
    }
}

namespace {

void MaxRowPlain(BYTE* __restrict acc, const BYTE* __restrict s, std::size_t n)
{
    std::size_t x = 0;
#ifdef ZAN_DSP_X86
    // SSE2 is in every x86-64 processor.
    for (; x + 16 <= n; x += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(acc + x));
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + x));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(acc + x), _mm_max_epu8(a, v));
    }
#endif
    for (; x < n; ++x) acc[x] = std::max(acc[x], s[x]);
}

void ColourRowPlain(const BYTE* a, std::size_t n, const CRgb* ctab, CRgb* out)
{
    for (std::size_t x = 0; x < n; ++x) out[x] = ctab[a[x]];
}

inline CRgb DepthPixel(unsigned i, BYTE b1, const CRgb* tbl)
{
    if (i <= 8) return CRgb(0, 0, 0, 0);
    const CRgb c = tbl[b1];
    const unsigned k = std::min(i + 126u, 255u);  // brightness k / 256
    return CRgb(static_cast<BYTE>((c.r * k) >> 8), static_cast<BYTE>((c.g * k) >> 8),
                static_cast<BYTE>((c.b * k) >> 8), tbl[i].a);
}

void DepthColourRowPlain(const BYTE* acc, std::size_t from, std::size_t n, const DepthRow& d, CRgb* out)
{
    for (std::size_t x = from; x < n; ++x) {
        const unsigned i = d.lut[acc[x]];
        BYTE b1 = 0;
        if (i > 8 && x < d.nVec) b1 = DepthIndexByte(d.dz[x] * d.frac + d.sz[x], d.dMin, d.scale, d.nc);
        out[x] = DepthPixel(i, b1, d.tbl);
    }
}

#ifdef ZAN_DSP_X86

// The depth arithmetic must round exactly as the plain form does, so no
// multiply and add may be fused here (clang takes a pragma for that).
#if defined(__clang__)
#pragma clang fp contract(off)
#define ZAN_VBMI __attribute__((target("avx512f,avx512bw,avx512dq,avx512vbmi")))
#else
#define ZAN_VBMI __attribute__((target("avx512f,avx512bw,avx512dq,avx512vbmi"), optimize("fp-contract=off")))
#endif

// A 256-entry byte table in four registers.
struct Tbl256 {
    __m512i t0, t1, t2, t3;
};

ZAN_VBMI inline Tbl256 LoadTbl(const BYTE* t)
{
    return {_mm512_loadu_si512(t), _mm512_loadu_si512(t + 64), _mm512_loadu_si512(t + 128),
            _mm512_loadu_si512(t + 192)};
}

// t[idx] for 64 bytes at once: two 128-entry permutes, picked by bit 7.
ZAN_VBMI inline __m512i Lookup(__m512i idx, const Tbl256& t)
{
    const __m512i lo = _mm512_permutex2var_epi8(t.t0, idx, t.t1);
    const __m512i hi = _mm512_permutex2var_epi8(t.t2, idx, t.t3);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(idx), lo, hi);
}

// Four planes of 64 bytes into 64 RGBA pixels.
ZAN_VBMI inline void StoreRgba(CRgb* out, __m512i r, __m512i g, __m512i b, __m512i a)
{
    const __m512i rgLo = _mm512_unpacklo_epi8(r, g), rgHi = _mm512_unpackhi_epi8(r, g);
    const __m512i baLo = _mm512_unpacklo_epi8(b, a), baHi = _mm512_unpackhi_epi8(b, a);
    // Each 128-bit lane L of q0..q3 holds pixels 16L + 0..3, 4..7, 8..11, 12..15.
    const __m512i q0 = _mm512_unpacklo_epi16(rgLo, baLo), q1 = _mm512_unpackhi_epi16(rgLo, baLo);
    const __m512i q2 = _mm512_unpacklo_epi16(rgHi, baHi), q3 = _mm512_unpackhi_epi16(rgHi, baHi);
    // A 4 x 4 transpose of 128-bit lanes by quadword permutes (lane L of the
    // first source is quadwords 2L and 2L + 1, of the second 8 + 2L and 9 + 2L).
    const __m512i mixLo = _mm512_set_epi64(11, 10, 3, 2, 9, 8, 1, 0);    // a.l0 b.l0 a.l1 b.l1
    const __m512i mixHi = _mm512_set_epi64(15, 14, 7, 6, 13, 12, 5, 4);  // a.l2 b.l2 a.l3 b.l3
    const __m512i catLo = _mm512_set_epi64(11, 10, 9, 8, 3, 2, 1, 0);    // a.l0 a.l1 b.l0 b.l1
    const __m512i catHi = _mm512_set_epi64(15, 14, 13, 12, 7, 6, 5, 4);  // a.l2 a.l3 b.l2 b.l3
    const __m512i u0 = _mm512_permutex2var_epi64(q0, mixLo, q1);  // q0.l0 q1.l0 q0.l1 q1.l1
    const __m512i u1 = _mm512_permutex2var_epi64(q2, mixLo, q3);  // q2.l0 q3.l0 q2.l1 q3.l1
    const __m512i u2 = _mm512_permutex2var_epi64(q0, mixHi, q1);  // q0.l2 q1.l2 q0.l3 q1.l3
    const __m512i u3 = _mm512_permutex2var_epi64(q2, mixHi, q3);  // q2.l2 q3.l2 q2.l3 q3.l3
    _mm512_storeu_si512(out, _mm512_permutex2var_epi64(u0, catLo, u1));       // pixels 0..15
    _mm512_storeu_si512(out + 16, _mm512_permutex2var_epi64(u0, catHi, u1));  // 16..31
    _mm512_storeu_si512(out + 32, _mm512_permutex2var_epi64(u2, catLo, u3));  // 32..47
    _mm512_storeu_si512(out + 48, _mm512_permutex2var_epi64(u2, catHi, u3));  // 48..63
}

ZAN_VBMI void MaxRowVbmi(BYTE* __restrict acc, const BYTE* __restrict s, std::size_t n)
{
    std::size_t x = 0;
    for (; x + 64 <= n; x += 64)
        _mm512_storeu_si512(acc + x, _mm512_max_epu8(_mm512_loadu_si512(acc + x), _mm512_loadu_si512(s + x)));
    MaxRowPlain(acc + x, s + x, n - x);
}

ZAN_VBMI void ColourRowVbmi(const BYTE* a, std::size_t n, const CRgb* ctab, const Planes& p, CRgb* out)
{
    const Tbl256 tr = LoadTbl(p.r), tg = LoadTbl(p.g), tb = LoadTbl(p.b), ta = LoadTbl(p.a);
    std::size_t x = 0;
    for (; x + 64 <= n; x += 64) {
        const __m512i idx = _mm512_loadu_si512(a + x);
        StoreRgba(out + x, Lookup(idx, tr), Lookup(idx, tg), Lookup(idx, tb), Lookup(idx, ta));
    }
    ColourRowPlain(a + x, n - x, ctab, out + x);
}

// (c * k) >> 8 for 64 bytes, k a byte too.
ZAN_VBMI inline __m512i MulHi8(__m512i c, __m512i k)
{
    const __m512i z = _mm512_setzero_si512();
    const __m512i lo = _mm512_srli_epi16(_mm512_mullo_epi16(_mm512_unpacklo_epi8(c, z), _mm512_unpacklo_epi8(k, z)), 8);
    const __m512i hi = _mm512_srli_epi16(_mm512_mullo_epi16(_mm512_unpackhi_epi8(c, z), _mm512_unpackhi_epi8(k, z)), 8);
    return _mm512_packus_epi16(lo, hi);
}

// The depth index bytes b1 of columns [x0, x0 + 64 m) into idx: the same
// operations, in the same order, as the plain form (no fused multiply-add).
// Kept apart from the colouring so that neither runs short of registers.
ZAN_VBMI void DepthIndexBlocks(const DepthRow& d, std::size_t x0, std::size_t m, BYTE* idx)
{
    const __m512d frac = _mm512_set1_pd(d.frac), dMin = _mm512_set1_pd(d.dMin), scale = _mm512_set1_pd(d.scale);
    const __m512d half = _mm512_set1_pd(0.5), ncD = _mm512_set1_pd(static_cast<double>(d.nc));
    const __m512i lastI = _mm512_set1_epi32(d.nc - 1);
    for (std::size_t j = 0; j < 4 * m; ++j) {
        __m256i q[2];
        for (int h = 0; h < 2; ++h) {
            const std::size_t c = x0 + 16 * j + 8 * h;
            const __m512d depth = _mm512_add_pd(_mm512_mul_pd(_mm512_loadu_pd(d.dz + c), frac), _mm512_loadu_pd(d.sz + c));
            const __m512d t = _mm512_add_pd(_mm512_mul_pd(_mm512_sub_pd(depth, dMin), scale), half);
            // Held at nc from above (a NaN stays: min gives its second
            // operand then); the floor of a NaN or of anything below the
            // 32-bit integers converts to 0x80000000, whose low byte is 0.
            q[h] = _mm512_cvt_roundpd_epi32(_mm512_min_pd(ncD, t), _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
        }
        const __m512i q16 = _mm512_inserti64x4(_mm512_castsi256_si512(q[0]), q[1], 1);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(idx + 16 * j), _mm512_cvtepi32_epi8(_mm512_min_epi32(q16, lastI)));
    }
}

ZAN_VBMI void DepthColourRowVbmi(const BYTE* acc, std::size_t n, const DepthRow& d, CRgb* out)
{
    const Planes& p = *d.tblPlanes;
    const Tbl256 tr = LoadTbl(p.r), tg = LoadTbl(p.g), tb = LoadTbl(p.b), ta = LoadTbl(p.a), tl = LoadTbl(d.lut);
    const __m512i eight = _mm512_set1_epi8(8), k126 = _mm512_set1_epi8(126);
    const std::size_t nVec = std::min(n, d.nVec);
    const __m512i zero = _mm512_setzero_si512();
    constexpr std::size_t kChunk = 16;  // blocks of 64 columns whose indices are worked out together
    alignas(64) BYTE idxBuf[64 * kChunk];
    std::size_t x = 0;
    while (x + 64 <= nVec) {
        const std::size_t m = std::min(kChunk, (nVec - x) / 64);
        DepthIndexBlocks(d, x, m, idxBuf);
        for (std::size_t blk = 0; blk < m; ++blk, x += 64) {
            const __m512i i = Lookup(_mm512_loadu_si512(acc + x), tl);
            const __mmask64 lit = _mm512_cmpgt_epu8_mask(i, eight);
            if (!lit) {  // nothing above 8: four clear blocks
                for (int j = 0; j < 4; ++j) _mm512_storeu_si512(out + x + 16 * j, zero);
                continue;
            }
            const __m512i idx = _mm512_load_si512(idxBuf + 64 * blk);
            const __m512i k = _mm512_adds_epu8(i, k126);  // min(i + 126, 255)
            const __m512i r = _mm512_maskz_mov_epi8(lit, MulHi8(Lookup(idx, tr), k));
            const __m512i g = _mm512_maskz_mov_epi8(lit, MulHi8(Lookup(idx, tg), k));
            const __m512i b = _mm512_maskz_mov_epi8(lit, MulHi8(Lookup(idx, tb), k));
            const __m512i a = _mm512_maskz_mov_epi8(lit, Lookup(i, ta));
            StoreRgba(out + x, r, g, b, a);
        }
    }
    DepthColourRowPlain(acc, x, n, d, out);
}

int Detect()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vbmi"))
        return kAvx512Vbmi;
    return kPlain;
}

#else

int Detect() { return kPlain; }

#endif // ZAN_DSP_X86

const int s_best = Detect();
std::atomic<int> s_forced {-1};

int Current()
{
    const int f = s_forced.load(std::memory_order_relaxed);
    return f < 0 ? s_best : std::min(f, s_best);
}

} // namespace

int BestLevel() { return s_best; }
void ForceLevel(int level) { s_forced.store(level, std::memory_order_relaxed); }

void MaxRow(BYTE* acc, const BYTE* s, std::size_t n)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return MaxRowVbmi(acc, s, n);
#endif
    MaxRowPlain(acc, s, n);
}

void ColourRow(const BYTE* a, std::size_t n, const CRgb* ctab, const Planes& p, CRgb* out)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return ColourRowVbmi(a, n, ctab, p, out);
#endif
    (void)p;
    ColourRowPlain(a, n, ctab, out);
}

void DepthColourRow(const BYTE* acc, std::size_t n, const DepthRow& d, CRgb* out)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return DepthColourRowVbmi(acc, n, d, out);
#endif
    DepthColourRowPlain(acc, 0, n, d, out);
}

} // namespace zan_dsp
