#include "processing/CTgtImgFlt.h"

#include "core/CZSet.h"
#include "core/platform/CTm80.h"
#include "core/platform/ZUtil.h"
#include "core/platform/Zan.h"
#include "image/CTgtImg.h"
#include "processing/FltTables.hpp"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>

// ---------------------------------------------------------------- CFltEvent

struct CFltEvent::Impl {
    mutable std::mutex m;
    std::condition_variable cv;
    bool set = false;
};

CFltEvent::CFltEvent() : m_p(std::make_unique<Impl>()) {}
CFltEvent::~CFltEvent() = default;

void CFltEvent::Set()
{
    {
        std::lock_guard<std::mutex> lock(m_p->m);
        m_p->set = true;
    }
    m_p->cv.notify_one();
}

BOOL CFltEvent::Wait(DWORD ms)
{
    std::unique_lock<std::mutex> lock(m_p->m);
    if (ms == INFINITE) {
        m_p->cv.wait(lock, [this] { return m_p->set; });
    } else if (!m_p->cv.wait_for(lock, std::chrono::milliseconds(ms), [this] { return m_p->set; })) {
        return FALSE;
    }
    m_p->set = false;
    return TRUE;
}

BOOL CFltEvent::IsSet() const
{
    std::lock_guard<std::mutex> lock(m_p->m);
    return m_p->set ? TRUE : FALSE;
}

// ---------------------------------------------------------------- CTifThrd

CTifThrd::CTifThrd() : m_hDone(std::make_shared<CFltEvent>()) {}

unsigned int CTifThrd::ThreadFunc(void* pThrd)
{
    auto* t = static_cast<CTifThrd*>(pThrd);
    CTgtImgFlt* f = t->m_pFlt;
    if (f) {
        switch (f->m_filterId) {
        case 1: CTgtImgFlt::Flt1(t->m_pTgtImg, f, t->m_nStart, t->m_nEnd); break;
        case 2: CTgtImgFlt::Flt2(t->m_pTgtImg, f, t->m_nStart, t->m_nEnd); break;
        case 3: CTgtImgFlt::Flt3(t->m_pTgtImg, f, t->m_nStart, t->m_nEnd); break;
        case 4: CTgtImgFlt::Flt4(t->m_pTgtImg, f, t->m_nStart, t->m_nEnd); break;
        default: break;
        }
        if (!(f->m_lowTgt == 1 && f->m_scale == 1.0)) CTgtImgFlt::Flt0(t->m_pTgtImg, f, t->m_nStart, t->m_nEnd);
    }
    if (t->m_hDone) t->m_hDone->Set();
    return 0;
}

// ---------------------------------------------------------------- CTgtImgFlt

double* CTgtImgFlt::s_pPat = nullptr;
double* CTgtImgFlt::s_pPat2 = nullptr;
int CTgtImgFlt::s_nPat = 0;
double CTgtImgFlt::s_sep = 0.0;
CMutex CTgtImgFlt::s_lock;

CTgtImgFlt::CTgtImgFlt() { SetupThreads(); }

CTgtImgFlt::~CTgtImgFlt()
{
    if (m_nPat != 0) {
        ZUtil::FreeIt(m_pPat);
        ZUtil::FreeIt(m_pPat2);
    }
    ZUtil::FreeIt(m_pBuf);
}

void CTgtImgFlt::SetupThreads()
{
    m_nThreads = std::clamp(m_nThreads, 1, kMaxThreads);
    m_thrds.SetSize(static_cast<unsigned int>(m_nThreads));
    for (unsigned int i = 0; i < m_thrds.m_nSize; ++i) m_thrds.m_ppItems[i]->m_pFlt = this;
}

void CTgtImgFlt::SetPatSize(int n)
{
    if (n == m_nPat) return;
    if (n < 0) n = 0;
    if (n == m_nPat) return;
    if (n == 0) {
        ZUtil::FreeIt(m_pPat);
        ZUtil::FreeIt(m_pPat2);
        m_pPat = m_pPat2 = nullptr;
        m_nPat = 0;
        return;
    }
    // One entry more than asked, kept at 0.0: Flt2's window position past
    // the end of an odd-sized table.
    const unsigned int bytes = static_cast<unsigned int>((static_cast<size_t>(n) + 1) * sizeof(double));
    auto* p1 = static_cast<double*>(ZUtil::Realloc(m_pPat, bytes));
    if (p1) m_pPat = p1;
    auto* p2 = static_cast<double*>(ZUtil::Realloc(m_pPat2, bytes));
    if (p2) m_pPat2 = p2;
    if (!p1 || !p2) return;  // the heap refused: keep the old size
    m_pPat[n] = 0.0;
    m_pPat2[n] = 0.0;
    m_nPat = n;
}

void CTgtImgFlt::GenBuf(CTgtImg* pImg, int root)
{
    const size_t n = static_cast<size_t>(pImg->m_nRngs) * pImg->m_nBrgs;
    auto* p = static_cast<BYTE*>(ZUtil::Realloc(m_pBuf, static_cast<unsigned int>(n)));
    if (!p) return;
    m_pBuf = p;
    if (!pImg->m_pImg) return;
    if (root == 0) {
        std::memcpy(m_pBuf, pImg->m_pImg, n);
        return;
    }
    BYTE map[256];
    for (int s = 0; s < 256; ++s) map[s] = static_cast<BYTE>(static_cast<int>(std::sqrt(s / 255.0) * 255.0));
    const BYTE* src = pImg->m_pImg;
    for (size_t i = 0; i < n; ++i) m_pBuf[i] = map[src[i]];
}

namespace {

// Debug name of the workers; Linux keeps 15 characters of a thread name.
void NameThread(std::thread& t)
{
    static constexpr char kName[] = "CTgtImgFltFilter";
    char name[16];
    std::memcpy(name, kName, 15);
    name[15] = '\0';
    pthread_setname_np(t.native_handle(), name);
}

}  // namespace

void CTgtImgFlt::Filter(CTgtImg* pImg)
{
    CTmPrd timer;
    timer.Start();
    if (pImg && pImg->m_pImg && pImg->m_nBrgs != 0 && pImg->m_nRngs != 0) {
        if (m_nThreads < 1 || m_nThreads > kMaxThreads || m_thrds.m_nSize != static_cast<unsigned int>(m_nThreads))
            SetupThreads();
        const size_t plane = static_cast<size_t>(pImg->m_nRngs) * pImg->m_nBrgs;
        GenBuf(pImg, m_preRoot);
        if (m_pBuf) {
            PrepareTables();
            std::memset(pImg->m_pImg, 0, plane * pImg->m_nPixBytes);
            const unsigned int n = pImg->m_nRngs / static_cast<unsigned int>(m_nThreads);
            std::array<std::thread, kMaxThreads> workers;
            std::array<bool, kMaxThreads> inline_ = {};
            for (int k = 0; k < m_nThreads; ++k) {
                CTifThrd* t = m_thrds.m_ppItems[k];
                t->m_pFlt = this;
                t->m_pTgtImg = pImg;
                t->m_nStart = static_cast<int>(k * n);
                t->m_nEnd = static_cast<int>((k + 1) * n);
                if (k == 0) continue;
                try {
                    workers[k] = std::thread(&CTifThrd::ThreadFunc, t);
                    NameThread(workers[k]);
                } catch (const std::system_error&) {
                    inline_[k] = true;
                }
            }
            CTifThrd::ThreadFunc(m_thrds.m_ppItems[0]);
            for (int k = 1; k < m_nThreads; ++k)
                if (inline_[k]) CTifThrd::ThreadFunc(m_thrds.m_ppItems[k]);
            if (m_nThreads > 1) {
                const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kWaitMs);
                bool late = false;
                for (int k = 0; k < m_nThreads; ++k) {
                    CFltEvent& ev = *m_thrds.m_ppItems[k]->m_hDone;
                    if (!late) {
                        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                            deadline - std::chrono::steady_clock::now());
                        if (ev.Wait(static_cast<DWORD>(std::max<long long>(left.count(), 0)))) continue;
                        late = true;
                        Zan::Console(0, u"Filter: threads still running after %u ms", static_cast<unsigned>(kWaitMs));
                    }
                    ev.Wait(INFINITE);
                }
            }
            for (int k = 1; k < m_nThreads; ++k)
                if (workers[k].joinable()) workers[k].join();
        }
    }
    timer.Stop();
    const double ms = static_cast<double>(timer.m_stop - timer.m_start) * timer.m_msPerCount;
    Zan::Status(2360, 1, u"Filter Time %1.3lfms", ms);
}

void CTgtImgFlt::Settings(CZSetObj& set)
{
    set.Item(u"FltActive", m_bActive);
    set.Item(u"FilterId", m_filterId);
    set.Item(u"FltBias", m_bias);
    set.Item(u"FltOffset", m_offset);
    set.Item(u"FltName", m_name);
    set.Item(u"FltLowTgt", m_lowTgt);
    set.Item(u"FltScale", m_scale);
    set.Item(u"FltPreRoot", m_preRoot);
    set.Item(u"FltThreads", m_nThreads);
    int size = m_nPat;
    set.Item(u"FltSize", size);
    SetupThreads();

    if (set.IsStoring()) {
        for (int i = 0; i < m_nPat; ++i) set.Data(u"%1.6lf", m_pPat[i]);
        return;
    }
    SetPatSize(size);
    int i = 0;
    for (CZanPtr* pos = set.m_data.GetHeadPos(); pos && i < size; ++i) {
        const CString* line = set.m_data.GetNext(pos);
        double v = 0.0;
        if (std::sscanf(line->Utf8().c_str(), "%lf", &v) == 1 && i < m_nPat) m_pPat[i] = v;
    }
}
