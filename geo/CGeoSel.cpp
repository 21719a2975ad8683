#include "geo/CGeoSel.h"

#include "core/CZSet.h"
#include "core/platform/CFileDialog.h"
#include "core/platform/Zan.h"
#include "geo/Geo.h"

CRuntimeClass CGeoSel::classCGeoSel = CRuntimeClass::Of<CGeoSel, CZanWnd>("CGeoSel");

namespace {

// "<Select Here>", then the records of one list, by name.
template <class T>
CZLEnt* FillFrom(const CList_Mgd<T>& records, CZList& list, void* pCur)
{
    list.Append(new CZLEnt(u"<Select Here>"));
    CZLEnt* cur = nullptr;
    for (CZanPtr* pos = records.GetHeadPos(); pos;) {
        T* rec = records.GetNext(pos);
        auto* entry = new CZLEnt(rec->m_name);
        entry->m_pData = rec;
        list.Append(entry);
        if (!cur && pCur && entry->m_pData == pCur) cur = entry;
    }
    return cur;
}

// Look-ups of the settings store: the record of a stored name, or null.
void* LookSphd(const CString& name) { return Geo::GetSphd(name); }
void* LookProj(const CString& name) { return Geo::GetProj(name); }
void* LookShft(const CString& name) { return Geo::GetShft(name); }

// One selection by name: storing writes the record's name or "NULL",
// loading points the selection at the record of the stored name.
template <class T>
void NamedSel(CZSetObj& set, const CString& key, T*& sel, void* (*lookup)(const CString&))
{
    if (set.IsStoring()) {
        CString name = sel ? sel->m_name : CString(u"NULL");
        set.Item(key, name);
        return;
    }
    void* p = sel;
    set.Item(key, p, lookup);
    sel = static_cast<T*>(p);
}

// Binds one combo box row: label, box on the selection, list callback.
template <class T>
void ComboRow(CGeoSel& panel, const CString& label, T*& sel, CZLEnt* (CGeoSel::*fill)(CZList&, void*))
{
    panel.InsText(80, label, 0, nullptr);
    CZCtrl* ctrl = panel.InsCtrl(150, 512, reinterpret_cast<void**>(&sel), nullptr);
    if (auto* combo = dynamic_cast<CZCombo*>(ctrl)) {
        combo->SetListCallback(&panel, static_cast<ZanListFill>(fill));
        combo->Update(0);  // show the selection through the list just made
    }
    panel.NewLn();
}

}  // namespace

CGeoSel::CGeoSel() : m_gdbName(Zan::projDir + u"GeoDB.csv") {}

CGeoSel::~CGeoSel() = default;

CGeoSel& CGeoSel::operator=(const CGeoSel& src)
{
    if (this == &src) return *this;
    CZanWnd::operator=(src);
    m_gdbName = src.m_gdbName;
    return *this;
}

void CGeoSel::SetupCtrls()
{
    ComboRow(*this, u"Spheroid 1", Geo::pSphdP, &CGeoSel::FillSphdCb);
    ComboRow(*this, u"Projection 1", Geo::pProjP, &CGeoSel::FillProjCb);
    ComboRow(*this, u"Datum Shift", Geo::pShift, &CGeoSel::FillShiftCb);
    ComboRow(*this, u"Spheroid 2", Geo::pSphdS, &CGeoSel::FillSphdCb);
    ComboRow(*this, u"Projection 2", Geo::pProjS, &CGeoSel::FillProjCb);
    InsBtn(80, u"Load Database", 0, this, static_cast<ZanHandler>(&CGeoSel::SelectDB), nullptr);
    InsCtrl(150, 32, m_gdbName, nullptr);
    NewLn();
}

void CGeoSel::Settings(CZSetObj& set)
{
    CZanWnd::Settings(set);
    Geo::Settings(set);
    set.Item(u"GDBName", m_gdbName);
    // By name after the indices of Geo::Settings: on loading the name wins.
    NamedSel(set, u"SphdPSel", Geo::pSphdP, &LookSphd);
    NamedSel(set, u"ProjPSel", Geo::pProjP, &LookProj);
    NamedSel(set, u"ShiftSel", Geo::pShift, &LookShft);
    NamedSel(set, u"SphdSSel", Geo::pSphdS, &LookSphd);
    NamedSel(set, u"ProjSSel", Geo::pProjS, &LookProj);
    if (set.IsLoading()) UpdateCtrls();
}

void CGeoSel::SelectDB()
{
    CFileDialog dlg(TRUE, nullptr, u"*.csv", OFN_HIDEREADONLY | OFN_FILEMUSTEXIST,
                    u"CSV Files (*.csv)|*.csv|All Files|*.*||");
    dlg.m_strTitle = u"Select Geodetic Database to Load";
    dlg.m_strInitialDir = m_gdbName;
    if (dlg.DoModal() != IDOK) return;
    m_gdbName = dlg.GetPathName();
    Geo::ClearDb();  // no selection survives a load
    Geo::ReadDb(m_gdbName);
    UpdateCtrls();
}

CZLEnt* CGeoSel::FillSphdCb(CZList& list, void* pCur) { return FillFrom(Geo::sphds, list, pCur); }
CZLEnt* CGeoSel::FillProjCb(CZList& list, void* pCur) { return FillFrom(Geo::projs, list, pCur); }
CZLEnt* CGeoSel::FillShiftCb(CZList& list, void* pCur) { return FillFrom(Geo::shfts, list, pCur); }
