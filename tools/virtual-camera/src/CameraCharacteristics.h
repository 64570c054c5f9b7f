/*
 * What one virtual camera is: its static characteristics, its request templates, its session
 * characteristics and the stream combinations it accepts. Built once, immutable afterwards, so
 * any thread may read it; the module owns it for as long as the module is loaded.
 */
#pragma once

#include <stdint.h>
#include <system/camera_metadata.h>

#include <string>
#include <string_view>
#include <vector>

#include "Metadata.h"
#include "Options.h"

namespace virtual_camera {

struct CameraDescription {
    std::string id;
    int facing = 0;  // CAMERA_FACING_*
    int orientation = 0;
    bool flash = false;
    bool autoFocus = false;
    std::vector<float> focalLengths;
    std::vector<std::string> physicalIds;  // not empty for a logical camera
};

// One stream of a configuration or of a stream-combination query.
struct StreamDescription {
    int streamType = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    int format = 0;
    int rotation = 0;
    std::string physicalCameraId;
};

constexpr uint8_t kPipelineMaxDepth = 8;
constexpr uint32_t kMaxBuffers = 8;
constexpr int64_t kDefaultFrameDuration = 33333333;
constexpr int64_t kMaxFrameDuration = 100000000;
constexpr int64_t kMinExposureTime = 100000;
constexpr int64_t kDefaultExposureTime = 10000000;
constexpr int32_t kDefaultSensitivity = 100;
constexpr int32_t kTorchMaxLevel = 10;
constexpr int32_t kTorchDefaultLevel = 5;
constexpr int32_t kActiveArrayWidth = 4032;
constexpr int32_t kActiveArrayHeight = 3024;
constexpr int32_t kJpegMaxSize = 6 * 1024 * 1024;

// Keys of the first (early) partial result.
inline constexpr uint32_t kEarlyResultKeys[] = {ANDROID_CONTROL_AE_STATE, ANDROID_CONTROL_AF_STATE,
                                                ANDROID_CONTROL_AWB_STATE};
// Keys the final partial result adds to the echoed request settings.
inline constexpr uint32_t kFinalResultKeys[] = {ANDROID_REQUEST_PIPELINE_DEPTH,
                                                ANDROID_SENSOR_EXPOSURE_TIME,
                                                ANDROID_SENSOR_FRAME_DURATION,
                                                ANDROID_SENSOR_SENSITIVITY,
                                                ANDROID_SENSOR_TIMESTAMP,
                                                ANDROID_SENSOR_ROLLING_SHUTTER_SKEW,
                                                ANDROID_LOGICAL_MULTI_CAMERA_ACTIVE_PHYSICAL_ID};
// Session parameters: a change of any of them needs a new stream configuration.
inline constexpr uint32_t kSessionKeys[] = {ANDROID_CONTROL_AE_TARGET_FPS_RANGE,
                                            ANDROID_CONTROL_VIDEO_STABILIZATION_MODE};

class CameraCharacteristics {
public:
    CameraCharacteristics(CameraDescription description, const Options& options);

    const CameraDescription& description() const { return mDescription; }
    bool isLogical() const { return !mDescription.physicalIds.empty(); }
    bool isPhysicalCamera(std::string_view id) const;

    const camera_metadata_t* staticMetadata() const { return mStatic.get(); }
    // Null for a template the camera does not have.
    const camera_metadata_t* defaultSettings(int requestTemplate) const;
    const camera_metadata_t* sessionCharacteristics() const { return mSession.get(); }

    // 0 when the camera can stream this combination, else -EINVAL (logged with the reason).
    int checkStreams(const std::vector<StreamDescription>& streams, uint32_t operationMode) const;
    // The shortest frame duration of one stream, 0 when the camera does not offer it.
    int64_t minFrameDuration(int format, uint32_t width, uint32_t height) const;

private:
    void buildStatic(const Options& options);
    MetadataPtr buildTemplate(int requestTemplate) const;

    CameraDescription mDescription;
    MetadataPtr mStatic;
    MetadataPtr mSession;
    std::vector<MetadataPtr> mTemplates;  // index: template - 1
};

}  // namespace virtual_camera
