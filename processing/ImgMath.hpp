#pragma once
// Sample arithmetic shared by the image operations and the filter kernels.
// Internal to the library: not installed.
#include "core/platform/Types.h"

#include <cstddef>

namespace imgmath {

// Truncation towards zero into a byte, keeping the low 8 bits; NaN and
// values beyond any integer give 0.
inline BYTE ToByte(double v)
{
    if (!(v > -9.0e18 && v < 9.0e18)) return 0;
    return static_cast<BYTE>(static_cast<long long>(v));
}

// The same into a 16-bit word.
inline WORD ToWord(double v)
{
    if (!(v > -9.0e18 && v < 9.0e18)) return 0;
    return static_cast<WORD>(static_cast<long long>(v));
}

// Instruction sets the sample loops can use: the best the processor has is
// taken, and tests may hold the library to a lower one to compare the forms.
enum SimdLevel { kPlain = 0, kAvx2 = 1, kAvx512 = 2 };
int BestLevel();
// Uses at most `level` from now on; -1 returns to the best.
void ForceLevel(int level);

// The greatest of n little-endian 16-bit samples (0 for none).
unsigned MaxWord(const BYTE* plane, size_t n);

// Norm16to8's mapping of n samples: 0 below minI; else 1 when maxI equals
// minI, else trunc(1 + 254 * (v - minI) / (maxI - minI)) in double precision.
void Stretch16to8(const BYTE* src, BYTE* dst, size_t n, int minI, unsigned maxI);

// Normalise8 of a rows x cols plane of 16-bit samples (rows cols apart) into
// bytes, with gain g (the ping's m_bfGain), the +-3 row spread and the column
// maxima over rows 50 and on.
void Normalise8(const BYTE* src, BYTE* dst, size_t rows, size_t cols, short g, bool spread, bool useCols);

}  // namespace imgmath
