// Targets, echo points, echo blocks and boundaries through the recording
// layer: which primitives, in which colours, at which places.
#include "../RenderTestUtil.h"
#include "GlRec.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

using glrec::Call;

namespace {

std::vector<double> V(std::initializer_list<double> a) { return a; }

std::vector<double> Rgba(const CRgb& c) { return V({double(c.r), double(c.g), double(c.b), double(c.a)}); }

// A table whose entries all differ: i, 255 - i, i / 2, alpha 200.
CColTbl Ramp()
{
    CColTbl t;
    for (int i = 0; i < 256; ++i)
        t[i] = CRgb(static_cast<BYTE>(i), static_cast<BYTE>(255 - i), static_cast<BYTE>(i / 2), 200);
    return t;
}

CTgt* AddTgt(CTgtImg& img, double x, double y, double z, BYTE kind, unsigned short level = 0)
{
    CTgt* t = new CTgt;
    t->x = x;
    t->y = y;
    t->z = z;
    t->m_kind = kind;
    t->m_level = level;
    img.m_tgtRec.AddTail(t);
    return t;
}

// By depth as the overlays pick it: the entry of z, darkened for level v.
CRgb ByDepth(const CColTbl& t, double z, double lo, double hi, int v)
{
    double span = hi - lo;
    if (span == 0.0) span = 1.0;
    long long idx = static_cast<long long>(std::floor((z - lo) * (256 / span) + 0.5));
    idx = std::clamp<long long>(idx, 0, 255);
    CRgb c = t[static_cast<int>(idx)];
    const double b = std::min(v + 50, 255) / 255.0;
    return CRgb(static_cast<BYTE>(c.r * b), static_cast<BYTE>(c.g * b), static_cast<BYTE>(c.b * b), c.a);
}

} // namespace

TEST(DrawTgts, ColourChangesOnlyWithTheKindAndTheCountIsReported)
{
    CTgtImg img;
    CDsp dsp(1.0, 100.0, 200.0);
    rt::CReports rep;
    glrec::Reset();
    img.DrawTgts(dsp);  // empty: nothing at all
    EXPECT_TRUE(glrec::Log().empty());
    EXPECT_TRUE(rep.m_got.empty());

    const BYTE kinds[] = {1, 1, 0, 2, 3, 3, 5, 1};
    for (int i = 0; i < 8; ++i) AddTgt(img, 100.0 + i, 200.0 + 2 * i, 3.0 + i, kinds[i]);
    img.m_tgtRec.m_tgtSide = 1;
    img.DrawTgts(dsp);
    std::vector<std::string> names = glrec::Names();
    const std::vector<std::string> want = {"glColor4ub", "glPointSize", "glBegin",    "glColor4ub", "glColor4ub",
                                           "glVertex3d", "glVertex3d",  "glColor4ub", "glVertex3d", "glColor4ub",
                                           "glVertex3d", "glVertex3d",  "glVertex3d", "glColor4ub", "glVertex3d",
                                           "glEnd"};
    EXPECT_EQ(names, want);
    const auto col = glrec::Calls("glColor4ub");
    ASSERT_EQ(col.size(), 6u);
    EXPECT_EQ(col[0].a, V({255, 255, 0, 255}));  // 0xFFFF
    EXPECT_EQ(col[1].a, V({255, 0, 0, 255}));    // side 1: 0xFF
    EXPECT_EQ(col[2].a, V({0xAA, 0, 0, 255}));   // kind 1
    EXPECT_EQ(col[3].a, V({255, 0, 0, 255}));    // kind 2
    EXPECT_EQ(col[4].a, V({255, 0x66, 0x66, 255}));  // kind 3: 0x6666FF
    EXPECT_EQ(col[5].a, V({0xAA, 0, 0, 255}));  // kind 5 kept kind 3's colour; kind 1 again
    EXPECT_EQ(glrec::Calls("glPointSize")[0].a, V({3.0}));
    EXPECT_EQ(glrec::Calls("glBegin")[0].a, V({GL_POINTS}));
    const auto vx = glrec::Calls("glVertex3d");
    ASSERT_EQ(vx.size(), 7u);
    EXPECT_EQ(vx[0].a, V({0.0, 0.0, -3.0}));
    EXPECT_EQ(vx[2].a, V({3.0, 6.0, -6.0}));  // target 2 (kind 0) left out
    ASSERT_EQ(rep.m_got.size(), 1u);
    EXPECT_EQ(std::get<1>(rep.m_got[0]), 6031u);
    EXPECT_EQ(std::get<2>(rep.m_got[0]), 0);
    EXPECT_EQ(std::get<3>(rep.m_got[0]), "Drawing Tgts: 7");

    // The other side's colours.
    img.m_tgtRec.m_tgtSide = 2;
    glrec::Reset();
    img.DrawTgts(dsp);
    const auto c2 = glrec::Calls("glColor4ub");
    ASSERT_EQ(c2.size(), 6u);
    EXPECT_EQ(c2[1].a, V({0, 255, 0, 255}));
    EXPECT_EQ(c2[2].a, V({0, 0xAA, 0, 255}));
    EXPECT_EQ(c2[3].a, V({0, 255, 0, 255}));
    EXPECT_EQ(c2[4].a, V({0x66, 255, 0x66, 255}));
}

TEST(DrawTgts, ATargetOfKindZeroCountsNothing)
{
    CTgtImg img;
    AddTgt(img, 1, 2, 3, 0);
    CDsp dsp;
    rt::CReports rep;
    glrec::Reset();
    img.DrawTgts(dsp);
    EXPECT_EQ(glrec::Count("glVertex3d"), 0u);
    EXPECT_EQ(glrec::Count("glEnd"), 1u);
    ASSERT_EQ(rep.m_got.size(), 1u);
    EXPECT_EQ(std::get<3>(rep.m_got[0]), "Drawing Tgts: 0");
}

TEST(DrawTgtsAsBlocks, StrictDepthWindowAndBothColourings)
{
    CTgtImg img;
    const CColTbl tbl = Ramp();
    CColTbl t = tbl;
    AddTgt(img, 50, 60, 10.0, 1, 100);   // at lo: out
    AddTgt(img, 50, 60, 20.0, 1, 100);   // at hi: out
    AddTgt(img, 50, 60, 15.0, 0, 100);   // kind 0: out
    AddTgt(img, 51, 62, 15.0, 2, 100);   // in
    AddTgt(img, 52, 64, 19.99, 1, 300);  // in, index past the table's end
    CDsp dsp(1.0, 50.0, 60.0);
    glrec::Reset();
    img.DrawTgtsAsBlocks(dsp, t, 1, 10.0, 20.0);
    EXPECT_EQ(glrec::Names(), (std::vector<std::string> {"glPointSize", "glBegin", "glColor4ubv", "glVertex3d",
                                                         "glColor4ubv", "glVertex3d", "glEnd"}));
    EXPECT_EQ(glrec::Calls("glPointSize")[0].a, V({5.0}));
    const auto col = glrec::Calls("glColor4ubv");
    EXPECT_EQ(col[0].a, Rgba(ByDepth(tbl, 15.0, 10.0, 20.0, 100)));
    EXPECT_EQ(col[0].a, V({75, 74, 37, 200}));
    EXPECT_EQ(col[1].a, Rgba(ByDepth(tbl, 19.99, 10.0, 20.0, 300)));  // the last entry, full brightness
    EXPECT_EQ(col[1].a, V({255, 0, 127, 200}));
    const auto vx = glrec::Calls("glVertex3d");
    EXPECT_EQ(vx[0].a, V({1.0, 2.0, -15.0}));

    // By level: entry level * 256 / 256; a level past 255 takes the last.
    glrec::Reset();
    img.DrawTgtsAsBlocks(dsp, t, 0, 10.0, 20.0);
    const auto lv = glrec::Calls("glColor4ubv");
    ASSERT_EQ(lv.size(), 2u);
    EXPECT_EQ(lv[0].a, Rgba(tbl[100]));
    EXPECT_EQ(lv[1].a, Rgba(tbl[255]));
}

TEST(DrawPoints, StrongestEchoOfEachBearingAboveAtLeastSix)
{
    CTgtImg img;
    rt::MakeImage(img, 6, 3);
    const BYTE col0[6] = {6, 7, 7, 3, 2, 100};   // 7 at row 1 (the nearer of two); row 5 is never looked at
    const BYTE col2[6] = {0, 0, 0, 200, 0, 0};
    for (unsigned r = 0; r < 6; ++r) {
        rt::Sample(img, r, 0) = col0[r];
        rt::Sample(img, r, 1) = 6;  // never above the threshold
        rt::Sample(img, r, 2) = col2[r];
    }
    for (unsigned x = 0; x < 3; ++x) {
        img.m_vStart[x] = CV3(1000.0 + x, 2000.0, 1.0);
        img.m_vDir[x] = CV3(0.0, 0.6, 0.8);
    }
    img.m_tgtRec.m_sosAvg = 1600.0;
    const double rl = img.Ping()->m_rlTime;
    CDsp dsp(1.0, 1000.0, 2000.0);
    CColTbl t = Ramp();
    glrec::Reset();
    img.DrawPoints(dsp, 3.0, t, 0, 0.0, 10.0);
    EXPECT_EQ(glrec::Names(), (std::vector<std::string> {"glPointSize", "glBegin", "glColor4ubv", "glVertex3d",
                                                         "glColor4ubv", "glVertex3d", "glEnd"}));
    const auto col = glrec::Calls("glColor4ubv");
    EXPECT_EQ(col[0].a, Rgba(t[7]));
    EXPECT_EQ(col[1].a, Rgba(t[200]));
    const auto vx = glrec::Calls("glVertex3d");
    const double r1 = 1 * rl * 1600.0 * 0.5, r3 = 3 * rl * 1600.0 * 0.5;
    const CV3 p0 = CV3(1000.0, 2000.0, 1.0) + CV3(0.0, 0.6, 0.8) * r1;
    const CV3 p2 = CV3(1002.0, 2000.0, 1.0) + CV3(0.0, 0.6, 0.8) * r3;
    EXPECT_EQ(vx[0].a, V({p0.x - 1000.0, p0.y - 2000.0, -p0.z}));
    EXPECT_EQ(vx[1].a, V({p2.x - 1000.0, p2.y - 2000.0, -p2.z}));

    // By depth, with the echo's level as brightness.
    glrec::Reset();
    img.DrawPoints(dsp, 3.0, t, 1, 0.0, 10.0);
    const auto dc = glrec::Calls("glColor4ubv");
    ASSERT_EQ(dc.size(), 2u);
    EXPECT_EQ(dc[0].a, Rgba(ByDepth(Ramp(), p0.z, 0.0, 10.0, 7)));
    EXPECT_EQ(dc[1].a, Rgba(ByDepth(Ramp(), p2.z, 0.0, 10.0, 200)));

    // A threshold of 7: the 7s no longer count.
    glrec::Reset();
    img.DrawPoints(dsp, 7.9, t, 0, 0.0, 10.0);
    EXPECT_EQ(glrec::Count("glVertex3d"), 1u);
}

TEST(DrawBlocks, OneScaledSolidPerSampleAboveTheThreshold)
{
    CTgtImg img;
    rt::MakeImage(img, 2, 2);
    rt::Sample(img, 0, 0) = 12;   // equal to the raised threshold: not drawn
    rt::Sample(img, 0, 1) = 13;
    rt::Sample(img, 1, 0) = 255;
    rt::Sample(img, 1, 1) = 0;
    img.m_vStart[0] = CV3(10.0, 20.0, 2.0);
    img.m_vStart[1] = CV3(11.0, 20.0, 2.0);
    img.m_vDir[0] = img.m_vDir[1] = CV3(0.0, 0.0, 1.0);
    const double rl1 = 1 * img.Ping()->m_rlTime * img.m_tgtRec.m_sosAvg * 0.5;
    CDsp::s_rock = 7;
    CDsp dsp(1.0, 10.0, 20.0);
    CColTbl t = Ramp();
    glrec::Reset();
    img.DrawBlocks(dsp, 5.0, t, 0, 0.0, 1.0, 2.0);
    const std::vector<std::string> one = {"glColor4ubv", "glPushMatrix", "glTranslated", "glScaled", "glCallList",
                                          "glPopMatrix"};
    std::vector<std::string> two = one;
    two.insert(two.end(), one.begin(), one.end());
    EXPECT_EQ(glrec::Names(), two);
    const auto col = glrec::Calls("glColor4ubv");
    EXPECT_EQ(col[0].a, Rgba(t[13]));
    EXPECT_EQ(col[1].a, Rgba(t[255]));
    const auto tr = glrec::Calls("glTranslated");
    EXPECT_EQ(tr[0].a, V({1.0, 0.0, -2.0}));
    EXPECT_EQ(tr[1].a, V({0.0, 0.0, -(2.0 + rl1)}));
    const auto sc = glrec::Calls("glScaled");
    EXPECT_EQ(sc[0].a, V({13 * 2.0 * 0.00390625, 13 * 2.0 * 0.00390625, 13 * 2.0 * 0.00390625}));
    EXPECT_EQ(glrec::Calls("glCallList")[0].a, V({7}));

    // By depth the table wraps with |z|, without a brightness step; below lo
    // it wraps round from the end.
    img.m_vStart[1] = CV3(11.0, 20.0, -1.5);  // |z| 1.5: index 384, entry 128
    img.m_vStart[0] = CV3(10.0, 20.0, 0.99609375 - rl1);
    glrec::Reset();
    img.DrawBlocks(dsp, 5.0, t, 1, 0.0, 1.0, 2.0);
    auto dc = glrec::Calls("glColor4ubv");
    ASSERT_EQ(dc.size(), 2u);
    EXPECT_EQ(dc[0].a, Rgba(t[128]));
    EXPECT_EQ(dc[1].a, Rgba(t[255]));  // 0.99609375 * 256 + 0.5 = 255.5
    glrec::Reset();
    img.DrawBlocks(dsp, 5.0, t, 1, 1.0, 2.0, 2.0);  // (0.99609375 - 1) * 256 + 0.5 = -0.5: index -1
    dc = glrec::Calls("glColor4ubv");
    ASSERT_EQ(dc.size(), 2u);
    EXPECT_EQ(dc[1].a, Rgba(t[255]));
    CDsp::s_rock = 0;
}

TEST(DrawBnds, OutlineOutAlongTheNearRangesAndBackAlongTheFar)
{
    CTgtImg img;
    rt::MakeImage(img, 4, 6);
    for (unsigned x = 0; x < 6; ++x) img.m_vDir[x] = CV3(0.1 * x, 1.0, 0.5);
    img.m_nStartBrg = 4;
    img.m_tgtRec.m_frame = CMat(CV3(10.0, 20.0, 2.0), 0.3);
    CBnd* other = new CBnd;
    other->m_bndType = 1;
    other->SetNRngs(1);
    other->m_pRngs[0] = CSbRng();
    img.m_bnds.AddTail(other);
    CBnd* b = new CBnd;
    b->m_firstBrg = 5;  // vector index 1 on
    b->SetNRngs(4);
    const double nearR[4] = {2.0, -1.0, 0.0, 3.0};
    const double farR[4] = {5.0, 9.0, 7.0, 8.0};
    for (int i = 0; i < 4; ++i) {
        b->m_pRngs[i] = CSbRng();
        b->m_pRngs[i].m_dNear = nearR[i];
        b->m_pRngs[i].m_dFar = farR[i];
    }
    img.m_bnds.AddTail(b);
    CDsp dsp(1.0, 10.0, 20.0);
    glrec::Reset();
    img.DrawBnds(dsp);
    const auto& log = glrec::Log();
    ASSERT_EQ(log.size(), 2u + 1 + 6 + 1);
    EXPECT_EQ(log[0].fn, "glColor4ub");
    EXPECT_EQ(log[0].a, V({0, 255, 255, 255}));  // 0xFFFF00
    EXPECT_EQ(log[1].fn, "glLineWidth");
    EXPECT_EQ(log[1].a, V({1.0}));
    EXPECT_EQ(log[2].fn, "glBegin");
    EXPECT_EQ(log[2].a, V({GL_LINE_LOOP}));
    const CV3 org(10.0, 20.0, 2.0);
    auto expect = [&](std::size_t at, int i, double d) {
        const CV3 p = org + img.m_vDir[static_cast<std::size_t>(1 + i)] * d;
        EXPECT_EQ(log[at].fn, "glVertex3d");
        EXPECT_EQ(log[at].a, V({p.x - 10.0, p.y - 20.0, -p.z})) << "vertex " << at;
    };
    // Near: entries 0, 2 (0.0 counts), 3 (bearing 4+... index 4); entry 1 is a gap.
    expect(3, 0, 2.0);
    expect(4, 2, 0.0);
    expect(5, 3, 3.0);
    // Far, backwards.
    expect(6, 3, 8.0);
    expect(7, 2, 7.0);
    expect(8, 0, 5.0);
    EXPECT_EQ(log[9].fn, "glEnd");

    // Entries whose bearing lies outside the vectors are left out as well.
    b->m_firstBrg = 7;  // indices 3..6 of 6 vectors
    glrec::Reset();
    img.DrawBnds(dsp);
    EXPECT_EQ(glrec::Count("glVertex3d"), 2u + 2u);  // entries 0 and 2 of bearings 3 and 5
}
