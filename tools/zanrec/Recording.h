#pragma once
// The recording file of zanrec. The library leaves file-level framing to its
// host; this is the tool's own:
//
//   file header (8 bytes):  "ZREC" | u16 version (1) | u16 0
//   frame header (12 bytes): u8 kind | u8 type | u16 0 | u32 length | u32 CRC-32 of the payload
//   payload: `length` bytes, the records as the library's archive writes them.
//
// All numbers little-endian. kind 1 is a ping (the image record with its
// state word, then the extended ping block, then the image's zoom block);
// kind 2 a sensor record whose class is told by `type`, the sensor type id;
// kind 3 is set aside for a tide file's text. A reader skips kinds it does
// not know. A frame whose header is cut, whose length runs past the end of
// the file, or whose CRC does not match ends the reading; every whole frame
// before it stands.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zanrec {

enum class FrameKind : std::uint8_t { Ping = 1, Sensor = 2, Tide = 3 };

struct Frame {
    std::uint8_t kind = 0;
    std::uint8_t type = 0;
    std::uint64_t offset = 0;  // of the frame header in the file
    std::vector<std::uint8_t> payload;
};

class RecordingWriter {
public:
    // Creates or truncates `path`; throws std::runtime_error when it cannot.
    explicit RecordingWriter(const std::string& path);
    ~RecordingWriter();
    RecordingWriter(const RecordingWriter&) = delete;
    RecordingWriter& operator=(const RecordingWriter&) = delete;
    void Write(FrameKind kind, std::uint8_t type, const std::uint8_t* data, std::size_t n);
    void Close();
    std::uint64_t BytesWritten() const { return m_bytes; }

private:
    std::FILE* m_f = nullptr;
    std::string m_path;
    std::uint64_t m_bytes = 0;
};

struct ReadResult {
    std::vector<Frame> frames;  // every whole frame, in file order
    std::string error;          // empty when the file read to its end cleanly
    int badFrame = -1;          // index of the first damaged frame, or -1
};

// Reads the whole recording. A missing file or one that is not a recording
// gives an error and no frames; damage gives the frames before it.
ReadResult ReadRecording(const std::string& path);

} // namespace zanrec
