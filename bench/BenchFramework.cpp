#include "BenchFramework.h"

#include <aidl/android/hardware/camera/device/StreamBuffersVal.h>
#include <benchmark/benchmark.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdlib>

namespace kovo::aidl2legacy::bench {

using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::StreamBuffersVal;

BenchFramework::~BenchFramework() {
    if (mBufferFd >= 0) close(mBufferFd);
}

void BenchFramework::attachResultQueue(const Callback::ResultQueueDescriptor& descriptor) {
    mQueue = std::make_unique<Callback::ResultMetadataQueue>(descriptor);
}

ndk::ScopedAStatus BenchFramework::notify(const std::vector<Callback::NotifyMsg>& msgs) {
    benchmark::DoNotOptimize(msgs.data());
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus BenchFramework::processCaptureResult(
        const std::vector<Callback::CaptureResult>& results) {
    for (const Callback::CaptureResult& result : results) {
        drain(result.fmqResultSize);
        for (const auto& physical : result.physicalCameraMetadata) {
            drain(physical.fmqMetadataSize);
        }
    }
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus BenchFramework::requestStreamBuffers(
        const std::vector<Callback::BufferRequest>& requests,
        std::vector<Callback::StreamBufferRet>* answers, BufferRequestStatus* status) {
    answers->resize(requests.size());
    for (size_t i = 0; i < requests.size(); ++i) {
        std::vector<Callback::StreamBuffer> buffers(1);
        buffers[0].streamId = requests[i].streamId;
        buffers[0].bufferId = bufferIdOf(requests[i].streamId);
        if (sendHandles) {
            if (mBufferFd < 0) mBufferFd = eventfd(0, EFD_CLOEXEC);
            buffers[0].buffer.fds.emplace_back(dup(mBufferFd));
        }
        (*answers)[i].streamId = requests[i].streamId;
        (*answers)[i].val.set<StreamBuffersVal::buffers>(std::move(buffers));
    }
    *status = BufferRequestStatus::OK;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus BenchFramework::returnStreamBuffers(
        const std::vector<Callback::StreamBuffer>& buffers) {
    benchmark::DoNotOptimize(buffers.data());
    return ndk::ScopedAStatus::ok();
}

void BenchFramework::drain(int64_t size) {
    if (size <= 0) return;
    Callback::ResultMetadataQueue::MemTransaction transaction;
    if (!mQueue->beginRead(static_cast<size_t>(size), &transaction)) abort();
    benchmark::DoNotOptimize(transaction.getFirstRegion().getAddress());
    mQueue->commitRead(static_cast<size_t>(size));
}

}  // namespace kovo::aidl2legacy::bench
