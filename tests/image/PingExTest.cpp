// The extended ping block in every version, and the image's zoom block.
#include "core/platform/Zan.h"
#include "image/CTgtImg.h"
#include "ping/CPing.h"
#include "tests/image/ImageTestUtil.h"

#include <gtest/gtest.h>

using imgtest::Bytes;
using imgtest::Golden;

namespace {

class ZanMode {
public:
    explicit ZanMode(int mode) : m_old(Zan::zanMode) { Zan::zanMode = mode; }
    ~ZanMode() { Zan::zanMode = m_old; }

private:
    int m_old;
};

void SetPingFields(CTgtImg& img)
{
    CPing& p = *img.Ping();
    p.m_swGainRamp = 0x0102;
    p.m_rngDecim = 2;
    p.m_gainMode = 1;
    p.m_txSrcLevel = -3;
    p.m_percentGain = 55;
    img.m_vExPos = CV3(12.5, -7.25, 99.0);
    img.m_nRollTgt1 = 4;
    img.m_nRollTgt2 = 6;
    img.m_fRoll = -1.5f;
    img.m_nRollFlags = 0x81;
}

Golden Basic(UINT version, UINT size, UINT count)
{
    Golden g;
    g << 0u << version << size << count << 4u << WORD(0x0102) << WORD(2) << WORD(1) << WORD(0xFFFD) << WORD(55);
    return g;
}

Bytes StoreEx(CTgtImg& img)
{
    return imgtest::Record([&](CArchive& ar) { img.SerializePingEx(ar); });
}

ULONGLONG LoadEx(CTgtImg& img, const Bytes& b)
{
    return imgtest::Play(b, [&](CArchive& ar) { img.SerializePingEx(ar); });
}

}  // namespace

TEST(PingEx, PositionVersionIs46Bytes)
{
    ZanMode mode(0);
    CTgtImg img;
    SetPingFields(img);
    Golden g = Basic(0x34, 34, 0);
    g << 12.5 << -7.25;
    const Bytes b = StoreEx(img);
    ASSERT_EQ(b.size(), 46u);
    EXPECT_EQ(b, g.bytes());
}

TEST(PingEx, RollVersionIs37Bytes)
{
    ZanMode mode(1);
    CTgtImg img;
    SetPingFields(img);
    Golden g = Basic(0x21, 25, 0);
    g << BYTE(4) << BYTE(6) << -1.5f << BYTE(0x81);
    const Bytes b = StoreEx(img);
    ASSERT_EQ(b.size(), 37u);
    EXPECT_EQ(b, g.bytes());
}

TEST(PingEx, LineRecordsGoSecondHalfFirst)
{
    ZanMode mode(2);  // any mode but 1 writes the position version
    CTgtImg img;
    SetPingFields(img);
    img.AllocLX(3, 4);
    const WORD lx[6] = {10, 11, 20, 21, 30, 31};
    std::memcpy(img.m_pLX, lx, 12);
    Golden g = Basic(0x34, 34, 3);
    g << 12.5 << -7.25 << WORD(11) << WORD(10) << WORD(21) << WORD(20) << WORD(31) << WORD(30);
    const Bytes b = StoreEx(img);
    EXPECT_EQ(b, g.bytes());

    CTgtImg back;
    back.Ping()->m_modFreq = 1000;
    EXPECT_EQ(LoadEx(back, b), 0u);
    ASSERT_EQ(back.m_nLXBytes, 12u);
    EXPECT_EQ(0, std::memcmp(back.m_pLX, lx, 12));
    EXPECT_EQ(back.m_nRngs, 3u);
    EXPECT_EQ(back.m_vExPos.x, 12.5);
    EXPECT_EQ(back.m_vExPos.y, -7.25);
    EXPECT_EQ(back.m_vExPos.z, 0.0);  // z is in no record
    EXPECT_EQ(back.Ping()->m_txSrcLevel, -3);
    EXPECT_EQ(back.Ping()->m_percentGain, 55);
    EXPECT_EQ(back.Ping()->m_baseMF, 2000);
}

TEST(PingEx, OlderFormStartsWithTheCount)
{
    Golden g;
    g << 5u << 4u;
    for (WORD i = 0; i < 5; ++i) g << WORD(100 + i) << WORD(i);
    CTgtImg img;
    img.Ping()->m_percentGain = 33;
    img.Ping()->m_swGainRamp = 9;
    EXPECT_EQ(LoadEx(img, g.bytes()), 0u);
    EXPECT_EQ(img.m_nRngs, 5u);
    const WORD* lx = reinterpret_cast<const WORD*>(img.m_pLX);
    EXPECT_EQ(lx[0], 0);
    EXPECT_EQ(lx[1], 100);
    EXPECT_EQ(lx[9], 104);
    EXPECT_EQ(img.Ping()->m_percentGain, 33);
    EXPECT_EQ(img.Ping()->m_swGainRamp, 9);
}

TEST(PingEx, LongerHeaderIsSkipped)
{
    // Version 0x21 of size 40: 25 known bytes, 15 more to step over, then the
    // line records.
    Golden g = Basic(0x21, 40, 2);
    g << BYTE(1) << BYTE(2) << 0.5f << BYTE(3);
    g.Fill(15, 0xEE);
    g << WORD(7) << WORD(8) << WORD(9) << WORD(10);
    CTgtImg img;
    EXPECT_EQ(LoadEx(img, g.bytes()), 0u);
    EXPECT_EQ(img.m_fRoll, 0.5f);
    EXPECT_EQ(img.m_nRollFlags, 3);
    const WORD* lx = reinterpret_cast<const WORD*>(img.m_pLX);
    EXPECT_EQ(lx[0], 8);
    EXPECT_EQ(lx[1], 7);
    EXPECT_EQ(lx[3], 9);

    // An unknown later version: what its size lets the reader take, it takes
    // (including the percentage, as for every version from 0x20), and skips
    // the rest.
    Golden later = Basic(0x99, 30, 0);
    later.Fill(12, 0xAB);
    CTgtImg img2;
    img2.m_vExPos = CV3(1, 2, 3);
    EXPECT_EQ(LoadEx(img2, later.bytes()), 0u);
    EXPECT_EQ(img2.Ping()->m_percentGain, 55);
    EXPECT_EQ(img2.m_vExPos, CV3(1, 2, 3));
}

TEST(PingEx, OldVersionsDerivePercentGain)
{
    struct Case {
        WORD mode;
        short spread;
        short want;
    };
    for (const Case c : {Case{0, 37, 7}, Case{0, -37, -7}, Case{1, 37, 0}, Case{2, 37, 10}, Case{3, 37, 44}}) {
        Golden g;
        g << 0u << 1u << 23u << 0u << 4u << WORD(0) << WORD(1) << WORD(c.mode) << WORD(0);
        g << BYTE(1) << BYTE(2) << 2.0f << BYTE(5);  // version 1 carries the roll block
        CTgtImg img;
        img.Ping()->m_spreadGain = c.spread;
        img.Ping()->m_percentGain = 44;
        EXPECT_EQ(LoadEx(img, g.bytes()), 0u);
        EXPECT_EQ(img.Ping()->m_percentGain, c.want) << c.mode << " " << c.spread;
        EXPECT_EQ(img.m_fRoll, 2.0f);
    }
    // Version 0x14: basic fields and the position block.
    Golden p;
    p << 0u << 0x14u << 32u << 0u << 4u << WORD(0) << WORD(0) << WORD(2) << WORD(0) << 3.0 << 4.0;
    CTgtImg img;
    img.Ping()->m_baseMF = 1234;
    EXPECT_EQ(LoadEx(img, p.bytes()), 0u);
    EXPECT_EQ(img.m_vExPos.y, 4.0);
    EXPECT_EQ(img.Ping()->m_percentGain, 10);
    EXPECT_EQ(img.Ping()->m_baseMF, 1234);  // decimation 0 leaves it
}

TEST(PingEx, ShortHeaderAndWideRecords)
{
    // Size below 12: no count, nothing more of the ping, only the skip.
    Golden g;
    g << 0u << 0x34u << 6u;
    g.Fill(6, 0x11);
    CTgtImg img;
    img.AllocLX(2, 4);
    img.m_pLX[0] = 9;
    img.Ping()->m_swGainRamp = 77;
    EXPECT_EQ(LoadEx(img, g.bytes()), 0u);
    EXPECT_EQ(img.Ping()->m_swGainRamp, 77);
    EXPECT_EQ(img.m_pLX[0], 9);  // count 0 leaves the line records

    // Records of 8 bytes keep their first 4.
    Golden w;
    w << 2u << 8u << WORD(1) << WORD(2) << 0xDEADBEEFu << WORD(3) << WORD(4) << 0xDEADBEEFu;
    CTgtImg wide;
    EXPECT_EQ(LoadEx(wide, w.bytes()), 0u);
    const WORD* lx = reinterpret_cast<const WORD*>(wide.m_pLX);
    EXPECT_EQ(wide.m_nLXBytes, 8u);
    EXPECT_EQ(lx[0], 2);
    EXPECT_EQ(lx[1], 1);
    EXPECT_EQ(lx[2], 4);

    // Decision: records of fewer than 4 bytes are stepped over.
    Golden n;
    n << 3u << 2u << WORD(1) << WORD(2) << WORD(3);
    CTgtImg narrow;
    EXPECT_EQ(LoadEx(narrow, n.bytes()), 0u);
    EXPECT_EQ(narrow.m_pLX, nullptr);
}

TEST(PingEx, DamagedCountsAreRefused)
{
    for (const Bytes& b : {(Golden() << 0x40000000u << 4u << 0u).bytes(),
                           (Golden() << 0u << 0x34u << 0x7FFFFFF0u).bytes(),
                           (Basic(0x34, 34, 0x20000000) << 1.0 << 2.0).bytes()}) {
        CTgtImg img;
        EXPECT_THROW(LoadEx(img, b), CArchiveException);
        EXPECT_EQ(img.m_pLX, nullptr);
    }
}

namespace {

Bytes PingZoom(CTgtImg& img)
{
    return imgtest::Record([&](CArchive& ar) { img.Ping()->SerializeAcousticZoom(ar); });
}

Bytes StoreZoom(CTgtImg& img, bool* pResult = nullptr)
{
    return imgtest::Record([&](CArchive& ar) {
        const bool b = img.SerializeAcousticZoom(ar);
        if (pResult) *pResult = b;
    });
}

}  // namespace

TEST(ZoomBlock, NoRegionEndsTheBlock)
{
    CTgtImg img;
    img.AllocAZ(2, 2);
    bool result = true;
    const Bytes b = StoreZoom(img, &result);
    EXPECT_FALSE(result);
    EXPECT_EQ(b, PingZoom(img));

    CTgtImg back;
    EXPECT_EQ(imgtest::Play(b, [&](CArchive& ar) { EXPECT_FALSE(back.SerializeAcousticZoom(ar)); }), 0u);
    EXPECT_EQ(back.m_nAZRngs, 0u);
}

TEST(ZoomBlock, RegionAndImage)
{
    CTgtImg img;
    img.Ping()->m_zoom.m_azOn = true;
    img.AllocAZ(3, 2);
    for (UINT i = 0; i < 6; ++i) img.m_pAZ[i] = static_cast<BYTE>(0xC0 + i);
    img.m_nAZStartBrg = 10;
    img.m_nAZEndBrg = 11;
    img.m_nAZStartRng = 500;
    img.m_nAZEndRng = 502;
    Golden g;
    const Bytes head = PingZoom(img);
    g.Raw(head.data(), head.size());
    g << 3u << 10u << 11u << 500u << 502u << 2u;
    g.Raw(img.m_pAZ, 6);
    bool result = false;
    const Bytes b = StoreZoom(img, &result);
    EXPECT_TRUE(result);
    EXPECT_EQ(b, g.bytes());

    CTgtImg back;
    EXPECT_EQ(imgtest::Play(b, [&](CArchive& ar) { EXPECT_TRUE(back.SerializeAcousticZoom(ar)); }), 0u);
    EXPECT_EQ(back.m_nAZBytes, 6u);
    EXPECT_EQ(back.m_pAZ[5], 0xC5);
    EXPECT_EQ(back.m_nAZEndRng, 502u);
    EXPECT_EQ(back.m_pAZLX, nullptr);  // the zoom line records are in no record
}

TEST(ZoomBlock, NoBearingsLeavesTheImage)
{
    CTgtImg img;
    img.Ping()->m_zoom.m_azOn = true;
    img.m_nAZRngs = 4;
    const Bytes b = StoreZoom(img);
    CTgtImg back;
    back.AllocAZ(2, 2);
    back.m_pAZ[0] = 7;
    imgtest::Play(b, [&](CArchive& ar) { back.SerializeAcousticZoom(ar); });
    EXPECT_EQ(back.m_pAZ[0], 7);
    EXPECT_EQ(back.m_nAZBytes, 4u);
    EXPECT_EQ(back.m_nAZRngs, 4u);
}

TEST(ZoomBlock, DamagedSizeIsRefused)
{
    CTgtImg img;
    img.Ping()->m_zoom.m_azOn = true;
    img.AllocAZ(3, 2);
    Bytes b = StoreZoom(img);
    const UINT huge = 0x10000000;
    std::memcpy(b.data() + b.size() - 6 - 24, &huge, 4);  // m_nAZRngs
    CTgtImg back;
    EXPECT_THROW(imgtest::Play(b, [&](CArchive& ar) { back.SerializeAcousticZoom(ar); }), CArchiveException);
    EXPECT_EQ(back.m_pAZ, nullptr);
}
