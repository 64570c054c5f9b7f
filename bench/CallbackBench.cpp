// The callback bridge on the paths every frame of every stream takes: one capture result and one
// shutter, each beside a floor measured in the same run (the same metadata bytes copied into
// shared memory, and one virtual call into the framework).
#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>
#include <benchmark/benchmark.h>
#include <cutils/native_handle.h>
#include <system/camera_metadata.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::CaptureResult;
using aidl::android::hardware::camera::device::NotifyMsg;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRet;
using Callback = Aidl2LegacyCameraDeviceCallback;

constexpr size_t kResultMetadataSize = 8192;
constexpr size_t kPhysicalMetadataSize = 512;
constexpr int kOutputBuffers = 3;
constexpr int kPhysicalCameras = 2;

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// A packet of exactly `size` bytes: one entry and a data area that fills the rest.
MetadataPtr makeMetadata(size_t size) {
    const size_t dataCapacity = size - calculate_camera_metadata_size(1, 0);
    MetadataPtr metadata(allocate_camera_metadata(1, dataCapacity));
    std::vector<int32_t> values(dataCapacity / sizeof(int32_t), 7);
    add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_ORIENTATION, values.data(),
                              values.size());
    return metadata;
}

// The framework side: drains the result queue without copying, as a reader that maps the
// queue would, so that every iteration finds room in it.
class DrainingFramework : public aidl::android::hardware::camera::device::BnCameraDeviceCallback {
public:
    explicit DrainingFramework(const Callback::ResultQueueDescriptor& descriptor)
        : mQueue(descriptor) {}

    ndk::ScopedAStatus notify(const std::vector<NotifyMsg>& msgs) override {
        benchmark::DoNotOptimize(msgs.data());
        return ndk::ScopedAStatus::ok();
    }
    ndk::ScopedAStatus processCaptureResult(const std::vector<CaptureResult>& results) override {
        for (const CaptureResult& result : results) {
            drain(result.fmqResultSize);
            for (const auto& physical : result.physicalCameraMetadata) {
                drain(physical.fmqMetadataSize);
            }
        }
        return ndk::ScopedAStatus::ok();
    }
    ndk::ScopedAStatus requestStreamBuffers(const std::vector<BufferRequest>&,
                                            std::vector<StreamBufferRet>*,
                                            BufferRequestStatus* status) override {
        *status = BufferRequestStatus::FAILED_UNKNOWN;
        return ndk::ScopedAStatus::ok();
    }
    ndk::ScopedAStatus returnStreamBuffers(const std::vector<StreamBuffer>&) override {
        return ndk::ScopedAStatus::ok();
    }

private:
    void drain(int64_t size) {
        if (size <= 0) return;
        Callback::ResultMetadataQueue::MemTransaction transaction;
        if (!mQueue.beginRead(static_cast<size_t>(size), &transaction)) abort();
        benchmark::DoNotOptimize(transaction.getFirstRegion().getAddress());
        mQueue.commitRead(static_cast<size_t>(size));
    }

    Callback::ResultMetadataQueue mQueue;
};

std::shared_ptr<DrainingFramework> attachFramework(Callback::ResultMetadataQueue& queue) {
    return ndk::SharedRefBase::make<DrainingFramework>(queue.dupeDesc());
}

// One configured session's worth of state: three streams with a buffer each, a logical result
// with two physical cameras, and the bridge with its framework.
struct ResultFixture {
    ResultFixture() {
        framework = attachFramework(*queueOf(*bridge));
        bridge->setCallback(framework);

        std::array<camera3_stream_t*, kOutputBuffers> pointers{};
        for (int i = 0; i < kOutputBuffers; ++i) {
            streams[i].id = i;
            streams[i].stream.max_buffers = 8;
            pointers[i] = &streams[i].stream;
            handles[i] = native_handle_create(1, 0);
            handles[i]->data[0] = 100 + i;  // a key only, never used as an fd
            bufferPointers[i] = handles[i];
            buffers[i] = camera3_stream_buffer{&streams[i].stream, &bufferPointers[i],
                                               CAMERA3_BUFFER_STATUS_OK, -1, -1};
        }
        camera3_stream_configuration config{};
        config.num_streams = kOutputBuffers;
        config.streams = pointers.data();
        bridge->endConfiguration(config);

        for (auto& physical : physicalMetadata) physical = makeMetadata(kPhysicalMetadataSize);
        physicalPointers = {physicalMetadata[0].get(), physicalMetadata[1].get()};
        result.frame_number = 1;
        result.result = resultMetadata.get();
        result.num_output_buffers = kOutputBuffers;
        result.output_buffers = buffers.data();
        result.partial_result = 1;
        result.num_physcam_metadata = kPhysicalCameras;
        result.physcam_ids = physicalIds.data();
        result.physcam_metadata = physicalPointers.data();
    }
    ~ResultFixture() {
        for (native_handle_t* handle : handles) native_handle_delete(handle);
    }

    // The bridge's queue, reached through the descriptor it hands out.
    static std::unique_ptr<Callback::ResultMetadataQueue> queueOf(Callback& callback) {
        Callback::ResultQueueDescriptor descriptor;
        callback.getCaptureResultMetadataQueue(&descriptor);
        return std::make_unique<Callback::ResultMetadataQueue>(descriptor);
    }

    std::shared_ptr<Callback> bridge = Callback::create({0, nullptr});
    std::shared_ptr<DrainingFramework> framework;
    std::array<Camera3Stream, kOutputBuffers> streams{};
    std::array<native_handle_t*, kOutputBuffers> handles{};
    std::array<buffer_handle_t, kOutputBuffers> bufferPointers{};
    std::array<camera3_stream_buffer, kOutputBuffers> buffers{};
    MetadataPtr resultMetadata = makeMetadata(kResultMetadataSize);
    std::array<MetadataPtr, kPhysicalCameras> physicalMetadata;
    std::array<const camera_metadata_t*, kPhysicalCameras> physicalPointers{};
    std::array<const char*, kPhysicalCameras> physicalIds{"2", "3"};
    camera3_capture_result result{};
};

void BM_ProcessCaptureResult(benchmark::State& state) {
    ResultFixture fixture;
    const camera3_callback_ops* ops = fixture.bridge.get();
    for (auto _ : state) {
        // The ids the buffer manager recorded when it handed the buffers out.
        for (int i = 0; i < kOutputBuffers; ++i) {
            fixture.bridge->pushBufferId(fixture.bufferPointers[i], 1000 + i, i);
        }
        ops->process_capture_result(ops, &fixture.result);
    }
}
BENCHMARK(BM_ProcessCaptureResult);

// The floor of a result: its metadata bytes written into a queue of the same size and one
// virtual call that hands the framework a ready result with buffers and sizes.
void BM_ProcessCaptureResultFloor(benchmark::State& state) {
    ResultFixture fixture;
    Callback::ResultMetadataQueue queue(Callback::kResultQueueSize, false);
    std::shared_ptr<aidl::android::hardware::camera::device::ICameraDeviceCallback> framework =
            attachFramework(queue);
    std::vector<Callback::CaptureResult> results(1);
    results[0].fmqResultSize = kResultMetadataSize;
    results[0].partialResult = 1;
    results[0].inputBuffer.streamId = -1;
    results[0].outputBuffers.resize(kOutputBuffers);
    for (int i = 0; i < kOutputBuffers; ++i) {
        results[0].outputBuffers[i].streamId = i;
        results[0].outputBuffers[i].bufferId = 1000 + i;
    }
    results[0].physicalCameraMetadata.resize(kPhysicalCameras);
    for (int i = 0; i < kPhysicalCameras; ++i) {
        results[0].physicalCameraMetadata[i].physicalCameraId = fixture.physicalIds[i];
        results[0].physicalCameraMetadata[i].fmqMetadataSize = kPhysicalMetadataSize;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(framework.get());
        queue.write(reinterpret_cast<const int8_t*>(fixture.resultMetadata.get()),
                    kResultMetadataSize);
        for (const camera_metadata_t* physical : fixture.physicalPointers) {
            queue.write(reinterpret_cast<const int8_t*>(physical), kPhysicalMetadataSize);
        }
        framework->processCaptureResult(results);
    }
}
BENCHMARK(BM_ProcessCaptureResultFloor);

void BM_NotifyShutter(benchmark::State& state) {
    ResultFixture fixture;
    const camera3_callback_ops* ops = fixture.bridge.get();
    camera3_notify_msg msg{};
    msg.type = CAMERA3_MSG_SHUTTER;
    msg.message.shutter = {1, 1000000, 1500000};
    for (auto _ : state) {
        ops->notify(ops, &msg);
    }
}
BENCHMARK(BM_NotifyShutter);

// The floor of a shutter: one virtual call with a ready message.
void BM_NotifyShutterFloor(benchmark::State& state) {
    ResultFixture fixture;
    std::shared_ptr<aidl::android::hardware::camera::device::ICameraDeviceCallback> framework =
            fixture.framework;
    std::vector<Callback::NotifyMsg> msgs{ShutterMsg{1, 1000000, 1500000}};
    for (auto _ : state) {
        benchmark::DoNotOptimize(framework.get());
        framework->notify(msgs);
    }
}
BENCHMARK(BM_NotifyShutterFloor);

}  // namespace
}  // namespace kovo::aidl2legacy
