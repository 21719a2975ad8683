#pragma once
// CPing: the parameter record of one ping, one transmit and receive cycle of
// the sonar: which arrays were in use, which range gate was sampled, at what
// rate and gains, how the beamformer was set, and the scale factors that turn
// an image's range lines and beam lines into seconds, metres and radians.
//
// The host fills the public fields directly and the library never validates
// them. Units: a range line is one image row (one sample time, 1/m_modFreq
// seconds); a beam line is one image column. Beam lines lie at equal steps of
// the sine of the bearing: beam line b is at asin((b - m_brgCentre) *
// m_brgScale) radians. Target positions count in thousandths of a line.
//
// Every CTgtRec (and so every CTgtImg) holds one CPing by value.
#include "core/platform/Types.h"
#include "ping/CAcousticZoom.h"
#include "ping/CArrType.h"
#include "ping/CFtSet.h"

class CArchive;
class CZSetObj;

class CPing {
public:
    WORD m_recTag;              // word at the head of the ping record; written, skipped on reading
    BYTE m_pingID;              // ping identifier
    BYTE m_typedXfer;           // 1: TransferWidth is decided by m_dataType alone
    int m_active;               // non-zero: the ping is active
    int m_halfArr;              // non-zero: half of the receive array's elements are in use
    int m_startRngL;            // start of the range gate, range lines
    int m_endRngL;              // end of the range gate, range lines
    float m_startRngM;          // start of the range gate, metres
    float m_endRngM;            // end of the range gate, metres
    BYTE m_scanRate;            // scan rate code 0..4
    BYTE m_txLength;            // transmit length code
    int m_modFreq;              // range lines per second of the image
    WORD m_hostWord1;           // the host's word; only copied
    float m_sosXd;              // speed of sound at the transducer, m/s
    short m_pingFlags;          // flag word, stored and restored unchanged
    short m_numBeams;           // beam count = entries of the per-beam buffers; change it with SetNumBeams
    short m_shading;            // shading level, index into s_shadeDB
    float m_pingDelay;          // ping delay
    double m_pingRateDesired;   // desired ping rate (assignment leaves it alone)
    WORD m_hostWord2;           // the host's word; only copied
    double m_hostRate;          // the host's rate value; only copied
    short m_mainGain;           // main gain control word
    int m_autoGain;             // non-zero: automatic gain
    int m_autoXdGain;           // non-zero: automatic gain in the head (bit 0x20 of ExtModeFlags)
    short m_gainBlank;          // blanking range, metres (input of GainBlank)
    short m_adcInput;           // converter input word
    short m_spreadGain;         // spreading term of the time-varied gain
    short m_absorbGain;         // absorption term of the time-varied gain
    int m_bfInXd;               // non-zero: beams formed in the head; zero: element data on the link
    int m_bfType;               // beamformer type
    int m_bfFocus;              // focus code 1..3
    int m_bfFocus2;             // only copied
    int m_bfWord1;              // only copied
    short m_bfGain;             // gain of the image samples (unit set by m_gainMode)
    int m_bfWord2;              // only copied
    int m_nrmSpread;            // non-zero: normalisation spreads each line's maxima to its neighbours
    int m_bfWord3;              // only copied
    short m_bfBits;             // beam sample width code: 1 two bytes, 0 one byte
    int m_bfGenPA;              // beamformer generates phase and amplitude
    float m_bfRng;              // beamformer range
    float m_aperture;           // full angular width of the fan, degrees
    short m_focusTbl;           // focus table selection
    short m_txStart;            // transmit start word
    short m_txLen;              // transmit length word
    float m_txRadius;           // transmit radius
    float m_txRng;              // transmit range
    float m_txWord;             // only copied
    int m_hasFtSet;             // non-zero: m_ftSet follows the ping record (not itself recorded)
    CFtSet m_ftSet;             // feature set
    double m_rlTime;            // seconds per range line, 1 / m_modFreq
    double m_brgCentre;         // beam line of zero bearing
    double m_brgScale;          // change of sin(bearing) per beam line
    int m_azWord;               // 32-bit word of the zoom block
    int m_rleEnable;            // run-length enable switch
    WORD m_rleLevel;            // run-length level
    WORD m_baseGain;            // base gain word
    WORD m_focusMode;           // focus mode word
    WORD m_filterBank;          // filter bank selection
    WORD m_samChannel;          // channel word
    WORD m_samRow;              // row word
    int m_disableOOW;           // disable switch
    WORD m_swGainRamp;          // software gain ramp per range line
    WORD m_trigger;             // trigger word
    WORD m_azVersion;           // version of the zoom block (assignment leaves it alone)
    short m_percentGain;        // gain as a percentage
    int m_gainAssist;           // zero: display uses the image's per-line gain table
    short m_dispPercent;        // percent gain the display applies instead of m_percentGain; <0 none
    short m_dispGainDB;         // gain in dB the display applies instead of m_bfGain; <0 none
    WORD m_gainMode;            // gain law: 0 percent with software ramp, 1 decibels, 2 percent
    WORD m_rngDecim;            // range-line decimation: m_baseMF = m_modFreq * m_rngDecim
    short m_txSrcLevel;         // transmit source level
    int m_baseMF;               // range lines per second before decimation
    short m_dataType;           // link data type when m_typedXfer is 1
    short m_rx1ID;              // identifier of the first receive array, 0 none (not a row number)
    short m_tx1ID;              // identifier of the first transmit array, 0 none
    short m_rx2ID;              // identifier of the second receive array
    short m_tx2ID;              // identifier of the second transmit array
    BYTE m_rx1Idx;              // row of CArrType::s_types for Rx1 (the receive row)
    BYTE m_tx1Idx;              // row for Tx1
    BYTE m_rx2Idx;              // row for Rx2
    BYTE m_tx2Idx;              // row for Tx2
    double* m_pBrgTbl;          // bearing of each beam, radians; m_numBeams entries, owned
    double* m_pElem;            // one double per array element in use; sized once at construction, owned
    DWORD* m_pBeamA;            // one 32-bit word per beam, owned
    DWORD* m_pBeamB;            // one 32-bit word per beam, owned
    double* m_pBeamC;           // one double per beam, owned
    double* m_pBeamD;           // one double per beam, owned
    CAcousticZoom m_zoom;       // acoustic zoom region

    // Exported limits of the range gate, metres: nearest start, farthest end,
    // least distance between the two. Published for the host, not applied here.
    static const float MinGateLimit;      // 0.1
    static const float MaxGateLimit;      // 150.0
    static const float GateMinimumOffset; // 0.2
    // Side-lobe level in dB for each m_shading: 0, -15, -20, -25, -30, -35, -40.
    static double s_shadeDB[7];

    // Every field at its default; 256 beams; m_pElem sized for row 0 (64
    // doubles). m_recTag and m_hostWord1 start at 0. All six buffers start
    // zeroed (only A and B are promised to be).
    CPing();
    // A default ping that is then assigned from `o`: like every assignment it
    // keeps the defaults of m_pingRateDesired (5.0) and m_azVersion (2).
    CPing(const CPing& o);
    // Frees the six buffers.
    virtual ~CPing();

    // Copies every field but m_pingRateDesired and m_azVersion, then, when
    // o.m_numBeams > 0, takes o's beam count through SetNumBeams and copies
    // the five per-beam buffers (a null o.m_pBrgTbl gives a zeroed table).
    // With a count of 0 or less the beam count and buffers stay. m_pElem is
    // never copied. Self-assignment does nothing.
    void operator=(const CPing& o);

    // The catalogue row that m_rx1Idx / m_rx2Idx / m_tx1Idx / m_tx2Idx names.
    // No range check: the index must be below 27.
    CArrType* Rx1() const { return &CArrType::s_types[m_rx1Idx]; }
    CArrType* Rx2() const { return &CArrType::s_types[m_rx2Idx]; }
    CArrType* Tx1() const { return &CArrType::s_types[m_tx1Idx]; }
    CArrType* Tx2() const { return &CArrType::s_types[m_tx2Idx]; }

    // 1 when m_active, m_rx1ID and m_tx1ID are all non-zero, else 0.
    int Valid() const { return m_active != 0 && m_rx1ID != 0 && m_tx1ID != 0 ? 1 : 0; }

    // Resizes the five per-beam buffers to n entries and zeroes them all,
    // then m_brgCentre = n * 0.5 and m_brgScale = m_sosXd / (n * m_freq *
    // m_pitch) of the receive row. An n of 0 or equal to m_numBeams does
    // nothing at all (the buffers keep their contents); an n outside
    // 1..32767 does nothing either. m_pElem and m_rlTime are not touched.
    // The new blocks are made before the old ones are freed, so an
    // allocation failure (std::bad_alloc) leaves the ping as it was.
    void SetNumBeams(int n);
    // SetNumBeams(n), then copies m_numBeams bearings (radians) from t, or
    // zeroes the table when t is null. t must hold m_numBeams entries; with
    // n 0 the present count is used.
    void SetBearingTable(double* t, int n);
    // The same from single precision, changing each sign when `negate`.
    void SetBearingTable(float* t, int n, bool negate);

    // ---- Derived values. The receive row is Rx1(); N is m_numBeams. ----

    // Samples at the receive row's sample rate in the out-and-back time of
    // m_gainBlank metres at the fixed 1500 m/s: (m_gainBlank / 1500.0) *
    // m_sampleRate * 2, truncated. A negative m_gainBlank gives the 32-bit
    // wrap of the negative count.
    unsigned int GainBlank() const;
    // Time-varied gain word: a = (m_absorbGain * 261600) / m_freq in unsigned
    // 32-bit arithmetic, at most 511; s = m_spreadGain * 1.17 truncated; the
    // word is (a << 7) + s, added, not masked. 6917 with the defaults.
    unsigned int TVG() const;
    // 2^(m_scanRate + 3) for codes 0..4 (8..128), else 16.
    unsigned int ScanRate() const;
    // Elements in use: the receive row's m_nElements, halved when m_halfArr.
    unsigned int NElements() const;
    // Bytes per range line on the link: with m_typedXfer 1, 2N for
    // m_dataType 0, 4N for 1, else 1024; otherwise with beams formed in the
    // head 2N (m_bfBits 1) or N; otherwise m_nElements (half array) or
    // 2 * m_nElements of the receive row.
    unsigned int TransferWidth() const;
    // Mode byte for the head: 0x1 focus 2 or 3, 0x2 focus 1, 0x1C always,
    // 0x80 focus 3, 0x40 8-bit beams, all only with m_bfInXd; 0x20 with
    // m_autoXdGain; without m_bfInXd 0x40 unless the full 256-element array
    // (receive row flag 0x1000, m_halfArr 0) sends element data.
    unsigned char ExtModeFlags() const;

    // Seconds for k thousandths of a range line: (k / 1000.0) * m_rlTime.
    double GetTime(unsigned int k) const;
    // Range line for t seconds: t / m_rlTime + 0.5, truncated.
    int GetRngL(double t) const;
    // Bearing in radians for k thousandths of a beam line:
    // asin((k / 1000.0 - m_brgCentre) * m_brgScale). NaN beyond the fan's
    // end-fire (|sin| > 1).
    double GetBrg(unsigned int k) const;
    // Beam line for b radians: sin(b) / m_brgScale + m_brgCentre + 0.5,
    // truncated.
    int GetBrgL(double b) const;
    // Metres for image range line l: m_sosXd * 0.5 * l / m_modFreq.
    double GetImgRLM(int l) const;
    // Metres for target range line l: m_sosXd * 0.5 * l / m_baseMF.
    double GetTgtRLM(int l) const;
    // Image range line for m metres, rounded up:
    // ceil(m_modFreq * m / (m_sosXd * 0.5)). The inverse of GetImgRLM up to
    // one line of floating rounding.
    int GetImgRL(double m) const;
    // Sets a and b to 0.0, whatever the first argument.
    void GetTxData(double, double& a, double& b) const;
    // Takes a new speed of sound at the transducer (m/s): m_rlTime = 1 /
    // m_modFreq, m_brgCentre = N * 0.5 - 1.0 (one line less than elsewhere),
    // m_brgScale = s / (N * m_freq * m_pitch), m_sosXd = s. The range gate
    // is not recomputed.
    void SetSOSAtXd(float s);

    // ---- Records ----

    // The 69-byte ping record, both directions, then the 100-byte CFtSet
    // record when m_hasFtSet is non-zero on this object (the flag itself is
    // not recorded: reader and writer must agree). Storing changes nothing.
    // Loading stores each field as it comes (m_recTag is read and dropped;
    // the beam count goes through SetNumBeams at once) and then derives
    // m_rlTime = 1 / m_modFreq, m_brgCentre = N * 0.5, m_baseMF = m_modFreq
    // and m_brgScale from the receive row. A negative beam count or a row
    // index of 27 or more is refused with CArchiveException cause 5
    // (badIndex) before it is stored; a short stream raises cause 3. Either
    // way the fields read so far are kept.
    void Serialize(CArchive& ar);

    // The zoom block: u16 version, u16 0, i32 m_azWord, then the body of
    // m_zoom (CAcousticZoom::SerializeAcousticZoom). Storing heads the block
    // with the version of the layout it writes (2), whatever m_azVersion
    // holds, so that an old block read and stored again stays readable.
    // Loading stores the version in m_azVersion, drops the second word and
    // reads the body of that version. Returns true when a switched-on region
    // body went through, false when the region is off.
    bool SerializeAcousticZoom(CArchive& ar);

    // ---- Settings ----

    // Ties the ping's parameters to the items of a settings object, one call
    // for both directions (CZSetObj::IsStoring / IsLoading): "PingID",
    // "Active", "HalfArr", "StartRngL", "EndRngL", "StartRngM", "EndRngM",
    // "ScanRate", "TxLength", "ModFreq", "Shading", "PingDelay",
    // "PingRateDesired", "PingFlags", "MainGain", "AutoGain", "AutoXdGain",
    // "GainBlank", "AdcInput", "SpreadGain", "AbsorbGain", "bfInXd",
    // "bfType", "bfFocus", "bfGain", "bfBits", "bfGenPA", "bfRng",
    // "Aperture", "DataType", "bfRng" again (16 bits, see CPingSettings.cpp),
    // "FocusTbl", "TxStart", "TxLen", "TxRadius", "TxRng", "RX1_ID",
    // "RX2_ID", "TX1_ID", "TX2_ID", "RLEEnable", "RLELevel", "BaseGain",
    // "FocusMode", "FilterBank", "SamChannel", "SamRow", "DisableOOW",
    // "SWGainRamp", "Trigger", "PercentGain", "GainAssist", "TxSrcLevel",
    // "BaseMF", "NumBeams", each with the type of its field. No value is
    // range-checked. Loading takes the beam count through SetNumBeams (a
    // missing key, 0 or the present count leaves the buffers alone) and
    // derives nothing else: m_rlTime is not refreshed from "ModFreq".
    // Storing leaves the ping unchanged.
    void Settings(CZSetObj& set);

private:
    // sos / (N * m_freq * m_pitch) of the receive row, in double precision.
    double BrgScale(double sos, int n) const;
};
