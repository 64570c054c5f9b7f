#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "CallbackTestSupport.h"
#include "OpenFds.h"

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

constexpr char kResultLog[] = "[3-aidl2legacy-callback::convertCaptureResult] ";

ndk::ScopedAStatus failure() {
    return ndk::ScopedAStatus::fromServiceSpecificErrorWithMessage(10, "dead framework");
}

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
    std::vector<std::string> summaries() {
        std::vector<std::string> texts;
        for (const std::string& text : logsStartingWith(kResultLog)) {
            texts.push_back(text.substr(sizeof(kResultLog) - 1));
        }
        return texts;
    }
};

// The whole result: metadata read back from the queue in the framework's order, an inline
// physical entry for null metadata, the input buffer's raw handle address, popped output ids,
// adopted fences and the summary line.
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
    camera3_capture_result result{7,   metadata.get(),  2, outputs, &inputBuffer, 2, 2,
                                  ids, physicalMetadata};
    send(result);

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
    EXPECT_EQ(9, got.outputBuffers[1].streamId);
    EXPECT_EQ(0, got.outputBuffers[1].bufferId);
    EXPECT_EQ(Framework::BufferStatus::ERROR, got.outputBuffers[1].status);
    EXPECT_THAT(got.outputBuffers[1].releaseFenceFds, IsEmpty());

    // Only the buffer with a known id gives credit back.
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 5u), Pair(9, 2u)));
    EXPECT_THAT(summaries(),
                ElementsAre("frameNumber:7 partialResult:2 phyResultCamId:cam2,cam3, " +
                            got.inputBuffer.text + ", " + got.outputBuffers[0].text + ", " +
                            got.outputBuffers[1].text + ", "));
}

TEST_F(ResultTest, MetadataOnlyResultCarriesNoBuffers) {
    MetadataPtr metadata = makeMetadata(1);
    camera3_capture_result result{};
    result.frame_number = 3;
    result.result = metadata.get();
    result.partial_result = 1;
    send(result);

    std::vector<Framework::RecordedResult> received = mFramework->results();
    ASSERT_EQ(1u, received.size());
    EXPECT_EQ(-1, received[0].inputBuffer.streamId);
    EXPECT_THAT(received[0].outputBuffers, IsEmpty());
    EXPECT_THAT(received[0].physicalMetadata, IsEmpty());
    EXPECT_EQ(bytesOf(metadata.get()), received[0].metadata.bytes);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    EXPECT_THAT(summaries(), ElementsAre("frameNumber:3 partialResult:1 phyResultCamId: "));
}

// Here the queue is read by the test, after the framework's unread data filled it up.
TEST_F(ResultTest, PhysicalMetadataThatNoLongerFitsGoesInlineAfterTheResultWentToTheQueue) {
    auto framework = ndk::SharedRefBase::make<Framework>();
    mBridge->setCallback(framework);
    Callback::ResultQueueDescriptor descriptor;
    mBridge->getCaptureResultMetadataQueue(&descriptor);
    Callback::ResultMetadataQueue reader(descriptor);
    MetadataPtr metadata = makeMetadata(1);
    MetadataPtr physical = makeMetadata(2, 200);
    const size_t resultSize = get_camera_metadata_size(metadata.get());
    std::vector<int8_t> filler(Callback::kResultQueueSize - resultSize - 100);
    {
        Callback::ResultMetadataQueue writer(descriptor);
        ASSERT_TRUE(writer.write(filler.data(), filler.size()));
    }
    const char* ids[] = {"2"};
    const camera_metadata_t* physicalMetadata[] = {physical.get()};
    camera3_capture_result result{1,   metadata.get(),  0, nullptr, nullptr, 1, 1,
                                  ids, physicalMetadata};
    send(result);

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

TEST_F(ResultTest, EachBufferOfAStreamGivesOneCreditAndWakesWaiters) {
    startBridge(3);
    configure({{5, 0}});
    DeviceBuffer first(41), second(42);
    mBridge->pushBufferId(first.key(), 1, 5);
    mBridge->pushBufferId(second.key(), 2, 5);
    // A buffer request blocked on stream 5's empty count.
    std::thread waiter([&] {
        camera3_buffer_request request{stream(5), 2};
        camera3_stream_buffer_ret ret{};
        uint32_t returned = 0;
        ops()->request_stream_buffers(ops(), 1, &request, &returned, &ret);
    });
    // Not an assertion: only gives the waiter time to block, so that the result wakes it.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    camera3_stream_buffer outputs[] = {deviceBuffer(5, first), deviceBuffer(5, second)};
    camera3_capture_result result{1, nullptr, 2, outputs, nullptr, 0, 0, nullptr, nullptr};
    send(result);
    waiter.join();

    EXPECT_THAT(counts(), ElementsAre(Pair(5, 2u)));
    EXPECT_THAT(logsStartingWith("[3-aidl2legacy-callback::processCaptureResult] Valid"),
                ElementsAre("[3-aidl2legacy-callback::processCaptureResult] ValidBufferSizeMap "
                            "streamId:5 size:1",
                            "[3-aidl2legacy-callback::processCaptureResult] ValidBufferSizeMap "
                            "streamId:5 size:2"));
    EXPECT_THAT(logsStartingWith("[3-aidl2legacy-callback::requestStreamBuffers] Wait"), IsEmpty());
    EXPECT_EQ(1u, mFramework->bufferRequests().size());
}

TEST_F(ResultTest, FailedDeliveryKeepsTheCreditButSpendsIdsAndFences) {
    mFramework->setProcessCaptureResultStatus(failure);
    DeviceBuffer buffer(41);
    mBridge->pushBufferId(buffer.key(), 1, 5);
    const size_t openFds = testing::countOpenFds();
    camera3_stream_buffer output = deviceBuffer(5, buffer, makeFence());
    camera3_capture_result result{1, nullptr, 1, &output, nullptr, 0, 0, nullptr, nullptr};
    send(result);

    EXPECT_EQ(1, mFramework->results()[0].outputBuffers[0].bufferId);
    EXPECT_EQ(openFds, testing::countOpenFds());
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(5, 4u), Pair(9, 2u)));
    EXPECT_EQ(0u, mBridge->popBufferId(buffer.key(), 5));
    EXPECT_TRUE(
            logged("[3-aidl2legacy-callback::processCaptureResult] processCaptureResult "
                   "transaction failed: dead framework."));
}

TEST_F(ResultTest, NullResultSendsNothing) {
    ops()->process_capture_result(ops(), nullptr);
    EXPECT_THAT(mFramework->results(), IsEmpty());
    EXPECT_THAT(logTexts(), ElementsAre("[3-aidl2legacy-callback::processCaptureResult] "
                                        "camera3_capture_result invalid"));
}

struct NotifyCase {
    const char* name;
    int type;
    camera3_shutter_msg shutter;
    camera3_error_msg error;
    bool withStream;
    Callback::NotifyMsg expected;
};

class NotifyTest : public testing::BridgeTest, public ::testing::WithParamInterface<NotifyCase> {};

// Error messages read the stream id from the stream record: the bridge's stream map is empty.
TEST_P(NotifyTest, OneMessageReachesTheFramework) {
    const NotifyCase& c = GetParam();
    Camera3Stream errorStream;
    errorStream.id = 11;
    camera3_notify_msg msg{};
    msg.type = c.type;
    if (c.type == CAMERA3_MSG_SHUTTER) msg.message.shutter = c.shutter;
    if (c.type == CAMERA3_MSG_ERROR) {
        msg.message.error = c.error;
        if (c.withStream) msg.message.error.error_stream = &errorStream.stream;
    }
    ops()->notify(ops(), &msg);
    EXPECT_THAT(mFramework->notifications(), ElementsAre(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Messages, NotifyTest,
                         ::testing::Values(NotifyCase{"Shutter",
                                                      CAMERA3_MSG_SHUTTER,
                                                      {12, 1000, 1500},
                                                      {},
                                                      false,
                                                      ShutterMsg{12, 1000, 1500}},
                                           NotifyCase{"ShutterWithoutReadout",
                                                      CAMERA3_MSG_SHUTTER,
                                                      {12, 1000, 0},
                                                      {},
                                                      false,
                                                      ShutterMsg{12, 1000, 0}},
                                           NotifyCase{"RequestError",
                                                      CAMERA3_MSG_ERROR,
                                                      {},
                                                      {4, nullptr, 2},
                                                      false,
                                                      ErrorMsg{4, -1, ErrorCode::ERROR_REQUEST}},
                                           NotifyCase{"BufferError",
                                                      CAMERA3_MSG_ERROR,
                                                      {},
                                                      {4, nullptr, 4},
                                                      true,
                                                      ErrorMsg{4, 11, ErrorCode::ERROR_BUFFER}},
                                           NotifyCase{"UnknownErrorCode",
                                                      CAMERA3_MSG_ERROR,
                                                      {},
                                                      {4, nullptr, 7},
                                                      true,
                                                      ErrorMsg{4, 11, static_cast<ErrorCode>(7)}},
                                           NotifyCase{"UnknownType", 3, {}, {}, false, ErrorMsg{}}),
                         [](const auto& info) { return std::string(info.param.name); });

class NotifyLogTest : public testing::BridgeTest {};

TEST_F(NotifyLogTest, UnknownTypesAndFailuresAreLoggedAndTheTextShownFromLevelThree) {
    camera3_notify_msg unknown{};
    unknown.type = 0x1f;
    camera3_notify_msg shutter{};
    shutter.type = CAMERA3_MSG_SHUTTER;
    shutter.message.shutter = {1, 2, 3};
    mFramework->setNotifyStatus(failure);
    ops()->notify(ops(), &unknown);
    ops()->notify(ops(), &shutter);
    EXPECT_THAT(logTexts(), ElementsAre("[3-aidl2legacy-callback::convertNotifyMsg] Type converion "
                                        "failed. Unknown msg type 0x1f",
                                        "[3-aidl2legacy-callback::notify] notify transaction "
                                        "failed: dead framework.",
                                        "[3-aidl2legacy-callback::notify] notify transaction "
                                        "failed: dead framework."));

    startBridge(3);
    mFramework->setNotifyStatus(nullptr);
    ops()->notify(ops(), &shutter);
    ops()->notify(ops(), nullptr);
    EXPECT_THAT(logTexts(), ElementsAre("[3-aidl2legacy-callback::convertNotifyMsg] " +
                                                Callback::NotifyMsg(ShutterMsg{1, 2, 3}).toString(),
                                        "[3-aidl2legacy-callback::notify] camera3_notify_msg "
                                        "invalid"));
    EXPECT_EQ(3u, mFramework->notifications().size());
}

TEST_F(NotifyLogTest, ResultAndNotifyEachOpenAndCloseTheirTraceSection) {
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

using ResultDeathTest = ResultTest;

TEST_F(ResultDeathTest, BrokenResultsAndAMissingFrameworkEndTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const char* ids[] = {"2", nullptr};
    const camera_metadata_t* physicalMetadata[] = {nullptr, nullptr};
    camera3_capture_result nullId{1, nullptr, 0, nullptr, nullptr, 1, 2, ids, physicalMetadata};
    EXPECT_DEATH(send(nullId), "::convertCaptureResult\\] Invalid physical camera id");

    DeviceBuffer buffer(41);
    Camera3Stream unconfigured;
    unconfigured.id = 6;
    mBridge->pushBufferId(buffer.key(), 1, 6);
    camera3_stream_buffer output{&unconfigured.stream, buffer.pointer(), 0, -1, -1};
    camera3_capture_result strayStream{1, nullptr, 1, &output, nullptr, 0, 0, nullptr, nullptr};
    EXPECT_DEATH([&]() noexcept { send(strayStream); }(), "");

    mBridge->setCallback(nullptr);
    camera3_capture_result empty{};
    camera3_notify_msg msg{};
    EXPECT_DEATH(send(empty), "::processCaptureResult\\] CameraDeviceCallback is null");
    EXPECT_DEATH(ops()->notify(ops(), &msg), "::notify\\] CameraDeviceCallback is null");
}

}  // namespace
}  // namespace kovo::aidl2legacy
