#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include "PingTestUtil.h"

#include <cstdio>
#include <string>
#include <vector>

using pingtest::CauseOf;
using pingtest::Loader;
using pingtest::Store;

namespace {

// A ping with a value of its own in every recorded field.
CPing Chosen()
{
    CPing p;
    p.m_recTag = 0x1234;
    p.m_pingID = 5;
    p.m_halfArr = 1;
    p.m_txLength = 4;
    p.m_scanRate = 2;
    p.m_sosXd = 1480.0f;
    p.m_shading = 4;
    p.m_mainGain = 2024;
    p.m_gainBlank = -2;
    p.m_adcInput = 0x0102;
    p.m_spreadGain = 5;
    p.m_absorbGain = 50;
    p.m_bfFocus = 3;
    p.m_bfGain = -1;
    p.m_aperture = 120.0f;
    p.m_txStart = 0x10;
    p.m_txLen = 64;
    p.m_txRadius = 0.5f;
    p.m_txRng = 2.5f;
    p.m_modFreq = 40000;
    p.SetNumBeams(128);
    p.m_rx1ID = 0x0A0B;
    p.m_rx2ID = 2;
    p.m_tx1ID = 3;
    p.m_tx2ID = 99;  // not in the record
    p.m_pingFlags = static_cast<short>(0x8001);
    p.m_rx1Idx = 6;
    p.m_tx1Idx = 7;
    p.m_rx2Idx = 1;
    p.m_tx2Idx = 3;
    return p;
}

// The record of Chosen(), offset by offset.
const std::vector<BYTE> kRecord = {
    0x34, 0x12,              //  0 m_recTag
    0x05,                    //  2 m_pingID
    0x01, 0x00, 0x00, 0x00,  //  3 m_halfArr
    0x04,                    //  7 m_txLength
    0x02,                    //  8 m_scanRate
    0x00, 0x00, 0xB9, 0x44,  //  9 m_sosXd 1480.0f
    0x04, 0x00,              // 13 m_shading
    0xE8, 0x07,              // 15 m_mainGain 2024
    0xFE, 0xFF,              // 17 m_gainBlank -2
    0x02, 0x01,              // 19 m_adcInput
    0x05, 0x00,              // 21 m_spreadGain
    0x32, 0x00,              // 23 m_absorbGain
    0x03, 0x00, 0x00, 0x00,  // 25 m_bfFocus
    0xFF, 0xFF,              // 29 m_bfGain -1
    0x00, 0x00, 0xF0, 0x42,  // 31 m_aperture 120.0f
    0x10, 0x00,              // 35 m_txStart
    0x40, 0x00,              // 37 m_txLen
    0x00, 0x00, 0x00, 0x3F,  // 39 m_txRadius 0.5f
    0x00, 0x00, 0x20, 0x40,  // 43 m_txRng 2.5f
    0x40, 0x9C, 0x00, 0x00,  // 47 m_modFreq 40000
    0x80, 0x00,              // 51 m_numBeams 128
    0x00, 0x00, 0xB9, 0x44,  // 53 m_sosXd again
    0x0B, 0x0A,              // 57 m_rx1ID
    0x02, 0x00,              // 59 m_rx2ID
    0x03, 0x00,              // 61 m_tx1ID
    0x01, 0x80,              // 63 m_pingFlags
    0x06,                    // 65 m_rx1Idx
    0x01,                    // 66 m_rx2Idx
    0x07,                    // 67 m_tx1Idx
    0x03,                    // 68 m_tx2Idx
};

// A feature set with words 1..9, aux bytes 0xA0.., values 1, 2, 3, 4.
void FillFtSet(CFtSet& f)
{
    for (int i = 0; i < 9; ++i) f.m_nFeat[i] = static_cast<unsigned int>(i + 1);
    for (int i = 0; i < 32; ++i) f.m_aux[i] = static_cast<BYTE>(0xA0 + i);
    for (int i = 0; i < 4; ++i) f.m_dFeat[i] = i + 1.0;
}

std::vector<BYTE> FtSetBytes()
{
    std::vector<BYTE> b;
    for (BYTE i = 1; i <= 9; ++i) b.insert(b.end(), {i, 0, 0, 0});
    for (int i = 0; i < 32; ++i) b.push_back(static_cast<BYTE>(0xA0 + i));
    // The values go 0, 3, 2, 1: 1.0, 4.0, 3.0, 2.0.
    for (BYTE hi : {BYTE{0xF0}, BYTE{0x10}, BYTE{0x08}, BYTE{0x00}}) {
        b.insert(b.end(), {0, 0, 0, 0, 0, 0, hi, static_cast<BYTE>(hi == 0xF0 ? 0x3F : 0x40)});
    }
    return b;
}

} // namespace

TEST(PingRecord, StoresTheGoldenSixtyNineBytes)
{
    CPing p = Chosen();
    EXPECT_EQ(kRecord.size(), 69u);
    EXPECT_EQ(Store([&](CArchive& ar) { p.Serialize(ar); }), kRecord);
}

TEST(PingRecord, StoringChangesNothing)
{
    CPing p;
    pingtest::Scribble(p);
    p.m_hasFtSet = 0;
    const CPing before(p);
    Store([&](CArchive& ar) { p.Serialize(ar); });
    CPing after(p);
    pingtest::ExpectSameFields(after, before);
    EXPECT_EQ(p.m_pingRateDesired, 9.0);
}

TEST(PingRecord, LoadsIntoADifferentPingAndDerivesTheScales)
{
    CPing q;
    q.m_recTag = 0x7777;
    q.m_modFreq = 1;
    q.m_baseMF = 123;
    q.m_endRngL = 55;     // not in the record: kept
    q.m_tx2ID = 8;        // not in the record: kept
    q.SetSOSAtXd(1600.0f);  // centre one line short; the load resets it
    Loader l(kRecord);
    q.Serialize(l.ar);
    EXPECT_EQ(l.ar.GetRemaining(), 0u);

    EXPECT_EQ(q.m_recTag, 0x7777);
    EXPECT_EQ(q.m_pingID, 5);
    EXPECT_EQ(q.m_halfArr, 1);
    EXPECT_EQ(q.m_txLength, 4);
    EXPECT_EQ(q.m_scanRate, 2);
    EXPECT_EQ(q.m_sosXd, 1480.0f);
    EXPECT_EQ(q.m_shading, 4);
    EXPECT_EQ(q.m_mainGain, 2024);
    EXPECT_EQ(q.m_gainBlank, -2);
    EXPECT_EQ(q.m_adcInput, 0x0102);
    EXPECT_EQ(q.m_spreadGain, 5);
    EXPECT_EQ(q.m_absorbGain, 50);
    EXPECT_EQ(q.m_bfFocus, 3);
    EXPECT_EQ(q.m_bfGain, -1);
    EXPECT_EQ(q.m_aperture, 120.0f);
    EXPECT_EQ(q.m_txStart, 0x10);
    EXPECT_EQ(q.m_txLen, 64);
    EXPECT_EQ(q.m_txRadius, 0.5f);
    EXPECT_EQ(q.m_txRng, 2.5f);
    EXPECT_EQ(q.m_modFreq, 40000);
    EXPECT_EQ(q.m_numBeams, 128);
    EXPECT_EQ(q.m_rx1ID, 0x0A0B);
    EXPECT_EQ(q.m_rx2ID, 2);
    EXPECT_EQ(q.m_tx1ID, 3);
    EXPECT_EQ(q.m_tx2ID, 8);
    EXPECT_EQ(q.m_pingFlags, static_cast<short>(0x8001));
    EXPECT_EQ(q.m_rx1Idx, 6);
    EXPECT_EQ(q.m_rx2Idx, 1);
    EXPECT_EQ(q.m_tx1Idx, 7);
    EXPECT_EQ(q.m_tx2Idx, 3);
    EXPECT_EQ(q.m_endRngL, 55);

    EXPECT_EQ(q.m_rlTime, 1.0 / 40000);
    EXPECT_EQ(q.m_brgCentre, 64.0);
    EXPECT_EQ(q.m_baseMF, 40000);
    // From the receive row just read (row 6), not the one the ping had.
    EXPECT_DOUBLE_EQ(q.m_brgScale, 1480.0 / (128.0 * 240000.0 * static_cast<double>(0.003123f)));

    // Stored again, it gives the same bytes but for its own tag.
    auto again = kRecord;
    again[0] = again[1] = 0x77;
    EXPECT_EQ(Store([&](CArchive& ar) { q.Serialize(ar); }), again);
}

TEST(PingRecord, TheSecondSpeedOfSoundCounts)
{
    auto b = kRecord;
    b[9] = 0x00; b[10] = 0x00; b[11] = 0xAF; b[12] = 0x44;  // first 1400.0f
    CPing q;
    Loader l(b);
    q.Serialize(l.ar);
    EXPECT_EQ(q.m_sosXd, 1480.0f);
    EXPECT_DOUBLE_EQ(q.m_brgScale, 1480.0 / (128.0 * 240000.0 * static_cast<double>(0.003123f)));
}

TEST(PingRecord, BeamBuffersSurviveOnlyAnUnchangedCount)
{
    CPing q;
    q.SetNumBeams(128);
    q.m_pBrgTbl[7] = 0.25;
    q.m_pBeamA[7] = 3;
    {
        Loader l(kRecord);  // 128 beams
        q.Serialize(l.ar);
    }
    EXPECT_EQ(q.m_pBrgTbl[7], 0.25);
    EXPECT_EQ(q.m_pBeamA[7], 3u);

    auto b = kRecord;
    b[51] = 0x40;  // 64 beams
    {
        Loader l(b);
        q.Serialize(l.ar);
    }
    EXPECT_EQ(q.m_numBeams, 64);
    EXPECT_EQ(q.m_brgCentre, 32.0);
    EXPECT_EQ(q.m_pBrgTbl[7], 0.0);
    EXPECT_EQ(q.m_pBeamA[7], 0u);

    // A stored count of zero keeps the present count, which the scales use.
    b[51] = 0x00;
    q.m_pBeamC[3] = 4.0;
    {
        Loader l(b);
        q.Serialize(l.ar);
    }
    EXPECT_EQ(q.m_numBeams, 64);
    EXPECT_EQ(q.m_brgCentre, 32.0);
    EXPECT_EQ(q.m_pBeamC[3], 4.0);
}

TEST(PingRecord, WithFeatureSetIsOneHundredAndSixtyNineBytes)
{
    CPing p = Chosen();
    p.m_hasFtSet = 1;
    FillFtSet(p.m_ftSet);
    auto want = kRecord;
    const auto ft = FtSetBytes();
    ASSERT_EQ(ft.size(), 100u);
    want.insert(want.end(), ft.begin(), ft.end());
    const auto got = Store([&](CArchive& ar) { p.Serialize(ar); });
    ASSERT_EQ(got.size(), 169u);
    EXPECT_EQ(got, want);

    CPing q;
    q.m_hasFtSet = 1;
    Loader l(want);
    q.Serialize(l.ar);
    EXPECT_EQ(l.ar.GetRemaining(), 0u);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(q.m_ftSet.m_nFeat[i], i + 1u);
    for (int i = 0; i < 32; ++i) EXPECT_EQ(q.m_ftSet.m_aux[i], 0xA0 + i);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(q.m_ftSet.m_dFeat[i], i + 1.0);

    // A reader without the flag reads the ping record only.
    CPing r;
    Loader l2(want);
    r.Serialize(l2.ar);
    EXPECT_EQ(l2.ar.GetRemaining(), 100u);
    EXPECT_EQ(r.m_ftSet.m_dFeat[1], 0.0);
}

TEST(PingRecord, FeatureSetAloneRoundTrips)
{
    CFtSet f;
    FillFtSet(f);
    EXPECT_EQ(Store([&](CArchive& ar) { f.Serialize(ar); }), FtSetBytes());
    CFtSet g;
    Loader l(FtSetBytes());
    g.Serialize(l.ar);
    EXPECT_EQ(g.m_dFeat[0], 1.0);
    EXPECT_EQ(g.m_dFeat[1], 2.0);
    EXPECT_EQ(g.m_dFeat[2], 3.0);
    EXPECT_EQ(g.m_dFeat[3], 4.0);
    CFtSet h;
    h = g;
    EXPECT_EQ(h.m_aux[31], 0xBF);
    EXPECT_EQ(h.m_nFeat[8], 9u);
}

TEST(PingRecord, DamagedRecordsAreRefused)
{
    // Short stream: cause 3, the fields read so far kept.
    {
        CPing q;
        Loader l(std::vector<BYTE>(kRecord.begin(), kRecord.begin() + 40));
        EXPECT_EQ(CauseOf([&] { q.Serialize(l.ar); }), CArchiveException::endOfFile);
        EXPECT_EQ(q.m_pingID, 5);
        EXPECT_EQ(q.m_aperture, 120.0f);
        EXPECT_EQ(q.m_modFreq, 40000);
    }
    // A negative beam count is refused before it reaches the buffers.
    {
        auto b = kRecord;
        b[51] = 0x00; b[52] = 0x80;
        CPing q;
        Loader l(b);
        EXPECT_EQ(CauseOf([&] { q.Serialize(l.ar); }), CArchiveException::badIndex);
        EXPECT_EQ(q.m_numBeams, 256);
    }
    // So is a catalogue row past the end, in any of the four places.
    for (int at = 65; at <= 68; ++at) {
        auto b = kRecord;
        b[static_cast<size_t>(at)] = 27;
        CPing q;
        Loader l(b);
        EXPECT_EQ(CauseOf([&] { q.Serialize(l.ar); }), CArchiveException::badIndex) << at;
        EXPECT_EQ(q.m_rx1Idx, 0);
    }
    // Feature set cut short.
    {
        auto b = kRecord;
        b.resize(69 + 50, 0);
        CPing q;
        q.m_hasFtSet = 1;
        Loader l(b);
        EXPECT_EQ(CauseOf([&] { q.Serialize(l.ar); }), CArchiveException::endOfFile);
    }
}

TEST(PingRecord, RoundTripsThroughARealFile)
{
    const std::string path = ::testing::TempDir() + "ping_record.zrec";
    CPing p = Chosen();
    p.m_hasFtSet = 1;
    FillFtSet(p.m_ftSet);
    {
        CFile f;
        ASSERT_TRUE(f.Open(CString::FromUtf8(path), CFile::modeCreate | CFile::modeWrite));
        CArchive ar(&f, CArchive::store);
        p.Serialize(ar);
        p.Serialize(ar);
        ar.Close();
    }
    CFile f;
    ASSERT_TRUE(f.Open(CString::FromUtf8(path), CFile::modeRead));
    EXPECT_EQ(f.GetLength(), 2u * 169u);
    CArchive ar(&f, CArchive::load);
    CPing q, r;
    q.m_hasFtSet = r.m_hasFtSet = 1;
    q.Serialize(ar);
    r.Serialize(ar);
    EXPECT_EQ(q.m_ftSet.m_dFeat[3], 4.0);
    EXPECT_EQ(r.m_rx1ID, 0x0A0B);
    EXPECT_EQ(r.m_numBeams, 128);
    std::remove(path.c_str());
}
