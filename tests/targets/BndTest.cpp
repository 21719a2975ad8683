#include "Records.h"

#include <gtest/gtest.h>

#include <cstring>

using rec::Bytes;

namespace {

CBnd SampleBnd()
{
    CBnd b;
    b.m_name = CString(u"ab");
    b.m_bndType = 3;
    b.m_firstBrg = -2;
    b.SetNRngs(2);
    b.m_pRngs[0].m_dNear = 1.0;
    b.m_pRngs[0].m_dFar = 2.0;
    b.m_pRngs[0].m_nVal1 = 1;
    b.m_pRngs[0].m_nVal2 = -1;
    b.m_pRngs[0].m_nVal3 = 7;
    b.m_pRngs[1].m_dNear = -1.0;
    b.m_pRngs[1].m_dFar = 0.5;
    b.m_pRngs[1].m_nVal1 = 0x10;
    b.m_pRngs[1].m_nVal2 = 0x20;
    b.m_pRngs[1].m_nVal3 = 0x30;
    return b;
}

const Bytes kSample = {
    0xFF, 0xFE, 0xFF, 0x02, 0x61, 0x00, 0x62, 0x00,  // name "ab", wide
    0x03, 0x00, 0x00, 0x00,                          // m_bndType (before the bearing)
    0xFE, 0xFF, 0xFF, 0xFF,                          // m_firstBrg -2
    0x02, 0x00, 0x00, 0x00,                          // m_nRngs
    // entry 0, raw 32 bytes
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // near 1.0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40,  // far 2.0
    0x01, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF,  // val1 1, val2 -1
    0x07, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // val3 7, padding
    // entry 1
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0xBF,  // near -1.0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x3F,  // far 0.5
    0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00,
    0x30, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
};

void ExpectSample(const CBnd& b)
{
    EXPECT_EQ(b.m_name, CString(u"ab"));
    EXPECT_EQ(b.m_bndType, 3u);
    EXPECT_EQ(b.m_firstBrg, -2);
    ASSERT_EQ(b.m_nRngs, 2u);
    ASSERT_NE(b.m_pRngs, nullptr);
    EXPECT_EQ(b.m_pRngs[0].m_dFar, 2.0);
    EXPECT_EQ(b.m_pRngs[0].m_nVal2, -1);
    EXPECT_EQ(b.m_pRngs[1].m_dNear, -1.0);
    EXPECT_EQ(b.m_pRngs[1].m_nVal3, 0x30);
}

} // namespace

TEST(SbRng, LayoutAndDefaults)
{
    EXPECT_EQ(sizeof(CSbRng), 32u);
    EXPECT_EQ(offsetof(CSbRng, m_dFar), 8u);
    EXPECT_EQ(offsetof(CSbRng, m_nVal1), 16u);
    EXPECT_EQ(offsetof(CSbRng, m_nVal3), 24u);
    const CSbRng s;
    BYTE img[32];
    std::memcpy(img, &s, 32);
    for (BYTE c : img) EXPECT_EQ(c, 0);  // padding too
}

TEST(SbRng, ShortFormIs24BytesAndKeepsVal3)
{
    CSbRng s;
    s.m_dNear = 1.0;
    s.m_dFar = 2.0;
    s.m_nVal1 = 1;
    s.m_nVal2 = -1;
    s.m_nVal3 = 99;
    const Bytes b = rec::Store([&](CArchive& ar) { s.Serialize(ar); });
    const Bytes want(kSample.begin() + 20, kSample.begin() + 44);
    EXPECT_EQ(b, want);

    CSbRng r;
    r.m_nVal3 = 5;
    EXPECT_EQ(rec::Load(b, [&](CArchive& ar) { r.Serialize(ar); }), 0u);
    EXPECT_EQ(r.m_dNear, 1.0);
    EXPECT_EQ(r.m_dFar, 2.0);
    EXPECT_EQ(r.m_nVal2, -1);
    EXPECT_EQ(r.m_nVal3, 5);
}

TEST(Bnd, GoldenRecordAndRoundTrip)
{
    CBnd b = SampleBnd();
    const Bytes got = rec::Store([&](CArchive& ar) { b.Serialize(ar); });
    EXPECT_EQ(got, kSample);

    CBnd r;  // a reused boundary holding more entries than the record
    r.m_name = CString(u"old name");
    r.SetNRngs(5);
    EXPECT_EQ(rec::Load(got, [&](CArchive& ar) { r.Serialize(ar); }), 0u);
    ExpectSample(r);
}

TEST(Bnd, EmptyBoundaryWritesNoEntries)
{
    CBnd b;
    b.m_bndType = 1;
    const Bytes got = rec::Store([&](CArchive& ar) { b.Serialize(ar); });
    const Bytes want = {0xFF, 0xFE, 0xFF, 0x00, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(got, want);

    CBnd r = SampleBnd();
    EXPECT_EQ(rec::Load(got, [&](CArchive& ar) { r.Serialize(ar); }), 0u);
    EXPECT_EQ(r.m_nRngs, 0u);
    EXPECT_EQ(r.m_pRngs, nullptr);
    EXPECT_EQ(r.m_bndType, 1u);
    EXPECT_TRUE(r.m_name.IsEmpty());
}

TEST(Bnd, CountBeyondTheArchiveRaisesBeforeAllocating)
{
    Bytes b(kSample.begin(), kSample.begin() + 16);
    rec::Le(b, 0x08000000u);  // 4 GiB of entries announced
    b.insert(b.end(), kSample.begin() + 20, kSample.end());
    CBnd r;
    r.SetNRngs(1);
    CSbRng* before = r.m_pRngs;
    EXPECT_EQ(rec::CauseOf([&] { rec::Load(b, [&](CArchive& ar) { r.Serialize(ar); }); }), 3);
    EXPECT_EQ(r.m_nRngs, 1u);
    EXPECT_EQ(r.m_pRngs, before);

    Bytes cut = kSample;  // one byte short of the second entry
    cut.pop_back();
    EXPECT_EQ(rec::CauseOf([&] { rec::Load(cut, [&](CArchive& ar) { r.Serialize(ar); }); }), 3);
}

TEST(Bnd, SetNRngs)
{
    CBnd b = SampleBnd();
    CSbRng* p = b.m_pRngs;
    b.SetNRngs(2);  // the present count: nothing
    EXPECT_EQ(b.m_pRngs, p);
    ExpectSample(b);
    b.SetNRngs(3);  // grows keeping the old entries
    EXPECT_EQ(b.m_pRngs[1].m_nVal3, 0x30);
    EXPECT_EQ(b.m_pRngs[2].m_dFar, 0.0);
    b.SetNRngs(1);
    EXPECT_EQ(b.m_nRngs, 1u);
    EXPECT_EQ(b.m_pRngs[0].m_dNear, 1.0);
    b.SetNRngs(0);
    EXPECT_EQ(b.m_pRngs, nullptr);
    EXPECT_EQ(b.m_nRngs, 0u);
}

TEST(Bnd, CopyGivesAnOwnBlock)
{
    const CBnd s = SampleBnd();
    CBnd c(s);
    ExpectSample(c);
    EXPECT_NE(c.m_pRngs, s.m_pRngs);
    c.m_pRngs[0].m_dNear = 9.0;
    EXPECT_EQ(s.m_pRngs[0].m_dNear, 1.0);

    CBnd d;
    d.SetNRngs(7);
    d = s;
    ExpectSample(d);
    d = d;
    ExpectSample(d);

    const CBnd empty;
    d = empty;  // no entries into some: none left
    EXPECT_EQ(d.m_nRngs, 0u);
    EXPECT_EQ(d.m_pRngs, nullptr);
    EXPECT_EQ(d.m_bndType, 0u);
    EXPECT_EQ(d.m_firstBrg, 0);
    EXPECT_TRUE(d.m_name.IsEmpty());
}
