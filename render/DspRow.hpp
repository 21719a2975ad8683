#pragma once
// Row kernels of the display image build (CTgtImg::CreateImg), internal to
// the library: colouring one display row by intensity or by depth. Each has a
// plain form and, where the processor has AVX-512 with byte permutes (VBMI),
// a vector form that gives the same bytes; the best is chosen at load.
#include "core/platform/CRgb.h"
#include "core/platform/Types.h"

#include <cstddef>

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
    void Set(const CRgb* t);
};

// acc[x] = max(acc[x], s[x]) for x < n.
void MaxRow(BYTE* acc, const BYTE* s, std::size_t n);

// out[x] = ctab[a[x]] for x < n; p holds ctab's planes.
void ColourRow(const BYTE* a, std::size_t n, const CRgb* ctab, const Planes& p, CRgb* out);

// Depth colouring of one row. For x < n with i = lut[acc[x]]:
//   i <= 8: all four bytes 0;
//   else: c = tbl[b1], b1 the low 8 bits of idx = floor((dz[x] * frac + sz[x]
//   - dMin) * scale + 0.5), idx held at nc - 1 from above (a floor that isn't
//   a number or lies below -2^31, beyond a 32-bit integer, gives b1 = 0), and
//   the pixel is
//   (c.r * k >> 8, c.g * k >> 8, c.b * k >> 8, tbl[i].a), k = min(i + 126, 255).
// Columns from nVec on have no depth: b1 = 0.
struct DepthRow {
    const double* sz;   // start depth of each column
    const double* dz;   // end depth minus start depth of each column
    std::size_t nVec;   // columns that have both
    double frac;        // line / lines of the image
    double dMin;
    double scale;       // nc / span
    int nc;             // table entries, at least 256
    const CRgb* tbl;
    const Planes* tblPlanes;  // tbl's first 256 entries as planes
    const BYTE* lut;    // 256 entries: intensity as collected -> intensity
};
void DepthColourRow(const BYTE* acc, std::size_t n, const DepthRow& d, CRgb* out);

// The byte b1 of one column (as DepthColourRow).
BYTE DepthIndexByte(double depth, double dMin, double scale, int nc);

} // namespace zan_dsp
