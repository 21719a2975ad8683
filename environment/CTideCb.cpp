#include "environment/CTideCb.h"

#include "environment/CTideObj.h"

CTideCb::CTideCb() = default;

CTideCb::CTideCb(CTideObj*& pTide) { InitTide(pTide); }

CTideCb::~CTideCb() = default;

void CTideCb::InitTide(CTideObj*& pTide)
{
    SetListCallback(this, static_cast<ZanListFill>(&CTideCb::FillCombo));
    FillCombo(m_list, pTide);
    Init(reinterpret_cast<void**>(&pTide));
}

CZLEnt* CTideCb::FillCombo(CZList& list, void* pCur)
{
    // The first entry stands for no table. It goes into the list being
    // built, which is the control's own whenever the framework calls back.
    list.Append(new CZLEnt(u"<Select Here>"));
    if (CTideObj::s_tides.IsEmpty()) return nullptr;

    CZLEnt* cur = nullptr;
    for (CZanPtr* pos = CTideObj::s_tides.GetHeadPos(); pos;) {
        CTideObj* tide = CTideObj::s_tides.GetNext(pos);
        auto* entry = new CZLEnt(tide->m_strName);
        entry->m_pData = tide;
        list.Append(entry);
        if (!cur && pCur && entry->m_pData == pCur) cur = entry;
    }
    return cur;
}
