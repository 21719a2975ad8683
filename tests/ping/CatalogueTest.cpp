#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <set>

namespace {
const CArrType& Row(int i) { return CArrType::s_types[i]; }
}

TEST(Catalogue, HasTwentySevenRowsWithTheDerivedRulesOnEveryRow)
{
    ASSERT_EQ(sizeof(CArrType::s_types) / sizeof(CArrType::s_types[0]), 27u);
    int nRx = 0;
    for (int i = 0; i < 27; ++i) {
        SCOPED_TRACE(i);
        const CArrType& r = Row(i);
        EXPECT_EQ(r.m_sampleRate, r.m_freq / 8);
        EXPECT_EQ(r.m_rotX, 0.0f);
        EXPECT_EQ(r.m_rotY, 0.0f);
        EXPECT_TRUE(r.m_type == 1 || r.m_type == 2 || r.m_type == 4);
        EXPECT_EQ(r.m_pitch == 0.0f, r.m_nElements == 1);  // only the pingers have no pitch
        if (r.m_name == CString(u"RX")) ++nRx;
    }
    EXPECT_EQ(nRx, 9);
}

TEST(Catalogue, SpotRowsCarryTheirExactValues)
{
    const CArrType& r0 = Row(0);
    EXPECT_EQ(r0.m_type, 1);
    EXPECT_EQ(r0.m_name, CString(u"Rx1"));
    EXPECT_EQ(r0.m_freq, 240000u);
    EXPECT_EQ(r0.m_nElements, 64);
    EXPECT_EQ(r0.m_pitch, 0.003123f);
    EXPECT_EQ(r0.m_clkPeriod, 1.0416666666666667e-08);
    EXPECT_EQ(r0.m_flags, 0x0001);
    EXPECT_EQ(r0.m_pos, CV3(0.206, 0, -0.006));

    const CArrType& r1 = Row(1);
    EXPECT_EQ(r1.m_pos, CV3(0.217, 0, -0.151));
    EXPECT_EQ(r1.m_rotZ, 90.0f);

    const CArrType& r24 = Row(24);
    EXPECT_EQ(r24.m_type, 2);
    EXPECT_EQ(r24.m_freq, 723380u);
    EXPECT_EQ(r24.m_sampleRate, 90422u);
    EXPECT_EQ(r24.m_pitch, 0.0011f);
    EXPECT_EQ(r24.m_clkPeriod, 1.3823992922115625e-08);
    EXPECT_EQ(r24.m_flags, 0x8000);

    EXPECT_EQ(Row(25).m_freq, 620040u);
    EXPECT_EQ(Row(25).m_sampleRate, 77505u);
    EXPECT_EQ(Row(26).m_clkPeriod, 1.6127991742468226e-08);
    EXPECT_EQ(Row(10).m_sampleRate, 3375u);
    EXPECT_EQ(Row(10).m_clkPeriod, 4.166666666666667e-08);
    EXPECT_EQ(Row(8).m_clkPeriod, 3.1250000000000005e-08);
    EXPECT_EQ(Row(7).m_pos, CV3(0.56, 0, 0.039));
    EXPECT_EQ(Row(22).m_rotZ, 90.0f);
    EXPECT_EQ(Row(17).m_name, CString(u"240kHz Pinger"));
    EXPECT_EQ(Row(18).m_name, CString(u"80kHz Pinger"));
}

TEST(Catalogue, FamilyBitsAndRingOrientation)
{
    // Bit 0x1000 marks the 256-element receive array and nothing else.
    for (int i = 0; i < 27; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ((Row(i).m_flags & 0x1000) != 0, i == 6);
        EXPECT_EQ(Row(i).m_flags == 0x40, i == 12);  // the ring's receive row
    }
    EXPECT_EQ(Row(6).m_nElements, 256);
    // The ring's four transmitters face the four quarters.
    EXPECT_EQ(Row(13).m_rotZ, 0.0f);
    EXPECT_EQ(Row(14).m_rotZ, 90.0f);
    EXPECT_EQ(Row(15).m_rotZ, 180.0f);
    EXPECT_EQ(Row(16).m_rotZ, 270.0f);
    // The single-bit families 0..3 and 13..16 each own a distinct bit.
    std::set<unsigned short> bits;
    for (int i : {0, 1, 2, 3, 10, 11, 12, 13, 14, 15, 16}) bits.insert(Row(i).m_flags);
    EXPECT_EQ(bits.size(), 11u);
    EXPECT_EQ(Row(17).m_flags, Row(18).m_flags);
}

TEST(Catalogue, RowNumberNotNameIdentifiesAnArray)
{
    // Rows 4 and 21 differ only in their partners (rows 5 and 22).
    const CArrType& a = Row(4);
    const CArrType& b = Row(21);
    EXPECT_EQ(a.m_type, b.m_type);
    EXPECT_EQ(a.m_name, b.m_name);
    EXPECT_EQ(a.m_freq, b.m_freq);
    EXPECT_EQ(a.m_nElements, b.m_nElements);
    EXPECT_EQ(a.m_pitch, b.m_pitch);
    EXPECT_EQ(a.m_flags, b.m_flags);
    EXPECT_EQ(a.m_pos, b.m_pos);
    EXPECT_NE(Row(5).m_nElements, Row(22).m_nElements);
    EXPECT_NE(Row(5).m_rotZ, Row(22).m_rotZ);
    // Row 19 is row 4 with the 0x2000 family bit.
    EXPECT_EQ(Row(19).m_flags, 0x2000);
    EXPECT_EQ(Row(20).m_flags, 0x2000);
}

TEST(Catalogue, PingerOf80kHzRunsOnTheFastClock)
{
    EXPECT_EQ(Row(18).m_freq, 80000u);
    EXPECT_EQ(Row(18).m_clkPeriod, 1.0416666666666667e-08);
    EXPECT_NE(Row(18).m_clkPeriod, Row(8).m_clkPeriod);
    EXPECT_EQ(Row(17).m_pitch, 0.0f);
    EXPECT_EQ(Row(18).m_pitch, 0.0f);
}

TEST(Catalogue, ConstructorTakesFlagsLastAndCopiesFieldByField)
{
    CV3 pos(1, 2, 3);
    CArrType t(4, u"X", 1000, 125, 8, 0.5f, 1e-6, pos, 1.0f, 2.0f, 3.0f, 0x1234);
    EXPECT_EQ(t.m_flags, 0x1234);
    EXPECT_EQ(t.m_rotZ, 3.0f);
    EXPECT_EQ(t.m_pos, pos);
    CArrType u = CArrType::s_types[0];
    u = t;
    EXPECT_EQ(u.m_name, CString(u"X"));
    EXPECT_EQ(u.m_sampleRate, 125u);
    EXPECT_EQ(CArrType::s_types[0].m_name, CString(u"Rx1"));
}
