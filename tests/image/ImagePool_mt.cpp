// The pool under eight threads at once: every image is held by one thread
// at a time, nothing is lost or doubled, and the pool keeps at most 20.
#include "image/CTgtImg.h"
#include "ping/CPing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

TEST(ImagePoolThreads, EightThreadsTakeAndGiveBack)
{
    CTgtImg::CleanupStatic();
    constexpr int kThreads = 8, kRounds = 1500;
    std::mutex seenLock;
    std::set<CTgtImg*> inUse;  // images held by some thread right now
    std::atomic<int> doubled{0}, wrongRef{0}, corrupted{0};

    const auto worker = [&](int id) {
        std::vector<CTgtImg*> held;
        for (int r = 0; r < kRounds; ++r) {
            CTgtImg* img = CTgtImg::GetImg();
            ASSERT_NE(img, nullptr);
            {
                std::lock_guard<std::mutex> lock(seenLock);
                if (!inUse.insert(img).second) ++doubled;
            }
            if (img->m_nPoolRef != 0) ++wrongRef;
            // Work on the image as its only owner.
            const unsigned int nBrgs = 8 + static_cast<unsigned int>((id + r) % 3) * 8;
            img->Alloc(16, nBrgs);
            std::fill_n(img->m_pImg, img->m_nImgBytes, static_cast<BYTE>(id));
            img->m_tgtRec.AddTail(new CTgt);
            img->m_nBndLevel = static_cast<UINT>(id);
            held.push_back(img);
            // Give back one, two or none, so that threads hold varying numbers.
            while (held.size() > static_cast<size_t>(r % 3)) {
                CTgtImg* back = held.front();
                held.erase(held.begin());
                if (back->m_nBndLevel != static_cast<UINT>(id) || back->m_pImg[back->m_nImgBytes - 1] != id)
                    ++corrupted;
                {
                    std::lock_guard<std::mutex> lock(seenLock);
                    inUse.erase(back);
                }
                CTgtImg::DelImg(back);
                if (back != nullptr) ++corrupted;
            }
        }
        for (CTgtImg* back : held) {
            {
                std::lock_guard<std::mutex> lock(seenLock);
                inUse.erase(back);
            }
            CTgtImg::DelImg(back);
        }
    };

    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) threads.emplace_back(worker, t);
    for (auto& t : threads) t.join();

    EXPECT_EQ(doubled.load(), 0);
    EXPECT_EQ(wrongRef.load(), 0);
    EXPECT_EQ(corrupted.load(), 0);
    EXPECT_TRUE(inUse.empty());
    EXPECT_LE(CTgtImg::s_imgPool.size(), 20u);
    EXPECT_GE(CTgtImg::s_imgPool.size(), 1u);
    for (CTgtImg* img : CTgtImg::s_imgPool) {
        EXPECT_EQ(img->m_nPoolRef, 1u);
        EXPECT_TRUE(img->m_tgtRec.IsEmpty());
    }
    CTgtImg::CleanupStatic();
}
