#pragma once
// CShadeCoeffs: amplitude weights for shading the elements of a line array,
// to hold down the side lobes of its beams. The weights are a Dolph-Chebyshev
// window computed directly from the Chebyshev polynomial (no transform), then
// rescaled over its inner points and cut to at most 1.0 at its two ends: low
// side-lobe windows have spikes at their ends, and the array cannot drive an
// element above full amplitude.
//
// Accuracy: plain double precision throughout. The window agrees with a
// transform-based Dolph-Chebyshev window (scipy's chebwin) to about 1e-13 for
// up to a few hundred points; the direct sum costs O(n^2) operations.

class CShadeCoeffs {
public:
    int m_n;           // number of coefficients, one per element
    int m_level;       // shading level, index 0..6 into CPing::s_shadeDB (0 .. -40 dB)
    double* m_pCoeffs; // m_n coefficients from the C heap (realloc/free); null when none

    // No coefficients: m_pCoeffs null, m_n and m_level 0.
    CShadeCoeffs();
    // Stores both; for n >= 1 computes the n coefficients of `level`
    // (0..6, not range-checked: the caller keeps within the table).
    CShadeCoeffs(int level, int n);
    // A copy owns a buffer of its own with the same coefficients.
    CShadeCoeffs(const CShadeCoeffs& o);
    CShadeCoeffs& operator=(const CShadeCoeffs& o);
    virtual ~CShadeCoeffs();

    // Stores both; for n >= 1 resizes the buffer to n doubles and computes
    // them, else frees the buffer and leaves m_pCoeffs null.
    void Init(int level, int n);
    // Fills m_pCoeffs for m_level and m_n: the window at the side-lobe ratio
    // 10^(s_shadeDB[m_level] / 20), divided by its greatest inner value
    // (indices 1 .. m_n-2, only when m_n > 2 and that value is not 0), then
    // the first and last values limited to at most 1.0. Level 0 (0 dB) is
    // computed the same way and gives negative coefficients.
    void CalculateCheby();

    // Writes the n-point Dolph-Chebyshev window for the linear side-lobe
    // ratio r (0 < r <= 1, side lobe over main lobe) into w, scaled so that
    // its greatest value is 1. A one-point window is {1.0}. n < 1 writes
    // nothing.
    void WinDolphChebyshev(double* w, double r, long n);
    // The Chebyshev polynomial of order n at x: cos(n acos x) for |x| <= 1,
    // else cosh(n log(sqrt(x^2 - 1) + x)), which is meaningful for x > 1 only.
    double ChebyshevPolynom(double n, double x);
    // Smallest and greatest of n values; for n < 1 they stay at the search's
    // start, DBL_MAX and -DBL_MAX.
    void MinMax(double* min, double* max, const double* v, long n);
    // Multiplies n values by k in place.
    void Mul(double* v, double k, long n);
};
