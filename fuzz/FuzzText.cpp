#include "fuzz/FuzzText.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zanfuzz {

CTextFile::CTextFile(const uint8_t* data, size_t size)
{
    m_fd = memfd_create("zanfuzz", 0);
    if (m_fd >= 0) {
        m_path = CString::FromUtf8("/proc/self/fd/" + std::to_string(m_fd));
    } else {
        char name[] = "/tmp/zanfuzz-XXXXXX";
        m_fd = mkstemp(name);
        if (m_fd < 0) return;
        m_tmp = name;
        m_path = CString::FromUtf8(m_tmp);
    }
    Set(data, size);
}

CTextFile::~CTextFile()
{
    if (m_fd >= 0) close(m_fd);
    if (!m_tmp.empty()) unlink(m_tmp.c_str());
}

void CTextFile::Set(const uint8_t* data, size_t size)
{
    if (m_fd < 0) return;
    if (ftruncate(m_fd, 0) != 0) return;
    for (size_t at = 0; at < size;) {
        const ssize_t k = pwrite(m_fd, data + at, size - at, static_cast<off_t>(at));
        if (k <= 0) return;
        at += static_cast<size_t>(k);
    }
}

std::string CTextFile::Read() const
{
    std::string s;
    if (m_fd < 0) return s;
    char buf[4096];
    for (off_t at = 0;;) {
        const ssize_t k = pread(m_fd, buf, sizeof buf, at);
        if (k <= 0) break;
        s.append(buf, static_cast<size_t>(k));
        at += k;
    }
    return s;
}

}  // namespace zanfuzz
