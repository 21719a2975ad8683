#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include "PingTestUtil.h"

#include <cstdlib>
#include <vector>

TEST(Ping, DefaultsAndStatics)
{
    CPing p;
    EXPECT_EQ(p.m_pingID, 1);
    EXPECT_EQ(p.m_typedXfer, 1);
    EXPECT_EQ(p.m_active, 1);
    EXPECT_EQ(p.m_endRngL, 400);
    EXPECT_EQ(p.m_endRngM, 12.0f);
    EXPECT_EQ(p.m_txLength, 4);
    EXPECT_EQ(p.m_modFreq, 40000);
    EXPECT_EQ(p.m_sosXd, 1500.0f);
    EXPECT_EQ(p.m_numBeams, 256);
    EXPECT_EQ(p.m_pingDelay, 20.0f);
    EXPECT_EQ(p.m_pingRateDesired, 5.0);
    EXPECT_EQ(p.m_hostRate, 30000.0);
    EXPECT_EQ(p.m_mainGain, 2024);
    EXPECT_EQ(p.m_spreadGain, 5);
    EXPECT_EQ(p.m_absorbGain, 50);
    EXPECT_EQ(p.m_bfFocus, 2);
    EXPECT_EQ(p.m_bfFocus2, 2);
    EXPECT_EQ(p.m_nrmSpread, 1);
    EXPECT_EQ(p.m_bfBits, 1);
    EXPECT_EQ(p.m_aperture, 120.0f);
    EXPECT_EQ(p.m_focusTbl, 31);
    EXPECT_EQ(p.m_txLen, 64);
    EXPECT_EQ(p.m_hasFtSet, 0);
    EXPECT_EQ(p.m_azVersion, 2);
    EXPECT_EQ(p.m_percentGain, 10);
    EXPECT_EQ(p.m_gainAssist, 1);
    EXPECT_EQ(p.m_dispPercent, -1);
    EXPECT_EQ(p.m_dispGainDB, -1);
    EXPECT_EQ(p.m_rngDecim, 1);
    EXPECT_EQ(p.m_baseMF, 40000);
    EXPECT_EQ(p.m_rlTime, 1.0 / 40000);
    EXPECT_EQ(p.m_brgCentre, 128.0);
    EXPECT_EQ(p.m_brgScale, 0.0078125);
    for (double d : p.m_ftSet.m_dFeat) EXPECT_EQ(d, 0.0);

    EXPECT_FALSE(p.m_zoom.m_azOn);
    EXPECT_EQ(p.m_zoom.m_azFactor, 1.5);
    EXPECT_EQ(p.m_zoom.m_azDecim, 1);
    EXPECT_EQ(p.m_zoom.m_azNumBeams, 0);
    EXPECT_EQ(p.m_zoom.m_azSetB.m_d[1], 0.0);

    EXPECT_EQ(CPing::MinGateLimit, 0.1f);
    EXPECT_EQ(CPing::MaxGateLimit, 150.0f);
    EXPECT_EQ(CPing::GateMinimumOffset, 0.2f);
    const double db[7] = {0, -15, -20, -25, -30, -35, -40};
    for (int i = 0; i < 7; ++i) EXPECT_EQ(CPing::s_shadeDB[i], db[i]);
}

TEST(Ping, BuffersAreSizedAndTheBeamWordsZeroed)
{
    CPing p;
    ASSERT_NE(p.m_pBrgTbl, nullptr);
    ASSERT_NE(p.m_pElem, nullptr);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(p.m_pBeamA[i], 0u);
        EXPECT_EQ(p.m_pBeamB[i], 0u);
    }
    // Every buffer holds its full count (ASan would object otherwise), and
    // the blocks belong to the C heap: realloc keeps them usable.
    p.m_pBrgTbl[255] = p.m_pBeamC[255] = p.m_pBeamD[255] = 1.0;
    p.m_pElem[63] = 2.0;
    void* q = std::realloc(p.m_pBeamD, 256 * sizeof(double));
    ASSERT_NE(q, nullptr);
    p.m_pBeamD = static_cast<double*>(q);
    EXPECT_EQ(p.m_pBeamD[255], 1.0);
}

TEST(Ping, RowAccessorsAndValid)
{
    CPing p;
    EXPECT_EQ(p.Rx1(), &CArrType::s_types[0]);
    EXPECT_EQ(p.Rx1()->m_nElements, 64);
    p.m_rx1Idx = 6;
    p.m_tx1Idx = 7;
    p.m_rx2Idx = 23;
    p.m_tx2Idx = 26;
    EXPECT_EQ(p.Rx1(), &CArrType::s_types[6]);
    EXPECT_EQ(p.Tx1(), &CArrType::s_types[7]);
    EXPECT_EQ(p.Rx2(), &CArrType::s_types[23]);
    EXPECT_EQ(p.Tx2(), &CArrType::s_types[26]);

    EXPECT_EQ(p.Valid(), 0);  // array identifiers are zero by default
    p.m_rx1ID = 3;
    EXPECT_EQ(p.Valid(), 0);
    p.m_tx1ID = 4;
    EXPECT_EQ(p.Valid(), 1);
    p.m_active = 0;
    EXPECT_EQ(p.Valid(), 0);
    p.m_active = -1;
    p.m_rx2ID = p.m_tx2ID = 0;  // the second pair plays no part
    EXPECT_EQ(p.Valid(), 1);
}

TEST(Ping, SetNumBeamsKeepsOrClearsAndRescales)
{
    CPing p;
    p.m_pBrgTbl[10] = 0.5;
    p.m_pBeamA[10] = 7;
    p.m_pBeamD[10] = 3.0;
    p.SetNumBeams(256);  // same count: nothing at all
    EXPECT_EQ(p.m_pBrgTbl[10], 0.5);
    EXPECT_EQ(p.m_pBeamA[10], 7u);
    p.SetNumBeams(0);  // zero: nothing either
    EXPECT_EQ(p.m_numBeams, 256);
    EXPECT_EQ(p.m_pBeamD[10], 3.0);

    p.m_sosXd = 1480.0f;
    p.m_brgCentre = 99.0;
    p.SetNumBeams(128);
    EXPECT_EQ(p.m_numBeams, 128);
    EXPECT_EQ(p.m_brgCentre, 64.0);
    EXPECT_DOUBLE_EQ(p.m_brgScale, 1480.0 / (128.0 * 240000.0 * static_cast<double>(0.003123f)));
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(p.m_pBrgTbl[i], 0.0);
        EXPECT_EQ(p.m_pBeamA[i], 0u);
        EXPECT_EQ(p.m_pBeamB[i], 0u);
        EXPECT_EQ(p.m_pBeamC[i], 0.0);
        EXPECT_EQ(p.m_pBeamD[i], 0.0);
    }
    EXPECT_EQ(p.m_rlTime, 1.0 / 40000);  // not touched

    p.SetNumBeams(-5);  // outside the field's range: ignored
    p.SetNumBeams(40000);
    EXPECT_EQ(p.m_numBeams, 128);

    // The scale follows the receive row.
    p.m_rx1Idx = 8;
    p.SetNumBeams(64);
    EXPECT_DOUBLE_EQ(p.m_brgScale, 1480.0 / (64.0 * 80000.0 * static_cast<double>(0.009375f)));
}

TEST(Ping, SetBearingTableForms)
{
    CPing p;
    std::vector<double> d(100);
    for (int i = 0; i < 100; ++i) d[i] = (i - 50) * 0.01;
    p.SetBearingTable(d.data(), 100);
    EXPECT_EQ(p.m_numBeams, 100);
    EXPECT_EQ(p.m_pBrgTbl[0], -0.5);
    EXPECT_EQ(p.m_pBrgTbl[99], 0.49);

    std::vector<float> f(100);
    for (int i = 0; i < 100; ++i) f[i] = 0.25f * i;
    p.SetBearingTable(f.data(), 0, true);  // n 0 keeps the count, still reads 100
    EXPECT_EQ(p.m_numBeams, 100);
    EXPECT_EQ(p.m_pBrgTbl[1], -0.25);
    EXPECT_EQ(p.m_pBrgTbl[99], -24.75);
    p.SetBearingTable(f.data(), 100, false);
    EXPECT_EQ(p.m_pBrgTbl[99], 24.75);

    // The same count keeps the table; a null table zeroes it either way.
    p.SetBearingTable(static_cast<double*>(nullptr), 100);
    EXPECT_EQ(p.m_pBrgTbl[99], 0.0);
    p.m_pBrgTbl[5] = 1.0;
    p.SetBearingTable(static_cast<float*>(nullptr), 50, false);
    EXPECT_EQ(p.m_numBeams, 50);
    EXPECT_EQ(p.m_pBrgTbl[5], 0.0);
}


TEST(PingAssign, CopiesEveryFieldButRateAndZoomVersion)
{
    CPing src;
    pingtest::Scribble(src);
    src.SetNumBeams(128);  // brgCentre 64
    src.m_brgCentre = 63.0;
    for (int i = 0; i < 128; ++i) {
        src.m_pBrgTbl[i] = i * 0.001;
        src.m_pBeamA[i] = i + 1u;
        src.m_pBeamB[i] = i + 2u;
        src.m_pBeamC[i] = i + 3.0;
        src.m_pBeamD[i] = i + 4.0;
    }

    CPing dst;  // 256 beams
    double* elem = dst.m_pElem;
    dst = src;
    EXPECT_EQ(dst.m_pingRateDesired, 5.0);
    EXPECT_EQ(dst.m_azVersion, 2);
    EXPECT_EQ(dst.m_pElem, elem);  // never copied nor resized
    EXPECT_EQ(dst.m_numBeams, 128);
    // The change of count recomputed the centre and scale from the copied fields.
    EXPECT_EQ(dst.m_brgCentre, 64.0);
    EXPECT_DOUBLE_EQ(dst.m_brgScale, 1490.5 / (128.0 * 240000.0 * static_cast<double>(0.003123f)));
    for (int i = 0; i < 128; ++i) {
        EXPECT_EQ(dst.m_pBrgTbl[i], src.m_pBrgTbl[i]);
        EXPECT_EQ(dst.m_pBeamA[i], src.m_pBeamA[i]);
        EXPECT_EQ(dst.m_pBeamB[i], src.m_pBeamB[i]);
        EXPECT_EQ(dst.m_pBeamC[i], src.m_pBeamC[i]);
        EXPECT_EQ(dst.m_pBeamD[i], src.m_pBeamD[i]);
    }
    EXPECT_NE(dst.m_pBrgTbl, src.m_pBrgTbl);
    dst.m_brgCentre = src.m_brgCentre;
    dst.m_brgScale = src.m_brgScale;
    dst.m_pingRateDesired = src.m_pingRateDesired;
    pingtest::ExpectSameFields(dst, src);
}

TEST(PingAssign, EqualCountsKeepTheSourceScale)
{
    CPing src, dst;
    src.m_brgCentre = 127.0;
    src.m_brgScale = 0.5;
    dst = src;
    EXPECT_EQ(dst.m_brgCentre, 127.0);
    EXPECT_EQ(dst.m_brgScale, 0.5);
}

TEST(PingAssign, NullSourceTableZeroFillsAndZeroCountKeepsBuffers)
{
    CPing src, dst;
    dst.m_pBrgTbl[3] = 9.0;
    std::free(src.m_pBrgTbl);
    src.m_pBrgTbl = nullptr;
    dst = src;
    EXPECT_EQ(dst.m_pBrgTbl[3], 0.0);

    CPing empty;
    empty.m_numBeams = 0;  // as a host might leave it; its buffers are not read
    dst.m_pBeamC[1] = 5.0;
    dst = empty;
    EXPECT_EQ(dst.m_numBeams, 256);
    EXPECT_EQ(dst.m_pBeamC[1], 5.0);
    empty.m_numBeams = 256;  // so that its destructor has consistent state
}

TEST(PingAssign, CopyConstructionAndSelfAssignment)
{
    CPing src;
    pingtest::Scribble(src);
    src.SetNumBeams(32);
    src.m_pBeamB[31] = 77;
    const CPing copy(src);
    EXPECT_EQ(copy.m_pingRateDesired, 5.0);  // as a copy made through a target record
    EXPECT_EQ(copy.m_numBeams, 32);
    EXPECT_EQ(copy.m_pBeamB[31], 77u);
    EXPECT_NE(copy.m_pBeamB, src.m_pBeamB);

    CPing& alias = src;
    src = alias;
    EXPECT_EQ(src.m_pBeamB[31], 77u);
    EXPECT_EQ(src.m_pingRateDesired, 9.0);
}
