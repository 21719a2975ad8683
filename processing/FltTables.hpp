#pragma once
// CFltTables: the term tables of the filter kernels, shared by the threads
// of a run and kept from one run to the next while the kernel and its
// settings stay the same. Internal to the library: not installed.
//
// A table holds, for one peak byte mb of a window, the kernel's term for
// every pattern position k and source byte b <= mb: terms[k * 256 + b].
// Tables are filled on demand by whichever thread first needs one; the
// others go on computing term by term until it is published. Reset runs only
// while no kernel runs (Filter calls it before it starts its threads).
#include <atomic>
#include <memory>
#include <vector>

class CFltTables {
public:
    // Widest window (2h) that gets tables: 256 x 64 x 256 doubles, 32 MB of
    // address space, of which only the tables filled are ever touched.
    static constexpr int kMaxWindow = 64;

    CFltTables() { Clear(); }
    CFltTables(const CFltTables&) = delete;
    CFltTables& operator=(const CFltTables&) = delete;

    // True when the tables are those of this kernel and these settings.
    bool Matches(int kernel, const double* pat, int nPat, double offset, double bias, int win) const
    {
        if (kernel != m_kernel || nPat != m_nPat || win != m_win || !(offset == m_offset) || !(bias == m_bias))
            return false;
        for (int k = 0; k < nPat; ++k)
            if (!(pat[k] == m_pat[static_cast<size_t>(k)])) return false;
        return true;
    }

    // Forgets every table and takes the new key. No kernel may be running.
    void Reset(int kernel, const double* pat, int nPat, double offset, double bias, int win)
    {
        m_kernel = kernel;
        m_nPat = nPat;
        m_offset = offset;
        m_bias = bias;
        m_pat.assign(pat, pat + nPat);
        if (win != m_win || !m_store) {
            m_store.reset();
            if (win > 0 && win <= kMaxWindow) m_store.reset(new double[static_cast<size_t>(256) * win * 256]);
        }
        m_win = win;
        Clear();
    }

    // The published table of peak byte mb, or null.
    const double* Get(int mb) const { return m_rows[mb].load(std::memory_order_acquire); }

    // The place of mb's table for the caller to fill, or null when there is
    // no store or another thread has taken it.
    double* Claim(int mb)
    {
        if (!m_store) return nullptr;
        bool expected = false;
        if (!m_claimed[mb].compare_exchange_strong(expected, true, std::memory_order_acq_rel)) return nullptr;
        return m_store.get() + static_cast<size_t>(mb) * static_cast<size_t>(m_win) * 256;
    }

    // Makes a claimed table visible to every thread.
    void Publish(int mb, const double* t) { m_rows[mb].store(t, std::memory_order_release); }

private:
    void Clear()
    {
        for (int i = 0; i < 256; ++i) {
            m_rows[i].store(nullptr, std::memory_order_relaxed);
            m_claimed[i].store(false, std::memory_order_relaxed);
        }
    }

    int m_kernel = 0;
    int m_nPat = -1;
    double m_offset = 0.0;
    double m_bias = 0.0;
    int m_win = -1;
    std::vector<double> m_pat;
    std::unique_ptr<double[]> m_store;
    std::atomic<const double*> m_rows[256];
    std::atomic<bool> m_claimed[256];
};
