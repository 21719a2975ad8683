#include "core/platform/CWnd.h"

#include "core/platform/Zan.h"

#include <algorithm>
#include <utility>
#include <vector>

CRuntimeClass CWnd::classCWnd = CRuntimeClass::Of<CWnd, CObject>("CWnd");

// What a window has while it exists.
struct CWnd::WndState {
    CDC surface;                             // top-level windows only
    BOOL bInvalid = FALSE;
    BOOL bErase = FALSE;
    std::vector<std::unique_ptr<CDC>> dcs;  // contexts given out by GetDC
};

CWnd::CWnd() = default;

CWnd::~CWnd()
{
    DestroyWindow();
}

BOOL CWnd::Create(const CRect& rect, CWnd* parent)
{
    if (m_hWnd) return FALSE;
    if (!parent && rect.IsRectEmpty()) return FALSE;
    auto state = std::make_unique<WndState>();
    if (!parent && !state->surface.CreateSurface(rect.Width(), rect.Height())) return FALSE;
    m_pState = std::move(state);
    m_hWnd = m_pState.get();
    m_pParent = parent;
    m_rect = rect;
    m_bVisible = TRUE;
    m_nPaints = 0;
    Invalidate(TRUE);
    return TRUE;
}

BOOL CWnd::DestroyWindow()
{
    if (!m_hWnd) return FALSE;
    m_pState.reset();
    m_hWnd = nullptr;
    m_bVisible = FALSE;
    return TRUE;
}

BOOL CWnd::ShowWindow(int cmd)
{
    return std::exchange(m_bVisible, cmd == SW_HIDE ? FALSE : TRUE);
}

BOOL CWnd::IsWindowVisible() const
{
    for (const CWnd* w = this; w; w = w->m_pParent)
        if (!w->m_hWnd || !w->m_bVisible) return FALSE;
    return TRUE;
}

void CWnd::MoveWindow(const CRect& rect, BOOL bRepaint)
{
    const bool resized = rect.Size() != m_rect.Size();
    m_rect = rect;
    if (!m_hWnd) return;
    if (!m_pParent && resized) m_pState->surface.CreateSurface(rect.Width(), rect.Height());
    if (bRepaint || resized) Invalidate(TRUE);
}

void CWnd::GetClientRect(CRect* rect) const
{
    if (rect) *rect = GetClientRect();
}

CRect CWnd::GetClientRect() const
{
    return CRect(0, 0, m_rect.Width(), m_rect.Height());
}

void CWnd::GetWindowRect(CRect* rect) const
{
    if (rect) *rect = m_rect;
}

CWnd* CWnd::TopLevel()
{
    CWnd* w = this;
    while (w->m_pParent) w = w->m_pParent;
    return w;
}

const CWnd* CWnd::TopLevel() const
{
    const CWnd* w = this;
    while (w->m_pParent) w = w->m_pParent;
    return w;
}

CPoint CWnd::OriginInTop() const
{
    CPoint org;
    for (const CWnd* w = this; w->m_pParent; w = w->m_pParent) org.Offset(w->m_rect.left, w->m_rect.top);
    return org;
}

void CWnd::Invalidate(BOOL bErase)
{
    CWnd* top = TopLevel();
    if (!m_hWnd || !top->m_hWnd) return;
    top->m_pState->bInvalid = TRUE;
    if (bErase) top->m_pState->bErase = TRUE;
}

BOOL CWnd::GetUpdateRect(CRect* rect, BOOL) const
{
    const CWnd* top = TopLevel();
    const BOOL marked = m_hWnd && top->m_hWnd && top->m_pState->bInvalid;
    if (rect) *rect = marked ? GetClientRect() : CRect();
    return marked;
}

void CWnd::UpdateWindow()
{
    if (m_pParent) {
        TopLevel()->UpdateWindow();
        return;
    }
    if (!m_hWnd || !m_pState->bInvalid || !IsWindowVisible()) return;
    const BOOL erase = m_pState->bErase;
    m_pState->bInvalid = FALSE;
    m_pState->bErase = FALSE;
    if (erase) {
        CDC dc;
        dc.CreateOn(m_pState->surface);
        OnEraseBkgnd(&dc);
    }
    CDC dc;
    dc.CreateOn(m_pState->surface);
    OnPaint(&dc);
    ++m_nPaints;
}

void CWnd::RedrawWindow()
{
    Invalidate(TRUE);
    UpdateWindow();
}

CDC* CWnd::GetDC()
{
    CWnd* top = TopLevel();
    if (!m_hWnd || !top->m_hWnd) return nullptr;
    auto dc = std::make_unique<CDC>();
    dc->CreateOn(top->m_pState->surface);
    const CPoint org = OriginInTop();
    dc->SetViewportOrg(org.x, org.y);
    dc->IntersectClipRect(GetClientRect());
    m_pState->dcs.push_back(std::move(dc));
    return m_pState->dcs.back().get();
}

BOOL CWnd::ReleaseDC(CDC* dc)
{
    if (!m_hWnd || !dc) return FALSE;
    auto& dcs = m_pState->dcs;
    const auto it = std::find_if(dcs.begin(), dcs.end(), [dc](const auto& p) { return p.get() == dc; });
    if (it == dcs.end()) return FALSE;
    dcs.erase(it);
    return TRUE;
}

const CDC* CWnd::GetSurface() const
{
    const CWnd* top = TopLevel();
    return m_hWnd && top->m_hWnd ? &top->m_pState->surface : nullptr;
}

BOOL CWnd::GetRGBA(CRgb* dst) const
{
    const CDC* surface = GetSurface();
    if (!surface || !dst) return FALSE;
    const int sw = surface->Width(), sh = surface->Height();
    std::vector<CRgb> all(static_cast<std::size_t>(sw) * sh);
    surface->GetRGBA(all.data());
    const CPoint org = OriginInTop();
    const int w = m_rect.Width(), h = m_rect.Height();
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int sx = x + org.x, sy = y + org.y;
            *dst++ = (sx >= 0 && sy >= 0 && sx < sw && sy < sh) ? all[static_cast<std::size_t>(sy) * sw + sx] : CRgb();
        }
    }
    return TRUE;
}

BOOL CWnd::SavePng(const CString& path) const
{
    const CDC* surface = GetSurface();
    return surface ? surface->SavePng(path) : FALSE;
}

void CWnd::OnPaint(CDC*) {}

BOOL CWnd::OnEraseBkgnd(CDC* dc)
{
    dc->FillRect(GetClientRect(), &Zan::backB);
    return TRUE;
}
