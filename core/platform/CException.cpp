#include "core/platform/CException.h"

CFileException::CFileException(int cause, long osError, const CString& fileName)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName)
{
    m_what = "file error " + std::to_string(cause) + " on '" + fileName.Utf8() + "'";
}

CArchiveException::CArchiveException(int cause, const CString& fileName) : m_cause(cause), m_strFileName(fileName)
{
    static const char* const names[] = {"none", "generic", "read only", "end of file", "write only",
                                        "bad index", "bad class", "bad schema"};
    m_what = std::string("archive error: ") + (cause >= 0 && cause < 8 ? names[cause] : "unknown") + " (" +
             std::to_string(cause) + ") on '" + fileName.Utf8() + "'";
}

void AfxThrowArchiveException(int cause, LPCTSTR fileName) { throw CArchiveException(cause, CString(fileName)); }

void AfxThrowFileException(int cause, long osError, LPCTSTR fileName)
{
    throw CFileException(cause, osError, CString(fileName));
}
