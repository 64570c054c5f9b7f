#define LOG_TAG "VirtualCamera"

#include "CameraCharacteristics.h"

#include <errno.h>
#include <hardware/camera3.h>
#include <log/log.h>
#include <system/camera.h>
#include <system/graphics.h>

#include <algorithm>
#include <set>

#include "MetadataBuilder.h"

namespace virtual_camera {
namespace {

struct StreamSize {
    int32_t width;
    int32_t height;
    int64_t minFrameDuration;
    int64_t stallDuration;  // BLOB only
};

// YUV_420_888 and IMPLEMENTATION_DEFINED share these sizes; 320x240 runs at 1000 fps and
// 176x144 at 4000 fps.
constexpr StreamSize kProcessedSizes[] = {
        {4032, 3024, 33333333, 0}, {1920, 1080, 16666666, 0}, {1280, 720, 8333333, 0},
        {640, 480, 4166666, 0},    {320, 240, 1000000, 0},    {176, 144, 250000, 0},
};
constexpr StreamSize kBlobSizes[] = {
        {4032, 3024, 33333333, 33333333},
        {1920, 1080, 33333333, 16666666},
        {640, 480, 33333333, 8333333},
};
constexpr int32_t kProcessedFormats[] = {HAL_PIXEL_FORMAT_YCBCR_420_888,
                                         HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED};
constexpr int32_t kMaxProcessedStreams = 3;
constexpr int32_t kMaxStallingStreams = 1;
constexpr float kMaxZoom = 4.0f;
constexpr float kAperture = 1.8f;

constexpr uint8_t u8(int value) {
    return static_cast<uint8_t>(value);
}

const StreamSize* findSize(int format, uint32_t width, uint32_t height) {
    auto matches = [&](const StreamSize& size) {
        return static_cast<uint32_t>(size.width) == width &&
               static_cast<uint32_t>(size.height) == height;
    };
    if (format == HAL_PIXEL_FORMAT_BLOB) {
        auto it = std::find_if(std::begin(kBlobSizes), std::end(kBlobSizes), matches);
        return it != std::end(kBlobSizes) ? it : nullptr;
    }
    if (std::find(std::begin(kProcessedFormats), std::end(kProcessedFormats), format) ==
        std::end(kProcessedFormats)) {
        return nullptr;
    }
    auto it = std::find_if(std::begin(kProcessedSizes), std::end(kProcessedSizes), matches);
    return it != std::end(kProcessedSizes) ? it : nullptr;
}

void addStreamConfigurations(MetadataBuilder& builder) {
    std::vector<int32_t> configurations;
    std::vector<int64_t> minDurations;
    std::vector<int64_t> stallDurations;
    auto add = [&](int32_t format, const StreamSize& size) {
        configurations.insert(configurations.end(),
                              {format, size.width, size.height,
                               ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_OUTPUT});
        minDurations.insert(minDurations.end(),
                            {format, size.width, size.height, size.minFrameDuration});
        stallDurations.insert(stallDurations.end(),
                              {format, size.width, size.height, size.stallDuration});
    };
    for (int32_t format : kProcessedFormats) {
        for (const StreamSize& size : kProcessedSizes) add(format, size);
    }
    for (const StreamSize& size : kBlobSizes) add(HAL_PIXEL_FORMAT_BLOB, size);
    builder.set(ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS, configurations);
    builder.set(ANDROID_SCALER_AVAILABLE_MIN_FRAME_DURATIONS, minDurations);
    builder.set(ANDROID_SCALER_AVAILABLE_STALL_DURATIONS, stallDurations);
}

uint8_t captureIntent(int requestTemplate) {
    switch (requestTemplate) {
        case CAMERA3_TEMPLATE_PREVIEW:
            return ANDROID_CONTROL_CAPTURE_INTENT_PREVIEW;
        case CAMERA3_TEMPLATE_STILL_CAPTURE:
            return ANDROID_CONTROL_CAPTURE_INTENT_STILL_CAPTURE;
        case CAMERA3_TEMPLATE_VIDEO_RECORD:
            return ANDROID_CONTROL_CAPTURE_INTENT_VIDEO_RECORD;
        case CAMERA3_TEMPLATE_VIDEO_SNAPSHOT:
            return ANDROID_CONTROL_CAPTURE_INTENT_VIDEO_SNAPSHOT;
        case CAMERA3_TEMPLATE_ZERO_SHUTTER_LAG:
            return ANDROID_CONTROL_CAPTURE_INTENT_ZERO_SHUTTER_LAG;
        default:
            return ANDROID_CONTROL_CAPTURE_INTENT_MANUAL;
    }
}

}  // namespace

CameraCharacteristics::CameraCharacteristics(CameraDescription description, const Options& options)
    : mDescription(std::move(description)) {
    for (int requestTemplate = CAMERA3_TEMPLATE_PREVIEW; requestTemplate < CAMERA3_TEMPLATE_COUNT;
         ++requestTemplate) {
        mTemplates.push_back(buildTemplate(requestTemplate));
    }
    buildStatic(options);

    MetadataBuilder session;
    session.set(ANDROID_CONTROL_ZOOM_RATIO_RANGE, {1.0f, kMaxZoom});
    session.set(ANDROID_SCALER_AVAILABLE_MAX_DIGITAL_ZOOM, {kMaxZoom});
    mSession = session.build();
}

bool CameraCharacteristics::isPhysicalCamera(std::string_view id) const {
    return std::find(mDescription.physicalIds.begin(), mDescription.physicalIds.end(), id) !=
           mDescription.physicalIds.end();
}

const camera_metadata_t* CameraCharacteristics::defaultSettings(int requestTemplate) const {
    if (requestTemplate < CAMERA3_TEMPLATE_PREVIEW || requestTemplate >= CAMERA3_TEMPLATE_COUNT) {
        return nullptr;
    }
    return mTemplates[requestTemplate - 1].get();
}

int64_t CameraCharacteristics::minFrameDuration(int format, uint32_t width, uint32_t height) const {
    const StreamSize* size = findSize(format, width, height);
    return size != nullptr ? size->minFrameDuration : 0;
}

int CameraCharacteristics::checkStreams(const std::vector<StreamDescription>& streams,
                                        uint32_t operationMode) const {
    const char* id = mDescription.id.c_str();
    if (operationMode != CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE) {
        ALOGW("camera %s: operation mode 0x%x not supported", id, operationMode);
        return -EINVAL;
    }
    if (streams.empty()) {
        ALOGW("camera %s: no streams", id);
        return -EINVAL;
    }
    int processed = 0;
    int stalling = 0;
    for (const StreamDescription& stream : streams) {
        if (stream.streamType != CAMERA3_STREAM_OUTPUT) {
            ALOGW("camera %s: stream type %d not supported", id, stream.streamType);
            return -EINVAL;
        }
        if (stream.rotation < CAMERA3_STREAM_ROTATION_0 ||
            stream.rotation > CAMERA3_STREAM_ROTATION_270) {
            ALOGW("camera %s: bad rotation %d", id, stream.rotation);
            return -EINVAL;
        }
        if (!stream.physicalCameraId.empty() && !isPhysicalCamera(stream.physicalCameraId)) {
            ALOGW("camera %s: \"%s\" is not one of its physical cameras", id,
                  stream.physicalCameraId.c_str());
            return -EINVAL;
        }
        if (minFrameDuration(stream.format, stream.width, stream.height) == 0) {
            ALOGW("camera %s: no stream of format 0x%x at %ux%u", id, stream.format, stream.width,
                  stream.height);
            return -EINVAL;
        }
        (stream.format == HAL_PIXEL_FORMAT_BLOB ? stalling : processed)++;
    }
    if (processed > kMaxProcessedStreams || stalling > kMaxStallingStreams) {
        ALOGW("camera %s: %d processed and %d stalling streams, at most %d and %d", id, processed,
              stalling, kMaxProcessedStreams, kMaxStallingStreams);
        return -EINVAL;
    }
    return 0;
}

MetadataPtr CameraCharacteristics::buildTemplate(int requestTemplate) const {
    bool manual = requestTemplate == CAMERA3_TEMPLATE_MANUAL;
    bool video = requestTemplate == CAMERA3_TEMPLATE_VIDEO_RECORD ||
                 requestTemplate == CAMERA3_TEMPLATE_VIDEO_SNAPSHOT;
    uint8_t afMode = ANDROID_CONTROL_AF_MODE_OFF;
    if (mDescription.autoFocus && !manual) {
        afMode = video ? ANDROID_CONTROL_AF_MODE_CONTINUOUS_VIDEO
                       : ANDROID_CONTROL_AF_MODE_CONTINUOUS_PICTURE;
    }

    MetadataBuilder settings;
    settings.set(ANDROID_COLOR_CORRECTION_ABERRATION_MODE,
                 {u8(ANDROID_COLOR_CORRECTION_ABERRATION_MODE_FAST)});
    settings.set(ANDROID_CONTROL_AE_ANTIBANDING_MODE,
                 {u8(ANDROID_CONTROL_AE_ANTIBANDING_MODE_AUTO)});
    settings.set(ANDROID_CONTROL_AE_EXPOSURE_COMPENSATION, {int32_t{0}});
    settings.set(ANDROID_CONTROL_AE_LOCK, {u8(ANDROID_CONTROL_AE_LOCK_OFF)});
    settings.set(ANDROID_CONTROL_AE_MODE,
                 {u8(manual ? ANDROID_CONTROL_AE_MODE_OFF : ANDROID_CONTROL_AE_MODE_ON)});
    settings.set(ANDROID_CONTROL_AE_TARGET_FPS_RANGE, {int32_t{video ? 30 : 15}, int32_t{30}});
    settings.set(ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER,
                 {u8(ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER_IDLE)});
    settings.set(ANDROID_CONTROL_AF_MODE, {afMode});
    settings.set(ANDROID_CONTROL_AF_TRIGGER, {u8(ANDROID_CONTROL_AF_TRIGGER_IDLE)});
    settings.set(ANDROID_CONTROL_AWB_LOCK, {u8(ANDROID_CONTROL_AWB_LOCK_OFF)});
    settings.set(ANDROID_CONTROL_AWB_MODE,
                 {u8(manual ? ANDROID_CONTROL_AWB_MODE_OFF : ANDROID_CONTROL_AWB_MODE_AUTO)});
    settings.set(ANDROID_CONTROL_CAPTURE_INTENT, {captureIntent(requestTemplate)});
    settings.set(ANDROID_CONTROL_EFFECT_MODE, {u8(ANDROID_CONTROL_EFFECT_MODE_OFF)});
    settings.set(ANDROID_CONTROL_MODE,
                 {u8(manual ? ANDROID_CONTROL_MODE_OFF : ANDROID_CONTROL_MODE_AUTO)});
    settings.set(ANDROID_CONTROL_SCENE_MODE, {u8(ANDROID_CONTROL_SCENE_MODE_DISABLED)});
    settings.set(ANDROID_CONTROL_VIDEO_STABILIZATION_MODE,
                 {u8(ANDROID_CONTROL_VIDEO_STABILIZATION_MODE_OFF)});
    settings.set(ANDROID_CONTROL_ZOOM_RATIO, {1.0f});
    settings.set(ANDROID_EDGE_MODE, {u8(ANDROID_EDGE_MODE_FAST)});
    settings.set(ANDROID_FLASH_MODE, {u8(ANDROID_FLASH_MODE_OFF)});
    settings.set(ANDROID_JPEG_ORIENTATION, {int32_t{0}});
    settings.set(ANDROID_JPEG_QUALITY, {u8(95)});
    settings.set(ANDROID_JPEG_THUMBNAIL_QUALITY, {u8(90)});
    settings.set(ANDROID_JPEG_THUMBNAIL_SIZE, {int32_t{160}, int32_t{120}});
    settings.set(ANDROID_LENS_APERTURE, {kAperture});
    settings.set(ANDROID_LENS_FILTER_DENSITY, {0.0f});
    settings.set(ANDROID_LENS_FOCAL_LENGTH, {mDescription.focalLengths.front()});
    settings.set(ANDROID_LENS_FOCUS_DISTANCE, {0.0f});
    settings.set(ANDROID_LENS_OPTICAL_STABILIZATION_MODE,
                 {u8(ANDROID_LENS_OPTICAL_STABILIZATION_MODE_OFF)});
    settings.set(ANDROID_NOISE_REDUCTION_MODE, {u8(ANDROID_NOISE_REDUCTION_MODE_FAST)});
    settings.set(ANDROID_SCALER_CROP_REGION,
                 {int32_t{0}, int32_t{0}, kActiveArrayWidth, kActiveArrayHeight});
    settings.set(ANDROID_SENSOR_EXPOSURE_TIME, {kDefaultExposureTime});
    settings.set(ANDROID_SENSOR_FRAME_DURATION, {kDefaultFrameDuration});
    settings.set(ANDROID_SENSOR_SENSITIVITY, {kDefaultSensitivity});
    settings.set(ANDROID_SENSOR_TEST_PATTERN_MODE, {int32_t{ANDROID_SENSOR_TEST_PATTERN_MODE_OFF}});
    settings.set(ANDROID_STATISTICS_FACE_DETECT_MODE, {u8(ANDROID_STATISTICS_FACE_DETECT_MODE_OFF)});
    return settings.build();
}

void CameraCharacteristics::buildStatic(const Options& options) {
    MetadataBuilder info;
    info.set(ANDROID_COLOR_CORRECTION_AVAILABLE_ABERRATION_MODES,
             {u8(ANDROID_COLOR_CORRECTION_ABERRATION_MODE_OFF),
              u8(ANDROID_COLOR_CORRECTION_ABERRATION_MODE_FAST)});
    info.set(ANDROID_CONTROL_AE_AVAILABLE_ANTIBANDING_MODES,
             {u8(ANDROID_CONTROL_AE_ANTIBANDING_MODE_AUTO)});
    info.set(ANDROID_CONTROL_AE_AVAILABLE_MODES,
             {u8(ANDROID_CONTROL_AE_MODE_OFF), u8(ANDROID_CONTROL_AE_MODE_ON)});
    info.set(ANDROID_CONTROL_AE_AVAILABLE_TARGET_FPS_RANGES,
             std::vector<int32_t>{15, 30, 30, 30, 60, 60, 120, 120, 240, 240, 960, 960});
    info.set(ANDROID_CONTROL_AE_COMPENSATION_RANGE, {int32_t{0}, int32_t{0}});
    info.set(ANDROID_CONTROL_AE_COMPENSATION_STEP, {camera_metadata_rational_t{1, 3}});
    info.set(ANDROID_CONTROL_AE_LOCK_AVAILABLE, {u8(ANDROID_CONTROL_AE_LOCK_AVAILABLE_TRUE)});
    if (mDescription.autoFocus) {
        info.set(ANDROID_CONTROL_AF_AVAILABLE_MODES,
                 {u8(ANDROID_CONTROL_AF_MODE_OFF), u8(ANDROID_CONTROL_AF_MODE_AUTO),
                  u8(ANDROID_CONTROL_AF_MODE_CONTINUOUS_VIDEO),
                  u8(ANDROID_CONTROL_AF_MODE_CONTINUOUS_PICTURE)});
    } else {
        info.set(ANDROID_CONTROL_AF_AVAILABLE_MODES, {u8(ANDROID_CONTROL_AF_MODE_OFF)});
    }
    info.set(ANDROID_CONTROL_AVAILABLE_EFFECTS, {u8(ANDROID_CONTROL_EFFECT_MODE_OFF)});
    info.set(ANDROID_CONTROL_AVAILABLE_MODES,
             {u8(ANDROID_CONTROL_MODE_OFF), u8(ANDROID_CONTROL_MODE_AUTO)});
    info.set(ANDROID_CONTROL_AVAILABLE_SCENE_MODES, {u8(ANDROID_CONTROL_SCENE_MODE_DISABLED)});
    info.set(ANDROID_CONTROL_AVAILABLE_VIDEO_STABILIZATION_MODES,
             {u8(ANDROID_CONTROL_VIDEO_STABILIZATION_MODE_OFF)});
    info.set(ANDROID_CONTROL_AWB_AVAILABLE_MODES,
             {u8(ANDROID_CONTROL_AWB_MODE_OFF), u8(ANDROID_CONTROL_AWB_MODE_AUTO)});
    info.set(ANDROID_CONTROL_AWB_LOCK_AVAILABLE, {u8(ANDROID_CONTROL_AWB_LOCK_AVAILABLE_TRUE)});
    info.set(ANDROID_CONTROL_MAX_REGIONS, {int32_t{0}, int32_t{0}, int32_t{0}});
    info.set(ANDROID_CONTROL_ZOOM_RATIO_RANGE, {1.0f, kMaxZoom});
    info.set(ANDROID_EDGE_AVAILABLE_EDGE_MODES,
             {u8(ANDROID_EDGE_MODE_OFF), u8(ANDROID_EDGE_MODE_FAST)});
    info.set(ANDROID_FLASH_INFO_AVAILABLE,
             {u8(mDescription.flash ? ANDROID_FLASH_INFO_AVAILABLE_TRUE
                                    : ANDROID_FLASH_INFO_AVAILABLE_FALSE)});
    if (mDescription.flash) {
        info.set(ANDROID_FLASH_INFO_STRENGTH_MAXIMUM_LEVEL, {kTorchMaxLevel});
        info.set(ANDROID_FLASH_INFO_STRENGTH_DEFAULT_LEVEL, {kTorchDefaultLevel});
    }
    info.set(ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL,
             {u8(ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_FULL)});
    if (options.halBufferManager) {
        info.set(ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION,
                 {u8(ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_HIDL_DEVICE_3_5)});
    }
    info.set(ANDROID_JPEG_AVAILABLE_THUMBNAIL_SIZES,
             {int32_t{0}, int32_t{0}, int32_t{160}, int32_t{120}});
    info.set(ANDROID_JPEG_MAX_SIZE, {kJpegMaxSize});
    info.set(ANDROID_LENS_FACING,
             {u8(mDescription.facing == CAMERA_FACING_FRONT      ? ANDROID_LENS_FACING_FRONT
                 : mDescription.facing == CAMERA_FACING_EXTERNAL ? ANDROID_LENS_FACING_EXTERNAL
                                                                 : ANDROID_LENS_FACING_BACK)});
    info.set(ANDROID_LENS_INFO_AVAILABLE_APERTURES, {kAperture});
    info.set(ANDROID_LENS_INFO_AVAILABLE_FILTER_DENSITIES, {0.0f});
    info.set(ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS, mDescription.focalLengths);
    info.set(ANDROID_LENS_INFO_AVAILABLE_OPTICAL_STABILIZATION,
             {u8(ANDROID_LENS_OPTICAL_STABILIZATION_MODE_OFF)});
    info.set(ANDROID_LENS_INFO_MINIMUM_FOCUS_DISTANCE, {mDescription.autoFocus ? 10.0f : 0.0f});
    info.set(ANDROID_NOISE_REDUCTION_AVAILABLE_NOISE_REDUCTION_MODES,
             {u8(ANDROID_NOISE_REDUCTION_MODE_OFF), u8(ANDROID_NOISE_REDUCTION_MODE_FAST)});

    std::vector<uint8_t> capabilities = {ANDROID_REQUEST_AVAILABLE_CAPABILITIES_BACKWARD_COMPATIBLE,
                                         ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MANUAL_SENSOR,
                                         ANDROID_REQUEST_AVAILABLE_CAPABILITIES_READ_SENSOR_SETTINGS,
                                         ANDROID_REQUEST_AVAILABLE_CAPABILITIES_BURST_CAPTURE};
    if (isLogical()) {
        capabilities.push_back(ANDROID_REQUEST_AVAILABLE_CAPABILITIES_LOGICAL_MULTI_CAMERA);
        info.setStrings(ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS, mDescription.physicalIds);
        info.set(ANDROID_LOGICAL_MULTI_CAMERA_SENSOR_SYNC_TYPE,
                 {u8(ANDROID_LOGICAL_MULTI_CAMERA_SENSOR_SYNC_TYPE_CALIBRATED)});
        info.set(ANDROID_REQUEST_AVAILABLE_PHYSICAL_CAMERA_REQUEST_KEYS,
                 {int32_t{ANDROID_SENSOR_EXPOSURE_TIME}, int32_t{ANDROID_SENSOR_SENSITIVITY}});
    }
    info.set(ANDROID_REQUEST_AVAILABLE_CAPABILITIES, capabilities);
    info.set(ANDROID_REQUEST_MAX_NUM_INPUT_STREAMS, {int32_t{0}});
    info.set(ANDROID_REQUEST_MAX_NUM_OUTPUT_STREAMS,
             {int32_t{0}, kMaxProcessedStreams, kMaxStallingStreams});
    info.set(ANDROID_REQUEST_PARTIAL_RESULT_COUNT, {int32_t{options.partialResults}});
    info.set(ANDROID_REQUEST_PIPELINE_MAX_DEPTH, {kPipelineMaxDepth});

    // Request keys are those of the templates; results echo them and add their own.
    std::vector<int32_t> requestKeys = MetadataBuilder(mTemplates.front().get()).tags();
    std::set<int32_t> resultKeys(requestKeys.begin(), requestKeys.end());
    resultKeys.insert(std::begin(kEarlyResultKeys), std::end(kEarlyResultKeys));
    resultKeys.insert(std::begin(kFinalResultKeys), std::end(kFinalResultKeys));
    if (!isLogical()) resultKeys.erase(ANDROID_LOGICAL_MULTI_CAMERA_ACTIVE_PHYSICAL_ID);
    info.set(ANDROID_REQUEST_AVAILABLE_REQUEST_KEYS, requestKeys);
    info.set(ANDROID_REQUEST_AVAILABLE_RESULT_KEYS,
             std::vector<int32_t>(resultKeys.begin(), resultKeys.end()));
    info.set(ANDROID_REQUEST_AVAILABLE_SESSION_KEYS,
             std::vector<int32_t>(std::begin(kSessionKeys), std::end(kSessionKeys)));

    info.set(ANDROID_SCALER_AVAILABLE_MAX_DIGITAL_ZOOM, {kMaxZoom});
    addStreamConfigurations(info);
    info.set(ANDROID_SCALER_CROPPING_TYPE, {u8(ANDROID_SCALER_CROPPING_TYPE_CENTER_ONLY)});
    info.set(ANDROID_SENSOR_AVAILABLE_TEST_PATTERN_MODES,
             {int32_t{ANDROID_SENSOR_TEST_PATTERN_MODE_OFF}});
    info.set(ANDROID_SENSOR_INFO_ACTIVE_ARRAY_SIZE,
             {int32_t{0}, int32_t{0}, kActiveArrayWidth, kActiveArrayHeight});
    info.set(ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT,
             {u8(ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_RGGB)});
    info.set(ANDROID_SENSOR_INFO_EXPOSURE_TIME_RANGE, {kMinExposureTime, kMaxFrameDuration});
    info.set(ANDROID_SENSOR_INFO_MAX_FRAME_DURATION, {kMaxFrameDuration});
    info.set(ANDROID_SENSOR_INFO_PHYSICAL_SIZE, {5.6f, 4.2f});
    info.set(ANDROID_SENSOR_INFO_PIXEL_ARRAY_SIZE, {kActiveArrayWidth, kActiveArrayHeight});
    info.set(ANDROID_SENSOR_INFO_PRE_CORRECTION_ACTIVE_ARRAY_SIZE,
             {int32_t{0}, int32_t{0}, kActiveArrayWidth, kActiveArrayHeight});
    info.set(ANDROID_SENSOR_INFO_SENSITIVITY_RANGE, {int32_t{100}, int32_t{1600}});
    // Timestamps come from CLOCK_MONOTONIC, not the boot-time clock.
    info.set(ANDROID_SENSOR_INFO_TIMESTAMP_SOURCE,
             {u8(ANDROID_SENSOR_INFO_TIMESTAMP_SOURCE_UNKNOWN)});
    info.set(ANDROID_SENSOR_INFO_WHITE_LEVEL, {int32_t{1023}});
    info.set(ANDROID_SENSOR_MAX_ANALOG_SENSITIVITY, {int32_t{800}});
    info.set(ANDROID_SENSOR_ORIENTATION, {int32_t{mDescription.orientation}});
    // A module built against the standard camera3.h lists no readout timestamps at all.
    if (options.readoutTimestamp) {
        info.set(ANDROID_SENSOR_READOUT_TIMESTAMP, {u8(ANDROID_SENSOR_READOUT_TIMESTAMP_HARDWARE)});
    }
    info.set(ANDROID_STATISTICS_INFO_AVAILABLE_FACE_DETECT_MODES,
             {u8(ANDROID_STATISTICS_FACE_DETECT_MODE_OFF)});
    info.set(ANDROID_STATISTICS_INFO_MAX_FACE_COUNT, {int32_t{0}});
    info.set(ANDROID_SYNC_MAX_LATENCY, {int32_t{ANDROID_SYNC_MAX_LATENCY_PER_FRAME_CONTROL}});

    std::vector<int32_t> characteristicsKeys = info.tags();
    characteristicsKeys.push_back(ANDROID_REQUEST_AVAILABLE_CHARACTERISTICS_KEYS);
    std::sort(characteristicsKeys.begin(), characteristicsKeys.end());
    info.set(ANDROID_REQUEST_AVAILABLE_CHARACTERISTICS_KEYS, characteristicsKeys);
    mStatic = info.build();
}

}  // namespace virtual_camera
