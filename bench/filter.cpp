// Filter and image arithmetic throughput on a realistic plane: 1024 bearings
// by 2000 range lines, a 16-entry pattern.
//
// Each kernel runs through CTgtImgFlt::Filter on 1 and 2 threads, beside a
// plain step-by-step evaluation (tests/processing/FltReference.hpp) of the
// same run on one thread. Every library run is checked once against the
// plain one, byte for byte, before it is timed. Counters:
//   x_ref      speed relative to the plain evaluation (higher is faster), by
//              elapsed time
//   x_ref_cpu  the same by processor time (steadier on a busy machine)
//   x_1thread  elapsed-time speed of the 2-thread run relative to the 1-thread
//              run; it needs two idle cores to mean anything
//   cpu_share  processor time of the 1-thread run over that of the 2-thread
//              run (1.0: splitting the rows costs nothing; the 2-thread speed-up
//              on idle cores is about twice this)
//   split_bound  the 2-thread speed-up the row split allows: each slice's
//              kernel timed alone on one thread, their sum over the slowest
//              (2.0: the slices cost the same)
// Normalise8 and Norm16to8 are timed in turn with a memcpy of the same 16-bit
// plane (bench/SideBySide.hpp); x_memcpy is their speed relative to it.
//
//   ./build/bench/bench_filter
#include <zandata/ZanData.h>

#include "bench/SideBySide.hpp"
#include "tests/processing/FltReference.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kBrgs = 1024;
constexpr int kRngs = 2000;

// Speckle under a few echoes per line that spread over neighbouring bearings,
// weaker with range, and a seabed return.
const std::vector<BYTE>& Plane()
{
    static const std::vector<BYTE> plane = [] {
        std::mt19937 rng(2024);
        std::vector<BYTE> v(static_cast<size_t>(kBrgs) * kRngs);
        std::normal_distribution<double> speckle(18.0, 9.0);
        std::uniform_int_distribution<int> col(0, kBrgs - 1), count(0, 8), peak(60, 255);
        for (int r = 0; r < kRngs; ++r) {
            BYTE* row = v.data() + static_cast<size_t>(r) * kBrgs;
            const double fade = 1.0 - 0.5 * r / kRngs;
            for (int c = 0; c < kBrgs; ++c) row[c] = static_cast<BYTE>(std::clamp(speckle(rng) * fade, 0.0, 255.0));
            for (int e = count(rng); e > 0; --e) {
                const int c0 = col(rng), p = static_cast<int>(peak(rng) * fade);
                for (int d = -8; d <= 8; ++d) {
                    const int c = c0 + d;
                    if (c < 0 || c >= kBrgs) continue;
                    const int val = p * (9 - std::abs(d) / 1) / 9;
                    row[c] = static_cast<BYTE>(std::max<int>(row[c], val));
                }
            }
            if (r > kRngs * 3 / 5)  // the bed
                for (int c = 0; c < kBrgs; ++c) row[c] = static_cast<BYTE>(std::min(255, row[c] + 60));
        }
        return v;
    }();
    return plane;
}

const std::vector<double>& Pattern()
{
    static const std::vector<double> pat = {0.05, 0.1, 0.2, 0.35, 0.55, 0.75, 0.9, 1.0,
                                            1.0,  0.9, 0.75, 0.55, 0.35, 0.2, 0.1, 0.05};
    return pat;
}

void Setup(CTgtImgFlt& f, int id, int threads)
{
    f.m_filterId = id;
    f.m_bias = 0.3;
    f.m_offset = 0.02;
    f.m_lowTgt = 0;
    f.m_scale = 1.5;
    f.m_nThreads = threads;
    f.SetupThreads();
    f.SetPatSize(static_cast<int>(Pattern().size()));
    for (size_t i = 0; i < Pattern().size(); ++i) f.m_pPat[i] = Pattern()[i];
}

fltref::Settings RefSettings(const CTgtImgFlt& f)
{
    fltref::Settings s;
    s.pat = f.m_pPat;
    s.nPat = f.m_nPat;
    s.offset = f.m_offset;
    s.bias = f.m_bias;
    s.lowTgt = f.m_lowTgt;
    s.scale = f.m_scale;
    return s;
}

struct Cost {
    double wall = 0.0;  // seconds per run, elapsed
    double cpu = 0.0;   // seconds per run, processor time of the whole process
};

// Cost of each timed case, for the ratios.
std::map<std::string, Cost>& Times()
{
    static std::map<std::string, Cost> t;
    return t;
}

// Times one run of f: elapsed seconds to the benchmark, both kinds to `cost`.
template <class F>
void Timed(benchmark::State& state, Cost& cost, F&& f)
{
    const double c0 = bench::ProcessSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    f();
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    cost.cpu += bench::ProcessSeconds() - c0;
    cost.wall += wall;
    state.SetIterationTime(wall);
}

void Average(benchmark::State& state, Cost& cost)
{
    const double n = static_cast<double>(std::max<benchmark::IterationCount>(state.iterations(), 1));
    cost.wall /= n;
    cost.cpu /= n;
}

void Quiet()
{
    static bool done = false;
    if (!done) Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
    done = true;
}

}  // namespace

// The speed-up the filter's row split allows on idle cores: the kernel's time
// over all the slices, one after another on this thread, over that of the
// slowest slice. It reads the slices the last Filter run left in m_thrds, and
// needs no second idle core to mean something.
static double SplitBound(CTgtImgFlt& f, CTgtImg& img)
{
    using Kernel = void (*)(CTgtImg*, CTgtImgFlt*, int, int);
    const Kernel kernels[] = {nullptr, CTgtImgFlt::Flt1, CTgtImgFlt::Flt2, CTgtImgFlt::Flt3, CTgtImgFlt::Flt4};
    const Kernel k = kernels[f.m_filterId];
    double total = 0.0, slowest = 0.0;
    for (unsigned i = 0; i < f.m_thrds.m_nSize; ++i) {
        const CTifThrd& t = *f.m_thrds.m_ppItems[i];
        double best = 1e9;
        for (int rep = 0; rep < 5; ++rep) {
            const auto t0 = std::chrono::steady_clock::now();
            k(&img, &f, t.m_nStart, t.m_nEnd);
            best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
        }
        total += best;
        slowest = std::max(slowest, best);
    }
    return slowest > 0.0 ? total / slowest : 0.0;
}

// Timed with manual time so that the per-run copy of the plane is left out
// of both the plain and the library figures.
static void BM_Plain(benchmark::State& state)
{
    const int id = static_cast<int>(state.range(0));
    CTgtImgFlt f;
    Setup(f, id, 1);
    std::vector<BYTE> img(Plane().size());
    Cost cost;
    for (auto _ : state) {
        img = Plane();
        Timed(state, cost, [&] { fltref::Filter(id, RefSettings(f), 0, 1, img.data(), kBrgs, kRngs); });
        benchmark::DoNotOptimize(img.data());
    }
    Average(state, cost);
    Times()["plain" + std::to_string(id)] = cost;
    state.SetLabel("Flt" + std::to_string(id) + " plain steps, 1 thread");
}

static void BM_Filter(benchmark::State& state)
{
    Quiet();
    const int id = static_cast<int>(state.range(0));
    const int threads = static_cast<int>(state.range(1));
    CTgtImgFlt f;
    Setup(f, id, threads);
    CTgtImg img;
    img.Alloc(kRngs, kBrgs);

    // Byte for byte against the plain steps first.
    std::vector<BYTE> want = Plane();
    fltref::Filter(id, RefSettings(f), 0, threads, want.data(), kBrgs, kRngs);
    std::memcpy(img.m_pImg, Plane().data(), Plane().size());
    f.Filter(&img);
    if (std::memcmp(img.m_pImg, want.data(), want.size()) != 0) {
        state.SkipWithError("output differs from the plain steps");
        return;
    }

    Cost cost;
    for (auto _ : state) {
        std::memcpy(img.m_pImg, Plane().data(), Plane().size());
        Timed(state, cost, [&] { f.Filter(&img); });
    }
    Average(state, cost);
    Times()["lib" + std::to_string(id) + "_" + std::to_string(threads)] = cost;
    const auto plain = Times().find("plain" + std::to_string(id));
    if (plain != Times().end()) {
        state.counters["x_ref"] = plain->second.wall / cost.wall;
        if (threads == 1) state.counters["x_ref_cpu"] = plain->second.cpu / cost.cpu;
    }
    const auto one = Times().find("lib" + std::to_string(id) + "_1");
    if (threads > 1 && one != Times().end()) {
        state.counters["x_1thread"] = one->second.wall / cost.wall;
        state.counters["cpu_share"] = one->second.cpu / cost.cpu;
        state.counters["split_bound"] = SplitBound(f, img);
    }
    state.SetLabel("Flt" + std::to_string(id) + ", " + std::to_string(threads) + " thread" + (threads > 1 ? "s" : ""));
}

BENCHMARK(BM_Plain)->DenseRange(1, 4)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(1.0);
BENCHMARK(BM_Filter)
    ->ArgsProduct({{1, 2, 3, 4}, {1, 2}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.0);

namespace {

// A raw 16-bit plane of the same size: speckle and echoes up to 60000.
const std::vector<BYTE>& Plane16()
{
    static const std::vector<BYTE> plane = [] {
        std::vector<BYTE> v(static_cast<size_t>(kBrgs) * kRngs * 2);
        const auto& p8 = Plane();
        std::mt19937 rng(99);
        std::uniform_int_distribution<int> low(0, 235);
        for (size_t i = 0; i < p8.size(); ++i) {
            const unsigned w = p8[i] * 235u + static_cast<unsigned>(low(rng));
            v[2 * i] = static_cast<BYTE>(w);
            v[2 * i + 1] = static_cast<BYTE>(w >> 8);
        }
        return v;
    }();
    return plane;
}

void Raw16(CTgtImg& img)
{
    img.AllocQI(kRngs, kBrgs * 2);
    std::memcpy(img.m_pQI, Plane16().data(), Plane16().size());
}

}  // namespace

static void BM_Memcpy16(benchmark::State& state)
{
    std::vector<BYTE> dst(Plane16().size());
    for (auto _ : state) {
        std::memcpy(dst.data(), Plane16().data(), Plane16().size());
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Plane16().size()));
    state.SetLabel("memcpy of the 16-bit plane");
}

// op on the 16-bit plane, with memcpy of the same plane in turn (x_memcpy).
static void RawOp(benchmark::State& state, const char* name, void (*op)(CTgtImg&))
{
    Quiet();
    CTgtImg img;
    img.Ping()->m_bfGain = 300;
    img.Ping()->m_nrmSpread = 1;
    Raw16(img);
    op(img);  // sizes the 8-bit plane once, as a stream of like pings would
    std::vector<BYTE> dst(Plane16().size());
    const bench::SideBySide r = bench::RunSideBySide(
        state,
        [&] {
            op(img);
            benchmark::DoNotOptimize(img.m_pImg);
            benchmark::ClobberMemory();
        },
        [&](int) {
            std::memcpy(dst.data(), Plane16().data(), Plane16().size());
            benchmark::DoNotOptimize(dst.data());
            benchmark::ClobberMemory();
        });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Plane16().size()));
    if (r.OpEach() > 0.0) state.counters["x_memcpy"] = r.RefEach() / r.OpEach();
    state.counters["memcpy_us"] = r.RefEach() * 1e6;
    state.SetLabel(name);
}

static void BM_Normalise8Rows(benchmark::State& state)
{
    RawOp(state, "Normalise8(0)", [](CTgtImg& img) { img.Normalise8(0); });
}
static void BM_Normalise8Cols(benchmark::State& state)
{
    RawOp(state, "Normalise8(1)", [](CTgtImg& img) { img.Normalise8(1); });
}
static void BM_Norm16to8(benchmark::State& state)
{
    RawOp(state, "Norm16to8", [](CTgtImg& img) { img.Norm16to8(0.0); });
}

BENCHMARK(BM_Memcpy16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Normalise8Rows)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Normalise8Cols)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Norm16to8)->Unit(benchmark::kMicrosecond);
