#include <zandata/ZanData.h>

#include <gtest/gtest.h>

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

namespace {
// Gives every plain field a value unlike its default, so that a field that
// assignment forgets shows up.
void Scribble(CPing& p)
{
    p.m_recTag = 0xBEEF; p.m_pingID = 9; p.m_typedXfer = 0; p.m_active = 2; p.m_halfArr = 1;
    p.m_startRngL = 11; p.m_endRngL = 222; p.m_startRngM = 1.5f; p.m_endRngM = 33.0f; p.m_scanRate = 3;
    p.m_txLength = 6; p.m_modFreq = 25000; p.m_hostWord1 = 0x1111; p.m_sosXd = 1490.5f; p.m_pingFlags = -7;
    p.m_shading = 4; p.m_pingDelay = 2.5f; p.m_pingRateDesired = 9.0; p.m_hostWord2 = 0x2222;
    p.m_hostRate = 123.0; p.m_mainGain = -3; p.m_autoGain = 1; p.m_autoXdGain = 1; p.m_gainBlank = 4;
    p.m_adcInput = 5; p.m_spreadGain = 6; p.m_absorbGain = 7; p.m_bfInXd = 1; p.m_bfType = 8; p.m_bfFocus = 3;
    p.m_bfFocus2 = 1; p.m_bfWord1 = 10; p.m_bfGain = 11; p.m_bfWord2 = 12; p.m_nrmSpread = 0; p.m_bfWord3 = 13;
    p.m_bfBits = 0; p.m_bfGenPA = 1; p.m_bfRng = 14.0f; p.m_aperture = 130.0f; p.m_focusTbl = 15;
    p.m_txStart = 16; p.m_txLen = 17; p.m_txRadius = 18.0f; p.m_txRng = 19.0f; p.m_txWord = 20.0f;
    p.m_hasFtSet = 1; p.m_rlTime = 0.25; p.m_brgCentre = 63.0; p.m_brgScale = 0.01; p.m_azWord = -21;
    p.m_rleEnable = 1; p.m_rleLevel = 22; p.m_baseGain = 23; p.m_focusMode = 24; p.m_filterBank = 25;
    p.m_samChannel = 26; p.m_samRow = 27; p.m_disableOOW = 1; p.m_swGainRamp = 28; p.m_trigger = 29;
    p.m_azVersion = 1; p.m_percentGain = 30; p.m_gainAssist = 0; p.m_dispPercent = 31; p.m_dispGainDB = 32;
    p.m_gainMode = 2; p.m_rngDecim = 4; p.m_txSrcLevel = 33; p.m_baseMF = 100000; p.m_dataType = 1;
    p.m_rx1ID = 34; p.m_tx1ID = 35; p.m_rx2ID = 36; p.m_tx2ID = 37; p.m_rx1Idx = 4; p.m_tx1Idx = 5;
    p.m_rx2Idx = 21; p.m_tx2Idx = 22;
    p.m_ftSet.m_nFeat[8] = 38; p.m_ftSet.m_aux[31] = 39; p.m_ftSet.m_dFeat[3] = 40.0;
    p.m_zoom.m_azOn = true; p.m_zoom.m_azHead = 41; p.m_zoom.m_azFactor = 2.5; p.m_zoom.m_azDecim = 3;
    p.m_zoom.m_azNumBeams = 42; p.m_zoom.m_azArg1 = 43.0; p.m_zoom.m_azArg2 = 44.0;
    p.m_zoom.m_azSetA.m_n[1] = 45; p.m_zoom.m_azSetB.m_d[0] = 46.0;
}

void ExpectSameFields(const CPing& a, const CPing& b)
{
#define SAME(f) EXPECT_EQ(a.f, b.f) << #f
    SAME(m_recTag); SAME(m_pingID); SAME(m_typedXfer); SAME(m_active); SAME(m_halfArr); SAME(m_startRngL);
    SAME(m_endRngL); SAME(m_startRngM); SAME(m_endRngM); SAME(m_scanRate); SAME(m_txLength); SAME(m_modFreq);
    SAME(m_hostWord1); SAME(m_sosXd); SAME(m_pingFlags); SAME(m_numBeams); SAME(m_shading); SAME(m_pingDelay);
    SAME(m_hostWord2); SAME(m_hostRate); SAME(m_mainGain); SAME(m_autoGain); SAME(m_autoXdGain);
    SAME(m_gainBlank); SAME(m_adcInput); SAME(m_spreadGain); SAME(m_absorbGain); SAME(m_bfInXd);
    SAME(m_bfType); SAME(m_bfFocus); SAME(m_bfFocus2); SAME(m_bfWord1); SAME(m_bfGain); SAME(m_bfWord2);
    SAME(m_nrmSpread); SAME(m_bfWord3); SAME(m_bfBits); SAME(m_bfGenPA); SAME(m_bfRng); SAME(m_aperture);
    SAME(m_focusTbl); SAME(m_txStart); SAME(m_txLen); SAME(m_txRadius); SAME(m_txRng); SAME(m_txWord);
    SAME(m_hasFtSet); SAME(m_rlTime); SAME(m_azWord); SAME(m_rleEnable); SAME(m_rleLevel);
    SAME(m_baseGain); SAME(m_focusMode); SAME(m_filterBank); SAME(m_samChannel); SAME(m_samRow);
    SAME(m_disableOOW); SAME(m_swGainRamp); SAME(m_trigger); SAME(m_percentGain); SAME(m_gainAssist);
    SAME(m_dispPercent); SAME(m_dispGainDB); SAME(m_gainMode); SAME(m_rngDecim); SAME(m_txSrcLevel);
    SAME(m_baseMF); SAME(m_dataType); SAME(m_rx1ID); SAME(m_tx1ID); SAME(m_rx2ID); SAME(m_tx2ID);
    SAME(m_rx1Idx); SAME(m_tx1Idx); SAME(m_rx2Idx); SAME(m_tx2Idx);
    SAME(m_ftSet.m_nFeat[8]); SAME(m_ftSet.m_aux[31]); SAME(m_ftSet.m_dFeat[3]);
    SAME(m_zoom.m_azOn); SAME(m_zoom.m_azHead); SAME(m_zoom.m_azFactor); SAME(m_zoom.m_azDecim);
    SAME(m_zoom.m_azNumBeams); SAME(m_zoom.m_azArg1); SAME(m_zoom.m_azArg2); SAME(m_zoom.m_azSetA.m_n[1]);
    SAME(m_zoom.m_azSetB.m_d[0]);
#undef SAME
}
} // namespace

TEST(PingAssign, CopiesEveryFieldButRateAndZoomVersion)
{
    CPing src;
    Scribble(src);
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
    ExpectSameFields(dst, src);
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
    Scribble(src);
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
