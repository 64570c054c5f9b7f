// One capture through the whole library, the legacy device using the HAL buffer manager: the
// request goes down through ICameraDeviceSession, the device asks for its buffer, and the
// shutter and the result come back up with the buffer's id restored.
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/HalStream.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "Aidl2LegacyCameraDeviceSession.h"
#include "CallbackTestSupport.h"
#include "OpenFds.h"
#include "ScriptableLegacyDevice.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::CaptureRequest;
using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamConfiguration;
using testing::bytesOf;
using testing::CapturedRequest;
using ::testing::ElementsAre;
using testing::makeMetadata;
using testing::MetadataPtr;
using ::testing::Pair;
using Framework = testing::RecordingCameraDeviceCallback;
using Session = Aidl2LegacyCameraDeviceSession;

constexpr int32_t kStreamId = 4;
constexpr int64_t kBufferId = 42;

class RoundTripTest : public testing::LoggingTest {
protected:
    const size_t mOpenFds = testing::countOpenFds();
    testing::ScriptableLegacyDevice mLegacy;
    std::shared_ptr<Framework> mFramework = ndk::SharedRefBase::make<Framework>();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mBridge =
            Aidl2LegacyCameraDeviceCallback::create({3, mFramework});
};

TEST_F(RoundTripTest, CaptureWithDeviceManagedBuffersComesBackWithItsIdAndCredit) {
    Session::ResultInfo info;
    std::shared_ptr<Session> session = Session::create({3, mLegacy.device(), mBridge}, info);
    ASSERT_NE(nullptr, session);
    ASSERT_EQ(0, session->open(mFramework));
    {
        testing::ResultQueueDescriptor descriptor;
        ASSERT_TRUE(session->getCaptureResultMetadataQueue(&descriptor).isOk());
        mFramework->attachResultQueue(descriptor);
    }
    mFramework->setBufferRequestHandler([](const std::vector<BufferRequest>& requests,
                                           std::vector<StreamBufferRet>* answers,
                                           BufferRequestStatus* status) {
        std::vector<StreamBuffer> buffers;
        buffers.push_back(testing::frameworkBuffer(requests[0].streamId, kBufferId));
        answers->push_back(testing::frameworkAnswer(requests[0].streamId, std::move(buffers)));
        *status = BufferRequestStatus::OK;
        return ndk::ScopedAStatus::ok();
    });

    // Framework: configure one output stream, then one request whose buffer the device supplies
    // (buffer id 0), with its settings in the request queue.
    StreamConfiguration configuration;
    configuration.streams = {testing::makeStream(kStreamId)};
    std::vector<HalStream> halStreams;
    ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());
    MetadataPtr settings = makeMetadata(90);
    {
        testing::ResultQueueDescriptor descriptor;
        ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&descriptor).isOk());
        testing::ResultMetadataQueue requestQueue(descriptor);
        ASSERT_TRUE(requestQueue.write(reinterpret_cast<const int8_t*>(settings.get()),
                                       get_camera_metadata_size(settings.get())));
    }
    std::vector<CaptureRequest> requests(1);
    requests[0].frameNumber = 1;
    requests[0].fmqSettingsSize = static_cast<int64_t>(get_camera_metadata_size(settings.get()));
    requests[0].inputBuffer.streamId = -1;
    requests[0].outputBuffers = testing::movedInto(testing::makeBuffer(kStreamId, 0));
    int32_t processed = 0;
    ASSERT_TRUE(session->processCaptureRequest(requests, {}, &processed).isOk());
    EXPECT_EQ(1, processed);

    // Legacy device: the request arrived without a buffer; it asks for one, then reports the
    // shutter and the result through the table it was initialised with.
    std::vector<CapturedRequest> captured = mLegacy.takeRequests();
    ASSERT_EQ(1u, captured.size());
    EXPECT_EQ(testing::clonedBytes(settings.get()), captured[0].settings);
    ASSERT_EQ(1u, captured[0].outputBuffers.size());
    EXPECT_EQ(nullptr, captured[0].outputBuffers[0].buffer);
    camera3_stream_t* stream = captured[0].outputBuffers[0].stream;
    const camera3_callback_ops* ops = mLegacy.callbackOps();
    testing::DeviceBufferRequest bufferRequest({{stream, 1}});
    ASSERT_EQ(CAMERA3_BUF_REQ_OK, bufferRequest.send(ops));
    camera3_notify_msg shutter{};
    shutter.type = CAMERA3_MSG_SHUTTER;
    shutter.message.shutter = {1, 5000, 5100};
    ops->notify(ops, &shutter);
    camera3_stream_buffer output = bufferRequest.records[0].output_buffers[0];
    output.stream = stream;
    output.release_fence = testing::makeFence();
    MetadataPtr resultMetadata = makeMetadata(7, 64);
    camera3_capture_result result{1,      resultMetadata.get(), 1, &output, nullptr, 1, 0, nullptr,
                                  nullptr};
    ops->process_capture_result(ops, &result);

    EXPECT_THAT(mFramework->notifications(), ElementsAre(ShutterMsg{1, 5000, 5100}));
    std::vector<Framework::RecordedResult> results = mFramework->results();
    ASSERT_EQ(1u, results.size());
    EXPECT_GT(results[0].metadata.fmqSize, 0);
    EXPECT_EQ(bytesOf(resultMetadata.get()), results[0].metadata.bytes);
    ASSERT_EQ(1u, results[0].outputBuffers.size());
    EXPECT_EQ(kStreamId, results[0].outputBuffers[0].streamId);
    EXPECT_EQ(kBufferId, results[0].outputBuffers[0].bufferId);
    EXPECT_TRUE(results[0].outputBuffers[0].releaseFencesOpenDuringCall);
    EXPECT_FALSE(testing::isOpen(output.release_fence));
    std::unordered_map<int, unsigned int> counts;
    mBridge->getValidBufNum(counts);
    EXPECT_THAT(counts,
                ElementsAre(Pair(kStreamId, testing::ScriptableLegacyDevice::kDefaultMaxBuffers)));

    EXPECT_TRUE(session->close().isOk());
    session.reset();
    mBridge.reset();
    mFramework.reset();
    EXPECT_EQ(mOpenFds, testing::countOpenFds());
}

}  // namespace
}  // namespace kovo::aidl2legacy
