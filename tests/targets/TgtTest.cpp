#include "Records.h"

#include <gtest/gtest.h>

using rec::Bytes;

namespace {

CTgt SampleTgt()
{
    CTgt t;
    t.x = 1.0;
    t.y = -2.0;
    t.z = 0.5;
    t.m_rngK = 0x01020304;
    t.m_brgK = 1000;
    t.m_tgtValue = 2.5;
    t.m_level = 255;
    t.m_kind = 2;
    t.m_tgtByte = 0xAB;
    t.m_rollMark = 1;
    t.m_roll = 0.25f;
    return t;
}

// The 20-byte tail of SampleTgt.
const Bytes kTail = {
    0x04, 0x03, 0x02, 0x01,                          // m_rngK
    0xE8, 0x03, 0x00, 0x00,                          // m_brgK 1000
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04, 0x40,  // m_tgtValue 2.5
    0xFF, 0x00,                                      // m_level
    0x02,                                            // m_kind
    0xAB,                                            // m_tgtByte
};
const Bytes kPos = {
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F,  // x 1.0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0,  // y -2.0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0x3F,  // z 0.5
};

void ExpectTail(const CTgt& t)
{
    EXPECT_EQ(t.m_rngK, 0x01020304u);
    EXPECT_EQ(t.m_brgK, 1000u);
    EXPECT_EQ(t.m_tgtValue, 2.5);
    EXPECT_EQ(t.m_level, 255);
    EXPECT_EQ(t.m_kind, 2);
    EXPECT_EQ(t.m_tgtByte, 0xAB);
}

} // namespace

TEST(Tgt, DefaultsAndLayout)
{
    const CTgt t;
    EXPECT_EQ(t.x, 0.0);
    EXPECT_EQ(t.z, 0.0);
    EXPECT_EQ(t.m_rngK, 0u);
    EXPECT_EQ(t.m_tgtValue, 0.0);
    EXPECT_EQ(t.m_level, 0);
    EXPECT_EQ(t.m_kind, 0);
    EXPECT_EQ(t.m_rollMark, 0);
    EXPECT_EQ(t.m_roll, 0.0f);
    EXPECT_FALSE(std::is_polymorphic_v<CTgt>);
    const CV3* v = &t;  // the position comes first
    EXPECT_EQ(static_cast<const void*>(v), static_cast<const void*>(&t));
}

TEST(Tgt, CopyTakesEverythingPositionAssignmentOnlyXYZ)
{
    const CTgt s = SampleTgt();
    CTgt c(s);
    EXPECT_EQ(c.m_rollMark, 1);
    EXPECT_EQ(c.m_roll, 0.25f);
    EXPECT_EQ(c.y, -2.0);

    CTgt t = s;
    t = CV3(7.0, 8.0, 9.0);
    EXPECT_EQ(t.x, 7.0);
    EXPECT_EQ(t.z, 9.0);
    ExpectTail(t);  // level and kind among the rest kept
    EXPECT_EQ(t.m_rollMark, 1);
    EXPECT_EQ(t.m_roll, 0.25f);
}

TEST(Tgt, PositionFormGoldenBytes)
{
    CTgt t = SampleTgt();
    const Bytes b = rec::Store([&](CArchive& ar) { t.SerializeTgt(ar); });
    Bytes want = kPos;
    want.insert(want.end(), kTail.begin(), kTail.end());
    ASSERT_EQ(b.size(), 44u);
    EXPECT_EQ(b, want);

    CTgt r;  // a reused target: the unrecorded fields stay
    r.m_rollMark = 2;
    r.m_roll = -1.5f;
    EXPECT_EQ(rec::Load(b, [&](CArchive& ar) { r.SerializeTgt(ar); }), 0u);
    EXPECT_EQ(static_cast<const CV3&>(r), CV3(1.0, -2.0, 0.5));
    ExpectTail(r);
    EXPECT_EQ(r.m_rollMark, 2);
    EXPECT_EQ(r.m_roll, -1.5f);
}

TEST(Tgt, RangeBearingFormLeavesThePositionAlone)
{
    CTgt t = SampleTgt();
    const Bytes b = rec::Store([&](CArchive& ar) { t.SerializeRngBrg(ar); });
    EXPECT_EQ(b, kTail);

    CTgt r;
    r = CV3(3.0, 4.0, 5.0);
    EXPECT_EQ(rec::Load(b, [&](CArchive& ar) { r.SerializeRngBrg(ar); }), 0u);
    EXPECT_EQ(static_cast<const CV3&>(r), CV3(3.0, 4.0, 5.0));
    ExpectTail(r);
}

TEST(Tgt, ShortRecordRaisesEndOfFile)
{
    Bytes b = kTail;
    b.pop_back();
    CTgt r;
    EXPECT_EQ(rec::CauseOf([&] { rec::Load(b, [&](CArchive& ar) { r.SerializeRngBrg(ar); }); }), 3);
}

TEST(Tgt, TargetListIsCompiledIntoTheLibrary)
{
    // The exported instantiation: every member usable through the library.
    CTgt a, b;
    CList_Ptr<CTgt*> l;
    l.AddTail(&a);
    l.InsertBefore(l.GetHeadPos(), &b);
    EXPECT_EQ(l.GetHead(), &b);
    EXPECT_EQ(l.GetIndex(&a), 1);
    CList_Ptr<CTgt*> c(l);
    c = l;
    EXPECT_EQ(c.RemoveTail(), &a);
    l.RemoveAll();
}
