// Entries of the image store's loaders: the image record, the extended ping
// block, the image's zoom block and the compressed stream decoder.
#include "fuzz/FuzzTargets.h"
#include "fuzz/FuzzUtil.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace zanfuzz {

namespace {

constexpr UINT kComp = 0x08;

// Fills a buffer with a pattern that compresses partly.
void Pattern(BYTE* p, size_t n, unsigned seed)
{
    for (size_t i = 0; i < n; ++i) p[i] = static_cast<BYTE>((i * 7 + seed) % 23 < 9 ? 0 : (i * 31 + seed) & 0xFF);
}

// An image with every block, two receivers, targets and boundaries: what a
// recycled image holds before the next record is read into it.
void MakeRich(CTgtImg& img)
{
    CPing& ping = *img.Ping();
    ping.m_rx2ID = 7;
    ping.SetNumBeams(16);
    img.m_nPixBytes = 1;
    img.Alloc(32, 16);
    img.AllocQI(32, 8);
    img.AllocPA(32, 4);
    img.AllocLX(32, 4);
    img.AllocAZ(8, 4);
    Pattern(img.m_pImg, img.m_nImgBytes, 1);
    Pattern(img.m_pImg2, img.m_nImgBytes, 2);
    Pattern(img.m_pQI, img.m_nQIBytes, 3);
    Pattern(img.m_pLX, img.m_nLXBytes, 4);
    for (int i = 0; i < 3; ++i) {
        CTgt* t = new CTgt;
        t->m_rngK = 100u * static_cast<UINT>(i);
        img.m_tgtRec.AddTail(t);
    }
    for (int i = 0; i < 2; ++i) {
        CBnd* b = new CBnd;
        b->m_name = CString(u"bnd");
        b->SetNRngs(static_cast<unsigned>(3 + i));
        img.m_bnds.AddTail(b);
    }
    img.m_nState = 0x7F;
}

// Properties of any image, loaded or not: a byte count is 0 exactly when its
// buffer is absent, and per-bearing data has one entry per bearing.
void CheckShape(const CTgtImg& img, const char* what)
{
    const auto pair = [&](const void* p, UINT n, const char* which) {
        if ((p != nullptr) != (n != 0)) Fail(std::string(what) + ": " + which + " present without bytes or the reverse");
    };
    pair(img.m_pImg, img.m_nImgBytes, "m_pImg");
    pair(img.m_pQI, img.m_nQIBytes, "m_pQI");
    pair(img.m_pPhs, img.m_nPABytes, "m_pPhs");
    pair(img.m_pAmp, img.m_nPABytes, "m_pAmp");
    pair(img.m_pLX, img.m_nLXBytes, "m_pLX");
    pair(img.m_pAZ, img.m_nAZBytes, "m_pAZ");
    if (img.m_pImg2 && img.m_nImgBytes == 0) Fail(std::string(what) + ": m_pImg2 without bytes");
    if (img.m_pQI2 && img.m_nQIBytes == 0) Fail(std::string(what) + ": m_pQI2 without bytes");
    if (img.m_vStart.size() != img.m_nBrgs || img.m_vEnd.size() != img.m_nBrgs || img.m_vDir.size() != img.m_nBrgs)
        Fail(std::string(what) + ": the vectors do not have one entry per bearing");
    if ((img.m_pBrgBnd != nullptr) != (img.m_nBrgs != 0)) Fail(std::string(what) + ": m_pBrgBnd unlike m_nBrgs");
    for (CZanPtr* pos = img.m_bnds.GetHeadPos(); pos;) {
        const CBnd* b = img.m_bnds.GetNext(pos);
        if ((b->m_pRngs != nullptr) != (b->m_nRngs != 0)) Fail(std::string(what) + ": a boundary's block unlike its count");
    }
}

template <class T>
T At(const Bytes& b, size_t off)
{
    T v{};
    if (off + sizeof v <= b.size()) std::memcpy(&v, b.data() + off, sizeof v);
    return v;
}

}  // namespace

// Byte 0: bit 0 reads into a recycled image (one that holds every block),
// bit 1 sets m_hasFtSet. The rest is a run of image records, read into the
// same image one after another.
void FuzzImg(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const BYTE mode = in.Byte();
    CTgtImg img;
    if (mode & 1) MakeRich(img);
    img.Ping()->m_hasFtSet = (mode >> 1) & 1;
    const size_t nHead = 105 + (img.Ping()->m_hasFtSet ? 100 : 0);
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { img.Serialize(ar, 0); },
        [&](const Bytes& rec) {
            CheckShape(img, "img");
            // The host's next steps: it stores the image, copies it, and
            // reads its own record back.
            const Bytes stored = Store([&](CArchive& ar) { img.Serialize(ar, img.m_nState); });
            CTgtImg copy(img);
            CheckShape(copy, "img copy");
            CTgtImg assigned;
            assigned = img;
            CheckShape(assigned, "img assigned");

            // Its own record reads back the same wherever the record is
            // consistent: the second receiver as the ping says, the bearing
            // table of the ping's size, and no lossy compression.
            const bool bRx2 = At<int>(rec, nHead + 25) != 0;
            const CPing& ping = *img.Ping();
            if (bRx2 != (ping.m_rx2ID != 0)) return;
            if (img.m_nBrgs != 0 && img.m_nBrgs != static_cast<UINT>(ping.m_numBeams)) return;
            if ((img.m_nState & kComp) && (img.m_nState & 0x04)) return;
            size_t left = 0;
            if (!Load(stored, [&](CArchive& ar) { copy.Serialize(ar, 0); }, &left) || left != 0)
                Fail("img: its own record does not load again");
            CheckShape(copy, "img reloaded");
            if (Store([&](CArchive& ar) { copy.Serialize(ar, copy.m_nState); }) != stored)
                Fail("img: a reloaded record stores other bytes");
        });
}

// Byte 0: bit 0 reads into an image with line records already, bit 1 stores
// with Zan::zanMode 1 (version 0x21). The rest is a run of blocks.
void FuzzImgPingEx(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const BYTE mode = in.Byte();
    CTgtImg img;
    if (mode & 1) MakeRich(img);
    const int zanMode = (mode & 2) ? 1 : 0;
    const auto store = [zanMode](CTgtImg& i, CArchive& ar) {
        const int old = Zan::zanMode;
        Zan::zanMode = zanMode;
        i.SerializePingEx(ar);
        Zan::zanMode = old;
    };
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { img.SerializePingEx(ar); },
        [&](const Bytes&) {
            CheckShape(img, "pingex");
            const Bytes stored = Store([&](CArchive& ar) { store(img, ar); });
            CheckStable(stored, [] { return std::make_unique<CTgtImg>(); },
                        [](CTgtImg& i, CArchive& ar) { i.SerializePingEx(ar); }, store, "pingex");
        });
}

// Byte 0: bits 0-1 give m_nPixBytes (0 to 3), bit 2 reads into a recycled
// image. The rest is a run of zoom blocks.
void FuzzImgZoom(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const BYTE mode = in.Byte();
    CTgtImg img;
    if (mode & 4) MakeRich(img);
    const BYTE nPix = mode & 3;
    img.m_nPixBytes = nPix;
    const auto rw = [](CTgtImg& i, CArchive& ar) { i.SerializeAcousticZoom(ar); };
    LoadEach(
        in.p, in.n, [&](CArchive& ar) { img.SerializeAcousticZoom(ar); },
        [&](const Bytes&) {
            CheckShape(img, "img_zoom");
            const Bytes stored = Store([&](CArchive& ar) { img.SerializeAcousticZoom(ar); });
            CheckStable(
                stored,
                [nPix] {
                    auto p = std::make_unique<CTgtImg>();
                    p->m_nPixBytes = nPix;
                    return p;
                },
                rw, rw, "img_zoom");
        });
}

namespace {

// The decoder, code by code, as its description reads.
void DecodeReference(BYTE* dst, const BYTE* src, size_t nSize, size_t n)
{
    if (nSize == 0) return;
    size_t p = 0, o = 0;
    while (o < n) {
        const BYTE b = src[p];
        if (b == 0 && p + 1 < nSize) {
            const BYTE run = src[p + 1];
            p += 2;
            for (BYTE k = 0; k < run && o < n; ++k) dst[o++] = 0;
        } else {
            ++p;
            dst[o++] = b == 1 ? 0 : b;
        }
        if (p >= nSize) break;
    }
}

// The encoder, sample by sample, as its description reads (n of 2 or more).
Bytes EncodeReference(const Bytes& src, BYTE level)
{
    Bytes out;
    unsigned pending = 0;
    const auto flush = [&] {
        while (pending != 0) {
            if (pending == 1) {
                out.push_back(1);
                pending = 0;
            } else {
                const unsigned piece = std::min(pending, 255u);
                out.push_back(0);
                out.push_back(static_cast<BYTE>(piece));
                pending -= piece;
            }
        }
    };
    for (BYTE b : src) {
        if (b < level) {
            ++pending;
        } else {
            flush();
            out.push_back(b);
        }
    }
    flush();
    if (out.size() + 2 <= src.size()) {
        out.push_back(2);
        out.push_back(2);
    } else {
        out[out.size() - 2] = 2;
        out[out.size() - 1] = 2;
    }
    return out;
}

}  // namespace

// Bytes 0-1: the image's sample count (u16), byte 2: the level. The rest is
// a stream for Uncompress, and also an image for Compress.
void FuzzUncompress(const uint8_t* data, size_t size)
{
    if (size < 3) return;
    const UINT n = data[0] | (data[1] << 8);
    const BYTE level = data[2];
    Bytes stream(data + 3, data + size);

    // The codec reads nothing of the image but its byte count.
    struct CCodec : CTgtImg {
        ~CCodec() override { m_nImgBytes = 0; }
    } img;
    img.m_nImgBytes = n;
    // The decoder against the reference, over a background that shows what
    // it leaves alone.
    Bytes want(n + 1, 0xA5), got(n + 1, 0xA5);
    DecodeReference(want.data(), stream.data(), stream.size(), n);
    img.Uncompress(got.data(), stream.data(), static_cast<UINT>(stream.size()));
    Check(got == want, "uncompress: the decoder differs from the reference");

    // The encoder against the reference: the same bytes as an image of
    // their own length.
    if (stream.size() < 2) return;
    img.m_nImgBytes = static_cast<UINT>(stream.size());
    Bytes packed(stream.size() + 1, 0xEE);
    const UINT m = img.Compress(stream.data(), packed.data(), level);
    Check(m <= stream.size() && packed[stream.size()] == 0xEE, "compress: the stream exceeds the image");
    packed.resize(m);
    Check(packed == EncodeReference(stream, level), "compress: the encoder differs from the reference");
}

}  // namespace zanfuzz
