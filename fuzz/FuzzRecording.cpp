// The entry of zanrec's recording reader: the file framing (ReadRecording)
// and the records its frames hold, as the tool loads them (LoadRecording for
// the sensor records and the track, LoadPing for each ping).
#include "fuzz/FuzzTargets.h"
#include "fuzz/FuzzText.h"
#include "fuzz/FuzzUtil.h"

#include "tools/zanrec/Loaded.h"

#include <zlib.h>

#include <cstring>

namespace zanfuzz {

namespace {

// Rewrites every frame's CRC to match its payload, so that damage inside a
// payload reaches the record loaders instead of stopping at the framing.
void FixCrcs(Bytes& file)
{
    for (size_t pos = 8; pos + 12 <= file.size();) {
        std::uint32_t len = 0;
        std::memcpy(&len, &file[pos + 4], 4);
        if (len > file.size() - pos - 12) break;
        const auto crc = static_cast<std::uint32_t>(crc32(0L, file.data() + pos + 12, len));
        std::memcpy(&file[pos + 8], &crc, 4);
        pos += 12 + len;
    }
}

}  // namespace

// Byte 0: bit 0 makes every frame's CRC right first. The rest is a recording
// file.
void FuzzRecording(const uint8_t* data, size_t size)
{
    Input in{data, size};
    const bool bFixCrcs = in.Byte() & 1;
    Bytes file(in.p, in.p + in.n);
    if (bFixCrcs) FixCrcs(file);
    CTextFile text(file.data(), file.size());
    if (text.Path().IsEmpty()) return;
    const std::string path = text.Path().Utf8();

    zanrec::Loaded rec;
    if (!zanrec::LoadRecording(path, rec)) return;
    const zanrec::ReadResult& rr = rec.rr;
    // Damage is named exactly when reading stopped short, and at the frame
    // after the last whole one.
    Check(rr.error.empty() == (rr.badFrame < 0), "recording: an error without a damaged frame or the reverse");
    Check(rr.badFrame < 0 || rr.badFrame == static_cast<int>(rr.frames.size()),
          "recording: the damaged frame is not the one after the last whole frame");
    std::uint64_t next = 8;
    for (const zanrec::Frame& f : rr.frames) {
        Check(f.offset == next, "recording: frames do not follow one another");
        next = f.offset + 12 + f.payload.size();
    }

    // Every ping, into one image in turn as the tool does.
    CTgtImg img;
    for (int i = 0; i < static_cast<int>(rec.pings.size()); ++i) {
        std::string why;
        if (!zanrec::LoadPing(rec, i, img, why)) Check(!why.empty(), "recording: a refused ping without a reason");
    }
}

}  // namespace zanfuzz
