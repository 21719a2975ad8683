// The line and sample grid: the worked positions, the way back, symmetry and
// the quadrants of the axis step.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

TEST(GeoConvLS, FirstConcessionWorkedPosition)
{
    double line = 0.0, sample = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-29.8, 15.9, &line, &sample, 1, 17);
    std::printf("line %.4f sample %.4f\n", line, sample);
    EXPECT_NEAR(line, 347083.98, 0.005);
    EXPECT_NEAR(sample, 126714.63, 0.005);

    double Y = 0.0, X = 0.0;
    GeoConvLS::CalcLoYX(line, sample, &Y, &X, 1);
    std::printf("Y %.4f X %.4f\n", Y, X);
    EXPECT_NEAR(Y, 106263.53, 0.005);
    EXPECT_NEAR(X, 3298148.22, 0.005);

    double cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, 17);
    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
    std::printf("c %.9f %.9f w %.9f %.9f\n", cLat, cLon, wLat, wLon);
    EXPECT_NEAR(wLat, 29.8, 1e-5);
    EXPECT_NEAR(wLon, 15.9, 1e-5);
}

TEST(GeoConvLS, SecondConcessionWorkedPosition)
{
    double line = 0.0, sample = 0.0;
    GeoConvLS::ConvertLatLon2LineSample(-28.5, 16.2, &line, &sample, 0, 17);
    std::printf("line %.4f sample %.4f\n", line, sample);
    EXPECT_NEAR(line, 27814.65, 0.005);
    EXPECT_NEAR(sample, 36998.39, 0.005);
    double Y = 0.0, X = 0.0, cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
    GeoConvLS::CalcLoYX(line, sample, &Y, &X, 0);
    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, 17);
    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
    std::printf("c %.9f %.9f w %.9f %.9f\n", cLat, cLon, wLat, wLon);
    EXPECT_NEAR(wLat, 28.5, 1e-5);
    EXPECT_NEAR(wLon, 16.2, 1e-5);
}
