// The filter engine: slicing, threads, timing report, pattern sizing and the
// settings round trip. Threaded, so it also runs under ThreadSanitizer.
#include <zandata/ZanData.h>

#include "tests/processing/FltReference.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Report {
    Zan::Kind kind;
    unsigned long id;
    int level;
    std::string text;
};

// Collects reports while alive.
class Reports {
public:
    Reports()
    {
        m_old = Zan::SetSink([this](Zan::Kind kind, unsigned long id, int level, const CString& text) {
            m_all.push_back({kind, id, level, text.Utf8()});
        });
    }
    ~Reports() { Zan::SetSink(m_old); }
    std::vector<Report> m_all;

private:
    Zan::Sink m_old;
};

std::vector<BYTE> RandomPlane(std::mt19937& rng, size_t n)
{
    std::uniform_int_distribution<int> d(0, 255), sparse(0, 9);
    std::vector<BYTE> v(n);
    for (auto& b : v) b = static_cast<BYTE>(sparse(rng) < 3 ? d(rng) : d(rng) / 6);
    return v;
}

void SetPattern(CTgtImgFlt& f, const std::vector<double>& pat)
{
    f.SetPatSize(static_cast<int>(pat.size()));
    for (size_t i = 0; i < pat.size(); ++i) f.m_pPat[i] = pat[i];
}

fltref::Settings RefOf(const CTgtImgFlt& f)
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

// Filters `plane` (rows x cols) with f and returns the result.
std::vector<BYTE> RunFilter(CTgtImgFlt& f, const std::vector<BYTE>& plane, int rows, int cols)
{
    CTgtImg img;
    img.Alloc(static_cast<unsigned>(rows), static_cast<unsigned>(cols));
    std::memcpy(img.m_pImg, plane.data(), plane.size());
    f.Filter(&img);
    return std::vector<BYTE>(img.m_pImg, img.m_pImg + plane.size());
}

std::vector<BYTE> RunRef(const CTgtImgFlt& f, std::vector<BYTE> plane, int rows, int cols)
{
    fltref::Filter(f.m_filterId, RefOf(f), f.m_preRoot, f.m_nThreads, plane.data(), cols, rows);
    return plane;
}

}  // namespace

TEST(FilterEngine, DefaultsAndOneSlice)
{
    CTgtImgFlt f;
    EXPECT_EQ(f.m_bActive, 0);
    EXPECT_EQ(f.m_filterId, 0);
    EXPECT_EQ(f.m_pPat, nullptr);
    EXPECT_EQ(f.m_pPat2, nullptr);
    EXPECT_EQ(f.m_nPat, 0);
    EXPECT_EQ(f.m_bias, 1.0);
    EXPECT_EQ(f.m_offset, 0.0);
    EXPECT_EQ(f.m_name, CString(u"Filter"));
    EXPECT_EQ(f.m_pBuf, nullptr);
    EXPECT_EQ(f.m_lowTgt, 0);
    EXPECT_EQ(f.m_scale, 1.0);
    EXPECT_EQ(f.m_preRoot, 0);
    EXPECT_EQ(f.m_nThreads, 1);
    ASSERT_EQ(f.m_thrds.m_nSize, 1u);
    EXPECT_EQ(f.m_thrds.m_ppItems[0]->m_pFlt, &f);
    EXPECT_EQ(CTgtImgFlt::s_pPat, nullptr);
    EXPECT_EQ(CTgtImgFlt::s_nPat, 0);
    EXPECT_EQ(CTgtImgFlt::s_sep, 0.0);
}

TEST(FilterEngine, EveryKernelOnOneToFiveThreadsMatchesThePlainSteps)
{
    std::mt19937 rng(42);
    const int rows = 61, cols = 83;
    const auto plane = RandomPlane(rng, static_cast<size_t>(rows) * cols);
    for (int id = 0; id <= 5; ++id) {
        for (int threads = 1; threads <= 5; ++threads) {
            CTgtImgFlt f;
            f.m_filterId = id;
            f.m_bias = 0.35;
            f.m_offset = 0.03;
            f.m_lowTgt = (id + threads) % 3;
            f.m_scale = 1.3;
            f.m_preRoot = threads % 2;
            f.m_nThreads = threads;
            f.SetupThreads();
            SetPattern(f, {0.1, 0.4, 0.9, 1.0, 0.8, 0.3, 0.1});
            const auto got = RunFilter(f, plane, rows, cols);
            const auto want = RunRef(f, plane, rows, cols);
            ASSERT_TRUE(got == want) << "filter " << id << " on " << threads << " threads";
        }
    }
}

TEST(FilterEngine, ThousandRowsOnThreeThreadsLeaveTheLastRowZero)
{
    std::mt19937 rng(1);
    const int rows = 1000, cols = 40;
    auto plane = RandomPlane(rng, static_cast<size_t>(rows) * cols);
    for (int c = 0; c < cols; ++c) plane[static_cast<size_t>(999) * cols + c] = 200;
    CTgtImgFlt f;
    f.m_filterId = 2;
    f.m_bias = 0.2;
    f.m_nThreads = 3;
    f.SetupThreads();
    SetPattern(f, {0.5, 1.0, 0.5, 0.2});
    CTgtImg img;
    img.Alloc(rows, cols);
    std::memcpy(img.m_pImg, plane.data(), plane.size());
    f.Filter(&img);
    EXPECT_EQ(f.m_thrds.m_ppItems[0]->m_nStart, 0);
    EXPECT_EQ(f.m_thrds.m_ppItems[0]->m_nEnd, 333);
    EXPECT_EQ(f.m_thrds.m_ppItems[2]->m_nStart, 666);
    EXPECT_EQ(f.m_thrds.m_ppItems[2]->m_nEnd, 999);
    for (int c = 0; c < cols; ++c) EXPECT_EQ(img.m_pImg[static_cast<size_t>(999) * cols + c], 0);
    const std::vector<BYTE> got(img.m_pImg, img.m_pImg + plane.size());
    EXPECT_TRUE(got == RunRef(f, plane, rows, cols));
    int lit = 0;
    for (size_t i = 0; i < static_cast<size_t>(998) * cols; ++i) lit += got[i] != 0;
    EXPECT_GT(lit, 0);
}

TEST(FilterEngine, MoreThreadsThanRowsClearsThePlane)
{
    std::mt19937 rng(2);
    const int rows = 5, cols = 16;
    const auto plane = RandomPlane(rng, rows * cols);
    CTgtImgFlt f;
    f.m_filterId = 1;
    f.m_nThreads = 8;
    f.SetupThreads();
    SetPattern(f, {1.0, 1.0});
    const auto got = RunFilter(f, plane, rows, cols);
    EXPECT_TRUE(got == std::vector<BYTE>(plane.size(), 0));
}

TEST(FilterEngine, NoKernelForIdsOutsideOneToFour)
{
    std::mt19937 rng(3);
    const int rows = 6, cols = 10;
    const auto plane = RandomPlane(rng, rows * cols);
    for (int id : {0, 5, 6, -1, 99}) {
        CTgtImgFlt f;
        f.m_filterId = id;
        SetPattern(f, {1.0, 1.0});
        EXPECT_TRUE(RunFilter(f, plane, rows, cols) == std::vector<BYTE>(plane.size(), 0)) << id;
    }
}

TEST(FilterEngine, FinalMappingRunsUnlessLowTgtOneAtScaleOne)
{
    std::mt19937 rng(4);
    const int rows = 4, cols = 30;
    const auto plane = RandomPlane(rng, rows * cols);
    CTgtImgFlt f;
    f.m_filterId = 2;
    f.m_bias = 0.1;
    SetPattern(f, {0.3, 1.0, 0.3, 0.1});
    f.m_lowTgt = 1;
    f.m_scale = 1.0;
    const auto plain = RunFilter(f, plane, rows, cols);
    fltref::Settings noFinal = RefOf(f);
    std::vector<BYTE> want(plane.size(), 0);
    fltref::Kernel(2, noFinal, plane.data(), want.data(), cols, 0, rows);
    EXPECT_TRUE(plain == want);
    f.m_scale = 2.0;
    const auto doubled = RunFilter(f, plane, rows, cols);
    for (size_t i = 0; i < want.size(); ++i) ASSERT_EQ(doubled[i], want[i] >= 128 ? 255 : want[i] * 2) << i;
}

TEST(FilterEngine, EmptyImageIsLeftAloneAndTheTimeIsStillReported)
{
    Reports reports;
    CTgtImgFlt f;
    f.m_filterId = 1;
    f.m_nThreads = 4;
    f.SetupThreads();
    CTgtImg empty;
    f.Filter(&empty);
    CTgtImg noRows;
    noRows.Alloc(0, 10);
    f.Filter(&noRows);
    EXPECT_EQ(f.m_pBuf, nullptr);
    ASSERT_EQ(reports.m_all.size(), 2u);
    for (const Report& r : reports.m_all) {
        EXPECT_EQ(r.kind, Zan::Kind::Status);
        EXPECT_EQ(r.id, 2360u);
        EXPECT_EQ(r.level, 1);
        double ms = -1;
        ASSERT_EQ(std::sscanf(r.text.c_str(), "Filter Time %lfms", &ms), 1) << r.text;
        EXPECT_GE(ms, 0.0);
        EXPECT_EQ(r.text.find('.') + 4, r.text.size() - 2) << "three decimals: " << r.text;
    }
}

TEST(FilterEngine, OneThreadStartsNoThreadButSignalsSliceZero)
{
    Reports reports;
    CTgtImgFlt f;
    f.m_filterId = 3;
    f.m_bias = 0.5;
    SetPattern(f, {1.0, 1.0});
    CTgtImg img;
    img.Alloc(3, 3);
    f.Filter(&img);
    EXPECT_TRUE(f.m_thrds.m_ppItems[0]->m_hDone->IsSet());
    EXPECT_EQ(f.m_thrds.m_ppItems[0]->m_pTgtImg, &img);
    EXPECT_EQ(f.m_thrds.m_ppItems[0]->m_nEnd, 3);
    ASSERT_EQ(reports.m_all.size(), 1u);
}

TEST(FilterEngine, ThreadCountIsLimitedWhenSet)
{
    CTgtImgFlt f;
    f.m_nThreads = 0;
    f.SetupThreads();
    EXPECT_EQ(f.m_nThreads, 1);
    EXPECT_EQ(f.m_thrds.m_nSize, 1u);
    f.m_nThreads = 1000;
    f.SetupThreads();
    EXPECT_EQ(f.m_nThreads, 32);
    EXPECT_EQ(f.m_thrds.m_nSize, 32u);
    for (unsigned i = 0; i < 32; ++i) EXPECT_EQ(f.m_thrds.m_ppItems[i]->m_pFlt, &f);
    // Changed directly without SetupThreads: Filter sizes the slices itself.
    f.m_nThreads = -3;
    f.m_filterId = 1;
    CTgtImg img;
    img.Alloc(4, 4);
    f.Filter(&img);
    EXPECT_EQ(f.m_nThreads, 1);
    EXPECT_EQ(f.m_thrds.m_nSize, 1u);
}

TEST(FilterEngine, SlicesShareTheirEventWhenCopied)
{
    CTifThrd a;
    a.m_nStart = 3;
    CTifThrd b(a);
    EXPECT_EQ(b.m_nStart, 3);
    EXPECT_EQ(b.m_hDone, a.m_hDone);
    a.m_hDone->Set();
    EXPECT_TRUE(b.m_hDone->Wait(0));  // one event: b takes a's signal
    EXPECT_FALSE(a.m_hDone->IsSet());
    EXPECT_FALSE(b.m_hDone->Wait(10));
}

TEST(FilterEngine, RepeatedRunsOnManyThreadsAgree)
{
    // Many short runs: the event handshake and the per-run threads must leave
    // nothing behind, and every run gives the same bytes.
    std::mt19937 rng(6);
    const int rows = 64, cols = 48;
    const auto plane = RandomPlane(rng, rows * cols);
    CTgtImgFlt f;
    f.m_filterId = 4;
    f.m_bias = 0.2;
    f.m_nThreads = 7;
    f.SetupThreads();
    SetPattern(f, {0.2, 0.6, 1.0, 0.6, 0.2, 0.1});
    const auto first = RunFilter(f, plane, rows, cols);
    EXPECT_TRUE(first == RunRef(f, plane, rows, cols));
    for (int run = 0; run < 40; ++run) ASSERT_TRUE(RunFilter(f, plane, rows, cols) == first) << run;
}

TEST(FilterEngine, SourceBufferIsKeptAndRootTaken)
{
    CTgtImgFlt f;
    CTgtImg img;
    img.Alloc(2, 128);
    for (int i = 0; i < 256; ++i) img.m_pImg[i] = static_cast<BYTE>(i);
    f.GenBuf(&img, 1);
    BYTE* buf = f.m_pBuf;
    ASSERT_NE(buf, nullptr);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(buf[i], static_cast<BYTE>(static_cast<int>(std::sqrt(i / 255.0) * 255.0)));
    EXPECT_EQ(buf[1], 15);
    EXPECT_EQ(buf[255], 255);
    f.GenBuf(&img, 0);
    EXPECT_EQ(0, std::memcmp(f.m_pBuf, img.m_pImg, 256));
}

TEST(FilterEngine, PatternSizing)
{
    CTgtImgFlt f;
    f.SetPatSize(3);
    ASSERT_NE(f.m_pPat, nullptr);
    ASSERT_NE(f.m_pPat2, nullptr);
    EXPECT_EQ(f.m_nPat, 3);
    f.m_pPat[0] = 1.5;
    f.m_pPat[2] = 2.5;
    double* before = f.m_pPat;
    f.SetPatSize(3);  // same size: nothing
    EXPECT_EQ(f.m_pPat, before);
    EXPECT_EQ(f.m_pPat[2], 2.5);
    EXPECT_EQ(f.m_pPat[3], 0.0) << "the extra position past an odd table";
    f.SetPatSize(6);
    EXPECT_EQ(f.m_pPat[0], 1.5);
    EXPECT_EQ(f.m_pPat[2], 2.5);
    EXPECT_EQ(f.m_pPat[6], 0.0);
    f.SetPatSize(-4);
    EXPECT_EQ(f.m_nPat, 0);
    EXPECT_EQ(f.m_pPat, nullptr);
    EXPECT_EQ(f.m_pPat2, nullptr);
}

namespace {

struct TempPath {
    std::filesystem::path p;
    explicit TempPath(const char* name)
        : p(std::filesystem::temp_directory_path() / ("zan_flt_" + std::to_string(::getpid()) + "_" + name))
    {
    }
    ~TempPath() { std::filesystem::remove(p); }
    CString Str() const { return CString::FromUtf8(p.string()); }
};

// Loads the filter from a file whose first object holds `items` and `lines`.
CZSet StoreWith(const std::vector<std::pair<const char16_t*, int>>& ints, const std::vector<const char16_t*>& lines)
{
    CZSet set;
    CZSetObj* o = set.AddCol(u"Filter")->AddObj(u"Main", u"");
    for (auto [key, v] : ints) o->Item(key, v);
    for (const char16_t* l : lines) o->AddLine(l);
    o->SetLoading();
    return set;
}

}  // namespace

TEST(FilterSettings, RoundTripThroughAFile)
{
    TempPath file("filter.json");
    {
        CTgtImgFlt f;
        f.m_bActive = 1;
        f.m_filterId = 4;
        f.m_bias = 0.375;
        f.m_offset = -0.0625;
        f.m_name = u"Wide \"beam\"";
        f.m_lowTgt = 2;
        f.m_scale = 1.25;
        f.m_preRoot = 1;
        f.m_nThreads = 3;
        SetPattern(f, {0.1, 0.25, 1.0, 0.333333333, -0.5});
        CZSet set;
        f.Settings(*set.AddCol(u"Filter")->AddObj(u"Main", u"No Data"));
        EXPECT_EQ(f.m_thrds.m_nSize, 3u);
        ASSERT_TRUE(set.Save(file.Str()));
    }
    std::ifstream in(file.p);
    std::stringstream text;
    text << in.rdbuf();
    // The pattern is in the file as data lines of six decimals, in order.
    const std::string t = text.str();
    const auto a = t.find("\"0.100000\""), b = t.find("\"0.333333\""), c = t.find("\"-0.500000\"");
    EXPECT_NE(a, std::string::npos);
    EXPECT_LT(a, b);
    EXPECT_LT(b, c);
    EXPECT_NE(t.find("\"FltSize\""), std::string::npos);

    CZSet set;
    ASSERT_TRUE(set.Load(file.Str())) << set.m_strError;
    CTgtImgFlt g;
    g.Settings(*set.GetCol(u"Filter")->GetObj(u"Main"));
    EXPECT_EQ(g.m_bActive, 1);
    EXPECT_EQ(g.m_filterId, 4);
    EXPECT_EQ(g.m_bias, 0.375);
    EXPECT_EQ(g.m_offset, -0.0625);
    EXPECT_EQ(g.m_name, CString(u"Wide \"beam\""));
    EXPECT_EQ(g.m_lowTgt, 2);
    EXPECT_EQ(g.m_scale, 1.25);
    EXPECT_EQ(g.m_preRoot, 1);
    EXPECT_EQ(g.m_nThreads, 3);
    ASSERT_EQ(g.m_thrds.m_nSize, 3u);
    for (unsigned i = 0; i < 3; ++i) EXPECT_EQ(g.m_thrds.m_ppItems[i]->m_pFlt, &g);
    ASSERT_EQ(g.m_nPat, 5);
    const double want[] = {0.1, 0.25, 1.0, 0.333333, -0.5};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(g.m_pPat[i], want[i]) << i;
}

TEST(FilterSettings, SizeFiveWithThreeLinesFillsThreeEntries)
{
    CZSet set = StoreWith({{u"FltSize", 5}}, {u"0.5", u"0.25", u"0.125"});
    CTgtImgFlt f;
    SetPattern(f, {9, 9, 9, 9, 9});
    f.Settings(*set.GetCol(u"Filter")->GetHead());
    ASSERT_EQ(f.m_nPat, 5);
    EXPECT_EQ(f.m_pPat[0], 0.5);
    EXPECT_EQ(f.m_pPat[1], 0.25);
    EXPECT_EQ(f.m_pPat[2], 0.125);
    EXPECT_EQ(f.m_pPat[3], 9.0);
    EXPECT_EQ(f.m_pPat[4], 9.0);
}

TEST(FilterSettings, ALineThatIsNoNumberKeepsItsEntryAndItsPlace)
{
    CZSet set = StoreWith({{u"FltSize", 5}}, {u"0.5", u"abc", u"  0.3 trailing", u"4e-1", u"-2"});
    CTgtImgFlt f;
    SetPattern(f, {7, 7, 7, 7, 7});
    f.Settings(*set.GetCol(u"Filter")->GetHead());
    EXPECT_EQ(f.m_pPat[0], 0.5);
    EXPECT_EQ(f.m_pPat[1], 7.0);
    EXPECT_EQ(f.m_pPat[2], 0.3);
    EXPECT_EQ(f.m_pPat[3], 0.4);
    EXPECT_EQ(f.m_pPat[4], -2.0);
}

TEST(FilterSettings, LinesBeyondTheSizeAreIgnoredAndThreadsLimited)
{
    CZSet set = StoreWith({{u"FltSize", 2}, {u"FltThreads", 99}}, {u"1", u"2", u"3", u"4"});
    CTgtImgFlt f;
    f.Settings(*set.GetCol(u"Filter")->GetHead());
    ASSERT_EQ(f.m_nPat, 2);
    EXPECT_EQ(f.m_pPat[0], 1.0);
    EXPECT_EQ(f.m_pPat[1], 2.0);
    EXPECT_EQ(f.m_nThreads, 32);
    EXPECT_EQ(f.m_thrds.m_nSize, 32u);

    CZSet none = StoreWith({{u"FltSize", -1}, {u"FltThreads", 0}}, {u"1"});
    f.Settings(*none.GetCol(u"Filter")->GetHead());
    EXPECT_EQ(f.m_nPat, 0);
    EXPECT_EQ(f.m_pPat, nullptr);
    EXPECT_EQ(f.m_nThreads, 1);
}

TEST(FilterSettings, AMissingFileLeavesTheDefaults)
{
    TempPath file("absent.json");
    CZSet set;
    EXPECT_FALSE(set.Load(file.Str()));
    CTgtImgFlt f;
    if (CZSetCol* col = set.GetCol(u"Filter")) f.Settings(*col->GetHead());
    EXPECT_EQ(f.m_bias, 1.0);
    EXPECT_EQ(f.m_nPat, 0);
}

TEST(FilterSettings, LoadingWithoutSizeKeepsThePattern)
{
    // No "FltSize" key: the local size starts as m_nPat, so the table stays
    // and the lines refill it.
    CZSet set = StoreWith({{u"FilterId", 2}}, {u"0.75"});
    CTgtImgFlt f;
    SetPattern(f, {1, 2, 3});
    f.Settings(*set.GetCol(u"Filter")->GetHead());
    EXPECT_EQ(f.m_filterId, 2);
    ASSERT_EQ(f.m_nPat, 3);
    EXPECT_EQ(f.m_pPat[0], 0.75);
    EXPECT_EQ(f.m_pPat[1], 2.0);
}

TEST(FilterEngine, KeptTablesFollowEveryChangeOfSettings)
{
    // Large enough for the kernels to table their terms, and run repeatedly
    // on the same filter: a change of kernel, pattern, offset or bias between
    // runs must never reuse a stale table.
    std::mt19937 rng(8);
    const int rows = 120, cols = 500;
    const auto plane = RandomPlane(rng, static_cast<size_t>(rows) * cols);
    CTgtImgFlt f;
    f.m_bias = 0.3;
    f.m_offset = 0.01;
    f.m_nThreads = 3;
    f.SetupThreads();
    SetPattern(f, {0.1, 0.3, 0.6, 0.9, 1.0, 0.9, 0.6, 0.3, 0.1, 0.05});
    auto check = [&](const char* what) {
        for (int run = 0; run < 2; ++run)
            ASSERT_TRUE(RunFilter(f, plane, rows, cols) == RunRef(f, plane, rows, cols)) << what << " run " << run;
    };
    for (int id : {1, 3, 4, 1, 4, 3}) {  // the same settings, another kernel
        f.m_filterId = id;
        check("kernel");
    }
    // One setting at a time, each run after a run with the one before.
    for (int id = 1; id <= 4; ++id) {
        f.m_filterId = id;
        check("kernel");
        f.m_offset = 0.02;
        check("offset");
        f.m_offset = 0.01;
        check("offset back");
        f.m_bias = 0.31;
        check("bias");
        f.m_bias = 0.3;
        check("bias back");
        f.m_pPat[4] = 0.95;
        check("pattern entry");
        f.m_pPat[4] = 1.0;
        check("pattern entry back");
        SetPattern(f, {0.2, 0.5, 1.0, 0.5, 0.2, 0.1, 0.05});
        check("pattern size");
        SetPattern(f, {0.1, 0.3, 0.6, 0.9, 1.0, 0.9, 0.6, 0.3, 0.1, 0.05});
    }
}
