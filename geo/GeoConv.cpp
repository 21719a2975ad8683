#include "geo/GeoConv.h"

#include "core/platform/ML.h"
#include "geo/CProj.h"
#include "geo/CShft.h"
#include "geo/CSphd.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// Bounds on the two iterations. Both converge by a factor of about e² (1/150)
// a pass, so a sane input needs 3 to 6 passes; the bound only stops inputs
// whose residual can never fall under the tolerance (huge or non-finite).
constexpr int kMaxPasses = 64;

// The coefficients of the meridian arc's n-series: n = (a − b)/(a + b) and
// the factors c0 to c3 of (φ − φ0) and the three sine-cosine products.
struct CArcSeries {
    double n, c0, c1, c2, c3;
    CArcSeries(double a, double b) : n((a - b) / (a + b))
    {
        const double n2 = n * n, n3 = n2 * n;
        c0 = 1.0 + n + 5.0 / 4.0 * n2 + 5.0 / 4.0 * n3;
        c1 = 3.0 * n + 3.0 * n2 + 21.0 / 8.0 * n3;
        c2 = 15.0 / 8.0 * n2 + 15.0 / 8.0 * n3;
        c3 = 35.0 / 24.0 * n3;
    }
};

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
        const CArcSeries arc(sphd.m_semiMajor, sphd.m_semiMinor);
        m_bk0 = sphd.m_semiMinor * proj.m_scale;
        m_c0 = arc.c0;
        m_c1 = arc.c1;
        m_c2 = arc.c2;
        m_c3 = arc.c3;
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

private:
    double m_phi0, m_sin0 = 0.0, m_cos0 = 1.0;
    double m_bk0 = 0.0, m_c0 = 0.0, m_c1 = 0.0, m_c2 = 0.0, m_c3 = 0.0;
};

// sin x and cos x for |x| < 1.6 from their Taylor series to x^21 and x^22
// (the next terms are under 2e-18), in Estrin's arrangement: within an ulp
// or two of the library's, with a short dependency chain and no call.
[[gnu::always_inline]] inline void SinCosNear(double x, double& s, double& c)
{
    const double z = x * x, z2 = z * z, z4 = z2 * z2, z8 = z4 * z4;
    const double sa = (1.0 - z * (1.0 / 6.0)) + z2 * (1.0 / 120.0 - z * (1.0 / 5040.0));
    const double sb = (1.0 / 362880.0 - z * (1.0 / 39916800.0)) + z2 * (1.0 / 6227020800.0 - z * (1.0 / 1307674368000.0));
    const double sc = (1.0 / 355687428096000.0 - z * (1.0 / 121645100408832000.0)) + z2 * (1.0 / 51090942171709440000.0);
    s = x * (sa + z4 * sb + z8 * sc);
    const double ca = (1.0 - z * 0.5) + z2 * (1.0 / 24.0 - z * (1.0 / 720.0));
    const double cb = (1.0 / 40320.0 - z * (1.0 / 3628800.0)) + z2 * (1.0 / 479001600.0 - z * (1.0 / 87178291200.0));
    const double cc = (1.0 / 20922789888000.0 - z * (1.0 / 6402373705728000.0)) +
                      z2 * (1.0 / 2432902008176640000.0 - z * (1.0 / 1124000727777607680000.0));
    c = ca + z4 * cb + z8 * cc;
}

// Turns sin φ and cos φ into those of φ + d for |d| < 0.006 by the
// angle-sum identity; the series of sin d and cos d are exact to rounding
// there (the first terms left out are under 1e-19).
[[gnu::always_inline]] inline void RotateSmall(double d, double& s, double& c)
{
    const double d2 = d * d;
    const double sd = d * (1.0 - d2 * (1.0 / 6.0) * (1.0 - d2 * (1.0 / 20.0)));
    const double cd = 1.0 - 0.5 * d2 * (1.0 - d2 * (1.0 / 12.0) * (1.0 - d2 * (1.0 / 30.0)));
    const double sNew = s * cd + c * sd;
    c = c * cd - s * sd;
    s = sNew;
}

// What the inverse needs of a spheroid and a projection, kept per thread for
// the last pair seen: a run of points on one grid works them out once.
//
// By sin(φ−φ0)·cos(φ+φ0) = (sin 2φ − sin 2φ0)/2 and its multiples, the arc
// is M(φ) = R·(μ(φ) − μ(φ0)) with R = b·k0·c0 and
// μ(φ) = φ − A1·sin 2φ + A2·sin 4φ − A3·sin 6φ, Ak = ck/(2·c0): a rectifying
// latitude. Its inverse φ = μ + sin 2μ·Σ qj·cos^j 2μ (Lagrange's reversion
// of that very series, the qj in n to n^6, Chebyshev sums folded into powers
// of cos 2μ) gives the footpoint without passes; the terms left out are
// under 1e-17 rad for |n| < 0.01, which holds for every earth spheroid.
struct CTmInverse {
    // The bits of the record values these were worked out from, compared as
    // integers: one test a call. A NaN starts them, so that the first call
    // works them out.
    static constexpr std::uint64_t kNaNBits = 0x7FF8000000000001ull;
    std::uint64_t key[5] = {kNaNBits, kNaNBits, kNaNBits, kNaNBits, kNaNBits};
    bool series = false;  // |n| < 0.01: the reversion holds
    double phi0 = 0.0, invAk0 = 0.0, inv1e2 = 0.0, R = 0.0, invR = 0.0, A1 = 0.0, A2 = 0.0, A3 = 0.0, mu0 = 0.0;
    double q[6] = {};

    static void KeyOf(const CSphd& sphd, const CProj& proj, std::uint64_t (&k)[5])
    {
        k[0] = std::bit_cast<std::uint64_t>(sphd.m_semiMajor);
        k[1] = std::bit_cast<std::uint64_t>(sphd.m_semiMinor);
        k[2] = std::bit_cast<std::uint64_t>(sphd.m_ecc2);
        k[3] = std::bit_cast<std::uint64_t>(proj.m_scale);
        k[4] = std::bit_cast<std::uint64_t>(proj.m_latOrigin);
    }

    void Prepare(const CSphd& sphd, const CProj& proj)
    {
        KeyOf(sphd, proj, key);
        const double a = sphd.m_semiMajor, b = sphd.m_semiMinor, e2 = sphd.m_ecc2, k0 = proj.m_scale;
        phi0 = proj.m_latOrigin;
        const CArcSeries arc(a, b);
        const double n = arc.n, n2 = n * n, n3 = n2 * n;
        const double h = 0.5 / arc.c0;
        A1 = arc.c1 * h;
        A2 = arc.c2 * h;
        A3 = arc.c3 * h;
        R = b * k0 * arc.c0;
        invR = 1.0 / R;
        invAk0 = 1.0 / (a * k0);
        inv1e2 = 1.0 / (1.0 - e2);
        mu0 = phi0 == 0.0 ? 0.0 : phi0 - A1 * std::sin(2.0 * phi0) + A2 * std::sin(4.0 * phi0) - A3 * std::sin(6.0 * phi0);
        series = std::fabs(n) < 0.01;
        q[0] = n * (3.0 / 2.0 + n2 * (-29.0 / 12.0 + n * (-7.0 / 12.0 + n * (539.0 / 48.0 - 245.0 / 12.0 * n))));
        q[1] = n2 * (21.0 / 8.0 + n2 * (-209.0 / 16.0 + n * (14.0 + 30841.0 / 160.0 * n)));
        q[2] = n3 * (151.0 / 24.0 + n * (-35.0 / 12.0 + n * (-18617.0 / 192.0 + 10871.0 / 48.0 * n)));
        q[3] = n2 * n2 * (353.0 / 16.0 + n * (-35.0 - 778327.0 / 960.0 * n));
        q[4] = n3 * n2 * (7375.0 / 64.0 - 4375.0 / 16.0 * n);
        q[5] = n3 * n3 * (671161.0 / 960.0);
    }

    const CTmInverse& For(const CSphd& sphd, const CProj& proj)
    {
        std::uint64_t k[5];
        KeyOf(sphd, proj, k);
        if ((k[0] ^ key[0]) | (k[1] ^ key[1]) | (k[2] ^ key[2]) | (k[3] ^ key[3]) | (k[4] ^ key[4]))
            Prepare(sphd, proj);
        return *this;
    }
};

// The helpers above are inlined so that the FMA build of enz2llh covers them.
// Initial-exec: one load from the thread pointer rather than a call per point.
[[gnu::tls_model("initial-exec")]] thread_local CTmInverse t_tmInverse;

// The footpoint latitude where the iteration stops, with its sine and cosine.
// eps is how far that stop lies short of the latitude given here: the caller
// moves its result by eps along the derivatives.
struct CFootpoint {
    double phi, s, c, eps;
};

// The iteration as written: φ′ += r/(a·k0), r = N − N0 − M(φ′), until a pass
// whose |r| is under 1 mm, that pass's correction applied too. The pass
// bound and tests that are false for NaN make absurd or non-finite input
// return. Only points that the series below does not cover come here.
CFootpoint FootpointByPasses(const CSphd& sphd, const CProj& proj, double dN)
{
    const CArc arc(sphd, proj);
    const double ak0 = sphd.m_semiMajor * proj.m_scale;
    double phi = dN / ak0 + proj.m_latOrigin;
    for (int pass = 0; pass < kMaxPasses; ++pass) {
        const double r = dN - arc(phi, std::sin(phi), std::cos(phi));
        phi += r / ak0;
        if (!(std::fabs(r) >= 0.001)) break;
    }
    return {phi, std::sin(phi), std::cos(phi), 0.0};
}

// The same stop without passes. The reversion gives the footpoint φ* itself;
// the iteration ends a little short of it, and where is worked out from the
// start φs: the first pass leaves e1 = φ* − φs − r0/(a·k0), and every later
// pass multiplies the error by λ = 1 − M′(φ*)/(a·k0) (|λ| ≤ e², its square
// term under 1e-4 of it there), its residual being M′·e. The pass k whose
// |M′·e_k| first falls under 1 mm ends it, λ·e_k short of φ*. Agrees with
// the iteration to 1e-15 rad. False when the point is outside the series'
// reach (|μ| ≥ 1.6, a start more than 0.006 rad out, or non-finite).
[[gnu::always_inline]] inline bool FootpointBySeries(const CTmInverse& k, double dN, CFootpoint& fp)
{
    const double mu = dN * k.invR + k.mu0;
    const double phiS = dN * k.invAk0 + k.phi0;  // the iteration's start
    const double dS = phiS - mu;
    if (!(k.series && std::fabs(mu) < 1.6 && std::fabs(dS) < 0.006)) return false;

    double s, c;
    SinCosNear(mu, s, c);
    const double S2 = 2.0 * s * c, C2 = c * c - s * s, C22 = C2 * C2;
    const double delta = S2 * ((k.q[0] + C2 * k.q[1]) + C22 * ((k.q[2] + C2 * k.q[3]) + C22 * (k.q[4] + C2 * k.q[5])));
    fp.phi = mu + delta;
    fp.s = s;
    fp.c = c;
    RotateSmall(delta, fp.s, fp.c);

    // The first residual r0 = N − N0 − M(φs) = R·(μ(φs) − μ), from the
    // multiple angles of φs = μ + dS.
    double sS = s, cS = c;
    RotateSmall(dS, sS, cS);
    const double S2s = 2.0 * sS * cS, C2s = cS * cS - sS * sS;
    const double S4s = 2.0 * S2s * C2s, C4s = C2s * C2s - S2s * S2s;
    const double S6s = S4s * C2s + C4s * S2s;
    const double r0 = k.R * ((k.A1 * S2s - k.A2 * S4s + k.A3 * S6s) - dS);
    const double e1 = (delta - dS) - r0 * k.invAk0;

    // M′(φ*) from cos 2φ* = cos 2μ − 2δ·sin 2μ to first order (1e-5 of it,
    // ample for λ).
    const double C2f = C2 - 2.0 * delta * S2, C4f = 2.0 * C2f * C2f - 1.0, C6f = C2f * (2.0 * C4f - 1.0);
    const double slope = k.R * (1.0 - 2.0 * k.A1 * C2f + 4.0 * k.A2 * C4f - 6.0 * k.A3 * C6f);
    const double lam = 1.0 - slope * k.invAk0;

    // Passes after the first: from r1 < 0.01·a·k0·e² a few at most. Counted
    // by comparisons, not a loop, so that no branch depends on the point.
    const double l1 = std::fabs(lam), l2 = l1 * l1, l3 = l2 * l1, l4 = l2 * l2;
    const double r1 = std::fabs(slope * e1);
    const int passes = std::fabs(r0) < 0.001 ? 0
                                               : 1 + (r1 >= 0.001) + (r1 * l1 >= 0.001) + (r1 * l2 >= 0.001) +
                                                     (r1 * l3 >= 0.001) + (r1 * l4 >= 0.001);
    const double lam2 = lam * lam;
    const double power[7] = {1.0, lam, lam2, lam2 * lam, lam2 * lam2, lam2 * lam2 * lam, lam2 * lam2 * lam2};
    fp.eps = e1 * power[passes];
    return true;
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

// Built twice on x86-64, the second for processors with FMA (chosen when the
// library loads): fused products shorten the chains and round a little
// differently, well inside the accuracy stated in the header.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
__attribute__((target_clones("default", "arch=x86-64-v3")))
#endif
void GeoConv::enz2llh(const CSphd& sphd, const CProj& proj, CV3 enz, CV3& llh)
{
    const CTmInverse& k = t_tmInverse.For(sphd, proj);
    const double dN = enz.y - proj.m_falseNorth;
    CFootpoint fp;
    if (!FootpointBySeries(k, dN, fp)) fp = FootpointByPasses(sphd, proj, dN);
    const double s = fp.s, c = fp.c;

    // The terms VII to XIIA as polynomials in u = d²/ν², with 1/ν² = w/(a·k0)²
    // and ν/ρ = w/(1 − e²): only the longitude needs the square root.
    const double e2 = sphd.m_ecc2;
    const double w = 1.0 - e2 * s * s;
    const double nuRho = w * k.inv1e2;  // ν/ρ
    const double eta2 = nuRho - 1.0;
    const double sec = c == 0.0 ? 1e11 : 1.0 / c;
    const double t = c == 0.0 ? 100000.0 : s * sec;
    const double t2 = t * t, t4 = t2 * t2, t6 = t4 * t2;
    const double d = enz.x - proj.m_falseEast;
    const double dk = d * k.invAk0;
    const double u = w * dk * dk;
    const double VIII = (5.0 + 3.0 * t2 + eta2 - 9.0 * t2 * eta2) * (1.0 / 24.0);
    const double IX = (61.0 + 90.0 * t2 + 45.0 * t4) * (1.0 / 720.0);
    const double XI = (nuRho + 2.0 * t2) * (1.0 / 6.0);
    const double XII = (5.0 + 28.0 * t2 + 24.0 * t4) * (1.0 / 120.0);
    const double XIIA = (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t6) * (1.0 / 5040.0);
    const double X = sec * std::sqrt(w) * dk;  // sec·d/ν
    const double lat = fp.phi - t * nuRho * u * (0.5 - u * (VIII - u * IX));
    const double lon = proj.m_lonOrigin + X * (1.0 - u * (XI - u * (XII - u * XIIA)));

    // The stop lies eps (under 1e-12 rad) short of fp.phi: first-order moves
    // along ∂lat/∂φ′ ≈ 1 − (1 + t²)·(ν/ρ)·u/2 and ∂lon/∂φ′ ≈ X·(t − e²·s·c/w),
    // whose dropped terms are under 1e-3 of them.
    llh.y = lat - fp.eps * (1.0 - 0.5 * (1.0 + t2) * nuRho * u);
    llh.x = lon - fp.eps * X * (t - e2 * s * c / w);
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
