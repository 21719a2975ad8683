// Placing an image in the world: line arrays through the core's target
// geometry, the ring array round its circle.
#include "RenderTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double kRing = 0.0954844435875365;

void ExpectNear(const CV3& a, const CV3& b, double tol = 1e-9)
{
    EXPECT_NEAR(a.x, b.x, tol);
    EXPECT_NEAR(a.y, b.y, tol);
    EXPECT_NEAR(a.z, b.z, tol);
}

} // namespace

TEST(SetupExtents, LineArrayFromTheSonarOriginOutAlongEachBearing)
{
    CTgtImg img;
    rt::MakeImage(img, 400, 5, 40.0);
    CPing& p = *img.Ping();
    p.m_rx1Idx = 4;               // a line array
    p.m_sosXd = 1400.0f;          // not used here
    img.m_tgtRec.m_sosAvg = 1500.0;
    img.m_tgtRec.m_elevDeg = 0.0;
    CMat sonar(CV3(100.0, 200.0, 5.0), 0.0);
    CMat tilt;
    img.SetupExtents(sonar, tilt);
    const double farM = 400 * p.m_rlTime * 0.5 * 1500.0;  // 7.5 m
    ASSERT_NEAR(farM, 7.5, 1e-12);
    EXPECT_EQ(img.m_tgtRec.m_frame.Org(), sonar.Org());
    for (unsigned i = 0; i < 5; ++i) {
        // A start range of 0 puts every near point on the sonar itself.
        EXPECT_EQ(img.m_vStart[i], CV3(100.0, 200.0, 5.0));
        // Bearing 0 ahead (+y), positive bearings to starboard (+x), level.
        const double b = p.m_pBrgTbl[i];
        ExpectNear(img.m_vEnd[i], CV3(100.0 + farM * std::sin(b), 200.0 + farM * std::cos(b), 5.0));
        CV3 e;
        TgtCalc::RT(&sonar, farM, ML::pi_2 - b, &tilt, ML::pi_2, e);
        EXPECT_EQ(img.m_vEnd[i], e);
        ExpectNear(img.m_vDir[i], CV3(std::sin(b), std::cos(b), 0.0));
        EXPECT_NEAR(img.m_vDir[i].Length(), 1.0, 1e-12);
    }
}

TEST(SetupExtents, LineArrayWithElevationStartRangeAndHeading)
{
    CTgtImg img;
    rt::MakeImage(img, 100, 3, 20.0);
    img.m_nStartRng = 100;
    img.m_nEndRng = 500;
    img.m_tgtRec.m_elevDeg = 30.0;
    img.m_tgtRec.m_sosAvg = 1600.0;
    CPing& p = *img.Ping();
    CMat sonar(CV3(10.0, 20.0, 1.0), ML::pi_2);  // heading east
    CMat tilt(CV3(0.0, 0.0, 0.0), 0.0, 0.05, 0.0);
    img.SetupExtents(sonar, tilt);
    const double nearM = 100 * p.m_rlTime * 0.5 * 1600.0, farM = 500 * p.m_rlTime * 0.5 * 1600.0;
    const double a = 30.0 * ML::d2r;
    for (unsigned i = 0; i < 3; ++i) {
        CV3 s, e;
        TgtCalc::RT(&sonar, nearM, ML::pi_2 - p.m_pBrgTbl[i], &tilt, ML::pi_2 - a, s);
        TgtCalc::RT(&sonar, farM, ML::pi_2 - p.m_pBrgTbl[i], &tilt, ML::pi_2 - a, e);
        EXPECT_EQ(img.m_vStart[i], s);
        EXPECT_EQ(img.m_vEnd[i], e);
        CV3 d = e - s;
        d.Normalise();
        EXPECT_EQ(img.m_vDir[i], d);
    }
    // Without tilt, the centre beam of a fan laid 30 degrees down from an
    // east-heading sonar: east and down.
    CMat level;
    img.Ping()->m_pBrgTbl[1] = 0.0;
    img.SetupExtents(sonar, level);
    ExpectNear(img.m_vEnd[1], CV3(10.0 + farM * std::cos(a), 20.0, 1.0 + farM * std::sin(a)));
}

TEST(SetupExtents, WindowFillsOnlyItsOwnEntriesAndEmptyVectorsStopIt)
{
    CTgtImg img;
    rt::MakeImage(img, 100, 6);
    const CV3 mark(-1, -2, -3);
    for (unsigned i = 0; i < 6; ++i) img.m_vStart[i] = img.m_vEnd[i] = img.m_vDir[i] = mark;
    img.m_nStartBrg = 2;
    img.m_nEndBrg = 5;
    CMat sonar(CV3(1, 2, 3), 0.2), tilt;
    img.SetupExtents(sonar, tilt);
    for (unsigned i = 0; i < 3; ++i) EXPECT_NE(img.m_vEnd[i], mark);
    for (unsigned i = 3; i < 6; ++i) {
        EXPECT_EQ(img.m_vStart[i], mark);
        EXPECT_EQ(img.m_vEnd[i], mark);
        EXPECT_EQ(img.m_vDir[i], mark);
    }
    // Entry 0 goes by bearing table entry 0, not by bearing 2.
    CV3 e;
    TgtCalc::RT(&sonar, 100 * img.Ping()->m_rlTime * 0.5 * 1500.0, ML::pi_2 - img.Ping()->m_pBrgTbl[0], &tilt,
                ML::pi_2, e);
    EXPECT_EQ(img.m_vEnd[0], e);

    // A window wider than the vectors stops at their end.
    img.m_nStartBrg = 0;
    img.m_nEndBrg = 50;
    img.SetupExtents(sonar, tilt);
    EXPECT_NE(img.m_vEnd[5], mark);

    // An empty vector: nothing changes, not even the frame.
    CTgtImg bare;
    bare.m_vStart.resize(3);
    bare.m_vEnd.resize(3);
    bare.m_nEndBrg = 3;
    CMat far(CV3(9, 9, 9), 1.0);
    bare.SetupExtents(far, tilt);
    EXPECT_EQ(bare.m_tgtRec.m_frame.Org(), CV3());
    EXPECT_EQ(bare.m_vEnd[0], CV3());
}

TEST(SetupExtents, RingArrayLiesRoundItsCircle)
{
    CTgtImg img;
    rt::MakeImage(img, 200, 192);
    CPing& p = *img.Ping();
    p.m_rx1Idx = 12;
    ASSERT_EQ(CArrType::s_types[12].m_flags, 0x40);
    p.SetNumBeams(4);  // the bearing table isn't used: a short one must not matter
    img.m_tgtRec.m_sosAvg = 1500.0;
    CMat sonar(CV3(50.0, 60.0, 2.0), 0.0);
    CMat tilt(CV3(), 0.7, 0.3, 0.1);  // not used either
    img.SetupExtents(sonar, tilt);
    const double farM = 200 * p.m_rlTime * 0.5 * 1500.0;
    for (unsigned x = 0; x < 192; x += 17) {
        const double th = x * ML::pi2 / 192;
        // Start range 0: the near points lie on the array's circle, flat.
        ExpectNear(img.m_vStart[x], CV3(50.0 + std::cos(th) * kRing, 60.0 + std::sin(th) * kRing, 2.0), 1e-12);
        ExpectNear(img.m_vEnd[x], CV3(50.0 + std::cos(th) * (farM + kRing), 60.0 + std::sin(th) * (farM + kRing), 2.0),
                   1e-12);
        ExpectNear(img.m_vDir[x], CV3(std::cos(th), std::sin(th), 0.0), 1e-12);
    }
}

TEST(SetupExtents, RingWindowKeepsTrueAnglesAndElevationAddsDepth)
{
    CTgtImg img;
    rt::MakeImage(img, 200, 192);
    img.Ping()->m_rx1Idx = 12;
    img.m_nStartRng = 40;
    img.m_nStartBrg = 48;
    img.m_nEndBrg = 96;
    img.m_tgtRec.m_elevDeg = 10.0;
    CMat sonar(CV3(0.0, 0.0, 0.0), 0.0), tilt;
    img.SetupExtents(sonar, tilt);
    const CPing& p = *img.Ping();
    const double a = 10.0 * ML::d2r;
    const double nearM = 40 * p.m_rlTime * 0.5 * 1500.0, farM = 200 * p.m_rlTime * 0.5 * 1500.0;
    const double h0 = std::cos(a) * nearM + kRing, h1 = std::cos(a) * farM + kRing;
    for (unsigned i = 0; i < 48; i += 7) {
        const double th = (48 + i) * ML::pi2 / 192;
        EXPECT_EQ(img.m_vStart[i], sonar.LocalToGlobal(CV3(std::cos(th) * h0, std::sin(th) * h0, nearM * std::sin(a))));
        EXPECT_EQ(img.m_vEnd[i], sonar.LocalToGlobal(CV3(std::cos(th) * h1, std::sin(th) * h1, farM * std::sin(a))));
    }
    // Bearing 48 of 192 is a quarter turn: along +y.
    EXPECT_NEAR(img.m_vStart[0].x, 0.0, 1e-12);
    EXPECT_NEAR(img.m_vStart[0].y, h0, 1e-12);
}
