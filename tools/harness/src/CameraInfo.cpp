#include "CameraInfo.h"

#include <system/graphics.h>

#include <algorithm>
#include <cstdint>

#include "Metadata.h"

namespace camera_harness {

namespace {

constexpr int32_t kOutputDirection = ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_OUTPUT;
constexpr int64_t kNsPerSecond = 1000000000;

// The largest (or smallest) output of `format` within `maxArea` pixels that can run at `fps`.
const OutputConfiguration* pickOutput(const std::vector<OutputConfiguration>& outputs,
                                      int32_t format, int64_t maxArea, int32_t fps, bool largest) {
    const OutputConfiguration* best = nullptr;
    for (const auto& output : outputs) {
        int64_t area = int64_t{output.width} * output.height;
        if (output.format != format || area > maxArea ||
            output.minFrameDurationNs * fps > kNsPerSecond) {
            continue;
        }
        int64_t bestArea = best == nullptr ? 0 : int64_t{best->width} * best->height;
        if (best == nullptr || (largest ? area > bestArea : area < bestArea)) best = &output;
    }
    return best;
}

}  // namespace

CameraInfo CameraInfo::fromCharacteristics(const camera_metadata_t* characteristics) {
    CameraInfo info;
    info.partialResultCount =
            findInt32(characteristics, ANDROID_REQUEST_PARTIAL_RESULT_COUNT).value_or(1);
    info.jpegMaxSize = static_cast<size_t>(
            std::max(0, findInt32(characteristics, ANDROID_JPEG_MAX_SIZE).value_or(0)));
    info.halBufferManager =
            findByte(characteristics, ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION) ==
            ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_HIDL_DEVICE_3_5;
    info.readoutTimestamps = findByte(characteristics, ANDROID_SENSOR_READOUT_TIMESTAMP) !=
                             ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED;

    std::vector<uint8_t> ids = findBytes(characteristics, ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS);
    std::string id;
    for (uint8_t c : ids) {
        if (c != 0) {
            id.push_back(static_cast<char>(c));
        } else if (!id.empty()) {
            info.physicalCameraIds.push_back(std::move(id));
            id.clear();
        }
    }

    std::vector<int32_t> configs =
            findInt32s(characteristics, ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS);
    std::vector<int64_t> durations =
            findInt64s(characteristics, ANDROID_SCALER_AVAILABLE_MIN_FRAME_DURATIONS);
    for (size_t i = 0; i + 4 <= configs.size(); i += 4) {
        if (configs[i + 3] != kOutputDirection) continue;
        OutputConfiguration output{configs[i], configs[i + 1], configs[i + 2], 0};
        for (size_t j = 0; j + 4 <= durations.size(); j += 4) {
            if (durations[j] == output.format && durations[j + 1] == output.width &&
                durations[j + 2] == output.height) {
                output.minFrameDurationNs = durations[j + 3];
            }
        }
        info.outputs.push_back(output);
    }

    std::vector<int32_t> ranges =
            findInt32s(characteristics, ANDROID_CONTROL_AE_AVAILABLE_TARGET_FPS_RANGES);
    for (size_t i = 0; i + 2 <= ranges.size(); i += 2) {
        info.fpsRanges.emplace_back(ranges[i], ranges[i + 1]);
    }
    return info;
}

const OutputConfiguration* CameraInfo::findOutput(const StreamDescription& stream) const {
    for (const auto& output : outputs) {
        if (output.format == stream.format && output.width == stream.width &&
            output.height == stream.height) {
            return &output;
        }
    }
    return nullptr;
}

int64_t CameraInfo::minFrameDurationNs(const std::vector<StreamDescription>& streams) const {
    int64_t longest = 0;
    for (const auto& stream : streams) {
        if (const OutputConfiguration* output = findOutput(stream)) {
            longest = std::max(longest, output->minFrameDurationNs);
        }
    }
    return longest;
}

std::vector<StreamDescription> CameraInfo::defaultStreams(int32_t fps) const {
    std::vector<StreamDescription> streams;
    auto add = [&](const OutputConfiguration* output, std::string physicalCameraId) {
        if (output != nullptr) {
            streams.push_back(
                    {output->width, output->height, output->format, std::move(physicalCameraId)});
        }
    };
    add(pickOutput(outputs, HAL_PIXEL_FORMAT_YCBCR_420_888, 640 * 480, fps, true), "");
    add(pickOutput(outputs, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, 320 * 240, fps, true),
        physicalCameraIds.empty() ? "" : physicalCameraIds.front());
    add(pickOutput(outputs, HAL_PIXEL_FORMAT_BLOB, INT64_MAX, fps, false), "");
    return streams;
}

}  // namespace camera_harness
