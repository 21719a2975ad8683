#pragma once
// CZanWnd: the base class of the host's panels, a window (CWnd) with a flow
// layout of controls (CCtrlCat), in this order.
//
// Messages. The host sends sensor messages with SnsrMsg to the panels in
// s_snsrRx, information messages with InfoMsg to those in s_infoRx, and data
// messages with DataMsg to every panel alive; each panel sees them as
// OnSnsrMsg, OnInfoMsg and OnDataMsg, in list order. A panel that wants
// sensor or information messages adds itself to the list in its constructor.
// Every panel leaves every list it is in when it is destroyed (the base's
// destructor sees to it, whatever the derived class does), and a panel
// destroyed while a message is going round receives nothing more of it.
//
// Painting. A panel's window paints through Draw. The base's Draw paints the
// panel's controls as laid out, so every panel can be looked at; a panel
// with a drawing of its own overrides Draw. SavePicture paints the whole
// panel and writes it as a PNG file.
//
// Panels and the lists belong to the host's user interface thread. The
// lists are unguarded: a host that sends messages from another thread must
// not create or destroy panels meanwhile.
#include "core/CList_Ptr.h"
#include "core/platform/CCtrlCat.h"
#include "core/platform/CMutex.h"
#include "core/platform/CWnd.h"

class CMdl;  // a model of the core, only a parameter of OnMdlMsg

// The core's record of information message 4000. A reader locks m_lock to
// read m_nState; the two words tell what panels should drop: m_bClearAll
// non-zero, texts and counts; else m_bClearCounts non-zero, counts only.
struct CZanStateMsg {
    DWORD m_bClearAll = 0;
    DWORD m_bClearCounts = 0;
    CMutex m_lock;
    int m_nState = 0;
};

class CZanWnd : public CWnd, public CCtrlCat {
public:
    static CRuntimeClass classCZanWnd;
    static CRuntimeClass* GetThisClass() { return &classCZanWnd; }
    static CObject* CreateObject() { return new CZanWnd; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCZanWnd; }

    // A panel without a window, name or title; it joins the list of all
    // panels (for DataMsg).
    CZanWnd();
    // Leaves s_snsrRx, s_infoRx and the list of all panels, then the bases
    // go (controls, then window).
    ~CZanWnd() override;
    CZanWnd(const CZanWnd&) = delete;
    // Copies m_strName, m_strTitle and m_nFlag. The window, the controls and
    // the lists the panel is in stay as they are.
    CZanWnd& operator=(const CZanWnd& src);

    CString m_strName;   // name by which the panel is found in saved settings
    CString m_strTitle;  // title
    int m_nFlag = 0;     // flag word of the core; panels that listen to sensors set it to 1

    // Panels that receive sensor messages, and information messages.
    static CList_Ptr<CZanWnd*> s_snsrRx;
    static CList_Ptr<CZanWnd*> s_infoRx;
    // Every panel alive, in order of construction.
    static CList_Ptr<CZanWnd*> s_wnds;

    // Host calls: each panel of s_snsrRx gets OnSnsrMsg(id, data) (data
    // points to a CSnsrInf record), each of s_infoRx OnInfoMsg(id, data).
    static void SnsrMsg(int id, void* data);
    static void InfoMsg(int id, void* data);
    // Passes data to every panel alive, as OnDataMsg(id, data), on the
    // caller's thread.
    static void DataMsg(int id, void* data);

    // Creates the panel's window (see CWnd::Create) and its controls' windows.
    BOOL Create(const CRect& rect, CWnd* parent = nullptr);
    // Paints the whole panel and writes it as PNG: a panel without a window
    // gets one first, width by height, or where those are 0 the controls'
    // extent plus a margin of 5 (at least 40 by 20). A hidden panel is
    // painted all the same. FALSE when the file can't be written.
    BOOL SavePicture(const CString& path, int width = 0, int height = 0);

    // Virtual operations of the panels, in slot order. The base's do nothing
    // unless said otherwise.
    // One named option of the panel.
    virtual void SetOption(const CString& key, const CString& value);
    // Creates the panel's controls through the CCtrlCat calls.
    virtual void SetupCtrls();
    virtual void SetDefaults();
    // Ping trigger and periodic call.
    virtual void OnTrigger(double, double);
    virtual void OnPoll(double);
    virtual void OnInfoMsg(int id, void* data);
    virtual void OnSnsrMsg(int id, void* data);
    virtual void OnDataMsg(int id, void* data);
    virtual void OnMdlMsg(CMdl* model, int id, void* data);
    virtual void OnNfyWnd(CZanWnd* from, int id, void* data);
    // Draws a child window.
    virtual void DrawEWnd(CZWnd* child, CDC* dc, CRect& rect);
    // Draws the panel on dc, in client coordinates. The base draws the
    // controls (CCtrlCat::DrawCtrls).
    virtual void Draw(CDC* dc);
    virtual void UpdateLabels();
    // Lays the controls out over the client rectangle (LayoutCtrls).
    virtual void LayoutWnd(int);
    // Moves the window so that its top-left corner is at pt.
    virtual void SetWndOrg(CPoint pt);
    // Help topic: empty.
    virtual CString GetTopic();
    virtual void OnSize(unsigned int, int, int);

    // The framework keeps nothing of a panel in the settings store.
    void Settings(CZSetObj& set) override;

protected:
    void OnPaint(CDC* dc) override;
};
