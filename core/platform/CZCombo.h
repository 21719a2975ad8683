#pragma once
// CZCombo: a combo box of the panels, with its list (CZList) of entries
// (CZLEnt). Bound to an int it holds the index of the chosen entry; bound to
// a pointer (Init(void**)) it holds the chosen entry's data pointer.
//
// A combo box with a list callback builds its list afresh whenever it is
// shown (Update) or dropped down (Execute): it empties the list, then the
// callback appends the entries and returns the entry for the variable's
// present value, or null. The entry shown is that one; failing it, the entry
// whose data is the bound pointer (a pointer combo) or whose index is the
// bound int (an int combo); failing both, none.
#include "core/CDSArray.h"
#include "core/platform/CZCtrl.h"

// One list entry: a text, then a data pointer (not owned).
class CZLEnt {
public:
    CString m_strText;
    void* m_pData = nullptr;

    CZLEnt() = default;
    explicit CZLEnt(const CString& text) : m_strText(text) {}
};

// The list of a combo box. Entries are appended with Append, which adopts a
// heap entry (new CZLEnt).
class CZList : public CDSArray<CZLEnt> {
public:
    // Index of `entry` (compared by address), or -1.
    int IndexOf(const CZLEnt* entry) const;
    // Index of the first entry with that data pointer, or -1.
    int FindData(const void* data) const;
};

// A list callback: fills `list` and returns the entry of `current`, or null.
using ZanListFill = CZLEnt* (CObject::*)(CZList& list, void* current);

class CZCombo : public CZCtrl {
public:
    static CRuntimeClass classCZCombo;
    static CRuntimeClass* GetThisClass() { return &classCZCombo; }
    static CObject* CreateObject() { return new CZCombo; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCZCombo; }

    CZCombo();
    ~CZCombo() override;

    CZList m_list;        // the entries
    int m_nSel = -1;      // index of the entry shown, -1 for none
    CObject* m_pListTarget = nullptr;
    ZanListFill m_pfnFill = nullptr;

    // Appends an entry, returns its index.
    int AddString(CString text, void* data);
    // Empties the list and fills it with n entries numbered "0" to "n-1"
    // (data null); for a box bound to an int, entry i stands for the value i.
    // n of 0 or less leaves it empty.
    void LoadIndex(int n);
    // Has `fill` called on `target` whenever the list is to be built; a null
    // target or fill removes the callback.
    void SetListCallback(CObject* target, ZanListFill fill);
    // The entry shown (-1 for none), and the user's pick of entry i: shown at
    // once, taken into the variable by Retreive. FALSE for an i outside the
    // list.
    int GetCurSel() const { return m_nSel; }
    BOOL SetCurSel(int i);
    int GetCount() const { return static_cast<int>(m_list.m_nSize); }

    // Rebuilds the list through the callback (if any) and shows the entry of
    // the variable's value.
    void Update(int) override;
    // Writes the shown entry into the variable: its index, or its data
    // pointer; with no entry shown, nothing.
    void Retreive() override;
    // The list dropping down: rebuilt as by Update.
    void Execute() override;
    void Draw(CDC* dc) override;

private:
    // Empties the list and runs the callback; returns the callback's entry.
    CZLEnt* Refill();
};
