#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include "PingTestUtil.h"

#include <vector>

using pingtest::CauseOf;
using pingtest::Loader;
using pingtest::Store;

namespace {

void Region(CPing& p)
{
    p.m_azWord = 0x01020304;
    p.m_zoom.m_azHead = 0x00AA;
    p.m_zoom.m_azOn = true;
    p.m_zoom.m_azArg1 = 1.0;
    p.m_zoom.m_azArg2 = -2.0;
    p.m_zoom.m_azDecim = 3;
    p.m_zoom.m_azNumBeams = 64;
    p.m_zoom.m_azFactor = 1.5;
}

const std::vector<BYTE> kHeadV2 = {0x02, 0x00, 0x00, 0x00, 0x04, 0x03, 0x02, 0x01};
const std::vector<BYTE> kOne = {0, 0, 0, 0, 0, 0, 0xF0, 0x3F};
const std::vector<BYTE> kMinusTwo = {0, 0, 0, 0, 0, 0, 0x00, 0xC0};
const std::vector<BYTE> kOneAndHalf = {0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
const std::vector<BYTE> kTwoAndHalf = {0, 0, 0, 0, 0, 0, 0x04, 0x40};

std::vector<BYTE> Cat(std::initializer_list<std::vector<BYTE>> parts)
{
    std::vector<BYTE> b;
    for (const auto& p : parts) b.insert(b.end(), p.begin(), p.end());
    return b;
}

// A block of the given version with its region on (head 0x0055, decim 5,
// 32 beams, factor 2.5), and a marker byte 0xEE behind it.
std::vector<BYTE> OnBlock(BYTE version)
{
    const std::vector<BYTE> head = {version, 0x00, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12};  // second word any value
    const std::vector<BYTE> start = {0x55, 0x00, 0x07};  // region on: any non-zero byte
    const std::vector<BYTE> tail = {0x05, 0x00, 0x20, 0x00};
    if (version == 0) return Cat({head, start, tail, kTwoAndHalf, {0xEE}});
    if (version == 1) return Cat({head, start, {0x99, 0x98}, tail, kTwoAndHalf, std::vector<BYTE>(24, 0x5A), {0xEE}});
    return Cat({head, start, kMinusTwo, kOne, tail, kTwoAndHalf, {0xEE}});
}

void ExpectRegionRead(const CPing& p)
{
    EXPECT_TRUE(p.m_zoom.m_azOn);
    EXPECT_EQ(p.m_zoom.m_azHead, 0x55);
    EXPECT_EQ(p.m_zoom.m_azDecim, 5);
    EXPECT_EQ(p.m_zoom.m_azNumBeams, 32);
    EXPECT_EQ(p.m_zoom.m_azFactor, 2.5);
    EXPECT_EQ(p.m_azWord, 0x12345678);
}

} // namespace

TEST(ZoomBlock, WritesTheVersionTwoLayout)
{
    CPing p;
    Region(p);
    bool on = false;
    const auto b = Store([&](CArchive& ar) { on = p.SerializeAcousticZoom(ar); });
    EXPECT_TRUE(on);
    const auto want = Cat({kHeadV2, {0xAA, 0x00, 0x01}, kOne, kMinusTwo, {0x03, 0x00, 0x40, 0x00}, kOneAndHalf});
    ASSERT_EQ(want.size(), 8u + 31u);
    EXPECT_EQ(b, want);
}

TEST(ZoomBlock, SwitchedOffRegionIsThreeBytesOfBody)
{
    CPing p;
    Region(p);
    p.m_zoom.m_azOn = false;
    bool on = true;
    const auto b = Store([&](CArchive& ar) { on = p.SerializeAcousticZoom(ar); });
    EXPECT_FALSE(on);
    EXPECT_EQ(b, Cat({kHeadV2, {0xAA, 0x00, 0x00}}));
}

TEST(ZoomBlock, AnOldVersionReadIsStoredAsTheLayoutWritten)
{
    CPing p;
    Region(p);
    p.m_azVersion = 1;  // as left by reading an old block
    const auto b = Store([&](CArchive& ar) { p.SerializeAcousticZoom(ar); });
    EXPECT_EQ(b[0], 0x02);
    EXPECT_EQ(p.m_azVersion, 1);  // storing changes nothing

    // The body alone ignores the version it is given when storing.
    CAcousticZoom z = p.m_zoom;
    EXPECT_EQ(Store([&](CArchive& ar) { z.SerializeAcousticZoom(ar, 0); }),
              std::vector<BYTE>(b.begin() + 8, b.end()));
}

TEST(ZoomBlock, ReadsEveryVersion)
{
    for (BYTE v : {0, 1, 2, 3, 200}) {
        SCOPED_TRACE(static_cast<int>(v));
        CPing p;
        p.m_zoom.m_azArg1 = 7.0;
        p.m_zoom.m_azArg2 = 8.0;
        const auto b = OnBlock(v);
        Loader l(b);
        EXPECT_TRUE(p.SerializeAcousticZoom(l.ar));
        EXPECT_EQ(p.m_azVersion, v);
        ExpectRegionRead(p);
        if (v >= 2) {
            EXPECT_EQ(p.m_zoom.m_azArg1, -2.0);
            EXPECT_EQ(p.m_zoom.m_azArg2, 1.0);
        } else {
            EXPECT_EQ(p.m_zoom.m_azArg1, 7.0);  // an older body leaves them
            EXPECT_EQ(p.m_zoom.m_azArg2, 8.0);
        }
        // Exactly the block was consumed: the marker is next.
        BYTE marker = 0;
        l.ar >> marker;
        EXPECT_EQ(marker, 0xEE);
        EXPECT_EQ(l.ar.GetRemaining(), 0u);
    }
    // Body sizes: 2 + 1 + 2 + 2 + 2 + 8 + 24 for version 1, 31 for version 2, 15 for version 0.
    EXPECT_EQ(OnBlock(1).size(), 8u + 41u + 1u);
    EXPECT_EQ(OnBlock(2).size(), 8u + 31u + 1u);
    EXPECT_EQ(OnBlock(0).size(), 8u + 15u + 1u);
}

TEST(ZoomBlock, SwitchedOffBodyLeavesTheRegionInEveryVersion)
{
    for (BYTE v : {0, 1, 2, 5}) {
        SCOPED_TRACE(static_cast<int>(v));
        CPing p;
        Region(p);
        p.m_zoom.m_azOn = true;
        const std::vector<BYTE> b = {v, 0x00, 0xFF, 0xFF, 0x09, 0x00, 0x00, 0x00, 0x11, 0x00, 0x00, 0xEE};
        Loader l(b);
        EXPECT_FALSE(p.SerializeAcousticZoom(l.ar));
        EXPECT_FALSE(p.m_zoom.m_azOn);
        EXPECT_EQ(p.m_zoom.m_azHead, 0x11);
        EXPECT_EQ(p.m_azWord, 9);
        EXPECT_EQ(p.m_zoom.m_azDecim, 3);
        EXPECT_EQ(p.m_zoom.m_azArg1, 1.0);
        BYTE marker = 0;
        l.ar >> marker;
        EXPECT_EQ(marker, 0xEE);
    }
}

TEST(ZoomBlock, RoundTripKeepsEveryRecordedField)
{
    CPing p;
    Region(p);
    p.m_zoom.m_azSetA.m_n[0] = 5;  // working values are in no block
    const auto b = Store([&](CArchive& ar) { p.SerializeAcousticZoom(ar); });
    CPing q;
    q.m_azVersion = 0;
    Loader l(b);
    EXPECT_TRUE(q.SerializeAcousticZoom(l.ar));
    EXPECT_EQ(q.m_azVersion, 2);
    EXPECT_EQ(q.m_azWord, p.m_azWord);
    EXPECT_EQ(q.m_zoom.m_azHead, p.m_zoom.m_azHead);
    EXPECT_EQ(q.m_zoom.m_azArg1, p.m_zoom.m_azArg1);
    EXPECT_EQ(q.m_zoom.m_azArg2, p.m_zoom.m_azArg2);
    EXPECT_EQ(q.m_zoom.m_azDecim, p.m_zoom.m_azDecim);
    EXPECT_EQ(q.m_zoom.m_azNumBeams, p.m_zoom.m_azNumBeams);
    EXPECT_EQ(q.m_zoom.m_azFactor, p.m_zoom.m_azFactor);
    EXPECT_EQ(q.m_zoom.m_azSetA.m_n[0], 0);
    EXPECT_EQ(Store([&](CArchive& ar) { q.SerializeAcousticZoom(ar); }), b);
}

TEST(ZoomBlock, ShortBlocksRaiseEndOfFile)
{
    for (BYTE v : {0, 1, 2}) {
        auto b = OnBlock(v);
        b.pop_back();  // the marker
        b.pop_back();  // and the last byte of the body
        CPing p;
        Loader l(b);
        EXPECT_EQ(CauseOf([&] { p.SerializeAcousticZoom(l.ar); }), CArchiveException::endOfFile) << int(v);
    }
}
