#include "render/DspRow.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>

// This file is built without contracted multiply-adds (see CMakeLists.txt):
// the exact depth index must round as its written order says, at every
// level. The estimates' fused multiply-adds are written out as intrinsics.

#if defined(__x86_64__) && defined(__GNUC__)
#define ZAN_DSP_X86 1
#include <immintrin.h>
// GCC 12 takes the deliberately undefined pass-through operand inside some
// AVX-512 intrinsics for an uninitialised variable.
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#endif

namespace zan_dsp {

namespace {

// DepthIndexByte's steps, inline here: the exported function may be
// interposed, so calls to it from this library can't be inlined.
inline BYTE IndexByte(double depth, double dMin, double scale, int nc)
{
    const double t = (depth - dMin) * scale + 0.5;
    if (t >= static_cast<double>(nc)) return static_cast<BYTE>(nc - 1);  // floor(t) >= nc as well
    if (!(t >= -2147483648.0)) return 0;  // not a number, or below the 32-bit integers
    int q = static_cast<int>(t);           // toward zero
    if (static_cast<double>(q) > t) --q;   // floor
    return static_cast<BYTE>(static_cast<unsigned>(q) & 0xFFu);
}

} // namespace

BYTE DepthIndexByte(double depth, double dMin, double scale, int nc) { return IndexByte(depth, dMin, scale, nc); }

void Planes::Set(const CRgb* t)
{
    for (int i = 0; i < 256; ++i) {
        r[i] = t[i].r;
        g[i] = t[i].g;
        b[i] = t[i].b;
        a[i] = t[i].a;
    }
    aSame = std::all_of(a, a + 256, [&](BYTE v) { return v == a[0]; });
}

namespace {

// Beyond this w the estimate's floor would not fit the vector form's 16-bit
// lanes; such columns always take the exact form.
constexpr double kMaxW = 16383.0;

// The estimate of column x (DepthCols); a column whose w is beyond kMaxW, or
// isn't a number, is never sure: no fraction is below -1.
void PrepareColumn(DepthCols& c, std::size_t x)
{
    const double w = (std::fabs(c.dz[x]) + std::fabs(c.sz[x]) + std::fabs(c.dMin)) * std::fabs(c.scale);
    if (!(w <= kMaxW)) {
        c.a[x] = 0.0f;
        c.bLo[x] = 0.5f;
        c.room[x] = -1.0f;
        return;
    }
    const double b = (c.sz[x] - c.dMin) * c.scale + 0.5, e = (w + 1.0) * 0x1p-20;  // exact: w + 1 >= 1
    c.a[x] = static_cast<float>(c.dz[x] * c.scale);
    c.bLo[x] = static_cast<float>(b - e);
    const double r = 1.0 - 2.0 * e;
    float rf = static_cast<float>(r);
    // Rounded down, never more room: r lies between 1 - 2^-5 and 1, so rf
    // is a positive normal float, and the next one down is one unit less.
    if (static_cast<double>(rf) > r) rf = std::bit_cast<float>(std::bit_cast<std::uint32_t>(rf) - 1u);
    c.room[x] = rf;
}

// The exact index of column x; kept out of line so that it is always built
// for the plain processor, whatever the caller's target.
[[gnu::noinline]] BYTE ExactIndex(const DepthCols& c, double frac, std::size_t x)
{
    return IndexByte(c.dz[x] * frac + c.sz[x], c.dMin, c.scale, c.nc);
}

inline BYTE FoldedAt(const Fold& f, std::size_t x)
{
    BYTE v = f.first[x];
    const BYTE* p = f.first + x;
    for (unsigned j = 1; j < f.m; ++j) {
        p += f.stride;
        v = std::max(v, *p);
    }
    return v;
}

// Row j of a run: its lines, its pixels and its place in the image.
inline Fold RowFold(const Rows& rs, unsigned j)
{
    return {rs.f.first + static_cast<std::size_t>(j) * rs.f.m * rs.f.stride, rs.f.stride, rs.f.m};
}
inline CRgb* RowOut(const Rows& rs, unsigned j) { return rs.out + static_cast<std::size_t>(j) * rs.outStride; }
inline double RowFrac(const Rows& rs, unsigned j)
{
    return static_cast<double>(rs.rLast + j * rs.f.m) / rs.nRngs;
}

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

void ColourRowPlain(const Fold& f, std::size_t from, std::size_t n, const CRgb* ctab, CRgb* out)
{
    for (std::size_t x = from; x < n; ++x) out[x] = ctab[FoldedAt(f, x)];
}

inline CRgb DepthPixel(unsigned i, BYTE b1, const CRgb* tbl)
{
    if (i <= 8) return CRgb(0, 0, 0, 0);
    const CRgb c = tbl[b1];
    const unsigned k = std::min(i + 126u, 255u);  // brightness k / 256
    return CRgb(static_cast<BYTE>((c.r * k) >> 8), static_cast<BYTE>((c.g * k) >> 8),
                static_cast<BYTE>((c.b * k) >> 8), tbl[i].a);
}

void DepthColourRowPlain(const Fold& f, double frac, std::size_t from, std::size_t n, const DepthColour& d, CRgb* out)
{
    const std::size_t nVec = d.cols->Size();
    for (std::size_t x = from; x < n; ++x) {
        const unsigned i = d.lut[FoldedAt(f, x)];
        const BYTE b1 = i > 8 && x < nVec ? ExactIndex(*d.cols, frac, x) : 0;
        out[x] = DepthPixel(i, b1, d.tbl);
    }
}

void ColourRowsPlain(const Rows& rs, std::size_t n, const CRgb* ctab)
{
    for (unsigned j = 0; j < rs.nRows; ++j) ColourRowPlain(RowFold(rs, j), 0, n, ctab, RowOut(rs, j));
}

void DepthColourRowsPlain(const Rows& rs, std::size_t n, const DepthColour& d)
{
    for (unsigned j = 0; j < rs.nRows; ++j) DepthColourRowPlain(RowFold(rs, j), RowFrac(rs, j), 0, n, d, RowOut(rs, j));
}

#ifdef ZAN_DSP_X86

#define ZAN_VBMI __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi")))

// The order in which a block of 64 pixels is worked: byte 16 L + 4 j + m of a
// vector holds pixel 16 j + 4 L + m. The byte and word unpacks that interleave
// four channel planes into pixels then leave them in storage order, and the
// packs that narrow four vectors of 16 columns' indices give this order too.
constexpr std::array<BYTE, 64> WorkOrder()
{
    std::array<BYTE, 64> o {};
    for (int p = 0; p < 64; ++p) o[static_cast<std::size_t>(p)] = static_cast<BYTE>(16 * ((p >> 2) & 3) + 4 * (p >> 4) + (p & 3));
    return o;
}
alignas(64) constexpr std::array<BYTE, 64> kWorkOrder = WorkOrder();

// A 256-entry byte table in four registers.
struct Tbl256 {
    __m512i t0, t1, t2, t3;
};

ZAN_VBMI inline Tbl256 LoadTbl(const BYTE* t)
{
    return {_mm512_loadu_si512(t), _mm512_loadu_si512(t + 64), _mm512_loadu_si512(t + 128),
            _mm512_loadu_si512(t + 192)};
}

// t[idx] for 64 bytes at once: two 128-entry permutes, picked by bit 7;
// bytes outside `keep` come out 0.
ZAN_VBMI inline __m512i Lookup(__m512i idx, const Tbl256& t, __mmask64 keep = ~__mmask64 {0})
{
    const __mmask64 hi = _mm512_movepi8_mask(idx);
    const __m512i lo = _mm512_maskz_permutex2var_epi8(keep & ~hi, t.t0, idx, t.t1);
    return _mm512_or_si512(lo, _mm512_maskz_permutex2var_epi8(keep & hi, t.t2, idx, t.t3));
}

// The same where every index lies in one half of the table (upper: 128 to
// 255): one permute.
ZAN_VBMI inline __m512i LookupHalf(__m512i idx, const Tbl256& t, __mmask64 keep, bool upper)
{
    return upper ? _mm512_maskz_permutex2var_epi8(keep, t.t2, idx, t.t3)
                 : _mm512_maskz_permutex2var_epi8(keep, t.t0, idx, t.t1);
}

// The greatest of the folded lines' bytes for the 64 columns from x, in work order.
ZAN_VBMI inline __m512i FoldedBlock(const Fold& f, std::size_t x, __m512i order)
{
    const BYTE* p = f.first + x;
    __m512i v = _mm512_loadu_si512(p);
    for (unsigned j = 1; j < f.m; ++j) {
        p += f.stride;
        v = _mm512_max_epu8(v, _mm512_loadu_si512(p));
    }
    return _mm512_permutexvar_epi8(order, v);
}

// Pixels from channel words in work order: rg holds red in its low bytes and
// green in its high, ba blue and alpha; Lo and Hi as the byte unpacks give them.
ZAN_VBMI inline void StoreWords(CRgb* out, __m512i rgLo, __m512i rgHi, __m512i baLo, __m512i baHi)
{
    _mm512_storeu_si512(out, _mm512_unpacklo_epi16(rgLo, baLo));
    _mm512_storeu_si512(out + 16, _mm512_unpackhi_epi16(rgLo, baLo));
    _mm512_storeu_si512(out + 32, _mm512_unpacklo_epi16(rgHi, baHi));
    _mm512_storeu_si512(out + 48, _mm512_unpackhi_epi16(rgHi, baHi));
}

ZAN_VBMI void MaxRowVbmi(BYTE* __restrict acc, const BYTE* __restrict s, std::size_t n)
{
    std::size_t x = 0;
    for (; x + 64 <= n; x += 64)
        _mm512_storeu_si512(acc + x, _mm512_max_epu8(_mm512_loadu_si512(acc + x), _mm512_loadu_si512(s + x)));
    MaxRowPlain(acc + x, s + x, n - x);
}

ZAN_VBMI void ColourRowsVbmi(const Rows& rs, std::size_t n, const CRgb* ctab, const Planes& p)
{
    const Tbl256 tr = LoadTbl(p.r), tg = LoadTbl(p.g), tb = LoadTbl(p.b), ta = LoadTbl(p.a);
    const __m512i order = _mm512_load_si512(kWorkOrder.data());
    for (unsigned j = 0; j < rs.nRows; ++j) {
        const Fold f = RowFold(rs, j);
        CRgb* out = RowOut(rs, j);
        std::size_t x = 0;
        for (; x + 64 <= n; x += 64) {
            const __m512i v = FoldedBlock(f, x, order);
            const __m512i r = Lookup(v, tr), g = Lookup(v, tg), b = Lookup(v, tb), a = Lookup(v, ta);
            StoreWords(out + x, _mm512_unpacklo_epi8(r, g), _mm512_unpackhi_epi8(r, g), _mm512_unpacklo_epi8(b, a),
                       _mm512_unpackhi_epi8(b, a));
        }
        ColourRowPlain(f, x, n, ctab, out);
    }
}

// Pixels of colour bytes r, g, b times brightness k, >> 8, and alpha a, all
// in work order. Each colour byte goes to the high byte of a word, and a high
// multiply by k << 8 leaves the whole product c * k in the word: its high
// byte is the result. One permute then pairs the high bytes of two channels'
// products, or of blue's with the alpha bytes, into the words that StoreWords
// interleaves.
constexpr std::array<BYTE, 64> PairHighBytes(bool withAlpha, int half)
{
    std::array<BYTE, 64> o {};
    for (int lane = 0; lane < 4; ++lane)
        for (int w = 0; w < 8; ++w) {
            const auto at = static_cast<std::size_t>(16 * lane + 2 * w);
            o[at] = static_cast<BYTE>(16 * lane + 2 * w + 1);
            o[at + 1] = static_cast<BYTE>(withAlpha ? 64 + 16 * lane + 8 * half + w : 64 + 16 * lane + 2 * w + 1);
        }
    return o;
}
alignas(64) constexpr std::array<BYTE, 64> kPairRG = PairHighBytes(false, 0);
alignas(64) constexpr std::array<BYTE, 64> kPairBA0 = PairHighBytes(true, 0);
alignas(64) constexpr std::array<BYTE, 64> kPairBA1 = PairHighBytes(true, 1);

struct Pairing {
    __m512i rg, ba0, ba1;
};

ZAN_VBMI inline void StoreScaled(CRgb* out, __m512i r, __m512i g, __m512i b, __m512i a, __m512i k, const Pairing& pr)
{
    const __m512i zero = _mm512_setzero_si512();
    const __m512i kLo = _mm512_unpacklo_epi8(zero, k), kHi = _mm512_unpackhi_epi8(zero, k);
    const __m512i r0 = _mm512_mulhi_epu16(_mm512_unpacklo_epi8(zero, r), kLo);
    const __m512i r1 = _mm512_mulhi_epu16(_mm512_unpackhi_epi8(zero, r), kHi);
    const __m512i g0 = _mm512_mulhi_epu16(_mm512_unpacklo_epi8(zero, g), kLo);
    const __m512i g1 = _mm512_mulhi_epu16(_mm512_unpackhi_epi8(zero, g), kHi);
    const __m512i b0 = _mm512_mulhi_epu16(_mm512_unpacklo_epi8(zero, b), kLo);
    const __m512i b1 = _mm512_mulhi_epu16(_mm512_unpackhi_epi8(zero, b), kHi);
    StoreWords(out, _mm512_permutex2var_epi8(r0, pr.rg, g0), _mm512_permutex2var_epi8(r1, pr.rg, g1),
               _mm512_permutex2var_epi8(b0, pr.ba0, a), _mm512_permutex2var_epi8(b1, pr.ba1, a));
}

// The estimated floor of 16 columns' t, and which are sure.
struct Estimate {
    __m512i q;
    __mmask16 sure;
};
[[gnu::always_inline]] ZAN_VBMI inline Estimate Estimate16(const float* a, const float* bLo, const float* room, __m512 frac32)
{
    const __m512 t = _mm512_fmadd_ps(_mm512_loadu_ps(a), frac32, _mm512_loadu_ps(bLo));
    const __m512 fr = _mm512_reduce_ps(t, 0x09);  // t - floor(t), exactly
    return {_mm512_cvt_roundps_epi32(t, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC),
            _mm512_cmp_ps_mask(fr, _mm512_loadu_ps(room), _CMP_LT_OQ)};
}

// The exact index bytes of the columns x + c for the bits c of `unsure`,
// put into the block's bytes (in work order). Rare: about twice e of the
// columns.
[[gnu::noinline]] void ExactBlock(const DepthCols& c, double frac, std::size_t x, std::uint64_t unsure, BYTE* block)
{
    for (; unsure; unsure &= unsure - 1) {
        const unsigned col = static_cast<unsigned>(__builtin_ctzll(unsure));
        const unsigned j = col >> 4, e = col & 15;
        block[16 * (e >> 2) + 4 * j + (e & 3)] = ExactIndex(c, frac, x + col);
    }
}

// The low bytes of the words of two vectors packed by signed saturation
// from 32-bit lanes, in the order an unsigned pack of the words would give:
// byte 16 L + k of lane L is word k of lane L of the first (k < 8), or word
// k - 8 of the second.
constexpr std::array<BYTE, 64> LowBytesOfPacks()
{
    std::array<BYTE, 64> o {};
    for (int p = 0; p < 64; ++p) {
        const int lane = p >> 4, k = p & 15;
        o[static_cast<std::size_t>(p)] = static_cast<BYTE>(k < 8 ? 16 * lane + 2 * k : 64 + 16 * lane + 2 * (k - 8));
    }
    return o;
}
alignas(64) constexpr std::array<BYTE, 64> kLowBytesOfPacks = LowBytesOfPacks();

// The depth index bytes of the 64 columns from x, in work order: the
// single-precision estimates, and the exact form where they are not sure.
[[gnu::always_inline]] ZAN_VBMI inline __m512i DepthBlock(const DepthCols& c, const float* a, const float* bLo, const float* room,
                                                          double frac, __m512 frac32, __m512i lastW, __m512i lowBytes,
                                                          std::size_t x)
{
    const Estimate q0 = Estimate16(a + x, bLo + x, room + x, frac32);
    const Estimate q1 = Estimate16(a + x + 16, bLo + x + 16, room + x + 16, frac32);
    const Estimate q2 = Estimate16(a + x + 32, bLo + x + 32, room + x + 32, frac32);
    const Estimate q3 = Estimate16(a + x + 48, bLo + x + 48, room + x + 48, frac32);
    // The estimated floors lie within +-16385: 16-bit words hold them, and
    // the low byte of a word is that of the 32-bit integer.
    const __m512i w01 = _mm512_min_epi16(_mm512_packs_epi32(q0.q, q1.q), lastW);
    const __m512i w23 = _mm512_min_epi16(_mm512_packs_epi32(q2.q, q3.q), lastW);
    const __m512i idx = _mm512_permutex2var_epi8(w01, lowBytes, w23);
    const std::uint64_t sure = static_cast<std::uint64_t>(q0.sure) | static_cast<std::uint64_t>(q1.sure) << 16 |
                               static_cast<std::uint64_t>(q2.sure) << 32 | static_cast<std::uint64_t>(q3.sure) << 48;
    if (__builtin_expect(sure == ~std::uint64_t {0}, 1)) return idx;
    alignas(64) BYTE block[64];
    _mm512_store_si512(block, idx);
    ExactBlock(c, frac, x, ~sure, block);
    return _mm512_load_si512(block);
}

// min(i + 126, 255) for each byte i above 8, else 0.
ZAN_VBMI inline __m512i Brightness(__m512i i, __m512i eight, __m512i k126)
{
    return _mm512_maskz_adds_epu8(_mm512_cmpgt_epu8_mask(i, eight), i, k126);
}

// kSameAlpha: every alpha of the table is the same (Planes::aSame), so a
// lit pixel's alpha needs no lookup.
template <bool kSameAlpha>
ZAN_VBMI void DepthColourRowsVbmiT(const Rows& rs, std::size_t n, const DepthColour& d)
{
    const DepthCols& c = *d.cols;
    const Planes& p = *d.tblPlanes;
    const Tbl256 tr = LoadTbl(p.r), tg = LoadTbl(p.g), tb = LoadTbl(p.b), tl = LoadTbl(d.lut);
    const __m512i eight = _mm512_set1_epi8(8), k126 = _mm512_set1_epi8(126), zero = _mm512_setzero_si512();
    // By folded intensity v, with i = lut[v]: the brightness k = min(i + 126,
    // 255) where i is above 8 (k is then at least 135), else 0, unlit; and
    // the alpha tbl[i].a.
    const Tbl256 tk {Brightness(tl.t0, eight, k126), Brightness(tl.t1, eight, k126), Brightness(tl.t2, eight, k126),
                     Brightness(tl.t3, eight, k126)};
    Tbl256 ta {};
    if constexpr (!kSameAlpha) {
        const Tbl256 tblA = LoadTbl(p.a);
        ta = {Lookup(tl.t0, tblA), Lookup(tl.t1, tblA), Lookup(tl.t2, tblA), Lookup(tl.t3, tblA)};
    }
    const __m512i order = _mm512_load_si512(kWorkOrder.data());
    const __m512i aAll = _mm512_set1_epi8(static_cast<char>(p.a[0]));
    const float *ea = c.a.data(), *ebLo = c.bLo.data(), *eRoom = c.room.data();
    const __m512i lowBytes = _mm512_load_si512(kLowBytesOfPacks.data());
    const __m512i lastW = _mm512_set1_epi16(static_cast<short>(std::min(c.nc - 1, 32767)));
    const Pairing pairing {_mm512_load_si512(kPairRG.data()), _mm512_load_si512(kPairBA0.data()),
                           _mm512_load_si512(kPairBA1.data())};
    for (unsigned j = 0; j < rs.nRows; ++j) {
        const Fold f = RowFold(rs, j);
        CRgb* out = RowOut(rs, j);
        const double frac = RowFrac(rs, j);
        const __m512 frac32 = _mm512_set1_ps(static_cast<float>(frac));
        // The estimates' bounds hold for frac from 0 to 1.
        const std::size_t nVec = frac >= 0.0 && frac <= 1.0 ? std::min(n, c.Size()) : 0;
        std::size_t x = 0;
        for (; x + 64 <= nVec; x += 64) {
            const __m512i v = FoldedBlock(f, x, order);
            const __m512i k = Lookup(v, tk);
            const __mmask64 lit = _mm512_test_epi8_mask(k, k);
            if (!lit) {
                for (int q = 0; q < 4; ++q) _mm512_storeu_si512(out + x + 16 * q, zero);
                continue;
            }
            const __m512i idx = DepthBlock(c, ea, ebLo, eRoom, frac, frac32, lastW, lowBytes, x);
            __m512i r, g, b;
            // Depth changes little across 64 columns: their indices mostly lie
            // in one half of the table, which one permute each reads.
            const __mmask64 hi = _mm512_movepi8_mask(idx);
            if (hi == 0 || hi == ~__mmask64 {0}) {
                const bool upper = hi != 0;
                r = LookupHalf(idx, tr, lit, upper), g = LookupHalf(idx, tg, lit, upper), b = LookupHalf(idx, tb, lit, upper);
            } else {
                r = Lookup(idx, tr, lit), g = Lookup(idx, tg, lit), b = Lookup(idx, tb, lit);
            }
            __m512i a;
            if constexpr (kSameAlpha) a = _mm512_maskz_mov_epi8(lit, aAll);
            else a = Lookup(v, ta, lit);
            StoreScaled(out + x, r, g, b, a, k, pairing);
        }
        DepthColourRowPlain(f, frac, x, n, d, out);
    }
}

ZAN_VBMI void DepthColourRowsVbmi(const Rows& rs, std::size_t n, const DepthColour& d)
{
    if (d.tblPlanes->aSame) DepthColourRowsVbmiT<true>(rs, n, d);
    else DepthColourRowsVbmiT<false>(rs, n, d);
}

// PrepareColumn for eight columns at once, in the same steps and roundings;
// the conversion toward minus infinity is the rounded-down room. Returns the
// columns done, a multiple of 8.
ZAN_VBMI std::size_t PrepareVbmi(DepthCols& c)
{
    const std::size_t n = c.Size();
    const __m512d absMask = _mm512_castsi512_pd(_mm512_set1_epi64(0x7FFFFFFFFFFFFFFF));
    const __m512d dMin = _mm512_set1_pd(c.dMin), scale = _mm512_set1_pd(c.scale);
    const __m512d absDMin = _mm512_set1_pd(std::fabs(c.dMin)), absScale = _mm512_set1_pd(std::fabs(c.scale));
    const __m512d one = _mm512_set1_pd(1.0), half = _mm512_set1_pd(0.5), two = _mm512_set1_pd(2.0);
    const __m512d maxW = _mm512_set1_pd(kMaxW), ulp20 = _mm512_set1_pd(0x1p-20);
    std::size_t x = 0;
    for (; x + 8 <= n; x += 8) {
        const __m512d sz = _mm512_loadu_pd(c.sz.data() + x), dz = _mm512_loadu_pd(c.dz.data() + x);
        const __m512d w = _mm512_mul_pd(
            _mm512_add_pd(_mm512_add_pd(_mm512_and_pd(dz, absMask), _mm512_and_pd(sz, absMask)), absDMin), absScale);
        const __mmask8 ok = _mm512_cmp_pd_mask(w, maxW, _CMP_LE_OQ);
        const __m512d b = _mm512_add_pd(_mm512_mul_pd(_mm512_sub_pd(sz, dMin), scale), half);
        const __m512d e = _mm512_mul_pd(_mm512_add_pd(w, one), ulp20);
        const __m512d r = _mm512_sub_pd(one, _mm512_mul_pd(two, e));
        const __m256 a = _mm512_cvtpd_ps(_mm512_mul_pd(dz, scale)), bLo = _mm512_cvtpd_ps(_mm512_sub_pd(b, e));
        const __m256 room = _mm512_cvt_roundpd_ps(r, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
        _mm256_storeu_ps(c.a.data() + x, _mm256_maskz_mov_ps(ok, a));
        _mm256_storeu_ps(c.bLo.data() + x, _mm256_mask_mov_ps(_mm256_set1_ps(0.5f), ok, bLo));
        _mm256_storeu_ps(c.room.data() + x, _mm256_mask_mov_ps(_mm256_set1_ps(-1.0f), ok, room));
    }
    return x;
}

int Detect()
{
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512vbmi"))
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

void DepthCols::Prepare(double depthMin, double depthScale, int entries)
{
    dMin = depthMin;
    scale = depthScale;
    nc = entries;
    const std::size_t n = sz.size();
    a.resize(n);
    bLo.resize(n);
    room.resize(n);
    std::size_t x = 0;
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) x = PrepareVbmi(*this);
#endif
    for (; x < n; ++x) PrepareColumn(*this, x);
}

void MaxRow(BYTE* acc, const BYTE* s, std::size_t n)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return MaxRowVbmi(acc, s, n);
#endif
    MaxRowPlain(acc, s, n);
}

void ColourRows(const Rows& rows, std::size_t n, const CRgb* ctab, const Planes& p)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return ColourRowsVbmi(rows, n, ctab, p);
#endif
    (void)p;
    ColourRowsPlain(rows, n, ctab);
}

void DepthColourRows(const Rows& rows, std::size_t n, const DepthColour& d)
{
#ifdef ZAN_DSP_X86
    if (Current() == kAvx512Vbmi) return DepthColourRowsVbmi(rows, n, d);
#endif
    DepthColourRowsPlain(rows, n, d);
}

} // namespace zan_dsp
