#include <aidl2legacy/utils/EnumValue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "BufferHandleCacheMgrSeam.h"
#include "CallbackTestSupport.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamBuffersVal;
using testing::DeviceBufferRequest;
using ::testing::ElementsAre;
using testing::frameworkAnswer;
using testing::frameworkBuffer;
using ::testing::IsEmpty;
using testing::isOpen;
using testing::makeFence;
using testing::makeMetadata;
using testing::MetadataPtr;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;
using Framework = testing::RecordingCameraDeviceCallback;

const std::string kPrefix = "[3-aidl2legacy-callback::";

class HbmTest : public testing::BridgeTest {
protected:
    HbmTest() {
        configure({{5, 4}, {9, 2}});
        // Hands out fresh buffer ids for every request, as many as asked for.
        mFramework->setBufferRequestHandler([this](const std::vector<BufferRequest>& requests,
                                                   std::vector<StreamBufferRet>* answers,
                                                   BufferRequestStatus* status) {
            for (const BufferRequest& request : requests) {
                std::vector<StreamBuffer> buffers;
                for (int32_t i = 0; i < request.numBuffersRequested; ++i) {
                    buffers.push_back(frameworkBuffer(request.streamId, ++mLastBufferId));
                }
                answers->push_back(frameworkAnswer(request.streamId, std::move(buffers)));
            }
            *status = BufferRequestStatus::OK;
            return ndk::ScopedAStatus::ok();
        });
    }

    // Returns these buffers of `request` (record, buffer) through return_stream_buffers.
    void giveBack(DeviceBufferRequest& request,
                  const std::vector<std::pair<size_t, size_t>>& which) {
        std::vector<const camera3_stream_buffer*> buffers;
        for (const auto& [record, buffer] : which) {
            buffers.push_back(&request.records[record].output_buffers[buffer]);
        }
        ops()->return_stream_buffers(ops(), static_cast<uint32_t>(buffers.size()), buffers.data());
    }
    std::vector<int64_t> idsOf(const std::vector<Framework::RecordedBuffer>& buffers) {
        std::vector<int64_t> ids;
        for (const auto& buffer : buffers) ids.push_back(buffer.bufferId);
        return ids;
    }

    int64_t mLastBufferId = 0;
};

// The legacy device asks for buffers on two streams, gives some back and delivers the others in a
// result: each id reaches the framework once, and ids, credits and fds all balance. The records
// point at the bridge's own stream copies.
TEST_F(HbmTest, HandedOutBuffersComeBackOnceAndEverythingBalances) {
    DeviceBufferRequest request({{stream(5), 2}, {stream(9), 1}});
    ASSERT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
    EXPECT_THAT(mFramework->bufferRequests(),
                ElementsAre(ElementsAre(BufferRequest{5, 2}, BufferRequest{9, 1})));
    ASSERT_EQ(2u, request.returned);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 2u), Pair(9, 1u)));
    for (const auto& [record, streamId] : {std::pair{0, 5}, {1, 9}}) {
        const camera3_stream_buffer_ret& ret = request.records[record];
        EXPECT_EQ(CAMERA3_PS_BUF_REQ_OK, ret.status);
        EXPECT_NE(stream(streamId), ret.stream);
        EXPECT_EQ(streamId, Camera3Stream::fromStream(ret.stream)->id);
        for (uint32_t i = 0; i < ret.num_output_buffers; ++i) {
            EXPECT_EQ(ret.stream, ret.output_buffers[i].stream);
            EXPECT_EQ(-1, ret.output_buffers[i].acquire_fence);
            EXPECT_EQ(-1, ret.output_buffers[i].release_fence);
        }
    }
    ASSERT_EQ(1u, request.records[1].num_output_buffers);

    giveBack(request, {{0, 1}});
    camera3_stream_buffer delivered[] = {request.records[0].output_buffers[0],
                                         request.records[1].output_buffers[0]};
    camera3_capture_result result{1, nullptr, 2, delivered, nullptr, 0, 0, nullptr, nullptr};
    ops()->process_capture_result(ops(), &result);
    EXPECT_THAT(idsOf(mFramework->returnedBuffers().at(0)), ElementsAre(2));
    EXPECT_THAT(idsOf(mFramework->results().at(0).outputBuffers), ElementsAre(1, 3));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    for (auto [record, buffer, streamId] : {std::tuple{0, 0, 5}, {0, 1, 5}, {1, 0, 9}}) {
        EXPECT_EQ(0u, mBridge->popBufferId(request.handle(record, buffer), streamId));
    }
}

// A partial answer: the error entry keeps the device's record as it was, and still comes off the
// count by whatever num_output_buffers the device left in it. The device owns a duplicate of a
// one-fd fence; a two-fd fence is refused.
TEST_F(HbmTest, PartialAnswerFillsEachRecordByItsKind) {
    mFramework->setBufferRequestHandler([](const std::vector<BufferRequest>&,
                                           std::vector<StreamBufferRet>* answers,
                                           BufferRequestStatus* status) {
        std::vector<StreamBuffer> buffers;
        buffers.push_back(frameworkBuffer(5, 11));
        buffers.back().acquireFence.fds.emplace_back(makeFence());
        buffers.push_back(frameworkBuffer(5, 12));
        buffers.back().acquireFence.fds.emplace_back(makeFence());
        buffers.back().acquireFence.fds.emplace_back(makeFence());
        buffers.back().status = Framework::BufferStatus::ERROR;
        answers->emplace_back().streamId = 9;
        answers->back().val.set<StreamBuffersVal::error>(
                StreamBufferRequestError::MAX_BUFFER_EXCEEDED);
        answers->push_back(frameworkAnswer(5, std::move(buffers)));
        *status = BufferRequestStatus::FAILED_PARTIAL;
        return ndk::ScopedAStatus::ok();
    });
    DeviceBufferRequest request({{stream(9), 1}, {stream(5), 2}});
    request.records[0].num_output_buffers = 1;
    EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_PARTIAL, request.send(ops()));

    ASSERT_EQ(2u, request.returned);
    EXPECT_EQ(CAMERA3_PS_BUF_REQ_MAX_BUFFER_EXCEEDED, request.records[0].status);
    EXPECT_EQ(1u, request.records[0].num_output_buffers);
    EXPECT_EQ(9, Camera3Stream::fromStream(request.records[0].stream)->id);
    const camera3_stream_buffer* buffers = request.records[1].output_buffers;
    ASSERT_EQ(2u, request.records[1].num_output_buffers);
    EXPECT_EQ(CAMERA3_BUFFER_STATUS_OK, buffers[0].status);
    EXPECT_EQ(CAMERA3_BUFFER_STATUS_ERROR, buffers[1].status);
    EXPECT_TRUE(isOpen(buffers[0].acquire_fence));
    close(buffers[0].acquire_fence);
    EXPECT_EQ(-1, buffers[1].acquire_fence);
    EXPECT_THAT(logsStartingWith(kPrefix + "operator()]"),
                ElementsAre(kPrefix + "operator()] invalid fence handle with 2 file descriptors"));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 2u), Pair(9, 1u)));
    EXPECT_EQ(11u, mBridge->popBufferId(request.handle(1, 0), 5));
    EXPECT_EQ(12u, mBridge->popBufferId(request.handle(1, 1), 5));
}

// An error value the legacy enum does not know reaches the device unchanged.
TEST_F(HbmTest, EveryRequestErrorValuePassesThroughUnchanged) {
    for (const int32_t value : {int32_t{CAMERA3_PS_BUF_REQ_MAX_BUFFER_EXCEEDED},
                                int32_t{0x40000000}, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(value);
        mFramework->setBufferRequestHandler([value](const std::vector<BufferRequest>&,
                                                    std::vector<StreamBufferRet>* answers,
                                                    BufferRequestStatus* status) {
            answers->emplace_back().streamId = 9;
            answers->back().val.set<StreamBuffersVal::error>(StreamBufferRequestError(value));
            *status = BufferRequestStatus::FAILED_PARTIAL;
            return ndk::ScopedAStatus::ok();
        });
        DeviceBufferRequest request({{stream(9), 1}});
        EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_PARTIAL, request.send(ops()));
        EXPECT_EQ(value, enumValue(request.records[0].status));
    }
}

// Nothing is imported, no record is touched and no credit is taken.
TEST_F(HbmTest, RefusedOrBrokenAnswersLeaveEverythingAsItWas) {
    struct Case {
        BufferRequestStatus status;
        bool binderFails;
        size_t answers;
        size_t buffersPerAnswer;
        camera3_buffer_request_status expected;
        std::string log;  // after "requestStreamBuffers] "
    };
    const std::vector<Case> cases = {
            {BufferRequestStatus::FAILED_CONFIGURING, false, 1, 1,
             CAMERA3_BUF_REQ_FAILED_CONFIGURING, ""},
            {BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS, false, 1, 1,
             CAMERA3_BUF_REQ_FAILED_ILLEGAL_ARGUMENTS, ""},
            {static_cast<BufferRequestStatus>(7), false, 1, 1, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
             "Unknown buffer request error code 7"},
            {BufferRequestStatus::OK, true, 1, 1, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
             "requestStreamBuffers transaction failed: dead framework."},
            {BufferRequestStatus::OK, false, 0, 0, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
             "Expect 1 buffer requests returned, only got 0"},
            {BufferRequestStatus::FAILED_UNKNOWN, false, 2, 1, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
             "Expect 1 buffer requests returned, only got 2"},
            {BufferRequestStatus::OK, false, 1, 2, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
             "Stream 5 got 2 buffers, only 1 requested"},
    };
    for (const Case& c : cases) {
        clearLogs();
        mFramework->setBufferRequestHandler([&c](const std::vector<BufferRequest>&,
                                                 std::vector<StreamBufferRet>* answers,
                                                 BufferRequestStatus* status) {
            int64_t bufferId = 20;
            for (size_t i = 0; i < c.answers; ++i) {
                std::vector<StreamBuffer> buffers;
                for (size_t j = 0; j < c.buffersPerAnswer; ++j) {
                    buffers.push_back(frameworkBuffer(5, ++bufferId));
                }
                answers->push_back(frameworkAnswer(5, std::move(buffers)));
            }
            *status = c.status;
            return c.binderFails ? testing::deadFramework() : ndk::ScopedAStatus::ok();
        });
        DeviceBufferRequest request({{stream(5), 1}});
        EXPECT_EQ(c.expected, request.send(ops())) << c.log;
        EXPECT_EQ(0u, request.returned);
        EXPECT_EQ(nullptr, request.records[0].stream);
        EXPECT_EQ(0u, request.records[0].num_output_buffers);
        size_t cached = 99;
        mCacheMgr->getCachedBufferCount(&cached);
        EXPECT_EQ(0u, cached);
        EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
        const std::vector<std::string> errors = logsStartingWith(kPrefix + "requestStreamBuffers]");
        EXPECT_EQ(c.log.empty()
                          ? std::vector<std::string>{}
                          : std::vector<std::string>{kPrefix + "requestStreamBuffers] " + c.log},
                  errors);
    }
}

// From level 1 the request and the answer are logged; zero requests still ask the framework.
TEST_F(HbmTest, RequestTextsAppearFromLogLevelOne) {
    DeviceBufferRequest none({});
    EXPECT_EQ(CAMERA3_BUF_REQ_OK, none.send(ops()));
    EXPECT_EQ(0u, none.returned);
    EXPECT_THAT(mFramework->bufferRequests(), ElementsAre(IsEmpty()));
    EXPECT_THAT(logTexts(), IsEmpty());

    startBridge(1);
    configure({{9, 2}});
    const auto noBuffer = [] {
        StreamBufferRet answer;
        answer.streamId = 9;
        answer.val.set<StreamBuffersVal::error>(StreamBufferRequestError::NO_BUFFER_AVAILABLE);
        return answer;
    };
    mFramework->setBufferRequestHandler([&](const std::vector<BufferRequest>&,
                                            std::vector<StreamBufferRet>* answers,
                                            BufferRequestStatus* status) {
        answers->push_back(noBuffer());
        *status = BufferRequestStatus::FAILED_PARTIAL;
        return ndk::ScopedAStatus::ok();
    });
    EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_PARTIAL, DeviceBufferRequest({{stream(9), 1}}).send(ops()));
    const std::string line = kPrefix + "requestStreamBuffers] [HBM] framework ";
    EXPECT_THAT(
            logTexts(),
            ElementsAre(line + "requestStreamBuffers +, " + BufferRequest{9, 1}.toString() + ", ",
                        line + "requestStreamBuffers -, BufferRequestStatus:FAILED_PARTIAL, " +
                                noBuffer().toString() + ", "));
}

// The framework is asked anyway once the wait for credit times out; the count wraps below zero
// and comes back.
TEST_F(HbmTest, ShortCountWaitsThenAsksAnyway) {
    DeviceBufferRequest request({{stream(9), 3}});
    EXPECT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
    EXPECT_THAT(logTexts(),
                ElementsAre(kPrefix + "requestStreamBuffers] Wait for valid buffer timeout, "
                                      "StmId=9, ValBufSize=2, NumBufReq=3"));
    EXPECT_EQ(3u, request.records[0].num_output_buffers);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 4294967295u)));
    giveBack(request, {{0, 0}});
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 0u)));
    giveBack(request, {{0, 1}, {0, 2}});
}

// One credit per returned buffer; a buffer returned twice carries no id and no credit the second
// time. A release fence is adopted: open during the call, closed after it.
TEST_F(HbmTest, ReturnedBuffersCarryTheirIdsAndCreditOncePerBuffer) {
    startBridge(3);
    configure({{5, 4}});
    const std::string line = kPrefix + "returnStreamBuffers] ";
    ops()->return_stream_buffers(ops(), 0, nullptr);
    EXPECT_THAT(mFramework->returnedBuffers(), ElementsAre(IsEmpty()));
    EXPECT_THAT(logTexts(), ElementsAre(line + "[HBM] framework returnStreamBuffers +, ",
                                        line + "[HBM] framework returnStreamBuffers -"));

    DeviceBufferRequest request({{stream(5), 3}});
    request.send(ops());
    const int fence = makeFence();
    request.records[0].output_buffers[1].release_fence = fence;
    clearLogs();
    giveBack(request, {{0, 0}, {0, 1}, {0, 2}});
    request.records[0].output_buffers[1].release_fence = -1;
    giveBack(request, {{0, 1}});

    std::vector<std::vector<Framework::RecordedBuffer>> returned = mFramework->returnedBuffers();
    ASSERT_EQ(3u, returned.size());
    EXPECT_THAT(idsOf(returned[1]), ElementsAre(1, 2, 3));
    EXPECT_THAT(idsOf(returned[2]), ElementsAre(0));
    EXPECT_THAT(returned[1][1].releaseFenceFds, ElementsAre(fence));
    EXPECT_TRUE(returned[1][1].releaseFencesOpenDuringCall);
    EXPECT_FALSE(isOpen(fence));
    EXPECT_THAT(counts(), ElementsAre(Pair(5, 4u)));
    EXPECT_EQ(line + "[HBM] framework returnStreamBuffers +, " + returned[1][0].text + ", " +
                      returned[1][1].text + ", " + returned[1][2].text + ", ",
              logsStartingWith(line + "[HBM]").at(0));
    EXPECT_THAT(logsStartingWith(line + "ValidBufferSizeMap"),
                ElementsAre(line + "ValidBufferSizeMap streamId:5 size:2",
                            line + "ValidBufferSizeMap streamId:5 size:3",
                            line + "ValidBufferSizeMap streamId:5 size:4"));
}

TEST_F(HbmTest, FailedReturnKeepsTheCreditButSpendsIdsAndFences) {
    DeviceBufferRequest request({{stream(5), 1}});
    request.send(ops());
    mFramework->setReturnStreamBuffersStatus(testing::deadFramework);
    const int fence = makeFence();
    request.records[0].output_buffers[0].release_fence = fence;
    giveBack(request, {{0, 0}});
    EXPECT_FALSE(isOpen(fence));
    EXPECT_THAT(idsOf(mFramework->returnedBuffers().at(0)), ElementsAre(1));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 3u), Pair(9, 2u)));
    EXPECT_EQ(0u, mBridge->popBufferId(request.handle(0, 0), 5));
    EXPECT_TRUE(logged(kPrefix +
                       "returnStreamBuffers] returnStreamBuffers transaction failed: dead "
                       "framework."));
}

// The framework makes the cache let go of a buffer the device still holds: the buffer stays open
// and keeps its id until the device gives it back, then closes. Another buffer handed out
// meanwhile (whose handle may hash like the dropped one) keeps its own id.
TEST_F(HbmTest, BufferTheCacheDropsStaysWithTheDeviceUntilItComesBack) {
    using Drop = std::function<void(IBufferHandleCacheMgr&, int64_t bufferId)>;
    const std::vector<std::pair<std::string, Drop>> drops = {
            {"stream left the configuration",
             [](IBufferHandleCacheMgr& cache, int64_t) {
                 IBufferHandleCacheMgr::StreamConfiguration configuration;
                 configuration.streams.emplace_back().id = 9;
                 cache.configureStreams(configuration);
             }},
            {"cache entry removed",
             [](IBufferHandleCacheMgr& cache, int64_t bufferId) {
                 cache.removeBufferCaches({{5, bufferId}});
             }},
            {"new handle sent for the id",
             [](IBufferHandleCacheMgr& cache, int64_t bufferId) {
                 std::vector<IBufferHandleCacheMgr::CaptureRequest> requests(1);
                 requests[0].outputBuffers.push_back(frameworkBuffer(5, bufferId));
                 std::vector<RequestBufferCache> caches;
                 cache.importRequestBuffers(requests, &caches);
             }},
    };
    for (const auto& [name, drop] : drops) {
        SCOPED_TRACE(name);
        DeviceBufferRequest held({{stream(5), 1}});
        ASSERT_EQ(CAMERA3_BUF_REQ_OK, held.send(ops()));
        const int64_t heldId = mLastBufferId;
        const int heldFd = held.handle(0, 0)->data[0];
        drop(*mCacheMgr, heldId);
        EXPECT_TRUE(isOpen(heldFd));

        DeviceBufferRequest other({{stream(5), 1}});
        ASSERT_EQ(CAMERA3_BUF_REQ_OK, other.send(ops()));
        giveBack(held, {{0, 0}});
        EXPECT_THAT(idsOf(mFramework->returnedBuffers().back()), ElementsAre(heldId));
        EXPECT_FALSE(isOpen(heldFd));
        giveBack(other, {{0, 0}});
        EXPECT_THAT(idsOf(mFramework->returnedBuffers().back()), ElementsAre(mLastBufferId));
        EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    }
}

// A framework that hands one buffer out twice in one answer: the device holds it twice, and it
// stays open until both come back, whatever the cache does. The id goes with the first.
TEST_F(HbmTest, BufferHandedOverTwiceStaysUntilBothComeBack) {
    mFramework->setBufferRequestHandler([](const std::vector<BufferRequest>&,
                                           std::vector<StreamBufferRet>* answers,
                                           BufferRequestStatus* status) {
        std::vector<StreamBuffer> buffers;
        buffers.push_back(frameworkBuffer(5, 7));
        buffers.push_back(frameworkBuffer(5, 7));
        answers->push_back(frameworkAnswer(5, std::move(buffers)));
        *status = BufferRequestStatus::OK;
        return ndk::ScopedAStatus::ok();
    });
    DeviceBufferRequest twice({{stream(5), 2}});
    ASSERT_EQ(CAMERA3_BUF_REQ_OK, twice.send(ops()));
    const int fd = twice.handle(0, 1)->data[0];
    mCacheMgr->removeBufferCaches({{5, 7}});
    giveBack(twice, {{0, 0}});
    EXPECT_TRUE(isOpen(fd));
    giveBack(twice, {{0, 1}});
    EXPECT_FALSE(isOpen(fd));
    EXPECT_THAT(mFramework->returnedBuffers(),
                ElementsAre(::testing::SizeIs(1), ::testing::SizeIs(1)));
    EXPECT_THAT(idsOf(mFramework->returnedBuffers()[0]), ElementsAre(7));
    EXPECT_THAT(idsOf(mFramework->returnedBuffers()[1]), ElementsAre(0));
}

// One capture through the whole library, the legacy device using the HAL buffer manager: the
// request goes down through the session without a buffer (id 0), the device asks for one through
// the table it was initialised with, and the shutter and the result come back up with the buffer's
// id restored.
TEST_F(HbmTest, CaptureWithDeviceManagedBuffersRoundTripsThroughTheSession) {
    testing::ScriptableLegacyDevice legacy;
    testing::Session::ResultInfo info;
    auto session = testing::Session::create({3, legacy.device(), mBridge}, info);
    ASSERT_NE(nullptr, session);
    ASSERT_EQ(0, session->open(mFramework));
    testing::Session::StreamConfiguration configuration;
    configuration.streams = {testing::makeStream(4)};
    std::vector<testing::Session::HalStream> halStreams;
    ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());
    std::vector<testing::Session::CaptureRequest> requests(1);
    requests[0].frameNumber = 1;
    requests[0].inputBuffer.streamId = -1;
    requests[0].outputBuffers = testing::movedInto(testing::makeBuffer(4, 0));
    int32_t processed = 0;
    ASSERT_TRUE(session->processCaptureRequest(requests, {}, &processed).isOk());
    EXPECT_EQ(1, processed);

    std::vector<testing::CapturedRequest> captured = legacy.takeRequests();
    ASSERT_EQ(1u, captured.size());
    EXPECT_EQ(nullptr, captured[0].outputBuffers.at(0).buffer);
    camera3_stream_t* stream = captured[0].outputBuffers[0].stream;
    const camera3_callback_ops* table = legacy.callbackOps();
    DeviceBufferRequest bufferRequest({{stream, 1}});
    ASSERT_EQ(CAMERA3_BUF_REQ_OK, bufferRequest.send(table));
    camera3_notify_msg shutter{};
    shutter.type = CAMERA3_MSG_SHUTTER;
    shutter.message.shutter = {1, 5000, 5100};
    table->notify(table, &shutter);
    camera3_stream_buffer output = bufferRequest.records[0].output_buffers[0];
    output.stream = stream;
    output.release_fence = makeFence();
    MetadataPtr resultMetadata = makeMetadata(7, 64);
    camera3_capture_result result{1,      resultMetadata.get(), 1, &output, nullptr, 1, 0, nullptr,
                                  nullptr};
    table->process_capture_result(table, &result);

    EXPECT_THAT(mFramework->notifications(), ElementsAre(ShutterMsg{1, 5000, 5100}));
    std::vector<Framework::RecordedResult> results = mFramework->results();
    ASSERT_EQ(1u, results.size());
    EXPECT_GT(results[0].metadata.fmqSize, 0);
    EXPECT_EQ(testing::bytesOf(resultMetadata.get()), results[0].metadata.bytes);
    EXPECT_EQ(-1, results[0].inputBuffer.streamId);
    ASSERT_EQ(1u, results[0].outputBuffers.size());
    EXPECT_EQ(4, results[0].outputBuffers[0].streamId);
    EXPECT_EQ(mLastBufferId, results[0].outputBuffers[0].bufferId);
    EXPECT_TRUE(results[0].outputBuffers[0].releaseFencesOpenDuringCall);
    EXPECT_FALSE(isOpen(output.release_fence));
    EXPECT_THAT(counts(), ElementsAre(Pair(4, testing::ScriptableLegacyDevice::kDefaultMaxBuffers)));
    EXPECT_TRUE(session->close().isOk());
}

using HbmDeathTest = HbmTest;

TEST_F(HbmDeathTest, BrokenAnswersAndAMissingFrameworkEndTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // A cache manager that imports nothing: the bridge cannot find the handed-out buffer.
    mBridge->setBufferHandleCacheMgr(
            std::make_shared<::testing::NiceMock<testing::MockBufferHandleCacheMgr>>());
    DeviceBufferRequest lost({{stream(5), 1}});
    EXPECT_DEATH(lost.send(ops()), "::requestStreamBuffers\\] fail to find BufferHandle");
    mBridge->setBufferHandleCacheMgr(mCacheMgr);

    // A stream outside the configuration has no count, whether the device asks for it, the
    // framework answers for it or the device gives a buffer of it back.
    const std::string keyNotFound = "unordered_map::at: key not found";
    Camera3Stream unconfigured;
    unconfigured.id = 6;
    DeviceBufferRequest stray({{&unconfigured.stream, 1}});
    EXPECT_DEATH(stray.send(ops()), keyNotFound);
    mFramework->setBufferRequestHandler([](const std::vector<BufferRequest>&,
                                           std::vector<StreamBufferRet>* answers,
                                           BufferRequestStatus* status) {
        answers->push_back(frameworkAnswer(6, {}));
        *status = BufferRequestStatus::OK;
        return ndk::ScopedAStatus::ok();
    });
    DeviceBufferRequest misanswered({{stream(5), 1}});
    EXPECT_DEATH(misanswered.send(ops()), keyNotFound);
    testing::DeviceBuffer buffer(41);
    mBridge->pushBufferId(buffer.key(), 1, 6);
    camera3_stream_buffer returned{&unconfigured.stream, buffer.pointer(), 0, -1, -1};
    const camera3_stream_buffer* returnedBuffers[] = {&returned};
    EXPECT_DEATH(ops()->return_stream_buffers(ops(), 1, returnedBuffers), keyNotFound);

    mBridge->setCallback(nullptr);
    DeviceBufferRequest none({});
    EXPECT_DEATH(none.send(ops()), "::requestStreamBuffers\\] CameraDeviceCallback is null");
    EXPECT_DEATH(ops()->return_stream_buffers(ops(), 0, nullptr),
                 "::returnStreamBuffers\\] CameraDeviceCallback is null");
}

}  // namespace
}  // namespace kovo::aidl2legacy
