#pragma once
// The fuzzed loaders, by name. Each entry takes arbitrary bytes; the first
// byte of some of them picks a mode (see each entry), the rest is the record.
// The same entries serve the libFuzzer programs (fuzz_<name>) and the corpus
// replay among the plain tests, so every input kept under
// fuzz/corpus/<name>/ runs in every test tree.
#include <cstddef>
#include <cstdint>
#include <string>

namespace zanfuzz {

using Entry = void (*)(const uint8_t* data, size_t size);

struct Target {
    const char* name;
    Entry fn;
};

// Every target; n gets their number.
const Target* Targets(size_t& n);
// The entry of that name, or null.
Entry Find(const char* name);
// Installs what Fail calls before it aborts: the replay among the unit tests
// throws from it, to name the input and go on. Null restores plain abort.
void SetFailHandler(void (*handler)(const std::string& what));
// Quiets the library's reports, which damaged input raises by the thousand,
// and fills nothing else: entries leave no state behind.
void Setup();

// The entries.
void FuzzPing(const uint8_t* data, size_t size);
void FuzzPingZoom(const uint8_t* data, size_t size);
void FuzzTgt(const uint8_t* data, size_t size);
void FuzzTgtRec(const uint8_t* data, size_t size);
void FuzzBnd(const uint8_t* data, size_t size);
void FuzzImg(const uint8_t* data, size_t size);
void FuzzImgPingEx(const uint8_t* data, size_t size);
void FuzzImgZoom(const uint8_t* data, size_t size);
void FuzzUncompress(const uint8_t* data, size_t size);
void FuzzSnsr(const uint8_t* data, size_t size);
void FuzzGeo(const uint8_t* data, size_t size);
void FuzzGeoDb(const uint8_t* data, size_t size);
void FuzzSettings(const uint8_t* data, size_t size);
void FuzzTide(const uint8_t* data, size_t size);
void FuzzRecording(const uint8_t* data, size_t size);

}  // namespace zanfuzz
