/*
 * Test and tool hooks of the libcutils trace stand-in: set the enabled-tags word that
 * atrace_get_enabled_tags() returns, and receive every event that reaches a body function.
 * The recorder is called on the tracing thread, one event at a time (calls never overlap, and it
 * must not trace itself), and is never called again once setTraceRecorder() has replaced it.
 */
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace android::testing {

enum class TraceEventKind { Begin, End, AsyncBegin, AsyncEnd, Instant, Counter };

struct TraceEvent {
    TraceEventKind kind;
    std::string name;     // empty for End and for the end of an async track section
    std::string track;    // track name of the *_for_track calls, else empty
    int64_t value;        // cookie of async events, value of counters, else 0
    pid_t tid;            // kernel thread id of the caller
    int64_t timestampNs;  // CLOCK_MONOTONIC
};

using TraceRecorder = std::function<void(const TraceEvent&)>;

// Replaces the enabled-tags word (ATRACE_TAG_NOT_READY alone until first set).
void setTraceEnabledTags(uint64_t tags);

// Installs `recorder`; an empty one stops recording.
void setTraceRecorder(TraceRecorder recorder);

// Records every event while alive. One capture (or recorder) at a time.
class TraceCapture {
public:
    TraceCapture();
    ~TraceCapture();
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    std::vector<TraceEvent> events() const;

private:
    mutable std::mutex mLock;
    std::vector<TraceEvent> mEvents;
};

}  // namespace android::testing
