// A stream of like pings runs without touching the heap: once images have
// been recycled at one shape, taking one from the pool, sizing every plane
// again and giving it back make no allocation.
//
// The count comes from replacing the C heap's entry points in this test
// program (glibc lets a program supply malloc, calloc, realloc and free);
// operator new and the ZUtil calls end in them. The sanitizer builds bring
// their own heap, so there the test is skipped.
#include "image/CTgtImg.h"
#include "ping/CPing.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZAN_TEST_COUNTS_ALLOCATIONS 0
#else
#define ZAN_TEST_COUNTS_ALLOCATIONS 1
#endif

#if ZAN_TEST_COUNTS_ALLOCATIONS

extern "C" {
void* __libc_malloc(size_t n);
void* __libc_calloc(size_t n, size_t size);
void* __libc_realloc(void* p, size_t n);
void __libc_free(void* p);
}

namespace {
thread_local bool t_counting = false;
thread_local long t_allocations = 0;
void Note()
{
    if (t_counting) ++t_allocations;
}
}  // namespace

extern "C" void* malloc(size_t n)
{
    Note();
    return __libc_malloc(n);
}
extern "C" void* calloc(size_t n, size_t size)
{
    Note();
    return __libc_calloc(n, size);
}
extern "C" void* realloc(void* p, size_t n)
{
    Note();
    return __libc_realloc(p, n);
}
extern "C" void free(void* p)
{
    __libc_free(p);
}

namespace {

// Heap calls made by f on this thread.
template <class F>
long Allocations(F&& f)
{
    t_allocations = 0;
    t_counting = true;
    f();
    t_counting = false;
    return t_allocations;
}

// One ping of the stream: every plane sized at one shape, display images
// included, and the image given back.
void Ping(CTgtImg*& img, unsigned int nRngs, unsigned int nBrgs)
{
    img->Ping()->m_rx2ID = 1;
    img->AllocQI(nRngs, 4 * nBrgs);
    img->AllocPA(nRngs, nBrgs);
    img->AllocLX(nRngs, 4);
    img->Alloc(nRngs, nBrgs);
    img->AllocAZ(nRngs / 2, nBrgs / 2);
    img->AllocAZLX(nRngs / 2, 1);
    img->SetImgSize(256);
    img->m_pImg[nBrgs] = 200;
}

}  // namespace

TEST(ImageNoAlloc, CounterSeesTheHeap)
{
    EXPECT_EQ(Allocations([] { std::free(std::malloc(16)); }), 1);
    EXPECT_GE(Allocations([] {
                  int* p = new int[100];
                  asm volatile("" : : "r"(p) : "memory");  // keep the pair from being elided
                  delete[] p;
              }),
              1);
    CTgtImg img;
    EXPECT_GE(Allocations([&] { img.Alloc(10, 10); }), 1);
}

TEST(ImageNoAlloc, StreamOfLikePingsAllocatesNothing)
{
    CTgtImg::CleanupStatic();
    // Three images in flight at a time, as a host with a filter and a display
    // thread would have; the first rounds build them and the pool's nodes.
    const auto round = [] {
        CTgtImg* imgs[3];
        for (auto& p : imgs) {
            p = CTgtImg::GetImg();
            Ping(p, 400, 256);
        }
        for (auto& p : imgs) CTgtImg::DelImg(p);
    };
    for (int i = 0; i < 3; ++i) round();
    EXPECT_EQ(CTgtImg::s_imgPool.size(), 3u);
    EXPECT_EQ(Allocations([&] {
                  for (int i = 0; i < 50; ++i) round();
              }),
              0);
    // Another shape costs allocations again: the count is live.
    EXPECT_GT(Allocations([] {
                  CTgtImg* p = CTgtImg::GetImg();
                  Ping(p, 500, 128);
                  CTgtImg::DelImg(p);
              }),
              0);
    CTgtImg::CleanupStatic();
}

#else

TEST(ImageNoAlloc, StreamOfLikePingsAllocatesNothing)
{
    GTEST_SKIP() << "the sanitizer's heap can't be counted here";
}

#endif
