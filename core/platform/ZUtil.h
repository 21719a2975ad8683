#pragma once
// The core's memory calls. They are the C heap itself, so a block from
// ZUtil::Malloc may be released with free() and one from malloc() with
// ZUtil::FreeIt, as the library's callers do.
#include <cstdlib>

class ZUtil {
public:
    // A new block of `size` bytes, uninitialised; null on failure.
    static void* Malloc(unsigned int size) { return std::malloc(size ? size : 1); }
    // Resizes a block keeping its contents (a null p makes a new block).
    // Returns null on failure, leaving p valid.
    static void* Realloc(void* p, unsigned int size) { return std::realloc(p, size ? size : 1); }
    // Releases a block; null does nothing.
    static void FreeIt(void* p) { std::free(p); }
};
