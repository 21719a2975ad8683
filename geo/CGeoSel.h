#pragma once
// CGeoSel: the settings panel that picks the geodesy selection of Geo (the
// primary and secondary spheroid and projection, and the datum shift) from
// the records of the geodetic database, and loads another database.
//
// Rows of the panel (SetupCtrls): "Spheroid 1" (Geo::pSphdP), "Projection 1"
// (Geo::pProjP), "Datum Shift" (Geo::pShift), "Spheroid 2" (Geo::pSphdS),
// "Projection 2" (Geo::pProjS), each a combo box that writes the picked
// record straight into its static; then the "Load Database" button with a
// field holding the database path. Each combo box offers "<Select Here>"
// (no record: picking it nulls the selection) and then the records of its
// list by name, rebuilt each time it is shown.
//
// The panel belongs to the host's user interface thread; Geo's lists and
// selection are changed here without a lock, as Geo's own calls do.
#include "core/platform/CZanWnd.h"

class CZSetObj;

class CGeoSel : public CZanWnd {
public:
    static CRuntimeClass classCGeoSel;
    static CRuntimeClass* GetThisClass() { return &classCGeoSel; }
    static CObject* CreateObject() { return new CGeoSel; }
    CRuntimeClass* GetRuntimeClass() const override { return &classCGeoSel; }

    // Path of the geodetic database; Zan::projDir followed by "GeoDB.csv"
    // at construction.
    CString m_gdbName;

    // Sets m_gdbName only: no file is read and Geo stays as it is.
    CGeoSel();
    ~CGeoSel() override;
    CGeoSel(const CGeoSel&) = delete;
    // The base's assignment, then the path.
    CGeoSel& operator=(const CGeoSel& src);

    // Builds the six rows of controls described above.
    void SetupCtrls() override;
    // The base's Settings, then Geo::Settings (the database lines and the
    // selection by index), then "GDBName", then the five selections by name:
    // "SphdPSel", "ProjPSel", "ShiftSel", "SphdSSel", "ProjSSel", each the
    // record's name or "NULL". Loading looks each name up in its list (a
    // name no record bears, "NULL" included, gives null), so the name wins
    // over the index; then the controls show the result.
    void Settings(CZSetObj& set) override;
    // The "Load Database" button: asks the host for a file (CFileDialog:
    // "*.csv", title "Select Geodetic Database to Load", filters *.csv and
    // *.*, m_gdbName as the initial folder). When one is chosen, m_gdbName
    // becomes its path, Geo::ClearDb drops every record and selection,
    // Geo::ReadDb reads the file (a file that won't open leaves the lists
    // empty, reported by Geo) and the controls show the new lists. Without a
    // choice nothing changes.
    void SelectDB();

    // List callbacks of the combo boxes: "<Select Here>" (data null), then
    // one entry per record of Geo::sphds, Geo::projs or Geo::shfts, its text
    // the record's name and its data the record. Each returns the entry of
    // pCur, or null when pCur is null or not listed.
    CZLEnt* FillSphdCb(CZList& list, void* pCur);
    CZLEnt* FillProjCb(CZList& list, void* pCur);
    CZLEnt* FillShiftCb(CZList& list, void* pCur);
};
