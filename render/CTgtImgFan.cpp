// CTgtImg::DrawImg, DrawFan, DrawAZFan and DrawGrid: the picture of an image
// on the screen, through fixed-function OpenGL, and the range grid over it.
// Also the OpenGL side of the image's texture deletion.
#include "image/CTgtImg.h"

#include "core/platform/CDsp.h"
#include "core/platform/CMat.h"
#include "core/platform/ML.h"
#include "core/platform/Zan.h"
#include "ping/CPing.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace {

// Deletes a texture of a destroyed image, when a context is current on this
// thread (without one there is nothing to delete it from: glGetString gives
// null then).
void DeleteTexture(UINT nTexId)
{
    if (!glGetString(GL_VERSION)) return;
    const GLuint name = nTexId;
    glDeleteTextures(1, &name);
}

// Installs DeleteTexture as the image's texture hook at load. It lives in
// this file because any program that draws an image links it.
struct CTexHookInstaller {
    CTexHookInstaller() { CTgtImg::s_pfnDeleteTexture = &DeleteTexture; }
} s_texHookInstaller;

// Binds the texture `name` (generating it first if it is 0) and, when
// `upload` is set, loads the w x h RGBA picture into it.
void BindAndUpload(UINT& name, bool upload, const CRgb* pixels, GLsizei w, GLsizei h)
{
    if (name == 0) {
        GLuint n = 0;
        glGenTextures(1, &n);
        name = n;
    }
    glBindTexture(GL_TEXTURE_2D, name);
    if (!upload) return;
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glTexImage2D(GL_TEXTURE_2D, 0, 4, w, h, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}

// Blended, textured, one strip: the common start of the three pictures.
void BeginStrip(float transp)
{
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f - transp);
    glEnable(GL_BLEND);
    glEnable(GL_TEXTURE_2D);
    glBegin(GL_TRIANGLE_STRIP);
}

// One column of a flat fan: the far and the near point on the bearing
// `angle`, at texture column u.
void FanColumn(double u, double vMax, double angle, double nearM, double farM)
{
    glTexCoord2d(u, vMax);
    glVertex3d(std::cos(angle) * farM, std::sin(angle) * farM, 0.0);
    glTexCoord2d(u, 0.0);
    glVertex3d(std::cos(angle) * nearM, std::sin(angle) * nearM, 0.0);
}

// The strip's end: what BeginStrip turned on goes off again.
void EndStrip()
{
    glEnd();
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}

// Entries of the ping's bearing table that may be read.
std::size_t BrgTblSize(const CPing& p) { return p.m_pBrgTbl && p.m_numBeams > 0 ? static_cast<std::size_t>(p.m_numBeams) : 0; }

const char16_t* OkFail(const void* p) { return p ? u"OK" : u"FAIL"; }

} // namespace

void CTgtImg::DrawImg(CDsp& dsp, double transp)
{
    if (!m_pDsp || !m_nBrgs || !m_nImgSize) {
        Zan::Status(6040, 0, u"Not drawing image IMG:%s Brgs:%d Height:%d", OkFail(m_pDsp), m_nBrgs, m_nImgSize);
        return;
    }
    BindAndUpload(m_nTexId, m_bTexDirty != 0, m_pDsp, static_cast<GLsizei>(m_nBrgs), static_cast<GLsizei>(m_nImgSize));
    m_bTexDirty = 0;
    BeginStrip(static_cast<float>(transp));
    const double vMax = static_cast<double>(m_nDspRows) / m_nImgSize;
    // Bearings beyond the vectors have no place in the world and are left out.
    const std::size_t n = std::min<std::size_t>({m_nBrgs, m_vStart.size(), m_vEnd.size()});
    for (std::size_t x = 0; x < n; ++x) {
        const CV3& e = m_vEnd[x];
        const CV3& s = m_vStart[x];
        if (!s.Finite() || !e.Finite()) continue;
        const double u = (x + 0.5) / m_nBrgs;
        glTexCoord2d(u, vMax);
        dsp.VertexZ(e, -e.z);
        glTexCoord2d(u, 0.0);
        dsp.VertexZ(s, -s.z);
    }
    glEnd();
}

void CTgtImg::DrawFan(double brgOfs, int flip, float transp)
{
    if (!m_pDsp || !m_nBrgs || !m_nImgSize) {
        Zan::Status(6041, 0, u"Not drawing image IMG:%s Brgs:%d Height:%d", OkFail(m_pDsp), m_nBrgs, m_nImgSize);
        return;
    }
    BindAndUpload(m_nTexId, m_bTexDirty != 0, m_pDsp, static_cast<GLsizei>(m_nBrgs), static_cast<GLsizei>(m_nImgSize));
    m_bTexDirty = 0;
    BeginStrip(transp);
    const double vMax = static_cast<double>(m_nDspRows) / m_nImgSize;
    const CPing& p = m_tgtRec.m_ping;
    const double nearM = m_nStartRng * p.m_rlTime * p.m_sosXd * 0.5;
    const double farM = m_nEndRng * p.m_rlTime * p.m_sosXd * 0.5;
    if (static_cast<int>(m_nBrgs) != p.m_numBeams)
        Zan::Status(6042, 0, u"m_nBrgs %d, numBeams %d", m_nBrgs, p.m_numBeams);
    // Beams beyond the bearing table have no angle and are left out.
    const std::size_t n = std::min<std::size_t>(m_nBrgs, BrgTblSize(p));
    for (std::size_t x = 0; x < n; ++x) {
        const double u = flip ? (m_nBrgs - x - 1 + 0.5) / m_nBrgs : (x + 0.5) / m_nBrgs;
        FanColumn(u, vMax, p.m_pBrgTbl[x] + brgOfs, nearM, farM);
    }
    EndStrip();
}

void CTgtImg::DrawAZFan(double brgOfs, int flip, double transp)
{
    if (!m_pAZDsp || !m_nAZBrgs || !m_nAZRngs) {
        Zan::Status(6043, 0, u"Not drawing image IMG:%s Brgs:%d Rngs:%d", OkFail(m_pAZDsp), m_nAZBrgs, m_nAZRngs);
        return;
    }
    const unsigned nH = m_nImgSize / 2;
    BindAndUpload(m_nAZTexId, true, m_pAZDsp, static_cast<GLsizei>(m_nAZBrgs), static_cast<GLsizei>(nH));
    BeginStrip(static_cast<float>(transp));
    const double vMax = static_cast<double>(m_nAZRows) / nH;
    const CPing& p = m_tgtRec.m_ping;
    const double lineM = p.m_sosXd * 0.5;
    const double nearM = m_nAZStartRng * lineM / p.m_baseMF * p.m_zoom.m_azDecim;
    const double farM = m_nAZEndRng * lineM / p.m_baseMF * p.m_zoom.m_azDecim;
    if (static_cast<int>(m_nAZBrgs) != p.m_zoom.m_azNumBeams)
        Zan::Alarm(6044, 1, u"m_nAZBrgs %d, numBeams %d", m_nAZBrgs, p.m_zoom.m_azNumBeams);
    // The region's bearings index the main bearing table; those beyond it are
    // left out.
    const std::size_t nTbl = BrgTblSize(p);
    for (std::size_t x = m_nAZStartBrg; x <= m_nAZEndBrg && x < nTbl; ++x) {
        const double col = flip ? static_cast<double>(static_cast<long long>(m_nAZStartBrg) - static_cast<long long>(x) +
                                                      static_cast<long long>(m_nAZBrgs) - 1)
                                : static_cast<double>(x - m_nAZStartBrg);
        const double u = (col + 0.5) / m_nAZBrgs;
        FanColumn(u, vMax, p.m_pBrgTbl[x] + brgOfs, nearM, farM);
    }
    EndStrip();
}

void CTgtImg::DrawGrid(CDsp& dsp, int nRings)
{
    glPushMatrix();
    const CMat& f = m_tgtRec.m_frame;
    dsp.Translate(f.X(), f.Y(), -f.Z());
    glRotated(f.Heading() * ML::r2d, 0.0, 0.0, -1.0);
    glRotated(f.Pitch() * ML::r2d, 1.0, 0.0, 0.0);
    glRotated(f.Roll() * ML::r2d, 0.0, 1.0, 0.0);

    const CPing& p = m_tgtRec.m_ping;
    const double half = std::fabs(p.m_aperture * ML::d2r) * 0.5;
    const double end = p.m_endRngM;
    const double step = Zan::NearestMkr(end / nRings);
    // A range or an aperture that isn't finite would never end the loops.
    const bool drawable = std::isfinite(end) && std::isfinite(half);

    // Rings, the last held at the end of the range, radii to centimetres.
    for (double r = step; drawable && r < end + step; r += step) {
        dsp.SetColour(CDsp::s_grdCol);
        glBegin(GL_LINE_STRIP);
        const double rad = std::floor(std::min(r, end) / 0.01 + 0.5) * 0.01;
        for (double a = -half; a <= half + ML::d2r; a += ML::d2r) {
            const double th = ML::pi_2 - std::min(a, half);
            glVertex3d(std::cos(th) * rad, std::sin(th) * rad, 0.0);
        }
        glEnd();
        dsp.SetColour(CDsp::s_fontCol);
        const double d = 3.0 * dsp.m_scale;
        CDsp::DrawBmpText(1000, CV3(d, rad + d, 0.0), u"%lg", rad);
        if (r + step == r) break;  // a step lost in r's precision would never get there
    }

    // Spokes every 15 degrees from the centre line, the right side ending at
    // the fan's edge, the left side starting there.
    dsp.SetColour(CDsp::s_grdCol);
    glBegin(GL_LINES);
    const double spoke = ML::d2r * 15.0;
    if (drawable) {
        for (double a = 0.0; a <= half + spoke; a += spoke) {
            const double th = ML::pi_2 - std::min(a, half);
            glVertex3d(0.0, 0.0, 0.0);
            glVertex3d(std::cos(th) * end, std::sin(th) * end, 0.0);
        }
        for (double a = -half; a < 0.0; a += spoke) {
            const double th = ML::pi_2 - a;
            glVertex3d(0.0, 0.0, 0.0);
            glVertex3d(std::cos(th) * end, std::sin(th) * end, 0.0);
        }
    }
    glEnd();
    glPopMatrix();
}
