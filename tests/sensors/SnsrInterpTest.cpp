// Interpolation between two sensor records, and finding the pair in a
// time-ordered run.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

CSnsrGyro Gyro(double t, float h, float aux = 0.0f)
{
    CSnsrGyro g;
    g.m_time = t;
    g.m_heading = h;
    g.m_gyroAux = aux;
    return g;
}

float Heading(float ha, float hb, double f)
{
    CSnsrGyro a = Gyro(10.0, ha), b = Gyro(20.0, hb), out;
    CSnsrGyro::Interpolate(10.0 + 10.0 * f, &a, &b, &out);
    return out.m_heading;
}

// Circular distance in degrees.
double AngDiff(double x, double y)
{
    const double d = std::fmod(std::fabs(x - y), 360.0);
    return d > 180.0 ? 360.0 - d : d;
}

} // namespace

TEST(SnsrInterp, HeadingOnTheCircle)
{
    // Either side of north meets at north (0, or a hair below 360).
    const float n = Heading(350.0f, 10.0f, 0.5);
    EXPECT_LT(AngDiff(n, 0.0), 1e-4);
    EXPECT_GE(n, 0.0f);
    EXPECT_LE(n, 360.0f);
    EXPECT_NEAR(Heading(10.0f, 350.0f, 0.5), 0.0, 1e-4);
    EXPECT_NEAR(AngDiff(Heading(10.0f, 350.0f, 0.5), 0.0), 0.0, 1e-4);

    EXPECT_NEAR(Heading(0.0f, 90.0f, 0.5), 45.0, 1e-4);
    EXPECT_NEAR(Heading(90.0f, 180.0f, 0.5), 135.0, 1e-4);
    EXPECT_NEAR(Heading(270.0f, 0.0f, 0.5), 315.0, 1e-4);

    // Opposite headings: x is exactly 0 half way, the guard takes the axis
    // from y, no NaN arises. 90 and 270 go through north.
    const float g = Heading(90.0f, 270.0f, 0.5);
    EXPECT_FALSE(std::isnan(g));
    EXPECT_LT(AngDiff(g, 0.0), 1e-4);

    // Ends of the pair give the records' own headings; f beyond 1 keeps
    // turning on the chord.
    EXPECT_NEAR(Heading(20.0f, 40.0f, 0.0), 20.0, 1e-4);
    EXPECT_NEAR(Heading(20.0f, 40.0f, 1.0), 40.0, 1e-4);
    EXPECT_GT(Heading(20.0f, 40.0f, 1.5), 40.0f);
    // On the chord, not the arc: a quarter of the way from 0 to 90 is below 22.5.
    const double q = std::atan2(0.25, 0.75) * 180.0 / M_PI;  // angle from north of (0.25, 0.75)
    EXPECT_NEAR(Heading(0.0f, 90.0f, 0.25), q, 1e-4);
}

TEST(SnsrInterp, HeadingLeavesItsSecondValueAndTheBaseAlone)
{
    CSnsrGyro a = Gyro(1.0, 10.0f, 5.0f), b = Gyro(3.0, 30.0f, 7.0f), out;
    out.m_gyroAux = -9.0f;
    out.m_bank = 3;
    out.m_aux = 77;
    out.m_raw = u"mine";
    out.m_type = 0;
    CSnsrGyro::Interpolate(2.0, &a, &b, &out);
    EXPECT_NEAR(out.m_heading, 20.0, 1e-4);
    EXPECT_EQ(out.m_time, 2.0);
    EXPECT_EQ(out.m_gyroAux, -9.0f);
    EXPECT_EQ(out.m_bank, 3);
    EXPECT_EQ(out.m_aux, 77);
    EXPECT_EQ(out.m_type, 0);
    EXPECT_EQ(out.m_raw, CString(u"mine"));
    // b null copies a, also at a far time.
    CSnsrGyro::Interpolate(100.0, &a, nullptr, &out);
    EXPECT_EQ(out.m_heading, 10.0f);
    EXPECT_EQ(out.m_time, 100.0);
    EXPECT_EQ(out.m_gyroAux, -9.0f);
}

TEST(SnsrInterp, CoursesAreNotWrapped)
{
    CSnsrVTG a, b, out;
    a.m_time = 0.0;
    b.m_time = 2.0;
    a.m_courseT = 359.0f;
    b.m_courseT = 1.0f;
    a.m_courseM = 350.0f;
    b.m_courseM = 10.0f;
    a.m_speedKts = 4.0f;
    b.m_speedKts = 6.0f;
    a.m_speedKmh = 8.0f;
    b.m_speedKmh = 12.0f;
    CSnsrVTG::Interpolate(1.0, &a, &b, &out);
    EXPECT_EQ(out.m_courseT, 180.0f);
    EXPECT_EQ(out.m_courseM, 180.0f);
    EXPECT_EQ(out.m_speedKts, 5.0f);
    EXPECT_EQ(out.m_speedKmh, 10.0f);
    EXPECT_EQ(out.m_time, 1.0);
}

TEST(SnsrInterp, LinearValuesInDoubleRoundedToFloat)
{
    CSnsrMru a, b, out;
    a.m_time = 100.0;
    b.m_time = 100.3;
    a.m_pitch = 1.0f;
    b.m_pitch = 2.0f;
    a.m_roll = -3.0f;
    b.m_roll = 3.0f;
    a.m_heave = 0.1f;
    b.m_heave = 0.7f;
    a.m_mruA = 10.0f;
    b.m_mruA = 20.0f;
    a.m_mruB = -10.0f;
    b.m_mruB = -20.0f;
    const double t = 100.1;
    CSnsrMru::Interpolate(t, &a, &b, &out);
    const double f = (t - 100.0) / (100.3 - 100.0);
    auto want = [&](float va, float vb) { return static_cast<float>(double(va) + f * (double(vb) - double(va))); };
    EXPECT_EQ(out.m_pitch, want(1.0f, 2.0f));
    EXPECT_EQ(out.m_roll, want(-3.0f, 3.0f));
    EXPECT_EQ(out.m_heave, want(0.1f, 0.7f));
    EXPECT_EQ(out.m_mruA, want(10.0f, 20.0f));
    EXPECT_EQ(out.m_mruB, want(-10.0f, -20.0f));

    // t at a gives a's values exactly; at b, b's.
    CSnsrMru::Interpolate(100.0, &a, &b, &out);
    EXPECT_EQ(out.m_heave, 0.1f);
    EXPECT_EQ(out.m_roll, -3.0f);
    CSnsrMru::Interpolate(100.3, &a, &b, &out);
    EXPECT_EQ(out.m_heave, 0.7f);
    EXPECT_EQ(out.m_mruB, -20.0f);

    // Extrapolation on both sides, with no limit on the gap.
    CSnsrMru::Interpolate(100.6, &a, &b, &out);
    EXPECT_FLOAT_EQ(out.m_pitch, 3.0f);
    CSnsrMru::Interpolate(99.7, &a, &b, &out);
    EXPECT_FLOAT_EQ(out.m_roll, -9.0f);
    b.m_time = 1e6;
    CSnsrMru::Interpolate((1e6 + 100.0) / 2, &a, &b, &out);
    EXPECT_FLOAT_EQ(out.m_pitch, 1.5f);
}

TEST(SnsrInterp, NullOrSimultaneousSecondRecordCopiesTheFirst)
{
    CSnsrZ a, b, out;
    a.m_time = b.m_time = 5.0;
    a.m_depth = 10.0f;
    b.m_depth = 20.0f;
    a.m_depthFactor = 0.5f;
    b.m_depthFactor = 2.0f;
    a.m_rawUnits = 1;
    CSnsrZ::Interpolate(7.0, &a, &b, &out);  // equal times: no division by zero
    EXPECT_EQ(out.m_depth, 10.0f);
    EXPECT_EQ(out.m_time, 7.0);
    b.m_time = 6.0;
    CSnsrZ::Interpolate(5.5, &a, &b, &out);
    EXPECT_EQ(out.m_depth, 15.0f);
    EXPECT_EQ(out.m_depthFactor, 0.5f);  // from a
    EXPECT_EQ(out.m_rawUnits, 1);
    CSnsrZ::Interpolate(5.5, &a, nullptr, &out);
    EXPECT_EQ(out.m_depth, 10.0f);

    CSnsrArt aa, ab, ao;
    aa.m_time = 0.0;
    ab.m_time = 1.0;
    aa.m_axis = 1;
    ab.m_axis = 2;
    aa.m_angle = 350.0f;
    ab.m_angle = 10.0f;  // plain numbers, no wrap
    aa.m_angleHi = 4.0f;
    ab.m_angleHi = 8.0f;
    CSnsrArt::Interpolate(0.5, &aa, &ab, &ao);
    EXPECT_EQ(ao.m_axis, 1);
    EXPECT_EQ(ao.m_angle, 180.0f);
    EXPECT_EQ(ao.m_angleHi, 6.0f);

    CSnsrSOS sa, sb, so;
    sb.m_time = 10.0;
    sb.m_sos = 1520.0f;
    CSnsrSOS::Interpolate(2.5, &sa, &sb, &so);
    EXPECT_EQ(so.m_sos, 1505.0f);
    CSnsrAlt la, lb, lo;
    lb.m_time = 4.0;
    lb.m_alt = 8.0f;
    CSnsrAlt::Interpolate(1.0, &la, &lb, &lo);
    EXPECT_EQ(lo.m_alt, 2.0f);
    CSnsrMarker ma, mb, mo;
    mb.m_time = 4.0;
    mb.m_mark = -8.0f;
    CSnsrMarker::Interpolate(3.0, &ma, &mb, &mo);
    EXPECT_EQ(mo.m_mark, -6.0f);
    EXPECT_EQ(mo.m_time, 3.0);
}

TEST(SnsrInterp, PositionKeepsItsOwnTimeStamp)
{
    CSnsrPos a, b, out;
    a.m_time = 0.0;
    b.m_time = 4.0;
    a.m_geo = CV3(179.0, 10.0, 0.0);
    b.m_geo = CV3(-179.0, 12.0, 4.0);  // across the antimeridian: plain numbers
    a.m_local = CV3(100.0, 200.0, 0.0);
    b.m_local = CV3(140.0, 160.0, 8.0);
    a.m_posA = 1.0f;
    b.m_posA = 9.0f;
    a.m_posWord = 3;
    b.m_posWord = 4;
    out.m_time = -42.0;
    CSnsrPos::Interpolate(1.0, &a, &b, &out);
    EXPECT_EQ(out.m_time, -42.0);
    EXPECT_DOUBLE_EQ(out.m_geo.x, 89.5);
    EXPECT_DOUBLE_EQ(out.m_geo.y, 10.5);
    EXPECT_DOUBLE_EQ(out.m_geo.z, 1.0);
    EXPECT_DOUBLE_EQ(out.m_local.x, 110.0);
    EXPECT_DOUBLE_EQ(out.m_local.y, 190.0);
    EXPECT_DOUBLE_EQ(out.m_local.z, 2.0);
    EXPECT_EQ(out.m_posA, 1.0f);
    EXPECT_EQ(out.m_posWord, 3);
    // Double precision: a millimetre on a 1e-8 degree scale survives.
    a.m_geo.y = 51.000000001;
    b.m_geo.y = 51.000000003;
    CSnsrPos::Interpolate(2.0, &a, &b, &out);
    EXPECT_NEAR(out.m_geo.y, 51.000000002, 1e-13);
    CSnsrPos::Interpolate(2.0, &a, nullptr, &out);
    EXPECT_EQ(out.m_geo, a.m_geo);
    EXPECT_EQ(out.m_time, -42.0);
}

TEST(SnsrInterp, TimeOfDaySecondsInDouble)
{
    CSnsrTime a, b, out;
    a.m_time = 0.0;
    b.m_time = 1.0;
    a.m_zda.m_t = 1700000000.0;
    b.m_zda.m_t = 1700000001.0;
    a.m_zoneHr = 1;
    b.m_zoneHr = 2;
    CSnsrTime::Interpolate(0.25, &a, &b, &out);
    EXPECT_EQ(out.m_zda.m_t, 1700000000.25);
    EXPECT_EQ(out.m_zoneHr, 1);
    EXPECT_EQ(out.m_time, 0.25);
}

TEST(SnsrInterp, ClientValuesPairByIndex)
{
    CSnsrClt a, b, out;
    a.m_time = 0.0;
    b.m_time = 2.0;
    a.m_items.Append(new CStrDbl{u"p", 10.0});
    a.m_items.Append(new CStrDbl{u"q", 20.0});
    a.m_items.Append(new CStrDbl{u"r", 30.0});
    b.m_items.Append(new CStrDbl{u"other", 20.0});  // labels of b are not compared
    b.m_items.Append(new CStrDbl{u"q", 40.0});
    out.m_items.Append(new CStrDbl{u"kept", -1.0});
    out.m_items.Append(new CStrDbl{u"kept", -2.0});
    out.m_items.Append(new CStrDbl{u"kept", -3.0});
    out.m_items.Append(new CStrDbl{u"dropped", -4.0});
    CSnsrClt::Interpolate(1.0, &a, &b, &out);
    ASSERT_EQ(out.m_items.m_nSize, 3u);  // a's count
    EXPECT_EQ(out.m_items.m_ppItems[0]->m_str, CString(u"p"));
    EXPECT_EQ(out.m_items.m_ppItems[0]->m_d, 15.0);
    EXPECT_EQ(out.m_items.m_ppItems[1]->m_d, 30.0);
    // b is shorter: from its count on out keeps what it held.
    EXPECT_EQ(out.m_items.m_ppItems[2]->m_str, CString(u"kept"));
    EXPECT_EQ(out.m_items.m_ppItems[2]->m_d, -3.0);
    EXPECT_EQ(out.m_time, 1.0);

    // A fresh out grows to a's count with default elements behind b's count.
    CSnsrClt fresh;
    CSnsrClt::Interpolate(3.0, &a, &b, &fresh);
    ASSERT_EQ(fresh.m_items.m_nSize, 3u);
    EXPECT_EQ(fresh.m_items.m_ppItems[1]->m_d, 50.0);  // extrapolated
    EXPECT_TRUE(fresh.m_items.m_ppItems[2]->m_str.IsEmpty());

    // Without b: a copy of a's items.
    CSnsrClt::Interpolate(9.0, &a, nullptr, &out);
    ASSERT_EQ(out.m_items.m_nSize, 3u);
    EXPECT_EQ(out.m_items.m_ppItems[2]->m_str, CString(u"r"));
    EXPECT_EQ(out.m_items.m_ppItems[2]->m_d, 30.0);
    EXPECT_NE(out.m_items.m_ppItems[2], a.m_items.m_ppItems[2]);
}

TEST(SnsrSeq, FindsTheBracketingPairInOrderAndOutOfOrder)
{
    std::vector<CSnsrGyro> recs;
    for (int i = 0; i < 1000; ++i) recs.push_back(Gyro(i * 0.05, static_cast<float>(i % 360)));
    recs[500].m_time = recs[499].m_time;  // a repeated stamp
    CSnsrSeq<CSnsrGyro> seq(recs.data(), static_cast<unsigned int>(recs.size()));
    EXPECT_EQ(seq.Find(-1.0), -1);
    EXPECT_EQ(seq.Find(0.0), 0);
    EXPECT_EQ(seq.Find(0.07), 1);
    EXPECT_EQ(seq.Find(0.1), 2);
    EXPECT_EQ(seq.Find(49.0), 980);   // far ahead: binary search
    EXPECT_EQ(seq.Find(0.12), 2);     // far back
    EXPECT_EQ(seq.Find(recs[499].m_time), 500);  // the last of equal stamps
    EXPECT_EQ(seq.Find(1e9), 999);
    EXPECT_EQ(seq.Find(std::nan("")), -1);

    // Every query, in any order, agrees with a plain scan.
    unsigned int seed = 1;
    for (int k = 0; k < 3000; ++k) {
        seed = seed * 1103515245u + 12345u;
        const double t = k < 1500 ? k * 0.0333 : (seed >> 8) % 60000 / 1000.0 - 5.0;
        int want = -1;
        for (size_t i = 0; i < recs.size(); ++i)
            if (recs[i].m_time <= t) want = static_cast<int>(i);
        ASSERT_EQ(seq.Find(t), want) << t;
    }
}

TEST(SnsrSeq, PairsAndEnds)
{
    CSnsrAlt r[3];
    for (int i = 0; i < 3; ++i) {
        r[i].m_time = 10.0 * (i + 1);
        r[i].m_alt = static_cast<float>(i * 2);
    }
    const CSnsrAlt* ptrs[3] = {&r[0], &r[1], &r[2]};
    CSnsrSeq<CSnsrAlt> seq(ptrs, 3);  // over pointers, as CDSArray holds them
    const CSnsrAlt* a = nullptr;
    const CSnsrAlt* b = nullptr;
    ASSERT_TRUE(seq.GetPair(15.0, a, b));
    EXPECT_EQ(a, &r[0]);
    EXPECT_EQ(b, &r[1]);
    CSnsrAlt out;
    ASSERT_TRUE(seq.Interpolate(25.0, out));
    EXPECT_EQ(out.m_alt, 3.0f);
    EXPECT_EQ(out.m_time, 25.0);
    // Outside the run the end record holds...
    seq.Interpolate(0.0, out);
    EXPECT_EQ(out.m_alt, 0.0f);
    seq.Interpolate(40.0, out);
    EXPECT_EQ(out.m_alt, 4.0f);
    // ...or the end pair extrapolates.
    seq.m_bExtrapolate = true;
    seq.Interpolate(40.0, out);
    EXPECT_EQ(out.m_alt, 6.0f);
    seq.Interpolate(0.0, out);
    EXPECT_EQ(out.m_alt, -2.0f);

    CSnsrSeq<CSnsrAlt> empty;
    EXPECT_FALSE(empty.Interpolate(1.0, out));
    EXPECT_FALSE(empty.GetPair(1.0, a, b));
    EXPECT_EQ(a, nullptr);
    CSnsrSeq<CSnsrAlt> one(r, 1);
    ASSERT_TRUE(one.GetPair(99.0, a, b));
    EXPECT_EQ(a, &r[0]);
    EXPECT_EQ(b, nullptr);
}
