#pragma once
// Helpers every test folder uses: records stored into and loaded from memory
// archives, the cause of an archive exception, little-endian pieces of
// expected records, console capture and scratch folders.
#include <zandata/ZanData.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace zantest {

using Bytes = std::vector<BYTE>;

inline CString W(const std::string& s) { return CString::FromUtf8(s); }

// The bytes a store through a CMemFile produced.
template <class F>
Bytes Store(F&& write)
{
    CMemFile f;
    {
        CArchive ar(&f, CArchive::store);
        write(ar);
        ar.Close();
    }
    const BYTE* p = f.GetBuffer();
    return Bytes(p, p + f.GetLength());
}

// A loading archive over a copy of the bytes.
struct CLoader {
    explicit CLoader(const Bytes& b) : data(b), file(data.data(), static_cast<UINT>(data.size())), ar(&file, CArchive::load)
    {
    }
    Bytes data;
    CMemFile file;
    CArchive ar;
};

// Loads from the bytes through `read`; returns how many were left unread.
template <class F>
size_t LoadFrom(const Bytes& b, F&& read)
{
    CLoader l(b);
    read(l.ar);
    return static_cast<size_t>(l.ar.GetRemaining());
}

// The cause of the CArchiveException that f raises, or -1 when none is.
template <class F>
int CauseOf(F&& f)
{
    try {
        f();
    } catch (const CArchiveException& e) {
        return e.m_cause;
    }
    return -1;
}

// Little-endian image of a value, for building expected records.
template <class T>
void Le(Bytes& b, T v)
{
    BYTE tmp[sizeof(T)];
    std::memcpy(tmp, &v, sizeof(T));
    b.insert(b.end(), tmp, tmp + sizeof(T));
}

// Collects the console lines reported while it lives.
class CConsole {
public:
    CConsole()
    {
        m_old = Zan::SetSink([this](Zan::Kind kind, unsigned long, int level, const CString& text) {
            if (kind == Zan::Kind::Console) {
                m_lines.push_back(text.Utf8());
                m_levels.push_back(level);
            }
        });
    }
    ~CConsole() { Zan::SetSink(m_old); }
    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;
    std::vector<std::string> m_lines;
    std::vector<int> m_levels;

private:
    Zan::Sink m_old;
};

// A scratch folder, removed with its content.
class CScratch {
public:
    CScratch()
    {
        static int s_n = 0;
        m_dir = std::filesystem::temp_directory_path() /
                ("zantest_" + std::to_string(::getpid()) + "_" + std::to_string(++s_n));
        std::filesystem::create_directories(m_dir);
    }
    ~CScratch()
    {
        std::error_code ec;
        std::filesystem::remove_all(m_dir, ec);
    }
    CScratch(const CScratch&) = delete;
    CScratch& operator=(const CScratch&) = delete;
    std::string Path(const std::string& name) const { return (m_dir / name).string(); }
    // Writes `text` as it is (binary) and returns the path.
    std::string Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(Path(name), std::ios::binary) << text;
        return Path(name);
    }
    // The whole of a file, as it is.
    static std::string Read(const std::string& path)
    {
        std::ifstream f(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(f), {});
    }

private:
    std::filesystem::path m_dir;
};

// Installs a file chooser for the life of the object, recording every
// dialog it is shown; it answers `path`, or declines when that is empty.
class CChooser {
public:
    explicit CChooser(std::string path) : m_path(std::move(path))
    {
        m_old = CFileDialog::SetChooser([this](const CFileDialog& dlg, CString& out) -> BOOL {
            m_dialogs.push_back(dlg);
            if (m_path.empty()) return FALSE;
            out = W(m_path);
            return TRUE;
        });
    }
    ~CChooser() { CFileDialog::SetChooser(m_old); }
    CChooser(const CChooser&) = delete;
    CChooser& operator=(const CChooser&) = delete;
    std::string m_path;
    std::vector<CFileDialog> m_dialogs;

private:
    CFileDialog::Chooser m_old;
};

} // namespace zantest
