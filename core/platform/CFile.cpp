#include "core/platform/CFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
int CauseFromErrno(int e)
{
    switch (e) {
    case ENOENT: return CFileException::fileNotFound;
    case ENOTDIR: case ENAMETOOLONG: return CFileException::badPath;
    case EMFILE: case ENFILE: return CFileException::tooManyOpenFiles;
    case EACCES: case EPERM: case EROFS: return CFileException::accessDenied;
    case ENOSPC: return CFileException::diskFull;
    case EISDIR: return CFileException::invalidFile;
    default: return CFileException::genericException;
    }
}
} // namespace

CFile::CFile(LPCTSTR fileName, UINT openFlags)
{
    CFileException e;
    if (!Open(fileName, openFlags, &e)) throw e;
}

CFile::~CFile()
{
    if (m_fd >= 0) ::close(m_fd);
}

BOOL CFile::Open(LPCTSTR fileName, UINT openFlags, CFileException* pError)
{
    if (m_fd >= 0) Close();
    m_strFileName = CString(fileName);
    int flags = O_CLOEXEC;
    switch (openFlags & 3) {
    case modeWrite: flags |= O_WRONLY; break;
    case modeReadWrite: flags |= O_RDWR; break;
    default: flags |= O_RDONLY; break;
    }
    if (openFlags & modeCreate) {
        flags |= O_CREAT;
        if (!(openFlags & modeNoTruncate)) flags |= O_TRUNC;
    }
    m_fd = ::open(m_strFileName.Utf8().c_str(), flags, 0644);
    if (m_fd < 0) {
        if (pError) *pError = CFileException(CauseFromErrno(errno), errno, m_strFileName);
        return FALSE;
    }
    struct stat st {};
    if (::fstat(m_fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(m_fd);
        m_fd = -1;
        if (pError) *pError = CFileException(CFileException::invalidFile, EISDIR, m_strFileName);
        return FALSE;
    }
    return TRUE;
}

UINT CFile::Read(void* p, UINT n)
{
    if (n == 0) return 0;
    if (m_fd < 0) AfxThrowFileException(CFileException::invalidFile, -1, m_strFileName);
    size_t got = 0;
    auto* dst = static_cast<char*>(p);
    while (got < n) {
        const ssize_t r = ::read(m_fd, dst + got, n - got);
        if (r < 0) {
            if (errno == EINTR) continue;
            AfxThrowFileException(CFileException::hardIO, errno, m_strFileName);
        }
        if (r == 0) break;
        got += static_cast<size_t>(r);
    }
    return static_cast<UINT>(got);
}

void CFile::Write(const void* p, UINT n)
{
    if (n == 0) return;
    if (m_fd < 0) AfxThrowFileException(CFileException::invalidFile, -1, m_strFileName);
    size_t done = 0;
    const auto* src = static_cast<const char*>(p);
    while (done < n) {
        const ssize_t r = ::write(m_fd, src + done, n - done);
        if (r < 0) {
            if (errno == EINTR) continue;
            AfxThrowFileException(CauseFromErrno(errno), errno, m_strFileName);
        }
        done += static_cast<size_t>(r);
    }
}

ULONGLONG CFile::Seek(LONGLONG off, UINT from)
{
    const int whence = from == current ? SEEK_CUR : (from == end ? SEEK_END : SEEK_SET);
    const off_t r = ::lseek(m_fd, static_cast<off_t>(off), whence);
    if (r < 0) AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    return static_cast<ULONGLONG>(r);
}

ULONGLONG CFile::GetLength() const
{
    struct stat st {};
    if (m_fd < 0 || ::fstat(m_fd, &st) != 0) return 0;
    return static_cast<ULONGLONG>(st.st_size);
}

ULONGLONG CFile::GetPosition() const
{
    const off_t r = m_fd < 0 ? -1 : ::lseek(m_fd, 0, SEEK_CUR);
    return r < 0 ? 0 : static_cast<ULONGLONG>(r);
}

void CFile::SetLength(ULONGLONG n)
{
    if (::ftruncate(m_fd, static_cast<off_t>(n)) != 0)
        AfxThrowFileException(CauseFromErrno(errno), errno, m_strFileName);
}

void CFile::Flush()
{
    if (m_fd >= 0) ::fsync(m_fd);
}

void CFile::Close()
{
    if (m_fd >= 0 && ::close(m_fd) != 0) {
        m_fd = -1;
        AfxThrowFileException(CFileException::hardIO, errno, m_strFileName);
    }
    m_fd = -1;
}

void CFile::Abort()
{
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
}

CString CFile::GetFileName() const
{
    const int slash = std::max(m_strFileName.ReverseFind(u'/'), m_strFileName.ReverseFind(u'\\'));
    return m_strFileName.Mid(slash + 1);
}

BOOL CFile::GetStatus(LPCTSTR fileName, CFileStatus& rStatus)
{
    if (!fileName) return FALSE;
    const CString name(fileName);
    struct stat st {};
    if (::stat(name.Utf8().c_str(), &st) != 0) return FALSE;
    rStatus.m_szFullName = name;
    rStatus.m_size = static_cast<ULONGLONG>(st.st_size);
    rStatus.m_mtime = static_cast<double>(st.st_mtim.tv_sec) + st.st_mtim.tv_nsec * 1e-9;
    rStatus.m_attribute = S_ISDIR(st.st_mode) ? 0x10 : 0;
    return TRUE;
}

// --- CMemFile ---------------------------------------------------------------

CMemFile::CMemFile(UINT nGrowBytes) : m_nGrowBytes(nGrowBytes ? nGrowBytes : 1024) {}

CMemFile::CMemFile(BYTE* pBuffer, UINT size, UINT nGrowBytes) { Attach(pBuffer, size, nGrowBytes); }

CMemFile::~CMemFile()
{
    if (m_bAutoDelete) std::free(m_pBuf);
}

void CMemFile::Attach(BYTE* pBuffer, UINT size, UINT nGrowBytes)
{
    if (m_bAutoDelete) std::free(m_pBuf);
    m_pBuf = pBuffer;
    m_nBufSize = size;
    m_nFileSize = nGrowBytes == 0 ? size : 0;
    m_nPosition = 0;
    m_nGrowBytes = nGrowBytes;
    m_bAutoDelete = false;
}

BYTE* CMemFile::Detach()
{
    BYTE* p = m_pBuf;
    m_pBuf = nullptr;
    m_nBufSize = m_nFileSize = m_nPosition = 0;
    m_bAutoDelete = true;
    if (m_nGrowBytes == 0) m_nGrowBytes = 1024;
    return p;
}

void CMemFile::GrowTo(size_t n)
{
    if (n <= m_nBufSize) return;
    if (m_nGrowBytes == 0) AfxThrowFileException(CFileException::diskFull, -1, GetFilePath());
    size_t cap = std::max<size_t>({n, m_nBufSize + m_nBufSize / 2, m_nBufSize + m_nGrowBytes});
    auto* p = static_cast<BYTE*>(std::realloc(m_pBuf, cap));
    if (!p) throw std::bad_alloc();
    m_pBuf = p;
    m_nBufSize = cap;
}

UINT CMemFile::Read(void* p, UINT n)
{
    if (m_nPosition >= m_nFileSize || n == 0) return 0;
    const size_t k = std::min<size_t>(n, m_nFileSize - m_nPosition);
    std::memcpy(p, m_pBuf + m_nPosition, k);
    m_nPosition += k;
    return static_cast<UINT>(k);
}

void CMemFile::Write(const void* p, UINT n)
{
    if (n == 0) return;
    GrowTo(m_nPosition + n);
    std::memcpy(m_pBuf + m_nPosition, p, n);
    m_nPosition += n;
    m_nFileSize = std::max(m_nFileSize, m_nPosition);
}

ULONGLONG CMemFile::Seek(LONGLONG off, UINT from)
{
    const long long base = from == current ? static_cast<long long>(m_nPosition)
                         : from == end     ? static_cast<long long>(m_nFileSize) : 0;
    if (base + off < 0) AfxThrowFileException(CFileException::badSeek, -1, GetFilePath());
    m_nPosition = static_cast<size_t>(base + off);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG n)
{
    GrowTo(static_cast<size_t>(n));
    if (n > m_nFileSize) std::memset(m_pBuf + m_nFileSize, 0, static_cast<size_t>(n) - m_nFileSize);
    m_nFileSize = static_cast<size_t>(n);
    m_nPosition = std::min(m_nPosition, m_nFileSize);
}

void CMemFile::Close()
{
    if (m_bAutoDelete) std::free(m_pBuf);
    m_pBuf = nullptr;
    m_nBufSize = m_nFileSize = m_nPosition = 0;
    m_bAutoDelete = true;
}

// --- CStdioFile -------------------------------------------------------------

int CStdioFile::NextByte()
{
    if (m_pos >= m_buf.size()) {
        m_buf.resize(8192);
        const UINT got = CFile::Read(m_buf.data(), static_cast<UINT>(m_buf.size()));
        m_buf.resize(got);
        m_pos = 0;
        if (got == 0) return -1;
    }
    return static_cast<unsigned char>(m_buf[m_pos++]);
}

int CStdioFile::NextChar()
{
    if (m_pending) {
        const int c = m_pending;
        m_pending = 0;
        return c;
    }
    const int b0 = NextByte();
    if (b0 < 0) return -1;
    if (b0 < 0x80) return b0;
    int len = (b0 >> 5) == 6 ? 2 : (b0 >> 4) == 14 ? 3 : (b0 >> 3) == 30 ? 4 : 0;
    if (len == 0) return b0;  // a lone byte of another code page: keep it as Latin-1
    char32_t cp = static_cast<char32_t>(b0 & (0x7F >> len));
    for (int k = 1; k < len; ++k) {
        const int b = NextByte();
        if (b < 0 || (b >> 6) != 2) {
            if (b >= 0) --m_pos;  // not a continuation: leave it for the next character
            return 0xFFFD;
        }
        cp = (cp << 6) | static_cast<char32_t>(b & 0x3F);
    }
    if (cp >= 0x10000) {
        cp -= 0x10000;
        m_pending = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        return static_cast<int>(0xD800 + (cp >> 10));
    }
    return static_cast<int>(cp);
}

BOOL CStdioFile::ReadString(CString& line)
{
    std::u16string s;
    int c = NextChar();
    if (c < 0) {
        line.Empty();
        return FALSE;
    }
    for (; c >= 0 && c != '\n'; c = NextChar()) s += static_cast<char16_t>(c);
    if (!s.empty() && s.back() == u'\r') s.pop_back();
    line = CString(std::move(s));
    return TRUE;
}

LPTSTR CStdioFile::ReadString(LPTSTR buf, UINT nMax)
{
    if (!buf || nMax == 0) return nullptr;
    UINT n = 0;
    while (n + 1 < nMax) {
        const int c = NextChar();
        if (c < 0) break;
        if (c == '\r') {
            // text mode: "\r\n" reads as "\n"
            const int d = NextChar();
            if (d == '\n') { buf[n++] = u'\n'; break; }
            buf[n++] = u'\r';
            if (d < 0) break;
            if (n + 1 >= nMax) { m_pending = static_cast<char16_t>(d); break; }
            buf[n++] = static_cast<char16_t>(d);
            if (d == '\n') break;
            continue;
        }
        buf[n++] = static_cast<char16_t>(c);
        if (c == '\n') break;
    }
    buf[n] = 0;
    return n == 0 ? nullptr : buf;
}

void CStdioFile::WriteString(LPCTSTR text)
{
    const std::string s = CString(text).Utf8();
    CFile::Write(s.data(), static_cast<UINT>(s.size()));
}

UINT CStdioFile::Read(void* p, UINT n)
{
    auto* dst = static_cast<BYTE*>(p);
    UINT got = 0;
    while (got < n && m_pos < m_buf.size()) dst[got++] = static_cast<BYTE>(m_buf[m_pos++]);
    return got + CFile::Read(dst + got, n - got);
}

ULONGLONG CStdioFile::Seek(LONGLONG off, UINT from)
{
    if (from == current) off -= static_cast<LONGLONG>(m_buf.size() - m_pos);
    m_buf.clear();
    m_pos = 0;
    m_pending = 0;
    return CFile::Seek(off, from);
}

ULONGLONG CStdioFile::GetPosition() const { return CFile::GetPosition() - (m_buf.size() - m_pos); }

void CStdioFile::Close()
{
    m_buf.clear();
    m_pos = 0;
    m_pending = 0;
    CFile::Close();
}
