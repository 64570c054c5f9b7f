// The options that make the virtual camera behave like legacy modules in the field, seen from
// the framework's side of camera3_device_ops and the module callbacks.

#include <dlfcn.h>
#include <errno.h>
#include <system/camera.h>
#include <system/graphics.h>

#include "VirtualCameraFixture.h"

namespace virtual_camera::testing {
namespace {

constexpr int64_t kFrameDuration = 10000000;

class LegacyModuleTest : public VirtualCameraTest {
protected:
    // Runs `count` frames of one 320x240 stream at kFrameDuration and returns what came back.
    std::map<uint32_t, FrameRecord> capture(uint32_t count) {
        addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
        EXPECT_NE(openCamera(), nullptr);
        EXPECT_EQ(configure(), 0);
        Metadata settings = previewSettings(kFrameDuration);
        for (uint32_t frame = 0; frame < count; ++frame) {
            EXPECT_EQ(submit(frame, frame == 0 ? settings.get() : nullptr), 0);
        }
        EXPECT_TRUE(mRecorder.waitForBuffers(count));
        closeCamera();
        return mRecorder.frames();
    }

    static const camera_metadata_t* characteristics(int cameraId) {
        camera_info info{};
        EXPECT_EQ(module()->get_camera_info(cameraId, &info), 0);
        return info.static_camera_characteristics;
    }
};

TEST_F(LegacyModuleTest, Device33HasNoStreamFlushReconfigurationQueryOrBufferManager) {
    useOptions("device_api=3.3,hbm=1");
    camera_info info{};
    ASSERT_EQ(module()->get_camera_info(0, &info), 0);
    EXPECT_EQ(info.device_version, CAMERA_DEVICE_API_VERSION_3_3);
    camera_metadata_ro_entry_t entry;
    EXPECT_NE(
            find_camera_metadata_ro_entry(info.static_camera_characteristics,
                                          ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION, &entry),
            0);
    ASSERT_NE(openCamera(), nullptr);
    EXPECT_EQ(mDevice->common.version, CAMERA_DEVICE_API_VERSION_3_3);
    EXPECT_EQ(mDevice->ops->signal_stream_flush, nullptr);
    EXPECT_EQ(mDevice->ops->is_reconfiguration_required, nullptr);
    EXPECT_NE(mDevice->ops->flush, nullptr);
}

TEST_F(LegacyModuleTest, OnePartialResultCarriesAllMetadataInTheFinalResult) {
    useOptions("partial_results=1");
    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(find_camera_metadata_ro_entry(characteristics(0),
                                            ANDROID_REQUEST_PARTIAL_RESULT_COUNT, &entry),
              0);
    EXPECT_EQ(entry.data.i32[0], 1);
    auto frames = capture(3);
    ASSERT_EQ(frames.size(), 3u);
    for (const auto& [number, frame] : frames) {
        EXPECT_EQ(frame.partials, std::vector<uint32_t>{1}) << "frame " << number;
        EXPECT_EQ(frame.finalTimestamp, static_cast<int64_t>(frame.shutterTimestamp));
        EXPECT_EQ(frame.buffers.size(), 1u);
    }
}

TEST_F(LegacyModuleTest, OpenLimitRefusesASecondOpenWithTooManyUsers) {
    useOptions("open_limit=1");
    ASSERT_NE(openCamera("0"), nullptr);
    hw_device_t* device = nullptr;
    EXPECT_EQ(module()->common.methods->open(&module()->common, "0", &device), -EUSERS);
    EXPECT_EQ(module()->common.methods->open(&module()->common, "1", &device), -EUSERS);
    EXPECT_EQ(device, nullptr);
    closeCamera();
    EXPECT_NE(openCamera("1"), nullptr);
}

TEST_F(LegacyModuleTest, BackgroundThreadKeepsOneFdForTheWholeProcess) {
    useOptions("background_thread=1");
    const int before = openFdCount();
    ASSERT_NE(openCamera(), nullptr);
    closeCamera();
    const int afterFirst = openFdCount();
    EXPECT_LE(afterFirst, before + 1);
    useOptions("background_thread=1");
    ASSERT_NE(openCamera(), nullptr);
    closeCamera();
    EXPECT_EQ(openFdCount(), afterFirst);
}

TEST_F(LegacyModuleTest, ExternalCameraIsAnnouncedAndOpens) {
    useOptions("external_camera=1000");
    EXPECT_EQ(module()->get_number_of_cameras(), 2);
    ASSERT_EQ(module()->set_callbacks(mRecorder.moduleCallbacks()), 0);
    EXPECT_EQ(mRecorder.deviceStatusEvents(),
              (std::vector<std::pair<int, int>>{{1000, CAMERA_DEVICE_STATUS_PRESENT}}));
    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(find_camera_metadata_ro_entry(characteristics(1000), ANDROID_LENS_FACING, &entry), 0);
    EXPECT_EQ(entry.data.u8[0], ANDROID_LENS_FACING_EXTERNAL);
    EXPECT_NE(openCamera("1000"), nullptr);
}

TEST_F(LegacyModuleTest, WithoutReadoutTimestampsTheShutterIsTheStandardMessage) {
    useOptions("readout_timestamp=0");
    void* library = dlopen(VIRTUAL_CAMERA_MODULE_PATH, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    auto hasReadout =
            reinterpret_cast<int (*)(int)>(dlsym(library, "tarnic_camera_has_readout_timestamp"));
    dlclose(library);
    ASSERT_NE(hasReadout, nullptr);
    EXPECT_EQ(hasReadout(0), 0);
    camera_metadata_ro_entry_t entry;
    EXPECT_NE(find_camera_metadata_ro_entry(characteristics(0), ANDROID_SENSOR_READOUT_TIMESTAMP,
                                            &entry),
              0);
    auto frames = capture(2);
    for (const auto& [number, frame] : frames) {
        // What lies behind the standard message is no readout of this frame.
        EXPECT_LT(frame.readoutTimestamp, frame.shutterTimestamp) << "frame " << number;
    }
}

TEST_F(LegacyModuleTest, UnpacedFramesComeCloserThanTheirFrameDuration) {
    useOptions("unpaced=1");
    auto frames = capture(4);
    expectProtocolKept(frames, 0, 3, 1);
    EXPECT_LT(frames[3].shutterTimestamp - frames[0].shutterTimestamp, 3 * kFrameDuration);
}

}  // namespace
}  // namespace virtual_camera::testing
