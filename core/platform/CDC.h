#pragma once
// CDC: the framework's device context, painting on a real 2D surface (Cairo
// for pixels, Pango for text), with the brushes, fonts and pens that select
// into it. Colours are COLORREF words in the framework's 0x00BBGGRR order.
//
// Pixel rules follow the framework's: coordinates are integers, a filled
// rectangle covers left..right-1 by top..bottom-1 exactly, a line from a to b
// covers a and stops one pixel short of b, one pixel wide. Fills and lines are
// not antialiased; text is (grey levels), so text pixels blend toward the
// background.
//
// A context is not thread-safe; two contexts on different surfaces may be
// used on different threads at once.
#include "core/platform/CRect.h"
#include "core/platform/CRgb.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

#include <memory>

using COLORREF = DWORD;

// A colour from its red, green and blue bytes: 0x00BBGGRR.
constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b)
{
    return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) | (static_cast<COLORREF>(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }

// Background modes of SetBkMode.
inline constexpr int TRANSPARENT = 1;
inline constexpr int OPAQUE = 2;

// Format words of DrawText.
inline constexpr UINT DT_TOP = 0x0000;
inline constexpr UINT DT_LEFT = 0x0000;
inline constexpr UINT DT_CENTER = 0x0001;
inline constexpr UINT DT_RIGHT = 0x0002;
inline constexpr UINT DT_VCENTER = 0x0004;  // with DT_SINGLELINE only
inline constexpr UINT DT_BOTTOM = 0x0008;   // with DT_SINGLELINE only
inline constexpr UINT DT_WORDBREAK = 0x0010;
inline constexpr UINT DT_SINGLELINE = 0x0020;
inline constexpr UINT DT_NOCLIP = 0x0100;
inline constexpr UINT DT_CALCRECT = 0x0400;
inline constexpr UINT DT_NOPREFIX = 0x0800;
inline constexpr UINT DT_END_ELLIPSIS = 0x8000;

// Raster operation of BitBlt and StretchBlt: a plain copy (the one supported).
inline constexpr DWORD SRCCOPY = 0x00CC0020;

// Pen styles.
inline constexpr int PS_SOLID = 0;
inline constexpr int PS_NULL = 5;

// Font weights.
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;

// A solid brush, or a null brush that paints nothing.
class CBrush {
public:
    COLORREF m_color = 0;
    BOOL m_bNull = TRUE;

    CBrush() = default;
    explicit CBrush(COLORREF color) : m_color(color), m_bNull(FALSE) {}
    BOOL CreateSolidBrush(COLORREF color)
    {
        m_color = color;
        m_bNull = FALSE;
        return TRUE;
    }
};

// A font: face name, height of the em in pixels, weight.
class CFont {
public:
    CString m_strFace = u"DejaVu Sans";
    int m_nHeight = 12;       // pixels; a negative height counts as its magnitude
    int m_nWeight = FW_NORMAL;  // FW_NORMAL, FW_BOLD, or any CSS-style weight 100..900
    BOOL m_bItalic = FALSE;

    CFont() = default;
    CFont(int height, int weight, const CString& face = u"DejaVu Sans")
        : m_strFace(face), m_nHeight(height), m_nWeight(weight) {}
    BOOL CreateFont(int height, int weight, const CString& face)
    {
        m_nHeight = height;
        m_nWeight = weight;
        m_strFace = face;
        return TRUE;
    }
};

// A pen for MoveTo/LineTo and outlines.
class CPen {
public:
    int m_nStyle = PS_SOLID;
    int m_nWidth = 1;  // pixels; 0 counts as 1
    COLORREF m_color = 0;

    CPen() = default;
    CPen(int style, int width, COLORREF color) : m_nStyle(style), m_nWidth(width), m_color(color) {}
    BOOL CreatePen(int style, int width, COLORREF color)
    {
        m_nStyle = style;
        m_nWidth = width;
        m_color = color;
        return TRUE;
    }
};

class CDC {
public:
    // A context without a surface: every drawing call does nothing and
    // Width/Height are 0, until CreateSurface or CreateOn.
    CDC();
    // A memory context with a surface of its own, width by height pixels,
    // cleared to opaque black. Sizes below 1 make a context without a surface.
    CDC(int width, int height);
    virtual ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // Gives the context a new surface of its own (width by height, opaque
    // black), dropping the old one, and resets the state. FALSE for sizes
    // below 1, leaving the context without a surface.
    BOOL CreateSurface(int width, int height);
    // Paints onto the surface of `other` (shared, kept alive by both), with a
    // fresh default state. FALSE when `other` has no surface.
    BOOL CreateOn(const CDC& other);
    int Width() const;
    int Height() const;
    BOOL HasSurface() const;

    // State. Every context starts with a white brush, a black one-pixel pen,
    // a 12-pixel normal font, opaque background mode, white background and
    // black text. SelectObject returns the previous object; null selects the
    // default one again.
    CBrush* SelectObject(CBrush* brush);
    CFont* SelectObject(CFont* font);
    CPen* SelectObject(CPen* pen);
    int SetBkMode(int mode);  // TRANSPARENT or OPAQUE; returns the previous
    int GetBkMode() const;
    COLORREF SetBkColor(COLORREF color);  // returns the previous
    COLORREF GetBkColor() const;
    COLORREF SetTextColor(COLORREF color);  // returns the previous
    COLORREF GetTextColor() const;
    // Moves the origin of all later drawing to (x, y) of the surface; returns
    // the previous origin.
    CPoint SetViewportOrg(int x, int y);
    CPoint GetViewportOrg() const;
    // Limits all later drawing to `rect` (in the present coordinates) and
    // what was allowed before.
    void IntersectClipRect(const CRect& rect);
    // Drawing is allowed everywhere on the surface again.
    void SelectClipRgnAll();

    // Fills `rect` with `brush` (a null brush paints nothing).
    void FillRect(const CRect& rect, const CBrush* brush);
    void FillRect(const CRect* rect, const CBrush* brush) { if (rect) FillRect(*rect, brush); }
    void FillSolidRect(const CRect& rect, COLORREF color);
    // A one-pixel frame just inside `rect`, in the brush's colour.
    void FrameRect(const CRect& rect, const CBrush* brush);
    // A rectangle filled with the selected brush and outlined, inside its
    // edges, with the selected pen.
    BOOL Rectangle(int left, int top, int right, int bottom);
    // Current position for LineTo; returns the previous one.
    CPoint MoveTo(int x, int y);
    // A line in the selected pen from the current position to (x, y), which
    // it doesn't cover; (x, y) becomes the current position.
    BOOL LineTo(int x, int y);
    // The pixel's colour, or 0xFFFFFFFF outside the surface (or its clip).
    COLORREF GetPixel(int x, int y) const;
    COLORREF SetPixel(int x, int y, COLORREF color);

    // Text with its top-left corner at (x, y), in the selected font and text
    // colour; in OPAQUE mode its box is first filled with the background
    // colour. '&' is plain text here.
    BOOL TextOut(int x, int y, const CString& text);
    // Text laid out in `rect` by `format` (DT_ words): DT_LEFT, DT_CENTER or
    // DT_RIGHT across; with DT_SINGLELINE, DT_TOP, DT_VCENTER or DT_BOTTOM
    // down; DT_WORDBREAK wraps at words; DT_END_ELLIPSIS shortens a line that
    // doesn't fit with "…" at its end; drawing is clipped to `rect` unless
    // DT_NOCLIP. Without DT_NOPREFIX "&x" shows as "x" and "&&" as "&".
    // DT_CALCRECT draws nothing and sets the right and bottom of `rect` to
    // the text's extent. Returns the height of the text in pixels.
    int DrawText(const CString& text, CRect& rect, UINT format);
    int DrawText(const CString& text, CRect* rect, UINT format) { return rect ? DrawText(text, *rect, format) : 0; }
    // Width and height of one line of text in the selected font.
    CSize GetTextExtent(const CString& text) const;

    // Copies the w by h pixels of `src` at (sx, sy) to (x, y). SRCCOPY only.
    BOOL BitBlt(int x, int y, int w, int h, const CDC* src, int sx, int sy, DWORD rop);
    // Copies the sw by sh pixels of `src` at (sx, sy) stretched over w by h
    // at (x, y), nearest pixel, clipped to the destination rectangle.
    // SRCCOPY only; sizes below 1 copy nothing. `src` may be this context.
    BOOL StretchBlt(int x, int y, int w, int h, const CDC* src, int sx, int sy, int sw, int sh, DWORD rop);

    // The surface as Width() x Height() RGBA pixels, rows top first, into
    // `dst` (which must hold that many). Alpha is 255 where painted opaque.
    void GetRGBA(CRgb* dst) const;
    // Writes the surface as a PNG file (RGBA, 8 bits a channel, through
    // CPngWriter). FALSE when there is no surface or the file can't be
    // written.
    BOOL SavePng(const CString& path) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_p;
};
