// CTgtImg: sizing of the sample buffers and the four ways of copying.
//
// Buffers are ZUtil blocks (the zoom ones C heap blocks from calloc, which is
// the same heap). A buffer whose byte size doesn't change is reused as it
// is, so that a stream of like pings runs without touching the heap.
#include "image/CTgtImg.h"

#include "core/platform/ZUtil.h"
#include "ping/CPing.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// The one allocation failure the image reports before it ends the process.
[[noreturn]] void ByeBye()
{
    std::fputs("Bye Bye!\n", stderr);
    std::exit(1);
}

// Planes start on a cache line, so that the vector kernels' 64-byte loads and
// stores of a line's samples never straddle two cache lines (a straddling
// access costs two). The block is still a C heap block, released with free().
constexpr size_t kPlaneAlign = 64;

// p resized to nBytes, keeping what both sizes hold, unless it already has
// that size (nOld); the heap's refusal ends the process.
template <class T>
void Resize(T*& p, size_t nOld, size_t nBytes)
{
    if (p && nOld == nBytes) return;
    if (nBytes > 0xFFFFFFFFu) ByeBye();
    void* q = nullptr;
    if (posix_memalign(&q, kPlaneAlign, std::max<size_t>(nBytes, 1)) != 0 || !q) ByeBye();
    if (p) std::memcpy(q, p, std::min(nOld, nBytes));
    ZUtil::FreeIt(p);
    p = static_cast<T*>(q);
}

template <class T>
void Release(T*& p)
{
    ZUtil::FreeIt(p);
    p = nullptr;
}

// count zeroed elements of n bytes each from calloc; null for 0. The zoom
// buffers end the process quietly when the heap refuses them.
template <class T>
T* ZeroedBlock(size_t count, size_t n)
{
    if (count == 0 || n == 0) return nullptr;
    void* p = std::calloc(count, n);
    if (!p) std::exit(0);
    return static_cast<T*>(p);
}

// Copies what both buffers hold.
void CopyBytes(void* pDst, const void* pSrc, size_t nDst, size_t nSrc)
{
    if (pDst && pSrc) std::memcpy(pDst, pSrc, std::min(nDst, nSrc));
}

// The lines a copy sizes a block of `width` bytes a line by: the source's
// line count, unless the source's block holds less than that shape (a block
// a loader left as it was while the record moved the line count); then the
// lines the source's block holds, so that a copy never allocates more than
// its original holds. The copy's m_nRngs is set to the source's afterwards.
unsigned CopyLines(const CTgtImg& src, UINT srcBytes, UINT width)
{
    if (width == 0 || ULONGLONG(src.m_nRngs) * width <= srcBytes) return src.m_nRngs;
    return srcBytes / width;
}

// dst sized like src. A source whose plane a loader left out (its record
// could not back one) is copied as it is, lines and bearings without a
// plane; one whose plane is smaller than its shape (a record of no bearings
// moves the line count and pixel size and leaves the plane) gets the lines
// that plane holds. A copy must not allocate what the original does not hold.
void AllocLike(CTgtImg& dst, const CTgtImg& src)
{
    const ULONGLONG line = ULONGLONG(src.m_nPixBytes) * src.m_nBrgs;
    unsigned lines = src.m_pImg ? src.m_nRngs : 0;
    if (line != 0 && ULONGLONG(lines) * line > src.m_nImgBytes) lines = static_cast<unsigned>(src.m_nImgBytes / line);
    dst.Alloc(lines, src.m_nBrgs);
    dst.m_nRngs = src.m_nRngs;
}

}  // namespace

void CTgtImg::Alloc(unsigned int nRngs, unsigned int nBrgs)
{
    const bool bRx2 = Ping()->m_rx2ID != 0;
    const size_t nOld = m_nImgBytes;
    const size_t nBytes = static_cast<size_t>(m_nPixBytes) * nRngs * nBrgs;
    // No plane (a 0 in the shape, m_nPixBytes included) holds no block: a
    // pointer to nothing would pass for a plane.
    if (nBytes != 0) {
        const bool bFresh = !m_pImg || nBytes != nOld;
        Resize(m_pImg, nOld, nBytes);
        m_nImgBytes = static_cast<UINT>(nBytes);
        // The picture survives a re-size to the same shape; a new or moved
        // block has no picture to keep.
        if (bFresh || nRngs != m_nRngs || nBrgs != m_nBrgs) std::memset(m_pImg, 0, nBytes);
        if (bRx2) {
            Resize(m_pImg2, nOld, nBytes);
            std::memset(m_pImg2, 0, nBytes);
        } else {
            Release(m_pImg2);
        }
    } else {
        Release(m_pImg);
        Release(m_pImg2);
        m_nImgBytes = 0;
    }
    if (nBrgs != 0) {
        m_vStart.resize(nBrgs);
        m_vEnd.resize(nBrgs);
        m_vDir.resize(nBrgs);
        const size_t nOldWords = m_pBrgBnd ? m_nBrgs : 0;
        Resize(m_pBrgBnd, nOldWords * 4, static_cast<size_t>(nBrgs) * 4);
        // Old words are kept; words that didn't exist get a defined value.
        if (nBrgs > nOldWords) std::memset(m_pBrgBnd + nOldWords, 0, (nBrgs - nOldWords) * 4);
    } else if (m_nBrgs != 0) {
        m_vStart.clear();
        m_vEnd.clear();
        m_vDir.clear();
        Release(m_pBrgBnd);
    }
    m_nBrgs = nBrgs;
    m_nRngs = nRngs;
    m_bNewSize = 1;
}

void CTgtImg::AllocQI(unsigned int nRngs, unsigned int nWidth)
{
    if (nRngs != 0 && nWidth != 0) {
        const size_t nBytes = static_cast<size_t>(nRngs) * nWidth;
        Resize(m_pQI, m_nQIBytes, nBytes);
        std::memset(m_pQI, 0, nBytes);
        if (Ping()->m_rx2ID != 0) {
            Resize(m_pQI2, m_nQIBytes, nBytes);
            std::memset(m_pQI2, 0, nBytes);
        } else {
            Release(m_pQI2);
        }
        m_nQIBytes = static_cast<UINT>(nBytes);
    } else if (m_nQIBytes != 0) {
        m_nQIBytes = 0;
        Release(m_pQI);
        Release(m_pQI2);
    }
    m_nQIWidth = nWidth;
    m_nRngs = nRngs;
}

void CTgtImg::AllocPA(unsigned int nRngs, unsigned int nWidth)
{
    if (nRngs != 0 && nWidth != 0) {
        const size_t nBytes = static_cast<size_t>(nRngs) * nWidth;
        Resize(m_pAmp, m_nPABytes, nBytes);
        Resize(m_pPhs, m_nPABytes, nBytes);
        std::memset(m_pAmp, 0, nBytes);
        std::memset(m_pPhs, 0, nBytes);
        if (Ping()->m_rx2ID != 0) {
            Resize(m_pAmp2, m_nPABytes, nBytes);
            Resize(m_pPhs2, m_nPABytes, nBytes);
            std::memset(m_pAmp2, 0, nBytes);
            std::memset(m_pPhs2, 0, nBytes);
        } else {
            Release(m_pAmp2);
            Release(m_pPhs2);
        }
        m_nPABytes = static_cast<UINT>(nBytes);
    } else if (m_nPABytes != 0) {
        m_nPABytes = 0;
        Release(m_pAmp);
        Release(m_pPhs);
        Release(m_pAmp2);
        Release(m_pPhs2);
    }
    m_nPAWidth = nWidth;
    m_nRngs = nRngs;
}

void CTgtImg::AllocLX(unsigned int nRngs, unsigned int nRecBytes)
{
    if (nRngs != 0 && nRecBytes != 0) {
        const size_t nBytes = static_cast<size_t>(nRngs) * nRecBytes;
        Resize(m_pLX, m_nLXBytes, nBytes);
        std::memset(m_pLX, 0, nBytes);
        m_nLXBytes = static_cast<UINT>(nBytes);
    } else if (m_nLXBytes != 0) {
        m_nLXBytes = 0;
        Release(m_pLX);
    }
    m_nRngs = nRngs;
}

void CTgtImg::AllocAZ(unsigned int nRngs, unsigned int nBrgs)
{
    const size_t nBytes = static_cast<size_t>(m_nPixBytes) * nRngs * nBrgs;
    if (nBytes != m_nAZBytes) {
        std::free(m_pAZ);
        m_pAZ = ZeroedBlock<BYTE>(nBytes, 1);
    }
    m_nAZBytes = static_cast<UINT>(nBytes);
    m_nAZRngs = nRngs;
    m_nAZBrgs = nBrgs;
}

bool CTgtImg::AllocAZLX(unsigned int nRngs, unsigned int nRecWords)
{
    const size_t nCount = static_cast<size_t>(nRngs) * nRecWords;
    if (nCount != m_nAZLXCount) {
        std::free(m_pAZLX);
        m_pAZLX = ZeroedBlock<UINT>(nCount, 4);
    }
    m_nAZLXCount = static_cast<UINT>(nCount);
    return true;
}

void CTgtImg::SetImgSize(unsigned int nHeight)
{
    if (nHeight != 0 && m_nBrgs != 0 && (nHeight != m_nImgSize || m_bNewSize)) {
        const size_t nPixels = static_cast<size_t>(m_nBrgs) * nHeight;
        Resize(m_pDsp, m_nDspPixels * sizeof(CRgb), nPixels * sizeof(CRgb));
        m_nDspPixels = nPixels;
        m_nImgSize = nHeight;
        std::memset(static_cast<void*>(m_pDsp), 0, nPixels * sizeof(CRgb));
        m_bNewSize = 0;
    }
    if (nHeight == 0 && m_pDsp) {
        Release(m_pDsp);
        m_nDspPixels = 0;
        m_nImgSize = 0;
    }
    const size_t nAZPixels = static_cast<size_t>(nHeight / 2) * m_nAZBrgs;
    const bool bSameZoom = m_nAZBrgs == m_nAZDspBrgs && m_nAZRngs == m_nAZDspRngs;
    if (nHeight == 0) {
        std::free(m_pAZDsp);
        m_pAZDsp = nullptr;
        m_nAZDspPixels = 0;
    } else if (!(bSameZoom && m_pAZDsp && m_nAZDspPixels == nAZPixels)) {
        std::free(m_pAZDsp);
        m_pAZDsp = ZeroedBlock<CRgb>(nAZPixels, sizeof(CRgb));
        m_nAZDspPixels = m_pAZDsp ? nAZPixels : 0;
    }
    m_nAZDspBrgs = m_nAZBrgs;
    m_nAZDspRngs = m_nAZRngs;
}

void CTgtImg::ClearData()
{
    if (m_pImg) std::memset(m_pImg, 0, m_nImgBytes);
}

// ---- Copying ----

// What the target was before a copy replaced its ping and header: the shape
// tests of the copies compare with these.
struct CTgtImg::Shape {
    UINT nRngs, nBrgs, nQIWidth, nPAWidth, nImgBytes, nQIBytes, nPABytes;
    short nRx2;
};

CTgtImg::Shape CTgtImg::CopyHeader(CTgtImg const& src)
{
    const Shape old{m_nRngs, m_nBrgs, m_nQIWidth, m_nPAWidth, m_nImgBytes, m_nQIBytes, m_nPABytes,
                    m_tgtRec.m_ping.m_rx2ID};
    m_tgtRec = src.m_tgtRec;
    m_bTexDirty = 1;
    m_nStartRng = src.m_nStartRng;
    m_nEndRng = src.m_nEndRng;
    m_nStartBrg = src.m_nStartBrg;
    m_nEndBrg = src.m_nEndBrg;
    m_nPixBytes = src.m_nPixBytes;
    m_nState = src.m_nState;
    return old;
}

// A shape differs when its lines, width or second receiver do. Byte counts
// are compared too: a buffer that other sizing calls have left at another
// size than its lines and width say is re-sized rather than overrun.
bool CTgtImg::QIShapeDiffers(const Shape& old, CTgtImg const& src) const
{
    return old.nRngs != src.m_nRngs || old.nQIWidth != src.m_nQIWidth || old.nRx2 != src.m_tgtRec.m_ping.m_rx2ID ||
           m_nQIBytes != src.m_nQIBytes;
}

bool CTgtImg::PAShapeDiffers(const Shape& old, CTgtImg const& src) const
{
    return old.nRngs != src.m_nRngs || old.nPAWidth != src.m_nPAWidth || old.nRx2 != src.m_tgtRec.m_ping.m_rx2ID ||
           m_nPABytes != src.m_nPABytes;
}

bool CTgtImg::ImgShapeDiffers(const Shape& old, CTgtImg const& src) const
{
    return old.nRngs != src.m_nRngs || old.nBrgs != src.m_nBrgs || old.nRx2 != src.m_tgtRec.m_ping.m_rx2ID ||
           m_nImgBytes != src.m_nImgBytes;
}

void CTgtImg::CopyQI(CTgtImg const& src)
{
    CopyBytes(m_pQI, src.m_pQI, m_nQIBytes, src.m_nQIBytes);
    if (m_pQI2) CopyBytes(m_pQI2, src.m_pQI2, m_nQIBytes, src.m_nQIBytes);
}

void CTgtImg::CopyPA(CTgtImg const& src)
{
    CopyBytes(m_pPhs, src.m_pPhs, m_nPABytes, src.m_nPABytes);
    CopyBytes(m_pAmp, src.m_pAmp, m_nPABytes, src.m_nPABytes);
    if (m_pPhs2) CopyBytes(m_pPhs2, src.m_pPhs2, m_nPABytes, src.m_nPABytes);
    if (m_pAmp2) CopyBytes(m_pAmp2, src.m_pAmp2, m_nPABytes, src.m_nPABytes);
}

void CTgtImg::CopyImg(CTgtImg const& src)
{
    CopyBytes(m_pImg, src.m_pImg, m_nImgBytes, src.m_nImgBytes);
    if (m_pImg2) CopyBytes(m_pImg2, src.m_pImg2, m_nImgBytes, src.m_nImgBytes);
}

void CTgtImg::CopyLX(const Shape& old, CTgtImg const& src)
{
    if (old.nRngs != src.m_nRngs || m_nLXBytes != src.m_nLXBytes)
        AllocLX(CopyLines(src, src.m_nLXBytes, 4), src.m_nLXBytes ? 4 : 0);
    if (m_nLXBytes == src.m_nLXBytes) CopyBytes(m_pLX, src.m_pLX, m_nLXBytes, src.m_nLXBytes);
}

void CTgtImg::CopyBrgBnd(CTgtImg const& src)
{
    CopyBytes(m_pBrgBnd, src.m_pBrgBnd, static_cast<size_t>(m_nBrgs) * 4, static_cast<size_t>(src.m_nBrgs) * 4);
}

void CTgtImg::CopyVectors(CTgtImg const& src)
{
    const auto copy = [this](std::vector<CV3>& dst, const std::vector<CV3>& from) {
        const size_t n = std::min({static_cast<size_t>(m_nBrgs), dst.size(), from.size()});
        std::copy_n(from.begin(), n, dst.begin());
    };
    copy(m_vStart, src.m_vStart);
    copy(m_vEnd, src.m_vEnd);
    copy(m_vDir, src.m_vDir);
}

void CTgtImg::CopyBnds(CTgtImg const& src)
{
    CZanPtr* cur = m_bnds.GetHeadPos();
    for (CZanPtr* pos = src.m_bnds.GetHeadPos(); pos;) {
        const CBnd* pSrc = src.m_bnds.GetNext(pos);
        if (cur) {
            *m_bnds.GetNext(cur) = *pSrc;
        } else {
            m_bnds.AddTail(new CBnd(*pSrc));
        }
    }
    while (cur) {
        CZanPtr* const next = cur->m_pNext;
        delete m_bnds.GetAt(cur);
        m_bnds.RemoveAt(cur);
        cur = next;
    }
}

void CTgtImg::CopyZoom(CTgtImg const& src, bool bFresh)
{
    m_nAZStartRng = src.m_nAZStartRng;
    m_nAZEndRng = src.m_nAZEndRng;
    m_nAZStartBrg = src.m_nAZStartBrg;
    m_nAZEndBrg = src.m_nAZEndBrg;
    if (bFresh || m_nAZRngs != src.m_nAZRngs) {
        AllocAZLX(src.m_pAZLX ? src.m_nAZLXCount : 0, 1);
        CopyBytes(m_pAZLX, src.m_pAZLX, static_cast<size_t>(m_nAZLXCount) * 4,
                  static_cast<size_t>(src.m_nAZLXCount) * 4);
    }
    if (src.m_nAZRngs == 0 || src.m_nAZBrgs == 0) return;
    if (m_nAZRngs != src.m_nAZRngs || m_nAZBrgs != src.m_nAZBrgs || m_nAZBytes != src.m_nAZBytes)
        AllocAZ(src.m_nAZRngs, src.m_nAZBrgs);
    CopyBytes(m_pAZ, src.m_pAZ, m_nAZBytes, src.m_nAZBytes);
}

CTgtImg::CTgtImg(CTgtImg& src) : CTgtImg()
{
    CopyHeader(src);
    AllocQI(CopyLines(src, src.m_nQIBytes, src.m_nQIWidth), src.m_nQIWidth);
    CopyQI(src);
    AllocPA(CopyLines(src, src.m_nPABytes, src.m_nPAWidth), src.m_nPAWidth);
    CopyPA(src);
    AllocLX(CopyLines(src, src.m_nLXBytes, 4), src.m_pLX ? 4 : 0);
    CopyBytes(m_pLX, src.m_pLX, m_nLXBytes, src.m_nLXBytes);
    AllocLike(*this, src);
    CopyImg(src);
    CopyVectors(src);
    if (m_pBrgBnd) std::memset(m_pBrgBnd, 0, static_cast<size_t>(m_nBrgs) * 4);
    m_nBndLevel = src.m_nBndLevel;
    CopyBnds(src);
    CopyZoom(src, true);
    m_nRngs = src.m_nRngs;
}

CTgtImg& CTgtImg::operator=(CTgtImg const& src)
{
    if (&src == this) return *this;
    const Shape old = CopyHeader(src);
    if (QIShapeDiffers(old, src)) AllocQI(CopyLines(src, src.m_nQIBytes, src.m_nQIWidth), src.m_nQIWidth);
    if (m_nQIBytes != 0) CopyQI(src);
    if (PAShapeDiffers(old, src)) AllocPA(CopyLines(src, src.m_nPABytes, src.m_nPAWidth), src.m_nPAWidth);
    if (m_nPABytes != 0) CopyPA(src);
    CopyLX(old, src);
    if (ImgShapeDiffers(old, src)) AllocLike(*this, src);
    if (m_nImgBytes != 0) {
        CopyImg(src);
        CopyBrgBnd(src);
        m_nBndLevel = src.m_nBndLevel;
    }
    CopyVectors(src);
    CopyBnds(src);
    CopyZoom(src, false);
    m_nRngs = src.m_nRngs;
    return *this;
}

void CTgtImg::CopyPreserve(CTgtImg const& src)
{
    if (&src == this) return;
    const Shape old = CopyHeader(src);
    if (src.m_nRngs != 0 && src.m_nQIWidth != 0) {
        if (QIShapeDiffers(old, src)) AllocQI(CopyLines(src, src.m_nQIBytes, src.m_nQIWidth), src.m_nQIWidth);
        if (m_nQIBytes != 0) CopyQI(src);
    }
    if (src.m_nRngs != 0 && src.m_nPAWidth != 0) {
        if (PAShapeDiffers(old, src)) AllocPA(CopyLines(src, src.m_nPABytes, src.m_nPAWidth), src.m_nPAWidth);
        if (m_nPABytes != 0) CopyPA(src);
    }
    if (src.m_nRngs != 0 && src.m_nLXBytes != 0) CopyLX(old, src);
    if (src.m_nRngs != 0 && src.m_nBrgs != 0) {
        if (ImgShapeDiffers(old, src)) AllocLike(*this, src);
        if (m_nImgBytes != 0) {
            CopyImg(src);
            CopyBrgBnd(src);
            m_nBndLevel = src.m_nBndLevel;
        }
    }
    CopyVectors(src);
    CopyBnds(src);
    CopyZoom(src, false);
    // Any block taken over took the source's lines (CopyLines may have
    // sized it by fewer).
    if (src.m_nRngs != 0 && (src.m_nQIWidth != 0 || src.m_nPAWidth != 0 || src.m_nLXBytes != 0 || src.m_nBrgs != 0))
        m_nRngs = src.m_nRngs;
}

void CTgtImg::Set(CTgtImg& src)
{
    if (&src == this) return;
    const Shape old = CopyHeader(src);
    if (QIShapeDiffers(old, src)) AllocQI(CopyLines(src, src.m_nQIBytes, src.m_nQIWidth), src.m_nQIWidth);
    if (PAShapeDiffers(old, src)) AllocPA(CopyLines(src, src.m_nPABytes, src.m_nPAWidth), src.m_nPAWidth);
    CopyLX(old, src);
    if (ImgShapeDiffers(old, src)) AllocLike(*this, src);
    m_nBndLevel = src.m_nBndLevel;
    CopyVectors(src);
    CopyBrgBnd(src);
    CopyZoom(src, false);
    m_nRngs = src.m_nRngs;
}
