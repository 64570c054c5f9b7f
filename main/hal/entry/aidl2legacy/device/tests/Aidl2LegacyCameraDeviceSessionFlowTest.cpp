#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "Aidl2LegacyCameraDevice.h"
#include "MockCameraModule.h"
#include "OpenFds.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::ICameraDeviceSession;
using ::testing::_;
using testing::bytesOf;
using testing::CapturedRequest;
using testing::clonedBytes;
using ::testing::DoAll;
using ::testing::ElementsAre;
using testing::makeBuffer;
using testing::makeHandle;
using testing::makeMetadata;
using testing::makeStream;
using testing::MetadataPtr;
using testing::movedInto;
using ::testing::NiceMock;
using ::testing::Return;
using testing::sameFile;
using testing::Session;
using ::testing::SetArgPointee;
using Request = Session::CaptureRequest;

// The session as the framework meets it: opened through the camera device over a module that
// hands out the scriptable legacy device, with the real buffer handle cache.
class SessionFlowTest : public testing::LoggingTest {
protected:
    SessionFlowTest() {
        ON_CALL(*mModule, openDevice(_, _))
                .WillByDefault(DoAll(SetArgPointee<1>(mLegacy.device()), Return(0)));
    }

    testing::ScriptableLegacyDevice mLegacy;
    std::shared_ptr<NiceMock<testing::MockCameraModule>> mModule =
            std::make_shared<NiceMock<testing::MockCameraModule>>();
    std::shared_ptr<Aidl2LegacyCameraDevice> mDevice =
            Aidl2LegacyCameraDevice::create({testing::kSessionInstanceId, mModule, {}});
};

TEST_F(SessionFlowTest, ConfigureCaptureFlushAndStreamFlushReachTheLegacyDevice) {
    const size_t fdsBefore = testing::countOpenFds();
    {
        const int buffers[2] = {memfd_create("stream1", 0), memfd_create("stream2", 0)};
        int fence[2];
        ASSERT_EQ(0, pipe(fence));
        auto framework = ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
        std::shared_ptr<ICameraDeviceSession> session;
        ASSERT_TRUE(mDevice->open(framework, &session).isOk());

        Session::StreamConfiguration configuration;
        configuration.streams = {makeStream(1), makeStream(2)};
        std::vector<Session::HalStream> halStreams;
        ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());
        ASSERT_EQ(2u, halStreams.size());
        const std::vector<camera3_stream_t*> records = mLegacy.configurations().at(0).streams;

        Session::MetadataQueueDescriptor descriptor;
        ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&descriptor).isOk());
        Session::MetadataQueue requestQueue(descriptor);
        const auto enqueue = [&requestQueue](const camera_metadata_t* metadata) {
            const std::vector<uint8_t> bytes = bytesOf(metadata);
            EXPECT_TRUE(requestQueue.write(reinterpret_cast<const int8_t*>(bytes.data()),
                                           bytes.size()));
            return static_cast<int64_t>(bytes.size());
        };
        MetadataPtr settings0 = makeMetadata(10);
        MetadataPtr physical0 = makeMetadata(11, 8);
        MetadataPtr settings1 = makeMetadata(12);
        MetadataPtr settings2 = makeMetadata(13, 24);

        // Frame 0 brings both buffers; later frames name them by id only.
        std::vector<Request> batch(3);
        for (int32_t frame = 0; frame < 3; ++frame) {
            batch[frame].frameNumber = frame;
            batch[frame].inputBuffer.streamId = -1;
        }
        batch[0].fmqSettingsSize = enqueue(settings0.get());
        batch[0].physicalCameraSettings.resize(1);
        batch[0].physicalCameraSettings[0].physicalCameraId = "1";
        batch[0].physicalCameraSettings[0].fmqSettingsSize = enqueue(physical0.get());
        batch[0].outputBuffers = movedInto(makeBuffer(1, 11, makeHandle({fence[0]})),
                                           makeBuffer(2, 21, makeHandle({fence[0]})));
        batch[0].outputBuffers[0].buffer = makeHandle({buffers[0]});
        batch[0].outputBuffers[1].buffer = makeHandle({buffers[1]});
        batch[1].settings = testing::toAidl(settings1.get());
        batch[1].outputBuffers = movedInto(makeBuffer(1, 11, makeHandle({fence[0]})));
        batch[2].fmqSettingsSize = enqueue(settings2.get());
        batch[2].outputBuffers = movedInto(makeBuffer(2, 21));

        int32_t processed = 0;
        ASSERT_TRUE(session->processCaptureRequest(batch, {}, &processed).isOk());
        EXPECT_EQ(3, processed);
        EXPECT_EQ(0u, requestQueue.availableToRead());
        std::vector<CapturedRequest> device = mLegacy.takeRequests();
        ASSERT_EQ(3u, device.size());

        EXPECT_EQ(clonedBytes(settings0.get()), device[0].settings);
        EXPECT_THAT(device[0].physicalSettings, ElementsAre(clonedBytes(physical0.get())));
        EXPECT_EQ(bytesOf(settings1.get()), device[1].settings);
        EXPECT_EQ(clonedBytes(settings2.get()), device[2].settings);
        // The device holds imported handles: the framework's buffers, under descriptors of their
        // own, imported once and found again by id.
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
        EXPECT_TRUE(sameFile(fence[0], device[1].outputBuffers[0].acquireFenceNumber));
        EXPECT_EQ(device[0].outputBuffers[1].buffer, device[2].outputBuffers.at(0).buffer);
        EXPECT_EQ(-1, device[2].outputBuffers[0].acquireFenceNumber);

        EXPECT_CALL(mLegacy.mock(), flush()).WillOnce(Return(0));
        EXPECT_TRUE(session->flush().isOk());
        EXPECT_TRUE(session->signalStreamFlush({2, 1}, configuration.streamConfigCounter).isOk());
        EXPECT_EQ((std::vector<std::vector<camera3_stream_t*>>{{records[1], records[0]}}),
                  mLegacy.streamFlushes());

        EXPECT_TRUE(session->close().isOk());
        EXPECT_EQ(1, mLegacy.closeCount());
        close(buffers[0]);
        close(buffers[1]);
        close(fence[0]);
        close(fence[1]);
    }
    EXPECT_EQ(fdsBefore, testing::countOpenFds());
}

}  // namespace
}  // namespace kovo::aidl2legacy
