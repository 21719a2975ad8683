#pragma once
// The framework's basic type names, as a host written against them expects.
// Sizes follow the 32-bit original where records depend on them: the archive
// writes `long`/`unsigned long` as 4 bytes whatever their size in memory here.
#include <cstdint>

using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using BOOL = int;
using LONG = std::int32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using UINT_PTR = std::uintptr_t;
using TCHAR = char16_t;
using LPTSTR = char16_t*;
using LPCTSTR = const char16_t*;
using LPCSTR = const char*;

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;
inline constexpr DWORD INFINITE = 0xFFFFFFFFu;
