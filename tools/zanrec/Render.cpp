// zanrec render and mosaic: pictures drawn off-screen with the library's own
// drawing calls.
#include "Commands.h"
#include "Loaded.h"
#include "Road.h"
#include "Tide.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace zanrec {
namespace {

bool ParseDepth(const std::string& s, double& lo, double& hi)
{
    const auto c = s.find(':');
    if (c == std::string::npos) return false;
    // The end pointers point into these, so they must outlive the checks.
    const std::string a = s.substr(0, c), b = s.substr(c + 1);
    char* e1 = nullptr;
    char* e2 = nullptr;
    lo = std::strtod(a.c_str(), &e1);
    hi = std::strtod(b.c_str(), &e2);
    return e1 && !*e1 && e2 && !*e2 && !a.empty() && !b.empty();
}

// Targets and vectors laid in the flat fan: the image seen from the sonar
// with no tilt, bearing 0 straight up, starboard to the right.
void LayInFan(CTgtImg& img)
{
    CPing& ping = *img.Ping();
    img.m_tgtRec.m_elevDeg = 0.0;
    img.m_tgtRec.m_sosAvg = ping.m_sosXd;
    CMat flat, tilt;
    img.SetupExtents(flat, tilt);
    const double lineM = ping.m_sosXd * 0.5 / ping.m_modFreq;
    for (CZanPtr* pos = img.m_tgtRec.GetHeadPos(); pos;) {
        CTgt* t = img.m_tgtRec.GetNext(pos);
        const size_t b = std::min<size_t>(t->m_brgK / 1000, img.m_vStart.size() - 1);
        static_cast<CV3&>(*t) = img.m_vStart[b] + img.m_vDir[b] * (t->m_rngK / 1000.0 * lineM);
        t->z = 0.0;
    }
}

// The tide at a ping's time, in metres, by which its depths are reduced; 0
// (with a warning) where the table has none.
double TideFor(CTideObj& tide, CTgtImg& img, int ping)
{
    if (const auto h = TideAt(tide, PingTime(img))) return *h;
    std::fprintf(stderr, "zanrec: no tide in %s at ping %d; its depths are not reduced\n",
                 tide.m_fileName.Utf8().c_str(), ping);
    return 0.0;
}

// Loads the tide file of an option, if one is given; false after printing
// the reason.
bool LoadTideOption(const std::string& path, CTideObj& tide)
{
    std::string why;
    if (path.empty() || LoadTide(path, tide, why)) return true;
    std::fprintf(stderr, "zanrec: %s\n", why.c_str());
    return false;
}

// The options render and mosaic share: the picture's size, the depth span
// (byDepth when one is given) and the tide file. False after printing what
// is wrong.
bool PictureOptions(int size, const std::string& depth, const std::string& tidePath, bool& byDepth, double& lo,
                    double& hi, CTideObj& tide)
{
    if (size < 16 || size > 8192) {
        std::fprintf(stderr, "zanrec: --size takes 16..8192 pixels\n");
        return false;
    }
    byDepth = !depth.empty();
    if (byDepth && !ParseDepth(depth, lo, hi)) {
        std::fprintf(stderr, "zanrec: --depth takes MIN:MAX in metres, not '%s'\n", depth.c_str());
        return false;
    }
    return LoadTideOption(tidePath, tide);
}

} // namespace

int Render(const RenderOptions& o)
{
    double lo = 0, hi = 0;
    bool byDepth = false;
    CTideObj tide;
    if (!PictureOptions(o.size, o.depth, o.tide, byDepth, lo, hi, tide)) return 2;
    if (o.colour != "grey" && o.colour != "viridis") {
        std::fprintf(stderr, "zanrec: --colour takes grey or viridis\n");
        return 2;
    }
    if (o.filter < 0 || o.filter > 4) {
        std::fprintf(stderr, "zanrec: --filter takes 1..4\n");
        return 2;
    }
    Loaded rec;
    if (!LoadRecording(o.file, rec)) return 1;
    if (o.ping < 0 || o.ping >= static_cast<int>(rec.pings.size())) {
        std::fprintf(stderr, "zanrec: %s: ping %d is out of range (the recording has %zu)\n", o.file.c_str(), o.ping,
                     rec.pings.size());
        return 2;
    }
    CTgtImg* img = CTgtImg::GetImg();
    std::string why;
    if (!LoadPing(rec, o.ping, *img, why)) {
        std::fprintf(stderr, "zanrec: %s: damaged ping record: %s\n", o.file.c_str(), why.c_str());
        CTgtImg::DelImg(img);
        return 1;
    }
    if (!o.tide.empty()) {
        // Colouring z - h over lo..hi is colouring z over lo + h..hi + h.
        const double h = TideFor(tide, *img, o.ping);
        lo += h;
        hi += h;
    }
    const int rc = RenderFan(*img, o, byDepth, lo, hi) ? 0 : 1;
    CTgtImg::DelImg(img);
    return rc;
}

bool RenderFan(CTgtImg& img, const RenderOptions& o, bool byDepth, double lo, double hi)
{
    if (o.filter > 0) {
        CTgtImgFlt flt;
        SetupFilter(flt, o.filter);
        flt.Filter(&img);
    }
    CColTbl tbl = o.colour == "viridis" ? CColTbl::Viridis() : CColTbl::Grey();
    // Depth colours come from the image's place in the world, before it is
    // laid flat for the fan.
    img.CreateImg(tbl, 4, byDepth ? 1 : 0, lo, hi, true);
    LayInFan(img);

    COffscreenGL gl(o.size, o.size);
    if (!gl.IsValid()) {
        std::fprintf(stderr, "zanrec: no off-screen OpenGL context\n");
        return false;
    }
    const double far = img.Ping()->GetImgRLM(static_cast<int>(img.m_nEndRng));
    // The fan spans x within +-far sin 60 and y from 0 to far: a square
    // view round its middle holds it with a margin.
    const double half = far * 0.92;
    gl.Clear(0.02f, 0.03f, 0.08f, 1.0f);
    gl.SetOrtho(-half, half, far * 0.5 - half, far * 0.5 + half);
    CDsp dsp(2 * half / o.size, 0.0, 0.0);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // The fan's bearing 0 lies along +x; the grid's along +y: mirror x and y
    // so that both stand with bearing 0 up and starboard to the right.
    static const double swapXY[16] = {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glPushMatrix();
    glMultMatrixd(swapXY);
    img.DrawFan(0.0, 0, 0.0f);
    if (img.m_pAZDsp && img.m_nAZBrgs && img.m_nAZRngs) img.DrawAZFan(0.0, 0, 0.0);
    glPopMatrix();
    if (o.grid) img.DrawGrid(dsp, 5);
    if (o.overlays) {
        img.DrawBnds(dsp);
        img.DrawTgts(dsp);
    }
    if (!gl.SavePng(CString::FromUtf8(o.out))) {
        std::fprintf(stderr, "zanrec: cannot write %s\n", o.out.c_str());
        return false;
    }
    return true;
}

int Mosaic(const MosaicOptions& o)
{
    const std::string& file = o.file;
    const int size = o.size;
    double lo = 0, hi = 0;
    bool byDepth = false;
    CTideObj tide;
    if (!PictureOptions(size, o.depth, o.tide, byDepth, lo, hi, tide)) return 2;
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    if (rec.pings.empty()) {
        std::fprintf(stderr, "zanrec: %s: no pings to lay out\n", file.c_str());
        return 1;
    }
    // Place every ping from the sensor records at its time, and find the
    // world's extent.
    std::vector<CTgtImg*> imgs;
    double x0 = std::numeric_limits<double>::max(), x1 = -x0, y0 = x0, y1 = -x0;
    CColTbl tbl = CColTbl::Viridis();
    int rc = 0;
    for (size_t k = 0; k < rec.pings.size(); ++k) {
        CTgtImg* img = CTgtImg::GetImg();
        std::string why;
        if (!LoadPing(rec, static_cast<int>(k), *img, why)) {
            std::fprintf(stderr, "zanrec: %s: damaged ping record: %s\n", file.c_str(), why.c_str());
            CTgtImg::DelImg(img);
            rc = 1;
            break;
        }
        Pose pose;
        if (rec.hasRef && rec.nav.PoseAt(PingTime(*img), rec.ref, pose)) {
            CMat sonar = Survey::SonarFrame(pose), tilt;
            img->m_tgtRec.m_sosAvg = pose.sos;
            img->SetupExtents(sonar, tilt);
        }
        const double h = o.tide.empty() ? 0.0 : TideFor(tide, *img, static_cast<int>(k));
        img->CreateImg(tbl, 3, byDepth ? 1 : 0, lo + h, hi + h, true);
        for (size_t b = 0; b < img->m_vStart.size(); ++b)
            for (const CV3& v : {img->m_vStart[b], img->m_vEnd[b]})
                if (v.Finite()) {
                    x0 = std::min(x0, v.x); x1 = std::max(x1, v.x);
                    y0 = std::min(y0, v.y); y1 = std::max(y1, v.y);
                }
        imgs.push_back(img);
    }
    bool ok = !imgs.empty() && x1 > x0 && y1 > y0;
    if (ok) {
        const double cx = (x0 + x1) / 2, cy = (y0 + y1) / 2;
        const double half = std::max(x1 - x0, y1 - y0) / 2 * 1.05;
        COffscreenGL gl(size, size);
        ok = gl.IsValid();
        if (ok) {
            gl.Clear(0.02f, 0.03f, 0.08f, 1.0f);
            gl.SetOrtho(-half, half, -half, half);
            CDsp dsp(2 * half / size, cx, cy);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
            for (CTgtImg* img : imgs) img->DrawImg(dsp, 0.35);
            for (CTgtImg* img : imgs) img->DrawTgts(dsp);
            ok = gl.SavePng(CString::FromUtf8(o.out));
            if (!ok) std::fprintf(stderr, "zanrec: cannot write %s\n", o.out.c_str());
        } else {
            std::fprintf(stderr, "zanrec: no off-screen OpenGL context\n");
        }
    }
    for (CTgtImg*& img : imgs) CTgtImg::DelImg(img);
    return ok ? rc : 1;
}

} // namespace zanrec
