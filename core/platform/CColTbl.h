#pragma once
// CColTbl: a colour table, one contiguous array of at least 256 CRgb.
#include "core/platform/CRgb.h"

#include <cstddef>
#include <vector>

class CColTbl {
public:
    // 256 entries, all zero.
    CColTbl() : m_tbl(256) {}
    explicit CColTbl(unsigned int n) : m_tbl(n < 256 ? 256 : n) {}
    CRgb& operator[](int i) { return m_tbl[static_cast<std::size_t>(i)]; }
    const CRgb& operator[](int i) const { return m_tbl[static_cast<std::size_t>(i)]; }
    CRgb* Data() { return m_tbl.data(); }
    const CRgb* Data() const { return m_tbl.data(); }
    operator CRgb*() { return m_tbl.data(); }
    int GetSize() const { return static_cast<int>(m_tbl.size()); }

    // Tables a host wants out of the box, 256 entries, opaque.
    static CColTbl Grey();
    static CColTbl Viridis();

private:
    std::vector<CRgb> m_tbl;
};
