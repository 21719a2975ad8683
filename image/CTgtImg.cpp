// CTgtImg: construction, destruction, the pool and the state word.
#include "image/CTgtImg.h"

#include "core/platform/ZUtil.h"
#include "image/CImgRle.h"
#include "ping/CPing.h"
#include "targets/CTgt.h"

#include <cstring>
#include <mutex>
#include <new>

namespace {

constexpr size_t kPoolLimit = 20;

CStrInt ResRow(const char16_t* label, int value)
{
    CStrInt row;
    row.m_str = CString(label);
    row.m_n = value;
    return row;
}

}  // namespace

std::list<CTgtImg*> CTgtImg::s_imgPool;
CMutex CTgtImg::s_imgLock;
BYTE* CTgtImg::s_pCompress = nullptr;
UINT CTgtImg::s_compressSize = 0;
CStrInt CTgtImg::s_resTypes[8] = {
    ResRow(u"32. Poor", 32),        ResRow(u"64. V. Low", 64),        ResRow(u"128. Low", 128),
    ResRow(u"256. Normal", 256),    ResRow(u"512. High", 512),        ResRow(u"1024. V. High", 1024),
    ResRow(u"2048. Extreme", 2048), ResRow(u"4096. Extreme", 4096),
};
void (*CTgtImg::s_pfnDeleteTexture)(UINT) = nullptr;
std::list<CTgtImg*> CTgtImg::s_spareNodes;

CTgtImg::CTgtImg()
{
    InitVars();
    // Set by every display image build before they are read; given a value
    // here only so that a new image holds no indeterminate field.
    m_nDspSkip = 0;
    m_nDspRows = 0;
}

void CTgtImg::InitVars()
{
    m_pQI = m_pPhs = m_pAmp = m_pImg = m_pLX = nullptr;
    m_pQI2 = m_pPhs2 = m_pAmp2 = m_pImg2 = nullptr;
    m_pDsp = nullptr;
    m_nDspPixels = 0;
    m_nAZDspPixels = 0;
    m_vStart.clear();
    m_vEnd.clear();
    m_vDir.clear();
    m_fRoll = 0.0f;
    m_nTexId = 0;
    m_nBrgs = m_nRngs = m_nQIWidth = m_nPAWidth = m_nImgSize = 0;
    m_nStartRng = m_nEndRng = m_nStartBrg = m_nEndBrg = 0;
    m_bNewSize = 0;
    m_nImgBytes = m_nQIBytes = m_nPABytes = m_nLXBytes = 0;
    m_nState = 0;
    m_pBrgBnd = nullptr;
    m_nRollTgt1 = m_nRollTgt2 = m_nRollFlags = 0;
    m_nPoolRef = 0;
    m_pAZ = nullptr;
    m_pAZLX = nullptr;
    m_pAZDsp = nullptr;
    m_nAZSkip = m_nAZRows = m_nAZTexId = 0;
    m_nAZStartRng = m_nAZEndRng = m_nAZStartBrg = m_nAZEndBrg = 0;
    m_nAZBrgs = m_nAZRngs = m_nAZDspBrgs = m_nAZDspRngs = m_nAZLXCount = m_nAZBytes = 0;
    m_nPixBytes = 1;
    m_nCompLevel = 8;
    m_bTexDirty = 1;
    m_nBndLevel = 20;
}

CTgtImg::~CTgtImg()
{
    ZUtil::FreeIt(m_pImg);
    ZUtil::FreeIt(m_pImg2);
    ZUtil::FreeIt(m_pBrgBnd);
    m_pBrgBnd = nullptr;  // ClearBnds below would zero it
    ZUtil::FreeIt(m_pQI);
    ZUtil::FreeIt(m_pQI2);
    ZUtil::FreeIt(m_pPhs);
    ZUtil::FreeIt(m_pAmp);
    ZUtil::FreeIt(m_pPhs2);
    ZUtil::FreeIt(m_pAmp2);
    ZUtil::FreeIt(m_pLX);
    ClearBnds();
    ZUtil::FreeIt(m_pDsp);
    ZUtil::FreeIt(m_pAZ);
    ZUtil::FreeIt(m_pAZLX);
    ZUtil::FreeIt(m_pAZDsp);
    if (m_nTexId != 0 && s_pfnDeleteTexture) s_pfnDeleteTexture(m_nTexId);
}

CPing* CTgtImg::Ping()
{
    return &m_tgtRec.m_ping;
}

CTgtImg* CTgtImg::GetImg()
{
    CTgtImg* pImg = nullptr;
    {
        std::lock_guard<CMutex> lock(s_imgLock);
        if (!s_imgPool.empty()) {
            pImg = s_imgPool.front();
            --pImg->m_nPoolRef;
            // The node is kept for the next DelImg rather than freed.
            s_spareNodes.splice(s_spareNodes.end(), s_imgPool, s_imgPool.begin());
        }
    }
    if (pImg) return pImg;
    try {
        return new CTgtImg;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void CTgtImg::DelImg(CTgtImg*& pImg)
{
    if (!pImg) return;
    std::lock_guard<CMutex> lock(s_imgLock);
    if (s_imgPool.size() < kPoolLimit) {
        pImg->m_tgtRec.ClearTgts();
        CPing& ping = pImg->m_tgtRec.m_ping;
        if (ping.m_numBeams > 0) {
            const size_t nBytes = static_cast<size_t>(ping.m_numBeams) * 4;
            if (ping.m_pBeamA) std::memset(ping.m_pBeamA, 0, nBytes);
            if (ping.m_pBeamB) std::memset(ping.m_pBeamB, 0, nBytes);
        }
        ++pImg->m_nPoolRef;
        if (s_spareNodes.empty()) {
            s_imgPool.push_back(pImg);
        } else {
            s_spareNodes.front() = pImg;
            s_imgPool.splice(s_imgPool.end(), s_spareNodes, s_spareNodes.begin());
        }
    } else {
        delete pImg;
    }
    pImg = nullptr;
}

void CTgtImg::CleanupStatic()
{
    for (CTgtImg* pImg : s_imgPool) delete pImg;
    s_imgPool.clear();
    s_spareNodes.clear();
    ZUtil::FreeIt(s_pCompress);
    s_pCompress = nullptr;
    s_compressSize = 0;
}

void CTgtImg::ClearBnds()
{
    for (CZanPtr* pos = m_bnds.GetHeadPos(); pos;) delete m_bnds.GetNext(pos);
    m_bnds.RemoveAll();
    if (m_pBrgBnd) std::memset(m_pBrgBnd, 0, static_cast<size_t>(m_nBrgs) * 4);
}

void CTgtImg::UpdateTargetsWithRollCompensationData()
{
    unsigned int index = 0;
    for (CZanPtr* pos = m_tgtRec.GetHeadPos(); pos; ++index) {
        CTgt* pTgt = m_tgtRec.GetNext(pos);
        pTgt->m_roll = m_fRoll;
        if (index == m_nRollTgt1)
            pTgt->m_rollMark = 1;
        else if (index == m_nRollTgt2)
            pTgt->m_rollMark = 2;
    }
}

unsigned int CTgtImg::GetState(int qi, int pa, int img, int rb, int tgt)
{
    return (qi ? 0x01u : 0u) | (pa ? 0x02u : 0u) | (img ? 0x04u : 0u) | (rb ? 0x10u : 0u) | (tgt ? 0x20u : 0u);
}

void CTgtImg::SetState(int qi, int pa, int img, int rb, int tgt)
{
    m_nState = GetState(qi, pa, img, rb, tgt);
}

void CTgtImg::GetFlags(int& qi, int& pa, int& img, int& rb, int& tgt)
{
    GetFlags(m_nState, qi, pa, img, rb, tgt);
}

void CTgtImg::GetFlags(unsigned int state, int& qi, int& pa, int& img, int& rb, int& tgt)
{
    qi = (state & 0x01) ? 1 : 0;
    pa = (state & 0x02) ? 1 : 0;
    img = (state & 0x04) ? 1 : 0;
    rb = (state & 0x10) ? 1 : 0;
    tgt = (state & 0x20) ? 1 : 0;
}

unsigned int CTgtImg::Compress(unsigned char* pSrc, unsigned char* pDst, unsigned char nLevel)
{
    return CImgRle::Encode(pSrc, pDst, m_nImgBytes, nLevel);
}

void CTgtImg::Uncompress(unsigned char* pDst, unsigned char* pSrc, unsigned int nSize)
{
    CImgRle::Decode(pDst, pSrc, nSize, m_nImgBytes);
}
