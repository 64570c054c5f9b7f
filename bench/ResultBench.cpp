// Capture results through the callback bridge: with and without buffer-manager ids, 1, 3 and 8
// buffers, 1, 8, 64 and 512 KiB of metadata, each with two 512-byte physical camera metadata.
// The ids are recorded in paused stretches: request-side work stays out of the result.
#include <benchmark/benchmark.h>
#include <cutils/native_handle.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "AllocationCounter.h"
#include "BenchFramework.h"
#include "BenchSupport.h"

namespace kovo::aidl2legacy::bench {
namespace {

using Callback = Aidl2LegacyCameraDeviceCallback;

constexpr size_t kPhysicalMetadataSize = 512;
constexpr int kPhysicalCameras = 2;
// Frames whose ids are recorded in one paused stretch.
constexpr size_t kFramesPerStretch = 256;

// One stream per buffer, and kFramesPerStretch frames of buffers (one frame when ids are not
// recorded), the bridge with its framework.
struct ResultFixture {
    ResultFixture(bool withIds, int bufferCount, size_t metadataSize)
        : streams(bufferCount),
          frames(withIds ? kFramesPerStretch : 1),
          resultMetadata(makeMetadata(metadataSize)) {
        framework->attachResultQueue(descriptorOf(*bridge));
        bridge->setCallback(framework);

        std::vector<camera3_stream_t*> pointers;
        for (int i = 0; i < bufferCount; ++i) {
            streams[i].id = i;
            streams[i].stream.max_buffers = 8;
            pointers.push_back(&streams[i].stream);
        }
        camera3_stream_configuration config{};
        config.num_streams = static_cast<uint32_t>(bufferCount);
        config.streams = pointers.data();
        bridge->endConfiguration(config);

        for (auto& physical : physicalMetadata) physical = makeMetadata(kPhysicalMetadataSize);
        physicalPointers = {physicalMetadata[0].get(), physicalMetadata[1].get()};
        for (size_t f = 0; f < frames.size(); ++f) {
            Frame& frame = frames[f];
            for (int i = 0; i < bufferCount; ++i) {
                native_handle_t* handle = native_handle_create(1, 0);
                handle->data[0] = static_cast<int>(1000 + f * 16 + i);  // a key, never an fd
                frame.handles.push_back(handle);
            }
            frame.pointers.assign(frame.handles.begin(), frame.handles.end());
            for (int i = 0; i < bufferCount; ++i) {
                frame.buffers.push_back(
                        {&streams[i].stream, &frame.pointers[i], CAMERA3_BUFFER_STATUS_OK, -1, -1});
            }
            frame.result.frame_number = static_cast<uint32_t>(f);
            frame.result.result = resultMetadata.get();
            frame.result.num_output_buffers = static_cast<uint32_t>(bufferCount);
            frame.result.output_buffers = frame.buffers.data();
            frame.result.partial_result = 1;
            frame.result.num_physcam_metadata = kPhysicalCameras;
            frame.result.physcam_ids = physicalIds.data();
            frame.result.physcam_metadata = physicalPointers.data();
        }
    }
    ~ResultFixture() {
        for (Frame& frame : frames) {
            for (native_handle_t* handle : frame.handles) native_handle_delete(handle);
        }
    }

    static Callback::ResultQueueDescriptor descriptorOf(Callback& callback) {
        Callback::ResultQueueDescriptor descriptor;
        callback.getCaptureResultMetadataQueue(&descriptor);
        return descriptor;
    }
    // The ids the buffer manager recorded when it handed every frame's buffers out.
    void recordIds() {
        for (Frame& frame : frames) {
            for (size_t i = 0; i < frame.pointers.size(); ++i) {
                bridge->pushBufferId(frame.pointers[i], 1000 + i, static_cast<int>(i));
            }
        }
    }

    struct Frame {
        std::vector<native_handle_t*> handles;
        std::vector<buffer_handle_t> pointers;
        std::vector<camera3_stream_buffer> buffers;
        camera3_capture_result result{};
    };

    std::shared_ptr<Callback> bridge = Callback::create({0, nullptr});
    std::shared_ptr<BenchFramework> framework = ndk::SharedRefBase::make<BenchFramework>();
    std::vector<Camera3Stream> streams;
    std::vector<Frame> frames;
    MetadataPtr resultMetadata;
    std::array<MetadataPtr, kPhysicalCameras> physicalMetadata;
    std::array<const camera_metadata_t*, kPhysicalCameras> physicalPointers{};
    std::array<const char*, kPhysicalCameras> physicalIds{"2", "3"};
};

// Arguments: ids recorded (0/1), buffers, metadata KiB.
void resultArguments(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"ids", "buffers", "KiB"});
    for (int ids : {0, 1}) {
        for (int buffers : {1, 3, 8}) {
            for (int kib : {1, 8, 64, 512}) bench->Args({ids, buffers, kib});
        }
    }
}

void BM_Result(benchmark::State& state) {
    const bool withIds = state.range(0) != 0;
    ResultFixture fixture(withIds, static_cast<int>(state.range(1)),
                          static_cast<size_t>(state.range(2)) * 1024);
    const camera3_callback_ops* ops = fixture.bridge.get();
    size_t frame = 0;
    AllocationMeter meter(state);
    for (auto _ : state) {
        if (withIds && frame == 0) {
            meter.pause();
            fixture.recordIds();
            meter.resume();
        }
        ops->process_capture_result(ops, &fixture.frames[frame].result);
        if (++frame == fixture.frames.size()) frame = 0;
    }
}

// The metadata bytes written into a queue of the same size and one virtual call that hands the
// framework a ready result with its buffers and sizes.
void BM_ResultFloor(benchmark::State& state) {
    const int bufferCount = static_cast<int>(state.range(1));
    const size_t metadataSize = static_cast<size_t>(state.range(2)) * 1024;
    ResultFixture fixture(false, bufferCount, metadataSize);
    Callback::ResultMetadataQueue queue(Callback::kResultQueueSize, false);
    auto framework = ndk::SharedRefBase::make<BenchFramework>();
    framework->attachResultQueue(queue.dupeDesc());
    std::shared_ptr<aidl::android::hardware::camera::device::ICameraDeviceCallback> callback =
            framework;
    std::vector<Callback::CaptureResult> results(1);
    results[0].fmqResultSize = static_cast<int64_t>(metadataSize);
    results[0].partialResult = 1;
    results[0].inputBuffer.streamId = -1;
    results[0].outputBuffers.resize(bufferCount);
    for (int i = 0; i < bufferCount; ++i) {
        results[0].outputBuffers[i].streamId = i;
        results[0].outputBuffers[i].bufferId = 1000 + i;
    }
    results[0].physicalCameraMetadata.resize(kPhysicalCameras);
    for (int i = 0; i < kPhysicalCameras; ++i) {
        results[0].physicalCameraMetadata[i].physicalCameraId = fixture.physicalIds[i];
        results[0].physicalCameraMetadata[i].fmqMetadataSize = kPhysicalMetadataSize;
    }
    AllocationMeter meter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(callback.get());
        queue.write(reinterpret_cast<const int8_t*>(fixture.resultMetadata.get()), metadataSize);
        for (const camera_metadata_t* physical : fixture.physicalPointers) {
            queue.write(reinterpret_cast<const int8_t*>(physical), kPhysicalMetadataSize);
        }
        callback->processCaptureResult(results);
    }
}

TARNIC_BENCHMARK_WITH_FLOOR(BM_Result, resultArguments);

}  // namespace
}  // namespace kovo::aidl2legacy::bench
