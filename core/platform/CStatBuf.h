#pragma once
// CStatBuf: running statistics over the last n values.
#include <vector>

class CStatBuf {
public:
    CStatBuf() = default;
    virtual ~CStatBuf() = default;
    CStatBuf(const CStatBuf&) = default;
    CStatBuf& operator=(const CStatBuf&) = default;

    // Keeps at most n values from now on (the newest ones); 0 keeps none.
    void SetSize(unsigned int n);
    // Adds a value, dropping the oldest when n are held.
    void SetValue(double v);
    // Mean of the values held; 0.0 when there are none.
    double GetAvg() const;
    double GetMin() const;
    double GetMax() const;
    double GetStdDev() const;  // population standard deviation
    unsigned int GetCount() const { return static_cast<unsigned int>(m_vals.size()); }
    unsigned int GetSize() const { return m_nSize; }
    void Clear() { m_vals.clear(); m_next = 0; }

private:
    unsigned int m_nSize = 0;
    std::vector<double> m_vals;  // ring of the last m_nSize values
    unsigned int m_next = 0;     // where the next value goes once full
};

// Label and value pairs for tables.
#include "core/platform/CString.h"
class CStrInt {
public:
    CString m_str;
    int m_n = 0;
};
class CStrDbl {
public:
    CString m_str;
    double m_d = 0.0;
};
