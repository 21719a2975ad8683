// zanrec: the sonar recording tool.
#include <zandata/ZanData.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <vector>

namespace {
void PrintRow(const char* role, int idx)
{
    const CArrType& r = CArrType::s_types[idx];
    std::printf("  %s row %2d: %-14s type %d  %6u Hz  %3u elements  pitch %.6f m  flags 0x%04X\n", role, idx,
                r.m_name.Utf8().c_str(), r.m_type, r.m_freq, static_cast<unsigned>(r.m_nElements),
                static_cast<double>(r.m_pitch), static_cast<unsigned>(r.m_flags));
}

std::vector<BYTE> RecordBytes(CPing& p)
{
    CMemFile f;
    CArchive ar(&f, CArchive::store);
    p.Serialize(ar);
    ar.Close();
    return std::vector<BYTE>(f.GetBuffer(), f.GetBuffer() + f.GetLength());
}

void PrintScales(const char* which, const CPing& p)
{
    std::printf("  %s: %.9g s per line, centre beam %.1f, sine step %.9g\n", which, p.m_rlTime, p.m_brgCentre,
                p.m_brgScale);
}

int Demo(const std::string& outDir)
{
    std::filesystem::create_directories(outDir);
    const std::string path = outDir + "/ping.zrec";

    CPing ping;
    std::printf("Default ping: %d beams, %d lines/s, %.1f m/s, gate %.1f-%.1f m, TVG %u\n", ping.m_numBeams,
                ping.m_modFreq, static_cast<double>(ping.m_sosXd), static_cast<double>(ping.m_startRngM),
                static_cast<double>(ping.m_endRngM), ping.TVG());
    PrintRow("Rx1", ping.m_rx1Idx);
    PrintRow("Tx1", ping.m_tx1Idx);
    PrintRow("Rx2", ping.m_rx2Idx);
    PrintRow("Tx2", ping.m_tx2Idx);

    {
        CFile f;
        if (!f.Open(CString::FromUtf8(path), CFile::modeCreate | CFile::modeWrite)) {
            std::fprintf(stderr, "zanrec: cannot write %s\n", path.c_str());
            return 1;
        }
        CArchive ar(&f, CArchive::store);
        ping.Serialize(ar);
        ar.Close();
    }
    std::printf("Recorded %s (%ju bytes)\n", path.c_str(), static_cast<uintmax_t>(std::filesystem::file_size(path)));

    CPing back;
    back.SetNumBeams(64);  // a different ping to read into
    back.m_pingID = 0;
    try {
        CFile f;
        if (!f.Open(CString::FromUtf8(path), CFile::modeRead)) {
            std::fprintf(stderr, "zanrec: cannot read %s\n", path.c_str());
            return 1;
        }
        CArchive ar(&f, CArchive::load);
        back.Serialize(ar);
    } catch (const CException& e) {
        std::fprintf(stderr, "zanrec: %s: %s\n", path.c_str(), e.what());
        return 1;
    }

    const bool same = RecordBytes(ping) == RecordBytes(back) && back.m_numBeams == ping.m_numBeams;
    std::printf("Read back: the two pings %s\n", same ? "agree, record for record" : "DIFFER");
    // Loading derives the bearing scale from the receive row's real pitch,
    // where a new ping starts from the nominal 0.003125 m.
    PrintScales("written", ping);
    PrintScales("read   ", back);
    return same ? 0 : 1;
}
} // namespace

void AddGeoCommand(CLI::App& app);  // GeoCommand.cpp

int main(int argc, char** argv)
{
    CLI::App app{"zanrec: synthesise, record, inspect and draw multibeam sonar pings with ZanData"};
    app.require_subcommand(1);
    std::string out = "out/demo";
    auto* demo = app.add_subcommand("demo", "run the whole road of a ping on a synthetic survey");
    demo->add_option("--out", out, "folder for the recording and pictures");
    AddGeoCommand(app);
    CLI11_PARSE(app, argc, argv);
    if (*demo) return Demo(out);
    return 0;
}
