#include "render/COffscreenGL.h"

#include "core/platform/CDsp.h"
#include "render/CPngWriter.h"

#include <GL/osmesa.h>

#include <GL/gl.h>

COffscreenGL::COffscreenGL(int width, int height)
{
    if (width < 1 || height < 1 || width > 16384 || height > 16384) return;
    OSMesaContext ctx = OSMesaCreateContextExt(OSMESA_RGBA, 24, 0, 0, nullptr);
    if (!ctx) return;
    m_buf.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), CRgb());
    if (!OSMesaMakeCurrent(ctx, m_buf.data(), GL_UNSIGNED_BYTE, width, height)) {
        OSMesaDestroyContext(ctx);
        m_buf.clear();
        return;
    }
    m_pCtx = ctx;
    m_nWidth = width;
    m_nHeight = height;
    glViewport(0, 0, width, height);
    if (!CDsp::s_rock) m_bOwnsRock = CDsp::BuildRock() != 0;
}

COffscreenGL::~COffscreenGL()
{
    if (!m_pCtx) return;
    if (m_bOwnsRock && MakeCurrent()) CDsp::FreeRock();
    if (OSMesaGetCurrentContext() == m_pCtx) OSMesaMakeCurrent(nullptr, nullptr, GL_UNSIGNED_BYTE, 0, 0);
    OSMesaDestroyContext(m_pCtx);
}

bool COffscreenGL::MakeCurrent()
{
    if (!m_pCtx) return false;
    return OSMesaMakeCurrent(m_pCtx, m_buf.data(), GL_UNSIGNED_BYTE, m_nWidth, m_nHeight) != 0;
}

void COffscreenGL::Clear(float r, float g, float b, float a)
{
    if (!MakeCurrent()) return;
    glClearColor(r, g, b, a);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void COffscreenGL::SetOrtho(double x0, double x1, double y0, double y1, double zRange)
{
    if (!MakeCurrent()) return;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(x0, x1, y0, y1, -zRange, zRange);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

const CRgb* COffscreenGL::Pixels()
{
    if (!MakeCurrent()) return nullptr;
    glFinish();
    return m_buf.data();
}

CRgb COffscreenGL::Pixel(int x, int y)
{
    const CRgb* p = Pixels();
    if (!p || x < 0 || y < 0 || x >= m_nWidth || y >= m_nHeight) return CRgb();
    return p[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(x)];
}

std::vector<CRgb> COffscreenGL::TopDown()
{
    std::vector<CRgb> out;
    const CRgb* p = Pixels();
    if (!p) return out;
    out.resize(m_buf.size());
    const auto w = static_cast<std::size_t>(m_nWidth);
    for (int y = 0; y < m_nHeight; ++y) {
        const CRgb* src = p + static_cast<std::size_t>(m_nHeight - 1 - y) * w;
        std::copy(src, src + w, out.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * w));
    }
    return out;
}

bool COffscreenGL::SavePng(const CString& path)
{
    const CRgb* p = Pixels();
    if (!p) return false;
    return CPngWriter::Write(path, p, m_nWidth, m_nHeight, true);
}
