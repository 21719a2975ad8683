#include "Recording.h"

#include <zlib.h>

#include <cstring>
#include <stdexcept>

namespace zanrec {
namespace {
constexpr char kMagic[4] = {'Z', 'R', 'E', 'C'};
constexpr std::uint16_t kVersion = 1;
constexpr std::size_t kFrameHeader = 12;
// A frame longer than this is taken as damage, whatever the file's size.
constexpr std::uint32_t kMaxFrame = 512u << 20;

void Put16(std::uint8_t* p, std::uint16_t v) { p[0] = v & 0xFF; p[1] = v >> 8; }
void Put32(std::uint8_t* p, std::uint32_t v) { for (int i = 0; i < 4; ++i) p[i] = (v >> (8 * i)) & 0xFF; }
std::uint32_t Get32(const std::uint8_t* p) { return p[0] | (p[1] << 8) | (p[2] << 16) | (std::uint32_t(p[3]) << 24); }

std::uint32_t Crc(const std::uint8_t* p, std::size_t n)
{
    uLong c = crc32(0L, Z_NULL, 0);
    while (n > 0) {
        const uInt k = n > (1u << 30) ? (1u << 30) : static_cast<uInt>(n);
        c = crc32(c, p, k);
        p += k;
        n -= k;
    }
    return static_cast<std::uint32_t>(c);
}
} // namespace

RecordingWriter::RecordingWriter(const std::string& path) : m_path(path)
{
    m_f = std::fopen(path.c_str(), "wb");
    if (!m_f) throw std::runtime_error("cannot create " + path + ": " + std::strerror(errno));
    std::uint8_t h[8];
    std::memcpy(h, kMagic, 4);
    Put16(h + 4, kVersion);
    Put16(h + 6, 0);
    if (std::fwrite(h, 1, 8, m_f) != 8) throw std::runtime_error("cannot write " + path);
    m_bytes = 8;
}

RecordingWriter::~RecordingWriter()
{
    if (m_f) std::fclose(m_f);
}

void RecordingWriter::Write(FrameKind kind, std::uint8_t type, const std::uint8_t* data, std::size_t n)
{
    if (n > kMaxFrame) throw std::runtime_error("frame too large for " + m_path);
    std::uint8_t h[kFrameHeader];
    h[0] = static_cast<std::uint8_t>(kind);
    h[1] = type;
    Put16(h + 2, 0);
    Put32(h + 4, static_cast<std::uint32_t>(n));
    Put32(h + 8, Crc(data, n));
    if (std::fwrite(h, 1, kFrameHeader, m_f) != kFrameHeader || (n && std::fwrite(data, 1, n, m_f) != n))
        throw std::runtime_error("cannot write " + m_path + ": " + std::strerror(errno));
    m_bytes += kFrameHeader + n;
}

void RecordingWriter::Close()
{
    if (m_f && std::fclose(m_f) != 0) {
        m_f = nullptr;
        throw std::runtime_error("cannot close " + m_path);
    }
    m_f = nullptr;
}

ReadResult ReadRecording(const std::string& path)
{
    ReadResult r;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        r.error = path + ": cannot open: " + std::strerror(errno);
        return r;
    }
    std::vector<std::uint8_t> all;
    std::uint8_t buf[1 << 16];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) all.insert(all.end(), buf, buf + n);
    std::fclose(f);

    if (all.size() < 8 || std::memcmp(all.data(), kMagic, 4) != 0) {
        r.error = path + ": not a zanrec recording";
        return r;
    }
    const std::uint16_t version = all[4] | (all[5] << 8);
    if (version != kVersion) {
        r.error = path + ": recording version " + std::to_string(version) + " is not supported";
        return r;
    }
    std::size_t pos = 8;
    while (pos < all.size()) {
        const int index = static_cast<int>(r.frames.size());
        auto fail = [&](const std::string& why) {
            r.badFrame = index;
            r.error = path + ": frame " + std::to_string(index) + " at byte " + std::to_string(pos) + ": " + why;
        };
        if (all.size() - pos < kFrameHeader) {
            fail("header cut short (" + std::to_string(all.size() - pos) + " of 12 bytes)");
            break;
        }
        const std::uint8_t* h = all.data() + pos;
        const std::uint32_t len = Get32(h + 4), crc = Get32(h + 8);
        if (len > kMaxFrame || len > all.size() - pos - kFrameHeader) {
            fail("length " + std::to_string(len) + " runs past the end of the file");
            break;
        }
        const std::uint8_t* p = h + kFrameHeader;
        if (Crc(p, len) != crc) {
            fail("CRC mismatch");
            break;
        }
        Frame fr;
        fr.kind = h[0];
        fr.type = h[1];
        fr.offset = pos;
        fr.payload.assign(p, p + len);
        r.frames.push_back(std::move(fr));
        pos += kFrameHeader + len;
    }
    return r;
}

} // namespace zanrec
