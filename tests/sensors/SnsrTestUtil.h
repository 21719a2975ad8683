#pragma once
// Helpers of the sensor tests: records to bytes and back through CArchive.
#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

#include <vector>

namespace snsrtest {

using Bytes = std::vector<BYTE>;

inline Bytes Store(CSnsrInf& rec)
{
    CMemFile f;
    {
        CArchive ar(&f, CArchive::store);
        rec.Serialize(ar);
        ar.Close();
    }
    const BYTE* p = f.GetBuffer();
    return Bytes(p, p + f.GetLength());
}

// Loads `rec` from `b`; returns how many bytes were left unread.
inline size_t Load(const Bytes& b, CSnsrInf& rec)
{
    Bytes copy = b;
    CMemFile f(copy.data(), static_cast<UINT>(copy.size()));
    CArchive ar(&f, CArchive::load);
    rec.Serialize(ar);
    return static_cast<size_t>(ar.GetRemaining());
}

using zantest::CauseOf;

// Concatenation, for writing golden records as head + fields.
inline Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

} // namespace snsrtest
