#pragma once
// Work arrays that the vector kernels read a whole vector at a time start on
// a cache line: a 64-byte load from a block the heap placed 16 bytes past a
// line touches two lines. Normalise8 with column maxima, whose kernel reads
// three such arrays a step, ran a fifth slower when the heap happened to place
// them so. std::vector's own allocator promises 16 bytes.
#include <cstddef>
#include <new>
#include <vector>

namespace zan {

inline constexpr std::size_t kCacheLine = 64;

template <class T>
struct CacheLineAllocator {
    using value_type = T;

    CacheLineAllocator() = default;
    template <class U>
    constexpr CacheLineAllocator(const CacheLineAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t n)
    {
        return static_cast<T*>(::operator new(n * sizeof(T), std::align_val_t{kCacheLine}));
    }
    void deallocate(T* p, std::size_t) noexcept { ::operator delete(p, std::align_val_t{kCacheLine}); }

    template <class U>
    bool operator==(const CacheLineAllocator<U>&) const noexcept
    {
        return true;
    }
};

// A std::vector whose elements start on a cache line.
template <class T>
using LineVector = std::vector<T, CacheLineAllocator<T>>;

}  // namespace zan
