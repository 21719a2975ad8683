#pragma once
// A text file in memory for the loaders that take a path (GeoDB.csv, tide
// files, the settings file): an anonymous memory file reached through
// /proc/self/fd, or a temporary file where there is none.
#include <zandata/ZanData.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace zanfuzz {

class CTextFile {
public:
    CTextFile(const uint8_t* data, size_t size);
    ~CTextFile();
    CTextFile(const CTextFile&) = delete;
    CTextFile& operator=(const CTextFile&) = delete;

    // The path to give the loader; empty if no file could be made.
    const CString& Path() const { return m_path; }
    // Replaces the content.
    void Set(const uint8_t* data, size_t size);
    // The content as it stands (after a writer used the path).
    std::string Read() const;

private:
    int m_fd = -1;
    std::string m_tmp;  // the temporary file's name, when one was needed
    CString m_path;
};

}  // namespace zanfuzz
