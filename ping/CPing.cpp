#include "ping/CPing.h"

#include "core/platform/CArchive.h"
#include "core/platform/ZUtil.h"

#include <cmath>
#include <cstring>
#include <new>

const float CPing::MinGateLimit = 0.1f;
const float CPing::MaxGateLimit = 150.0f;
const float CPing::GateMinimumOffset = 0.2f;
double CPing::s_shadeDB[7] = {0.0, -15.0, -20.0, -25.0, -30.0, -35.0, -40.0};

namespace {
// A zeroed ZUtil block of n elements of T (null for n 0).
template <class T>
T* NewBlock(int n)
{
    if (n <= 0) return nullptr;
    const unsigned int bytes = static_cast<unsigned int>(n) * sizeof(T);
    void* p = ZUtil::Malloc(bytes);
    if (!p) throw std::bad_alloc();
    std::memset(p, 0, bytes);
    return static_cast<T*>(p);
}

template <class T>
void CopyBeams(T* dst, const T* src, int n)
{
    if (src) std::memcpy(dst, src, static_cast<size_t>(n) * sizeof(T));
    else std::memset(dst, 0, static_cast<size_t>(n) * sizeof(T));
}
} // namespace

CPing::CPing()
    : m_recTag(0), m_pingID(1), m_typedXfer(1), m_active(1), m_halfArr(0), m_startRngL(0), m_endRngL(400),
      m_startRngM(0.0f), m_endRngM(12.0f), m_scanRate(0), m_txLength(4), m_modFreq(40000), m_hostWord1(0),
      m_sosXd(1500.0f), m_pingFlags(0), m_numBeams(256), m_shading(0), m_pingDelay(20.0f),
      m_pingRateDesired(5.0), m_hostWord2(0), m_hostRate(30000.0), m_mainGain(2024), m_autoGain(0),
      m_autoXdGain(0), m_gainBlank(0), m_adcInput(0), m_spreadGain(5), m_absorbGain(50), m_bfInXd(0),
      m_bfType(0), m_bfFocus(2), m_bfFocus2(2), m_bfWord1(0), m_bfGain(0), m_bfWord2(0), m_nrmSpread(1),
      m_bfWord3(0), m_bfBits(1), m_bfGenPA(0), m_bfRng(0.0f), m_aperture(120.0f), m_focusTbl(31), m_txStart(0),
      m_txLen(64), m_txRadius(0.0f), m_txRng(0.0f), m_txWord(0.0f), m_hasFtSet(0), m_rlTime(0.0),
      m_brgCentre(0.0), m_brgScale(0.0), m_azWord(0), m_rleEnable(0), m_rleLevel(0), m_baseGain(0),
      m_focusMode(0), m_filterBank(0), m_samChannel(0), m_samRow(0), m_disableOOW(0), m_swGainRamp(0),
      m_trigger(0), m_azVersion(2), m_percentGain(10), m_gainAssist(1), m_dispPercent(-1), m_dispGainDB(-1),
      m_gainMode(0), m_rngDecim(1), m_txSrcLevel(0), m_baseMF(40000), m_dataType(0), m_rx1ID(0), m_tx1ID(0),
      m_rx2ID(0), m_tx2ID(0), m_rx1Idx(0), m_tx1Idx(0), m_rx2Idx(0), m_tx2Idx(0), m_pBrgTbl(nullptr),
      m_pElem(nullptr), m_pBeamA(nullptr), m_pBeamB(nullptr), m_pBeamC(nullptr), m_pBeamD(nullptr)
{
    m_pBrgTbl = NewBlock<double>(m_numBeams);
    m_pBeamA = NewBlock<DWORD>(m_numBeams);
    m_pBeamB = NewBlock<DWORD>(m_numBeams);
    m_pBeamC = NewBlock<double>(m_numBeams);
    m_pBeamD = NewBlock<double>(m_numBeams);
    const unsigned int nElem = Rx1()->m_nElements >> (m_halfArr ? 1 : 0);
    m_pElem = NewBlock<double>(static_cast<int>(nElem));

    m_rlTime = 1.0 / m_modFreq;
    m_brgCentre = m_numBeams * 0.5;
    // The default scale uses the nominal pitch 0.003125, not row 0's 0.003123.
    m_brgScale = 1500.0 / (m_numBeams * static_cast<double>(CArrType::s_types[0].m_freq) * 0.003125);
}

CPing::CPing(const CPing& o) : CPing()
{
    *this = o;
}

CPing::~CPing()
{
    ZUtil::FreeIt(m_pBrgTbl);
    ZUtil::FreeIt(m_pElem);
    ZUtil::FreeIt(m_pBeamA);
    ZUtil::FreeIt(m_pBeamB);
    ZUtil::FreeIt(m_pBeamC);
    ZUtil::FreeIt(m_pBeamD);
}

void CPing::operator=(const CPing& o)
{
    if (this == &o) return;
    m_recTag = o.m_recTag;
    m_pingID = o.m_pingID;
    m_typedXfer = o.m_typedXfer;
    m_active = o.m_active;
    m_halfArr = o.m_halfArr;
    m_startRngL = o.m_startRngL;
    m_endRngL = o.m_endRngL;
    m_startRngM = o.m_startRngM;
    m_endRngM = o.m_endRngM;
    m_scanRate = o.m_scanRate;
    m_txLength = o.m_txLength;
    m_modFreq = o.m_modFreq;
    m_hostWord1 = o.m_hostWord1;
    m_sosXd = o.m_sosXd;
    m_pingFlags = o.m_pingFlags;
    m_shading = o.m_shading;
    m_pingDelay = o.m_pingDelay;
    // m_pingRateDesired is the destination's own.
    m_hostWord2 = o.m_hostWord2;
    m_hostRate = o.m_hostRate;
    m_mainGain = o.m_mainGain;
    m_autoGain = o.m_autoGain;
    m_autoXdGain = o.m_autoXdGain;
    m_gainBlank = o.m_gainBlank;
    m_adcInput = o.m_adcInput;
    m_spreadGain = o.m_spreadGain;
    m_absorbGain = o.m_absorbGain;
    m_bfInXd = o.m_bfInXd;
    m_bfType = o.m_bfType;
    m_bfFocus = o.m_bfFocus;
    m_bfFocus2 = o.m_bfFocus2;
    m_bfWord1 = o.m_bfWord1;
    m_bfGain = o.m_bfGain;
    m_bfWord2 = o.m_bfWord2;
    m_nrmSpread = o.m_nrmSpread;
    m_bfWord3 = o.m_bfWord3;
    m_bfBits = o.m_bfBits;
    m_bfGenPA = o.m_bfGenPA;
    m_bfRng = o.m_bfRng;
    m_aperture = o.m_aperture;
    m_focusTbl = o.m_focusTbl;
    m_txStart = o.m_txStart;
    m_txLen = o.m_txLen;
    m_txRadius = o.m_txRadius;
    m_txRng = o.m_txRng;
    m_txWord = o.m_txWord;
    m_hasFtSet = o.m_hasFtSet;
    m_rlTime = o.m_rlTime;
    m_brgCentre = o.m_brgCentre;
    m_brgScale = o.m_brgScale;
    m_azWord = o.m_azWord;
    m_rleEnable = o.m_rleEnable;
    m_rleLevel = o.m_rleLevel;
    m_baseGain = o.m_baseGain;
    m_focusMode = o.m_focusMode;
    m_filterBank = o.m_filterBank;
    m_samChannel = o.m_samChannel;
    m_samRow = o.m_samRow;
    m_disableOOW = o.m_disableOOW;
    m_swGainRamp = o.m_swGainRamp;
    m_trigger = o.m_trigger;
    // m_azVersion is the destination's own.
    m_percentGain = o.m_percentGain;
    m_gainAssist = o.m_gainAssist;
    m_dispPercent = o.m_dispPercent;
    m_dispGainDB = o.m_dispGainDB;
    m_gainMode = o.m_gainMode;
    m_rngDecim = o.m_rngDecim;
    m_txSrcLevel = o.m_txSrcLevel;
    m_baseMF = o.m_baseMF;
    m_dataType = o.m_dataType;
    m_rx1ID = o.m_rx1ID;
    m_tx1ID = o.m_tx1ID;
    m_rx2ID = o.m_rx2ID;
    m_tx2ID = o.m_tx2ID;
    m_rx1Idx = o.m_rx1Idx;
    m_tx1Idx = o.m_tx1Idx;
    m_rx2Idx = o.m_rx2Idx;
    m_tx2Idx = o.m_tx2Idx;

    m_ftSet = o.m_ftSet;
    m_zoom = o.m_zoom;

    if (o.m_numBeams > 0) {
        // A change of count recomputes m_brgCentre and m_brgScale from the
        // fields just copied.
        SetNumBeams(o.m_numBeams);
        const int n = m_numBeams;
        CopyBeams(m_pBrgTbl, o.m_pBrgTbl, n);
        CopyBeams(m_pBeamA, o.m_pBeamA, n);
        CopyBeams(m_pBeamB, o.m_pBeamB, n);
        CopyBeams(m_pBeamC, o.m_pBeamC, n);
        CopyBeams(m_pBeamD, o.m_pBeamD, n);
    }
}

double CPing::BrgScale(double sos, int n) const
{
    const CArrType* rx = Rx1();
    return sos / (static_cast<double>(n) * static_cast<double>(rx->m_freq) * static_cast<double>(rx->m_pitch));
}

void CPing::SetNumBeams(int n)
{
    if (n == 0 || n == m_numBeams || n < 0 || n > 32767) return;
    // Nothing of the old contents survives, so fresh zeroed blocks do the
    // work of a resize; all are made before any old one goes.
    double* pBrg = NewBlock<double>(n);
    DWORD* pA = nullptr;
    DWORD* pB = nullptr;
    double* pC = nullptr;
    double* pD = nullptr;
    try {
        pA = NewBlock<DWORD>(n);
        pB = NewBlock<DWORD>(n);
        pC = NewBlock<double>(n);
        pD = NewBlock<double>(n);
    } catch (...) {
        ZUtil::FreeIt(pBrg);
        ZUtil::FreeIt(pA);
        ZUtil::FreeIt(pB);
        ZUtil::FreeIt(pC);
        throw;
    }
    ZUtil::FreeIt(m_pBrgTbl);
    ZUtil::FreeIt(m_pBeamA);
    ZUtil::FreeIt(m_pBeamB);
    ZUtil::FreeIt(m_pBeamC);
    ZUtil::FreeIt(m_pBeamD);
    m_pBrgTbl = pBrg;
    m_pBeamA = pA;
    m_pBeamB = pB;
    m_pBeamC = pC;
    m_pBeamD = pD;
    m_numBeams = static_cast<short>(n);
    m_brgCentre = n * 0.5;
    m_brgScale = BrgScale(m_sosXd, n);
}

void CPing::SetBearingTable(double* t, int n)
{
    SetNumBeams(n);
    if (m_numBeams <= 0 || !m_pBrgTbl) return;
    CopyBeams(m_pBrgTbl, t, m_numBeams);
}

void CPing::SetBearingTable(float* t, int n, bool negate)
{
    SetNumBeams(n);
    if (m_numBeams <= 0 || !m_pBrgTbl) return;
    if (!t) {
        CopyBeams<double>(m_pBrgTbl, nullptr, m_numBeams);
        return;
    }
    for (int i = 0; i < m_numBeams; ++i) m_pBrgTbl[i] = negate ? -static_cast<double>(t[i]) : t[i];
}

// ---- Derived values ----

unsigned int CPing::GainBlank() const
{
    const double samples = (m_gainBlank / 1500.0) * Rx1()->m_sampleRate * 2;
    // Through a 64-bit integer so that a negative range wraps instead of
    // being undefined.
    return static_cast<unsigned int>(static_cast<long long>(samples));
}

unsigned int CPing::TVG() const
{
    // 32-bit wrap-around, as the head's word is computed.
    const unsigned int absorb = static_cast<unsigned int>(m_absorbGain) * 261600u;
    unsigned int a = absorb / Rx1()->m_freq;
    if (a > 511) a = 511;
    const int s = static_cast<int>(m_spreadGain * 1.17);
    return (a << 7) + static_cast<unsigned int>(s);
}

unsigned int CPing::ScanRate() const
{
    return m_scanRate < 5 ? 1u << (m_scanRate + 3) : 16u;
}

unsigned int CPing::NElements() const
{
    const unsigned int n = Rx1()->m_nElements;
    return m_halfArr ? n >> 1 : n;
}

unsigned int CPing::TransferWidth() const
{
    const unsigned int nBeams = static_cast<unsigned int>(m_numBeams);
    if (m_typedXfer == 1) {
        if (m_dataType == 0) return 2 * nBeams;
        if (m_dataType == 1) return 4 * nBeams;
        return 1024;
    }
    if (m_bfInXd) return m_bfBits == 1 ? 2 * nBeams : nBeams;
    const unsigned int nElem = Rx1()->m_nElements;
    return m_halfArr ? nElem : 2 * nElem;
}

unsigned char CPing::ExtModeFlags() const
{
    unsigned char f = 0;
    if (m_bfInXd) {
        if (m_bfFocus == 2 || m_bfFocus == 3) f |= 0x01;
        if (m_bfFocus == 1) f |= 0x02;
        f |= 0x04 | 0x18;
        if (m_bfBits == 0) f |= 0x40;
        if (m_bfFocus == 3) f |= 0x80;
    } else if (m_halfArr != 0 || (Rx1()->m_flags & 0x1000) == 0) {
        // Element data needs the extra mode unless the full 256-element array sends it.
        f |= 0x40;
    }
    if (m_autoXdGain) f |= 0x20;
    return f;
}

double CPing::GetTime(unsigned int k) const
{
    return (k / 1000.0) * m_rlTime;
}

int CPing::GetRngL(double t) const
{
    return static_cast<int>(t / m_rlTime + 0.5);
}

double CPing::GetBrg(unsigned int k) const
{
    return std::asin((k / 1000.0 - m_brgCentre) * m_brgScale);
}

int CPing::GetBrgL(double b) const
{
    return static_cast<int>(std::sin(b) / m_brgScale + m_brgCentre + 0.5);
}

double CPing::GetImgRLM(int l) const
{
    return m_sosXd * 0.5 * l / m_modFreq;
}

double CPing::GetTgtRLM(int l) const
{
    return m_sosXd * 0.5 * l / m_baseMF;
}

int CPing::GetImgRL(double m) const
{
    return static_cast<int>(std::ceil(m_modFreq * m / (m_sosXd * 0.5)));
}

void CPing::GetTxData(double, double& a, double& b) const
{
    a = 0.0;
    b = 0.0;
}

void CPing::SetSOSAtXd(float s)
{
    m_rlTime = 1.0 / m_modFreq;
    m_brgCentre = m_numBeams * 0.5 - 1.0;
    m_brgScale = BrgScale(s, m_numBeams);
    m_sosXd = s;
}

// ---- Records ----

void CPing::Serialize(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << m_recTag << m_pingID << m_halfArr << m_txLength << m_scanRate << m_sosXd << m_shading << m_mainGain
           << m_gainBlank << m_adcInput << m_spreadGain << m_absorbGain << m_bfFocus << m_bfGain << m_aperture
           << m_txStart << m_txLen << m_txRadius << m_txRng << m_modFreq << m_numBeams << m_sosXd << m_rx1ID
           << m_rx2ID << m_tx1ID << m_pingFlags << m_rx1Idx << m_rx2Idx << m_tx1Idx << m_tx2Idx;
        if (m_hasFtSet) m_ftSet.Serialize(ar);
        return;
    }

    WORD tag = 0;
    ar >> tag >> m_pingID >> m_halfArr >> m_txLength >> m_scanRate >> m_sosXd >> m_shading >> m_mainGain >>
        m_gainBlank >> m_adcInput >> m_spreadGain >> m_absorbGain >> m_bfFocus >> m_bfGain >> m_aperture >>
        m_txStart >> m_txLen >> m_txRadius >> m_txRng >> m_modFreq;
    short nBeams = 0;
    ar >> nBeams;
    if (nBeams < 0) ar.Throw(CArchiveException::badIndex);
    SetNumBeams(nBeams);  // still with the old receive row; its scale is redone below
    // The second speed of sound is the one that counts.
    ar >> m_sosXd >> m_rx1ID >> m_rx2ID >> m_tx1ID >> m_pingFlags;
    BYTE idx[4] = {};
    ar >> idx[0] >> idx[1] >> idx[2] >> idx[3];
    for (BYTE i : idx)
        if (i >= CArrType::s_nTypes) ar.Throw(CArchiveException::badIndex);
    m_rx1Idx = idx[0];
    m_rx2Idx = idx[1];
    m_tx1Idx = idx[2];
    m_tx2Idx = idx[3];

    m_rlTime = 1.0 / m_modFreq;
    m_brgCentre = m_numBeams * 0.5;
    m_baseMF = m_modFreq;
    m_brgScale = BrgScale(m_sosXd, m_numBeams);

    if (m_hasFtSet) m_ftSet.Serialize(ar);
}

bool CPing::SerializeAcousticZoom(CArchive& ar)
{
    if (ar.IsStoring()) {
        ar << CAcousticZoom::s_writeVersion << static_cast<WORD>(0) << m_azWord;
        return m_zoom.SerializeAcousticZoom(ar, CAcousticZoom::s_writeVersion);
    }
    WORD dropped = 0;
    ar >> m_azVersion >> dropped >> m_azWord;
    return m_zoom.SerializeAcousticZoom(ar, m_azVersion);
}
