#pragma once
// CSnsrGrid: the panel that shows the sensor data coming in. For each sensor
// type and bank it keeps the latest text of the record (CSnsrInf::GetString)
// and how many records arrived. With one bank it is a list of coloured bands,
// one per type shown; with two banks or more, a grid of a column per type and
// a row per bank.
//
// It listens on its own: the constructor adds it to CZanWnd::s_snsrRx and
// CZanWnd::s_infoRx (it leaves them when destroyed), and each sensor message
// paints the one cell or band it changed straight onto the window, when the
// window exists and is visible. The whole panel is painted by Draw.
//
// The panel takes no lock; it runs on whatever thread the host delivers on.
#include "core/platform/CZanWnd.h"

class CSnsrGrid : public CZanWnd {
public:
    static CRuntimeClass classCSnsrGrid;
    static CRuntimeClass* GetThisClass() { return &classCSnsrGrid; }
    static CObject* CreateObject() { return new CSnsrGrid; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCSnsrGrid; }

    static constexpr int s_nTypes = 20;  // sensor type ids 0..19
    static constexpr int s_nBankMax = 8;

    int m_nBanks = 8;                             // banks on show, at most 8
    BYTE m_show[s_nTypes];                        // per type: non-zero when shown
    CString m_text[s_nTypes][s_nBankMax];         // latest text, by type and bank
    DWORD m_count[s_nTypes][s_nBankMax];          // records received, by type and bank
    DWORD m_colW[s_nTypes];                       // column width by type, 0 when not shown
    DWORD m_colX[s_nTypes + 1];                   // column start by type; the last is the total width
    DWORD m_rowY[s_nTypes];                       // top of each type's band in the list form
    CBrush* m_rowBrush[s_nTypes];                 // fill of each type's band in the list form
    DWORD m_gridLeft = 24;                        // width of the bank label column
    DWORD m_gridTop = 18;                         // height of the header row
    DWORD m_gridRowH = 18;                        // height of a bank row

    // Name "Sensor", flag word 1, the default table of shown types and
    // widths, the layout worked out from it (once: nothing recomputes it),
    // and the panel appended to s_snsrRx and s_infoRx.
    CSnsrGrid();
    ~CSnsrGrid() override;
    CSnsrGrid(const CSnsrGrid&) = delete;
    // The base's assignment, then every field above.
    CSnsrGrid& operator=(const CSnsrGrid& src);

    // Zeroes m_count.
    void ClearCounts();
    // Empties every m_text.
    void ClearStrings();
    // CZanWnd::SetOption, then the panel's one option: "nBanks" (exact
    // case) with a value that is an integer and nothing else, limited to 8
    // from above and not from below. Anything else changes nothing. The panel
    // isn't repainted.
    void SetOption(const CString& key, const CString& value) override;
    // A sensor message; p is a CSnsrInf*, the code isn't read. A record of
    // type 1..19 that is shown, from a bank below m_nBanks, becomes the text
    // of its cell and adds one to its count; anything else changes nothing.
    void OnSnsrMsg(int code, void* p) override;
    // Code 101 with p equal to 1: counts and texts cleared. Code 4000: p is a
    // CZanStateMsg; when its state is 1 or below, its first word clears as
    // 101 does, else its second word clears the counts. Either repaints the
    // window (erasing) if visible. Other codes are ignored.
    void OnInfoMsg(int code, void* p) override;
    // The text rectangle of the grid cell of a type (0..19) and bank.
    CRect GetRect(int type, int bank);
    // Paints the whole panel: the list form when m_nBanks is below 2, the
    // grid form otherwise.
    void Draw(CDC* dc) override;

private:
    void ClearAndRepaint(bool strings);
    void DrawList(CDC* dc, const CRect& client);
    void DrawGrid(CDC* dc);
};
