// The image object: initial state, the pool, state words, roll marks,
// boundaries, destruction with its texture hook, and CDataImg.
#include "core/platform/ZUtil.h"
#include "image/CDataImg.h"
#include "image/CTgtImg.h"
#include "ping/CPing.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class ImagePool : public ::testing::Test {
protected:
    void SetUp() override { CTgtImg::CleanupStatic(); }
    void TearDown() override { CTgtImg::CleanupStatic(); }
};

CBnd* AddBnd(CTgtImg& img, const char16_t* name, unsigned int nRngs)
{
    CBnd* b = new CBnd;
    b->m_name = CString(name);
    b->SetNRngs(nRngs);
    img.m_bnds.AddTail(b);
    return b;
}

}  // namespace

TEST(ImageObject, NewImageDefaults)
{
    CTgtImg img;
    EXPECT_EQ(img.m_pImg, nullptr);
    EXPECT_EQ(img.m_pQI, nullptr);
    EXPECT_EQ(img.m_pDsp, nullptr);
    EXPECT_EQ(img.m_pAZ, nullptr);
    EXPECT_EQ(img.m_pBrgBnd, nullptr);
    EXPECT_EQ(img.m_nPixBytes, 1);
    EXPECT_EQ(img.m_nCompLevel, 8u);
    EXPECT_EQ(img.m_bTexDirty, 1u);
    EXPECT_EQ(img.m_nBndLevel, 20u);
    EXPECT_EQ(img.m_nPoolRef, 0u);
    EXPECT_EQ(img.m_nState, 0u);
    EXPECT_TRUE(img.m_vStart.empty());
    EXPECT_TRUE(img.m_bnds.IsEmpty());
    EXPECT_EQ(img.Ping(), &img.m_tgtRec.m_ping);
}

TEST(ImageObject, ResolutionTable)
{
    const char16_t* labels[8] = {u"32. Poor",     u"64. V. Low",    u"128. Low",      u"256. Normal",
                                 u"512. High",    u"1024. V. High", u"2048. Extreme", u"4096. Extreme"};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(CTgtImg::s_resTypes[i].m_str, labels[i]) << i;
        EXPECT_EQ(CTgtImg::s_resTypes[i].m_n, 32 << i) << i;
    }
}

TEST(ImageObject, StateWord)
{
    EXPECT_EQ(CTgtImg::GetState(1, 0, 1, 0, 1), 37u);
    EXPECT_EQ(CTgtImg::GetState(7, -1, 0, 2, 0), 0x13u);
    int qi, pa, img, rb, tgt;
    CTgtImg::GetFlags(37u, qi, pa, img, rb, tgt);
    EXPECT_EQ((std::vector<int>{qi, pa, img, rb, tgt}), (std::vector<int>{1, 0, 1, 0, 1}));
    CTgtImg::GetFlags(0x08u, qi, pa, img, rb, tgt);
    EXPECT_EQ((std::vector<int>{qi, pa, img, rb, tgt}), (std::vector<int>{0, 0, 0, 0, 0}));

    CTgtImg image;
    image.m_nState = 0x4C;
    image.SetState(0, 0, 0, 0, 0);
    EXPECT_EQ(image.m_nState, 0u);
    image.SetState(0, 1, 0, 1, 0);
    EXPECT_EQ(image.m_nState, 0x12u);
    image.GetFlags(qi, pa, img, rb, tgt);
    EXPECT_EQ((std::vector<int>{qi, pa, img, rb, tgt}), (std::vector<int>{0, 1, 0, 1, 0}));
}

TEST(ImageObject, RollCompensationMarks)
{
    CTgtImg img;
    img.UpdateTargetsWithRollCompensationData();  // no targets: nothing happens
    for (int i = 0; i < 4; ++i) img.m_tgtRec.AddTail(new CTgt);
    img.m_tgtRec.GetAt(img.m_tgtRec.FindIndex(3))->m_rollMark = 9;
    img.m_fRoll = 0.25f;
    img.m_nRollTgt1 = 2;
    img.m_nRollTgt2 = 0;
    img.UpdateTargetsWithRollCompensationData();
    std::vector<int> marks;
    for (CZanPtr* pos = img.m_tgtRec.GetHeadPos(); pos;) {
        const CTgt* t = img.m_tgtRec.GetNext(pos);
        EXPECT_EQ(t->m_roll, 0.25f);
        marks.push_back(t->m_rollMark);
    }
    EXPECT_EQ(marks, (std::vector<int>{2, 0, 1, 9}));
    // The same index twice: the first mark wins.
    img.m_nRollTgt1 = img.m_nRollTgt2 = 1;
    img.UpdateTargetsWithRollCompensationData();
    EXPECT_EQ(img.m_tgtRec.GetAt(img.m_tgtRec.FindIndex(1))->m_rollMark, 1);
}

TEST(ImageObject, ClearBndsDestroysBoundariesAndZeroesBearingWords)
{
    CTgtImg img;
    img.Alloc(4, 6);
    for (unsigned int i = 0; i < 6; ++i) img.m_pBrgBnd[i] = 100 + i;
    AddBnd(img, u"a", 3);
    AddBnd(img, u"b", 0);
    img.ClearBnds();
    EXPECT_TRUE(img.m_bnds.IsEmpty());
    EXPECT_EQ(img.m_bnds.GetTailPos(), nullptr);
    for (unsigned int i = 0; i < 6; ++i) EXPECT_EQ(img.m_pBrgBnd[i], 0u);
    CTgtImg bare;
    bare.ClearBnds();  // no m_pBrgBnd: nothing to zero
}

namespace {
std::vector<UINT> g_deletedTextures;
void RecordTexture(UINT id) { g_deletedTextures.push_back(id); }
}  // namespace

TEST(ImageObject, DestructorDeletesTheTextureThroughTheHook)
{
    g_deletedTextures.clear();
    {
        CTgtImg noHook;
        noHook.m_nTexId = 5;  // no drawing code installed: nothing to call
    }
    CTgtImg::s_pfnDeleteTexture = &RecordTexture;
    {
        CTgtImg drawn;
        drawn.m_nTexId = 7;
        drawn.m_nAZTexId = 8;  // the zoom texture is not deleted
        CTgtImg never;         // texture 0: no call
    }
    CTgtImg::s_pfnDeleteTexture = nullptr;
    EXPECT_EQ(g_deletedTextures, std::vector<UINT>{7});
}

TEST_F(ImagePool, RecycledImageComesBackAsItWas)
{
    CTgtImg* a = CTgtImg::GetImg();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->m_nPoolRef, 0u);
    a->Alloc(10, 16);
    a->m_pImg[5] = 77;
    AddBnd(*a, u"kept", 2);
    a->m_tgtRec.AddTail(new CTgt);
    a->Ping()->m_pBeamA[3] = 11;
    a->Ping()->m_pBeamB[4] = 12;
    BYTE* const pImg = a->m_pImg;
    CTgtImg* given = a;
    CTgtImg::DelImg(given);
    EXPECT_EQ(given, nullptr);
    EXPECT_EQ(a->m_nPoolRef, 1u);
    EXPECT_EQ(CTgtImg::s_imgPool.size(), 1u);

    CTgtImg* b = CTgtImg::GetImg();
    EXPECT_EQ(b, a);
    EXPECT_EQ(b->m_nPoolRef, 0u);
    EXPECT_EQ(b->m_pImg, pImg);
    EXPECT_EQ(b->m_pImg[5], 77);
    EXPECT_EQ(b->m_nRngs, 10u);
    EXPECT_TRUE(b->m_tgtRec.IsEmpty());
    EXPECT_EQ(b->m_bnds.GetCount(), 1);
    EXPECT_EQ(b->Ping()->m_pBeamA[3], 0u);
    EXPECT_EQ(b->Ping()->m_pBeamB[4], 0u);
    EXPECT_TRUE(CTgtImg::s_imgPool.empty());
    delete b;
}

TEST_F(ImagePool, FirstInFirstOutAndAtMostTwenty)
{
    std::vector<CTgtImg*> imgs;
    for (int i = 0; i < 21; ++i) imgs.push_back(CTgtImg::GetImg());
    for (int i = 0; i < 21; ++i) {
        CTgtImg* p = imgs[i];
        CTgtImg::DelImg(p);
        EXPECT_EQ(p, nullptr);
    }
    EXPECT_EQ(CTgtImg::s_imgPool.size(), 20u);  // the 21st was destroyed
    for (int i = 0; i < 20; ++i) EXPECT_EQ(CTgtImg::GetImg(), imgs[i]) << i;
    CTgtImg* fresh = CTgtImg::GetImg();  // pool empty again: a new image
    EXPECT_EQ(fresh->m_nPoolRef, 0u);
    for (int i = 0; i < 20; ++i) delete imgs[i];
    delete fresh;
}

TEST_F(ImagePool, NullAndCleanup)
{
    CTgtImg* none = nullptr;
    CTgtImg::DelImg(none);
    EXPECT_TRUE(CTgtImg::s_imgPool.empty());

    CTgtImg* p = CTgtImg::GetImg();
    CTgtImg::DelImg(p);
    CTgtImg::s_pCompress = static_cast<BYTE*>(ZUtil::Malloc(64));
    CTgtImg::s_compressSize = 64;
    CTgtImg::CleanupStatic();
    EXPECT_TRUE(CTgtImg::s_imgPool.empty());
    EXPECT_EQ(CTgtImg::s_pCompress, nullptr);
    EXPECT_EQ(CTgtImg::s_compressSize, 0u);
    CTgtImg::CleanupStatic();  // a second call changes nothing
    EXPECT_EQ(CTgtImg::s_pCompress, nullptr);
}

TEST(DataImg, AllocNeedsBothDimensionsToChange)
{
    CDataImg d;
    d.Alloc(4, 3);
    ASSERT_NE(d.m_pData, nullptr);
    BYTE* const p = d.m_pData;
    d.Alloc(4, 9);  // same width: nothing
    EXPECT_EQ(d.m_pData, p);
    EXPECT_EQ(d.m_nHeight, 3u);
    d.Alloc(8, 3);  // same height: nothing
    EXPECT_EQ(d.m_nWidth, 4u);
    d.Clear();
    for (int i = 0; i < 12; ++i) EXPECT_EQ(d.m_pData[i], 0);
    d.Alloc(5, 6);
    EXPECT_EQ(d.m_nWidth * d.m_nHeight, 30u);
    d.Alloc(0, 2);  // one zero: released, values stored as given
    EXPECT_EQ(d.m_pData, nullptr);
    EXPECT_EQ(d.m_nWidth, 0u);
    EXPECT_EQ(d.m_nHeight, 2u);
}

TEST(DataImg, CopiesOwnTheirBytes)
{
    CDataImg a;
    a.m_nWord1 = 1;
    a.m_nWord2 = 2;
    a.m_nWord3 = 3;
    a.Alloc(3, 2);
    for (int i = 0; i < 6; ++i) a.m_pData[i] = static_cast<BYTE>(i + 1);
    CDataImg b(a);
    EXPECT_NE(b.m_pData, a.m_pData);
    EXPECT_EQ(b.m_nWord3, 3u);
    EXPECT_EQ(b.m_pData[5], 6);
    CDataImg c;
    c = a;
    a.m_pData[0] = 99;
    EXPECT_EQ(c.m_pData[0], 1);
    c = CDataImg();
    EXPECT_EQ(c.m_pData, nullptr);
    EXPECT_EQ(c.m_nWidth, 0u);
}
