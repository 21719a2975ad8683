#pragma once
// Helpers of the image record tests: expected bytes written out value by
// value, and records stored to and loaded from memory files.
#include "core/platform/CArchive.h"
#include "core/platform/CFile.h"
#include "image/CTgtImg.h"

#include <cstring>
#include <functional>
#include <initializer_list>
#include <vector>

namespace imgtest {

using Bytes = std::vector<BYTE>;

// Little-endian values appended in order, as the archive writes them.
class Golden {
public:
    template <class T>
    Golden& operator<<(T v)
    {
        const size_t at = m_b.size();
        m_b.resize(at + sizeof(T));
        std::memcpy(m_b.data() + at, &v, sizeof(T));
        return *this;
    }
    Golden& Raw(const void* p, size_t n)
    {
        const BYTE* b = static_cast<const BYTE*>(p);
        m_b.insert(m_b.end(), b, b + n);
        return *this;
    }
    Golden& Raw(std::initializer_list<BYTE> b)
    {
        m_b.insert(m_b.end(), b);
        return *this;
    }
    Golden& Fill(size_t n, BYTE v)
    {
        m_b.insert(m_b.end(), n, v);
        return *this;
    }
    const Bytes& bytes() const { return m_b; }

private:
    Bytes m_b;
};

inline Bytes Record(const std::function<void(CArchive&)>& write)
{
    CMemFile f;
    {
        CArchive ar(&f, CArchive::store);
        write(ar);
        ar.Close();
    }
    return Bytes(f.GetBuffer(), f.GetBuffer() + f.GetLength());
}

// Reads bytes with `read`; returns how many bytes were left over.
inline ULONGLONG Play(const Bytes& bytes, const std::function<void(CArchive&)>& read)
{
    Bytes copy(bytes);
    CMemFile f(copy.data(), static_cast<UINT>(copy.size()));
    CArchive ar(&f, CArchive::load);
    read(ar);
    return ar.GetRemaining();
}

inline Bytes Store(CTgtImg& img, UINT nFlags)
{
    return Record([&](CArchive& ar) { img.Serialize(ar, nFlags); });
}

// The image's own part of its record, behind the CTgtRec record.
inline Bytes OwnPart(CTgtImg& img, UINT nFlags)
{
    const Bytes all = Store(img, nFlags);
    const size_t head = Record([&](CArchive& ar) { img.m_tgtRec.Serialize(ar); }).size();
    return Bytes(all.begin() + static_cast<long>(head), all.end());
}

inline ULONGLONG Load(CTgtImg& img, const Bytes& record)
{
    return Play(record, [&](CArchive& ar) { img.Serialize(ar, 0); });
}

}  // namespace imgtest
