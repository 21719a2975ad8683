#include "image/CImgRle.h"

#include <array>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define ZAN_RLE_X86 1
#else
#define ZAN_RLE_X86 0
#endif

namespace {

// Codes of c pending zero samples at q; returns the position behind them.
inline BYTE* FlushRun(BYTE* q, unsigned int c)
{
    while (c > 255) {
        q[0] = 0;
        q[1] = 255;
        q += 2;
        c -= 255;
    }
    if (c == 1) {
        *q++ = 1;
    } else if (c != 0) {
        q[0] = 0;
        q[1] = static_cast<BYTE>(c);
        q += 2;
    }
    return q;
}

// The sample-by-sample loop, from sample i on with c zeros pending. Returns
// the end of the codes (pending zeros flushed).
BYTE* EncodeTail(const BYTE* pSrc, unsigned int i, unsigned int n, BYTE nLevel, BYTE* q, unsigned int c)
{
    for (; i < n; ++i) {
        const BYTE b = pSrc[i];
        if (b < nLevel) {
            ++c;
        } else {
            q = FlushRun(q, c);
            c = 0;
            *q++ = b;
        }
    }
    return FlushRun(q, c);
}

// The code-by-code loop from stream byte p and sample o on.
void DecodeTail(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n, unsigned int p, unsigned int o)
{
    while (o < n) {
        const BYTE b = pSrc[p];
        if (b == 0 && p < nSize - 1) {
            unsigned int cnt = pSrc[p + 1];
            p += 2;
            if (cnt > n - o) cnt = n - o;
            std::memset(pDst + o, 0, cnt);
            o += cnt;
        } else {
            ++p;
            pDst[o++] = b == 1 ? 0 : b;
        }
        if (p >= nSize) break;
    }
}

#if ZAN_RLE_X86

// What eight samples encode to, by the mask of those at or above the level
// (bit j for sample j), from the first literal to the last: the literals
// picked by a byte shuffle and the run codes between them as constants.
// The zeros ahead of the first literal and behind the last are the caller's.
struct Oct {
    alignas(16) BYTE shuf[16];  // source sample of each output byte, 0x80 for a code byte
    alignas(16) BYTE code[16];  // code bytes, 0 where a literal goes
    unsigned int keep;          // all ones when there is no literal (the zeros stay pending), else 0
    BYTE len;                   // output bytes
    BYTE lead;                  // zero samples ahead of the first literal (8 for none)
    BYTE trail;                 // zero samples behind the last literal
};

const std::array<Oct, 256>& OctTable()
{
    static const std::array<Oct, 256> table = [] {
        std::array<Oct, 256> t{};
        for (unsigned int m = 0; m < 256; ++m) {
            Oct& e = t[m];
            std::memset(e.shuf, 0x80, sizeof e.shuf);
            int last = -1;
            unsigned int len = 0;
            for (int j = 0; j < 8; ++j) {
                if (!(m >> j & 1)) continue;
                if (last >= 0) {
                    const int gap = j - last - 1;
                    if (gap == 1) {
                        e.code[len++] = 0x01;
                    } else if (gap >= 2) {
                        e.code[len++] = 0x00;
                        e.code[len++] = static_cast<BYTE>(gap);
                    }
                } else {
                    e.lead = static_cast<BYTE>(j);
                }
                e.shuf[len++] = static_cast<BYTE>(j);
                last = j;
            }
            e.len = static_cast<BYTE>(len);
            if (last < 0) {
                e.keep = ~0u;
                e.lead = 8;
                e.trail = 0;
            } else {
                e.trail = static_cast<BYTE>(7 - last);
            }
        }
        return t;
    }();
    return table;
}

// Eight samples a step: their mask picks the table entry, the pending zeros
// ahead of the first literal are flushed as one code (a 2-byte store whose
// length counts 0, 1 or 2 bytes), and the rest is one shuffle. No branch
// depends on the samples but the rare run beyond 255. The output never runs
// ahead of the input, so the fixed-size stores stay inside pDst; the last 32
// samples are left to the plain loop to keep that true. Returns the sample
// where it stopped; q and c carry on.
__attribute__((target("ssse3"))) unsigned int EncodeSsse3(const BYTE* pSrc, unsigned int n, BYTE nLevel, BYTE*& q,
                                                           unsigned int& c)
{
    const std::array<Oct, 256>& tbl = OctTable();
    const __m128i vLevel = _mm_set1_epi8(static_cast<char>(nLevel));
    BYTE* out = q;
    unsigned int pending = c;
    unsigned int i = 0;
    for (; i + 32 <= n; i += 8) {
        const __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pSrc + i));
        const unsigned int m =
            static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(v, vLevel), v))) & 0xFF;
        const Oct& e = tbl[m];
        unsigned int cc = pending + e.lead;
        if (cc > 255 && m != 0) [[unlikely]] {
            do {
                out[0] = 0;
                out[1] = 255;
                out += 2;
                cc -= 255;
            } while (cc > 255);
        }
        out[0] = cc >= 2 ? 0 : 1;
        out[1] = static_cast<BYTE>(cc);
        out += ((cc != 0) + (cc >= 2)) & ~e.keep;
        const __m128i lit = _mm_shuffle_epi8(v, _mm_load_si128(reinterpret_cast<const __m128i*>(e.shuf)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out),
                         _mm_or_si128(lit, _mm_load_si128(reinterpret_cast<const __m128i*>(e.code))));
        out += e.len;
        pending = (cc & e.keep) + e.trail;
    }
    q = out;
    c = pending;
    return i;
}

bool HasSsse3()
{
    static const bool b = __builtin_cpu_supports("ssse3");
    return b;
}

#endif

}  // namespace

unsigned int CImgRle::Encode(const BYTE* pSrc, BYTE* pDst, unsigned int n, BYTE nLevel)
{
    if (n == 0) return 0;
    if (n == 1) {
        pDst[0] = pSrc[0] < nLevel ? 1 : pSrc[0];
        return 1;
    }
    BYTE* q = pDst;
    unsigned int c = 0;  // pending zero samples
    unsigned int i = 0;
#if ZAN_RLE_X86
    if (HasSsse3()) i = EncodeSsse3(pSrc, n, nLevel, q, c);
#endif
    q = EncodeTail(pSrc, i, n, nLevel, q, c);
    const unsigned int m = static_cast<unsigned int>(q - pDst);
    if (m <= n - 2) {
        q[0] = 2;
        q[1] = 2;
        return m + 2;
    }
    // No room for the mark: it takes the place of the last two bytes (m is at
    // least 2 here, as two or more samples never make fewer than two bytes).
    pDst[m - 2] = 2;
    pDst[m - 1] = 2;
    return m;
}

#if ZAN_RLE_X86
namespace {

// True when two zero bytes stand side by side somewhere in the stream: a run
// count of 0 (or a literal 0, which only level 0 makes). Without such a pair
// every code yields at least one sample per two bytes.
bool HasZeroPair(const BYTE* pSrc, unsigned int nSize)
{
    const __m128i vZero = _mm_setzero_si128();
    unsigned int i = 0;
    for (; i + 17 <= nSize; i += 16) {
        const __m128i a = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i)), vZero);
        const __m128i b = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i + 1)), vZero);
        if (_mm_movemask_epi8(_mm_and_si128(a, b))) return true;
    }
    for (; i + 1 < nSize; ++i)
        if (pSrc[i] == 0 && pSrc[i + 1] == 0) return true;
    return false;
}

// Sixteen stream bytes a step, for a stream without zero pairs: the zero
// bytes of the window are exactly its run codes, and between them lie
// literals. Each literal group goes out by one 16-byte store (1 becomes 0),
// each run by two 16-byte stores of zeros (more for runs above 32). Stores
// reach at most 32 bytes past what is decoded, and the next code overwrites
// them. The loop stops with at least 64 stream bytes left, which decode to at
// least 32 samples, so the plain loop that follows covers the last of those
// bytes too: nothing past the decoded end is left changed. A margin of 2400
// samples (eight runs of 255 with their stores) keeps every store inside n.
// Returns the stream byte where it stopped; o carries on.
unsigned int DecodeClean(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n, unsigned int& o)
{
    const __m128i vZero = _mm_setzero_si128();
    const __m128i vOne = _mm_set1_epi8(1);
    unsigned int p = 0;
    unsigned int out = o;
    while (p + 81 <= nSize && out + 2400 <= n) {
        unsigned int z = static_cast<unsigned int>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + p)), vZero)));
        unsigned int s = 0;  // first byte of the window not yet decoded
        for (;;) {
            const unsigned int k = z ? static_cast<unsigned int>(__builtin_ctz(z)) : 16;
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + p + s));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + out), _mm_andnot_si128(_mm_cmpeq_epi8(v, vOne), v));
            out += k - s;
            if (z == 0) {
                p += 16;
                break;
            }
            const unsigned int cnt = pSrc[p + k + 1];
            BYTE* const pz = pDst + out;
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pz), vZero);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pz + 16), vZero);
            for (unsigned int j = 32; j < cnt; j += 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(pz + j), vZero);
            out += cnt;
            s = k + 2;
            z &= z - 1;
            if (s >= 16) {
                p += s;
                break;
            }
        }
    }
    o = out;
    return p;
}

// The same steps for any stream, zero pairs included. Their zero bytes are
// the run codes, unless two meet (a count of 0): such a window is taken one
// code at a time. Here the bytes past the decoded end can't be counted on to
// be overwritten, so every store first saves the old bytes of the next block
// not yet written (at hw) in a ring of four blocks, and the bytes past the
// decoded end are put back when the loop ends. Stores reach at most 16 bytes
// past what is decoded. Returns the stream byte where it stopped.
unsigned int DecodeGuarded(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n, unsigned int& o)
{
    unsigned int p = 0;
    alignas(16) BYTE ring[64];
    unsigned int hw = 0;  // bytes below hw have been saved or written
    // Before a 16-byte store at or below hw that ends at `end`.
    const auto save = [&](unsigned int end) {
        _mm_store_si128(reinterpret_cast<__m128i*>(ring + (hw & 48)),
                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(pDst + hw)));
        hw += end > hw ? 16 : 0;
    };
    const __m128i vZero = _mm_setzero_si128();
    const __m128i vOne = _mm_set1_epi8(1);
    const auto literals = [&](unsigned int from) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + from));
        save(o + 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + o), _mm_andnot_si128(_mm_cmpeq_epi8(v, vOne), v));
    };
    const auto zeros = [&](unsigned int cnt) {
        save(o + 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + o), vZero);
        for (unsigned int j = 16; j < cnt; j += 16) {
            save(o + j + 16);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + o + j), vZero);
        }
        o += cnt;
    };
    while (p + 34 <= nSize && o + 2320 <= n) {
        unsigned int z = static_cast<unsigned int>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + p)), vZero)));
        if (z & (z << 1)) [[unlikely]] {
            // Two zeros side by side: one code at a time for this window.
            const unsigned int k = static_cast<unsigned int>(__builtin_ctz(z | 0x10000u));
            literals(p);
            o += k;
            p += k;
            if (k < 16) {
                const unsigned int cnt = pSrc[p + 1];
                p += 2;
                zeros(cnt);
            }
            continue;
        }
        unsigned int s = 0;  // first byte of this window not yet decoded
        for (;;) {
            const unsigned int k = z ? static_cast<unsigned int>(__builtin_ctz(z)) : 16;
            literals(p + s);
            o += k - s;
            if (z == 0) {
                p += 16;
                break;
            }
            zeros(pSrc[p + k + 1]);
            s = k + 2;
            z &= z - 1;
            if (s >= 16) {
                p += s;
                break;
            }
        }
    }
    for (unsigned int x = o; x < hw; ++x) pDst[x] = ring[x & 63];
    return p;
}

}  // namespace
#endif

void CImgRle::Decode(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n)
{
    if (nSize == 0) return;
    unsigned int p = 0;
    unsigned int o = 0;
#if ZAN_RLE_X86
    if (nSize >= 128 && n >= 4096)
        p = HasZeroPair(pSrc, nSize) ? DecodeGuarded(pDst, pSrc, nSize, n, o) : DecodeClean(pDst, pSrc, nSize, n, o);
#endif
    DecodeTail(pDst, pSrc, nSize, n, p, o);
}
