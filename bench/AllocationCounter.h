/*
 * Counts the heap allocations of the benchmark process: the bench binary replaces the global
 * operator new, so every allocation of the library under test is seen. AllocationMeter turns the
 * count into the "allocs" counter of a benchmark (allocations per iteration), leaving out what
 * happens while it is paused (set-up done inside the timed loop).
 */
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>

namespace kovo::aidl2legacy::bench {

// Allocations made by this process so far.
uint64_t allocationCount();

class AllocationMeter {
public:
    explicit AllocationMeter(benchmark::State& state) : mState(state), mStart(allocationCount()) {}
    ~AllocationMeter() {
        const uint64_t counted = allocationCount() - mStart - mPaused;
        mState.counters["allocs"] = benchmark::Counter(static_cast<double>(counted),
                                                       benchmark::Counter::kAvgIterations);
    }
    AllocationMeter(const AllocationMeter&) = delete;
    AllocationMeter& operator=(const AllocationMeter&) = delete;

    // Stops the timer and the count for work that is not the measured operation.
    void pause() {
        mState.PauseTiming();
        mPauseStart = allocationCount();
    }
    void resume() {
        mPaused += allocationCount() - mPauseStart;
        mState.ResumeTiming();
    }

private:
    benchmark::State& mState;
    uint64_t mStart;
    uint64_t mPauseStart = 0;
    uint64_t mPaused = 0;
};

}  // namespace kovo::aidl2legacy::bench
