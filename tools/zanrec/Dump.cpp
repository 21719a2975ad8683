// zanrec dump: every field of one ping's CPing, CTgtRec and image header.
#include "Commands.h"
#include "Loaded.h"

#include <cstdio>
#include <string>
#include <type_traits>

namespace zanrec {
namespace {

template <class T>
void Field(const char* name, const T& v)
{
    if constexpr (std::is_same_v<T, bool>) std::printf("  %-20s %d\n", name, v ? 1 : 0);
    else if constexpr (std::is_floating_point_v<T>) std::printf("  %-20s %.10g\n", name, static_cast<double>(v));
    else if constexpr (std::is_signed_v<T>) std::printf("  %-20s %lld\n", name, static_cast<long long>(v));
    else std::printf("  %-20s %llu\n", name, static_cast<unsigned long long>(v));
}

void Field(const char* name, const CV3& v) { std::printf("  %-20s %.4f %.4f %.4f\n", name, v.x, v.y, v.z); }

void Field(const char* name, const CMat& m)
{
    std::printf("  %-20s org %.3f %.3f %.3f  heading %.4f pitch %.4f roll %.4f rad\n", name, m.X(), m.Y(), m.Z(),
                m.Heading(), m.Pitch(), m.Roll());
}

void DumpPing(const CPing& p)
{
    std::printf("CPing\n");
#include "DumpFields.inc"
    std::printf("  %-20s", "m_pBrgTbl");
    for (int b = 0; b < p.m_numBeams; b += (p.m_numBeams > 8 ? p.m_numBeams / 8 : 1))
        std::printf(" [%d]=%.5f", b, p.m_pBrgTbl ? p.m_pBrgTbl[b] : 0.0);
    std::printf("\n  m_zoom\n");
    Field("  m_azHead", p.m_zoom.m_azHead);
    Field("  m_azOn", p.m_zoom.m_azOn);
    Field("  m_azFactor", p.m_zoom.m_azFactor);
    Field("  m_azDecim", p.m_zoom.m_azDecim);
    Field("  m_azNumBeams", p.m_zoom.m_azNumBeams);
    Field("  m_azArg1", p.m_zoom.m_azArg1);
    Field("  m_azArg2", p.m_zoom.m_azArg2);
}

} // namespace

int Dump(const std::string& file, int ping)
{
    Loaded rec;
    if (!LoadRecording(file, rec)) return 1;
    if (ping < 0 || ping >= static_cast<int>(rec.pings.size())) {
        std::fprintf(stderr, "zanrec: %s: ping %d is out of range (the recording has %zu)\n", file.c_str(), ping,
                     rec.pings.size());
        return 2;
    }
    CTgtImg* img = CTgtImg::GetImg();
    std::string why;
    if (!LoadPing(rec, ping, *img, why)) {
        std::fprintf(stderr, "zanrec: %s: damaged ping record: %s\n", file.c_str(), why.c_str());
        CTgtImg::DelImg(img);
        return 1;
    }
    DumpPing(*img->Ping());
    const CTgtRec& r = img->m_tgtRec;
    std::printf("CTgtRec\n");
    Field("m_sonarNo", r.m_sonarNo);
    Field("m_tgtSide", r.m_tgtSide);
    Field("m_recVal1", r.m_recVal1);
    Field("m_recVal2", r.m_recVal2);
    Field("m_elevDeg", r.m_elevDeg);
    Field("m_sosAvg", r.m_sosAvg);
    Field("m_frame", r.m_frame);
    int k = 0;
    for (CZanPtr* pos = r.GetHeadPos(); pos;) {
        const CTgt* t = r.GetNext(pos);
        std::printf("  target %-3d %10.3f %10.3f %7.3f  rngK %u brgK %u level %u kind %u value %.3f\n", k++, t->x, t->y,
                    t->z, t->m_rngK, t->m_brgK, t->m_level, t->m_kind, t->m_tgtValue);
    }
    std::printf("CTgtImg\n");
    Field("m_nState", img->m_nState);
    Field("m_nPixBytes", img->m_nPixBytes);
    Field("m_nRngs", img->m_nRngs);
    Field("m_nBrgs", img->m_nBrgs);
    Field("m_nStartBrg", img->m_nStartBrg);
    Field("m_nEndBrg", img->m_nEndBrg);
    Field("m_nStartRng", img->m_nStartRng);
    Field("m_nEndRng", img->m_nEndRng);
    Field("m_nQIWidth", img->m_nQIWidth);
    Field("m_nPAWidth", img->m_nPAWidth);
    Field("m_nImgBytes", img->m_nImgBytes);
    Field("m_nQIBytes", img->m_nQIBytes);
    Field("m_nPABytes", img->m_nPABytes);
    Field("m_nLXBytes", img->m_nLXBytes);
    Field("m_nCompLevel", img->m_nCompLevel);
    Field("m_nRollTgt1", img->m_nRollTgt1);
    Field("m_nRollTgt2", img->m_nRollTgt2);
    Field("m_fRoll", img->m_fRoll);
    Field("m_nRollFlags", img->m_nRollFlags);
    Field("m_vExPos", img->m_vExPos);
    Field("m_nAZStartRng", img->m_nAZStartRng);
    Field("m_nAZEndRng", img->m_nAZEndRng);
    Field("m_nAZStartBrg", img->m_nAZStartBrg);
    Field("m_nAZEndBrg", img->m_nAZEndBrg);
    Field("m_nAZBrgs", img->m_nAZBrgs);
    Field("m_nAZRngs", img->m_nAZRngs);
    if (!img->m_vStart.empty()) {
        Field("m_vStart[0]", img->m_vStart.front());
        Field("m_vEnd[0]", img->m_vEnd.front());
        Field("m_vStart[last]", img->m_vStart.back());
        Field("m_vEnd[last]", img->m_vEnd.back());
    }
    std::printf("  boundaries           %d\n", img->m_bnds.GetCount());
    Pose pose;
    if (rec.hasRef && rec.nav.PoseAt(PingTime(*img), rec.ref, pose)) {
        const CMat m = Survey::SonarFrame(pose);
        std::printf("Frame from the sensor records at the ping's time\n");
        Field("sonar", m);
        Field("sos", pose.sos);
        Field("altitude", pose.altitude);
    }
    CTgtImg::DelImg(img);
    return 0;
}

} // namespace zanrec
