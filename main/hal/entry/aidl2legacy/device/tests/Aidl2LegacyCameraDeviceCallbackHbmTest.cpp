#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "BufferHandleCacheMgrSeam.h"
#include "CallbackTestSupport.h"
#include "OpenFds.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamBuffersVal;
using ::testing::_;
using testing::DeviceBufferRequest;
using ::testing::ElementsAre;
using testing::frameworkAnswer;
using testing::frameworkBuffer;
using ::testing::IsEmpty;
using testing::isOpen;
using testing::makeFence;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;
using Framework = testing::RecordingCameraDeviceCallback;

constexpr char kPrefix[] = "[3-aidl2legacy-callback::";

ndk::ScopedAStatus failure() {
    return ndk::ScopedAStatus::fromServiceSpecificErrorWithMessage(10, "dead framework");
}

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
    std::vector<int64_t> returnedIds(size_t call) {
        std::vector<int64_t> ids;
        const auto returned = mFramework->returnedBuffers();
        for (const auto& buffer : returned.at(call)) {
            ids.push_back(buffer.bufferId);
        }
        return ids;
    }

    int64_t mLastBufferId = 0;
};

// The legacy device asks for buffers on two streams, gives some back and delivers the others in a
// result: each id reaches the framework once, and ids, credits and fds all balance.
TEST_F(HbmTest, HandedOutBuffersComeBackOnceAndEverythingBalances) {
    const size_t openFds = testing::countOpenFds();
    DeviceBufferRequest request({{stream(5), 2}, {stream(9), 1}});
    ASSERT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
    EXPECT_THAT(mFramework->bufferRequests(),
                ElementsAre(ElementsAre(BufferRequest{5, 2}, BufferRequest{9, 1})));
    ASSERT_EQ(2u, request.returned);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 2u), Pair(9, 1u)));
    for (size_t record = 0; record < 2; ++record) {
        const camera3_stream_buffer_ret& ret = request.records[record];
        EXPECT_EQ(CAMERA3_PS_BUF_REQ_OK, ret.status);
        // The streams are the bridge's own copies.
        EXPECT_NE(stream(record == 0 ? 5 : 9), ret.stream);
        EXPECT_EQ(record == 0 ? 5 : 9, Camera3Stream::fromStream(ret.stream)->id);
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

    EXPECT_THAT(returnedIds(0), ElementsAre(2));
    const std::vector<Framework::RecordedResult> results = mFramework->results();
    ASSERT_EQ(1u, results.size());
    std::vector<int64_t> resultIds;
    for (const auto& buffer : results[0].outputBuffers) {
        resultIds.push_back(buffer.bufferId);
    }
    EXPECT_THAT(resultIds, ElementsAre(1, 3));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    for (auto [record, buffer, streamId] : {std::tuple{0, 0, 5}, {0, 1, 5}, {1, 0, 9}}) {
        EXPECT_EQ(0u, mBridge->popBufferId(request.handle(record, buffer), streamId));
    }
    mCacheMgr->resetCacheMgr();
    EXPECT_EQ(openFds, testing::countOpenFds());
}

// A partial answer: the error entry keeps the device's record as it was, and still comes off the
// count by whatever num_output_buffers the device left in it.
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
        StreamBufferRet error;
        error.streamId = 9;
        error.val.set<StreamBuffersVal::error>(StreamBufferRequestError::MAX_BUFFER_EXCEEDED);
        answers->push_back(std::move(error));
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
    // The device owns a duplicate of a one-fd fence; a two-fd fence is refused.
    EXPECT_TRUE(isOpen(buffers[0].acquire_fence));
    close(buffers[0].acquire_fence);
    EXPECT_EQ(-1, buffers[1].acquire_fence);
    EXPECT_THAT(logsStartingWith(std::string(kPrefix) + "operator()]"),
                ElementsAre(std::string(kPrefix) +
                            "operator()] invalid fence handle with 2 file descriptors"));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 2u), Pair(9, 1u)));
    EXPECT_EQ(11u, mBridge->popBufferId(request.handle(1, 0), 5));
    EXPECT_EQ(12u, mBridge->popBufferId(request.handle(1, 1), 5));
}

struct RefusalCase {
    const char* name;
    BufferRequestStatus status;
    bool binderFails;
    size_t answers;
    size_t buffersPerAnswer;
    camera3_buffer_request_status expected;
    const char* log;  // after the "[3-aidl2legacy-callback::requestStreamBuffers] " prefix
};

class HbmRefusalTest : public HbmTest, public ::testing::WithParamInterface<RefusalCase> {};

// Nothing is imported, no record is touched and no credit is taken.
TEST_P(HbmRefusalTest, RefusedOrBrokenAnswersLeaveEverythingAsItWas) {
    const RefusalCase& c = GetParam();
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
        return c.binderFails ? failure() : ndk::ScopedAStatus::ok();
    });
    DeviceBufferRequest request({{stream(5), 1}});
    EXPECT_EQ(c.expected, request.send(ops()));
    EXPECT_EQ(0u, request.returned);
    EXPECT_EQ(nullptr, request.records[0].stream);
    EXPECT_EQ(0u, request.records[0].num_output_buffers);
    size_t cached = 99;
    mCacheMgr->getCachedBufferCount(&cached);
    EXPECT_EQ(0u, cached);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    std::vector<std::string> errors =
            logsStartingWith(std::string(kPrefix) + "requestStreamBuffers]");
    if (c.log[0] == '\0') {
        EXPECT_THAT(errors, IsEmpty());
    } else {
        EXPECT_THAT(errors, ElementsAre(std::string(kPrefix) + "requestStreamBuffers] " + c.log));
    }
}

// Each case: status, binder failure, answers, buffers per answer, result, error text.
INSTANTIATE_TEST_SUITE_P(
        Answers, HbmRefusalTest,
        ::testing::Values(RefusalCase{"Configuring", BufferRequestStatus::FAILED_CONFIGURING, false,
                                      1, 1, CAMERA3_BUF_REQ_FAILED_CONFIGURING, ""},
                          RefusalCase{"IllegalArguments",
                                      BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS, false, 1, 1,
                                      CAMERA3_BUF_REQ_FAILED_ILLEGAL_ARGUMENTS, ""},
                          RefusalCase{"UnknownStatus", static_cast<BufferRequestStatus>(7), false,
                                      1, 1, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
                                      "Unknown buffer request error code 7"},
                          RefusalCase{"BinderFailure", BufferRequestStatus::OK, true, 1, 1,
                                      CAMERA3_BUF_REQ_FAILED_UNKNOWN,
                                      "requestStreamBuffers transaction failed: dead framework."},
                          RefusalCase{"TooFewAnswers", BufferRequestStatus::OK, false, 0, 0,
                                      CAMERA3_BUF_REQ_FAILED_UNKNOWN,
                                      "Expect 1 buffer requests returned, only got 0"},
                          RefusalCase{"TooManyAnswers", BufferRequestStatus::FAILED_UNKNOWN, false,
                                      2, 1, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
                                      "Expect 1 buffer requests returned, only got 2"},
                          RefusalCase{"MoreBuffersThanAskedFor", BufferRequestStatus::OK, false, 1,
                                      2, CAMERA3_BUF_REQ_FAILED_UNKNOWN,
                                      "Stream 5 got 2 buffers, only 1 requested"}),
        [](const auto& info) { return std::string(info.param.name); });

TEST_F(HbmTest, ZeroRequestsStillAskTheFramework) {
    DeviceBufferRequest request({});
    EXPECT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
    EXPECT_EQ(0u, request.returned);
    EXPECT_THAT(mFramework->bufferRequests(), ElementsAre(IsEmpty()));
}

TEST_F(HbmTest, RequestTextsAppearFromLogLevelOne) {
    auto noBuffers = [](const std::vector<BufferRequest>&, std::vector<StreamBufferRet>* answers,
                        BufferRequestStatus* status) {
        answers->emplace_back();
        answers->back().streamId = 9;
        answers->back().val.set<StreamBuffersVal::error>(
                StreamBufferRequestError::NO_BUFFER_AVAILABLE);
        *status = BufferRequestStatus::FAILED_PARTIAL;
        return ndk::ScopedAStatus::ok();
    };
    mFramework->setBufferRequestHandler(noBuffers);
    DeviceBufferRequest quiet({{stream(9), 1}});
    EXPECT_EQ(CAMERA3_BUF_REQ_FAILED_PARTIAL, quiet.send(ops()));
    EXPECT_THAT(logTexts(), IsEmpty());

    startBridge(1);
    configure({{9, 2}});
    DeviceBufferRequest verbose({{stream(9), 1}});
    verbose.send(ops());
    std::vector<StreamBufferRet> answers;
    BufferRequestStatus status;
    noBuffers({}, &answers, &status);
    const std::string line = std::string(kPrefix) + "requestStreamBuffers] [HBM] framework ";
    EXPECT_THAT(
            logTexts(),
            ElementsAre(line + "requestStreamBuffers +, " + BufferRequest{9, 1}.toString() + ", ",
                        line + "requestStreamBuffers -, BufferRequestStatus:FAILED_PARTIAL, " +
                                answers[0].toString() + ", "));
}

TEST_F(HbmTest, ShortCountWaitsAboutASecondThenAsksAnyway) {
    const auto start = std::chrono::steady_clock::now();
    DeviceBufferRequest request({{stream(9), 3}});
    EXPECT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
    // Loosely: the deadline cannot pass early.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
    EXPECT_THAT(logTexts(), ElementsAre(std::string(kPrefix) +
                                        "requestStreamBuffers] Wait for valid buffer timeout, "
                                        "StmId=9, ValBufSize=2, NumBufReq=3"));
    EXPECT_EQ(3u, request.records[0].num_output_buffers);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 4294967295u)));
}

TEST_F(HbmTest, AReturnOnAnotherThreadReleasesAWaitingRequest) {
    DeviceBufferRequest first({{stream(9), 2}});
    first.send(ops());
    std::thread waiter([&] {
        DeviceBufferRequest second({{stream(9), 1}});
        second.send(ops());
    });
    // Not an assertion: only gives the waiter time to block, so that the return wakes it.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    giveBack(first, {{0, 0}});
    waiter.join();
    EXPECT_EQ(2u, mFramework->bufferRequests().size());
    EXPECT_THAT(logsStartingWith(std::string(kPrefix) + "requestStreamBuffers] Wait"), IsEmpty());
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 0u)));
}

// Three buffers of one stream in one return: one round per buffer; a buffer returned twice the
// second time carries no id and no credit.
TEST_F(HbmTest, ReturnedBuffersCarryTheirIdsAndCreditOncePerBuffer) {
    startBridge(3);
    configure({{5, 4}});
    ops()->return_stream_buffers(ops(), 0, nullptr);
    EXPECT_THAT(mFramework->returnedBuffers(), ElementsAre(IsEmpty()));
    const std::string line = std::string(kPrefix) + "returnStreamBuffers] ";
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
    EXPECT_THAT(returnedIds(1), ElementsAre(1, 2, 3));
    EXPECT_THAT(returnedIds(2), ElementsAre(0));
    EXPECT_THAT(returned[1][1].releaseFenceFds, ElementsAre(fence));
    EXPECT_TRUE(returned[1][1].releaseFencesOpenDuringCall);
    EXPECT_FALSE(isOpen(fence));
    EXPECT_THAT(returned[1][0].releaseFenceFds, IsEmpty());
    EXPECT_THAT(counts(), ElementsAre(Pair(5, 4u)));
    EXPECT_THAT(logsStartingWith(line),
                ElementsAre(line + "[HBM] framework returnStreamBuffers +, " + returned[1][0].text +
                                    ", " + returned[1][1].text + ", " + returned[1][2].text + ", ",
                            line + "[HBM] framework returnStreamBuffers -",
                            line + "ValidBufferSizeMap streamId:5 size:2",
                            line + "ValidBufferSizeMap streamId:5 size:3",
                            line + "ValidBufferSizeMap streamId:5 size:4",
                            line + "[HBM] framework returnStreamBuffers +, " + returned[2][0].text +
                                    ", ",
                            line + "[HBM] framework returnStreamBuffers -"));
}

TEST_F(HbmTest, FailedReturnKeepsTheCreditButSpendsIdsAndFences) {
    DeviceBufferRequest request({{stream(5), 1}});
    request.send(ops());
    mFramework->setReturnStreamBuffersStatus(failure);
    const size_t openFds = testing::countOpenFds();
    request.records[0].output_buffers[0].release_fence = makeFence();
    giveBack(request, {{0, 0}});
    EXPECT_EQ(openFds, testing::countOpenFds());
    EXPECT_THAT(returnedIds(0), ElementsAre(1));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 3u), Pair(9, 2u)));
    EXPECT_EQ(0u, mBridge->popBufferId(request.handle(0, 0), 5));
    EXPECT_TRUE(logged(std::string(kPrefix) +
                       "returnStreamBuffers] returnStreamBuffers transaction failed: dead "
                       "framework."));
}

using HbmDeathTest = HbmTest;

TEST_F(HbmDeathTest, BrokenAnswersAndAMissingFrameworkEndTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // A cache manager that imports nothing: the bridge cannot find the handed-out buffer.
    auto emptyCache = std::make_shared<::testing::NiceMock<testing::MockBufferHandleCacheMgr>>();
    mBridge->setBufferHandleCacheMgr(emptyCache);
    DeviceBufferRequest lost({{stream(5), 1}});
    EXPECT_DEATH(lost.send(ops()), "::requestStreamBuffers\\] fail to find BufferHandle");
    mBridge->setBufferHandleCacheMgr(mCacheMgr);

    Camera3Stream unconfigured;
    unconfigured.id = 6;
    DeviceBufferRequest stray({{&unconfigured.stream, 1}});
    EXPECT_DEATH([&]() noexcept { stray.send(ops()); }(), "");

    mBridge->setCallback(nullptr);
    DeviceBufferRequest none({});
    EXPECT_DEATH(none.send(ops()), "::requestStreamBuffers\\] CameraDeviceCallback is null");
    EXPECT_DEATH(ops()->return_stream_buffers(ops(), 0, nullptr),
                 "::returnStreamBuffers\\] CameraDeviceCallback is null");
}

}  // namespace
}  // namespace kovo::aidl2legacy
