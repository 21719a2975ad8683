// No conversion allocates: every operator new of this test program is
// counted while the conversions run. (Skipped under the sanitizers, which
// bring their own allocator.)
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cmath>
#include <new>
#include <string>

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
namespace {
std::atomic<long> s_news{0};
}

void* operator new(std::size_t n)
{
    ++s_news;
    if (void* p = std::malloc(n ? n : 1)) return p;
    throw std::bad_alloc();
}
// The replacement pair is malloc and free; GCC cannot see that they match.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept { std::free(p); }
#pragma GCC diagnostic pop
void operator delete(void* p, std::size_t) noexcept { ::operator delete(p); }

TEST(GeoNoAlloc, ConversionsDoNotAllocate)
{
    const CSphd sphd;
    const CProj proj;
    CShft shft;
    shft.m_dX = 10.0;
    shft.m_rotZ = 1.0;
    Geo::pSphdP = Geo::pSphdS = const_cast<CSphd*>(&sphd);
    Geo::pProjP = Geo::pProjS = const_cast<CProj*>(&proj);
    Geo::pShift = &shft;

    const long before = s_news.load();
    CV3 enz, llh, xyz, out;
    double sum = 0.0;
    for (int i = 0; i < 100; ++i) {
        const CV3 p(-0.05 + i * 1e-4, 0.9 + i * 1e-4, 10.0);
        GeoConv::llh2enz(sphd, proj, p, enz);
        GeoConv::enz2llh(sphd, proj, enz, llh);
        GeoConv::llh2xyz(sphd, llh, xyz);
        GeoConv::DShift(shft, xyz, out, i & 1);
        GeoConv::xyz2llh(sphd, out, llh);
        sum += GeoConv::GetConv(sphd, proj, llh);
        double a = 0, b = 0, c = 0, d = 0;
        GeoConvLS::ConvertLatLon2LineSample(-29.0, 16.5, &a, &b, 1, 17);
        GeoConvLS::CalcLoYX(a, b, &c, &d, 1);
        GeoConvLS::CalcClarke1880LatLon(c, d, &a, &b, 17);
        GeoConvLS::CalcWGS84LatLon(a, b, &c, &d);
        Geo::type = 0;
        Geo::LLH_ENZ(CV3(-3.0, 50.0, 0.0), out, 1);
        Geo::ENZ_LLH(out, llh, 1);
        sum += Geo::Conv(llh);
        Geo::type = 1;
        Geo::LLH_ENZ(CV3(16.0, -29.0, 0.0), out, 1);
        Geo::ENZ_LLH(out, llh, 1);
        sum += c + d + llh.x;
    }
    const long after = s_news.load();
    Geo::type = 0;
    Geo::pSphdP = Geo::pSphdS = nullptr;
    Geo::pProjP = Geo::pProjS = nullptr;
    Geo::pShift = nullptr;
    EXPECT_EQ(after - before, 0);
    EXPECT_TRUE(std::isfinite(sum));
    // The counter sees the library's allocations.
    const CString grown = CString(u"x") + CString(std::u16string(200, u'y'));
    EXPECT_GT(s_news.load(), after);
    EXPECT_EQ(grown.GetLength(), 201);
}
#endif
