#include "core/platform/CString.h"

#include <algorithm>
#include <cstdio>

namespace {
bool IsSpace16(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

std::u16string Widen(const char* s, size_t n)
{
    std::u16string r(n, u'\0');
    for (size_t i = 0; i < n; ++i) r[i] = static_cast<char16_t>(static_cast<unsigned char>(s[i]));
    return r;
}
} // namespace

CString::CString(const char* s) : m_s(s ? Widen(s, std::char_traits<char>::length(s)) : std::u16string()) {}
CString::CString(const char* s, int n) : m_s(s && n > 0 ? Widen(s, static_cast<size_t>(n)) : std::u16string()) {}

CString CString::FromUtf8(std::string_view in)
{
    std::u16string out;
    out.reserve(in.size());
    for (size_t i = 0; i < in.size();) {
        const unsigned char c = static_cast<unsigned char>(in[i]);
        char32_t cp = 0xFFFD;
        size_t len = 1;
        if (c < 0x80) { cp = c; }
        else if ((c >> 5) == 6) { len = 2; cp = c & 0x1F; }
        else if ((c >> 4) == 14) { len = 3; cp = c & 0x0F; }
        else if ((c >> 3) == 30) { len = 4; cp = c & 0x07; }
        else { len = 0; }
        if (len > 1) {
            if (i + len > in.size()) { len = 0; }
            else {
                for (size_t k = 1; k < len; ++k) {
                    const unsigned char cc = static_cast<unsigned char>(in[i + k]);
                    if ((cc >> 6) != 2) { len = 0; break; }
                    cp = (cp << 6) | (cc & 0x3F);
                }
            }
        }
        if (len == 0) { cp = 0xFFFD; len = 1; }  // a stray byte becomes the replacement character
        if (cp >= 0x10000 && cp <= 0x10FFFF) {
            cp -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (cp >> 10));
            out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp > 0x10FFFF ? 0xFFFD : cp);
        }
        i += len;
    }
    return CString(std::move(out));
}

std::string CString::Utf8() const
{
    std::string out;
    out.reserve(m_s.size());
    for (size_t i = 0; i < m_s.size(); ++i) {
        char32_t cp = m_s[i];
        if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < m_s.size() && m_s[i + 1] >= 0xDC00 && m_s[i + 1] < 0xE000) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (m_s[i + 1] - 0xDC00);
            ++i;
        }
        if (cp < 0x80) out += static_cast<char>(cp);
        else if (cp < 0x800) { out += static_cast<char>(0xC0 | (cp >> 6)); out += static_cast<char>(0x80 | (cp & 0x3F)); }
        else if (cp < 0x10000) {
            out += static_cast<char>(0xE0 | (cp >> 12));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (cp >> 18));
            out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        }
    }
    return out;
}

int CString::Compare(LPCTSTR s) const
{
    const int c = m_s.compare(s ? s : u"");
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int CString::CompareNoCase(LPCTSTR s) const
{
    CString a(*this), b(s);
    return a.MakeLower().Compare(b.MakeLower());
}

int CString::Find(char16_t ch, int start) const
{
    if (start < 0) start = 0;
    const auto p = m_s.find(ch, static_cast<size_t>(start));
    return p == std::u16string::npos ? -1 : static_cast<int>(p);
}

int CString::Find(LPCTSTR sub, int start) const
{
    if (start < 0) start = 0;
    if (static_cast<size_t>(start) > m_s.size()) return -1;
    const auto p = m_s.find(sub ? sub : u"", static_cast<size_t>(start));
    return p == std::u16string::npos ? -1 : static_cast<int>(p);
}

int CString::ReverseFind(char16_t ch) const
{
    const auto p = m_s.rfind(ch);
    return p == std::u16string::npos ? -1 : static_cast<int>(p);
}

CString CString::Left(int n) const { return CString(m_s.substr(0, static_cast<size_t>(std::clamp(n, 0, GetLength())))); }
CString CString::Right(int n) const
{
    n = std::clamp(n, 0, GetLength());
    return CString(m_s.substr(m_s.size() - static_cast<size_t>(n)));
}
CString CString::Mid(int first) const { return Mid(first, GetLength()); }
CString CString::Mid(int first, int n) const
{
    first = std::clamp(first, 0, GetLength());
    n = std::clamp(n, 0, GetLength() - first);
    return CString(m_s.substr(static_cast<size_t>(first), static_cast<size_t>(n)));
}

CString& CString::TrimLeft()
{
    size_t i = 0;
    while (i < m_s.size() && IsSpace16(m_s[i])) ++i;
    m_s.erase(0, i);
    return *this;
}

CString& CString::TrimRight()
{
    size_t n = m_s.size();
    while (n > 0 && IsSpace16(m_s[n - 1])) --n;
    m_s.resize(n);
    return *this;
}

CString& CString::TrimLeft(char16_t ch)
{
    size_t i = 0;
    while (i < m_s.size() && m_s[i] == ch) ++i;
    m_s.erase(0, i);
    return *this;
}

CString& CString::TrimRight(char16_t ch)
{
    size_t n = m_s.size();
    while (n > 0 && m_s[n - 1] == ch) --n;
    m_s.resize(n);
    return *this;
}

CString& CString::MakeUpper()
{
    for (auto& c : m_s) if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
    return *this;
}

CString& CString::MakeLower()
{
    for (auto& c : m_s) if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    return *this;
}

int CString::Replace(LPCTSTR oldText, LPCTSTR newText)
{
    const std::u16string from = oldText ? oldText : u"";
    const std::u16string to = newText ? newText : u"";
    if (from.empty()) return 0;
    int n = 0;
    for (size_t p = m_s.find(from); p != std::u16string::npos; p = m_s.find(from, p + to.size())) {
        m_s.replace(p, from.size(), to);
        ++n;
    }
    return n;
}

namespace zan_detail {

FmtArg MakeArg(const CString& v) { FmtArg a; a.kind = FmtArg::Wide; a.s = v.Str(); return a; }
FmtArg MakeArg(const char16_t* v) { FmtArg a; a.kind = FmtArg::Wide; a.s = v ? v : u"(null)"; return a; }
FmtArg MakeArg(const char* v) { FmtArg a; a.kind = FmtArg::Wide; a.s = CString(v ? v : "(null)").Str(); return a; }
FmtArg MakeArg(const std::u16string& v) { FmtArg a; a.kind = FmtArg::Wide; a.s = v; return a; }
FmtArg MakeArg(const std::string& v) { FmtArg a; a.kind = FmtArg::Wide; a.s = CString::FromUtf8(v).Str(); return a; }

namespace {

long long AsSigned(const FmtArg& a)
{
    switch (a.kind) {
    case FmtArg::SInt: return a.i;
    case FmtArg::UInt: return static_cast<long long>(a.u);
    case FmtArg::Real:
        // Truncation toward zero, saturating instead of overflowing.
        if (!(a.d == a.d)) return 0;
        if (a.d >= 9.2e18) return INT64_MAX;
        if (a.d <= -9.2e18) return INT64_MIN;
        return static_cast<long long>(a.d);
    case FmtArg::Ptr: return static_cast<long long>(reinterpret_cast<std::uintptr_t>(a.p));
    case FmtArg::Wide: return 0;
    }
    return 0;
}

double AsReal(const FmtArg& a)
{
    switch (a.kind) {
    case FmtArg::SInt: return static_cast<double>(a.i);
    case FmtArg::UInt: return static_cast<double>(a.u);
    case FmtArg::Real: return a.d;
    default: return 0.0;
    }
}

std::u16string AsText(const FmtArg& a)
{
    char buf[64];
    switch (a.kind) {
    case FmtArg::Wide: return a.s;
    case FmtArg::SInt: std::snprintf(buf, sizeof buf, "%lld", a.i); break;
    case FmtArg::UInt: std::snprintf(buf, sizeof buf, "%llu", a.u); break;
    case FmtArg::Real: std::snprintf(buf, sizeof buf, "%g", a.d); break;
    case FmtArg::Ptr: std::snprintf(buf, sizeof buf, "%p", a.p); break;
    }
    return CString(buf).Str();
}

template <class V>
void AppendPrintf(std::u16string& out, const std::string& spec, V v)
{
    char small[128];
    const int n = std::snprintf(small, sizeof small, spec.c_str(), v);
    if (n < 0) return;
    if (static_cast<size_t>(n) < sizeof small) {
        out += CString(small, n).Str();
        return;
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), spec.c_str(), v);
    out += CString(big.c_str(), n).Str();
}

} // namespace

std::u16string FormatV(std::u16string_view fmt, const std::vector<FmtArg>& args)
{
    std::u16string out;
    size_t next = 0;
    FmtArg none;
    none.kind = FmtArg::Wide;  // a missing argument: empty text, or 0 for numbers
    auto take = [&]() -> const FmtArg& { return next < args.size() ? args[next++] : none; };

    for (size_t i = 0; i < fmt.size();) {
        const char16_t c = fmt[i];
        if (c != u'%') { out += c; ++i; continue; }
        size_t j = i + 1;
        if (j < fmt.size() && fmt[j] == u'%') { out += u'%'; i = j + 1; continue; }

        std::string flags;
        while (j < fmt.size() && std::u16string_view(u"-+ #0").find(fmt[j]) != std::u16string_view::npos)
            flags += static_cast<char>(fmt[j++]);
        int width = -1, prec = -1;
        if (j < fmt.size() && fmt[j] == u'*') {
            width = static_cast<int>(AsSigned(take()));
            if (width < 0) { flags += '-'; width = -width; }
            ++j;
        } else {
            while (j < fmt.size() && fmt[j] >= u'0' && fmt[j] <= u'9')
                width = std::max(width, 0) * 10 + (fmt[j++] - u'0');
        }
        if (j < fmt.size() && fmt[j] == u'.') {
            ++j;
            prec = 0;
            if (j < fmt.size() && fmt[j] == u'*') {
                prec = static_cast<int>(AsSigned(take()));
                ++j;
            } else {
                while (j < fmt.size() && fmt[j] >= u'0' && fmt[j] <= u'9') prec = prec * 10 + (fmt[j++] - u'0');
            }
        }
        // Length modifiers: count the integer width they ask for.
        int bits = 32;
        bool shortInt = false, charInt = false;
        for (bool more = true; more && j < fmt.size();) {
            switch (fmt[j]) {
            case u'h': if (shortInt) { charInt = true; } shortInt = true; ++j; break;
            case u'l': ++j; if (j < fmt.size() && fmt[j] == u'l') { bits = 64; ++j; } break;
            case u'L': case u'q': case u'j': case u'z': case u't': bits = 64; ++j; break;
            case u'I':
                if (j + 2 < fmt.size() && fmt[j + 1] == u'6' && fmt[j + 2] == u'4') { bits = 64; j += 3; }
                else if (j + 2 < fmt.size() && fmt[j + 1] == u'3' && fmt[j + 2] == u'2') { j += 3; }
                else { bits = 64; ++j; }
                break;
            case u'w': ++j; break;
            default: more = false;
            }
        }
        if (j >= fmt.size()) { out.append(fmt.substr(i)); break; }
        const char16_t conv = fmt[j];
        std::string spec = "%" + flags;
        if (width >= 0) spec += std::to_string(width);
        if (prec >= 0) spec += "." + std::to_string(prec);

        switch (conv) {
        case u'd': case u'i': {
            long long v = AsSigned(take());
            if (charInt) v = static_cast<signed char>(v);
            else if (shortInt) v = static_cast<short>(v);
            else if (bits == 32) v = static_cast<std::int32_t>(v);
            AppendPrintf(out, spec + "lld", v);
            break;
        }
        case u'u': case u'o': case u'x': case u'X': {
            const FmtArg& a = take();
            unsigned long long v = a.kind == FmtArg::UInt ? a.u : static_cast<unsigned long long>(AsSigned(a));
            if (charInt) v = static_cast<unsigned char>(v);
            else if (shortInt) v = static_cast<unsigned short>(v);
            else if (bits == 32) v = static_cast<std::uint32_t>(v);
            AppendPrintf(out, spec + "ll" + static_cast<char>(conv), v);
            break;
        }
        case u'f': case u'F': case u'e': case u'E': case u'g': case u'G': case u'a': case u'A':
            AppendPrintf(out, spec + static_cast<char>(conv), AsReal(take()));
            break;
        case u'c': case u'C': {
            const FmtArg& a = take();
            std::u16string s(1, a.kind == FmtArg::Wide ? (a.s.empty() ? u'\0' : a.s[0])
                                                       : static_cast<char16_t>(AsSigned(a)));
            if (width > static_cast<int>(s.size())) {
                const std::u16string pad(static_cast<size_t>(width) - s.size(), u' ');
                s = flags.find('-') != std::string::npos ? s + pad : pad + s;
            }
            out += s;
            break;
        }
        case u's': case u'S': {
            std::u16string s = AsText(take());
            if (prec >= 0 && static_cast<size_t>(prec) < s.size()) s.resize(static_cast<size_t>(prec));
            if (width > static_cast<int>(s.size())) {
                const std::u16string pad(static_cast<size_t>(width) - s.size(), u' ');
                s = flags.find('-') != std::string::npos ? s + pad : pad + s;
            }
            out += s;
            break;
        }
        case u'p': {
            const FmtArg& a = take();
            AppendPrintf(out, spec + "p", a.kind == FmtArg::Ptr ? a.p : reinterpret_cast<const void*>(static_cast<std::uintptr_t>(AsSigned(a))));
            break;
        }
        case u'n':
            take();  // writing back a count is not supported: the argument is skipped
            break;
        default:
            // Not a conversion: keep the text as written.
            out.append(fmt.substr(i, j + 1 - i));
            break;
        }
        i = j + 1;
    }
    return out;
}

} // namespace zan_detail
