#include "geo/GeoConv.h"

#include "core/platform/ML.h"
#include "geo/CProj.h"
#include "geo/CShft.h"
#include "geo/CSphd.h"

#include <cmath>

namespace {

// Bounds on the two iterations. Both converge by a factor of about e² (1/150)
// a pass, so a sane input needs 3 to 6 passes; the bound only stops inputs
// whose residual can never fall under the tolerance (huge or non-finite).
constexpr int kMaxPasses = 64;

// Meridian arc from the latitude of origin, with the scale folded in: the
// n-series of the Ordnance Survey formulae. sin(φ−φ0), cos(φ+φ0) and their
// multiples come from one sin/cos of φ by the angle-sum and multiple-angle
// identities, which is the same arithmetic as calling sin and cos of each
// argument to a few units in the last place (1e-9 m on the arc) and costs one
// sincos instead of six transcendental calls per pass.
class CArc {
public:
    CArc(const CSphd& sphd, const CProj& proj) : m_phi0(proj.m_latOrigin)
    {
        // Most grids start on the equator: spare the two calls there.
        if (m_phi0 != 0.0) {
            m_sin0 = std::sin(m_phi0);
            m_cos0 = std::cos(m_phi0);
        }
        const double a = sphd.m_semiMajor, b = sphd.m_semiMinor;
        const double n = (a - b) / (a + b), n2 = n * n, n3 = n2 * n;
        m_bk0 = b * proj.m_scale;
        m_c0 = 1.0 + n + 5.0 / 4.0 * n2 + 5.0 / 4.0 * n3;
        m_c1 = 3.0 * n + 3.0 * n2 + 21.0 / 8.0 * n3;
        m_c2 = 15.0 / 8.0 * n2 + 15.0 / 8.0 * n3;
        m_c3 = 35.0 / 24.0 * n3;
    }

    // M(φ), given sin φ and cos φ as well.
    double operator()(double phi, double s, double c) const
    {
        const double sd = s * m_cos0 - c * m_sin0;  // sin(φ − φ0)
        const double cd = c * m_cos0 + s * m_sin0;  // cos(φ − φ0)
        const double ss = s * m_cos0 + c * m_sin0;  // sin(φ + φ0)
        const double cs = c * m_cos0 - s * m_sin0;  // cos(φ + φ0)
        const double sd2 = 2.0 * sd * cd;            // sin 2(φ − φ0)
        const double cs2 = cs * cs - ss * ss;        // cos 2(φ + φ0)
        const double sd3 = sd * (3.0 - 4.0 * sd * sd);  // sin 3(φ − φ0)
        const double cs3 = cs * (4.0 * cs * cs - 3.0);  // cos 3(φ + φ0)
        return m_bk0 * (m_c0 * (phi - m_phi0) - m_c1 * sd * cs + m_c2 * sd2 * cs2 - m_c3 * sd3 * cs3);
    }

    // The Taylor coefficients M^(k)/k!, k = 1 to 6, at a latitude given by
    // its sine and cosine. By sin(ku)·cos(kv) = (sin 2kφ − sin 2kφ0)/2
    // (u = φ − φ0, v = φ + φ0) the arc is a sine series in 2φ, 4φ, 6φ, whose
    // derivatives are plain sines and cosines of those angles. The seventh
    // term is under (3n/2)·b·k0·2^7·d^7/7! (4e-13 m for d = 0.01 rad on
    // WGS84), so over such a step the polynomial is the arc to rounding.
    void Taylor(double s, double c, double (&p)[6]) const
    {
        const double S2 = 2.0 * s * c, C2 = c * c - s * s;
        const double S4 = 2.0 * S2 * C2, C4 = C2 * C2 - S2 * S2;
        const double S6 = S4 * C2 + C4 * S2, C6 = C4 * C2 - S4 * S2;
        const double a2 = m_c1 * S2, b2 = m_c1 * C2, a4 = m_c2 * S4, b4 = m_c2 * C4, a6 = m_c3 * S6, b6 = m_c3 * C6;
        p[0] = m_bk0 * (m_c0 - b2 + 2.0 * b4 - 3.0 * b6);
        p[1] = m_bk0 * (a2 - 4.0 * a4 + 9.0 * a6);
        p[2] = m_bk0 * (2.0 / 3.0 * b2 - 16.0 / 3.0 * b4 + 18.0 * b6);
        p[3] = m_bk0 * (-1.0 / 3.0 * a2 + 16.0 / 3.0 * a4 - 27.0 * a6);
        p[4] = m_bk0 * (-2.0 / 15.0 * b2 + 64.0 / 15.0 * b4 - 162.0 / 5.0 * b6);
        p[5] = m_bk0 * (2.0 / 45.0 * a2 - 128.0 / 45.0 * a4 + 162.0 / 5.0 * a6);
    }

private:
    double m_phi0, m_sin0 = 0.0, m_cos0 = 1.0;
    double m_bk0 = 0.0, m_c0 = 0.0, m_c1 = 0.0, m_c2 = 0.0, m_c3 = 0.0;
};

// Turns sin φ and cos φ into those of φ + d by the angle-sum identity. Short
// series give sin d and cos d exactly to rounding for the small steps of the
// footpoint iteration (two terms each under 1e-4 rad, four under 0.02); a
// larger step calls sin and cos.
void Rotate(double d, double& s, double& c)
{
    const double d2 = d * d;
    double sd, cd;
    if (std::fabs(d) < 1e-4) {
        sd = d - d * d2 * (1.0 / 6.0);
        cd = 1.0 - 0.5 * d2;
    } else if (std::fabs(d) < 0.02) {
        sd = d * (1.0 - d2 * (1.0 / 6.0) * (1.0 - d2 * (1.0 / 20.0) * (1.0 - d2 * (1.0 / 42.0))));
        cd = 1.0 - 0.5 * d2 * (1.0 - d2 * (1.0 / 12.0) * (1.0 - d2 * (1.0 / 30.0) * (1.0 - d2 * (1.0 / 56.0))));
    } else {
        sd = std::sin(d);
        cd = std::cos(d);
    }
    const double sNew = s * cd + c * sd;
    c = c * cd - s * sd;
    s = sNew;
}

} // namespace

void GeoConv::llh2enz(const CSphd& sphd, const CProj& proj, CV3 llh, CV3& enz)
{
    const double a = sphd.m_semiMajor, e2 = sphd.m_ecc2, k0 = proj.m_scale;
    const double phi = llh.y;
    const double P = llh.x - proj.m_lonOrigin;
    const double s = std::sin(phi), c = std::cos(phi);
    const double t = c == 0.0 ? 100000.0 : s / c;
    const double t2 = t * t, t4 = t2 * t2;
    const double w = 1.0 - e2 * s * s;
    const double nu = a * k0 / std::sqrt(w);
    const double rho = (1.0 - e2) * nu / w;
    const double eta2 = nu / rho - 1.0;
    const double c3 = c * c * c, c5 = c3 * c * c;
    const double P2 = P * P;

    const double I = CArc(sphd, proj)(phi, s, c) + proj.m_falseNorth;
    const double II = nu / 2.0 * s * c;
    const double III = nu / 24.0 * s * c3 * (5.0 - t2 + 9.0 * eta2);
    const double IIIA = nu / 720.0 * s * c5 * (61.0 - 58.0 * t2 + t4);
    const double IV = nu * c;
    const double V = nu / 6.0 * c3 * (nu / rho - t2);
    const double VI = nu / 120.0 * c5 * (5.0 - 18.0 * t2 + t4 + 14.0 * eta2 - 58.0 * t2 * eta2);

    enz.y = I + II * P2 + III * P2 * P2 + IIIA * P2 * P2 * P2;
    enz.x = proj.m_falseEast + IV * P + V * P2 * P + VI * P2 * P2 * P;
}

void GeoConv::enz2llh(const CSphd& sphd, const CProj& proj, CV3 enz, CV3& llh)
{
    const double a = sphd.m_semiMajor, e2 = sphd.m_ecc2, k0 = proj.m_scale;
    const double ak0 = a * k0;
    const double dN = enz.y - proj.m_falseNorth;
    const CArc arc(sphd, proj);

    // Footpoint latitude: φ′ += r/(a·k0) with r = N − N0 − M(φ′), until a
    // pass whose |r| is under 1 mm; that pass's correction is applied too.
    // The arc contracts the error by about e² a pass, and from the start the
    // whole walk stays within some 0.01 rad of it for any point of a grid:
    // there the arc is taken from its Taylor polynomial of degree 6 about the
    // start, exact to rounding over such a step (CArc::Taylor), so the passes
    // cost a few multiplications each and sin and cos are called once. Only
    // a start further off (a point far outside any grid) takes full passes
    // until the correction is that small. The pass bound and tests that are
    // false for NaN make absurd or non-finite input return.
    constexpr double kTaylorSpan = 0.01;  // rad
    const double invAk0 = 1.0 / ak0;
    double phi = dN / ak0 + proj.m_latOrigin;
    double s = std::sin(phi), c = std::cos(phi);
    double r = dN - arc(phi, s, c);
    int pass = 1;
    for (; std::fabs(r) * invAk0 >= kTaylorSpan && std::fabs(r) >= 0.001 && pass < kMaxPasses; ++pass) {
        // Not the last pass: its residual is not under 1 mm.
        const double d = r * invAk0;
        phi += d;
        Rotate(d, s, c);
        r = dN - arc(phi, s, c);
    }
    double p[6];
    arc.Taylor(s, c, p);
    const double r0 = r;
    double D = 0.0;  // correction gathered since the expansion latitude
    for (; pass < kMaxPasses; ++pass) {
        D += r * invAk0;
        if (!(std::fabs(r) >= 0.001)) break;
        // Estrin's arrangement: the passes are serial, so the depth of each
        // one's arithmetic is what they cost.
        const double D2 = D * D;
        const double q = (p[0] + D * p[1]) + D2 * ((p[2] + D * p[3]) + D2 * (p[4] + D * p[5]));
        r = r0 - D * q;
    }
    phi += D;
    Rotate(D, s, c);

    // The terms VII to XIIA, with 1/ν = √w/(a·k0), ν/ρ = w/(1−e²) and
    // 1/(ρν) = (ν/ρ)/ν² taken from the radii above so that two divisions
    // serve them all.
    const double w = 1.0 - e2 * s * s;
    const double inu = std::sqrt(w) * invAk0;  // 1/ν
    const double nuRho = w / (1.0 - e2);      // ν/ρ
    const double eta2 = nuRho - 1.0;
    const double sec = c == 0.0 ? 1e11 : 1.0 / c;
    const double t = c == 0.0 ? 100000.0 : s * sec;
    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    const double inu2 = inu * inu, inu3 = inu2 * inu, inu5 = inu3 * inu2, inu7 = inu5 * inu2;
    const double iRhoNu = nuRho * inu2;  // 1/(ρν)
    const double d = enz.x - proj.m_falseEast;
    const double d2 = d * d, d3 = d2 * d, d4 = d2 * d2, d5 = d4 * d, d6 = d4 * d2, d7 = d6 * d;

    const double VII = t * iRhoNu * (1.0 / 2.0);
    const double VIII = t * iRhoNu * inu2 * (1.0 / 24.0) * (5.0 + 3.0 * t2 + eta2 - 9.0 * t2 * eta2);
    const double IX = t * iRhoNu * inu2 * inu2 * (1.0 / 720.0) * (61.0 + 90.0 * t2 + 45.0 * t4);
    const double X = sec * inu;
    const double XI = sec * inu3 * (1.0 / 6.0) * (nuRho + 2.0 * t2);
    const double XII = sec * inu5 * (1.0 / 120.0) * (5.0 + 28.0 * t2 + 24.0 * t4);
    const double XIIA = sec * inu7 * (1.0 / 5040.0) * (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6);

    llh.y = phi - VII * d2 + VIII * d4 - IX * d6;
    llh.x = proj.m_lonOrigin + X * d - XI * d3 + XII * d5 - XIIA * d7;
}

void GeoConv::llh2xyz(const CSphd& sphd, CV3 llh, CV3& xyz)
{
    const double a = sphd.m_semiMajor, b = sphd.m_semiMinor, e2 = sphd.m_ecc2;
    const double phi = llh.y, lam = llh.x, h = llh.z;
    const double s = std::sin(phi), c = std::cos(phi);
    const double nu = a / std::sqrt(1.0 - e2 * s * s);
    xyz.x = (h + nu) * c * std::cos(lam);
    xyz.y = (h + nu) * c * std::sin(lam);
    // Height of the surface point above the equator plane from the ellipse
    // x²/a² + z²/b² = 1 at x = ν·cos φ. Rounding can take the radicand a hair
    // below zero on the equator; it is 0 there.
    const double q = 1.0 - nu * nu * c * c / (a * a);
    const double z0 = b * std::sqrt(q > 0.0 ? q : 0.0);
    xyz.z = (phi < 0.0 ? -z0 : z0) + h * s;
}

void GeoConv::xyz2llh(const CSphd& sphd, CV3 xyz, CV3& llh)
{
    const double a = sphd.m_semiMajor, e2 = sphd.m_ecc2;
    const double lam = std::atan2(xyz.y, xyz.x);
    llh.x = lam;
    const double p = std::sqrt(xyz.x * xyz.x + xyz.y * xyz.y);

    // Fixed-point iteration on the latitude until a pass changes it by at
    // most 1e-7 rad. The pass bound and the negated test (false for NaN) make
    // a non-finite position return at once.
    double phi = 0.0, phiNew = 0.0, nu = a;
    for (int pass = 0; pass < kMaxPasses; ++pass) {
        const double s = std::sin(phi);
        nu = a / std::sqrt(1.0 - e2 * s * s);
        phiNew = std::atan((xyz.z + e2 * nu * s) / p);
        if (!(std::fabs(phiNew - phi) > 1e-7)) break;
        phi = phiNew;
    }
    llh.y = phiNew;
    llh.z = xyz.x / std::cos(lam) / std::cos(phiNew) - nu;
}

void GeoConv::DShift(const CShft& shft, CV3 in, CV3& out, int inverse)
{
    constexpr double kSec = ML::pi / 648000.0;  // one arc-second in radians
    const double sign = inverse ? -1.0 : 1.0;
    const double rx = sign * shft.m_rotX * kSec;
    const double ry = sign * shft.m_rotY * kSec;
    const double rz = sign * shft.m_rotZ * kSec;
    const double k = inverse ? 1.0 - shft.m_ppm * 1e-6 : 1.0 + shft.m_ppm * 1e-6;
    const double X = in.x, Y = in.y, Z = in.z;
    const double x = (X - rz * Y + ry * Z) * k;
    const double y = (rz * X + Y - rx * Z) * k;
    const double z = (-ry * X + rx * Y + Z) * k;
    if (inverse) {
        out.x = x - shft.m_dX;
        out.y = y - shft.m_dY;
        out.z = z - shft.m_dZ;
    } else {
        out.x = x + shft.m_dX;
        out.y = y + shft.m_dY;
        out.z = z + shft.m_dZ;
    }
}

double GeoConv::GetConv(const CSphd& sphd, const CProj& proj, CV3 llh)
{
    const double e2 = sphd.m_ecc2;
    const double phi = llh.y;
    const double s = std::sin(phi), c = std::cos(phi);
    const double A = (llh.x - proj.m_lonOrigin) * c;
    const double C = e2 * c * c / (1.0 - e2);
    return s / c * (A + A * A * A / 3.0 * (1.0 + 3.0 * C));
}
