// The frame of 10,000 pings interpolated from a navigation stream of a
// million records: position 10 Hz, heading 20 Hz, motion 50 Hz.
//
// Pings in time order walk the cursor of CSnsrSeq; pings in random order take
// its binary search. "allocs/ping" counts heap allocations inside the timed
// loop (expected 0). The linear-scan case shows what rescanning would cost.
#include <zandata/ZanData.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

namespace {
std::atomic<long long> g_nAllocs {0};
}

void* operator new(std::size_t n)
{
    g_nAllocs.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(n ? n : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

constexpr int kRecords = 1'000'000;
constexpr int kPings = 10'000;

// One survey line; records come in time order by type.
struct NavStream {
    std::vector<CSnsrPos> pos;
    std::vector<CSnsrGyro> gyro;
    std::vector<CSnsrMru> mru;
    double t0 = 1.7e9, t1 = 0.0;

    NavStream()
    {
        // 80 records a second in all: 1e6 records span 12,500 s.
        const double span = kRecords / 80.0;
        t1 = t0 + span;
        pos.resize(static_cast<size_t>(span * 10));
        gyro.resize(static_cast<size_t>(span * 20));
        mru.resize(static_cast<size_t>(span * 50));
        for (size_t i = 0; i < pos.size(); ++i) {
            const double t = t0 + i / 10.0;
            pos[i].m_time = t;
            pos[i].m_local = CV3(2.0 * (t - t0), 0.1 * std::sin((t - t0) / 30.0), 0.0);
            pos[i].m_geo = CV3(-3.0 + 2.0 * (t - t0) * 1.5e-5, 51.0, 0.0);
        }
        for (size_t i = 0; i < gyro.size(); ++i) {
            const double t = t0 + i / 20.0;
            gyro[i].m_time = t;
            gyro[i].m_heading = static_cast<float>(std::fmod(360.0 + 3.0 * std::sin((t - t0) / 20.0), 360.0));
        }
        for (size_t i = 0; i < mru.size(); ++i) {
            const double t = t0 + i / 50.0;
            mru[i].m_time = t;
            mru[i].m_pitch = static_cast<float>(2.0 * std::sin(t / 7.0));
            mru[i].m_roll = static_cast<float>(4.0 * std::sin(t / 5.0));
            mru[i].m_heave = static_cast<float>(0.3 * std::sin(t / 3.0));
        }
    }
    size_t Count() const { return pos.size() + gyro.size() + mru.size(); }
};

const NavStream& Stream()
{
    static const NavStream s;
    return s;
}

std::vector<double> PingTimes(bool shuffled)
{
    const NavStream& s = Stream();
    std::vector<double> t(kPings);
    for (int i = 0; i < kPings; ++i) t[i] = s.t0 + (i + 0.37) * (s.t1 - s.t0) / kPings;
    if (shuffled) std::shuffle(t.begin(), t.end(), std::mt19937(7));
    return t;
}

// Position, heading and motion at each ping time, into one frame per ping.
void RunFrames(benchmark::State& state, bool shuffled)
{
    const NavStream& s = Stream();
    const std::vector<double> times = PingTimes(shuffled);
    CSnsrSeq<CSnsrPos> seqPos(s.pos.data(), static_cast<unsigned int>(s.pos.size()));
    CSnsrSeq<CSnsrGyro> seqGyro(s.gyro.data(), static_cast<unsigned int>(s.gyro.size()));
    CSnsrSeq<CSnsrMru> seqMru(s.mru.data(), static_cast<unsigned int>(s.mru.size()));
    CSnsrPos pos;
    CSnsrGyro gyro;
    CSnsrMru mru;
    CMat frame;
    long long allocs = 0;
    for (auto _ : state) {
        const long long before = g_nAllocs.load();
        double sum = 0.0;
        for (double t : times) {
            seqPos.Interpolate(t, pos);
            seqGyro.Interpolate(t, gyro);
            seqMru.Interpolate(t, mru);
            frame.Set(pos.m_local, gyro.m_heading * ML::d2r, mru.m_pitch * ML::d2r, mru.m_roll * ML::d2r);
            sum += frame.X() + frame.Heading();
        }
        benchmark::DoNotOptimize(sum);
        allocs += g_nAllocs.load() - before;
    }
    state.SetItemsProcessed(state.iterations() * kPings);
    state.counters["records"] = static_cast<double>(s.Count());
    state.counters["allocs/ping"] = static_cast<double>(allocs) / (static_cast<double>(state.iterations()) * kPings);
}

void BM_PingFramesInOrder(benchmark::State& state) { RunFrames(state, false); }
void BM_PingFramesRandomOrder(benchmark::State& state) { RunFrames(state, true); }

// For contrast: a scan from the start of each stream for every ping.
void BM_PingFramesLinearScan(benchmark::State& state)
{
    const NavStream& s = Stream();
    const std::vector<double> all = PingTimes(false);
    const int n = static_cast<int>(state.range(0));
    std::vector<double> times;
    for (int i = 0; i < kPings; i += kPings / n) times.push_back(all[i]);
    CSnsrGyro gyro;
    CSnsrMru mru;
    CSnsrPos pos;
    auto scan = [](auto& v, double t) {
        size_t i = 0;
        while (i + 1 < v.size() && v[i + 1].m_time <= t) ++i;
        return i;
    };
    for (auto _ : state) {
        for (double t : times) {
            const size_t ip = scan(s.pos, t), ig = scan(s.gyro, t), im = scan(s.mru, t);
            CSnsrPos::Interpolate(t, &s.pos[ip], &s.pos[ip + 1], &pos);
            CSnsrGyro::Interpolate(t, &s.gyro[ig], &s.gyro[ig + 1], &gyro);
            CSnsrMru::Interpolate(t, &s.mru[im], &s.mru[im + 1], &mru);
        }
        benchmark::DoNotOptimize(pos.m_local.x + gyro.m_heading + mru.m_roll);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(times.size()));
}

} // namespace

BENCHMARK(BM_PingFramesInOrder)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PingFramesRandomOrder)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PingFramesLinearScan)->Arg(100)->Unit(benchmark::kMillisecond);
