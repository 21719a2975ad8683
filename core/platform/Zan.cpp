#include "core/platform/Zan.h"

#include <cmath>
#include <cstdio>
#include <mutex>

int Zan::zanMode = 0;
CString Zan::projDir;

namespace {
std::mutex& SinkLock()
{
    static std::mutex m;
    return m;
}
Zan::Sink& CurrentSink()
{
    static Zan::Sink s;
    return s;
}
} // namespace

Zan::Sink Zan::SetSink(Sink sink)
{
    std::lock_guard<std::mutex> g(SinkLock());
    Sink old = std::move(CurrentSink());
    CurrentSink() = std::move(sink);
    return old;
}

void Zan::Emit(Kind kind, unsigned long id, int level, const CString& text)
{
    Sink s;
    {
        std::lock_guard<std::mutex> g(SinkLock());
        s = CurrentSink();
    }
    if (s) {
        s(kind, id, level, text);
        return;
    }
    const char* k = kind == Kind::Status ? "status" : kind == Kind::Alarm ? "alarm" : "console";
    std::fprintf(stderr, "zandata %s %lu [%d]: %s\n", k, id, level, text.Utf8().c_str());
}

double Zan::NearestMkr(double v)
{
    if (!(v > 0.0) || !std::isfinite(v)) return 1.0;
    const double p = std::pow(10.0, std::floor(std::log10(v)));
    const double m = v / p;
    const double step = m < 1.5 ? 1.0 : m < 3.5 ? 2.0 : m < 7.5 ? 5.0 : 10.0;
    return step * p;
}

int ZUnits::s_lengthUnits = 0;
int ZUnits::s_tempUnits = 0;

CString ZUnits::Get(int type, double value, const CString& fmt, int flag)
{
    const char16_t* unit = u"";
    if (type == Temperature) {
        if (s_tempUnits == 1) { value = value * 9.0 / 5.0 + 32.0; unit = u"\u00B0F"; }
        else unit = u"\u00B0C";
    } else {
        if (s_lengthUnits == 1) { value /= 0.3048; unit = u"ft"; }
        else unit = u"m";
    }
    CString s = CString::Fmt(fmt, value);
    if (flag) s += unit;
    return s;
}
