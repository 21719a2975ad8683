// The fans, the world strip and the range grid, through the recording layer:
// the exact OpenGL calls, their order and their arguments.
#include "../RenderTestUtil.h"
#include "GlRec.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

using glrec::Call;

namespace {

std::vector<double> V(std::initializer_list<double> a) { return a; }

// The calls from the first call of `fn` on.
std::vector<Call> From(const std::string& fn)
{
    const auto& log = glrec::Log();
    auto it = std::find_if(log.begin(), log.end(), [&](const Call& c) { return c.fn == fn; });
    return std::vector<Call>(it, log.end());
}

// The upload that every picture makes, in its order.
void ExpectUpload(const std::vector<Call>& log, std::size_t at, double w, double h, const void* pixels)
{
    ASSERT_GE(log.size(), at + 16);
    const std::vector<std::pair<std::string, std::vector<double>>> want = {
        {"glEnable", V({GL_TEXTURE_2D})},
        {"glTexEnvi", V({GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE})},
        {"glTexEnvi", V({GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, 0})},
        {"glTexParameteri", V({GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT})},
        {"glTexParameteri", V({GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT})},
        {"glTexParameteri", V({GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR})},
        {"glTexParameteri", V({GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR})},
        {"glPixelStorei", V({GL_UNPACK_ALIGNMENT, 1})},
        {"glPixelStorei", V({GL_UNPACK_ROW_LENGTH, 0})},
        {"glPixelStorei", V({GL_UNPACK_SKIP_ROWS, 0})},
        {"glPixelStorei", V({GL_UNPACK_SKIP_PIXELS, 0})},
        {"glTexImage2D", V({GL_TEXTURE_2D, 0, 4, w, h, 0, GL_RGBA, GL_UNSIGNED_BYTE})},
    };
    for (std::size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(log[at + i].fn, want[i].first) << "call " << at + i;
        EXPECT_EQ(log[at + i].a, want[i].second) << "call " << at + i << " " << want[i].first;
    }
    EXPECT_EQ(log[at + 11].p, pixels);
}

// The strip's start: colour with the transparency, blending, texturing, strip.
void ExpectStripStart(const std::vector<Call>& log, std::size_t at, float transp)
{
    ASSERT_GE(log.size(), at + 4);
    EXPECT_EQ(log[at].fn, "glColor4f");
    EXPECT_EQ(log[at].a, V({1.0, 1.0, 1.0, static_cast<double>(1.0f - transp)}));
    EXPECT_EQ(log[at + 1].fn, "glEnable");
    EXPECT_EQ(log[at + 1].a, V({GL_BLEND}));
    EXPECT_EQ(log[at + 2].fn, "glEnable");
    EXPECT_EQ(log[at + 2].a, V({GL_TEXTURE_2D}));
    EXPECT_EQ(log[at + 3].fn, "glBegin");
    EXPECT_EQ(log[at + 3].a, V({GL_TRIANGLE_STRIP}));
}

class Fan : public ::testing::Test {
protected:
    void SetUp() override
    {
        glrec::Reset();
        rt::MakeImage(m_img, 300, 8, 30.0, 20);
        m_img.CreateImg(m_tbl, 3, 0, 0.0, 0.0, false);  // 256 rows: 150 filled
        glrec::Reset();
    }
    CTgtImg m_img;
    CColTbl m_tbl = CColTbl::Grey();
};

} // namespace

TEST_F(Fan, FirstDrawUploadsAndSecondOnlyBinds)
{
    m_img.DrawFan(0.0, 0, 0.25f);
    auto log = glrec::Log();
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(log[0].fn, "glGenTextures");
    EXPECT_EQ(log[0].a, V({1}));
    EXPECT_EQ(m_img.m_nTexId, 1u);
    EXPECT_EQ(log[1].fn, "glBindTexture");
    EXPECT_EQ(log[1].a, V({GL_TEXTURE_2D, 1}));
    ExpectUpload(log, 2, 8, 256, m_img.m_pDsp);
    ExpectStripStart(log, 14, 0.25f);
    // One pair of vertices per beam, then the end.
    EXPECT_EQ(log.size(), 14u + 4 + 8 * 4 + 3);
    EXPECT_EQ(log[log.size() - 3].fn, "glEnd");
    EXPECT_EQ(log[log.size() - 2].fn, "glDisable");
    EXPECT_EQ(log[log.size() - 2].a, V({GL_BLEND}));
    EXPECT_EQ(log[log.size() - 1].fn, "glDisable");
    EXPECT_EQ(log[log.size() - 1].a, V({GL_TEXTURE_2D}));
    EXPECT_EQ(m_img.m_bTexDirty, 0u);

    // The same picture again: no new name, no upload.
    glrec::Reset();
    m_img.DrawFan(0.0, 0, 0.0f);
    EXPECT_EQ(glrec::Count("glGenTextures"), 0u);
    EXPECT_EQ(glrec::Count("glTexImage2D"), 0u);
    log = glrec::Log();
    EXPECT_EQ(log[0].fn, "glBindTexture");
    EXPECT_EQ(log[0].a, V({GL_TEXTURE_2D, 1}));
    ExpectStripStart(log, 1, 0.0f);

    // A new picture is uploaded once more, into the same texture.
    m_img.CreateImg(m_tbl, 3, 0, 0.0, 0.0, false);
    glrec::Reset();
    m_img.DrawFan(0.0, 0, 0.0f);
    EXPECT_EQ(glrec::Count("glGenTextures"), 0u);
    ASSERT_EQ(glrec::Count("glTexImage2D"), 1u);
    EXPECT_EQ(glrec::Calls("glTexImage2D")[0].data[0], 20);  // the picture's grey
}

TEST_F(Fan, StripVerticesFollowTheBearingTableAndTheGate)
{
    CPing& p = *m_img.Ping();
    p.m_sosXd = 1480.0f;
    m_img.m_nStartRng = 40;
    m_img.m_nEndRng = 340;
    const double brgOfs = 0.1;
    m_img.DrawFan(brgOfs, 0, 0.0f);
    const double nearM = 40 * p.m_rlTime * 1480.0 * 0.5;
    const double farM = 340 * p.m_rlTime * 1480.0 * 0.5;
    const double vMax = 150.0 / 256.0;
    const auto strip = From("glBegin");
    ASSERT_EQ(strip.size(), 1u + 8 * 4 + 3);
    for (unsigned x = 0; x < 8; ++x) {
        const double u = (x + 0.5) / 8;
        const double a = p.m_pBrgTbl[x] + brgOfs;
        const Call* c = &strip[1 + 4 * x];
        EXPECT_EQ(c[0].fn, "glTexCoord2d");
        EXPECT_EQ(c[0].a, V({u, vMax}));
        EXPECT_EQ(c[1].fn, "glVertex3d");
        EXPECT_EQ(c[1].a, V({std::cos(a) * farM, std::sin(a) * farM, 0.0}));
        EXPECT_EQ(c[2].a, V({u, 0.0}));
        EXPECT_EQ(c[3].a, V({std::cos(a) * nearM, std::sin(a) * nearM, 0.0}));
    }
    // Flipped: the same vertices, each with its mirror's texture column.
    glrec::Reset();
    m_img.DrawFan(brgOfs, 1, 0.0f);
    const auto tc = glrec::Calls("glTexCoord2d");
    const auto vx = glrec::Calls("glVertex3d");
    ASSERT_EQ(tc.size(), 16u);
    for (unsigned x = 0; x < 8; ++x) {
        EXPECT_EQ(tc[2 * x].a, V({(8 - x - 1 + 0.5) / 8, vMax}));
        EXPECT_EQ(tc[2 * x + 1].a, V({(8 - x - 1 + 0.5) / 8, 0.0}));
        const double a = p.m_pBrgTbl[x] + brgOfs;
        EXPECT_EQ(vx[2 * x].a, V({std::cos(a) * farM, std::sin(a) * farM, 0.0}));
    }
}

TEST_F(Fan, AFullPictureReachesTheTopOfTheTexture)
{
    rt::MakeImage(m_img, 256, 8);
    m_img.CreateImg(m_tbl, 3, 0, 0.0, 0.0, false);
    glrec::Reset();
    m_img.DrawFan(0.0, 0, 0.0f);
    EXPECT_EQ(glrec::Calls("glTexCoord2d")[0].a, V({0.5 / 8, 1.0}));
}

TEST_F(Fan, MoreBeamsThanTheTableIsReportedAndNothingBeyondItIsRead)
{
    rt::CReports rep;
    m_img.Ping()->SetNumBeams(5);  // table of 5, image of 8
    m_img.DrawFan(0.0, 0, 0.0f);
    ASSERT_EQ(rep.m_got.size(), 1u);
    EXPECT_EQ(std::get<1>(rep.m_got[0]), 6042u);
    EXPECT_EQ(std::get<2>(rep.m_got[0]), 0);
    EXPECT_EQ(std::get<3>(rep.m_got[0]), "m_nBrgs 8, numBeams 5");
    EXPECT_EQ(glrec::Count("glVertex3d"), 10u);  // the five beams with an angle
    EXPECT_EQ(glrec::Count("glEnd"), 1u);
}

TEST_F(Fan, NothingToDrawIsReportedWithOkOrFail)
{
    rt::CReports rep;
    const unsigned h = m_img.m_nImgSize;
    m_img.m_nImgSize = 0;
    m_img.DrawFan(0.0, 0, 0.0f);
    CDsp dsp;
    m_img.DrawImg(dsp, 0.0);
    m_img.m_nImgSize = h;
    CRgb* keep = m_img.m_pDsp;
    m_img.m_pDsp = nullptr;
    m_img.DrawFan(0.0, 0, 0.0f);
    m_img.m_pDsp = keep;
    m_img.DrawAZFan(0.0, 0, 0.0);
    EXPECT_TRUE(glrec::Log().empty());
    ASSERT_EQ(rep.m_got.size(), 4u);
    EXPECT_EQ(std::get<1>(rep.m_got[0]), 6041u);
    EXPECT_EQ(std::get<3>(rep.m_got[0]), "Not drawing image IMG:OK Brgs:8 Height:0");
    EXPECT_EQ(std::get<1>(rep.m_got[1]), 6040u);
    EXPECT_EQ(std::get<3>(rep.m_got[1]), "Not drawing image IMG:OK Brgs:8 Height:0");
    EXPECT_EQ(std::get<1>(rep.m_got[2]), 6041u);
    EXPECT_EQ(std::get<3>(rep.m_got[2]), "Not drawing image IMG:FAIL Brgs:8 Height:256");
    EXPECT_EQ(std::get<1>(rep.m_got[3]), 6043u);
    EXPECT_EQ(std::get<3>(rep.m_got[3]), "Not drawing image IMG:FAIL Brgs:0 Rngs:0");
    for (const auto& r : rep.m_got) {
        EXPECT_EQ(std::get<0>(r), Zan::Kind::Status);
        EXPECT_EQ(std::get<2>(r), 0);
    }
}

TEST_F(Fan, ZoomFanUploadsAtEveryDrawAndSpansItsRegion)
{
    CPing& p = *m_img.Ping();
    p.m_zoom.m_azDecim = 2;
    p.m_zoom.m_azNumBeams = 3;
    p.m_baseMF = 80000;
    m_img.AllocAZ(40, 3);
    std::fill(m_img.m_pAZ, m_img.m_pAZ + 120, BYTE(99));
    m_img.m_nAZStartBrg = 2;
    m_img.m_nAZEndBrg = 4;  // inclusive: beams 2, 3, 4
    m_img.m_nAZStartRng = 100;
    m_img.m_nAZEndRng = 180;
    m_img.CreateImg(m_tbl, 3, 0, 0.0, 0.0, false);
    ASSERT_NE(m_img.m_pAZDsp, nullptr);
    EXPECT_EQ(m_img.m_nAZRows, 40u);
    glrec::Reset();
    m_img.DrawAZFan(0.0, 0, 0.5);
    auto log = glrec::Log();
    EXPECT_EQ(log[0].fn, "glGenTextures");
    EXPECT_EQ(log[1].a, V({GL_TEXTURE_2D, 1}));
    EXPECT_EQ(m_img.m_nAZTexId, 1u);
    ExpectUpload(log, 2, 3, 128, m_img.m_pAZDsp);
    ExpectStripStart(log, 14, 0.5f);
    const double lineM = p.m_sosXd * 0.5;
    const double nearM = 100 * lineM / 80000 * 2;
    const double farM = 180 * lineM / 80000 * 2;
    const auto tc = glrec::Calls("glTexCoord2d");
    const auto vx = glrec::Calls("glVertex3d");
    ASSERT_EQ(vx.size(), 6u);
    for (unsigned i = 0; i < 3; ++i) {
        const double a = p.m_pBrgTbl[2 + i];
        EXPECT_EQ(tc[2 * i].a, V({(i + 0.5) / 3, 40.0 / 128}));
        EXPECT_EQ(vx[2 * i].a, V({std::cos(a) * farM, std::sin(a) * farM, 0.0}));
        EXPECT_EQ(vx[2 * i + 1].a, V({std::cos(a) * nearM, std::sin(a) * nearM, 0.0}));
    }
    EXPECT_EQ(glrec::Calls("glTexImage2D")[0].data[0], 99);

    // Again, unchanged: uploaded again, same name.
    glrec::Reset();
    m_img.DrawAZFan(0.0, 1, 0.5);
    EXPECT_EQ(glrec::Count("glGenTextures"), 0u);
    EXPECT_EQ(glrec::Count("glTexImage2D"), 1u);
    const auto tf = glrec::Calls("glTexCoord2d");
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(tf[2 * i].a[0], (2.0 - (2 + i) + 3 - 1 + 0.5) / 3);
}

TEST_F(Fan, ZoomBeamCountMismatchIsAnAlarmAndTheTableBounds)
{
    rt::CReports rep;
    m_img.Ping()->m_zoom.m_azNumBeams = 7;
    m_img.AllocAZ(10, 3);
    m_img.m_nAZStartBrg = 6;
    m_img.m_nAZEndBrg = 9;  // the table has 8 entries: beams 6 and 7 only
    m_img.CreateImg(m_tbl, 3, 0, 0.0, 0.0, false);
    glrec::Reset();
    m_img.DrawAZFan(0.0, 0, 0.0);
    EXPECT_EQ(glrec::Count("glVertex3d"), 4u);
    ASSERT_EQ(rep.m_got.size(), 1u);
    EXPECT_EQ(std::get<0>(rep.m_got[0]), Zan::Kind::Alarm);
    EXPECT_EQ(std::get<1>(rep.m_got[0]), 6044u);
    EXPECT_EQ(std::get<2>(rep.m_got[0]), 1);
    EXPECT_EQ(std::get<3>(rep.m_got[0]), "m_nAZBrgs 3, numBeams 7");
}

TEST_F(Fan, WorldStripGoesFarThenNearAndSkipsPointsThatAreNotFinite)
{
    for (unsigned x = 0; x < 8; ++x) {
        m_img.m_vStart[x] = CV3(1000.0 + x, 2000.0, 1.5);
        m_img.m_vEnd[x] = CV3(1000.0 + x, 2050.0, 4.0 + x);
    }
    m_img.m_vEnd[3].x = std::numeric_limits<double>::quiet_NaN();
    m_img.m_vStart[5].z = std::numeric_limits<double>::infinity();
    CDsp dsp(0.1, 1000.0, 2000.0);
    m_img.DrawImg(dsp, 0.75);
    auto log = glrec::Log();
    ExpectUpload(log, 2, 8, 256, m_img.m_pDsp);
    ExpectStripStart(log, 14, 0.75f);
    const auto tc = glrec::Calls("glTexCoord2d");
    const auto vx = glrec::Calls("glVertex3d");
    ASSERT_EQ(vx.size(), 12u);  // 6 bearings of 8
    unsigned k = 0;
    for (unsigned x = 0; x < 8; ++x) {
        if (x == 3 || x == 5) continue;
        EXPECT_EQ(tc[2 * k].a, V({(x + 0.5) / 8, 150.0 / 256}));
        EXPECT_EQ(vx[2 * k].a, V({double(x), 50.0, -(4.0 + x)}));
        EXPECT_EQ(tc[2 * k + 1].a, V({(x + 0.5) / 8, 0.0}));
        EXPECT_EQ(vx[2 * k + 1].a, V({double(x), 0.0, -1.5}));
        ++k;
    }
    // Blending and texturing stay on after the strip.
    EXPECT_EQ(log.back().fn, "glEnd");
}

TEST_F(Fan, DestroyingADrawnImageDeletesItsTextureButNotTheZoomOne)
{
    auto img = std::make_unique<CTgtImg>();
    rt::MakeImage(*img, 10, 4);
    img->AllocAZ(4, 2);
    img->CreateImg(m_tbl, 0, 0, 0.0, 0.0, false);
    img->DrawFan(0.0, 0, 0.0f);
    img->DrawAZFan(0.0, 0, 0.0);
    const unsigned tex = img->m_nTexId;
    EXPECT_NE(img->m_nAZTexId, 0u);
    glrec::Reset();
    img.reset();
    const auto del = glrec::Calls("glDeleteTextures");
    ASSERT_EQ(del.size(), 1u);
    EXPECT_EQ(del[0].a, V({1, double(tex)}));
}

// ---- Grid ----

namespace {

struct Ring {
    double radius;
    std::size_t vertices;
    std::vector<double> first, last;
};

std::vector<Ring> Rings()
{
    std::vector<Ring> out;
    const auto& log = glrec::Log();
    for (std::size_t i = 0; i < log.size(); ++i) {
        if (log[i].fn != "glBegin" || log[i].a[0] != GL_LINE_STRIP) continue;
        Ring r {0, 0, {}, {}};
        for (std::size_t j = i + 1; j < log.size() && log[j].fn == "glVertex3d"; ++j) {
            if (!r.vertices) r.first = log[j].a;
            r.last = log[j].a;
            ++r.vertices;
        }
        r.radius = std::hypot(r.first[0], r.first[1]);
        out.push_back(r);
    }
    return out;
}

// The spokes' angles in degrees from +y toward +x, rounded to 1e-6.
std::vector<double> Spokes(double end)
{
    std::vector<double> out;
    const auto& log = glrec::Log();
    auto it = std::find_if(log.begin(), log.end(),
                           [](const Call& c) { return c.fn == "glBegin" && c.a[0] == GL_LINES; });
    EXPECT_NE(it, log.end());
    for (++it; it != log.end() && it->fn == "glVertex3d"; it += 2) {
        EXPECT_EQ(it->a, V({0, 0, 0}));
        const auto& e = (it + 1)->a;
        EXPECT_NEAR(std::hypot(e[0], e[1]), end, 1e-9);
        out.push_back(std::round(std::atan2(e[0], e[1]) * ML::r2d * 1e6) / 1e6);
    }
    return out;
}

} // namespace

TEST(Grid, RingsAtTheMarkerStepHeldAtTheEndOfTheRange)
{
    CTgtImg img;
    CPing& p = *img.Ping();
    p.m_endRngM = 12.0f;
    p.m_aperture = 120.0f;
    CDsp dsp(0.05, 0.0, 0.0);
    ASSERT_EQ(Zan::NearestMkr(12.0 / 2), 5.0);
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    const auto rings = Rings();
    ASSERT_EQ(rings.size(), 3u);
    EXPECT_DOUBLE_EQ(rings[0].radius, 5.0);
    EXPECT_DOUBLE_EQ(rings[1].radius, 10.0);
    EXPECT_DOUBLE_EQ(rings[2].radius, 12.0);
    const double radii[3] = {5.0, 10.0, 12.0};
    for (int i = 0; i < 3; ++i) {
        const Ring& r = rings[static_cast<std::size_t>(i)];
        // From -60 degrees to exactly +60, a vertex a degree.
        EXPECT_EQ(r.vertices, 121u);
        EXPECT_NEAR(std::atan2(r.first[0], r.first[1]) * ML::r2d, -60.0, 1e-9);
        const double th = ML::pi_2 - std::fabs(120.0 * ML::d2r) * 0.5;
        EXPECT_EQ(r.last, V({std::cos(th) * radii[i], std::sin(th) * radii[i], 0.0}));
    }
    // Labels beside each ring, on the centre line, offset by three pixels.
    const auto pos = glrec::Calls("glRasterPos3d");
    ASSERT_EQ(pos.size(), 3u);
    const double d = 3.0 * 0.05;
    EXPECT_EQ(pos[0].a, V({d, 5.0 + d, 0.0}));
    EXPECT_EQ(pos[2].a, V({d, 12.0 + d, 0.0}));
    EXPECT_EQ(glrec::Count("glBitmap"), 1u + 2u + 2u);  // "5", "10", "12"
    // Ring colour, then label colour.
    const auto cols = glrec::Calls("glColor4ub");
    ASSERT_GE(cols.size(), 2u);
    EXPECT_EQ(cols[0].a, V({double(CDsp::s_grdCol & 0xFF), double((CDsp::s_grdCol >> 8) & 0xFF),
                            double((CDsp::s_grdCol >> 16) & 0xFF), 255}));
    EXPECT_EQ(cols[1].a, V({double(CDsp::s_fontCol & 0xFF), double((CDsp::s_fontCol >> 8) & 0xFF),
                            double((CDsp::s_fontCol >> 16) & 0xFF), 255}));

    // An end range of 10 stops at the ring of 10.
    p.m_endRngM = 10.0f;
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    const auto r10 = Rings();
    ASSERT_EQ(r10.size(), 2u);
    EXPECT_DOUBLE_EQ(r10[1].radius, 10.0);
}

TEST(Grid, RadiiAreRoundedToCentimetres)
{
    CTgtImg img;
    img.Ping()->m_endRngM = 12.3456f;
    CDsp dsp;
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    const auto rings = Rings();
    ASSERT_EQ(rings.size(), 3u);
    EXPECT_NEAR(rings[2].radius, 12.35, 1e-12);
}

TEST(Grid, SpokesEveryFifteenDegreesAcrossTheAperture)
{
    CTgtImg img;
    CPing& p = *img.Ping();
    p.m_endRngM = 12.0f;
    p.m_aperture = 120.0f;
    CDsp dsp;
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    // The loops step by adding: the right side repeats the edge, and the left
    // one may end a rounding error short of 0; the angles are these.
    const auto spokes = Spokes(12.0);
    EXPECT_EQ(std::set<double>(spokes.begin(), spokes.end()),
              (std::set<double> {-60, -45, -30, -15, 0, 15, 30, 45, 60}));

    // A negative aperture counts by its size.
    p.m_aperture = -120.0f;
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    const auto neg = Spokes(12.0);
    EXPECT_EQ(std::set<double>(neg.begin(), neg.end()), std::set<double>(spokes.begin(), spokes.end()));

    // 50 degrees: the right side ends at the edge, the left side starts there.
    p.m_aperture = 50.0f;
    glrec::Reset();
    img.DrawGrid(dsp, 2);
    const auto odd = Spokes(12.0);
    EXPECT_EQ(std::set<double>(odd.begin(), odd.end()), (std::set<double> {-25, -10, 0, 15, 25}));
}

TEST(Grid, LiesInTheSonarsFrame)
{
    CTgtImg img;
    img.m_tgtRec.m_frame = CMat(CV3(500.0, 700.0, 3.0), 0.5, 0.1, -0.2);
    CDsp dsp(1.0, 400.0, 600.0);
    glrec::Reset();
    img.DrawGrid(dsp, 3);
    const auto& log = glrec::Log();
    ASSERT_GE(log.size(), 5u);
    EXPECT_EQ(log[0].fn, "glPushMatrix");
    EXPECT_EQ(log[1].fn, "glTranslated");
    EXPECT_EQ(log[1].a, V({100.0, 100.0, -3.0}));
    EXPECT_EQ(log[2].a, V({0.5 * ML::r2d, 0, 0, -1}));
    EXPECT_EQ(log[3].a, V({0.1 * ML::r2d, 1, 0, 0}));
    EXPECT_EQ(log[4].a, V({-0.2 * ML::r2d, 0, 1, 0}));
    EXPECT_EQ(log.back().fn, "glPopMatrix");
    EXPECT_EQ(log[log.size() - 2].fn, "glEnd");
}
