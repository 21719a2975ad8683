#pragma once
// Storing into and loading from memory archives, for the record tests.
#include <zandata/ZanData.h>

#include "tests/common/ZanTest.h"

#include <cstring>
#include <vector>

namespace rec {

using zantest::Bytes;
using zantest::CauseOf;
using zantest::Le;
using zantest::Store;

// Loads from the bytes and returns how many of them were left unread.
template <class F>
size_t Load(const Bytes& b, F&& read)
{
    return zantest::LoadFrom(b, std::forward<F>(read));
}

inline void Put(Bytes& b, std::initializer_list<int> v)
{
    for (int x : v) b.push_back(static_cast<BYTE>(x));
}

} // namespace rec
