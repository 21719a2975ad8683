// Geodesy throughput beside PROJ's proj_trans on the same points in the same
// run: Transverse Mercator forward and inverse, the selected chain with a
// datum shift (Geo::LLH_ENZ), and the line/sample chain, one point per call.
#include <zandata/ZanData.h>

#include <benchmark/benchmark.h>
#include <proj.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int kPoints = 4096;

std::string Num(double v)
{
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

// WGS84 and UTM zone 31 north, consistent records.
struct CTmSetup {
    CSphd sphd;
    CProj proj;
    std::vector<CV3> llh, enz;  // radians; metres
    CTmSetup()
    {
        const double f = 1.0 / 298.257223563;
        sphd.m_semiMajor = 6378137.0;
        sphd.m_semiMinor = 6378137.0 * (1.0 - f);
        sphd.m_ecc2 = f * (2.0 - f);
        sphd.m_invFlat = 298.257223563;
        proj.m_name = u"UTM_31N";
        proj.m_lonOrigin = 3.0 * ML::d2r;
        for (int i = 0; i < kPoints; ++i) {
            const double lat = 80.0 * ((i * 37) % kPoints) / kPoints;
            const double lon = 3.0 + 6.0 * ((i * 101) % kPoints) / kPoints - 3.0;
            llh.emplace_back(lon * ML::d2r, lat * ML::d2r, 0.0);
            CV3 g;
            GeoConv::llh2enz(sphd, proj, llh.back(), g);
            enz.push_back(g);
        }
    }
    std::string ProjDef() const
    {
        return "+proj=tmerc +lat_0=0 +lon_0=3 +k=0.9996 +x_0=500000 +y_0=0 +a=" + Num(sphd.m_semiMajor) +
               " +b=" + Num(sphd.m_semiMinor);
    }
};

const CTmSetup& Tm()
{
    static const CTmSetup s;
    return s;
}

// A PROJ operation for the life of one benchmark.
class CProjOp {
public:
    explicit CProjOp(const std::string& def) : m_ctx(proj_context_create()), m_pj(proj_create(m_ctx, def.c_str())) {}
    ~CProjOp()
    {
        proj_destroy(m_pj);
        proj_context_destroy(m_ctx);
    }
    CProjOp(const CProjOp&) = delete;
    CProjOp& operator=(const CProjOp&) = delete;
    PJ* Get() const { return m_pj; }

private:
    PJ_CONTEXT* m_ctx;
    PJ* m_pj;
};

void RunProj(benchmark::State& state, const std::string& def, PJ_DIRECTION dir, const std::vector<CV3>& in)
{
    const CProjOp op(def);
    if (!op.Get()) {
        state.SkipWithError("PROJ could not create the operation");
        return;
    }
    size_t i = 0;
    for (auto _ : state) {
        const CV3& p = in[i++ & (kPoints - 1)];
        PJ_COORD c = proj_trans(op.Get(), dir, proj_coord(p.x, p.y, p.z, 0.0));
        benchmark::DoNotOptimize(c);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_TmForward_ZanData(benchmark::State& state)
{
    const CTmSetup& s = Tm();
    size_t i = 0;
    CV3 out;
    for (auto _ : state) {
        GeoConv::llh2enz(s.sphd, s.proj, s.llh[i++ & (kPoints - 1)], out);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations());
}
void BM_TmForward_PROJ(benchmark::State& state) { RunProj(state, Tm().ProjDef(), PJ_FWD, Tm().llh); }

void BM_TmInverse_ZanData(benchmark::State& state)
{
    const CTmSetup& s = Tm();
    size_t i = 0;
    CV3 out;
    for (auto _ : state) {
        GeoConv::enz2llh(s.sphd, s.proj, s.enz[i++ & (kPoints - 1)], out);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations());
}
void BM_TmInverse_PROJ(benchmark::State& state) { RunProj(state, Tm().ProjDef(), PJ_INV, Tm().enz); }

// ETRS89 on GRS80 to the National Grid through the Ordnance Survey shift.
struct CShiftSetup {
    CSphd grs80, airy;
    CProj utm, bng;
    CShft shift;
    std::vector<CV3> deg, rad;
    CShiftSetup()
    {
        const double f = 1.0 / 298.257222101;
        grs80.m_semiMajor = 6378137.0;
        grs80.m_semiMinor = 6378137.0 * (1.0 - f);
        grs80.m_ecc2 = f * (2.0 - f);
        airy.m_semiMajor = 6377563.396;
        airy.m_semiMinor = 6356256.909;
        airy.m_ecc2 = 0.0066705400741492319;
        bng.m_latOrigin = 49.0 * ML::d2r;
        bng.m_lonOrigin = -2.0 * ML::d2r;
        bng.m_falseEast = 400000.0;
        bng.m_falseNorth = -100000.0;
        bng.m_scale = 0.9996012717;
        shift.m_dX = -446.448;
        shift.m_dY = 125.157;
        shift.m_dZ = -542.06;
        shift.m_rotX = -0.1502;
        shift.m_rotY = -0.247;
        shift.m_rotZ = -0.8421;
        shift.m_ppm = 20.4894;
        for (int i = 0; i < kPoints; ++i) {
            const double lat = 50.0 + 10.0 * ((i * 37) % kPoints) / kPoints;
            const double lon = -6.0 + 8.0 * ((i * 101) % kPoints) / kPoints;
            deg.emplace_back(lon, lat, 50.0);
            rad.emplace_back(lon * ML::d2r, lat * ML::d2r, 50.0);
        }
    }
    std::string ProjDef() const
    {
        return "+proj=pipeline +step +proj=cart +a=6378137 +es=" + Num(grs80.m_ecc2) +
               " +step +proj=helmert +x=-446.448 +y=125.157 +z=-542.06 +rx=-0.1502 +ry=-0.247 +rz=-0.8421"
               " +s=20.4894 +convention=position_vector"
               " +step +inv +proj=cart +a=6377563.396 +b=6356256.909"
               " +step +proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000"
               " +a=6377563.396 +b=6356256.909";
    }
};

void BM_LlhEnzWithShift_ZanData(benchmark::State& state)
{
    static CShiftSetup s;
    Geo::type = 0;
    Geo::pSphdP = &s.grs80;
    Geo::pProjP = &s.utm;
    Geo::pSphdS = &s.airy;
    Geo::pProjS = &s.bng;
    Geo::pShift = &s.shift;
    size_t i = 0;
    CV3 out;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Geo::LLH_ENZ(s.deg[i++ & (kPoints - 1)], out, 1));
        benchmark::DoNotOptimize(out);
    }
    Geo::pSphdP = Geo::pSphdS = nullptr;
    Geo::pProjP = Geo::pProjS = nullptr;
    Geo::pShift = nullptr;
    state.SetItemsProcessed(state.iterations());
}
void BM_LlhEnzWithShift_PROJ(benchmark::State& state)
{
    static CShiftSetup s;
    RunProj(state, s.ProjDef(), PJ_FWD, s.rad);
}

// The line/sample chain around 30 S, 17 E.
struct CLoSetup {
    std::vector<CV3> deg, rad;
    CLoSetup()
    {
        for (int i = 0; i < kPoints; ++i) {
            const double lat = -27.0 - 6.0 * ((i * 37) % kPoints) / kPoints;
            const double lon = 15.0 + 4.0 * ((i * 101) % kPoints) / kPoints;
            deg.emplace_back(lon, lat, 0.0);
            rad.emplace_back(lon * ML::d2r, lat * ML::d2r, 0.0);
        }
    }
    static std::string ProjDef()
    {
        const double kf = 0.99997248686, r1 = 1.211435e-05, r2 = 1.108651e-05, r3 = 2.57218e-05;
        const double sec = 648000.0 / ML::pi;
        const double Y0 = -241068.82, X0 = 3424180.46;
        const double c = std::cos(40.0 * ML::d2r), s = std::sin(40.0 * ML::d2r);
        return "+proj=pipeline +step +proj=cart +a=6378137 +es=0.006694380066764658"
               " +step +proj=helmert +x=133.449 +y=128.115 +z=299.308"
               " +step +proj=molobadekas +px=5284150.835 +py=1638194.835 +pz=-3162465.302 +rx=" +
               Num(-r3 / kf * sec) + " +ry=" + Num(-r2 / kf * sec) + " +rz=" + Num(r1 / kf * sec) +
               " +s=" + Num((kf - 1.0) * 1e6) +
               " +convention=position_vector"
               " +step +inv +proj=cart +a=6378249.145326 +es=0.006803481018641991"
               " +step +proj=tmerc +lon_0=17 +k=1 +a=6378249.14533 +es=0.006803481020200487 +axis=wsu"
               " +step +proj=affine +s11=" + Num(c) + " +s12=" + Num(-s) + " +s21=" + Num(s) + " +s22=" + Num(c) +
               " +xoff=" + Num(s * X0 - c * Y0) + " +yoff=" + Num(-(s * Y0 + c * X0));
    }
};

void BM_LineSampleChain_ZanData(benchmark::State& state)
{
    static CLoSetup s;
    size_t i = 0;
    double line = 0.0, sample = 0.0;
    for (auto _ : state) {
        const CV3& p = s.deg[i++ & (kPoints - 1)];
        GeoConvLS::ConvertLatLon2LineSample(p.y, p.x, &line, &sample, 1, 17);
        benchmark::DoNotOptimize(line);
        benchmark::DoNotOptimize(sample);
    }
    state.SetItemsProcessed(state.iterations());
}
void BM_LineSampleChain_PROJ(benchmark::State& state)
{
    static CLoSetup s;
    RunProj(state, CLoSetup::ProjDef(), PJ_FWD, s.rad);
}

} // namespace

BENCHMARK(BM_TmForward_ZanData);
BENCHMARK(BM_TmForward_PROJ);
BENCHMARK(BM_TmInverse_ZanData);
BENCHMARK(BM_TmInverse_PROJ);
BENCHMARK(BM_LlhEnzWithShift_ZanData);
BENCHMARK(BM_LlhEnzWithShift_PROJ);
BENCHMARK(BM_LineSampleChain_ZanData);
BENCHMARK(BM_LineSampleChain_PROJ);
