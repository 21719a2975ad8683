#pragma once
// A library call and its yardstick (a memcpy) timed in turn, in batches, so
// that both see the same phases of a shared machine: this VM's memcpy rate
// drifts by a quarter from minute to minute, and a yardstick timed once
// before the call moved the ratio by as much. Each batch is timed as a whole
// in processor time: a clock read is a system call here, and one between
// every two calls slowed them by a tenth.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>

namespace bench {

// Processor time of the process, in seconds.
inline double ProcessSeconds()
{
    timespec ts {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + 1e-9 * static_cast<double>(ts.tv_nsec);
}

struct SideBySide {
    double opSeconds = 0.0, refSeconds = 0.0;
    std::int64_t ops = 0, refs = 0;

    // Seconds per run of each.
    double OpEach() const { return ops ? opSeconds / static_cast<double>(ops) : 0.0; }
    double RefEach() const { return refs ? refSeconds / static_cast<double>(refs) : 0.0; }
};

// op once for each iteration of st; after every `batch` of them, `batch`
// runs of ref with st's timer paused. At least one batch of ref runs.
template <class Op, class Ref>
SideBySide RunSideBySide(benchmark::State& st, Op&& op, Ref&& ref, int batch = 64)
{
    SideBySide r;
    auto refBatch = [&] {
        const double t1 = ProcessSeconds();
        for (int i = 0; i < batch; ++i) ref(i);
        r.refSeconds += ProcessSeconds() - t1;
        r.refs += batch;
    };
    double t0 = ProcessSeconds();
    for (auto _ : st) {
        op();
        if (++r.ops % batch) continue;
        r.opSeconds += ProcessSeconds() - t0;
        st.PauseTiming();
        refBatch();
        st.ResumeTiming();
        t0 = ProcessSeconds();
    }
    if (r.ops % batch) r.opSeconds += ProcessSeconds() - t0;
    if (r.refs == 0) refBatch();
    return r;
}

}  // namespace bench
