// CTgtImg::CreateImg and CreateAcousticZoomImage: the RGBA picture of an
// image, folded to the display height, gain-corrected and coloured by
// intensity or by depth.
//
// The build is done row by row of the display rather than sample by sample:
// the range lines that fold onto one display row are reduced into a row of
// bytes (their strongest echo per column, after the gain corrections, which
// go through a 256-entry table per line), and the row is then coloured once.
// This gives the same pixels as clearing the display image, collecting
// intensity and depth index in bytes 0 and 1 of each pixel and colouring
// them in a last pass: the depth index that survives in a pixel is always the
// one of the last line folded onto it (once byte 0 exceeds 8 it stays above),
// so it is worked out for that line only. When all lines of a row share one
// correction table, and it rises with the sample (it does unless a gain
// overflows 32 bits), max and table commute: the row kernel folds the raw
// samples itself, straight from the plane, and the table is applied once per
// pixel, through the colour table. Rows that fold alike, through the same
// table, go to the kernel together, which then sets up its tables once.
#include "image/CTgtImg.h"

#include "core/platform/CColTbl.h"
#include "ping/CPing.h"
#include "render/DspRow.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

// floor(10^(dB / 20) + 0.5): the gain factor of a level in decibels, held at
// the ends of the unsigned range (the sane levels, 0 to 96 dB, never get near).
inline std::uint32_t DbToFactor(double dB)
{
    const double f = std::floor(std::pow(10.0, dB / 20.0) + 0.5);
    if (!(f > 0.0)) return 0;
    if (f >= 4294967295.0) return 0xFFFFFFFFu;
    return static_cast<std::uint32_t>(f);
}

// One plane to build: the main image or the zoom image.
struct Plane {
    const BYTE* pSrc;          // samples, nLines rows of nW bytes
    unsigned nRngs;            // range lines as the image counts them (fold and depth)
    unsigned nLines;           // lines that the buffer really holds (<= nRngs)
    unsigned nW;               // columns
    CRgb* pDsp;                // display image, nW x nH pixels
    unsigned nH;               // display rows available
    const BYTE* pLX;           // line records, 4 bytes a line (first u16: recorded gain); null: none
    unsigned nLX;              // records held
    unsigned decim;            // range-line decimation for the gain ramp of mode 0
    bool bCorrRatio;           // apply the gain ratio (when gainDen is non-zero)
    bool bCorrLine;            // apply the per-line rescaling
    const std::vector<CV3>* pStart;
    const std::vector<CV3>* pEnd;
};

struct Gain {
    std::uint32_t num = 0, den = 0;
};

// Step 5 of the build: the ratio from the gain the image was made with to the
// one the display now wants.
Gain GainRatio(const CPing& p)
{
    Gain r;
    switch (p.m_gainMode) {
    case 0:
    case 2:
        if (p.m_dispPercent >= 0 && p.m_dispPercent != p.m_percentGain) {
            r.num = p.m_dispPercent > 0 ? static_cast<std::uint32_t>(p.m_dispPercent) : 1u;
            r.den = p.m_percentGain > 0 ? static_cast<std::uint32_t>(p.m_percentGain) : 1u;
        }
        break;
    case 1:
        if (p.m_dispGainDB >= 0 && p.m_dispGainDB != p.m_bfGain) {
            r.num = DbToFactor(p.m_dispGainDB);
            r.den = DbToFactor(p.m_bfGain);
        }
        break;
    default:
        break;
    }
    return r;
}

// The correction of one line as a table of 256 bytes: the ratio, then the
// line's rescaling, in unsigned 32-bit integers, each limited to 255.
struct LineLut {
    bool ratio = false;
    bool rescale = false;
    std::uint32_t g = 0, rec = 0;
    bool operator==(const LineLut&) const = default;
    bool Identity() const { return !ratio && !rescale; }
};

void FillLut(const LineLut& k, const Gain& ratio, BYTE* lut)
{
    for (std::uint32_t v = 0; v < 256; ++v) {
        std::uint32_t w = v;
        if (k.ratio) w = std::min<std::uint32_t>(w * ratio.num / ratio.den, 255u);
        if (k.rescale) w = std::min<std::uint32_t>(w * k.g / k.rec, 255u);
        lut[v] = static_cast<BYTE>(w);
    }
}

bool Monotone(const BYTE* lut)
{
    for (int v = 1; v < 256; ++v)
        if (lut[v] < lut[v - 1]) return false;
    return true;
}

void BuildPlane(const Plane& pl, const CPing& ping, const Gain& ratio, CColTbl& tbl, int depthCol,
                double depthMin, double depthMax, unsigned& nSkip, unsigned& nRows)
{
    // Folding.
    nSkip = pl.nRngs > pl.nH ? pl.nRngs / pl.nH : 0;
    nRows = pl.nRngs / (nSkip + 1);
    const unsigned m = nSkip + 1;

    const int nc = tbl.GetSize();
    const CRgb* pTbl = tbl.Data();
    double span = depthMax - depthMin;
    if (span == 0.0) span = 1.0;
    const double scale = nc / span;

    // The per-line gain g of the image's gain law. Only modes 1 and 2 need a
    // power of ten, and it is the same for every line.
    const bool gainTable = ping.m_gainAssist == 0 && pl.pLX;
    std::uint32_t gFixed = 0;
    if ((ping.m_gainMode == 1 || ping.m_gainMode == 2) && ping.m_bfGain >= 0 && ping.m_bfGain <= 96)
        gFixed = std::min<std::uint32_t>(DbToFactor(ping.m_bfGain), 65535u);
    const std::uint32_t ramp = static_cast<std::uint32_t>(pl.decim) * ping.m_swGainRamp;
    const std::uint32_t base = static_cast<std::uint32_t>(static_cast<int>(ping.m_bfGain)) << 8;
    const bool useRatio = pl.bCorrRatio && ratio.den != 0;

    auto lineKey = [&](unsigned r) {
        LineLut k;
        k.ratio = useRatio;
        if (!gainTable) return k;
        std::uint32_t g = 0;
        switch (ping.m_gainMode) {
        case 0: g = (((ramp * r) >> 2) + base) >> 8; break;
        case 1:
        case 2: g = gFixed; break;
        default: break;
        }
        std::uint32_t rec = 0;
        if (r < pl.nLX) {
            std::uint16_t w;
            std::memcpy(&w, pl.pLX + static_cast<std::size_t>(r) * 4, sizeof w);
            rec = w;
        }
        if (pl.bCorrLine && rec != 0 && rec != g) {
            k.rescale = true;
            k.g = g;
            k.rec = rec;
        }
        return k;
    };

    // The table of the lines folded last, and the colours through it.
    std::array<BYTE, 256> identity {};
    for (int v = 0; v < 256; ++v) identity[static_cast<std::size_t>(v)] = static_cast<BYTE>(v);
    std::array<BYTE, 256> lut {}, lineLut {};
    LineLut lutKey, lineKeyCached;
    bool lutValid = false, lineValid = false;
    std::vector<CRgb> ctab(256);
    zan_dsp::Planes ctabPlanes;
    const BYTE* ctabFor = nullptr;  // which table ctab was made through
    auto colourTable = [&](const BYTE* l) {
        if (ctabFor != l) {
            for (int v = 0; v < 256; ++v) ctab[static_cast<std::size_t>(v)] = pTbl[l[v]];
            ctabPlanes.Set(ctab.data());
            ctabFor = l;
        }
    };

    // Depth geometry of each column, for the depth colouring.
    zan_dsp::DepthCols cols;
    zan_dsp::Planes tblPlanes;
    if (depthCol) {
        tblPlanes.Set(pTbl);
        const std::size_t nVec = std::min<std::size_t>({pl.nW, pl.pStart->size(), pl.pEnd->size()});
        cols.sz.resize(nVec);
        cols.dz.resize(nVec);
        for (std::size_t x = 0; x < nVec; ++x) {
            cols.sz[x] = (*pl.pStart)[x].z;
            cols.dz[x] = (*pl.pEnd)[x].z - (*pl.pStart)[x].z;
        }
        cols.Prepare(depthMin, scale, nc);
    }
    // Rows coloured through lut l.
    auto colourRows = [&](const zan_dsp::Rows& rs, const BYTE* l) {
        if (!depthCol) {
            colourTable(l);
            zan_dsp::ColourRows(rs, pl.nW, ctab.data(), ctabPlanes);
            return;
        }
        zan_dsp::DepthColourRows(rs, pl.nW, zan_dsp::DepthColour {&cols, pTbl, &tblPlanes, l});
    };
    auto rowsFrom = [&](unsigned row, const zan_dsp::Fold& f, unsigned rLast) {
        return zan_dsp::Rows {f, 1, pl.pDsp + static_cast<std::size_t>(row) * pl.nW, pl.nW, rLast, pl.nRngs};
    };
    // Rows that fold their raw lines through the same table wait here, to be
    // coloured in one call.
    zan_dsp::Rows run {};
    const BYTE* runLut = nullptr;
    auto flush = [&] {
        if (run.nRows) colourRows(run, runLut);
        run.nRows = 0;
    };

    zan::LineVector<BYTE> acc(pl.nW);
    std::vector<LineLut> keys(m);
    unsigned r = 0, row = 0;
    while (r < pl.nLines && row < pl.nH) {
        unsigned rEnd = std::min(r + m, pl.nLines);
        for (unsigned j = r; j < rEnd; ++j) keys[j - r] = lineKey(j);
        const bool same = std::all_of(keys.begin(), keys.begin() + (rEnd - r),
                                      [&](const LineLut& k) { return k == keys[0]; });
        const BYTE* rowLut = identity.data();
        if (same && !keys[0].Identity()) {
            if (!lutValid || !(lutKey == keys[0])) {
                flush();  // its rows read the table about to change
                FillLut(keys[0], ratio, lut.data());
                lutKey = keys[0];
                lutValid = Monotone(lut.data());
                if (!lutValid) lutKey = LineLut();
                ctabFor = nullptr;
            }
            // A rising table commutes with the maximum: fold the raw samples
            // and correct the row once.
            if (lutValid) rowLut = lut.data();
        }
        const BYTE* first = pl.pSrc + static_cast<std::size_t>(r) * pl.nW;
        if (same && (rowLut != identity.data() || keys[0].Identity())) {
            // The row's kernel folds the raw lines itself: the row joins the
            // waiting ones if it follows them alike, with all m lines.
            if (run.nRows && runLut == rowLut && run.f.m == m && rEnd - r == m) {
                ++run.nRows;
            } else {
                flush();
                run = rowsFrom(row, zan_dsp::Fold {first, pl.nW, rEnd - r}, rEnd - 1);
                runLut = rowLut;
            }
            // Without a gain table every line has the same correction: all
            // the rows of m lines that follow join too.
            if (!gainTable && rEnd - r == m) {
                const unsigned more = std::min((pl.nLines - rEnd) / m, pl.nH - row - 1);
                run.nRows += more;
                rEnd += more * m;
                row += more;
            }
        } else {
            flush();
            // Lines corrected one by one, through their own tables.
            std::fill(acc.begin(), acc.end(), BYTE(0));
            for (unsigned j = r; j < rEnd; ++j) {
                const BYTE* s = pl.pSrc + static_cast<std::size_t>(j) * pl.nW;
                const LineLut& k = keys[j - r];
                if (k.Identity()) {
                    zan_dsp::MaxRow(acc.data(), s, pl.nW);
                    continue;
                }
                if (!lineValid || !(lineKeyCached == k)) {
                    FillLut(k, ratio, lineLut.data());
                    lineKeyCached = k;
                    lineValid = true;
                }
                for (unsigned x = 0; x < pl.nW; ++x) acc[x] = std::max(acc[x], lineLut[s[x]]);
            }
            colourRows(rowsFrom(row, zan_dsp::Fold {acc.data(), 0, 1}, rEnd - 1), identity.data());
        }
        r = rEnd;
        ++row;
    }
    flush();
    // Rows that no line reached hold intensity 0: one line of zeros serves
    // them all, and intensity 0 never takes a depth.
    std::fill(acc.begin(), acc.end(), BYTE(0));
    if (row < pl.nH) {
        zan_dsp::Rows rest = rowsFrom(row, zan_dsp::Fold {acc.data(), 0, 1}, 0);
        rest.nRows = pl.nH - row;
        colourRows(rest, identity.data());
    }
}

} // namespace

void CTgtImg::CreateImg(CColTbl& tbl, int resIdx, int depthCol, double depthMin, double depthMax, bool gainCorr)
{
    if (resIdx < 0 || resIdx >= 8) return;
    SetImgSize(static_cast<unsigned int>(s_resTypes[resIdx].m_n));
    if (!m_pImg || !m_pDsp || m_nImgSize == 0) return;

    const CPing& ping = m_tgtRec.m_ping;
    const Gain ratio = GainRatio(ping);
    Plane pl {};
    pl.pSrc = m_pImg;
    pl.nRngs = m_nRngs;
    // Samples are one byte each; a line count that another sizing call has
    // raised past the plane is cut to the lines the plane holds.
    pl.nLines = m_nBrgs ? std::min<unsigned>(m_nRngs, m_nImgBytes / m_nBrgs) : 0;
    pl.nW = m_nBrgs;
    pl.pDsp = m_pDsp;
    pl.nH = m_nImgSize;
    pl.pLX = m_pLX;
    pl.nLX = m_nLXBytes / 4;
    pl.decim = m_tgtRec.m_ping.m_rngDecim;
    pl.bCorrRatio = gainCorr;
    pl.bCorrLine = gainCorr;
    pl.pStart = &m_vStart;
    pl.pEnd = &m_vEnd;
    BuildPlane(pl, ping, ratio, tbl, depthCol, depthMin, depthMax, m_nDspSkip, m_nDspRows);
    m_bTexDirty = 1;
    CreateAcousticZoomImage(tbl, depthCol, depthMin, depthMax, ratio.den, ratio.num);
}

void CTgtImg::CreateAcousticZoomImage(CColTbl& tbl, int depthCol, double depthMin, double depthMax,
                                      unsigned int gainDen, unsigned int gainNum)
{
    if (!m_pAZ || !m_pAZDsp) return;
    const unsigned nH = m_nImgSize / 2;
    // The zoom display image must have been sized for this zoom image
    // (SetImgSize records the width it was made for); otherwise, or with no
    // display rows, nothing is built.
    if (nH == 0 || m_nAZDspBrgs != m_nAZBrgs) return;

    const CPing& ping = m_tgtRec.m_ping;
    Gain ratio;
    ratio.num = gainNum;
    ratio.den = gainDen;
    Plane pl {};
    pl.pSrc = m_pAZ;
    pl.nRngs = m_nAZRngs;
    pl.nLines = m_nAZBrgs ? std::min<unsigned>(m_nAZRngs, m_nAZBytes / m_nAZBrgs) : 0;
    pl.nW = m_nAZBrgs;
    pl.pDsp = m_pAZDsp;
    pl.nH = nH;
    pl.pLX = reinterpret_cast<const BYTE*>(m_pAZLX);
    pl.nLX = m_nAZLXCount;
    pl.decim = ping.m_zoom.m_azDecim;
    pl.bCorrRatio = true;
    pl.bCorrLine = true;
    pl.pStart = &m_vStart;
    pl.pEnd = &m_vEnd;
    BuildPlane(pl, ping, ratio, tbl, depthCol, depthMin, depthMax, m_nAZSkip, m_nAZRows);
}
