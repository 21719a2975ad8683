// The filter kernels against a plain step-by-step evaluation, byte for byte,
// and the named cases of each kernel.
#include <zandata/ZanData.h>

#include "tests/processing/FltReference.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Kernel = void (*)(CTgtImg*, CTgtImgFlt*, int, int);
constexpr Kernel kKernels[5] = {&CTgtImgFlt::Flt0, &CTgtImgFlt::Flt1, &CTgtImgFlt::Flt2, &CTgtImgFlt::Flt3,
                                &CTgtImgFlt::Flt4};

void SetPattern(CTgtImgFlt& f, const std::vector<double>& pat)
{
    f.SetPatSize(static_cast<int>(pat.size()));
    for (size_t i = 0; i < pat.size(); ++i) f.m_pPat[i] = pat[i];
}

fltref::Settings RefOf(const CTgtImgFlt& f)
{
    fltref::Settings s;
    s.pat = f.m_pPat;
    s.nPat = f.m_nPat;
    s.offset = f.m_offset;
    s.bias = f.m_bias;
    s.lowTgt = f.m_lowTgt;
    s.scale = f.m_scale;
    return s;
}

// An image of rows x cols whose source buffer holds `src`, plane cleared.
struct Bench {
    CTgtImg img;
    CTgtImgFlt flt;
    std::vector<BYTE> src;
    Bench(int rows, int cols, const std::vector<BYTE>& s) : src(s)
    {
        img.Alloc(static_cast<unsigned>(rows), static_cast<unsigned>(cols));
        std::memcpy(img.m_pImg, s.data(), s.size());
        flt.GenBuf(&img, 0);
        std::memset(img.m_pImg, 0, s.size());
    }
    std::vector<BYTE> Run(int id, int r0, int r1)
    {
        kKernels[id](&img, &flt, r0, r1);
        return std::vector<BYTE>(img.m_pImg, img.m_pImg + src.size());
    }
    std::vector<BYTE> Ref(int id, int r0, int r1) const
    {
        std::vector<BYTE> out(src.size(), 0);
        fltref::Kernel(id, RefOf(flt), src.data(), out.data(), static_cast<int>(img.m_nBrgs), r0, r1);
        return out;
    }
};

// A plane that looks like sonar: speckle, a few bright echoes spread across
// neighbouring bearings, and dark stretches that keep the gates busy.
std::vector<BYTE> SonarLike(std::mt19937& rng, int rows, int cols)
{
    std::vector<BYTE> v(static_cast<size_t>(rows) * cols);
    std::uniform_int_distribution<int> noise(0, 40), pick(0, 99), level(0, 255);
    for (int r = 0; r < rows; ++r) {
        const bool dark = pick(rng) < 15;
        for (int c = 0; c < cols; ++c) v[static_cast<size_t>(r) * cols + c] = static_cast<BYTE>(dark ? noise(rng) / 8 : noise(rng));
        for (int e = pick(rng) % 6; e > 0; --e) {
            const int c0 = pick(rng) * cols / 100, peak = level(rng);
            for (int d = -6; d <= 6; ++d) {
                const int c = c0 + d;
                if (c < 0 || c >= cols) continue;
                const int val = peak * (7 - std::abs(d)) / 7;
                BYTE& b = v[static_cast<size_t>(r) * cols + c];
                b = static_cast<BYTE>(std::max<int>(b, val));
            }
        }
    }
    return v;
}

std::vector<BYTE> Uniform(std::mt19937& rng, size_t n)
{
    std::uniform_int_distribution<int> d(0, 255);
    std::vector<BYTE> v(n);
    for (auto& b : v) b = static_cast<BYTE>(d(rng));
    return v;
}

std::vector<double> RandomPattern(std::mt19937& rng, int n)
{
    std::uniform_real_distribution<double> d(-0.1, 1.1);
    std::vector<double> p(static_cast<size_t>(n));
    for (auto& x : p) x = d(rng);
    return p;
}

int FirstDiff(const std::vector<BYTE>& a, const std::vector<BYTE>& b)
{
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) return static_cast<int>(i);
    return -1;
}

}  // namespace

TEST(FilterKernels, MatchThePlainStepsOnRandomImagesAndPatterns)
{
    std::mt19937 rng(20240601);
    std::uniform_int_distribution<int> dim(1, 40), patSize(0, 21);
    std::uniform_real_distribution<double> off(-0.2, 0.4), bias(-0.5, 0.95);
    for (int trial = 0; trial < 300; ++trial) {
        const int rows = dim(rng), cols = dim(rng);
        const auto src = trial % 2 ? Uniform(rng, static_cast<size_t>(rows) * cols) : SonarLike(rng, rows, cols);
        const int nPat = trial < 60 ? trial % 20 : patSize(rng);  // every small size, odd and even
        Bench b(rows, cols, src);
        SetPattern(b.flt, RandomPattern(rng, nPat));
        b.flt.m_offset = off(rng);
        b.flt.m_bias = bias(rng);
        for (int id = 1; id <= 4; ++id) {
            std::memset(b.img.m_pImg, 0, src.size());
            const auto got = b.Run(id, 0, rows), want = b.Ref(id, 0, rows);
            ASSERT_EQ(FirstDiff(got, want), -1) << "Flt" << id << " trial " << trial << " " << rows << "x" << cols
                                                << " nPat " << nPat << " offset " << b.flt.m_offset << " bias "
                                                << b.flt.m_bias;
        }
    }
}

TEST(FilterKernels, MatchThePlainStepsOnLargeImagesWhereTermsAreTabled)
{
    // Enough pixels per peak level for the kernels to table their terms; the
    // output must not change by a bit.
    std::mt19937 rng(7);
    for (int nPat : {16, 15, 2, 3, 64, 65}) {
        const int rows = 64, cols = 600;
        const auto src = nPat % 2 ? Uniform(rng, static_cast<size_t>(rows) * cols) : SonarLike(rng, rows, cols);
        Bench b(rows, cols, src);
        SetPattern(b.flt, RandomPattern(rng, nPat));
        b.flt.m_offset = 0.02;
        b.flt.m_bias = 0.3;
        for (int id = 1; id <= 4; ++id) {
            std::memset(b.img.m_pImg, 0, src.size());
            const auto got = b.Run(id, 0, rows), want = b.Ref(id, 0, rows);
            ASSERT_EQ(FirstDiff(got, want), -1) << "Flt" << id << " nPat " << nPat;
        }
    }
}

TEST(FilterKernels, WriteOnlyTheirRowsAndCutRowsToTheImage)
{
    std::mt19937 rng(3);
    const int rows = 12, cols = 30;
    Bench b(rows, cols, SonarLike(rng, rows, cols));
    SetPattern(b.flt, RandomPattern(rng, 8));
    b.flt.m_bias = 0.2;
    for (int id = 0; id <= 4; ++id) {
        std::memset(b.img.m_pImg, 0xEE, b.src.size());
        kKernels[id](&b.img, &b.flt, 4, 7);
        for (int r = 0; r < rows; ++r) {
            if (r >= 4 && r < 7) continue;
            for (int c = 0; c < cols; ++c) ASSERT_EQ(b.img.m_pImg[r * cols + c], 0xEE) << "Flt" << id << " row " << r;
        }
        // Rows past the image, or a reversed range, touch nothing and don't crash.
        std::memset(b.img.m_pImg, 0xEE, b.src.size());
        kKernels[id](&b.img, &b.flt, 10, 1000);
        kKernels[id](&b.img, &b.flt, -5, 2);
        kKernels[id](&b.img, &b.flt, 8, 3);
        for (int r = 2; r < 10; ++r) ASSERT_EQ(b.img.m_pImg[r * cols], 0xEE);
    }
}

TEST(FilterKernels, AllZeroSourceGivesZeroFromEveryKernel)
{
    const int rows = 5, cols = 20;
    Bench b(rows, cols, std::vector<BYTE>(rows * cols, 0));
    SetPattern(b.flt, {0.2, 0.5, 1.0, 0.5, 0.2, 0.1});
    b.flt.m_bias = 0.1;
    for (int id = 1; id <= 4; ++id) {
        std::memset(b.img.m_pImg, 0, b.src.size());
        const auto got = b.Run(id, 0, rows);
        EXPECT_EQ(FirstDiff(got, std::vector<BYTE>(got.size(), 0)), -1) << "Flt" << id;
    }
}

TEST(FilterKernels, GateOfTheLiftedPeakSitsAtExactly005)
{
    // One row: a single non-zero byte b. With offset o, M = b/255 + o. Choose
    // o so that M is exactly 0.05 (gated) and the next double above (not).
    const int cols = 9;
    std::vector<BYTE> row(cols, 0);
    row[4] = 10;
    const double s = 10 / 255.0;
    double o = 0.05 - s;
    while (s + o > 0.05) o = std::nextafter(o, -1.0);
    while (s + o < 0.05) o = std::nextafter(o, 1.0);
    ASSERT_EQ(s + o, 0.05);
    double oAbove = o;
    while (s + oAbove <= 0.05) oAbove = std::nextafter(oAbove, 1.0);
    ASSERT_GT(s + oAbove, 0.05);

    for (int id = 2; id <= 4; ++id) {
        Bench b(1, cols, row);
        SetPattern(b.flt, {1.0, 1.0});
        b.flt.m_bias = 0.0;
        b.flt.m_offset = o;
        // Gated: Flt2 and Flt4 leave the pixel, Flt3 writes 0.
        std::memset(b.img.m_pImg, 7, cols);
        auto gated = b.Run(id, 0, 1);
        EXPECT_EQ(gated[4], id == 3 ? 0 : 7) << "Flt" << id;
        EXPECT_EQ(gated[0], id == 3 ? 0 : 7) << "Flt" << id << ": the empty surroundings are gated too";
        // Just above: computed, and equal to the plain steps.
        b.flt.m_offset = oAbove;
        std::memset(b.img.m_pImg, 0, cols);
        EXPECT_EQ(FirstDiff(b.Run(id, 0, 1), b.Ref(id, 0, 1)), -1) << "Flt" << id;
    }
    // Flt3 at the gate's first open level: a source equal to the shape gives 255.
    Bench b(1, cols, row);
    SetPattern(b.flt, {1.0, 1.0});
    b.flt.m_bias = 0.0;
    b.flt.m_offset = oAbove;
    std::memset(b.img.m_pImg, 0, cols);
    EXPECT_GT(b.Run(3, 0, 1)[4], 0);
}

TEST(FilterKernels, OffsetOfOneOrMoreLiftsEveryPeakToFullLevel)
{
    std::mt19937 rng(11);
    const int rows = 4, cols = 25;
    Bench b(rows, cols, SonarLike(rng, rows, cols));
    SetPattern(b.flt, RandomPattern(rng, 6));
    b.flt.m_bias = 0.25;
    for (double off : {1.0, 3.0}) {
        b.flt.m_offset = off;
        for (int id = 2; id <= 4; ++id) {
            std::memset(b.img.m_pImg, 0, b.src.size());
            EXPECT_EQ(FirstDiff(b.Run(id, 0, rows), b.Ref(id, 0, rows)), -1) << "Flt" << id;
        }
    }
    // Flt2 with M = 1 and a row that is the pattern itself: R = T', so the
    // pixel is trunc(255 * M) = 255.
    std::vector<BYTE> row = {0, 0, 51, 255, 255, 51, 0, 0};  // pattern 0.2, 1, 1, 0.2 scaled to bytes
    Bench e(1, 8, row);
    SetPattern(e.flt, {51 / 255.0, 1.0, 1.0, 51 / 255.0});
    e.flt.m_offset = 0.0;
    e.flt.m_bias = 0.5;
    std::memset(e.img.m_pImg, 0, 8);
    EXPECT_EQ(e.Run(2, 0, 1)[4], 255);
}

TEST(FilterKernels, BiasOfOneZeroesFlt2To4ButNotFlt1)
{
    std::mt19937 rng(5);
    const int rows = 6, cols = 30;
    Bench b(rows, cols, SonarLike(rng, rows, cols));
    SetPattern(b.flt, RandomPattern(rng, 8));
    b.flt.m_bias = 1.0;  // the default
    for (int id = 2; id <= 4; ++id) {
        std::memset(b.img.m_pImg, 0, b.src.size());
        const auto got = b.Run(id, 0, rows);
        EXPECT_EQ(FirstDiff(got, std::vector<BYTE>(got.size(), 0)), -1) << "Flt" << id;
    }
    std::memset(b.img.m_pImg, 0, b.src.size());
    const auto f1 = b.Run(1, 0, rows);
    EXPECT_NE(FirstDiff(f1, std::vector<BYTE>(f1.size(), 0)), -1) << "Flt1 ignores the bias";
    EXPECT_EQ(FirstDiff(f1, b.Ref(1, 0, rows)), -1);
}

TEST(FilterKernels, PatternOfZeroOrOneEntries)
{
    std::mt19937 rng(9);
    const int rows = 3, cols = 16;
    Bench b(rows, cols, SonarLike(rng, rows, cols));
    b.flt.m_bias = 0.0;
    b.flt.m_offset = 0.1;
    for (int nPat : {0, 1}) {
        SetPattern(b.flt, std::vector<double>(static_cast<size_t>(nPat), 0.8));
        for (int id : {1, 3, 4}) {  // h = 0: empty window, every pixel 0
            std::memset(b.img.m_pImg, 9, b.src.size());
            const auto got = b.Run(id, 0, rows);
            if (id == 4) {
                // Flt4 writes 0 where T' = 0 and leaves gated pixels: with an
                // empty window M = 0.1 > 0.05, so every pixel is written 0.
                EXPECT_EQ(FirstDiff(got, std::vector<BYTE>(got.size(), 0)), -1) << "nPat " << nPat;
            } else {
                EXPECT_EQ(FirstDiff(got, std::vector<BYTE>(got.size(), 0)), -1) << "Flt" << id << " nPat " << nPat;
            }
        }
    }
    // Flt2 with one entry has h = 1: a two-column window x-1, x holding p[0]
    // and the extra position p[1] = 0.0.
    SetPattern(b.flt, {0.8});
    std::memset(b.img.m_pImg, 0, b.src.size());
    const auto got = b.Run(2, 0, rows);
    EXPECT_EQ(FirstDiff(got, b.Ref(2, 0, rows)), -1);
    EXPECT_NE(FirstDiff(got, std::vector<BYTE>(got.size(), 0)), -1);
}

TEST(FilterKernels, WindowsAtTheRowEndsAreClippedWithoutShiftingThePattern)
{
    // Flt3, bias 0: pixel = trunc(C / T * 255) with T the sum of the whole
    // table for an unclipped window and of the kept entries at the edges.
    // Pattern 1, 2, 4, 8 (h = 2): at x = 0 the window is columns 0, 1 with
    // entries 2 and 3; at x = w - 1 columns w - 3 .. w - 1 with entries 0, 1, 2.
    const int cols = 7;
    std::vector<BYTE> row(cols, 255);
    Bench b(1, cols, row);
    SetPattern(b.flt, {1.0, 2.0, 4.0, 8.0});
    b.flt.m_bias = 0.0;
    std::memset(b.img.m_pImg, 0, cols);
    const auto got = b.Run(3, 0, 1);
    // s/M = 1 everywhere: C = number of entries >= 1 = window size, T = the entries' sum.
    EXPECT_EQ(got[0], static_cast<BYTE>(2.0 / 12.0 * 255.0));        // entries 4, 8
    EXPECT_EQ(got[1], static_cast<BYTE>(3.0 / 14.0 * 255.0));        // entries 2, 4, 8
    EXPECT_EQ(got[3], static_cast<BYTE>(4.0 / 15.0 * 255.0));        // all four
    EXPECT_EQ(got[cols - 1], static_cast<BYTE>(3.0 / 7.0 * 255.0));  // entries 1, 2, 4
    EXPECT_EQ(FirstDiff(got, b.Ref(3, 0, 1)), -1);

    // Flt4 counts its halves from the window's first column: at x = 0 both
    // samples fall in D1 (h = 2), so D2 = 0 and D = 0.
    Bench c(1, cols, std::vector<BYTE>{255, 0, 0, 0, 0, 0, 0});
    SetPattern(c.flt, {1.0, 1.0, 1.0, 1.0});
    c.flt.m_bias = 0.0;
    std::memset(c.img.m_pImg, 0, cols);
    const auto g4 = c.Run(4, 0, 1);
    EXPECT_EQ(g4[0], 255);  // y = sqrt(1) * T / T = 1
    EXPECT_EQ(FirstDiff(g4, c.Ref(4, 0, 1)), -1);
}

TEST(FilterKernels, Flt4AddsToWhatStandsInThePixel)
{
    std::mt19937 rng(13);
    const int rows = 3, cols = 20;
    Bench b(rows, cols, SonarLike(rng, rows, cols));
    SetPattern(b.flt, RandomPattern(rng, 6));
    b.flt.m_bias = 0.1;
    std::vector<BYTE> start(b.src.size());
    for (size_t i = 0; i < start.size(); ++i) start[i] = static_cast<BYTE>(i * 37);
    std::memcpy(b.img.m_pImg, start.data(), start.size());
    const auto got = b.Run(4, 0, rows);
    std::vector<BYTE> want = start;
    fltref::Kernel(4, RefOf(b.flt), b.src.data(), want.data(), cols, 0, rows);
    EXPECT_EQ(FirstDiff(got, want), -1);
}

TEST(FilterKernels, FinalMapping)
{
    std::vector<BYTE> all(256);
    for (int i = 0; i < 256; ++i) all[i] = static_cast<BYTE>(i);
    struct Case {
        int lowTgt;
        double scale;
    };
    for (Case c : {Case{0, 1.0}, Case{1, 0.5}, Case{2, 1.0}, Case{1, 2.0}, Case{0, 3.7}, Case{2, 0.25}, Case{5, 1.5},
                   Case{1, -1.0}}) {
        CTgtImg img;
        img.Alloc(1, 256);
        std::memcpy(img.m_pImg, all.data(), 256);
        CTgtImgFlt f;
        f.m_lowTgt = c.lowTgt;
        f.m_scale = c.scale;
        CTgtImgFlt::Flt0(&img, &f, 0, 1);
        std::vector<BYTE> want = all;
        fltref::Settings s;
        s.lowTgt = c.lowTgt;
        s.scale = c.scale;
        fltref::Final(s, want.data(), 256);
        EXPECT_EQ(FirstDiff(std::vector<BYTE>(img.m_pImg, img.m_pImg + 256), want), -1)
            << c.lowTgt << " " << c.scale;
        if (c.lowTgt == 1 && c.scale == 0.5) {
            EXPECT_EQ(img.m_pImg[255], 127);  // halves, truncating
            EXPECT_EQ(img.m_pImg[3], 1);
        }
    }
}
