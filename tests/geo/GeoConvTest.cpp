// Conversions between geographic, Transverse Mercator grid, cartesian
// coordinates and datums: the worked values, boundaries and round trips.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

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
