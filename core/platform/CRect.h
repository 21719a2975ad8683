#pragma once
// CPoint, CSize and CRect: the framework's integer geometry, in pixels, with y
// growing downward. A rectangle includes its left and top edges and excludes
// its right and bottom ones, so CRect(0, 0, 10, 5) covers 10 by 5 pixels.
#include "core/platform/Types.h"

class CPoint {
public:
    LONG x = 0, y = 0;
    constexpr CPoint() = default;
    constexpr CPoint(LONG x_, LONG y_) : x(x_), y(y_) {}
    constexpr void Offset(LONG dx, LONG dy) { x += dx; y += dy; }
    constexpr bool operator==(const CPoint&) const = default;
};

class CSize {
public:
    LONG cx = 0, cy = 0;
    constexpr CSize() = default;
    constexpr CSize(LONG cx_, LONG cy_) : cx(cx_), cy(cy_) {}
    constexpr bool operator==(const CSize&) const = default;
};

class CRect {
public:
    LONG left = 0, top = 0, right = 0, bottom = 0;

    constexpr CRect() = default;
    constexpr CRect(LONG l, LONG t, LONG r, LONG b) : left(l), top(t), right(r), bottom(b) {}
    constexpr CRect(CPoint topLeft, CSize size)
        : left(topLeft.x), top(topLeft.y), right(topLeft.x + size.cx), bottom(topLeft.y + size.cy) {}

    constexpr LONG Width() const { return right - left; }
    constexpr LONG Height() const { return bottom - top; }
    constexpr CSize Size() const { return {Width(), Height()}; }
    constexpr CPoint TopLeft() const { return {left, top}; }
    constexpr CPoint BottomRight() const { return {right, bottom}; }
    constexpr CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }
    // Non-zero when the rectangle covers no pixel (width or height 0 or less).
    constexpr BOOL IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    // Non-zero when pt lies inside (left and top included, right and bottom not).
    constexpr BOOL PtInRect(CPoint pt) const { return pt.x >= left && pt.x < right && pt.y >= top && pt.y < bottom; }

    constexpr void SetRect(LONG l, LONG t, LONG r, LONG b) { left = l; top = t; right = r; bottom = b; }
    constexpr void SetRectEmpty() { left = top = right = bottom = 0; }
    constexpr void OffsetRect(LONG dx, LONG dy) { left += dx; right += dx; top += dy; bottom += dy; }
    constexpr void OffsetRect(CPoint pt) { OffsetRect(pt.x, pt.y); }
    // Grows every side outward by dx, dy (negative values shrink).
    constexpr void InflateRect(LONG dx, LONG dy) { left -= dx; right += dx; top -= dy; bottom += dy; }
    constexpr void DeflateRect(LONG dx, LONG dy) { InflateRect(-dx, -dy); }
    // This rectangle becomes the common part of a and b; empty (all 0) when
    // they don't overlap. Returns non-zero when the result is not empty.
    constexpr BOOL IntersectRect(const CRect& a, const CRect& b)
    {
        const CRect r(a.left > b.left ? a.left : b.left, a.top > b.top ? a.top : b.top,
                      a.right < b.right ? a.right : b.right, a.bottom < b.bottom ? a.bottom : b.bottom);
        if (r.IsRectEmpty()) {
            SetRectEmpty();
            return FALSE;
        }
        *this = r;
        return TRUE;
    }

    constexpr bool operator==(const CRect&) const = default;
};
