/*
 * ProtocolChecker: the camera framework's view of the requests in flight, fed with every request
 * the harness submits and every notification, result and buffer-manager call the device makes.
 * It checks the rules of Rules.h as the events arrive and when a request completes, counts what
 * it saw and measures latencies. It knows nothing of AIDL or file descriptors: the callback hands
 * it plain reports, so the rules can be tested on their own.
 *
 * A request completes when its final metadata came (or was reported lost) and every buffer is
 * back. With the HAL buffer manager, requests carry buffer id 0 and the buffers that the device
 * obtained come back under the ids they were handed out with.
 *
 * Not thread-safe: FrameworkState calls it under its lock.
 */
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "LatencySeries.h"
#include "Rules.h"

namespace camera_harness {

using Clock = std::chrono::steady_clock;

struct CheckedStream {
    int32_t streamId = 0;
    std::string physicalCameraId;  // empty for the logical camera
};

struct RequestedBuffer {
    int32_t streamId = 0;
    int64_t bufferId = 0;  // 0 with the HAL buffer manager
};

struct SubmittedRequest {
    int32_t frameNumber = 0;
    std::vector<RequestedBuffer> buffers;
    std::vector<std::string> physicalSettingIds;  // physical cameras with their own settings
};

struct ReturnedBuffer {
    int32_t streamId = 0;
    int64_t bufferId = 0;
    bool filled = false;  // BufferStatus::OK
    size_t releaseFenceFds = 0;
    bool releaseFenceSignalled = true;
};

struct ResultReport {
    int32_t frameNumber = 0;
    int32_t partialResult = 0;
    bool hasMetadata = false;
    bool metadataReadable = true;  // false when it could not be read or is malformed
    std::optional<int64_t> sensorTimestamp;
    std::vector<std::string> physicalCameraIds;  // one per physical metadata entry
    std::vector<ReturnedBuffer> buffers;
    bool hasInputBuffer = false;
};

// ERROR_* values of the AIDL ErrorCode.
enum class NotifyError : int32_t { kDevice = 1, kRequest = 2, kResult = 3, kBuffer = 4 };

struct ProtocolCounters {
    int64_t requestsSubmitted = 0;
    int64_t requestsCompleted = 0;
    int64_t requestsRejected = 0;
    int64_t shutters = 0;
    int64_t resultCalls = 0;
    int64_t partialResults = 0;  // metadata before the final one
    int64_t finalResults = 0;
    int64_t physicalMetadata = 0;
    int64_t buffersFilled = 0;
    int64_t buffersError = 0;
    int64_t patternsChecked = 0;
    int64_t buffersHandedOut = 0;
    int64_t buffersReturnedUnused = 0;
    int64_t errorDevice = 0;
    int64_t errorRequest = 0;
    int64_t errorResult = 0;
    int64_t errorBuffer = 0;
};

// The shutters of the first session, for the frame rate achieved.
struct ShutterSpan {
    int64_t first = 0;
    int64_t last = 0;
    int64_t shutters = 0;
};

// One completed frame, for a per-frame report.
struct FrameRecord {
    int32_t frameNumber = 0;
    std::optional<int64_t> shutterTimestamp;
    std::optional<int64_t> readoutTimestamp;
    std::optional<int64_t> shutterLatencyNs;
    std::optional<int64_t> finalLatencyNs;
    bool errors = false;  // an error notification named the frame
};

// What a shutter's readout timestamp must be.
enum class ReadoutRule {
    kNotJudged,         // the camera says it has none
    kNotBeforeShutter,  // the module provides them
    kZero,              // the module has none: nothing may stand in for one
};

class ProtocolChecker {
public:
    // Checks a filled buffer's contents; returns the rule it breaks and what is wrong, or nullopt
    // when it is right.
    using BufferInspector = std::function<std::optional<std::pair<Rule, std::string>>(
            int64_t bufferId, int32_t streamId, int32_t frameNumber)>;

    // Shutters may come no closer than the minimum frame duration less this share of it.
    static constexpr double kShutterSpacingTolerance = 0.1;

    ProtocolChecker(int32_t partialResultCount, bool halBufferManager);

    // A new stream configuration; nothing may be in flight. Shutter timestamps are held to
    // `minFrameDurationNs` apart (0: not judged).
    void configureStreams(const std::vector<CheckedStream>& streams, int64_t minFrameDurationNs = 0);
    void setReadoutRule(ReadoutRule rule) { mReadoutRule = rule; }
    // A new session on the device: ordering starts afresh.
    void newSession();
    // Keeps a FrameRecord of every completed frame.
    void recordFrames() { mRecordFrames = true; }

    void requestSubmitted(const SubmittedRequest& request, Clock::time_point when);
    // Requests of a failed processCaptureRequest call: the framework takes none of them as
    // accepted. Returns their buffer ids, which are the framework's again.
    std::vector<int64_t> requestsRejected(const std::vector<int32_t>& frameNumbers);
    // From now on errors are expected for the requests in flight (a flush is coming).
    void expectErrorsInFlight();

    void shutter(int32_t frameNumber, int64_t timestamp, Clock::time_point when,
                 int64_t readoutTimestamp = 0);
    void error(int32_t frameNumber, int32_t streamId, int32_t errorCode);
    // Returns the ids of the buffers that are the framework's again.
    std::vector<int64_t> result(const ResultReport& report, const BufferInspector& inspect,
                                Clock::time_point when);

    // The HAL buffer manager handed these buffers of a stream to the device.
    void buffersHandedOut(int32_t streamId, const std::vector<int64_t>& bufferIds);
    // The device gave buffers back unused; returns the ids that are the framework's again.
    std::vector<int64_t> buffersReturned(const std::vector<ReturnedBuffer>& buffers);
    // Buffers of the stream the device holds through the buffer manager.
    size_t buffersHeld(int32_t streamId) const;

    // `after` ("flush") just returned: reports every request still in flight.
    void checkNothingInFlight(const std::string& after);
    // The end of the session: reports every request still in flight and every buffer the device
    // still holds.
    void finish();

    // A rule broken outside the events above (call statuses, fds, queue reads).
    void report(Rule rule, std::optional<int32_t> frameNumber, std::string what);

    size_t inFlight() const { return mFrames.size(); }
    const ProtocolCounters& counters() const { return mCounters; }
    const std::vector<Violation>& violations() const { return mViolations; }
    const LatencySeries& shutterLatency() const { return mShutterLatency; }
    const LatencySeries& finalLatency() const { return mFinalLatency; }
    const std::vector<FrameRecord>& frameRecords() const { return mFrameRecords; }
    std::optional<ShutterSpan> shutterSpan() const;

private:
    struct Slot {
        int64_t bufferId = 0;
        bool returned = false;
        bool filled = false;
        bool errorNotified = false;
    };
    struct Frame {
        Clock::time_point submitted;
        std::map<int32_t, Slot> slots;  // by stream id
        std::set<std::string> physicalCameraIds;
        bool errorsExpected = false;
        bool shutter = false;
        int64_t shutterTimestamp = 0;
        FrameRecord record;
        bool errorRequest = false;
        bool errorResult = false;
        std::set<std::string> lostPhysicalResults;
        std::set<int32_t> partials;
        bool finalMetadata = false;
        std::optional<int64_t> sensorTimestamp;
        bool resultBeforeShutter = false;
    };

    Frame* findFrame(int32_t frameNumber, const char* what);
    void checkFinalMetadata(int32_t frameNumber, Frame& frame, const ResultReport& report,
                            Clock::time_point when);
    // Resolves the id a returned buffer stands for, or 0 when it stands for none.
    int64_t returnBuffer(int32_t frameNumber, Frame& frame, const ReturnedBuffer& buffer);
    int64_t takeBackHeld(int32_t streamId, int64_t bufferId, const std::string& where);
    void completeIfDone(int32_t frameNumber);
    static std::string missingParts(const Frame& frame);

    int32_t mPartialResultCount;
    bool mHalBufferManager;
    std::map<int32_t, std::string> mStreams;  // stream id to physical camera id
    std::map<int32_t, Frame> mFrames;
    std::map<int64_t, int32_t> mHeldBuffers;  // handed out through the buffer manager: id to stream
    std::set<int64_t> mCameBack;              // buffer-manager ids that came back at least once
    std::optional<int32_t> mLastShutterFrame;
    ShutterSpan mSpan;
    bool mSpanClosed = false;  // a second session does not count
    std::optional<int64_t> mLastShutterTimestamp;
    int64_t mMinFrameDurationNs = 0;
    ReadoutRule mReadoutRule = ReadoutRule::kNotJudged;
    bool mRecordFrames = false;
    std::vector<FrameRecord> mFrameRecords;
    std::optional<int32_t> mLastFinalFrame;
    std::map<int32_t, int32_t> mLastBufferFrame;  // by stream id
    ProtocolCounters mCounters;
    std::vector<Violation> mViolations;
    LatencySeries mShutterLatency;
    LatencySeries mFinalLatency;
};

}  // namespace camera_harness
