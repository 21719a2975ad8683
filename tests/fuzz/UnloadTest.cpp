// What the host does before it unloads the library: CTgtImg::CleanupStatic
// and Geo::ClearDb. After them nothing that the work of a session allocated
// may remain: not the pool's images, not the compression buffer, not the
// geodetic records. (The leak checker of the ASan tree sees only what is no
// longer reachable; the pool and the lists are reachable until they are
// emptied, so this test measures the heap itself.)
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <malloc.h>
#if defined(__SANITIZE_ADDRESS__)
// Declared here rather than through <sanitizer/allocator_interface.h>, which
// g++ does not ship; both compilers' ASan runtimes export it.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

#include <memory>

namespace {

size_t HeapInUse()
{
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

// What may stay counted after unloading. ASan counts the bytes it hands out.
// glibc counts the small blocks it keeps in its per-thread cache after they
// are freed as in use, and an image plane, which starts on a cache line,
// leaves a few such pieces when it is split from a larger free block: a
// kilobyte or two, far less than the images and the compression buffer a
// session holds (one image plane is 51 KiB).
#if defined(__SANITIZE_ADDRESS__)
constexpr size_t kSlack = 256;
#else
constexpr size_t kSlack = 4096;
#endif

// A session's worth of work that leaves things in the library's statics.
void Session()
{
    CTgtImg* imgs[6];
    for (CTgtImg*& img : imgs) {
        img = CTgtImg::GetImg();
        img->Ping()->SetNumBeams(128);
        img->Alloc(400, 128);
        img->AllocQI(400, 256);
        for (UINT i = 0; i < img->m_nImgBytes; ++i) img->m_pImg[i] = static_cast<BYTE>(i % 7 == 0 ? 200 : 0);
        CMemFile file;
        CArchive ar(&file, CArchive::store);
        img->Serialize(ar, 0x0D);  // compressed: sizes the shared work buffer
        ar.Close();
    }
    for (CTgtImg*& img : imgs) CTgtImg::DelImg(img);  // the pool keeps them

    Geo::ReadDb(Geo::DefaultDbPath());
    Geo::pSphdP = Geo::sphds.GetHead();
    Geo::pProjP = Geo::projs.GetHead();

    for (int type = 0; type < CSnsrInf::s_nTypes; ++type) {
        std::unique_ptr<CSnsrInf> rec(CSnsrInf::Create(type));
        if (rec) (void)rec->GetString(0);
    }
}

void Unload()
{
    CTgtImg::CleanupStatic();
    Geo::ClearDb();
}

TEST(Unload, CleanupReleasesWhatASessionHeld)
{
    const Zan::Sink old = Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
    // A first session settles what the library makes once on first use.
    Session();
    Unload();
    const size_t base = HeapInUse();
    Session();
    const size_t held = HeapInUse();
    Unload();
    const size_t after = HeapInUse();
    Zan::SetSink(old);

    EXPECT_GT(held, base + 6 * 400 * 128) << "the session should have held its images";
    EXPECT_LE(after, base + kSlack) << "held " << held - base << " bytes, " << after - base << " left after unloading";
    EXPECT_TRUE(CTgtImg::s_imgPool.empty());
    EXPECT_EQ(CTgtImg::s_pCompress, nullptr);
    EXPECT_EQ(CTgtImg::s_compressSize, 0u);
    EXPECT_EQ(Geo::sphds.GetCount() + Geo::projs.GetCount() + Geo::shfts.GetCount(), 0);
    EXPECT_EQ(Geo::pSphdP, nullptr);
    EXPECT_EQ(Geo::pProjP, nullptr);
}

}  // namespace
