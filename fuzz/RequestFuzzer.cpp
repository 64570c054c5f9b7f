// Capture requests from the framework: settings through the request queue (sizes that were or
// were not written, bytes of any shape) or inline, physical camera settings, buffers with new,
// cached, unknown or no handles and fences of any fd count, caches to remove, and a legacy device
// that refuses requests at times. Three streams (ids 1 and 2 out, 3 in) are configured first.
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>

#include <vector>

#include "SessionFixture.h"

using namespace kovo::aidl2legacy;
using aidl::android::hardware::camera::device::BufferCache;
using aidl::android::hardware::camera::device::CameraMetadata;
using aidl::android::hardware::camera::device::CaptureRequest;
using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamConfiguration;
using aidl::android::hardware::camera::device::StreamType;
using ::testing::_;
using RequestQueue =
        android::AidlMessageQueue<int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

namespace {

std::vector<uint8_t> settingsBytes(FuzzedDataProvider& in) {
    if (in.ConsumeBool()) {
        return in.ConsumeBytes<uint8_t>(in.ConsumeIntegralInRange<size_t>(0, 64));
    }
    fuzz::MetadataPtr metadata = fuzz::makeMetadata(in);
    if (metadata == nullptr) return {};
    const auto* bytes = reinterpret_cast<const uint8_t*>(metadata.get());
    return {bytes, bytes + get_camera_metadata_size(metadata.get())};
}

// Settings as the framework sends them: inline (size 0), or written into the queue with the size
// announced (sometimes a size that does not match what was written).
void settings(FuzzedDataProvider& in, RequestQueue& queue, int64_t& fmqSize,
              CameraMetadata& inlineSettings) {
    std::vector<uint8_t> bytes = settingsBytes(in);
    if (in.ConsumeBool()) {
        fmqSize = 0;
        inlineSettings.metadata = std::move(bytes);
        return;
    }
    queue.write(reinterpret_cast<const int8_t*>(bytes.data()), bytes.size());
    fmqSize = in.ConsumeIntegralInRange(0, 7) == 0 ? in.ConsumeIntegral<int64_t>()
                                                   : static_cast<int64_t>(bytes.size());
}

StreamBuffer buffer(FuzzedDataProvider& in) {
    StreamBuffer buffer;
    buffer.streamId = in.ConsumeIntegralInRange<int32_t>(-1, 4);
    buffer.bufferId = in.ConsumeIntegralInRange<int64_t>(0, 6);
    if (in.ConsumeBool()) {
        for (int i = in.ConsumeIntegralInRange<int>(0, 2); i > 0; --i) {
            buffer.buffer.fds.emplace_back(fuzz::makeFd());
        }
        buffer.buffer.ints.assign(in.ConsumeIntegralInRange<size_t>(0, 2), 3);
    }
    for (int i = in.ConsumeIntegralInRange<int>(0, 2); i > 0; --i) {
        buffer.acquireFence.fds.emplace_back(fuzz::makeFd());
    }
    return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    fuzz::SessionFixture fixture;
    StreamConfiguration configuration;
    for (int32_t id = 1; id <= 3; ++id) {
        auto& stream = configuration.streams.emplace_back();
        stream.id = id;
        stream.streamType = id == 3 ? StreamType::INPUT : StreamType::OUTPUT;
        stream.width = 64;
        stream.height = 48;
    }
    std::vector<HalStream> halStreams;
    fixture.mSession->configureStreams(configuration, &halStreams);
    Aidl2LegacyCameraDeviceSession::MetadataQueueDescriptor descriptor;
    fixture.mSession->getCaptureRequestMetadataQueue(&descriptor);
    RequestQueue queue(descriptor, false);
    ON_CALL(fixture.mLegacy.mock(), processCaptureRequest(_)).WillByDefault([&in](auto*) {
        return in.ConsumeIntegralInRange(0, 7) == 0 ? -EINVAL : 0;
    });

    while (in.remaining_bytes() > 0) {
        std::vector<CaptureRequest> requests(in.ConsumeIntegralInRange<size_t>(0, 3));
        for (CaptureRequest& request : requests) {
            request.frameNumber = in.ConsumeIntegral<int32_t>();
            settings(in, queue, request.fmqSettingsSize, request.settings);
            if (in.ConsumeBool())
                request.inputBuffer = buffer(in);
            else
                request.inputBuffer.streamId = -1;
            request.inputWidth = in.ConsumeIntegral<int32_t>();
            request.inputHeight = in.ConsumeIntegral<int32_t>();
            for (int i = in.ConsumeIntegralInRange<int>(0, 3); i > 0; --i) {
                request.outputBuffers.push_back(buffer(in));
            }
            for (int i = in.ConsumeIntegralInRange<int>(0, 2); i > 0; --i) {
                auto& physical = request.physicalCameraSettings.emplace_back();
                physical.physicalCameraId = in.ConsumeRandomLengthString(8);
                settings(in, queue, physical.fmqSettingsSize, physical.settings);
            }
        }
        std::vector<BufferCache> caches(in.ConsumeIntegralInRange<size_t>(0, 2));
        for (BufferCache& cache : caches) {
            cache.streamId = in.ConsumeIntegralInRange<int32_t>(-1, 4);
            cache.bufferId = in.ConsumeIntegralInRange<int64_t>(0, 6);
        }
        int32_t processed = 0;
        fixture.mSession->processCaptureRequest(requests, caches, &processed);
        // The device's copies of the requests (and their fences) go.
        fixture.mLegacy.takeRequests();
        // What the framework wrote and the session did not read is discarded, as a new batch
        // would find it.
        std::vector<int8_t> rest(queue.availableToRead());
        queue.read(rest.data(), rest.size());
    }
    return 0;
}
