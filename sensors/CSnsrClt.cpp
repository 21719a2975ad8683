#include "sensors/CSnsrClt.h"

void CSnsrClt::Serialize(CArchive& ar)
{
    CSnsrInf::Serialize(ar);
    if (ar.IsStoring()) {
        ar << m_items.m_nSize;
        for (unsigned int i = 0; i < m_items.m_nSize; ++i) ar << m_items.m_ppItems[i]->m_str << m_items.m_ppItems[i]->m_d;
        return;
    }
    unsigned int n = 0;
    ar >> n;
    // Each element takes at least an empty string (4 bytes) and its value (8).
    ar.CheckAvailable(static_cast<ULONGLONG>(n) * 12u);
    m_items.SetSize(n);
    for (unsigned int i = 0; i < n; ++i) ar >> m_items.m_ppItems[i]->m_str >> m_items.m_ppItems[i]->m_d;
}

CString CSnsrClt::GetString(unsigned int) const
{
    CString s;
    for (unsigned int i = 0; i < m_items.m_nSize; ++i) {
        if (i) s += u", ";
        s.AppendFormat(u"%s:%lg", m_items.m_ppItems[i]->m_str, m_items.m_ppItems[i]->m_d);
    }
    return s;
}

void CSnsrClt::Interpolate(double t, const CSnsrClt* a, const CSnsrClt* b, CSnsrClt* out)
{
    const bool copy = CopiesA(a, b);
    const double f = copy ? 0.0 : Frac(t, a, b);
    out->m_time = t;
    out->m_items.SetSize(a->m_items.m_nSize);
    if (copy) {
        out->m_items = a->m_items;
        return;
    }
    // Pairs by index; from b's count on, out keeps what it held.
    for (unsigned int i = 0; i < a->m_items.m_nSize && i < b->m_items.m_nSize; ++i) {
        CStrDbl& o = *out->m_items.m_ppItems[i];
        o.m_str = a->m_items.m_ppItems[i]->m_str;
        o.m_d = Lerp(a->m_items.m_ppItems[i]->m_d, b->m_items.m_ppItems[i]->m_d, f);
    }
}
