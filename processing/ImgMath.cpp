// Sample arithmetic of the 16-bit to 8-bit operations, in plain C++ and, on
// x86-64 processors that have them, in AVX2 and AVX-512 forms chosen at run
// time. Every form gives the same bytes.
//
// The vector forms reach the exact result without a division per sample:
// - Norm16to8 is 1 + floor(254 (v - minI) / D) in whole numbers (see
//   Stretch16to8): in 16-bit lanes a multiplication by a 32-bit reciprocal
//   gives it exactly (StretchWordsAvx512); otherwise the quotient is
//   estimated in single precision, whose error is below one, and put right by
//   one comparison of the remainder.
// - Normalise8's byte is trunc(s * G * 255 / den) in double precision, which
//   is floor(s * g / den) except, perhaps, where that quotient is whole. For a
//   line with one divisor a 32-bit reciprocal gives the quotient in 16-bit
//   lanes and flags the few lanes where it may be whole (NormRowWordsAvx512);
//   with column maxima each lane takes the smaller of its line's and its
//   column's reciprocal (NormRowWordsColsAvx512). Otherwise a
//   single-precision estimate lies within 1e-4 of the double; where it is
//   further than 2e-4 from a whole number both truncate alike. The few
//   samples left are worked out in double precision.
#include "processing/ImgMath.hpp"

#include "core/CacheLineAllocator.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__x86_64__) && defined(__GNUC__)
// GCC 12's AVX-512 intrinsics start some results from a deliberately
// undefined register, which its own warnings then flag inside the header.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop
#define ZAN_X86_VECTOR 1
#endif

namespace imgmath {

namespace {

inline unsigned Word(const BYTE* p, size_t i) { return p[2 * i] | (p[2 * i + 1] << 8); }

// Distance from a whole number under which an estimate is checked in double.
constexpr float kTol = 2e-4f;

// ---------------------------------------------------------------- plain forms

unsigned MaxWordPlain(const BYTE* plane, size_t n)
{
    unsigned m = 0;
    for (size_t i = 0; i < n; ++i) m = std::max(m, Word(plane, i));
    return m;
}

inline BYTE StretchOne(unsigned v, int minI, long long D)
{
    if (static_cast<long long>(v) < minI) return 0;
    if (D == 0) return 1;
    return static_cast<BYTE>(1 + 254 * (static_cast<long long>(v) - minI) / D);
}

void StretchPlain(const BYTE* src, BYTE* dst, size_t n, int minI, long long D)
{
    for (size_t i = 0; i < n; ++i) dst[i] = StretchOne(Word(src, i), minI, D);
}

// The byte of one sample as Normalise8's last step says.
inline BYTE NormOne(unsigned s, double G, std::uint32_t den) { return ToByte(s * G * 255.0 / static_cast<double>(den)); }

// The line and column maxima of Normalise8 (steps 2 to 5), any gain.
struct NormStats {
    std::vector<std::uint32_t> rowMax, colMax;
};

// Stats from the plane, sample by sample (any gain, wrapping products).
void StatsPlain(const BYTE* src, size_t rows, size_t cols, std::uint32_t g, bool spread, bool useCols, NormStats& st)
{
    std::vector<std::uint32_t> rowRaw(rows, 255);
    st.rowMax.assign(rows, 255);
    st.colMax.assign(cols, 255);
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c) rowRaw[r] = std::max(rowRaw[r], Word(src, r * cols + c) * g / 255u);
    for (size_t r = 0; r < rows; ++r) {
        st.rowMax[r] = rowRaw[r];
        if (spread) {
            if (r >= 3) st.rowMax[r] = std::max(st.rowMax[r], rowRaw[r - 3]);
            if (r + 3 < rows) st.rowMax[r] = std::max(st.rowMax[r], rowRaw[r + 3]);
        }
    }
    if (useCols && rows > 50)
        for (size_t r = 50; r < rows; ++r)
            for (size_t c = 0; c < cols; ++c) st.colMax[c] = std::max(st.colMax[c], Word(src, r * cols + c) * g / 255u);
}

void NormOutPlain(const BYTE* src, BYTE* dst, size_t rows, size_t cols, double G, const NormStats& st)
{
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c)
            dst[r * cols + c] = NormOne(Word(src, r * cols + c), G, std::max(st.rowMax[r], st.colMax[c]));
}

#ifdef ZAN_X86_VECTOR

// ---------------------------------------------------------------- AVX2 forms

__attribute__((target("avx2"))) unsigned MaxWordAvx2(const BYTE* p, size_t n)
{
    __m256i acc = _mm256_setzero_si256();
    size_t i = 0;
    for (; i + 16 <= n; i += 16)
        acc = _mm256_max_epu16(acc, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 2 * i)));
    alignas(32) unsigned short lanes[16];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), acc);
    unsigned m = 0;
    for (unsigned short v : lanes) m = std::max<unsigned>(m, v);
    for (; i < n; ++i) m = std::max(m, Word(p, i));
    return m;
}

// Eight 32-bit lanes to eight bytes, keeping the low bits.
__attribute__((target("avx2"))) inline void Store8(BYTE* dst, __m256i v)
{
    v = _mm256_and_si256(v, _mm256_set1_epi32(0xFF));
    const __m128i w = _mm_packus_epi32(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
    const __m128i b = _mm_packus_epi16(w, w);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), b);
}

__attribute__((target("avx2"))) void StretchAvx2(const BYTE* src, BYTE* dst, size_t n, int minI, long long D)
{
    const __m256i vmin = _mm256_set1_epi32(minI), vD = _mm256_set1_epi32(static_cast<int>(D));
    const __m256i k254 = _mm256_set1_epi32(254), one = _mm256_set1_epi32(1);
    const __m256 rcp = _mm256_set1_ps(1.0f / static_cast<float>(D));
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m256i v = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * i)));
        const __m256i x = _mm256_sub_epi32(v, vmin);
        const __m256i below = _mm256_cmpgt_epi32(_mm256_setzero_si256(), x);
        const __m256i N = _mm256_mullo_epi32(x, k254);
        __m256i q = _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(N), rcp));
        const __m256i r = _mm256_sub_epi32(N, _mm256_mullo_epi32(q, vD));
        q = _mm256_sub_epi32(q, _mm256_cmpgt_epi32(r, _mm256_sub_epi32(vD, one)));  // r >= D: one more
        q = _mm256_add_epi32(q, _mm256_cmpgt_epi32(_mm256_setzero_si256(), r));    // r < 0: one less
        Store8(dst + i, _mm256_andnot_si256(below, _mm256_add_epi32(q, one)));
    }
    for (; i < n; ++i) dst[i] = StretchOne(Word(src, i), minI, D);
}

// The greatest sample of a line; with col, also each column's greatest so far.
__attribute__((target("avx2"))) unsigned RowMaxAvx2(const BYTE* row, size_t cols, unsigned short* col)
{
    __m256i acc = _mm256_setzero_si256();
    size_t c = 0;
    for (; c + 16 <= cols; c += 16) {
        const __m256i w = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + 2 * c));
        acc = _mm256_max_epu16(acc, w);
        if (col) {
            __m256i* cp = reinterpret_cast<__m256i*>(col + c);
            _mm256_storeu_si256(cp, _mm256_max_epu16(_mm256_loadu_si256(cp), w));
        }
    }
    alignas(32) unsigned short lanes[16];
    _mm256_store_si256(reinterpret_cast<__m256i*>(lanes), acc);
    unsigned m = 0;
    for (unsigned short v : lanes) m = std::max<unsigned>(m, v);
    for (; c < cols; ++c) {
        const unsigned w = Word(row, c);
        m = std::max(m, w);
        if (col) col[c] = static_cast<unsigned short>(std::max<unsigned>(col[c], w));
    }
    return m;
}

// One line of Normalise8's bytes. colMax and rcpCol are null when no column
// maximum counts.
__attribute__((target("avx2"))) void NormRowAvx2(const BYTE* row, BYTE* out, size_t cols, double G,
                                                  std::uint32_t rowMax, const std::uint32_t* colMax, const float* rcpCol)
{
    const __m256 tol = _mm256_set1_ps(kTol), vG = _mm256_set1_ps(static_cast<float>(G * 255.0));
    const __m256 rcpRow = _mm256_set1_ps(1.0f / static_cast<float>(rowMax));
    const __m256 kRow = _mm256_mul_ps(vG, rcpRow);
    size_t c = 0;
    for (; c + 8 <= cols; c += 8) {
        const __m256i s = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row + 2 * c)));
        const __m256 K = rcpCol ? _mm256_mul_ps(vG, _mm256_min_ps(rcpRow, _mm256_loadu_ps(rcpCol + c))) : kRow;
        const __m256 q = _mm256_mul_ps(_mm256_cvtepi32_ps(s), K);
        // trunc(q - tol) and trunc(q + tol) agree exactly when q is at least
        // tol from a whole number (a sample of 0 gives 0 and 0).
        const __m256i t = _mm256_cvttps_epi32(_mm256_sub_ps(q, tol));
        const __m256i u = _mm256_cvttps_epi32(_mm256_add_ps(q, tol));
        Store8(out + c, t);
        int bad = _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(t, u))) ^ 0xFF;
        for (; bad; bad &= bad - 1) {
            const size_t j = c + static_cast<size_t>(__builtin_ctz(static_cast<unsigned>(bad)));
            out[j] = NormOne(Word(row, j), G, colMax ? std::max(rowMax, colMax[j]) : rowMax);
        }
    }
    for (; c < cols; ++c) out[c] = NormOne(Word(row, c), G, colMax ? std::max(rowMax, colMax[c]) : rowMax);
}

// ---------------------------------------------------------------- AVX-512 forms

#define ZAN_AVX512 __attribute__((target("avx512f,avx512bw,avx512vl,avx512dq")))

ZAN_AVX512 unsigned MaxWordAvx512(const BYTE* p, size_t n)
{
    // Four running maxima, so that several loads are in flight at once.
    __m512i a0 = _mm512_setzero_si512(), a1 = a0, a2 = a0, a3 = a0;
    size_t i = 0;
    for (; i + 128 <= n; i += 128) {
        a0 = _mm512_max_epu16(a0, _mm512_loadu_si512(p + 2 * i));
        a1 = _mm512_max_epu16(a1, _mm512_loadu_si512(p + 2 * i + 64));
        a2 = _mm512_max_epu16(a2, _mm512_loadu_si512(p + 2 * i + 128));
        a3 = _mm512_max_epu16(a3, _mm512_loadu_si512(p + 2 * i + 192));
    }
    __m512i acc = _mm512_max_epu16(_mm512_max_epu16(a0, a1), _mm512_max_epu16(a2, a3));
    for (; i + 32 <= n; i += 32) acc = _mm512_max_epu16(acc, _mm512_loadu_si512(p + 2 * i));
    const __m512i wide = _mm512_max_epu32(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(acc)),
                                          _mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(acc, 1)));
    unsigned m = _mm512_reduce_max_epu32(wide);
    for (; i < n; ++i) m = std::max(m, Word(p, i));
    return m;
}

ZAN_AVX512 void StretchAvx512(const BYTE* src, BYTE* dst, size_t n, int minI, long long D)
{
    const __m512i vmin = _mm512_set1_epi32(minI), vD = _mm512_set1_epi32(static_cast<int>(D));
    const __m512i k254 = _mm512_set1_epi32(254), one = _mm512_set1_epi32(1), zero = _mm512_setzero_si512();
    const __m512 rcp = _mm512_set1_ps(1.0f / static_cast<float>(D));
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m512i v = _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * i)));
        const __m512i x = _mm512_sub_epi32(v, vmin);
        const __mmask16 keep = _mm512_cmpge_epi32_mask(x, zero);
        const __m512i N = _mm512_mullo_epi32(x, k254);
        __m512i q = _mm512_cvttps_epi32(_mm512_mul_ps(_mm512_cvtepi32_ps(N), rcp));
        const __m512i r = _mm512_sub_epi32(N, _mm512_mullo_epi32(q, vD));
        q = _mm512_mask_add_epi32(q, _mm512_cmpge_epi32_mask(r, vD), q, one);
        q = _mm512_mask_sub_epi32(q, _mm512_cmplt_epi32_mask(r, zero), q, one);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), _mm512_cvtepi32_epi8(_mm512_maskz_add_epi32(keep, q, one)));
    }
    for (; i < n; ++i) dst[i] = StretchOne(Word(src, i), minI, D);
}

// The common case, 0 <= minI and 255 <= D <= 65535, in 16-bit lanes:
// floor(254 x / D) = floor(x M / 2^32) with M = ceil(254 2^32 / D), for
// every x below 2^16. (M / 2^32 exceeds 254 / D by less than 2^-32, so x M /
// 2^32 exceeds 254 x / D by less than 2^-16 <= 1 / D, while the fraction of
// 254 x / D is at most 1 - 1 / D.) The 48-bit product is taken in 16-bit
// pieces: x Mhi 2^16 + x Mlo, of which only the high half of x Mlo counts.
ZAN_AVX512 void StretchWordsAvx512(const BYTE* src, BYTE* dst, size_t n, int minI, long long D)
{
    const std::uint64_t M = ((254ull << 32) + static_cast<std::uint64_t>(D) - 1) / static_cast<std::uint64_t>(D);
    const __m512i mhi = _mm512_set1_epi16(static_cast<short>(M >> 16));
    const __m512i mlo = _mm512_set1_epi16(static_cast<short>(M & 0xFFFF));
    const __m512i vmin = _mm512_set1_epi16(static_cast<short>(minI)), one = _mm512_set1_epi16(1);
    size_t i = 0;
    for (; i + 32 <= n; i += 32) {
        const __m512i v = _mm512_loadu_si512(src + 2 * i);
        const __mmask32 keep = _mm512_cmpge_epu16_mask(v, vmin);
        const __m512i x = _mm512_subs_epu16(v, vmin);
        const __m512i hiA = _mm512_mulhi_epu16(x, mhi), loA = _mm512_mullo_epi16(x, mhi);
        const __m512i sum = _mm512_add_epi16(loA, _mm512_mulhi_epu16(x, mlo));
        const __m512i q = _mm512_mask_add_epi16(hiA, _mm512_cmplt_epu16_mask(sum, loA), hiA, one);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), _mm512_cvtepi16_epi8(_mm512_maskz_add_epi16(keep, q, one)));
    }
    for (; i < n; ++i) dst[i] = StretchOne(Word(src, i), minI, D);
}

ZAN_AVX512 unsigned RowMaxAvx512(const BYTE* row, size_t cols, unsigned short* col)
{
    // Two vectors a step: with one column update a step the loads wait on it,
    // and Normalise8 with column maxima ran about a tenth slower.
    __m512i a0 = _mm512_setzero_si512(), a1 = a0;
    size_t c = 0;
    for (; c + 64 <= cols; c += 64) {
        const __m512i w0 = _mm512_loadu_si512(row + 2 * c), w1 = _mm512_loadu_si512(row + 2 * c + 64);
        a0 = _mm512_max_epu16(a0, w0);
        a1 = _mm512_max_epu16(a1, w1);
        if (col) {
            _mm512_storeu_si512(col + c, _mm512_max_epu16(_mm512_loadu_si512(col + c), w0));
            _mm512_storeu_si512(col + c + 32, _mm512_max_epu16(_mm512_loadu_si512(col + c + 32), w1));
        }
    }
    __m512i acc = _mm512_max_epu16(a0, a1);
    for (; c + 32 <= cols; c += 32) {
        const __m512i w = _mm512_loadu_si512(row + 2 * c);
        acc = _mm512_max_epu16(acc, w);
        if (col) _mm512_storeu_si512(col + c, _mm512_max_epu16(_mm512_loadu_si512(col + c), w));
    }
    const __m512i wide = _mm512_max_epu32(_mm512_cvtepu16_epi32(_mm512_castsi512_si256(acc)),
                                          _mm512_cvtepu16_epi32(_mm512_extracti64x4_epi64(acc, 1)));
    unsigned m = _mm512_reduce_max_epu32(wide);
    for (; c < cols; ++c) {
        const unsigned w = Word(row, c);
        m = std::max(m, w);
        if (col) col[c] = static_cast<unsigned short>(std::max<unsigned>(col[c], w));
    }
    return m;
}

ZAN_AVX512 void NormRowAvx512(const BYTE* row, BYTE* out, size_t cols, double G, std::uint32_t rowMax,
                              const std::uint32_t* colMax, const float* rcpCol)
{
    const __m512 tol = _mm512_set1_ps(kTol), vG = _mm512_set1_ps(static_cast<float>(G * 255.0));
    const __m512 rcpRow = _mm512_set1_ps(1.0f / static_cast<float>(rowMax));
    const __m512 kRow = _mm512_mul_ps(vG, rcpRow);
    size_t c = 0;
    for (; c + 16 <= cols; c += 16) {
        const __m512i s = _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(row + 2 * c)));
        const __m512 K = rcpCol ? _mm512_mul_ps(vG, _mm512_min_ps(rcpRow, _mm512_loadu_ps(rcpCol + c))) : kRow;
        const __m512 q = _mm512_mul_ps(_mm512_cvtepi32_ps(s), K);
        // As in the AVX2 form: the two truncations differ only near a whole number.
        const __m512i t = _mm512_cvttps_epi32(_mm512_sub_ps(q, tol));
        const __m512i u = _mm512_cvttps_epi32(_mm512_add_ps(q, tol));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + c), _mm512_cvtepi32_epi8(t));
        for (unsigned bad = _mm512_cmpneq_epi32_mask(t, u); bad; bad &= bad - 1) {
            const size_t j = c + static_cast<size_t>(__builtin_ctz(bad));
            out[j] = NormOne(Word(row, j), G, colMax ? std::max(rowMax, colMax[j]) : rowMax);
        }
    }
    for (; c < cols; ++c) out[c] = NormOne(Word(row, c), G, colMax ? std::max(rowMax, colMax[c]) : rowMax);
}

// Normalise8's bytes in 16-bit lanes, for a line whose divisors den satisfy
// g < den and maxS * den <= 2^32 (maxS the line's greatest sample). Then with
// C = g / den and M = ceil(C 2^32) < 2^32, floor(s M / 2^32) is
// floor(s g / den) for every s <= maxS (s M / 2^32 exceeds s C by less than
// s 2^-32 <= 1 / den, while a fraction of s C that isn't 0 lies between
// 1 / den and 1 - 1 / den), and s g / den is whole exactly when the low 32
// bits of s M are below s. The double evaluation truncates to floor(s g / den)
// except, perhaps, where that is whole: those samples are worked out in double.
//
// s M is hiA 2^32 + (loA + hiB) 2^16 + loB in 16-bit pieces, so its low 32
// bits are mid 2^16 + loB with mid = loA + hiB (mod 2^16): below s only where
// mid is 0. The loop writes no mask registers (their compares are what
// limits it). The carry out of loA + hiB is read from their rounded mean
// av = (loA + hiB + 1) >> 1, which keeps the sum's 17th bit: av >> 15 is
// the carry of loA + hiB + 1, wrong only where loA + hiB is 0xFFFF. And
// av & 0x7FFF is 0 exactly where loA + hiB is 0, 0xFFFF or 0x10000: where mid
// is 0 and where the carry is wrong. Those lanes, for a sample that isn't 0,
// are gathered by a running minimum, looked for once per group of columns
// and worked out in double.
namespace words {

constexpr size_t kGroup = 256;  // columns between looks for a whole quotient

// floor(x M / 2^32) of 32 samples x for M = mhi:mlo, but for the lanes the
// rounded mean av flags (see above).
ZAN_AVX512 inline __m512i Quotient(__m512i x, __m512i mhi, __m512i mlo, __m512i& av)
{
    const __m512i hiA = _mm512_mulhi_epu16(x, mhi), loA = _mm512_mullo_epi16(x, mhi);
    const __m512i hiB = _mm512_mulhi_epu16(x, mlo);
    av = _mm512_avg_epu16(loA, hiB);
    return _mm512_add_epi16(hiA, _mm512_srli_epi16(av, 15));
}

// The running minimum of av & 0x7FFF, where a sample of 0 counts as 1.
ZAN_AVX512 inline __m512i Seen(__m512i seen, __m512i x, __m512i av)
{
    const __m512i zero = _mm512_subs_epu16(_mm512_set1_epi16(1), x);  // 1 where x is 0
    // (av | zero) & 0x7FFF
    return _mm512_min_epu16(seen, _mm512_ternarylogic_epi64(av, zero, _mm512_set1_epi16(0x7FFF), 0xA8));
}

// The multiplier of every lane: the line's.
struct LineMult {
    __m512i hi, lo;
    ZAN_AVX512 void operator()(size_t, __m512i& mhi, __m512i& mlo) const { mhi = hi, mlo = lo; }
};

// A lane takes its column's multiplier (colHi:colLo) where its column's
// maximum is above the line's divisor, that is where the column's greatest
// sample colS is above top, the greatest sample whose quotient is at most the
// line's divisor. M falls as den rises, so that is the smaller multiplier; two
// equal divisors give the same quotients either way.
struct ColumnMult {
    __m512i hi, lo, top;
    const std::uint16_t *colS, *colHi, *colLo;
    ZAN_AVX512 void operator()(size_t c, __m512i& mhi, __m512i& mlo) const
    {
        // Whole loads and blends: masked loads are slower on some processors.
        const __mmask32 byCol = _mm512_cmpgt_epu16_mask(_mm512_loadu_epi16(colS + c), top);
        mhi = _mm512_mask_blend_epi16(byCol, hi, _mm512_loadu_epi16(colHi + c));
        mlo = _mm512_mask_blend_epi16(byCol, lo, _mm512_loadu_epi16(colLo + c));
    }
};

// One line: M = ceil(g 2^32 / den) the line's multiplier, colMax null or
// each column's divisor (den of a lane is then the greater of the two).
template <class Mult>
ZAN_AVX512 inline void Line(const BYTE* row, BYTE* out, size_t cols, double G, std::uint32_t den,
                            const std::uint32_t* colMax, const Mult& mult)
{
    auto exact = [&](size_t j) { out[j] = NormOne(Word(row, j), G, colMax ? std::max(den, colMax[j]) : den); };
    const size_t whole = cols & ~size_t{31};
    for (size_t c = 0; c < whole; c += kGroup) {
        const size_t end = std::min(whole, c + kGroup);
        __m512i seen = _mm512_set1_epi16(-1);
        for (size_t k = c; k < end; k += 32) {
            __m512i mhi, mlo, av;
            mult(k, mhi, mlo);
            const __m512i x = _mm512_loadu_si512(row + 2 * k);
            const __m512i q = Quotient(x, mhi, mlo, av);
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + k), _mm512_cvtepi16_epi8(q));
            seen = Seen(seen, x, av);
        }
        if (_mm512_cmpeq_epi16_mask(seen, _mm512_setzero_si512()) == 0) continue;
        for (size_t k = c; k < end; k += 32) {
            __m512i mhi, mlo, av;
            mult(k, mhi, mlo);
            const __m512i x = _mm512_loadu_si512(row + 2 * k);
            Quotient(x, mhi, mlo, av);
            for (std::uint32_t bad = _mm512_mask_testn_epi16_mask(_mm512_test_epi16_mask(x, x), av, _mm512_set1_epi16(0x7FFF));
                 bad; bad &= bad - 1)
                exact(k + static_cast<size_t>(__builtin_ctz(bad)));
        }
    }
    for (size_t c = whole; c < cols; ++c) exact(c);
}

}  // namespace words

ZAN_AVX512 void NormRowWordsAvx512(const BYTE* row, BYTE* out, size_t cols, double G, std::uint64_t M, std::uint32_t den)
{
    const words::LineMult mult{_mm512_set1_epi16(static_cast<short>(M >> 16)),
                               _mm512_set1_epi16(static_cast<short>(M & 0xFFFF))};
    words::Line(row, out, cols, G, den, nullptr, mult);
}

// The same with a divisor for each column, den = max(rowDen, colMax[c]);
// rowTop is the greatest sample whose quotient is at most rowDen. Needs g <
// rowDen and maxS * max(rowDen, every colMax) <= 2^32.
ZAN_AVX512 void NormRowWordsColsAvx512(const BYTE* row, BYTE* out, size_t cols, double G, std::uint64_t M,
                                       std::uint32_t rowDen, std::uint16_t rowTop, const std::uint32_t* colMax,
                                       const std::uint16_t* colS, const std::uint16_t* colHi, const std::uint16_t* colLo)
{
    const words::ColumnMult mult{_mm512_set1_epi16(static_cast<short>(M >> 16)),
                                 _mm512_set1_epi16(static_cast<short>(M & 0xFFFF)),
                                 _mm512_set1_epi16(static_cast<short>(rowTop)),
                                 colS,
                                 colHi,
                                 colLo};
    words::Line(row, out, cols, G, rowDen, colMax, mult);
}

#endif  // ZAN_X86_VECTOR

int DetectLevel()
{
#ifdef ZAN_X86_VECTOR
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq"))
        return kAvx512;
    if (__builtin_cpu_supports("avx2")) return kAvx2;
#endif
    return kPlain;
}

const int s_best = DetectLevel();
std::atomic<int> s_level{-1};  // -1: the best the processor has

int CurrentLevel()
{
    const int forced = s_level.load(std::memory_order_relaxed);
    return forced < 0 ? s_best : std::min(forced, s_best);
}

}  // namespace

int BestLevel() { return s_best; }
void ForceLevel(int level) { s_level.store(level, std::memory_order_relaxed); }

unsigned MaxWord(const BYTE* plane, size_t n)
{
#ifdef ZAN_X86_VECTOR
    switch (CurrentLevel()) {
    case kAvx512: return MaxWordAvx512(plane, n);
    case kAvx2: return MaxWordAvx2(plane, n);
    default: break;
    }
#endif
    return MaxWordPlain(plane, n);
}

void Stretch16to8(const BYTE* src, BYTE* dst, size_t n, int minI, unsigned maxI)
{
    // With N = 254 * (v - minI) and D = maxI - minI whole numbers below 2^26,
    // the double quotient N / D is within 1e-13 of the exact one while a
    // quotient that isn't whole lies at least 1 / D > 1e-5 from the next
    // whole number: trunc(1 + N / D) is exactly 1 + N / D in whole numbers.
    const long long D = static_cast<long long>(maxI) - minI;
#ifdef ZAN_X86_VECTOR
    if (D > 0) {
        switch (CurrentLevel()) {
        case kAvx512:
            if (minI >= 0 && D >= 255 && D <= 65535) StretchWordsAvx512(src, dst, n, minI, D);
            else StretchAvx512(src, dst, n, minI, D);
            return;
        case kAvx2: StretchAvx2(src, dst, n, minI, D); return;
        default: break;
        }
    }
#endif
    StretchPlain(src, dst, n, minI, D);
}

void Normalise8(const BYTE* src, BYTE* dst, size_t rows, size_t cols, short gain, bool spread, bool useCols)
{
    const std::uint32_t g = static_cast<std::uint32_t>(static_cast<std::int32_t>(gain));
    const double G = static_cast<double>(g) / 255.0;
#ifdef ZAN_X86_VECTOR
    // The vector forms need products that don't wrap (gain 0 to 32767): then
    // s * g / 255 grows with s, and a line's (or column's) greatest quotient
    // is that of its greatest sample.
    const int level = CurrentLevel();
    if (gain >= 0 && level != kPlain) {
        const bool avx512 = level == kAvx512;
        auto rowMaxOf = [&](size_t r, unsigned short* col) {
            const BYTE* row = src + 2 * r * cols;
            return avx512 ? RowMaxAvx512(row, cols, col) : RowMaxAvx2(row, cols, col);
        };
        auto quotient = [g](unsigned m) { return std::max<std::uint32_t>(255, m * g / 255u); };
        std::vector<std::uint32_t> rowRaw(rows);
        std::vector<unsigned> rowS(rows);  // each line's greatest sample
        const bool anyCol = useCols && rows > 50;
        // The kernels read these a vector at a time, alongside the plane.
        zan::LineVector<std::uint32_t> colMax;
        zan::LineVector<float> rcpCol;
        zan::LineVector<std::uint16_t> colS;          // each column's greatest sample
        zan::LineVector<std::uint16_t> colHi, colLo;  // each column's multiplier (NormRowWordsColsAvx512)
        size_t known = 0;  // lines whose rowRaw is known
        std::uint32_t colTop = 0;  // the greatest column maximum
        if (anyCol) {
            // Column maxima need every line from 50 on before the first byte.
            colS.assign(cols, 0);
            for (; known < rows; ++known) {
                rowS[known] = rowMaxOf(known, known >= 50 ? colS.data() : nullptr);
                rowRaw[known] = quotient(rowS[known]);
            }
            colMax.resize(cols);
            rcpCol.resize(cols);
            for (size_t c = 0; c < cols; ++c) {
                colMax[c] = quotient(colS[c]);
                rcpCol[c] = 1.0f / static_cast<float>(colMax[c]);
                colTop = std::max(colTop, colMax[c]);
            }
            if (avx512) {
                colHi.resize(cols);
                colLo.resize(cols);
                // A column whose maximum is at most g is never above a line
                // divisor the word kernels take (g < den): its multiplier is
                // a placeholder.
                for (size_t c = 0; c < cols; ++c) {
                    const std::uint64_t M = g < colMax[c]
                                                ? ((static_cast<std::uint64_t>(g) << 32) + colMax[c] - 1) / colMax[c]
                                                : 0xFFFFFFFFull;
                    colHi[c] = static_cast<std::uint16_t>(M >> 16);
                    colLo[c] = static_cast<std::uint16_t>(M & 0xFFFF);
                }
            }
        }
        // Without column maxima each line is read for its maximum just ahead
        // of its bytes (three lines ahead with the spread), while it is still
        // in cache.
        const size_t ahead = spread ? 3 : 0;
        for (size_t r = 0; r < rows; ++r) {
            for (; known < rows && known <= r + ahead; ++known) {
                rowS[known] = rowMaxOf(known, nullptr);
                rowRaw[known] = quotient(rowS[known]);
            }
            std::uint32_t den = rowRaw[r];
            if (spread) {
                if (r >= 3) den = std::max(den, rowRaw[r - 3]);
                if (r + 3 < rows) den = std::max(den, rowRaw[r + 3]);
            }
            const BYTE* row = src + 2 * r * cols;
            const std::uint32_t* cm = anyCol ? colMax.data() : nullptr;
            const float* rc = anyCol ? rcpCol.data() : nullptr;
            // A line at least as strong as every column has one divisor.
            const bool oneDen = !anyCol || den >= colTop;
            const std::uint64_t topDen = std::max(den, oneDen ? den : colTop);
            if (avx512 && g < den && static_cast<std::uint64_t>(rowS[r]) * topDen <= (1ull << 32)) {
                // The line's multiplier ceil(g 2^32 / den), and the greatest
                // sample whose quotient is at most den (den >= 255, so the
                // floor never decides it).
                const std::uint64_t M = ((static_cast<std::uint64_t>(g) << 32) + den - 1) / den;
                if (oneDen) NormRowWordsAvx512(row, dst + r * cols, cols, G, M, den);
                else {
                    const auto top = static_cast<std::uint16_t>(
                        g == 0 ? 0xFFFFu : std::min<std::uint64_t>(0xFFFF, (255ull * (den + 1ull) - 1) / g));
                    NormRowWordsColsAvx512(row, dst + r * cols, cols, G, M, den, top, cm, colS.data(), colHi.data(),
                                           colLo.data());
                }
            } else if (avx512) NormRowAvx512(row, dst + r * cols, cols, G, den, cm, rc);
            else NormRowAvx2(row, dst + r * cols, cols, G, den, cm, rc);
        }
        return;
    }
#endif
    NormStats st;
    StatsPlain(src, rows, cols, g, spread, useCols, st);
    NormOutPlain(src, dst, rows, cols, G, st);
}

}  // namespace imgmath
