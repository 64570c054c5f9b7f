// Stream configurations from the framework (any stream field, repeated ids, session parameters
// of any shape) and the legacy device's answer (any status, and any format, usage, data space and
// max_buffers written back into the records), repeated within one session.
#include <aidl2legacy/utils/EnumValue.h>

#include <vector>

#include "SessionFixture.h"

using namespace kovo::aidl2legacy;
using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::Stream;
using aidl::android::hardware::camera::device::StreamConfiguration;
using ::testing::_;

namespace {

Stream makeStream(FuzzedDataProvider& in) {
    using namespace aidl::android::hardware;
    Stream stream;
    stream.id = in.ConsumeIntegralInRange<int32_t>(-1, 4);
    stream.streamType = camera::device::StreamType(in.ConsumeIntegralInRange<int32_t>(-1, 2));
    stream.width = in.ConsumeIntegral<int32_t>();
    stream.height = in.ConsumeIntegral<int32_t>();
    stream.format = graphics::common::PixelFormat(in.ConsumeIntegral<int32_t>());
    stream.usage = graphics::common::BufferUsage(in.ConsumeIntegral<int64_t>());
    stream.dataSpace = graphics::common::Dataspace(in.ConsumeIntegral<int32_t>());
    stream.rotation = camera::device::StreamRotation(in.ConsumeIntegral<int32_t>());
    stream.physicalCameraId = in.ConsumeRandomLengthString(160);
    stream.bufferSize = in.ConsumeIntegral<int32_t>();
    stream.groupId = in.ConsumeIntegral<int32_t>();
    for (int i = in.ConsumeIntegralInRange<int>(0, 3); i > 0; --i) {
        stream.sensorPixelModesUsed.push_back(
                camera::metadata::SensorPixelMode(in.ConsumeIntegral<int32_t>()));
    }
    stream.dynamicRangeProfile =
            camera::metadata::RequestAvailableDynamicRangeProfilesMap(in.ConsumeIntegral<int64_t>());
    stream.useCase = camera::metadata::ScalerAvailableStreamUseCases(in.ConsumeIntegral<int64_t>());
    stream.colorSpace = in.ConsumeIntegral<int32_t>();
    return stream;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    fuzz::SessionFixture fixture;
    ON_CALL(fixture.mLegacy.mock(), configureStreams(_))
            .WillByDefault([&in](camera3_stream_configuration_t* configuration) {
                for (uint32_t i = 0; i < configuration->num_streams; ++i) {
                    camera3_stream_t* stream = configuration->streams[i];
                    if (in.ConsumeBool()) stream->format = in.ConsumeIntegral<int>();
                    stream->usage = in.ConsumeIntegral<uint32_t>();
                    stream->max_buffers = in.ConsumeIntegral<uint32_t>();
                    if (in.ConsumeBool()) {
                        setEnumValue(stream->data_space, in.ConsumeIntegral<int32_t>());
                    }
                }
                return in.ConsumeBool() ? 0 : -in.ConsumeIntegralInRange<int>(0, 40);
            });
    while (in.remaining_bytes() > 0) {
        StreamConfiguration configuration;
        for (int i = in.ConsumeIntegralInRange<int>(0, 4); i > 0; --i) {
            configuration.streams.push_back(makeStream(in));
        }
        configuration.operationMode =
                decltype(configuration.operationMode)(in.ConsumeIntegral<int32_t>());
        if (in.ConsumeBool()) {
            fuzz::MetadataPtr parameters = fuzz::makeMetadata(in);
            if (parameters != nullptr) {
                const auto* bytes = reinterpret_cast<const uint8_t*>(parameters.get());
                configuration.sessionParams.metadata.assign(
                        bytes, bytes + get_camera_metadata_size(parameters.get()));
            }
        } else {
            configuration.sessionParams.metadata =
                    in.ConsumeBytes<uint8_t>(in.ConsumeIntegralInRange<size_t>(0, 64));
        }
        configuration.streamConfigCounter = in.ConsumeIntegral<int32_t>();
        configuration.multiResolutionInputImage = in.ConsumeBool();
        std::vector<HalStream> halStreams;
        fixture.mSession->configureStreams(
                configuration, in.ConsumeIntegralInRange(0, 15) == 0 ? nullptr : &halStreams);
    }
    return 0;
}
