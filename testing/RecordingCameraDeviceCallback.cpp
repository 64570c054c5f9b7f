#include "RecordingCameraDeviceCallback.h"

#include <fcntl.h>

#include <utility>

namespace kovo::aidl2legacy::testing {

using aidl::android::hardware::camera::device::CameraMetadata;

namespace {

ndk::ScopedAStatus statusOf(const RecordingCameraDeviceCallback::StatusMaker& maker) {
    return maker ? maker() : ndk::ScopedAStatus::ok();
}

}  // namespace

void RecordingCameraDeviceCallback::attachResultQueue(const ResultQueueDescriptor& descriptor) {
    std::lock_guard<std::mutex> guard(mLock);
    mResultQueue = std::make_unique<ResultMetadataQueue>(descriptor);
}

void RecordingCameraDeviceCallback::setProcessCaptureResultStatus(StatusMaker status) {
    std::lock_guard<std::mutex> guard(mLock);
    mResultStatus = std::move(status);
}

void RecordingCameraDeviceCallback::setNotifyStatus(StatusMaker status) {
    std::lock_guard<std::mutex> guard(mLock);
    mNotifyStatus = std::move(status);
}

void RecordingCameraDeviceCallback::setReturnStreamBuffersStatus(StatusMaker status) {
    std::lock_guard<std::mutex> guard(mLock);
    mReturnStatus = std::move(status);
}

void RecordingCameraDeviceCallback::setBufferRequestHandler(BufferRequestHandler handler) {
    std::lock_guard<std::mutex> guard(mLock);
    mBufferRequestHandler = std::move(handler);
}

std::vector<RecordingCameraDeviceCallback::RecordedResult> RecordingCameraDeviceCallback::results()
        const {
    std::lock_guard<std::mutex> guard(mLock);
    return mResults;
}

std::vector<RecordingCameraDeviceCallback::NotifyMsg> RecordingCameraDeviceCallback::notifications()
        const {
    std::lock_guard<std::mutex> guard(mLock);
    return mNotifications;
}

std::vector<std::vector<RecordingCameraDeviceCallback::BufferRequest>>
RecordingCameraDeviceCallback::bufferRequests() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mBufferRequests;
}

std::vector<std::vector<RecordingCameraDeviceCallback::RecordedBuffer>>
RecordingCameraDeviceCallback::returnedBuffers() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mReturnedBuffers;
}

template <typename Predicate>
bool RecordingCameraDeviceCallback::waitFor(Predicate predicate, std::chrono::milliseconds timeout) {
    std::unique_lock<std::mutex> lock(mLock);
    return mCondition.wait_for(lock, timeout, predicate);
}

bool RecordingCameraDeviceCallback::waitForResults(size_t count, std::chrono::milliseconds timeout) {
    return waitFor([&] { return mResults.size() >= count; }, timeout);
}

bool RecordingCameraDeviceCallback::waitForNotifications(size_t count,
                                                         std::chrono::milliseconds timeout) {
    return waitFor([&] { return mNotifications.size() >= count; }, timeout);
}

RecordingCameraDeviceCallback::RecordedBuffer RecordingCameraDeviceCallback::recordBuffer(
        const StreamBuffer& buffer) {
    RecordedBuffer record;
    record.streamId = buffer.streamId;
    record.bufferId = buffer.bufferId;
    record.status = buffer.status;
    record.hasBuffer = !buffer.buffer.fds.empty() || !buffer.buffer.ints.empty();
    for (const auto& fd : buffer.acquireFence.fds) record.acquireFenceFds.push_back(fd.get());
    for (const auto& fd : buffer.releaseFence.fds) {
        record.releaseFenceFds.push_back(fd.get());
        if (fcntl(fd.get(), F_GETFD) < 0) record.releaseFencesOpenDuringCall = false;
    }
    record.text = buffer.toString();
    return record;
}

RecordingCameraDeviceCallback::RecordedMetadata RecordingCameraDeviceCallback::readMetadata(
        int64_t fmqSize, const CameraMetadata& inlineMetadata) {
    RecordedMetadata record;
    record.fmqSize = fmqSize;
    if (fmqSize <= 0) {
        record.bytes = inlineMetadata.metadata;
        return record;
    }
    record.bytes.resize(static_cast<size_t>(fmqSize));
    record.readFailed = mResultQueue == nullptr ||
                        !mResultQueue->read(reinterpret_cast<int8_t*>(record.bytes.data()),
                                            record.bytes.size());
    if (record.readFailed) record.bytes.clear();
    return record;
}

ndk::ScopedAStatus RecordingCameraDeviceCallback::notify(const std::vector<NotifyMsg>& msgs) {
    std::lock_guard<std::mutex> guard(mLock);
    mNotifications.insert(mNotifications.end(), msgs.begin(), msgs.end());
    mCondition.notify_all();
    return statusOf(mNotifyStatus);
}

ndk::ScopedAStatus RecordingCameraDeviceCallback::processCaptureResult(
        const std::vector<CaptureResult>& results) {
    std::lock_guard<std::mutex> guard(mLock);
    for (const CaptureResult& result : results) {
        RecordedResult record;
        record.frameNumber = result.frameNumber;
        record.partialResult = result.partialResult;
        record.metadata = readMetadata(result.fmqResultSize, result.result);
        for (const auto& physical : result.physicalCameraMetadata) {
            record.physicalMetadata.push_back(
                    {physical.physicalCameraId,
                     readMetadata(physical.fmqMetadataSize, physical.metadata)});
        }
        for (const StreamBuffer& buffer : result.outputBuffers) {
            record.outputBuffers.push_back(recordBuffer(buffer));
        }
        record.inputBuffer = recordBuffer(result.inputBuffer);
        record.resultsInCall = results.size();
        mResults.push_back(std::move(record));
    }
    mCondition.notify_all();
    return statusOf(mResultStatus);
}

ndk::ScopedAStatus RecordingCameraDeviceCallback::requestStreamBuffers(
        const std::vector<BufferRequest>& bufferRequests, std::vector<StreamBufferRet>* buffers,
        BufferRequestStatus* status) {
    BufferRequestHandler handler;
    {
        std::lock_guard<std::mutex> guard(mLock);
        mBufferRequests.push_back(bufferRequests);
        handler = mBufferRequestHandler;
        mCondition.notify_all();
    }
    if (!handler) {
        *status = BufferRequestStatus::OK;
        return ndk::ScopedAStatus::ok();
    }
    return handler(bufferRequests, buffers, status);
}

ndk::ScopedAStatus RecordingCameraDeviceCallback::returnStreamBuffers(
        const std::vector<StreamBuffer>& buffers) {
    std::lock_guard<std::mutex> guard(mLock);
    std::vector<RecordedBuffer> records;
    for (const StreamBuffer& buffer : buffers) records.push_back(recordBuffer(buffer));
    mReturnedBuffers.push_back(std::move(records));
    mCondition.notify_all();
    return statusOf(mReturnStatus);
}

}  // namespace kovo::aidl2legacy::testing
