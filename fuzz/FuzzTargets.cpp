#include "fuzz/FuzzTargets.h"

#include "fuzz/FuzzUtil.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zanfuzz {

namespace {
const Target kTargets[] = {
    {"ping", FuzzPing},
    {"ping_zoom", FuzzPingZoom},
    {"tgt", FuzzTgt},
    {"tgtrec", FuzzTgtRec},
    {"bnd", FuzzBnd},
    {"img", FuzzImg},
    {"img_pingex", FuzzImgPingEx},
    {"img_zoom", FuzzImgZoom},
    {"uncompress", FuzzUncompress},
    {"snsr", FuzzSnsr},
    {"geo", FuzzGeo},
    {"geodb", FuzzGeoDb},
    {"settings", FuzzSettings},
    {"tide", FuzzTide},
    {"recording", FuzzRecording},
};
}  // namespace

const Target* Targets(size_t& n)
{
    n = std::size(kTargets);
    return kTargets;
}

Entry Find(const char* name)
{
    for (const Target& t : kTargets)
        if (std::strcmp(t.name, name) == 0) return t.fn;
    return nullptr;
}

void Setup()
{
    // The text of a report is still formatted, so damaged names and lines go
    // through the formatting code; only the output is dropped.
    Zan::SetSink([](Zan::Kind, unsigned long, int, const CString&) {});
}

namespace {
void (*g_failHandler)(const std::string&) = nullptr;
}  // namespace

void SetFailHandler(void (*handler)(const std::string& what))
{
    g_failHandler = handler;
}

void Fail(const std::string& what)
{
    if (g_failHandler) g_failHandler(what);
    std::fprintf(stderr, "zanfuzz: %s\n", what.c_str());
    std::fflush(stderr);
    std::abort();
}

}  // namespace zanfuzz
