// The scenarios end to end against LoopbackDevice, a device double that answers each request at
// once: what the harness sends (handles once, settings through the queue, batches, flushes,
// buffer cache removals) and what it reports when the device breaks a rule.

#include <gtest/gtest.h>
#include <system/graphics.h>

#include <algorithm>
#include <set>

#include "LoopbackDevice.h"
#include "SessionDriver.h"

namespace camera_harness {
namespace {

using testing::LoopbackDevice;
using testing::LoopbackFault;

constexpr int32_t kFrames = 12;
const StreamDescription kPreview{320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888, ""};
const StreamDescription kPhysical{176, 144, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, "2"};

CameraInfo loopbackCamera() {
    CameraInfo camera;
    camera.partialResultCount = 1;
    camera.physicalCameraIds = {"2", "3"};
    camera.outputs = {{HAL_PIXEL_FORMAT_YCBCR_420_888, 320, 240, 0},
                      {HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, 176, 144, 0},
                      {HAL_PIXEL_FORMAT_YCBCR_420_888, 176, 144, 0}};
    camera.fpsRanges = {{30, 30}};
    return camera;
}

struct LoopbackRun {
    std::shared_ptr<LoopbackDevice> device;
    std::shared_ptr<FrameworkState> state;
    RunOutcome outcome;

    std::set<std::string> rulesBroken() const {
        std::set<std::string> rules;
        for (const auto& violation : state->violations()) rules.insert(ruleName(violation.rule));
        return rules;
    }
    std::string firstViolation() const {
        auto violations = state->violations();
        return violations.empty() ? "" : toString(violations.front());
    }
};

LoopbackRun run(Scenario scenario, int32_t batch = 1, LoopbackFault fault = {},
                bool secondSession = false) {
    const CameraInfo camera = loopbackCamera();
    RunPlan plan;
    plan.scenario = scenario;
    plan.frames = kFrames;
    plan.batch = batch;
    plan.streams = {kPreview, kPhysical};
    plan.checkPatterns = true;
    plan.secondSession = secondSession;
    LoopbackRun result;
    result.device = ndk::SharedRefBase::make<LoopbackDevice>(fault);
    result.state = std::make_shared<FrameworkState>(camera.partialResultCount, false,
                                                    BufferLayout::kSingleFd, true);
    SessionDriver driver(result.device, camera, plan, result.state, nullptr);
    result.outcome = driver.run();
    return result;
}

TEST(SessionDriverTest, BasicRunKeepsEveryRuleAndSendsEachHandleOnce) {
    LoopbackRun basic = run(Scenario::kBasic);
    EXPECT_TRUE(basic.rulesBroken().empty()) << basic.firstViolation();
    const StateSnapshot snapshot = basic.state->snapshot();
    EXPECT_EQ(snapshot.protocol.requestsCompleted, kFrames);
    EXPECT_EQ(snapshot.protocol.patternsChecked, 2 * kFrames);
    // The device answers at once, so one buffer per stream goes round.
    EXPECT_EQ(basic.device->record().handlesReceived, 2u);
    EXPECT_EQ(basic.device->record().unknownBuffers, 0u);
    // Settings with frames 0, 4 and 8; both physical cameras' with every odd frame.
    EXPECT_EQ(snapshot.transport.settingsQueued, 3 + 2 * kFrames / 2);
    EXPECT_EQ(basic.device->record().settingsRead, 3u + 2 * kFrames / 2);
    EXPECT_EQ(snapshot.transport.resultMetadataQueued, kFrames);
    // Physical metadata inline: camera 2 (a stream) with every frame, camera 3 with odd ones.
    EXPECT_EQ(snapshot.transport.resultMetadataInline, kFrames + kFrames / 2);
    // At the end the framework makes the device forget every buffer.
    EXPECT_EQ(basic.device->record().cachesRemoved.size(), 2u);
    EXPECT_EQ(basic.device->record().buffersCachedAtClose, 0u);
    EXPECT_EQ(basic.outcome.fdsAfter, basic.outcome.fdsBefore);
}

TEST(SessionDriverTest, BurstSendsBatchesOfRequests) {
    LoopbackRun burst = run(Scenario::kBurst, 4);
    EXPECT_TRUE(burst.rulesBroken().empty()) << burst.firstViolation();
    EXPECT_EQ(burst.device->record().batchSizes, (std::vector<size_t>{4, 4, 4, 0}));
}

TEST(SessionDriverTest, FlushScenarioFlushesUnderWay) {
    LoopbackRun flush = run(Scenario::kFlush);
    EXPECT_TRUE(flush.rulesBroken().empty()) << flush.firstViolation();
    EXPECT_EQ(flush.device->record().flushes, 4);
    EXPECT_EQ(flush.outcome.flushes, 4);
}

TEST(SessionDriverTest, ReconfigurationMakesTheDeviceForgetDroppedBuffers) {
    LoopbackRun reconfigure = run(Scenario::kReconfigure);
    EXPECT_TRUE(reconfigure.rulesBroken().empty()) << reconfigure.firstViolation();
    const auto& record = reconfigure.device->record();
    EXPECT_EQ(record.configurations, 2);
    ASSERT_EQ(reconfigure.outcome.streams.size(), 4u);
    // The physical stream went, a smaller preview stream came, the first stream kept its id.
    EXPECT_EQ(reconfigure.outcome.streams[2].streamId, 0);
    EXPECT_EQ(reconfigure.outcome.streams[3].streamId, 2);
    EXPECT_EQ(reconfigure.outcome.streams[3].description,
              (StreamDescription{176, 144, HAL_PIXEL_FORMAT_YCBCR_420_888, ""}));
    // Removed with the first request after the reconfiguration: the dropped stream's buffer and
    // the kept stream's freed one.
    std::set<std::pair<int32_t, int64_t>> removed(record.cachesRemoved.begin(),
                                                  record.cachesRemoved.begin() + 2);
    EXPECT_EQ(removed, (std::set<std::pair<int32_t, int64_t>>{{0, 1}, {1, 2}}));
    // The kept stream needed a new buffer; the new stream its first.
    EXPECT_EQ(record.handlesReceived, 4u);
    EXPECT_EQ(record.unknownBuffers, 0u);
    EXPECT_EQ(record.buffersCachedAtClose, 0u);
}

struct DeviceFault {
    const char* name;
    LoopbackFault fault;
    const char* rule;
    const char* violation;
};

class DeviceFaultTest : public ::testing::TestWithParam<DeviceFault> {};

TEST_P(DeviceFaultTest, IsReportedAsTheRuleItBreaks) {
    LoopbackRun faulty = run(Scenario::kBasic, 1, GetParam().fault);
    EXPECT_EQ(faulty.rulesBroken(), std::set<std::string>{GetParam().rule});
    EXPECT_EQ(faulty.firstViolation(), GetParam().violation);
}

INSTANTIATE_TEST_SUITE_P(
        Faults, DeviceFaultTest,
        ::testing::Values(
                DeviceFault{"WrongBufferId",
                            {LoopbackFault::kWrongBufferId, 3},
                            "buffer-id",
                            "frame 3: buffer of stream 0 came back as id 101, sent as id 1 "
                            "(rule: buffer-id, adapter)"},
                DeviceFault{"NoShutter",
                            {LoopbackFault::kNoShutter, 3},
                            "shutter-once",
                            "frame 3: no shutter (rule: shutter-once, module)"},
                DeviceFault{"RejectedRequest",
                            {LoopbackFault::kRejectRequest, 3},
                            "request-accepted",
                            "frame 3: processCaptureRequest failed: Status(-8, "
                            "EX_SERVICE_SPECIFIC): '3: ' (rule: request-accepted, module)"}),
        [](const ::testing::TestParamInfo<DeviceFault>& info) { return info.param.name; });

struct SessionFds {
    const char* name;
    LoopbackFault::Kind kind;
    bool leak;
};

class SessionFdTest : public ::testing::TestWithParam<SessionFds> {};

// What a module makes once stays after the first session; only growth per session is a leak.
TEST_P(SessionFdTest, GrowthPerSessionIsALeakAndAOneTimeFdIsNot) {
    LoopbackRun basic = run(Scenario::kBasic, 1, {GetParam().kind, -1}, true);
    EXPECT_TRUE(basic.outcome.secondSession);
    EXPECT_EQ(basic.rulesBroken().count("fd-leak"), GetParam().leak ? 1u : 0u)
            << basic.firstViolation();
    EXPECT_EQ(basic.rulesBroken().size(), GetParam().leak ? 1u : 0u) << basic.firstViolation();
}

INSTANTIATE_TEST_SUITE_P(Fds, SessionFdTest,
                         ::testing::Values(SessionFds{"None", LoopbackFault::kNone, false},
                                           SessionFds{"OneTime", LoopbackFault::kOneTimeFd, false},
                                           SessionFds{"PerSession", LoopbackFault::kFdPerSession,
                                                      true}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(SessionDriverTest, LifecycleReportsTheRefusedSecondOpenAndEveryTemplate) {
    LoopbackRun lifecycle = run(Scenario::kLifecycle, 1, {}, true);
    EXPECT_TRUE(lifecycle.rulesBroken().empty()) << lifecycle.firstViolation();
    EXPECT_EQ(lifecycle.outcome.secondOpen, "refused: CAMERA_IN_USE");
    EXPECT_EQ(lifecycle.outcome.templatesSupported.size(), 6u);
    EXPECT_EQ(lifecycle.state->snapshot().protocol.requestsCompleted, kFrames + 4);
}

TEST(SessionDriverTest, LifecycleLivesToReportASecondOpenThatCrashes) {
    LoopbackRun lifecycle = run(Scenario::kLifecycle, 1, {LoopbackFault::kCrashOnSecondOpen, -1});
    EXPECT_EQ(lifecycle.rulesBroken(), std::set<std::string>{"second-open"});
    EXPECT_EQ(lifecycle.outcome.secondOpen, "crashed");
    EXPECT_EQ(lifecycle.state->snapshot().protocol.requestsCompleted, kFrames);
}

TEST(SessionDriverTest, LifecycleCatchesCallsThatReachAClosedDevice) {
    LoopbackRun lifecycle = run(Scenario::kLifecycle, 1, {LoopbackFault::kReachesAfterClose, -1});
    EXPECT_EQ(lifecycle.rulesBroken(), std::set<std::string>{"call-after-close"});
    size_t reached = 0;
    for (const auto& violation : lifecycle.state->violations()) {
        reached += violation.rule == Rule::kCallAfterClose ? 1 : 0;
    }
    EXPECT_EQ(reached, 3u) << "flush, the template and the second close";
}

}  // namespace
}  // namespace camera_harness
