#pragma once
// GeoConvLS: the fixed line and sample survey grid of a concession in the
// southern hemisphere (around 30 S, 17 E), with every constant built in.
//
// Forward chain: WGS84 geographic -> cartesian -> seven-parameter shift about
// a fixed point (Molodensky-Badekas, scale folded into the matrix) -> Clarke
// 1880 geographic -> Lo grid (Transverse Mercator, scale 1 on a whole-degree
// meridian, Y westward, X southward from the equator) -> the concession's
// axes (origin shift and a 40 degree rotation).
//
// Angles are degrees. South latitudes are handled as positive numbers:
// ConvertLatLon2LineSample takes the magnitudes of its inputs and
// CalcWGS84LatLon returns a positive latitude; longitudes are east.
// Positions north of the equator or west of Greenwich have no meaning here.
//
// The way back (CalcLoYX, CalcClarke1880LatLon, CalcWGS84LatLon) is a shorter
// approximate set of formulas: WGS84 -> line/sample -> WGS84 closes to about
// 0.3 m within 1 degree of the grid's meridian and 1.5 m at 2 degrees from
// it (3e-6 degree at the worked positions). Stateless, allocation-free, any
// thread.
class GeoConvLS {
public:
    // WGS84 latitude and longitude (degrees; magnitudes are taken) to the
    // Line (*pLine) and the Sample with its sign reversed (*pSample).
    // concession: non-zero for the first origin, 0 for the second; loSystem:
    // central meridian of the Lo grid, whole degrees east. Agrees with an
    // exact chain of the same steps to 0.1 mm within 2 degrees of the
    // meridian. A non-finite input gives non-finite results.
    static void ConvertLatLon2LineSample(double lat, double lon, double* pLine, double* pSample, int concession,
                                         int loSystem);

    // Line and the second result above back to Lo grid Y (*pY) and X (*pX),
    // metres. Exact inverse of the last step, to rounding, in all quadrants.
    static void CalcLoYX(double line, double sample, double* pY, double* pX, int concession);

    // Lo grid Y, X (metres) to Clarke 1880 latitude (positive south) and
    // longitude (east), degrees, by the shorter approximate inverse series.
    static void CalcClarke1880LatLon(double Y, double X, double* pLat, double* pLon, int loSystem);

    // Clarke 1880 latitude (positive south), longitude (degrees) to WGS84
    // latitude (positive south) and longitude, degrees.
    static void CalcWGS84LatLon(double lat, double lon, double* pLat, double* pLon);
};
