// The line and sample grid: the worked positions, the way back, symmetry and
// the quadrants of the axis step.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>

TEST(GeoConvLS, FirstConcessionWorkedPosition)
{
    double line = 0.0, sample = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-29.8, 15.9, &line, &sample, 1, 17);
    EXPECT_NEAR(line, 347083.98, 0.005);
    EXPECT_NEAR(sample, 126714.63, 0.005);

    double Y = 0.0, X = 0.0;
    GeoConvLS::CalcLoYX(line, sample, &Y, &X, 1);
    EXPECT_NEAR(Y, 106263.53, 0.005);
    EXPECT_NEAR(X, 3298148.22, 0.005);

    double cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, 17);
    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
    EXPECT_NEAR(wLat, 29.8, 1e-5);
    EXPECT_NEAR(wLon, 15.9, 1e-5);
}

TEST(GeoConvLS, SecondConcessionWorkedPosition)
{
    double line = 0.0, sample = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-28.5, 16.2, &line, &sample, 0, 17);
    EXPECT_NEAR(line, 27814.65, 0.005);
    EXPECT_NEAR(sample, 36998.39, 0.005);
    double Y = 0.0, X = 0.0, cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
    GeoConvLS::CalcLoYX(line, sample, &Y, &X, 0);
    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, 17);
    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
    EXPECT_NEAR(wLat, 28.5, 1e-5);
    EXPECT_NEAR(wLon, 16.2, 1e-5);
}

TEST(GeoConvLS, HemisphereSignsAreIgnoredOnTheWayIn)
{
    double l1 = 0.0, s1 = 0.0, l2 = 0.0, s2 = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-30.25, 17.5, &l1, &s1, 1, 17);
    GeoConvLS::ConvertLatLon2LineSample(30.25, -17.5, &l2, &s2, 1, 17);
    EXPECT_EQ(l1, l2);
    EXPECT_EQ(s1, s2);
}

TEST(GeoConvLS, AxisStepInvertsExactlyInAllQuadrants)
{
    for (int concession : {0, 1}) {
        const double Y0 = concession ? -241068.82 : 33144.7, X0 = concession ? 3424180.46 : 3143352.6;
        for (double a : {-150000.0, -20.0, 35000.0, 410000.0}) {
            for (double b : {-90000.0, -3.0, 12000.0, 250000.0}) {
                double Y = 0.0, X = 0.0;
                GeoConvLS::CalcLoYX(a, b, &Y, &X, concession);
                // Forward of the last step, as the chain does it.
                const double dX = X0 - X, dY = Y - Y0;
                const double r = std::sqrt(dX * dX + dY * dY);
                double theta = 40.0 - std::atan(dX / dY) * ML::r2d;
                if (Y0 > Y) theta += 180.0;
                EXPECT_NEAR(r * std::cos(theta * ML::d2r), a, 1e-8 * r) << a << " " << b;
                EXPECT_NEAR(r * std::sin(theta * ML::d2r), b, 1e-8 * r) << a << " " << b;
            }
        }
        // A zero sample: an infinite quotient and a right angle.
        double Y = 0.0, X = 0.0;
        GeoConvLS::CalcLoYX(1000.0, 0.0, &Y, &X, concession);
        EXPECT_NEAR(Y, Y0 + 1000.0 * std::cos(40.0 * ML::d2r), 1e-6);
        EXPECT_NEAR(X, X0 - 1000.0 * std::sin(40.0 * ML::d2r), 1e-6);
        // The origin itself.
        GeoConvLS::CalcLoYX(0.0, 0.0, &Y, &X, concession);
        EXPECT_EQ(Y, Y0);
        EXPECT_EQ(X, X0);
    }
}

TEST(GeoConvLS, ClarkeInverseAndDatumStepCloseNearTheMeridian)
{
    // On the meridian the shorter inverse is near exact; the WGS84 step
    // closes to 1e-4 m and rad by its own rule.
    double line = 0.0, sample = 0.0, Y = 0.0, X = 0.0, cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-31.0, 17.0, &line, &sample, 1, 17);
    GeoConvLS::CalcLoYX(line, sample, &Y, &X, 1);
    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, 17);
    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
    EXPECT_NEAR(wLat, 31.0, 2e-6);
    EXPECT_NEAR(wLon, 17.0, 2e-6);
    EXPECT_GT(wLat, 0.0);  // south latitudes come back positive
}

TEST(GeoConvLS, NonFiniteInputReturns)
{
    double line = 0.0, sample = 0.0, lat = 0.0, lon = 0.0;
    const double nan = std::nan("");
    GeoConvLS::ConvertLatLon2LineSample(nan, 17.0, &line, &sample, 1, 17);
    EXPECT_TRUE(std::isnan(line));
    GeoConvLS::CalcClarke1880LatLon(1000.0, nan, &lat, &lon, 17);
    EXPECT_TRUE(std::isnan(lat));
    GeoConvLS::CalcClarke1880LatLon(1000.0, 1e300, &lat, &lon, 17);
    GeoConvLS::CalcWGS84LatLon(nan, 17.0, &lat, &lon);
    EXPECT_TRUE(std::isnan(lat));
}
