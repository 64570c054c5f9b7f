// The operations a device calls, over a scripted module loaded by path.
#include <Aidl2LegacyCameraModule.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/graphics.h>

#include <cstdio>
#include <memory>
#include <ostream>
#include <string>

#include "FakeModuleLibrary.h"
#include "StreamCombinations.h"

namespace kovo::aidl2legacy {
namespace {

using android::testing::LogCapture;
using testing::CombinationBuilder;
using testing::FakeModuleLibrary;
using testing::makeStream;

constexpr int32_t kYuv = HAL_PIXEL_FORMAT_YCBCR_420_888;
constexpr int32_t kBlob = HAL_PIXEL_FORMAT_BLOB;
constexpr int32_t kRaw16 = HAL_PIXEL_FORMAT_RAW16;
constexpr int32_t kOutput = CAMERA3_STREAM_OUTPUT;
constexpr int32_t kInput = CAMERA3_STREAM_INPUT;
constexpr int32_t kBidirectional = CAMERA3_STREAM_BIDIRECTIONAL;

class ModuleOperationsTest : public ::testing::Test {
protected:
    explicit ModuleOperationsTest(const char* path = FAKE_MODULE_PATH) : mFake(path) {}

    void bringUp(uint16_t moduleApiVersion = CAMERA_MODULE_API_VERSION_2_5) {
        mFake.module().common.module_api_version = moduleApiVersion;
        mModule = Aidl2LegacyCameraModule::createFromLibrary(mFake.path(), {}, nullptr);
        ASSERT_NE(nullptr, mModule);
    }

    LogCapture mLog;
    FakeModuleLibrary mFake;
    std::shared_ptr<Aidl2LegacyCameraModule> mModule;
};

TEST_F(ModuleOperationsTest, OpenDeviceOpensTheCameraOfTheDecimalId) {
    bringUp();
    camera3_device_t* device = nullptr;
    ASSERT_EQ(0, mModule->openDevice("0", &device));
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_5), device->common.version);
    EXPECT_EQ(&mFake.module().common, device->common.module);
    EXPECT_EQ(0, device->common.close(&device->common));
}

struct BadIdCase {
    const char* cameraId;
    int32_t expectedStatus;
    bool reachesModule;

    friend void PrintTo(const BadIdCase& c, std::ostream* os) {
        *os << (c.cameraId != nullptr ? c.cameraId : "(null)");
    }
};

class OpenDeviceBadIdTest : public ModuleOperationsTest,
                            public ::testing::WithParamInterface<BadIdCase> {};

TEST_P(OpenDeviceBadIdTest, FailsWithoutADevice) {
    bringUp();
    camera3_device_t* device = nullptr;
    EXPECT_EQ(GetParam().expectedStatus, mModule->openDevice(GetParam().cameraId, &device));
    EXPECT_EQ(nullptr, device);
    EXPECT_EQ(GetParam().reachesModule, mFake.called("open("));
}

INSTANTIATE_TEST_SUITE_P(
        Ids, OpenDeviceBadIdTest,
        ::testing::Values(BadIdCase{nullptr, -EINVAL, false}, BadIdCase{"", -EINVAL, false},
                          BadIdCase{"abc", -EINVAL, false}, BadIdCase{"-1", -EINVAL, false},
                          BadIdCase{"0 ", -EINVAL, false}, BadIdCase{"99999999999", -EINVAL, false},
                          // Too old a device.
                          BadIdCase{"1", -ENODEV, false},
                          // Not built in: the module decides.
                          BadIdCase{"7", -EINVAL, true}));

TEST_F(ModuleOperationsTest, OpenedDeviceOlderThan32IsClosedAndRefused) {
    mFake.script().opened_device_version = CAMERA_DEVICE_API_VERSION_3_1;
    bringUp();
    camera3_device_t* device = nullptr;
    EXPECT_EQ(-ENODEV, mModule->openDevice("0", &device));
    EXPECT_EQ(nullptr, device);
    EXPECT_TRUE(mFake.called("open(0);close(0);"));
}

struct CameraInfoCase {
    uint16_t moduleApiVersion;
    int expectedResourceCost;
    size_t expectedConflictingDevices;

    friend void PrintTo(const CameraInfoCase& c, std::ostream* os) {
        *os << "module 0x" << std::hex << c.moduleApiVersion;
    }
};

class GetCameraInfoTest : public ModuleOperationsTest,
                          public ::testing::WithParamInterface<CameraInfoCase> {};

// Before 2.4 the record's cost fields are not the module's: they read as "unknown".
TEST_P(GetCameraInfoTest, ReturnsTheModuleRecordWithCostFieldsOfItsVersion) {
    bringUp(GetParam().moduleApiVersion);
    camera_info info{};
    info.resource_cost = 7;
    info.conflicting_devices_length = 9;
    ASSERT_EQ(0, mModule->getCameraInfo(0, &info));
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_5), info.device_version);
    EXPECT_EQ(mFake.metadata(FAKE_STATIC_CHARACTERISTICS), info.static_camera_characteristics);
    EXPECT_EQ(GetParam().expectedResourceCost, info.resource_cost);
    EXPECT_EQ(GetParam().expectedConflictingDevices, info.conflicting_devices_length);
}

INSTANTIATE_TEST_SUITE_P(Versions, GetCameraInfoTest,
                         ::testing::Values(CameraInfoCase{CAMERA_MODULE_API_VERSION_2_5, 50, 1},
                                           CameraInfoCase{CAMERA_MODULE_API_VERSION_2_3, 100, 0}));

TEST_F(ModuleOperationsTest, TorchModeAndPhysicalCameraInfoReachTheModule) {
    bringUp();
    EXPECT_EQ(0, mModule->setTorchMode("0", true));
    const camera_metadata_t* characteristics = nullptr;
    ASSERT_EQ(0, mModule->getPhysicalCameraInfo(3, &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_PHYSICAL_CHARACTERISTICS_3), characteristics);
    EXPECT_EQ(-EINVAL, mModule->getPhysicalCameraInfo(9, &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_PHYSICAL_CHARACTERISTICS_3), characteristics);
    EXPECT_TRUE(mFake.called("set_torch_mode(0,1);get_physical_camera_info(3);"));
}

TEST_F(ModuleOperationsTest, CombinationQueryHandsTheLegacyStreamsToTheModuleAt25) {
    bringUp();
    CombinationStream preview = makeStream(kOutput, kYuv, 1920, 1080);
    preview.usage = 0x900;
    preview.dataSpace = 0x8c20000;
    preview.rotation = 1;
    preview.groupId = 77;  // not part of the legacy stream
    CombinationBuilder combination({preview, makeStream(kOutput, kBlob, 4000, 3000, "2")}, 0x8001);

    mFake.script().combination_status = -EINVAL;
    EXPECT_EQ(-EINVAL, mModule->isStreamCombinationSupported(0, combination.get()));
    EXPECT_TRUE(
            mFake.called("is_stream_combination_supported(0,mode 8001:"
                         "[0 1920x1080 23 900 8c20000 1 ][0 4000x3000 21 0 0 0 2]);"))
            << mFake.calls();
}

TEST_F(ModuleOperationsTest, CombinationQueryUnsupportedByTheModuleFallsBackToStaticConfigurations) {
    bringUp();
    mFake.script().combination_status = -ENOSYS;
    CombinationBuilder listed({makeStream(kOutput, kYuv, 1920, 1080)});
    CombinationBuilder unlisted({makeStream(kOutput, kYuv, 640, 480)});
    EXPECT_EQ(0, mModule->isStreamCombinationSupported(0, listed.get()));
    EXPECT_EQ(-EINVAL, mModule->isStreamCombinationSupported(0, unlisted.get()));
}

struct StaticCase {
    const char* name;
    std::vector<CombinationStream> streams;
    uint32_t operationMode;
    int32_t expectedStatus;

    friend void PrintTo(const StaticCase& c, std::ostream* os) { *os << c.name; }
};

class StaticCombinationTest : public ModuleOperationsTest,
                              public ::testing::WithParamInterface<StaticCase> {};

TEST_P(StaticCombinationTest, ModuleBefore25IsAnsweredFromStaticConfigurations) {
    bringUp(CAMERA_MODULE_API_VERSION_2_4);
    CombinationBuilder combination(GetParam().streams, GetParam().operationMode);
    EXPECT_EQ(GetParam().expectedStatus,
              mModule->isStreamCombinationSupported(0, combination.get()));
    EXPECT_FALSE(mFake.called("is_stream_combination_supported"));
}

constexpr uint32_t kNormal = CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE;

INSTANTIATE_TEST_SUITE_P(
        Combinations, StaticCombinationTest,
        ::testing::Values(
                StaticCase{"TwoListedOutputs",
                           {makeStream(kOutput, kYuv, 1920, 1080),
                            makeStream(kOutput, kBlob, 4000, 3000)},
                           kNormal,
                           0},
                StaticCase{"OneUnlistedSize",
                           {makeStream(kOutput, kYuv, 1920, 1080),
                            makeStream(kOutput, kBlob, 1920, 1080)},
                           kNormal,
                           -EINVAL},
                StaticCase{"ListedOnlyAsInput",
                           {makeStream(kOutput, kRaw16, 4000, 3000)},
                           kNormal,
                           -EINVAL},
                StaticCase{"ListedInput", {makeStream(kInput, kRaw16, 4000, 3000)}, kNormal, 0},
                StaticCase{"BidirectionalListedBothWays",
                           {makeStream(kBidirectional, kYuv, 1920, 1080)},
                           kNormal,
                           0},
                StaticCase{"BidirectionalListedAsOutputOnly",
                           {makeStream(kBidirectional, kBlob, 4000, 3000)},
                           kNormal,
                           -EINVAL},
                StaticCase{"HighSpeedModeCannotBeAnswered",
                           {makeStream(kOutput, kYuv, 1920, 1080)},
                           CAMERA3_STREAM_CONFIGURATION_CONSTRAINED_HIGH_SPEED_MODE,
                           -ENOSYS}),
        [](const ::testing::TestParamInfo<StaticCase>& info) { return info.param.name; });

TEST_F(ModuleOperationsTest, DefaultSettingsComeFromTheOptionalEntryPoint) {
    bringUp();
    EXPECT_EQ(mFake.metadata(FAKE_STILL_CAPTURE_SETTINGS),
              mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_STILL_CAPTURE));
    EXPECT_EQ(nullptr, mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_MANUAL));
    EXPECT_EQ(nullptr, mModule->constructDefaultRequestSettings(1, CAMERA3_TEMPLATE_PREVIEW));
    EXPECT_FALSE(mFake.called("default_request_settings(1,"));
}

TEST_F(ModuleOperationsTest, SessionCharacteristicsPassStreamsAndSessionParameters) {
    bringUp();
    const camera_metadata_t* parameters = mFake.metadata(FAKE_STILL_CAPTURE_SETTINGS);
    CombinationBuilder combination({makeStream(kOutput, kYuv, 1280, 720, "3")}, kNormal, parameters);
    const camera_metadata_t* characteristics = nullptr;
    EXPECT_EQ(0, mModule->getSessionCharacteristics(0, combination.get(), &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_SESSION_CHARACTERISTICS), characteristics);
    char expected[128];
    snprintf(expected, sizeof(expected), "mode 0:[0 1280x720 23 0 0 0 3],%p);",
             static_cast<const void*>(parameters));
    EXPECT_TRUE(mFake.called(expected)) << mFake.calls();
}

TEST_F(ModuleOperationsTest, TorchStrengthGoesThroughTheOptionalEntryPoints) {
    bringUp();
    EXPECT_EQ(0, mModule->turnOnTorchWithStrengthLevel("0", 5));
    int32_t level = 0;
    EXPECT_EQ(0, mModule->getTorchStrengthLevel("0", &level));
    EXPECT_EQ(5, level);
    EXPECT_EQ(-EINVAL, mModule->turnOnTorchWithStrengthLevel("0", 11));
}

class ModuleWithoutExtensionsTest : public ModuleOperationsTest {
protected:
    ModuleWithoutExtensionsTest() : ModuleOperationsTest(FAKE_BASIC_MODULE_PATH) {}
};

TEST_F(ModuleWithoutExtensionsTest, OptionalOperationsAnswerTheirFallbacks) {
    bringUp();
    EXPECT_EQ(nullptr, mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_PREVIEW));
    CombinationBuilder combination({makeStream(kOutput, kYuv, 1920, 1080)});
    const camera_metadata_t* characteristics = nullptr;
    EXPECT_EQ(-ENOSYS, mModule->getSessionCharacteristics(0, combination.get(), &characteristics));
    EXPECT_EQ(nullptr, characteristics);
    int32_t level = -1;
    EXPECT_EQ(-ENOSYS, mModule->getTorchStrengthLevel("0", &level));
    EXPECT_EQ(-1, level);
    EXPECT_EQ(-ENOSYS, mModule->turnOnTorchWithStrengthLevel("0", 3));
}

}  // namespace
}  // namespace kovo::aidl2legacy
