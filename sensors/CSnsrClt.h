#pragma once
// CSnsrClt: label and value pairs from a client (type 9, "Client").
#include "core/CDSArray.h"
#include "core/platform/CStatBuf.h"
#include "sensors/CSnsrInf.h"

class CSnsrClt : public CSnsrInf {
public:
    CDSArray<CStrDbl> m_items;  // label (m_str) and value (m_d) pairs; empty by default

    CSnsrClt() { m_type = tClient; }
    // Deep copies: the copy owns its own elements.
    CSnsrClt(const CSnsrClt&) = default;
    CSnsrClt& operator=(const CSnsrClt&) = default;
    ~CSnsrClt() override = default;

    // Head, then u32 count and per element string label, f64 value. Loading
    // sizes the array to the stored count first (keeping the elements that
    // exist, so a reused record does not reallocate them) and reads each
    // element in place. A count larger than the archive can hold raises
    // CArchiveException cause 3 before the array grows.
    void Serialize(CArchive& ar) override;
    // "%s:%lg" of each label and value, separated by ", "; empty for no items.
    CString GetString(unsigned int nFlags = 0) const override;

    // out's array takes a's count. b null or equal times: out's items are
    // assigned from a's. Otherwise the elements pair up by index (labels of b
    // are not compared): element i takes a's label and the value interpolated
    // linearly in double from a's and b's values at i, while i is below both
    // counts; elements of out from b's count on keep what they held. t outside
    // the pair extrapolates. out->m_time becomes t; other base fields
    // untouched. Allocates only to grow out's array and its labels.
    static void Interpolate(double t, const CSnsrClt* a, const CSnsrClt* b, CSnsrClt* out);
};
