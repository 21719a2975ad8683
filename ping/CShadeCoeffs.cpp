#include "ping/CShadeCoeffs.h"

#include "core/platform/ML.h"
#include "ping/CPing.h"

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

double* Resize(double* p, int n)
{
    void* q = std::realloc(p, static_cast<size_t>(n) * sizeof(double));
    if (!q) throw std::bad_alloc();
    return static_cast<double*>(q);
}
} // namespace

CShadeCoeffs::CShadeCoeffs() : m_n(0), m_level(0), m_pCoeffs(nullptr)
{
}

CShadeCoeffs::CShadeCoeffs(int level, int n) : m_n(n), m_level(level), m_pCoeffs(nullptr)
{
    if (n < 1) return;
    m_pCoeffs = Resize(nullptr, n);
    CalculateCheby();
}

CShadeCoeffs::CShadeCoeffs(const CShadeCoeffs& o) : m_n(o.m_n), m_level(o.m_level), m_pCoeffs(nullptr)
{
    if (o.m_pCoeffs && o.m_n > 0) {
        m_pCoeffs = Resize(nullptr, o.m_n);
        std::memcpy(m_pCoeffs, o.m_pCoeffs, static_cast<size_t>(o.m_n) * sizeof(double));
    }
}

CShadeCoeffs& CShadeCoeffs::operator=(const CShadeCoeffs& o)
{
    if (this == &o) return *this;
    if (o.m_pCoeffs && o.m_n > 0) {
        m_pCoeffs = Resize(m_pCoeffs, o.m_n);
        std::memcpy(m_pCoeffs, o.m_pCoeffs, static_cast<size_t>(o.m_n) * sizeof(double));
    } else {
        std::free(m_pCoeffs);
        m_pCoeffs = nullptr;
    }
    m_n = o.m_n;
    m_level = o.m_level;
    return *this;
}

CShadeCoeffs::~CShadeCoeffs()
{
    std::free(m_pCoeffs);
}

void CShadeCoeffs::Init(int level, int n)
{
    m_level = level;
    m_n = n;
    if (n > 0) {
        m_pCoeffs = Resize(m_pCoeffs, n);
        CalculateCheby();
    } else {
        std::free(m_pCoeffs);
        m_pCoeffs = nullptr;
    }
}

void CShadeCoeffs::CalculateCheby()
{
    if (!m_pCoeffs || m_n < 1) return;
    const double r = std::pow(10.0, CPing::s_shadeDB[m_level] / 20.0);
    WinDolphChebyshev(m_pCoeffs, r, m_n);
    const int last = m_n - 1;
    if (m_n > 2) {
        // Scale by the inner points only: the end points may spike above them.
        double top = 0.0;
        for (int i = 1; i < last; ++i)
            if (m_pCoeffs[i] > top) top = m_pCoeffs[i];
        if (top != 0.0)
            for (int i = 0; i < m_n; ++i) m_pCoeffs[i] /= top;
    }
    if (m_pCoeffs[0] > 1.0) m_pCoeffs[0] = 1.0;
    if (m_pCoeffs[last] > 1.0) m_pCoeffs[last] = 1.0;
}

void CShadeCoeffs::WinDolphChebyshev(double* w, double r, long n)
{
    if (n < 1) return;
    const double inv = 1.0 / r;
    const double x0 = std::cosh(std::log(std::sqrt(inv * inv - 1.0) + inv) * (1.0 / static_cast<double>(n - 1)));
    const double dn = static_cast<double>(n);
    for (long k = 0; k < n; ++k) {
        double s = 0.0;
        // (1 - n + 2k) steps by two: the window is centred between its middle points.
        const double a = static_cast<double>(1 - n + 2 * k) * ML::pi / dn;
        for (long i = 1; i <= n / 2; ++i) {
            const double di = static_cast<double>(i);
            s += std::cos(di * a) * ChebyshevPolynom(dn - 1.0, x0 * std::cos(di * 2.0 * ML::pi / dn * 0.5));
        }
        w[k] = (s * 2.0 * r + 1.0) / dn;
    }
    double lo = 0.0, hi = 0.0;
    MinMax(&lo, &hi, w, n);
    Mul(w, 1.0 / hi, n);
}

double CShadeCoeffs::ChebyshevPolynom(double n, double x)
{
    if (std::fabs(x) <= 1.0) return std::cos(n * std::acos(x));
    return std::cosh(n * std::log(std::sqrt(x * x - 1.0) + x));
}

void CShadeCoeffs::MinMax(double* min, double* max, const double* v, long n)
{
    *min = DBL_MAX;
    *max = -DBL_MAX;
    for (long i = 0; i < n; ++i) {
        if (v[i] < *min) *min = v[i];
        if (v[i] > *max) *max = v[i];
    }
}

void CShadeCoeffs::Mul(double* v, double k, long n)
{
    for (long i = 0; i < n; ++i) v[i] *= k;
}
