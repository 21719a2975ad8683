#include "sensors/CSnsrGrid.h"

#include "core/platform/Zan.h"
#include "sensors/CSnsrInf.h"

#include <algorithm>
#include <climits>

CRuntimeClass CSnsrGrid::classCSnsrGrid = CRuntimeClass::Of<CSnsrGrid, CZanWnd>("CSnsrGrid");

namespace {

// Which types the panel shows and their column widths, by type id.
struct CTypeCol {
    BYTE show;
    DWORD width;
};
constexpr CTypeCol kTypes[CSnsrGrid::s_nTypes] = {
    {0, 0},   {1, 183}, {1, 57},  {1, 183}, {1, 57},  {0, 183}, {1, 57},  {1, 123}, {1, 57},  {0, 273},
    {1, 130}, {1, 273}, {0, 363}, {0, 363}, {1, 363}, {0, 363}, {1, 363}, {1, 363}, {1, 363}, {0, 363},
};

constexpr int kBandH = 18;       // height of a band of the list form
constexpr int kCountX = 125;     // list form: where the count goes
constexpr int kValueX = 250;     // list form: where the value goes
constexpr int kNameX = 25;       // list form: where the type name goes
constexpr UINT kCellFmt = 0x8025;  // centred both ways, one line, end ellipsis
constexpr COLORREF kNameCol = 0xDDDDDD;
constexpr COLORREF kCountCol = 0xAAAAAA;
constexpr COLORREF kListValueCol = 0xFF00;
constexpr COLORREF kGridValueCol = 0xAA00;
constexpr COLORREF kHeaderCol = 0xCCCCCC;

bool IsSpace(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\r';
}

// The text scanned as "%d%c": the number of items that convert (0, 1 or 2).
// Only 1 means an integer with nothing behind it. An integer beyond the
// range of int saturates.
int ScanIntChar(const CString& text, int& value)
{
    const std::u16string& s = text.Str();
    std::size_t i = 0;
    while (i < s.size() && IsSpace(s[i])) ++i;
    if (i == s.size()) return 0;
    bool neg = false;
    if (s[i] == u'+' || s[i] == u'-') neg = s[i++] == u'-';
    const std::size_t digits = i;
    long long v = 0;
    for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i) v = std::min<long long>(v * 10 + (s[i] - u'0'), 1LL << 40);
    if (i == digits) return 0;
    v = neg ? -v : v;
    value = static_cast<int>(std::clamp<long long>(v, INT_MIN, INT_MAX));
    return i < s.size() ? 2 : 1;
}

} // namespace

CSnsrGrid::CSnsrGrid()
{
    m_strName = u"Sensor";
    m_nFlag = 1;
    ClearCounts();
    for (int t = 0; t < s_nTypes; ++t) {
        m_show[t] = kTypes[t].show;
        m_colW[t] = m_show[t] ? kTypes[t].width : 0;
    }
    s_snsrRx.AddTail(this);
    s_infoRx.AddTail(this);

    // The layout, once: column starts as a running sum of the widths; bands
    // 18 apart from 5 down, alternately black and grey from the first shown
    // type, a type not shown taking the brush of the next shown one.
    m_colX[0] = 0;
    DWORD y = 5;
    CBrush* brush = &Zan::blackB;
    for (int t = 0; t < s_nTypes; ++t) {
        m_colX[t + 1] = m_colX[t] + m_colW[t];
        m_rowY[t] = y;
        m_rowBrush[t] = brush;
        if (m_show[t]) {
            y += kBandH;
            brush = brush == &Zan::blackB ? &Zan::backB : &Zan::blackB;
        }
    }
}

CSnsrGrid::~CSnsrGrid() = default;

CSnsrGrid& CSnsrGrid::operator=(const CSnsrGrid& src)
{
    if (&src == this) return *this;
    CZanWnd::operator=(src);
    m_nBanks = src.m_nBanks;
    std::copy(std::begin(src.m_show), std::end(src.m_show), m_show);
    for (int t = 0; t < s_nTypes; ++t) {
        std::copy(std::begin(src.m_text[t]), std::end(src.m_text[t]), m_text[t]);
        std::copy(std::begin(src.m_count[t]), std::end(src.m_count[t]), m_count[t]);
    }
    std::copy(std::begin(src.m_colW), std::end(src.m_colW), m_colW);
    std::copy(std::begin(src.m_colX), std::end(src.m_colX), m_colX);
    std::copy(std::begin(src.m_rowY), std::end(src.m_rowY), m_rowY);
    std::copy(std::begin(src.m_rowBrush), std::end(src.m_rowBrush), m_rowBrush);
    m_gridLeft = src.m_gridLeft;
    m_gridTop = src.m_gridTop;
    m_gridRowH = src.m_gridRowH;
    return *this;
}

void CSnsrGrid::ClearCounts()
{
    for (auto& row : m_count) std::fill(std::begin(row), std::end(row), 0u);
}

void CSnsrGrid::ClearStrings()
{
    for (auto& row : m_text)
        for (CString& s : row) s.Empty();
}

void CSnsrGrid::SetOption(const CString& key, const CString& value)
{
    CZanWnd::SetOption(key, value);
    if (key.Compare(u"nBanks") != 0) return;
    int n = 0;
    if (ScanIntChar(value, n) == 1) m_nBanks = std::min(n, s_nBankMax);
}

void CSnsrGrid::OnSnsrMsg(int, void* p)
{
    const auto* rec = static_cast<const CSnsrInf*>(p);
    if (!rec) return;
    const int type = rec->m_type, bank = rec->m_bank;
    if (type < 1 || type >= s_nTypes || bank >= m_nBanks || !m_show[type]) return;
    m_text[type][bank] = rec->GetString(0);
    ++m_count[type][bank];

    if (!GetSafeHwnd() || !IsWindowVisible()) return;
    CDC* dc = GetDC();
    if (m_nBanks > 1) {
        CRect cell = GetRect(type, bank);
        dc->SelectObject(&Zan::normalF);
        dc->SetBkMode(TRANSPARENT);
        dc->FillRect(cell, &Zan::blackB);
        dc->SetTextColor(kGridValueCol);
        dc->DrawText(m_text[type][bank], cell, kCellFmt);
    } else {
        const int y = static_cast<int>(m_rowY[type]);
        dc->SetBkMode(TRANSPARENT);
        dc->SelectObject(&Zan::largeF);
        dc->FillRect(CRect(kCountX, y, GetClientRect().right, y + kBandH), m_rowBrush[type]);
        if (m_count[type][0]) {
            dc->SetTextColor(kCountCol);
            dc->TextOut(kCountX, y, CString::Fmt(u"(%d)", m_count[type][0]));
        }
        dc->SetTextColor(kListValueCol);
        dc->TextOut(kValueX, y, m_text[type][0]);
    }
    ReleaseDC(dc);
}

void CSnsrGrid::ClearAndRepaint(bool strings)
{
    ClearCounts();
    if (strings) ClearStrings();
    if (GetSafeHwnd() && IsWindowVisible()) Invalidate(TRUE);
}

void CSnsrGrid::OnInfoMsg(int code, void* p)
{
    if (code == 101) {
        if (p == reinterpret_cast<void*>(1)) ClearAndRepaint(true);
        return;
    }
    if (code != 4000 || !p) return;
    auto* rec = static_cast<CZanStateMsg*>(p);
    rec->m_lock.Lock(INFINITE);
    const int state = rec->m_nState;
    rec->m_lock.Unlock();
    if (state > 1) return;
    if (rec->m_bClearAll) ClearAndRepaint(true);
    else if (rec->m_bClearCounts) ClearAndRepaint(false);
}

CRect CSnsrGrid::GetRect(int type, int bank)
{
    const int left = static_cast<int>(m_gridLeft), rowH = static_cast<int>(m_gridRowH);
    const int y = static_cast<int>(m_gridTop) + rowH * bank;
    return CRect(static_cast<int>(m_colX[type]) + left + 3, y + 2, static_cast<int>(m_colX[type + 1]) + left - 3,
                 y + rowH - 2);
}

void CSnsrGrid::Draw(CDC* dc)
{
    const CRect client = GetClientRect();
    dc->FillRect(client, &Zan::backB);
    if (m_nBanks < 2) DrawList(dc, client);
    else DrawGrid(dc);
}

void CSnsrGrid::DrawList(CDC* dc, const CRect& client)
{
    dc->SetBkMode(TRANSPARENT);
    dc->SelectObject(&Zan::largeF);
    const CBrush* last = nullptr;
    int lastY = 0;
    for (int t = 1; t < s_nTypes; ++t) {
        if (!m_show[t]) continue;
        const int y = static_cast<int>(m_rowY[t]);
        dc->FillRect(CRect(5, y, client.right - 5, y + kBandH), m_rowBrush[t]);
        dc->SetTextColor(kNameCol);
        dc->TextOut(kNameX, y, CSnsrInf::s_types[t]);
        if (m_count[t][0]) {
            dc->SetTextColor(kCountCol);
            dc->TextOut(kCountX, y, CString::Fmt(u"(%d)", m_count[t][0]));
        }
        dc->SetTextColor(kListValueCol);
        dc->TextOut(kValueX, y, m_text[t][0]);
        last = m_rowBrush[t];
        lastY = y;
    }
    // The list closes on a dark band.
    if (last == &Zan::backB) dc->FillRect(CRect(5, lastY + kBandH, client.right - 5, lastY + 2 * kBandH), &Zan::blackB);
}

void CSnsrGrid::DrawGrid(CDC* dc)
{
    const int left = static_cast<int>(m_gridLeft), top = static_cast<int>(m_gridTop);
    const int rowH = static_cast<int>(m_gridRowH);
    const int right = left + static_cast<int>(m_colX[s_nTypes]);
    const int bottom = m_nBanks * rowH + top;

    dc->SetBkMode(TRANSPARENT);
    dc->SelectObject(&Zan::boldF);
    dc->SelectObject(&Zan::backB);
    dc->SelectObject(&Zan::darkL);
    dc->SetTextColor(kHeaderCol);
    dc->StretchBlt(0, 0, right, top, &Zan::txt, 0, 0, 12, 12, SRCCOPY);
    dc->FillRect(CRect(left, top, right, bottom), &Zan::blackB);
    dc->MoveTo(0, bottom);
    dc->LineTo(right, bottom);
    dc->LineTo(right, 0);
    for (int b = 0; b < m_nBanks; ++b) {
        const int y = rowH * b + top;
        CRect label(0, y, left, y + top);
        dc->DrawText(CString::Fmt(u"%d", b + 1), label, kCellFmt);
        dc->MoveTo(0, y);
        dc->LineTo(right, y);
    }
    for (int t = 1; t < s_nTypes; ++t) {
        if (!m_show[t]) continue;
        CRect head = GetRect(t, 0);
        head.OffsetRect(0, -rowH);
        dc->DrawText(CSnsrInf::s_types[t], head, kCellFmt);
        const int x = static_cast<int>(m_colX[t]) + left;
        dc->MoveTo(x, 0);
        dc->LineTo(x, bottom);
    }
    dc->SelectObject(&Zan::normalF);
    dc->SetTextColor(kGridValueCol);
    for (int b = 0; b < m_nBanks; ++b) {
        for (int t = 1; t < s_nTypes; ++t) {
            if (!m_show[t]) continue;
            CRect cell = GetRect(t, b);
            dc->DrawText(m_text[t][b], cell, kCellFmt);
        }
    }
}
