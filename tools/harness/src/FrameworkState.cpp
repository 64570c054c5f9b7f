#include "FrameworkState.h"

#include <hardware/camera3.h>
#include <system/graphics.h>
#include <virtual_camera/Pattern.h>

#include <cstring>

namespace camera_harness {

FrameworkState::FrameworkState(int32_t partialResultCount, bool halBufferManager,
                               BufferLayout layout, bool checkPatterns)
    : mHalBufferManager(halBufferManager),
      mCheckPatterns(checkPatterns),
      mChecker(partialResultCount, halBufferManager),
      mPool(layout) {}

void FrameworkState::setReadoutRule(ReadoutRule rule) {
    std::lock_guard lock(mLock);
    mChecker.setReadoutRule(rule);
}

void FrameworkState::recordFrames() {
    std::lock_guard lock(mLock);
    mChecker.recordFrames();
}

std::vector<CachedBuffer> FrameworkState::configure(const std::vector<ConfiguredStream>& streams,
                                                    int64_t minFrameDurationNs) {
    std::lock_guard lock(mLock);
    mStreams = streams;
    std::vector<CheckedStream> checked;
    std::vector<PoolStream> pooled;
    for (const auto& stream : streams) {
        checked.push_back({stream.streamId, stream.description.physicalCameraId});
        pooled.push_back({stream.streamId, stream.description.format, stream.bufferSize});
    }
    mChecker.configureStreams(checked, minFrameDurationNs);
    return mPool.configure(pooled);
}

std::vector<ConfiguredStream> FrameworkState::streams() const {
    std::lock_guard lock(mLock);
    return mStreams;
}

bool FrameworkState::knowsStream(int32_t streamId) const {
    std::lock_guard lock(mLock);
    return findStream(streamId) != nullptr;
}

bool FrameworkState::waitLocked(std::unique_lock<std::mutex>& lock,
                                std::chrono::milliseconds stallTimeout,
                                const std::function<bool()>& ready) {
    while (!ready()) {
        if (mChanged.wait_for(lock, stallTimeout) == std::cv_status::timeout && !ready()) {
            return false;
        }
    }
    return true;
}

bool FrameworkState::waitForRoom(size_t depth, std::chrono::milliseconds stallTimeout) {
    std::unique_lock lock(mLock);
    return waitLocked(lock, stallTimeout, [&] { return mChecker.inFlight() < depth; });
}

bool FrameworkState::waitUntilIdle(std::chrono::milliseconds stallTimeout) {
    std::unique_lock lock(mLock);
    return waitLocked(lock, stallTimeout, [&] { return mChecker.inFlight() == 0; });
}

std::optional<BufferPool::Lease> FrameworkState::acquireBuffer(
        int32_t streamId, std::chrono::milliseconds stallTimeout) {
    std::unique_lock lock(mLock);
    const ConfiguredStream* stream = findStream(streamId);
    if (stream == nullptr) return std::nullopt;
    size_t limit = static_cast<size_t>(stream->maxBuffers);
    std::optional<BufferPool::Lease> lease;
    waitLocked(lock, stallTimeout, [&] {
        lease = mPool.acquire(streamId, limit);
        return lease.has_value() || mPool.outstanding(streamId) < limit;
    });
    return lease;
}

std::vector<CachedBuffer> FrameworkState::discardFreeBuffers(int32_t streamId, size_t count) {
    std::lock_guard lock(mLock);
    return mPool.discardFree(streamId, count);
}

std::vector<CachedBuffer> FrameworkState::discardAllFreeBuffers() {
    std::lock_guard lock(mLock);
    return mPool.discardAllFree();
}

void FrameworkState::releaseBuffers(const std::vector<int64_t>& bufferIds) {
    std::lock_guard lock(mLock);
    releaseLocked(bufferIds);
    mChanged.notify_all();
}

void FrameworkState::dropAllBuffers() {
    std::lock_guard lock(mLock);
    mPool.clear();
}

void FrameworkState::requestSubmitted(const SubmittedRequest& request, Clock::time_point when) {
    std::lock_guard lock(mLock);
    mChecker.requestSubmitted(request, when);
}

void FrameworkState::requestsRejected(const std::vector<int32_t>& frameNumbers) {
    std::lock_guard lock(mLock);
    releaseLocked(mChecker.requestsRejected(frameNumbers));
    mChanged.notify_all();
}

void FrameworkState::expectErrorsInFlight() {
    std::lock_guard lock(mLock);
    mChecker.expectErrorsInFlight();
}

void FrameworkState::checkNothingInFlight(const std::string& after) {
    std::lock_guard lock(mLock);
    mChecker.checkNothingInFlight(after);
}

void FrameworkState::finish() {
    std::lock_guard lock(mLock);
    mChecker.finish();
}

void FrameworkState::markClosed() {
    std::lock_guard lock(mLock);
    mClosed = true;
}

void FrameworkState::markOpen() {
    std::lock_guard lock(mLock);
    mClosed = false;
    mChecker.newSession();
}

bool FrameworkState::callbackAfterClose(const char* callback) {
    std::lock_guard lock(mLock);
    if (!mClosed) return false;
    mChecker.report(Rule::kNoCallbackAfterClose, std::nullopt,
                    std::string(callback) + " after close returned");
    return true;
}

void FrameworkState::shutter(int32_t frameNumber, int64_t timestamp, int64_t readoutTimestamp) {
    std::lock_guard lock(mLock);
    mChecker.shutter(frameNumber, timestamp, Clock::now(), readoutTimestamp);
}

void FrameworkState::error(int32_t frameNumber, int32_t streamId, int32_t errorCode) {
    std::lock_guard lock(mLock);
    mChecker.error(frameNumber, streamId, errorCode);
    mChanged.notify_all();
}

void FrameworkState::result(const ResultReport& report) {
    std::lock_guard lock(mLock);
    auto inspect = [this](int64_t bufferId, int32_t streamId, int32_t frameNumber) {
        return inspectBuffer(bufferId, streamId, frameNumber);
    };
    releaseLocked(mChecker.result(report, inspect, Clock::now()));
    mChanged.notify_all();
}

std::variant<std::vector<BufferPool::Lease>, FrameworkState::HandOutError>
FrameworkState::handOutBuffers(int32_t streamId, int32_t count) {
    std::lock_guard lock(mLock);
    const ConfiguredStream* stream = findStream(streamId);
    if (stream == nullptr || count < 1) {
        mChecker.report(Rule::kBufferRequest, std::nullopt,
                        "requestStreamBuffers asked for " + std::to_string(count) +
                                " buffers of stream " + std::to_string(streamId));
        return HandOutError::kNoBufferAvailable;
    }
    size_t held = mChecker.buffersHeld(streamId);
    size_t limit = static_cast<size_t>(stream->maxBuffers);
    if (held + static_cast<size_t>(count) > limit) {
        mChecker.report(Rule::kBufferRequest, std::nullopt,
                        "requestStreamBuffers asked for " + std::to_string(count) +
                                " buffers of stream " + std::to_string(streamId) + " holding " +
                                std::to_string(held) + " of at most " + std::to_string(limit));
        return HandOutError::kMaxBufferExceeded;
    }
    std::vector<BufferPool::Lease> leases;
    while (leases.size() < static_cast<size_t>(count)) {
        auto lease = mPool.acquire(streamId, limit);
        if (!lease) {
            for (const auto& taken : leases) mPool.release(taken.bufferId);
            return HandOutError::kNoBufferAvailable;
        }
        leases.push_back(*lease);
    }
    std::vector<int64_t> ids;
    for (const auto& lease : leases) ids.push_back(lease.bufferId);
    mChecker.buffersHandedOut(streamId, ids);
    return leases;
}

void FrameworkState::buffersReturned(const std::vector<ReturnedBuffer>& buffers) {
    std::lock_guard lock(mLock);
    releaseLocked(mChecker.buffersReturned(buffers));
    mChanged.notify_all();
}

void FrameworkState::report(Rule rule, std::optional<int32_t> frameNumber, std::string what) {
    std::lock_guard lock(mLock);
    mChecker.report(rule, frameNumber, std::move(what));
}

void FrameworkState::countResultMetadata(bool queued) {
    std::lock_guard lock(mLock);
    ++(queued ? mTransport.resultMetadataQueued : mTransport.resultMetadataInline);
}

void FrameworkState::countSettings(bool queued) {
    std::lock_guard lock(mLock);
    ++(queued ? mTransport.settingsQueued : mTransport.settingsInline);
}

StateSnapshot FrameworkState::snapshot() const {
    std::lock_guard lock(mLock);
    return StateSnapshot{mChecker.counters(), mTransport, mChecker.violations().size(),
                         mChecker.inFlight()};
}

std::vector<FrameRecord> FrameworkState::frameRecords() const {
    std::lock_guard lock(mLock);
    return mChecker.frameRecords();
}

std::vector<Violation> FrameworkState::violations() const {
    std::lock_guard lock(mLock);
    return mChecker.violations();
}

LatencySeries FrameworkState::shutterLatency() const {
    std::lock_guard lock(mLock);
    return mChecker.shutterLatency();
}

LatencySeries FrameworkState::finalLatency() const {
    std::lock_guard lock(mLock);
    return mChecker.finalLatency();
}

std::optional<ShutterSpan> FrameworkState::shutterSpan() const {
    std::lock_guard lock(mLock);
    return mChecker.shutterSpan();
}

const ConfiguredStream* FrameworkState::findStream(int32_t streamId) const {
    for (const auto& stream : mStreams) {
        if (stream.streamId == streamId) return &stream;
    }
    return nullptr;
}

namespace {

// What is wrong with a BLOB buffer as a JPEG: start and end of image, and the trailer's id and
// size. Nullopt when it is right.
std::optional<std::string> checkJpeg(const uint8_t* data, size_t size) {
    camera3_jpeg_blob_t blob;
    if (size < sizeof(blob) + 4) return "too small for a JPEG";
    memcpy(&blob, data + size - sizeof(blob), sizeof(blob));
    if (blob.jpeg_blob_id != CAMERA3_JPEG_BLOB_ID) {
        return "trailer id " + std::to_string(blob.jpeg_blob_id) + ", not CAMERA3_JPEG_BLOB_ID";
    }
    if (blob.jpeg_size < 4 || blob.jpeg_size > size - sizeof(blob)) {
        return "trailer size " + std::to_string(blob.jpeg_size) + " outside a buffer of " +
               std::to_string(size) + " bytes";
    }
    if (data[0] != 0xFF || data[1] != 0xD8) return "no start of image";
    if (data[blob.jpeg_size - 2] != 0xFF || data[blob.jpeg_size - 1] != 0xD9) {
        return "no end of image at " + std::to_string(blob.jpeg_size - 2);
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::pair<Rule, std::string>> FrameworkState::inspectBuffer(
        int64_t bufferId, int32_t streamId, int32_t frameNumber) const {
    const std::string name = "buffer " + std::to_string(bufferId);
    const ConfiguredStream* stream = findStream(streamId);
    auto contents = mPool.contents(bufferId);
    if (stream == nullptr || !contents) {
        return std::make_pair(Rule::kBufferPattern, name + " unmapped");
    }
    const auto* bytes = static_cast<const uint8_t*>(contents->data);
    if (stream->description.format == HAL_PIXEL_FORMAT_BLOB) {
        if (auto problem = checkJpeg(bytes, contents->size)) {
            return std::make_pair(Rule::kJpegBlob, name + ": " + *problem);
        }
    }
    if (!mCheckPatterns) return std::nullopt;
    virtual_camera::PatternStream pattern{static_cast<uint32_t>(stream->description.width),
                                          static_cast<uint32_t>(stream->description.height),
                                          stream->description.format,
                                          stream->description.physicalCameraId};
    auto check = virtual_camera::checkPattern(contents->data, contents->size,
                                              static_cast<uint32_t>(frameNumber), pattern);
    switch (check.status) {
        case virtual_camera::PatternStatus::kOk:
            return std::nullopt;
        case virtual_camera::PatternStatus::kWrongFrame:
            return std::make_pair(Rule::kBufferPattern,
                                  name + " holds frame " + std::to_string(check.foundFrameNumber));
        case virtual_camera::PatternStatus::kDamaged:
            return std::make_pair(Rule::kBufferPattern,
                                  name + " damaged at offset " + std::to_string(check.offset));
        default:
            return std::make_pair(Rule::kBufferPattern,
                                  name + " " + virtual_camera::toString(check.status));
    }
}

void FrameworkState::releaseLocked(const std::vector<int64_t>& bufferIds) {
    for (int64_t id : bufferIds) mPool.release(id);
}

}  // namespace camera_harness
