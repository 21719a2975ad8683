#pragma once
// Plain sample-by-sample encoder and code-by-code decoder of the intensity
// run-length code, written step by step from its description and kept
// deliberately naive: the tests and the benchmark hold the library's fast
// codec against them.
#include <cstddef>
#include <vector>

namespace rleref {

// Codes of c pending zeros at out[m], m advanced.
inline void Flush(unsigned char* out, size_t& m, unsigned int& c)
{
    while (c != 0) {
        if (c == 1) {
            out[m++] = 0x01;
            c = 0;
        } else {
            const unsigned int piece = c < 255 ? c : 255;
            out[m++] = 0x00;
            out[m++] = static_cast<unsigned char>(piece);
            c -= piece;
        }
    }
}

// Encodes n samples into out (room for n bytes); returns the stream length.
// For n == 1 the single code without end mark, as the library decides.
inline size_t Encode(const unsigned char* src, size_t n, unsigned char level, unsigned char* out)
{
    if (n == 0) return 0;
    size_t m = 0;
    unsigned int pending = 0;
    for (size_t i = 0; i < n; ++i) {
        if (src[i] < level) {
            ++pending;
        } else {
            Flush(out, m, pending);
            out[m++] = src[i];
        }
    }
    Flush(out, m, pending);
    if (n == 1) return m;
    if (m + 2 <= n) {
        out[m] = 0x02;
        out[m + 1] = 0x02;
        return m + 2;
    }
    out[m - 2] = 0x02;
    out[m - 1] = 0x02;
    return m;
}

// Bytes of the codes alone, without the end mark.
inline size_t CodeBytes(const unsigned char* src, size_t n, unsigned char level)
{
    std::vector<unsigned char> out(2 * n + 2);
    size_t m = 0;
    unsigned int pending = 0;
    for (size_t i = 0; i < n; ++i) {
        if (src[i] < level) {
            ++pending;
        } else {
            Flush(out.data(), m, pending);
            out[m++] = src[i];
        }
    }
    Flush(out.data(), m, pending);
    return m;
}

inline std::vector<unsigned char> Encode(const std::vector<unsigned char>& src, unsigned char level)
{
    std::vector<unsigned char> out(src.size());
    out.resize(Encode(src.data(), src.size(), level, out.data()));
    return out;
}

inline void Decode(unsigned char* dst, const unsigned char* src, size_t nSize, size_t n)
{
    if (nSize == 0) return;
    size_t p = 0, o = 0;
    while (o < n) {
        const unsigned char b = src[p];
        if (b == 0 && p < nSize - 1) {
            const unsigned int cnt = src[p + 1];
            p += 2;
            for (unsigned int k = 0; k < cnt && o < n; ++k) dst[o++] = 0;
        } else {
            p += 1;
            dst[o++] = b == 1 ? 0 : b;
        }
        if (p == nSize) break;
    }
}

}  // namespace rleref
