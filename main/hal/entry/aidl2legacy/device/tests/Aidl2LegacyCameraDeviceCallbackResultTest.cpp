#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "CallbackTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::ErrorCode;
using aidl::android::hardware::camera::device::ErrorMsg;
using aidl::android::hardware::camera::device::ShutterMsg;
using testing::bytesOf;
using testing::DeviceBuffer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::isOpen;
using testing::makeFence;
using testing::makeMetadata;
using testing::MetadataPtr;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;
using Framework = testing::RecordingCameraDeviceCallback;
using Callback = Aidl2LegacyCameraDeviceCallback;

constexpr char kPrefix[] = "[3-aidl2legacy-callback::";

class ResultTest : public testing::BridgeTest {
protected:
    ResultTest() { configure({{5, 4}, {9, 2}}); }

    camera3_stream_buffer deviceBuffer(int32_t streamId, DeviceBuffer& buffer, int releaseFence = -1,
                                       int status = CAMERA3_BUFFER_STATUS_OK) {
        return {stream(streamId), buffer.pointer(), status, -1, releaseFence};
    }
    void send(const camera3_capture_result& result) {
        ops()->process_capture_result(ops(), &result);
    }
};

// Metadata is read back from the queue in the framework's order; null physical metadata goes
// inline and empty; the input buffer keeps its handle's address as id, output ids are popped, and
// fences are adopted: open during the call, closed after it. Only a known id gives credit back.
TEST_F(ResultTest, FullResultReachesTheFrameworkInOneCall) {
    MetadataPtr metadata = makeMetadata(1, 100);
    MetadataPtr physical = makeMetadata(2, 40);
    const char* ids[] = {"cam2", "cam3"};
    const camera_metadata_t* physicalMetadata[] = {physical.get(), nullptr};
    DeviceBuffer input(40), known(41), unknown(42);
    mBridge->pushBufferId(known.key(), 77, 5);
    const int fence = makeFence();
    camera3_stream_buffer inputBuffer = deviceBuffer(9, input);
    camera3_stream_buffer outputs[] = {deviceBuffer(5, known, fence),
                                       deviceBuffer(9, unknown, -1, CAMERA3_BUFFER_STATUS_ERROR)};
    send({7, metadata.get(), 2, outputs, &inputBuffer, 2, 2, ids, physicalMetadata});

    std::vector<Framework::RecordedResult> received = mFramework->results();
    ASSERT_EQ(1u, received.size());
    const Framework::RecordedResult& got = received[0];
    EXPECT_EQ(1u, got.resultsInCall);
    EXPECT_EQ(7, got.frameNumber);
    EXPECT_EQ(2, got.partialResult);
    EXPECT_GT(got.metadata.fmqSize, 0);
    EXPECT_EQ(bytesOf(metadata.get()), got.metadata.bytes);
    ASSERT_EQ(2u, got.physicalMetadata.size());
    EXPECT_EQ("cam2", got.physicalMetadata[0].physicalCameraId);
    EXPECT_EQ(bytesOf(physical.get()), got.physicalMetadata[0].metadata.bytes);
    EXPECT_EQ("cam3", got.physicalMetadata[1].physicalCameraId);
    EXPECT_EQ(0, got.physicalMetadata[1].metadata.fmqSize);
    EXPECT_THAT(got.physicalMetadata[1].metadata.bytes, IsEmpty());
    EXPECT_EQ(9, got.inputBuffer.streamId);
    EXPECT_EQ(reinterpret_cast<intptr_t>(input.pointer()), got.inputBuffer.bufferId);
    ASSERT_EQ(2u, got.outputBuffers.size());
    EXPECT_EQ(5, got.outputBuffers[0].streamId);
    EXPECT_EQ(77, got.outputBuffers[0].bufferId);
    EXPECT_THAT(got.outputBuffers[0].releaseFenceFds, ElementsAre(fence));
    EXPECT_TRUE(got.outputBuffers[0].releaseFencesOpenDuringCall);
    EXPECT_FALSE(isOpen(fence));
    EXPECT_EQ(0, got.outputBuffers[1].bufferId);
    EXPECT_EQ(Framework::BufferStatus::ERROR, got.outputBuffers[1].status);
    EXPECT_THAT(got.outputBuffers[1].releaseFenceFds, IsEmpty());
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 5u), Pair(9, 2u)));
    EXPECT_TRUE(logged(std::string(kPrefix) +
                       "convertCaptureResult] frameNumber:7 partialResult:2 phyResultCamId:cam2,"
                       "cam3, " +
                       got.inputBuffer.text + ", " + got.outputBuffers[0].text + ", " +
                       got.outputBuffers[1].text + ", "));
}

// The result goes to the queue first and fills it; the physical metadata then goes inline. The
// queue is read here by the test, after unread data filled it up.
TEST_F(ResultTest, PhysicalMetadataThatNoLongerFitsGoesInline) {
    auto framework = ndk::SharedRefBase::make<Framework>();
    mBridge->setCallback(framework);
    testing::ResultQueueDescriptor descriptor;
    mBridge->getCaptureResultMetadataQueue(&descriptor);
    testing::ResultMetadataQueue reader(descriptor);
    MetadataPtr metadata = makeMetadata(1);
    MetadataPtr physical = makeMetadata(2, 200);
    const size_t resultSize = get_camera_metadata_size(metadata.get());
    std::vector<int8_t> filler(Callback::kResultQueueSize - resultSize - 100);
    ASSERT_TRUE(testing::ResultMetadataQueue(descriptor).write(filler.data(), filler.size()));
    const char* ids[] = {"2"};
    const camera_metadata_t* physicalMetadata[] = {physical.get()};
    send({1, metadata.get(), 0, nullptr, nullptr, 1, 1, ids, physicalMetadata});

    std::vector<Framework::RecordedResult> received = framework->results();
    ASSERT_EQ(1u, received.size());
    EXPECT_EQ(static_cast<int64_t>(resultSize), received[0].metadata.fmqSize);
    EXPECT_EQ(0, received[0].physicalMetadata[0].metadata.fmqSize);
    EXPECT_EQ(bytesOf(physical.get()), received[0].physicalMetadata[0].metadata.bytes);
    ASSERT_TRUE(reader.read(filler.data(), filler.size()));
    std::vector<uint8_t> queued(resultSize);
    ASSERT_TRUE(reader.read(reinterpret_cast<int8_t*>(queued.data()), queued.size()));
    EXPECT_EQ(bytesOf(metadata.get()), queued);
    EXPECT_EQ(0u, reader.availableToRead());
}

// A buffer request blocked on stream 5's empty count is woken by the result, without a timeout.
TEST_F(ResultTest, EachBufferOfAStreamGivesOneCreditAndWakesWaiters) {
    startBridge(3);
    configure({{5, 0}});
    DeviceBuffer first(41), second(42);
    mBridge->pushBufferId(first.key(), 1, 5);
    mBridge->pushBufferId(second.key(), 2, 5);
    std::thread waiter([&] { testing::DeviceBufferRequest({{stream(5), 2}}).send(ops()); });
    // Not an assertion: only gives the waiter time to block, so that the result wakes it.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    camera3_stream_buffer outputs[] = {deviceBuffer(5, first), deviceBuffer(5, second)};
    send({1, nullptr, 2, outputs, nullptr, 0, 0, nullptr, nullptr});
    waiter.join();

    EXPECT_THAT(counts(), ElementsAre(Pair(5, 2u)));
    const std::string line = std::string(kPrefix) + "processCaptureResult] ValidBufferSizeMap ";
    EXPECT_THAT(logsStartingWith(line),
                ElementsAre(line + "streamId:5 size:1", line + "streamId:5 size:2"));
    EXPECT_THAT(logsStartingWith(std::string(kPrefix) + "requestStreamBuffers] Wait"), IsEmpty());
    EXPECT_EQ(1u, mFramework->bufferRequests().size());
}

TEST_F(ResultTest, FailedDeliveryKeepsTheCreditButSpendsIdsAndFences) {
    mFramework->setProcessCaptureResultStatus(testing::deadFramework);
    DeviceBuffer buffer(41);
    mBridge->pushBufferId(buffer.key(), 1, 5);
    const int fence = makeFence();
    camera3_stream_buffer output = deviceBuffer(5, buffer, fence);
    send({1, nullptr, 1, &output, nullptr, 0, 0, nullptr, nullptr});
    EXPECT_EQ(1, mFramework->results().at(0).outputBuffers.at(0).bufferId);
    EXPECT_FALSE(isOpen(fence));
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    EXPECT_EQ(0u, mBridge->popBufferId(buffer.key(), 5));
    EXPECT_TRUE(logged(std::string(kPrefix) +
                       "processCaptureResult] processCaptureResult transaction failed: dead "
                       "framework."));
}

// Error messages read the stream id from the stream record: the bridge's stream map is empty. An
// unknown type still goes out, as the default message.
TEST_F(ResultTest, EachNotificationReachesTheFrameworkConverted) {
    configure({});
    Camera3Stream errorStream;
    errorStream.id = 11;
    const std::vector<std::pair<camera3_notify_msg, Callback::NotifyMsg>> cases = {
            {{CAMERA3_MSG_SHUTTER, {.shutter = {12, 1000, 1500}}}, ShutterMsg{12, 1000, 1500}},
            {{CAMERA3_MSG_ERROR, {.error = {4, nullptr, 2}}},
             ErrorMsg{4, -1, ErrorCode::ERROR_REQUEST}},
            {{CAMERA3_MSG_ERROR, {.error = {4, &errorStream.stream, 4}}},
             ErrorMsg{4, 11, ErrorCode::ERROR_BUFFER}},
            {{CAMERA3_MSG_ERROR, {.error = {4, &errorStream.stream, 7}}},
             ErrorMsg{4, 11, static_cast<ErrorCode>(7)}},
            {{3, {}}, ErrorMsg{}},
    };
    for (const auto& [msg, expected] : cases) ops()->notify(ops(), &msg);
    std::vector<Callback::NotifyMsg> expected;
    for (const auto& c : cases) expected.push_back(c.second);
    EXPECT_EQ(expected, mFramework->notifications());
}

TEST_F(ResultTest, BadMessagesAndFailuresAreLoggedAndTheTextShownFromLevelThree) {
    camera3_notify_msg unknown{};
    unknown.type = 0x1f;
    camera3_notify_msg shutter{CAMERA3_MSG_SHUTTER, {.shutter = {1, 2, 3}}};
    mFramework->setNotifyStatus(testing::deadFramework);
    ops()->notify(ops(), &unknown);
    ops()->process_capture_result(ops(), nullptr);
    ops()->notify(ops(), nullptr);
    EXPECT_THAT(
            logTexts(),
            ElementsAre(
                    std::string(kPrefix) +
                            "convertNotifyMsg] Type converion failed. Unknown msg type 0x1f",
                    std::string(kPrefix) + "notify] notify transaction failed: dead framework.",
                    std::string(kPrefix) + "processCaptureResult] camera3_capture_result invalid",
                    std::string(kPrefix) + "notify] camera3_notify_msg invalid"));
    EXPECT_THAT(mFramework->results(), IsEmpty());

    startBridge(3);
    ops()->notify(ops(), &shutter);
    EXPECT_THAT(logTexts(),
                ElementsAre(std::string(kPrefix) + "convertNotifyMsg] " +
                                    Callback::NotifyMsg(ShutterMsg{1, 2, 3}).toString(),
                            std::string(kPrefix) +
                                    "notify] notify transaction failed: dead framework."));
}

TEST_F(ResultTest, ResultAndNotifyEachOpenAndCloseTheirTraceSection) {
    android::testing::TraceCapture trace;
    android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    camera3_notify_msg msg{};
    msg.type = CAMERA3_MSG_SHUTTER;
    ops()->notify(ops(), &msg);
    ops()->process_capture_result(ops(), nullptr);
    android::testing::setTraceEnabledTags(0);
    ops()->notify(ops(), &msg);
    std::vector<std::pair<android::testing::TraceEventKind, std::string>> events;
    for (const auto& event : trace.events()) events.emplace_back(event.kind, event.name);
    using Kind = android::testing::TraceEventKind;
    EXPECT_THAT(events, ElementsAre(Pair(Kind::Begin, "notify"), Pair(Kind::End, ""),
                                    Pair(Kind::Begin, "processCaptureResult"), Pair(Kind::End, "")));
}

// The containers of one call are kept for the next on the same thread: nothing of a full result
// or a shutter may show in a bare result or an unknown message that follows.
TEST_F(ResultTest, EachCallStartsFromNothingOfThePreviousOne) {
    MetadataPtr metadata = makeMetadata(1, 100);
    const char* ids[] = {"cam2", "cam3"};
    const camera_metadata_t* physicalMetadata[] = {metadata.get(), nullptr};
    DeviceBuffer input(40), first(41), second(42), bare(43);
    mBridge->pushBufferId(first.key(), 77, 5);
    mBridge->pushBufferId(second.key(), 78, 9);
    camera3_stream_buffer inputBuffer = deviceBuffer(9, input, makeFence());
    camera3_stream_buffer outputs[] = {deviceBuffer(5, first, makeFence()),
                                       deviceBuffer(9, second, makeFence())};
    send({7, metadata.get(), 2, outputs, &inputBuffer, 2, 2, ids, physicalMetadata});
    camera3_stream_buffer bareOutput = deviceBuffer(5, bare);
    send({8, nullptr, 1, &bareOutput, nullptr, 1, 0, nullptr, nullptr});

    std::vector<Framework::RecordedResult> received = mFramework->results();
    ASSERT_EQ(2u, received.size());
    const Framework::RecordedResult& got = received[1];
    EXPECT_EQ(8, got.frameNumber);
    EXPECT_EQ(0, got.metadata.fmqSize);
    EXPECT_THAT(got.metadata.bytes, IsEmpty());
    EXPECT_THAT(got.physicalMetadata, IsEmpty());
    EXPECT_EQ(-1, got.inputBuffer.streamId);
    EXPECT_EQ(0, got.inputBuffer.bufferId);
    EXPECT_EQ(Framework::BufferStatus::OK, got.inputBuffer.status);
    EXPECT_THAT(got.inputBuffer.releaseFenceFds, IsEmpty());
    ASSERT_EQ(1u, got.outputBuffers.size());
    EXPECT_EQ(0, got.outputBuffers[0].bufferId);
    EXPECT_THAT(got.outputBuffers[0].releaseFenceFds, IsEmpty());
    for (const camera3_stream_buffer& buffer : {inputBuffer, outputs[0], outputs[1]}) {
        EXPECT_FALSE(isOpen(buffer.release_fence));
    }

    camera3_notify_msg shutter{CAMERA3_MSG_SHUTTER, {.shutter = {1, 2, 3}}};
    camera3_notify_msg unknown{};
    unknown.type = 0x1f;
    ops()->notify(ops(), &shutter);
    ops()->notify(ops(), &unknown);
    EXPECT_THAT(mFramework->notifications(),
                ElementsAre(Callback::NotifyMsg(ShutterMsg{1, 2, 3}), Callback::NotifyMsg{}));
}

// A framework that answers a shutter by making the device send another one on the same thread:
// the inner call must not overwrite the message the outer call is delivering.
class ReenteringFramework : public Framework {
public:
    ndk::ScopedAStatus notify(const std::vector<NotifyMsg>& msgs) override {
        if (mBridge != nullptr) {
            const camera3_callback_ops* ops = std::exchange(mBridge, nullptr);
            camera3_notify_msg inner{CAMERA3_MSG_ERROR, {.error = {9, nullptr, 4}}};
            ops->notify(ops, &inner);
        }
        return Framework::notify(msgs);
    }
    const camera3_callback_ops* mBridge = nullptr;
};

TEST_F(ResultTest, ANotificationSentFromInsideTheFrameworkCallKeepsBothIntact) {
    auto framework = ndk::SharedRefBase::make<ReenteringFramework>();
    mBridge->setCallback(framework);
    framework->mBridge = ops();
    camera3_notify_msg shutter{CAMERA3_MSG_SHUTTER, {.shutter = {1, 2, 3}}};
    ops()->notify(ops(), &shutter);
    EXPECT_THAT(framework->notifications(),
                ElementsAre(Callback::NotifyMsg(ErrorMsg{9, -1, ErrorCode::ERROR_BUFFER}),
                            Callback::NotifyMsg(ShutterMsg{1, 2, 3})));
}

using ResultDeathTest = ResultTest;

// A stream outside the configuration has no count: the process ends in place, as at() does
// without exceptions.
TEST_F(ResultDeathTest, BrokenResultsAndAMissingFrameworkEndTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char* ids[] = {"2", nullptr};
    const camera_metadata_t* physicalMetadata[] = {nullptr, nullptr};
    EXPECT_DEATH(send({1, nullptr, 0, nullptr, nullptr, 1, 2, ids, physicalMetadata}),
                 "::convertCaptureResult\\] Invalid physical camera id");

    DeviceBuffer buffer(41);
    Camera3Stream unconfigured;
    unconfigured.id = 6;
    mBridge->pushBufferId(buffer.key(), 1, 6);
    camera3_stream_buffer output{&unconfigured.stream, buffer.pointer(), 0, -1, -1};
    EXPECT_DEATH(send({1, nullptr, 1, &output, nullptr, 0, 0, nullptr, nullptr}),
                 "unordered_map::at: key not found");

    mBridge->setCallback(nullptr);
    camera3_notify_msg msg{};
    EXPECT_DEATH(send({}), "::processCaptureResult\\] CameraDeviceCallback is null");
    EXPECT_DEATH(ops()->notify(ops(), &msg), "::notify\\] CameraDeviceCallback is null");
}

}  // namespace
}  // namespace kovo::aidl2legacy
