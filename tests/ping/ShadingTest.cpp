#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {
void ExpectTable(const CShadeCoeffs& c, const std::vector<double>& half)
{
    const int n = static_cast<int>(half.size()) * 2;
    ASSERT_EQ(c.m_n, n);
    for (int i = 0; i < n / 2; ++i) {
        EXPECT_NEAR(c.m_pCoeffs[i], half[static_cast<size_t>(i)], 0.5e-4) << i;
        EXPECT_NEAR(c.m_pCoeffs[n - 1 - i], half[static_cast<size_t>(i)], 0.5e-4) << n - 1 - i;
    }
}
} // namespace

TEST(Shading, SixteenPointsAtThirtyAndFortyDecibels)
{
    ExpectTable(CShadeCoeffs(4, 16), {0.291, 0.3173, 0.4557, 0.6018, 0.7424, 0.8637, 0.9528, 1.0});
    ExpectTable(CShadeCoeffs(6, 16), {0.1138, 0.1964, 0.3319, 0.4926, 0.6613, 0.8163, 0.9353, 1.0});
}

TEST(Shading, EndSpikesAreCutAtOne)
{
    // At -15 dB the window's ends rise above its inner points; they are cut.
    CShadeCoeffs c(1, 16);
    EXPECT_EQ(c.m_pCoeffs[0], 1.0);
    EXPECT_EQ(c.m_pCoeffs[15], 1.0);
    EXPECT_NEAR(c.m_pCoeffs[1], 0.6232, 0.5e-4);
    double lo = 0, hi = 0;
    c.MinMax(&lo, &hi, c.m_pCoeffs + 1, 14);
    EXPECT_NEAR(lo, 0.6232, 0.5e-4);
    EXPECT_EQ(hi, 1.0);
}

TEST(Shading, SymmetricWithUnitMiddleForEveryLevel)
{
    for (int level = 0; level < 7; ++level) {
        for (int n : {2, 3, 4, 7, 16, 33, 64}) {
            SCOPED_TRACE(testing::Message() << "level " << level << " n " << n);
            CShadeCoeffs c(level, n);
            for (int i = 0; i < n; ++i) EXPECT_NEAR(c.m_pCoeffs[i], c.m_pCoeffs[n - 1 - i], 1e-12);
            if (level == 0) continue;  // no taper at 0 dB (below)
            if (n % 2 == 0) {
                EXPECT_NEAR(c.m_pCoeffs[n / 2 - 1], 1.0, 1e-12);
                EXPECT_NEAR(c.m_pCoeffs[n / 2], 1.0, 1e-12);
            }
            for (int i = 0; i < n; ++i) EXPECT_LE(c.m_pCoeffs[i], 1.0 + 1e-12);
        }
    }
}

TEST(Shading, ZeroDecibelsIsNotATaper)
{
    CShadeCoeffs c(0, 8);
    bool negative = false;
    for (int i = 0; i < 8; ++i) negative = negative || c.m_pCoeffs[i] < 0.0;
    EXPECT_TRUE(negative);
}

TEST(Shading, OnePointAndEmptyWindows)
{
    for (int level = 0; level < 7; ++level) {
        CShadeCoeffs one(level, 1);
        ASSERT_NE(one.m_pCoeffs, nullptr);
        EXPECT_EQ(one.m_pCoeffs[0], 1.0) << level;
    }
    CShadeCoeffs none(3, 0);
    EXPECT_EQ(none.m_pCoeffs, nullptr);
    EXPECT_EQ(none.m_n, 0);
    CShadeCoeffs neg(3, -4);
    EXPECT_EQ(neg.m_pCoeffs, nullptr);

    CShadeCoeffs c(4, 16);
    c.Init(4, 0);
    EXPECT_EQ(c.m_pCoeffs, nullptr);
    EXPECT_EQ(c.m_n, 0);
    c.Init(6, 16);  // and it grows back
    EXPECT_NEAR(c.m_pCoeffs[0], 0.1138, 0.5e-4);
    c.Init(4, -1);
    EXPECT_EQ(c.m_pCoeffs, nullptr);

    CShadeCoeffs d;
    EXPECT_EQ(d.m_pCoeffs, nullptr);
    d.Init(4, 16);
    EXPECT_NEAR(d.m_pCoeffs[0], 0.291, 0.5e-4);
}

TEST(Shading, CopiesOwnTheirCoefficients)
{
    CShadeCoeffs a(4, 16);
    CShadeCoeffs b(a);
    EXPECT_NE(b.m_pCoeffs, a.m_pCoeffs);
    EXPECT_EQ(b.m_pCoeffs[3], a.m_pCoeffs[3]);
    CShadeCoeffs c(6, 4);
    c = a;
    EXPECT_EQ(c.m_n, 16);
    EXPECT_EQ(c.m_level, 4);
    EXPECT_EQ(c.m_pCoeffs[15], a.m_pCoeffs[15]);
    c = CShadeCoeffs(2, 0);
    EXPECT_EQ(c.m_pCoeffs, nullptr);
    EXPECT_EQ(c.m_n, 0);
}

TEST(Shading, Helpers)
{
    CShadeCoeffs c;
    double lo = 0, hi = 0;
    c.MinMax(&lo, &hi, nullptr, 0);
    EXPECT_EQ(lo, DBL_MAX);
    EXPECT_EQ(hi, -DBL_MAX);
    const double v[] = {3.0, -1.0, 7.5, 2.0};
    c.MinMax(&lo, &hi, v, 4);
    EXPECT_EQ(lo, -1.0);
    EXPECT_EQ(hi, 7.5);
    double m[] = {1.0, -2.0, 0.5};
    c.Mul(m, -2.0, 3);
    EXPECT_EQ(m[0], -2.0);
    EXPECT_EQ(m[1], 4.0);
    EXPECT_EQ(m[2], -1.0);

    EXPECT_DOUBLE_EQ(c.ChebyshevPolynom(3, 0.5), 4 * 0.125 - 3 * 0.5);  // T3 = 4x^3 - 3x
    EXPECT_DOUBLE_EQ(c.ChebyshevPolynom(3, 2.0), 4 * 8.0 - 3 * 2.0);
    EXPECT_DOUBLE_EQ(c.ChebyshevPolynom(4, 1.5), 8 * std::pow(1.5, 4) - 8 * 2.25 + 1);
    EXPECT_DOUBLE_EQ(c.ChebyshevPolynom(5, 1.0), 1.0);
}

// The window before the library's end scaling, against scipy's chebwin
// (a transform-based computation) in tests/data/shading/chebwin.txt.
TEST(Shading, WindowMatchesIndependentReference)
{
    std::ifstream in(std::string(ZAN_TEST_DATA) + "/shading/chebwin.txt");
    ASSERT_TRUE(in) << "missing reference windows";
    std::string line;
    int windows = 0;
    CShadeCoeffs c;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream ls(line);
        double at = 0;
        long n = 0;
        ls >> at >> n;
        std::vector<double> ref(static_cast<size_t>(n));
        for (double& v : ref) ls >> v;
        ASSERT_TRUE(ls) << line.substr(0, 40);
        std::vector<double> w(static_cast<size_t>(n));
        c.WinDolphChebyshev(w.data(), std::pow(10.0, -at / 20.0), n);
        for (long i = 0; i < n; ++i)
            EXPECT_NEAR(w[static_cast<size_t>(i)], ref[static_cast<size_t>(i)], 1e-11)
                << at << " dB, " << n << " points, index " << i;
        ++windows;
    }
    EXPECT_EQ(windows, 90);
}
