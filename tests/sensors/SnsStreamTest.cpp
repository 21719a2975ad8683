// The stream carriers: their text, the data messages it sends, and that they
// are never stored.
#include "SnsrTestUtil.h"

#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// A panel that notes the data messages it is given.
class CDataTap : public CZanWnd {
public:
    std::vector<std::pair<int, void*>> m_got;
    void OnDataMsg(int id, void* data) override { m_got.emplace_back(id, data); }
};

} // namespace

TEST(SnsStream, ScadaTextRoundsTheFirstFiveToSinglePrecisionAndSends12001EachCall)
{
    CDataTap tap;
    CSnsStreamSCADA s;
    EXPECT_EQ(s.m_type, 12);
    s.m_scadaExtra[0] = 0.1;
    s.m_scadaExtra[1] = -2.5;
    s.m_scadaExtra[2] = 1234567.891;
    s.m_scadaVals[0] = 99.0;  // not shown
    s.m_scadaVals[1] = 98.0;  // not shown
    s.m_scadaVals[2] = 16777217.0;  // 2^24 + 1: single precision drops the 1
    s.m_scadaVals[3] = 0.3;
    s.m_scadaVals[4] = 16777217.0;  // the sixth keeps double precision
    EXPECT_EQ(s.GetString(0), u"0.100000, -2.500000, 1234567.875000, 16777216.000000, 0.300000, 16777217.000000");
    ASSERT_EQ(tap.m_got.size(), 1u);
    EXPECT_EQ(tap.m_got[0].first, 12001);
    EXPECT_EQ(tap.m_got[0].second, &s);
    s.GetString(0);
    EXPECT_EQ(tap.m_got.size(), 2u);
    EXPECT_EQ(CSnsStreamSCADA().GetString(), u"0.000000, 0.000000, 0.000000, 0.000000, 0.000000, 0.000000");
}

TEST(SnsStream, StallPingTextIsItsCountAndSends12003EachCall)
{
    CDataTap tap;
    CSnsStreamStallPing s;
    EXPECT_EQ(s.m_type, 13);
    EXPECT_EQ(s.m_stallFlag, 0);
    s.m_stallCount = 250;
    EXPECT_EQ(s.GetString(0), u"250");
    EXPECT_EQ(s.GetString(0), u"250");
    ASSERT_EQ(tap.m_got.size(), 2u);
    EXPECT_EQ(tap.m_got[1], std::make_pair(12003, static_cast<void*>(&s)));
    // A panel destroyed before the call isn't reached.
    auto* gone = new CDataTap;
    delete gone;
    s.GetString(0);
    EXPECT_EQ(tap.m_got.size(), 3u);
}

TEST(SnsStream, NothingIsStoredOrLoadedAndCopiesAreIndependent)
{
    CSnsStreamSCADA s;
    s.m_streamNames[0] = u"A";
    s.m_streamText = u"text";
    s.m_scadaCount = 7;
    s.m_streamFlag2 = 3;
    EXPECT_TRUE(snsrtest::Store(s).empty());
    const snsrtest::Bytes some = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(snsrtest::Load(some, s), some.size());  // not a byte read
    EXPECT_EQ(s.m_type, 12);
    CSnsStreamStallPing p;
    p.m_stallCount = 9;
    EXPECT_TRUE(snsrtest::Store(p).empty());
    EXPECT_EQ(snsrtest::Load(some, p), some.size());
    EXPECT_EQ(p.m_stallCount, 9);

    CSnsStreamSCADA copy(s);
    EXPECT_EQ(copy.m_scadaCount, 7);
    EXPECT_EQ(copy.m_streamFlag2, 3);
    copy.m_streamNames[0] = u"B";
    copy.m_streamText = u"other";
    EXPECT_EQ(s.m_streamNames[0], u"A");
    EXPECT_EQ(s.m_streamText, u"text");
    CSnsStreamStallPing pc;
    pc = p;
    pc.m_streamNames[1] = u"x";
    EXPECT_TRUE(p.m_streamNames[1].IsEmpty());

    // The factory makes neither, and the grid doesn't show them.
    EXPECT_EQ(CSnsrInf::Create(12), nullptr);
    EXPECT_EQ(CSnsrInf::Create(13), nullptr);
    EXPECT_EQ(CSnsrInf::CreateCopy(&s), nullptr);
    CSnsrGrid g;
    g.OnSnsrMsg(0, &s);
    g.OnSnsrMsg(0, &p);
    EXPECT_EQ(g.m_count[12][0] + g.m_count[13][0], 0u);

    // Interpolate does nothing.
    CSnsStreamSCADA a, b, out;
    a.m_scadaVals[0] = 1.0;
    b.m_scadaVals[0] = 3.0;
    CSnsStreamSCADA::Interpolate(0.5, &a, &b, &out);
    CSnsStreamStallPing::Interpolate(0.5, &a, &b, &out);
    EXPECT_EQ(out.m_scadaVals[0], 0.0);
    EXPECT_EQ(out.m_time, 0.0);
}
