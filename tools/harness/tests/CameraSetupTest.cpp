// What the harness takes from a camera's characteristics and template: the streams it picks for a
// frame rate, and the settings it sends for it.

#include <gtest/gtest.h>
#include <system/graphics.h>

#include "CameraInfo.h"
#include "Metadata.h"
#include "RequestSettings.h"

namespace camera_harness {
namespace {

constexpr int32_t kYuv = HAL_PIXEL_FORMAT_YCBCR_420_888;
constexpr int32_t kPrivate = HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED;
constexpr int32_t kBlob = HAL_PIXEL_FORMAT_BLOB;
constexpr int32_t kOut = ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS_OUTPUT;
constexpr int64_t kMs = 1000000;

// A logical camera over physical cameras 2 and 3 with the virtual camera's kind of table.
std::vector<uint8_t> characteristics(bool halBufferManager) {
    const int32_t configurations[] = {kYuv, 1920, 1080,     kOut,  kYuv, 640,      480,
                                      kOut, kYuv, 320,      240,   kOut, kPrivate, 640,
                                      480,  kOut, kPrivate, 320,   240,  kOut,     kBlob,
                                      640,  480,  kOut,     kBlob, 1920, 1080,     kOut};
    const int64_t durations[] = {kYuv,    1920,    1080,     16 * kMs, kYuv,    640,      480,
                                 4 * kMs, kYuv,    320,      240,      1 * kMs, kPrivate, 640,
                                 480,     4 * kMs, kPrivate, 320,      240,     1 * kMs,  kBlob,
                                 640,     480,     33 * kMs, kBlob,    1920,    1080,     33 * kMs};
    const int32_t partials = 2;
    const int32_t jpegMaxSize = 6291456;
    const int32_t fpsRanges[] = {15, 30, 30, 30, 960, 960};
    const char physicalIds[] = "2\0003";
    const uint8_t bufferManagement =
            ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_HIDL_DEVICE_3_5;

    MetadataPtr metadata = copyMetadata(nullptr, 8, 1024);
    setEntry(metadata.get(), ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS, configurations,
             std::size(configurations));
    setEntry(metadata.get(), ANDROID_SCALER_AVAILABLE_MIN_FRAME_DURATIONS, durations,
             std::size(durations));
    setEntry(metadata.get(), ANDROID_REQUEST_PARTIAL_RESULT_COUNT, &partials, 1);
    setEntry(metadata.get(), ANDROID_JPEG_MAX_SIZE, &jpegMaxSize, 1);
    setEntry(metadata.get(), ANDROID_CONTROL_AE_AVAILABLE_TARGET_FPS_RANGES, fpsRanges,
             std::size(fpsRanges));
    setEntry(metadata.get(), ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS, physicalIds,
             sizeof(physicalIds));
    if (halBufferManager) {
        setEntry(metadata.get(), ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION,
                 &bufferManagement, 1);
    }
    return toBytes(metadata.get());
}

CameraInfo camera(bool halBufferManager = false) {
    std::vector<uint8_t> bytes = characteristics(halBufferManager);
    return CameraInfo::fromCharacteristics(viewMetadata(bytes));
}

TEST(CameraInfoTest, ReadsWhatTheHarnessNeeds) {
    CameraInfo info = camera(true);
    EXPECT_EQ(info.partialResultCount, 2);
    EXPECT_EQ(info.jpegMaxSize, 6291456u);
    EXPECT_TRUE(info.halBufferManager);
    EXPECT_FALSE(camera(false).halBufferManager);
    EXPECT_EQ(info.physicalCameraIds, (std::vector<std::string>{"2", "3"}));
    ASSERT_EQ(info.outputs.size(), 7u);
    const OutputConfiguration* blob = info.findOutput({640, 480, kBlob, ""});
    ASSERT_NE(blob, nullptr);
    EXPECT_EQ(blob->minFrameDurationNs, 33 * kMs);
    EXPECT_EQ(info.findOutput({640, 360, kBlob, ""}), nullptr);
}

struct Defaults {
    int32_t fps;
    std::vector<StreamDescription> streams;
};

class DefaultStreamsTest : public ::testing::TestWithParam<Defaults> {};

// The largest preview and private sizes and the smallest BLOB that keep up with the frame rate.
TEST_P(DefaultStreamsTest, FitTheFrameRate) {
    EXPECT_EQ(camera().defaultStreams(GetParam().fps), GetParam().streams);
}

INSTANTIATE_TEST_SUITE_P(
        FrameRates, DefaultStreamsTest,
        ::testing::Values(
                Defaults{30,
                         {{640, 480, kYuv, ""}, {320, 240, kPrivate, "2"}, {640, 480, kBlob, ""}}},
                Defaults{240, {{640, 480, kYuv, ""}, {320, 240, kPrivate, "2"}}},
                Defaults{960, {{320, 240, kYuv, ""}, {320, 240, kPrivate, "2"}}}));

TEST(RequestSettingsTest, AskForTheFrameRateAndKeepTheTemplate) {
    MetadataPtr preview = copyMetadata(nullptr, 2, 16);
    const int64_t exposure = 20 * kMs;
    const uint8_t mode = ANDROID_CONTROL_MODE_AUTO;
    setEntry(preview.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure, 1);
    setEntry(preview.get(), ANDROID_CONTROL_MODE, &mode, 1);

    auto settings = RequestSettings::build(toBytes(preview.get()), camera(), 960);
    ASSERT_TRUE(settings);
    const camera_metadata_t* request = viewMetadata(settings->request);
    EXPECT_EQ(findInt64(request, ANDROID_SENSOR_FRAME_DURATION), 1000000000 / 960);
    EXPECT_EQ(findInt64(request, ANDROID_SENSOR_EXPOSURE_TIME), 1000000000 / 960)
            << "the exposure fits in the frame";
    EXPECT_EQ(findByte(request, ANDROID_CONTROL_MODE), mode);
    EXPECT_EQ(findInt32s(request, ANDROID_CONTROL_AE_TARGET_FPS_RANGE),
              (std::vector<int32_t>{960, 960}));
    EXPECT_EQ(findInt32s(viewMetadata(settings->sessionParameters),
                         ANDROID_CONTROL_AE_TARGET_FPS_RANGE),
              (std::vector<int32_t>{960, 960}));
    const camera_metadata_t* physical = viewMetadata(settings->physical);
    EXPECT_TRUE(findInt64(physical, ANDROID_SENSOR_EXPOSURE_TIME));
    EXPECT_TRUE(findInt32(physical, ANDROID_SENSOR_SENSITIVITY));

    auto unlisted = RequestSettings::build(toBytes(preview.get()), camera(), 50);
    ASSERT_TRUE(unlisted);
    EXPECT_TRUE(
            findInt32s(viewMetadata(unlisted->request), ANDROID_CONTROL_AE_TARGET_FPS_RANGE).empty())
            << "no AE range the camera does not offer";
    EXPECT_TRUE(unlisted->sessionParameters.empty());
    EXPECT_FALSE(RequestSettings::build({1, 2, 3}, camera(), 30)) << "malformed template";
}

}  // namespace
}  // namespace camera_harness
