#define LOG_TAG "tarnic_hal_aidl2legacy_utils"

#include <aidl2legacy/utils/EnumValue.h>
#include <aidl2legacy/utils/StreamConversion.h>
#include <log/log.h>

#include <cerrno>
#include <cstring>

namespace kovo::aidl2legacy {

using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::Stream;
using aidl::android::hardware::graphics::common::BufferUsage;
using aidl::android::hardware::graphics::common::Dataspace;
using aidl::android::hardware::graphics::common::PixelFormat;

int32_t convertStream(const Stream& in, Camera3Stream& out) {
    out = Camera3Stream{};
    int32_t result = 0;

    camera3_stream_t& stream = out.stream;
    stream.stream_type = static_cast<int>(in.streamType);
    stream.width = static_cast<uint32_t>(in.width);
    stream.height = static_cast<uint32_t>(in.height);
    stream.format = static_cast<int>(in.format);
    stream.usage = static_cast<uint32_t>(in.usage);
    setEnumValue(stream.data_space, static_cast<int32_t>(in.dataSpace));
    stream.rotation = static_cast<int>(in.rotation);
    if (out.setPhysicalCameraId(in.physicalCameraId) != 0) {
        ALOGE("%s: stream %d: physical camera id of %zu bytes does not fit in %zu", __func__, in.id,
              in.physicalCameraId.size(), Camera3Stream::kPhysicalCameraIdCapacity - 1);
        result = -EINVAL;
    }

    out.id = in.id;
    out.groupId = in.groupId;
    out.bufferSize = in.bufferSize;
    out.colorSpace = in.colorSpace;
    out.dynamicRangeProfile = static_cast<int64_t>(in.dynamicRangeProfile);
    out.useCase = static_cast<int64_t>(in.useCase);
    for (auto mode : in.sensorPixelModesUsed) {
        auto bit = static_cast<uint32_t>(mode);
        if (bit >= 32) {
            ALOGE("%s: stream %d: unknown sensor pixel mode %u", __func__, in.id, bit);
            result = -EINVAL;
            continue;
        }
        out.sensorPixelModesUsed |= 1u << bit;
    }
    return result;
}

int32_t convertHalStreamConfiguration(const camera3_stream_configuration& in,
                                      std::vector<HalStream>& out) {
    out.clear();
    if (in.num_streams > 0 && in.streams == nullptr) {
        ALOGE("%s: %u streams without a stream list", __func__, in.num_streams);
        return -EINVAL;
    }
    out.reserve(in.num_streams);
    for (uint32_t i = 0; i < in.num_streams; ++i) {
        const camera3_stream_t* stream = in.streams[i];
        if (stream == nullptr) {
            ALOGE("%s: stream slot %u is empty", __func__, i);
            out.clear();
            return -EINVAL;
        }
        const Camera3Stream& record = *Camera3Stream::fromStream(stream);
        const auto usage = static_cast<BufferUsage>(stream->usage);

        HalStream& halStream = out.emplace_back();
        halStream.id = record.id;
        halStream.overrideFormat = static_cast<PixelFormat>(stream->format);
        if (stream->stream_type != CAMERA3_STREAM_INPUT) halStream.producerUsage = usage;
        if (stream->stream_type != CAMERA3_STREAM_OUTPUT) halStream.consumerUsage = usage;
        halStream.maxBuffers = static_cast<int32_t>(stream->max_buffers);
        halStream.overrideDataSpace = static_cast<Dataspace>(enumValue(stream->data_space));
        // Read from the record's own storage: bounded, whatever the pointer holds.
        halStream.physicalCameraId.assign(
                record.physicalCameraId,
                strnlen(record.physicalCameraId, Camera3Stream::kPhysicalCameraIdCapacity));
        halStream.supportOffline = false;
    }
    return 0;
}

}  // namespace kovo::aidl2legacy
