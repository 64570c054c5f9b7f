// Names and types of every Android tag, section by section, and the names of enumerated values.
#include "camera_metadata_tag_table.h"

#include <system/camera_metadata.h>

#include <iterator>

namespace android::metadata {
namespace {

const TagInfo kColorCorrectionTags[] = {
        {"mode", TYPE_BYTE},
        {"transform", TYPE_RATIONAL},
        {"gains", TYPE_FLOAT},
        {"aberrationMode", TYPE_BYTE},
        {"availableAberrationModes", TYPE_BYTE},
};
static_assert(std::size(kColorCorrectionTags) ==
              static_cast<size_t>(ANDROID_COLOR_CORRECTION_END) - ANDROID_COLOR_CORRECTION_START);

const TagInfo kControlTags[] = {
        {"aeAntibandingMode", TYPE_BYTE},
        {"aeExposureCompensation", TYPE_INT32},
        {"aeLock", TYPE_BYTE},
        {"aeMode", TYPE_BYTE},
        {"aeRegions", TYPE_INT32},
        {"aeTargetFpsRange", TYPE_INT32},
        {"aePrecaptureTrigger", TYPE_BYTE},
        {"afMode", TYPE_BYTE},
        {"afRegions", TYPE_INT32},
        {"afTrigger", TYPE_BYTE},
        {"awbLock", TYPE_BYTE},
        {"awbMode", TYPE_BYTE},
        {"awbRegions", TYPE_INT32},
        {"captureIntent", TYPE_BYTE},
        {"effectMode", TYPE_BYTE},
        {"mode", TYPE_BYTE},
        {"sceneMode", TYPE_BYTE},
        {"videoStabilizationMode", TYPE_BYTE},
        {"aeAvailableAntibandingModes", TYPE_BYTE},
        {"aeAvailableModes", TYPE_BYTE},
        {"aeAvailableTargetFpsRanges", TYPE_INT32},
        {"aeCompensationRange", TYPE_INT32},
        {"aeCompensationStep", TYPE_RATIONAL},
        {"afAvailableModes", TYPE_BYTE},
        {"availableEffects", TYPE_BYTE},
        {"availableSceneModes", TYPE_BYTE},
        {"availableVideoStabilizationModes", TYPE_BYTE},
        {"awbAvailableModes", TYPE_BYTE},
        {"maxRegions", TYPE_INT32},
        {"sceneModeOverrides", TYPE_BYTE},
        {"aePrecaptureId", TYPE_INT32},
        {"aeState", TYPE_BYTE},
        {"afState", TYPE_BYTE},
        {"afTriggerId", TYPE_INT32},
        {"awbState", TYPE_BYTE},
        {"availableHighSpeedVideoConfigurations", TYPE_INT32},
        {"aeLockAvailable", TYPE_BYTE},
        {"awbLockAvailable", TYPE_BYTE},
        {"availableModes", TYPE_BYTE},
        {"postRawSensitivityBoostRange", TYPE_INT32},
        {"postRawSensitivityBoost", TYPE_INT32},
        {"enableZsl", TYPE_BYTE},
        {"afSceneChange", TYPE_BYTE},
        {"availableExtendedSceneModeMaxSizes", TYPE_INT32},
        {"availableExtendedSceneModeZoomRatioRanges", TYPE_FLOAT},
        {"extendedSceneMode", TYPE_BYTE},
        {"zoomRatioRange", TYPE_FLOAT},
        {"zoomRatio", TYPE_FLOAT},
        {"availableHighSpeedVideoConfigurationsMaximumResolution", TYPE_INT32},
        {"afRegionsSet", TYPE_BYTE},
        {"aeRegionsSet", TYPE_BYTE},
        {"awbRegionsSet", TYPE_BYTE},
        {"settingsOverride", TYPE_INT32},
        {"availableSettingsOverrides", TYPE_INT32},
        {"settingsOverridingFrameNumber", TYPE_INT32},
        {"autoframing", TYPE_BYTE},
        {"autoframingAvailable", TYPE_BYTE},
        {"autoframingState", TYPE_BYTE},
        {"lowLightBoostInfoLuminanceRange", TYPE_FLOAT},
        {"lowLightBoostState", TYPE_BYTE},
};
static_assert(std::size(kControlTags) ==
              static_cast<size_t>(ANDROID_CONTROL_END) - ANDROID_CONTROL_START);

const TagInfo kDemosaicTags[] = {
        {"mode", TYPE_BYTE},
};
static_assert(std::size(kDemosaicTags) ==
              static_cast<size_t>(ANDROID_DEMOSAIC_END) - ANDROID_DEMOSAIC_START);

const TagInfo kEdgeTags[] = {
        {"mode", TYPE_BYTE},
        {"strength", TYPE_BYTE},
        {"availableEdgeModes", TYPE_BYTE},
};
static_assert(std::size(kEdgeTags) == static_cast<size_t>(ANDROID_EDGE_END) - ANDROID_EDGE_START);

const TagInfo kFlashTags[] = {
        {"firingPower", TYPE_BYTE},
        {"firingTime", TYPE_INT64},
        {"mode", TYPE_BYTE},
        {"colorTemperature", TYPE_BYTE},
        {"maxEnergy", TYPE_BYTE},
        {"state", TYPE_BYTE},
        {"strengthLevel", TYPE_INT32},
        {"singleStrengthMaxLevel", TYPE_INT32},
        {"singleStrengthDefaultLevel", TYPE_INT32},
        {"torchStrengthMaxLevel", TYPE_INT32},
        {"torchStrengthDefaultLevel", TYPE_INT32},
};
static_assert(std::size(kFlashTags) == static_cast<size_t>(ANDROID_FLASH_END) - ANDROID_FLASH_START);

const TagInfo kFlashInfoTags[] = {
        {"available", TYPE_BYTE},
        {"chargeDuration", TYPE_INT64},
        {"strengthMaximumLevel", TYPE_INT32},
        {"strengthDefaultLevel", TYPE_INT32},
};
static_assert(std::size(kFlashInfoTags) ==
              static_cast<size_t>(ANDROID_FLASH_INFO_END) - ANDROID_FLASH_INFO_START);

const TagInfo kHotPixelTags[] = {
        {"mode", TYPE_BYTE},
        {"availableHotPixelModes", TYPE_BYTE},
};
static_assert(std::size(kHotPixelTags) ==
              static_cast<size_t>(ANDROID_HOT_PIXEL_END) - ANDROID_HOT_PIXEL_START);

const TagInfo kJpegTags[] = {
        {"gpsCoordinates", TYPE_DOUBLE}, {"gpsProcessingMethod", TYPE_BYTE},
        {"gpsTimestamp", TYPE_INT64},    {"orientation", TYPE_INT32},
        {"quality", TYPE_BYTE},          {"thumbnailQuality", TYPE_BYTE},
        {"thumbnailSize", TYPE_INT32},   {"availableThumbnailSizes", TYPE_INT32},
        {"maxSize", TYPE_INT32},         {"size", TYPE_INT32},
};
static_assert(std::size(kJpegTags) == static_cast<size_t>(ANDROID_JPEG_END) - ANDROID_JPEG_START);

const TagInfo kLensTags[] = {
        {"aperture", TYPE_FLOAT},
        {"filterDensity", TYPE_FLOAT},
        {"focalLength", TYPE_FLOAT},
        {"focusDistance", TYPE_FLOAT},
        {"opticalStabilizationMode", TYPE_BYTE},
        {"facing", TYPE_BYTE},
        {"poseRotation", TYPE_FLOAT},
        {"poseTranslation", TYPE_FLOAT},
        {"focusRange", TYPE_FLOAT},
        {"state", TYPE_BYTE},
        {"intrinsicCalibration", TYPE_FLOAT},
        {"radialDistortion", TYPE_FLOAT},
        {"poseReference", TYPE_BYTE},
        {"distortion", TYPE_FLOAT},
        {"distortionMaximumResolution", TYPE_FLOAT},
        {"intrinsicCalibrationMaximumResolution", TYPE_FLOAT},
};
static_assert(std::size(kLensTags) == static_cast<size_t>(ANDROID_LENS_END) - ANDROID_LENS_START);

const TagInfo kLensInfoTags[] = {
        {"availableApertures", TYPE_FLOAT},    {"availableFilterDensities", TYPE_FLOAT},
        {"availableFocalLengths", TYPE_FLOAT}, {"availableOpticalStabilization", TYPE_BYTE},
        {"hyperfocalDistance", TYPE_FLOAT},    {"minimumFocusDistance", TYPE_FLOAT},
        {"shadingMapSize", TYPE_INT32},        {"focusDistanceCalibration", TYPE_BYTE},
};
static_assert(std::size(kLensInfoTags) ==
              static_cast<size_t>(ANDROID_LENS_INFO_END) - ANDROID_LENS_INFO_START);

const TagInfo kNoiseReductionTags[] = {
        {"mode", TYPE_BYTE},
        {"strength", TYPE_BYTE},
        {"availableNoiseReductionModes", TYPE_BYTE},
};
static_assert(std::size(kNoiseReductionTags) ==
              static_cast<size_t>(ANDROID_NOISE_REDUCTION_END) - ANDROID_NOISE_REDUCTION_START);

const TagInfo kQuirksTags[] = {
        {"meteringCropRegion", TYPE_BYTE}, {"triggerAfWithAuto", TYPE_BYTE},
        {"useZslFormat", TYPE_BYTE},       {"usePartialResult", TYPE_BYTE},
        {"partialResult", TYPE_BYTE},
};
static_assert(std::size(kQuirksTags) ==
              static_cast<size_t>(ANDROID_QUIRKS_END) - ANDROID_QUIRKS_START);

const TagInfo kRequestTags[] = {
        {"frameCount", TYPE_INT32},
        {"id", TYPE_INT32},
        {"inputStreams", TYPE_INT32},
        {"metadataMode", TYPE_BYTE},
        {"outputStreams", TYPE_INT32},
        {"type", TYPE_BYTE},
        {"maxNumOutputStreams", TYPE_INT32},
        {"maxNumReprocessStreams", TYPE_INT32},
        {"maxNumInputStreams", TYPE_INT32},
        {"pipelineDepth", TYPE_BYTE},
        {"pipelineMaxDepth", TYPE_BYTE},
        {"partialResultCount", TYPE_INT32},
        {"availableCapabilities", TYPE_BYTE},
        {"availableRequestKeys", TYPE_INT32},
        {"availableResultKeys", TYPE_INT32},
        {"availableCharacteristicsKeys", TYPE_INT32},
        {"availableSessionKeys", TYPE_INT32},
        {"availablePhysicalCameraRequestKeys", TYPE_INT32},
        {"characteristicKeysNeedingPermission", TYPE_INT32},
        {"availableDynamicRangeProfilesMap", TYPE_INT64},
        {"recommendedTenBitDynamicRangeProfile", TYPE_INT64},
        {"availableColorSpaceProfilesMap", TYPE_INT64},
};
static_assert(std::size(kRequestTags) ==
              static_cast<size_t>(ANDROID_REQUEST_END) - ANDROID_REQUEST_START);

const TagInfo kScalerTags[] = {
        {"cropRegion", TYPE_INT32},
        {"availableFormats", TYPE_INT32},
        {"availableJpegMinDurations", TYPE_INT64},
        {"availableJpegSizes", TYPE_INT32},
        {"availableMaxDigitalZoom", TYPE_FLOAT},
        {"availableProcessedMinDurations", TYPE_INT64},
        {"availableProcessedSizes", TYPE_INT32},
        {"availableRawMinDurations", TYPE_INT64},
        {"availableRawSizes", TYPE_INT32},
        {"availableInputOutputFormatsMap", TYPE_INT32},
        {"availableStreamConfigurations", TYPE_INT32},
        {"availableMinFrameDurations", TYPE_INT64},
        {"availableStallDurations", TYPE_INT64},
        {"croppingType", TYPE_BYTE},
        {"availableRecommendedStreamConfigurations", TYPE_INT32},
        {"availableRecommendedInputOutputFormatsMap", TYPE_INT32},
        {"availableRotateAndCropModes", TYPE_BYTE},
        {"rotateAndCrop", TYPE_BYTE},
        {"defaultSecureImageSize", TYPE_INT32},
        {"physicalCameraMultiResolutionStreamConfigurations", TYPE_INT32},
        {"availableStreamConfigurationsMaximumResolution", TYPE_INT32},
        {"availableMinFrameDurationsMaximumResolution", TYPE_INT64},
        {"availableStallDurationsMaximumResolution", TYPE_INT64},
        {"availableInputOutputFormatsMapMaximumResolution", TYPE_INT32},
        {"multiResolutionStreamSupported", TYPE_BYTE},
        {"cropRegionSet", TYPE_BYTE},
        {"availableStreamUseCases", TYPE_INT64},
        {"rawCropRegion", TYPE_INT32},
};
static_assert(std::size(kScalerTags) ==
              static_cast<size_t>(ANDROID_SCALER_END) - ANDROID_SCALER_START);

const TagInfo kSensorTags[] = {
        {"exposureTime", TYPE_INT64},
        {"frameDuration", TYPE_INT64},
        {"sensitivity", TYPE_INT32},
        {"referenceIlluminant1", TYPE_BYTE},
        {"referenceIlluminant2", TYPE_BYTE},
        {"calibrationTransform1", TYPE_RATIONAL},
        {"calibrationTransform2", TYPE_RATIONAL},
        {"colorTransform1", TYPE_RATIONAL},
        {"colorTransform2", TYPE_RATIONAL},
        {"forwardMatrix1", TYPE_RATIONAL},
        {"forwardMatrix2", TYPE_RATIONAL},
        {"baseGainFactor", TYPE_RATIONAL},
        {"blackLevelPattern", TYPE_INT32},
        {"maxAnalogSensitivity", TYPE_INT32},
        {"orientation", TYPE_INT32},
        {"profileHueSatMapDimensions", TYPE_INT32},
        {"timestamp", TYPE_INT64},
        {"temperature", TYPE_FLOAT},
        {"neutralColorPoint", TYPE_RATIONAL},
        {"noiseProfile", TYPE_DOUBLE},
        {"profileHueSatMap", TYPE_FLOAT},
        {"profileToneCurve", TYPE_FLOAT},
        {"greenSplit", TYPE_FLOAT},
        {"testPatternData", TYPE_INT32},
        {"testPatternMode", TYPE_INT32},
        {"availableTestPatternModes", TYPE_INT32},
        {"rollingShutterSkew", TYPE_INT64},
        {"opticalBlackRegions", TYPE_INT32},
        {"dynamicBlackLevel", TYPE_FLOAT},
        {"dynamicWhiteLevel", TYPE_INT32},
        {"opaqueRawSize", TYPE_INT32},
        {"opaqueRawSizeMaximumResolution", TYPE_INT32},
        {"pixelMode", TYPE_BYTE},
        {"rawBinningFactorUsed", TYPE_BYTE},
        {"readoutTimestamp", TYPE_BYTE},
};
static_assert(std::size(kSensorTags) ==
              static_cast<size_t>(ANDROID_SENSOR_END) - ANDROID_SENSOR_START);

const TagInfo kSensorInfoTags[] = {
        {"activeArraySize", TYPE_INT32},
        {"sensitivityRange", TYPE_INT32},
        {"colorFilterArrangement", TYPE_BYTE},
        {"exposureTimeRange", TYPE_INT64},
        {"maxFrameDuration", TYPE_INT64},
        {"physicalSize", TYPE_FLOAT},
        {"pixelArraySize", TYPE_INT32},
        {"whiteLevel", TYPE_INT32},
        {"timestampSource", TYPE_BYTE},
        {"lensShadingApplied", TYPE_BYTE},
        {"preCorrectionActiveArraySize", TYPE_INT32},
        {"activeArraySizeMaximumResolution", TYPE_INT32},
        {"pixelArraySizeMaximumResolution", TYPE_INT32},
        {"preCorrectionActiveArraySizeMaximumResolution", TYPE_INT32},
        {"binningFactor", TYPE_INT32},
};
static_assert(std::size(kSensorInfoTags) ==
              static_cast<size_t>(ANDROID_SENSOR_INFO_END) - ANDROID_SENSOR_INFO_START);

const TagInfo kShadingTags[] = {
        {"mode", TYPE_BYTE},
        {"strength", TYPE_BYTE},
        {"availableModes", TYPE_BYTE},
};
static_assert(std::size(kShadingTags) ==
              static_cast<size_t>(ANDROID_SHADING_END) - ANDROID_SHADING_START);

const TagInfo kStatisticsTags[] = {
        {"faceDetectMode", TYPE_BYTE},
        {"histogramMode", TYPE_BYTE},
        {"sharpnessMapMode", TYPE_BYTE},
        {"hotPixelMapMode", TYPE_BYTE},
        {"faceIds", TYPE_INT32},
        {"faceLandmarks", TYPE_INT32},
        {"faceRectangles", TYPE_INT32},
        {"faceScores", TYPE_BYTE},
        {"histogram", TYPE_INT32},
        {"sharpnessMap", TYPE_INT32},
        {"lensShadingCorrectionMap", TYPE_BYTE},
        {"lensShadingMap", TYPE_FLOAT},
        {"predictedColorGains", TYPE_FLOAT},
        {"predictedColorTransform", TYPE_RATIONAL},
        {"sceneFlicker", TYPE_BYTE},
        {"hotPixelMap", TYPE_INT32},
        {"lensShadingMapMode", TYPE_BYTE},
        {"oisDataMode", TYPE_BYTE},
        {"oisTimestamps", TYPE_INT64},
        {"oisXShifts", TYPE_FLOAT},
        {"oisYShifts", TYPE_FLOAT},
        {"lensIntrinsicTimestamps", TYPE_INT64},
        {"lensIntrinsicSamples", TYPE_FLOAT},
};
static_assert(std::size(kStatisticsTags) ==
              static_cast<size_t>(ANDROID_STATISTICS_END) - ANDROID_STATISTICS_START);

const TagInfo kStatisticsInfoTags[] = {
        {"availableFaceDetectModes", TYPE_BYTE},
        {"histogramBucketCount", TYPE_INT32},
        {"maxFaceCount", TYPE_INT32},
        {"maxHistogramCount", TYPE_INT32},
        {"maxSharpnessMapValue", TYPE_INT32},
        {"sharpnessMapSize", TYPE_INT32},
        {"availableHotPixelMapModes", TYPE_BYTE},
        {"availableLensShadingMapModes", TYPE_BYTE},
        {"availableOisDataModes", TYPE_BYTE},
};
static_assert(std::size(kStatisticsInfoTags) ==
              static_cast<size_t>(ANDROID_STATISTICS_INFO_END) - ANDROID_STATISTICS_INFO_START);

const TagInfo kTonemapTags[] = {
        {"curveBlue", TYPE_FLOAT},      {"curveGreen", TYPE_FLOAT},
        {"curveRed", TYPE_FLOAT},       {"mode", TYPE_BYTE},
        {"maxCurvePoints", TYPE_INT32}, {"availableToneMapModes", TYPE_BYTE},
        {"gamma", TYPE_FLOAT},          {"presetCurve", TYPE_BYTE},
};
static_assert(std::size(kTonemapTags) ==
              static_cast<size_t>(ANDROID_TONEMAP_END) - ANDROID_TONEMAP_START);

const TagInfo kLedTags[] = {
        {"transmit", TYPE_BYTE},
        {"availableLeds", TYPE_BYTE},
};
static_assert(std::size(kLedTags) == static_cast<size_t>(ANDROID_LED_END) - ANDROID_LED_START);

const TagInfo kInfoTags[] = {
        {"supportedHardwareLevel", TYPE_BYTE},
        {"version", TYPE_BYTE},
        {"supportedBufferManagementVersion", TYPE_BYTE},
        {"deviceStateOrientations", TYPE_INT64},
        {"sessionConfigurationQueryVersion", TYPE_INT32},
        {"deviceId", TYPE_INT32},
};
static_assert(std::size(kInfoTags) == static_cast<size_t>(ANDROID_INFO_END) - ANDROID_INFO_START);

const TagInfo kBlackLevelTags[] = {
        {"lock", TYPE_BYTE},
};
static_assert(std::size(kBlackLevelTags) ==
              static_cast<size_t>(ANDROID_BLACK_LEVEL_END) - ANDROID_BLACK_LEVEL_START);

const TagInfo kSyncTags[] = {
        {"frameNumber", TYPE_INT64},
        {"maxLatency", TYPE_INT32},
};
static_assert(std::size(kSyncTags) == static_cast<size_t>(ANDROID_SYNC_END) - ANDROID_SYNC_START);

const TagInfo kReprocessTags[] = {
        {"effectiveExposureFactor", TYPE_FLOAT},
        {"maxCaptureStall", TYPE_INT32},
};
static_assert(std::size(kReprocessTags) ==
              static_cast<size_t>(ANDROID_REPROCESS_END) - ANDROID_REPROCESS_START);

const TagInfo kDepthTags[] = {
        {"maxDepthSamples", TYPE_INT32},
        {"availableDepthStreamConfigurations", TYPE_INT32},
        {"availableDepthMinFrameDurations", TYPE_INT64},
        {"availableDepthStallDurations", TYPE_INT64},
        {"depthIsExclusive", TYPE_BYTE},
        {"availableRecommendedDepthStreamConfigurations", TYPE_INT32},
        {"availableDynamicDepthStreamConfigurations", TYPE_INT32},
        {"availableDynamicDepthMinFrameDurations", TYPE_INT64},
        {"availableDynamicDepthStallDurations", TYPE_INT64},
        {"availableDepthStreamConfigurationsMaximumResolution", TYPE_INT32},
        {"availableDepthMinFrameDurationsMaximumResolution", TYPE_INT64},
        {"availableDepthStallDurationsMaximumResolution", TYPE_INT64},
        {"availableDynamicDepthStreamConfigurationsMaximumResolution", TYPE_INT32},
        {"availableDynamicDepthMinFrameDurationsMaximumResolution", TYPE_INT64},
        {"availableDynamicDepthStallDurationsMaximumResolution", TYPE_INT64},
};
static_assert(std::size(kDepthTags) == static_cast<size_t>(ANDROID_DEPTH_END) - ANDROID_DEPTH_START);

const TagInfo kLogicalMultiCameraTags[] = {
        {"physicalIds", TYPE_BYTE},
        {"sensorSyncType", TYPE_BYTE},
        {"activePhysicalId", TYPE_BYTE},
        {"activePhysicalSensorCropRegion", TYPE_INT32},
};
static_assert(std::size(kLogicalMultiCameraTags) ==
              static_cast<size_t>(ANDROID_LOGICAL_MULTI_CAMERA_END) -
                      ANDROID_LOGICAL_MULTI_CAMERA_START);

const TagInfo kDistortionCorrectionTags[] = {
        {"mode", TYPE_BYTE},
        {"availableModes", TYPE_BYTE},
};
static_assert(std::size(kDistortionCorrectionTags) ==
              static_cast<size_t>(ANDROID_DISTORTION_CORRECTION_END) -
                      ANDROID_DISTORTION_CORRECTION_START);

const TagInfo kHeicTags[] = {
        {"availableHeicStreamConfigurations", TYPE_INT32},
        {"availableHeicMinFrameDurations", TYPE_INT64},
        {"availableHeicStallDurations", TYPE_INT64},
        {"availableHeicStreamConfigurationsMaximumResolution", TYPE_INT32},
        {"availableHeicMinFrameDurationsMaximumResolution", TYPE_INT64},
        {"availableHeicStallDurationsMaximumResolution", TYPE_INT64},
};
static_assert(std::size(kHeicTags) == static_cast<size_t>(ANDROID_HEIC_END) - ANDROID_HEIC_START);

const TagInfo kHeicInfoTags[] = {
        {"supported", TYPE_BYTE},
        {"maxJpegAppSegmentsCount", TYPE_BYTE},
};
static_assert(std::size(kHeicInfoTags) ==
              static_cast<size_t>(ANDROID_HEIC_INFO_END) - ANDROID_HEIC_INFO_START);

const TagInfo kAutomotiveTags[] = {
        {"location", TYPE_BYTE},
};
static_assert(std::size(kAutomotiveTags) ==
              static_cast<size_t>(ANDROID_AUTOMOTIVE_END) - ANDROID_AUTOMOTIVE_START);

const TagInfo kAutomotiveLensTags[] = {
        {"facing", TYPE_BYTE},
};
static_assert(std::size(kAutomotiveLensTags) ==
              static_cast<size_t>(ANDROID_AUTOMOTIVE_LENS_END) - ANDROID_AUTOMOTIVE_LENS_START);

const TagInfo kExtensionTags[] = {
        {"strength", TYPE_INT32},
        {"currentType", TYPE_INT32},
};
static_assert(std::size(kExtensionTags) ==
              static_cast<size_t>(ANDROID_EXTENSION_END) - ANDROID_EXTENSION_START);

const TagInfo kJpegrTags[] = {
        {"availableJpegRStreamConfigurations", TYPE_INT32},
        {"availableJpegRMinFrameDurations", TYPE_INT64},
        {"availableJpegRStallDurations", TYPE_INT64},
        {"availableJpegRStreamConfigurationsMaximumResolution", TYPE_INT32},
        {"availableJpegRMinFrameDurationsMaximumResolution", TYPE_INT64},
        {"availableJpegRStallDurationsMaximumResolution", TYPE_INT64},
};
static_assert(std::size(kJpegrTags) == static_cast<size_t>(ANDROID_JPEGR_END) - ANDROID_JPEGR_START);

const EnumValue kColorCorrectionModeValues[] = {
        {"TRANSFORM_MATRIX", ANDROID_COLOR_CORRECTION_MODE_TRANSFORM_MATRIX},
        {"FAST", ANDROID_COLOR_CORRECTION_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_COLOR_CORRECTION_MODE_HIGH_QUALITY},
};
const EnumValue kColorCorrectionAberrationModeValues[] = {
        {"OFF", ANDROID_COLOR_CORRECTION_ABERRATION_MODE_OFF},
        {"FAST", ANDROID_COLOR_CORRECTION_ABERRATION_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_COLOR_CORRECTION_ABERRATION_MODE_HIGH_QUALITY},
};
const EnumValue kControlAeAntibandingModeValues[] = {
        {"OFF", ANDROID_CONTROL_AE_ANTIBANDING_MODE_OFF},
        {"50HZ", ANDROID_CONTROL_AE_ANTIBANDING_MODE_50HZ},
        {"60HZ", ANDROID_CONTROL_AE_ANTIBANDING_MODE_60HZ},
        {"AUTO", ANDROID_CONTROL_AE_ANTIBANDING_MODE_AUTO},
};
const EnumValue kControlAeLockValues[] = {
        {"OFF", ANDROID_CONTROL_AE_LOCK_OFF},
        {"ON", ANDROID_CONTROL_AE_LOCK_ON},
};
const EnumValue kControlAeModeValues[] = {
        {"OFF", ANDROID_CONTROL_AE_MODE_OFF},
        {"ON", ANDROID_CONTROL_AE_MODE_ON},
        {"ON_AUTO_FLASH", ANDROID_CONTROL_AE_MODE_ON_AUTO_FLASH},
        {"ON_ALWAYS_FLASH", ANDROID_CONTROL_AE_MODE_ON_ALWAYS_FLASH},
        {"ON_AUTO_FLASH_REDEYE", ANDROID_CONTROL_AE_MODE_ON_AUTO_FLASH_REDEYE},
        {"ON_EXTERNAL_FLASH", ANDROID_CONTROL_AE_MODE_ON_EXTERNAL_FLASH},
        {"ON_LOW_LIGHT_BOOST_BRIGHTNESS_PRIORITY",
         ANDROID_CONTROL_AE_MODE_ON_LOW_LIGHT_BOOST_BRIGHTNESS_PRIORITY},
};
const EnumValue kControlAePrecaptureTriggerValues[] = {
        {"IDLE", ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER_IDLE},
        {"START", ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER_START},
        {"CANCEL", ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER_CANCEL},
};
const EnumValue kControlAfModeValues[] = {
        {"OFF", ANDROID_CONTROL_AF_MODE_OFF},
        {"AUTO", ANDROID_CONTROL_AF_MODE_AUTO},
        {"MACRO", ANDROID_CONTROL_AF_MODE_MACRO},
        {"CONTINUOUS_VIDEO", ANDROID_CONTROL_AF_MODE_CONTINUOUS_VIDEO},
        {"CONTINUOUS_PICTURE", ANDROID_CONTROL_AF_MODE_CONTINUOUS_PICTURE},
        {"EDOF", ANDROID_CONTROL_AF_MODE_EDOF},
};
const EnumValue kControlAfTriggerValues[] = {
        {"IDLE", ANDROID_CONTROL_AF_TRIGGER_IDLE},
        {"START", ANDROID_CONTROL_AF_TRIGGER_START},
        {"CANCEL", ANDROID_CONTROL_AF_TRIGGER_CANCEL},
};
const EnumValue kControlAwbLockValues[] = {
        {"OFF", ANDROID_CONTROL_AWB_LOCK_OFF},
        {"ON", ANDROID_CONTROL_AWB_LOCK_ON},
};
const EnumValue kControlAwbModeValues[] = {
        {"OFF", ANDROID_CONTROL_AWB_MODE_OFF},
        {"AUTO", ANDROID_CONTROL_AWB_MODE_AUTO},
        {"INCANDESCENT", ANDROID_CONTROL_AWB_MODE_INCANDESCENT},
        {"FLUORESCENT", ANDROID_CONTROL_AWB_MODE_FLUORESCENT},
        {"WARM_FLUORESCENT", ANDROID_CONTROL_AWB_MODE_WARM_FLUORESCENT},
        {"DAYLIGHT", ANDROID_CONTROL_AWB_MODE_DAYLIGHT},
        {"CLOUDY_DAYLIGHT", ANDROID_CONTROL_AWB_MODE_CLOUDY_DAYLIGHT},
        {"TWILIGHT", ANDROID_CONTROL_AWB_MODE_TWILIGHT},
        {"SHADE", ANDROID_CONTROL_AWB_MODE_SHADE},
};
const EnumValue kControlCaptureIntentValues[] = {
        {"CUSTOM", ANDROID_CONTROL_CAPTURE_INTENT_CUSTOM},
        {"PREVIEW", ANDROID_CONTROL_CAPTURE_INTENT_PREVIEW},
        {"STILL_CAPTURE", ANDROID_CONTROL_CAPTURE_INTENT_STILL_CAPTURE},
        {"VIDEO_RECORD", ANDROID_CONTROL_CAPTURE_INTENT_VIDEO_RECORD},
        {"VIDEO_SNAPSHOT", ANDROID_CONTROL_CAPTURE_INTENT_VIDEO_SNAPSHOT},
        {"ZERO_SHUTTER_LAG", ANDROID_CONTROL_CAPTURE_INTENT_ZERO_SHUTTER_LAG},
        {"MANUAL", ANDROID_CONTROL_CAPTURE_INTENT_MANUAL},
        {"MOTION_TRACKING", ANDROID_CONTROL_CAPTURE_INTENT_MOTION_TRACKING},
};
const EnumValue kControlEffectModeValues[] = {
        {"OFF", ANDROID_CONTROL_EFFECT_MODE_OFF},
        {"MONO", ANDROID_CONTROL_EFFECT_MODE_MONO},
        {"NEGATIVE", ANDROID_CONTROL_EFFECT_MODE_NEGATIVE},
        {"SOLARIZE", ANDROID_CONTROL_EFFECT_MODE_SOLARIZE},
        {"SEPIA", ANDROID_CONTROL_EFFECT_MODE_SEPIA},
        {"POSTERIZE", ANDROID_CONTROL_EFFECT_MODE_POSTERIZE},
        {"WHITEBOARD", ANDROID_CONTROL_EFFECT_MODE_WHITEBOARD},
        {"BLACKBOARD", ANDROID_CONTROL_EFFECT_MODE_BLACKBOARD},
        {"AQUA", ANDROID_CONTROL_EFFECT_MODE_AQUA},
};
const EnumValue kControlModeValues[] = {
        {"OFF", ANDROID_CONTROL_MODE_OFF},
        {"AUTO", ANDROID_CONTROL_MODE_AUTO},
        {"USE_SCENE_MODE", ANDROID_CONTROL_MODE_USE_SCENE_MODE},
        {"OFF_KEEP_STATE", ANDROID_CONTROL_MODE_OFF_KEEP_STATE},
        {"USE_EXTENDED_SCENE_MODE", ANDROID_CONTROL_MODE_USE_EXTENDED_SCENE_MODE},
};
const EnumValue kControlSceneModeValues[] = {
        {"DISABLED", ANDROID_CONTROL_SCENE_MODE_DISABLED},
        {"FACE_PRIORITY", ANDROID_CONTROL_SCENE_MODE_FACE_PRIORITY},
        {"ACTION", ANDROID_CONTROL_SCENE_MODE_ACTION},
        {"PORTRAIT", ANDROID_CONTROL_SCENE_MODE_PORTRAIT},
        {"LANDSCAPE", ANDROID_CONTROL_SCENE_MODE_LANDSCAPE},
        {"NIGHT", ANDROID_CONTROL_SCENE_MODE_NIGHT},
        {"NIGHT_PORTRAIT", ANDROID_CONTROL_SCENE_MODE_NIGHT_PORTRAIT},
        {"THEATRE", ANDROID_CONTROL_SCENE_MODE_THEATRE},
        {"BEACH", ANDROID_CONTROL_SCENE_MODE_BEACH},
        {"SNOW", ANDROID_CONTROL_SCENE_MODE_SNOW},
        {"SUNSET", ANDROID_CONTROL_SCENE_MODE_SUNSET},
        {"STEADYPHOTO", ANDROID_CONTROL_SCENE_MODE_STEADYPHOTO},
        {"FIREWORKS", ANDROID_CONTROL_SCENE_MODE_FIREWORKS},
        {"SPORTS", ANDROID_CONTROL_SCENE_MODE_SPORTS},
        {"PARTY", ANDROID_CONTROL_SCENE_MODE_PARTY},
        {"CANDLELIGHT", ANDROID_CONTROL_SCENE_MODE_CANDLELIGHT},
        {"BARCODE", ANDROID_CONTROL_SCENE_MODE_BARCODE},
        {"HIGH_SPEED_VIDEO", ANDROID_CONTROL_SCENE_MODE_HIGH_SPEED_VIDEO},
        {"HDR", ANDROID_CONTROL_SCENE_MODE_HDR},
        {"FACE_PRIORITY_LOW_LIGHT", ANDROID_CONTROL_SCENE_MODE_FACE_PRIORITY_LOW_LIGHT},
        {"DEVICE_CUSTOM_START", ANDROID_CONTROL_SCENE_MODE_DEVICE_CUSTOM_START},
        {"DEVICE_CUSTOM_END", ANDROID_CONTROL_SCENE_MODE_DEVICE_CUSTOM_END},
};
const EnumValue kControlVideoStabilizationModeValues[] = {
        {"OFF", ANDROID_CONTROL_VIDEO_STABILIZATION_MODE_OFF},
        {"ON", ANDROID_CONTROL_VIDEO_STABILIZATION_MODE_ON},
        {"PREVIEW_STABILIZATION", ANDROID_CONTROL_VIDEO_STABILIZATION_MODE_PREVIEW_STABILIZATION},
};
const EnumValue kControlAeStateValues[] = {
        {"INACTIVE", ANDROID_CONTROL_AE_STATE_INACTIVE},
        {"SEARCHING", ANDROID_CONTROL_AE_STATE_SEARCHING},
        {"CONVERGED", ANDROID_CONTROL_AE_STATE_CONVERGED},
        {"LOCKED", ANDROID_CONTROL_AE_STATE_LOCKED},
        {"FLASH_REQUIRED", ANDROID_CONTROL_AE_STATE_FLASH_REQUIRED},
        {"PRECAPTURE", ANDROID_CONTROL_AE_STATE_PRECAPTURE},
};
const EnumValue kControlAfStateValues[] = {
        {"INACTIVE", ANDROID_CONTROL_AF_STATE_INACTIVE},
        {"PASSIVE_SCAN", ANDROID_CONTROL_AF_STATE_PASSIVE_SCAN},
        {"PASSIVE_FOCUSED", ANDROID_CONTROL_AF_STATE_PASSIVE_FOCUSED},
        {"ACTIVE_SCAN", ANDROID_CONTROL_AF_STATE_ACTIVE_SCAN},
        {"FOCUSED_LOCKED", ANDROID_CONTROL_AF_STATE_FOCUSED_LOCKED},
        {"NOT_FOCUSED_LOCKED", ANDROID_CONTROL_AF_STATE_NOT_FOCUSED_LOCKED},
        {"PASSIVE_UNFOCUSED", ANDROID_CONTROL_AF_STATE_PASSIVE_UNFOCUSED},
};
const EnumValue kControlAwbStateValues[] = {
        {"INACTIVE", ANDROID_CONTROL_AWB_STATE_INACTIVE},
        {"SEARCHING", ANDROID_CONTROL_AWB_STATE_SEARCHING},
        {"CONVERGED", ANDROID_CONTROL_AWB_STATE_CONVERGED},
        {"LOCKED", ANDROID_CONTROL_AWB_STATE_LOCKED},
};
const EnumValue kControlAeLockAvailableValues[] = {
        {"FALSE", ANDROID_CONTROL_AE_LOCK_AVAILABLE_FALSE},
        {"TRUE", ANDROID_CONTROL_AE_LOCK_AVAILABLE_TRUE},
};
const EnumValue kControlAwbLockAvailableValues[] = {
        {"FALSE", ANDROID_CONTROL_AWB_LOCK_AVAILABLE_FALSE},
        {"TRUE", ANDROID_CONTROL_AWB_LOCK_AVAILABLE_TRUE},
};
const EnumValue kControlEnableZslValues[] = {
        {"FALSE", ANDROID_CONTROL_ENABLE_ZSL_FALSE},
        {"TRUE", ANDROID_CONTROL_ENABLE_ZSL_TRUE},
};
const EnumValue kEdgeModeValues[] = {
        {"OFF", ANDROID_EDGE_MODE_OFF},
        {"FAST", ANDROID_EDGE_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_EDGE_MODE_HIGH_QUALITY},
        {"ZERO_SHUTTER_LAG", ANDROID_EDGE_MODE_ZERO_SHUTTER_LAG},
};
const EnumValue kFlashModeValues[] = {
        {"OFF", ANDROID_FLASH_MODE_OFF},
        {"SINGLE", ANDROID_FLASH_MODE_SINGLE},
        {"TORCH", ANDROID_FLASH_MODE_TORCH},
};
const EnumValue kFlashStateValues[] = {
        {"UNAVAILABLE", ANDROID_FLASH_STATE_UNAVAILABLE},
        {"CHARGING", ANDROID_FLASH_STATE_CHARGING},
        {"READY", ANDROID_FLASH_STATE_READY},
        {"FIRED", ANDROID_FLASH_STATE_FIRED},
        {"PARTIAL", ANDROID_FLASH_STATE_PARTIAL},
};
const EnumValue kFlashInfoAvailableValues[] = {
        {"FALSE", ANDROID_FLASH_INFO_AVAILABLE_FALSE},
        {"TRUE", ANDROID_FLASH_INFO_AVAILABLE_TRUE},
};
const EnumValue kHotPixelModeValues[] = {
        {"OFF", ANDROID_HOT_PIXEL_MODE_OFF},
        {"FAST", ANDROID_HOT_PIXEL_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_HOT_PIXEL_MODE_HIGH_QUALITY},
};
const EnumValue kLensOpticalStabilizationModeValues[] = {
        {"OFF", ANDROID_LENS_OPTICAL_STABILIZATION_MODE_OFF},
        {"ON", ANDROID_LENS_OPTICAL_STABILIZATION_MODE_ON},
};
const EnumValue kLensFacingValues[] = {
        {"FRONT", ANDROID_LENS_FACING_FRONT},
        {"BACK", ANDROID_LENS_FACING_BACK},
        {"EXTERNAL", ANDROID_LENS_FACING_EXTERNAL},
};
const EnumValue kLensStateValues[] = {
        {"STATIONARY", ANDROID_LENS_STATE_STATIONARY},
        {"MOVING", ANDROID_LENS_STATE_MOVING},
};
const EnumValue kLensInfoFocusDistanceCalibrationValues[] = {
        {"UNCALIBRATED", ANDROID_LENS_INFO_FOCUS_DISTANCE_CALIBRATION_UNCALIBRATED},
        {"APPROXIMATE", ANDROID_LENS_INFO_FOCUS_DISTANCE_CALIBRATION_APPROXIMATE},
        {"CALIBRATED", ANDROID_LENS_INFO_FOCUS_DISTANCE_CALIBRATION_CALIBRATED},
};
const EnumValue kNoiseReductionModeValues[] = {
        {"OFF", ANDROID_NOISE_REDUCTION_MODE_OFF},
        {"FAST", ANDROID_NOISE_REDUCTION_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_NOISE_REDUCTION_MODE_HIGH_QUALITY},
        {"MINIMAL", ANDROID_NOISE_REDUCTION_MODE_MINIMAL},
        {"ZERO_SHUTTER_LAG", ANDROID_NOISE_REDUCTION_MODE_ZERO_SHUTTER_LAG},
};
const EnumValue kRequestMetadataModeValues[] = {
        {"NONE", ANDROID_REQUEST_METADATA_MODE_NONE},
        {"FULL", ANDROID_REQUEST_METADATA_MODE_FULL},
};
const EnumValue kRequestTypeValues[] = {
        {"CAPTURE", ANDROID_REQUEST_TYPE_CAPTURE},
        {"REPROCESS", ANDROID_REQUEST_TYPE_REPROCESS},
};
const EnumValue kRequestAvailableCapabilitiesValues[] = {
        {"BACKWARD_COMPATIBLE", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_BACKWARD_COMPATIBLE},
        {"MANUAL_SENSOR", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MANUAL_SENSOR},
        {"MANUAL_POST_PROCESSING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MANUAL_POST_PROCESSING},
        {"RAW", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_RAW},
        {"PRIVATE_REPROCESSING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_PRIVATE_REPROCESSING},
        {"READ_SENSOR_SETTINGS", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_READ_SENSOR_SETTINGS},
        {"BURST_CAPTURE", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_BURST_CAPTURE},
        {"YUV_REPROCESSING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_YUV_REPROCESSING},
        {"DEPTH_OUTPUT", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_DEPTH_OUTPUT},
        {"CONSTRAINED_HIGH_SPEED_VIDEO",
         ANDROID_REQUEST_AVAILABLE_CAPABILITIES_CONSTRAINED_HIGH_SPEED_VIDEO},
        {"MOTION_TRACKING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MOTION_TRACKING},
        {"LOGICAL_MULTI_CAMERA", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_LOGICAL_MULTI_CAMERA},
        {"MONOCHROME", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MONOCHROME},
        {"SECURE_IMAGE_DATA", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_SECURE_IMAGE_DATA},
        {"SYSTEM_CAMERA", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_SYSTEM_CAMERA},
        {"OFFLINE_PROCESSING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_OFFLINE_PROCESSING},
        {"ULTRA_HIGH_RESOLUTION_SENSOR",
         ANDROID_REQUEST_AVAILABLE_CAPABILITIES_ULTRA_HIGH_RESOLUTION_SENSOR},
        {"REMOSAIC_REPROCESSING", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_REMOSAIC_REPROCESSING},
        {"DYNAMIC_RANGE_TEN_BIT", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_DYNAMIC_RANGE_TEN_BIT},
        {"STREAM_USE_CASE", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_STREAM_USE_CASE},
        {"COLOR_SPACE_PROFILES", ANDROID_REQUEST_AVAILABLE_CAPABILITIES_COLOR_SPACE_PROFILES},
};
const EnumValue kRequestAvailableDynamicRangeProfilesMapValues[] = {
        {"STANDARD", ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_STANDARD},
        {"HLG10", ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_HLG10},
        {"MAX", ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_MAX},
};
const EnumValue kRequestAvailableColorSpaceProfilesMapValues[] = {
        {"UNSPECIFIED", ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED},
        {"SRGB", ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_SRGB},
        {"DISPLAY_P3", ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_DISPLAY_P3},
        {"BT2020_HLG", ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_BT2020_HLG},
};
const EnumValue kScalerAvailableStreamConfigurationsValues[] = {
        {"OUTPUT", ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_OUTPUT},
        {"INPUT", ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_INPUT},
};
const EnumValue kScalerCroppingTypeValues[] = {
        {"CENTER_ONLY", ANDROID_SCALER_CROPPING_TYPE_CENTER_ONLY},
        {"FREEFORM", ANDROID_SCALER_CROPPING_TYPE_FREEFORM},
};
const EnumValue kScalerAvailableStreamUseCasesValues[] = {
        {"DEFAULT", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_DEFAULT},
        {"PREVIEW", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_PREVIEW},
        {"STILL_CAPTURE", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_STILL_CAPTURE},
        {"VIDEO_RECORD", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_VIDEO_RECORD},
        {"PREVIEW_VIDEO_STILL", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_PREVIEW_VIDEO_STILL},
        {"VIDEO_CALL", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_VIDEO_CALL},
        {"CROPPED_RAW", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_CROPPED_RAW},
        {"VENDOR_START", ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_VENDOR_START},
};
const EnumValue kSensorTestPatternModeValues[] = {
        {"OFF", ANDROID_SENSOR_TEST_PATTERN_MODE_OFF},
        {"SOLID_COLOR", ANDROID_SENSOR_TEST_PATTERN_MODE_SOLID_COLOR},
        {"COLOR_BARS", ANDROID_SENSOR_TEST_PATTERN_MODE_COLOR_BARS},
        {"COLOR_BARS_FADE_TO_GRAY", ANDROID_SENSOR_TEST_PATTERN_MODE_COLOR_BARS_FADE_TO_GRAY},
        {"PN9", ANDROID_SENSOR_TEST_PATTERN_MODE_PN9},
        {"BLACK", ANDROID_SENSOR_TEST_PATTERN_MODE_BLACK},
        {"CUSTOM1", ANDROID_SENSOR_TEST_PATTERN_MODE_CUSTOM1},
};
const EnumValue kSensorPixelModeValues[] = {
        {"DEFAULT", ANDROID_SENSOR_PIXEL_MODE_DEFAULT},
        {"MAXIMUM_RESOLUTION", ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION},
};
const EnumValue kSensorReadoutTimestampValues[] = {
        {"NOT_SUPPORTED", ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED},
        {"HARDWARE", ANDROID_SENSOR_READOUT_TIMESTAMP_HARDWARE},
};
const EnumValue kSensorInfoColorFilterArrangementValues[] = {
        {"RGGB", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_RGGB},
        {"GRBG", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_GRBG},
        {"GBRG", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_GBRG},
        {"BGGR", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_BGGR},
        {"RGB", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_RGB},
        {"MONO", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_MONO},
        {"NIR", ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT_NIR},
};
const EnumValue kSensorInfoTimestampSourceValues[] = {
        {"UNKNOWN", ANDROID_SENSOR_INFO_TIMESTAMP_SOURCE_UNKNOWN},
        {"REALTIME", ANDROID_SENSOR_INFO_TIMESTAMP_SOURCE_REALTIME},
};
const EnumValue kSensorInfoLensShadingAppliedValues[] = {
        {"FALSE", ANDROID_SENSOR_INFO_LENS_SHADING_APPLIED_FALSE},
        {"TRUE", ANDROID_SENSOR_INFO_LENS_SHADING_APPLIED_TRUE},
};
const EnumValue kShadingModeValues[] = {
        {"OFF", ANDROID_SHADING_MODE_OFF},
        {"FAST", ANDROID_SHADING_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_SHADING_MODE_HIGH_QUALITY},
};
const EnumValue kStatisticsFaceDetectModeValues[] = {
        {"OFF", ANDROID_STATISTICS_FACE_DETECT_MODE_OFF},
        {"SIMPLE", ANDROID_STATISTICS_FACE_DETECT_MODE_SIMPLE},
        {"FULL", ANDROID_STATISTICS_FACE_DETECT_MODE_FULL},
};
const EnumValue kStatisticsHotPixelMapModeValues[] = {
        {"OFF", ANDROID_STATISTICS_HOT_PIXEL_MAP_MODE_OFF},
        {"ON", ANDROID_STATISTICS_HOT_PIXEL_MAP_MODE_ON},
};
const EnumValue kStatisticsSceneFlickerValues[] = {
        {"NONE", ANDROID_STATISTICS_SCENE_FLICKER_NONE},
        {"50HZ", ANDROID_STATISTICS_SCENE_FLICKER_50HZ},
        {"60HZ", ANDROID_STATISTICS_SCENE_FLICKER_60HZ},
};
const EnumValue kStatisticsLensShadingMapModeValues[] = {
        {"OFF", ANDROID_STATISTICS_LENS_SHADING_MAP_MODE_OFF},
        {"ON", ANDROID_STATISTICS_LENS_SHADING_MAP_MODE_ON},
};
const EnumValue kTonemapModeValues[] = {
        {"CONTRAST_CURVE", ANDROID_TONEMAP_MODE_CONTRAST_CURVE},
        {"FAST", ANDROID_TONEMAP_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_TONEMAP_MODE_HIGH_QUALITY},
        {"GAMMA_VALUE", ANDROID_TONEMAP_MODE_GAMMA_VALUE},
        {"PRESET_CURVE", ANDROID_TONEMAP_MODE_PRESET_CURVE},
};
const EnumValue kInfoSupportedHardwareLevelValues[] = {
        {"LIMITED", ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_LIMITED},
        {"FULL", ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_FULL},
        {"LEGACY", ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_LEGACY},
        {"3", ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_3},
        {"EXTERNAL", ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_EXTERNAL},
};
const EnumValue kInfoSupportedBufferManagementVersionValues[] = {
        {"HIDL_DEVICE_3_5", ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_HIDL_DEVICE_3_5},
        {"SESSION_CONFIGURABLE",
         ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_SESSION_CONFIGURABLE},
};
const EnumValue kBlackLevelLockValues[] = {
        {"OFF", ANDROID_BLACK_LEVEL_LOCK_OFF},
        {"ON", ANDROID_BLACK_LEVEL_LOCK_ON},
};
const EnumValue kSyncFrameNumberValues[] = {
        {"CONVERGING", ANDROID_SYNC_FRAME_NUMBER_CONVERGING},
        {"UNKNOWN", ANDROID_SYNC_FRAME_NUMBER_UNKNOWN},
};
const EnumValue kSyncMaxLatencyValues[] = {
        {"PER_FRAME_CONTROL", ANDROID_SYNC_MAX_LATENCY_PER_FRAME_CONTROL},
        {"UNKNOWN", ANDROID_SYNC_MAX_LATENCY_UNKNOWN},
};
const EnumValue kDepthDepthIsExclusiveValues[] = {
        {"FALSE", ANDROID_DEPTH_DEPTH_IS_EXCLUSIVE_FALSE},
        {"TRUE", ANDROID_DEPTH_DEPTH_IS_EXCLUSIVE_TRUE},
};
const EnumValue kLogicalMultiCameraSensorSyncTypeValues[] = {
        {"APPROXIMATE", ANDROID_LOGICAL_MULTI_CAMERA_SENSOR_SYNC_TYPE_APPROXIMATE},
        {"CALIBRATED", ANDROID_LOGICAL_MULTI_CAMERA_SENSOR_SYNC_TYPE_CALIBRATED},
};
const EnumValue kDistortionCorrectionModeValues[] = {
        {"OFF", ANDROID_DISTORTION_CORRECTION_MODE_OFF},
        {"FAST", ANDROID_DISTORTION_CORRECTION_MODE_FAST},
        {"HIGH_QUALITY", ANDROID_DISTORTION_CORRECTION_MODE_HIGH_QUALITY},
};

}  // namespace

const TagInfo* const kTagInfo[ANDROID_SECTION_COUNT] = {
        kColorCorrectionTags,
        kControlTags,
        kDemosaicTags,
        kEdgeTags,
        kFlashTags,
        kFlashInfoTags,
        kHotPixelTags,
        kJpegTags,
        kLensTags,
        kLensInfoTags,
        kNoiseReductionTags,
        kQuirksTags,
        kRequestTags,
        kScalerTags,
        kSensorTags,
        kSensorInfoTags,
        kShadingTags,
        kStatisticsTags,
        kStatisticsInfoTags,
        kTonemapTags,
        kLedTags,
        kInfoTags,
        kBlackLevelTags,
        kSyncTags,
        kReprocessTags,
        kDepthTags,
        kLogicalMultiCameraTags,
        kDistortionCorrectionTags,
        kHeicTags,
        kHeicInfoTags,
        kAutomotiveTags,
        kAutomotiveLensTags,
        kExtensionTags,
        kJpegrTags,
};

const TagEnum kTagEnums[] = {
        {ANDROID_COLOR_CORRECTION_MODE, kColorCorrectionModeValues},
        {ANDROID_COLOR_CORRECTION_ABERRATION_MODE, kColorCorrectionAberrationModeValues},
        {ANDROID_CONTROL_AE_ANTIBANDING_MODE, kControlAeAntibandingModeValues},
        {ANDROID_CONTROL_AE_LOCK, kControlAeLockValues},
        {ANDROID_CONTROL_AE_MODE, kControlAeModeValues},
        {ANDROID_CONTROL_AE_PRECAPTURE_TRIGGER, kControlAePrecaptureTriggerValues},
        {ANDROID_CONTROL_AF_MODE, kControlAfModeValues},
        {ANDROID_CONTROL_AF_TRIGGER, kControlAfTriggerValues},
        {ANDROID_CONTROL_AWB_LOCK, kControlAwbLockValues},
        {ANDROID_CONTROL_AWB_MODE, kControlAwbModeValues},
        {ANDROID_CONTROL_CAPTURE_INTENT, kControlCaptureIntentValues},
        {ANDROID_CONTROL_EFFECT_MODE, kControlEffectModeValues},
        {ANDROID_CONTROL_MODE, kControlModeValues},
        {ANDROID_CONTROL_SCENE_MODE, kControlSceneModeValues},
        {ANDROID_CONTROL_VIDEO_STABILIZATION_MODE, kControlVideoStabilizationModeValues},
        {ANDROID_CONTROL_AE_STATE, kControlAeStateValues},
        {ANDROID_CONTROL_AF_STATE, kControlAfStateValues},
        {ANDROID_CONTROL_AWB_STATE, kControlAwbStateValues},
        {ANDROID_CONTROL_AE_LOCK_AVAILABLE, kControlAeLockAvailableValues},
        {ANDROID_CONTROL_AWB_LOCK_AVAILABLE, kControlAwbLockAvailableValues},
        {ANDROID_CONTROL_ENABLE_ZSL, kControlEnableZslValues},
        {ANDROID_EDGE_MODE, kEdgeModeValues},
        {ANDROID_FLASH_MODE, kFlashModeValues},
        {ANDROID_FLASH_STATE, kFlashStateValues},
        {ANDROID_FLASH_INFO_AVAILABLE, kFlashInfoAvailableValues},
        {ANDROID_HOT_PIXEL_MODE, kHotPixelModeValues},
        {ANDROID_LENS_OPTICAL_STABILIZATION_MODE, kLensOpticalStabilizationModeValues},
        {ANDROID_LENS_FACING, kLensFacingValues},
        {ANDROID_LENS_STATE, kLensStateValues},
        {ANDROID_LENS_INFO_FOCUS_DISTANCE_CALIBRATION, kLensInfoFocusDistanceCalibrationValues},
        {ANDROID_NOISE_REDUCTION_MODE, kNoiseReductionModeValues},
        {ANDROID_REQUEST_METADATA_MODE, kRequestMetadataModeValues},
        {ANDROID_REQUEST_TYPE, kRequestTypeValues},
        {ANDROID_REQUEST_AVAILABLE_CAPABILITIES, kRequestAvailableCapabilitiesValues},
        {ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP,
         kRequestAvailableDynamicRangeProfilesMapValues},
        {ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP,
         kRequestAvailableColorSpaceProfilesMapValues},
        {ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS, kScalerAvailableStreamConfigurationsValues},
        {ANDROID_SCALER_CROPPING_TYPE, kScalerCroppingTypeValues},
        {ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES, kScalerAvailableStreamUseCasesValues},
        {ANDROID_SENSOR_TEST_PATTERN_MODE, kSensorTestPatternModeValues},
        {ANDROID_SENSOR_PIXEL_MODE, kSensorPixelModeValues},
        {ANDROID_SENSOR_READOUT_TIMESTAMP, kSensorReadoutTimestampValues},
        {ANDROID_SENSOR_INFO_COLOR_FILTER_ARRANGEMENT, kSensorInfoColorFilterArrangementValues},
        {ANDROID_SENSOR_INFO_TIMESTAMP_SOURCE, kSensorInfoTimestampSourceValues},
        {ANDROID_SENSOR_INFO_LENS_SHADING_APPLIED, kSensorInfoLensShadingAppliedValues},
        {ANDROID_SHADING_MODE, kShadingModeValues},
        {ANDROID_STATISTICS_FACE_DETECT_MODE, kStatisticsFaceDetectModeValues},
        {ANDROID_STATISTICS_HOT_PIXEL_MAP_MODE, kStatisticsHotPixelMapModeValues},
        {ANDROID_STATISTICS_SCENE_FLICKER, kStatisticsSceneFlickerValues},
        {ANDROID_STATISTICS_LENS_SHADING_MAP_MODE, kStatisticsLensShadingMapModeValues},
        {ANDROID_TONEMAP_MODE, kTonemapModeValues},
        {ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL, kInfoSupportedHardwareLevelValues},
        {ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION,
         kInfoSupportedBufferManagementVersionValues},
        {ANDROID_BLACK_LEVEL_LOCK, kBlackLevelLockValues},
        {ANDROID_SYNC_FRAME_NUMBER, kSyncFrameNumberValues},
        {ANDROID_SYNC_MAX_LATENCY, kSyncMaxLatencyValues},
        {ANDROID_DEPTH_DEPTH_IS_EXCLUSIVE, kDepthDepthIsExclusiveValues},
        {ANDROID_LOGICAL_MULTI_CAMERA_SENSOR_SYNC_TYPE, kLogicalMultiCameraSensorSyncTypeValues},
        {ANDROID_DISTORTION_CORRECTION_MODE, kDistortionCorrectionModeValues},
};
const size_t kTagEnumCount = std::size(kTagEnums);

}  // namespace android::metadata

const char* camera_metadata_section_names[ANDROID_SECTION_COUNT] = {
        "android.colorCorrection",
        "android.control",
        "android.demosaic",
        "android.edge",
        "android.flash",
        "android.flash.info",
        "android.hotPixel",
        "android.jpeg",
        "android.lens",
        "android.lens.info",
        "android.noiseReduction",
        "android.quirks",
        "android.request",
        "android.scaler",
        "android.sensor",
        "android.sensor.info",
        "android.shading",
        "android.statistics",
        "android.statistics.info",
        "android.tonemap",
        "android.led",
        "android.info",
        "android.blackLevel",
        "android.sync",
        "android.reprocess",
        "android.depth",
        "android.logicalMultiCamera",
        "android.distortionCorrection",
        "android.heic",
        "android.heic.info",
        "android.automotive",
        "android.automotive.lens",
        "android.extension",
        "android.jpegr",
};

unsigned int camera_metadata_section_bounds[ANDROID_SECTION_COUNT][2] = {
        {ANDROID_COLOR_CORRECTION_START, ANDROID_COLOR_CORRECTION_END},
        {ANDROID_CONTROL_START, ANDROID_CONTROL_END},
        {ANDROID_DEMOSAIC_START, ANDROID_DEMOSAIC_END},
        {ANDROID_EDGE_START, ANDROID_EDGE_END},
        {ANDROID_FLASH_START, ANDROID_FLASH_END},
        {ANDROID_FLASH_INFO_START, ANDROID_FLASH_INFO_END},
        {ANDROID_HOT_PIXEL_START, ANDROID_HOT_PIXEL_END},
        {ANDROID_JPEG_START, ANDROID_JPEG_END},
        {ANDROID_LENS_START, ANDROID_LENS_END},
        {ANDROID_LENS_INFO_START, ANDROID_LENS_INFO_END},
        {ANDROID_NOISE_REDUCTION_START, ANDROID_NOISE_REDUCTION_END},
        {ANDROID_QUIRKS_START, ANDROID_QUIRKS_END},
        {ANDROID_REQUEST_START, ANDROID_REQUEST_END},
        {ANDROID_SCALER_START, ANDROID_SCALER_END},
        {ANDROID_SENSOR_START, ANDROID_SENSOR_END},
        {ANDROID_SENSOR_INFO_START, ANDROID_SENSOR_INFO_END},
        {ANDROID_SHADING_START, ANDROID_SHADING_END},
        {ANDROID_STATISTICS_START, ANDROID_STATISTICS_END},
        {ANDROID_STATISTICS_INFO_START, ANDROID_STATISTICS_INFO_END},
        {ANDROID_TONEMAP_START, ANDROID_TONEMAP_END},
        {ANDROID_LED_START, ANDROID_LED_END},
        {ANDROID_INFO_START, ANDROID_INFO_END},
        {ANDROID_BLACK_LEVEL_START, ANDROID_BLACK_LEVEL_END},
        {ANDROID_SYNC_START, ANDROID_SYNC_END},
        {ANDROID_REPROCESS_START, ANDROID_REPROCESS_END},
        {ANDROID_DEPTH_START, ANDROID_DEPTH_END},
        {ANDROID_LOGICAL_MULTI_CAMERA_START, ANDROID_LOGICAL_MULTI_CAMERA_END},
        {ANDROID_DISTORTION_CORRECTION_START, ANDROID_DISTORTION_CORRECTION_END},
        {ANDROID_HEIC_START, ANDROID_HEIC_END},
        {ANDROID_HEIC_INFO_START, ANDROID_HEIC_INFO_END},
        {ANDROID_AUTOMOTIVE_START, ANDROID_AUTOMOTIVE_END},
        {ANDROID_AUTOMOTIVE_LENS_START, ANDROID_AUTOMOTIVE_LENS_END},
        {ANDROID_EXTENSION_START, ANDROID_EXTENSION_END},
        {ANDROID_JPEGR_START, ANDROID_JPEGR_END},
};
