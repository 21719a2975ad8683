#include "core/platform/CStatBuf.h"

#include <algorithm>
#include <cmath>

void CStatBuf::SetSize(unsigned int n)
{
    if (m_vals.size() > n) {
        // Keep the newest n values, oldest first.
        std::vector<double> keep;
        const size_t held = m_vals.size();
        const size_t oldest = held < m_nSize ? 0 : m_next;
        for (size_t k = held - n; k < held; ++k) keep.push_back(m_vals[(oldest + k) % held]);
        m_vals = std::move(keep);
        m_next = 0;
    } else if (m_vals.size() == m_nSize && m_next != 0) {
        std::rotate(m_vals.begin(), m_vals.begin() + m_next, m_vals.end());
        m_next = 0;
    }
    m_nSize = n;
}

void CStatBuf::SetValue(double v)
{
    if (m_nSize == 0) return;
    if (m_vals.size() < m_nSize) {
        m_vals.push_back(v);
        return;
    }
    m_vals[m_next] = v;
    m_next = (m_next + 1) % m_nSize;
}

double CStatBuf::GetAvg() const
{
    if (m_vals.empty()) return 0.0;
    double s = 0.0;
    for (double v : m_vals) s += v;
    return s / static_cast<double>(m_vals.size());
}

double CStatBuf::GetMin() const { return m_vals.empty() ? 0.0 : *std::min_element(m_vals.begin(), m_vals.end()); }
double CStatBuf::GetMax() const { return m_vals.empty() ? 0.0 : *std::max_element(m_vals.begin(), m_vals.end()); }

double CStatBuf::GetStdDev() const
{
    if (m_vals.empty()) return 0.0;
    const double m = GetAvg();
    double s = 0.0;
    for (double v : m_vals) s += (v - m) * (v - m);
    return std::sqrt(s / static_cast<double>(m_vals.size()));
}
