// Intensity plane compression on a realistic image: 2000 range lines by 1024
// bearings of speckle (about 85% of the samples below the level 8), a seabed
// return and a few strong targets. The library's codec runs beside the plain
// sample-by-sample reference, memcpy of the same bytes and zlib at level 1.
// Throughput is of image bytes (the uncompressed side) in every case; the
// counter "ratio" is stream bytes over image bytes.
//
// Run: ./build/bench/bench_compress
#include <zandata/ZanData.h>

#include "tests/image/RleReference.h"

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr unsigned int kRngs = 2000, kBrgs = 1024, kBytes = kRngs * kBrgs;
constexpr BYTE kLevel = 8;

// Exponentially distributed speckle intensity (the square of Rayleigh
// amplitude) of mean mu, clipped to a byte.
BYTE Speckle(std::mt19937& rng, double mu)
{
    std::exponential_distribution<double> e(1.0 / mu);
    return static_cast<BYTE>(std::min(255.0, e(rng)));
}

std::vector<BYTE> MakePlane()
{
    std::mt19937 rng(1234);
    std::vector<BYTE> img(kBytes);
    for (unsigned int r = 0; r < kRngs; ++r) {
        for (unsigned int b = 0; b < kBrgs; ++b) {
            // Water column: mean 3.0, so that about 93% falls below 8. The
            // seabed comes in along a curve across the fan and fades with
            // range behind it.
            const double bearing = (b - kBrgs / 2.0) / (kBrgs / 2.0);
            const double bottom = 1300.0 + 350.0 * bearing * bearing;
            double mu = 3.0;
            if (r >= bottom) mu = 4.0 + 90.0 * std::exp(-(r - bottom) / 60.0);
            img[static_cast<size_t>(r) * kBrgs + b] = Speckle(rng, mu);
        }
    }
    // A few strong targets: blobs of a dozen lines by a few bearings.
    for (int t = 0; t < 12; ++t) {
        const unsigned int r0 = 200 + rng() % 1000, b0 = rng() % (kBrgs - 8);
        for (unsigned int r = r0; r < r0 + 12; ++r)
            for (unsigned int b = b0; b < b0 + 6; ++b) img[static_cast<size_t>(r) * kBrgs + b] = 180 + rng() % 76;
    }
    return img;
}

const std::vector<BYTE>& Plane()
{
    static const std::vector<BYTE> plane = MakePlane();
    return plane;
}

double BelowLevel()
{
    size_t n = 0;
    for (BYTE v : Plane()) n += v < kLevel;
    return static_cast<double>(n) / kBytes;
}

const std::vector<BYTE>& Stream()
{
    static const std::vector<BYTE> stream = [] {
        std::vector<BYTE> s(kBytes);
        s.resize(CImgRle::Encode(Plane().data(), s.data(), kBytes, kLevel));
        return s;
    }();
    return stream;
}

void Finish(benchmark::State& state, size_t nStream)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBytes);
    state.counters["ratio"] = static_cast<double>(nStream) / kBytes;
}

void BM_Memcpy(benchmark::State& state)
{
    std::vector<BYTE> dst(kBytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), Plane().data(), kBytes);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    Finish(state, kBytes);
}

void BM_EncodeReference(benchmark::State& state)
{
    std::vector<BYTE> dst(kBytes);
    size_t n = 0;
    for (auto _ : state) {
        n = rleref::Encode(Plane().data(), kBytes, kLevel, dst.data());
        benchmark::DoNotOptimize(dst.data());
    }
    Finish(state, n);
}

void BM_EncodeLibrary(benchmark::State& state)
{
    std::vector<BYTE> dst(kBytes), ref(kBytes);
    ref.resize(rleref::Encode(Plane().data(), kBytes, kLevel, ref.data()));
    unsigned int n = 0;
    for (auto _ : state) {
        n = CImgRle::Encode(Plane().data(), dst.data(), kBytes, kLevel);
        benchmark::DoNotOptimize(dst.data());
    }
    dst.resize(n);
    if (dst != ref) state.SkipWithError("stream differs from the reference");
    state.counters["below_level"] = BelowLevel();
    Finish(state, n);
}

void BM_DecodeReference(benchmark::State& state)
{
    std::vector<BYTE> dst(kBytes);
    for (auto _ : state) {
        rleref::Decode(dst.data(), Stream().data(), Stream().size(), kBytes);
        benchmark::DoNotOptimize(dst.data());
    }
    Finish(state, Stream().size());
}

void BM_DecodeLibrary(benchmark::State& state)
{
    std::vector<BYTE> dst(kBytes), ref(kBytes);
    rleref::Decode(ref.data(), Stream().data(), Stream().size(), kBytes);
    for (auto _ : state) {
        CImgRle::Decode(dst.data(), Stream().data(), static_cast<unsigned int>(Stream().size()), kBytes);
        benchmark::DoNotOptimize(dst.data());
    }
    if (dst != ref) state.SkipWithError("image differs from the reference");
    Finish(state, Stream().size());
}

void BM_ZlibLevel1Compress(benchmark::State& state)
{
    std::vector<BYTE> dst(compressBound(kBytes));
    uLongf n = 0;
    for (auto _ : state) {
        n = static_cast<uLongf>(dst.size());
        compress2(dst.data(), &n, Plane().data(), kBytes, 1);
        benchmark::DoNotOptimize(dst.data());
    }
    Finish(state, n);
}

void BM_ZlibLevel1Uncompress(benchmark::State& state)
{
    std::vector<BYTE> packed(compressBound(kBytes)), dst(kBytes);
    uLongf nPacked = static_cast<uLongf>(packed.size());
    compress2(packed.data(), &nPacked, Plane().data(), kBytes, 1);
    for (auto _ : state) {
        uLongf n = kBytes;
        uncompress(dst.data(), &n, packed.data(), nPacked);
        benchmark::DoNotOptimize(dst.data());
    }
    if (std::memcmp(dst.data(), Plane().data(), kBytes) != 0) state.SkipWithError("zlib round trip differs");
    Finish(state, nPacked);
}

}  // namespace

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_EncodeReference);
BENCHMARK(BM_EncodeLibrary);
BENCHMARK(BM_DecodeReference);
BENCHMARK(BM_DecodeLibrary);
BENCHMARK(BM_ZlibLevel1Compress);
BENCHMARK(BM_ZlibLevel1Uncompress);
