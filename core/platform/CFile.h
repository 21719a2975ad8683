#pragma once
// CFile: an unbuffered binary file over a POSIX descriptor. CMemFile: the same
// calls over a block of memory. CStdioFile: text lines in UTF-8.
//
// Errors of Open are reported through its result (and the optional
// CFileException); errors of Read/Write/Seek raise CFileException.
#include "core/platform/CException.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

// What CFile::GetStatus reports of a file.
struct CFileStatus {
    CString m_szFullName;     // the path as given
    ULONGLONG m_size = 0;     // bytes
    double m_mtime = 0.0;     // last modification, seconds since 1970 (UTC)
    BYTE m_attribute = 0;     // 0x10 for a folder, else 0
};

class CFile {
public:
    enum OpenFlags : UINT {
        modeRead = 0x0000, modeWrite = 0x0001, modeReadWrite = 0x0002,
        shareCompat = 0x0000, shareExclusive = 0x0010, shareDenyWrite = 0x0020, shareDenyRead = 0x0030,
        shareDenyNone = 0x0040, modeNoInherit = 0x0080,
        modeCreate = 0x1000, modeNoTruncate = 0x2000, typeText = 0x4000, typeBinary = 0x8000
    };
    enum SeekPosition : UINT { begin = 0, current = 1, end = 2 };

    CFile() = default;
    // Opens or raises CFileException.
    CFile(LPCTSTR fileName, UINT openFlags);
    virtual ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // Opens `fileName` (UTF-16, converted to UTF-8 for the system). Returns
    // FALSE and fills *pError, if given, when the file cannot be opened.
    virtual BOOL Open(LPCTSTR fileName, UINT openFlags, CFileException* pError = nullptr);
    virtual UINT Read(void* p, UINT n);
    virtual void Write(const void* p, UINT n);
    virtual ULONGLONG Seek(LONGLONG off, UINT from);
    ULONGLONG SeekToBegin() { return Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    virtual ULONGLONG GetLength() const;
    virtual ULONGLONG GetPosition() const;
    virtual void SetLength(ULONGLONG n);
    virtual void Flush();
    virtual void Close();
    virtual void Abort();
    virtual CString GetFilePath() const { return m_strFileName; }
    CString GetFileName() const;
    BOOL IsOpen() const { return m_fd >= 0; }
    // TRUE, with rStatus filled, when `fileName` names something that exists
    // (a file or a folder; links are followed); FALSE, rStatus untouched,
    // when it doesn't or cannot be examined.
    static BOOL GetStatus(LPCTSTR fileName, CFileStatus& rStatus);

protected:
    int m_fd = -1;
    CString m_strFileName;
};

class CMemFile : public CFile {
public:
    // An empty growable block; it grows geometrically, at least by nGrowBytes.
    explicit CMemFile(UINT nGrowBytes = 1024);
    // Works on the caller's block of `size` bytes. With nGrowBytes 0 the
    // block cannot grow: a write past its end raises CFileException diskFull.
    // With nGrowBytes non-zero the block must come from ZUtil::Malloc/malloc.
    CMemFile(BYTE* pBuffer, UINT size, UINT nGrowBytes = 0);
    ~CMemFile() override;

    void Attach(BYTE* pBuffer, UINT size, UINT nGrowBytes = 0);
    // Gives the block to the caller (release with free/ZUtil::FreeIt) and
    // leaves this file empty.
    BYTE* Detach();
    // The block as it stands; valid until the next write.
    const BYTE* GetBuffer() const { return m_pBuf; }

    BOOL Open(LPCTSTR, UINT, CFileException* = nullptr) override { return FALSE; }
    UINT Read(void* p, UINT n) override;
    void Write(const void* p, UINT n) override;
    ULONGLONG Seek(LONGLONG off, UINT from) override;
    ULONGLONG GetLength() const override { return m_nFileSize; }
    ULONGLONG GetPosition() const override { return m_nPosition; }
    void SetLength(ULONGLONG n) override;
    void Flush() override {}
    void Close() override;
    void Abort() override { Close(); }
    CString GetFilePath() const override { return CString(u"<memory>"); }

private:
    void GrowTo(size_t n);
    BYTE* m_pBuf = nullptr;
    size_t m_nBufSize = 0;
    size_t m_nFileSize = 0;
    size_t m_nPosition = 0;
    UINT m_nGrowBytes = 1024;
    bool m_bAutoDelete = true;
};

class CStdioFile : public CFile {
public:
    CStdioFile() = default;
    CStdioFile(LPCTSTR fileName, UINT openFlags) : CFile(fileName, openFlags) {}

    // Reads one line, without its end of line ("\n" or "\r\n"). FALSE at the
    // end of the file with nothing read. The file is decoded as UTF-8.
    BOOL ReadString(CString& line);
    // Reads at most nMax-1 characters, stopping after a '\n', which is kept;
    // the rest of a longer line comes with the next call. Null at the end.
    LPTSTR ReadString(LPTSTR buf, UINT nMax);
    // Writes the text as UTF-8.
    void WriteString(LPCTSTR text);

    UINT Read(void* p, UINT n) override;
    ULONGLONG Seek(LONGLONG off, UINT from) override;
    ULONGLONG GetPosition() const override;
    void Close() override;

private:
    int NextByte();
    int NextChar();  // one UTF-16 unit, -1 at the end
    std::string m_buf;
    size_t m_pos = 0;
    char16_t m_pending = 0;  // second half of a surrogate pair
};
