// The display image and the fan:
//  - CreateImg of a 1024-bearing x 2000-line image at display height 1024,
//    by intensity and by depth, with a memcpy of the display image (4 MiB) in
//    the same run for scale. bytes_per_second of CreateImg counts the source
//    plane (2000 x 1024 bytes); vs_memcpy is that throughput over memcpy's
//    (the aim: at least 0.25).
//  - DrawFan of 1024 beams on Mesa's off-screen renderer: a new picture
//    (one texture upload) against the same picture drawn again (none), and
//    the same picture for images of 500 to 8000 range lines (the per-frame
//    work doesn't grow with them).
#include <zandata/ZanData.h>

#include "bench/SideBySide.hpp"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr unsigned kBrgs = 1024;
constexpr unsigned kRngs = 2000;
constexpr int kRes1024 = 5;  // s_resTypes row of height 1024

// A sonar-like picture: weak speckle, a few strong echoes, a seabed line.
void MakeImage(CTgtImg& img, unsigned nRngs, unsigned nBrgs)
{
    CPing& p = *img.Ping();
    std::vector<double> t(nBrgs);
    for (unsigned i = 0; i < nBrgs; ++i) t[i] = (-60.0 + 120.0 * (i + 0.5) / nBrgs) * ML::d2r;
    p.SetBearingTable(t.data(), static_cast<int>(nBrgs));
    img.Alloc(nRngs, nBrgs);
    unsigned s = 12345;
    for (unsigned r = 0; r < nRngs; ++r)
        for (unsigned x = 0; x < nBrgs; ++x) {
            s = s * 1103515245u + 12345u;
            BYTE v = static_cast<BYTE>((s >> 16) & 31);
            if (((s >> 8) & 255) == 0) v = static_cast<BYTE>(128 + ((s >> 20) & 127));
            if (r == nRngs / 2 + x / 8) v = 240;
            img.m_pImg[r * nBrgs + x] = v;
        }
    img.m_nStartRng = 0;
    img.m_nEndRng = nRngs;
    img.m_nStartBrg = 0;
    img.m_nEndBrg = nBrgs;
    for (unsigned x = 0; x < nBrgs; ++x) {
        img.m_vStart[x] = CV3(0, 0, 1.0);
        img.m_vEnd[x] = CV3(0, 0, 20.0 + x * 0.01);
    }
}

void BM_CreateImg(benchmark::State& st)
{
    const int depthCol = static_cast<int>(st.range(0));
    CTgtImg img;
    MakeImage(img, kRngs, kBrgs);
    CPing& p = *img.Ping();
    p.m_dispPercent = 12;  // a display gain to correct for
    p.m_percentGain = 10;
    CColTbl tbl = CColTbl::Viridis();
    img.CreateImg(tbl, kRes1024, depthCol, 0.0, 30.0, true);
    const std::size_t nCopy = static_cast<std::size_t>(kBrgs) * 1024 * sizeof(CRgb);
    std::vector<unsigned char> a(nCopy, 1), b(nCopy, 2);
    std::memcpy(b.data(), a.data(), nCopy);
    const bench::SideBySide r = bench::RunSideBySide(
        st,
        [&] {
            img.CreateImg(tbl, kRes1024, depthCol, 0.0, 30.0, true);
            benchmark::DoNotOptimize(img.m_pDsp);
            benchmark::ClobberMemory();
        },
        [&](int i) {
            a[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
            std::memcpy(b.data(), a.data(), nCopy);
            benchmark::DoNotOptimize(b.data());
            benchmark::ClobberMemory();
        });
    const double srcBytes = static_cast<double>(kRngs) * kBrgs;
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * srcBytes));
    // Source bytes a second over memcpy's bytes a second.
    if (r.OpEach() > 0.0 && r.RefEach() > 0.0)
        st.counters["vs_memcpy"] = (srcBytes / r.OpEach()) / (static_cast<double>(nCopy) / r.RefEach());
    st.counters["memcpy_us"] = r.RefEach() * 1e6;
}
BENCHMARK(BM_CreateImg)->ArgName("depth")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_MemcpyDisplayImage(benchmark::State& st)
{
    const std::size_t n = static_cast<std::size_t>(kBrgs) * 1024 * sizeof(CRgb);
    std::vector<unsigned char> a(n, 1), b(n, 2);
    for (auto _ : st) {
        std::memcpy(b.data(), a.data(), n);
        benchmark::DoNotOptimize(b.data());
        benchmark::ClobberMemory();
    }
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations() * n));
}
BENCHMARK(BM_MemcpyDisplayImage)->Unit(benchmark::kMicrosecond);

// One frame: the fan drawn and finished in a 512 x 512 view.
void DrawFrame(COffscreenGL& gl, CTgtImg& img)
{
    gl.Clear();
    img.DrawFan(ML::pi_2, 0, 0.0f);
    benchmark::DoNotOptimize(gl.Pixels());
}

void BM_DrawFan(benchmark::State& st)
{
    const bool newPicture = st.range(0) != 0;
    const unsigned nRngs = static_cast<unsigned>(st.range(1));
    COffscreenGL gl(512, 512);
    if (!gl.IsValid()) {
        st.SkipWithError("no off-screen OpenGL context");
        return;
    }
    const double farM = nRngs * (1.0 / 40000) * 1500.0 * 0.5;
    gl.SetOrtho(-farM, farM, -farM, farM);
    CTgtImg img;
    MakeImage(img, nRngs, kBrgs);
    CColTbl tbl = CColTbl::Grey();
    img.CreateImg(tbl, kRes1024, 0, 0.0, 0.0, false);
    DrawFrame(gl, img);  // the first upload
    int64_t uploads = 0;
    for (auto _ : st) {
        if (newPicture) img.m_bTexDirty = 1;  // as CreateImg leaves it
        uploads += img.m_bTexDirty != 0;
        DrawFrame(gl, img);
    }
    st.counters["uploads_per_frame"] = benchmark::Counter(static_cast<double>(uploads) / st.iterations());
}
BENCHMARK(BM_DrawFan)
    ->ArgNames({"new_picture", "lines"})
    ->Args({1, 2000})
    ->Args({0, 2000})
    ->Args({0, 500})
    ->Args({0, 8000})
    ->Unit(benchmark::kMicrosecond);

} // namespace
