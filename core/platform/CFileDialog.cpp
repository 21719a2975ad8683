#include "core/platform/CFileDialog.h"

CFileDialog::Chooser CFileDialog::s_chooser;

CFileDialog::CFileDialog(BOOL bOpenFileDialog, LPCTSTR defExt, LPCTSTR fileName, DWORD flags, LPCTSTR filter,
                         CWnd* parent)
    : m_bOpenFileDialog(bOpenFileDialog), m_strDefExt(defExt), m_strFileName(fileName), m_dwFlags(flags),
      m_strFilter(filter), m_pParent(parent)
{
}

int CFileDialog::DoModal()
{
    m_strPath.Empty();
    if (!s_chooser) return IDCANCEL;
    CString path;
    if (!s_chooser(*this, path)) return IDCANCEL;
    m_strPath = path;
    return IDOK;
}

CString CFileDialog::GetFileName() const
{
    int cut = -1;
    for (int i = 0; i < m_strPath.GetLength(); ++i)
        if (m_strPath[i] == u'/' || m_strPath[i] == u'\\') cut = i;
    return m_strPath.Mid(cut + 1);
}

CString CFileDialog::GetFileExt() const
{
    const CString name = GetFileName();
    const int dot = name.ReverseFind(u'.');
    return dot < 0 ? CString() : name.Mid(dot + 1);
}

std::vector<std::pair<CString, CString>> CFileDialog::GetFilters() const
{
    std::vector<CString> parts;
    CString cur;
    for (int i = 0; i < m_strFilter.GetLength(); ++i) {
        if (m_strFilter[i] == u'|') {
            parts.push_back(cur);
            cur.Empty();
        } else {
            cur += m_strFilter[i];
        }
    }
    if (!cur.IsEmpty()) parts.push_back(cur);
    std::vector<std::pair<CString, CString>> out;
    for (size_t i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].IsEmpty() && parts[i + 1].IsEmpty()) break;  // the closing "||"
        out.emplace_back(parts[i], parts[i + 1]);
    }
    return out;
}

CFileDialog::Chooser CFileDialog::SetChooser(Chooser chooser)
{
    Chooser old = std::move(s_chooser);
    s_chooser = std::move(chooser);
    return old;
}
