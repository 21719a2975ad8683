// The image record: golden bytes of each block, round trips into fresh and
// recycled images, and damaged records that must not make the loader
// allocate what the file cannot hold.
#include "core/platform/Zan.h"
#include "image/CTgtImg.h"
#include "ping/CPing.h"
#include "tests/image/ImageTestUtil.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

using imgtest::Bytes;
using imgtest::Golden;

namespace {

const double kTable[3] = {-0.5, 0.0, 0.5};

// 2 lines by 3 bearings, every block filled with its own pattern.
std::unique_ptr<CTgtImg> Small(short rx2)
{
    auto img = std::make_unique<CTgtImg>();
    CPing& ping = *img->Ping();
    ping.SetBearingTable(const_cast<double*>(kTable), 3);
    ping.m_rx2ID = rx2;
    img->AllocQI(2, 6);
    img->AllocPA(2, 3);
    img->AllocLX(2, 4);
    img->Alloc(2, 3);
    for (UINT i = 0; i < 12; ++i) img->m_pQI[i] = static_cast<BYTE>(0x10 + i);
    for (UINT i = 0; i < 6; ++i) {
        img->m_pPhs[i] = static_cast<BYTE>(0x30 + i);
        img->m_pAmp[i] = static_cast<BYTE>(0x40 + i);
    }
    const BYTE pix[6] = {0, 0, 0, 9, 0, 200};
    std::memcpy(img->m_pImg, pix, 6);
    if (rx2) {
        for (UINT i = 0; i < 12; ++i) img->m_pQI2[i] = static_cast<BYTE>(0x90 + i);
        for (UINT i = 0; i < 6; ++i) {
            img->m_pPhs2[i] = static_cast<BYTE>(0xA0 + i);
            img->m_pAmp2[i] = static_cast<BYTE>(0xB0 + i);
        }
        const BYTE pix2[6] = {50, 0, 0, 0, 0, 0};
        std::memcpy(img->m_pImg2, pix2, 6);
    }
    for (UINT i = 0; i < 3; ++i) {
        img->m_vStart[i] = CV3(i, 1, 2);
        img->m_vEnd[i] = CV3(i, 10, 20);
        img->m_vDir[i] = CV3(0, 0.6, 0.8);
    }
    img->m_nStartRng = 100;
    img->m_nEndRng = 102;
    img->m_nStartBrg = 0;
    img->m_nEndBrg = 3;
    for (int k = 0; k < 2; ++k) {
        CTgt* t = new CTgt;
        t->x = 1.5 + k;
        t->y = -2.0;
        t->z = 7.25;
        t->m_rngK = 1000u + k;
        t->m_brgK = 2500u;
        t->m_tgtValue = 0.5;
        t->m_level = 200;
        t->m_kind = 2;
        t->m_tgtByte = 9;
        img->m_tgtRec.AddTail(t);
    }
    return img;
}

Golden Head(UINT flags, int rx2, UINT nRngs = 2, UINT nBrgs = 3)
{
    Golden g;
    g << flags << BYTE(1) << nRngs << 0u << 3u << 100u << 102u << rx2 << nBrgs;
    g.Raw(kTable, sizeof kTable);
    return g;
}

Golden& Tail(Golden& g, const CTgt& t)
{
    return g << t.m_rngK << t.m_brgK << t.m_tgtValue << t.m_level << t.m_kind << t.m_tgtByte;
}

Bytes Block(CTgtImg& img, UINT flags, int rx2)
{
    Golden g = Head(flags, rx2);
    if (flags & 0x40) {
        g.Raw(img.m_vStart.data(), 72).Raw(img.m_vEnd.data(), 72).Raw(img.m_vDir.data(), 72);
    }
    if (flags & 0x20) {
        g << 2;
        for (CZanPtr* pos = img.m_tgtRec.GetHeadPos(); pos;) {
            const CTgt& t = *img.m_tgtRec.GetNext(pos);
            Tail(g << t.x << t.y << t.z, t);
        }
    } else if (flags & 0x10) {
        g << 2;
        for (CZanPtr* pos = img.m_tgtRec.GetHeadPos(); pos;) Tail(g, *img.m_tgtRec.GetNext(pos));
    }
    if (flags & 0x01) {
        g << 6u;
        g.Raw(img.m_pQI, 12);
        if (rx2) g.Raw(img.m_pQI2, 12);
    }
    if (flags & 0x02) {
        g << 3u;
        g.Raw(img.m_pPhs, 6).Raw(img.m_pAmp, 6);
        if (rx2) g.Raw(img.m_pPhs2, 6).Raw(img.m_pAmp2, 6);
    }
    if ((flags & 0x0C) == 0x04) {
        g << 3u;
        g.Raw(img.m_pImg, 6);
        if (rx2) g.Raw(img.m_pImg2, 6);
    }
    if ((flags & 0x0C) == 0x0C) {
        // 00 03 09 01 C8 takes more than 6 - 2 bytes: the mark replaces its
        // last two. The twin's 32 00 05 leaves room for it.
        g << 3u << 5u;
        g.Raw({0x00, 0x03, 0x09, 0x02, 0x02});
        if (rx2) {
            g << 5u;
            g.Raw({0x32, 0x00, 0x05, 0x02, 0x02});
        }
    }
    g << 0u;
    return g.bytes();
}

}  // namespace

TEST(ImageRecord, EmptyImageWithNoFlagsIs37BytesOfItsOwn)
{
    CTgtImg img;
    const Bytes own = imgtest::OwnPart(img, 0);
    Golden g;
    g << 0u << BYTE(1) << 0u << 0u << 0u << 0u << 0u << 0 << 0u << 0u;
    ASSERT_EQ(own.size(), 37u);
    EXPECT_EQ(own, g.bytes());
    const Bytes all = imgtest::Store(img, 0);
    EXPECT_EQ(all.size(), 69u + 36u + 37u);
}

TEST(ImageRecord, EachBlockAloneFirstReceiver)
{
    auto img = Small(0);
    for (UINT flags : {0x00u, 0x01u, 0x02u, 0x04u, 0x0Cu, 0x08u, 0x10u, 0x20u, 0x30u, 0x40u, 0x7Fu, 0x4Fu})
        EXPECT_EQ(imgtest::OwnPart(*img, flags), Block(*img, flags, 0)) << "flags " << flags;
}

TEST(ImageRecord, EachBlockAloneSecondReceiver)
{
    auto img = Small(4);
    for (UINT flags : {0x00u, 0x01u, 0x02u, 0x04u, 0x0Cu, 0x47u, 0x4Bu})
        EXPECT_EQ(imgtest::OwnPart(*img, flags), Block(*img, flags, 4)) << "flags " << flags;
}

TEST(ImageRecord, BoundariesCloseTheRecord)
{
    auto img = Small(0);
    CBnd* b = new CBnd;
    b->m_name = CString(u"Rk");
    b->m_bndType = 3;
    b->m_firstBrg = -1;
    b->SetNRngs(1);
    b->m_pRngs[0].m_dNear = 1.0;
    b->m_pRngs[0].m_dFar = 2.0;
    img->m_bnds.AddTail(b);
    img->m_bnds.AddTail(new CBnd);
    Golden g = Head(0, 0);
    g << 2u;
    g.Raw({0xFF, 0xFE, 0xFF, 2}) << u'R' << u'k' << 3u << -1 << 1u;
    g.Raw(b->m_pRngs, 32);
    g.Raw({0xFF, 0xFE, 0xFF, 0}) << 0u << 0 << 0u;
    EXPECT_EQ(imgtest::OwnPart(*img, 0), g.bytes());
}

TEST(ImageRecord, IntensityFlagWithoutSamplesIsTheBearingCountAlone)
{
    CTgtImg img;
    img.Alloc(0, 4);  // bearings but no samples
    const Bytes own = imgtest::OwnPart(img, 0x04);
    Golden g;
    g << 4u << BYTE(1) << 0u << 0u << 0u << 0u << 0u << 0 << 4u;
    g.Raw(img.Ping()->m_pBrgTbl, 256 * 8);  // the table goes by the ping's beam count
    g << 4u << 0u;
    EXPECT_EQ(own, g.bytes());
}

TEST(ImageRecord, StoringFollowsTheFlagsNotTheState)
{
    auto img = Small(0);
    img->m_nState = 0x05;
    const Bytes rec = imgtest::Store(*img, 0x22);
    EXPECT_EQ(img->m_nState, 0x05u);
    CTgtImg back;
    imgtest::Load(back, rec);
    EXPECT_EQ(back.m_nState, 0x22u);
}

TEST(ImageRecord, CompressionStatusMessage)
{
    CTgtImg img;
    img.Ping()->SetNumBeams(64);
    img.m_tgtRec.m_sonarNo = 2;
    img.Alloc(100, 64);
    for (UINT i = 0; i < img.m_nImgBytes; i += 3) img.m_pImg[i] = 200;
    std::vector<std::pair<unsigned long, CString>> got;
    auto old = Zan::SetSink([&](Zan::Kind, unsigned long id, int, const CString& t) { got.emplace_back(id, t); });
    const Bytes own = imgtest::OwnPart(img, 0x0C);
    Zan::SetSink(old);
    UINT nSize = 0;  // S stands behind the header, the table and the width
    std::memcpy(&nSize, own.data() + 33 + 64 * 8 + 4, 4);
    EXPECT_LE(nSize, 6400u);
    EXPECT_EQ(own.size(), 33 + 64 * 8 + 4 + 4 + nSize + 4);
    ASSERT_EQ(got.size(), 1u);
    const double saved = (6400.0 - nSize) * 100.0 / 6400.0;
    EXPECT_EQ(got[0].first, 6022u);
    EXPECT_EQ(got[0].second, CString::Fmt(u"Compression Ratio %02.0lf%% (%1.1lf of %1.1lfkB)", saved,
                                          nSize / 1024.0, 6400 / 1024.0));
}

namespace {

// Every field the record carries, compared.
void ExpectSameImage(CTgtImg& a, CTgtImg& b, UINT flags)
{
    EXPECT_EQ(a.m_nRngs, b.m_nRngs);
    EXPECT_EQ(a.m_nBrgs, b.m_nBrgs);
    EXPECT_EQ(a.m_nStartRng, b.m_nStartRng);
    EXPECT_EQ(a.m_nEndBrg, b.m_nEndBrg);
    EXPECT_EQ(a.m_nPixBytes, b.m_nPixBytes);
    if (flags & 0x01) {
        ASSERT_EQ(a.m_nQIBytes, b.m_nQIBytes);
        EXPECT_EQ(0, std::memcmp(a.m_pQI, b.m_pQI, a.m_nQIBytes));
    }
    if (flags & 0x04) {
        ASSERT_EQ(a.m_nImgBytes, b.m_nImgBytes);
        if (!(flags & 0x08)) {
            EXPECT_EQ(0, std::memcmp(a.m_pImg, b.m_pImg, a.m_nImgBytes));
        }
    }
    EXPECT_EQ(a.m_bnds.GetCount(), b.m_bnds.GetCount());
    if (flags & 0x30) {
        EXPECT_EQ(a.m_tgtRec.GetCount(), b.m_tgtRec.GetCount());
    }
    EXPECT_EQ(0, std::memcmp(a.Ping()->m_pBrgTbl, b.Ping()->m_pBrgTbl, 8 * a.m_nBrgs));
}

}  // namespace

TEST(ImageRecord, RoundTripIntoAFreshImage)
{
    for (short rx2 : {short(0), short(6)}) {
        auto img = Small(rx2);
        img->m_bnds.AddTail(new CBnd);
        for (UINT flags : {0x67u, 0x57u, 0x4Fu}) {
            const Bytes rec = imgtest::Store(*img, flags);
            CTgtImg back;
            EXPECT_EQ(imgtest::Load(back, rec), 0u);
            ExpectSameImage(*img, back, flags);
            EXPECT_EQ(back.m_nState, flags);
            EXPECT_EQ(back.m_bTexDirty, 1u);
            EXPECT_EQ(back.m_vEnd[2], CV3(2, 10, 20));
            if (rx2 && !(flags & 0x08)) {
                EXPECT_EQ(back.m_pImg2[0], 50);
            }
            // Stored again, the loaded image gives the same record.
            EXPECT_EQ(imgtest::Store(back, flags), rec) << flags;
        }
    }
}

TEST(ImageRecord, RoundTripIntoARecycledImageOfAnotherShape)
{
    auto img = Small(3);
    img->m_bnds.AddTail(new CBnd);
    const Bytes rec = imgtest::Store(*img, 0x67);

    CTgtImg old;
    old.Ping()->SetNumBeams(3);
    old.AllocQI(9, 30);
    old.AllocPA(9, 5);
    old.Alloc(9, 7);
    std::fill_n(old.m_pImg, old.m_nImgBytes, BYTE(1));
    for (int i = 0; i < 4; ++i) old.m_bnds.AddTail(new CBnd);
    for (int i = 0; i < 5; ++i) old.m_tgtRec.AddTail(new CTgt);
    old.m_nState = 0x08;
    imgtest::Load(old, rec);
    ExpectSameImage(*img, old, 0x67);
    EXPECT_EQ(old.m_nState, 0x67u);
    EXPECT_EQ(old.m_bnds.GetCount(), 1);
    EXPECT_EQ(old.m_tgtRec.GetCount(), 2);
    EXPECT_EQ(old.m_nPAWidth, 3u);
    EXPECT_EQ(old.m_pImg2[0], 50);
    EXPECT_EQ(imgtest::Store(old, 0x67), rec);

    // A record with only the intensity block leaves the old raw data, width
    // included; m_nState alone says that it isn't valid.
    const Bytes lean = imgtest::Store(*img, 0x04);
    CTgtImg other;
    other.Ping()->SetNumBeams(3);
    other.AllocQI(2, 40);
    other.m_pQI[7] = 0x77;
    for (int i = 0; i < 2; ++i) other.m_bnds.AddTail(new CBnd);
    imgtest::Load(other, lean);
    EXPECT_EQ(other.m_nQIWidth, 40u);
    EXPECT_EQ(other.m_pQI[7], 0x77);
    EXPECT_EQ(other.m_nState, 0x04u);
    EXPECT_EQ(other.m_bnds.GetCount(), 1);
}

TEST(ImageRecord, CompressedRoundTripKeepsWhatIsAboveTheLevel)
{
    std::mt19937 rng(5);
    CTgtImg img;
    img.Ping()->SetNumBeams(128);
    img.Ping()->m_rx2ID = 1;
    img.Alloc(300, 128);
    for (UINT i = 0; i < img.m_nImgBytes; ++i) {
        img.m_pImg[i] = (rng() % 100 < 85) ? static_cast<BYTE>(rng() % 8) : static_cast<BYTE>(rng());
        img.m_pImg2[i] = (rng() % 100 < 70) ? 0 : static_cast<BYTE>(rng());
    }
    img.m_nCompLevel = 0x108;  // only the low byte counts
    const Bytes rec = imgtest::Store(img, 0x0C);
    EXPECT_LT(rec.size(), img.m_nImgBytes * 3 / 2);  // two planes in less than one and a half
    CTgtImg back;
    imgtest::Load(back, rec);
    ASSERT_EQ(back.m_nImgBytes, img.m_nImgBytes);
    ASSERT_NE(back.m_pImg2, nullptr);
    for (UINT i = 0; i < img.m_nImgBytes; ++i) {
        const BYTE want = img.m_pImg[i] < 8 ? 0 : img.m_pImg[i];
        const BYTE want2 = img.m_pImg2[i] < 8 ? 0 : img.m_pImg2[i];
        ASSERT_EQ(back.m_pImg[i], want) << i;
        ASSERT_EQ(back.m_pImg2[i], want2) << i;
    }
    EXPECT_GE(CTgtImg::s_compressSize, img.m_nImgBytes);
}

TEST(ImageRecord, SpanOverridesThePingsGate)
{
    auto img = Small(0);
    img->Ping()->m_modFreq = 40000;
    img->Ping()->m_sosXd = 1480.0f;
    img->Ping()->m_startRngM = 99.0f;
    const Bytes rec = imgtest::Store(*img, 0);
    CTgtImg back;
    imgtest::Load(back, rec);
    EXPECT_EQ(back.Ping()->m_startRngL, 100);
    EXPECT_EQ(back.Ping()->m_endRngL, 102);
    EXPECT_EQ(back.Ping()->m_startRngM, static_cast<float>(100 * 0.5 * 1480.0 / 40000));
    EXPECT_EQ(back.Ping()->m_endRngM, static_cast<float>(102 * 0.5 * 1480.0 / 40000));
}

TEST(ImageRecord, MoreBearingsThanTheTableHolds)
{
    // Decision: the table takes the bearings it has room for, the rest are
    // stepped over, and the image is sized by the record.
    CTgtImg narrow;
    // Hand-made: the ping says 2 beams, the image 3 bearings.
    auto two = Small(0);
    two->Ping()->SetNumBeams(2);
    two->Ping()->m_pBrgTbl[0] = -0.25;
    two->Ping()->m_pBrgTbl[1] = 0.25;
    const Bytes head = imgtest::Record([&](CArchive& ar) { two->m_tgtRec.Serialize(ar); });
    Golden g;
    g.Raw(head.data(), head.size());
    g << 0x04u << BYTE(1) << 2u << 0u << 3u << 100u << 102u << 0 << 3u << -1.0 << 1.0 << 9.0;
    g << 3u;
    g.Fill(6, 7);
    g << 0u;
    EXPECT_EQ(imgtest::Load(narrow, g.bytes()), 0u);
    EXPECT_EQ(narrow.Ping()->m_pBrgTbl[0], -1.0);
    EXPECT_EQ(narrow.Ping()->m_pBrgTbl[1], 1.0);
    EXPECT_EQ(narrow.m_nBrgs, 3u);
    EXPECT_EQ(narrow.m_pImg[5], 7);
}

// ---- Damaged records ----

TEST(ImageRecordDamage, EveryTruncationRaisesEndOfFile)
{
    auto img = Small(2);
    img->m_bnds.AddTail(new CBnd);
    for (UINT flags : {0x67u, 0x5Fu}) {
        const Bytes rec = imgtest::Store(*img, flags);
        for (size_t cut = 0; cut < rec.size(); ++cut) {
            CTgtImg back;
            const Bytes part(rec.begin(), rec.begin() + static_cast<long>(cut));
            try {
                imgtest::Load(back, part);
                ADD_FAILURE() << "no exception at cut " << cut << " of " << rec.size();
            } catch (const CArchiveException& e) {
                ASSERT_EQ(e.m_cause, CArchiveException::endOfFile) << cut;
            }
        }
    }
}

namespace {

// The record of Small(0) with flags, with one u32 of its own part replaced;
// loading it must raise end of file before the image grows.
void ExpectRefused(UINT flags, size_t ownOffset, UINT value, const char* what)
{
    auto img = Small(0);
    Bytes rec = imgtest::Store(*img, flags);
    const size_t head = rec.size() - imgtest::OwnPart(*img, flags).size();
    std::memcpy(rec.data() + head + ownOffset, &value, 4);
    CTgtImg back;
    try {
        imgtest::Load(back, rec);
        ADD_FAILURE() << what << ": no exception";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::endOfFile) << what;
    }
    EXPECT_LT(size_t(back.m_nImgBytes) + back.m_nQIBytes + back.m_nPABytes, rec.size()) << what;
}

}  // namespace

TEST(ImageRecordDamage, AnnouncedBlocksLargerThanTheFileAreRefused)
{
    const size_t kLines = 5, kBrgs = 29, kAfterTable = 33 + 24;
    ExpectRefused(0x01, kLines, 0x40000000u, "lines of the raw plane");
    ExpectRefused(0x02, kLines, 0x40000000u, "lines of phase and amplitude");
    ExpectRefused(0x01, kBrgs, 0x10000000u, "bearing table");
    ExpectRefused(0x40, kBrgs, 40u, "vectors");  // the table fits, the vectors don't
    ExpectRefused(0x01, kAfterTable, 0x7FFFFFFFu, "raw width");
    ExpectRefused(0x02, kAfterTable, 0x7FFFFFFFu, "phase and amplitude width");
    ExpectRefused(0x04, kAfterTable, 0x7FFFFFFFu, "intensity bearings");
    ExpectRefused(0x0C, kAfterTable, 0x7FFFFFFFu, "compressed image bearings");
    ExpectRefused(0x0C, kAfterTable + 4, 0x7FFFFFFFu, "compressed stream size");
    ExpectRefused(0x04, kLines, 0x10000000u, "lines of the intensity plane");
    ExpectRefused(0x00, kAfterTable, 0x7FFFFFFFu, "boundary count");
}

TEST(ImageRecordDamage, PlaneWithoutBytesBehindIt)
{
    // A record without intensity block sizes the plane when the file could
    // back it, and leaves it out when it couldn't (a damaged line count).
    auto img = Small(0);
    Bytes rec = imgtest::Store(*img, 0);
    const size_t head = rec.size() - 61;
    CTgtImg back;
    imgtest::Load(back, rec);
    EXPECT_EQ(back.m_nImgBytes, 6u);  // a plane of 6 bytes: the 28 bytes still to come could back it
    const UINT nRngs = 0x40000000;
    std::memcpy(rec.data() + head + 5, &nRngs, 4);
    CTgtImg huge;
    imgtest::Load(huge, rec);
    EXPECT_EQ(huge.m_nRngs, nRngs);
    EXPECT_EQ(huge.m_nBrgs, 3u);
    EXPECT_EQ(huge.m_pImg, nullptr);
    EXPECT_EQ(huge.m_nImgBytes, 0u);
    EXPECT_EQ(huge.m_vStart.size(), 3u);
}
