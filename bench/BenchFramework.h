/*
 * The framework side of the benchmarks: drains the result queue as a reader that maps it would
 * (without copying), and answers buffer requests with one buffer per request, as a framework
 * whose buffers the cache already holds: the handle travels only while `sendHandles` is set.
 * Single-threaded use only.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>

#include <cstdint>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"

namespace kovo::aidl2legacy::bench {

class BenchFramework : public aidl::android::hardware::camera::device::BnCameraDeviceCallback {
public:
    using Callback = Aidl2LegacyCameraDeviceCallback;

    ~BenchFramework() override;

    // Maps the queue the descriptor names; the benchmark keeps it drained.
    void attachResultQueue(const Callback::ResultQueueDescriptor& descriptor);
    // The buffer id handed out for a stream.
    static int64_t bufferIdOf(int32_t streamId) { return 100 + streamId; }

    ndk::ScopedAStatus notify(const std::vector<Callback::NotifyMsg>& msgs) override;
    ndk::ScopedAStatus processCaptureResult(
            const std::vector<Callback::CaptureResult>& results) override;
    ndk::ScopedAStatus requestStreamBuffers(
            const std::vector<Callback::BufferRequest>& requests,
            std::vector<Callback::StreamBufferRet>* answers,
            aidl::android::hardware::camera::device::BufferRequestStatus* status) override;
    ndk::ScopedAStatus returnStreamBuffers(
            const std::vector<Callback::StreamBuffer>& buffers) override;

    // Set while the next answers should carry buffer handles for the cache to import.
    bool sendHandles = false;

private:
    void drain(int64_t size);

    std::unique_ptr<Callback::ResultMetadataQueue> mQueue;
    int mBufferFd = -1;
};

}  // namespace kovo::aidl2legacy::bench
