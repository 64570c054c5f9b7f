/*
 * FrameworkState: what the camera framework knows about one open session, shared by the thread
 * that submits requests and the device threads that deliver callbacks. It puts the protocol
 * checker, the buffer pool and the pattern checks behind one lock, wakes the submitter when
 * requests complete or buffers come back, and counts how metadata travelled.
 *
 * Owned through std::shared_ptr by the session driver and by the framework callback (which the
 * adapter may keep a little longer than the session). Every method takes mLock; none calls out
 * of the harness while holding it.
 */
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "BufferPool.h"
#include "Options.h"
#include "ProtocolChecker.h"

namespace camera_harness {

// One configured stream as the framework keeps it.
struct ConfiguredStream {
    int32_t streamId = 0;
    StreamDescription description;
    size_t bufferSize = 0;
    int32_t maxBuffers = 0;  // from the device's HalStream
};

// How metadata travelled: through the fast message queues or inline in the call.
struct TransportCounters {
    int64_t resultMetadataQueued = 0;
    int64_t resultMetadataInline = 0;
    int64_t settingsQueued = 0;
    int64_t settingsInline = 0;
};

// What the progress line and the summary need, taken under the lock.
struct StateSnapshot {
    ProtocolCounters protocol;
    TransportCounters transport;
    size_t violations = 0;
    size_t inFlight = 0;
};

class FrameworkState {
public:
    enum class HandOutError { kNoBufferAvailable, kMaxBufferExceeded };

    FrameworkState(int32_t partialResultCount, bool halBufferManager, BufferLayout layout,
                   bool checkPatterns);

    bool halBufferManager() const { return mHalBufferManager; }
    void setReadoutRule(ReadoutRule rule);
    // Keeps a record of every completed frame.
    void recordFrames();

    // A new configuration (nothing in flight). Returns the buffers of streams that went away.
    // Shutters are held `minFrameDurationNs` apart (0: not judged).
    std::vector<CachedBuffer> configure(const std::vector<ConfiguredStream>& streams,
                                        int64_t minFrameDurationNs = 0);
    std::vector<ConfiguredStream> streams() const;
    bool knowsStream(int32_t streamId) const;

    // Waits until fewer than `depth` requests are in flight. False when nothing completed for
    // `stallTimeout` while waiting.
    bool waitForRoom(size_t depth, std::chrono::milliseconds stallTimeout);
    // Waits until nothing is in flight; false as above.
    bool waitUntilIdle(std::chrono::milliseconds stallTimeout);

    // A buffer of the stream for a request, waiting (bounded by `stallTimeout`) for one to come
    // back when maxBuffers are out.
    std::optional<BufferPool::Lease> acquireBuffer(int32_t streamId,
                                                   std::chrono::milliseconds stallTimeout);
    // Buffers freed by the framework (after a reconfiguration or at the end): the ones returned
    // must be named in BufferCache entries.
    std::vector<CachedBuffer> discardFreeBuffers(int32_t streamId, size_t count);
    std::vector<CachedBuffer> discardAllFreeBuffers();
    // Buffers taken for requests that were never sent.
    void releaseBuffers(const std::vector<int64_t>& bufferIds);
    // Frees every buffer, also those that never came back (the session is closed).
    void dropAllBuffers();

    void requestSubmitted(const SubmittedRequest& request, Clock::time_point when);
    void requestsRejected(const std::vector<int32_t>& frameNumbers);
    void expectErrorsInFlight();
    void checkNothingInFlight(const std::string& after);
    void finish();
    // From now on every callback breaks no-callback-after-close.
    void markClosed();
    // A new session on the device: callbacks are welcome again.
    void markOpen();

    // Device callbacks, already unpacked by the framework callback.
    void shutter(int32_t frameNumber, int64_t timestamp, int64_t readoutTimestamp);
    void error(int32_t frameNumber, int32_t streamId, int32_t errorCode);
    void result(const ResultReport& report);
    // Buffers of a configured stream for the device's buffer manager.
    std::variant<std::vector<BufferPool::Lease>, HandOutError> handOutBuffers(int32_t streamId,
                                                                              int32_t count);
    void buffersReturned(const std::vector<ReturnedBuffer>& buffers);
    // True (and a violation) when the session was closed.
    bool callbackAfterClose(const char* callback);

    void report(Rule rule, std::optional<int32_t> frameNumber, std::string what);
    void countResultMetadata(bool queued);
    void countSettings(bool queued);

    StateSnapshot snapshot() const;
    std::vector<Violation> violations() const;
    LatencySeries shutterLatency() const;
    LatencySeries finalLatency() const;
    std::optional<ShutterSpan> shutterSpan() const;
    std::vector<FrameRecord> frameRecords() const;

private:
    const ConfiguredStream* findStream(int32_t streamId) const;
    std::optional<std::pair<Rule, std::string>> inspectBuffer(int64_t bufferId, int32_t streamId,
                                                              int32_t frameNumber) const;
    void releaseLocked(const std::vector<int64_t>& bufferIds);
    bool waitLocked(std::unique_lock<std::mutex>& lock, std::chrono::milliseconds stallTimeout,
                    const std::function<bool()>& ready);

    const bool mHalBufferManager;
    const bool mCheckPatterns;
    mutable std::mutex mLock;
    std::condition_variable mChanged;  // a request completed or a buffer came back
    ProtocolChecker mChecker;
    BufferPool mPool;
    std::vector<ConfiguredStream> mStreams;
    TransportCounters mTransport;
    bool mClosed = false;
};

}  // namespace camera_harness
