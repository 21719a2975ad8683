#pragma once
// COffscreenGL: an OpenGL context with no window, no display and no GPU
// (Mesa's off-screen renderer), drawing into a pixel buffer of its own. For
// hosts that draw pictures in the background and for tests. The drawing code
// of the library never makes a context; it draws into whichever is current.
//
// The context is a compatibility profile, so every fixed-function call of the
// library (textures, strips, lines, points, matrices, display lists) works.
// One object is one context; it may be made current on one thread at a time.
#include "core/platform/CRgb.h"
#include "core/platform/CString.h"

#include <vector>

struct osmesa_context;

class COffscreenGL {
public:
    // Makes a context of width x height pixels (each 1 to 16384), RGBA with
    // a 24-bit depth buffer, makes it current on this thread, sets the
    // viewport to the whole buffer and builds CDsp::s_rock in it. On failure
    // (bad size, no off-screen driver) IsValid() is false and nothing is
    // current.
    COffscreenGL(int width, int height);
    // Deletes CDsp::s_rock when this context built it, and the context.
    ~COffscreenGL();
    COffscreenGL(const COffscreenGL&) = delete;
    COffscreenGL& operator=(const COffscreenGL&) = delete;

    bool IsValid() const { return m_pCtx != nullptr; }
    int Width() const { return m_nWidth; }
    int Height() const { return m_nHeight; }

    // Makes this context current on the calling thread. False if invalid.
    bool MakeCurrent();

    // Clears colour and depth to the given colour (components 0 to 1).
    void Clear(float r = 0.0f, float g = 0.0f, float b = 0.0f, float a = 1.0f);
    // Sets an orthographic projection in which the world rectangle x0..x1,
    // y0..y1 fills the buffer (x to the right, y up; z from -zRange to
    // +zRange is visible), and loads the identity as model-view.
    void SetOrtho(double x0, double x1, double y0, double y1, double zRange = 1.0e4);

    // Finishes drawing and gives the buffer: Width() x Height() pixels,
    // the bottom row first, as OpenGL numbers rows. Null if invalid.
    const CRgb* Pixels();
    // One pixel, x from the left, y from the bottom (OpenGL's window
    // coordinates). Outside the buffer: all four bytes 0.
    CRgb Pixel(int x, int y);
    // The picture with its top row first, as image files store it.
    std::vector<CRgb> TopDown();
    // Writes the picture to a PNG file (RGBA, 8 bits). False on failure.
    bool SavePng(const CString& path);

private:
    osmesa_context* m_pCtx = nullptr;
    int m_nWidth = 0;
    int m_nHeight = 0;
    bool m_bOwnsRock = false;
    std::vector<CRgb> m_buf;
};
