#include "core/platform/CZDriver.h"

BOOL CZDriver::Type(CZCtrl* ctrl, const CString& text)
{
    if (!ctrl || (ctrl->m_nKind != CZCtrl::kText && ctrl->m_nKind != CZCtrl::kNumber)) return FALSE;
    ctrl->SetWindowText(text);
    ctrl->Retreive();
    return !ctrl->m_bRefused;
}

BOOL CZDriver::Click(CZCtrl* ctrl)
{
    if (!ctrl) return FALSE;
    ctrl->Execute();
    return TRUE;
}

BOOL CZDriver::Pick(CZCtrl* ctrl, int i)
{
    auto* combo = dynamic_cast<CZCombo*>(ctrl);
    if (!combo) return FALSE;
    combo->Execute();
    if (!combo->SetCurSel(i)) return FALSE;
    combo->Retreive();
    return TRUE;
}

BOOL CZDriver::Pick(CZCtrl* ctrl, const CString& text)
{
    auto* combo = dynamic_cast<CZCombo*>(ctrl);
    if (!combo) return FALSE;
    combo->Execute();
    for (int i = 0; i < combo->GetCount(); ++i) {
        if (combo->m_list.m_ppItems[i]->m_strText == text) {
            combo->SetCurSel(i);
            combo->Retreive();
            return TRUE;
        }
    }
    return FALSE;
}

CZCtrl* CZDriver::Find(const CCtrlCat& panel, const CString& label)
{
    const CZCtrl* found = panel.FindCtrl(label);
    if (found && found->m_nKind == CZCtrl::kStatic) return panel.CtrlAfter(label);
    return const_cast<CZCtrl*>(found);
}
