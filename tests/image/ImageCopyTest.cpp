// The four copies, row by row where they differ: copy construction,
// operator=, CopyPreserve and Set.
#include "image/CTgtImg.h"
#include "ping/CPing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

bool Filled(const void* p, size_t n, BYTE v)
{
    const BYTE* b = static_cast<const BYTE*>(p);
    return p && std::all_of(b, b + n, [v](BYTE x) { return x == v; });
}

// An image holding every kind of block, each filled with its own byte.
std::unique_ptr<CTgtImg> Full(unsigned int nRngs, unsigned int nBrgs, short rx2, BYTE fill)
{
    auto img = std::make_unique<CTgtImg>();
    img->Ping()->m_rx2ID = rx2;
    img->AllocQI(nRngs, 2 * nBrgs);
    img->AllocPA(nRngs, nBrgs);
    img->AllocLX(nRngs, 4);
    img->Alloc(nRngs, nBrgs);
    std::fill_n(img->m_pQI, img->m_nQIBytes, fill);
    std::fill_n(img->m_pPhs, img->m_nPABytes, BYTE(fill + 1));
    std::fill_n(img->m_pAmp, img->m_nPABytes, BYTE(fill + 2));
    std::fill_n(img->m_pLX, img->m_nLXBytes, BYTE(fill + 3));
    std::fill_n(img->m_pImg, img->m_nImgBytes, BYTE(fill + 4));
    if (rx2) {
        std::fill_n(img->m_pQI2, img->m_nQIBytes, BYTE(fill + 5));
        std::fill_n(img->m_pImg2, img->m_nImgBytes, BYTE(fill + 6));
    }
    for (unsigned int i = 0; i < nBrgs; ++i) {
        img->m_pBrgBnd[i] = fill * 1000u + i;
        img->m_vStart[i] = CV3(fill, i, 0);
        img->m_vEnd[i] = CV3(fill, i, 1);
        img->m_vDir[i] = CV3(0, 0, fill);
    }
    img->m_nBndLevel = fill;
    img->m_nStartRng = fill;
    img->m_nEndBrg = nBrgs;
    img->m_nState = 0x47;
    img->m_tgtRec.m_sonarNo = fill;
    return img;
}

void AddBnds(CTgtImg& img, int n, const char16_t* name)
{
    for (int i = 0; i < n; ++i) {
        CBnd* b = new CBnd;
        b->m_name = CString(name);
        b->m_firstBrg = i;
        b->SetNRngs(static_cast<unsigned int>(i + 1));
        img.m_bnds.AddTail(b);
    }
}

void AddZoom(CTgtImg& img, unsigned int nRngs, unsigned int nBrgs, BYTE fill)
{
    img.AllocAZ(nRngs, nBrgs);
    std::fill_n(img.m_pAZ, img.m_nAZBytes, fill);
    img.AllocAZLX(nRngs, 1);
    std::fill_n(img.m_pAZLX, img.m_nAZLXCount, UINT(fill));
    img.m_nAZStartRng = fill;
    img.m_nAZEndBrg = fill + 1u;
}

}  // namespace

TEST(ImageCopy, HeaderGoesWithEveryCopy)
{
    auto src = Full(4, 3, 0, 10);
    src->m_tgtRec.AddTail(new CTgt);
    CTgtImg ctor(*src);
    CTgtImg assigned, preserved, set;
    assigned.m_bTexDirty = preserved.m_bTexDirty = set.m_bTexDirty = 0;
    assigned = *src;
    preserved.CopyPreserve(*src);
    set.Set(*src);
    for (CTgtImg* t : {&ctor, &assigned, &preserved, &set}) {
        EXPECT_EQ(t->m_nStartRng, 10u);
        EXPECT_EQ(t->m_nEndBrg, 3u);
        EXPECT_EQ(t->m_nState, 0x47u);
        EXPECT_EQ(t->m_bTexDirty, 1u);
        EXPECT_EQ(t->m_tgtRec.m_sonarNo, 10);
        EXPECT_EQ(t->m_tgtRec.GetCount(), 1);
        EXPECT_EQ(t->m_nRngs, 4u);
        EXPECT_EQ(t->m_nBrgs, 3u);
    }
}

TEST(ImageCopy, RawPlane)
{
    auto src = Full(4, 3, 7, 10);
    CTgtImg ctor(*src);
    EXPECT_TRUE(Filled(ctor.m_pQI, 24, 10));
    EXPECT_TRUE(Filled(ctor.m_pQI2, 24, 15));

    // operator= from a source without raw data releases the target's;
    // CopyPreserve keeps it; Set re-sizes it (zeroed) as the shape differs.
    auto lean = std::make_unique<CTgtImg>();
    lean->Alloc(4, 3);
    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20);
    *a = *lean;
    p->CopyPreserve(*lean);
    s->Set(*lean);
    EXPECT_EQ(a->m_pQI, nullptr);
    EXPECT_TRUE(Filled(p->m_pQI, 24, 20));
    EXPECT_EQ(s->m_pQI, nullptr);

    // Same shape: operator= copies into the buffer in place, Set leaves it.
    auto a2 = Full(4, 3, 0, 20), s2 = Full(4, 3, 0, 20);
    auto src2 = Full(4, 3, 0, 30);
    BYTE* const keep = a2->m_pQI;
    *a2 = *src2;
    s2->Set(*src2);
    EXPECT_EQ(a2->m_pQI, keep);
    EXPECT_TRUE(Filled(a2->m_pQI, 24, 30));
    EXPECT_TRUE(Filled(s2->m_pQI, 24, 20));
}

TEST(ImageCopy, PhaseAndAmplitude)
{
    auto src = Full(4, 3, 0, 10);
    CTgtImg ctor(*src);
    EXPECT_TRUE(Filled(ctor.m_pPhs, 12, 11));
    EXPECT_TRUE(Filled(ctor.m_pAmp, 12, 12));

    auto lean = std::make_unique<CTgtImg>();
    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20);
    *a = *lean;
    p->CopyPreserve(*lean);
    s->Set(*src);
    EXPECT_EQ(a->m_pPhs, nullptr);
    EXPECT_TRUE(Filled(p->m_pAmp, 12, 22));
    EXPECT_TRUE(Filled(s->m_pAmp, 12, 22));  // same shape: Set copies no samples

    auto other = Full(5, 3, 0, 30);
    s->Set(*other);  // other shape: sized and zeroed
    EXPECT_EQ(s->m_nPABytes, 15u);
    EXPECT_TRUE(Filled(s->m_pAmp, 15, 0));
}

TEST(ImageCopy, LineRecords)
{
    auto src = Full(4, 3, 0, 10);
    CTgtImg ctor(*src);
    EXPECT_TRUE(Filled(ctor.m_pLX, 16, 13));

    auto lean = std::make_unique<CTgtImg>();
    lean->AllocQI(4, 6);  // lines but no line records
    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20);
    *a = *lean;
    p->CopyPreserve(*lean);
    s->Set(*src);
    EXPECT_EQ(a->m_pLX, nullptr);
    EXPECT_TRUE(Filled(p->m_pLX, 16, 23));
    EXPECT_TRUE(Filled(s->m_pLX, 16, 13));  // Set copies the line records

    CTgtImg noLines(*lean);
    EXPECT_EQ(noLines.m_pLX, nullptr);
    EXPECT_EQ(noLines.m_nLXBytes, 0u);
}

TEST(ImageCopy, Intensity)
{
    auto src = Full(4, 3, 0, 10);
    CTgtImg ctor(*src);
    EXPECT_TRUE(Filled(ctor.m_pImg, 12, 14));
    EXPECT_EQ(ctor.m_nBndLevel, 10u);

    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20);
    *a = *src;
    p->CopyPreserve(*src);
    s->Set(*src);
    EXPECT_TRUE(Filled(a->m_pImg, 12, 14));
    EXPECT_TRUE(Filled(p->m_pImg, 12, 14));
    EXPECT_TRUE(Filled(s->m_pImg, 12, 24));  // same shape: untouched
    EXPECT_EQ(a->m_nBndLevel, 10u);
    EXPECT_EQ(s->m_nBndLevel, 10u);

    auto wide = Full(4, 5, 0, 30);
    wide->m_nBndLevel = 99;
    auto s2 = Full(4, 3, 0, 20);
    s2->Set(*wide);
    EXPECT_EQ(s2->m_nImgBytes, 20u);
    EXPECT_TRUE(Filled(s2->m_pImg, 20, 0));
    EXPECT_EQ(s2->m_nBndLevel, 99u);

    auto empty = std::make_unique<CTgtImg>();
    empty->m_nBndLevel = 5;
    auto p2 = Full(4, 3, 0, 20);
    p2->CopyPreserve(*empty);  // keeps every sample block, takes the ping
    EXPECT_TRUE(Filled(p2->m_pImg, 12, 24));
    EXPECT_TRUE(Filled(p2->m_pQI, 24, 20));
    EXPECT_TRUE(Filled(p2->m_pPhs, 12, 21));
    EXPECT_TRUE(Filled(p2->m_pLX, 16, 23));
    EXPECT_EQ(p2->m_nBndLevel, 20u);
    EXPECT_EQ(p2->m_tgtRec.m_sonarNo, 0);
}

TEST(ImageCopy, SecondReceiverFollowsTheSource)
{
    auto twin = Full(4, 3, 5, 10);
    auto single = Full(4, 3, 0, 20);
    *single = *twin;
    ASSERT_NE(single->m_pImg2, nullptr);
    EXPECT_TRUE(Filled(single->m_pImg2, 12, 16));
    EXPECT_TRUE(Filled(single->m_pQI2, 24, 15));

    auto mono = Full(4, 3, 0, 30);
    *twin = *mono;
    EXPECT_EQ(twin->m_pImg2, nullptr);
    EXPECT_EQ(twin->m_pQI2, nullptr);
    EXPECT_EQ(twin->m_pPhs2, nullptr);
}

TEST(ImageCopy, PerBearingVectors)
{
    auto src = Full(4, 3, 0, 10);
    src->m_vStart.resize(2);  // a source short of elements: the rest stays
    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20);
    *a = *src;
    p->CopyPreserve(*src);
    s->Set(*src);
    CTgtImg ctor(*src);
    for (CTgtImg* t : {a.get(), p.get(), s.get()}) {
        EXPECT_EQ(t->m_vStart[1], CV3(10, 1, 0));
        EXPECT_EQ(t->m_vStart[2], CV3(20, 2, 0));
        EXPECT_EQ(t->m_vEnd[2], CV3(10, 2, 1));
        EXPECT_EQ(t->m_vDir[0], CV3(0, 0, 10));
    }
    EXPECT_EQ(ctor.m_vStart[2], CV3());
    EXPECT_EQ(ctor.m_vEnd[2], CV3(10, 2, 1));
}

TEST(ImageCopy, BearingWords)
{
    auto src = Full(4, 3, 0, 10);
    CTgtImg ctor(*src);
    EXPECT_TRUE(Filled(ctor.m_pBrgBnd, 12, 0));

    auto a = Full(4, 3, 0, 20), s = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20);
    *a = *src;
    s->Set(*src);
    p->CopyPreserve(*std::make_unique<CTgtImg>());
    EXPECT_EQ(a->m_pBrgBnd[2], 10002u);
    EXPECT_EQ(s->m_pBrgBnd[2], 10002u);
    EXPECT_EQ(p->m_pBrgBnd[2], 20002u);
}

TEST(ImageCopy, Boundaries)
{
    auto src = Full(4, 3, 0, 10);
    AddBnds(*src, 2, u"src");
    CTgtImg ctor(*src);
    EXPECT_EQ(ctor.m_bnds.GetCount(), 2);
    EXPECT_NE(ctor.m_bnds.GetHead(), src->m_bnds.GetHead());
    EXPECT_EQ(ctor.m_bnds.GetTail()->m_nRngs, 2u);
    EXPECT_NE(ctor.m_bnds.GetTail()->m_pRngs, src->m_bnds.GetTail()->m_pRngs);

    // By reuse: the target's first objects stay at their addresses and take
    // the source's values, the surplus is destroyed.
    auto a = Full(4, 3, 0, 20), p = Full(4, 3, 0, 20);
    AddBnds(*a, 4, u"old");
    AddBnds(*p, 1, u"old");
    CBnd* const first = a->m_bnds.GetHead();
    *a = *src;
    p->CopyPreserve(*src);
    EXPECT_EQ(a->m_bnds.GetCount(), 2);
    EXPECT_EQ(a->m_bnds.GetHead(), first);
    EXPECT_EQ(first->m_name, u"src");
    EXPECT_EQ(p->m_bnds.GetCount(), 2);
    EXPECT_EQ(p->m_bnds.GetTail()->m_firstBrg, 1);

    auto s = Full(4, 3, 0, 20);
    AddBnds(*s, 3, u"mine");
    s->Set(*src);
    EXPECT_EQ(s->m_bnds.GetCount(), 3);
    EXPECT_EQ(s->m_bnds.GetHead()->m_name, u"mine");

    *a = *std::make_unique<CTgtImg>();
    EXPECT_TRUE(a->m_bnds.IsEmpty());
}

TEST(ImageCopy, ZoomRegionAndLineRecords)
{
    auto src = Full(4, 3, 0, 10);
    AddZoom(*src, 6, 2, 40);
    CTgtImg ctor(*src);
    EXPECT_EQ(ctor.m_nAZStartRng, 40u);
    EXPECT_EQ(ctor.m_nAZEndBrg, 41u);
    EXPECT_EQ(ctor.m_nAZLXCount, 6u);
    EXPECT_EQ(ctor.m_pAZLX[5], 40u);
    EXPECT_TRUE(Filled(ctor.m_pAZ, 12, 40));

    // Equal zoom lines: the target's zoom line records stay as they were.
    for (int op = 0; op < 3; ++op) {
        auto t = Full(4, 3, 0, 20);
        AddZoom(*t, 6, 5, 50);
        UINT* const keep = t->m_pAZLX;
        if (op == 0) *t = *src;
        if (op == 1) t->CopyPreserve(*src);
        if (op == 2) t->Set(*src);
        EXPECT_EQ(t->m_nAZStartRng, 40u) << op;
        EXPECT_EQ(t->m_pAZLX, keep) << op;
        EXPECT_EQ(t->m_pAZLX[5], 50u) << op;
        EXPECT_EQ(t->m_nAZBrgs, 2u) << op;  // other bearings: the zoom image is re-sized and copied
        EXPECT_TRUE(Filled(t->m_pAZ, 12, 40)) << op;
    }
    // Other zoom lines: sized and copied; from a source without zoom line
    // records, to none.
    auto t = Full(4, 3, 0, 20);
    AddZoom(*t, 9, 2, 50);
    *t = *src;
    EXPECT_EQ(t->m_nAZLXCount, 6u);
    EXPECT_EQ(t->m_pAZLX[0], 40u);
    auto bare = std::make_unique<CTgtImg>();
    bare->m_nAZRngs = 3;  // zoom lines but no records
    *t = *bare;
    EXPECT_EQ(t->m_pAZLX, nullptr);
    EXPECT_EQ(t->m_nAZLXCount, 0u);
}

TEST(ImageCopy, ZoomImageNeedsBothSourceDimensions)
{
    auto src = Full(4, 3, 0, 10);
    src->m_nAZRngs = 5;  // no zoom bearings: nothing of the image
    auto t = Full(4, 3, 0, 20);
    AddZoom(*t, 5, 2, 60);
    *t = *src;
    EXPECT_EQ(t->m_nAZBrgs, 2u);
    EXPECT_TRUE(Filled(t->m_pAZ, 10, 60));

    AddZoom(*src, 5, 2, 70);  // same dimensions: copied in place
    BYTE* const keep = t->m_pAZ;
    t->Set(*src);
    EXPECT_EQ(t->m_pAZ, keep);
    EXPECT_TRUE(Filled(t->m_pAZ, 10, 70));
}

TEST(ImageCopy, SelfCopiesChangeNothing)
{
    auto img = Full(4, 3, 0, 10);
    AddBnds(*img, 2, u"b");
    CTgtImg& same = *img;
    *img = same;
    img->CopyPreserve(same);
    img->Set(same);
    EXPECT_TRUE(Filled(img->m_pImg, 12, 14));
    EXPECT_EQ(img->m_bnds.GetCount(), 2);
}
