#pragma once
// CRgb: one pixel, red, green, blue, alpha, as OpenGL takes GL_RGBA with
// unsigned bytes. CColTbl: a colour table, one contiguous array of CRgb.
#include "core/platform/Types.h"

#include <vector>

class CRgb {
public:
    BYTE r = 0, g = 0, b = 0, a = 0;
    CRgb() = default;
    CRgb(BYTE r_, BYTE g_, BYTE b_, BYTE a_ = 255) : r(r_), g(g_), b(b_), a(a_) {}
    void Zero() { r = g = b = a = 0; }
    bool operator==(const CRgb&) const = default;
};
static_assert(sizeof(CRgb) == 4, "CRgb is four bytes");
