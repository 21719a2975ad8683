// A whole image recorded to and read from a CMemFile: 2000 range lines by
// 1024 bearings with its raw plane (two bytes a sample), phase and amplitude,
// intensity and per-bearing vectors, uncompressed (flags 0x47), beside a
// memcpy of as many bytes. Reading goes into a recycled image of the same
// shape, as a player does, so neither direction allocates for samples.
//
// Run: ./build/bench/bench_image_record
#include <zandata/ZanData.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

namespace {

constexpr unsigned int kRngs = 2000, kBrgs = 1024, kFlags = 0x47;

void Fill(CTgtImg& img)
{
    img.Ping()->SetNumBeams(kBrgs);
    img.AllocQI(kRngs, 2 * kBrgs);
    img.AllocPA(kRngs, kBrgs);
    img.Alloc(kRngs, kBrgs);
    for (unsigned int i = 0; i < img.m_nImgBytes; ++i) img.m_pImg[i] = static_cast<BYTE>(i * 131u >> 3);
    std::memset(img.m_pQI, 0x21, img.m_nQIBytes);
    std::memset(img.m_pPhs, 0x42, img.m_nPABytes);
    std::memset(img.m_pAmp, 0x63, img.m_nPABytes);
}

std::vector<BYTE> Record(CTgtImg& img)
{
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    img.Serialize(ar, kFlags);
    ar.Close();
    return std::vector<BYTE>(file.GetBuffer(), file.GetBuffer() + file.GetLength());
}

void BM_Memcpy(benchmark::State& state)
{
    CTgtImg img;
    Fill(img);
    const std::vector<BYTE> src = Record(img);
    std::vector<BYTE> dst(src.size());
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), src.size());
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * src.size()));
}

void BM_RecordImage(benchmark::State& state)
{
    CTgtImg img;
    Fill(img);
    const size_t nBytes = Record(img).size();
    CMemFile file;
    file.SetLength(nBytes);  // the file's memory is made once, as a recording's would be
    for (auto _ : state) {
        file.SeekToBegin();
        CArchive ar(&file, CArchive::store);
        img.Serialize(ar, kFlags);
        ar.Close();
    }
    if (file.GetLength() != nBytes) state.SkipWithError("record size changed");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * nBytes));
    state.counters["record_MB"] = nBytes / 1e6;
}

void BM_ReadImage(benchmark::State& state)
{
    CTgtImg img;
    Fill(img);
    std::vector<BYTE> rec = Record(img);
    CTgtImg back;
    Fill(back);  // a recycled image of the same shape
    for (auto _ : state) {
        CMemFile file(rec.data(), static_cast<UINT>(rec.size()));
        CArchive ar(&file, CArchive::load);
        back.Serialize(ar, 0);
    }
    if (std::memcmp(back.m_pImg, img.m_pImg, img.m_nImgBytes) != 0) state.SkipWithError("image differs");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * rec.size()));
}

}  // namespace

BENCHMARK(BM_Memcpy);
BENCHMARK(BM_RecordImage);
BENCHMARK(BM_ReadImage);
