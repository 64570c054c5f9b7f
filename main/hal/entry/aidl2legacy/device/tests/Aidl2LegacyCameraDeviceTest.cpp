#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <cutils/properties.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "Aidl2LegacyCameraDevice.h"
#include "Aidl2LegacyCameraDeviceCallback.h"
#include "Aidl2LegacyCameraDeviceSession.h"
#include "BufferHandleCacheMgrSeam.h"
#include "DeviceTestSupport.h"
#include "MockCameraModule.h"
#include "OpenFds.h"
#include "RecordingCameraDeviceCallback.h"
#include "ScriptableLegacyDevice.h"
#include "SessionTestSupport.h"

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
using ::testing::_;
using testing::bytesOf;
using testing::clonedBytes;
using ::testing::DoAll;
using ::testing::ElementsAre;
using testing::hasStatus;
using testing::makeBuffer;
using testing::makeHandle;
using testing::makeMetadata;
using testing::MetadataPtr;
using testing::movedInto;
using ::testing::Return;
using testing::sameFile;
using testing::Session;
using ::testing::SetArgPointee;
using ::testing::StrEq;
using Framework = testing::RecordingCameraDeviceCallback;

constexpr int32_t kInstanceId = 7;

class DeviceTest : public testing::LoggingTest {
protected:
    DeviceTest() {
        ON_CALL(*mModule, openDevice(_, _))
                .WillByDefault(DoAll(SetArgPointee<1>(mLegacy.device()), Return(0)));
    }

    std::vector<std::string> errorTexts() {
        std::vector<std::string> texts;
        for (const auto& line : mULog.logger().lines()) {
            if (line.level == 1) texts.push_back(line.text);
        }
        return texts;
    }

    testing::ScriptableLegacyDevice mLegacy;
    std::shared_ptr<::testing::NiceMock<testing::MockCameraModule>> mModule =
            std::make_shared<::testing::NiceMock<testing::MockCameraModule>>();
    std::shared_ptr<Aidl2LegacyCameraDevice> mDevice =
            Aidl2LegacyCameraDevice::create({kInstanceId, mModule, {{1, "extra"}}});
    std::shared_ptr<Framework> mFramework = ndk::SharedRefBase::make<Framework>();
};

// What the module saw of one stream-combination query, copied during the call.
struct SeenCombination {
    std::vector<CombinationStream> streams;
    std::vector<std::string> physicalCameraIds;
    uint32_t operationMode = 0;
    std::optional<std::vector<uint8_t>> sessionParameters;

    int32_t record(const StreamCombination* combination) {
        for (uint32_t i = 0; i < combination->streamCount; ++i) {
            streams.push_back(combination->streams[i]);
            physicalCameraIds.emplace_back(combination->streams[i].physicalCameraId);
        }
        operationMode = combination->operationMode;
        if (combination->sessionParameters != nullptr) {
            sessionParameters = bytesOf(combination->sessionParameters);
        }
        return 0;
    }
};

// A stream with every field set, and its twin on physical camera "5".
StreamConfiguration twoStreamConfiguration() {
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
    physical.physicalCameraId = "5";
    StreamConfiguration config;
    config.streams = {preview, physical};
    config.operationMode = StreamConfigurationMode::CONSTRAINED_HIGH_SPEED_MODE;
    return config;
}

TEST_F(DeviceTest, NullOutArgumentsAreRefusedWithoutAskingTheModule) {
    auto strictModule = std::make_shared<::testing::StrictMock<testing::MockCameraModule>>();
    auto device = Aidl2LegacyCameraDevice::create({kInstanceId, strictModule, {}});
    EXPECT_TRUE(hasStatus(device->getCameraCharacteristics(nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->getPhysicalCameraCharacteristics("1", nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->getResourceCost(nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->isStreamCombinationWithSettingsSupported({}, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->getSessionCharacteristics({}, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->getTorchStrengthLevel(nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(
            device->constructDefaultRequestSettings(RequestTemplate::PREVIEW, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->openInjectionSession(mFramework, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(device->open(mFramework, nullptr), -EINVAL));
    EXPECT_TRUE(errorTexts().empty());
}

// Metadata outs are emptied before the module is asked; the torch level is left as it was.
TEST_F(DeviceTest, ModuleFailuresBecomeTheirStatusWithOneErrorLog) {
    ON_CALL(*mModule, getCameraInfo(_, _)).WillByDefault(Return(-ENODEV));
    ON_CALL(*mModule, getPhysicalCameraInfo(_, _)).WillByDefault(Return(-ENOSYS));
    ON_CALL(*mModule, turnOnTorchWithStrengthLevel(_, _)).WillByDefault(Return(-EBUSY));
    ON_CALL(*mModule, getTorchStrengthLevel(_, _))
            .WillByDefault(DoAll(SetArgPointee<1>(9), Return(-ENOSYS)));
    ON_CALL(*mModule, setTorchMode(_, _)).WillByDefault(Return(-ENOSYS));
    const auto expectFailure = [this](const ndk::ScopedAStatus& status, int errnoValue,
                                      std::vector<std::string> errors) {
        EXPECT_TRUE(hasStatus(status, errnoValue));
        EXPECT_EQ(errors, errorTexts());
        clearLogs();
    };
    CameraMetadata characteristics{{1, 2, 3}};
    CameraMetadata physical{{1, 2, 3}};
    CameraMetadata settings{{1, 2, 3}};
    int32_t level = 55;
    expectFailure(mDevice->getCameraCharacteristics(&characteristics), -ENODEV,
                  {"[getCameraCharacteristics] fail to getCameraCharacteristics, status=-19"});
    expectFailure(mDevice->getPhysicalCameraCharacteristics("2", &physical), -ENOSYS,
                  {"[getPhysicalCameraCharacteristics] fail to getPhysicalCameraCharacteristics, "
                   "status=-38"});
    expectFailure(
            mDevice->turnOnTorchWithStrengthLevel(3), -EBUSY,
            {"[turnOnTorchWithStrengthLevel] fail to turnOnTorchWithStrengthLevel, status=-16"});
    expectFailure(mDevice->getTorchStrengthLevel(&level), -ENOSYS,
                  {"[getTorchStrengthLevel] fail to getTorchStrengthLevel, status=-38"});
    expectFailure(mDevice->constructDefaultRequestSettings(RequestTemplate::PREVIEW, &settings),
                  -ENODEV,
                  {"[constructDefaultRequestSettings] fail to constructDefaultRequestSettings"});
    expectFailure(mDevice->setTorchMode(true), -ENOSYS, {});
    EXPECT_TRUE(characteristics.metadata.empty());
    EXPECT_TRUE(physical.metadata.empty());
    EXPECT_EQ(3u, settings.metadata.size());
    EXPECT_EQ(55, level);
}

// The physical id is read like atoi(): non-numeric text asks for physical camera 0. The size of
// the characteristics is logged from log level 1.
TEST_F(DeviceTest, MetadataQueriesCopyWhatTheModuleHolds) {
    testing::MetadataPtr characteristics = makeMetadata(90);
    testing::MetadataPtr physical = makeMetadata(180, 16);
    testing::MetadataPtr settings = makeMetadata(270, 32);
    camera_info info{};
    info.static_camera_characteristics = characteristics.get();
    ON_CALL(*mModule, getCameraInfo(kInstanceId, _))
            .WillByDefault(DoAll(SetArgPointee<1>(info), Return(0)));
    EXPECT_CALL(*mModule, constructDefaultRequestSettings(
                                  kInstanceId, static_cast<int32_t>(RequestTemplate::VIDEO_RECORD)))
            .WillOnce(Return(settings.get()));
    for (const auto& [id, number] : {std::tuple{"12", 12}, {"abc", 0}, {"3x", 3}, {"-1", -1}}) {
        EXPECT_CALL(*mModule, getPhysicalCameraInfo(number, _))
                .WillOnce(DoAll(SetArgPointee<1>(physical.get()), Return(0)));
    }
    CameraMetadata out;
    ASSERT_TRUE(mDevice->getCameraCharacteristics(&out).isOk());
    EXPECT_EQ(bytesOf(characteristics.get()), out.metadata);
    ASSERT_TRUE(
            mDevice->constructDefaultRequestSettings(RequestTemplate::VIDEO_RECORD, &out).isOk());
    EXPECT_EQ(bytesOf(settings.get()), out.metadata);
    for (const char* id : {"12", "abc", "3x", "-1"}) {
        out.metadata.clear();
        ASSERT_TRUE(mDevice->getPhysicalCameraCharacteristics(id, &out).isOk());
        EXPECT_EQ(bytesOf(physical.get()), out.metadata);
    }
    EXPECT_TRUE(logged("[getPhysicalCameraCharacteristics] inPhysicalCameraId:abc"));

    const std::string sizeLine = "[getCameraCharacteristics] characteristics size:" +
                                 std::to_string(get_camera_metadata_size(characteristics.get())) +
                                 " entryCount:1";
    EXPECT_FALSE(logged(sizeLine));
    property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", "1");
    Aidl2LegacyCameraDevice::create({kInstanceId, mModule, {}})->getCameraCharacteristics(&out);
    EXPECT_TRUE(logged(sizeLine));
}

// A failing module reads as cost 0 and no conflicts.
TEST_F(DeviceTest, ResourceCostCopiesCostAndConflictingDevices) {
    char first[] = "1";
    char second[] = "30";
    char* conflicting[] = {first, second};
    camera_info info{};
    info.resource_cost = 50;
    info.conflicting_devices = conflicting;
    info.conflicting_devices_length = 2;
    EXPECT_CALL(*mModule, getCameraInfo(kInstanceId, _))
            .WillOnce(DoAll(SetArgPointee<1>(info), Return(0)))
            .WillOnce(Return(-ENODEV));
    aidl::android::hardware::camera::common::CameraResourceCost cost;
    ASSERT_TRUE(mDevice->getResourceCost(&cost).isOk());
    EXPECT_EQ(50, cost.resourceCost);
    EXPECT_THAT(cost.conflictingDevices, ElementsAre("1", "30"));
    EXPECT_TRUE(logged("[getResourceCost] conflicting_devices_length:2"));
    EXPECT_TRUE(mDevice->getResourceCost(&cost).isOk());
    EXPECT_EQ(0, cost.resourceCost);
    EXPECT_TRUE(cost.conflictingDevices.empty());
}

// Both queries hand the module the same records; only the settings query adds the parameters.
// A stream of no physical camera is marked "-1".
TEST_F(DeviceTest, CombinationRecordsCarryEveryStreamField) {
    StreamConfiguration config = twoStreamConfiguration();
    testing::MetadataPtr sessionParams = makeMetadata(1);
    config.sessionParams.metadata = bytesOf(sessionParams.get());
    SeenCombination plain;
    SeenCombination withSettings;
    EXPECT_CALL(*mModule, isStreamCombinationSupported(kInstanceId, _))
            .WillOnce([&](int32_t, const StreamCombination* c) { return plain.record(c); })
            .WillOnce([&](int32_t, const StreamCombination* c) { return withSettings.record(c); });
    bool supported = false;
    ASSERT_TRUE(mDevice->isStreamCombinationSupported(config, &supported).isOk());
    ASSERT_TRUE(mDevice->isStreamCombinationWithSettingsSupported(config, &supported).isOk());

    const auto fields = [](const CombinationStream& s) {
        return std::tuple(s.streamType, s.width, s.height, s.format, s.usage, s.dataSpace,
                          s.rotation, s.groupId, s.useCase, s.dynamicRangeProfile, s.colorSpace);
    };
    for (const SeenCombination* seen : {&plain, &withSettings}) {
        ASSERT_EQ(2u, seen->streams.size());
        EXPECT_EQ(std::tuple(static_cast<int32_t>(StreamType::OUTPUT), 640u, 480u, 0x23, 0x100u,
                             0x8C20000, static_cast<int32_t>(StreamRotation::ROTATION_90), 2,
                             int64_t{3}, 4, 5),
                  fields(seen->streams[0]));
        EXPECT_THAT(seen->physicalCameraIds, ElementsAre("-1", "5"));
        EXPECT_EQ(static_cast<uint32_t>(StreamConfigurationMode::CONSTRAINED_HIGH_SPEED_MODE),
                  seen->operationMode);
    }
    EXPECT_FALSE(plain.sessionParameters.has_value());
    EXPECT_EQ(bytesOf(sessionParams.get()), withSettings.sessionParameters);
}

// -EINVAL is the module's "not supported"; other failures are failures.
TEST_F(DeviceTest, CombinationAnswersMapToSupportAndStatus) {
    using Query = ndk::ScopedAStatus (Aidl2LegacyCameraDevice::*)(const StreamConfiguration&, bool*);
    const StreamConfiguration config = twoStreamConfiguration();
    for (Query query : {&Aidl2LegacyCameraDevice::isStreamCombinationSupported,
                        &Aidl2LegacyCameraDevice::isStreamCombinationWithSettingsSupported}) {
        for (const auto& [moduleStatus, expectedErrno, expected] :
             {std::tuple{0, 0, true}, {-EINVAL, 0, false}, {-ENODEV, -ENODEV, false}}) {
            EXPECT_CALL(*mModule, isStreamCombinationSupported(_, _)).WillOnce(Return(moduleStatus));
            bool supported = !expected;
            EXPECT_TRUE(hasStatus(((*mDevice).*query)(config, &supported), expectedErrno));
            EXPECT_EQ(expected, supported) << moduleStatus;
        }
    }
}

TEST_F(DeviceTest, SessionCharacteristicsAreConvertedWhateverTheModuleAnswers) {
    testing::MetadataPtr characteristics = makeMetadata(3);
    StreamConfiguration config = twoStreamConfiguration();
    testing::MetadataPtr sessionParams = makeMetadata(1);
    config.sessionParams.metadata = bytesOf(sessionParams.get());
    for (const auto& [moduleStatus, metadata] : {std::tuple{0, characteristics.get()},
                                                 {-ENODEV, characteristics.get()},
                                                 {-ENODEV, nullptr}}) {
        SeenCombination seen;
        EXPECT_CALL(*mModule, getSessionCharacteristics(kInstanceId, _, _))
                .WillOnce([&](int32_t, const StreamCombination* combination,
                              const camera_metadata_t** out) {
                    EXPECT_EQ(nullptr, *out);
                    seen.record(combination);
                    *out = metadata;
                    return moduleStatus;
                });
        CameraMetadata out{{9, 9}};
        EXPECT_TRUE(hasStatus(mDevice->getSessionCharacteristics(config, &out), moduleStatus));
        EXPECT_EQ(metadata != nullptr ? bytesOf(metadata) : std::vector<uint8_t>{}, out.metadata);
        EXPECT_EQ(2u, seen.streams.size());
        EXPECT_EQ(bytesOf(sessionParams.get()), seen.sessionParameters);
    }
}

TEST_F(DeviceTest, TorchCallsNameTheCameraByItsDecimalId) {
    EXPECT_CALL(*mModule, setTorchMode(StrEq("7"), true)).WillOnce(Return(0));
    EXPECT_CALL(*mModule, turnOnTorchWithStrengthLevel(StrEq("7"), 4)).WillOnce(Return(0));
    EXPECT_CALL(*mModule, getTorchStrengthLevel(StrEq("7"), _))
            .WillOnce([](const char*, int32_t* level) {
                EXPECT_EQ(-1, *level);
                *level = 3;
                return 0;
            });
    EXPECT_TRUE(mDevice->setTorchMode(true).isOk());
    EXPECT_TRUE(mDevice->turnOnTorchWithStrengthLevel(4).isOk());
    int32_t level = 0;
    EXPECT_TRUE(mDevice->getTorchStrengthLevel(&level).isOk());
    EXPECT_EQ(3, level);

    std::shared_ptr<ICameraInjectionSession> injection;
    EXPECT_TRUE(hasStatus(mDevice->openInjectionSession(mFramework, &injection), -ENOSYS));
}

TEST(DeviceDeathTest, MissingModuleEndsTheProcess) {
    auto device = Aidl2LegacyCameraDevice::create({kInstanceId, nullptr, {}});
    CameraMetadata out;
    EXPECT_DEATH(device->getCameraCharacteristics(&out),
                 "\\[getCameraCharacteristics\\] Aidl2LegacyCameraModule is null");
}

// The module's status is not looked at: a device it hands out is used. Each open makes its own
// bridge and session.
TEST_F(DeviceTest, OpenUsesTheHandedOutDeviceWhateverTheModuleSays) {
    EXPECT_CALL(*mModule, openDevice(StrEq("7"), _))
            .WillOnce(DoAll(SetArgPointee<1>(mLegacy.device()), Return(-EIO)))
            .WillOnce(DoAll(SetArgPointee<1>(mLegacy.device()), Return(0)));
    std::shared_ptr<ICameraDeviceSession> first;
    std::shared_ptr<ICameraDeviceSession> second;
    ASSERT_TRUE(mDevice->open(mFramework, &first).isOk());
    const camera3_callback_ops_t* firstTable = mLegacy.callbackOps();
    ASSERT_TRUE(mDevice->open(mFramework, &second).isOk());
    EXPECT_NE(nullptr, first);
    EXPECT_NE(first, second);
    EXPECT_NE(firstTable, mLegacy.callbackOps());
}

// A missing callback makes nothing. A failed initialize closes the legacy device; a session that
// cannot open leaves it open (it is dropped without a close).
TEST_F(DeviceTest, FailedOpenResetsTheOutAndLogsWhy) {
    const std::shared_ptr<ICameraDeviceSession> stale = ndk::SharedRefBase::make<
            aidl::android::hardware::camera::device::ICameraDeviceSessionDefault>();
    std::shared_ptr<ICameraDeviceSession> session = stale;
    EXPECT_TRUE(hasStatus(mDevice->open(nullptr, &session), -EINVAL));
    EXPECT_EQ(stale, session);
    EXPECT_EQ(nullptr, mLegacy.callbackOps());
    EXPECT_TRUE(errorTexts().empty());

    EXPECT_CALL(mLegacy.mock(), initialize(_)).WillOnce(Return(-ENODEV)).WillRepeatedly(Return(0));
    EXPECT_TRUE(hasStatus(mDevice->open(mFramework, &session), -ENODEV));
    EXPECT_EQ(nullptr, session);
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_TRUE(logged("[open] fail to create AidlCameraDeviceSession, status=-19"));

    testing::ScopedCacheMgrFactory noCacheMgr([] { return nullptr; });
    session = stale;
    EXPECT_TRUE(hasStatus(mDevice->open(mFramework, &session), -ENODEV));
    EXPECT_EQ(nullptr, session);
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_TRUE(logged("[7-aidl-session::open] IBufferHandleCacheMgr::create"));
    EXPECT_TRUE(logged("[open] open aidl session fail, status=-19"));
}

// From ICameraDevice::open to a closed session, with the real buffer handle cache: both queues
// are served, a batch reaches the device with the framework's buffers imported once and found
// again by id, flushes reach it, and once the framework lets go of everything, every fd and
// allocation is released.
TEST_F(DeviceTest, OpenedSessionCapturesFlushesAndReleasesEverything) {
    mFramework.reset();
    const size_t fdsBefore = testing::countOpenFds();
    std::weak_ptr<ICameraDeviceSession> weakSession;
    {
        const int buffers[2] = {memfd_create("stream1", 0), memfd_create("stream2", 0)};
        int fence[2];
        ASSERT_EQ(0, pipe(fence));
        auto framework = ndk::SharedRefBase::make<Framework>();
        std::shared_ptr<ICameraDeviceSession> session;
        ASSERT_TRUE(mDevice->open(framework, &session).isOk());
        weakSession = session;
        int32_t version = 0;
        EXPECT_TRUE(session->getInterfaceVersion(&version).isOk());
        EXPECT_EQ(3, version);
        Session::MetadataQueueDescriptor requestDescriptor;
        Session::MetadataQueueDescriptor resultDescriptor;
        ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&requestDescriptor).isOk());
        ASSERT_TRUE(session->getCaptureResultMetadataQueue(&resultDescriptor).isOk());
        Session::MetadataQueue requestQueue(requestDescriptor);
        EXPECT_EQ(Session::kRequestQueueSize, requestQueue.getQuantumCount());
        EXPECT_EQ(Aidl2LegacyCameraDeviceCallback::kResultQueueSize,
                  Session::MetadataQueue(resultDescriptor).getQuantumCount());
        framework->attachResultQueue(resultDescriptor);

        Session::StreamConfiguration configuration;
        configuration.streams = {testing::makeStream(1), testing::makeStream(2)};
        std::vector<Session::HalStream> halStreams;
        ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());
        const std::vector<camera3_stream_t*> records = mLegacy.configurations().at(0).streams;
        MetadataPtr settings = makeMetadata(10);
        const std::vector<uint8_t> settingsBytes = bytesOf(settings.get());
        ASSERT_TRUE(requestQueue.write(reinterpret_cast<const int8_t*>(settingsBytes.data()),
                                       settingsBytes.size()));
        std::vector<Session::CaptureRequest> batch(3);
        for (int32_t frame = 0; frame < 3; ++frame) {
            batch[frame].frameNumber = frame;
            batch[frame].inputBuffer.streamId = -1;
        }
        batch[0].fmqSettingsSize = static_cast<int64_t>(settingsBytes.size());
        batch[0].outputBuffers = movedInto(makeBuffer(1, 11, makeHandle({fence[0]})),
                                           makeBuffer(2, 21, makeHandle({fence[0]})));
        batch[0].outputBuffers[0].buffer = makeHandle({buffers[0]});
        batch[0].outputBuffers[1].buffer = makeHandle({buffers[1]});
        batch[1].outputBuffers = movedInto(makeBuffer(1, 11, makeHandle({fence[0]})));
        batch[2].outputBuffers = movedInto(makeBuffer(2, 21));
        int32_t processed = 0;
        ASSERT_TRUE(session->processCaptureRequest(batch, {}, &processed).isOk());
        EXPECT_EQ(3, processed);
        std::vector<testing::CapturedRequest> device = mLegacy.takeRequests();
        ASSERT_EQ(3u, device.size());
        EXPECT_EQ(clonedBytes(settings.get()), device[0].settings);
        for (int stream = 0; stream < 2; ++stream) {
            const testing::CapturedBuffer& output = device[0].outputBuffers.at(stream);
            EXPECT_EQ(records[stream], output.stream);
            ASSERT_NE(nullptr, output.buffer);
            const native_handle_t* imported = *output.buffer;
            ASSERT_EQ(1, imported->numFds);
            EXPECT_NE(buffers[stream], imported->data[0]);
            EXPECT_TRUE(sameFile(buffers[stream], imported->data[0]));
            EXPECT_TRUE(sameFile(fence[0], output.acquireFenceNumber));
        }
        EXPECT_EQ(device[0].outputBuffers[0].buffer, device[1].outputBuffers.at(0).buffer);
        EXPECT_EQ(device[0].outputBuffers[1].buffer, device[2].outputBuffers.at(0).buffer);
        EXPECT_EQ(-1, device[2].outputBuffers[0].acquireFenceNumber);

        // The device completes frame 0. Only buffers the device asked for have their ids recorded,
        // so these come back up with id 0.
        camera3_stream_buffer done[2];
        for (int stream = 0; stream < 2; ++stream) {
            done[stream] = {records[stream], device[0].outputBuffers[stream].buffer,
                            CAMERA3_BUFFER_STATUS_OK, -1, -1};
        }
        MetadataPtr resultMetadata = makeMetadata(11);
        camera3_capture_result result{0,      resultMetadata.get(), 2, done, nullptr, 1, 0, nullptr,
                                      nullptr};
        const camera3_callback_ops* ops = mLegacy.callbackOps();
        ops->process_capture_result(ops, &result);
        const std::vector<Framework::RecordedResult> results = framework->results();
        ASSERT_EQ(1u, results.size());
        EXPECT_GT(results[0].metadata.fmqSize, 0);
        EXPECT_EQ(bytesOf(resultMetadata.get()), results[0].metadata.bytes);
        ASSERT_EQ(2u, results[0].outputBuffers.size());
        for (int stream = 0; stream < 2; ++stream) {
            EXPECT_EQ(stream + 1, results[0].outputBuffers[stream].streamId);
            EXPECT_EQ(0, results[0].outputBuffers[stream].bufferId);
        }

        EXPECT_CALL(mLegacy.mock(), flush()).WillOnce(Return(0));
        EXPECT_TRUE(session->flush().isOk());
        EXPECT_TRUE(session->signalStreamFlush({2, 1}, configuration.streamConfigCounter).isOk());
        EXPECT_EQ((std::vector<std::vector<camera3_stream_t*>>{{records[1], records[0]}}),
                  mLegacy.streamFlushes());
        EXPECT_TRUE(session->close().isOk());
        EXPECT_EQ(1, mLegacy.closeCount());
        for (int fd : {buffers[0], buffers[1], fence[0], fence[1]}) close(fd);
    }
    EXPECT_TRUE(weakSession.expired());
    EXPECT_EQ(fdsBefore, testing::countOpenFds());
}

}  // namespace
}  // namespace kovo::aidl2legacy
