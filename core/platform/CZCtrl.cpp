#include "core/platform/CZCtrl.h"

#include "core/platform/Zan.h"

#include <cmath>
#include <cstdlib>
#include <string>

CRuntimeClass CZCtrl::classCZCtrl = CRuntimeClass::Of<CZCtrl, CWnd>("CZCtrl");

namespace {

// Colours of the plain control drawing, on the panels' dark background.
constexpr COLORREF kLabelCol = RGB(0xDD, 0xDD, 0xDD);
constexpr COLORREF kValueCol = RGB(0xEE, 0xEE, 0xEE);
constexpr COLORREF kFrameCol = RGB(0x60, 0x60, 0x60);
constexpr COLORREF kButtonCol = RGB(0x50, 0x50, 0x50);
constexpr COLORREF kButtonEdge = RGB(0x80, 0x80, 0x80);
constexpr COLORREF kTickCol = RGB(0x00, 0xCC, 0x00);

// A whole-text number, spaces allowed round it; false for anything else.
bool ParseNumber(const CString& text, double& v)
{
    const std::string s = CString(text).Trim().Utf8();
    if (s.empty()) return false;
    char* end = nullptr;
    v = std::strtod(s.c_str(), &end);
    return end == s.c_str() + s.size() && std::isfinite(v);
}

} // namespace

double CZVal::GetNumber() const
{
    if (m_nVar == vDouble) return *static_cast<double*>(m_pVar);
    if (m_nVar == vInt) return *static_cast<int*>(m_pVar);
    return 0.0;
}

void CZVal::NotifyChanged() const
{
    if (m_pCbTarget && m_pfnChanged) (m_pCbTarget->*m_pfnChanged)();
}

CZCtrl::CZCtrl() = default;
CZCtrl::~CZCtrl() = default;

CZText::CZText()
{
    m_nKind = kStatic;
}

CZBtn::CZBtn()
{
    m_nKind = kButton;
}

void CZCtrl::Update(int)
{
    if (!m_pVar) return;
    switch (m_nKind) {
    case kNumber:
        if (m_nVar == vDouble || m_nVar == vInt) {
            m_strText.Format(u"%g", GetNumber() * m_scale);
            m_strShown = m_strText;
        }
        break;
    case kText:
        if (m_nVar == vString) m_strText = m_strShown = *static_cast<CString*>(m_pVar);
        break;
    case kCheck:
        if (m_nVar == vInt) m_nCheck = *static_cast<int*>(m_pVar) != 0;
        else if (m_nVar == vDouble) m_nCheck = *static_cast<double*>(m_pVar) != 0.0;
        break;
    default:
        break;
    }
}

void CZCtrl::Retreive()
{
    m_bRefused = FALSE;
    if (!m_pVar) return;
    switch (m_nKind) {
    case kNumber: {
        if (m_nVar != vDouble && m_nVar != vInt) return;
        if (m_strText == m_strShown) return;
        double shown = 0.0;
        if (!ParseNumber(m_strText, shown) || (m_bRange && (shown < m_lo || shown > m_hi))) {
            m_bRefused = TRUE;
            Update(0);
            return;
        }
        const double stored = m_scale != 0.0 ? shown / m_scale : shown;
        bool changed;
        if (m_nVar == vDouble) {
            double& v = *static_cast<double*>(m_pVar);
            changed = v != stored;
            v = stored;
        } else {
            int& v = *static_cast<int*>(m_pVar);
            const int n = static_cast<int>(std::lround(stored));
            changed = v != n;
            v = n;
        }
        Update(0);
        if (changed) NotifyChanged();
        break;
    }
    case kText: {
        if (m_nVar != vString) return;
        CString& v = *static_cast<CString*>(m_pVar);
        if (v == m_strText) return;
        v = m_strText;
        m_strShown = m_strText;
        NotifyChanged();
        break;
    }
    case kCheck: {
        const int state = m_nCheck ? 1 : 0;
        if (m_nVar == vInt) {
            int& v = *static_cast<int*>(m_pVar);
            if ((v != 0) == (state != 0)) return;
            v = state;
        } else if (m_nVar == vDouble) {
            double& v = *static_cast<double*>(m_pVar);
            if ((v != 0.0) == (state != 0)) return;
            v = state;
        } else {
            return;
        }
        NotifyChanged();
        break;
    }
    default:
        break;
    }
}

void CZCtrl::GetTip(CString& tip)
{
    tip = m_strLabel.IsEmpty() ? m_strText : m_strLabel;
}

void CZCtrl::Execute()
{
    switch (m_nKind) {
    case kButton:
        if (m_pBtnTarget && m_pfnBtn) (m_pBtnTarget->*m_pfnBtn)();
        break;
    case kCheck:
        m_nCheck = !m_nCheck;
        Retreive();
        break;
    case kText:
    case kNumber:
        Retreive();
        break;
    default:
        break;
    }
}

void CZCtrl::Draw(CDC* dc)
{
    const CRect r = m_rect;
    dc->SetBkMode(TRANSPARENT);
    dc->SelectObject(&Zan::normalF);
    const UINT align = m_nAlign == 1 ? DT_CENTER : m_nAlign == 2 ? DT_RIGHT : DT_LEFT;
    const UINT line = DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX;
    switch (m_nKind) {
    case kStatic: {
        CRect t = r;
        dc->SetTextColor(kLabelCol);
        dc->DrawText(m_strText, t, line | align);
        break;
    }
    case kButton: {
        dc->FillSolidRect(r, kButtonCol);
        const CBrush edge(kButtonEdge);
        dc->FrameRect(r, &edge);
        CRect t = r;
        dc->SetTextColor(kValueCol);
        dc->DrawText(m_strText, t, line | DT_CENTER);
        break;
    }
    case kCheck: {
        const int top = r.top + (r.Height() - 12) / 2;
        const CRect box(r.left + 1, top, r.left + 13, top + 12);
        dc->FillRect(box, &Zan::blackB);
        const CBrush edge(kFrameCol);
        dc->FrameRect(box, &edge);
        if (m_nCheck) {
            CPen tick(PS_SOLID, 2, kTickCol);
            CPen* old = dc->SelectObject(&tick);
            dc->MoveTo(box.left + 3, box.top + 6);
            dc->LineTo(box.left + 5, box.top + 9);
            dc->LineTo(box.left + 10, box.top + 3);
            dc->SelectObject(old);
        }
        CRect t(box.right + 4, r.top, r.right, r.bottom);
        dc->SetTextColor(kLabelCol);
        dc->DrawText(m_strLabel, t, line | DT_LEFT);
        break;
    }
    default: {  // text and number fields
        dc->FillRect(r, &Zan::blackB);
        const CBrush edge(kFrameCol);
        dc->FrameRect(r, &edge);
        CRect t = r;
        t.DeflateRect(3, 0);
        dc->SetTextColor(kValueCol);
        dc->DrawText(m_strText, t, line | align);
        break;
    }
    }
}
