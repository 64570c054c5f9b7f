#include <camera_module_extensions.h>
#include <dlfcn.h>
#include <errno.h>
#include <system/camera.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "VirtualCameraFixture.h"

namespace virtual_camera::testing {
namespace {

std::vector<int64_t> int64s(const camera_metadata_t* metadata, uint32_t tag) {
    camera_metadata_ro_entry_t entry;
    if (find_camera_metadata_ro_entry(metadata, tag, &entry) != 0) return {};
    return std::vector<int64_t>(entry.data.i64, entry.data.i64 + entry.count);
}

std::vector<int32_t> int32s(const camera_metadata_t* metadata, uint32_t tag) {
    camera_metadata_ro_entry_t entry;
    if (find_camera_metadata_ro_entry(metadata, tag, &entry) != 0) return {};
    return std::vector<int32_t>(entry.data.i32, entry.data.i32 + entry.count);
}

std::vector<uint8_t> bytes(const camera_metadata_t* metadata, uint32_t tag) {
    camera_metadata_ro_entry_t entry;
    if (find_camera_metadata_ro_entry(metadata, tag, &entry) != 0) return {};
    return std::vector<uint8_t>(entry.data.u8, entry.data.u8 + entry.count);
}

std::set<int32_t> tagsOf(const camera_metadata_t* metadata) {
    std::set<int32_t> tags;
    for (size_t i = 0; i < get_camera_metadata_entry_count(metadata); ++i) {
        camera_metadata_ro_entry_t entry;
        get_camera_metadata_ro_entry(metadata, i, &entry);
        tags.insert(static_cast<int32_t>(entry.tag));
    }
    return tags;
}

template <typename T>
T extension(const char* name) {
    Dl_info info;
    dladdr(VirtualCameraTest::module(), &info);
    void* library = dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    T function = reinterpret_cast<T>(dlsym(library, name));
    dlclose(library);
    return function;
}

using ModuleTest = VirtualCameraTest;

TEST_F(ModuleTest, DescribesALogicalBackCameraAndAFrontCamera) {
    camera_module_t* hal = module();
    ASSERT_NE(hal, nullptr);
    EXPECT_EQ(hal->common.module_api_version, CAMERA_MODULE_API_VERSION_2_5);
    ASSERT_EQ(hal->get_number_of_cameras(), 2);

    camera_info back{};
    ASSERT_EQ(hal->get_camera_info(0, &back), 0);
    EXPECT_EQ(back.facing, CAMERA_FACING_BACK);
    EXPECT_EQ(back.device_version, CAMERA_DEVICE_API_VERSION_3_6);
    const camera_metadata_t* characteristics = back.static_camera_characteristics;
    ASSERT_EQ(validate_camera_metadata_structure(characteristics, nullptr), 0);
    std::vector<uint8_t> ids = bytes(characteristics, ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS);
    EXPECT_EQ(std::string(ids.begin(), ids.end()), std::string("2\0003\000", 4));
    std::vector<uint8_t> capabilities =
            bytes(characteristics, ANDROID_REQUEST_AVAILABLE_CAPABILITIES);
    EXPECT_NE(std::find(capabilities.begin(), capabilities.end(),
                        ANDROID_REQUEST_AVAILABLE_CAPABILITIES_LOGICAL_MULTI_CAMERA),
              capabilities.end());
    EXPECT_EQ(int32s(characteristics, ANDROID_REQUEST_PARTIAL_RESULT_COUNT),
              std::vector<int32_t>{2});
    EXPECT_EQ(bytes(characteristics, ANDROID_SENSOR_READOUT_TIMESTAMP),
              std::vector<uint8_t>{ANDROID_SENSOR_READOUT_TIMESTAMP_HARDWARE});
    EXPECT_TRUE(bytes(characteristics, ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION).empty());

    camera_info front{};
    ASSERT_EQ(hal->get_camera_info(1, &front), 0);
    EXPECT_EQ(front.facing, CAMERA_FACING_FRONT);
    EXPECT_TRUE(bytes(front.static_camera_characteristics, ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS)
                        .empty());
    EXPECT_EQ(hal->get_camera_info(2, &front), -EINVAL);

    camera_metadata_t* physical = nullptr;
    for (int id : {2, 3}) {
        ASSERT_EQ(hal->get_physical_camera_info(id, &physical), 0) << id;
        EXPECT_EQ(validate_camera_metadata_structure(physical, nullptr), 0);
    }
    EXPECT_EQ(hal->get_physical_camera_info(1, &physical), -EINVAL);
    EXPECT_EQ(hal->get_physical_camera_info(4, &physical), -EINVAL);
}

// The key lists must tell the truth: the framework trusts them to know what to expect.
TEST_F(ModuleTest, KeyListsMatchTheCharacteristicsAndTemplates) {
    for (int id : {0, 1}) {
        SCOPED_TRACE("camera " + std::to_string(id));
        camera_info info{};
        ASSERT_EQ(module()->get_camera_info(id, &info), 0);
        const camera_metadata_t* characteristics = info.static_camera_characteristics;
        std::vector<int32_t> listed =
                int32s(characteristics, ANDROID_REQUEST_AVAILABLE_CHARACTERISTICS_KEYS);
        EXPECT_EQ(std::set<int32_t>(listed.begin(), listed.end()), tagsOf(characteristics));

        std::vector<int32_t> requestKeys =
                int32s(characteristics, ANDROID_REQUEST_AVAILABLE_REQUEST_KEYS);
        auto defaults = extension<tarnic_camera_default_request_settings_t>(
                TARNIC_CAMERA_DEFAULT_REQUEST_SETTINGS_SYM);
        ASSERT_NE(defaults, nullptr);
        for (int type = CAMERA3_TEMPLATE_PREVIEW; type < CAMERA3_TEMPLATE_COUNT; ++type) {
            const camera_metadata_t* settings = defaults(id, type);
            ASSERT_NE(settings, nullptr) << type;
            EXPECT_EQ(tagsOf(settings), std::set<int32_t>(requestKeys.begin(), requestKeys.end()));
        }
        EXPECT_EQ(defaults(id, 0), nullptr);
        EXPECT_EQ(defaults(id, CAMERA3_TEMPLATE_COUNT), nullptr);

        std::vector<int32_t> resultKeys =
                int32s(characteristics, ANDROID_REQUEST_AVAILABLE_RESULT_KEYS);
        for (int32_t key : {ANDROID_SENSOR_TIMESTAMP, ANDROID_CONTROL_AE_STATE}) {
            EXPECT_NE(std::find(resultKeys.begin(), resultKeys.end(), key), resultKeys.end());
        }
    }
}

TEST_F(ModuleTest, SmallStreamsAllowAtLeast960FramesPerSecond) {
    camera_info info{};
    ASSERT_EQ(module()->get_camera_info(0, &info), 0);
    std::vector<int64_t> durations = int64s(info.static_camera_characteristics,
                                            ANDROID_SCALER_AVAILABLE_MIN_FRAME_DURATIONS);
    ASSERT_EQ(durations.size() % 4, 0u);
    std::set<int64_t> fastFormats;
    for (size_t i = 0; i < durations.size(); i += 4) {
        if (durations[i + 3] <= 1000000000 / 960) fastFormats.insert(durations[i]);
    }
    EXPECT_EQ(fastFormats, (std::set<int64_t>{HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED,
                                              HAL_PIXEL_FORMAT_YCBCR_420_888}));
}

struct Combination {
    const char* name;
    int camera;
    std::vector<camera_stream_t> streams;
    uint32_t operationMode;
    int expected;
};

camera_stream_t output(uint32_t width, uint32_t height, int format, const char* physical = "") {
    return {CAMERA3_STREAM_OUTPUT, width, height, format, 0, HAL_DATASPACE_UNKNOWN, 0, physical};
}

class StreamCombinationTest : public VirtualCameraTest,
                              public ::testing::WithParamInterface<Combination> {};

TEST_P(StreamCombinationTest, QueryAndConfigurationAgree) {
    const Combination& combination = GetParam();
    std::vector<camera_stream_t> streams = combination.streams;
    camera_stream_combination_t query{static_cast<uint32_t>(streams.size()), streams.data(),
                                      combination.operationMode};
    EXPECT_EQ(module()->is_stream_combination_supported(combination.camera, &query),
              combination.expected);
    auto session = extension<tarnic_camera_get_session_characteristics_t>(
            TARNIC_CAMERA_GET_SESSION_CHARACTERISTICS_SYM);
    const camera_metadata_t* sessionCharacteristics = nullptr;
    EXPECT_EQ(session(combination.camera, &query, nullptr, &sessionCharacteristics),
              combination.expected);

    ASSERT_NE(openCamera(std::to_string(combination.camera).c_str()), nullptr);
    std::vector<camera3_stream_t> records;
    for (const camera_stream_t& stream : streams) {
        camera3_stream_t record{};
        record.stream_type = stream.stream_type;
        record.width = stream.width;
        record.height = stream.height;
        record.format = stream.format;
        record.physical_camera_id = stream.physical_camera_id;
        records.push_back(record);
    }
    std::vector<camera3_stream_t*> pointers;
    for (camera3_stream_t& record : records) pointers.push_back(&record);
    camera3_stream_configuration_t configuration{static_cast<uint32_t>(pointers.size()),
                                                 pointers.data(), combination.operationMode,
                                                 nullptr, false};
    EXPECT_EQ(mDevice->ops->configure_streams(mDevice, &configuration), combination.expected);
    for (const camera3_stream_t& record : records) {
        EXPECT_EQ(record.max_buffers > 0, combination.expected == 0);
    }
}

INSTANTIATE_TEST_SUITE_P(
        Table, StreamCombinationTest,
        ::testing::Values(Combination{"PreviewAndJpeg",
                                      0,
                                      {output(1920, 1080, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED),
                                       output(4032, 3024, HAL_PIXEL_FORMAT_BLOB)},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      0},
                          Combination{"PhysicalStreams",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888, "2"),
                                       output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888, "3")},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      0},
                          Combination{"PhysicalIdOfNoPhysicalCamera",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888, "1")},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{"PhysicalStreamOnThePlainCamera",
                                      1,
                                      {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888, "2")},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{"SizeNotOffered",
                                      0,
                                      {output(333, 222, HAL_PIXEL_FORMAT_YCBCR_420_888)},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{"FormatNotOffered",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_RGBA_8888)},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{"FourProcessedStreams",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888),
                                       output(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888),
                                       output(176, 144, HAL_PIXEL_FORMAT_YCBCR_420_888),
                                       output(1280, 720, HAL_PIXEL_FORMAT_YCBCR_420_888)},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{"TwoJpegStreams",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_BLOB),
                                       output(1920, 1080, HAL_PIXEL_FORMAT_BLOB)},
                                      CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                      -EINVAL},
                          Combination{
                                  "InputStream",
                                  0,
                                  {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888),
                                   {CAMERA3_STREAM_INPUT, 640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888,
                                    0, HAL_DATASPACE_UNKNOWN, 0, ""}},
                                  CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                                  -EINVAL},
                          Combination{"HighSpeedMode",
                                      0,
                                      {output(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888)},
                                      CAMERA3_STREAM_CONFIGURATION_CONSTRAINED_HIGH_SPEED_MODE,
                                      -EINVAL}),
        [](const auto& info) { return std::string(info.param.name); });

TEST_F(ModuleTest, ReconfigurationIsRequiredOnlyWhenASessionKeyChanges) {
    ASSERT_NE(openCamera(), nullptr);
    Metadata base = previewSettings(33333333);
    Metadata otherDuration = withFrameDuration(base.get(), 16666666);
    Metadata otherFps(clone_camera_metadata(base.get()));
    camera_metadata_entry_t entry;
    ASSERT_EQ(
            find_camera_metadata_entry(otherFps.get(), ANDROID_CONTROL_AE_TARGET_FPS_RANGE, &entry),
            0);
    int32_t fixed[] = {30, 30};
    update_camera_metadata_entry(otherFps.get(), entry.index, fixed, 2, nullptr);

    auto required = [&](const camera_metadata_t* before, const camera_metadata_t* after) {
        return mDevice->ops->is_reconfiguration_required(mDevice, before, after);
    };
    EXPECT_EQ(required(base.get(), base.get()), -EINVAL);
    EXPECT_EQ(required(base.get(), otherDuration.get()), -EINVAL);
    EXPECT_EQ(required(base.get(), otherFps.get()), 0);
    EXPECT_EQ(required(nullptr, base.get()), 0);
    EXPECT_EQ(required(nullptr, nullptr), -EINVAL);
}

// The torch strength entries of the module's extension.
class TorchTest : public ModuleTest {
protected:
    void SetUp() override {
        ModuleTest::SetUp();
        ASSERT_NE(mGetLevel, nullptr);
        ASSERT_NE(mTurnOn, nullptr);
    }

    const tarnic_camera_get_torch_strength_level_t mGetLevel =
            extension<tarnic_camera_get_torch_strength_level_t>(
                    TARNIC_CAMERA_GET_TORCH_STRENGTH_LEVEL_SYM);
    const tarnic_camera_turn_on_torch_with_strength_level_t mTurnOn =
            extension<tarnic_camera_turn_on_torch_with_strength_level_t>(
                    TARNIC_CAMERA_TURN_ON_TORCH_WITH_STRENGTH_LEVEL_SYM);
};

TEST_F(TorchTest, TorchBelongsToTheFlashCameraWhileItIsClosed) {
    ASSERT_EQ(module()->set_callbacks(mRecorder.moduleCallbacks()), 0);

    EXPECT_EQ(module()->set_torch_mode("1", true), -ENOSYS);
    EXPECT_EQ(module()->set_torch_mode("7", true), -EINVAL);
    EXPECT_EQ(module()->set_torch_mode("0", true), 0);
    EXPECT_EQ(mTurnOn("0", 11), -EINVAL);
    EXPECT_EQ(mTurnOn("0", 7), 0);
    int32_t level = 0;
    EXPECT_EQ(mGetLevel("0", &level), 0);
    EXPECT_EQ(level, 7);
    EXPECT_EQ(mGetLevel("1", &level), -ENOSYS);

    ASSERT_NE(openCamera("0"), nullptr);
    EXPECT_EQ(module()->set_torch_mode("0", false), -EBUSY);
    closeCamera();
    using Event = std::pair<std::string, int>;
    EXPECT_EQ(mRecorder.torchEvents(), (std::vector<Event>{{"0", TORCH_MODE_STATUS_AVAILABLE_ON},
                                                           {"0", TORCH_MODE_STATUS_AVAILABLE_ON},
                                                           {"0", TORCH_MODE_STATUS_NOT_AVAILABLE},
                                                           {"0", TORCH_MODE_STATUS_AVAILABLE_OFF}}));
}

// A torch that goes off, by request or because its camera opens, forgets its strength.
TEST_F(TorchTest, TorchTurnedOffReturnsToTheDefaultStrength) {
    const std::vector<std::pair<const char*, std::function<void()>>> turnOffs = {
            {"set_torch_mode", [&] { EXPECT_EQ(module()->set_torch_mode("0", false), 0); }},
            {"open", [&] {
                 ASSERT_NE(openCamera("0"), nullptr);
                 closeCamera();
             }}};
    for (const auto& [name, turnOff] : turnOffs) {
        ASSERT_EQ(mTurnOn("0", 3), 0) << name;
        turnOff();
        int32_t level = 0;
        EXPECT_EQ(mGetLevel("0", &level), 0) << name;
        EXPECT_EQ(level, 5) << name;
    }
}

TEST_F(ModuleTest, OpenIsExclusiveAndCloseIsIdempotent) {
    camera3_device_t* device = openCamera("0");
    ASSERT_NE(device, nullptr);
    hw_device_t* second = nullptr;
    EXPECT_EQ(module()->common.methods->open(&module()->common, "0", &second), -EBUSY);
    EXPECT_EQ(module()->common.methods->open(&module()->common, "x", &second), -EINVAL);
    EXPECT_EQ(device->ops->initialize(device, mRecorder.ops()), -ENODEV);
    EXPECT_EQ(device->common.close(&device->common), 0);
    EXPECT_EQ(device->common.close(&device->common), 0);
    mDevice = nullptr;
    EXPECT_NE(openCamera("0"), nullptr);
}

TEST_F(ModuleTest, OptionsChooseTheCamerasAndTheBufferManager) {
    useOptions("cameras=1,hbm=1,bogus=3");
    EXPECT_EQ(module()->get_number_of_cameras(), 1);
    camera_info info{};
    ASSERT_EQ(module()->get_camera_info(0, &info), 0);
    EXPECT_EQ(
            bytes(info.static_camera_characteristics,
                  ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION),
            std::vector<uint8_t>{ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION_HIDL_DEVICE_3_5});
    std::vector<uint8_t> ids =
            bytes(info.static_camera_characteristics, ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS);
    EXPECT_EQ(std::string(ids.begin(), ids.end()), std::string("1\0002\000", 4));
    camera_metadata_t* physical = nullptr;
    EXPECT_EQ(module()->get_physical_camera_info(1, &physical), 0);
    EXPECT_EQ(module()->get_camera_info(1, &info), -EINVAL);
}

}  // namespace
}  // namespace virtual_camera::testing
