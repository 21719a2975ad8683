#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>

TEST(PingDerived, GainBlankCountsSamplesAtFixedSpeed)
{
    CPing p;
    EXPECT_EQ(p.GainBlank(), 0u);
    p.m_gainBlank = 3;
    EXPECT_EQ(p.GainBlank(), 120u);  // 3 m out and back at 1500 m/s, 30 kHz
    p.m_sosXd = 1400.0f;             // the ping's speed plays no part
    EXPECT_EQ(p.GainBlank(), 120u);
    p.m_rx1Idx = 10;                 // 3375 Hz: 13.5 samples, truncated
    EXPECT_EQ(p.GainBlank(), 13u);
    p.m_rx1Idx = 0;
    p.m_gainBlank = -1;
    EXPECT_EQ(p.GainBlank(), static_cast<unsigned int>(-40));
}

TEST(PingDerived, TimeVariedGainWord)
{
    CPing p;
    EXPECT_EQ(p.TVG(), 6917u);  // (54 << 7) + 5
    // On the 27 kHz row the absorption part reaches its limit at 53.
    p.m_rx1Idx = 10;
    p.m_absorbGain = 52;
    EXPECT_EQ(p.TVG() >> 7, 503u);
    p.m_absorbGain = 53;
    EXPECT_EQ(p.TVG(), (511u << 7) + 5u);
    p.m_absorbGain = 30000;
    EXPECT_EQ(p.TVG() >> 7, 511u);
    p.m_absorbGain = -1;  // unsigned arithmetic: a huge quotient, limited
    EXPECT_EQ(p.TVG() >> 7, 511u);
    // The spreading part is added, not masked: 110 * 1.17 = 128.7 carries.
    p.m_rx1Idx = 0;
    p.m_absorbGain = 50;
    p.m_spreadGain = 110;
    EXPECT_EQ(p.TVG(), (55u << 7) + 0u);
    p.m_spreadGain = 0;
    p.m_absorbGain = 0;
    EXPECT_EQ(p.TVG(), 0u);
}

TEST(PingDerived, ScanRateAndElements)
{
    CPing p;
    const unsigned int want[] = {8, 16, 32, 64, 128, 16, 16};
    for (int c = 0; c < 7; ++c) {
        p.m_scanRate = static_cast<BYTE>(c);
        EXPECT_EQ(p.ScanRate(), want[c]) << c;
    }
    p.m_scanRate = 255;
    EXPECT_EQ(p.ScanRate(), 16u);

    EXPECT_EQ(p.NElements(), 64u);
    p.m_halfArr = 1;
    EXPECT_EQ(p.NElements(), 32u);
    p.m_rx1Idx = 10;
    EXPECT_EQ(p.NElements(), 18u);
}

TEST(PingDerived, TransferWidthCases)
{
    CPing p;
    EXPECT_EQ(p.TransferWidth(), 512u);  // typed transfer, 16-bit beams
    p.m_dataType = 1;
    EXPECT_EQ(p.TransferWidth(), 1024u);
    p.SetNumBeams(100);
    EXPECT_EQ(p.TransferWidth(), 400u);
    p.m_dataType = 7;
    EXPECT_EQ(p.TransferWidth(), 1024u);

    p.m_typedXfer = 0;
    p.m_bfInXd = 1;
    EXPECT_EQ(p.TransferWidth(), 200u);
    p.m_bfBits = 0;
    EXPECT_EQ(p.TransferWidth(), 100u);
    p.m_bfBits = 2;  // anything but 1 is one byte
    EXPECT_EQ(p.TransferWidth(), 100u);

    // Element data: half of the 64-element row weighs as the full 32-element row.
    p.m_bfInXd = 0;
    p.m_halfArr = 1;
    EXPECT_EQ(p.NElements(), 32u);
    EXPECT_EQ(p.TransferWidth(), 64u);
    CPing q;
    q.m_typedXfer = 2;
    q.m_rx1Idx = 2;  // 32 elements
    EXPECT_EQ(q.TransferWidth(), 64u);
}

TEST(PingDerived, ExtModeFlagsBits)
{
    CPing p;
    p.m_bfInXd = 1;
    EXPECT_EQ(p.ExtModeFlags(), 0x1D);  // focus 2, 16-bit beams
    p.m_bfFocus = 3;
    p.m_bfBits = 0;
    EXPECT_EQ(p.ExtModeFlags(), 0xDD);
    p.m_bfFocus = 1;
    p.m_bfBits = 1;
    EXPECT_EQ(p.ExtModeFlags(), 0x1E);
    p.m_bfFocus = 0;
    EXPECT_EQ(p.ExtModeFlags(), 0x1C);
    p.m_autoXdGain = 1;
    EXPECT_EQ(p.ExtModeFlags(), 0x3C);

    // Element data: bit 0x40 except from the full 256-element array.
    CPing e;
    EXPECT_EQ(e.ExtModeFlags(), 0x40);
    e.m_rx1Idx = 6;
    EXPECT_EQ(e.ExtModeFlags(), 0x00);
    e.m_halfArr = 1;
    EXPECT_EQ(e.ExtModeFlags(), 0x40);
    e.m_autoXdGain = 5;
    e.m_bfFocus = 3;  // focus bits need beams in the head
    EXPECT_EQ(e.ExtModeFlags(), 0x60);
}

TEST(PingDerived, LineConversionsRoundTrip)
{
    CPing p;
    p.m_modFreq = 37000;
    p.m_sosXd = 1487.3f;
    p.SetSOSAtXd(1487.3f);
    EXPECT_EQ(p.m_rlTime, 1.0 / 37000);
    for (int l : {0, 1, 2, 399, 400, 1234, 65535}) {
        EXPECT_EQ(p.GetRngL(p.GetTime(1000u * static_cast<unsigned int>(l))), l) << l;
        const int back = p.GetImgRL(p.GetImgRLM(l));
        EXPECT_TRUE(back == l || back == l + 1) << l << " -> " << back;
    }
    EXPECT_DOUBLE_EQ(p.GetTime(1500), 1.5 / 37000);
    EXPECT_EQ(p.GetRngL(0.4999 / 37000), 0);  // rounded to the nearest line
    EXPECT_EQ(p.GetRngL(0.5001 / 37000), 1);
    EXPECT_DOUBLE_EQ(p.GetImgRLM(400), 1487.3f * 0.5 * 400 / 37000);
    EXPECT_EQ(p.GetImgRL(p.GetImgRLM(400) + 1e-6), 401);  // rounded up

    // Target lines count at the undecimated rate.
    p.m_baseMF = 4 * 37000;
    EXPECT_DOUBLE_EQ(p.GetTgtRLM(400), p.GetImgRLM(100));

    double a = 1, b = 2;
    p.GetTxData(3.0, a, b);
    EXPECT_EQ(a, 0.0);
    EXPECT_EQ(b, 0.0);
}

TEST(PingDerived, BearingsBeforeAndAfterSetSOSAtXd)
{
    CPing p;
    const unsigned int mid = 1000u * 128u;
    EXPECT_EQ(p.GetBrg(mid), 0.0);
    EXPECT_DOUBLE_EQ(p.GetBrg(mid + 1000), std::asin(0.0078125));
    EXPECT_DOUBLE_EQ(p.GetBrg(mid - 10500), std::asin(-10.5 * 0.0078125));
    EXPECT_EQ(p.GetBrgL(0.0), 128);
    // Beam line and bearing invert each other across the fan.
    for (int b = 0; b < 256; ++b) EXPECT_EQ(p.GetBrgL(p.GetBrg(1000u * b)), b) << b;

    p.SetSOSAtXd(1450.0f);
    EXPECT_EQ(p.m_sosXd, 1450.0f);
    EXPECT_EQ(p.m_brgCentre, 127.0);
    const double scale = 1450.0 / (256.0 * 240000.0 * static_cast<double>(0.003123f));
    EXPECT_DOUBLE_EQ(p.m_brgScale, scale);
    EXPECT_DOUBLE_EQ(p.GetBrg(mid), std::asin(scale));
    EXPECT_EQ(p.GetBrg(127000), 0.0);
    EXPECT_EQ(p.m_endRngM, 12.0f);  // the gate stays

    // A new beam count puts the centre back at the half.
    p.SetNumBeams(200);
    EXPECT_EQ(p.m_brgCentre, 100.0);
    EXPECT_DOUBLE_EQ(p.m_brgScale, 1450.0 / (200.0 * 240000.0 * static_cast<double>(0.003123f)));
}

TEST(PingDerived, PingerAsReceiveRowGivesAnInfiniteScale)
{
    CPing p;
    p.m_rx1Idx = 17;  // pitch 0
    p.SetSOSAtXd(1500.0f);
    EXPECT_TRUE(std::isinf(p.m_brgScale));
}

TEST(PingDerived, BeyondEndFireIsNotANumber)
{
    CPing p;
    p.m_brgScale = 0.01;  // 128 lines from the centre make a sine of 1.28
    EXPECT_TRUE(std::isnan(p.GetBrg(0)));
    EXPECT_FALSE(std::isnan(p.GetBrg(100000)));
}
