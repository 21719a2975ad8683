#pragma once
// CZDriver: works a panel's controls as a user would, for tests and for
// hosts that script their panels: typing into a field, clicking a button or
// a check box, picking an entry of a combo box. Each call ends as the real
// control's would, by taking the value into the bound variable (so range
// checks and change callbacks apply).
#include "core/platform/CCtrlCat.h"

class CZDriver {
public:
    // Replaces the field's text by `text` and leaves the field. TRUE when the
    // text was taken (or changed nothing); FALSE when it was refused (not a
    // number, or out of range) or ctrl is null or isn't a field.
    static BOOL Type(CZCtrl* ctrl, const CString& text);
    // Clicks the control: a button calls its handler, a check box toggles,
    // a combo box drops its list down. FALSE for a null ctrl.
    static BOOL Click(CZCtrl* ctrl);
    // Drops the combo box's list down (rebuilt by its callback) and picks
    // entry i, or the first entry whose text is `text`. FALSE when ctrl is no
    // combo box or there is no such entry.
    static BOOL Pick(CZCtrl* ctrl, int i);
    static BOOL Pick(CZCtrl* ctrl, const CString& text);
    // The field that follows the static text `label` in the panel, or the
    // control whose label or text is `label` when nothing static bears it.
    static CZCtrl* Find(const CCtrlCat& panel, const CString& label);
};
