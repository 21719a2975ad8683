// The off-screen context, the PNG writer, the drawing context and the colour
// tables on real Mesa: what reaches the pixels.
#include <zandata/ZanData.h>

#include <GL/gl.h>
#include <gtest/gtest.h>
#include <png.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

std::string TempPng(const char* tag)
{
    return (std::filesystem::temp_directory_path() /
            ("zan_render_" + std::string(tag) + "_" + std::to_string(::getpid()) + ".png"))
        .string();
}

bool ReadPng(const std::string& path, std::vector<CRgb>& px, int& w, int& h)
{
    png_image img;
    std::memset(&img, 0, sizeof img);
    img.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&img, path.c_str())) return false;
    img.format = PNG_FORMAT_RGBA;
    w = static_cast<int>(img.width);
    h = static_cast<int>(img.height);
    px.assign(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), CRgb());
    const bool ok = png_image_finish_read(&img, nullptr, px.data(), 0, nullptr) != 0;
    png_image_free(&img);
    return ok;
}

int Lit(COffscreenGL& gl, int x0, int y0, int x1, int y1)
{
    int n = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x) n += gl.Pixel(x, y).r > 128;
    return n;
}

} // namespace

TEST(COffscreenGL, RejectsBadSizesAndDrawsIntoItsBuffer)
{
    COffscreenGL bad(0, 10);
    EXPECT_FALSE(bad.IsValid());
    EXPECT_FALSE(bad.MakeCurrent());
    EXPECT_EQ(bad.Pixels(), nullptr);
    EXPECT_EQ(bad.Pixel(0, 0), CRgb(0, 0, 0, 0));

    COffscreenGL gl(64, 32);
    ASSERT_TRUE(gl.IsValid());
    EXPECT_EQ(gl.Width(), 64);
    EXPECT_EQ(gl.Height(), 32);
    gl.Clear(0.0f, 0.0f, 1.0f, 1.0f);
    gl.SetOrtho(0, 64, 0, 32);
    // A red square in the lower left quarter, drawn with the core's context.
    CDsp dsp;
    dsp.SetColour(0xFF);
    glBegin(GL_QUADS);
    dsp.VertexZ(CV3(0, 0, 0), 0);
    dsp.VertexZ(CV3(32, 0, 0), 0);
    dsp.VertexZ(CV3(32, 16, 0), 0);
    dsp.VertexZ(CV3(0, 16, 0), 0);
    glEnd();
    EXPECT_EQ(gl.Pixel(5, 5), CRgb(255, 0, 0, 255));
    EXPECT_EQ(gl.Pixel(40, 5), CRgb(0, 0, 255, 255));
    EXPECT_EQ(gl.Pixel(5, 20), CRgb(0, 0, 255, 255));
    EXPECT_EQ(gl.Pixel(-1, 0), CRgb(0, 0, 0, 0));
    EXPECT_EQ(gl.Pixel(64, 0), CRgb(0, 0, 0, 0));
    // Top-down order puts the bottom row last.
    const auto td = gl.TopDown();
    ASSERT_EQ(td.size(), 64u * 32u);
    EXPECT_EQ(td[31 * 64 + 5], CRgb(255, 0, 0, 255));
    EXPECT_EQ(td[0], CRgb(0, 0, 255, 255));
}

TEST(COffscreenGL, TwoContextsKeepTheirOwnPictures)
{
    COffscreenGL a(8, 8), b(8, 8);
    ASSERT_TRUE(a.IsValid() && b.IsValid());
    a.Clear(1, 0, 0, 1);
    b.Clear(0, 1, 0, 1);
    EXPECT_EQ(a.Pixel(3, 3), CRgb(255, 0, 0, 255));
    EXPECT_EQ(b.Pixel(3, 3), CRgb(0, 255, 0, 255));
}

TEST(CPngWriter, WritesWhatIsReadBackInBothRowOrders)
{
    const int w = 3, h = 2;
    const CRgb px[6] = {CRgb(1, 2, 3, 4), CRgb(5, 6, 7, 8), CRgb(9, 10, 11, 12),
                        CRgb(200, 201, 202, 203), CRgb(255, 0, 0, 255), CRgb(0, 0, 0, 0)};
    const std::string path = TempPng("rt");
    ASSERT_TRUE(CPngWriter::Write(CString::FromUtf8(path), px, w, h, false));
    std::vector<CRgb> back;
    int bw = 0, bh = 0;
    ASSERT_TRUE(ReadPng(path, back, bw, bh));
    ASSERT_EQ(bw, w);
    ASSERT_EQ(bh, h);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(back[static_cast<std::size_t>(i)], px[i]) << i;
    // Bottom-up: the first row in memory becomes the last row of the file.
    ASSERT_TRUE(CPngWriter::Write(CString::FromUtf8(path), px, w, h, true));
    ASSERT_TRUE(ReadPng(path, back, bw, bh));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(back[static_cast<std::size_t>(i)], px[i + 3]);
        EXPECT_EQ(back[static_cast<std::size_t>(i + 3)], px[i]);
    }
    std::remove(path.c_str());

    EXPECT_FALSE(CPngWriter::Write(CString::FromUtf8(path), nullptr, 1, 1));
    EXPECT_FALSE(CPngWriter::Write(CString::FromUtf8(path), px, 0, 1));
    EXPECT_FALSE(CPngWriter::Write(u"/nonexistent-dir/x.png", px, 1, 1));
}

TEST(CDsp, BitmapTextLightsPixelsRightOfTheRasterPoint)
{
    COffscreenGL gl(200, 40);
    ASSERT_TRUE(gl.IsValid());
    gl.Clear();
    gl.SetOrtho(0, 200, 0, 40);
    CDsp dsp;
    dsp.SetColour(0x0000FF);
    // Texturing on must not tint the text.
    glEnable(GL_TEXTURE_2D);
    CDsp::DrawBmpText(1000, CV3(10.0, 10.0, 0.0), u"%lg", 12.5);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    // "12.5": four cells of 12 x 16 from (10, 10).
    for (int c = 0; c < 4; ++c) EXPECT_GT(Lit(gl, 10 + 12 * c, 10, 22 + 12 * c, 26), 6) << "cell " << c;
    EXPECT_EQ(Lit(gl, 0, 0, 200, 10), 0);   // nothing below the point
    EXPECT_EQ(Lit(gl, 0, 26, 200, 40), 0);  // nor above the cell
    EXPECT_EQ(Lit(gl, 58, 0, 200, 40), 0);  // nor after the text
    EXPECT_EQ(Lit(gl, 0, 0, 10, 40), 0);    // nor before it
    // The '1' is a vertical bar: its middle column is lit all the way up.
    int bar = 0;
    for (int y = 12; y < 26; ++y) bar += gl.Pixel(10 + 5, y).r > 128;
    EXPECT_EQ(bar, 14);
    if (const char* dir = std::getenv("ZAN_RENDER_PNG_DIR")) {
        // The whole font, for the eye.
        COffscreenGL all(12 * 48 + 4, 40);
        all.Clear();
        all.SetOrtho(0, all.Width(), 0, all.Height());
        dsp.SetColour(0xFFFFFF);
        CDsp::DrawBmpTextStr(0, CV3(2, 22, 0), u" !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNO");
        CDsp::DrawBmpTextStr(0, CV3(2, 4, 0), u"PQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~");
        all.SavePng(CString::FromUtf8(std::string(dir) + "/font.png"));
    }
}

TEST(CDsp, RockIsAUnitCubeInItsContext)
{
    COffscreenGL gl(40, 40);
    ASSERT_TRUE(gl.IsValid());
    ASSERT_NE(CDsp::s_rock, 0u);
    EXPECT_TRUE(glIsList(CDsp::s_rock));
    gl.Clear();
    gl.SetOrtho(-2, 2, -2, 2);
    glColor4ub(0, 255, 0, 255);
    glScaled(2.0, 2.0, 2.0);
    glCallList(CDsp::s_rock);
    // Scaled by 2 the cube covers -1..1 of the -2..2 view: the middle half.
    EXPECT_EQ(gl.Pixel(20, 20), CRgb(0, 255, 0, 255));
    EXPECT_EQ(gl.Pixel(11, 20), CRgb(0, 255, 0, 255));
    EXPECT_EQ(gl.Pixel(8, 20), CRgb(0, 0, 0, 255));
    EXPECT_EQ(gl.Pixel(20, 31), CRgb(0, 0, 0, 255));
}

TEST(CColTbl, GreyAndViridisAreOpaqueRampsOf256)
{
    const CColTbl g = CColTbl::Grey();
    ASSERT_EQ(g.GetSize(), 256);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(g[i], CRgb(static_cast<BYTE>(i), static_cast<BYTE>(i), static_cast<BYTE>(i), 255));

    const CColTbl v = CColTbl::Viridis();
    ASSERT_EQ(v.GetSize(), 256);
    EXPECT_EQ(v[0], CRgb(68, 1, 84, 255));      // #440154
    EXPECT_EQ(v[64], CRgb(59, 82, 139, 255));   // #3b528b
    EXPECT_EQ(v[128], CRgb(33, 145, 140, 255)); // #21918c
    EXPECT_EQ(v[192], CRgb(94, 201, 98, 255));  // #5ec962
    EXPECT_EQ(v[255], CRgb(253, 231, 37, 255)); // #fde725
    // Perceptually ordered: the luma never falls along the table (beyond
    // rounding), and
    // neighbours differ by a few steps at most.
    double prev = -1.0;
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(v[i].a, 255);
        const double y = 0.2126 * v[i].r + 0.7152 * v[i].g + 0.0722 * v[i].b;
        EXPECT_GE(y, prev - 0.5) << i;  // byte rounding moves the luma by less
        prev = y;
        if (i) {
            EXPECT_LE(std::abs(v[i].r - v[i - 1].r), 3) << i;
            EXPECT_LE(std::abs(v[i].g - v[i - 1].g), 3) << i;
            EXPECT_LE(std::abs(v[i].b - v[i - 1].b), 3) << i;
        }
    }
}

TEST(CTgtImg, DestroyingADrawnImageDeletesItsTextureOnlyWithAContext)
{
    CColTbl grey = CColTbl::Grey();
    {
        COffscreenGL gl(16, 16);
        ASSERT_TRUE(gl.IsValid());
        CTgtImg img;
        img.Alloc(4, 4);
        img.CreateImg(grey, 0, 0, 0.0, 0.0, false);
        img.DrawFan(0.0, 0, 0.0f);
        const GLuint tex = img.m_nTexId;
        ASSERT_NE(tex, 0u);
        EXPECT_TRUE(glIsTexture(tex));
        // A second image, drawn and destroyed while the first lives.
        auto other = std::make_unique<CTgtImg>();
        other->Alloc(4, 4);
        other->CreateImg(grey, 0, 0, 0.0, 0.0, false);
        other->DrawFan(0.0, 0, 0.0f);
        const GLuint t2 = other->m_nTexId;
        ASSERT_NE(t2, tex);
        ASSERT_TRUE(glIsTexture(t2));
        other.reset();
        EXPECT_FALSE(glIsTexture(t2));
        EXPECT_TRUE(glIsTexture(tex));
    }
    // No context current any more: the image's texture name has nowhere to
    // go, and destroying it must simply not touch OpenGL.
    CTgtImg orphan;
    orphan.m_nTexId = 7;
}
