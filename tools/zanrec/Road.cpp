#include "Road.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace zanrec {
namespace {
double Ms(std::chrono::steady_clock::time_point a, std::chrono::steady_clock::time_point b)
{
    return std::chrono::duration<double, std::milli>(b - a).count();
}
constexpr int kMaxTargets = 24;
constexpr BYTE kTargetLevel = 200;
constexpr BYTE kSeabedLevel = 60;
} // namespace

unsigned int RecordFlags(bool withRaw)
{
    return CTgtImg::GetState(withRaw ? 1 : 0, 0, 1, 0, 1) | 0x08u | 0x40u;
}

std::vector<std::uint8_t> RecordImage(CTgtImg& img, unsigned int flags)
{
    CMemFile f(1u << 20);
    {
        CArchive ar(&f, CArchive::store, 1 << 16);
        img.Serialize(ar, flags);
        img.SerializePingEx(ar);
        img.SerializeAcousticZoom(ar);
        ar.Close();
    }
    const BYTE* p = f.GetBuffer();
    return std::vector<std::uint8_t>(p, p + f.GetLength());
}

bool LoadImage(CTgtImg& img, const std::vector<std::uint8_t>& bytes)
{
    CMemFile f(const_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    CArchive ar(&f, CArchive::load, 1 << 16);
    img.Serialize(ar, 0);
    img.SerializePingEx(ar);
    img.SerializeAcousticZoom(ar);
    return ar.GetRemaining() == 0;
}

void SetupFilter(CTgtImgFlt& flt, int filterId)
{
    flt.m_filterId = filterId;
    flt.m_bias = 0.35;
    flt.m_offset = 0.02;
    flt.m_lowTgt = 2;  // lift weak echoes a little after the fit
    flt.m_scale = 1.2;
    flt.SetPatSize(16);
    // The expected echo across neighbouring bearings: a peak at the window's
    // centre falling away to both sides.
    for (int k = 0; k < 16; ++k) flt.m_pPat[k] = std::exp(-0.5 * std::pow((k - 8.0) / 2.5, 2));
    flt.m_nThreads = 2;
    flt.SetupThreads();
}

Road::Road(Survey& survey, bool withRaw, int filterId)
    : m_survey(survey), m_bRaw(withRaw), m_tbl(CColTbl::Grey())
{
    SetupFilter(m_flt, filterId);
}

void Detect(CTgtImg& img)
{
    const int B = static_cast<int>(img.m_nBrgs), R = static_cast<int>(img.m_nRngs);
    const BYTE* p = img.m_pImg;
    if (!p || B < 3 || R < 3 || img.m_vStart.size() < static_cast<size_t>(B)) return;
    CPing& ping = *img.Ping();
    const double lineM = img.m_tgtRec.m_sosAvg * 0.5 / ping.m_modFreq;

    struct Peak { int l, b; BYTE v; };
    std::vector<Peak> peaks;
    for (int l = 2; l < R - 2; ++l)
        for (int b = 2; b < B - 2; ++b) {
            const BYTE v = p[static_cast<size_t>(l) * B + b];
            if (v < kTargetLevel) continue;
            bool top = true;
            for (int dl = -2; dl <= 2 && top; ++dl)
                for (int db = -2; db <= 2; ++db)
                    if ((dl || db) && p[static_cast<size_t>(l + dl) * B + b + db] > v) { top = false; break; }
            if (top) peaks.push_back({l, b, v});
        }
    std::sort(peaks.begin(), peaks.end(), [](const Peak& a, const Peak& c) { return a.v > c.v; });
    if (peaks.size() > kMaxTargets) peaks.resize(kMaxTargets);
    img.m_tgtRec.ClearTgts();
    for (const Peak& k : peaks) {
        auto* t = new CTgt;  // the record owns its targets
        const double r = k.l * lineM;
        static_cast<CV3&>(*t) = img.m_vStart[static_cast<size_t>(k.b)] + img.m_vDir[static_cast<size_t>(k.b)] * r;
        t->m_rngK = static_cast<unsigned>(k.l) * 1000u;
        t->m_brgK = static_cast<unsigned>(k.b) * 1000u;
        t->m_level = k.v;
        t->m_tgtValue = r;
        t->m_kind = static_cast<BYTE>(k.v >= 250 ? 3 : k.v >= 225 ? 2 : 1);
        img.m_tgtRec.AddTail(t);
    }

    // The seabed: the first range line of each bearing whose smoothed level
    // passes the threshold.
    img.ClearBnds();
    auto* bnd = new CBnd;
    bnd->m_name = CString(u"Seabed");
    bnd->m_firstBrg = 0;
    bnd->SetNRngs(static_cast<unsigned>(B));
    for (int b = 0; b < B; ++b) {
        CSbRng& s = bnd->m_pRngs[b];
        s = CSbRng();
        s.m_dNear = s.m_dFar = -1.0;
        for (int l = 1; l + 1 < R; ++l) {
            const int avg = (p[static_cast<size_t>(l - 1) * B + b] + p[static_cast<size_t>(l) * B + b] +
                             p[static_cast<size_t>(l + 1) * B + b]) / 3;
            if (avg >= kSeabedLevel) {
                s.m_dNear = l * lineM;
                s.m_dFar = s.m_dNear + 1.0;
                s.m_nVal1 = l;
                break;
            }
        }
    }
    img.m_bnds.AddTail(bnd);
}

PingResult Road::Run(int i, const Pose& pose, StepTimes& times)
{
    using clock = std::chrono::steady_clock;
    PingResult res;
    CTgtImg* img = CTgtImg::GetImg();
    auto t0 = clock::now();
    m_survey.SetupPing(*img->Ping(), i);
    img->m_tgtRec.m_elevDeg = Survey::kTiltDeg;
    img->m_tgtRec.m_sosAvg = pose.sos;
    img->m_tgtRec.m_recVal1 = pose.t;
    m_survey.FillRaw(*img, i, pose);
    auto t1 = clock::now();
    img->Normalise8(1);
    auto t2 = clock::now();
    m_flt.Filter(img);
    auto t3 = clock::now();
    CMat sonar = Survey::SonarFrame(pose), tilt;
    img->SetupExtents(sonar, tilt);
    auto t4 = clock::now();
    img->CreateImg(m_tbl, 3, 0, 0.0, 30.0, true);
    auto t5 = clock::now();
    Detect(*img);
    // Every fourth ping carries a zoom region over the middle of the fan.
    CPing& ping = *img->Ping();
    ping.m_zoom.m_azOn = (i % 4 == 0);
    if (ping.m_zoom.m_azOn) {
        const unsigned zb = img->m_nBrgs / 4, zr = img->m_nRngs / 4;
        ping.m_zoom.m_azNumBeams = static_cast<short>(zb);
        img->m_nAZStartBrg = img->m_nBrgs / 2 - zb / 2;
        img->m_nAZEndBrg = img->m_nAZStartBrg + zb - 1;
        img->m_nAZStartRng = img->m_nRngs / 2;
        img->m_nAZEndRng = img->m_nAZStartRng + zr - 1;
        img->AllocAZ(zr, zb);
        for (unsigned r = 0; r < zr; ++r)
            std::copy_n(img->m_pImg + static_cast<size_t>(img->m_nAZStartRng + r) * img->m_nBrgs + img->m_nAZStartBrg, zb,
                        img->m_pAZ + static_cast<size_t>(r) * zb);
    } else {
        img->AllocAZ(0, 0);
    }
    auto t6 = clock::now();
    res.record = RecordImage(*img, RecordFlags(m_bRaw));
    auto t7 = clock::now();
    res.rawBytes = img->m_nImgBytes;
    res.targets = img->m_tgtRec.GetCount();
    res.boundaries = img->m_bnds.GetCount();
    CTgtImg::DelImg(img);

    times.fill += Ms(t0, t1);
    times.normalise += Ms(t1, t2);
    times.filter += Ms(t2, t3);
    times.extents += Ms(t3, t4);
    times.create += Ms(t4, t5);
    times.detect += Ms(t5, t6);
    times.record += Ms(t6, t7);
    ++times.pings;
    return res;
}

} // namespace zanrec
