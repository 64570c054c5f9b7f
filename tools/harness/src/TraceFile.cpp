#include "TraceFile.h"

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "JsonWriter.h"

namespace camera_harness {

using android::testing::TraceEventKind;

int64_t monotonicNowNs() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

void TraceFile::adapterEvent(const android::testing::TraceEvent& event) {
    Event out;
    out.name = event.name;
    out.category = "adapter";
    out.timestampNs = event.timestampNs;
    out.tid = event.tid;
    switch (event.kind) {
        case TraceEventKind::Begin:
            out.phase = 'B';
            break;
        case TraceEventKind::End:
            out.phase = 'E';
            break;
        case TraceEventKind::AsyncBegin:
            out.phase = 'b';
            out.id = event.value;
            break;
        case TraceEventKind::AsyncEnd:
            out.phase = 'e';
            out.id = event.value;
            break;
        case TraceEventKind::Instant:
            out.phase = 'i';
            break;
        case TraceEventKind::Counter:
            out.phase = 'C';
            out.value = event.value;
            break;
    }
    if (!event.track.empty() && out.name.empty()) out.name = event.track;
    std::lock_guard lock(mLock);
    mEvents.push_back(std::move(out));
}

void TraceFile::harnessSpan(const char* name, int64_t startNs, int64_t endNs,
                            std::optional<int32_t> frameNumber) {
    Event out;
    out.name = name;
    out.phase = 'X';
    out.category = "harness";
    out.timestampNs = startNs;
    out.durationNs = endNs - startNs;
    out.tid = gettid();
    out.frameNumber = frameNumber;
    std::lock_guard lock(mLock);
    mEvents.push_back(std::move(out));
}

bool TraceFile::write(const std::string& path) const {
    JsonWriter json;
    json.beginObject().key("traceEvents").beginArray();
    const int64_t pid = getpid();
    {
        std::lock_guard lock(mLock);
        for (const auto& event : mEvents) {
            json.beginObject();
            json.field("name", event.name).field("cat", event.category);
            json.field("ph", std::string_view(&event.phase, 1));
            json.field("ts", static_cast<double>(event.timestampNs) / 1000);
            if (event.phase == 'X') json.field("dur", static_cast<double>(event.durationNs) / 1000);
            json.field("pid", pid).field("tid", static_cast<int64_t>(event.tid));
            if (event.id) json.field("id", *event.id);
            if (event.phase == 'i') json.field("s", "t");
            if (event.value)
                json.key("args").beginObject().field("value", *event.value).endObject();
            if (event.frameNumber) {
                json.key("args").beginObject().field("frame", *event.frameNumber).endObject();
            }
            json.endObject();
        }
    }
    json.endArray().field("displayTimeUnit", "ms").endObject();

    std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "w"), fclose);
    if (!file) return false;
    const std::string& text = json.text();
    return fwrite(text.data(), 1, text.size(), file.get()) == text.size() && fflush(file.get()) == 0;
}

HarnessSpan::HarnessSpan(TraceFile* trace, const char* name, std::optional<int32_t> frameNumber)
    : mTrace(trace),
      mName(name),
      mFrameNumber(frameNumber),
      mStartNs(trace ? monotonicNowNs() : 0) {}

HarnessSpan::~HarnessSpan() {
    if (mTrace != nullptr) mTrace->harnessSpan(mName, mStartNs, monotonicNowNs(), mFrameNumber);
}

}  // namespace camera_harness
