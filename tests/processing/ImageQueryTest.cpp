// Queries on one place of an image: GetRngBrg and GetIntensityDB.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace {

// An image of lines 10 to 109 whose ping has the given bearing table;
// metres per line 1600 * 0.5 / 6400 = 0.125.
void MakeFan(CTgtImg& img, const std::vector<double>& brgs)
{
    CPing* p = img.Ping();
    p->m_sosXd = 1600.0f;
    p->m_modFreq = 6400;
    p->SetNumBeams(static_cast<int>(brgs.size()));
    for (size_t i = 0; i < brgs.size(); ++i) p->m_pBrgTbl[i] = brgs[i];
    img.m_nStartRng = 10;
    img.m_nEndRng = 110;
    img.m_nStartBrg = 0;
    img.m_nEndBrg = static_cast<UINT>(brgs.size());
}

}  // namespace

TEST(GetRngBrg, RisingAndFallingTablesGiveTheSameBearing)
{
    // Values exact in binary, so that the halfway points are exactly halfway.
    const std::vector<double> rising = {-0.5, -0.25, 0.0, 0.125, 0.375};
    const std::vector<double> falling(rising.rbegin(), rising.rend());
    for (const auto* tbl : {&rising, &falling}) {
        CTgtImg img;
        MakeFan(img, *tbl);
        auto idxOf = [&](double b) {
            for (size_t i = 0; i < tbl->size(); ++i)
                if ((*tbl)[i] == b) return static_cast<int>(i);
            return -1;
        };
        struct Case {
            double brg, want;
        };
        const Case cases[] = {{-0.49, -0.5}, {-0.38, -0.5}, {-0.37, -0.25}, {-0.375, -0.25} /* halfway: the greater */,
                              {0.06, 0.0}, {0.0625, 0.125} /* halfway */, {0.25, 0.375} /* halfway */,
                              {0.24, 0.125}, {5.0, 0.375}, {-5.0, -0.5} /* outside the fan: the edge */,
                              {0.0, 0.0}, {-0.125, 0.0} /* halfway */};
        for (const Case& c : cases) {
            int r = -1, b = -1;
            ASSERT_TRUE(img.GetRngBrg(5.0, c.brg, r, b)) << c.brg;
            EXPECT_EQ(r, 40);
            EXPECT_EQ(b, idxOf(c.want)) << "brg " << c.brg << (tbl == &rising ? " rising" : " falling");
        }
    }
}

TEST(GetRngBrg, TheRangeDecides)
{
    CTgtImg img;
    MakeFan(img, {-0.125, 0.0, 0.125});
    int r = -7, b = -7;
    // Line = floor(rng / 0.125 + 0.5): 13.68 m -> 109.94 -> 109 (the last
    // line); 13.7 m -> 110.1 -> 110 (the end): false.
    EXPECT_TRUE(img.GetRngBrg(13.68, 0.0, r, b));
    EXPECT_EQ(r, 109);
    EXPECT_EQ(b, 1);
    r = b = -7;
    EXPECT_FALSE(img.GetRngBrg(13.7, 0.0, r, b));
    EXPECT_EQ(r, -7);
    EXPECT_EQ(b, -7);
    EXPECT_TRUE(img.GetRngBrg(1.1875, 0.0, r, b));  // 9.5 + 0.5 -> line 10, the first
    EXPECT_EQ(r, 10);
    r = -7;
    EXPECT_FALSE(img.GetRngBrg(1.18, 0.0, r, b));  // line 9
    EXPECT_FALSE(img.GetRngBrg(-3.0, 0.0, r, b));
    EXPECT_EQ(r, -7);

    img.Ping()->m_sosXd = 0.0f;  // metres per line 0
    EXPECT_FALSE(img.GetRngBrg(5.0, 0.0, r, b));
    img.Ping()->m_sosXd = 1600.0f;
    double* tbl = img.Ping()->m_pBrgTbl;  // no table
    img.Ping()->m_pBrgTbl = nullptr;
    EXPECT_FALSE(img.GetRngBrg(5.0, 0.0, r, b));
    img.Ping()->m_pBrgTbl = tbl;
    EXPECT_EQ(r, -7);
}

TEST(GetRngBrg, OnlyTheWindowOfTheImageIsSearched)
{
    CTgtImg img;
    MakeFan(img, {-0.3, -0.2, -0.1, 0.0, 0.1, 0.2});
    img.m_nStartBrg = 2;
    img.m_nEndBrg = 5;
    int r = 0, b = 0;
    ASSERT_TRUE(img.GetRngBrg(5.0, -0.3, r, b));
    EXPECT_EQ(b, 2);
    ASSERT_TRUE(img.GetRngBrg(5.0, 0.2, r, b));
    EXPECT_EQ(b, 4);
}

namespace {

void SetupLevels(CTgtImg& img)
{
    img.Ping()->m_gainMode = 1;
    img.Alloc(4, 4);
    img.m_nStartRng = 0;
    img.m_nEndRng = 4;
    img.m_nStartBrg = 0;
    img.m_nEndBrg = 4;
    std::memset(img.m_pImg, 0, 16);
}

}  // namespace

TEST(GetIntensityDB, LevelsGainsAndLimits)
{
    CTgtImg img;
    SetupLevels(img);
    EXPECT_EQ(img.GetIntensityDB(1, 1, 1), -84.0) << "all zero reads -84, not 0";
    img.m_pImg[1 * 4 + 1] = 64;
    EXPECT_EQ(img.GetIntensityDB(1, 1, 0), 0.0);  // 64 at gain 1 is 0 dB
    img.m_pImg[1 * 4 + 1] = 255;
    EXPECT_EQ(img.GetIntensityDB(1, 1, 0), 12.0);  // 12.006 limited
    img.m_pImg[1 * 4 + 1] = 1;
    EXPECT_DOUBLE_EQ(img.GetIntensityDB(1, 1, 0), 20.0 * std::log10(1.0 / 64.0));

    // Line records: line 2 recorded with gain 4, line 3 with 0 (counts as 1).
    img.AllocLX(4, 4);
    img.m_pLX[2 * 4] = 4;
    img.m_pImg[2 * 4 + 3] = 128;
    img.m_pImg[3 * 4 + 3] = 32;
    EXPECT_DOUBLE_EQ(img.GetIntensityDB(2, 3, 0), 20.0 * std::log10(128.0 / 4.0 * 0.015625));
    EXPECT_DOUBLE_EQ(img.GetIntensityDB(3, 3, 0), 20.0 * std::log10(32.0 * 0.015625));
    // The square takes the best level: from (3, 2) with win 1 it reaches (2, 3) and (3, 3).
    EXPECT_DOUBLE_EQ(img.GetIntensityDB(3, 2, 1), 20.0 * std::log10(32.0 * 0.015625));
    // A window larger than the image is cut at the edges.
    EXPECT_DOUBLE_EQ(img.GetIntensityDB(0, 0, 100), 20.0 * std::log10(32.0 * 0.015625));
}

TEST(GetIntensityDB, ZeroOutsideTheSpanOrInTheWrongGainMode)
{
    CTgtImg img;
    SetupLevels(img);
    img.m_pImg[5] = 200;
    EXPECT_EQ(img.GetIntensityDB(4, 1, 0), 0.0);
    EXPECT_EQ(img.GetIntensityDB(-1, 1, 0), 0.0);
    EXPECT_EQ(img.GetIntensityDB(1, 4, 0), 0.0);
    img.m_nStartRng = 2;
    EXPECT_EQ(img.GetIntensityDB(1, 1, 0), 0.0);
    img.m_nStartRng = 0;
    img.Ping()->m_gainMode = 0;
    EXPECT_EQ(img.GetIntensityDB(1, 1, 0), 0.0);
    img.Ping()->m_gainMode = 2;
    EXPECT_EQ(img.GetIntensityDB(1, 1, 0), 0.0);
}
