#pragma once
// CTideCb: a combo box that picks one of the tide tables alive
// (CTideObj::s_tides) into a CTideObj* variable of its owner. Its list is
// rebuilt each time it is shown or dropped down, so it always offers the
// tables that exist at that moment: first "<Select Here>" (no table), then
// one entry per table, its text the table's m_strName and its data the
// table. Picking an entry writes that table (or null) into the variable.
//
// Add it to a panel with CCtrlCat::InsCtrl(width, new CTideCb(pTide)).
#include "core/platform/CZCombo.h"

class CTideObj;

class CTideCb : public CZCombo {
public:
    // A control bound to nothing yet: call InitTide.
    CTideCb();
    // A control bound to pTide, as by InitTide. pTide must outlive it.
    explicit CTideCb(CTideObj*& pTide);
    ~CTideCb() override;

    // Makes FillCombo the list callback, fills the list for pTide's present
    // value, and binds the control to pTide.
    void InitTide(CTideObj*& pTide);
    // The list callback: appends "<Select Here>" (data null) and an entry for
    // each table of s_tides in order (two tables of one name both get one),
    // without emptying `list` first. Returns the entry whose table is pCur;
    // null when pCur is null or not a table, or when there is no table.
    CZLEnt* FillCombo(CZList& list, void* pCur);
};
