#define LOG_TAG "Aidl2LegacyCameraModule"

#include "StaticStreamConfigurations.h"

#include <hardware/camera3.h>
#include <log/log.h>

#include <cerrno>

namespace kovo::aidl2legacy {
namespace {

constexpr size_t kValuesPerConfiguration = 4;  // format, width, height, direction

bool isListed(const camera_metadata_ro_entry_t& configurations, const CombinationStream& stream,
              int32_t direction) {
    for (size_t i = 0; i + kValuesPerConfiguration <= configurations.count;
         i += kValuesPerConfiguration) {
        const int32_t* configuration = configurations.data.i32 + i;
        if (configuration[0] == stream.format &&
            configuration[1] == static_cast<int32_t>(stream.width) &&
            configuration[2] == static_cast<int32_t>(stream.height) &&
            configuration[3] == direction) {
            return true;
        }
    }
    return false;
}

bool isStreamListed(const camera_metadata_ro_entry_t& configurations,
                    const CombinationStream& stream) {
    constexpr int32_t kOutput = ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_OUTPUT;
    constexpr int32_t kInput = ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_INPUT;
    switch (stream.streamType) {
        case CAMERA3_STREAM_OUTPUT:
            return isListed(configurations, stream, kOutput);
        case CAMERA3_STREAM_INPUT:
            return isListed(configurations, stream, kInput);
        case CAMERA3_STREAM_BIDIRECTIONAL:
            return isListed(configurations, stream, kOutput) &&
                   isListed(configurations, stream, kInput);
        default:
            return false;
    }
}

}  // namespace

int32_t checkStaticStreamConfigurations(const camera_metadata_t* characteristics,
                                        const StreamCombination& combination) {
    if (combination.operationMode != CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE) {
        ALOGD("Operation mode 0x%x cannot be answered from static configurations",
              combination.operationMode);
        return -ENOSYS;
    }
    camera_metadata_ro_entry_t configurations{};
    if (find_camera_metadata_ro_entry(characteristics,
                                      ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS,
                                      &configurations) != 0 ||
        configurations.type != TYPE_INT32) {
        ALOGD("No stream configurations in the static characteristics");
        return -EINVAL;
    }
    for (uint32_t i = 0; i < combination.streamCount; ++i) {
        const CombinationStream& stream = combination.streams[i];
        if (!isStreamListed(configurations, stream)) {
            ALOGD("Stream %u (type %d, format 0x%x, %ux%u) is not a static configuration", i,
                  stream.streamType, stream.format, stream.width, stream.height);
            return -EINVAL;
        }
    }
    return 0;
}

}  // namespace kovo::aidl2legacy
