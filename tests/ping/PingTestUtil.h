#pragma once
// Helpers shared by the ping tests.
#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

#include <gtest/gtest.h>

#include <vector>

namespace pingtest {
// Gives every plain field a value unlike its default, so that a field that
// assignment forgets shows up.
inline void Scribble(CPing& p)
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

inline void ExpectSameFields(const CPing& a, const CPing& b)
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

using zantest::CauseOf;
using zantest::Store;
using Loader = zantest::CLoader;
} // namespace pingtest
