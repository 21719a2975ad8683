#pragma once
// Helpers shared by the geodesy tests: console capture, archives in memory,
// scratch files and a fixture that leaves Geo's process-wide state as found.
#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

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

using zantest::CConsole;
using zantest::CLoader;
using zantest::CScratch;
using zantest::Store;
using zantest::W;

inline std::vector<BYTE> Bytes(CMemFile& f)
{
    const BYTE* p = f.GetBuffer();
    return std::vector<BYTE>(p, p + f.GetLength());
}

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
