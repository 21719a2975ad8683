#pragma once
// CFileDialog: the framework's dialog for choosing a file to open or save,
// headless. No dialog window exists in this library: DoModal hands the dialog,
// as its caller set it up (title, initial folder, file name, filter pairs),
// to the chooser that the host installed with SetChooser, and the chooser
// answers with a path or declines. A host with a user interface installs a
// chooser that shows its own dialog; a script or a test installs one that
// answers from its own list. With no chooser installed nothing is chosen and
// DoModal returns IDCANCEL, so a panel's "load" button changes nothing.
//
// The chooser is process-wide and belongs to the host's user interface
// thread, like the panels that open dialogs; nothing here locks.
#include "core/platform/CString.h"
#include "core/platform/Types.h"

#include <functional>
#include <utility>
#include <vector>

class CWnd;

// Results of DoModal.
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;

// Option flags of the dialog; kept for the host's chooser to read.
inline constexpr DWORD OFN_OVERWRITEPROMPT = 0x00000002;
inline constexpr DWORD OFN_HIDEREADONLY = 0x00000004;
inline constexpr DWORD OFN_PATHMUSTEXIST = 0x00000800;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x00001000;

class CFileDialog {
public:
    // Answers one dialog: sets `path` and returns non-zero to confirm, or
    // returns 0 to cancel (path is then ignored).
    using Chooser = std::function<BOOL(const CFileDialog& dlg, CString& path)>;

    // bOpenFileDialog non-zero: a dialog for opening a file, else for saving.
    // defExt: default extension, without the dot; fileName: the name shown
    // at first ("*.csv", say); filter: pairs of description and pattern,
    // each ended by '|', the whole ended by "||" ("Csv Files (*.csv)|*.csv|
    // All Files|*.*||"). Null texts count as empty.
    explicit CFileDialog(BOOL bOpenFileDialog, LPCTSTR defExt = nullptr, LPCTSTR fileName = nullptr,
                         DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT, LPCTSTR filter = nullptr,
                         CWnd* parent = nullptr);
    virtual ~CFileDialog() = default;
    CFileDialog(const CFileDialog&) = default;
    CFileDialog& operator=(const CFileDialog&) = default;

    BOOL m_bOpenFileDialog;
    CString m_strDefExt;
    CString m_strFileName;    // name shown at first
    DWORD m_dwFlags;
    CString m_strFilter;      // as given to the constructor
    CString m_strTitle;       // title bar text; empty for the system's
    CString m_strInitialDir;  // folder shown at first; empty for the current one
    CWnd* m_pParent;

    // Runs the dialog through the installed chooser: IDOK when it confirmed
    // (GetPathName then gives its answer), IDCANCEL when it declined or no
    // chooser is installed.
    virtual int DoModal();
    // The chosen path after DoModal returned IDOK; empty before and after a
    // cancel.
    CString GetPathName() const { return m_strPath; }
    // The last component of the chosen path, and its extension without the
    // dot (empty when it has none).
    CString GetFileName() const;
    CString GetFileExt() const;
    // The filter as (description, pattern) pairs, in order. A trailing
    // description without its pattern is dropped.
    std::vector<std::pair<CString, CString>> GetFilters() const;

    // Installs the chooser (an empty one removes it) and returns the one
    // that was installed before.
    static Chooser SetChooser(Chooser chooser);

private:
    CString m_strPath;
    static Chooser s_chooser;
};
