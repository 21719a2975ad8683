#pragma once
// Helpers shared by the rendering tests: a sonar image of a known shape and
// a catcher of the library's reports.
#include <zandata/ZanData.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

namespace rt {

// The bearing table of nBrgs beams spread evenly over -halfDeg..+halfDeg,
// beam centres, in radians.
inline std::vector<double> EvenBearings(unsigned nBrgs, double halfDeg)
{
    std::vector<double> t(nBrgs);
    for (unsigned i = 0; i < nBrgs; ++i) t[i] = (-halfDeg + 2.0 * halfDeg * (i + 0.5) / nBrgs) * ML::d2r;
    return t;
}

// An image of nRngs x nBrgs, all samples `fill`, the window its whole self
// (range lines 0..nRngs, bearings 0..nBrgs) and the ping's bearing table as
// EvenBearings.
inline void MakeImage(CTgtImg& img, unsigned nRngs, unsigned nBrgs, double halfDeg = 30.0, BYTE fill = 0)
{
    CPing& p = *img.Ping();
    std::vector<double> t = EvenBearings(nBrgs, halfDeg);
    p.SetBearingTable(t.data(), static_cast<int>(nBrgs));
    img.Alloc(nRngs, nBrgs);
    for (unsigned i = 0; i < nRngs * nBrgs; ++i) img.m_pImg[i] = fill;
    img.m_nStartRng = 0;
    img.m_nEndRng = nRngs;
    img.m_nStartBrg = 0;
    img.m_nEndBrg = nBrgs;
}

inline BYTE& Sample(CTgtImg& img, unsigned r, unsigned x) { return img.m_pImg[r * img.m_nBrgs + x]; }

// Reports of the library while it lives: kind, id, level, text.
class CReports {
public:
    CReports()
    {
        m_old = Zan::SetSink([this](Zan::Kind k, unsigned long id, int level, const CString& text) {
            m_got.emplace_back(k, id, level, text.Utf8());
        });
    }
    ~CReports() { Zan::SetSink(m_old); }
    CReports(const CReports&) = delete;
    CReports& operator=(const CReports&) = delete;
    std::vector<std::tuple<Zan::Kind, unsigned long, int, std::string>> m_got;

private:
    Zan::Sink m_old;
};

} // namespace rt
