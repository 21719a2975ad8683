#pragma once
// Controls of the panels: CZVal binds a control to the host variable that it
// shows, CZCtrl is the base of all controls (fields, check boxes, static
// text, buttons; combo boxes are in CZCombo.h).
//
// A control shows its variable when Update runs (the panel's UpdateCtrls) and
// takes what the user entered back into it when Retreive runs (the panel's
// RetreiveCtrls, or the user leaving the field). A value that doesn't parse
// or lies outside the range is refused: the variable keeps its value and the
// field shows it again. The change callback runs once for each Retreive that
// changes the variable, never from Update.
//
// Controls belong to the host's user interface thread.
#include "core/platform/CObject.h"
#include "core/platform/CWnd.h"

// Optional layout companion of CCtrlCat's calls; the library passes null.
class CZFlex {
public:
    virtual ~CZFlex() = default;
};

// A child window that a panel draws through DrawEWnd.
class CZWnd : public CWnd {
};

class CZVal {
public:
    // What the control is bound to.
    enum Var { vNone = 0, vDouble, vInt, vString, vPtr };

    CZVal() = default;
    virtual ~CZVal() = default;

    // Binds the control to a variable, which must outlive the control.
    void Init(double& v) { Bind(vDouble, &v); }
    void Init(int& v) { Bind(vInt, &v); }
    void Init(CString& v) { Bind(vString, &v); }
    // Binds to a pointer variable (combo boxes of objects): the control
    // writes the chosen entry's data pointer into *v. A typed pointer binds
    // through its address cast to void**.
    void Init(void** v) { Bind(vPtr, v); }
    // Limits of a number that can be entered, in shown units (the stored
    // value times m_scale), both ends included. lo above hi accepts nothing.
    void SetRange(double lo, double hi)
    {
        m_lo = lo;
        m_hi = hi;
        m_bRange = TRUE;
    }
    // `handler` is called on `target` each time the user changes the
    // variable. A null target or handler removes the callback.
    void SetCallback(CObject* target, ZanHandler handler)
    {
        m_pCbTarget = target;
        m_pfnChanged = handler;
    }

    // Display scale: the control shows the stored value times m_scale and
    // stores what is entered divided by it (0 counts as 1). 1/60 shows
    // seconds as minutes.
    double m_scale = 1.0;

    int m_nVar = vNone;     // Var
    void* m_pVar = nullptr;  // the bound variable
    double m_lo = 0.0, m_hi = 0.0;
    BOOL m_bRange = FALSE;
    CObject* m_pCbTarget = nullptr;
    ZanHandler m_pfnChanged = nullptr;

    // The bound number in stored units (double or int variables; 0 else).
    double GetNumber() const;
    // Calls the change callback, if there is one.
    void NotifyChanged() const;

private:
    void Bind(int var, void* p)
    {
        m_nVar = var;
        m_pVar = p;
    }
};

class CZCtrl : public CWnd, public CZVal {
public:
    static CRuntimeClass classCZCtrl;
    static CRuntimeClass* GetThisClass() { return &classCZCtrl; }
    static CObject* CreateObject() { return new CZCtrl; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCZCtrl; }

    // Kinds of control: the `kind` values of CCtrlCat::InsCtrl, and two of
    // the framework's own for static text and buttons.
    enum Kind { kStatic = 1, kButton = 2, kText = 32, kNumber = 64, kCheck = 256, kCombo = 512 };

    CZCtrl();
    ~CZCtrl() override;

    CString m_strLabel;   // the control's label: a check box shows it as its text
    int m_nKind = kNumber;
    int m_nAlign = 0;     // text alignment: 0 left, 1 centred, 2 right
    int m_nLevel = 0;     // level of CCtrlCat::ShowLevel
    BOOL m_bHidden = FALSE;  // hidden by CCtrlCat::ShowLevel
    CRect m_rcLay;        // place given by the layout, in the panel's coordinates
    CZFlex* m_pFlex = nullptr;
    int m_nCheck = 0;     // check box: the state shown (0 or 1)
    CString m_strShown;   // text last shown by Update
    BOOL m_bRefused = FALSE;  // the last Retreive refused the entered text

    // Shows the variable's value (a field's text, a check box's state). The
    // argument is not used.
    virtual void Update(int);
    // Takes the entered value into the variable, see the file comment. A
    // number field whose text is still what Update showed changes nothing,
    // so a value isn't rounded by being shown.
    virtual void Retreive();
    // Tool tip text: the label, else the window text.
    virtual void GetTip(CString& tip);
    // What the user's click or Enter does: a button calls its handler, a
    // check box toggles and is taken back, a field is taken back.
    virtual void Execute();
    // Paints the control at m_rect, on a context in its parent's
    // coordinates.
    virtual void Draw(CDC* dc);

    // Buttons: what Execute calls.
    CObject* m_pBtnTarget = nullptr;
    ZanHandler m_pfnBtn = nullptr;
};

// Static text, as InsText makes it; its text is m_strText.
class CZText : public CZCtrl {
public:
    CZText();
};

// A push button, as InsBtn makes it; its caption is m_strText.
class CZBtn : public CZCtrl {
public:
    CZBtn();
};
