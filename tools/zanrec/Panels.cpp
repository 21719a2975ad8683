// zanrec panels: a recording's sensor records replayed into the library's
// panels, and the panels saved as pictures.
#include "Commands.h"
#include "Loaded.h"
#include "Tide.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace zanrec {
namespace {

// A host's panel with one tide selection, as a host puts the control on its
// own settings panel.
class CTideSelWnd : public CZanWnd {
public:
    CTideObj* m_pTide = nullptr;

    explicit CTideSelWnd(CTideObj* pTide) : m_pTide(pTide)
    {
        m_strTitle = u"Tide Selection";
        InsText(60, u"Tide", 0, nullptr);
        InsCtrl(140, new CTideCb(m_pTide), nullptr);
        NewLn();
    }
};

} // namespace

int Panels(const std::string& file, const std::string& outDir, const std::string& tidePath)
{
    CTideObj tide;
    if (!tidePath.empty()) {
        std::string why;
        if (!LoadTide(tidePath, tide, why)) {
            std::fprintf(stderr, "zanrec: %s\n", why.c_str());
            return 2;
        }
    }
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    std::error_code ec;
    std::filesystem::create_directories(outDir, ec);
    if (ec) {
        std::fprintf(stderr, "zanrec: cannot make %s: %s\n", outDir.c_str(), ec.message().c_str());
        return 1;
    }
    // The sensor panels listen to CZanWnd::s_snsrRx from their construction
    // on; the speed of sound panel takes the readings of bank 0.
    CSnsrGrid list, grid;
    list.SetOption(CString(u"nBanks"), CString(u"1"));
    grid.SetOption(CString(u"nBanks"), CString(u"4"));
    CSpdSnd sos;
    sos.m_strName = u"Sonar";

    std::vector<const CSnsrInf*> all;
    for (const auto& [type, run] : rec.nav.All())
        for (const auto& r : run) all.push_back(r.get());
    std::stable_sort(all.begin(), all.end(), [](const CSnsrInf* a, const CSnsrInf* b) { return a->m_time < b->m_time; });
    for (const CSnsrInf* r : all) CZanWnd::SnsrMsg(0, const_cast<CSnsrInf*>(r));

    tide.SetupCtrls();
    tide.UpdateCtrls();
    CTideSelWnd tideSel(&tide);
    tideSel.UpdateCtrls();

    // The geodetic selection over the shipped database, as the survey's grid
    // left it (WGS84 and the UTM zone of the first position).
    if (Geo::sphds.IsEmpty()) {
        const Zan::Sink old = Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
        Geo::ReadDb(Geo::DefaultDbPath());
        Zan::SetSink(old);
    }
    CGeoSel geo;
    geo.SetupCtrls();
    geo.UpdateCtrls();

    struct Shot {
        CZanWnd* wnd;
        const char* name;
        std::string what;
    };
    char sosText[96];
    std::snprintf(sosText, sizeof sosText, "%zu speed of sound records, average %.1f m/s", rec.nav.Of(CSnsrInf::tSOS).size(),
                  sos.GetAvg());
    const std::string records = std::to_string(all.size()) + " sensor records replayed";
    const Shot shots[] = {
        {&list, "sensors-list.png", records},
        {&grid, "sensors-grid.png", records},
        {&sos, "sos.png", sosText},
        {&tide, "tide.png", tidePath.empty() ? "no tide file" : std::to_string(tide.GetCount()) + " tide points"},
        {&tideSel, "tide-select.png", "table " + tide.m_strName.Utf8()},
        {&geo, "geodesy.png",
         std::to_string(Geo::sphds.GetCount()) + " spheroids, " + std::to_string(Geo::projs.GetCount()) +
             " projections, " + std::to_string(Geo::shfts.GetCount()) + " datum shifts"},
    };
    int rc = 0;
    for (const Shot& s : shots) {
        const std::string path = outDir + "/" + s.name;
        if (s.wnd->SavePicture(CString::FromUtf8(path))) {
            // The host panel has no class record of its own: name its control.
            const char* kind = s.wnd == &tideSel ? "CTideCb" : s.wnd->GetRuntimeClass()->m_lpszClassName;
            std::printf("%s: %s, %s\n", path.c_str(), kind, s.what.c_str());
        } else {
            std::fprintf(stderr, "zanrec: cannot write %s\n", path.c_str());
            rc = 1;
        }
    }
    return rc;
}

} // namespace zanrec
