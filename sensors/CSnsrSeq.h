#pragma once
// CSnsrSeq<T>: a time-ordered run of sensor records of one class, held by the
// host, and the search for the two records that bracket a time.
//
// The run is borrowed, not copied: either a contiguous array of records
// (e.g. the data of a std::vector<CSnsrGyro>) or an array of record pointers
// (e.g. CDSArray<CSnsrGyro>::m_ppItems). Its m_time must not decrease; equal
// stamps are allowed. The sequence keeps a cursor at the last bracket found
// and searches outward from it (galloping, then bisection), so a query costs
// the log of the number of records between the previous time and this one:
// pings in order cost a few steps, a jump anywhere a binary search, and no
// query rescans the run. Nothing here allocates. A sequence belongs to one thread at a time (the cursor moves).
#include "sensors/CSnsrInf.h"

template <class T>
class CSnsrSeq {
public:
    // false (default): before the first record the first one holds, after the
    // last the last one holds. true: the two end records extrapolate.
    bool m_bExtrapolate = false;

    CSnsrSeq() = default;
    CSnsrSeq(const T* pRecs, unsigned int n) { Attach(pRecs, n); }
    CSnsrSeq(const T* const* ppRecs, unsigned int n) { Attach(ppRecs, n); }

    // Points the sequence at a run of n records (or record pointers) and
    // resets the cursor. The run must outlive the sequence's use of it; after
    // records are appended to it, Attach again.
    void Attach(const T* pRecs, unsigned int n)
    {
        m_pRecs = pRecs;
        m_ppRecs = nullptr;
        m_n = pRecs ? n : 0;
        m_nCur = 0;
    }
    void Attach(const T* const* ppRecs, unsigned int n)
    {
        m_pRecs = nullptr;
        m_ppRecs = ppRecs;
        m_n = ppRecs ? n : 0;
        m_nCur = 0;
    }

    unsigned int GetCount() const { return m_n; }
    // Record i, i below GetCount().
    const T* GetAt(unsigned int i) const { return m_ppRecs ? m_ppRecs[i] : m_pRecs + i; }

    // Index of the last record whose time is at or before t; -1 when t is
    // before the first record or the run is empty. NaN gives -1.
    int Find(double t)
    {
        if (m_n == 0 || !(t >= Time(0))) return -1;
        unsigned int lo = m_nCur < m_n ? m_nCur : m_n - 1;
        unsigned int hi;
        if (Time(lo) <= t) {
            // Gallop forward from the cursor (1, 2, 4, ... records) until a
            // record above t bounds the search, then bisect that stretch:
            // the cost grows with the log of the distance moved, and the
            // records touched stay near the cursor.
            unsigned int step = 1;
            for (;;) {
                if (lo >= m_n - 1) return static_cast<int>(m_nCur = m_n - 1);
                hi = step < m_n - lo ? lo + step : m_n;
                if (hi == m_n || Time(hi) > t) break;
                lo = hi;
                step *= 2;
            }
        } else {
            // The same backward; Time(0) <= t ends it.
            hi = lo;
            unsigned int step = 1;
            for (;;) {
                lo = step < hi ? hi - step : 0;
                if (Time(lo) <= t) break;
                hi = lo;
                step *= 2;
            }
        }
        m_nCur = LastAtOrBefore(t, lo, hi);
        return static_cast<int>(m_nCur);
    }

    // The records to interpolate t from: a the last at or before t, b the
    // next one (its time is then above a's), or null where a alone holds
    // (see m_bExtrapolate). False, with a and b null, for an empty run.
    bool GetPair(double t, const T*& a, const T*& b)
    {
        a = b = nullptr;
        if (m_n == 0) return false;
        const int i = Find(t);
        if (i < 0) {
            a = GetAt(0);
            if (m_bExtrapolate && m_n > 1) b = GetAt(1);
        } else if (static_cast<unsigned int>(i) + 1 < m_n) {
            a = GetAt(static_cast<unsigned int>(i));
            b = GetAt(static_cast<unsigned int>(i) + 1);
        } else {
            a = GetAt(m_n - 1);
            // Extrapolate past the end from the last two records with
            // different stamps.
            if (m_bExtrapolate && m_n > 1) {
                unsigned int p = m_n - 1;
                while (p > 0 && Time(p - 1) == Time(m_n - 1)) --p;
                if (p > 0) {
                    a = GetAt(p - 1);
                    b = GetAt(m_n - 1);
                }
            }
        }
        return true;
    }

    // The record at t into out through T::Interpolate. False, out untouched,
    // for an empty run. No allocation (but for CSnsrClt labels and items).
    bool Interpolate(double t, T& out)
    {
        const T* a = nullptr;
        const T* b = nullptr;
        if (!GetPair(t, a, b)) return false;
        T::Interpolate(t, a, b, &out);
        return true;
    }

private:
    double Time(unsigned int i) const { return GetAt(i)->m_time; }
    // Last index in [lo, hi) whose time is at or before t, given Time(lo) <= t
    // and Time(hi) > t (or hi == m_n).
    unsigned int LastAtOrBefore(double t, unsigned int lo, unsigned int hi) const
    {
        // Invariant: Time(lo) <= t, and every index from hi on is above t.
        while (hi - lo > 1) {
            const unsigned int mid = lo + (hi - lo) / 2;
            if (Time(mid) <= t) lo = mid;
            else hi = mid;
        }
        return lo;
    }

    const T* m_pRecs = nullptr;
    const T* const* m_ppRecs = nullptr;
    unsigned int m_n = 0;
    unsigned int m_nCur = 0;
};
