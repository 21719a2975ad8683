// zanrec demo: a synthetic survey along the whole road of a ping, read back
// and checked byte for byte, then drawn.
#include "Commands.h"
#include "Loaded.h"
#include "Road.h"
#include "Tide.h"

#include <cstdio>
#include <filesystem>

namespace zanrec {

int Demo(const std::string& outDir, int pings)
{
    std::error_code ec;
    std::filesystem::create_directories(outDir, ec);
    if (ec) {
        std::fprintf(stderr, "zanrec: cannot make %s: %s\n", outDir.c_str(), ec.message().c_str());
        return 1;
    }
    SynthOptions so;
    so.out = outDir + "/survey.zrec";
    so.pings = pings;
    SynthReport rep;
    if (const int rc = Synth(so, &rep)) return rc;

    // Read every ping back, record it again and compare the bytes.
    Loaded rec;
    if (!LoadRecording(so.out, rec)) return 1;
    if (!rec.rr.error.empty() || rec.badSensor >= 0) {
        std::fprintf(stderr, "zanrec: demo recording is damaged: %s%s\n", rec.rr.error.c_str(), rec.sensorError.c_str());
        return 1;
    }
    int same = 0;
    double compressed = 0;
    CTgtImg* img = CTgtImg::GetImg();
    for (size_t k = 0; k < rec.pings.size(); ++k) {
        std::string why;
        if (!LoadPing(rec, static_cast<int>(k), *img, why)) {
            std::fprintf(stderr, "zanrec: demo ping %zu did not load: %s\n", k, why.c_str());
            CTgtImg::DelImg(img);
            return 1;
        }
        const auto again = RecordImage(*img, img->m_nState);
        if (again == rec.rr.frames[static_cast<size_t>(rec.pings[k])].payload) ++same;
        std::vector<unsigned char> buf(img->m_nImgBytes ? img->m_nImgBytes : 1);
        compressed += img->Compress(img->m_pImg, buf.data(), static_cast<unsigned char>(img->m_nCompLevel));
    }
    // The last ping as a fan with its grid, targets and boundary.
    RenderOptions ro;
    ro.out = outDir + "/fan.png";
    ro.size = 640;
    ro.colour = "viridis";
    ro.grid = ro.overlays = true;
    const bool fanOk = RenderFan(*img, ro, false, 0, 0);
    CTgtImg::DelImg(img);
    MosaicOptions mo;
    mo.file = so.out;
    mo.out = outDir + "/mosaic.png";
    mo.size = 800;
    const bool mosaicOk = Mosaic(mo) == 0;
    // The same by depth below chart datum: the tilted fans reach from the
    // sonar's 2 m down to some 20 m below the surface, less the tide.
    MosaicOptions md = mo;
    md.out = outDir + "/mosaic-depth.png";
    md.depth = "-2:20";
    md.tide = rep.tideFile;
    const bool depthOk = Mosaic(md) == 0;

    // The tide over the survey.
    CTideObj tide;
    std::string why;
    std::optional<double> tideFirst, tideLast;
    if (LoadTide(rep.tideFile, tide, why) && !rec.pings.empty()) {
        CTgtImg* probe = CTgtImg::GetImg();
        if (LoadPing(rec, 0, *probe, why)) tideFirst = TideAt(tide, PingTime(*probe));
        if (LoadPing(rec, static_cast<int>(rec.pings.size()) - 1, *probe, why)) tideLast = TideAt(tide, PingTime(*probe));
        CTgtImg::DelImg(probe);
    }

    const bool panelsOk = Panels(so.out, outDir, rep.tideFile) == 0;

    static const char* const steps[7] = {"fill ping and raw plane", "Normalise8", "Filter", "SetupExtents",
                                         "CreateImg", "detect targets, boundary", "record (Serialize)"};
    std::printf("\nZanData demo\n");
    std::printf("  pings                     %d (%zu sensor records beside them)\n", rep.pings, rep.sensorRecords);
    std::printf("  recording                 %s, %.0f bytes\n", so.out.c_str(), rep.fileBytes);
    std::printf("  ping records              %.0f bytes for %.0f bytes of image planes\n", rep.recordBytes, rep.imageBytes);
    std::printf("  compression ratio         %.1f%% of the intensity planes\n",
                rep.imageBytes > 0 ? 100.0 * compressed / rep.imageBytes : 0.0);
    std::printf("  read back identically     %d of %zu pings\n", same, rec.pings.size());
    std::printf("  milliseconds per ping\n");
    for (int k = 0; k < 7; ++k) std::printf("    %-24s %8.2f\n", steps[k], rep.ms[k]);
    if (tideFirst && tideLast)
        std::printf("  tide                      %.3f m at the first ping, %.3f m at the last (%s)\n", *tideFirst, *tideLast,
                    rep.tideFile.c_str());
    else
        std::printf("  tide                      FAILED (%s)\n", why.c_str());
    std::printf("  pictures                  %s%s, %s%s, %s%s\n", ro.out.c_str(), fanOk ? "" : " (FAILED)", mo.out.c_str(),
                mosaicOk ? "" : " (FAILED)", md.out.c_str(), depthOk ? "" : " (FAILED)");
    std::printf("  panels                    %s\n", panelsOk ? "sensors-list, sensors-grid, sos, tide, tide-select, geodesy"
                                                           : "FAILED");
    return same == static_cast<int>(rec.pings.size()) && fanOk && mosaicOk && depthOk && panelsOk && tideFirst &&
                   tideLast
               ? 0
               : 1;
}

} // namespace zanrec
