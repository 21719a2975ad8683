#pragma once
// A plain evaluation of the filter kernels, step by step, with nothing
// hoisted: the yardstick that the library's kernels must match byte for byte
// (tests) and beat (bench/filter.cpp).
#include <algorithm>
#include <cmath>
#include <cstdint>

namespace fltref {

using Byte = unsigned char;

struct Settings {
    const double* pat = nullptr;
    int nPat = 0;
    double offset = 0.0;
    double bias = 1.0;
    int lowTgt = 0;
    double scale = 1.0;
};

inline Byte Trunc(double v)
{
    if (!(v > -9.0e18 && v < 9.0e18)) return 0;
    return static_cast<Byte>(static_cast<long long>(v));
}

inline double Clamp(double v, double t)
{
    const double m = std::min(v, t);
    return m < 0.0 ? 0.0 : m;
}

// Pattern entry k; Flt2's extra position past an odd table is 0.0.
inline double P(const Settings& f, int k) { return k < f.nPat ? f.pat[k] : 0.0; }

// One pixel of kernel `id` (1 to 4) at column x of a row.
inline void Pixel(int id, const Settings& f, const Byte* row, Byte* out, int w, int x)
{
    const int h = id == 2 ? (f.nPat + 1) / 2 : f.nPat / 2;
    const int lo = std::max(x - h, 0);
    const int hi = std::min(x + h, w);
    auto s = [&](int i) { return row[i] / 255.0; };
    double mx = 0.0;
    for (int i = lo; i < hi; ++i) mx = std::max(mx, s(i));

    if (id == 1) {
        if (f.offset >= mx) {
            out[x] = 0;
            return;
        }
        double T = 0.0, D = 0.0;
        for (int i = lo; i < hi; ++i) T += mx * P(f, i - x + h);
        for (int i = lo; i < hi; ++i) D += std::sqrt(std::fabs(mx * P(f, i - x + h) - s(i)));
        const double R = Clamp(T - D, T);
        if (T == 0.0) {
            out[x] = 0;
            return;
        }
        const double y = std::sqrt(mx) * R / T;
        out[x] = y > 1.0 ? 255 : Trunc(y * 255.0);
        return;
    }

    double M = mx + f.offset;
    if (M >= 1.0) {
        M = 1.0;
    } else if (M <= 0.05) {
        if (id == 3) out[x] = 0;
        return;
    }
    if (id == 2) {
        double T = 0.0, C = 0.0;
        for (int i = lo; i < hi; ++i) T += M * P(f, i - x + h);
        for (int i = lo; i < hi; ++i) C += std::min(s(i), M * P(f, i - x + h));
        const double Cp = C - f.bias * T, Tp = T * (1.0 - f.bias);
        const double R = Clamp(Cp, Tp);
        out[x] = Tp == 0.0 ? 0 : Trunc(R / Tp * 255.0 * M);
    } else if (id == 3) {
        double T = 0.0, C = 0.0;
        for (int i = lo; i < hi; ++i) T += P(f, i - x + h);
        for (int i = lo; i < hi; ++i) C += std::min(s(i) / M, P(f, i - x + h));
        const double Cp = C - f.bias * T, Tp = T * (1.0 - f.bias);
        const double R = Clamp(Cp, Tp);
        out[x] = Tp == 0.0 ? 0 : Trunc(R / Tp * 255.0);
    } else {
        double T = 0.0, D1 = 0.0, D2 = 0.0;
        for (int i = lo; i < hi; ++i) T += M * P(f, i - x + h);
        int n = 0;
        for (int i = lo; i < hi; ++i, ++n) {
            const double d = std::sqrt(std::fabs(M * P(f, i - x + h) - s(i)));
            if (n < h) D1 += d;
            else D2 += d;
        }
        const double D = std::min(D1, D2);
        const double R = Clamp(T - D, T);
        const double Rp = R - f.bias * T, Tp = T * (1.0 - f.bias);
        const double r = Clamp(Rp, Tp);
        if (Tp == 0.0) {
            out[x] = 0;
            return;
        }
        const double y = std::sqrt(M) * r / Tp;
        out[x] = Trunc(std::min(255.0, y * 255.0) + out[x]);
    }
}

// Kernel `id` over rows [r0, r1) of a w-wide plane, src to dst.
inline void Kernel(int id, const Settings& f, const Byte* src, Byte* dst, int w, int r0, int r1)
{
    for (int r = r0; r < r1; ++r)
        for (int x = 0; x < w; ++x) Pixel(id, f, src + static_cast<long>(r) * w, dst + static_cast<long>(r) * w, w, x);
}

// The final mapping, in place.
inline void Final(const Settings& f, Byte* img, long n)
{
    for (long i = 0; i < n; ++i) {
        double y = img[i] / 255.0;
        if (f.lowTgt == 0) y = y * y;
        else if (f.lowTgt == 2) y = std::sqrt(y);
        y = y * f.scale;
        img[i] = y > 1.0 ? 255 : Trunc(y * 255.0);
    }
}

// A whole filter run on one thread: source = image (or its root), image
// cleared, kernel over rows [0, rows / nThreads * nThreads), final mapping.
inline void Filter(int id, const Settings& f, int preRoot, int nThreads, Byte* img, int w, int rows)
{
    const long n = static_cast<long>(w) * rows;
    Byte* src = new Byte[static_cast<size_t>(n)];
    for (long i = 0; i < n; ++i)
        src[i] = preRoot ? static_cast<Byte>(static_cast<int>(std::sqrt(img[i] / 255.0) * 255.0)) : img[i];
    std::fill(img, img + n, Byte{0});
    const int slice = rows / nThreads;
    for (int k = 0; k < nThreads; ++k) {
        if (id >= 1 && id <= 4) Kernel(id, f, src, img, w, k * slice, (k + 1) * slice);
        if (!(f.lowTgt == 1 && f.scale == 1.0)) Final(f, img + static_cast<long>(k) * slice * w, static_cast<long>(slice) * w);
    }
    delete[] src;
}

}  // namespace fltref
