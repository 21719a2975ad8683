// One libFuzzer program: the entry named by ZAN_FUZZ_TARGET.
#include "fuzz/FuzzTargets.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    zanfuzz::Setup();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const zanfuzz::Entry fn = [] {
        const zanfuzz::Entry e = zanfuzz::Find(ZAN_FUZZ_TARGET);
        if (!e) {
            std::fprintf(stderr, "no fuzz target %s\n", ZAN_FUZZ_TARGET);
            std::abort();
        }
        return e;
    }();
    fn(data, size);
    return 0;
}
