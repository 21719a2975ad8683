#include "geo/GeoConvLS.h"

#include "core/platform/ML.h"

#include <cmath>

namespace {

// Origins of the line and sample grid in the Lo grid, by concession.
struct COrigin {
    double Y0, X0;
};
constexpr COrigin kOrigin1{-241068.82, 3424180.46};  // concession non-zero
constexpr COrigin kOrigin0{33144.7, 3143352.6};      // concession 0
const COrigin& Origin(int concession) { return concession ? kOrigin1 : kOrigin0; }

// The datum step: fixed point, translation, and the matrices (scale folded
// into the diagonal) from WGS84 to the local datum and back.
constexpr double Px = 5284150.835, Py = 1638194.835, Pz = -3162465.302;
constexpr double Tx = 133.449, Ty = 128.115, Tz = 299.308;
constexpr double kf = 0.99997248686;
constexpr double ki = 1.0000275138969938;
constexpr double r1 = 1.211435e-05, r2 = 1.108651e-05, r3 = 2.57218e-05;

// Bound on the passes of the geographic iterations and of the footpoint
// search. Each converges in a handful of passes; the bound and tests that are
// false for NaN make a non-finite input return instead of looping.
constexpr int kMaxPasses = 64;

// Cartesian to geographic by the pass of the height-latitude iteration,
// running while either change (after `quantise`) is above 0.0001. Returns
// the latitude in radians; `phi` and `h` are the starting values.
template <class Q>
double Geographic(double X, double Y, double Z, double a, double e2, double phi, double h, Q quantise)
{
    const double p = std::sqrt(X * X + Y * Y);
    double dPhi = 10.0, dH = 10.0;
    double Nc = a;
    for (int pass = 0; pass < kMaxPasses && (dPhi > 0.0001 || dH > 0.0001); ++pass) {
        const double phiNew = std::atan(1.0 / (1.0 - e2 * Nc / (h + Nc)) * Z / p);
        const double s = std::sin(phiNew);
        Nc = a / std::sqrt(1.0 - e2 * s * s);
        const double hNew = p / std::cos(phiNew) - Nc;
        dPhi = quantise(std::fabs(phiNew - phi));
        dH = quantise(std::fabs(hNew - h));
        phi = phiNew;
        h = hNew;
    }
    return phi;
}

} // namespace

void GeoConvLS::ConvertLatLon2LineSample(double lat, double lon, double* pLine, double* pSample, int concession,
                                         int loSystem)
{
    constexpr double d2r = ML::d2r, r2d = ML::r2d;

    // Step 1: WGS84 to cartesian, on the southern hemisphere.
    const double phi1 = -std::fabs(lat) * d2r;
    const double lam1 = std::fabs(lon) * d2r;
    const double s1phi = std::sin(phi1);
    const double N = 6378137.0 / std::pow(1.0 - 0.006694380066764658 * s1phi * s1phi, 0.5);
    const double X1 = N * std::cos(phi1) * std::cos(lam1);
    const double Y1 = N * std::cos(phi1) * std::sin(lam1);
    const double Z1 = N * 0.9933056199332353 * s1phi;

    // Step 2: translation, then rotation and scale about the fixed point.
    const double A = X1 + Tx - Px, B = Y1 + Ty - Py, C = Z1 + Tz - Pz;
    const double X2 = kf * A - r1 * B - r2 * C + Px;
    const double Y2 = r1 * A + kf * B + r3 * C + Py;
    const double Z2 = r2 * A - r3 * B + kf * C + Pz;

    // Step 3: to Clarke 1880 geographic. The changes are whole numbers, so
    // the loop ends once the height moves by under a metre.
    const double lamC = std::atan(Y2 / X2);
    const double p = std::sqrt(X2 * X2 + Y2 * Y2);
    const double h0 = std::sqrt(p * p + Z2 * Z2) - std::sqrt(40543436153740.15);
    double phi = Geographic(X2, Y2, Z2, 6378249.145326, 0.006803481018641991, phi1, h0,
                            [](double v) { return std::trunc(v); });

    // Step 4: the Lo projection in its tabulated form; p counts 10000
    // seconds of arc of longitude from the meridian.
    phi = std::fabs(phi * r2d);
    const double phiR = phi * d2r;
    const double s1 = std::sin(0.0002777777777777778 * d2r);
    const double P = (lamC * r2d - loSystem) * 0.36;
    const double s = std::sin(phiR), c = std::cos(phiR), t = std::tan(phiR);
    const double nu = 6378249.14533 / std::sqrt(1.0 - 0.006803481020200487 * s * s);
    const double t2 = t * t, t4 = t2 * t2;
    const double c2 = c * c, c3 = c2 * c, c4 = c2 * c2, c5 = c4 * c;
    const double s1_2 = s1 * s1, s1_3 = s1_2 * s1, s1_4 = s1_2 * s1_2, s1_5 = s1_4 * s1, s1_6 = s1_4 * s1_2;
    const double P2 = P * P, P3 = P2 * P, P4 = P2 * P2, P5 = P4 * P, P6 = P4 * P2;

    double Y = -(nu * c * s1 * 1e4 * P + nu / 6.0 * c3 * s1_3 * 1e12 * (1.0 - t2 + 0.006850085446522655 * c2) * P3 +
                 nu / 120.0 * c5 * s1_5 * 1e20 *
                     (5.0 - 18.0 * t2 + t4 + 0.09590119625131717 * c2 - 0.397304955898314 * c2 * t2 +
                      0.0006100077181205993 * c4) *
                     P5);
    const double S = 6367386.692689269 * phiR - 16300.62802251925 * std::sin(2.0 * phiR) +
                     17.387475181385234 * std::sin(4.0 * phiR) - 0.023080451644827474 * std::sin(6.0 * phiR) +
                     3.3236060779623296e-05 * std::sin(8.0 * phiR);
    double X = S + nu / 2.0 * s * c * s1_2 * 1e8 * P2 +
               nu / 24.0 * s * c3 * s1_4 * 1e16 * (5.0 - t2 + 0.0616507690187039 * c2 + 0.00018769468249864595 * c4) *
                   P4 +
               nu / 720.0 * s * c5 * s1_6 * 1e24 *
                   (61.0 - 58.0 * t2 + t4 + 1.849523070561117 * c2 - 2.2605281973524765 * t2 * c2 +
                    0.02088103342797436 * c4) *
                   P6;

    // Step 5: to the concession's axes.
    if (Y == 0.0) Y = 0.0001;
    if (X == 0.0) X = 0.0001;
    const COrigin& o = Origin(concession);
    const double dX = o.X0 - X, dY = Y - o.Y0;
    const double r = std::sqrt(dX * dX + dY * dY);
    // dY of exactly 0 gives an infinite quotient and a right angle, as meant.
    double theta = 40.0 - std::atan(dX / dY) * r2d;
    if (o.Y0 > Y) theta += 180.0;
    *pLine = r * std::cos(theta * d2r);
    *pSample = r * std::sin(theta * d2r);
}

void GeoConvLS::CalcLoYX(double line, double sample, double* pY, double* pX, int concession)
{
    constexpr double d2r = ML::d2r, r2d = ML::r2d;
    const COrigin& o = Origin(concession);
    const double a = line, b = sample;
    const double r = std::sqrt(a * a + b * b);
    // A zero b gives an infinite quotient and a right angle. At the origin
    // itself (a and b both 0) the angle is undefined but r is 0.
    double theta = r == 0.0 ? 0.0 : std::atan(a / b) * r2d + 40.0;
    if (a > 0.0 && b < 0.0) theta += 180.0;
    if (a < 0.0) {
        if (b < 0.0) theta += 180.0;
        if (b > 0.0) theta += 360.0;
    }
    *pY = r * std::sin(theta * d2r) + o.Y0;
    *pX = r * std::cos(theta * d2r) + o.X0;
}

void GeoConvLS::CalcClarke1880LatLon(double Y, double X, double* pLat, double* pLon, int loSystem)
{
    constexpr double K = 57.29577951307855;
    constexpr double d2r = ML::d2r;

    // Footpoint latitude in degrees, until the correction rounds to zero in
    // millionths of a degree.
    double phi = 0.0;
    for (int pass = 0; pass < kMaxPasses; ++pass) {
        const double S = 111131.8592 * phi - 16300.62807 * std::sin(2.0 * phi * d2r) +
                         17.38747517 * std::sin(4.0 * phi * d2r) - 0.023080452 * std::sin(6.0 * phi * d2r) +
                         0.00033366 * std::sin(4.0 * phi * d2r);
        const double sp = std::sin(phi * d2r);
        const double nu = 6378249.145 / std::sqrt(1.0 - 0.006803481 * sp * sp);
        const double delta = (X - S) * K / nu;
        phi += delta;
        if (!(std::trunc(delta * 1000000.0 + 0.5) != 0.0)) break;
    }

    const double sp = std::sin(phi * d2r);
    const double nu = 6378249.145 / std::sqrt(1.0 - 0.006803481 * sp * sp);
    const double c = std::cos(phi * d2r), t = std::tan(phi * d2r);
    const double t2 = t * t;
    const double eta = 0.006850086 * c;
    const double rho = nu / (1.0 + eta);
    const double Y2 = Y * Y, Y3 = Y2 * Y, Y4 = Y2 * Y2, Y5 = Y4 * Y;
    const double nu3 = nu * nu * nu, nu5 = nu3 * nu * nu;

    *pLat = phi - K * t * Y2 / (2.0 * rho * nu) +
            K * t * Y4 / (24.0 * rho * nu3) * (5.0 + 3.0 * t2 + eta - 9.0 * t2 * eta - 4.0 * eta);
    *pLon = std::fabs(K * Y / (nu * c) - loSystem - K * Y3 / (6.0 * nu3 * c) * (1.0 + 2.0 * t2 + eta) +
                      K * Y5 / (120.0 * nu5 * c) * (5.0 + 6.0 * eta + 28.0 * t2 + 8.0 * t2 * eta));
}

void GeoConvLS::CalcWGS84LatLon(double lat, double lon, double* pLat, double* pLon)
{
    constexpr double r2d = ML::r2d, d2r = ML::d2r;
    const double phi = -lat * d2r, lam = lon * d2r;
    const double sphi = std::sin(phi);
    const double N = 6378249.145326 / std::sqrt(1.0 - 0.006803481018641991 * sphi * sphi);
    const double A = N * std::cos(phi) * std::cos(lam) - Px;
    const double B = N * std::cos(phi) * std::sin(lam) - Py;
    const double C = N * 0.993196518981358 * sphi - Pz;
    const double X3 = ki * A + r1 * B + r2 * C + Px - Tx;
    const double Y3 = -r1 * A + ki * B - r3 * C + Py - Ty;
    const double Z3 = -r2 * A + r3 * B + ki * C + Pz - Tz;

    const double lamW = std::atan(Y3 / X3);
    const double p = std::sqrt(X3 * X3 + Y3 * Y3);
    const double h0 = std::sqrt(p * p + Z3 * Z3) - std::sqrt(40544237133759.02);
    // Here the changes stay real numbers: the loop runs to 0.0001 m and rad.
    const double phiW = Geographic(X3, Y3, Z3, 6378137.0, 0.006694380066764658, phi, h0, [](double v) { return v; });
    *pLat = std::fabs(phiW * r2d);
    *pLon = lamW * r2d;
}
