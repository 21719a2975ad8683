// Conversions between geographic, Transverse Mercator grid, cartesian
// coordinates and datums: the worked values, boundaries and round trips.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <chrono>
#include <limits>
#include <vector>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

CV3 Rad(double lonDeg, double latDeg, double h = 0.0) { return {lonDeg * ML::d2r, latDeg * ML::d2r, h}; }

// A spheroid whose a, b and e² agree (WGS84 from its defining a and 1/f).
CSphd Wgs84()
{
    CSphd s;
    s.m_name = u"WGS84";
    s.m_semiMajor = 6378137.0;
    s.m_invFlat = 298.257223563;
    const double f = 1.0 / s.m_invFlat;
    s.m_semiMinor = s.m_semiMajor * (1.0 - f);
    s.m_ecc2 = f * (2.0 - f);
    return s;
}

CProj Utm(int zone, bool south = false)
{
    CProj p;
    p.m_name = CString::Fmt(u"UTM_%d%s", zone, south ? u"S" : u"N");
    p.m_lonOrigin = (zone * 6 - 183) * ML::d2r;
    p.m_falseNorth = south ? 10000000.0 : 0.0;
    return p;
}

} // namespace

TEST(GeoConvTm, DefaultRecordsGiveThePublishedPoint)
{
    const CSphd sphd;
    const CProj proj;
    CV3 enz(1.0, 2.0, 42.0);
    GeoConv::llh2enz(sphd, proj, Rad(-1.2, 57.1, 99.0), enz);
    EXPECT_NEAR(enz.x, 609045.374, 0.0005);
    EXPECT_NEAR(enz.y, 6329955.900, 0.0005);
    EXPECT_EQ(enz.z, 42.0);  // the caller's z is left alone

    CV3 llh(0.0, 0.0, -7.0);
    GeoConv::enz2llh(sphd, proj, enz, llh);
    EXPECT_NEAR(llh.x, -1.2 * ML::d2r, 1e-11);
    EXPECT_NEAR(llh.y, 57.1 * ML::d2r, 1e-11);
    EXPECT_EQ(llh.z, -7.0);
}

TEST(GeoConvTm, RoundTripWithinTheUsableWidth)
{
    const CSphd sphd = Wgs84();
    double worst = 0.0;
    for (int zone : {1, 17, 31, 60}) {
        for (bool south : {false, true}) {
            const CProj proj = Utm(zone, south);
            for (double lat = 0.0; lat <= 84.0; lat += 6.0) {
                for (double off = -3.5; off <= 3.5; off += 0.5) {
                    const CV3 llh = CV3(proj.m_lonOrigin + off * ML::d2r, (south ? -lat : lat) * ML::d2r, 0.0);
                    CV3 enz, back;
                    GeoConv::llh2enz(sphd, proj, llh, enz);
                    GeoConv::enz2llh(sphd, proj, enz, back);
                    worst = std::max({worst, std::fabs(back.x - llh.x), std::fabs(back.y - llh.y)});
                }
            }
        }
    }
    std::printf("[ worst    ] TM round trip within 3.5 deg: %.3e rad\n", worst);
    EXPECT_LT(worst, 1e-9);
}

TEST(GeoConvTm, OriginMapsToFalseOriginExactly)
{
    CSphd airy;
    airy.m_semiMajor = 6377563.396;
    airy.m_semiMinor = 6356256.909;
    airy.m_ecc2 = 0.0066705400741492319;
    CProj bng;
    bng.m_latOrigin = 49.0 * ML::d2r;
    bng.m_lonOrigin = -2.0 * ML::d2r;
    bng.m_falseEast = 400000.0;
    bng.m_falseNorth = -100000.0;
    bng.m_scale = 0.9996012717;
    CV3 enz;
    GeoConv::llh2enz(airy, bng, CV3(bng.m_lonOrigin, bng.m_latOrigin, 0.0), enz);
    EXPECT_EQ(enz.x, 400000.0);
    EXPECT_EQ(enz.y, -100000.0);
    CV3 llh;
    GeoConv::enz2llh(airy, bng, CV3(400000.0, -100000.0, 0.0), llh);
    EXPECT_EQ(llh.x, bng.m_lonOrigin);
    EXPECT_NEAR(llh.y, bng.m_latOrigin, 1e-15);

    const CSphd sphd;
    const CProj utm = Utm(31, true);
    GeoConv::llh2enz(sphd, utm, CV3(utm.m_lonOrigin, 0.0, 0.0), enz);
    EXPECT_EQ(enz.x, 500000.0);
    EXPECT_EQ(enz.y, 10000000.0);
}

TEST(GeoConvTm, MeridianArcMatchesItsLiteralSeries)
{
    // The arc is evaluated through angle identities; it must agree with the
    // n-series written out term by term.
    CSphd airy;
    airy.m_semiMajor = 6377563.396;
    airy.m_semiMinor = 6356256.909;
    CProj proj;
    proj.m_latOrigin = 49.0 * ML::d2r;
    proj.m_lonOrigin = 0.0;
    proj.m_falseNorth = 0.0;
    proj.m_scale = 0.9996012717;
    const double a = airy.m_semiMajor, b = airy.m_semiMinor, n = (a - b) / (a + b);
    for (double lat = -89.0; lat <= 89.0; lat += 2.5) {
        const double p = lat * ML::d2r, p0 = proj.m_latOrigin;
        const double M = b * proj.m_scale *
                         ((1 + n + 5.0 / 4 * n * n + 5.0 / 4 * n * n * n) * (p - p0) -
                          (3 * n + 3 * n * n + 21.0 / 8 * n * n * n) * std::sin(p - p0) * std::cos(p + p0) +
                          (15.0 / 8 * n * n + 15.0 / 8 * n * n * n) * std::sin(2 * (p - p0)) * std::cos(2 * (p + p0)) -
                          35.0 / 24 * n * n * n * std::sin(3 * (p - p0)) * std::cos(3 * (p + p0)));
        CV3 enz;
        GeoConv::llh2enz(airy, proj, CV3(0.0, p, 0.0), enz);  // on the meridian: northing = M + N0
        EXPECT_NEAR(enz.y, M, 1e-8) << lat;
    }
}

TEST(GeoConvTm, NonFiniteOrAbsurdGridReturnsWithoutHanging)
{
    const CSphd sphd;
    const CProj proj;
    const auto start = std::chrono::steady_clock::now();
    for (double n : {kNaN, kInf, -kInf, 1e300, -1e30}) {
        CV3 llh(1.0, 2.0, 3.0);
        GeoConv::enz2llh(sphd, proj, CV3(500000.0, n, 0.0), llh);
        if (!std::isfinite(n)) {
            EXPECT_FALSE(std::isfinite(llh.y)) << n;
        }
        EXPECT_EQ(llh.z, 3.0);
        GeoConv::xyz2llh(sphd, CV3(n, 1.0, n), llh);
        GeoConv::xyz2llh(sphd, CV3(1e6, 1e6, n), llh);
    }
    CV3 enz;
    GeoConv::llh2enz(sphd, proj, CV3(kNaN, 0.5, 0.0), enz);
    EXPECT_TRUE(std::isnan(enz.x));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(GeoConvCartesian, DefaultSpheroidWorkedPoint)
{
    const CSphd sphd;
    CV3 xyz;
    GeoConv::llh2xyz(sphd, Rad(20.0, 45.0, 100.0), xyz);
    EXPECT_NEAR(xyz.x, 4245213.259, 0.0005);
    EXPECT_NEAR(xyz.y, 1545131.264, 0.0005);
    EXPECT_NEAR(xyz.z, 4487419.119, 0.0005);
    CV3 back;
    GeoConv::xyz2llh(sphd, xyz, back);
    EXPECT_NEAR(back.x, 20.0 * ML::d2r, 1e-15);
    EXPECT_NEAR(back.y, 45.0 * ML::d2r, 1e-9);
    EXPECT_NEAR(back.z, 100.0, 0.01);
}

TEST(GeoConvCartesian, ZFollowsTheSemiMinorAxis)
{
    // Z comes from the ellipse through a and b: a record whose b is off by a
    // metre moves Z by the same proportion, while X and Y follow a and e².
    CSphd good = Wgs84();
    CSphd off = good;
    off.m_semiMinor += 1.0;
    const CV3 llh = Rad(10.0, 60.0, 0.0);
    CV3 g, o;
    GeoConv::llh2xyz(good, llh, g);
    GeoConv::llh2xyz(off, llh, o);
    EXPECT_EQ(g.x, o.x);
    EXPECT_EQ(g.y, o.y);
    EXPECT_NEAR(o.z - g.z, g.z / good.m_semiMinor, 1e-6);
    // With a consistent record Z is ν(1−e²)·sin φ, and Z changes sign with φ.
    const double s = std::sin(llh.y);
    const double nu = good.m_semiMajor / std::sqrt(1.0 - good.m_ecc2 * s * s);
    EXPECT_NEAR(g.z, nu * (1.0 - good.m_ecc2) * s, 1e-8);
    CV3 south;
    GeoConv::llh2xyz(good, CV3(llh.x, -llh.y, 0.0), south);
    EXPECT_EQ(south.z, -g.z);
    // On the equator the height of the surface point is exactly 0.
    GeoConv::llh2xyz(good, CV3(0.3, 0.0, 55.0), g);
    EXPECT_EQ(g.z, 0.0);
}

TEST(GeoConvCartesian, LatitudeMagnitudeIsTheSameForZAndMinusZ)
{
    const CSphd sphd;
    for (double z : {1.0, 1000.0, 3e6, 6.3e6}) {
        CV3 n, s;
        GeoConv::xyz2llh(sphd, CV3(4e6, 1e6, z), n);
        GeoConv::xyz2llh(sphd, CV3(4e6, 1e6, -z), s);
        EXPECT_EQ(n.y, -s.y);
        EXPECT_EQ(n.z, s.z);
        EXPECT_EQ(n.x, std::atan2(1e6, 4e6));
    }
}

TEST(GeoConvShift, WorkedShiftBothWays)
{
    CShft t;
    t.m_dX = 1.0;
    t.m_dY = 2.0;
    t.m_dZ = 3.0;
    t.m_rotX = 4.0;
    t.m_rotY = 5.0;
    t.m_rotZ = 6.0;
    t.m_ppm = 7.0;
    CV3 out;
    GeoConv::DShift(t, CV3(1000.0, 2000.0, 3000.0), out, 0);
    EXPECT_NEAR(out.x, 1001.02154, 0.000005);
    EXPECT_NEAR(out.y, 2001.98491, 0.000005);
    EXPECT_NEAR(out.z, 3003.03554, 0.000005);
    GeoConv::DShift(t, CV3(1000.0, 2000.0, 3000.0), out, 1);
    EXPECT_NEAR(out.x, 998.97846, 0.000005);
    EXPECT_NEAR(out.y, 1998.01509, 0.000005);
    EXPECT_NEAR(out.z, 2996.96446, 0.000005);

    // The reverse is first-order: it does not undo rotations and scale.
    CV3 fwd, back;
    const CV3 p(3.9e6, 1.2e6, 4.9e6);
    GeoConv::DShift(t, p, fwd, 0);
    GeoConv::DShift(t, fwd, back, 1);
    EXPECT_GT((back - p).Length(), 1e-4);
    EXPECT_LT((back - p).Length(), 0.1);
}

TEST(GeoConvShift, ZeroAndPureTranslationShifts)
{
    const CShft zero;
    const CV3 p(3.9e6, -1.2e6, 4.9e6);
    CV3 out;
    GeoConv::DShift(zero, p, out, 0);
    EXPECT_EQ(out, p);
    GeoConv::DShift(zero, p, out, 1);
    EXPECT_EQ(out, p);

    CShft move;
    move.m_dX = -87.0;
    move.m_dY = 98.5;
    move.m_dZ = 121.25;
    CV3 back;
    GeoConv::DShift(move, p, out, 0);
    EXPECT_EQ(out, CV3(p.x - 87.0, p.y + 98.5, p.z + 121.25));
    GeoConv::DShift(move, out, back, 1);
    EXPECT_EQ(back, p);  // exact: the translations are powers of two apart
}

TEST(GeoConvConvergence, SignAndSize)
{
    const CSphd sphd = Wgs84();
    const CProj proj = Utm(31);
    // On the central meridian and on the equator there is none.
    EXPECT_EQ(GeoConv::GetConv(sphd, proj, CV3(proj.m_lonOrigin, 0.8, 0.0)), 0.0);
    EXPECT_EQ(GeoConv::GetConv(sphd, proj, CV3(proj.m_lonOrigin + 0.04, 0.0, 0.0)), 0.0);
    // East of the meridian in the north it is positive, about Δλ·sin φ.
    const double dl = 2.0 * ML::d2r, phi = 50.0 * ML::d2r;
    const double g = GeoConv::GetConv(sphd, proj, CV3(proj.m_lonOrigin + dl, phi, 0.0));
    EXPECT_GT(g, 0.0);
    EXPECT_NEAR(g, dl * std::sin(phi), 1e-4);
    // A e²cos²φ/(1-e²) term of the series, computed separately.
    const double A = dl * std::cos(phi), C = sphd.m_ecc2 * std::cos(phi) * std::cos(phi) / (1.0 - sphd.m_ecc2);
    EXPECT_NEAR(g, std::tan(phi) * (A + A * A * A / 3.0 * (1.0 + 3.0 * C)), 1e-15);
    EXPECT_DOUBLE_EQ(GeoConv::GetConv(sphd, proj, CV3(proj.m_lonOrigin - dl, -phi, 0.0)), g);
}

namespace {

// The footpoint iteration and inverse series written out literally, with
// sin and cos called on every argument: the reference for the library's
// evaluation without passes, which must stop where the passes stop.
CV3 LiteralInverse(const CSphd& sp, const CProj& pr, const CV3& enz)
{
    const double a = sp.m_semiMajor, b = sp.m_semiMinor, e2 = sp.m_ecc2, k0 = pr.m_scale;
    const double n = (a - b) / (a + b), p0 = pr.m_latOrigin;
    auto M = [&](double p) {
        return b * k0 *
               ((1 + n + 5.0 / 4 * n * n + 5.0 / 4 * n * n * n) * (p - p0) -
                (3 * n + 3 * n * n + 21.0 / 8 * n * n * n) * std::sin(p - p0) * std::cos(p + p0) +
                (15.0 / 8 * n * n + 15.0 / 8 * n * n * n) * std::sin(2 * (p - p0)) * std::cos(2 * (p + p0)) -
                35.0 / 24 * n * n * n * std::sin(3 * (p - p0)) * std::cos(3 * (p + p0)));
    };
    double phi = (enz.y - pr.m_falseNorth) / (a * k0) + p0;
    for (;;) {
        const double r = enz.y - pr.m_falseNorth - M(phi);
        phi += r / (a * k0);
        if (std::fabs(r) < 0.001) break;
    }
    const double s = std::sin(phi), c = std::cos(phi);
    const double w = 1 - e2 * s * s, nu = a * k0 / std::sqrt(w), rho = (1 - e2) * nu / w, eta2 = nu / rho - 1;
    const double t = s / c, sec = 1 / c, d = enz.x - pr.m_falseEast;
    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    CV3 out;
    out.y = phi - t / (2 * rho * nu) * std::pow(d, 2) +
            t / (24 * rho * std::pow(nu, 3)) * (5 + 3 * t2 + eta2 - 9 * t2 * eta2) * std::pow(d, 4) -
            t / (720 * rho * std::pow(nu, 5)) * (61 + 90 * t2 + 45 * t4) * std::pow(d, 6);
    out.x = pr.m_lonOrigin + sec / nu * d - sec / (6 * std::pow(nu, 3)) * (nu / rho + 2 * t2) * std::pow(d, 3) +
            sec / (120 * std::pow(nu, 5)) * (5 + 28 * t2 + 24 * t4) * std::pow(d, 5) -
            sec / (5040 * std::pow(nu, 7)) * (61 + 662 * t2 + 1320 * t4 + 720 * t6) * std::pow(d, 7);
    return out;
}

} // namespace

// Every stop of the iteration (no pass after the first up to four) within 6
// degrees of the meridian, on grids with origins on the equator, at 49° and
// at -33°; a spheroid too flat for the series (it iterates); and calls that
// switch spheroid and projection from one point to the next, so that
// constants kept from the previous call must not leak into this one.
TEST(GeoConvTm, InverseAgreesWithTheLiteralIterationEverywhereItConverges)
{
    CSphd clarke;  // Clarke 1880, a and b as published
    clarke.m_semiMajor = 6378249.145;
    clarke.m_semiMinor = 6356514.870;
    clarke.m_ecc2 = 0.006803511283;
    CSphd flat;  // n = 0.0526: outside the series' reach
    flat.m_semiMajor = 1e6;
    flat.m_semiMinor = 0.9e6;
    flat.m_ecc2 = 0.19;
    CSphd sphere;
    sphere.m_semiMajor = sphere.m_semiMinor = 6371000.0;
    sphere.m_ecc2 = 0.0;
    const CSphd sphds[] = {Wgs84(), clarke, flat, sphere};
    CProj projs[4] = {Utm(31), Utm(31, true), Utm(17), Utm(33)};
    projs[2].m_latOrigin = 49.0 * ML::d2r;
    projs[2].m_scale = 0.9996012717;
    projs[3].m_latOrigin = -33.0 * ML::d2r;
    // Within 0.15 m of the equator the first residual is already under 1 mm.
    std::vector<double> northings = {0.0, 0.1, -0.14, 0.16, -0.2};
    for (double N = -1.25e7; N <= 1.25e7; N += 7919.3) northings.push_back(N);
    double worst = 0.0;
    int point = 0, compared = 0;
    for (double N : northings) {
        for (double dE : {-300000.0, -2.5, 0.0, 41000.0, 260000.0}) {
            const CSphd& sphd = sphds[point % 4];
            const CProj& proj = projs[(point / 4) % 4];
            ++point;
            const CV3 enz(proj.m_falseEast + dE * sphd.m_semiMajor / 6378137.0, N * sphd.m_semiMajor / 6378137.0, 0.0);
            CV3 got;
            GeoConv::enz2llh(sphd, proj, enz, got);
            const CV3 want = LiteralInverse(sphd, proj, enz);
            // Where the series themselves mean nothing, rounding in their
            // large terms decides the last digits.
            if (std::fabs(want.y) > 85.0 * ML::d2r || std::fabs(want.x - proj.m_lonOrigin) > 6.0 * ML::d2r) continue;
            worst = std::max({worst, std::fabs(got.x - want.x), std::fabs(got.y - want.y)});
            ++compared;
        }
    }
    std::printf("[ worst    ] TM inverse against the literal iteration, %d points: %.3e rad\n", compared, worst);
    EXPECT_LT(worst, 1e-14);
}
