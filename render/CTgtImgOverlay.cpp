// CTgtImg::DrawTgts, DrawTgtsAsBlocks, DrawPoints, DrawBlocks and DrawBnds:
// what lies on or in an image, drawn in the world over it.
#include "image/CTgtImg.h"

#include "core/platform/CColTbl.h"
#include "core/platform/CDsp.h"
#include "core/platform/Zan.h"
#include "ping/CPing.h"
#include "targets/CBnd.h"
#include "targets/CTgt.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// floor(v) as an integer; NaN gives 0, values beyond int are held at its ends.
inline long long FloorToLL(double v)
{
    if (!(v > -9.0e18)) return v != v ? 0 : -9000000000000000000LL;
    if (!(v < 9.0e18)) return 9000000000000000000LL;
    const long long t = static_cast<long long>(v);
    return t - (static_cast<double>(t) > v);
}

// The two ways of picking a colour from a table.
class CColPick {
public:
    CColPick(const CColTbl& tbl, double lo, double hi) : m_tbl(tbl), m_nc(tbl.GetSize()), m_lo(lo)
    {
        double span = hi - lo;
        if (span == 0.0) span = 1.0;
        m_scale = m_nc / span;
    }
    // tbl[v * nc / 256]; a level above 255 takes the last entry.
    CRgb ByLevel(long long v) const
    {
        long long i = v * m_nc / 256;
        i = std::clamp<long long>(i, 0, m_nc - 1);
        return m_tbl[static_cast<int>(i)];
    }
    // The entry of depth z, limited to the table, made darker for weak echoes.
    CRgb ByDepth(double z, long long v) const
    {
        const long long idx = FloorToLL((z - m_lo) * m_scale + 0.5);
        CRgb c = m_tbl[static_cast<int>(std::clamp<long long>(idx, 0, m_nc - 1))];
        const double b = static_cast<double>(std::min<long long>(v + 50, 255)) / 255.0;
        c.r = static_cast<BYTE>(c.r * b);
        c.g = static_cast<BYTE>(c.g * b);
        c.b = static_cast<BYTE>(c.b * b);
        return c;
    }
    // The entry of |z| wrapping round the table with depth.
    CRgb Wrapped(double z) const
    {
        const long long idx = FloorToLL((std::fabs(z) - m_lo) * m_scale + 0.5);
        // A depth above lo gives the plain remainder; one below it would fall
        // before the table, and wraps round from its end instead.
        long long i = idx % m_nc;
        if (i < 0) i += m_nc;
        return m_tbl[static_cast<int>(i)];
    }

private:
    const CColTbl& m_tbl;
    long long m_nc;
    double m_lo;
    double m_scale;
};

void Colour(const CRgb& c) { glColor4ubv(&c.r); }

// Rows of the intensity plane that may be read: its line count, cut to what
// the buffer holds (one byte a sample).
unsigned PlaneRows(const CTgtImg& img)
{
    if (!img.m_pImg || !img.m_nBrgs) return 0;
    return std::min<unsigned>(img.m_nRngs, img.m_nImgBytes / img.m_nBrgs);
}

} // namespace

void CTgtImg::DrawTgts(CDsp& dsp)
{
    if (m_tgtRec.IsEmpty()) return;
    const unsigned side = m_tgtRec.m_tgtSide;
    dsp.SetColour(0xFFFF);
    glPointSize(3.0f);
    glBegin(GL_POINTS);
    dsp.SetColour(side == 2 ? 0xFF00 : 0xFF);
    int prevKind = 0;
    int count = 0;
    for (CZanPtr* pos = m_tgtRec.GetHeadPos(); pos;) {
        const CTgt* t = m_tgtRec.GetNext(pos);
        if (!t) continue;
        if (t->m_kind != prevKind) {
            switch (t->m_kind) {
            case 1: dsp.SetColour(side == 1 ? 0xAA : 0xAA00); break;
            case 2: dsp.SetColour(side == 1 ? 0xFF : 0xFF00); break;
            case 3: dsp.SetColour(side == 1 ? 0x6666FF : 0x66FF66); break;
            default: break;
            }
            prevKind = t->m_kind;
        }
        if (t->m_kind != 0) {
            dsp.Vertex(CV3(t->x, t->y, -t->z), 0);
            ++count;
        }
    }
    glEnd();
    Zan::Status(6031, 0, u"Drawing Tgts: %d", count);
}

void CTgtImg::DrawTgtsAsBlocks(CDsp& dsp, CColTbl& tbl, int depthCol, double lo, double hi)
{
    const CColPick pick(tbl, lo, hi);
    glPointSize(5.0f);
    glBegin(GL_POINTS);
    for (CZanPtr* pos = m_tgtRec.GetHeadPos(); pos;) {
        const CTgt* t = m_tgtRec.GetNext(pos);
        if (!t || t->m_kind == 0 || !(lo < t->z && t->z < hi)) continue;
        Colour(depthCol ? pick.ByDepth(t->z, t->m_level) : pick.ByLevel(t->m_level));
        glVertex3d(t->x - dsp.m_orgX, t->y - dsp.m_orgY, -t->z);
    }
    glEnd();
}

void CTgtImg::DrawPoints(CDsp& dsp, double thresh, CColTbl& tbl, int depthCol, double lo, double hi)
{
    if (!m_pImg) return;
    if (!(thresh >= 6.0)) thresh = 6.0;  // NaN counts as below
    const CColPick pick(tbl, lo, hi);
    glPointSize(5.0f);
    glBegin(GL_POINTS);
    // The strongest echo of each bearing, nearest first among equals, found
    // row by row so that the plane is read once in its own order. The last
    // line isn't looked at.
    const unsigned w = m_nBrgs;
    const unsigned rows = PlaneRows(*this);
    const int start = thresh >= 256.0 ? 256 : static_cast<int>(thresh);
    std::vector<int> best(w, start), chosen(w, -1);
    for (unsigned r = 0; r < rows && r + 1 < m_nRngs; ++r) {
        const BYTE* s = m_pImg + static_cast<std::size_t>(r) * w;
        for (unsigned x = 0; x < w; ++x) {
            if (s[x] > best[x]) {
                best[x] = s[x];
                chosen[x] = static_cast<int>(r);
            }
        }
    }
    const CPing& p = m_tgtRec.m_ping;
    const std::size_t nVec = std::min<std::size_t>({w, m_vStart.size(), m_vDir.size()});
    for (std::size_t x = 0; x < nVec; ++x) {
        if (chosen[x] < 0) continue;
        const double range = chosen[x] * p.m_rlTime * m_tgtRec.m_sosAvg * 0.5;
        const CV3 pt = m_vStart[x] + m_vDir[x] * range;
        Colour(depthCol ? pick.ByDepth(pt.z, best[x]) : pick.ByLevel(best[x]));
        glVertex3d(pt.x - dsp.m_orgX, pt.y - dsp.m_orgY, -pt.z);
    }
    glEnd();
}

void CTgtImg::DrawBlocks(CDsp& dsp, double thresh, CColTbl& tbl, int depthCol, double lo, double hi, double size)
{
    if (!m_pImg) return;
    if (!(thresh >= 12.0)) thresh = 12.0;  // NaN counts as below
    const CColPick pick(tbl, lo, hi);
    const CPing& p = m_tgtRec.m_ping;
    const unsigned rows = PlaneRows(*this);
    // Bearings beyond the vectors have no place in the world and are left out.
    const std::size_t nVec = std::min<std::size_t>({m_nBrgs, m_vStart.size(), m_vDir.size()});
    for (unsigned r = 0; r < rows; ++r) {
        const double range = r * p.m_rlTime * m_tgtRec.m_sosAvg * 0.5;
        const BYTE* s = m_pImg + static_cast<std::size_t>(r) * m_nBrgs;
        for (std::size_t x = 0; x < nVec; ++x) {
            const unsigned v = s[x];
            if (!(v > thresh)) continue;
            const double sc = v * size * 0.00390625;
            const CV3 pt = m_vStart[x] + m_vDir[x] * range;
            Colour(depthCol ? pick.Wrapped(pt.z) : pick.ByLevel(v));
            glPushMatrix();
            glTranslated(pt.x - dsp.m_orgX, pt.y - dsp.m_orgY, -pt.z);
            glScaled(sc, sc, sc);
            glCallList(CDsp::s_rock);
            glPopMatrix();
        }
    }
}

void CTgtImg::DrawBnds(CDsp& dsp)
{
    dsp.SetColour(0xFFFF00);
    glLineWidth(1.0f);
    const CV3 org = m_tgtRec.m_frame.Org();
    for (CZanPtr* pos = m_bnds.GetHeadPos(); pos;) {
        const CBnd* b = m_bnds.GetNext(pos);
        if (!b || b->m_bndType != 0) continue;
        glBegin(GL_LINE_LOOP);
        const long long n = b->m_pRngs ? b->m_nRngs : 0;
        // An entry whose bearing falls outside the vectors is left out, as
        // one with a negative near value is.
        auto place = [&](long long i, double dist, CV3& pt) {
            const long long brg = static_cast<long long>(b->m_firstBrg) - m_nStartBrg + i;
            if (brg < 0 || brg >= static_cast<long long>(m_vDir.size())) return false;
            pt = org + m_vDir[static_cast<std::size_t>(brg)] * dist;
            return true;
        };
        CV3 pt;
        for (long long i = 0; i < n; ++i) {
            const CSbRng& e = b->m_pRngs[i];
            if (e.m_dNear < 0.0 || !place(i, e.m_dNear, pt)) continue;
            dsp.VertexZ(pt, -pt.z);
        }
        for (long long i = n - 1; i >= 0; --i) {
            const CSbRng& e = b->m_pRngs[i];
            if (e.m_dNear < 0.0 || !place(i, e.m_dFar, pt)) continue;
            dsp.VertexZ(pt, -pt.z);
        }
        glEnd();
    }
}
