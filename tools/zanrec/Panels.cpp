// zanrec panels: a recording's sensor records replayed into the library's
// panels, and the panels saved as pictures.
#include "Commands.h"
#include "Loaded.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace zanrec {

int Panels(const std::string& file, const std::string& outDir)
{
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    std::error_code ec;
    std::filesystem::create_directories(outDir, ec);
    if (ec) {
        std::fprintf(stderr, "zanrec: cannot make %s: %s\n", outDir.c_str(), ec.message().c_str());
        return 1;
    }
    // The panels listen to CZanWnd::s_snsrRx from their construction on.
    CSnsrGrid list, grid;
    list.SetOption(CString(u"nBanks"), CString(u"1"));
    grid.SetOption(CString(u"nBanks"), CString(u"4"));

    std::vector<const CSnsrInf*> all;
    for (const auto& [type, run] : rec.nav.All())
        for (const auto& r : run) all.push_back(r.get());
    std::stable_sort(all.begin(), all.end(), [](const CSnsrInf* a, const CSnsrInf* b) { return a->m_time < b->m_time; });
    for (const CSnsrInf* r : all) CZanWnd::SnsrMsg(0, const_cast<CSnsrInf*>(r));

    struct Shot { CZanWnd* wnd; const char* name; };
    const Shot shots[] = {{&list, "sensors-list.png"}, {&grid, "sensors-grid.png"}};
    int rc = 0;
    for (const Shot& s : shots) {
        const std::string path = outDir + "/" + s.name;
        if (s.wnd->SavePicture(CString::FromUtf8(path))) {
            std::printf("%s: %zu sensor records replayed into %s\n", path.c_str(), all.size(),
                        s.wnd->GetRuntimeClass()->m_lpszClassName);
        } else {
            std::fprintf(stderr, "zanrec: cannot write %s\n", path.c_str());
            rc = 1;
        }
    }
    return rc;
}

} // namespace zanrec
