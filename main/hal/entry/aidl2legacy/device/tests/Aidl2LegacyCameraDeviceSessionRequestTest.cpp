#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OpenFds.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::_;
using testing::CapturedRequest;
using testing::clonedBytes;
using ::testing::ElementsAre;
using testing::hasStatus;
using ::testing::IsEmpty;
using testing::makeBuffer;
using testing::makeHandle;
using testing::makeMetadata;
using testing::makeStream;
using testing::MetadataPtr;
using testing::movedInto;
using testing::NativeHandle;
using ::testing::Return;
using testing::Session;
using Request = Session::CaptureRequest;

// An opened session with output streams 1 and 2 and input stream 5 configured, the framework's
// side of the request queue, and a cache manager that hands out `mCaches` for every batch. No
// test leaves an fd open.
class SessionRequestTest : public testing::SessionTest {
protected:
    SessionRequestTest() {
        mSession = openSession();
        configure({makeStream(1), makeStream(2), makeStream(5, testing::StreamType::INPUT)});
        Session::MetadataQueueDescriptor descriptor;
        EXPECT_TRUE(mSession->getCaptureRequestMetadataQueue(&descriptor).isOk());
        mRequestQueue = std::make_unique<Session::MetadataQueue>(descriptor);
        ON_CALL(*mCacheMgrs[0], importRequestBuffers(_, _))
                .WillByDefault([this](const std::vector<Request>&,
                                      std::vector<RequestBufferCache>* caches) {
                    *caches = mCaches;
                    return 0;
                });
        EXPECT_EQ(0, pipe(mFence));
    }
    void SetUp() override { mOpenFds = testing::countOpenFds(); }
    void TearDown() override {
        mLegacy.takeRequests();
        EXPECT_EQ(mOpenFds, testing::countOpenFds());
        close(mFence[0]);
        close(mFence[1]);
    }

    void configure(std::vector<testing::Stream> streams) {
        Session::StreamConfiguration configuration;
        configuration.streams = std::move(streams);
        std::vector<Session::HalStream> halStreams;
        EXPECT_TRUE(mSession->configureStreams(configuration, &halStreams).isOk());
        const std::vector<camera3_stream_t*> slots = mLegacy.configurations().back().streams;
        for (size_t i = 0; i < slots.size(); ++i) mRecords[configuration.streams[i].id] = slots[i];
    }
    // Puts the bytes into the request queue as the framework does; their size for the request.
    int64_t enqueue(const std::vector<uint8_t>& bytes) {
        EXPECT_TRUE(
                mRequestQueue->write(reinterpret_cast<const int8_t*>(bytes.data()), bytes.size()));
        return static_cast<int64_t>(bytes.size());
    }
    int64_t enqueue(const camera_metadata_t* metadata) {
        return enqueue(testing::bytesOf(metadata));
    }
    // The cache entry of `frameNumber` with one imported buffer per stream id.
    static RequestBufferCache cacheOf(int32_t frameNumber,
                                      std::map<int32_t, buffer_handle_t*> buffers) {
        RequestBufferCache cache;
        cache.frameNumber = frameNumber;
        for (const auto& [streamId, buffer] : buffers) {
            cache.bufferHandles[streamId] = BufferHandle{streamId, 1, buffer, nullptr};
        }
        return cache;
    }
    static Request requestOf(int32_t frameNumber, std::vector<testing::StreamBuffer> outputs = {}) {
        Request request;
        request.frameNumber = frameNumber;
        request.inputBuffer.streamId = -1;
        request.outputBuffers = std::move(outputs);
        return request;
    }
    ndk::ScopedAStatus submit(const std::vector<Request>& requests,
                              const std::vector<Session::BufferCache>& cachesToRemove = {}) {
        return mSession->processCaptureRequest(requests, cachesToRemove, &mProcessed);
    }

    std::shared_ptr<Session> mSession;
    std::unique_ptr<Session::MetadataQueue> mRequestQueue;
    std::map<int32_t, camera3_stream_t*> mRecords;  // stream id to the record the device knows
    std::vector<RequestBufferCache> mCaches;
    buffer_handle_t mHandles[4] = {};  // stand-ins for imported handles; only addresses matter
    int mFence[2] = {-1, -1};
    size_t mOpenFds = 0;
    int32_t mProcessed = 77;
};

// Settings from the queue reach the device cloned, inline ones as they are; buffer id 0 is left
// for the device's buffer manager to supply.
TEST_F(SessionRequestTest, BatchReachesTheDeviceAsBuilt) {
    MetadataPtr settings = makeMetadata(1);
    MetadataPtr physicalFromQueue = makeMetadata(2, 8);
    MetadataPtr physicalInline = makeMetadata(3);
    MetadataPtr inlineSettings = makeMetadata(4, 16);
    Request first =
            requestOf(10, movedInto(makeBuffer(1, 11, makeHandle({mFence[0]})), makeBuffer(2, 0)));
    first.fmqSettingsSize = enqueue(settings.get());
    first.physicalCameraSettings.resize(2);
    first.physicalCameraSettings[0].physicalCameraId = "phys1";
    first.physicalCameraSettings[0].fmqSettingsSize = enqueue(physicalFromQueue.get());
    first.physicalCameraSettings[1].physicalCameraId = "phys0";
    first.physicalCameraSettings[1].settings = testing::toAidl(physicalInline.get());
    first.inputBuffer = makeBuffer(5, 51);
    first.inputWidth = 320;
    first.inputHeight = 240;
    Request second = requestOf(11, movedInto(makeBuffer(1, 12)));
    second.outputBuffers[0].status = aidl::android::hardware::camera::device::BufferStatus::ERROR;
    second.settings = testing::toAidl(inlineSettings.get());
    mCaches = {cacheOf(10, {{5, &mHandles[0]}, {1, &mHandles[1]}}),
               cacheOf(11, {{1, &mHandles[2]}})};
    const std::vector<Session::BufferCache> toRemove = {{1, 9}};
    {
        ::testing::InSequence order;
        EXPECT_CALL(*mCacheMgrs[0], removeBufferCaches(::testing::Eq(toRemove)));
        EXPECT_CALL(*mCacheMgrs[0], importRequestBuffers(_, _));
    }

    ASSERT_TRUE(submit(movedInto(std::move(first), std::move(second)), toRemove).isOk());
    EXPECT_EQ(2, mProcessed);
    EXPECT_EQ(0u, mRequestQueue->availableToRead());
    std::vector<CapturedRequest> device = mLegacy.takeRequests();
    ASSERT_EQ(2u, device.size());
    const CapturedRequest& a = device[0];
    EXPECT_EQ(10u, a.frameNumber);
    EXPECT_EQ(clonedBytes(settings.get()), a.settings);
    EXPECT_THAT(a.physicalIds, ElementsAre("phys1", "phys0"));
    EXPECT_THAT(a.physicalSettings, ElementsAre(clonedBytes(physicalFromQueue.get()),
                                                testing::bytesOf(physicalInline.get())));
    ASSERT_TRUE(a.inputBuffer.has_value());
    EXPECT_EQ(mRecords[5], a.inputBuffer->stream);
    EXPECT_EQ(&mHandles[0], a.inputBuffer->buffer);
    EXPECT_EQ(-1, a.inputBuffer->acquireFenceNumber);
    EXPECT_EQ(320, a.inputWidth);
    EXPECT_EQ(240, a.inputHeight);
    ASSERT_EQ(2u, a.outputBuffers.size());
    EXPECT_EQ(mRecords[1], a.outputBuffers[0].stream);
    EXPECT_EQ(&mHandles[1], a.outputBuffers[0].buffer);
    EXPECT_EQ(-1, a.outputBuffers[0].releaseFence);
    EXPECT_TRUE(testing::sameFile(mFence[0], a.outputBuffers[0].acquireFenceNumber));
    EXPECT_EQ(mRecords[2], a.outputBuffers[1].stream);
    EXPECT_EQ(nullptr, a.outputBuffers[1].buffer);
    EXPECT_EQ(-1, a.outputBuffers[1].acquireFenceNumber);

    const CapturedRequest& b = device[1];
    EXPECT_EQ(testing::bytesOf(inlineSettings.get()), b.settings);
    EXPECT_FALSE(b.inputBuffer.has_value());
    EXPECT_THAT(b.physicalIds, IsEmpty());
    ASSERT_EQ(1u, b.outputBuffers.size());
    EXPECT_EQ(&mHandles[2], b.outputBuffers[0].buffer);
    EXPECT_EQ(1, b.outputBuffers[0].status);
}

// Each request of a batch is built from nothing of the one before it: a larger settings packet,
// a buffer and a fence earlier leave no trace in a smaller packet, a packet that no longer
// validates, or a slot without a buffer.
TEST_F(SessionRequestTest, EachRequestOfABatchStartsFromNothingOfThePreviousOne) {
    MetadataPtr large = makeMetadata(1, 400);
    MetadataPtr small = makeMetadata(2);
    std::vector<uint8_t> malformed = testing::bytesOf(small.get());
    std::fill_n(malformed.begin(), 4, 0xff);  // a size beyond the bytes sent
    Request first =
            requestOf(10, movedInto(makeBuffer(1, 11, makeHandle({mFence[0]})), makeBuffer(2, 12)));
    first.fmqSettingsSize = enqueue(large.get());
    Request second = requestOf(11, movedInto(makeBuffer(1, 0)));
    second.fmqSettingsSize = enqueue(small.get());
    Request third = requestOf(12);
    third.fmqSettingsSize = enqueue(malformed);
    mCaches = {cacheOf(10, {{1, &mHandles[0]}, {2, &mHandles[1]}})};

    ASSERT_TRUE(submit(movedInto(std::move(first), std::move(second), std::move(third))).isOk());
    std::vector<CapturedRequest> device = mLegacy.takeRequests();
    ASSERT_EQ(3u, device.size());
    EXPECT_EQ(clonedBytes(large.get()), device[0].settings);
    EXPECT_EQ(clonedBytes(small.get()), device[1].settings);
    ASSERT_EQ(1u, device[1].outputBuffers.size());
    EXPECT_EQ(nullptr, device[1].outputBuffers[0].buffer);
    EXPECT_EQ(-1, device[1].outputBuffers[0].acquireFenceNumber);
    EXPECT_EQ(std::nullopt, device[2].settings);
    EXPECT_THAT(device[2].outputBuffers, IsEmpty());
}

// The device gets a descriptor of its own on a one-fd fence; anything else goes down as no fence.
TEST_F(SessionRequestTest, AcquireFencesAreDuplicatedOrRefused) {
    NativeHandle unusable;
    unusable.fds.emplace_back(1000000);  // beyond any open descriptor
    std::vector<std::pair<NativeHandle, std::vector<std::string>>> cases;
    cases.emplace_back(NativeHandle{}, std::vector<std::string>{});
    cases.emplace_back(makeHandle({}, 2), std::vector<std::string>{});
    cases.emplace_back(makeHandle({mFence[0]}), std::vector<std::string>{});
    cases.emplace_back(
            makeHandle({mFence[0], mFence[1]}),
            std::vector<std::string>{"::operator()] invalid fence handle with 2 file descriptors"});
    cases.emplace_back(std::move(unusable),
                       std::vector<std::string>{"::operator()] failed to dup fence fd 1000000"});
    mCaches = {cacheOf(3, {{1, &mHandles[0]}})};
    for (auto& [fence, logs] : cases) {
        clearLogs();
        const int frameworkFd = fence.fds.size() == 1 ? fence.fds[0].get() : -1;
        ASSERT_TRUE(submit(movedInto(requestOf(3, movedInto(makeBuffer(1, 11, std::move(fence))))))
                            .isOk());
        std::vector<CapturedRequest> device = mLegacy.takeRequests();
        const int deviceFd = device.at(0).outputBuffers.at(0).acquireFenceNumber;
        if (logs.empty() && frameworkFd != -1) {
            EXPECT_NE(frameworkFd, deviceFd);
            EXPECT_TRUE(testing::sameFile(mFence[0], deviceFd));
        } else {
            EXPECT_EQ(-1, deviceFd);
        }
        EXPECT_EQ(logs, sessionLogs());
    }
}

// A size beyond what the queue holds, beyond the queue itself, or negative: nothing of the request
// goes down, and the caller's count is left alone.
TEST_F(SessionRequestTest, UnreadableSettingsStopTheRequestBeforeAnythingGoesDown) {
    const int64_t queued = enqueue(makeMetadata(1).get());
    for (const int64_t size :
         {queued + 1, static_cast<int64_t>(Session::kRequestQueueSize) + 1, int64_t{-1}}) {
        clearLogs();
        Request request = requestOf(1, movedInto(makeBuffer(1, 11, makeHandle({mFence[0]}))));
        request.fmqSettingsSize = size;
        EXPECT_TRUE(hasStatus(submit(movedInto(std::move(request))), -EINVAL)) << size;
        EXPECT_EQ(77, mProcessed);
        EXPECT_THAT(sessionLogs(),
                    ElementsAre("::convertMetadataFromFmq] Failed to read from request metadata "
                                "queue.",
                                "::processOneCaptureRequest] fail to convertMetadataFromFmq"));
    }
    EXPECT_EQ(0u, mLegacy.requestCount());
}

TEST_F(SessionRequestTest, UnreadablePhysicalSettingsGoDownAsNull) {
    MetadataPtr settings = makeMetadata(1);
    Request request = requestOf(1);
    request.fmqSettingsSize = enqueue(settings.get());
    request.physicalCameraSettings.resize(2);
    request.physicalCameraSettings[0].physicalCameraId = "phys0";
    request.physicalCameraSettings[0].fmqSettingsSize = 4096;
    request.physicalCameraSettings[1].physicalCameraId = "phys1";
    clearLogs();
    ASSERT_TRUE(submit(movedInto(std::move(request))).isOk());
    std::vector<CapturedRequest> device = mLegacy.takeRequests();
    ASSERT_EQ(1u, device.size());
    EXPECT_EQ(clonedBytes(settings.get()), device[0].settings);
    EXPECT_THAT(device[0].physicalIds, ElementsAre("phys0", "phys1"));
    EXPECT_THAT(device[0].physicalSettings, ElementsAre(std::nullopt, std::nullopt));
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::convertMetadataFromFmq] Failed to read from request metadata queue.",
                            "::convertPhysicalCameraSetting] fail to convertMetadataFromFmq"));
}

// Whatever the blob claims, nothing past the bytes read is looked at (the address sanitizer
// watches), and the request goes down without settings, silently.
TEST_F(SessionRequestTest, MalformedSettingsGoDownAsNull) {
    const std::vector<uint8_t> packet = testing::bytesOf(makeMetadata(1, 64).get());
    for (const std::vector<uint8_t>& bytes :
         {std::vector<uint8_t>(96, 0x5a), std::vector<uint8_t>(packet.begin(), packet.begin() + 40),
          std::vector<uint8_t>(packet.begin(), packet.end() - 16)}) {
        clearLogs();
        Request request = requestOf(1);
        request.fmqSettingsSize = enqueue(bytes);
        ASSERT_TRUE(submit(movedInto(std::move(request))).isOk());
        std::vector<CapturedRequest> device = mLegacy.takeRequests();
        ASSERT_EQ(1u, device.size());
        EXPECT_EQ(std::nullopt, device[0].settings) << bytes.size();
        EXPECT_EQ(0u, mRequestQueue->availableToRead());
        EXPECT_THAT(sessionLogs(), IsEmpty());
    }
}

// The requests before the failing one went down; the caller's count is left alone, and the
// settings cloned so far are freed (the address sanitizer's leak check watches).
TEST_F(SessionRequestTest, BatchStopsAtTheFirstFailingRequest) {
    for (const bool unreadableSettings : {false, true}) {
        std::vector<Request> batch = movedInto(requestOf(1), requestOf(2), requestOf(3));
        for (Request& request : batch) request.fmqSettingsSize = enqueue(makeMetadata(5).get());
        if (unreadableSettings) batch[1].fmqSettingsSize = 1 << 20;
        EXPECT_CALL(mLegacy.mock(), processCaptureRequest(_))
                .WillOnce(Return(0))
                .WillRepeatedly(Return(-ENODEV));
        EXPECT_TRUE(hasStatus(submit(batch), unreadableSettings ? -EINVAL : -ENODEV));
        EXPECT_EQ(77, mProcessed);
        std::vector<CapturedRequest> device = mLegacy.takeRequests();
        ASSERT_EQ(unreadableSettings ? 1u : 2u, device.size());
        EXPECT_EQ(1u, device[0].frameNumber);
        EXPECT_TRUE(device[0].settings.has_value());
        ::testing::Mock::VerifyAndClearExpectations(&mLegacy.mock());
        std::vector<int8_t> rest(mRequestQueue->availableToRead());
        mRequestQueue->read(rest.data(), rest.size());
    }
}

TEST_F(SessionRequestTest, EmptyBatchStillUpdatesTheCacheAndCountsZero) {
    const std::vector<Session::BufferCache> toRemove = {{2, 4}, {1, 8}};
    EXPECT_CALL(*mCacheMgrs[0], removeBufferCaches(::testing::Eq(toRemove)));
    EXPECT_TRUE(submit({}, toRemove).isOk());
    EXPECT_EQ(0, mProcessed);
    EXPECT_EQ(0u, mLegacy.requestCount());
}

// A session never opened, and one closed: no cache manager, no request.
TEST_F(SessionRequestTest, RequestsNeedACacheManager) {
    std::shared_ptr<Session> unopened = createSession();
    mSession->close();
    for (Session* session : {unopened.get(), mSession.get()}) {
        clearLogs();
        mProcessed = 9;
        EXPECT_TRUE(hasStatus(
                session->processCaptureRequest(movedInto(requestOf(1)), {}, &mProcessed), -ENODEV));
        EXPECT_EQ(0, mProcessed);
        EXPECT_THAT(sessionLogs(),
                    ElementsAre("::processCaptureRequest] Bad BufferHandleCacheMgr"));
    }
    EXPECT_EQ(0u, mLegacy.requestCount());
}

// Buffers that do not resolve still go down, as far as they were built: stream 5 has left the
// configuration, buffer 21 was not imported (its record stays zero-filled, fence 0 included).
TEST_F(SessionRequestTest, UnresolvedBuffersGoDownAsBuilt) {
    configure({makeStream(1), makeStream(2)});
    std::vector<Request> batch = movedInto(
            requestOf(4, movedInto(makeBuffer(2, 21, makeHandle({mFence[0]})), makeBuffer(1, 0))));
    batch[0].inputBuffer = makeBuffer(5, 51);
    mCaches = {cacheOf(4, {{5, &mHandles[0]}})};
    clearLogs();
    ASSERT_TRUE(submit(batch).isOk());
    std::vector<CapturedRequest> device = mLegacy.takeRequests();
    ASSERT_EQ(1u, device.size());
    ASSERT_TRUE(device[0].inputBuffer.has_value());
    EXPECT_EQ(nullptr, device[0].inputBuffer->stream);
    EXPECT_EQ(&mHandles[0], device[0].inputBuffer->buffer);
    const testing::CapturedBuffer& missing = device[0].outputBuffers.at(0);
    EXPECT_EQ(nullptr, missing.stream);
    EXPECT_EQ(nullptr, missing.buffer);
    EXPECT_EQ(0, missing.acquireFenceNumber);
    EXPECT_EQ(0, missing.releaseFence);
    EXPECT_EQ(mRecords[1], device[0].outputBuffers.at(1).stream);
    EXPECT_THAT(sessionLogs(), ElementsAre("::convertStreamBuffer] fail to find stream:5",
                                           "::convertStreamBuffer] fail to find BufferHandle"));
}

TEST_F(SessionRequestTest, RequestsSharingAFrameNumberUseTheFirstCache) {
    mCaches = {cacheOf(7, {{1, &mHandles[0]}}), cacheOf(7, {{1, &mHandles[1]}})};
    ASSERT_TRUE(submit(movedInto(requestOf(7, movedInto(makeBuffer(1, 11))),
                                 requestOf(7, movedInto(makeBuffer(1, 12)))))
                        .isOk());
    std::vector<CapturedRequest> device = mLegacy.takeRequests();
    ASSERT_EQ(2u, device.size());
    EXPECT_EQ(&mHandles[0], device[0].outputBuffers.at(0).buffer);
    EXPECT_EQ(&mHandles[0], device[1].outputBuffers.at(0).buffer);
}

}  // namespace
}  // namespace kovo::aidl2legacy
