#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <cutils/properties.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Aidl2LegacyCameraDevice.h"
#include "DeviceTestSupport.h"
#include "MockCameraModule.h"
#include "RecordingCameraDeviceCallback.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::CameraMetadata;
using aidl::android::hardware::camera::device::ICameraDeviceSession;
using aidl::android::hardware::camera::device::ICameraInjectionSession;
using aidl::android::hardware::camera::device::RequestTemplate;
using aidl::android::hardware::camera::device::Stream;
using aidl::android::hardware::camera::device::StreamConfiguration;
using aidl::android::hardware::camera::device::StreamConfigurationMode;
using aidl::android::hardware::camera::device::StreamRotation;
using aidl::android::hardware::camera::device::StreamType;
using CameraResourceCost = aidl::android::hardware::camera::common::CameraResourceCost;
using ::testing::_;
using testing::bytesOf;
using ::testing::DoAll;
using ::testing::ElementsAre;
using testing::hasStatus;
using ::testing::Invoke;
using testing::makeMetadata;
using testing::MockCameraModule;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::SetArgPointee;
using ::testing::StrEq;
using ::testing::StrictMock;

constexpr int32_t kInstanceId = 7;

class DeviceTest : public testing::LoggingTest {
protected:
    std::vector<std::string> errorTexts() {
        std::vector<std::string> texts;
        for (const auto& line : mULog.logger().lines()) {
            if (line.level == 1) texts.push_back(line.text);
        }
        return texts;
    }

    std::shared_ptr<NiceMock<MockCameraModule>> mModule =
            std::make_shared<NiceMock<MockCameraModule>>();
    std::shared_ptr<Aidl2LegacyCameraDevice> mDevice =
            Aidl2LegacyCameraDevice::create({kInstanceId, mModule, {{1, "extra"}}});
};

// What the module saw of one stream-combination query, copied during the call.
struct SeenCombination {
    std::vector<CombinationStream> streams;
    std::vector<std::string> physicalCameraIds;
    uint32_t operationMode = 0;
    std::optional<std::vector<uint8_t>> sessionParameters;

    void record(const StreamCombination* combination) {
        for (uint32_t i = 0; i < combination->streamCount; ++i) {
            streams.push_back(combination->streams[i]);
            physicalCameraIds.emplace_back(combination->streams[i].physicalCameraId);
        }
        operationMode = combination->operationMode;
        if (combination->sessionParameters != nullptr) {
            sessionParameters = bytesOf(combination->sessionParameters);
        }
    }
};

StreamConfiguration twoStreamConfiguration() {
    StreamConfiguration config;
    Stream preview;
    preview.id = 10;
    preview.streamType = StreamType::OUTPUT;
    preview.width = 640;
    preview.height = 480;
    preview.format = static_cast<decltype(preview.format)>(0x23);
    preview.usage = static_cast<decltype(preview.usage)>(0x1'0000'0100LL);
    preview.dataSpace = static_cast<decltype(preview.dataSpace)>(0x8C20000);
    preview.rotation = StreamRotation::ROTATION_90;
    preview.groupId = 2;
    preview.useCase = static_cast<decltype(preview.useCase)>(3);
    preview.dynamicRangeProfile =
            static_cast<decltype(preview.dynamicRangeProfile)>(0x2'0000'0004LL);
    preview.colorSpace = 5;
    Stream physical = preview;
    physical.id = 11;
    physical.streamType = StreamType::INPUT;
    physical.physicalCameraId = "5";
    physical.groupId = -1;
    config.streams = {preview, physical};
    config.operationMode = StreamConfigurationMode::CONSTRAINED_HIGH_SPEED_MODE;
    return config;
}

TEST_F(DeviceTest, NullOutArgumentsAreRefusedWithoutAskingTheModule) {
    auto strictModule = std::make_shared<StrictMock<MockCameraModule>>();
    auto device = Aidl2LegacyCameraDevice::create({kInstanceId, strictModule, {}});
    auto framework = ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
    std::shared_ptr<ICameraDeviceSession> session;
    struct Case {
        const char* method;
        std::function<ndk::ScopedAStatus()> call;
    };
    const std::vector<Case> cases = {
            {"getCameraCharacteristics", [&] { return device->getCameraCharacteristics(nullptr); }},
            {"getPhysicalCameraCharacteristics",
             [&] { return device->getPhysicalCameraCharacteristics("1", nullptr); }},
            {"getResourceCost", [&] { return device->getResourceCost(nullptr); }},
            {"isStreamCombinationWithSettingsSupported",
             [&] { return device->isStreamCombinationWithSettingsSupported({}, nullptr); }},
            {"getSessionCharacteristics",
             [&] { return device->getSessionCharacteristics({}, nullptr); }},
            {"getTorchStrengthLevel", [&] { return device->getTorchStrengthLevel(nullptr); }},
            {"constructDefaultRequestSettings",
             [&] {
                 return device->constructDefaultRequestSettings(RequestTemplate::PREVIEW, nullptr);
             }},
            {"openInjectionSession",
             [&] { return device->openInjectionSession(framework, nullptr); }},
            {"open", [&] { return device->open(framework, nullptr); }},
            {"open without callback", [&] { return device->open(nullptr, &session); }},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(hasStatus(c.call(), -EINVAL)) << c.method;
    }
    EXPECT_TRUE(errorTexts().empty());
}

TEST_F(DeviceTest, ModuleFailuresBecomeTheirStatusWithOneErrorLog) {
    struct Case {
        const char* method;
        std::function<void()> arm;
        std::function<ndk::ScopedAStatus()> call;
        int expectedErrno;
        std::vector<std::string> errors;
    };
    CameraMetadata metadata;
    int32_t level = 0;
    const std::vector<Case> cases = {
            {"getCameraCharacteristics",
             [&] { ON_CALL(*mModule, getCameraInfo(kInstanceId, _)).WillByDefault(Return(-ENODEV)); },
             [&] { return mDevice->getCameraCharacteristics(&metadata); },
             -ENODEV,
             {"[getCameraCharacteristics] fail to getCameraCharacteristics, status=-19"}},
            {"getPhysicalCameraCharacteristics",
             [&] { ON_CALL(*mModule, getPhysicalCameraInfo(_, _)).WillByDefault(Return(-ENOSYS)); },
             [&] { return mDevice->getPhysicalCameraCharacteristics("2", &metadata); },
             -ENOSYS,
             {"[getPhysicalCameraCharacteristics] fail to getPhysicalCameraCharacteristics, "
              "status=-38"}},
            {"turnOnTorchWithStrengthLevel",
             [&] {
                 ON_CALL(*mModule, turnOnTorchWithStrengthLevel(_, _)).WillByDefault(Return(-EBUSY));
             },
             [&] { return mDevice->turnOnTorchWithStrengthLevel(3); },
             -EBUSY,
             {"[turnOnTorchWithStrengthLevel] fail to turnOnTorchWithStrengthLevel, status=-16"}},
            {"getTorchStrengthLevel",
             [&] { ON_CALL(*mModule, getTorchStrengthLevel(_, _)).WillByDefault(Return(-ENOSYS)); },
             [&] { return mDevice->getTorchStrengthLevel(&level); },
             -ENOSYS,
             {"[getTorchStrengthLevel] fail to getTorchStrengthLevel, status=-38"}},
            {"constructDefaultRequestSettings",
             [&] {
                 ON_CALL(*mModule, constructDefaultRequestSettings(_, _))
                         .WillByDefault(Return(nullptr));
             },
             [&] {
                 return mDevice->constructDefaultRequestSettings(RequestTemplate::PREVIEW,
                                                                 &metadata);
             },
             -ENODEV,
             {"[constructDefaultRequestSettings] fail to constructDefaultRequestSettings"}},
            {"setTorchMode",
             [&] { ON_CALL(*mModule, setTorchMode(_, _)).WillByDefault(Return(-ENOSYS)); },
             [&] { return mDevice->setTorchMode(true); },
             -ENOSYS,
             {}},
    };
    for (const Case& c : cases) {
        clearLogs();
        c.arm();
        EXPECT_TRUE(hasStatus(c.call(), c.expectedErrno)) << c.method;
        EXPECT_EQ(c.errors, errorTexts()) << c.method;
    }
}

TEST_F(DeviceTest, FailedQueriesEmptyTheMetadataButLeaveTheTorchLevel) {
    ON_CALL(*mModule, getCameraInfo(_, _)).WillByDefault(Return(-ENODEV));
    ON_CALL(*mModule, getPhysicalCameraInfo(_, _)).WillByDefault(Return(-ENODEV));
    ON_CALL(*mModule, getTorchStrengthLevel(_, _))
            .WillByDefault(DoAll(SetArgPointee<1>(9), Return(-ENODEV)));

    CameraMetadata characteristics{{1, 2, 3}};
    mDevice->getCameraCharacteristics(&characteristics);
    EXPECT_TRUE(characteristics.metadata.empty());

    CameraMetadata physical{{1, 2, 3}};
    mDevice->getPhysicalCameraCharacteristics("1", &physical);
    EXPECT_TRUE(physical.metadata.empty());

    int32_t level = 55;
    mDevice->getTorchStrengthLevel(&level);
    EXPECT_EQ(55, level);
}

TEST_F(DeviceTest, MetadataQueriesCopyWhatTheModuleHolds) {
    testing::MetadataPtr characteristics = makeMetadata(90);
    testing::MetadataPtr physical = makeMetadata(180, 16);
    testing::MetadataPtr settings = makeMetadata(270, 32);
    camera_info info{};
    info.static_camera_characteristics = characteristics.get();
    EXPECT_CALL(*mModule, getCameraInfo(kInstanceId, _))
            .WillOnce(DoAll(SetArgPointee<1>(info), Return(0)));
    EXPECT_CALL(*mModule, getPhysicalCameraInfo(12, _))
            .WillOnce(DoAll(SetArgPointee<1>(physical.get()), Return(0)));
    EXPECT_CALL(*mModule, constructDefaultRequestSettings(
                                  kInstanceId, static_cast<int32_t>(RequestTemplate::VIDEO_RECORD)))
            .WillOnce(Return(settings.get()));

    CameraMetadata out;
    ASSERT_TRUE(mDevice->getCameraCharacteristics(&out).isOk());
    EXPECT_EQ(bytesOf(characteristics.get()), out.metadata);
    ASSERT_TRUE(mDevice->getPhysicalCameraCharacteristics("12", &out).isOk());
    EXPECT_EQ(bytesOf(physical.get()), out.metadata);
    ASSERT_TRUE(
            mDevice->constructDefaultRequestSettings(RequestTemplate::VIDEO_RECORD, &out).isOk());
    EXPECT_EQ(bytesOf(settings.get()), out.metadata);
}

TEST_F(DeviceTest, CharacteristicsSizeIsLoggedFromLogLevelOne) {
    testing::MetadataPtr characteristics = makeMetadata(90);
    camera_info info{};
    info.static_camera_characteristics = characteristics.get();
    ON_CALL(*mModule, getCameraInfo(_, _)).WillByDefault(DoAll(SetArgPointee<1>(info), Return(0)));
    const std::string sizeLine = "[getCameraCharacteristics] characteristics size:" +
                                 std::to_string(get_camera_metadata_size(characteristics.get())) +
                                 " entryCount:1";

    CameraMetadata out;
    mDevice->getCameraCharacteristics(&out);
    EXPECT_FALSE(logged(sizeLine));

    property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", "1");
    auto verbose = Aidl2LegacyCameraDevice::create({kInstanceId, mModule, {}});
    verbose->getCameraCharacteristics(&out);
    EXPECT_TRUE(logged(sizeLine));
}

TEST_F(DeviceTest, PhysicalCameraIdIsReadAsANumberLikeAtoi) {
    struct Case {
        const char* id;
        int32_t number;
    };
    for (const Case& c : {Case{"abc", 0}, Case{"12", 12}, Case{"3x", 3}, Case{"-1", -1}}) {
        EXPECT_CALL(*mModule, getPhysicalCameraInfo(c.number, _)).WillOnce(Return(0));
        CameraMetadata out;
        EXPECT_TRUE(mDevice->getPhysicalCameraCharacteristics(c.id, &out).isOk()) << c.id;
        EXPECT_TRUE(logged(std::string("[getPhysicalCameraCharacteristics] inPhysicalCameraId:") +
                           c.id));
    }
}

TEST_F(DeviceTest, ResourceCostCopiesCostAndConflictingDevices) {
    char first[] = "1";
    char second[] = "30";
    char* conflicting[] = {first, second};
    camera_info info{};
    info.resource_cost = 50;
    info.conflicting_devices = conflicting;
    info.conflicting_devices_length = 2;
    EXPECT_CALL(*mModule, getCameraInfo(kInstanceId, _))
            .WillOnce(DoAll(SetArgPointee<1>(info), Return(0)));

    CameraResourceCost cost;
    ASSERT_TRUE(mDevice->getResourceCost(&cost).isOk());
    EXPECT_EQ(50, cost.resourceCost);
    EXPECT_THAT(cost.conflictingDevices, ElementsAre("1", "30"));
    EXPECT_TRUE(logged("[getResourceCost] conflicting_devices_length:2"));
}

TEST_F(DeviceTest, ResourceCostOfAFailingModuleIsZeroAndOk) {
    EXPECT_CALL(*mModule, getCameraInfo(kInstanceId, _)).WillOnce(Return(-ENODEV));
    CameraResourceCost cost{9, {"stale"}};
    EXPECT_TRUE(mDevice->getResourceCost(&cost).isOk());
    EXPECT_EQ(0, cost.resourceCost);
    EXPECT_TRUE(cost.conflictingDevices.empty());
}

TEST_F(DeviceTest, CombinationRecordsCarryEveryStreamField) {
    StreamConfiguration config = twoStreamConfiguration();
    testing::MetadataPtr sessionParams = makeMetadata(1);
    config.sessionParams.metadata = bytesOf(sessionParams.get());

    SeenCombination plain;
    SeenCombination withSettings;
    EXPECT_CALL(*mModule, isStreamCombinationSupported(kInstanceId, _))
            .WillOnce(Invoke([&](int32_t, const StreamCombination* combination) {
                plain.record(combination);
                return 0;
            }))
            .WillOnce(Invoke([&](int32_t, const StreamCombination* combination) {
                withSettings.record(combination);
                return 0;
            }));
    bool supported = false;
    ASSERT_TRUE(mDevice->isStreamCombinationSupported(config, &supported).isOk());
    ASSERT_TRUE(mDevice->isStreamCombinationWithSettingsSupported(config, &supported).isOk());

    for (const SeenCombination* seen : {&plain, &withSettings}) {
        ASSERT_EQ(2u, seen->streams.size());
        const CombinationStream& preview = seen->streams[0];
        EXPECT_EQ(static_cast<int32_t>(StreamType::OUTPUT), preview.streamType);
        EXPECT_EQ(640u, preview.width);
        EXPECT_EQ(480u, preview.height);
        EXPECT_EQ(0x23, preview.format);
        EXPECT_EQ(0x100u, preview.usage);
        EXPECT_EQ(0x8C20000, preview.dataSpace);
        EXPECT_EQ(static_cast<int32_t>(StreamRotation::ROTATION_90), preview.rotation);
        EXPECT_EQ(2, preview.groupId);
        EXPECT_EQ(3, preview.useCase);
        EXPECT_EQ(4, preview.dynamicRangeProfile);
        EXPECT_EQ(5, preview.colorSpace);
        EXPECT_EQ(static_cast<int32_t>(StreamType::INPUT), seen->streams[1].streamType);
        EXPECT_EQ(-1, seen->streams[1].groupId);
        EXPECT_THAT(seen->physicalCameraIds, ElementsAre("-1", "5"));
        EXPECT_EQ(static_cast<uint32_t>(StreamConfigurationMode::CONSTRAINED_HIGH_SPEED_MODE),
                  seen->operationMode);
    }
    EXPECT_FALSE(plain.sessionParameters.has_value());
    EXPECT_EQ(bytesOf(sessionParams.get()), withSettings.sessionParameters);
}

TEST_F(DeviceTest, CombinationAnswersMapToSupportAndStatus) {
    struct Case {
        int32_t moduleStatus;
        int expectedErrno;
        bool supported;
    };
    using Query = ndk::ScopedAStatus (Aidl2LegacyCameraDevice::*)(const StreamConfiguration&, bool*);
    const StreamConfiguration config = twoStreamConfiguration();
    for (Query query : {&Aidl2LegacyCameraDevice::isStreamCombinationSupported,
                        &Aidl2LegacyCameraDevice::isStreamCombinationWithSettingsSupported}) {
        for (const Case& c : {Case{0, 0, true}, Case{-EINVAL, 0, false},
                              Case{-ENODEV, -ENODEV, false}, Case{-ENOSYS, -ENOSYS, false}}) {
            EXPECT_CALL(*mModule, isStreamCombinationSupported(_, _))
                    .WillOnce(Return(c.moduleStatus));
            bool supported = !c.supported;
            EXPECT_TRUE(hasStatus(((*mDevice).*query)(config, &supported), c.expectedErrno))
                    << c.moduleStatus;
            EXPECT_EQ(c.supported, supported) << c.moduleStatus;
        }
    }
}

TEST_F(DeviceTest, SessionCharacteristicsAreConvertedWhateverTheModuleAnswers) {
    testing::MetadataPtr characteristics = makeMetadata(3);
    StreamConfiguration config = twoStreamConfiguration();
    testing::MetadataPtr sessionParams = makeMetadata(1);
    config.sessionParams.metadata = bytesOf(sessionParams.get());
    struct Case {
        int32_t moduleStatus;
        const camera_metadata_t* metadata;
    };
    for (const Case& c : {Case{0, characteristics.get()}, Case{-ENODEV, characteristics.get()},
                          Case{-ENODEV, nullptr}}) {
        SeenCombination seen;
        EXPECT_CALL(*mModule, getSessionCharacteristics(kInstanceId, _, _))
                .WillOnce(Invoke([&](int32_t, const StreamCombination* combination,
                                     const camera_metadata_t** out) {
                    EXPECT_EQ(nullptr, *out);
                    seen.record(combination);
                    *out = c.metadata;
                    return c.moduleStatus;
                }));
        CameraMetadata out{{9, 9}};
        EXPECT_TRUE(hasStatus(mDevice->getSessionCharacteristics(config, &out), c.moduleStatus));
        EXPECT_EQ(c.metadata != nullptr ? bytesOf(c.metadata) : std::vector<uint8_t>{},
                  out.metadata);
        EXPECT_EQ(2u, seen.streams.size());
        EXPECT_EQ(bytesOf(sessionParams.get()), seen.sessionParameters);
    }
}

TEST_F(DeviceTest, TorchCallsNameTheCameraByItsDecimalId) {
    EXPECT_CALL(*mModule, setTorchMode(StrEq("7"), true)).WillOnce(Return(0));
    EXPECT_CALL(*mModule, turnOnTorchWithStrengthLevel(StrEq("7"), 4)).WillOnce(Return(0));
    EXPECT_CALL(*mModule, getTorchStrengthLevel(StrEq("7"), _))
            .WillOnce(Invoke([](const char*, int32_t* level) {
                EXPECT_EQ(-1, *level);
                *level = 3;
                return 0;
            }));
    EXPECT_TRUE(mDevice->setTorchMode(true).isOk());
    EXPECT_TRUE(mDevice->turnOnTorchWithStrengthLevel(4).isOk());
    int32_t level = 0;
    EXPECT_TRUE(mDevice->getTorchStrengthLevel(&level).isOk());
    EXPECT_EQ(3, level);
}

TEST_F(DeviceTest, InjectionSessionsAreNotSupported) {
    auto framework = ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
    std::shared_ptr<ICameraInjectionSession> session;
    EXPECT_TRUE(hasStatus(mDevice->openInjectionSession(framework, &session), -ENOSYS));
    EXPECT_EQ(nullptr, session);
}

TEST(DeviceDeathTest, MissingModuleEndsTheProcess) {
    auto device = Aidl2LegacyCameraDevice::create({kInstanceId, nullptr, {}});
    CameraMetadata out;
    EXPECT_DEATH(device->getCameraCharacteristics(&out),
                 "\\[getCameraCharacteristics\\] Aidl2LegacyCameraModule is null");
}

}  // namespace
}  // namespace kovo::aidl2legacy
