#include "core/platform/CCtrlCat.h"

#include <algorithm>

CCtrlCat::CCtrlCat() = default;
CCtrlCat::~CCtrlCat() = default;

void CCtrlCat::Settings(CZSetObj&) {}

template <class T>
T* CCtrlCat::Place(T* ctrl, int width, CZFlex* flex)
{
    ctrl->m_rcLay = CRect(m_nX, m_nY, m_nX + width, m_nY + m_nCtrlH);
    ctrl->m_pFlex = flex;
    m_nX += width;
    m_ctrls.AddTail(ctrl);
    CRect r = ctrl->m_rcLay;
    r.OffsetRect(m_ptOrg);
    if (m_pCtrlWnd && m_pCtrlWnd->GetSafeHwnd()) {
        ctrl->Create(r, m_pCtrlWnd);
        if (ctrl->m_bHidden) ctrl->ShowWindow(SW_HIDE);
        m_pCtrlWnd->Invalidate(TRUE);
    } else {
        ctrl->m_rect = r;
    }
    return ctrl;
}

CZText* CCtrlCat::InsText(int width, const CString& text, int align, CZFlex* flex)
{
    auto* ctrl = new CZText;
    ctrl->m_strText = text;
    ctrl->m_nAlign = align;
    return Place(ctrl, width, flex);
}

CZCtrl* CCtrlCat::InsCtrl(int width, int, double& v, CZFlex* flex)
{
    auto* ctrl = new CZCtrl;
    ctrl->m_nKind = CZCtrl::kNumber;
    ctrl->Init(v);
    ctrl->Update(0);
    return Place(ctrl, width, flex);
}

CZCtrl* CCtrlCat::InsCtrl(int width, int kind, int& v, CZFlex* flex)
{
    CZCtrl* ctrl = kind == CZCtrl::kCombo ? new CZCombo : new CZCtrl;
    ctrl->m_nKind = kind == CZCtrl::kCheck || kind == CZCtrl::kCombo ? kind : CZCtrl::kNumber;
    ctrl->Init(v);
    ctrl->Update(0);
    return Place(ctrl, width, flex);
}

CZCtrl* CCtrlCat::InsCtrl(int width, int, CString& v, CZFlex* flex)
{
    auto* ctrl = new CZCtrl;
    ctrl->m_nKind = CZCtrl::kText;
    ctrl->Init(v);
    ctrl->Update(0);
    return Place(ctrl, width, flex);
}

CZCtrl* CCtrlCat::InsCtrl(int width, int, void** v, CZFlex* flex)
{
    auto* ctrl = new CZCombo;
    ctrl->Init(v);
    ctrl->Update(0);
    return Place(ctrl, width, flex);
}

CZCtrl* CCtrlCat::InsCtrl(int width, CZCtrl* ctrl, CZFlex* flex)
{
    if (!ctrl) return nullptr;
    return Place(ctrl, width, flex);
}

CZBtn* CCtrlCat::InsBtn(int width, const CString& text, int align, CObject* target, ZanHandler handler, CZFlex* flex)
{
    auto* ctrl = new CZBtn;
    ctrl->m_strText = text;
    ctrl->m_nAlign = align;
    ctrl->m_pBtnTarget = target;
    ctrl->m_pfnBtn = handler;
    return Place(ctrl, width, flex);
}

void CCtrlCat::NewLn()
{
    m_nX = m_nCol;
    m_nY += m_nLineH;
}

void CCtrlCat::ShiftX(int dx)
{
    m_nX += dx;
}

void CCtrlCat::ShiftY(int dy, int x)
{
    m_nY += dy;
    m_nX = m_nCol = x;
}

void CCtrlCat::UpdateCtrls()
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) m_ctrls.GetNext(pos)->Update(0);
    if (m_pCtrlWnd) m_pCtrlWnd->Invalidate(FALSE);
}

void CCtrlCat::RetreiveCtrls()
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) m_ctrls.GetNext(pos)->Retreive();
}

void CCtrlCat::ClearCtrls()
{
    m_ctrls.RemoveAll();
    m_nX = m_nY = m_nCol = 0;
    if (m_pCtrlWnd) m_pCtrlWnd->Invalidate(TRUE);
}

void CCtrlCat::ShowLevel(int level, int show)
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        CZCtrl* ctrl = m_ctrls.GetNext(pos);
        if (ctrl->m_nLevel != level) continue;
        ctrl->m_bHidden = show ? FALSE : TRUE;
        ctrl->ShowWindow(show ? SW_SHOW : SW_HIDE);
    }
    if (m_pCtrlWnd) m_pCtrlWnd->Invalidate(TRUE);
}

void CCtrlCat::LayoutCtrls(const CRect& rect)
{
    m_ptOrg = rect.TopLeft();
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        CZCtrl* ctrl = m_ctrls.GetNext(pos);
        CRect r = ctrl->m_rcLay;
        r.OffsetRect(m_ptOrg);
        ctrl->MoveWindow(r, FALSE);
    }
    if (m_pCtrlWnd) m_pCtrlWnd->Invalidate(TRUE);
}

void CCtrlCat::CreateCtrls()
{
    if (!m_pCtrlWnd || !m_pCtrlWnd->GetSafeHwnd()) return;
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        CZCtrl* ctrl = m_ctrls.GetNext(pos);
        if (ctrl->GetSafeHwnd()) continue;
        CRect r = ctrl->m_rcLay;
        r.OffsetRect(m_ptOrg);
        ctrl->Create(r, m_pCtrlWnd);
        if (ctrl->m_bHidden) ctrl->ShowWindow(SW_HIDE);
    }
}

void CCtrlCat::DestroyCtrls()
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) m_ctrls.GetNext(pos)->DestroyWindow();
}

void CCtrlCat::DrawCtrls(CDC* dc)
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        CZCtrl* ctrl = m_ctrls.GetNext(pos);
        if (!ctrl->m_bHidden) ctrl->Draw(dc);
    }
}

CZCtrl* CCtrlCat::GetCtrl(int i) const
{
    return m_ctrls.GetAt(m_ctrls.FindIndex(i));
}

CZCtrl* CCtrlCat::FindCtrl(const CString& text) const
{
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        CZCtrl* ctrl = m_ctrls.GetNext(pos);
        if (ctrl->m_strLabel == text || ((ctrl->m_nKind == CZCtrl::kStatic || ctrl->m_nKind == CZCtrl::kButton) &&
                                         ctrl->m_strText == text))
            return ctrl;
    }
    return nullptr;
}

CZCtrl* CCtrlCat::CtrlAfter(const CString& text) const
{
    const CZCtrl* label = FindCtrl(text);
    if (!label) return nullptr;
    CZanPtr* pos = m_ctrls.Find(const_cast<CZCtrl*>(label));
    m_ctrls.GetNext(pos);
    return m_ctrls.GetAt(pos);
}

CSize CCtrlCat::GetCtrlExtent() const
{
    CSize s;
    for (CZanPtr* pos = m_ctrls.GetHeadPos(); pos;) {
        const CZCtrl* ctrl = m_ctrls.GetNext(pos);
        s.cx = std::max(s.cx, ctrl->m_rcLay.right);
        s.cy = std::max(s.cy, ctrl->m_rcLay.bottom);
    }
    return s;
}
