/*
 * TraceFile: a Chrome/Perfetto JSON trace ("traceEvents") of the adapter's trace sections, as
 * the libcutils trace recorder reports them, and of the harness's own spans (its calls into the
 * adapter and its callbacks). Events from any thread are kept in memory under one lock and
 * written once, at the end. Timestamps are CLOCK_MONOTONIC, as the recorder stamps them.
 */
#pragma once

#include <cutils/testing/TraceHooks.h>
#include <sys/types.h>

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace camera_harness {

class TraceFile {
public:
    void adapterEvent(const android::testing::TraceEvent& event);
    // A finished harness span; `frameNumber` goes into its arguments when given.
    void harnessSpan(const char* name, int64_t startNs, int64_t endNs,
                     std::optional<int32_t> frameNumber);
    // Writes the trace; false (errno set) when the file cannot be written.
    bool write(const std::string& path) const;

private:
    struct Event {
        std::string name;
        char phase = 'i';
        const char* category = "";
        int64_t timestampNs = 0;
        int64_t durationNs = 0;
        pid_t tid = 0;
        std::optional<int64_t> id;     // async events
        std::optional<int64_t> value;  // counters
        std::optional<int32_t> frameNumber;
    };

    mutable std::mutex mLock;
    std::vector<Event> mEvents;
};

// Monotonic time in ns, the clock of the trace.
int64_t monotonicNowNs();

// Records the enclosing block as a harness span when a trace file is given.
class HarnessSpan {
public:
    HarnessSpan(TraceFile* trace, const char* name, std::optional<int32_t> frameNumber = {});
    ~HarnessSpan();
    HarnessSpan(const HarnessSpan&) = delete;
    HarnessSpan& operator=(const HarnessSpan&) = delete;

private:
    TraceFile* mTrace;
    const char* mName;
    std::optional<int32_t> mFrameNumber;
    int64_t mStartNs;
};

}  // namespace camera_harness
