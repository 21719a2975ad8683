#include "core/platform/CZCombo.h"

#include "core/platform/Zan.h"

CRuntimeClass CZCombo::classCZCombo = CRuntimeClass::Of<CZCombo, CZCtrl>("CZCombo");

int CZList::IndexOf(const CZLEnt* entry) const
{
    if (!entry) return -1;
    for (unsigned int i = 0; i < m_nSize; ++i)
        if (m_ppItems[i] == entry) return static_cast<int>(i);
    return -1;
}

int CZList::FindData(const void* data) const
{
    for (unsigned int i = 0; i < m_nSize; ++i)
        if (m_ppItems[i]->m_pData == data) return static_cast<int>(i);
    return -1;
}

CZCombo::CZCombo()
{
    m_nKind = kCombo;
}

CZCombo::~CZCombo() = default;

int CZCombo::AddString(CString text, void* data)
{
    auto* entry = new CZLEnt(text);
    entry->m_pData = data;
    m_list.Append(entry);
    return GetCount() - 1;
}

void CZCombo::LoadIndex(int n)
{
    m_list.SetSize(0);
    m_nSel = -1;
    for (int i = 0; i < n; ++i) AddString(CString::Fmt(u"%d", i), nullptr);
}

void CZCombo::SetListCallback(CObject* target, ZanListFill fill)
{
    m_pListTarget = target;
    m_pfnFill = fill;
}

BOOL CZCombo::SetCurSel(int i)
{
    if (i < 0 || i >= GetCount()) return FALSE;
    m_nSel = i;
    m_strText = m_list.m_ppItems[i]->m_strText;
    return TRUE;
}

CZLEnt* CZCombo::Refill()
{
    if (!m_pListTarget || !m_pfnFill) return nullptr;
    m_list.SetSize(0);
    m_nSel = -1;
    void* current = m_nVar == vPtr ? *static_cast<void**>(m_pVar) : nullptr;
    return (m_pListTarget->*m_pfnFill)(m_list, current);
}

void CZCombo::Update(int)
{
    int sel = m_list.IndexOf(Refill());
    if (sel < 0 && m_nVar == vPtr) sel = m_list.FindData(*static_cast<void**>(m_pVar));
    if (sel < 0 && m_nVar == vInt) {
        const int v = *static_cast<int*>(m_pVar);
        if (v >= 0 && v < GetCount()) sel = v;
    }
    if (!SetCurSel(sel)) {
        m_nSel = -1;
        m_strText.Empty();
    }
}

void CZCombo::Retreive()
{
    m_bRefused = FALSE;
    if (m_nSel < 0 || m_nSel >= GetCount()) return;
    if (m_nVar == vInt) {
        int& v = *static_cast<int*>(m_pVar);
        if (v == m_nSel) return;
        v = m_nSel;
    } else if (m_nVar == vPtr) {
        void*& v = *static_cast<void**>(m_pVar);
        void* const data = m_list.m_ppItems[m_nSel]->m_pData;
        if (v == data) return;
        v = data;
    } else {
        return;
    }
    NotifyChanged();
}

void CZCombo::Execute()
{
    if (m_pListTarget && m_pfnFill) Update(0);
}

void CZCombo::Draw(CDC* dc)
{
    const CRect r = m_rect;
    dc->FillRect(r, &Zan::blackB);
    const CBrush edge(RGB(0x60, 0x60, 0x60));
    dc->FrameRect(r, &edge);
    // The drop-down arrow: a small triangle at the right end.
    CPen arrow(PS_SOLID, 1, RGB(0xAA, 0xAA, 0xAA));
    CPen* old = dc->SelectObject(&arrow);
    const int cx = r.right - 8, cy = r.top + r.Height() / 2 - 1;
    for (int i = 0; i < 3; ++i) {
        dc->MoveTo(cx - 2 + i, cy + i);
        dc->LineTo(cx + 3 - i, cy + i);
    }
    dc->SelectObject(old);
    CRect t(r.left + 3, r.top, r.right - 14, r.bottom);
    dc->SetBkMode(TRANSPARENT);
    dc->SelectObject(&Zan::normalF);
    dc->SetTextColor(RGB(0xEE, 0xEE, 0xEE));
    dc->DrawText(m_strText, t, DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS | DT_NOPREFIX);
}
