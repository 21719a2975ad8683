// Sizing of the image's buffers: what survives, what is zeroed, what is
// released, and the second receiver's twins.
#include "image/CTgtImg.h"
#include "ping/CPing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

bool AllZero(const void* p, size_t n)
{
    const BYTE* b = static_cast<const BYTE*>(p);
    return std::all_of(b, b + n, [](BYTE v) { return v == 0; });
}

}  // namespace

TEST(ImageBuffers, AllocKeepsSamplesOnlyAtTheSameShape)
{
    CTgtImg img;
    img.Ping()->m_rx2ID = 3;
    img.Alloc(10, 8);
    EXPECT_EQ(img.m_nImgBytes, 80u);
    EXPECT_EQ(img.m_vStart.size(), 8u);
    EXPECT_EQ(img.m_vDir.size(), 8u);
    ASSERT_NE(img.m_pImg2, nullptr);
    EXPECT_TRUE(AllZero(img.m_pImg, 80));
    std::fill_n(img.m_pImg, 80, BYTE(5));
    std::fill_n(img.m_pImg2, 80, BYTE(6));
    img.m_bNewSize = 0;

    img.Alloc(10, 8);  // same shape: the first plane keeps its picture, the twin is zeroed
    EXPECT_EQ(img.m_pImg[79], 5);
    EXPECT_TRUE(AllZero(img.m_pImg2, 80));
    EXPECT_EQ(img.m_bNewSize, 1);

    img.Alloc(8, 10);  // same bytes, other shape: zeroed
    EXPECT_TRUE(AllZero(img.m_pImg, 80));

    img.Ping()->m_rx2ID = 0;  // the twin goes with the next sizing
    img.Alloc(8, 10);
    EXPECT_EQ(img.m_pImg2, nullptr);
}

TEST(ImageBuffers, AllocOfZeroReleases)
{
    CTgtImg img;
    img.Ping()->m_rx2ID = 1;
    img.Alloc(6, 4);
    img.Alloc(0, 0);
    EXPECT_EQ(img.m_pImg, nullptr);
    EXPECT_EQ(img.m_pImg2, nullptr);
    EXPECT_EQ(img.m_nImgBytes, 0u);
    EXPECT_TRUE(img.m_vStart.empty());
    EXPECT_EQ(img.m_pBrgBnd, nullptr);
    EXPECT_EQ(img.m_bNewSize, 1);

    img.Alloc(0, 12);  // bearings without lines: vectors, no samples
    EXPECT_EQ(img.m_nBrgs, 12u);
    EXPECT_EQ(img.m_vEnd.size(), 12u);
    EXPECT_NE(img.m_pBrgBnd, nullptr);
    EXPECT_EQ(img.m_pImg, nullptr);
}

TEST(ImageBuffers, BearingWordsSurviveResizing)
{
    CTgtImg img;
    img.Alloc(2, 3);
    img.m_pBrgBnd[0] = 7;
    img.m_pBrgBnd[2] = 9;
    img.Alloc(2, 5);
    EXPECT_EQ(img.m_pBrgBnd[0], 7u);
    EXPECT_EQ(img.m_pBrgBnd[2], 9u);
    EXPECT_EQ(img.m_pBrgBnd[4], 0u);
    img.m_pBrgBnd[1] = 4;
    img.Alloc(2, 2);  // shrinking keeps the words that remain
    EXPECT_EQ(img.m_pBrgBnd[0], 7u);
    EXPECT_EQ(img.m_pBrgBnd[1], 4u);
}

TEST(ImageBuffers, PlanesStartOnACacheLine)
{
    // Odd sizes, and sizes each way of the heap's switch to whole pages.
    for (unsigned brgs : {1u, 3u, 127u, 1024u, 4099u}) {
        CTgtImg img;
        img.Ping()->m_rx2ID = 2;
        img.Ping()->SetNumBeams(static_cast<int>(brgs));
        for (unsigned rngs : {1u, 7u, 300u}) {
            img.Alloc(rngs, brgs);
            img.AllocQI(rngs, 2 * brgs + 1);
            img.AllocPA(rngs, brgs + 3);
            img.SetImgSize(64);
            for (const void* p : {static_cast<const void*>(img.m_pImg), static_cast<const void*>(img.m_pImg2),
                                  static_cast<const void*>(img.m_pQI), static_cast<const void*>(img.m_pQI2),
                                  static_cast<const void*>(img.m_pAmp), static_cast<const void*>(img.m_pPhs),
                                  static_cast<const void*>(img.m_pDsp)}) {
                ASSERT_NE(p, nullptr) << brgs << " x " << rngs;
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 64, 0u) << brgs << " x " << rngs;
            }
        }
    }
}

TEST(ImageBuffers, RawPhaseAmplitudeAndLinesAreAlwaysZeroed)
{
    CTgtImg img;
    img.Ping()->m_rx2ID = 2;
    img.AllocQI(4, 6);
    img.AllocPA(4, 3);
    img.AllocLX(4, 4);
    EXPECT_EQ(img.m_nQIBytes, 24u);
    EXPECT_EQ(img.m_nPABytes, 12u);
    EXPECT_EQ(img.m_nLXBytes, 16u);
    ASSERT_NE(img.m_pQI2, nullptr);
    ASSERT_NE(img.m_pAmp2, nullptr);
    std::fill_n(img.m_pQI, 24, BYTE(1));
    std::fill_n(img.m_pQI2, 24, BYTE(1));
    std::fill_n(img.m_pPhs, 12, BYTE(1));
    std::fill_n(img.m_pAmp2, 12, BYTE(1));
    std::fill_n(img.m_pLX, 16, BYTE(1));
    img.AllocQI(4, 6);
    img.AllocPA(4, 3);
    img.AllocLX(4, 4);
    EXPECT_TRUE(AllZero(img.m_pQI, 24));
    EXPECT_TRUE(AllZero(img.m_pQI2, 24));
    EXPECT_TRUE(AllZero(img.m_pPhs, 12));
    EXPECT_TRUE(AllZero(img.m_pAmp2, 12));
    EXPECT_TRUE(AllZero(img.m_pLX, 16));

    img.Ping()->m_rx2ID = 0;
    img.AllocQI(4, 6);
    img.AllocPA(4, 3);
    EXPECT_EQ(img.m_pQI2, nullptr);
    EXPECT_EQ(img.m_pPhs2, nullptr);
    EXPECT_EQ(img.m_pAmp2, nullptr);

    img.AllocQI(4, 0);
    img.AllocPA(0, 3);
    img.AllocLX(4, 0);
    EXPECT_EQ(img.m_pQI, nullptr);
    EXPECT_EQ(img.m_nQIBytes, 0u);
    EXPECT_EQ(img.m_pAmp, nullptr);
    EXPECT_EQ(img.m_pLX, nullptr);
    EXPECT_EQ(img.m_nPAWidth, 3u);
    EXPECT_EQ(img.m_nRngs, 4u);
}

TEST(ImageBuffers, LineCountIsSharedByAllBuffers)
{
    CTgtImg img;
    img.Alloc(50, 8);
    img.AllocQI(100, 16);
    EXPECT_EQ(img.m_nRngs, 100u);
    EXPECT_EQ(img.m_nImgBytes, 400u);  // the intensity plane is not re-sized
    img.m_pImg[0] = 3;
    img.Alloc(100, 8);  // lines now match m_nRngs, bearings unchanged: no zeroing
    EXPECT_EQ(img.m_nImgBytes, 800u);
}

TEST(ImageBuffers, ZoomBuffersKeepTheirBytesAtTheSameSize)
{
    CTgtImg img;
    img.AllocAZ(3, 4);
    ASSERT_NE(img.m_pAZ, nullptr);
    EXPECT_EQ(img.m_nAZBytes, 12u);
    EXPECT_TRUE(AllZero(img.m_pAZ, 12));
    img.m_pAZ[11] = 8;
    img.AllocAZ(4, 3);
    EXPECT_EQ(img.m_pAZ[11], 8);
    EXPECT_EQ(img.m_nAZRngs, 4u);
    img.AllocAZ(0, 3);
    EXPECT_EQ(img.m_pAZ, nullptr);
    EXPECT_EQ(img.m_nAZBytes, 0u);

    EXPECT_TRUE(img.AllocAZLX(5, 2));
    EXPECT_EQ(img.m_nAZLXCount, 10u);
    img.m_pAZLX[9] = 4;
    img.AllocAZLX(2, 5);
    EXPECT_EQ(img.m_pAZLX[9], 4u);
    img.AllocAZLX(0, 5);
    EXPECT_EQ(img.m_pAZLX, nullptr);
}

TEST(ImageBuffers, DisplayImages)
{
    CTgtImg img;
    img.SetImgSize(128);  // no bearings: no display image
    EXPECT_EQ(img.m_pDsp, nullptr);
    EXPECT_EQ(img.m_nImgSize, 0u);

    img.Alloc(10, 6);
    img.AllocAZ(4, 5);
    img.SetImgSize(256);
    ASSERT_NE(img.m_pDsp, nullptr);
    ASSERT_NE(img.m_pAZDsp, nullptr);
    EXPECT_EQ(img.m_nImgSize, 256u);
    EXPECT_EQ(img.m_bNewSize, 0);
    EXPECT_EQ(img.m_nAZDspBrgs, 5u);
    EXPECT_EQ(img.m_nAZDspRngs, 4u);
    img.m_pDsp[6 * 256 - 1].r = 1;
    img.m_pAZDsp[5 * 128 - 1].g = 2;

    img.SetImgSize(256);  // nothing changed: both kept
    EXPECT_EQ(img.m_pDsp[6 * 256 - 1].r, 1);
    EXPECT_EQ(img.m_pAZDsp[5 * 128 - 1].g, 2);

    img.Alloc(10, 6);  // a new size flag rebuilds the main display image only
    img.SetImgSize(256);
    EXPECT_EQ(img.m_pDsp[6 * 256 - 1].r, 0);
    EXPECT_EQ(img.m_pAZDsp[5 * 128 - 1].g, 2);

    img.SetImgSize(0);
    EXPECT_EQ(img.m_pDsp, nullptr);
    EXPECT_EQ(img.m_pAZDsp, nullptr);
    EXPECT_EQ(img.m_nImgSize, 0u);
    img.SetImgSize(256);
    EXPECT_NE(img.m_pDsp, nullptr);
    EXPECT_NE(img.m_pAZDsp, nullptr);
}

TEST(ImageBuffers, ClearDataZeroesOnlyTheFirstPlane)
{
    CTgtImg img;
    img.ClearData();  // no plane: nothing
    img.Ping()->m_rx2ID = 1;
    img.Alloc(2, 2);
    std::fill_n(img.m_pImg, 4, BYTE(9));
    std::fill_n(img.m_pImg2, 4, BYTE(9));
    img.ClearData();
    EXPECT_TRUE(AllZero(img.m_pImg, 4));
    EXPECT_EQ(img.m_pImg2[3], 9);
}
