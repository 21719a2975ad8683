#pragma once
// CMutex: an unnamed, recursive lock (the framework's mutex can be taken
// again by the thread that holds it).
#include "core/platform/Types.h"

#include <chrono>
#include <mutex>

class CMutex {
public:
    explicit CMutex(BOOL bInitiallyOwn = FALSE, LPCTSTR name = nullptr)
    {
        (void)name;
        if (bInitiallyOwn) m_m.lock();
    }
    CMutex(const CMutex&) = delete;
    CMutex& operator=(const CMutex&) = delete;
    // Waits up to `timeoutMs` (INFINITE: no limit). TRUE when taken.
    BOOL Lock(DWORD timeoutMs = INFINITE)
    {
        if (timeoutMs == INFINITE) {
            m_m.lock();
            return TRUE;
        }
        return m_m.try_lock_for(std::chrono::milliseconds(timeoutMs)) ? TRUE : FALSE;
    }
    BOOL Unlock()
    {
        m_m.unlock();
        return TRUE;
    }
    // For std::lock_guard / std::scoped_lock.
    void lock() { m_m.lock(); }
    void unlock() { m_m.unlock(); }

private:
    std::recursive_timed_mutex m_m;
};
