#pragma once
// CCtrlCat: the flow layout of a panel's controls, and their owner.
//
// Each Ins call places a control of the given width at the current position,
// m_nCtrlH pixels high, and moves the position right by that width, with no
// gap. NewLn goes down one line (m_nLineH) and back to the line's column;
// ShiftX and ShiftY move the position, ShiftY also setting the column that
// NewLn returns to. The position starts at (0, 0), column 0.
//
// The controls are made and owned here (destroyed with the panel or by
// ClearCtrls); the pointers that the Ins calls return stay valid until then.
// Every control shows its variable as soon as it is bound.
#include "core/CList_Mgd.h"
#include "core/platform/CZCombo.h"
#include "core/platform/CZCtrl.h"

class CZSetObj;

class CCtrlCat {
public:
    CCtrlCat();
    virtual ~CCtrlCat();
    CCtrlCat(const CCtrlCat&) = delete;
    // Controls are bound to this panel's own variables: assignment leaves
    // them and the layout as they are.
    CCtrlCat& operator=(const CCtrlCat&) { return *this; }

    // Saves and loads the panel's settings. The framework keeps nothing of
    // its own in the store: the base does nothing.
    virtual void Settings(CZSetObj& set);
    // Every control shows its variable (CZCtrl::Update).
    virtual void UpdateCtrls();
    // Deletes every control and puts the position back to (0, 0), column 0.
    virtual void ClearCtrls();
    // Shows (show non-zero) or hides the controls of that level (m_nLevel).
    virtual void ShowLevel(int level, int show);
    // Places the layout with its origin at rect's top-left corner: every
    // control's window rectangle becomes its layout rectangle moved there.
    virtual void LayoutCtrls(const CRect& rect);
    // Creates the windows of the controls as children of m_pCtrlWnd (when
    // that has a window).
    virtual void CreateCtrls();
    // Destroys the windows of the controls; the controls stay.
    virtual void DestroyCtrls();

    // Static text; align 0 left, 1 centred, 2 right.
    CZText* InsText(int width, const CString& text, int align = 0, CZFlex* flex = nullptr);
    // A numeric field on v (kind 64; a double always gets one).
    CZCtrl* InsCtrl(int width, int kind, double& v, CZFlex* flex = nullptr);
    // kind 256: a check box, its text the control's m_strLabel; kind 512: an
    // index combo box (a CZCombo); else a numeric field holding whole numbers.
    CZCtrl* InsCtrl(int width, int kind, int& v, CZFlex* flex = nullptr);
    // A text field on v (kind 32).
    CZCtrl* InsCtrl(int width, int kind, CString& v, CZFlex* flex = nullptr);
    // A combo box of objects (a CZCombo, whatever the kind) on the pointer
    // variable *v.
    CZCtrl* InsCtrl(int width, int kind, void** v, CZFlex* flex = nullptr);
    // A control made by the caller (with new; a CTideCb, say): placed like
    // the others and adopted. Returns it.
    CZCtrl* InsCtrl(int width, CZCtrl* ctrl, CZFlex* flex = nullptr);
    // A push button that calls handler on target when clicked.
    CZBtn* InsBtn(int width, const CString& text, int align, CObject* target, ZanHandler handler,
                  CZFlex* flex = nullptr);
    void NewLn();
    void ShiftX(int dx);
    void ShiftY(int dy, int x);

    // Every control takes its value back (CZCtrl::Retreive), as when the
    // user confirms the panel.
    void RetreiveCtrls();
    // Paints every control that isn't hidden, on a context in the panel's
    // client coordinates.
    void DrawCtrls(CDC* dc);
    // Number of controls, the i-th in order of insertion (null outside), the
    // first whose label or text equals `text` (null if none), and the one
    // inserted right after that (the field of a static text label).
    int GetCtrlCount() const { return m_ctrls.GetCount(); }
    CZCtrl* GetCtrl(int i) const;
    CZCtrl* FindCtrl(const CString& text) const;
    CZCtrl* CtrlAfter(const CString& text) const;
    // Right and bottom edges of all layout rectangles: the size the controls
    // need from the origin.
    CSize GetCtrlExtent() const;

    int m_nX = 0, m_nY = 0;  // current position
    int m_nCol = 0;          // column of NewLn
    int m_nLineH = 18;       // line height of NewLn
    int m_nCtrlH = 16;       // height of every control
    CPoint m_ptOrg;          // origin given by LayoutCtrls
    CWnd* m_pCtrlWnd = nullptr;  // the window the controls are children of
    CList_Mgd<CZCtrl> m_ctrls;   // the controls, owned, in order of insertion

private:
    template <class T>
    T* Place(T* ctrl, int width, CZFlex* flex);
};
