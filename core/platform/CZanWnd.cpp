#include "core/platform/CZanWnd.h"

#include <algorithm>

CRuntimeClass CZanWnd::classCZanWnd = CRuntimeClass::Of<CZanWnd, CWnd>("CZanWnd");

CList_Ptr<CZanWnd*> CZanWnd::s_snsrRx;
CList_Ptr<CZanWnd*> CZanWnd::s_infoRx;
CList_Ptr<CZanWnd*> CZanWnd::s_wnds;

namespace {

void LeaveAll(CList_Ptr<CZanWnd*>& list, CZanWnd* wnd)
{
    while (CZanPtr* pos = list.Find(wnd, nullptr)) list.RemoveAt(pos);
}

// Sends to each panel of `list`, in order. A panel that a handler destroys
// (or takes out of the list) before its turn is skipped.
template <class Fn>
void Deliver(CList_Ptr<CZanWnd*>& list, Fn fn)
{
    const CList_Ptr<CZanWnd*> round = list;
    for (CZanPtr* pos = round.GetHeadPos(); pos;) {
        CZanWnd* wnd = round.GetNext(pos);
        if (list.Find(wnd, nullptr)) fn(wnd);
    }
}

} // namespace

CZanWnd::CZanWnd()
{
    m_pCtrlWnd = this;
    s_wnds.AddTail(this);
}

CZanWnd::~CZanWnd()
{
    LeaveAll(s_snsrRx, this);
    LeaveAll(s_infoRx, this);
    LeaveAll(s_wnds, this);
}

CZanWnd& CZanWnd::operator=(const CZanWnd& src)
{
    if (&src != this) {
        m_strName = src.m_strName;
        m_strTitle = src.m_strTitle;
        m_nFlag = src.m_nFlag;
    }
    return *this;
}

void CZanWnd::SnsrMsg(int id, void* data)
{
    Deliver(s_snsrRx, [&](CZanWnd* w) { w->OnSnsrMsg(id, data); });
}

void CZanWnd::InfoMsg(int id, void* data)
{
    Deliver(s_infoRx, [&](CZanWnd* w) { w->OnInfoMsg(id, data); });
}

void CZanWnd::DataMsg(int id, void* data)
{
    Deliver(s_wnds, [&](CZanWnd* w) { w->OnDataMsg(id, data); });
}

BOOL CZanWnd::Create(const CRect& rect, CWnd* parent)
{
    if (!CWnd::Create(rect, parent)) return FALSE;
    CreateCtrls();
    return TRUE;
}

BOOL CZanWnd::SavePicture(const CString& path, int width, int height)
{
    if (!GetSafeHwnd()) {
        const CSize extent = GetCtrlExtent();
        if (width <= 0) width = std::max<int>(40, extent.cx + m_ptOrg.x + 5);
        if (height <= 0) height = std::max<int>(20, extent.cy + m_ptOrg.y + 5);
        if (!Create(CRect(0, 0, width, height))) return FALSE;
    }
    const BOOL shown = ShowWindow(SW_SHOW);
    RedrawWindow();
    if (!shown) ShowWindow(SW_HIDE);
    return SavePng(path);
}

void CZanWnd::SetOption(const CString&, const CString&) {}
void CZanWnd::SetupCtrls() {}
void CZanWnd::SetDefaults() {}
void CZanWnd::OnTrigger(double, double) {}
void CZanWnd::OnPoll(double) {}
void CZanWnd::OnInfoMsg(int, void*) {}
void CZanWnd::OnSnsrMsg(int, void*) {}
void CZanWnd::OnDataMsg(int, void*) {}
void CZanWnd::OnMdlMsg(CMdl*, int, void*) {}
void CZanWnd::OnNfyWnd(CZanWnd*, int, void*) {}
void CZanWnd::DrawEWnd(CZWnd*, CDC*, CRect&) {}

void CZanWnd::Draw(CDC* dc)
{
    DrawCtrls(dc);
}

void CZanWnd::UpdateLabels() {}

void CZanWnd::LayoutWnd(int)
{
    LayoutCtrls(GetClientRect());
}

void CZanWnd::SetWndOrg(CPoint pt)
{
    CRect r = m_rect;
    r.OffsetRect(pt.x - r.left, pt.y - r.top);
    MoveWindow(r, FALSE);
}

CString CZanWnd::GetTopic()
{
    return CString();
}

void CZanWnd::OnSize(unsigned int, int, int) {}

void CZanWnd::Settings(CZSetObj&) {}

void CZanWnd::OnPaint(CDC* dc)
{
    Draw(dc);
}
