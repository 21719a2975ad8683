#pragma once
// CTideObj: a table of tide heights by time, and the panel of the host that
// shows its file and corrections.
//
// The table is the object's own CList_Mgd<CTmVal>, in the order the points
// were read (never sorted). Queries expect it to rise in time: a point no
// later than the one before is passed over. Between two points the height
// follows half a sine wave (flat at each high and low water), or a straight
// line when m_bGraph is non-zero (a fine-grained curve rather than high and
// low waters). -32768.0 (kNoTide) means "no tide at that time" and is never
// a height.
//
// Tide files are text, one point a line, ".csv" or ".tid" alike. Each line
// is tried against these forms in order, and the first that yields all its
// fields wins (day/month/year, hour:minute[:second], height in metres):
//   "%d/%d/%d,%d:%d:%d,%lf"   "%d/%d/%d %d:%d:%d,%lf"   "%d/%d/%d %d:%d:%d %lf"
//   "%d/%d/%d,%d:%d,%lf"      "%d/%d/%d %d:%d,%lf"      "%d/%d/%d %d:%d %lf"
// A year below 100 gets 2000 added. What follows the height is ignored;
// a line that fits no form (a heading) is skipped silently. Times are
// calendar times in UTC.
//
// The last interval found is cached (m_pLo, m_pHi), so a query within it
// costs two comparisons: GetRaw writes even when it only answers, and a
// table belongs to one thread at a time. Every table joins s_tides in its
// constructor and leaves it in its destructor.
#include "core/CList_Mgd.h"
#include "core/CList_Ptr.h"
#include "core/platform/CZanWnd.h"
#include "environment/CTmVal.h"

class CZSetObj;

class CTideObj : public CZanWnd, public CList_Mgd<CTmVal> {
public:
    static CRuntimeClass classCTideObj;
    static CRuntimeClass* GetThisClass() { return &classCTideObj; }
    static CObject* CreateObject() { return new CTideObj; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCTideObj; }

    // The answer for a time with no tide.
    static constexpr double kNoTide = -32768.0;

    // An empty table named "Default", at the tail of s_tides. The panel's
    // controls come with SetupCtrls.
    CTideObj();
    // Leaves s_tides, then frees the points.
    ~CTideObj() override;
    CTideObj(const CTideObj&) = delete;
    // The bases' assignment (name, title, flag; the points, copied), then
    // m_colour, m_fileName, m_shift, m_offset, m_scale and m_bGraph. The
    // cached interval is dropped: it pointed into the other table.
    CTideObj& operator=(const CTideObj& src);

    DWORD m_colour = 0;      // colour of this tide in the host's display
    CString m_fileName;      // path of the tide file
    double m_shift = 0.0;    // phase shift, seconds, added to the time of a query
    double m_offset = 0.0;   // datum offset, metres
    double m_scale = 1.0;    // datum scale
    CTmVal* m_pLo = nullptr;  // earlier point of the cached interval (not owned)
    CTmVal* m_pHi = nullptr;  // later point of it (not owned)
    int m_bGraph = 0;        // non-zero: straight lines; 0: sine-shaped

    // Every table alive, in order of construction; the list borrows them.
    static CList_Ptr<CTideObj*> s_tides;

    // The table's height in metres at tm (seconds of CTm80), uncorrected.
    // kNoTide when the table is empty, when tm lies before the head's time
    // or after the tail's, when no point is later than tm (tm exactly at the
    // last point's time included: an interval is closed at its start only),
    // and when no earlier point precedes the later one. Accuracy: the
    // double arithmetic of the rule, a few ulps of the larger of the two
    // heights (not of the result, which cancels when they differ in sign).
    // Heights whose difference is beyond half the double's range overflow
    // the sine rule, which doubles it before halving: the result is then
    // infinite. Real tides are nowhere near; the rule is kept as it stands.
    virtual double GetRaw(double tm);
    // GetRaw(tm + m_shift) * m_scale + m_offset, or kNoTide (uncorrected)
    // when GetRaw gives kNoTide.
    double GetTide(double tm);
    // Replaces the table by the points of a tide file, reporting each point
    // read to the console as "<d/m/Y H:M:S>: <line>". An empty name, a path
    // that is no existing file, or a file that won't open changes nothing
    // and reports nothing. m_fileName is not touched.
    void ReadTHL(CString file);
    // Asks the host for a tide file (CFileDialog: "*.csv", title "Tide file
    // to Load", m_fileName as the initial folder, filters for *.csv, *.tid
    // and *.*); when one is chosen, m_fileName becomes its path and ReadTHL
    // reads it. Without a chooser installed nothing changes.
    void Browse();

    // "Colour" (unsigned long), "FName", "Shift", "Offset", "Scale" (double),
    // "Graph" (int); the points travel as data lines "d/m/Y H:M:S,height"
    // with two decimals, so the table comes back rounded to centimetres and
    // needs no file. Loading empties the table first and takes every line
    // of the form "%d/%d/%d %d:%d:%d,%lf" (year rule as in a file), silently
    // skipping others. The base's Settings is not called.
    void Settings(CZSetObj& set) override;
    // The panel's controls: "Tide File" with a field on m_fileName and a
    // "..." button (Browse); "Phase Shift (')" in minutes over m_shift in
    // seconds; "Datum Offset (m)"; "Datum Scale"; "Use Graph".
    void SetupCtrls() override;

    // The first table of s_tides whose m_strName equals `name` exactly, or
    // null.
    static CTideObj* GetTideObj(const CString& name);

    // The point that a line of tide text holds, by the six forms above;
    // false (t and v untouched) when no form fits. t is CTm80 seconds.
    static bool ParseLine(const CString& line, double& t, double& v);

private:
    double Interpolate(const CTmVal& lo, const CTmVal& hi, double tm) const;
    void ClearCache()
    {
        m_pLo = nullptr;
        m_pHi = nullptr;
    }
};
