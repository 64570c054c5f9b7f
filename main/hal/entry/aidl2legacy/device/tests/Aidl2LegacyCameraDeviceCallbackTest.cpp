#include <cutils/native_handle.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CallbackTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::ElementsAre;
using testing::isOpen;
using testing::pointerText;
using ::testing::UnorderedElementsAre;
using Callback = Aidl2LegacyCameraDeviceCallback;
using Framework = testing::RecordingCameraDeviceCallback;

class CallbackTest : public testing::BridgeTest {};

TEST_F(CallbackTest, LogsNameTheInstance) {
    Callback::create({-1, mFramework}).reset();
    const std::string name = "[-1-aidl2legacy-callback::";
    EXPECT_THAT(logTexts(), ElementsAre(name + "Aidl2LegacyCameraDeviceCallback] ctor",
                                        name + "Aidl2LegacyCameraDeviceCallback] FMQ result "
                                               "size:16777216",
                                        name + "~Aidl2LegacyCameraDeviceCallback] dtor"));
    auto first = ndk::SharedRefBase::make<Framework>();
    std::weak_ptr<Framework> weakFirst = first;
    mBridge->setCallback(first);
    first.reset();
    clearLogs();
    mBridge->setCallback(mFramework);
    EXPECT_TRUE(weakFirst.expired());
    EXPECT_THAT(logTexts(), ElementsAre("[3-aidl2legacy-callback::setCallback] set callback to " +
                                        pointerText(mFramework.get())));
}

TEST_F(CallbackTest, TheLegacyTableSitsRightAfterTheVtablePointer) {
    const camera3_callback_ops* table = ops();
    EXPECT_EQ(reinterpret_cast<const char*>(mBridge.get()) + sizeof(void*),
              reinterpret_cast<const char*>(table));
    EXPECT_EQ(&Callback::sProcessCaptureResult, table->process_capture_result);
    EXPECT_EQ(&Callback::sNotify, table->notify);
    EXPECT_EQ(&Callback::sRequestStreamBuffers, table->request_stream_buffers);
    EXPECT_EQ(&Callback::sReturnStreamBuffers, table->return_stream_buffers);
}

TEST_F(CallbackTest, TrampolinesIgnoreANullTable) {
    camera3_buffer_request request{};
    uint32_t returned = 9;
    camera3_stream_buffer_ret ret{};
    EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_UNKNOWN,
              ops()->request_stream_buffers(nullptr, 1, &request, &returned, &ret));
    EXPECT_EQ(9u, returned);
    camera3_capture_result result{};
    camera3_notify_msg msg{};
    camera3_stream_buffer buffer{};
    const camera3_stream_buffer* buffers[] = {&buffer};
    ops()->process_capture_result(nullptr, &result);
    ops()->notify(nullptr, &msg);
    ops()->return_stream_buffers(nullptr, 1, buffers);
    EXPECT_TRUE(mFramework->results().empty());
    EXPECT_TRUE(mFramework->notifications().empty());
    EXPECT_TRUE(mFramework->bufferRequests().empty());
    EXPECT_TRUE(mFramework->returnedBuffers().empty());
}

// Each descriptor holds fresh fds of the one queue; a reused one has its old fds closed.
TEST_F(CallbackTest, ResultQueueDescriptorsHoldFreshFdsOfTheOneQueue) {
    testing::ResultQueueDescriptor first;
    testing::ResultQueueDescriptor second;
    mBridge->getCaptureResultMetadataQueue(&first);
    mBridge->getCaptureResultMetadataQueue(&second);
    const int oldFd = second.handle.fds.at(0).get();
    mBridge->getCaptureResultMetadataQueue(&second);
    EXPECT_FALSE(isOpen(oldFd));
    EXPECT_NE(first.handle.fds.at(0).get(), second.handle.fds.at(0).get());
    testing::ResultMetadataQueue writer(first);
    testing::ResultMetadataQueue reader(second);
    const int8_t sent[] = {1, 2, 3};
    ASSERT_TRUE(writer.write(sent, 3));
    int8_t received[3] = {};
    ASSERT_TRUE(reader.read(received, 3));
    EXPECT_THAT(received, ElementsAre(1, 2, 3));
}

// The queue takes the packet only with free space strictly greater than its size; null metadata
// goes nowhere. The queue is filled through a second endpoint, as unread results would fill it.
TEST_F(CallbackTest, MetadataGoesToTheQueueOnlyWithRoomToSpare) {
    testing::ResultQueueDescriptor descriptor;
    mBridge->getCaptureResultMetadataQueue(&descriptor);
    testing::ResultMetadataQueue framework(descriptor);
    testing::MetadataPtr metadata = testing::makeMetadata(90, 40);
    const size_t size = get_camera_metadata_size(metadata.get());
    int64_t fmqSize = 99;
    Callback::CameraMetadata out{{7}};
    mBridge->convertMetadataToFmq(nullptr, fmqSize, out);
    EXPECT_EQ(0, fmqSize);
    EXPECT_TRUE(out.metadata.empty());

    std::vector<int8_t> filler(Callback::kResultQueueSize - size);
    ASSERT_TRUE(framework.write(filler.data(), filler.size()));
    mBridge->convertMetadataToFmq(metadata.get(), fmqSize, out);
    EXPECT_EQ(0, fmqSize);
    EXPECT_EQ(testing::bytesOf(metadata.get()), out.metadata);

    ASSERT_TRUE(framework.read(filler.data(), 1));
    mBridge->convertMetadataToFmq(metadata.get(), fmqSize, out);
    EXPECT_EQ(static_cast<int64_t>(size), fmqSize);
    EXPECT_TRUE(out.metadata.empty());
    ASSERT_TRUE(framework.read(filler.data(), filler.size() - 1));
    std::vector<uint8_t> written(size);
    ASSERT_TRUE(framework.read(reinterpret_cast<int8_t*>(written.data()), size));
    EXPECT_EQ(testing::bytesOf(metadata.get()), written);
}

struct HandleDeleter {
    // The fd numbers are made up: free the handle without closing them.
    void operator()(native_handle_t* handle) const { native_handle_delete(handle); }
};
using HandlePtr = std::unique_ptr<native_handle_t, HandleDeleter>;

HandlePtr makeHandle(const std::vector<int>& fds, const std::vector<int>& ints = {}) {
    HandlePtr handle(
            native_handle_create(static_cast<int>(fds.size()), static_cast<int>(ints.size())));
    for (size_t i = 0; i < fds.size(); ++i) handle->data[i] = fds[i];
    for (size_t i = 0; i < ints.size(); ++i) handle->data[fds.size() + i] = ints[i];
    return handle;
}

// Keys are the fds in order: 31 + numFds, then h * 31 + fd per fd, fds sign-extended, modulo
// 2^64. The ints play no part.
TEST(BufferKeyTest, HashAndEqualityFollowTheFdsOnly) {
    for (const auto& [fds, ints, hash] :
         {std::tuple{std::vector<int>{3, 4}, std::vector<int>{}, uint64_t{31810}},
          {{3, 4}, {9, 9}, 31810},
          {{4, 3}, {}, 31840},
          {{}, {5}, 31},
          {{-1}, {}, 991}}) {
        EXPECT_EQ(hash, Callback::BufferHasher()(makeHandle(fds, ints).get()));
    }
    EXPECT_EQ(0u, Callback::BufferHasher()(nullptr));
    for (const auto& [lhs, rhs, equal] :
         {std::tuple{makeHandle({3, 4}, {1}), makeHandle({3, 4}, {2, 2}), true},
          {makeHandle({}, {1}), makeHandle({}), true},
          {makeHandle({3, 4}), makeHandle({4, 3}), false},
          {makeHandle({3, 4}), makeHandle({3, 4, 5}), false}}) {
        EXPECT_EQ(equal, Callback::BufferComparator()(lhs.get(), rhs.get()));
    }
}

// An id is found once, per stream, through any handle with its fds; pushing again replaces it.
// Each pop that finds one names the handle and the id.
TEST_F(CallbackTest, BufferIdsArePoppedOnceThroughAnyHandleWithTheirFds) {
    HandlePtr pushed = makeHandle({30, 31}, {1});
    HandlePtr copy = makeHandle({30, 31}, {2, 3});
    HandlePtr other = makeHandle({31, 30});
    const native_handle* pushedKey = pushed.get();
    const native_handle* copyKey = copy.get();
    const native_handle* otherKey = other.get();
    const native_handle* nullKey = nullptr;
    mBridge->pushBufferId(pushedKey, 41, 5);
    mBridge->pushBufferId(pushedKey, 42, 5);
    mBridge->pushBufferId(pushedKey, 43, 6);
    EXPECT_EQ(0u, mBridge->popBufferId(otherKey, 5));
    EXPECT_EQ(0u, mBridge->popBufferId(nullKey, 5));
    EXPECT_EQ(0u, mBridge->popBufferId(pushedKey, 7));
    EXPECT_TRUE(logTexts().empty());
    EXPECT_EQ(42u, mBridge->popBufferId(copyKey, 5));
    EXPECT_EQ(0u, mBridge->popBufferId(pushedKey, 5));
    EXPECT_EQ(43u, mBridge->getCapResultBufferId(pushedKey, 6));
    const std::string line = "[3-aidl2legacy-callback::popBufferId] buffer_handle_t:";
    EXPECT_THAT(logTexts(), ElementsAre(line + pointerText(copyKey) + ", bufId:42",
                                        line + pointerText(pushedKey) + ", bufId:43"));
}

// A repeated stream id keeps its first value.
TEST_F(CallbackTest, EndConfigurationStartsEachStreamAtItsMaxBuffers) {
    mBridge->setValidBufNum({{1, 8}});
    configure({{5, 2}, {9, 4}, {5, 7}});
    EXPECT_THAT(counts(), UnorderedElementsAre(::testing::Pair(5, 2u), ::testing::Pair(9, 4u)));
    configure({});
    EXPECT_TRUE(counts().empty());
}

}  // namespace
}  // namespace kovo::aidl2legacy
