/*
 * FrameworkCallback: the camera framework's ICameraDeviceCallback. It reads result metadata from
 * the result queue in the framework's order (each result's metadata, then its physical cameras'
 * with fmqMetadataSize > 0), waits on release fences while the adapter still owns them (inside
 * the call), answers the HAL buffer manager's requests from the framework's buffer pool, and
 * hands everything to FrameworkState as plain reports.
 *
 * Made with ndk::SharedRefBase::make; the adapter holds it for the session's life. Device
 * threads call it, possibly several at once: result queue reads are serialised by
 * mResultQueueLock, everything else goes through FrameworkState's lock.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "MetadataQueue.h"

namespace camera_harness {

class FrameworkState;
class TraceFile;
struct ResultReport;

class FrameworkCallback : public aidl::android::hardware::camera::device::BnCameraDeviceCallback {
public:
    using BufferRequest = aidl::android::hardware::camera::device::BufferRequest;
    using BufferRequestStatus = aidl::android::hardware::camera::device::BufferRequestStatus;
    using CaptureResult = aidl::android::hardware::camera::device::CaptureResult;
    using NotifyMsg = aidl::android::hardware::camera::device::NotifyMsg;
    using StreamBuffer = aidl::android::hardware::camera::device::StreamBuffer;
    using StreamBufferRet = aidl::android::hardware::camera::device::StreamBufferRet;

    FrameworkCallback(std::shared_ptr<FrameworkState> state, TraceFile* trace);

    // Attaches the framework's end of the result queue; without one, metadata must come inline.
    void setResultQueue(std::unique_ptr<MetadataQueue> queue);

    ndk::ScopedAStatus notify(const std::vector<NotifyMsg>& msgs) override;
    ndk::ScopedAStatus processCaptureResult(const std::vector<CaptureResult>& results) override;
    ndk::ScopedAStatus requestStreamBuffers(const std::vector<BufferRequest>& bufReqs,
                                            std::vector<StreamBufferRet>* buffers,
                                            BufferRequestStatus* status) override;
    ndk::ScopedAStatus returnStreamBuffers(const std::vector<StreamBuffer>& buffers) override;

private:
    ResultReport unpack(const CaptureResult& result);
    // The metadata bytes of one result or physical camera, from the queue or inline; nullopt
    // (reported) when the queue did not hold what the device announced.
    std::optional<std::vector<uint8_t>> metadataBytes(int32_t frameNumber, int64_t queuedSize,
                                                      const std::vector<uint8_t>& inlineBytes);

    std::shared_ptr<FrameworkState> mState;
    TraceFile* mTrace;
    std::mutex mResultQueueLock;
    std::unique_ptr<MetadataQueue> mResultQueue;  // guarded by mResultQueueLock
};

}  // namespace camera_harness
