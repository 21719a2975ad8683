#include "core/platform/CArchive.h"

#include <algorithm>

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void* /*lpBuf*/)
    : m_pFile(pFile), m_bLoading((nMode & load) != 0), m_bFlushOnDelete((nMode & bNoFlushOnDelete) == 0)
{
    m_buf.resize(static_cast<size_t>(std::max(nBufSize, 64)));
}

CArchive::~CArchive()
{
    if (m_pFile && !m_bLoading && m_bFlushOnDelete) {
        try {
            WriteBuffer();
        } catch (...) {
            // A destructor cannot report; Close() is the call that does.
        }
    }
}

void CArchive::Throw(int cause) const
{
    throw CArchiveException(cause, m_pFile ? m_pFile->GetFilePath() : CString());
}

void CArchive::WriteBuffer()
{
    if (m_nCur > 0 && m_pFile) {
        m_pFile->Write(m_buf.data(), static_cast<UINT>(m_nCur));
        m_nCur = 0;
    }
}

void CArchive::Flush()
{
    if (!m_pFile) return;
    if (m_bLoading) {
        // Give back what was read ahead, so the file stands where the records end.
        if (m_nEnd > m_nCur) m_pFile->Seek(-static_cast<LONGLONG>(m_nEnd - m_nCur), CFile::current);
        m_nCur = m_nEnd = 0;
    } else {
        WriteBuffer();
    }
}

void CArchive::Close()
{
    Flush();
    m_pFile = nullptr;
}

void CArchive::Abort()
{
    m_nCur = m_nEnd = 0;
    m_pFile = nullptr;
}

void CArchive::FillBuffer()
{
    m_nCur = 0;
    m_nEnd = m_pFile->Read(m_buf.data(), static_cast<UINT>(m_buf.size()));
}

UINT CArchive::Read(void* p, UINT n)
{
    if (n == 0) return 0;
    if (!m_bLoading) Throw(CArchiveException::writeOnly);
    if (!m_pFile) Throw(CArchiveException::genericException);
    auto* dst = static_cast<BYTE*>(p);
    size_t got = std::min<size_t>(n, m_nEnd - m_nCur);
    std::memcpy(dst, m_buf.data() + m_nCur, got);
    m_nCur += got;
    while (got < n) {
        const size_t want = n - got;
        if (want >= m_buf.size()) {
            // Large reads go straight into the caller's memory.
            const UINT r = m_pFile->Read(dst + got, static_cast<UINT>(want));
            got += r;
            break;
        }
        FillBuffer();
        if (m_nEnd == 0) break;
        const size_t k = std::min(want, m_nEnd);
        std::memcpy(dst + got, m_buf.data(), k);
        m_nCur = k;
        got += k;
    }
    return static_cast<UINT>(got);
}

void CArchive::Write(const void* p, UINT n)
{
    if (n == 0) return;
    if (m_bLoading) Throw(CArchiveException::readOnly);
    if (!m_pFile) Throw(CArchiveException::genericException);
    const auto* src = static_cast<const BYTE*>(p);
    if (m_nCur + n <= m_buf.size()) {
        std::memcpy(m_buf.data() + m_nCur, src, n);
        m_nCur += n;
        return;
    }
    WriteBuffer();
    if (n >= m_buf.size()) {
        m_pFile->Write(src, n);  // large writes bypass the buffer
    } else {
        std::memcpy(m_buf.data(), src, n);
        m_nCur = n;
    }
}

ULONGLONG CArchive::GetRemaining() const
{
    if (!m_bLoading || !m_pFile) return 0;
    const ULONGLONG len = m_pFile->GetLength(), pos = m_pFile->GetPosition();
    return (len > pos ? len - pos : 0) + (m_nEnd - m_nCur);
}

void CArchive::CheckAvailable(ULONGLONG n) const
{
    if (n > GetRemaining()) Throw(CArchiveException::endOfFile);
}

void AfxWriteStringLength(CArchive& ar, ULONGLONG nLength, BOOL bUnicode)
{
    if (bUnicode) {
        ar << static_cast<BYTE>(0xFF);
        ar << static_cast<WORD>(0xFFFE);
    }
    if (nLength < 255) {
        ar << static_cast<BYTE>(nLength);
    } else if (nLength < 0xFFFE) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(nLength);
    } else if (nLength < 0xFFFFFFFFull) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<std::uint32_t>(nLength);
    } else {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<std::uint32_t>(0xFFFFFFFFu)
           << static_cast<std::uint64_t>(nLength);
    }
}

ULONGLONG AfxReadStringLength(CArchive& ar, int& nCharSize)
{
    nCharSize = 1;
    BYTE b = 0;
    ar >> b;
    if (b < 0xFF) return b;
    WORD w = 0;
    ar >> w;
    if (w == 0xFFFE) {
        nCharSize = 2;
        ar >> b;
        if (b < 0xFF) return b;
        ar >> w;
    }
    if (w < 0xFFFF) return w;
    std::uint32_t d = 0;
    ar >> d;
    if (d < 0xFFFFFFFFu) return d;
    std::uint64_t q = 0;
    ar >> q;
    return q;
}

CArchive& CArchive::operator<<(const CString& s)
{
    AfxWriteStringLength(*this, static_cast<ULONGLONG>(s.GetLength()), TRUE);
    Write(s.GetString(), static_cast<UINT>(s.GetLength()) * 2u);
    return *this;
}

CArchive& CArchive::operator>>(CString& s)
{
    if (!m_bLoading) Throw(CArchiveException::writeOnly);
    int charSize = 1;
    const ULONGLONG n = AfxReadStringLength(*this, charSize);
    if (n > 0x7FFFFFFFull / 2) Throw(CArchiveException::endOfFile);
    CheckAvailable(n * static_cast<ULONGLONG>(charSize));  // before allocating for a hostile length
    if (charSize == 2) {
        std::u16string w(static_cast<size_t>(n), u'\0');
        if (Read(w.data(), static_cast<UINT>(n * 2)) != n * 2) Throw(CArchiveException::endOfFile);
        s = CString(std::move(w));
    } else {
        std::string a(static_cast<size_t>(n), '\0');
        if (Read(a.data(), static_cast<UINT>(n)) != n) Throw(CArchiveException::endOfFile);
        s = CString(a.data(), static_cast<int>(n));
    }
    return *this;
}
