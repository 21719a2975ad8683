// Archive throughput: 1 MiB blocks written and read through a CMemFile,
// beside a plain memcpy of the same bytes in the same run. Also the same
// megabyte as 131072 doubles through << and >>, and as ping records, which is
// how most records reach the archive.
#include <zandata/ZanData.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {
constexpr UINT kBlock = 1u << 20;

std::vector<BYTE> Pattern()
{
    std::vector<BYTE> b(kBlock);
    for (size_t i = 0; i < b.size(); ++i) b[i] = static_cast<BYTE>(i * 131u + 7u);
    return b;
}

void BM_Memcpy(benchmark::State& state)
{
    const auto src = Pattern();
    std::vector<BYTE> dst(kBlock);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), kBlock);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlock);
}
BENCHMARK(BM_Memcpy);

void BM_ArchiveWriteBlock(benchmark::State& state)
{
    const auto src = Pattern();
    CMemFile file;
    file.SetLength(kBlock);  // the file's memory is made once, as a recording's would be
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::store);
        ar.Write(src.data(), kBlock);
        ar.Close();
        benchmark::ClobberMemory();
    }
    if (file.GetLength() != kBlock || std::memcmp(file.GetBuffer(), src.data(), kBlock) != 0)
        state.SkipWithError("archive wrote other bytes");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlock);
}
BENCHMARK(BM_ArchiveWriteBlock);

void BM_ArchiveReadBlock(benchmark::State& state)
{
    auto src = Pattern();
    CMemFile file(src.data(), kBlock);
    std::vector<BYTE> dst(kBlock);
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        if (ar.Read(dst.data(), kBlock) != kBlock) state.SkipWithError("short read");
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    if (dst != src) state.SkipWithError("archive read other bytes");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlock);
}
BENCHMARK(BM_ArchiveReadBlock);

constexpr int kDoubles = kBlock / sizeof(double);

void BM_ArchiveWriteF64(benchmark::State& state)
{
    CMemFile file;
    file.SetLength(kBlock);
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::store);
        for (int i = 0; i < kDoubles; ++i) ar << static_cast<double>(i);
        ar.Close();
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlock);
}
BENCHMARK(BM_ArchiveWriteF64);

void BM_ArchiveReadF64(benchmark::State& state)
{
    std::vector<BYTE> src(kBlock);
    for (int i = 0; i < kDoubles; ++i) {
        const double d = i;
        std::memcpy(src.data() + i * sizeof(double), &d, sizeof d);
    }
    CMemFile file(src.data(), kBlock);
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        double d = 0;
        for (int i = 0; i < kDoubles; ++i) {
            ar >> d;
            benchmark::DoNotOptimize(d);
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kBlock);
}
BENCHMARK(BM_ArchiveReadF64);

// Whole ping records, about a megabyte of them (69 bytes each).
constexpr int kPings = kBlock / 69;

void BM_PingRecordWrite(benchmark::State& state)
{
    CPing p;
    CMemFile file;
    file.SetLength(static_cast<ULONGLONG>(kPings) * 69);
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::store);
        for (int i = 0; i < kPings; ++i) p.Serialize(ar);
        ar.Close();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPings * 69);
}
BENCHMARK(BM_PingRecordWrite);

void BM_PingRecordRead(benchmark::State& state)
{
    CPing p;
    CMemFile out;
    {
        CArchive ar(&out, CArchive::store);
        for (int i = 0; i < kPings; ++i) p.Serialize(ar);
        ar.Close();
    }
    std::vector<BYTE> src(out.GetBuffer(), out.GetBuffer() + out.GetLength());
    CMemFile file(src.data(), static_cast<UINT>(src.size()));
    CPing q;
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::load);
        for (int i = 0; i < kPings; ++i) q.Serialize(ar);
        benchmark::DoNotOptimize(q.m_brgScale);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kPings * 69);
}
BENCHMARK(BM_PingRecordRead);
} // namespace
