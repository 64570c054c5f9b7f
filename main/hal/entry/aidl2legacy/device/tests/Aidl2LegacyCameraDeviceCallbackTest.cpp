#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "DeviceTestSupport.h"
#include "OpenFds.h"
#include "RecordingCameraDeviceCallback.h"

namespace kovo::aidl2legacy {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::makeMetadata;
using testing::pointerText;
using testing::RecordingCameraDeviceCallback;
using Callback = Aidl2LegacyCameraDeviceCallback;

class CallbackTest : public testing::LoggingTest {
protected:
    std::shared_ptr<RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    std::shared_ptr<Callback> mCallback = Callback::create({3, mFramework});
};

std::vector<int> fdsOf(const Callback::ResultQueueDescriptor& descriptor) {
    std::vector<int> fds;
    for (const auto& fd : descriptor.handle.fds) fds.push_back(fd.get());
    return fds;
}

TEST_F(CallbackTest, NamesCarryTheInstanceId) {
    for (int32_t id : {3, -1}) {
        clearLogs();
        const std::string name = "[" + std::to_string(id) + "-aidl2legacy-callback::";
        Callback::create({id, mFramework}).reset();
        EXPECT_THAT(logTexts(), ElementsAre(name + "Aidl2LegacyCameraDeviceCallback] ctor",
                                            name + "Aidl2LegacyCameraDeviceCallback] FMQ result "
                                                   "size:16777216",
                                            name + "~Aidl2LegacyCameraDeviceCallback] dtor"));
    }
}

TEST_F(CallbackTest, TheLegacyTableSitsRightAfterTheVtablePointer) {
    const camera3_callback_ops* table = mCallback.get();
    EXPECT_EQ(reinterpret_cast<const char*>(mCallback.get()) + sizeof(void*),
              reinterpret_cast<const char*>(table));
    EXPECT_EQ(&Callback::sProcessCaptureResult, table->process_capture_result);
    EXPECT_EQ(&Callback::sNotify, table->notify);
    EXPECT_EQ(&Callback::sRequestStreamBuffers, table->request_stream_buffers);
    EXPECT_EQ(&Callback::sReturnStreamBuffers, table->return_stream_buffers);
}

TEST_F(CallbackTest, TrampolinesIgnoreANullTable) {
    const camera3_callback_ops* table = mCallback.get();
    camera3_buffer_request request{};
    uint32_t returned = 9;
    camera3_stream_buffer_ret ret{};
    EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_UNKNOWN,
              table->request_stream_buffers(nullptr, 1, &request, &returned, &ret));
    EXPECT_EQ(9u, returned);

    camera3_capture_result result{};
    camera3_notify_msg msg{};
    camera3_stream_buffer buffer{};
    const camera3_stream_buffer* buffers[] = {&buffer};
    table->process_capture_result(nullptr, &result);
    table->notify(nullptr, &msg);
    table->return_stream_buffers(nullptr, 1, buffers);
    EXPECT_TRUE(mFramework->results().empty());
    EXPECT_TRUE(mFramework->notifications().empty());
    EXPECT_TRUE(mFramework->bufferRequests().empty());
    EXPECT_TRUE(mFramework->returnedBuffers().empty());
}

TEST_F(CallbackTest, EachResultQueueDescriptorHoldsFreshFdsOfTheOneQueue) {
    Callback::ResultQueueDescriptor first;
    Callback::ResultQueueDescriptor second;
    mCallback->getCaptureResultMetadataQueue(&first);
    mCallback->getCaptureResultMetadataQueue(&second);
    ASSERT_FALSE(fdsOf(first).empty());
    for (int fd : fdsOf(first)) {
        EXPECT_THAT(fdsOf(second), ::testing::Not(::testing::Contains(fd)));
    }

    Callback::ResultMetadataQueue writer(first);
    Callback::ResultMetadataQueue reader(second);
    const int8_t sent[] = {1, 2, 3};
    ASSERT_TRUE(writer.write(sent, 3));
    int8_t received[3] = {};
    ASSERT_TRUE(reader.read(received, 3));
    EXPECT_THAT(received, ElementsAre(1, 2, 3));
}

TEST_F(CallbackTest, ReusedDescriptorClosesItsOldFds) {
    Callback::ResultQueueDescriptor descriptor;
    mCallback->getCaptureResultMetadataQueue(&descriptor);
    const std::vector<int> oldFds = fdsOf(descriptor);
    const size_t fdsWithOne = testing::countOpenFds();
    mCallback->getCaptureResultMetadataQueue(&descriptor);
    EXPECT_EQ(fdsWithOne, testing::countOpenFds());
    for (int fd : oldFds) EXPECT_EQ(-1, fcntl(fd, F_GETFD)) << fd;
}

// The queue is filled through a second endpoint, as the framework's unread data would fill it.
TEST_F(CallbackTest, MetadataGoesToTheQueueOnlyWithRoomToSpare) {
    Callback::ResultQueueDescriptor descriptor;
    mCallback->getCaptureResultMetadataQueue(&descriptor);
    Callback::ResultMetadataQueue framework(descriptor);
    testing::MetadataPtr metadata = makeMetadata(90, 40);
    const size_t size = get_camera_metadata_size(metadata.get());

    std::vector<int8_t> filler(Callback::kResultQueueSize - size);
    ASSERT_TRUE(framework.write(filler.data(), filler.size()));
    ASSERT_EQ(size, framework.availableToWrite());
    int64_t fmqSize = -1;
    Callback::CameraMetadata out{{7}};
    mCallback->convertMetadataToFmq(metadata.get(), fmqSize, out);
    EXPECT_EQ(0, fmqSize);
    EXPECT_EQ(bytesOf(metadata.get()), out.metadata);

    int8_t byte = 0;
    ASSERT_TRUE(framework.read(&byte, 1));
    mCallback->convertMetadataToFmq(metadata.get(), fmqSize, out);
    EXPECT_EQ(static_cast<int64_t>(size), fmqSize);
    EXPECT_TRUE(out.metadata.empty());
    std::vector<int8_t> skipped(filler.size() - 1);
    ASSERT_TRUE(framework.read(skipped.data(), skipped.size()));
    std::vector<uint8_t> written(size);
    ASSERT_TRUE(framework.read(reinterpret_cast<int8_t*>(written.data()), size));
    EXPECT_EQ(bytesOf(metadata.get()), written);
}

TEST_F(CallbackTest, NullMetadataGoesNowhere) {
    Callback::ResultQueueDescriptor descriptor;
    mCallback->getCaptureResultMetadataQueue(&descriptor);
    Callback::ResultMetadataQueue framework(descriptor);
    int64_t fmqSize = 99;
    Callback::CameraMetadata out{{1, 2}};
    mCallback->convertMetadataToFmq(nullptr, fmqSize, out);
    EXPECT_EQ(0, fmqSize);
    EXPECT_TRUE(out.metadata.empty());
    EXPECT_EQ(0u, framework.availableToRead());
}

TEST_F(CallbackTest, SetCallbackLogsAndReleasesThePreviousCallback) {
    std::weak_ptr<RecordingCameraDeviceCallback> first = mFramework;
    auto second = ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    mFramework.reset();
    clearLogs();
    mCallback->setCallback(second);
    EXPECT_TRUE(first.expired());
    mCallback->setCallback(nullptr);
    EXPECT_THAT(logTexts(), ElementsAre("[3-aidl2legacy-callback::setCallback] set callback to " +
                                                pointerText(second.get()),
                                        "[3-aidl2legacy-callback::setCallback] set callback to "
                                        "(nil)"));
}

}  // namespace
}  // namespace kovo::aidl2legacy
