#include <errno.h>
#include <system/graphics.h>

#include "VirtualCameraFixture.h"

namespace virtual_camera::testing {
namespace {

constexpr uint32_t kFrames = 5;
constexpr uint32_t kFaultyFrame = 3;

struct InjectedFault {
    const char* name;
    const char* options;
    // Notifications the faulty frame gets, in order (besides its shutter).
    std::vector<int> errors;
    bool firstBufferDropped;
    bool finalMetadata;
};

class FaultTest : public VirtualCameraTest, public ::testing::WithParamInterface<InjectedFault> {};

TEST_P(FaultTest, FollowsTheErrorProtocolAndSparesTheOtherFrames) {
    const InjectedFault& fault = GetParam();
    useOptions(fault.options);
    camera3_stream_t* first = addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    addStream(640, 480, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    Metadata settings = previewSettings(10000000);
    for (uint32_t frame = 1; frame <= kFrames; ++frame) {
        ASSERT_EQ(submit(frame, frame == 1 ? settings.get() : nullptr), 0) << frame;
    }
    ASSERT_TRUE(mRecorder.waitForBuffers(2 * kFrames));
    closeCamera();

    auto frames = mRecorder.frames();
    expectProtocolKept(frames, 1, kFrames, 2);
    for (uint32_t frame = 1; frame <= kFrames; ++frame) {
        const FrameRecord& record = frames[frame];
        std::vector<int> codes;
        for (const auto& [code, stream] : record.errors) {
            codes.push_back(code);
            EXPECT_EQ(stream, code == CAMERA3_MSG_ERROR_BUFFER ? first : nullptr);
        }
        bool faulty = frame == kFaultyFrame;
        EXPECT_EQ(codes, faulty ? fault.errors : std::vector<int>{}) << "frame " << frame;
        EXPECT_EQ(record.finalTimestamp.has_value(), !faulty || fault.finalMetadata);
        EXPECT_EQ(record.buffers[0].status == CAMERA3_BUFFER_STATUS_ERROR,
                  faulty && fault.firstBufferDropped);
    }
}

INSTANTIATE_TEST_SUITE_P(
        Options, FaultTest,
        ::testing::Values(
                InjectedFault{
                        "FailRequest", "fail_request=3", {CAMERA3_MSG_ERROR_REQUEST}, true, false},
                InjectedFault{"FailBuffer", "fail_buffer=3", {CAMERA3_MSG_ERROR_BUFFER}, true, true},
                InjectedFault{
                        "FailResult", "fail_result=3", {CAMERA3_MSG_ERROR_RESULT}, false, false}),
        [](const auto& info) { return std::string(info.param.name); });

TEST_F(VirtualCameraTest, RejectRequestOptionRefusesThatFrameOnly) {
    useOptions("reject_request=2,fail_buffer=9,fail_buffer=4");
    addStream(320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888);
    ASSERT_NE(openCamera(), nullptr);
    ASSERT_EQ(configure(), 0);
    Metadata settings = previewSettings(10000000);
    EXPECT_EQ(submit(1, settings.get()), 0);
    EXPECT_EQ(submit(2, nullptr), -EINVAL);
    EXPECT_EQ(submit(3, nullptr), 0);
    EXPECT_EQ(submit(4, nullptr), 0);
    ASSERT_TRUE(mRecorder.waitForBuffers(3));
    closeCamera();
    auto frames = mRecorder.frames();
    EXPECT_EQ(frames.count(2), 0u);
    expectProtocolKept(frames, 3, 4, 1);
    EXPECT_EQ(frames[4].count(CAMERA3_MSG_ERROR_BUFFER), 1);
}

}  // namespace
}  // namespace virtual_camera::testing
