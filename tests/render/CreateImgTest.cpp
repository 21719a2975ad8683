// The display image: folding, gain corrections, intensity and depth
// colouring, the zoom picture; checked case by case and against a plain
// transcription of the method run on random images.
#include "RenderTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace {

// A table whose entries all differ: i, 255 - i, 7, alpha 255 - i / 2.
CColTbl Ramp()
{
    CColTbl t;
    for (int i = 0; i < 256; ++i)
        t[i] = CRgb(static_cast<BYTE>(i), static_cast<BYTE>(255 - i), 7, static_cast<BYTE>(255 - i / 2));
    return t;
}

CRgb Px(const CTgtImg& img, unsigned row, unsigned x) { return img.m_pDsp[row * img.m_nBrgs + x]; }
CRgb AZPx(const CTgtImg& img, unsigned row, unsigned x) { return img.m_pAZDsp[row * img.m_nAZBrgs + x]; }

void SetLX(CTgtImg& img, unsigned r, unsigned short gain)
{
    std::memcpy(img.m_pLX + r * 4, &gain, 2);
}

// ---- The method as written, one sample at a time, for comparison ----

struct RefPlane {
    const BYTE* src;
    unsigned nRngs, nBrgs, nH;
    const BYTE* lx;  // 4 bytes a line, or null
    unsigned decim;
    bool corrRatio, corrLine;
};

std::uint32_t Db(double dB) { return static_cast<std::uint32_t>(std::floor(std::pow(10.0, dB / 20.0) + 0.5)); }

std::vector<CRgb> RefBuild(const RefPlane& pl, const CPing& p, std::uint32_t num, std::uint32_t den, const CColTbl& tbl,
                           int depthCol, double dMin, double dMax, const std::vector<CV3>& vs,
                           const std::vector<CV3>& ve, unsigned& skip, unsigned& rows)
{
    std::vector<CRgb> dsp(static_cast<std::size_t>(pl.nBrgs) * pl.nH, CRgb(0, 0, 0, 0));
    skip = pl.nRngs > pl.nH ? pl.nRngs / pl.nH : 0;
    rows = pl.nRngs / (skip + 1);
    const int nc = tbl.GetSize();
    double span = dMax - dMin;
    if (span == 0.0) span = 1.0;
    const double scale = nc / span;
    const bool gainTable = p.m_gainAssist == 0 && pl.lx;
    unsigned counter = skip, row = 0;
    for (unsigned r = 0; r < pl.nRngs; ++r) {
        const double frac = static_cast<double>(r) / pl.nRngs;
        std::uint32_t g = 0, rec = 0;
        bool rescale = false;
        if (gainTable) {
            if (p.m_gainMode == 0)
                g = (((static_cast<std::uint32_t>(pl.decim) * p.m_swGainRamp * r) >> 2) +
                     (static_cast<std::uint32_t>(static_cast<int>(p.m_bfGain)) << 8)) >> 8;
            else if (p.m_gainMode == 1 || p.m_gainMode == 2)
                g = p.m_bfGain >= 0 && p.m_bfGain <= 96 ? std::min<std::uint32_t>(Db(p.m_bfGain), 65535) : 0;
            std::uint16_t w;
            std::memcpy(&w, pl.lx + r * 4, 2);
            rec = w;
            rescale = rec != 0 && rec != g;
        }
        for (unsigned x = 0; x < pl.nBrgs; ++x) {
            std::uint32_t v = pl.src[r * pl.nBrgs + x];
            if (pl.corrRatio && den != 0) v = std::min<std::uint32_t>(v * num / den, 255);
            if (pl.corrLine && rescale) v = std::min<std::uint32_t>(v * g / rec, 255);
            CRgb& px = dsp[row * pl.nBrgs + x];
            px.r = std::max<BYTE>(px.r, static_cast<BYTE>(v));
            if (depthCol && px.r > 8) {
                const double depth = (ve[x].z - vs[x].z) * frac + vs[x].z;
                long long idx = static_cast<long long>(std::floor((depth - dMin) * scale + 0.5));
                if (idx >= nc) idx = nc - 1;
                px.g = static_cast<BYTE>(idx);
            }
        }
        if (counter > 0) --counter;
        else {
            counter = skip;
            ++row;
        }
    }
    for (CRgb& px : dsp) {
        const unsigned i = px.r;
        if (!depthCol) px = tbl[static_cast<int>(i)];
        else if (i <= 8) px = CRgb(0, 0, 0, 0);
        else {
            CRgb c = tbl[px.g];
            c.a = tbl[static_cast<int>(i)].a;
            const double b = std::min(i + 126, 255u) * 0.00390625;
            c.r = static_cast<BYTE>(c.r * b);
            c.g = static_cast<BYTE>(c.g * b);
            c.b = static_cast<BYTE>(c.b * b);
            px = c;
        }
    }
    return dsp;
}

void RefRatio(const CPing& p, std::uint32_t& num, std::uint32_t& den)
{
    num = den = 0;
    if (p.m_gainMode == 0 || p.m_gainMode == 2) {
        if (p.m_dispPercent >= 0 && p.m_dispPercent != p.m_percentGain) {
            num = p.m_dispPercent > 0 ? p.m_dispPercent : 1;
            den = p.m_percentGain > 0 ? p.m_percentGain : 1;
        }
    } else if (p.m_gainMode == 1) {
        if (p.m_dispGainDB >= 0 && p.m_dispGainDB != p.m_bfGain) {
            num = Db(p.m_dispGainDB);
            den = Db(p.m_bfGain);
        }
    }
}

} // namespace

TEST(CreateImg, ThreeHundredLinesFoldInPairsAtHeight256)
{
    CTgtImg img;
    rt::MakeImage(img, 300, 5);
    for (unsigned r = 0; r < 300; ++r)
        for (unsigned x = 0; x < 5; ++x) rt::Sample(img, r, x) = static_cast<BYTE>((r * 37 + x * 11) % 256);
    CColTbl t = Ramp();
    img.m_bTexDirty = 0;
    img.CreateImg(t, 3, 0, 0.0, 0.0, false);
    ASSERT_EQ(img.m_nImgSize, 256u);
    EXPECT_EQ(img.m_nDspSkip, 1u);
    EXPECT_EQ(img.m_nDspRows, 150u);
    EXPECT_EQ(img.m_bTexDirty, 1u);
    for (unsigned d = 0; d < 150; ++d)
        for (unsigned x = 0; x < 5; ++x) {
            const BYTE v = std::max(rt::Sample(img, 2 * d, x), rt::Sample(img, 2 * d + 1, x));
            ASSERT_EQ(Px(img, d, x), t[v]) << d << "," << x;
        }
    for (unsigned d = 150; d < 256; ++d)
        for (unsigned x = 0; x < 5; ++x) ASSERT_EQ(Px(img, d, x), t[0]);
}

TEST(CreateImg, FoldBoundaries)
{
    CTgtImg img;
    CColTbl t = Ramp();
    // Exactly the height: one line a row.
    rt::MakeImage(img, 256, 3);
    for (unsigned r = 0; r < 256; ++r) rt::Sample(img, r, 1) = static_cast<BYTE>(r);
    img.CreateImg(t, 3, 0, 0.0, 0.0, false);
    EXPECT_EQ(img.m_nDspSkip, 0u);
    EXPECT_EQ(img.m_nDspRows, 256u);
    for (unsigned r = 0; r < 256; ++r) EXPECT_EQ(Px(img, r, 1), t[r]);
    // 511 lines: pairs, the last line alone on row 255, which isn't counted.
    rt::MakeImage(img, 511, 3);
    rt::Sample(img, 510, 2) = 77;
    img.CreateImg(t, 3, 0, 0.0, 0.0, false);
    EXPECT_EQ(img.m_nDspSkip, 1u);
    EXPECT_EQ(img.m_nDspRows, 255u);
    EXPECT_EQ(Px(img, 255, 2), t[77]);
    // 512 lines: threes; row 170 holds lines 510 and 511.
    rt::MakeImage(img, 512, 3);
    rt::Sample(img, 509, 0) = 50;
    rt::Sample(img, 511, 0) = 60;
    img.CreateImg(t, 3, 0, 0.0, 0.0, false);
    EXPECT_EQ(img.m_nDspSkip, 2u);
    EXPECT_EQ(img.m_nDspRows, 170u);
    EXPECT_EQ(Px(img, 169, 0), t[50]);
    EXPECT_EQ(Px(img, 170, 0), t[60]);
    EXPECT_EQ(Px(img, 171, 0), t[0]);
}

TEST(CreateImg, GainRatioOfEachMode)
{
    struct Case {
        unsigned short mode;
        short dispPercent, percentGain, dispGainDB, bfGain;
        BYTE in, out;
    };
    const Case cases[] = {
        {0, 20, 10, -1, 0, 100, 200},  // percent: x2
        {0, 20, 10, -1, 0, 200, 255},  // limited to 255
        {2, 20, 10, -1, 0, 100, 200},
        {0, 0, 10, -1, 0, 100, 10},    // 0 raised to 1: x1/10
        {0, 0, 10, -1, 0, 9, 0},
        {0, 5, 0, -1, 0, 30, 150},     // gain 0 raised to 1
        {0, -1, 10, -1, 0, 100, 100},  // no display gain
        {0, 10, 10, -1, 0, 100, 100},  // the same gain
        {1, -1, 10, 6, 0, 100, 200},   // dB: floor(10^0.3 + 0.5) = 2 over 1
        {1, -1, 10, 14, 20, 101, 50},  // 5 over 10
        {1, -1, 10, -1, 20, 101, 101},
        {1, -1, 10, 20, 20, 101, 101},
        {1, 20, 10, -1, 0, 100, 100},  // percent fields don't count in dB mode
        {3, 20, 10, 6, 0, 100, 100},   // unknown law: no ratio
    };
    CColTbl t = Ramp();
    for (const Case& c : cases) {
        CTgtImg img;
        rt::MakeImage(img, 10, 2, 30.0, c.in);
        CPing& p = *img.Ping();
        p.m_gainMode = c.mode;
        p.m_dispPercent = c.dispPercent;
        p.m_percentGain = c.percentGain;
        p.m_dispGainDB = c.dispGainDB;
        p.m_bfGain = c.bfGain;
        img.CreateImg(t, 0, 0, 0.0, 0.0, true);
        EXPECT_EQ(Px(img, 4, 1).r, c.out) << "mode " << c.mode << " in " << int(c.in);
        img.CreateImg(t, 0, 0, 0.0, 0.0, false);
        EXPECT_EQ(Px(img, 4, 1).r, c.in) << "uncorrected, mode " << c.mode;
    }
}

TEST(CreateImg, PerLineGainsRescaleTheirLines)
{
    CColTbl t = Ramp();
    CTgtImg img;
    rt::MakeImage(img, 70, 2, 30.0, 100);
    img.AllocLX(70, 4);
    CPing& p = *img.Ping();
    p.m_gainAssist = 0;
    // Percent law with a ramp: g = ((2 * 8 * r >> 2) + (10 << 8)) >> 8, 10 up to line 63, 11 from 64.
    p.m_gainMode = 0;
    p.m_rngDecim = 2;
    p.m_swGainRamp = 8;
    p.m_bfGain = 10;
    SetLX(img, 0, 20);  // 100 * 10 / 20
    SetLX(img, 1, 0);   // none recorded
    SetLX(img, 2, 10);  // recorded as now: unchanged
    SetLX(img, 3, 5);
    SetLX(img, 4, 2);   // 500, limited
    SetLX(img, 64, 22); // 100 * 11 / 22
    SetLX(img, 65, 11);
    img.m_pLX[5 * 4 + 2] = 0xEE;  // the record's second word doesn't count
    img.CreateImg(t, 2, 0, 0.0, 0.0, true);
    ASSERT_EQ(img.m_nDspSkip, 0u);
    const BYTE want[] = {50, 100, 100, 200, 255, 100};
    for (unsigned r = 0; r < 6; ++r) EXPECT_EQ(Px(img, r, 0).r, want[r]) << r;
    EXPECT_EQ(Px(img, 64, 0).r, 50);
    EXPECT_EQ(Px(img, 65, 1).r, 100);
    // Without gainCorr nothing changes; with the table not in use neither.
    img.CreateImg(t, 2, 0, 0.0, 0.0, false);
    EXPECT_EQ(Px(img, 0, 0).r, 100);
    p.m_gainAssist = 1;
    img.CreateImg(t, 2, 0, 0.0, 0.0, true);
    EXPECT_EQ(Px(img, 0, 0).r, 100);
    p.m_gainAssist = 0;

    // Ratio first, then the line: 100 * 20 / 10 = 200, * 10 / 20 = 100.
    p.m_dispPercent = 20;
    p.m_percentGain = 10;
    img.CreateImg(t, 2, 0, 0.0, 0.0, true);
    EXPECT_EQ(Px(img, 0, 0).r, 100);
    EXPECT_EQ(Px(img, 1, 0).r, 200);
    p.m_dispPercent = -1;

    // Decibel law: g = floor(10^(20/20) + 0.5) = 10 on every line.
    p.m_gainMode = 1;
    p.m_bfGain = 20;
    img.CreateImg(t, 2, 0, 0.0, 0.0, true);
    EXPECT_EQ(Px(img, 0, 0).r, 50);
    EXPECT_EQ(Px(img, 2, 0).r, 100);
    EXPECT_EQ(Px(img, 64, 0).r, 45);  // 100 * 10 / 22
    // 97 dB or more: g is 0 and every line with a recorded gain goes to 0.
    p.m_bfGain = 97;
    img.CreateImg(t, 2, 0, 0.0, 0.0, true);
    EXPECT_EQ(Px(img, 0, 0).r, 0);
    EXPECT_EQ(Px(img, 1, 0).r, 100);
    EXPECT_EQ(Px(img, 3, 0).r, 0);
}

TEST(CreateImg, DepthColouringThresholdsAndBrightness)
{
    CTgtImg img;
    rt::MakeImage(img, 100, 4);
    for (unsigned x = 0; x < 4; ++x) {
        img.m_vStart[x] = CV3(0, 0, 10.0);
        img.m_vEnd[x] = CV3(0, 0, 60.0);
    }
    CColTbl t = Ramp();
    rt::Sample(img, 10, 0) = 8;    // clear
    rt::Sample(img, 10, 1) = 9;    // darkest colour
    rt::Sample(img, 10, 2) = 129;  // full brightness
    rt::Sample(img, 10, 3) = 255;
    img.CreateImg(t, 2, 1, 0.0, 100.0, true);
    // Line 10: depth 50 * 0.1 + 10 = 15, index floor(15 * 2.56 + 0.5) = 38.
    const CRgb c = t[38];
    EXPECT_EQ(Px(img, 10, 0), CRgb(0, 0, 0, 0));
    EXPECT_EQ(Px(img, 10, 1), CRgb(static_cast<BYTE>(c.r * 135 / 256), static_cast<BYTE>(c.g * 135 / 256),
                                   static_cast<BYTE>(c.b * 135 / 256), t[9].a));
    EXPECT_EQ(Px(img, 10, 2), CRgb(static_cast<BYTE>(c.r * 255 / 256), static_cast<BYTE>(c.g * 255 / 256),
                                   static_cast<BYTE>(c.b * 255 / 256), t[129].a));
    EXPECT_EQ(Px(img, 10, 3).a, t[255].a);
    EXPECT_EQ(Px(img, 50, 1), CRgb(0, 0, 0, 0));  // empty sample, empty row

    // A full-scale entry comes out at 254.
    CColTbl white;
    for (int i = 0; i < 256; ++i) white[i] = CRgb(255, 255, 255, 255);
    img.CreateImg(white, 2, 1, 0.0, 100.0, true);
    EXPECT_EQ(Px(img, 10, 3), CRgb(254, 254, 254, 255));
    EXPECT_EQ(Px(img, 10, 1), CRgb(134, 134, 134, 255));

    // Equal depth limits: scale nc, no division by zero.
    img.CreateImg(t, 2, 1, 15.0, 15.0, true);
    EXPECT_EQ(Px(img, 10, 2).r, static_cast<BYTE>(t[0].r * 255 / 256));
    EXPECT_EQ(Px(img, 10, 2).g, static_cast<BYTE>(t[0].g * 255 / 256));
    // Deeper than the table: the last entry.
    img.CreateImg(t, 2, 1, 0.0, 10.0, true);
    EXPECT_EQ(Px(img, 10, 2).r, static_cast<BYTE>(t[255].r * 255 / 256));
    // Shallower than depthMin: the index keeps its low 8 bits. Depth 15 with
    // depthMin 16 and scale 2.56: floor(-2.56 + 0.5) = -3, entry 253.
    img.CreateImg(t, 2, 1, 16.0, 116.0, true);
    EXPECT_EQ(Px(img, 10, 2).r, static_cast<BYTE>(t[253].r * 255 / 256));
}

TEST(CreateImg, DepthOfAFoldedRowIsThatOfItsLastLine)
{
    CTgtImg img;
    rt::MakeImage(img, 300, 1);
    img.m_vStart[0] = CV3(0, 0, 0.0);
    img.m_vEnd[0] = CV3(0, 0, 100.0);
    rt::Sample(img, 20, 0) = 200;  // strong on the first line of row 10
    rt::Sample(img, 21, 0) = 3;    // weak on its last
    CColTbl t = Ramp();
    img.CreateImg(t, 3, 1, 0.0, 100.0, false);
    ASSERT_EQ(img.m_nDspSkip, 1u);
    // Depth of line 21: 100 * 21 / 300 = 7, index floor(7 * 2.56 + 0.5) = 18.
    const CRgb c = t[18];
    EXPECT_EQ(Px(img, 10, 0), CRgb(static_cast<BYTE>(c.r * 255 / 256), static_cast<BYTE>(c.g * 255 / 256),
                                   static_cast<BYTE>(c.b * 255 / 256), t[200].a));
}

TEST(CreateImg, ZoomImageTakesTheRatioEvenWithoutGainCorrection)
{
    CTgtImg img;
    rt::MakeImage(img, 40, 4, 30.0, 50);
    CPing& p = *img.Ping();
    p.m_dispPercent = 20;
    p.m_percentGain = 10;
    img.AllocAZ(300, 3);
    std::fill(img.m_pAZ, img.m_pAZ + 900, BYTE(60));
    img.m_pAZ[2 * 3 + 1] = 70;  // line 2 of the zoom
    CColTbl t = Ramp();
    img.CreateImg(t, 4, 0, 0.0, 0.0, false);  // height 512: zoom rows 256
    EXPECT_EQ(Px(img, 0, 0).r, 50);            // main picture uncorrected
    ASSERT_NE(img.m_pAZDsp, nullptr);
    EXPECT_EQ(img.m_nAZSkip, 1u);
    EXPECT_EQ(img.m_nAZRows, 150u);
    EXPECT_EQ(AZPx(img, 0, 0).r, 120);  // zoom corrected x2
    EXPECT_EQ(AZPx(img, 1, 1).r, 140);
    EXPECT_EQ(AZPx(img, 200, 1), t[0]);

    // Called alone with gainDen 0 there is no ratio.
    img.CreateAcousticZoomImage(t, 0, 0.0, 0.0, 0, 5);
    EXPECT_EQ(AZPx(img, 0, 0).r, 60);

    // Zoom line records rescale whatever the flag; mode 0 ramps with m_azDecim.
    p.m_dispPercent = -1;
    p.m_gainAssist = 0;
    p.m_bfGain = 10;
    p.m_swGainRamp = 8;
    p.m_rngDecim = 100;  // not used by the zoom
    p.m_zoom.m_azDecim = 2;
    img.AllocAZLX(300, 1);
    img.m_pAZLX[0] = 0xABCD0000u | 20;  // upper half doesn't count: 60 * 10 / 20
    img.m_pAZLX[128] = 22;  // line 128: g = (2 * 8 * 128 >> 2) + 2560 >> 8 = 12; 60 * 12 / 22
    img.CreateImg(t, 4, 0, 0.0, 0.0, false);
    EXPECT_EQ(AZPx(img, 0, 0).r, 60);  // line 1 of the row is uncorrected and stronger
    img.m_pAZLX[1] = 20;
    img.CreateImg(t, 4, 0, 0.0, 0.0, false);
    EXPECT_EQ(AZPx(img, 0, 0).r, 30);
    img.m_pAZLX[129] = 22;
    img.CreateImg(t, 4, 0, 0.0, 0.0, false);
    EXPECT_EQ(AZPx(img, 64, 0).r, 32);
}

TEST(CreateImg, NothingHappensWithoutAPlaneOrWithABadResolution)
{
    CTgtImg img;
    CColTbl t = Ramp();
    img.CreateImg(t, 3, 0, 0.0, 0.0, true);  // no planes at all
    EXPECT_EQ(img.m_pDsp, nullptr);
    rt::MakeImage(img, 10, 2, 30.0, 40);
    img.CreateImg(t, 8, 0, 0.0, 0.0, true);
    img.CreateImg(t, -1, 0, 0.0, 0.0, true);
    EXPECT_EQ(img.m_pDsp, nullptr);
    EXPECT_EQ(img.m_nImgSize, 0u);
    img.CreateImg(t, 0, 0, 0.0, 0.0, true);
    EXPECT_EQ(img.m_nImgSize, 32u);
    EXPECT_EQ(Px(img, 3, 1), t[40]);
    // A zoom image whose width changed after the display was sized is left alone.
    img.AllocAZ(4, 2);
    img.CreateImg(t, 0, 0, 0.0, 0.0, true);
    ASSERT_NE(img.m_pAZDsp, nullptr);
    img.AllocAZ(4, 9);
    img.CreateAcousticZoomImage(t, 0, 0.0, 0.0, 0, 0);  // would write 9 columns into 2
    EXPECT_EQ(img.m_nAZDspBrgs, 2u);
}

TEST(CreateImg, LinesBeyondThePlaneAreNotRead)
{
    CTgtImg img;
    rt::MakeImage(img, 20, 4, 30.0, 90);
    img.AllocLX(50, 4);  // raises the image's line count past the plane
    ASSERT_EQ(img.m_nRngs, 50u);
    CColTbl t = Ramp();
    img.CreateImg(t, 0, 0, 0.0, 0.0, true);  // height 32: one line a row... of 50: folds by 2
    EXPECT_EQ(img.m_nDspSkip, 1u);
    EXPECT_EQ(Px(img, 9, 0).r, 90);
    EXPECT_EQ(Px(img, 10, 0).r, 0);
}

TEST(CreateImg, MatchesTheMethodSampleBySampleOnRandomImages)
{
    std::mt19937 rng(12345);
    auto uni = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int iter = 0; iter < 300; ++iter) {
        CTgtImg img;
        const unsigned nRngs = static_cast<unsigned>(uni(1, 700));
        const unsigned nBrgs = static_cast<unsigned>(uni(1, 24));
        rt::MakeImage(img, nRngs, nBrgs);
        for (unsigned i = 0; i < nRngs * nBrgs; ++i) img.m_pImg[i] = static_cast<BYTE>(uni(0, 3) ? uni(0, 40) : uni(0, 255));
        for (unsigned x = 0; x < nBrgs; ++x) {
            img.m_vStart[x] = CV3(0, 0, uni(-2000, 12000) / 100.0);
            img.m_vEnd[x] = CV3(0, 0, uni(-2000, 12000) / 100.0);
        }
        CPing& p = *img.Ping();
        p.m_gainMode = static_cast<unsigned short>(uni(0, 3));
        p.m_gainAssist = uni(0, 1);
        p.m_dispPercent = static_cast<short>(uni(-1, 30));
        p.m_percentGain = static_cast<short>(uni(-1, 30));
        p.m_dispGainDB = static_cast<short>(uni(-1, 60));
        p.m_bfGain = static_cast<short>(uni(-5, 100));
        p.m_swGainRamp = static_cast<unsigned short>(uni(0, 40));
        p.m_rngDecim = static_cast<unsigned short>(uni(1, 4));
        p.m_zoom.m_azDecim = static_cast<unsigned short>(uni(1, 4));
        if (uni(0, 1)) {
            img.AllocLX(nRngs, 4);
            for (unsigned r = 0; r < nRngs; ++r) SetLX(img, r, static_cast<unsigned short>(uni(0, 2) ? 0 : uni(1, 40)));
        }
        const unsigned azR = static_cast<unsigned>(uni(1, 400)), azB = static_cast<unsigned>(uni(1, nBrgs));
        img.AllocAZ(azR, azB);
        for (unsigned i = 0; i < azR * azB; ++i) img.m_pAZ[i] = static_cast<BYTE>(uni(0, 255));
        if (uni(0, 1)) {
            img.AllocAZLX(azR, 1);
            for (unsigned r = 0; r < azR; ++r) img.m_pAZLX[r] = static_cast<unsigned>(uni(0, 2) ? uni(0, 3) << 16 : uni(1, 40));
        }
        CColTbl t;
        for (int i = 0; i < 256; ++i)
            t[i] = CRgb(static_cast<BYTE>(uni(0, 255)), static_cast<BYTE>(uni(0, 255)), static_cast<BYTE>(uni(0, 255)),
                        static_cast<BYTE>(uni(0, 255)));
        const int resIdx = uni(0, 4);
        const int depthCol = uni(0, 1);
        const double dMin = uni(-10, 50), dMax = uni(0, 3) ? uni(-10, 150) : dMin;
        const bool gainCorr = uni(0, 1);
        img.CreateImg(t, resIdx, depthCol, dMin, dMax, gainCorr);

        std::uint32_t num, den;
        RefRatio(p, num, den);
        unsigned skip, rows;
        const unsigned h = static_cast<unsigned>(CTgtImg::s_resTypes[resIdx].m_n);
        ASSERT_EQ(img.m_nImgSize, h);
        RefPlane pl {img.m_pImg, nRngs, nBrgs, h, img.m_pLX, p.m_rngDecim, gainCorr, gainCorr};
        const auto want = RefBuild(pl, p, num, den, t, depthCol, dMin, dMax, img.m_vStart, img.m_vEnd, skip, rows);
        ASSERT_EQ(img.m_nDspSkip, skip) << iter;
        ASSERT_EQ(img.m_nDspRows, rows) << iter;
        for (std::size_t i = 0; i < want.size(); ++i) ASSERT_EQ(img.m_pDsp[i], want[i]) << "iteration " << iter << " pixel " << i;

        RefPlane az {img.m_pAZ, azR, azB, h / 2, reinterpret_cast<const BYTE*>(img.m_pAZLX), p.m_zoom.m_azDecim, true, true};
        const auto wantAZ = RefBuild(az, p, num, den, t, depthCol, dMin, dMax, img.m_vStart, img.m_vEnd, skip, rows);
        ASSERT_EQ(img.m_nAZSkip, skip) << iter;
        ASSERT_EQ(img.m_nAZRows, rows) << iter;
        for (std::size_t i = 0; i < wantAZ.size(); ++i)
            ASSERT_EQ(img.m_pAZDsp[i], wantAZ[i]) << "zoom, iteration " << iter << " pixel " << i;
    }
}
