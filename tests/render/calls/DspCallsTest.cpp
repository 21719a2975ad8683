// CDsp through the recording layer: what each call sends to OpenGL.
#include "GlRec.h"

#include <zandata/ZanData.h>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

namespace {

std::vector<double> Args(const glrec::Call& c) { return c.a; }

} // namespace

TEST(GlRecLayer, ReceivesTheLibrarysCalls)
{
    glrec::Reset();
    CDsp dsp;
    dsp.SetColour(0x00FF8040);
    ASSERT_EQ(glrec::Count("glColor4ub"), 1u) << "the library's gl calls don't reach the recorder";
    EXPECT_EQ(Args(glrec::Calls("glColor4ub")[0]), (std::vector<double> {0x40, 0x80, 0xFF, 255}));
}

#ifdef ZAN_SHARED_LIB
// Every gl function that the library imports must be one that the layer
// defines, or a call would slip past the log into Mesa.
TEST(GlRecLayer, DefinesEveryGlFunctionTheLibraryImports)
{
    const std::string cmd = std::string("nm -D --undefined-only '") + ZAN_SHARED_LIB + "'";
    FILE* p = popen(cmd.c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::set<std::string> imported;
    char line[512];
    while (std::fgets(line, sizeof line, p)) {
        std::string s(line);
        const auto pos = s.find_last_of(' ');
        std::string name = s.substr(pos + 1);
        while (!name.empty() && (name.back() == '\n' || name.back() == '\r')) name.pop_back();
        if (name.size() > 2 && name[0] == 'g' && name[1] == 'l' && std::isupper(static_cast<unsigned char>(name[2])))
            imported.insert(name);
    }
    pclose(p);
    ASSERT_FALSE(imported.empty());
    const std::set<std::string> defined(glrec::Defined().begin(), glrec::Defined().end());
    for (const auto& n : imported) EXPECT_TRUE(defined.count(n)) << n << " is not recorded";
}
#endif

TEST(CDsp, PositionsAreSentRelativeToTheDisplayOrigin)
{
    glrec::Reset();
    CDsp dsp(0.25, 1000.0, -500.0);
    dsp.Translate(1001.5, -498.0, 3.0);
    dsp.Vertex(CV3(1010.0, -510.0, -7.0), 0);
    dsp.VertexZ(CV3(1000.0, -500.0, 99.0), -4.5);
    const auto& log = glrec::Log();
    ASSERT_EQ(log.size(), 3u);
    EXPECT_EQ(log[0].fn, "glTranslated");
    EXPECT_EQ(log[0].a, (std::vector<double> {1.5, 2.0, 3.0}));
    EXPECT_EQ(log[1].fn, "glVertex3d");
    EXPECT_EQ(log[1].a, (std::vector<double> {10.0, -10.0, -7.0}));
    EXPECT_EQ(log[2].fn, "glVertex3d");
    EXPECT_EQ(log[2].a, (std::vector<double> {0.0, 0.0, -4.5}));
}

TEST(CDsp, ColoursAreRedInTheLowByteAndOpaque)
{
    glrec::Reset();
    CDsp dsp;
    dsp.SetColour(0xFF);         // red
    dsp.SetColour(0xFF00);       // green
    dsp.SetColour(0xFFFF00);     // cyan
    dsp.SetColour(0xAB123456);   // top byte ignored
    const auto c = glrec::Calls("glColor4ub");
    ASSERT_EQ(c.size(), 4u);
    EXPECT_EQ(c[0].a, (std::vector<double> {255, 0, 0, 255}));
    EXPECT_EQ(c[1].a, (std::vector<double> {0, 255, 0, 255}));
    EXPECT_EQ(c[2].a, (std::vector<double> {0, 255, 255, 255}));
    EXPECT_EQ(c[3].a, (std::vector<double> {0x56, 0x34, 0x12, 255}));
}

TEST(CDsp, TextIsOneBitmapPerCharacterAtTheRasterPointWithTexturingOff)
{
    glrec::Reset();
    CDsp::DrawBmpText(1000, CV3(0.75, 12.75, 0.0), u"%lg", 12.0);
    const auto names = glrec::Names();
    ASSERT_GE(names.size(), 4u);
    EXPECT_EQ(names.front(), "glPushAttrib");
    EXPECT_EQ(names.back(), "glPopAttrib");
    const auto pos = glrec::Calls("glRasterPos3d");
    ASSERT_EQ(pos.size(), 1u);
    EXPECT_EQ(pos[0].a, (std::vector<double> {0.75, 12.75, 0.0}));
    const auto bm = glrec::Calls("glBitmap");
    ASSERT_EQ(bm.size(), 2u);  // "12"
    EXPECT_EQ(bm[0].a, (std::vector<double> {CDsp::s_fontCellW, CDsp::s_fontCellH, 0, 0, CDsp::s_fontCellW, 0}));
    EXPECT_NE(bm[0].p, bm[1].p);  // two different glyphs
    bool texOff = false;
    for (const auto& c : glrec::Calls("glDisable")) texOff |= c.a[0] == GL_TEXTURE_2D;
    EXPECT_TRUE(texOff);
    bool align1 = false;
    for (const auto& c : glrec::Calls("glPixelStorei")) align1 |= c.a[0] == GL_UNPACK_ALIGNMENT && c.a[1] == 1;
    EXPECT_TRUE(align1);

    // Characters outside printable ASCII draw as '?'.
    glrec::Reset();
    CDsp::DrawBmpTextStr(0, CV3(), CString(u"?\u00B0"));
    const auto q = glrec::Calls("glBitmap");
    ASSERT_EQ(q.size(), 2u);
    EXPECT_EQ(q[0].p, q[1].p);
}

TEST(CDsp, RockIsOneListOfACubeBuiltOnce)
{
    glrec::Reset();
    CDsp::s_rock = 0;
    const unsigned int list = CDsp::BuildRock();
    EXPECT_EQ(list, 1u);
    EXPECT_EQ(CDsp::s_rock, 1u);
    EXPECT_EQ(glrec::Count("glGenLists"), 1u);
    ASSERT_EQ(glrec::Count("glNewList"), 1u);
    EXPECT_EQ(glrec::Calls("glNewList")[0].a, (std::vector<double> {1, GL_COMPILE}));
    const auto v = glrec::Calls("glVertex3dv");
    ASSERT_EQ(v.size(), 24u);
    for (const auto& c : v)
        for (double x : c.a) EXPECT_EQ(std::abs(x), 0.5);
    EXPECT_EQ(glrec::Count("glNormal3dv"), 6u);
    EXPECT_EQ(glrec::Count("glEndList"), 1u);
    EXPECT_EQ(CDsp::BuildRock(), 1u);
    EXPECT_EQ(glrec::Count("glGenLists"), 1u);
    CDsp::FreeRock();
    EXPECT_EQ(CDsp::s_rock, 0u);
    ASSERT_EQ(glrec::Count("glDeleteLists"), 1u);
    EXPECT_EQ(glrec::Calls("glDeleteLists")[0].a, (std::vector<double> {1, 1}));
}
