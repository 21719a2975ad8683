#pragma once
// Helpers shared by the geodesy tests: console capture, archives in memory,
// scratch files and a fixture that leaves Geo's process-wide state as found.
#include <zandata/ZanData.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <iterator>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace geotest {

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

inline std::vector<BYTE> Bytes(CMemFile& f)
{
    const BYTE* p = f.GetBuffer();
    return std::vector<BYTE>(p, p + f.GetLength());
}

template <class F>
std::vector<BYTE> Store(F&& write)
{
    CMemFile f;
    {
        CArchive ar(&f, CArchive::store);
        write(ar);
        ar.Close();
    }
    return Bytes(f);
}

// A loading archive over a copy of the bytes.
struct CLoader {
    explicit CLoader(const std::vector<BYTE>& b)
        : data(b), file(data.data(), static_cast<UINT>(data.size())), ar(&file, CArchive::load) {}
    std::vector<BYTE> data;
    CMemFile file;
    CArchive ar;
};

// Little-endian pieces of expected records.
inline void PutI32(std::vector<BYTE>& v, int x)
{
    for (int i = 0; i < 4; ++i) v.push_back(static_cast<BYTE>(static_cast<unsigned>(x) >> (8 * i)));
}
inline void PutF64(std::vector<BYTE>& v, double d)
{
    unsigned long long u = 0;
    std::memcpy(&u, &d, 8);
    for (int i = 0; i < 8; ++i) v.push_back(static_cast<BYTE>(u >> (8 * i)));
}
// An archive string of ASCII text in the wide form (tag FF FE FF, u8 length).
inline void PutStr(std::vector<BYTE>& v, const std::string& s)
{
    v.insert(v.end(), {0xFF, 0xFE, 0xFF, static_cast<BYTE>(s.size())});
    for (char c : s) v.insert(v.end(), {static_cast<BYTE>(c), 0});
}

// A scratch folder, removed with its content.
class CScratch {
public:
    CScratch()
    {
        static int s_n = 0;
        m_dir = std::filesystem::temp_directory_path() /
                ("zangeo_" + std::to_string(::getpid()) + "_" + std::to_string(++s_n));
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
    static std::string Read(const std::string& path)
    {
        std::ifstream f(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(f), {});
    }

private:
    std::filesystem::path m_dir;
};

inline CString W(const std::string& s) { return CString::FromUtf8(s); }

// Empties the database and restores the selection and settings of Geo after
// each test, so tests do not see each other's state.
class GeoState : public ::testing::Test {
protected:
    void SetUp() override
    {
        Geo::ClearDb();
        m_type = Geo::type;
        m_concession = Geo::concession;
        m_loSystem = Geo::loSystem;
        m_degreeFmt = Geo::degreeFmt;
        m_dirFmt = Geo::dirFmt;
    }
    void TearDown() override
    {
        Geo::ClearDb();
        Geo::type = m_type;
        Geo::concession = m_concession;
        Geo::loSystem = m_loSystem;
        Geo::degreeFmt = m_degreeFmt;
        Geo::dirFmt = m_dirFmt;
    }

private:
    int m_type = 0, m_concession = 1, m_loSystem = 17, m_degreeFmt = 2, m_dirFmt = 2;
};

} // namespace geotest
