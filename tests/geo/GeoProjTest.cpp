// The conversions checked against PROJ on a few hundred points across
// latitudes and zones. Each comparison prints its worst error, so the margin
// shows in the test output.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

// One PROJ operation from a proj-string, on radians and metres.
class CProjOp {
public:
    explicit CProjOp(const std::string& def) : m_ctx(proj_context_create()), m_pj(proj_create(m_ctx, def.c_str()))
    {
        EXPECT_NE(m_pj, nullptr) << def;
    }
    ~CProjOp()
    {
        proj_destroy(m_pj);
        proj_context_destroy(m_ctx);
    }
    CProjOp(const CProjOp&) = delete;
    CProjOp& operator=(const CProjOp&) = delete;

    CV3 Fwd(const CV3& v) const { return Trans(PJ_FWD, v); }
    CV3 Inv(const CV3& v) const { return Trans(PJ_INV, v); }

private:
    CV3 Trans(PJ_DIRECTION dir, const CV3& v) const
    {
        const PJ_COORD c = proj_trans(m_pj, dir, proj_coord(v.x, v.y, v.z, 0.0));
        return {c.v[0], c.v[1], c.v[2]};
    }
    PJ_CONTEXT* m_ctx;
    PJ* m_pj;
};

std::string Num(double v)
{
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

std::string TmDef(const CSphd& s, const CProj& p)
{
    return "+proj=tmerc +lat_0=" + Num(p.m_latOrigin * ML::r2d) + " +lon_0=" + Num(p.m_lonOrigin * ML::r2d) +
           " +k=" + Num(p.m_scale) + " +x_0=" + Num(p.m_falseEast) + " +y_0=" + Num(p.m_falseNorth) +
           " +a=" + Num(s.m_semiMajor) + " +b=" + Num(s.m_semiMinor);
}

std::string CartDef(const CSphd& s) { return "+proj=cart +a=" + Num(s.m_semiMajor) + " +es=" + Num(s.m_ecc2); }

std::string HelmertDef(const CShft& t)
{
    return "+proj=helmert +x=" + Num(t.m_dX) + " +y=" + Num(t.m_dY) + " +z=" + Num(t.m_dZ) + " +rx=" + Num(t.m_rotX) +
           " +ry=" + Num(t.m_rotY) + " +rz=" + Num(t.m_rotZ) + " +s=" + Num(t.m_ppm) +
           " +convention=position_vector";
}

// The shipped database, read once into the process-wide lists.
class GeoProj : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        Geo::ClearDb();
        Geo::ReadDb(CString::FromUtf8(ZAN_SOURCE_DIR "/data/GeoDB.csv"));
    }
    static void TearDownTestSuite() { Geo::ClearDb(); }

    static const CSphd& Sphd(const char16_t* name)
    {
        const CSphd* p = Geo::GetSphd(name);
        EXPECT_NE(p, nullptr);
        return p ? *p : s_none;
    }
    static const CProj& Proj(const CString& name)
    {
        const CProj* p = Geo::GetProj(name);
        EXPECT_NE(p, nullptr);
        return p ? *p : s_noProj;
    }
    static inline CSphd s_none;
    static inline CProj s_noProj;
};

// Worst absolute differences of a comparison.
struct CWorst {
    double e = 0.0, n = 0.0, z = 0.0;
    int count = 0;
    void Add(double de, double dn, double dz = 0.0)
    {
        // A NaN must not slip past std::max.
        e = std::isnan(de) ? INFINITY : std::max(e, std::fabs(de));
        n = std::isnan(dn) ? INFINITY : std::max(n, std::fabs(dn));
        z = std::isnan(dz) ? INFINITY : std::max(z, std::fabs(dz));
        ++count;
    }
    void Print(const char* what, const char* unit) const
    {
        std::printf("[ worst    ] %-52s %4d points: %.3e / %.3e / %.3e %s\n", what, count, e, n, z, unit);
    }
};

} // namespace

TEST_F(GeoProj, TransverseMercatorAgainstExactTm)
{
    // Spheroid and zone pairs across both hemispheres and all longitudes.
    struct Case {
        const char16_t* sphd;
        bool south;
    };
    const Case cases[] = {{u"WGS84", false}, {u"WGS84", true}, {u"International_1924", false}, {u"Bessel_1841", true}};
    CWorst fwd3, inv3, fwd6, inv6;
    int zone = 1;
    for (const Case& c : cases) {
        const CSphd& sphd = Sphd(c.sphd);
        for (double lat = 0.5; lat <= 84.0; lat += 7.5, zone = (zone + 6) % 60 + 1) {
            const CProj& proj = Proj(CString::Fmt(u"UTM_%d%s", zone, c.south ? u"S" : u"N"));
            const CProjOp tm(TmDef(sphd, proj));
            for (double off : {-6.0, -4.5, -3.0, -2.0, -1.0, -0.25, 0.0, 0.5, 1.5, 2.5, 3.0, 5.0, 6.0}) {
                const double phi = (c.south ? -lat : lat) * ML::d2r;
                const CV3 llh(proj.m_lonOrigin + off * ML::d2r, phi, 0.0);
                CV3 ours, back;
                GeoConv::llh2enz(sphd, proj, llh, ours);
                const CV3 ref = tm.Fwd(llh);
                GeoConv::enz2llh(sphd, proj, ref, back);
                const CV3 refBack = tm.Inv(ref);
                // PROJ gives longitudes in [-180, 180]; the series keeps λ0 + Δλ.
                CWorst& f = std::fabs(off) <= 3.0 ? fwd3 : fwd6;
                CWorst& i = std::fabs(off) <= 3.0 ? inv3 : inv6;
                f.Add(ours.x - ref.x, ours.y - ref.y);
                i.Add(std::remainder(back.x - refBack.x, ML::pi2) * ML::r2d, (back.y - refBack.y) * ML::r2d);
            }
        }
    }
    fwd3.Print("tmerc forward, within 3 deg of CM (E / N)", "m");
    inv3.Print("tmerc inverse, within 3 deg of CM (lon / lat)", "deg");
    fwd6.Print("tmerc forward, 3 to 6 deg from CM (E / N)", "m");
    inv6.Print("tmerc inverse, 3 to 6 deg from CM (lon / lat)", "deg");
    EXPECT_GT(fwd3.count + fwd6.count, 300);
    EXPECT_LT(fwd3.e, 0.002);
    EXPECT_LT(fwd3.n, 0.002);
    EXPECT_LT(inv3.e, 2e-8);
    EXPECT_LT(inv3.n, 2e-8);
    EXPECT_LT(fwd6.e, 0.03);
    EXPECT_LT(fwd6.n, 0.03);
}

TEST_F(GeoProj, NationalGridWithItsOwnOriginAgainstExactTm)
{
    // A latitude of origin other than 0 and a scale other than 0.9996.
    const CSphd& airy = Sphd(u"Airy_1830");
    const CProj& bng = Proj(u"British_National_Grid");
    const CProjOp tm(TmDef(airy, bng));
    CWorst fwd3, inv3, fwd6;
    for (double lat = 49.5; lat <= 61.0; lat += 0.5) {
        for (double lon = -8.0; lon <= 4.0; lon += 1.0) {
            const CV3 llh(lon * ML::d2r, lat * ML::d2r, 0.0);
            CV3 ours, back;
            GeoConv::llh2enz(airy, bng, llh, ours);
            const CV3 ref = tm.Fwd(llh);
            GeoConv::enz2llh(airy, bng, ref, back);
            const bool near = std::fabs(lon + 2.0) <= 3.0;
            (near ? fwd3 : fwd6).Add(ours.x - ref.x, ours.y - ref.y);
            if (near) inv3.Add((back.x - llh.x) * ML::r2d, (back.y - llh.y) * ML::r2d);
        }
    }
    fwd3.Print("National Grid forward, within 3 deg of CM (E / N)", "m");
    inv3.Print("National Grid inverse, within 3 deg of CM (lon / lat)", "deg");
    fwd6.Print("National Grid forward, 3 to 6 deg from CM (E / N)", "m");
    EXPECT_LT(fwd3.e, 0.002);
    EXPECT_LT(fwd3.n, 0.002);
    EXPECT_LT(inv3.e, 2e-8);
    EXPECT_LT(inv3.n, 2e-8);
    EXPECT_LT(fwd6.e, 0.03);
    EXPECT_LT(fwd6.n, 0.03);
}

TEST_F(GeoProj, CartesianAgainstPROJCart)
{
    CWorst fwd, inv;
    for (const char16_t* name : {u"WGS84", u"GRS80", u"Airy_1830", u"International_1924", u"Clarke_1866",
                                 u"Clarke_1880_Arc", u"Bessel_1841"}) {
        const CSphd& sphd = Sphd(name);
        const CProjOp cart(CartDef(sphd));
        for (double lat = -89.0; lat <= 89.0; lat += 8.9) {
            for (double lon = -179.0; lon <= 180.0; lon += 47.0) {
                for (double h : {-120.0, 0.0, 3500.0}) {
                    const CV3 llh(lon * ML::d2r, lat * ML::d2r, h);
                    CV3 ours, back;
                    GeoConv::llh2xyz(sphd, llh, ours);
                    const CV3 ref = cart.Fwd(llh);
                    fwd.Add(ours.x - ref.x, ours.y - ref.y, ours.z - ref.z);
                    GeoConv::xyz2llh(sphd, ref, back);
                    // The inverse stops when a pass moves the latitude by at
                    // most 1e-7 rad; with convergence by about e² a pass, up
                    // to ~7e-10 rad (4e-8 deg, 4 mm) can remain: the stopping
                    // rule's own error, not the oracle's.
                    inv.Add((back.x - llh.x) * ML::r2d, (back.y - llh.y) * ML::r2d, back.z - h);
                }
            }
        }
    }
    fwd.Print("geographic to cartesian (X / Y / Z)", "m");
    inv.Print("cartesian to geographic (lon / lat deg, h m)", "");
    EXPECT_GT(fwd.count, 300);
    EXPECT_LT(fwd.e, 1e-4);
    EXPECT_LT(fwd.n, 1e-4);
    EXPECT_LT(fwd.z, 1e-3);
    EXPECT_LT(inv.e, 1e-12);
    EXPECT_LT(inv.n, 5e-8);  // measured 2.7e-8
    EXPECT_LT(inv.z, 1e-3);
}

TEST_F(GeoProj, HelmertAgainstPROJHelmert)
{
    ASSERT_GE(Geo::shfts.GetCount(), 5);
    CWorst fwd, inv;
    for (CZanPtr* pos = Geo::shfts.GetHeadPos(); pos;) {
        const CShft& shft = *Geo::shfts.GetNext(pos);
        const CProjOp helmert(HelmertDef(shft));
        const CSphd& wgs = Sphd(u"WGS84");
        for (double lat = -80.0; lat <= 80.0; lat += 16.0) {
            for (double lon = -170.0; lon <= 180.0; lon += 35.0) {
                CV3 xyz, ours, back;
                GeoConv::llh2xyz(wgs, CV3(lon * ML::d2r, lat * ML::d2r, 250.0), xyz);
                GeoConv::DShift(shft, xyz, ours, 0);
                const CV3 ref = helmert.Fwd(xyz);
                fwd.Add(ours.x - ref.x, ours.y - ref.y, ours.z - ref.z);
                // PROJ's inverse is exact; ours is the first-order reverse,
                // which also subtracts the translation after rotating, so it
                // is off by about (rotation + scale)·translation, plus
                // rotation² times the radius.
                GeoConv::DShift(shft, ref, back, 1);
                const CV3 refBack = helmert.Inv(ref);
                inv.Add(back.x - refBack.x, back.y - refBack.y, back.z - refBack.z);
            }
        }
    }
    fwd.Print("Helmert forward (X / Y / Z)", "m");
    inv.Print("Helmert first-order inverse vs exact (X / Y / Z)", "m");
    EXPECT_GT(fwd.count, 300);
    EXPECT_LT(std::max({fwd.e, fwd.n, fwd.z}), 1e-6);
    // Measured 1.4 cm for the largest rotations and translations shipped
    // (WGS84_to_MGI: 5.3 arc-seconds and 600 m): the reverse's own error.
    EXPECT_LT(std::max({inv.e, inv.n, inv.z}), 0.02);
}

namespace {

// The line and sample chain as a PROJ pipeline: WGS84 cartesian; the
// translation; rotation and scale about the fixed point (the built-in matrix
// is (1+s)·R of the position-vector convention with s = kf - 1 and the
// rotations r/kf); Clarke 1880 geographic; the Lo grid (scale 1, x west,
// y south); the 40 degree rotation about the concession's origin.
std::string LoPipeline(int concession, int loSystem)
{
    const double kf = 0.99997248686, r1 = 1.211435e-05, r2 = 1.108651e-05, r3 = 2.57218e-05;
    const double sec = 648000.0 / ML::pi;  // arc-seconds per radian
    const double Y0 = concession ? -241068.82 : 33144.7, X0 = concession ? 3424180.46 : 3143352.6;
    const double c = std::cos(40.0 * ML::d2r), s = std::sin(40.0 * ML::d2r);
    return "+proj=pipeline"
           " +step +proj=cart +a=6378137 +es=0.006694380066764658"
           " +step +proj=helmert +x=133.449 +y=128.115 +z=299.308"
           " +step +proj=molobadekas +px=5284150.835 +py=1638194.835 +pz=-3162465.302 +rx=" +
           Num(-r3 / kf * sec) + " +ry=" + Num(-r2 / kf * sec) + " +rz=" + Num(r1 / kf * sec) +
           " +s=" + Num((kf - 1.0) * 1e6) + " +convention=position_vector"
           " +step +inv +proj=cart +a=6378249.145326 +es=0.006803481018641991"
           " +step +proj=tmerc +lon_0=" + std::to_string(loSystem) +
           " +k=1 +a=6378249.14533 +es=0.006803481020200487 +axis=wsu"
           " +step +proj=affine +s11=" + Num(c) + " +s12=" + Num(-s) + " +s21=" + Num(s) + " +s22=" + Num(c) +
           " +xoff=" + Num(s * X0 - c * Y0) + " +yoff=" + Num(-(s * Y0 + c * X0));
}

} // namespace

TEST(GeoProjLo, LineSampleChainAgainstPROJPipeline)
{
    CWorst fwd, back1, back2;
    for (int concession : {1, 0}) {
        for (int loSystem : {15, 17, 19}) {
            const CProjOp chain(LoPipeline(concession, loSystem));
            for (double lat = 27.0; lat <= 33.0; lat += 0.75) {
                for (double dLon = -2.0; dLon <= 2.0; dLon += 0.5) {
                    const double lon = loSystem + dLon;
                    double line = 0.0, sample = 0.0;
                    GeoConvLS::ConvertLatLon2LineSample(-lat, lon, &line, &sample, concession, loSystem);
                    const CV3 ref = chain.Fwd(CV3(lon * ML::d2r, -lat * ML::d2r, 0.0));
                    fwd.Add(line - ref.x, sample - ref.y);

                    // The way back is the shorter approximate set of
                    // formulas, so it is held against the starting point
                    // (in metres on the ground), apart from the oracle.
                    double Y = 0.0, X = 0.0, cLat = 0.0, cLon = 0.0, wLat = 0.0, wLon = 0.0;
                    GeoConvLS::CalcLoYX(ref.x, ref.y, &Y, &X, concession);
                    GeoConvLS::CalcClarke1880LatLon(Y, X, &cLat, &cLon, loSystem);
                    GeoConvLS::CalcWGS84LatLon(cLat, cLon, &wLat, &wLon);
                    const double m = 111200.0;  // metres per degree, near enough for an envelope
                    (std::fabs(dLon) <= 1.0 ? back1 : back2)
                        .Add((wLon - lon) * m * std::cos(lat * ML::d2r), (wLat - lat) * m);
                }
            }
        }
    }
    fwd.Print("line/sample forward chain (line / sample)", "m");
    back1.Print("line/sample way back, within 1 deg (E / N on ground)", "m");
    back2.Print("line/sample way back, 1 to 2 deg (E / N on ground)", "m");
    EXPECT_GT(fwd.count, 300);
    EXPECT_LT(fwd.e, 0.001);
    EXPECT_LT(fwd.n, 0.001);
    // The approximate inverse's own error, measured: see the printed figures.
    EXPECT_LT(std::max(back1.e, back1.n), 0.4);  // measured 0.30 m
    EXPECT_LT(std::max(back2.e, back2.n), 2.0);  // measured 1.54 m
}

TEST_F(GeoProj, SelectedChainWithShiftAgainstPROJPipeline)
{
    // ETRS89 positions to the National Grid through the shift, by Geo.
    Geo::type = 0;
    Geo::pSphdP = Geo::GetSphd(u"GRS80");
    Geo::pProjP = Geo::GetProj(u"UTM_30N");
    Geo::pSphdS = Geo::GetSphd(u"Airy_1830");
    Geo::pProjS = Geo::GetProj(u"British_National_Grid");
    Geo::pShift = Geo::GetShft(u"ETRS89_to_OSGB36");
    ASSERT_TRUE(Geo::pSphdP && Geo::pProjP && Geo::pSphdS && Geo::pProjS && Geo::pShift);
    const CProjOp chain("+proj=pipeline +step " + CartDef(*Geo::pSphdP) + " +step " + HelmertDef(*Geo::pShift) +
                        " +step +inv " + CartDef(*Geo::pSphdS) + " +step " + TmDef(*Geo::pSphdS, *Geo::pProjS));
    CWorst fwd, back;
    for (double lat = 50.0; lat <= 60.0; lat += 0.5) {
        for (double lon = -6.0; lon <= 1.5; lon += 0.75) {
            CV3 enz, llh;
            ASSERT_EQ(Geo::LLH_ENZ(CV3(lon, lat, 50.0), enz, 1), 1);
            const CV3 ref = chain.Fwd(CV3(lon * ML::d2r, lat * ML::d2r, 50.0));
            fwd.Add(enz.x - ref.x, enz.y - ref.y);
            // Back through the first-order reverse shift, held against the
            // start: the reverse's own error dominates.
            ASSERT_EQ(Geo::ENZ_LLH(CV3(ref.x, ref.y, ref.z), llh, 1), 1);
            back.Add((llh.x - lon) * 111200.0 * std::cos(lat * ML::d2r), (llh.y - lat) * 111200.0, llh.z - 50.0);
        }
    }
    fwd.Print("Geo::LLH_ENZ with shift, GRS80 -> OSGB36 grid (E / N)", "m");
    back.Print("Geo::ENZ_LLH with shift, back to the start (E / N / h)", "m");
    // The cartesian-to-geographic step stops at a latitude change of 1e-7 rad,
    // which can leave a few millimetres: measured 0.5 mm.
    EXPECT_LT(std::max(fwd.e, fwd.n), 0.005);
    EXPECT_LT(std::max({back.e, back.n, back.z}), 0.03);
    Geo::pSphdP = Geo::pSphdS = nullptr;
    Geo::pProjP = Geo::pProjS = nullptr;
    Geo::pShift = nullptr;
}
