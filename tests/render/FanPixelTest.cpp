// Pictures drawn on real Mesa, off-screen: where the fan's edge and a bright
// echo land and in which colours, the grid's labels, blocks and boundaries.
// With ZAN_RENDER_PNG_DIR set, each picture is also written there as a PNG.
#include "RenderTestUtil.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

namespace {

constexpr int kSize = 256;  // pixels each way
constexpr double kView = 16.0;  // metres each way from the centre

void Save(COffscreenGL& gl, const char* name)
{
    if (const char* dir = std::getenv("ZAN_RENDER_PNG_DIR"))
        gl.SavePng(CString::FromUtf8(std::string(dir) + "/" + name + ".png"));
}

// The pixel under world point (x, y) of the view -kView..kView.
CRgb At(COffscreenGL& gl, double x, double y)
{
    const int px = static_cast<int>(std::floor((x + kView) / (2 * kView) * kSize));
    const int py = static_cast<int>(std::floor((y + kView) / (2 * kView) * kSize));
    return gl.Pixel(px, py);
}

// Polar place of the fan: beam angle a (radians from +x), range r (metres).
CRgb AtPolar(COffscreenGL& gl, double a, double r) { return At(gl, std::cos(a) * r, std::sin(a) * r); }

const CRgb kBlue(0, 0, 255, 255);

// A fan of 64 beams over +-30 degrees about +y (brgOfs pi/2), 100 range lines
// from 2 m to 14 m, grey 40 everywhere, with one echo of 255 on beams 44..47,
// lines 70..74.
class FanPixels : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_gl.IsValid());
        m_gl.Clear(0.0f, 0.0f, 1.0f, 1.0f);
        m_gl.SetOrtho(-kView, kView, -kView, kView);
        rt::MakeImage(m_img, 100, 64, 30.0, 40);
        for (unsigned r = 70; r < 75; ++r)
            for (unsigned x = 44; x < 48; ++x) rt::Sample(m_img, r, x) = 255;
        CPing& p = *m_img.Ping();
        p.m_sosXd = 1500.0f;
        p.m_rlTime = 1.0 / 6250.0;  // 0.12 m a line
        m_img.m_nStartRng = 16;       // 1.92 m
        m_img.m_nEndRng = 116;        // 13.92 m
        m_img.CreateImg(m_grey, 2, 0, 0.0, 0.0, false);  // height 128, no folding
    }
    double LineM() { return m_img.Ping()->m_rlTime * m_img.Ping()->m_sosXd * 0.5; }
    COffscreenGL m_gl {kSize, kSize};
    CTgtImg m_img;
    CColTbl m_grey = CColTbl::Grey();
};

} // namespace

TEST_F(FanPixels, EdgeAndEchoFallWhereTheBearingsAndRangesSay)
{
    m_img.DrawFan(ML::pi_2, 0, 0.0f);
    Save(m_gl, "fan");
    const CPing& p = *m_img.Ping();
    const double nearM = 16 * LineM(), farM = 116 * LineM();
    // Inside the fan: the picture's grey; outside: the clear colour.
    EXPECT_EQ(AtPolar(m_gl, ML::pi_2, 8.0), CRgb(40, 40, 40, 255));
    EXPECT_EQ(AtPolar(m_gl, ML::pi_2, 1.0), kBlue);   // nearer than the gate
    EXPECT_EQ(AtPolar(m_gl, ML::pi_2, 15.0), kBlue);  // beyond it
    // The fan's edges run along the outermost beams' centres.
    const double lo = p.m_pBrgTbl[0] + ML::pi_2, hi = p.m_pBrgTbl[63] + ML::pi_2;
    for (double r : {4.0, 8.0, 12.0}) {
        EXPECT_EQ(AtPolar(m_gl, lo + 0.02, r), CRgb(40, 40, 40, 255)) << r;
        EXPECT_EQ(AtPolar(m_gl, lo - 0.03, r), kBlue) << r;
        EXPECT_EQ(AtPolar(m_gl, hi - 0.02, r), CRgb(40, 40, 40, 255)) << r;
        EXPECT_EQ(AtPolar(m_gl, hi + 0.03, r), kBlue) << r;
    }
    // The echo: beams 44..47 (bearing table entries, plus the offset), lines
    // 70..74 from the near edge. Its middle is white, grey on the axis.
    const double a = 0.5 * (p.m_pBrgTbl[45] + p.m_pBrgTbl[46]) + ML::pi_2;
    const double r = nearM + (farM - nearM) * (72.5 / 100.0);
    const CRgb echo = AtPolar(m_gl, a, r);
    EXPECT_GT(echo.r, 200);
    EXPECT_EQ(echo.r, echo.g);
    EXPECT_EQ(echo.g, echo.b);
    // Neither in the mirrored place nor nearer or farther along the beam.
    EXPECT_EQ(AtPolar(m_gl, ML::pi - a, r), CRgb(40, 40, 40, 255));
    EXPECT_EQ(AtPolar(m_gl, a, r - 1.0), CRgb(40, 40, 40, 255));
    EXPECT_EQ(AtPolar(m_gl, a, r + 1.0), CRgb(40, 40, 40, 255));
}

TEST_F(FanPixels, FlipMovesTheEchoToTheMirrorBearing)
{
    m_img.DrawFan(ML::pi_2, 1, 0.0f);
    Save(m_gl, "fan_flip");
    const CPing& p = *m_img.Ping();
    const double nearM = 16 * LineM(), farM = 116 * LineM();
    const double a = 0.5 * (p.m_pBrgTbl[45] + p.m_pBrgTbl[46]) + ML::pi_2;
    const double r = nearM + (farM - nearM) * (72.5 / 100.0);
    EXPECT_GT(AtPolar(m_gl, ML::pi - a, r).r, 200);
    EXPECT_EQ(AtPolar(m_gl, a, r), CRgb(40, 40, 40, 255));
}

TEST_F(FanPixels, DepthColouredFanTakesTheTablesHueAndTheEchosBrightness)
{
    // Flat geometry 10 m deep on every bearing: the whole picture has one
    // depth, the middle of a 0..20 m span.
    for (unsigned x = 0; x < 64; ++x) {
        m_img.m_vStart[x] = CV3(0, 0, 10.0);
        m_img.m_vEnd[x] = CV3(0, 0, 10.0);
    }
    CColTbl vir = CColTbl::Viridis();
    m_img.CreateImg(vir, 2, 1, 0.0, 20.0, false);
    m_img.DrawFan(ML::pi_2, 0, 0.0f);
    Save(m_gl, "fan_depth");
    const CRgb mid = vir[128];
    const CPing& p = *m_img.Ping();
    const double nearM = 16 * LineM(), farM = 116 * LineM();
    const double a = 0.5 * (p.m_pBrgTbl[45] + p.m_pBrgTbl[46]) + ML::pi_2;
    const CRgb echo = AtPolar(m_gl, a, nearM + (farM - nearM) * 0.725);
    EXPECT_EQ(echo, CRgb(static_cast<BYTE>(mid.r * 255 / 256), static_cast<BYTE>(mid.g * 255 / 256),
                         static_cast<BYTE>(mid.b * 255 / 256), 255));
    // The grey 40 background is above 8: same hue, darker (166 / 256).
    const CRgb bg = AtPolar(m_gl, ML::pi_2, 5.0);
    EXPECT_EQ(bg, CRgb(static_cast<BYTE>(mid.r * 166 / 256), static_cast<BYTE>(mid.g * 166 / 256),
                       static_cast<BYTE>(mid.b * 166 / 256), 255));
}

TEST_F(FanPixels, TransparencyBlendsWithWhatLiesBelow)
{
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_img.DrawFan(ML::pi_2, 0, 0.5f);
    const CRgb c = AtPolar(m_gl, ML::pi_2, 8.0);
    EXPECT_NEAR(c.r, 20, 1);
    EXPECT_NEAR(c.b, 148, 1);  // 255 / 2 + 40 / 2
}

TEST_F(FanPixels, WorldStripOfTheSamePicture)
{
    // Extents from a sonar at the origin heading north, level: bearing b at
    // (r sin b, r cos b), the same place as the fan with brgOfs pi/2 mirrored
    // left to right; the strip lies at z = 0.
    CMat sonar, tilt;
    m_img.m_tgtRec.m_sosAvg = 1500.0;
    m_img.SetupExtents(sonar, tilt);
    CDsp dsp;
    m_img.DrawImg(dsp, 0.0);
    Save(m_gl, "strip");
    const CPing& p = *m_img.Ping();
    const double nearM = 16 * LineM(), farM = 116 * LineM();
    const double b = 0.5 * (p.m_pBrgTbl[45] + p.m_pBrgTbl[46]);
    const double r = nearM + (farM - nearM) * 0.725;
    EXPECT_GT(At(m_gl, r * std::sin(b), r * std::cos(b)).r, 200);
    EXPECT_EQ(At(m_gl, 0.0, 8.0), CRgb(40, 40, 40, 255));
    EXPECT_EQ(At(m_gl, 0.0, 1.0), kBlue);
}

TEST_F(FanPixels, GridRingsAndLabelsAreVisible)
{
    CPing& p = *m_img.Ping();
    p.m_endRngM = 12.0f;
    p.m_aperture = 60.0f;
    m_img.m_tgtRec.m_frame = CMat();  // the sonar at the origin, heading north: the fan about +y
    CDsp dsp(2 * kView / kSize, 0.0, 0.0);
    CDsp::s_grdCol = 0x0000FF00;   // green lines
    CDsp::s_fontCol = 0x000000FF;  // red labels
    m_img.DrawGrid(dsp, 2);
    Save(m_gl, "grid");
    // Rings 5, 10, 12 on the centre line.
    for (double r : {5.0, 10.0, 12.0}) {
        bool hit = false;
        for (double dr = -0.07; dr <= 0.07; dr += 0.0625) hit |= At(m_gl, -0.2, r + dr).g == 255;
        EXPECT_TRUE(hit) << "ring " << r;
    }
    EXPECT_EQ(At(m_gl, -0.2, 7.5), kBlue);
    // The edge spoke at 30 degrees.
    bool spoke = false;
    for (double dx = -0.125; dx <= 0.125; dx += 0.125)
        spoke |= At(m_gl, 8.0 * std::sin(30.0 * ML::d2r) + dx, 8.0 * std::cos(30.0 * ML::d2r)).g == 255;
    EXPECT_TRUE(spoke);
    // Each label: red pixels just right of and above its ring, on the centre line.
    for (double r : {5.0, 10.0, 12.0}) {
        int red = 0;
        for (int dx = 0; dx < 24; ++dx)
            for (int dy = 0; dy < 16; ++dy) {
                const int px = kSize / 2 + 3 + dx;
                const int py = static_cast<int>((r + kView) / (2 * kView) * kSize) + 3 + dy;
                red += m_gl.Pixel(px, py) == CRgb(255, 0, 0, 255);
            }
        EXPECT_GT(red, 10) << "label " << r;
    }
    CDsp::s_grdCol = 0x00808080;
    CDsp::s_fontCol = 0x00FFFFFF;
}

TEST_F(FanPixels, BlocksAndBoundariesOverTheStrip)
{
    CMat sonar, tilt;
    m_img.SetupExtents(sonar, tilt);
    CDsp dsp;
    glEnable(GL_DEPTH_TEST);
    glClear(GL_DEPTH_BUFFER_BIT);
    m_img.DrawBlocks(dsp, 100.0, m_grey, 0, 0.0, 1.0, 1.0);
    glDisable(GL_DEPTH_TEST);
    // A boundary over beams 10..20, 4 m to 6 m.
    CBnd* b = new CBnd;
    b->m_firstBrg = 10;
    b->SetNRngs(11);
    for (int i = 0; i < 11; ++i) {
        b->m_pRngs[i] = CSbRng();
        b->m_pRngs[i].m_dNear = 4.0;
        b->m_pRngs[i].m_dFar = 6.0;
    }
    m_img.m_bnds.AddTail(b);
    m_img.DrawBnds(dsp);
    Save(m_gl, "blocks");
    const CPing& p = *m_img.Ping();
    const double bb = 0.5 * (p.m_pBrgTbl[45] + p.m_pBrgTbl[46]);
    // Blocks go out from the near edge, a line at a time: row 72 is 72 lines on.
    const double r = 16 * LineM() + 72 * p.m_rlTime * 1500.0 * 0.5;
    const CRgb block = At(m_gl, r * std::sin(bb), r * std::cos(bb));
    EXPECT_EQ(block, CRgb(255, 255, 255, 255));
    // The boundary's far edge at 6 m on beam 15: cyan.
    const double b15 = p.m_pBrgTbl[15];
    bool cyan = false;
    for (double dr = -0.1; dr <= 0.1; dr += 0.03)
        cyan |= At(m_gl, (6.0 + dr) * std::sin(b15), (6.0 + dr) * std::cos(b15)) == CRgb(0, 255, 255, 255);
    EXPECT_TRUE(cyan);
}
