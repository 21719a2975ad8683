#pragma once
// Exceptions of the file and archive layer, thrown by value. Both derive from
// std::exception so that a host may catch them generally.
#include "core/platform/CString.h"

#include <exception>
#include <string>

class CException : public std::exception {
public:
    const char* what() const noexcept override { return m_what.c_str(); }
protected:
    std::string m_what;
};

class CFileException : public CException {
public:
    enum { none = 0, genericException, fileNotFound, badPath, tooManyOpenFiles, accessDenied, invalidFile,
           removeCurrentDir, directoryFull, badSeek, hardIO, sharingViolation, lockViolation, diskFull, endOfFile };
    CFileException(int cause = none, long osError = -1, const CString& fileName = CString());
    int m_cause;
    long m_lOsError;
    CString m_strFileName;
};

class CArchiveException : public CException {
public:
    // Causes: 2 writing to a loading archive, 3 end of file inside a value,
    // 4 reading from a storing archive.
    enum { none = 0, genericException = 1, readOnly = 2, endOfFile = 3, writeOnly = 4, badIndex = 5,
           badClass = 6, badSchema = 7 };
    explicit CArchiveException(int cause = none, const CString& fileName = CString());
    int m_cause;
    CString m_strFileName;
};

[[noreturn]] void AfxThrowArchiveException(int cause, LPCTSTR fileName = nullptr);
[[noreturn]] void AfxThrowFileException(int cause, long osError = -1, LPCTSTR fileName = nullptr);
