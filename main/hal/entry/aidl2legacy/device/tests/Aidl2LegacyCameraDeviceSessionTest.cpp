#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>
#include <aidl/android/hardware/camera/device/OfflineRequest.h>
#include <android/testing/binder_hooks.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::ICameraDeviceSession;
using aidl::android::hardware::camera::device::ICameraOfflineSession;
using aidl::android::hardware::camera::device::RequestTemplate;
using ::testing::_;
using ::testing::ElementsAre;
using testing::hasStatus;
using ::testing::InSequence;
using ::testing::IsEmpty;
using testing::makeMetadata;
using testing::makeStream;
using testing::pointerText;
using ::testing::Return;
using testing::ScriptableLegacyDevice;
using testing::Session;
using testing::SessionTest;
using testing::toAidl;
using Credits = std::unordered_map<int, unsigned int>;

constexpr char kUnlinkFailed[] = "::unlinkToDeath] Fail to unlink ICameraDeviceCallback to death";

// A failed initialize closes the legacy device once; the status says why.
TEST_F(SessionTest, CreateInitializesTheLegacyDeviceWithTheBridgeTable) {
    Session::ResultInfo result{77};
    ASSERT_NE(nullptr, createSession(mLegacy.device(), result));
    EXPECT_EQ(77, result.status);
    EXPECT_EQ(static_cast<const camera3_callback_ops*>(mBridge.get()), mLegacy.callbackOps());

    ScriptableLegacyDevice failing;
    EXPECT_CALL(failing.mock(), initialize(nullptr)).WillOnce(Return(-ENODEV));
    EXPECT_EQ(nullptr, Session::create({3, failing.device(), nullptr}, result));
    EXPECT_EQ(-ENODEV, result.status);
    EXPECT_EQ(0, mLegacy.closeCount());
    EXPECT_EQ(1, failing.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre("::initialize] Unable to initialize HAL device(-19)"));
}

TEST_F(SessionTest, OpenNeedsAFrameworkCallback) {
    EXPECT_EQ(-EINVAL, createSession()->open(nullptr));
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::open] ICameraDeviceCallback is null, return ILLEGAL_ARGUMENT."));
    EXPECT_EQ(0u, mCacheMgrFactory.createCount());
}

// The death recipient is never created, so no link is made even to a remote callback, and the
// framework's death does not reach the session.
TEST_F(SessionTest, OpenLinksToDeathWithoutARecipient) {
    android::testing::RemoteBinder remote(mFramework);
    EXPECT_CALL(mLegacy.mock(), flush()).Times(0);
    std::shared_ptr<Session> session = openSession();
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::linkToDeath] Fail to link ICameraDeviceCallback to death",
                            "::open] FMQ request size:2097152"));
    EXPECT_EQ(0u, remote.deathLinkCount());
    EXPECT_EQ(1u, mCacheMgrFactory.createCount());
    remote.kill();
    EXPECT_EQ(0, mLegacy.closeCount());
}

TEST_F(SessionTest, SecondOpenReplacesCallbackQueueAndCacheManager) {
    std::shared_ptr<Session> session = openSession();
    Session::MetadataQueueDescriptor firstQueue;
    ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&firstQueue).isOk());
    {
        InSequence order;
        EXPECT_CALL(*mCacheMgrs[0], resetCacheMgr());
        EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr());
    }
    clearLogs();
    EXPECT_EQ(0, session->open(ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>()));
    EXPECT_THAT(
            sessionLogs(),
            ElementsAre("::open] mBinderCallback=" + pointerText(mFramework.get()) + " is not null.",
                        kUnlinkFailed, "::linkToDeath] Fail to link ICameraDeviceCallback to death",
                        "::open] FMQ request size:2097152",
                        "::open] mBufferHandleCacheMgr:" + pointerText(mCacheMgrs[0].get()) +
                                " != nullptr"));
    EXPECT_EQ(2u, mCacheMgrs.size());

    // What goes into the first queue does not reach the second.
    Session::MetadataQueueDescriptor secondQueue;
    ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&secondQueue).isOk());
    const int8_t byte = 1;
    ASSERT_TRUE(Session::MetadataQueue(firstQueue).write(&byte, 1));
    EXPECT_EQ(0u, Session::MetadataQueue(secondQueue).availableToRead());
}

// Only the legacy close is repeated, also by a framework death after the close.
TEST_F(SessionTest, CloseReleasesEverythingOnce) {
    std::shared_ptr<Session> session = openSession();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(1);
    clearLogs();
    EXPECT_TRUE(session->close().isOk());
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre(kUnlinkFailed));

    clearLogs();
    EXPECT_CALL(mLegacy.mock(), close()).WillOnce(Return(-ENODEV)).WillOnce(Return(0));
    EXPECT_TRUE(hasStatus(session->close(), -ENODEV));
    EXPECT_EQ(2, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre("::close] mBinderCallback is null before close done."));
    session->serviceDied();
    EXPECT_EQ(3, mLegacy.closeCount());
}

TEST_F(SessionTest, CloseWithoutCommonCloseStillReleasesCacheManagerAndCallback) {
    std::shared_ptr<Session> session = openSession();
    mLegacy.removeClose();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(1);
    clearLogs();
    EXPECT_TRUE(hasStatus(session->close(), -ENOSYS));
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::close] Invalid camera3_device_t operations, ",
                            "::close] mCamera3Device:" + pointerText(mLegacy.device()) +
                                    ",mCamera3Device->common.close:(nil)",
                            kUnlinkFailed));
}

TEST_F(SessionTest, ServiceDiedFlushesThenClosesWhateverFails) {
    for (const auto& [flushStatus, closeStatus] :
         {std::tuple{0, 0}, {-ENODEV, 0}, {0, -EIO}, {-ENODEV, -EIO}}) {
        ScriptableLegacyDevice legacy;
        {
            InSequence order;
            EXPECT_CALL(legacy.mock(), flush()).WillOnce(Return(flushStatus));
            EXPECT_CALL(legacy.mock(), close()).WillOnce(Return(closeStatus));
        }
        Session::ResultInfo result;
        std::shared_ptr<Session> session = createSession(legacy.device(), result);
        ASSERT_EQ(0, session->open(mFramework));
        clearLogs();
        session->serviceDied();
        std::vector<std::string> expected = {
                "::serviceDied] ICameraDeviceCallback " + pointerText(mFramework.get()) +
                " has died; removing it - this:" + pointerText(session.get()) +
                "; force to close camera device 3"};
        if (flushStatus != 0) expected.push_back("::serviceDied] fail to flush");
        expected.push_back(kUnlinkFailed);
        if (closeStatus != 0) expected.push_back("::serviceDied] fail to close");
        EXPECT_EQ(expected, sessionLogs()) << flushStatus << "/" << closeStatus;
        EXPECT_EQ(1, legacy.closeCount());
    }
}

TEST_F(SessionTest, DestructionNeitherClosesNorLogs) {
    std::shared_ptr<Session> session = openSession();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(0);
    EXPECT_CALL(*mCacheMgrs[0], resetCacheMgr()).Times(0);
    clearLogs();
    session.reset();
    EXPECT_EQ(0, mLegacy.closeCount());
    EXPECT_TRUE(sessionLogs().empty());
}

TEST_F(SessionTest, SessionBindersInheritRealTimePriority) {
    ndk::SpAIBinder binder = createSession()->asBinder();
    EXPECT_TRUE(android::testing::binderInheritsRt(binder.get()));
}

// The slot of a virtual function, from the Itanium representation of a pointer to it: the first
// word holds 1 + the function's byte offset in the virtual table.
template <typename MemberFunction>
ptrdiff_t vtableSlot(MemberFunction function) {
    static_assert(sizeof(function) == 2 * sizeof(ptrdiff_t));
    ptrdiff_t words[2];
    memcpy(words, &function, sizeof(words));
    EXPECT_EQ(1, words[0] % 2) << "not a virtual function";
    return (words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*));
}

struct SessionProbe : Session {
    static ptrdiff_t createBinderSlot() { return vtableSlot(&SessionProbe::createBinder); }
};

TEST(SessionLayoutTest, OwnVirtualFunctionsFollowCreateBinderInTheirFixedOrder) {
    const ptrdiff_t last = vtableSlot(&ICameraDeviceSession::getInterfaceHash);
    EXPECT_EQ(last + 1, SessionProbe::createBinderSlot());
    EXPECT_THAT((std::vector<ptrdiff_t>{
                        vtableSlot(&Session::open), vtableSlot(&Session::serviceDied),
                        vtableSlot(&Session::linkToDeath), vtableSlot(&Session::unlinkToDeath),
                        vtableSlot(&Session::convertMetadataFromFmq),
                        vtableSlot(&Session::convertPhysicalCameraSetting),
                        vtableSlot(&Session::convertStreamBuffer),
                        vtableSlot(&Session::processOneCaptureRequest),
                        vtableSlot(&Session::initialize)}),
                ElementsAre(last + 2, last + 3, last + 4, last + 5, last + 6, last + 7, last + 8,
                            last + 9, last + 10));
}

// Every optional legacy entry is tested before the call: a missing device, ops table or entry is
// logged (the entry's line differs in its blanks) and answered with -ENOSYS. A present one answers.
TEST_F(SessionTest, UncallableLegacyEntriesLogWhatIsMissing) {
    using Entry = ScriptableLegacyDevice::Entry;
    const std::vector<
            std::tuple<std::string, Entry, std::string, std::function<ndk::ScopedAStatus(Session&)>>>
            operations = {
                    {"flush", Entry::kFlush, " mCamera3Device->ops:%s,mCamera3Device->ops->flush:",
                     [](Session& session) { return session.flush(); }},
                    {"signalStreamFlush", Entry::kSignalStreamFlush,
                     "mCamera3Device->ops:%s,mCamera3Device->ops->signal_stream_flush:",
                     [](Session& session) { return session.signalStreamFlush({}, 0); }},
                    {"isReconfigurationRequired", Entry::kIsReconfigurationRequired,
                     "mCamera3Device->ops:%s,mCamera3Device->ops->is_reconfiguration_required:",
                     [](Session& session) {
                         bool needed = true;
                         return session.isReconfigurationRequired({}, {}, &needed);
                     }},
                    {"processOneCaptureRequest", Entry::kProcessCaptureRequest,
                     " mCamera3Device->ops:%s,mCamera3Device->ops->process_capture_request:",
                     [](Session& session) {
                         std::vector<Session::CaptureRequest> requests(1);
                         requests[0].inputBuffer.streamId = -1;
                         int32_t processed = 5;
                         ndk::ScopedAStatus status =
                                 session.processCaptureRequest(requests, {}, &processed);
                         EXPECT_EQ(5, processed);
                         return status;
                     }},
            };
    for (const auto& [name, entry, opsFormat, call] : operations) {
        ScriptableLegacyDevice withoutOps;
        withoutOps.removeOpsTable();
        ScriptableLegacyDevice withoutEntry;
        withoutEntry.removeEntry(entry);
        std::string opsLine = opsFormat + "(nil)";
        opsLine.replace(opsLine.find("%s"), 2, pointerText(withoutEntry.device()->ops));
        const std::string prefix = "::" + name + "] ";
        const std::string invalid = prefix + "Invalid camera3_device_t operations, ";
        for (const auto& [device, errors] :
             std::vector<std::pair<camera3_device_t*, std::vector<std::string>>>{
                     {nullptr, {invalid}},
                     {withoutOps.device(),
                      {invalid, prefix + "mCamera3Device:" + pointerText(withoutOps.device()) + ","}},
                     {withoutEntry.device(),
                      {invalid, prefix + "mCamera3Device:" + pointerText(withoutEntry.device()) + ",",
                       prefix + opsLine}}}) {
            // Made directly: initialize() would need the ops table.
            auto session =
                    ndk::SharedRefBase::make<Session>(Session::CreationInfo{3, device, mBridge});
            ASSERT_EQ(0, session->open(mFramework));
            clearLogs();
            EXPECT_TRUE(hasStatus(call(*session), -ENOSYS)) << name;
            EXPECT_EQ(errors, sessionLogs()) << name << " " << errors.size();
        }
    }
    EXPECT_CALL(mLegacy.mock(), flush()).WillOnce(Return(-ENODEV));
    EXPECT_TRUE(hasStatus(createSession()->flush(), -ENODEV));
}

class SessionConfigureTest : public SessionTest {
protected:
    SessionConfigureTest() { mSession = openSession(); }

    static Session::StreamConfiguration configurationOf(std::vector<int32_t> ids) {
        Session::StreamConfiguration configuration;
        for (int32_t id : ids) configuration.streams.push_back(makeStream(id));
        return configuration;
    }
    ndk::ScopedAStatus configure(const Session::StreamConfiguration& configuration) {
        mHalStreams.clear();
        return mSession->configureStreams(configuration, &mHalStreams);
    }
    Credits credits() {
        Credits counts;
        mBridge->getValidBufNum(counts);
        return counts;
    }

    std::shared_ptr<Session> mSession;
    std::vector<Session::HalStream> mHalStreams;
};

// The cache manager hears of the configuration first; what the device writes back reaches the
// framework and the bridge's credits.
TEST_F(SessionConfigureTest, DeviceGetsTheConvertedConfigurationAfterTheCacheManager) {
    Session::StreamConfiguration configuration;
    configuration.streams = {makeStream(1), makeStream(5, testing::StreamType::INPUT, 320, 240)};
    configuration.streams[0].physicalCameraId = "phys3";
    configuration.streams[1].physicalCameraId = "phys4";
    configuration.operationMode =
            aidl::android::hardware::camera::device::StreamConfigurationMode::VENDOR_MODE_1;
    testing::MetadataPtr sessionParams = makeMetadata(30);
    configuration.sessionParams = toAidl(sessionParams.get());
    configuration.multiResolutionInputImage = true;
    {
        InSequence order;
        EXPECT_CALL(*mCacheMgrs[0], configureStreams(::testing::Eq(configuration)));
        // The records' physical camera ids are their own, also while the device reads them.
        EXPECT_CALL(mLegacy.mock(), configureStreams(_))
                .WillOnce([](camera3_stream_configuration_t* device) {
                    EXPECT_STREQ("phys3", device->streams[0]->physical_camera_id);
                    EXPECT_STREQ("phys4", device->streams[1]->physical_camera_id);
                    for (uint32_t i = 0; i < 2; ++i) device->streams[i]->max_buffers = 4;
                    return 0;
                });
    }
    clearLogs();
    ASSERT_TRUE(configure(configuration).isOk());
    const testing::CapturedConfiguration device = mLegacy.configurations().at(0);
    ASSERT_EQ(2u, device.streamValues.size());
    EXPECT_EQ(CAMERA3_STREAM_OUTPUT, device.streamValues[0].stream_type);
    EXPECT_EQ(640u, device.streamValues[0].width);
    EXPECT_EQ(CAMERA3_STREAM_INPUT, device.streamValues[1].stream_type);
    EXPECT_EQ(240u, device.streamValues[1].height);
    EXPECT_EQ(32769u, device.operationMode);
    EXPECT_EQ(testing::bytesOf(sessionParams.get()), device.sessionParameters);
    EXPECT_TRUE(device.inputIsMultiResolution);

    ASSERT_EQ(2u, mHalStreams.size());
    EXPECT_EQ(5, mHalStreams[1].id);
    EXPECT_EQ(4, mHalStreams[1].maxBuffers);
    EXPECT_EQ((Credits{{1, 4}, {5, 4}}), credits());
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::configureStreams] " + configuration.streams[0].toString(),
                            "::configureStreams] " + configuration.streams[1].toString(),
                            "::configureStreams] " + mHalStreams[0].toString(),
                            "::configureStreams] " + mHalStreams[1].toString()));
}

// The rejected streams are still the ones requests and stream flushes resolve against.
TEST_F(SessionConfigureTest, RejectedConfigurationStillRefillsCreditsAndReportsHalStreams) {
    EXPECT_CALL(mLegacy.mock(), configureStreams(_))
            .WillOnce([](camera3_stream_configuration_t* configuration) {
                configuration->streams[0]->max_buffers = 7;
                return -EINVAL;
            });
    EXPECT_TRUE(hasStatus(configure(configurationOf({2})), -EINVAL));
    EXPECT_FALSE(mLegacy.configurations().at(0).inputIsMultiResolution);
    ASSERT_EQ(1u, mHalStreams.size());
    EXPECT_EQ(7, mHalStreams[0].maxBuffers);
    EXPECT_EQ((Credits{{2, 7}}), credits());
    EXPECT_TRUE(mSession->signalStreamFlush({2}, 0).isOk());
}

TEST_F(SessionConfigureTest, RepeatedStreamIdKeepsTheLaterStreamInBothSlots) {
    Session::StreamConfiguration configuration;
    configuration.streams = {makeStream(2, testing::StreamType::OUTPUT, 640, 480),
                             makeStream(2, testing::StreamType::OUTPUT, 1280, 720)};
    ASSERT_TRUE(configure(configuration).isOk());
    const testing::CapturedConfiguration device = mLegacy.configurations().at(0);
    ASSERT_EQ(2u, device.streams.size());
    EXPECT_EQ(device.streams[0], device.streams[1]);
    EXPECT_EQ(1280u, device.streamValues[0].width);
    ASSERT_EQ(2u, mHalStreams.size());
    EXPECT_EQ((Credits{{2, 4}}), credits());
}

// Stream flushes resolve against the current configuration whatever the counter says; one
// unknown id and the device hears of none.
TEST_F(SessionConfigureTest, StreamFlushNamesTheConfiguredRecords) {
    ASSERT_TRUE(configure(configurationOf({1, 2, 3})).isOk());
    const std::vector<camera3_stream_t*> records = mLegacy.configurations().back().streams;
    EXPECT_TRUE(mSession->signalStreamFlush({3, 1}, 4).isOk());
    EXPECT_TRUE(mSession->signalStreamFlush({}, 4).isOk());
    clearLogs();
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({1, 9}, 4), -EINVAL));
    EXPECT_THAT(sessionLogs(), ElementsAre("::signalStreamFlush] unknown streamId 9"));

    // Reconfiguring forgets the dropped streams; an empty configuration still reaches the device.
    ASSERT_TRUE(configure(configurationOf({2})).isOk());
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({3}, 0), -EINVAL));
    EXPECT_TRUE(mSession->signalStreamFlush({2}, 1).isOk());
    EXPECT_EQ((Credits{{2, 4}}), credits());
    const std::vector<std::vector<camera3_stream_t*>> expected = {
            {records[2], records[0]}, {}, {mLegacy.configurations().back().streams[0]}};
    EXPECT_EQ(expected, mLegacy.streamFlushes());
    ASSERT_TRUE(configure(configurationOf({})).isOk());
    EXPECT_EQ(3u, mLegacy.configurations().size());
    EXPECT_THAT(mHalStreams, IsEmpty());
    EXPECT_THAT(credits(), IsEmpty());
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({2}, 0), -EINVAL));
}

// A device may test the array before looking at the count.
TEST_F(SessionConfigureTest, EmptyConfigurationHandsTheDeviceARealStreamArray) {
    EXPECT_CALL(mLegacy.mock(), configureStreams(_))
            .WillOnce([](camera3_stream_configuration_t* configuration) {
                EXPECT_EQ(0u, configuration->num_streams);
                return configuration->streams == nullptr ? -EINVAL : 0;
            });
    EXPECT_TRUE(configure(configurationOf({})).isOk());
    EXPECT_THAT(mHalStreams, IsEmpty());
}

// The device's 0 means "needed", -EINVAL "not needed"; anything else leaves the flag alone.
TEST_F(SessionConfigureTest, ReconfigurationQueryMapsTheDeviceAnswer) {
    testing::MetadataPtr oldParams = makeMetadata(1);
    testing::MetadataPtr newParams = makeMetadata(2, 16);
    for (const int deviceResult : {0, -EINVAL, -ENODEV, 1}) {
        EXPECT_CALL(mLegacy.mock(), isReconfigurationRequired(_, _))
                .WillOnce([&](const camera_metadata_t* before, const camera_metadata_t* after) {
                    EXPECT_EQ(testing::bytesOf(oldParams.get()), testing::bytesOf(before));
                    EXPECT_EQ(testing::bytesOf(newParams.get()), testing::bytesOf(after));
                    return deviceResult;
                });
        bool needed = deviceResult != 0;
        const ndk::ScopedAStatus status = mSession->isReconfigurationRequired(
                toAidl(oldParams.get()), toAidl(newParams.get()), &needed);
        EXPECT_TRUE(hasStatus(status, deviceResult == 0 || deviceResult == -EINVAL ? 0 : -ENOSYS));
        EXPECT_EQ(deviceResult != -EINVAL, needed) << deviceResult;
    }
}

TEST_F(SessionConfigureTest, NullOutArgumentsAreRefusedBeforeAnythingHappens) {
    EXPECT_CALL(*mCacheMgrs[0], configureStreams(_)).Times(0);
    EXPECT_CALL(*mCacheMgrs[0], removeBufferCaches(_)).Times(0);
    EXPECT_CALL(mLegacy.mock(), isReconfigurationRequired(_, _)).Times(0);
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(_)).Times(0);
    const Session::StreamConfiguration configuration = configurationOf({1});
    EXPECT_TRUE(hasStatus(mSession->configureStreams(configuration, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(mSession->isReconfigurationRequired({}, {}, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(mSession->configureStreamsV2(configuration, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(
            mSession->constructDefaultRequestSettings(RequestTemplate::PREVIEW, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(mSession->processCaptureRequest({}, {}, nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(mSession->getCaptureRequestMetadataQueue(nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(mSession->getCaptureResultMetadataQueue(nullptr), -EINVAL));
    EXPECT_THAT(mLegacy.configurations(), IsEmpty());
}

// No template is still an answer: empty settings.
TEST_F(SessionConfigureTest, DefaultSettingsAreACopyOfTheDeviceTemplate) {
    testing::MetadataPtr stillCapture = makeMetadata(90);
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(2))
            .WillOnce(Return(stillCapture.get()));
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(6)).WillOnce(Return(nullptr));
    Session::CameraMetadata settings;
    ASSERT_TRUE(mSession->constructDefaultRequestSettings(RequestTemplate::STILL_CAPTURE, &settings)
                        .isOk());
    EXPECT_EQ(testing::bytesOf(stillCapture.get()), settings.metadata);
    EXPECT_TRUE(
            mSession->constructDefaultRequestSettings(RequestTemplate::MANUAL, &settings).isOk());
    EXPECT_THAT(settings.metadata, IsEmpty());
}

TEST_F(SessionConfigureTest, OfflineSwitchRepeatingEndAndV2AnswerWithoutEffect) {
    Session::CameraOfflineSessionInfo info;
    info.offlineRequests.resize(1);
    const Session::CameraOfflineSessionInfo infoBefore = info;
    const std::shared_ptr<ICameraOfflineSession> given = ndk::SharedRefBase::make<
            aidl::android::hardware::camera::device::ICameraOfflineSessionDefault>();
    std::shared_ptr<ICameraOfflineSession> offline = given;
    EXPECT_TRUE(mSession->switchToOffline({1}, &info, &offline).isOk());
    EXPECT_EQ(infoBefore, info);
    EXPECT_EQ(given, offline);
    EXPECT_TRUE(mSession->repeatingRequestEnd(10, {1}).isOk());
    Session::ConfigureStreamsRet ret;
    ret.halStreams.resize(1);
    ret.halStreams[0].id = 42;
    EXPECT_TRUE(mSession->configureStreamsV2(configurationOf({1}), &ret).isOk());
    EXPECT_EQ(42, ret.halStreams.at(0).id);
    EXPECT_THAT(mLegacy.configurations(), IsEmpty());
}

}  // namespace
}  // namespace kovo::aidl2legacy
