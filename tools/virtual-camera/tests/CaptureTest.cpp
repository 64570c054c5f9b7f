#include <errno.h>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <system/graphics.h>
#include <unistd.h>

#include <functional>

#include "VirtualCameraFixture.h"

namespace virtual_camera::testing {
namespace {

constexpr int64_t k960Fps = 1000000000 / 960;
constexpr int64_t k30Fps = 33333333;

using CaptureTest = VirtualCameraTest;

TEST_F(CaptureTest, EveryFrameCompletesInOrderWithPatternAndReadyFences) {
    int fdsBefore = -1;
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(320, 240, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, "2");
    fdsBefore = openFdCount();
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);

    constexpr uint32_t kFrames = 60;
    Metadata settings = previewSettings(k960Fps);
    Metadata physicalSettings = previewSettings(k960Fps);
    for (uint32_t frame = 1; frame <= kFrames; ++frame) {
        // Settings only in the first request: the others repeat them.
        ASSERT_EQ(submit(frame, frame == 1 ? settings.get() : nullptr, false,
                         {{"3", physicalSettings.get()}}),
                  0);
    }
    ASSERT_TRUE(mRecorder.waitForBuffers(2 * kFrames));
    closeCamera();

    auto frames = mRecorder.frames();
    EXPECT_EQ(frames.size(), kFrames);
    expectProtocolKept(frames, 1, kFrames, 2, {"2", "3"});
    EXPECT_GE(frames[2].shutterTimestamp - frames[1].shutterTimestamp,
              static_cast<uint64_t>(k960Fps));
    // Acquire fences, release fences and mappings are all gone again.
    EXPECT_EQ(openFdCount(), fdsBefore);
}

TEST_F(CaptureTest, FramesArePacedByTheRequestedFrameDuration) {
    addStream(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    // 640x480 cannot go faster than 240 fps, so the shorter request is stretched.
    Metadata tooFast = previewSettings(k960Fps);
    Metadata slower = previewSettings(10000000);
    ASSERT_EQ(submit(1, tooFast.get()), 0);
    ASSERT_EQ(submit(2, nullptr), 0);
    ASSERT_EQ(submit(3, slower.get()), 0);
    ASSERT_EQ(submit(4, nullptr), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(4));
    auto frames = mRecorder.frames();
    expectProtocolKept(frames, 1, 4, 1);
    EXPECT_GE(frames[2].shutterTimestamp - frames[1].shutterTimestamp, 4166666u);
    EXPECT_GE(frames[4].shutterTimestamp - frames[3].shutterTimestamp, 10000000u);
}

struct BadRequest {
    const char* name;
    std::function<void(camera3_capture_request_t&, camera3_stream_buffer_t*)> spoil;
};

class RequestValidationTest : public VirtualCameraTest,
                              public ::testing::WithParamInterface<BadRequest> {};

// A rejected request stays the caller's: no result, no notify, fences untouched.
TEST_P(RequestValidationTest, RejectsWithoutTakingAnything) {
    camera3_stream_t* stream = addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    Metadata settings = previewSettings(k30Fps);
    ASSERT_EQ(submit(5, settings.get()), 0);

    HostBuffer* buffer = nullptr;
    std::unique_ptr<HostBuffer> owned = HostBuffer::allocate(320 * 240 * 3 / 2);
    buffer = owned.get();
    camera3_stream_t unconfigured = *stream;
    camera3_stream_buffer_t outputs[2] = {
            {stream, buffer->handlePointer(), CAMERA3_BUFFER_STATUS_OK, eventfd(0, EFD_CLOEXEC), -1},
            {&unconfigured, buffer->handlePointer(), CAMERA3_BUFFER_STATUS_OK, -1, -1}};
    camera3_capture_request_t request{};
    request.frame_number = 6;
    request.settings = settings.get();
    request.num_output_buffers = 1;
    request.output_buffers = outputs;
    GetParam().spoil(request, outputs);

    EXPECT_EQ(mDevice->ops->process_capture_request(mDevice, &request), -EINVAL);
    EXPECT_NE(fcntl(outputs[0].acquire_fence, F_GETFD), -1) << "acquire fence was closed";
    close(outputs[0].acquire_fence);
    ASSERT_TRUE(mRecorder.waitForBuffers(1));
    closeCamera();
    auto frames = mRecorder.frames();
    EXPECT_EQ(frames.count(request.frame_number), 0u);
    expectProtocolKept(frames, 5, 5, 1);
}

const camera_metadata_t* sEmptyMetadata = allocate_camera_metadata(0, 0);
const char* sUnknownPhysical[] = {"1"};
const char* sKnownPhysical[] = {"2"};

INSTANTIATE_TEST_SUITE_P(
        Table, RequestValidationTest,
        ::testing::Values(BadRequest{"FrameNumberNotIncreasing",
                                     [](auto& request, auto*) { request.frame_number = 4; }},
                          BadRequest{"NoOutputBuffers",
                                     [](auto& request, auto*) { request.num_output_buffers = 0; }},
                          BadRequest{"UnconfiguredStream",
                                     [](auto& request, auto*) { request.num_output_buffers = 2; }},
                          BadRequest{"SameStreamTwice",
                                     [](auto& request, auto* outputs) {
                                         outputs[1].stream = outputs[0].stream;
                                         request.num_output_buffers = 2;
                                     }},
                          BadRequest{"NullHandle",
                                     [](auto&, auto* outputs) {
                                         static buffer_handle_t sNull = nullptr;
                                         outputs[0].buffer = &sNull;
                                     }},
                          BadRequest{"ReprocessInput",
                                     [](auto& request, auto* outputs) {
                                         request.input_buffer = &outputs[1];
                                     }},
                          BadRequest{"UnknownPhysicalCamera",
                                     [](auto& request, auto*) {
                                         request.num_physcam_settings = 1;
                                         request.physcam_id = sUnknownPhysical;
                                         request.physcam_settings = &request.settings;
                                     }},
                          BadRequest{"EmptyPhysicalSettings",
                                     [](auto& request, auto*) {
                                         request.num_physcam_settings = 1;
                                         request.physcam_id = sKnownPhysical;
                                         request.physcam_settings = &sEmptyMetadata;
                                     }}),
        [](const auto& info) { return std::string(info.param.name); });

TEST_F(CaptureTest, FirstRequestAfterConfigureNeedsSettings) {
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(submit(1, nullptr), -EINVAL);
    Metadata settings = previewSettings(k30Fps);
    ASSERT_EQ(submit(2, settings.get()), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(1));
    ASSERT_EQ(configure(), 0);
    EXPECT_EQ(submit(3, nullptr), -EINVAL);
}

TEST_F(CaptureTest, FlushCompletesEveryPendingRequestWithConsistentErrors) {
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    // At 10 fps the queued frames are still waiting when the flush comes.
    Metadata settings = previewSettings(100000000);
    constexpr uint32_t kFrames = 8;
    for (uint32_t frame = 1; frame <= kFrames; ++frame) {
        ASSERT_EQ(submit(frame, frame == 1 ? settings.get() : nullptr), 0);
    }
    ASSERT_EQ(mDevice->ops->flush(mDevice), 0);

    // Everything came back before flush returned.
    auto frames = mRecorder.frames();
    expectProtocolKept(frames, 1, kFrames, 2);
    EXPECT_GT(frames[kFrames].count(CAMERA3_MSG_ERROR_REQUEST), 0);

    // The device keeps working after a flush.
    ASSERT_EQ(submit(kFrames + 1, previewSettings(k30Fps).get()), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(2 * (kFrames + 1)));
    expectProtocolKept(mRecorder.frames(), kFrames + 1, kFrames + 1, 2);
    EXPECT_EQ(mRecorder.frames()[kFrames + 1].errors.size(), 0u);
}

TEST_F(CaptureTest, CloseWithRequestsInFlightReturnsThemBeforeItReturns) {
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    Metadata settings = previewSettings(100000000);
    for (uint32_t frame = 1; frame <= 4; ++frame) {
        ASSERT_EQ(submit(frame, frame == 1 ? settings.get() : nullptr), 0);
    }
    closeCamera();
    expectProtocolKept(mRecorder.frames(), 1, 4, 1);
}

TEST_F(CaptureTest, HalBufferManagerAsksForBuffersAndGivesBackTheUnused) {
    useOptions("hbm=1");
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(176, 144, HAL_PIXEL_FORMAT_YCBCR_420_888);
    int fdsBefore = openFdCount();
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    constexpr uint32_t kFrames = 30;
    Metadata settings = previewSettings(k960Fps);
    for (uint32_t frame = 1; frame <= kFrames; ++frame) {
        ASSERT_EQ(submit(frame, frame == 1 ? settings.get() : nullptr, true), 0);
        if (frame == kFrames / 2) {
            const camera3_stream_t* streams[] = {&mStreams[0]};
            mDevice->ops->signal_stream_flush(mDevice, 1, streams);
        }
    }
    ASSERT_TRUE(mRecorder.waitForBuffers(2 * kFrames));
    ASSERT_EQ(mDevice->ops->flush(mDevice), 0);
    closeCamera();
    expectProtocolKept(mRecorder.frames(), 1, kFrames, 2);
    // Every buffer handed out came back exactly once, in a result or returned unused.
    for (const StreamBuffers& buffers : mBuffers) EXPECT_EQ(buffers.outstanding(), 0u);
    EXPECT_EQ(openFdCount(), fdsBefore);
}

TEST_F(CaptureTest, HalBufferManagerReturnsSparesWhenNothingIsQueued) {
    useOptions("hbm=1");
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(176, 144, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(submit(1, previewSettings(k30Fps).get(), true), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(2));
    // The spare of each stream went back before the result that ended the work.
    EXPECT_EQ(mRecorder.returnedThroughBufferManager(), 2u);
    for (const StreamBuffers& buffers : mBuffers) EXPECT_EQ(buffers.outstanding(), 0u);
}

struct BufferShortage {
    const char* name;
    camera3_buffer_request_status_t status;
    bool failFirstStreamOnly;
    camera3_stream_buffer_req_status_t streamStatus;
    int expectedError;
};

class BufferShortageTest : public VirtualCameraTest,
                           public ::testing::WithParamInterface<BufferShortage> {};

TEST_P(BufferShortageTest, BecomesTheMatchingCaptureError) {
    const BufferShortage& shortage = GetParam();
    useOptions("hbm=1");
    camera3_stream_t* first = addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(176, 144, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    mRecorder.failBufferRequests(shortage.status, shortage.failFirstStreamOnly ? first : nullptr,
                                 shortage.streamStatus);
    ASSERT_EQ(submit(1, previewSettings(k30Fps).get(), true), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(2));
    closeCamera();

    auto frames = mRecorder.frames();
    expectProtocolKept(frames, 1, 1, 2);
    ASSERT_EQ(frames[1].errors.size(), 1u);
    EXPECT_EQ(frames[1].errors[0].first, shortage.expectedError);
    for (const StreamBuffers& buffers : mBuffers) EXPECT_EQ(buffers.outstanding(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
        Statuses, BufferShortageTest,
        ::testing::Values(
                BufferShortage{"Configuring", CAMERA3_BUF_REQ_FAILED_CONFIGURING, false,
                               CAMERA3_PS_BUF_REQ_OK, CAMERA3_MSG_ERROR_REQUEST},
                BufferShortage{"IllegalArguments", CAMERA3_BUF_REQ_FAILED_ILLEGAL_ARGUMENTS, false,
                               CAMERA3_PS_BUF_REQ_OK, CAMERA3_MSG_ERROR_REQUEST},
                BufferShortage{"Unknown", CAMERA3_BUF_REQ_FAILED_UNKNOWN, false,
                               CAMERA3_PS_BUF_REQ_OK, CAMERA3_MSG_ERROR_REQUEST},
                BufferShortage{"NoBufferForOneStream", CAMERA3_BUF_REQ_OK, true,
                               CAMERA3_PS_BUF_REQ_NO_BUFFER_AVAILABLE, CAMERA3_MSG_ERROR_BUFFER},
                BufferShortage{"OneStreamDisconnected", CAMERA3_BUF_REQ_OK, true,
                               CAMERA3_PS_BUF_REQ_STREAM_DISCONNECTED, CAMERA3_MSG_ERROR_BUFFER}),
        [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace virtual_camera::testing
