#include "Records.h"

#include <gtest/gtest.h>

#include <vector>

using rec::Bytes;

namespace {

// The ping record of a default CPing whose m_recTag is 0x1234: 69 bytes.
const Bytes kDefaultPing = {
    0x34, 0x12,              // m_recTag
    0x01,                    // m_pingID
    0x00, 0x00, 0x00, 0x00,  // m_halfArr
    0x04,                    // m_txLength
    0x00,                    // m_scanRate
    0x00, 0x80, 0xBB, 0x44,  // m_sosXd 1500
    0x00, 0x00,              // m_shading
    0xE8, 0x07,              // m_mainGain 2024
    0x00, 0x00,              // m_gainBlank
    0x00, 0x00,              // m_adcInput
    0x05, 0x00,              // m_spreadGain
    0x32, 0x00,              // m_absorbGain
    0x02, 0x00, 0x00, 0x00,  // m_bfFocus
    0x00, 0x00,              // m_bfGain
    0x00, 0x00, 0xF0, 0x42,  // m_aperture 120
    0x00, 0x00,              // m_txStart
    0x40, 0x00,              // m_txLen 64
    0x00, 0x00, 0x00, 0x00,  // m_txRadius
    0x00, 0x00, 0x00, 0x00,  // m_txRng
    0x40, 0x9C, 0x00, 0x00,  // m_modFreq 40000
    0x00, 0x01,              // m_numBeams 256
    0x00, 0x80, 0xBB, 0x44,  // m_sosXd again
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // rx1, rx2, tx1 ids, flags
    0x00, 0x00, 0x00, 0x00,  // row indices
};

// The 36 bytes behind the ping record for the values of Sample().
const Bytes kRecTail = {
    0xFD, 0xFF,                                      // m_sonarNo -3
    0x02, 0x00,                                      // m_tgtSide 2
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xD0, 0x3F,  // m_recVal1 0.25
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0xBF,  // m_recVal2 -0.5
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x3E, 0x40,  // m_elevDeg 30
    0x00, 0x00, 0x00, 0x00, 0x00, 0x20, 0x97, 0x40,  // m_sosAvg 1480
};

// Two targets, position form, with the count.
const Bytes kTgtList = {
    0x02, 0x00, 0x00, 0x00,                          // count
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x29, 0x40,  // x 12.5
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0xC0,  // y -4
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x59, 0x40,  // z 100
    0x10, 0x27, 0x00, 0x00,                          // m_rngK 10000
    0x00, 0xF4, 0x01, 0x00,                          // m_brgK 128000
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0, 0x3F,  // m_tgtValue 0.125
    0x80, 0x00, 0x01, 0x07,                          // level 128, kind 1, byte 7
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // second target at the origin
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0xFF, 0xFF, 0xFF, 0xFF,                          // m_rngK 0xFFFFFFFF
    0x00, 0x00, 0x00, 0x00,                          // m_brgK 0
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0xBF,  // m_tgtValue -0.5
    0x34, 0x12, 0x03, 0xFF,                          // level 0x1234, kind 3, byte 0xFF
};

// The same two targets, range and bearing form.
const Bytes kRBList = {
    0x02, 0x00, 0x00, 0x00,
    0x10, 0x27, 0x00, 0x00, 0x00, 0xF4, 0x01, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xC0, 0x3F, 0x80, 0x00, 0x01, 0x07,
    0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xE0, 0xBF, 0x34, 0x12, 0x03, 0xFF,
};

CTgt* NewTgt(double x, unsigned int rngK)
{
    auto* t = new CTgt;
    t->x = x;
    t->m_rngK = rngK;
    return t;
}

void Sample(CTgtRec& r)
{
    r.m_ping.m_recTag = 0x1234;
    r.m_sonarNo = -3;
    r.m_tgtSide = 2;
    r.m_recVal1 = 0.25;
    r.m_recVal2 = -0.5;
    r.m_elevDeg = 30.0;
    r.m_sosAvg = 1480.0;
    CTgt* a = NewTgt(12.5, 10000);
    a->y = -4.0;
    a->z = 100.0;
    a->m_brgK = 128000;
    a->m_tgtValue = 0.125;
    a->m_level = 128;
    a->m_kind = 1;
    a->m_tgtByte = 7;
    CTgt* b = NewTgt(0.0, 0xFFFFFFFFu);
    b->m_tgtValue = -0.5;
    b->m_level = 0x1234;
    b->m_kind = 3;
    b->m_tgtByte = 0xFF;
    r.AddTail(a);
    r.AddTail(b);
}

// A record with n targets whose x are 1..n.
void Fill(CTgtRec& r, int n)
{
    for (int i = 1; i <= n; ++i) r.AddTail(NewTgt(i, static_cast<unsigned int>(i)));
}

std::vector<CTgt*> Objects(const CTgtRec& r)
{
    std::vector<CTgt*> v;
    for (CZanPtr* p = r.GetHeadPos(); p;) v.push_back(r.GetNext(p));
    return v;
}

std::vector<double> Xs(const CTgtRec& r)
{
    std::vector<double> v;
    for (CTgt* t : Objects(r)) v.push_back(t->x);
    return v;
}

} // namespace

TEST(TgtRec, Defaults)
{
    CTgtRec r;
    EXPECT_NE(r.IsEmpty(), 0);
    EXPECT_EQ(r.m_sonarNo, 0);
    EXPECT_EQ(r.m_tgtSide, 0);
    EXPECT_EQ(r.m_recVal1, 0.0);
    EXPECT_EQ(r.m_elevDeg, 0.0);
    EXPECT_EQ(r.m_sosAvg, 1500.0);
    EXPECT_EQ(r.m_ping.m_numBeams, 256);
    EXPECT_TRUE((std::is_base_of_v<CList_Ptr<CTgt*>, CTgtRec>));
    r.ClearTgts();  // on an empty list: nothing
    EXPECT_NE(r.IsEmpty(), 0);
}

TEST(TgtRec, GoldenRecordWithTwoTargetsInEachForm)
{
    CTgtRec r;
    Sample(r);
    const Bytes rec = rec::Store([&](CArchive& ar) { r.Serialize(ar); });
    Bytes want = kDefaultPing;
    want.insert(want.end(), kRecTail.begin(), kRecTail.end());
    ASSERT_EQ(rec.size(), 69u + 36u);
    EXPECT_EQ(rec, want);

    EXPECT_EQ(rec::Store([&](CArchive& ar) { r.SerializeTgt(ar); }), kTgtList);
    EXPECT_EQ(rec::Store([&](CArchive& ar) { r.SerializeRB(ar); }), kRBList);

    // Everything behind each other, as an image record holds them.
    const Bytes all = rec::Store([&](CArchive& ar) {
        r.Serialize(ar);
        r.SerializeTgt(ar);
        r.SerializeRB(ar);
    });
    EXPECT_EQ(all.size(), rec.size() + kTgtList.size() + kRBList.size());
}

TEST(TgtRec, RoundTripIntoAReusedRecord)
{
    CTgtRec src;
    Sample(src);
    const Bytes bytes = rec::Store([&](CArchive& ar) {
        src.Serialize(ar);
        src.SerializeTgt(ar);
    });

    CTgtRec dst;
    Fill(dst, 3);
    const std::vector<CTgt*> before = Objects(dst);
    before[0]->m_rollMark = 2;
    before[0]->m_roll = 0.5f;
    EXPECT_EQ(rec::Load(bytes, [&](CArchive& ar) {
                  dst.Serialize(ar);
                  dst.SerializeTgt(ar);
              }),
              0u);
    EXPECT_EQ(dst.m_sonarNo, -3);
    EXPECT_EQ(dst.m_tgtSide, 2);
    EXPECT_EQ(dst.m_recVal2, -0.5);
    EXPECT_EQ(dst.m_sosAvg, 1480.0);
    const std::vector<CTgt*> after = Objects(dst);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0], before[0]);  // reused in place
    EXPECT_EQ(after[1], before[1]);
    EXPECT_EQ(after[0]->y, -4.0);
    EXPECT_EQ(after[0]->m_brgK, 128000u);
    EXPECT_EQ(after[0]->m_rollMark, 2);  // not recorded: kept
    EXPECT_EQ(after[0]->m_roll, 0.5f);
    EXPECT_EQ(after[1]->m_rngK, 0xFFFFFFFFu);
    EXPECT_EQ(rec::Store([&](CArchive& ar) { dst.SerializeTgt(ar); }), kTgtList);
}

TEST(TgtRec, RangeBearingListKeepsPositionsAndGrows)
{
    CTgtRec three;
    Fill(three, 3);
    const std::vector<CTgt*> before = Objects(three);
    EXPECT_EQ(rec::Load(kRBList, [&](CArchive& ar) { three.SerializeRB(ar); }), 0u);
    EXPECT_EQ(Objects(three), std::vector<CTgt*>(before.begin(), before.begin() + 2));
    EXPECT_EQ(Xs(three), (std::vector<double>{1.0, 2.0}));  // positions as they were
    EXPECT_EQ(three.GetHead()->m_rngK, 10000u);
    EXPECT_EQ(three.GetTail()->m_level, 0x1234);
    EXPECT_EQ(three.m_pTail->m_pNext, nullptr);

    CTgtRec none;
    EXPECT_EQ(rec::Load(kRBList, [&](CArchive& ar) { none.SerializeRB(ar); }), 0u);
    ASSERT_EQ(none.GetCount(), 2);
    EXPECT_EQ(Xs(none), (std::vector<double>{0.0, 0.0}));  // new targets at defaults
    EXPECT_EQ(rec::Store([&](CArchive& ar) { none.SerializeRB(ar); }), kRBList);
}

TEST(TgtRec, ZeroOrNegativeCountEmptiesTheList)
{
    for (int count : {0, -1, -2147483647 - 1}) {
        CTgtRec r;
        Fill(r, 2);
        Bytes b;
        rec::Le(b, count);
        rec::Put(b, {0xAA, 0xBB});  // whatever follows stays unread
        EXPECT_EQ(rec::Load(b, [&](CArchive& ar) { r.SerializeTgt(ar); }), 2u);
        EXPECT_NE(r.IsEmpty(), 0);
    }
    CTgtRec empty;
    const Bytes zero = {0, 0, 0, 0};
    EXPECT_EQ(rec::Store([&](CArchive& ar) { empty.SerializeRB(ar); }), zero);
}

TEST(TgtRec, StreamEndingBeforeTheCountRaises)
{
    Bytes b;
    rec::Le(b, 1000000000);  // trusted count, far more than the stream holds
    b.insert(b.end(), kRBList.begin() + 4, kRBList.end());
    CTgtRec r;
    Fill(r, 1);
    EXPECT_EQ(rec::CauseOf([&] { rec::Load(b, [&](CArchive& ar) { r.SerializeRB(ar); }); }), 3);
    // What was read is kept, owned by the record (no leak when it dies).
    EXPECT_EQ(r.GetCount(), 3);
    EXPECT_EQ(r.GetHead()->m_rngK, 10000u);
}

TEST(TgtRec, AssignmentReusesTargetsInPlace)
{
    CTgtRec three, five;
    Fill(three, 3);
    Fill(five, 5);
    three.m_sosAvg = 1490.0;
    three.m_elevDeg = 12.0;
    three.m_frame.SetOrg(CV3(1.0, 2.0, 3.0));
    three.m_ping.m_endRngL = 321;
    const std::vector<CTgt*> fiveObjs = Objects(five);

    // Three into five: the first three objects stay where they are, two go.
    five.GetHead()->m_rollMark = 9;
    three.GetHead()->m_rollMark = 1;
    five = three;
    EXPECT_EQ(Objects(five), std::vector<CTgt*>(fiveObjs.begin(), fiveObjs.begin() + 3));
    EXPECT_EQ(Xs(five), (std::vector<double>{1.0, 2.0, 3.0}));
    EXPECT_EQ(five.GetHead()->m_rollMark, 1);  // every field of the target copied
    EXPECT_NE(five.GetHead(), three.GetHead());
    EXPECT_EQ(five.m_sosAvg, 1490.0);
    EXPECT_EQ(five.m_elevDeg, 12.0);
    EXPECT_EQ(five.m_frame.Org(), CV3(1.0, 2.0, 3.0));
    EXPECT_EQ(five.m_ping.m_endRngL, 321);
    EXPECT_EQ(five.m_pTail->m_pNext, nullptr);

    // Five into three: three reused, two new at the tail.
    CTgtRec big, small;
    Fill(big, 5);
    Fill(small, 3);
    const std::vector<CTgt*> smallObjs = Objects(small);
    small = big;
    const std::vector<CTgt*> after = Objects(small);
    ASSERT_EQ(after.size(), 5u);
    EXPECT_EQ(std::vector<CTgt*>(after.begin(), after.begin() + 3), smallObjs);
    EXPECT_EQ(Xs(small), (std::vector<double>{1.0, 2.0, 3.0, 4.0, 5.0}));
    for (size_t i = 0; i < 5; ++i) EXPECT_NE(after[i], Objects(big)[i]);

    // Empty into full: every target deleted.
    const CTgtRec empty;
    small = empty;
    EXPECT_NE(small.IsEmpty(), 0);
    EXPECT_EQ(small.m_pTail, nullptr);

    small = small;  // self: nothing
    big = big;
    EXPECT_EQ(big.GetCount(), 5);
}

TEST(TgtRec, CopyConstructionMakesOwnTargets)
{
    CTgtRec src;
    Sample(src);
    const CTgtRec copy(src);
    ASSERT_EQ(copy.GetCount(), 2);
    EXPECT_NE(copy.GetHead(), src.GetHead());
    EXPECT_EQ(copy.GetHead()->y, -4.0);
    EXPECT_EQ(copy.m_recVal1, 0.25);
    src.ClearTgts();
    EXPECT_EQ(copy.GetTail()->m_level, 0x1234);
}

TEST(TgtRec, ZoomBlockGoesThroughThePing)
{
    CTgtRec r;
    const Bytes viaRec = rec::Store([&](CArchive& ar) { r.SerializeAcousticZoom(ar); });
    const Bytes viaPing = rec::Store([&](CArchive& ar) { r.m_ping.SerializeAcousticZoom(ar); });
    EXPECT_FALSE(viaRec.empty());
    EXPECT_EQ(viaRec, viaPing);
}
