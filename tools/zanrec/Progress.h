#pragma once
// A progress line on stderr for long work, shown only when stderr is a
// terminal.
#include <cstdio>
#include <string>
#include <unistd.h>

namespace zanrec {

class Progress {
public:
    Progress(std::string what, int total) : m_what(std::move(what)), m_total(total), m_on(isatty(2) != 0) {}
    ~Progress() { Done(); }
    void Step(int done)
    {
        if (!m_on) return;
        std::fprintf(stderr, "\r%s %d/%d", m_what.c_str(), done, m_total);
        std::fflush(stderr);
        m_shown = true;
    }
    void Done()
    {
        if (m_on && m_shown) std::fprintf(stderr, "\r\033[K");
        m_shown = false;
    }

private:
    std::string m_what;
    int m_total;
    bool m_on;
    bool m_shown = false;
};

} // namespace zanrec
