#include "RequestSettings.h"

#include <algorithm>

#include "Metadata.h"

namespace camera_harness {

namespace {

constexpr int64_t kNsPerSecond = 1000000000;
constexpr int64_t kDefaultExposureNs = 10000000;
constexpr int32_t kDefaultSensitivity = 100;
// Room for the entries the harness adds or grows.
constexpr size_t kExtraEntries = 4;
constexpr size_t kExtraData = 64;

}  // namespace

std::optional<RequestSettings> RequestSettings::build(const std::vector<uint8_t>& previewTemplate,
                                                      const CameraInfo& camera, int32_t fps) {
    const camera_metadata_t* preview = viewMetadata(previewTemplate);
    if (preview == nullptr) return std::nullopt;

    const int64_t frameDuration = kNsPerSecond / fps;
    const int64_t exposure =
            std::min(findInt64(preview, ANDROID_SENSOR_EXPOSURE_TIME).value_or(kDefaultExposureNs),
                     frameDuration);
    const int32_t sensitivity =
            findInt32(preview, ANDROID_SENSOR_SENSITIVITY).value_or(kDefaultSensitivity);
    const int32_t fpsRange[] = {fps, fps};
    const bool rangeOffered = std::find(camera.fpsRanges.begin(), camera.fpsRanges.end(),
                                        std::make_pair(fps, fps)) != camera.fpsRanges.end();

    MetadataPtr request = copyMetadata(preview, kExtraEntries, kExtraData);
    MetadataPtr physical = copyMetadata(nullptr, kExtraEntries, kExtraData);
    MetadataPtr session = copyMetadata(nullptr, kExtraEntries, kExtraData);
    if (!request || !physical || !session) return std::nullopt;
    bool ok = setEntry(request.get(), ANDROID_SENSOR_FRAME_DURATION, &frameDuration, 1) &&
              setEntry(request.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure, 1) &&
              setEntry(physical.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure, 1) &&
              setEntry(physical.get(), ANDROID_SENSOR_SENSITIVITY, &sensitivity, 1);
    if (rangeOffered) {
        ok = ok && setEntry(request.get(), ANDROID_CONTROL_AE_TARGET_FPS_RANGE, fpsRange, 2) &&
             setEntry(session.get(), ANDROID_CONTROL_AE_TARGET_FPS_RANGE, fpsRange, 2);
    }
    if (!ok) return std::nullopt;
    return RequestSettings{toBytes(request.get()), toBytes(physical.get()),
                           rangeOffered ? toBytes(session.get()) : std::vector<uint8_t>()};
}

}  // namespace camera_harness
