// CTgtImg: the image record, the extended ping block and the zoom block.
//
// A loader never trusts a size it reads for an allocation: before it sizes a
// buffer for a block that the record announces, it asks the archive whether
// that many bytes are still there (CArchive::CheckAvailable, cause 3). A
// damaged recording therefore ends in the archive's exception rather than in
// an allocation of what the file cannot hold.
#include "image/CTgtImg.h"

#include "core/platform/CArchive.h"
#include "core/platform/Zan.h"
#include "core/platform/ZUtil.h"
#include "ping/CPing.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr UINT kRaw = 0x01, kPA = 0x02, kImg = 0x04, kComp = 0x08, kRB = 0x10, kTgt = 0x20, kVec = 0x40;

// n bytes of p, or zeros for what p doesn't have (nHave bytes): a buffer that
// is absent or shorter than the record says still gives a record of the
// announced size.
void WriteBlock(CArchive& ar, const void* p, size_t nHave, size_t n)
{
    static const BYTE zeros[4096] = {};
    const size_t nData = p ? std::min(nHave, n) : 0;
    if (nData) ar.Write(p, static_cast<UINT>(nData));
    for (size_t left = n - nData; left != 0;) {
        const size_t k = std::min(left, sizeof zeros);
        ar.Write(zeros, static_cast<UINT>(k));
        left -= k;
    }
}

// Steps over n bytes of a loading archive.
void Skip(CArchive& ar, ULONGLONG n)
{
    ar.CheckAvailable(n);
    BYTE scratch[4096];
    while (n != 0) {
        const UINT k = static_cast<UINT>(std::min<ULONGLONG>(n, sizeof scratch));
        if (ar.Read(scratch, k) != k) ar.Throw(CArchiveException::endOfFile);
        n -= k;
    }
}

// Reads n bytes into p; where p is absent (a second receiver's buffer that
// the ping didn't ask for) the bytes are stepped over. Bytes the file doesn't
// deliver leave the buffer as it was.
void ReadBlock(CArchive& ar, void* p, size_t n)
{
    if (n == 0) return;
    if (p)
        ar.Read(p, static_cast<UINT>(n));
    else
        Skip(ar, n);
}

// Fewest bytes of a compressed stream of n samples as the encoder writes it:
// a piece of 255 zeros is two bytes. A shorter stream is damaged.
ULONGLONG MinStream(ULONGLONG n)
{
    return 2 * (n / 255);
}

// Bytes that the intensity block of n samples a plane must at least hold
// after its u32 width: raw planes in full, compressed streams each with its
// u32 size.
ULONGLONG ImgBlockBytes(UINT nFlags, ULONGLONG n, bool bRx2)
{
    if (n == 0) return 0;
    const ULONGLONG one = (nFlags & kComp) ? 4 + MinStream(n) : n;
    return bRx2 ? 2 * one : one;
}

}  // namespace

void CTgtImg::Serialize(CArchive& ar, unsigned int nFlags)
{
    m_tgtRec.Serialize(ar);
    CPing& ping = m_tgtRec.m_ping;

    if (ar.IsStoring()) {
        const bool bRx2 = ping.m_rx2ID != 0;
        ar << nFlags << m_nPixBytes << m_nRngs << m_nStartBrg << m_nEndBrg << m_nStartRng << m_nEndRng
           << static_cast<int>(ping.m_rx2ID) << m_nBrgs;
        if (m_nBrgs != 0 && ping.m_numBeams > 0) {
            const size_t n = static_cast<size_t>(ping.m_numBeams) * 8;
            WriteBlock(ar, ping.m_pBrgTbl, n, n);
        }
        if ((nFlags & kVec) && m_nBrgs != 0) {
            const size_t n = static_cast<size_t>(m_nBrgs) * sizeof(CV3);
            WriteBlock(ar, m_vStart.data(), m_vStart.size() * sizeof(CV3), n);
            WriteBlock(ar, m_vEnd.data(), m_vEnd.size() * sizeof(CV3), n);
            WriteBlock(ar, m_vDir.data(), m_vDir.size() * sizeof(CV3), n);
        }
        if (nFlags & kTgt)
            m_tgtRec.SerializeTgt(ar);
        else if (nFlags & kRB)
            m_tgtRec.SerializeRB(ar);
        if (nFlags & kRaw) {
            ar << m_nQIWidth;
            if (m_nQIBytes != 0) {
                WriteBlock(ar, m_pQI, m_nQIBytes, m_nQIBytes);
                if (bRx2) WriteBlock(ar, m_pQI2, m_nQIBytes, m_nQIBytes);
            }
        }
        if (nFlags & kPA) {
            ar << m_nPAWidth;
            if (m_nPABytes != 0) {
                WriteBlock(ar, m_pPhs, m_nPABytes, m_nPABytes);
                WriteBlock(ar, m_pAmp, m_nPABytes, m_nPABytes);
                if (bRx2) {
                    WriteBlock(ar, m_pPhs2, m_nPABytes, m_nPABytes);
                    WriteBlock(ar, m_pAmp2, m_nPABytes, m_nPABytes);
                }
            }
        }
        if (nFlags & kImg) {
            ar << m_nBrgs;
            if (m_nImgBytes != 0 && !(nFlags & kComp)) {
                WriteBlock(ar, m_pImg, m_nImgBytes, m_nImgBytes);
                if (bRx2) WriteBlock(ar, m_pImg2, m_nImgBytes, m_nImgBytes);
            } else if (m_nImgBytes != 0) {
                if (!s_pCompress || s_compressSize < m_nImgBytes) {
                    s_pCompress = static_cast<BYTE*>(ZUtil::Realloc(s_pCompress, m_nImgBytes));
                    s_compressSize = m_nImgBytes;
                }
                const auto writeStream = [&](BYTE* pPlane) {
                    // A second plane that the ping didn't size goes out as an
                    // empty stream, which a loader reads as nothing.
                    const UINT nSize = pPlane ? Compress(pPlane, s_pCompress, static_cast<BYTE>(m_nCompLevel)) : 0;
                    ar << nSize;
                    ar.Write(s_pCompress, nSize);
                    return nSize;
                };
                const UINT nSize = writeStream(m_pImg);
                const double whole = m_nImgBytes / 1024.0;
                const double compressed = nSize / 1024.0;
                const double saved = (static_cast<double>(m_nImgBytes) - nSize) * 100.0 / m_nImgBytes;
                Zan::Status(6020 + m_tgtRec.m_sonarNo, 1, CString(u"Compression Ratio %02.0lf%% (%1.1lf of %1.1lfkB)"),
                            saved, compressed, whole);
                if (bRx2) writeStream(m_pImg2);
            }
        }
        ar << static_cast<UINT>(m_bnds.GetCount());
        for (CZanPtr* pos = m_bnds.GetHeadPos(); pos;) m_bnds.GetNext(pos)->Serialize(ar);
        return;
    }

    // Loading.
    m_bTexDirty = 1;
    UINT nState = 0, nRngs = 0, nBrgs = 0;
    int nRx2 = 0;
    ar >> nState;
    m_nState = nState;
    ar >> m_nPixBytes >> nRngs >> m_nStartBrg >> m_nEndBrg >> m_nStartRng >> m_nEndRng >> nRx2;
    const bool bRx2 = nRx2 != 0;
    // Twins are sized by the ping and read by the record's word; a check
    // covers the larger of the two, should they disagree.
    const bool bTwins = bRx2 || ping.m_rx2ID != 0;
    ping.m_startRngL = static_cast<int>(m_nStartRng);
    ping.m_endRngL = static_cast<int>(m_nEndRng);
    ping.m_startRngM = static_cast<float>(m_nStartRng * 0.5 * ping.m_sosXd / ping.m_modFreq);
    ping.m_endRngM = static_cast<float>(m_nEndRng * 0.5 * ping.m_sosXd / ping.m_modFreq);
    ar >> nBrgs;
    if (nBrgs != 0) {
        // What the rest of the record must hold for this shape: the bearing
        // table, the vectors, and the intensity block if it is announced.
        const ULONGLONG nB = nBrgs;
        ULONGLONG nNeed = 8 * nB;
        if (nState & kVec) nNeed += 3 * sizeof(CV3) * nB;
        if (nState & kImg) nNeed += 4 + ImgBlockBytes(nState, ULONGLONG(m_nPixBytes) * nRngs * nB, bTwins);
        ar.CheckAvailable(nNeed);
        // Without an intensity block the plane that Alloc sizes has no bytes
        // behind it in the record. It is sized as usual when that costs no
        // new memory or the file still holds as much (the common case in a
        // recording, where more records follow); otherwise it is left out,
        // so a damaged line count cannot make the loader allocate what the
        // file cannot back: the image then has its lines and bearings and no
        // plane (m_nImgBytes 0), which m_nState says it doesn't hold anyway.
        const ULONGLONG nPlane = ULONGLONG(m_nPixBytes) * nRngs * nB;
        const auto cost = [&](const BYTE* p) { return p && m_nImgBytes == nPlane ? 0 : nPlane; };
        const ULONGLONG nNew = cost(m_pImg) + (ping.m_rx2ID != 0 ? cost(m_pImg2) : 0);
        if (!(nState & kImg) && nNew > ar.GetRemaining()) {
            Alloc(0, nBrgs);
            m_nRngs = nRngs;
        } else {
            Alloc(nRngs, nBrgs);
        }
        // The table holds m_numBeams bearings; a record of more bearings
        // fills it and the rest is stepped over, one of fewer leaves the
        // table's tail as it was.
        const ULONGLONG nTbl = ping.m_pBrgTbl && ping.m_numBeams > 0 ? std::min<ULONGLONG>(nB, ping.m_numBeams) : 0;
        if (nTbl) ar.Read(ping.m_pBrgTbl, static_cast<UINT>(nTbl * 8));
        if (nB > nTbl) Skip(ar, (nB - nTbl) * 8);
        if (nState & kVec) {
            const size_t n = static_cast<size_t>(nB) * sizeof(CV3);
            ar.Read(m_vStart.data(), static_cast<UINT>(n));
            ar.Read(m_vEnd.data(), static_cast<UINT>(n));
            ar.Read(m_vDir.data(), static_cast<UINT>(n));
        }
    }
    if (nState & kTgt)
        m_tgtRec.SerializeTgt(ar);
    else if (nState & kRB)
        m_tgtRec.SerializeRB(ar);
    if (nState & kRaw) {
        UINT nWidth = 0;
        ar >> nWidth;
        ar.CheckAvailable(ULONGLONG(nRngs) * nWidth * (bTwins ? 2 : 1));
        AllocQI(nRngs, nWidth);
        if (m_nQIBytes != 0) {
            ReadBlock(ar, m_pQI, m_nQIBytes);
            if (bRx2) ReadBlock(ar, m_pQI2, m_nQIBytes);
        }
    }
    if (nState & kPA) {
        UINT nWidth = 0;
        ar >> nWidth;
        ar.CheckAvailable(ULONGLONG(nRngs) * nWidth * (bTwins ? 4 : 2));
        AllocPA(nRngs, nWidth);
        if (m_nPABytes != 0) {
            ReadBlock(ar, m_pPhs, m_nPABytes);
            ReadBlock(ar, m_pAmp, m_nPABytes);
            if (bRx2) {
                ReadBlock(ar, m_pPhs2, m_nPABytes);
                ReadBlock(ar, m_pAmp2, m_nPABytes);
            }
        }
    }
    if (nState & kImg) {
        UINT nImgBrgs = 0;
        ar >> nImgBrgs;
        ar.CheckAvailable(ImgBlockBytes(nState, ULONGLONG(m_nPixBytes) * nRngs * nImgBrgs, bTwins));
        // A writer repeats the record's bearing count here. More bearings
        // than the record's table described would get vectors and bound
        // words (some 80 bytes each) with nothing behind them when the plane
        // is empty: each must still be backed by a table entry's 8 bytes of
        // the file, so that a damaged count cannot allocate what the file
        // cannot hold.
        if (nImgBrgs > nBrgs) ar.CheckAvailable(8 * ULONGLONG(nImgBrgs - nBrgs));
        Alloc(nRngs, nImgBrgs);
        if (m_nImgBytes != 0 && !(nState & kComp)) {
            ReadBlock(ar, m_pImg, m_nImgBytes);
            if (bRx2) ReadBlock(ar, m_pImg2, m_nImgBytes);
        } else if (m_nImgBytes != 0) {
            const auto readStream = [&](BYTE* pPlane) {
                UINT nSize = 0;
                ar >> nSize;
                if (nSize == 0) return;
                ar.CheckAvailable(nSize);
                if (!s_pCompress || s_compressSize < nSize) {
                    s_pCompress = static_cast<BYTE*>(ZUtil::Realloc(s_pCompress, nSize));
                    s_compressSize = nSize;
                }
                const UINT nGot = ar.Read(s_pCompress, nSize);
                if (pPlane) Uncompress(pPlane, s_pCompress, nGot);
            };
            readStream(m_pImg);
            if (bRx2) readStream(m_pImg2);
        }
    }
    int nBnds = 0;
    ar >> nBnds;
    CZanPtr* cur = m_bnds.GetHeadPos();
    for (int k = 0; k < nBnds; ++k) {
        if (cur) {
            m_bnds.GetNext(cur)->Serialize(ar);
        } else {
            ar.CheckAvailable(13);  // the shortest boundary record: empty name and three words
            CBnd* pBnd = new CBnd;
            m_bnds.AddTail(pBnd);
            pBnd->Serialize(ar);
        }
    }
    while (cur) {
        CZanPtr* const next = cur->m_pNext;
        delete m_bnds.GetAt(cur);
        m_bnds.RemoveAt(cur);
        cur = next;
    }
}

void CTgtImg::SerializePingEx(CArchive& ar)
{
    CPing& ping = m_tgtRec.m_ping;
    if (ar.IsStoring()) {
        const bool bRoll = Zan::zanMode == 1;
        const UINT nCount = m_pLX ? m_nRngs : 0;
        ar << UINT(0) << UINT(bRoll ? 0x21 : 0x34) << UINT(bRoll ? 25 : 34) << nCount << UINT(4);
        ar << ping.m_swGainRamp << ping.m_rngDecim << ping.m_gainMode << static_cast<WORD>(ping.m_txSrcLevel)
           << static_cast<WORD>(ping.m_percentGain);
        if (bRoll)
            ar << m_nRollTgt1 << m_nRollTgt2 << m_fRoll << m_nRollFlags;
        else
            ar << m_vExPos.x << m_vExPos.y;
        // Each line record goes out with its second u16 first.
        const UINT nHave = m_nLXBytes / 4;
        for (UINT i = 0; i < nCount; ++i) {
            WORD w[2] = {0, 0};
            if (i < nHave) std::memcpy(w, m_pLX + 4 * static_cast<size_t>(i), 4);
            ar << w[1] << w[0];
        }
        return;
    }

    UINT a = 0, b = 0, nCount = 0, nRecBytes = 4;
    ar >> a >> b;
    if (a != 0) {  // the older form, without header
        nCount = a;
        nRecBytes = b;
    } else {
        const UINT nVersion = b;
        UINT left = 0;
        ar >> left;
        if (left >= 12) {
            ar >> nCount >> nRecBytes >> ping.m_swGainRamp >> ping.m_rngDecim;
            // The 32-bit product wraps, as on the recording's platform: a
            // damaged rate gives a wrong rate, not an overflow.
            if (ping.m_rngDecim != 0)
                ping.m_baseMF = static_cast<int>(UINT(ping.m_rngDecim) * static_cast<UINT>(ping.m_modFreq));
            left -= 12;
        }
        if (left >= 4) {
            WORD nSrcLevel = 0;
            ar >> ping.m_gainMode >> nSrcLevel;
            ping.m_txSrcLevel = static_cast<short>(nSrcLevel);
            left -= 4;
        }
        if (nVersion >= 0x20 && left >= 2) {
            WORD nPercent = 0;
            ar >> nPercent;
            ping.m_percentGain = static_cast<short>(nPercent);
            left -= 2;
        } else if (ping.m_gainMode == 0) {
            ping.m_percentGain = static_cast<short>(ping.m_spreadGain / 5);
        } else if (ping.m_gainMode == 1) {
            ping.m_percentGain = 0;
        } else if (ping.m_gainMode == 2) {
            ping.m_percentGain = 10;
        }
        if ((nVersion == 1 || nVersion == 0x21) && left >= 7) {
            ar >> m_nRollTgt1 >> m_nRollTgt2 >> m_fRoll >> m_nRollFlags;
            left -= 7;
        }
        if ((nVersion == 0x14 || nVersion == 0x34) && left >= 16) {
            ar >> m_vExPos.x >> m_vExPos.y;
            left -= 16;
        }
        Skip(ar, left);  // fields of later versions
    }
    if (nCount == 0) return;
    if (nRecBytes < 4) {
        // A record shorter than its two halves has no reading: the records
        // are stepped over and the line records stay as they were.
        Skip(ar, ULONGLONG(nCount) * nRecBytes);
        return;
    }
    ar.CheckAvailable(ULONGLONG(nCount) * nRecBytes);
    const size_t nBytes = static_cast<size_t>(nCount) * 4;
    if (!m_pLX || m_nLXBytes != nBytes) m_pLX = static_cast<BYTE*>(ZUtil::Realloc(m_pLX, static_cast<UINT>(nBytes)));
    std::memset(m_pLX, 0, nBytes);
    m_nLXBytes = static_cast<UINT>(nBytes);
    m_nRngs = nCount;
    for (UINT i = 0; i < nCount; ++i) {
        WORD w[2];
        ar >> w[1] >> w[0];
        std::memcpy(m_pLX + 4 * static_cast<size_t>(i), w, 4);
        if (nRecBytes > 4) Skip(ar, nRecBytes - 4);
    }
}

bool CTgtImg::SerializeAcousticZoom(CArchive& ar)
{
    if (!m_tgtRec.SerializeAcousticZoom(ar)) return false;
    if (ar.IsStoring()) {
        ar << m_nAZRngs << m_nAZStartBrg << m_nAZEndBrg << m_nAZStartRng << m_nAZEndRng << m_nAZBrgs;
        const size_t n = static_cast<size_t>(m_nPixBytes) * m_nAZRngs * m_nAZBrgs;
        WriteBlock(ar, m_pAZ, m_nAZBytes, n);
        return true;
    }
    UINT nRngs = 0;
    ar >> nRngs >> m_nAZStartBrg >> m_nAZEndBrg >> m_nAZStartRng >> m_nAZEndRng >> m_nAZBrgs;
    m_nAZRngs = nRngs;
    if (m_nAZBrgs != 0) {
        ar.CheckAvailable(ULONGLONG(m_nPixBytes) * m_nAZRngs * m_nAZBrgs);
        AllocAZ(m_nAZRngs, m_nAZBrgs);
        ReadBlock(ar, m_pAZ, m_nAZBytes);
    }
    return true;
}
