#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <utility>

namespace {

using android::testing::TraceEvent;
using android::testing::TraceEventKind;
using android::testing::TraceRecorder;

std::atomic<uint64_t> sEnabledTags{ATRACE_TAG_NOT_READY};

// Never destroyed: threads may still trace while the process runs its static destructors.
struct RecorderSlot {
    std::mutex lock;
    TraceRecorder recorder;
};

RecorderSlot& recorderSlot() {
    static RecorderSlot& slot = *new RecorderSlot();
    return slot;
}

int64_t monotonicNs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

void record(TraceEventKind kind, const char* name, const char* track = nullptr, int64_t value = 0) {
    RecorderSlot& slot = recorderSlot();
    std::lock_guard<std::mutex> guard(slot.lock);
    if (!slot.recorder) return;
    // Stamped under the lock so that the recorder sees events in time order.
    slot.recorder(TraceEvent{kind, name != nullptr ? name : "", track != nullptr ? track : "",
                             value, gettid(), monotonicNs()});
}

}  // namespace

void atrace_init() {}

void atrace_setup() {}

void atrace_update_tags() {}

void atrace_set_tracing_enabled(bool) {}

uint64_t atrace_get_enabled_tags() {
    return sEnabledTags.load(std::memory_order_relaxed);
}

void atrace_begin_body(const char* name) {
    record(TraceEventKind::Begin, name);
}

void atrace_end_body() {
    record(TraceEventKind::End, nullptr);
}

void atrace_async_begin_body(const char* name, int32_t cookie) {
    record(TraceEventKind::AsyncBegin, name, nullptr, cookie);
}

void atrace_async_end_body(const char* name, int32_t cookie) {
    record(TraceEventKind::AsyncEnd, name, nullptr, cookie);
}

void atrace_async_for_track_begin_body(const char* track_name, const char* name, int32_t cookie) {
    record(TraceEventKind::AsyncBegin, name, track_name, cookie);
}

void atrace_async_for_track_end_body(const char* track_name, int32_t cookie) {
    record(TraceEventKind::AsyncEnd, nullptr, track_name, cookie);
}

void atrace_instant_body(const char* name) {
    record(TraceEventKind::Instant, name);
}

void atrace_instant_for_track_body(const char* track_name, const char* name) {
    record(TraceEventKind::Instant, name, track_name);
}

void atrace_int_body(const char* name, int32_t value) {
    record(TraceEventKind::Counter, name, nullptr, value);
}

void atrace_int64_body(const char* name, int64_t value) {
    record(TraceEventKind::Counter, name, nullptr, value);
}

namespace android::testing {

void setTraceEnabledTags(uint64_t tags) {
    sEnabledTags.store(tags, std::memory_order_relaxed);
}

void setTraceRecorder(TraceRecorder recorder) {
    RecorderSlot& slot = recorderSlot();
    TraceRecorder previous;
    {
        std::lock_guard<std::mutex> guard(slot.lock);
        previous = std::exchange(slot.recorder, std::move(recorder));
    }
    // Whatever the old recorder holds is released outside the lock.
}

TraceCapture::TraceCapture() {
    setTraceRecorder([this](const TraceEvent& event) {
        std::lock_guard<std::mutex> guard(mLock);
        mEvents.push_back(event);
    });
}

TraceCapture::~TraceCapture() {
    setTraceRecorder(nullptr);
}

std::vector<TraceEvent> TraceCapture::events() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mEvents;
}

}  // namespace android::testing
