// zanrec: the sonar recording tool.
#include <zandata/ZanData.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>

namespace {
int Demo(const std::string& outDir)
{
    std::filesystem::create_directories(outDir);
    const std::string path = outDir + "/demo.zrec";
    CString text(u"ZanData demo");
    {
        CFile f;
        if (!f.Open(CString::FromUtf8(path), CFile::modeCreate | CFile::modeWrite)) {
            std::fprintf(stderr, "zanrec: cannot write %s\n", path.c_str());
            return 1;
        }
        CArchive ar(&f, CArchive::store);
        ar << text << 1.5 << 42;
        ar.Close();
    }
    CFile f;
    if (!f.Open(CString::FromUtf8(path), CFile::modeRead)) return 1;
    CArchive ar(&f, CArchive::load);
    CString back;
    double d = 0;
    int n = 0;
    ar >> back >> d >> n;
    const bool same = back == text && d == 1.5 && n == 42;
    std::printf("%s: recorded and read back %s\n", path.c_str(), same ? "identically" : "DIFFERENTLY");
    return same ? 0 : 1;
}
} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"zanrec: synthesise, record, inspect and draw multibeam sonar pings with ZanData"};
    app.require_subcommand(1);
    std::string out = "out/demo";
    auto* demo = app.add_subcommand("demo", "run the whole road of a ping on a synthetic survey");
    demo->add_option("--out", out, "folder for the recording and pictures");
    CLI11_PARSE(app, argc, argv);
    if (*demo) return Demo(out);
    return 0;
}
