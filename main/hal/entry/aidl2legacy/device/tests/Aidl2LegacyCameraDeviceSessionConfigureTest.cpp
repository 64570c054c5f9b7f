#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>
#include <aidl/android/hardware/camera/device/OfflineRequest.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::CameraOfflineSessionInfo;
using aidl::android::hardware::camera::device::ConfigureStreamsRet;
using aidl::android::hardware::camera::device::ICameraOfflineSession;
using aidl::android::hardware::camera::device::ICameraOfflineSessionDefault;
using aidl::android::hardware::camera::device::RequestTemplate;
using aidl::android::hardware::camera::device::StreamConfigurationMode;
using ::testing::_;
using ::testing::ElementsAre;
using ::testing::Eq;
using testing::hasStatus;
using ::testing::InSequence;
using ::testing::Invoke;
using ::testing::IsEmpty;
using testing::makeMetadata;
using testing::makeStream;
using ::testing::Return;
using testing::Session;
using testing::StreamType;
using testing::toAidl;
using Credits = std::unordered_map<int, unsigned int>;

class SessionConfigureTest : public testing::SessionTest {
protected:
    SessionConfigureTest() { mSession = openSession(); }

    Session::StreamConfiguration configurationOf(std::vector<int32_t> ids) {
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
    // The records the device was given in its last configuration, by slot.
    std::vector<camera3_stream_t*> configuredRecords() {
        return mLegacy.configurations().back().streams;
    }

    std::shared_ptr<Session> mSession;
    std::vector<Session::HalStream> mHalStreams;
};

TEST_F(SessionConfigureTest, DeviceGetsTheConvertedConfigurationAfterTheCacheManager) {
    Session::StreamConfiguration configuration;
    configuration.streams = {makeStream(1), makeStream(5, StreamType::INPUT, 320, 240)};
    configuration.operationMode = StreamConfigurationMode::VENDOR_MODE_1;
    testing::MetadataPtr sessionParams = makeMetadata(30);
    configuration.sessionParams = toAidl(sessionParams.get());
    configuration.multiResolutionInputImage = true;
    {
        InSequence order;
        EXPECT_CALL(*mCacheMgrs[0], configureStreams(Eq(configuration)));
        EXPECT_CALL(mLegacy.mock(), configureStreams(_));
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

    // What the device wrote back reaches the framework and the bridge's credits.
    ASSERT_EQ(2u, mHalStreams.size());
    EXPECT_EQ(1, mHalStreams[0].id);
    EXPECT_EQ(5, mHalStreams[1].id);
    EXPECT_EQ(4, mHalStreams[1].maxBuffers);
    EXPECT_EQ((Credits{{1, 4}, {5, 4}}), credits());
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::configureStreams] " + configuration.streams[0].toString(),
                            "::configureStreams] " + configuration.streams[1].toString(),
                            "::configureStreams] " + mHalStreams[0].toString(),
                            "::configureStreams] " + mHalStreams[1].toString()));
}

TEST_F(SessionConfigureTest, RejectedConfigurationStillRefillsCreditsAndReportsHalStreams) {
    EXPECT_CALL(mLegacy.mock(), configureStreams(_))
            .WillOnce(Invoke([](camera3_stream_configuration_t* configuration) {
                configuration->streams[0]->max_buffers = 7;
                return -EINVAL;
            }));
    EXPECT_TRUE(hasStatus(configure(configurationOf({2})), -EINVAL));
    EXPECT_FALSE(mLegacy.configurations().at(0).inputIsMultiResolution);
    ASSERT_EQ(1u, mHalStreams.size());
    EXPECT_EQ(7, mHalStreams[0].maxBuffers);
    EXPECT_EQ((Credits{{2, 7}}), credits());
    // The rejected streams are still the ones requests and stream flushes resolve against.
    EXPECT_TRUE(mSession->signalStreamFlush({2}, 0).isOk());
}

TEST_F(SessionConfigureTest, RepeatedStreamIdKeepsTheLaterStreamInBothSlots) {
    Session::StreamConfiguration configuration;
    configuration.streams = {makeStream(2, StreamType::OUTPUT, 640, 480),
                             makeStream(2, StreamType::OUTPUT, 1280, 720)};
    ASSERT_TRUE(configure(configuration).isOk());
    const testing::CapturedConfiguration device = mLegacy.configurations().at(0);
    ASSERT_EQ(2u, device.streams.size());
    EXPECT_EQ(device.streams[0], device.streams[1]);
    EXPECT_EQ(1280u, device.streamValues[0].width);
    ASSERT_EQ(2u, mHalStreams.size());
    EXPECT_EQ(2, mHalStreams[1].id);
    EXPECT_EQ((Credits{{2, 4}}), credits());
}

TEST_F(SessionConfigureTest, ReconfigurationForgetsTheDroppedStreams) {
    ASSERT_TRUE(configure(configurationOf({1, 3})).isOk());
    ASSERT_TRUE(configure(configurationOf({1})).isOk());
    EXPECT_EQ((Credits{{1, 4}}), credits());
    clearLogs();
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({3}, 0), -EINVAL));
    EXPECT_THAT(sessionLogs(), ElementsAre("::signalStreamFlush] unknown streamId 3"));

    // An empty configuration still reaches the device and leaves nothing configured.
    ASSERT_TRUE(configure(configurationOf({})).isOk());
    EXPECT_EQ(3u, mLegacy.configurations().size());
    EXPECT_THAT(mLegacy.configurations().back().streams, IsEmpty());
    EXPECT_THAT(mHalStreams, IsEmpty());
    EXPECT_THAT(credits(), IsEmpty());
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({1}, 0), -EINVAL));
}

TEST_F(SessionConfigureTest, StreamFlushNamesTheConfiguredRecordsWhateverTheCounter) {
    Session::StreamConfiguration configuration = configurationOf({1, 2, 3});
    configuration.streamConfigCounter = 4;
    ASSERT_TRUE(configure(configuration).isOk());
    const std::vector<camera3_stream_t*> records = configuredRecords();

    EXPECT_TRUE(mSession->signalStreamFlush({3, 1}, 4).isOk());
    EXPECT_TRUE(mSession->signalStreamFlush({}, 4).isOk());
    EXPECT_TRUE(mSession->signalStreamFlush({2}, 1).isOk());
    const std::vector<std::vector<camera3_stream_t*>> expected = {
            {records[2], records[0]}, {}, {records[1]}};
    EXPECT_EQ(expected, mLegacy.streamFlushes());

    // One unknown id and the device hears of none.
    clearLogs();
    EXPECT_TRUE(hasStatus(mSession->signalStreamFlush({1, 9}, 4), -EINVAL));
    EXPECT_EQ(3u, mLegacy.streamFlushes().size());
    EXPECT_THAT(sessionLogs(), ElementsAre("::signalStreamFlush] unknown streamId 9"));
}

TEST_F(SessionConfigureTest, ReconfigurationQueryMapsTheDeviceAnswer) {
    struct Case {
        int deviceResult;
        int status;
        std::optional<bool> needed;  // empty: the flag is left alone
    };
    testing::MetadataPtr oldParams = makeMetadata(1);
    testing::MetadataPtr newParams = makeMetadata(2, 16);
    for (const Case& c : {Case{0, 0, true}, Case{-EINVAL, 0, false}, Case{-ENODEV, -ENOSYS, {}},
                          Case{-ENOSYS, -ENOSYS, {}}, Case{1, -ENOSYS, {}}}) {
        std::vector<uint8_t> seenOld;
        std::vector<uint8_t> seenNew;
        EXPECT_CALL(mLegacy.mock(), isReconfigurationRequired(_, _))
                .WillOnce(Invoke(
                        [&](const camera_metadata_t* before, const camera_metadata_t* after) {
                            seenOld = testing::bytesOf(before);
                            seenNew = testing::bytesOf(after);
                            return c.deviceResult;
                        }));
        const bool initial = c.needed.has_value() ? !*c.needed : true;
        bool needed = initial;
        EXPECT_TRUE(hasStatus(mSession->isReconfigurationRequired(toAidl(oldParams.get()),
                                                                  toAidl(newParams.get()), &needed),
                              c.status))
                << c.deviceResult;
        EXPECT_EQ(c.needed.value_or(initial), needed) << c.deviceResult;
        EXPECT_EQ(testing::bytesOf(oldParams.get()), seenOld);
        EXPECT_EQ(testing::bytesOf(newParams.get()), seenNew);
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
    EXPECT_THAT(mLegacy.configurations(), IsEmpty());
}

TEST_F(SessionConfigureTest, DefaultSettingsAreACopyOfTheDeviceTemplate) {
    testing::MetadataPtr stillCapture = makeMetadata(90);
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(2))
            .WillOnce(Return(stillCapture.get()));
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(6)).WillOnce(Return(nullptr));
    Session::CameraMetadata settings;
    ASSERT_TRUE(mSession->constructDefaultRequestSettings(RequestTemplate::STILL_CAPTURE, &settings)
                        .isOk());
    EXPECT_EQ(testing::bytesOf(stillCapture.get()), settings.metadata);

    // No template is still an answer: empty settings.
    EXPECT_TRUE(
            mSession->constructDefaultRequestSettings(RequestTemplate::MANUAL, &settings).isOk());
    EXPECT_THAT(settings.metadata, IsEmpty());
}

TEST_F(SessionConfigureTest, OfflineSwitchRepeatingEndAndV2AnswerWithoutEffect) {
    CameraOfflineSessionInfo info;
    info.offlineRequests.resize(1);
    const CameraOfflineSessionInfo infoBefore = info;
    const std::shared_ptr<ICameraOfflineSession> given =
            ndk::SharedRefBase::make<ICameraOfflineSessionDefault>();
    std::shared_ptr<ICameraOfflineSession> offline = given;
    EXPECT_TRUE(mSession->switchToOffline({1}, &info, &offline).isOk());
    EXPECT_EQ(infoBefore, info);
    EXPECT_EQ(given, offline);

    EXPECT_TRUE(mSession->repeatingRequestEnd(10, {1}).isOk());

    ConfigureStreamsRet ret;
    ret.halStreams.resize(1);
    ret.halStreams[0].id = 42;
    EXPECT_TRUE(mSession->configureStreamsV2(configurationOf({1}), &ret).isOk());
    ASSERT_EQ(1u, ret.halStreams.size());
    EXPECT_EQ(42, ret.halStreams[0].id);
    EXPECT_THAT(mLegacy.configurations(), IsEmpty());
}

}  // namespace
}  // namespace kovo::aidl2legacy
