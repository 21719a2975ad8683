#pragma once
// Storing into and loading from memory archives, for the record tests.
#include <zandata/ZanData.h>

#include <cstring>
#include <vector>

namespace rec {

using Bytes = std::vector<BYTE>;

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

// Loads from the bytes and returns how many of them were left unread.
template <class F>
size_t Load(const Bytes& b, F&& read)
{
    Bytes data = b;
    CMemFile f(data.data(), static_cast<UINT>(data.size()));
    CArchive ar(&f, CArchive::load);
    read(ar);
    return static_cast<size_t>(ar.GetRemaining());
}

// The cause of the CArchiveException that f raises; -1 when none.
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

inline void Put(Bytes& b, std::initializer_list<int> v)
{
    for (int x : v) b.push_back(static_cast<BYTE>(x));
}
// Little-endian image of a value, for building expected records.
template <class T>
void Le(Bytes& b, T v)
{
    BYTE tmp[sizeof(T)];
    std::memcpy(tmp, &v, sizeof(T));
    b.insert(b.end(), tmp, tmp + sizeof(T));
}

} // namespace rec
