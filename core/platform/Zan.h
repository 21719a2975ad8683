#pragma once
// Zan: the core's program-wide reporting calls and globals.
//
// Every report reaches one sink that the host installs with Zan::SetSink; the
// default sink writes one line to stderr. Sinks are called on whichever
// thread reports, possibly on several at once.
#include "core/platform/CDC.h"
#include "core/platform/CString.h"

#include <functional>

class Zan {
public:
    enum class Kind { Status, Alarm, Console };
    using Sink = std::function<void(Kind kind, unsigned long id, int level, const CString& text)>;

    // Installs `sink` (an empty one restores the default) and returns the
    // previous sink.
    static Sink SetSink(Sink sink);

    // A status message number `id`; `fmt` has printf rules with wide strings.
    template <class... A>
    static void Status(unsigned long id, int level, const CString& fmt, const A&... args)
    {
        Emit(Kind::Status, id, level, CString::Fmt(fmt, args...));
    }
    // The same, as an alarm.
    template <class... A>
    static void Alarm(unsigned long id, int level, const CString& fmt, const A&... args)
    {
        Emit(Kind::Alarm, id, level, CString::Fmt(fmt, args...));
    }
    // One line of the console (id 0).
    template <class... A>
    static void Console(int level, const CString& fmt, const A&... args)
    {
        Emit(Kind::Console, 0, level, CString::Fmt(fmt, args...));
    }
    static void Emit(Kind kind, unsigned long id, int level, const CString& text);

    // A round marker spacing near v: 1, 2 or 5 times a power of ten, chosen
    // by the nearest in ratio (thresholds at 1.5, 3.5 and 7.5). v must be
    // positive and finite; anything else gives 1.0.
    static double NearestMkr(double v);

    static int zanMode;      // the host's mode word; 0 at load
    static CString projDir;  // the project folder, with its trailing separator

    // Shared drawing objects of the panels, built at load. Brushes: blackB
    // (black) and backB (the panels' dark grey background). Fonts, DejaVu
    // Sans: normalF (12 px), largeF (14 px), boldF (12 px bold). Pen: darkL
    // (grey rules, one pixel). txt: a 16 by 16 memory context holding the
    // header texture (a dark grey gradient), which panels stretch over their
    // header strips.
    static CBrush blackB;
    static CBrush backB;
    static CFont normalF;
    static CFont largeF;
    static CFont boldF;
    static CPen darkL;
    static CDC txt;
};

// A value as text in the user's units.
class ZUnits {
public:
    enum Type { Length = 0, Temperature = 1 };
    // Units in force for the process: lengths in metres (0) or feet (1),
    // temperatures in degrees Celsius (0) or Fahrenheit (1).
    static int s_lengthUnits;
    static int s_tempUnits;
    // `value` (metres for type 0, degrees Celsius for type 1) converted to the
    // user's units and printed with the printf format `fmt`; a non-zero flag
    // appends the unit's symbol ("m", "ft", "°C", "°F") with no space.
    static CString Get(int type, double value, const CString& fmt, int flag);
};
