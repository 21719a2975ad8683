#pragma once
// CTgtImgFlt: the pattern filter of the 8-bit intensity plane, and CTifThrd,
// one row slice of a filter run.
//
// Filter(pImg) copies m_pImg to the source buffer m_pBuf (optionally its
// square root), clears m_pImg, cuts the rows into m_nThreads slices of
// m_nRngs / m_nThreads rows (the remainder rows at the bottom stay 0), runs
// the kernel m_filterId (Flt1 to Flt4) and then the final mapping Flt0 on
// each slice, one slice per thread, and reports the time taken as status 2360
// "Filter Time %1.3lfms". The caller runs slice 0 itself; the other slices
// get a worker thread each that lives for this call only.
//
// The kernels compare each sample's neighbourhood along its row with the
// pattern m_pPat: for the sample at column x the window is the columns
// max(x - h, 0) up to min(x + h, w), h being half the pattern (see each
// kernel), and column i takes pattern entry i - x + h. All arithmetic is in
// double precision in the order of the steps given with each kernel; results
// are truncated into bytes. Results don't depend on the thread count.
//
// Settings(CZSetObj&) binds the keys "FltActive", "FilterId", "FltBias",
// "FltOffset", "FltName", "FltLowTgt", "FltScale", "FltPreRoot",
// "FltThreads" and "FltSize", then the pattern as data lines ("%1.6lf").
//
// Threads: Settings, SetPatSize, SetupThreads and GenBuf must not run while
// Filter runs; the host keeps them apart (s_lock is there for it; the
// library never takes it). During a run the workers share read access to the
// filter and m_pBuf and each writes only its own rows of the image.
#include "core/CDSArray.h"
#include "core/platform/CMutex.h"
#include "core/platform/CObject.h"
#include "core/platform/CString.h"
#include "core/platform/Types.h"

#include <memory>

class CFltTables;
class CTgtImg;
class CTgtImgFlt;
class CZSetObj;

// The "done" event of one slice: auto-reset (a successful wait consumes the
// signal), created unsignalled.
class CFltEvent {
public:
    CFltEvent();
    ~CFltEvent();
    CFltEvent(const CFltEvent&) = delete;
    CFltEvent& operator=(const CFltEvent&) = delete;

    // Signals the event; one waiter (or the next Wait) takes the signal.
    void Set();
    // Waits for the signal for at most `ms` milliseconds (INFINITE: no
    // limit). TRUE when signalled, and the signal is consumed; FALSE on time-out.
    BOOL Wait(DWORD ms);
    // Non-zero while signalled and not yet taken.
    BOOL IsSet() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_p;
};

// One slice of a filter run.
class CTifThrd {
public:
    CTgtImgFlt* m_pFlt = nullptr;  // the owning filter; set by whoever sizes m_thrds
    int m_nStart = 0;              // first row of the slice
    int m_nEnd = 0;                // one past the last row
    CTgtImg* m_pTgtImg = nullptr;  // the image of the current run
    // Signalled when the slice is done. Copies of a CTifThrd share one event,
    // which is closed when the last of them goes.
    std::shared_ptr<CFltEvent> m_hDone;

    // A slice of nothing, with a new unsignalled event.
    CTifThrd();
    virtual ~CTifThrd() = default;
    // Copy the five fields; the copy shares the event.
    CTifThrd(const CTifThrd&) = default;
    CTifThrd& operator=(const CTifThrd&) = default;

    // The work of one slice: the kernel m_pFlt->m_filterId selects (1 to 4;
    // any other value runs none), then Flt0 unless m_lowTgt is 1 and m_scale
    // is exactly 1.0, then signals m_hDone. Returns 0.
    static unsigned int ThreadFunc(void* pThrd);
};

class CTgtImgFlt : public CObject {
public:
    int m_bActive = 0;        // "FltActive": stored for the host, never read here
    int m_filterId = 0;       // "FilterId": 1 to 4 selects Flt1 to Flt4; others filter nothing
    double* m_pPat = nullptr;   // the pattern, m_nPat entries (ZUtil block, owned)
    double* m_pPat2 = nullptr;  // a second table of the same size, unused by the kernels (owned)
    int m_nPat = 0;           // entries in each table
    double m_bias = 1.0;      // "FltBias": share of the pattern sum a fit must exceed (Flt2-4)
    double m_offset = 0.0;    // "FltOffset": threshold in Flt1, added to the window peak in Flt2-4
    CString m_name = u"Filter";  // "FltName"
    BYTE* m_pBuf = nullptr;   // source copy of the image, m_nRngs * m_nBrgs bytes, reused (owned)
    int m_lowTgt = 0;         // "FltLowTgt": final curve, 0 square, 1 none, 2 square root
    double m_scale = 1.0;     // "FltScale": gain of the final mapping
    int m_preRoot = 0;        // "FltPreRoot": non-zero filters the square root of the image
    int m_nThreads = 1;       // "FltThreads": threads per image, 1 to 32
    CDSArray<CTifThrd> m_thrds;  // one slice per thread

    // The library doesn't use these; they are the host's. Start null, 0, 0.0.
    static double* s_pPat;
    static double* s_pPat2;
    static int s_nPat;
    static double s_sep;
    // The host's lock around filter runs; the library never takes it.
    static CMutex s_lock;

    // Defaults as above, one slice.
    CTgtImgFlt();
    // Releases the tables, m_pBuf and the slices.
    ~CTgtImgFlt() override;
    CTgtImgFlt(const CTgtImgFlt&) = delete;
    CTgtImgFlt& operator=(const CTgtImgFlt&) = delete;

    // Filters the 8-bit plane of pImg in place and returns when every slice
    // is done. An image with no m_pImg or a zero dimension is left alone; the
    // time line is reported in every case. m_nThreads outside 1 to 32 is
    // brought into that range (and m_thrds resized) first.
    // The run waits 50000 ms for the workers; if any is still running then,
    // Console reports "Filter: threads still running after 50000 ms" and the
    // call goes on waiting, so that it never returns while a worker writes.
    // A worker thread that can't be started has its slice run on the calling
    // thread instead.
    virtual void Filter(CTgtImg* pImg);
    // Stores or loads the settings and the pattern (see the file comment).
    // Loading: FltThreads is limited to 1..32, SetPatSize(FltSize) runs, and
    // data line i (from the first) goes to m_pPat[i] for i below FltSize and
    // m_nPat when it scans as a number ("%lf"); a line that doesn't leaves
    // its entry unchanged but still takes its index. Entries beyond the lines
    // given keep what they held.
    virtual void Settings(CZSetObj& set);

    // Limits m_nThreads to 1..32, resizes m_thrds to it and points every
    // slice at this filter. Call after changing m_nThreads directly.
    void SetupThreads();
    // Sizes both tables to n entries (n < 0 counts as 0; 0 releases them).
    // The same n changes nothing; entries kept keep their values, new ones are
    // undefined until set. Each table holds one further entry, 0.0, behind
    // the last: Flt2's window with an odd n reaches one position past the end.
    void SetPatSize(int n);
    // Resizes m_pBuf to pImg's m_nRngs * m_nBrgs bytes and fills it from
    // m_pImg; with root non-zero each byte becomes trunc(sqrt(s / 255.0) *
    // 255.0). Returns silently if the heap refuses the buffer.
    void GenBuf(CTgtImg* pImg, int root);

    // The kernels: rows startRow up to endRow of pImg->m_pImg, from
    // pFlt->m_pBuf (pImg's shape). w is m_nBrgs, s(i) the source byte at
    // column i divided by 255.0, mx the window's greatest s (0.0 if empty),
    // clamp(v, t) = the lesser of v and t, or 0 if that is below 0.
    //
    // Flt1 (h = m_nPat / 2): 0 if m_offset >= mx; else T = sum mx*p[k],
    //   D = sum sqrt(|mx*p[k] - s(i)|), R = clamp(T - D, T), 0 if T = 0,
    //   y = sqrt(mx)*R/T, 255 if y > 1 else trunc(y*255).
    // Flt2 (h = (m_nPat + 1) / 2; p[m_nPat] is 0.0): M = mx + m_offset, 1.0 if
    //   >= 1.0, else the pixel is left alone if M <= 0.05; T = sum M*p[k],
    //   C = sum min(s(i), M*p[k]), T' = T*(1 - bias), R = clamp(C - bias*T, T'),
    //   0 if T' = 0, else trunc(R/T'*255*M).
    // Flt3 (h = m_nPat / 2): M as Flt2 but written 0 if M <= 0.05; T = sum p[k],
    //   C = sum min(s(i)/M, p[k]), R and T' as Flt2, 0 if T' = 0, else
    //   trunc(R/T'*255).
    // Flt4 (h = m_nPat / 2): M as Flt2 (left alone if M <= 0.05); T = sum M*p[k];
    //   d = sqrt(|M*p[k] - s(i)|) summed into D1 for the first h samples of the
    //   window and into D2 for the rest; R = clamp(T - min(D1, D2), T),
    //   T' = T*(1 - bias), r = clamp(R - bias*T, T'), 0 if T' = 0, else
    //   y = sqrt(M)*r/T' and the pixel becomes trunc(min(255, y*255) + pixel).
    // Flt0, in place on the rows: y = v/255, squared if m_lowTgt is 0, square
    //   root if 2, times m_scale; 255 if y > 1 else trunc(y*255).
    // Flt5 and Flt6 do nothing.
    // Sums run over the window from its first column. A value stored into a
    // byte keeps its low 8 bits. Rows outside the image are cut off.
    static void Flt0(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt1(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt2(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt3(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt4(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt5(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);
    static void Flt6(CTgtImg* pImg, CTgtImgFlt* pFlt, int startRow, int endRow);

    // Most threads one run uses.
    static constexpr int kMaxThreads = 32;
    // Milliseconds Filter waits before it reports workers still running.
    static constexpr DWORD kWaitMs = 50000;

private:
    // Makes the kernel tables fit the present kernel and settings (Filter,
    // before any worker starts).
    void PrepareTables();
    // Term tables of the kernels, kept between runs while the kernel, the
    // pattern, the offset and the bias stay the same.
    std::unique_ptr<CFltTables> m_pTables;
};
