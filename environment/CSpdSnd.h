#pragma once
// CSpdSnd: a panel of the host and a source of the speed of sound at the
// transducer. It listens to the sensor stream (CZanWnd::s_snsrRx), averages
// the last 25 speed-of-sound readings of one sensor bank, accepts the
// average only within [m_minSos, m_maxSos], and lets the user override the
// result by hand. The host reads GetXd or GetAvg and hands the value on
// (CPing::SetSOSAtXd); nothing in the library does that by itself.
//
// Three modes, by m_useManual and m_live:
//   manual  (m_useManual non-zero): m_manSos is taken at CtrlChanged and
//           nothing else changes the speeds;
//   live    (m_useManual 0, m_live non-zero): each reading updates the
//           running average;
//   frozen  (both 0): no reading changes the speeds, SetSOS still does.
// m_stat takes every reading of the bank in every mode, so that leaving the
// manual mode takes up a current average.
//
// Every panel joins s_spdSnd (found by name with GetSpdSnd) and s_snsrRx in
// its constructor and leaves both in its destructor. Panels and their lists
// belong to the host's user interface thread: nothing here locks.
//
// CSpdSndPfl is the same panel under another C++ type: no fields, no virtual
// operations and no class record of its own (it reports CSpdSnd's).
#include "core/CList_Ptr.h"
#include "core/platform/CStatBuf.h"
#include "core/platform/CZanWnd.h"

class CZSet;
class CZSetObj;

class CSpdSnd : public CZanWnd {
public:
    static CRuntimeClass classCSpdSnd;
    static CRuntimeClass* GetThisClass() { return &classCSpdSnd; }
    static CObject* CreateObject() { return new CSpdSnd; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCSpdSnd; }

    // Defaults as below, m_nFlag 1, m_strTitle "Speed of Sound", m_strName
    // empty; builds the panel's controls ("Xd SOS", "Avg SOS", "Use Manual
    // SOS", "Man SOS", "Live Update", "Bank"; the three speed fields accept
    // 1350 to 1600 whatever SetMinMax says later) and joins s_spdSnd and
    // CZanWnd::s_snsrRx at their tails.
    CSpdSnd();
    // Leaves s_spdSnd; the base leaves s_snsrRx.
    ~CSpdSnd() override;
    CSpdSnd(const CSpdSnd&) = delete;
    // The base's assignment (name, title, flag), then every field below,
    // m_stat included. The lists and the controls stay as they are.
    CSpdSnd& operator=(const CSpdSnd& src);

    double m_xdSos = 1500.0;   // speed of sound at the transducer, m/s
    double m_avgSos = 1500.0;  // average speed of sound, m/s
    int m_useManual = 0;       // non-zero: the manual value rules
    double m_manSos = 1499.2;  // manual speed of sound, m/s
    int m_live = 1;            // non-zero: readings change the result
    int m_bank = 0;            // sensor bank whose readings are taken (0..7 in the panel)
    double m_sosTime = 0.0;    // time of the record or call that last set the speeds; 0.0 after a refusal
    double m_minSos = 1350.0;  // lowest value accepted, m/s
    double m_maxSos = 1600.0;  // highest value accepted, m/s
    CStatBuf m_stat;           // the last 25 readings

    // Every panel alive, in order of construction; the list borrows them.
    static CList_Ptr<CSpdSnd*> s_spdSnd;

    // m_avgSos, m/s.
    virtual double GetAvg();
    // m_xdSos, m/s; `depth` is not used.
    virtual double GetXd(double depth);
    // The accepted range, m/s.
    virtual void GetMinMax(double& lo, double& hi);
    // Sets the accepted range (both ends included); lo above hi accepts
    // nothing. The value controls keep their 1350..1600 limits.
    virtual void SetMinMax(double lo, double hi);

    // A sensor record (pRec points to a CSnsrInf; msg is not used). Only a
    // speed-of-sound record (type 6) of bank m_bank counts: its speed enters
    // m_stat; then, in the live mode only, an average within range becomes
    // m_avgSos and m_xdSos, m_sosTime takes the record's time and the
    // controls show the new values, while an average out of range sets
    // m_sosTime to 0.0 and changes nothing else. A null pRec is ignored.
    void OnSnsrMsg(int msg, void* pRec) override;
    // The host gives a speed (m/s) at time tm: ignored in the manual mode;
    // within range it becomes m_avgSos and m_xdSos and m_sosTime becomes tm,
    // otherwise m_sosTime becomes 0.0. The controls are not refreshed.
    void SetSOS(double sos, double tm);
    // Callback of "Use Manual SOS": in the live mode the current average,
    // if within range, becomes m_avgSos and m_xdSos (else they stay); in the
    // manual and frozen modes m_manSos becomes both. Then UpdateCtrls.
    void CtrlChanged();

    // The base's Settings, then "SosXd" (double), "SosAvg" (double),
    // "SosManual" (int, the manual switch), "SosUseManual" (double, the
    // manual speed), "SosLive" (int), "SosBank" (int).
    void Settings(CZSetObj& set) override;

    // The first panel of s_spdSnd whose m_strName equals `name` exactly, or
    // null.
    static CSpdSnd* GetSpdSnd(const CString& name);
    // Loads every object of the collection "SpdSnd" into the panel of that
    // name; an object without a panel is skipped, or with `create` non-zero
    // gets a new CSpdSnd (the host's to delete) named after it. Nothing
    // happens without that collection.
    static void LoadSet(CZSet& set, int create);
    // Replaces the collection "SpdSnd" by one object per panel of s_spdSnd,
    // in order, named m_strName with the text "No Data".
    static void SaveSet(CZSet& set);

private:
    // Both ends included.
    bool InRange(double v) const { return m_minSos <= v && v <= m_maxSos; }
};

// The speed-of-sound panel under a second type; everything is CSpdSnd's.
class CSpdSndPfl : public CSpdSnd {
public:
    CSpdSndPfl() = default;
    CSpdSndPfl& operator=(const CSpdSndPfl& src)
    {
        CSpdSnd::operator=(src);
        return *this;
    }
};
