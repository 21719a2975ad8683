#pragma once
// CArchive: the one binary stream of every record. Buffered, one direction
// (storing or loading) for its whole life, little-endian, with no tags,
// padding or framing: the bytes are exactly what the records write.
//
// Errors raise CArchiveException by value: cause 2 when a value is written to
// a loading archive, 3 at the end of the file inside a fixed-size value or a
// string, 4 when a value is read from a storing archive. Read() itself raises
// nothing at the end of the file and returns what it got.
#include "core/platform/CException.h"
#include "core/platform/CFile.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

#include <bit>
#include <cstring>
#include <type_traits>
#include <vector>

static_assert(std::endian::native == std::endian::little, "records are little-endian and written from memory");

class CArchive {
public:
    enum Mode : UINT { store = 0, load = 1, bNoFlushOnDelete = 2 };

    // The archive does not own the file. nBufSize is the size of its buffer;
    // reads and writes of at least that many bytes bypass it.
    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    // Flushes a storing archive that was not closed (errors are swallowed
    // here; call Close to see them).
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return m_bLoading; }
    BOOL IsStoring() const { return !m_bLoading; }
    CFile* GetFile() const { return m_pFile; }

    // Writes out what is buffered; the archive stays usable.
    void Flush();
    // Flushes and detaches from the file; further use raises cause 1.
    void Close();
    // Detaches without writing what is buffered.
    void Abort();

    // Up to n bytes; returns how many were read (fewer only at the end).
    UINT Read(void* p, UINT n);
    // Appends n bytes; n 0 does nothing and p may then be null.
    void Write(const void* p, UINT n);

    // Bytes still to be read: the buffered ones plus what the file holds
    // behind its position. Storing archives answer 0.
    ULONGLONG GetRemaining() const;
    // Raises cause 3 unless at least n bytes remain to be read. Loaders call
    // this before allocating for a block whose size a record announces, so a
    // damaged file cannot make them allocate more than it holds.
    void CheckAvailable(ULONGLONG n) const;

    // Fixed-size values.
    CArchive& operator<<(BYTE v) { return Put(v); }
    CArchive& operator<<(char v) { return Put(v); }
    CArchive& operator<<(signed char v) { return Put(v); }
    CArchive& operator<<(bool v) { return Put(static_cast<BYTE>(v ? 1 : 0)); }
    CArchive& operator<<(unsigned short v) { return Put(v); }
    CArchive& operator<<(short v) { return Put(v); }
    CArchive& operator<<(unsigned int v) { return Put(v); }
    CArchive& operator<<(int v) { return Put(v); }
    CArchive& operator<<(unsigned long v) { return Put(static_cast<std::uint32_t>(v)); }  // u32, as on the original
    CArchive& operator<<(long v) { return Put(static_cast<std::int32_t>(v)); }            // i32
    CArchive& operator<<(unsigned long long v) { return Put(v); }
    CArchive& operator<<(long long v) { return Put(v); }
    CArchive& operator<<(float v) { return Put(v); }
    CArchive& operator<<(double v) { return Put(v); }
    CArchive& operator<<(char16_t v) { return Put(static_cast<unsigned short>(v)); }
    CArchive& operator<<(const CString& s);

    CArchive& operator>>(BYTE& v) { return Get(v); }
    CArchive& operator>>(char& v) { return Get(v); }
    CArchive& operator>>(signed char& v) { return Get(v); }
    CArchive& operator>>(bool& v) { BYTE b = 0; Get(b); v = b != 0; return *this; }
    CArchive& operator>>(unsigned short& v) { return Get(v); }
    CArchive& operator>>(short& v) { return Get(v); }
    CArchive& operator>>(unsigned int& v) { return Get(v); }
    CArchive& operator>>(int& v) { return Get(v); }
    CArchive& operator>>(unsigned long& v) { std::uint32_t x = 0; Get(x); v = x; return *this; }
    CArchive& operator>>(long& v) { std::int32_t x = 0; Get(x); v = x; return *this; }
    CArchive& operator>>(unsigned long long& v) { return Get(v); }
    CArchive& operator>>(long long& v) { return Get(v); }
    CArchive& operator>>(float& v) { return Get(v); }
    CArchive& operator>>(double& v) { return Get(v); }
    CArchive& operator>>(char16_t& v) { unsigned short x = 0; Get(x); v = x; return *this; }
    CArchive& operator>>(CString& s);

    // Raises the archive's exception with this archive's file name.
    [[noreturn]] void Throw(int cause) const;

private:
    template <class T>
    CArchive& Put(T v)
    {
        if (m_bLoading) Throw(CArchiveException::readOnly);
        if (m_nCur + sizeof(T) <= m_buf.size()) {
            std::memcpy(m_buf.data() + m_nCur, &v, sizeof(T));
            m_nCur += sizeof(T);
        } else {
            Write(&v, sizeof(T));
        }
        return *this;
    }
    template <class T>
    CArchive& Get(T& v)
    {
        if (!m_bLoading) Throw(CArchiveException::writeOnly);
        if (m_nCur + sizeof(T) <= m_nEnd) {
            std::memcpy(&v, m_buf.data() + m_nCur, sizeof(T));
            m_nCur += sizeof(T);
        } else if (Read(&v, sizeof(T)) != sizeof(T)) {
            Throw(CArchiveException::endOfFile);
        }
        return *this;
    }
    void FillBuffer();
    void WriteBuffer();

    CFile* m_pFile;
    bool m_bLoading;
    bool m_bFlushOnDelete;
    std::vector<BYTE> m_buf;
    size_t m_nCur = 0;  // next byte to read or write in m_buf
    size_t m_nEnd = 0;  // loading: end of valid bytes in m_buf
};

// The length rules of `string`: below 255 one byte; else 0xFF and a u16 below
// 0xFFFE; else 0xFF, 0xFFFF and a u32 below 0xFFFFFFFF; else 0xFF, 0xFFFF,
// 0xFFFFFFFF and a u64. A wide string is preceded by the tag FF FE FF.
void AfxWriteStringLength(CArchive& ar, ULONGLONG nLength, BOOL bUnicode);
// Reads a length written by either form; nCharSize is set to 1 (narrow) or
// 2 (wide).
ULONGLONG AfxReadStringLength(CArchive& ar, int& nCharSize);
