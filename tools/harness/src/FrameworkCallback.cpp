#include "FrameworkCallback.h"

#include <aidlcommonsupport/NativeHandle.h>
#include <poll.h>

#include "CpuMeter.h"
#include "FrameworkState.h"
#include "Metadata.h"
#include "TraceFile.h"

namespace camera_harness {

namespace {

using aidl::android::hardware::camera::device::BufferStatus;
using aidl::android::hardware::camera::device::ErrorMsg;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBuffersVal;

// How long a release fence may take to signal once its buffer is back.
constexpr int kFenceTimeoutMs = 1000;

bool fenceSignals(int fd) {
    pollfd entry{fd, POLLIN, 0};
    return poll(&entry, 1, kFenceTimeoutMs) == 1 && (entry.revents & POLLIN) != 0;
}

ReturnedBuffer unpackBuffer(const aidl::android::hardware::camera::device::StreamBuffer& buffer) {
    ReturnedBuffer returned;
    returned.streamId = buffer.streamId;
    returned.bufferId = buffer.bufferId;
    returned.filled = buffer.status == BufferStatus::OK;
    returned.releaseFenceFds = buffer.releaseFence.fds.size();
    if (returned.releaseFenceFds == 1) {
        returned.releaseFenceSignalled = fenceSignals(buffer.releaseFence.fds[0].get());
    }
    return returned;
}

}  // namespace

FrameworkCallback::FrameworkCallback(std::shared_ptr<FrameworkState> state, TraceFile* trace)
    : mState(std::move(state)), mTrace(trace) {}

void FrameworkCallback::setResultQueue(std::unique_ptr<MetadataQueue> queue) {
    std::lock_guard lock(mResultQueueLock);
    mResultQueue = std::move(queue);
}

ndk::ScopedAStatus FrameworkCallback::notify(const std::vector<NotifyMsg>& msgs) {
    CpuMeter::HarnessCallback cpu;
    HarnessSpan span(mTrace, "framework notify");
    if (mState->callbackAfterClose("notify")) return ndk::ScopedAStatus::ok();
    for (const auto& msg : msgs) {
        if (msg.getTag() == NotifyMsg::shutter) {
            const ShutterMsg& shutter = msg.get<NotifyMsg::shutter>();
            mState->shutter(shutter.frameNumber, shutter.timestamp, shutter.readoutTimestamp);
        } else {
            const ErrorMsg& error = msg.get<NotifyMsg::error>();
            mState->error(error.frameNumber, error.errorStreamId,
                          static_cast<int32_t>(error.errorCode));
        }
    }
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus FrameworkCallback::processCaptureResult(const std::vector<CaptureResult>& results) {
    CpuMeter::HarnessCallback cpu;
    HarnessSpan span(mTrace, "framework processCaptureResult",
                     results.empty() ? std::nullopt : std::optional(results[0].frameNumber));
    bool closed = mState->callbackAfterClose("processCaptureResult");
    for (const auto& result : results) {
        // Read even after close, so that the queue stays in step for whatever follows.
        ResultReport report = unpack(result);
        if (!closed) mState->result(report);
    }
    return ndk::ScopedAStatus::ok();
}

ResultReport FrameworkCallback::unpack(const CaptureResult& result) {
    ResultReport report;
    report.frameNumber = result.frameNumber;
    report.partialResult = result.partialResult;
    report.hasInputBuffer = result.inputBuffer.streamId != -1;
    {
        std::lock_guard lock(mResultQueueLock);
        auto bytes = metadataBytes(result.frameNumber, result.fmqResultSize, result.result.metadata);
        report.hasMetadata = !bytes || !bytes->empty();
        if (bytes && !bytes->empty()) {
            const camera_metadata_t* metadata = viewMetadata(*bytes);
            if (metadata == nullptr) {
                mState->report(
                        Rule::kResultMetadata, result.frameNumber,
                        "malformed result metadata (" + std::to_string(bytes->size()) + " bytes)");
            }
            report.sensorTimestamp = findInt64(metadata, ANDROID_SENSOR_TIMESTAMP);
            report.metadataReadable = metadata != nullptr;
        } else {
            report.metadataReadable = bytes.has_value();
        }
        for (const auto& physical : result.physicalCameraMetadata) {
            report.physicalCameraIds.push_back(physical.physicalCameraId);
            auto physicalBytes = metadataBytes(result.frameNumber, physical.fmqMetadataSize,
                                               physical.metadata.metadata);
            if (physicalBytes && viewMetadata(*physicalBytes) == nullptr) {
                mState->report(Rule::kResultMetadata, result.frameNumber,
                               "malformed or empty metadata of physical camera " +
                                       physical.physicalCameraId);
            }
        }
    }
    for (const auto& buffer : result.outputBuffers) report.buffers.push_back(unpackBuffer(buffer));
    return report;
}

std::optional<std::vector<uint8_t>> FrameworkCallback::metadataBytes(
        int32_t frameNumber, int64_t queuedSize, const std::vector<uint8_t>& inlineBytes) {
    if (queuedSize <= 0) {
        if (!inlineBytes.empty()) mState->countResultMetadata(false);
        return inlineBytes;
    }
    std::optional<std::vector<uint8_t>> bytes;
    if (mResultQueue) bytes = mResultQueue->read(static_cast<size_t>(queuedSize));
    if (!bytes) {
        mState->report(Rule::kResultMetadata, frameNumber,
                       "could not read " + std::to_string(queuedSize) +
                               " bytes of metadata from the result queue");
        return std::nullopt;
    }
    mState->countResultMetadata(true);
    return bytes;
}

ndk::ScopedAStatus FrameworkCallback::requestStreamBuffers(const std::vector<BufferRequest>& bufReqs,
                                                           std::vector<StreamBufferRet>* buffers,
                                                           BufferRequestStatus* status) {
    CpuMeter::HarnessCallback cpu;
    HarnessSpan span(mTrace, "framework requestStreamBuffers");
    buffers->clear();
    if (mState->callbackAfterClose("requestStreamBuffers")) {
        *status = BufferRequestStatus::FAILED_CONFIGURING;
        return ndk::ScopedAStatus::ok();
    }
    if (!mState->halBufferManager()) {
        mState->report(Rule::kBufferRequest, std::nullopt,
                       "requestStreamBuffers without the HAL buffer manager");
        *status = BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS;
        return ndk::ScopedAStatus::ok();
    }

    for (const auto& request : bufReqs) {
        if (!mState->knowsStream(request.streamId)) {
            mState->report(Rule::kBufferRequest, std::nullopt,
                           "requestStreamBuffers for unconfigured stream " +
                                   std::to_string(request.streamId));
            *status = BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS;
            return ndk::ScopedAStatus::ok();
        }
    }
    size_t served = 0;
    for (const auto& request : bufReqs) {
        StreamBufferRet ret;
        ret.streamId = request.streamId;
        auto answer = mState->handOutBuffers(request.streamId, request.numBuffersRequested);
        if (auto* leases = std::get_if<std::vector<BufferPool::Lease>>(&answer)) {
            std::vector<StreamBuffer> handedOut;
            for (const auto& lease : *leases) {
                StreamBuffer buffer;
                buffer.streamId = request.streamId;
                buffer.bufferId = lease.bufferId;
                if (lease.firstUse) buffer.buffer = android::dupToAidl(lease.handle);
                buffer.status = BufferStatus::OK;
                handedOut.push_back(std::move(buffer));
            }
            ret.val.set<StreamBuffersVal::buffers>(std::move(handedOut));
            ++served;
        } else {
            bool exceeded = std::get<FrameworkState::HandOutError>(answer) ==
                            FrameworkState::HandOutError::kMaxBufferExceeded;
            ret.val.set<StreamBuffersVal::error>(
                    exceeded ? StreamBufferRequestError::MAX_BUFFER_EXCEEDED
                             : StreamBufferRequestError::NO_BUFFER_AVAILABLE);
        }
        buffers->push_back(std::move(ret));
    }
    *status = served == bufReqs.size() ? BufferRequestStatus::OK
              : served == 0            ? BufferRequestStatus::FAILED_UNKNOWN
                                       : BufferRequestStatus::FAILED_PARTIAL;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus FrameworkCallback::returnStreamBuffers(const std::vector<StreamBuffer>& buffers) {
    CpuMeter::HarnessCallback cpu;
    HarnessSpan span(mTrace, "framework returnStreamBuffers");
    if (mState->callbackAfterClose("returnStreamBuffers")) return ndk::ScopedAStatus::ok();
    if (!mState->halBufferManager()) {
        mState->report(Rule::kBufferRequest, std::nullopt,
                       "returnStreamBuffers without the HAL buffer manager");
    }
    std::vector<ReturnedBuffer> returned;
    for (const auto& buffer : buffers) returned.push_back(unpackBuffer(buffer));
    mState->buffersReturned(returned);
    return ndk::ScopedAStatus::ok();
}

}  // namespace camera_harness
