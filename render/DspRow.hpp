#pragma once
// Row kernels of the display image build (CTgtImg::CreateImg), internal to
// the library: colouring display rows by intensity or by depth, and the depth
// estimates of the columns. Each has a plain form and, where the processor
// has AVX-512 with byte permutes (VBMI), a vector form that gives the same
// bytes; the best is chosen at load.
#include "core/CacheLineAllocator.hpp"
#include "core/platform/CRgb.h"
#include "core/platform/Types.h"

#include <cstddef>
#include <vector>

namespace zan_dsp {

enum Level { kPlain = 0, kAvx512Vbmi = 1 };

// The best level of this processor, and a test's way to hold the kernels to
// a lower one (-1: the best again).
int BestLevel();
void ForceLevel(int level);

// The four channels of a 256-entry colour table as separate byte planes, as
// the vector forms read them. Set once for each table.
struct Planes {
    alignas(64) BYTE r[256], g[256], b[256], a[256];
    bool aSame = false;  // every alpha is a[0], as in most tables
    void Set(const CRgb* t);
};

// The range lines that fold onto one display row: m >= 1 lines of the row's
// width, `stride` bytes apart (0 for one buffer read once). The row's
// intensity at column x is the greatest of the lines' bytes there.
struct Fold {
    const BYTE* first;
    std::size_t stride;
    unsigned m;
};

// A run of display rows whose lines fold alike: row j folds the f.m lines
// from f.first + j * f.m * f.stride onto the pixels from out + j * outStride.
// Its depth is taken at frac = (rLast + j * f.m) / nRngs, its last line over
// the image's lines. A whole picture is one call, so that a kernel sets up
// its tables once, not once a row.
struct Rows {
    Fold f;                 // row 0's lines
    unsigned nRows;
    CRgb* out;              // row 0's pixels
    std::size_t outStride;  // pixels from one row to the next
    unsigned rLast = 0;     // the line that row 0 folds last
    unsigned nRngs = 1;     // lines of the image
};

// acc[x] = max(acc[x], s[x]) for x < n.
void MaxRow(BYTE* acc, const BYTE* s, std::size_t n);

// For each row, out[x] = ctab[v] for x < n, v the folded intensity of column
// x; p holds ctab's planes.
void ColourRows(const Rows& rows, std::size_t n, const CRgb* ctab, const Planes& p);

// The depth geometry of an image's columns for one build.
//
// The exact index of a column (DepthIndexByte of dz * frac + sz) costs seven
// double operations. The vector form first takes a single-precision estimate
// of t - e, u = a * frac + bLo: e is 2^-20 of w + 1, w = (|dz| + |sz| + |dMin|)
// * |scale|, and the estimate's own error, with the exact form's rounding,
// stays below 2^-21.9 of w + 1. Where u - floor(u) is below room (1 - 2e,
// rounded down), no whole number lies between u and u + 2e, so t has the
// floor of u. Elsewhere, about 2e of the time, and for any column whose w is
// not below 2^14 (or isn't a number), the exact form decides.
struct DepthCols {
    zan::LineVector<double> sz;  // start depth of each column
    zan::LineVector<double> dz;  // end depth minus start depth
    zan::LineVector<float> a, bLo, room;
    double dMin = 0.0;
    double scale = 1.0;      // nc / span
    int nc = 256;            // table entries, at least 256

    // Sets the span and works out the estimates; sz and dz are filled first.
    void Prepare(double depthMin, double depthScale, int entries);
    std::size_t Size() const { return sz.size(); }
};

// Depth colouring of each row. For x < n with i = lut[v], v the folded
// intensity of column x, and the row's frac:
//   i <= 8: all four bytes 0;
//   else: c = tbl[b1], b1 the low 8 bits of idx = floor((dz[x] * frac + sz[x]
//   - dMin) * scale + 0.5), idx held at nc - 1 from above (a floor that isn't
//   a number or lies below -2^31, beyond a 32-bit integer, gives b1 = 0), and
//   the pixel is
//   (c.r * k >> 8, c.g * k >> 8, c.b * k >> 8, tbl[i].a), k = min(i + 126, 255).
// Columns from cols->Size() on have no depth: b1 = 0.
struct DepthColour {
    const DepthCols* cols;
    const CRgb* tbl;
    const Planes* tblPlanes;  // tbl's first 256 entries as planes
    const BYTE* lut;          // 256 entries: intensity as collected -> intensity
};
void DepthColourRows(const Rows& rows, std::size_t n, const DepthColour& d);

// The byte b1 of one column (as DepthColourRows).
BYTE DepthIndexByte(double depth, double dMin, double scale, int nc);

} // namespace zan_dsp
