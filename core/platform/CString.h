#pragma once
// CString: a string of 16-bit characters (UTF-16 code units), with the
// framework's familiar calls. Narrow text given to a constructor is widened
// byte by byte (Latin-1), as the archive does with a narrow string; use
// FromUtf8/Utf8 for file names and terminal output.
//
// Format follows printf rules but is type-checked at compile time: every
// argument is captured by value into a tagged form first, so passing a
// CString for %s, or an int for %lf, is well defined (the value is converted
// to the conversion's kind) instead of undefined behaviour.
#include "core/platform/Types.h"

#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

class CString;

namespace zan_detail {
// One printf argument, captured whatever its C++ type.
struct FmtArg {
    enum Kind { SInt, UInt, Real, Wide, Ptr } kind = SInt;
    long long i = 0;
    unsigned long long u = 0;
    double d = 0.0;
    std::u16string s;
    const void* p = nullptr;
};
FmtArg MakeArg(const CString& v);
FmtArg MakeArg(const char16_t* v);
FmtArg MakeArg(const char* v);
FmtArg MakeArg(const std::u16string& v);
FmtArg MakeArg(const std::string& v);
inline FmtArg MakeArg(bool v) { FmtArg a; a.kind = FmtArg::SInt; a.i = v; return a; }
inline FmtArg MakeArg(char16_t v) { FmtArg a; a.kind = FmtArg::UInt; a.u = v; return a; }
template <class T>
    requires std::is_arithmetic_v<T> || std::is_enum_v<T>
FmtArg MakeArg(T v)
{
    FmtArg a;
    if constexpr (std::is_floating_point_v<T>) {
        a.kind = FmtArg::Real; a.d = static_cast<double>(v);
    } else if constexpr (std::is_enum_v<T>) {
        a.kind = FmtArg::SInt; a.i = static_cast<long long>(v);
    } else if constexpr (std::is_signed_v<T>) {
        a.kind = FmtArg::SInt; a.i = static_cast<long long>(v);
    } else {
        a.kind = FmtArg::UInt; a.u = static_cast<unsigned long long>(v);
    }
    return a;
}
template <class T>
    requires std::is_pointer_v<T> && (!std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char>) &&
             (!std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char16_t>)
FmtArg MakeArg(T v)
{
    FmtArg a; a.kind = FmtArg::Ptr; a.p = static_cast<const void*>(v); return a;
}
// Formats `fmt` with printf rules over `args`. Conversions: d i u o x X c s S
// f F e E g G a A p and %%; flags - + space # 0; width and precision, also as
// '*'; length modifiers h hh l ll L I64 z j t. With no length modifier or
// with 'l', integer conversions take 32 bits, as on the original platform.
// A missing argument formats as 0 or the empty string.
std::u16string FormatV(std::u16string_view fmt, const std::vector<FmtArg>& args);
} // namespace zan_detail

class CString {
public:
    CString() = default;
    CString(const char16_t* s) : m_s(s ? s : u"") {}
    CString(const char16_t* s, int n) : m_s(s, s ? static_cast<std::size_t>(n) : 0) {}
    CString(const char* s);            // each byte widened
    CString(const char* s, int n);
    CString(char16_t ch, int nRepeat = 1) : m_s(nRepeat > 0 ? nRepeat : 0, ch) {}
    CString(std::u16string s) : m_s(std::move(s)) {}
    CString(std::u16string_view s) : m_s(s) {}

    static CString FromUtf8(std::string_view utf8);
    std::string Utf8() const;

    int GetLength() const { return static_cast<int>(m_s.size()); }
    BOOL IsEmpty() const { return m_s.empty(); }
    void Empty() { m_s.clear(); }
    char16_t GetAt(int i) const { return m_s[static_cast<std::size_t>(i)]; }
    void SetAt(int i, char16_t ch) { m_s[static_cast<std::size_t>(i)] = ch; }
    char16_t operator[](int i) const { return m_s[static_cast<std::size_t>(i)]; }
    char16_t& operator[](int i) { return m_s[static_cast<std::size_t>(i)]; }
    operator LPCTSTR() const { return m_s.c_str(); }
    LPCTSTR GetString() const { return m_s.c_str(); }
    const std::u16string& Str() const { return m_s; }
    std::u16string& Str() { return m_s; }

    CString& operator=(const char* s) { return *this = CString(s); }
    CString& operator=(const char16_t* s) { m_s = s ? s : u""; return *this; }
    CString& operator+=(const CString& s) { m_s += s.m_s; return *this; }
    CString& operator+=(const char16_t* s) { if (s) m_s += s; return *this; }
    CString& operator+=(const char* s) { return *this += CString(s); }
    CString& operator+=(char16_t ch) { m_s += ch; return *this; }
    CString& operator+=(char ch) { m_s += static_cast<char16_t>(static_cast<unsigned char>(ch)); return *this; }

    // <0, 0 or >0 by 16-bit code unit, as wcscmp.
    int Compare(LPCTSTR s) const;
    int CompareNoCase(LPCTSTR s) const;
    int Find(char16_t ch, int start = 0) const;
    int Find(LPCTSTR sub, int start = 0) const;
    int ReverseFind(char16_t ch) const;
    CString Left(int n) const;
    CString Right(int n) const;
    CString Mid(int first) const;
    CString Mid(int first, int n) const;
    CString& TrimLeft();
    CString& TrimRight();
    CString& Trim() { TrimRight(); return TrimLeft(); }
    CString& TrimLeft(char16_t ch);
    CString& TrimRight(char16_t ch);
    CString& MakeUpper();
    CString& MakeLower();
    int Replace(LPCTSTR oldText, LPCTSTR newText);

    template <class... A>
    void Format(const CString& fmt, const A&... args)
    {
        m_s = zan_detail::FormatV(fmt.m_s, {zan_detail::MakeArg(args)...});
    }
    template <class... A>
    void AppendFormat(const CString& fmt, const A&... args)
    {
        m_s += zan_detail::FormatV(fmt.m_s, {zan_detail::MakeArg(args)...});
    }
    // Formatted text as a value: CString::Fmt(u"%d", 3).
    template <class... A>
    static CString Fmt(const CString& fmt, const A&... args)
    {
        return CString(zan_detail::FormatV(fmt.m_s, {zan_detail::MakeArg(args)...}));
    }

    friend bool operator==(const CString& a, const CString& b) { return a.m_s == b.m_s; }
    friend bool operator==(const CString& a, const char16_t* b) { return a.m_s == (b ? b : u""); }
    friend bool operator==(const CString& a, const char* b) { return a == CString(b); }
    friend bool operator<(const CString& a, const CString& b) { return a.m_s < b.m_s; }
    friend CString operator+(CString a, const CString& b) { a += b; return a; }
    friend CString operator+(CString a, const char16_t* b) { a += b; return a; }
    friend CString operator+(CString a, const char* b) { a += b; return a; }
    friend CString operator+(const char16_t* a, const CString& b) { return CString(a) += b; }
    friend CString operator+(const char* a, const CString& b) { return CString(a) += b; }
    friend CString operator+(CString a, char16_t ch) { a += ch; return a; }

private:
    std::u16string m_s;
};

// Writes the text as UTF-8.
inline std::ostream& operator<<(std::ostream& os, const CString& s) { return os << s.Utf8(); }
