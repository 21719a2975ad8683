#pragma once
// CDsp: the core's drawing context, a thin layer over fixed-function OpenGL.
//
// Every call draws into the OpenGL context that is current on the calling
// thread; CDsp itself creates no context (the host owns it, see
// render/COffscreenGL.h for one without a display).
//
// World positions are large (projected eastings and northings), while
// OpenGL works in floats, so the display keeps a world origin (m_orgX,
// m_orgY): Translate, Vertex and VertexZ subtract it from x and y before
// the position reaches OpenGL. z is passed as given.
//
// Colours are words of the form 0x00BBGGRR: red in the low byte, then green,
// then blue; the top byte is ignored and the colour is drawn opaque.
#include "core/platform/CString.h"
#include "core/platform/CV3.h"

class CDsp {
public:
    // World units (metres) per screen pixel. Labels are offset by a few
    // pixels with it. Must be positive to be useful; default 1.0.
    double m_scale = 1.0;
    // World x and y of the display's origin, subtracted from every world
    // position sent to OpenGL. Default 0, 0.
    double m_orgX = 0.0;
    double m_orgY = 0.0;

    // Colour of grid lines and of grid labels (0x00BBGGRR). Defaults: mid
    // grey lines, white labels.
    static unsigned int s_grdCol;
    static unsigned int s_fontCol;
    // Name of the display list that draws a cube of edge 1.0 centred on the
    // origin, with normals; 0 until BuildRock has run in the current context.
    static unsigned int s_rock;

    CDsp() = default;
    CDsp(double scale, double orgX, double orgY) : m_scale(scale), m_orgX(orgX), m_orgY(orgY) {}

    // Multiplies the model-view matrix by a translation to the world point
    // (x, y, z), relative to the display's origin.
    void Translate(double x, double y, double z) const;
    // Current drawing colour, 0x00BBGGRR, alpha 255.
    void SetColour(unsigned long colour) const;
    // Emits a vertex at v (x and y relative to the display's origin). `n` is
    // a vertex flag of the original interface; every value emits one plain
    // vertex.
    void Vertex(const CV3& v, int n) const;
    // Emits a vertex at v.x, v.y (relative to the display's origin) with the
    // given z in place of v.z.
    void VertexZ(const CV3& v, double z) const;

    // Draws a text at `where` (in the current model-view frame, not shifted by
    // any display origin) with the built-in bitmap font: 5x7 glyphs doubled
    // to 10x14 pixels in 12x16 cells, printable ASCII (anything else shows as
    // '?'), in the current colour, lower left corner of the first glyph at the
    // point. Texturing and lighting are off for the text and restored after;
    // nothing is drawn when the point lies outside the view. `font` is
    // accepted for the core's font numbers; every number draws the same font.
    // `fmt` follows printf rules (CString::Format).
    template <class... A>
    static void DrawBmpText(unsigned int font, const CV3& where, const CString& fmt, const A&... args)
    {
        DrawBmpTextStr(font, where, CString::Fmt(fmt, args...));
    }
    static void DrawBmpTextStr(unsigned int font, const CV3& where, const CString& text);

    // Cell size of the built-in font in pixels (advance and line height).
    static constexpr int s_fontCellW = 12;
    static constexpr int s_fontCellH = 16;

    // Builds the display list of s_rock in the current context if s_rock is
    // 0, and returns its name (0 if the context refused a list).
    static unsigned int BuildRock();
    // Deletes the list s_rock from the current context and sets it to 0.
    static void FreeRock();
};
