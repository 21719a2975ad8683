// Whole-image arithmetic: hand-computed small images, the named cases, and the
// fast paths against a plain evaluation.
#include <zandata/ZanData.h>

#include "processing/ImgMath.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// A 16-bit plane of rows x cols samples in m_pQI.
void Fill16(CTgtImg& img, unsigned rows, unsigned cols, const std::vector<unsigned>& v)
{
    img.AllocQI(rows, cols * 2);
    ASSERT_EQ(v.size(), static_cast<size_t>(rows) * cols);
    for (size_t i = 0; i < v.size(); ++i) {
        img.m_pQI[2 * i] = static_cast<BYTE>(v[i]);
        img.m_pQI[2 * i + 1] = static_cast<BYTE>(v[i] >> 8);
    }
}

std::vector<unsigned> Words(const CTgtImg& img)
{
    std::vector<unsigned> out(img.m_nQIBytes / 2);
    for (size_t i = 0; i < out.size(); ++i) out[i] = img.m_pQI[2 * i] | (img.m_pQI[2 * i + 1] << 8);
    return out;
}

std::vector<unsigned> Bytes(const CTgtImg& img)
{
    return std::vector<unsigned>(img.m_pImg, img.m_pImg + static_cast<size_t>(img.m_nRngs) * img.m_nBrgs);
}

void Fill8(CTgtImg& img, unsigned rows, unsigned cols, const std::vector<unsigned>& v)
{
    img.Alloc(rows, cols);
    for (size_t i = 0; i < v.size(); ++i) img.m_pImg[i] = static_cast<BYTE>(v[i]);
}

class Reports {
public:
    Reports()
    {
        m_old = Zan::SetSink([this](Zan::Kind kind, unsigned long id, int level, const CString& text) {
            if (kind == Zan::Kind::Status) m_lines.push_back(std::to_string(id) + "/" + std::to_string(level) + " " + text.Utf8());
        });
    }
    ~Reports() { Zan::SetSink(m_old); }
    std::vector<std::string> m_lines;

private:
    Zan::Sink m_old;
};

BYTE Trunc8(double v) { return static_cast<BYTE>(static_cast<long long>(v)); }

// Normalise8 as its steps read, for comparison with the library's.
std::vector<unsigned> PlainNormalise8(const std::vector<unsigned>& s, size_t rows, size_t cols, short gain, bool spread,
                                      bool useCols)
{
    const std::uint32_t g = static_cast<std::uint32_t>(static_cast<std::int32_t>(gain));
    std::vector<std::uint32_t> rowMax(rows, 255), rowRaw(rows, 255), colMax(cols, 255);
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c) {
            const std::uint32_t v = static_cast<std::uint32_t>(s[r * cols + c] * g) / 255u;
            rowRaw[r] = std::max(rowRaw[r], v);
            rowMax[r] = std::max(rowMax[r], v);
        }
    if (spread)
        for (size_t r = 0; r < rows; ++r) {
            if (r >= 3) rowMax[r] = std::max(rowMax[r], rowRaw[r - 3]);
            if (r + 3 < rows) rowMax[r] = std::max(rowMax[r], rowRaw[r + 3]);
        }
    if (useCols && rows > 50)
        for (size_t r = 50; r < rows; ++r)
            for (size_t c = 0; c < cols; ++c)
                colMax[c] = std::max(colMax[c], static_cast<std::uint32_t>(s[r * cols + c] * g) / 255u);
    std::vector<unsigned> out(rows * cols);
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < cols; ++c) {
            const double den = std::max(rowMax[r], colMax[c]);
            out[r * cols + c] = Trunc8(s[r * cols + c] * (static_cast<double>(g) / 255.0) * 255.0 / den);
        }
    return out;
}

}  // namespace

TEST(Normalise8, DividesByTheLineMaximumWithAFloorOf255)
{
    CTgtImg img;
    img.Ping()->m_bfGain = 255;  // the compared value is the sample itself
    img.Ping()->m_nrmSpread = 0;
    Fill16(img, 2, 2, {100, 510, 10, 20});
    img.Normalise8(0);
    EXPECT_EQ(img.m_nBrgs, 2u);
    // Row 0: den 510, 100 * 255 / 510 = 50 and 255; row 1: floor 255 -> the samples.
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{50, 255, 10, 20}));
    EXPECT_EQ(Words(img), (std::vector<unsigned>{100, 510, 10, 20})) << "the raw plane stays";
}

TEST(Normalise8, RowSpreadReachesThreeLinesAndDoesNotRunOn)
{
    CTgtImg img;
    img.Ping()->m_bfGain = 255;
    img.Ping()->m_nrmSpread = 1;
    // Eight rows of one sample; a strong line at row 3 (1020).
    Fill16(img, 8, 1, {100, 100, 100, 1020, 100, 100, 100, 100});
    img.Normalise8(0);
    // Row 0 and row 6 see row 3 (r - 3 / r + 3): den 1020 -> 100 * 255 / 1020 = 25.
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{25, 100, 100, 255, 100, 100, 25, 100}));
}

TEST(Normalise8, ColumnMaximaComeFromRowFiftyOnAndNeedMoreThanFiftyRows)
{
    const short g = 255;
    // 51 rows of two columns: column 1 strong (1020) in row 50 only, column 0
    // strong in row 0 only (outside the scan).
    std::vector<unsigned> s(51 * 2, 100);
    s[0] = 1020;
    s[50 * 2 + 1] = 1020;
    CTgtImg img;
    img.Ping()->m_bfGain = g;
    img.Ping()->m_nrmSpread = 0;
    Fill16(img, 51, 2, s);
    img.Normalise8(1);
    const auto out = Bytes(img);
    EXPECT_EQ(out[1 * 2 + 0], 100u);  // column 0 has no column maximum above the floor
    EXPECT_EQ(out[1 * 2 + 1], 25u);   // column 1 is divided by 1020 everywhere
    EXPECT_EQ(out[0], 255u);
    EXPECT_EQ(out, PlainNormalise8(s, 51, 2, g, false, true));

    // Fifty rows: no column maximum at all.
    std::vector<unsigned> s50(s.begin(), s.begin() + 100);
    s50[49 * 2 + 1] = 1020;
    CTgtImg img50;
    img50.Ping()->m_bfGain = g;
    img50.Ping()->m_nrmSpread = 0;
    Fill16(img50, 50, 2, s50);
    img50.Normalise8(1);
    EXPECT_EQ(Bytes(img50)[3], 100u);  // row 1, column 1
}

TEST(Normalise8, AllZeroGivesZero)
{
    CTgtImg img;
    img.Ping()->m_bfGain = 1000;
    Fill16(img, 60, 5, std::vector<unsigned>(300, 0));
    img.Normalise8(1);
    EXPECT_EQ(Bytes(img), std::vector<unsigned>(300, 0));
}

// Runs a check under every instruction set this processor has (plain C++,
// AVX2, AVX-512), so that each form is held to the same bytes.
template <class F>
void AtEveryLevel(F f)
{
    for (int level = imgmath::kPlain; level <= imgmath::BestLevel(); ++level) {
        imgmath::ForceLevel(level);
        SCOPED_TRACE("level " + std::to_string(level));
        f();
    }
    imgmath::ForceLevel(-1);
}

TEST(Normalise8, MatchesThePlainStepsOnRandomPlanes)
{
    AtEveryLevel([] {
    std::mt19937 rng(17);
    std::uniform_int_distribution<int> dim(1, 90), word(0, 65535), small(0, 700), pick(0, 3);
    const short gains[] = {0, 1, 2, 7, 255, 256, 1000, 32767, -1, -300, -32768};
    for (int trial = 0; trial < 200; ++trial) {
        const size_t rows = static_cast<size_t>(dim(rng)), cols = static_cast<size_t>(dim(rng));
        std::vector<unsigned> s(rows * cols);
        for (auto& v : s) v = static_cast<unsigned>(pick(rng) == 0 ? 0 : (trial % 2 ? word(rng) : small(rng)));
        const short g = gains[trial % std::size(gains)];
        const bool spread = trial % 3 == 0, cols_ = trial % 4 < 2;
        CTgtImg img;
        img.Ping()->m_bfGain = g;
        img.Ping()->m_nrmSpread = spread ? 1 : 0;
        Fill16(img, static_cast<unsigned>(rows), static_cast<unsigned>(cols), s);
        img.Normalise8(cols_ ? 1 : 0);
        ASSERT_EQ(Bytes(img), PlainNormalise8(s, rows, cols, g, spread, cols_))
            << "trial " << trial << " " << rows << "x" << cols << " g " << g;
    }
    });
}

TEST(Normalise8, WholeQuotientsOnWideLines)
{
    // Gains that make s * g / den whole for many samples (den at its floor of
    // 255, or a line maximum that divides), on lines wide enough for every
    // vector step: the estimate is near a whole number and the exact double
    // decides.
    AtEveryLevel([] {
        for (short g : {255, 510, 300, 17, 1}) {
            const size_t rows = 60, cols = 200;
            std::vector<unsigned> s(rows * cols);
            for (size_t i = 0; i < s.size(); ++i) s[i] = static_cast<unsigned>((i * 37) % (i % 3 ? 256 : 65536));
            for (bool useCols : {false, true}) {
                CTgtImg img;
                img.Ping()->m_bfGain = g;
                img.Ping()->m_nrmSpread = useCols ? 1 : 0;
                Fill16(img, static_cast<unsigned>(rows), static_cast<unsigned>(cols), s);
                img.Normalise8(useCols ? 1 : 0);
                ASSERT_EQ(Bytes(img), PlainNormalise8(s, rows, cols, g, useCols, useCols)) << "g " << g;
            }
        }
    });
}

TEST(Normalise8, ColumnsStrongerAndWeakerThanTheirLines)
{
    // Column maxima that beat some lines and not others, with divisors that
    // share a reciprocal and quotients that come out whole: every line mixes
    // its own divisor with its columns'.
    AtEveryLevel([] {
        std::mt19937 rng(5);
        for (short g : {255, 256, 1, 40, 1020, 32767}) {
            const size_t rows = 120, cols = 160;
            std::vector<unsigned> s(rows * cols);
            for (size_t r = 0; r < rows; ++r)
                for (size_t c = 0; c < cols; ++c) {
                    const unsigned colTop = 200 + static_cast<unsigned>(c % 7) * 9000;   // strong columns
                    const unsigned rowTop = 300 + static_cast<unsigned>(r % 5) * 12000;  // strong lines
                    const unsigned top = std::min(colTop, rowTop) + static_cast<unsigned>(rng() % 2);
                    s[r * cols + c] = (rng() % 4 == 0) ? top : static_cast<unsigned>(rng() % (top + 1));
                }
            for (bool spread : {false, true}) {
                CTgtImg img;
                img.Ping()->m_bfGain = g;
                img.Ping()->m_nrmSpread = spread ? 1 : 0;
                Fill16(img, static_cast<unsigned>(rows), static_cast<unsigned>(cols), s);
                img.Normalise8(1);
                ASSERT_EQ(Bytes(img), PlainNormalise8(s, rows, cols, g, spread, true)) << "g " << g;
            }
        }
    });
}

TEST(Normalise8, EveryWordOfALine)
{
    // One line holding every sample value up to its maximum, for gains and
    // maxima that put the divisor on both sides of the limits the fast forms
    // work within.
    const std::pair<short, unsigned> cases[] = {{1, 65535}, {3, 65535}, {254, 65535}, {255, 65535},
                                                {256, 65535}, {4000, 65535}, {255, 300}, {7, 255}};
    for (auto [g, mx] : cases) {
        std::vector<unsigned> s(65536);
        for (unsigned v = 0; v < 65536; ++v) s[v] = std::min(v, mx);
        const auto want = PlainNormalise8(s, 1, 65536, g, false, false);
        AtEveryLevel([&, g = g, mx = mx] {
            CTgtImg img;
            img.Ping()->m_bfGain = g;
            img.Ping()->m_nrmSpread = 0;
            Fill16(img, 1, 65536, s);
            img.Normalise8(0);
            ASSERT_EQ(Bytes(img), want) << "g " << g << " max " << mx;
        });
    }
}

TEST(Normalise8, SamplesWhoseMiddleProductsSumToAllOnes)
{
    // The 16-bit lane form multiplies s by M = ceil(g 2^32 / den) in 16-bit
    // pieces. Where the low half of s * (M >> 16) and the high half of
    // s * (M & 0xFFFF) add up to exactly 0xFFFF, its cheap carry is one too
    // many: such samples must be put right. They are rare (one sample in a
    // line maximum's worth, for a few maxima), so the test looks for them:
    // lines of the maximum and then only such samples.
    int lines = 0;
    for (short g : {255, 300, 510}) {
        int found = 0;
        for (unsigned mx = 65535; mx >= 1000 && found < 3; --mx) {
            const std::uint32_t den = mx * static_cast<unsigned>(g) / 255;
            if (static_cast<std::uint64_t>(mx) * den > (1ull << 32)) continue;
            const std::uint64_t M = ((static_cast<std::uint64_t>(g) << 32) + den - 1) / den;
            std::vector<unsigned> edge;
            for (unsigned s = 1; s <= mx; ++s) {
                const unsigned loA = (s * static_cast<unsigned>(M >> 16)) & 0xFFFF;
                const unsigned hiB = (s * static_cast<unsigned>(M & 0xFFFF)) >> 16;
                if (loA + hiB == 0xFFFF) edge.push_back(s);
            }
            if (edge.empty()) continue;
            ++found;
            std::vector<unsigned> s {mx};
            while (s.size() < 96) s.insert(s.end(), edge.begin(), edge.end());
            const auto want = PlainNormalise8(s, 1, s.size(), g, false, false);
            AtEveryLevel([&] {
                CTgtImg img;
                img.Ping()->m_bfGain = g;
                img.Ping()->m_nrmSpread = 0;
                Fill16(img, 1, static_cast<unsigned>(s.size()), s);
                img.Normalise8(0);
                ASSERT_EQ(Bytes(img), want) << "g " << g << " max " << mx << ", sample " << edge[0];
            });
        }
        lines += found;
    }
    EXPECT_EQ(lines, 9);
}

TEST(Normalise16, WeakImagesAreNotStretchedAndStrongLinesArePulledDown)
{
    CTgtImg img;
    img.Ping()->m_bfGain = 1;
    img.Ping()->m_nrmSpread = 0;
    img.m_nBrgs = 3;
    Fill16(img, 2, 3, {0, 1000, 65535, 7, 8, 9});
    img.m_nBrgs = 3;
    img.Normalise16(0);
    EXPECT_EQ(Words(img), (std::vector<unsigned>{0, 1000, 65535, 7, 8, 9}));

    CTgtImg strong;
    strong.Ping()->m_bfGain = 2;
    strong.Ping()->m_nrmSpread = 1;
    Fill16(strong, 3, 2, {40000, 100, 10, 20, 5, 6});
    strong.m_nBrgs = 2;
    strong.Normalise16(0);
    // Row 0: den 80000 -> s * 2 * 65535 / 80000; row 1 takes row 0's maximum
    // by the spread; row 2 takes row 1's raw maximum (40 -> floor 65535).
    auto q = [](double s, double den) { return static_cast<unsigned>(s * 2.0 * 65535.0 / den); };
    EXPECT_EQ(Words(strong), (std::vector<unsigned>{q(40000, 80000), q(100, 80000), q(10, 80000), q(20, 80000), 10, 12}));
}

TEST(Normalise16, ColumnsNeedMoreThanFiftyRowsAndScanTheFirstRowsOnly)
{
    // 52 rows, one column strong in row 1 (inside rows 0..1) and row 51 (outside).
    std::vector<unsigned> s(52 * 2, 10);
    s[1 * 2 + 0] = 30000;
    s[51 * 2 + 1] = 30000;
    CTgtImg img;
    img.Ping()->m_bfGain = 4;
    img.Ping()->m_nrmSpread = 0;
    Fill16(img, 52, 2, s);
    img.m_nBrgs = 2;
    img.Normalise16(1);
    const auto out = Words(img);
    EXPECT_EQ(out[0], static_cast<unsigned>(10.0 * 4 * 65535.0 / 120000.0));  // column 0 max 120000
    EXPECT_EQ(out[2 * 2 + 1], 40u);  // column 1: row 51 isn't scanned, floor 65535
}

TEST(Norm16to8, StretchesBetweenTheGainAndThePlaneMaximum)
{
    Reports reports;
    CTgtImg img;
    img.Ping()->m_bfGain = 10;
    Fill16(img, 1, 5, {5, 10, 40, 70, 41});
    img.Norm16to8(0.0);
    // 1 + 254 * (v - 10) / 60: 40 -> 128, 41 -> 1 + 131.23 -> 132.
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{0, 1, 128, 255, 132}));
    ASSERT_EQ(reports.m_lines.size(), 1u);
    EXPECT_EQ(reports.m_lines[0], "6030/0 MinI:10 MaxI:70");
}

TEST(Norm16to8, FlatPlanesAndTheGainLimit)
{
    Reports reports;
    // All samples equal to minI: maxI equals minI, and every sample gives 1.
    CTgtImg a;
    a.Ping()->m_bfGain = 9;
    Fill16(a, 2, 2, {9, 9, 9, 9});
    a.Norm16to8(0.0);
    EXPECT_EQ(Bytes(a), (std::vector<unsigned>{1, 1, 1, 1}));

    CTgtImg b;
    b.Ping()->m_bfGain = 100;
    Fill16(b, 2, 2, {9, 50, 99, 3});
    b.Norm16to8(0.0);
    EXPECT_EQ(Bytes(b), (std::vector<unsigned>{0, 0, 0, 0}));

    CTgtImg c;
    c.Ping()->m_bfGain = 300;
    Fill16(c, 1, 3, {254, 255, 510});
    c.Norm16to8(0.0);
    EXPECT_EQ(Bytes(c), (std::vector<unsigned>{0, 1, 255}));
    ASSERT_EQ(reports.m_lines.size(), 3u);
    EXPECT_EQ(reports.m_lines[0], "6030/0 MinI:9 MaxI:9");
    EXPECT_EQ(reports.m_lines[1], "6030/0 MinI:100 MaxI:99");
    EXPECT_EQ(reports.m_lines[2], "6030/0 MinI:255 MaxI:510");
}

TEST(Norm16to8, EveryWordMatchesTheDoubleFormula)
{
    // All 65536 sample values for a spread of gains and maxima, against the
    // step as written: 1 + 254 * (v - minI) / (maxI - minI) in double.
    const short gains[] = {0, 1, 3, 200, 255, 254, -1, -1000};
    const unsigned maxima[] = {65535, 65534, 256, 1000, 12345, 7};
    std::vector<unsigned> all(65536);
    for (unsigned v = 0; v < 65536; ++v) all[v] = v;
    Reports quiet;
    AtEveryLevel([&] {
    for (short g : gains)
        for (unsigned mx : maxima) {
            std::vector<unsigned> s = all;
            for (auto& v : s) v = std::min(v, mx);
            CTgtImg img;
            img.Ping()->m_bfGain = g;
            Fill16(img, 256, 256, s);
            img.Norm16to8(0.0);
            const int minI = g >= 255 ? 255 : g;
            const auto out = Bytes(img);
            for (unsigned v = 0; v < 65536; ++v) {
                const int sv = static_cast<int>(s[v]);
                unsigned want;
                if (sv < minI) want = 0;
                else if (static_cast<int>(mx) == minI) want = 1;
                else want = Trunc8(1.0 + 254.0 * (sv - minI) / (static_cast<double>(mx) - minI));
                ASSERT_EQ(out[v], want) << "g " << g << " max " << mx << " v " << sv;
            }
        }
    });
}

TEST(GenPA, PhaseAndAmplitudeOfTheNamedPairs)
{
    // Row 0 of the catalogue has 64 elements: the phase and amplitude planes
    // get 64 samples a line.
    CTgtImg a;
    a.Ping()->m_rx1Idx = 0;
    a.Ping()->m_bfGain = 1;
    const unsigned rows = 1, width = CArrType::s_types[0].m_nElements;
    ASSERT_EQ(width, 64u);
    a.AllocQI(rows, width * 4);
    auto put16 = [&](unsigned i, int q, int iv) {  // 32-bit sample: Q bits 8-15, I bits 24-31
        a.m_pQI[4 * i + 0] = 0x5A;
        a.m_pQI[4 * i + 1] = static_cast<BYTE>(q);
        a.m_pQI[4 * i + 2] = 0xA5;
        a.m_pQI[4 * i + 3] = static_cast<BYTE>(iv);
    };
    put16(0, 0, 100);
    put16(1, 0, -100);
    put16(2, 127, 0);
    put16(3, -128, -128);
    a.GenPA16();
    ASSERT_EQ(a.m_nPAWidth, 64u);
    EXPECT_EQ(a.m_pPhs[0], 0);
    EXPECT_EQ(a.m_pPhs[1], 127);
    EXPECT_EQ(a.m_pPhs[2], 63);  // pi/2 * 255 / 2pi = 63.75
    EXPECT_EQ(a.m_pAmp[0], static_cast<BYTE>(100 / 255.0 * 255.99));
    EXPECT_EQ(a.m_pAmp[2], static_cast<BYTE>(127 / 255.0 * 255.99));
    // (-128, -128): 225 degrees, amplitude 0.71 * 255.99.
    EXPECT_EQ(a.m_pPhs[3], static_cast<BYTE>((std::atan2(-128 / 255.0, -128 / 255.0) + 2 * M_PI) * 255.0 / (2 * M_PI)));
    EXPECT_EQ(a.m_pAmp[3], static_cast<BYTE>(std::sqrt(2.0 * (128 / 255.0) * (128 / 255.0)) * 255.99));

    CTgtImg b;
    b.Ping()->m_rx1Idx = 0;
    b.Ping()->m_bfGain = 3;  // amplitude over 1.0 is limited
    b.AllocQI(rows, width * 2);
    auto put8 = [&](unsigned i, int q, int iv) {
        b.m_pQI[2 * i] = static_cast<BYTE>(q);
        b.m_pQI[2 * i + 1] = static_cast<BYTE>(iv);
    };
    put8(0, 0, 100);
    put8(1, 0, -100);
    put8(2, 127, 0);
    b.GenPA8();
    EXPECT_EQ(b.m_pPhs[0], 0);
    EXPECT_EQ(b.m_pPhs[1], 255);  // pi * 255.99 / pi
    EXPECT_EQ(b.m_pPhs[2], 127);  // pi/2 * 255.99 / pi = 127.995
    EXPECT_EQ(b.m_pAmp[0], 255);  // 0.39 * 3 -> 1.0
    EXPECT_EQ(b.m_pAmp[2], 255);
    EXPECT_EQ(b.m_pAmp[10], 0);  // a zero pair
}

TEST(GenPA, LargePlanesMatchPairByPair)
{
    // More than 65536 samples: the library may table the pairs; every sample
    // must still match its own pair.
    std::mt19937 rng(23);
    std::uniform_int_distribution<int> byte(0, 255);
    CTgtImg img;
    img.Ping()->m_rx1Idx = 6;  // 256 elements
    img.Ping()->m_bfGain = 2;
    const unsigned rows = 300, width = CArrType::s_types[6].m_nElements;
    img.AllocQI(rows, width * 2);
    for (unsigned i = 0; i < img.m_nQIBytes; ++i) img.m_pQI[i] = static_cast<BYTE>(byte(rng));
    img.GenPA8();
    for (unsigned s = 0; s < rows * width; ++s) {
        const double Q = static_cast<signed char>(img.m_pQI[2 * s]) / 255.0, I = static_cast<signed char>(img.m_pQI[2 * s + 1]) / 255.0;
        double ph = std::atan2(Q, I);
        if (ph < 0) ph += 2 * M_PI;
        double amp = std::sqrt(I * I + Q * Q) * 2;
        if (amp > 1.0) amp = 1.0;
        ASSERT_EQ(img.m_pAmp[s], static_cast<BYTE>(amp * 255.99)) << s;
        ASSERT_EQ(img.m_pPhs[s], static_cast<BYTE>(static_cast<int>(ph * 255.99 / M_PI))) << s;
    }
}

TEST(TwoImages, SubtractPersistAccumulate)
{
    CTgtImg other;
    Fill8(other, 1, 4, {10, 100, 200, 0});
    CTgtImg a;
    Fill8(a, 1, 4, {50, 50, 50, 50});
    a.SubImg(other, 0.5);  // 50 - o/2, at least 0
    EXPECT_EQ(Bytes(a), (std::vector<unsigned>{45, 0, 0, 50}));

    CTgtImg p;
    Fill8(p, 1, 4, {50, 50, 255, 3});
    p.PstImg(other, 1.0);
    EXPECT_EQ(Bytes(p), (std::vector<unsigned>{50, 100, 255, 3}));
    Fill8(p, 1, 4, {50, 50, 255, 3});
    p.PstImg(other, 0.9);  // 45, 100, 229.5, 2.7
    EXPECT_EQ(Bytes(p), (std::vector<unsigned>{45, 100, 229, 2}));

    CTgtImg c;
    Fill8(c, 1, 4, {50, 51, 52, 53});
    c.AccImg(other, 0.0);
    EXPECT_EQ(Bytes(c), (std::vector<unsigned>{50, 51, 52, 53}));
    c.AccImg(other, 1.0);
    EXPECT_EQ(Bytes(c), (std::vector<unsigned>{10, 100, 200, 0}));
    Fill8(c, 1, 4, {50, 51, 52, 53});
    c.AccImg(other, 0.25);  // 37.5 + 2.5, 38.25 + 25, 39 + 50, 39.75
    EXPECT_EQ(Bytes(c), (std::vector<unsigned>{40, 63, 89, 39}));

    // Set(other) first gives this image the other's shape.
    CTgtImg fresh;
    fresh.SubImg(other, 1.0);
    EXPECT_EQ(fresh.m_nBrgs, 4u);
    EXPECT_EQ(fresh.m_nRngs, 1u);
}

TEST(TwoImages, SixteenBitForms)
{
    CTgtImg other;
    Fill16(other, 1, 3, {1000, 60000, 0});
    CTgtImg a;
    Fill16(a, 1, 3, {5000, 5000, 5000});
    a.SubImg16(other, 0.5);
    EXPECT_EQ(Words(a), (std::vector<unsigned>{4500, 0, 5000}));
    a.PstImg16(other, 1.0);
    EXPECT_EQ(Words(a), (std::vector<unsigned>{4500, 60000, 5000}));
    a.AccImg16(other, 0.5);
    EXPECT_EQ(Words(a), (std::vector<unsigned>{2750, 60000, 2500}));

    // No Set: an image without a raw plane is left as it is.
    CTgtImg empty;
    empty.SubImg16(other, 1.0);
    EXPECT_EQ(empty.m_pQI, nullptr);
    EXPECT_EQ(empty.m_nQIWidth, 0u);
}

TEST(OneImage, RootSquareScale)
{
    CTgtImg img;
    Fill8(img, 1, 5, {0, 1, 64, 128, 255});
    img.RootImg();
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{0, 15, 127, 180, 255}));
    Fill8(img, 1, 5, {0, 1, 64, 128, 255});
    img.SqrImg();
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{0, 0, 16, 64, 255}));
    Fill8(img, 1, 5, {0, 1, 64, 128, 255});
    img.Scale(2.5);  // limited at 255
    EXPECT_EQ(Bytes(img), (std::vector<unsigned>{0, 2, 160, 255, 255}));
    CTgtImg none;
    none.Scale(2.0);  // no plane: nothing
    EXPECT_EQ(none.m_pImg, nullptr);
}
