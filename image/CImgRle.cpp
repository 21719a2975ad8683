#include "image/CImgRle.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
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
#if defined(__SSE2__)
    // Sixteen samples at a time: a mask of those at or above the level says
    // where the literals are, and the gaps between them are the runs. The
    // output never runs ahead of the input (no code is longer than what it
    // stands for), so the 16-byte copy and the two-byte run code, written
    // whole even when only one byte counts, stay inside the n bytes of pDst;
    // the last 16 samples are left to the plain loop to keep that true.
    const __m128i vLevel = _mm_set1_epi8(static_cast<char>(nLevel));
    for (; i + 32 <= n; i += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + i));
        unsigned int m = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(v, vLevel), v)));
        if (m == 0) {
            c += 16;
            continue;
        }
        if (m == 0xFFFF && c == 0) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(q), v);
            q += 16;
            continue;
        }
        unsigned int prev = 0;
        do {
            const unsigned int t = static_cast<unsigned int>(__builtin_ctz(m));
            c += t - prev;
            if (c > 255) [[unlikely]] {
                do {
                    q[0] = 0;
                    q[1] = 255;
                    q += 2;
                    c -= 255;
                } while (c > 255);
            }
            // c is 0 to 255 here: no code, 01, or 00 c.
            q[0] = c >= 2 ? 0 : 1;
            q[1] = static_cast<BYTE>(c);
            q += (c != 0) + (c >= 2);
            *q++ = pSrc[i + t];
            c = 0;
            prev = t + 1;
            m &= m - 1;
        } while (m != 0);
        c = 16 - prev;
    }
#endif
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
    q = FlushRun(q, c);
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

void CImgRle::Decode(BYTE* pDst, const BYTE* pSrc, unsigned int nSize, unsigned int n)
{
    if (nSize == 0) return;
    unsigned int p = 0;
    unsigned int o = 0;
#if defined(__SSE2__)
    // One step: up to 16 literals by one store (1 becomes 0), then the run
    // code that stops them, by 16-byte stores of zeros. Stores reach up to 16
    // bytes past what is decoded; those bytes are overwritten by the next
    // step. So that a stream that stops short still leaves the rest of pDst
    // as it was, the first store to each 16-byte block of pDst saves the
    // block's old bytes in a ring of four, and the bytes past the decoded end
    // are put back when the loop ends. The loop keeps 18 stream bytes and 288
    // samples of margin, so no bound is tested inside it.
    if (nSize >= 64 && n >= 1024) {
        alignas(16) BYTE ring[64];
        unsigned int hw = 0;  // bytes below hw have been saved or written
        const auto touch = [&](unsigned int end) {
            while (hw < end) {
                _mm_store_si128(reinterpret_cast<__m128i*>(ring + (hw & 48)),
                                _mm_loadu_si128(reinterpret_cast<const __m128i*>(pDst + hw)));
                hw += 16;
            }
        };
        const __m128i vZero = _mm_setzero_si128();
        const __m128i vOne = _mm_set1_epi8(1);
        while (p + 18 <= nSize && o + 288 <= n) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pSrc + p));
            const unsigned int zm = static_cast<unsigned int>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, vZero)));
            const unsigned int k = static_cast<unsigned int>(__builtin_ctz(zm | 0x10000u));
            touch(o + 16);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pDst + o), _mm_andnot_si128(_mm_cmpeq_epi8(v, vOne), v));
            o += k;
            p += k;
            if (k == 16) continue;
            const unsigned int cnt = pSrc[p + 1];
            p += 2;
            touch(o + (cnt > 16 ? ((cnt + 15) & ~15u) : 16));
            BYTE* z = pDst + o;
            _mm_storeu_si128(reinterpret_cast<__m128i*>(z), vZero);
            for (unsigned int j = 16; j < cnt; j += 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(z + j), vZero);
            o += cnt;
        }
        for (unsigned int x = o; x < hw; ++x) pDst[x] = ring[x & 63];
    }
#endif
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
