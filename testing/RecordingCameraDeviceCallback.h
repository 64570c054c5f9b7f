/*
 * RecordingCameraDeviceCallback: the framework's ICameraDeviceCallback as a test double. It
 * records every call (results, notifications, buffer requests and returns), answers with
 * statuses a test chooses, and, once attached to the result metadata queue through the
 * descriptor the HAL hands out, reads result metadata from the queue inside processCaptureResult
 * in the order the framework does: each result's metadata, then its physical cameras' in order.
 *
 * Fence descriptors are recorded by number only: they belong to the caller and are closed by it
 * after the call. Calls may come from several threads; records are guarded by one lock and a
 * test can wait for a number of calls.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <aidl/android/hardware/camera/device/BufferRequestStatus.h>
#include <aidl/android/hardware/camera/device/CaptureResult.h>
#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamBufferRet.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <fmq/AidlMessageQueue.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kovo::aidl2legacy::testing {

using ResultMetadataQueue =
        android::AidlMessageQueue<int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;
using ResultQueueDescriptor = aidl::android::hardware::common::fmq::MQDescriptor<
        int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

class RecordingCameraDeviceCallback
    : public aidl::android::hardware::camera::device::BnCameraDeviceCallback {
public:
    using BufferRequest = aidl::android::hardware::camera::device::BufferRequest;
    using BufferRequestStatus = aidl::android::hardware::camera::device::BufferRequestStatus;
    using BufferStatus = aidl::android::hardware::camera::device::BufferStatus;
    using CaptureResult = aidl::android::hardware::camera::device::CaptureResult;
    using NotifyMsg = aidl::android::hardware::camera::device::NotifyMsg;
    using StreamBuffer = aidl::android::hardware::camera::device::StreamBuffer;
    using StreamBufferRet = aidl::android::hardware::camera::device::StreamBufferRet;

    struct RecordedBuffer {
        int32_t streamId = 0;
        int64_t bufferId = 0;
        BufferStatus status = BufferStatus::OK;
        bool hasBuffer = false;            // the buffer handle was not empty
        std::vector<int> acquireFenceFds;  // descriptor numbers as given
        std::vector<int> releaseFenceFds;  // descriptor numbers as given
        bool releaseFencesOpenDuringCall = true;
        std::string text;  // the generated toString()
    };

    struct RecordedMetadata {
        int64_t fmqSize = 0;
        std::vector<uint8_t> bytes;  // read from the queue when fmqSize > 0, else the inline bytes
        bool readFailed = false;     // fmqSize > 0 but the queue did not hold that many bytes
    };

    struct RecordedPhysicalMetadata {
        std::string physicalCameraId;
        RecordedMetadata metadata;
    };

    struct RecordedResult {
        int32_t frameNumber = 0;
        int32_t partialResult = 0;
        RecordedMetadata metadata;
        std::vector<RecordedBuffer> outputBuffers;
        RecordedBuffer inputBuffer;
        std::vector<RecordedPhysicalMetadata> physicalMetadata;
        size_t resultsInCall = 0;  // size of the vector this result arrived in
    };

    using StatusMaker = std::function<ndk::ScopedAStatus()>;
    using BufferRequestHandler = std::function<ndk::ScopedAStatus(
            const std::vector<BufferRequest>&, std::vector<StreamBufferRet>*, BufferRequestStatus*)>;

    // Maps the result queue the way the framework does, from a descriptor the HAL handed out.
    void attachResultQueue(const ResultQueueDescriptor& descriptor);

    // Statuses returned from now on (OK by default).
    void setProcessCaptureResultStatus(StatusMaker status);
    void setNotifyStatus(StatusMaker status);
    void setReturnStreamBuffersStatus(StatusMaker status);
    // Answers requestStreamBuffers (by default: OK with no entries).
    void setBufferRequestHandler(BufferRequestHandler handler);

    std::vector<RecordedResult> results() const;
    std::vector<NotifyMsg> notifications() const;
    std::vector<std::vector<BufferRequest>> bufferRequests() const;
    std::vector<std::vector<RecordedBuffer>> returnedBuffers() const;

    // Wait until at least `count` results (or notifications) were recorded; false on timeout.
    bool waitForResults(size_t count, std::chrono::milliseconds timeout);
    bool waitForNotifications(size_t count, std::chrono::milliseconds timeout);

    ndk::ScopedAStatus notify(const std::vector<NotifyMsg>& msgs) override;
    ndk::ScopedAStatus processCaptureResult(const std::vector<CaptureResult>& results) override;
    ndk::ScopedAStatus requestStreamBuffers(const std::vector<BufferRequest>& bufferRequests,
                                            std::vector<StreamBufferRet>* buffers,
                                            BufferRequestStatus* status) override;
    ndk::ScopedAStatus returnStreamBuffers(const std::vector<StreamBuffer>& buffers) override;

private:
    static RecordedBuffer recordBuffer(const StreamBuffer& buffer);
    RecordedMetadata readMetadata(
            int64_t fmqSize,
            const aidl::android::hardware::camera::device::CameraMetadata& inlineMetadata);
    template <typename Predicate>
    bool waitFor(Predicate predicate, std::chrono::milliseconds timeout);

    mutable std::mutex mLock;
    std::condition_variable mCondition;
    std::unique_ptr<ResultMetadataQueue> mResultQueue;
    StatusMaker mResultStatus;
    StatusMaker mNotifyStatus;
    StatusMaker mReturnStatus;
    BufferRequestHandler mBufferRequestHandler;
    std::vector<RecordedResult> mResults;
    std::vector<NotifyMsg> mNotifications;
    std::vector<std::vector<BufferRequest>> mBufferRequests;
    std::vector<std::vector<RecordedBuffer>> mReturnedBuffers;
};

}  // namespace kovo::aidl2legacy::testing
