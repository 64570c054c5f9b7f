#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

#include "ProtocolChecker.h"

namespace camera_harness {
namespace {

constexpr int32_t kPartialResultCount = 2;
constexpr int32_t kLogicalStream = 0;
constexpr int32_t kPhysicalStream = 1;
const std::string kPhysicalCamera = "2";

// A framework session over two streams, the second on physical camera 2, with helpers that
// play the device's side of a frame the way a correct device does.
class Session {
public:
    explicit Session(bool halBufferManager = false)
        : checker(kPartialResultCount, halBufferManager), halBufferManager(halBufferManager) {
        checker.configureStreams({{kLogicalStream, ""}, {kPhysicalStream, kPhysicalCamera}});
    }

    static int64_t bufferId(int32_t frame, int32_t stream) { return 1 + frame * 2 + stream; }
    static int64_t timestamp(int32_t frame) { return 1000000 + frame * 1000; }

    void submit(int32_t frame) {
        int64_t logical = halBufferManager ? 0 : bufferId(frame, kLogicalStream);
        int64_t physical = halBufferManager ? 0 : bufferId(frame, kPhysicalStream);
        checker.requestSubmitted(
                {frame, {{kLogicalStream, logical}, {kPhysicalStream, physical}}, {}}, Clock::now());
    }
    void shutter(int32_t frame) { checker.shutter(frame, timestamp(frame), Clock::now()); }
    void partial(int32_t frame) { result(metadata(frame, 1)); }
    void final(int32_t frame) { result(finalMetadata(frame)); }
    void buffers(int32_t frame, bool filled = true) {
        result(bufferResult(frame,
                            {buffer(kLogicalStream, filled), buffer(kPhysicalStream, filled)}));
    }
    void frame(int32_t frame) {
        submit(frame);
        shutter(frame);
        partial(frame);
        final(frame);
        buffers(frame);
    }

    static ResultReport metadata(int32_t frame, int32_t partial) {
        ResultReport report;
        report.frameNumber = frame;
        report.partialResult = partial;
        report.hasMetadata = true;
        return report;
    }
    static ResultReport bufferResult(int32_t frame, std::vector<ReturnedBuffer> buffers) {
        ResultReport report;
        report.frameNumber = frame;
        report.buffers = std::move(buffers);
        return report;
    }
    static ResultReport finalMetadata(int32_t frame) {
        ResultReport report = metadata(frame, kPartialResultCount);
        report.sensorTimestamp = timestamp(frame);
        report.physicalCameraIds = {kPhysicalCamera};
        return report;
    }
    static ReturnedBuffer buffer(int32_t stream, bool filled, int64_t id = 0) {
        return ReturnedBuffer{stream, id, filled, 0, true};
    }

    std::vector<int64_t> result(const ResultReport& report) {
        return checker.result(report, inspect, Clock::now());
    }

    std::set<std::string> rulesBroken() const {
        std::set<std::string> rules;
        for (const auto& violation : checker.violations()) rules.insert(ruleName(violation.rule));
        return rules;
    }

    ProtocolChecker checker;
    const bool halBufferManager;
    ProtocolChecker::BufferInspector inspect;
};

TEST(ProtocolCheckerTest, CorrectFramesBreakNoRuleAndComplete) {
    Session session;
    for (int32_t frame = 0; frame < 5; ++frame) session.frame(frame);
    session.checker.finish();
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
    EXPECT_EQ(session.checker.counters().requestsCompleted, 5);
    EXPECT_EQ(session.checker.counters().finalResults, 5);
    EXPECT_EQ(session.checker.counters().physicalMetadata, 5);
    EXPECT_EQ(session.checker.shutterLatency().count(), 5u);
}

TEST(ProtocolCheckerTest, ReturnedBuffersResolveToTheIdsTheRequestSent) {
    Session session;
    session.submit(3);
    std::vector<int64_t> back =
            session.result(Session::bufferResult(3, {Session::buffer(kPhysicalStream, false)}));
    EXPECT_EQ(back, std::vector<int64_t>{Session::bufferId(3, kPhysicalStream)});
}

TEST(ProtocolCheckerTest, RejectedRequestsGiveTheirBuffersBackAndAreNotAwaited) {
    Session session;
    session.submit(0);
    std::vector<int64_t> back = session.checker.requestsRejected({0});
    EXPECT_EQ(back, (std::vector<int64_t>{Session::bufferId(0, 0), Session::bufferId(0, 1)}));
    session.checker.finish();
    EXPECT_TRUE(session.checker.violations().empty());
}

TEST(ProtocolCheckerTest, ViolationsNameFrameAndRule) {
    Session session;
    session.submit(5);
    session.checker.error(5, -1, static_cast<int32_t>(NotifyError::kRequest));
    ASSERT_EQ(session.checker.violations().size(), 1u);
    EXPECT_EQ(toString(session.checker.violations()[0]),
              "frame 5: unexpected ERROR_REQUEST (rule: no-device-errors, module)");
}

struct Spacing {
    const char* name;
    int64_t minFrameDuration;
    int64_t gap;
    bool broken;
};

class ShutterSpacingTest : public ::testing::TestWithParam<Spacing> {};

// Shutters 1000 ns apart against a minimum frame duration, with its 10% tolerance.
TEST_P(ShutterSpacingTest, ShuttersComeNoCloserThanTheMinimumFrameDuration) {
    Session session;
    session.checker.configureStreams({{kLogicalStream, ""}, {kPhysicalStream, kPhysicalCamera}},
                                     GetParam().minFrameDuration);
    session.submit(0);
    session.submit(1);
    session.checker.shutter(0, 5000, Clock::now());
    session.checker.shutter(1, 5000 + GetParam().gap, Clock::now());
    EXPECT_EQ(session.rulesBroken().count("shutter-spacing"), GetParam().broken ? 1u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Gaps, ShutterSpacingTest,
                         ::testing::Values(Spacing{"NotJudged", 0, 1, false},
                                           Spacing{"AtTheMinimum", 1000, 1000, false},
                                           Spacing{"WithinTolerance", 1000, 900, false},
                                           Spacing{"BeyondTolerance", 1000, 899, true},
                                           Spacing{"Unpaced", 4166666, 700000, true}),
                         [](const auto& info) { return std::string(info.param.name); });

struct Readout {
    const char* name;
    ReadoutRule rule;
    int64_t readout;  // the shutter is at 5000
    const char* broken;
};

class ReadoutTest : public ::testing::TestWithParam<Readout> {};

TEST_P(ReadoutTest, ReadoutTimestampsAreJudgedAsTheCameraDeclaresThem) {
    Session session;
    session.checker.setReadoutRule(GetParam().rule);
    session.submit(0);
    session.checker.shutter(0, 5000, Clock::now(), GetParam().readout);
    std::set<std::string> expected;
    if (GetParam().broken != nullptr) expected.insert(GetParam().broken);
    EXPECT_EQ(session.rulesBroken(), expected);
}

INSTANTIATE_TEST_SUITE_P(
        Readouts, ReadoutTest,
        ::testing::Values(Readout{"AfterStart", ReadoutRule::kNotBeforeShutter, 6000, nullptr},
                          Readout{"AtStart", ReadoutRule::kNotBeforeShutter, 5000, nullptr},
                          Readout{"BeforeStart", ReadoutRule::kNotBeforeShutter, 4999,
                                  "readout-timestamp"},
                          Readout{"ZeroWhenNotJudged", ReadoutRule::kNotJudged, 0, nullptr},
                          Readout{"ZeroFromAModuleWithout", ReadoutRule::kZero, 0, nullptr},
                          Readout{"GarbageFromAModuleWithout", ReadoutRule::kZero, 0x0BADF00D,
                                  "readout-unsupported"}),
        [](const auto& info) { return std::string(info.param.name); });

TEST(ProtocolCheckerTest, ANewSessionStartsTheOrderAfresh) {
    Session session;
    session.frame(5);
    session.checker.newSession();
    session.frame(0);
    session.checker.finish();
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
}

struct Fault {
    const char* name;
    std::function<void(Session&)> play;
    const char* rule;
};

class ProtocolFaultTest : public ::testing::TestWithParam<Fault> {};

// Each fault breaks exactly its rule and no other.
TEST_P(ProtocolFaultTest, BreaksItsRuleOnly) {
    Session session(false);
    GetParam().play(session);
    session.checker.finish();
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{GetParam().rule});
}

constexpr int32_t kRequest = static_cast<int32_t>(NotifyError::kRequest);
constexpr int32_t kResult = static_cast<int32_t>(NotifyError::kResult);
constexpr int32_t kBuffer = static_cast<int32_t>(NotifyError::kBuffer);

INSTANTIATE_TEST_SUITE_P(
        Faults, ProtocolFaultTest,
        ::testing::Values(Fault{"WrongBufferId",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(kLogicalStream, true, 99),
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "buffer-id"},
                          Fault{"MissingShutter",
                                [](Session& s) {
                                    s.submit(0);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "shutter-once"},
                          Fault{"SecondShutter",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "shutter-once"},
                          Fault{"ShuttersOutOfFrameOrder",
                                [](Session& s) {
                                    s.submit(0);
                                    s.submit(1);
                                    s.checker.shutter(1, Session::timestamp(0), Clock::now());
                                    s.checker.shutter(0, Session::timestamp(1), Clock::now());
                                    ResultReport final0 = Session::finalMetadata(0);
                                    final0.sensorTimestamp = Session::timestamp(1);
                                    ResultReport final1 = Session::finalMetadata(1);
                                    final1.sensorTimestamp = Session::timestamp(0);
                                    s.result(final0);
                                    s.result(final1);
                                    s.buffers(0);
                                    s.buffers(1);
                                },
                                "shutter-order"},
                          Fault{"ShutterTimestampGoesBack",
                                [](Session& s) {
                                    s.frame(0);
                                    s.submit(1);
                                    s.checker.shutter(1, Session::timestamp(0), Clock::now());
                                    ResultReport final1 = Session::finalMetadata(1);
                                    final1.sensorTimestamp = Session::timestamp(0);
                                    s.result(final1);
                                    s.buffers(1);
                                },
                                "shutter-order"},
                          Fault{"ShutterAfterFilledBuffers",
                                [](Session& s) {
                                    s.submit(0);
                                    s.buffers(0);
                                    s.shutter(0);
                                    s.final(0);
                                },
                                "shutter-before-result"},
                          Fault{"FinalMetadataTwice",
                                [](Session& s) {
                                    s.frame(0);
                                    s.submit(1);
                                    s.shutter(1);
                                    s.final(1);
                                    s.final(1);
                                    s.buffers(1);
                                },
                                "final-metadata-once"},
                          Fault{"PartialIndexOutOfRange",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.result(Session::metadata(0, 3));
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "partial-result"},
                          Fault{"MetadataWithPartialZero",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.result(Session::metadata(0, 0));
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "partial-result"},
                          Fault{"SensorTimestampDiffers",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    ResultReport final = Session::finalMetadata(0);
                                    final.sensorTimestamp = 7;
                                    s.result(final);
                                    s.buffers(0);
                                },
                                "sensor-timestamp"},
                          Fault{"SensorTimestampMissing",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    ResultReport final = Session::finalMetadata(0);
                                    final.sensorTimestamp.reset();
                                    s.result(final);
                                    s.buffers(0);
                                },
                                "sensor-timestamp"},
                          Fault{"PhysicalMetadataMissing",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    ResultReport final = Session::finalMetadata(0);
                                    final.physicalCameraIds.clear();
                                    s.result(final);
                                    s.buffers(0);
                                },
                                "physical-metadata"},
                          Fault{"PhysicalMetadataInPartial",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    ResultReport partial = Session::metadata(0, 1);
                                    partial.physicalCameraIds = {kPhysicalCamera};
                                    s.result(partial);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "physical-metadata"},
                          Fault{"BufferAfterTheFrameCompleted",
                                [](Session& s) {
                                    s.frame(0);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(kLogicalStream, true)}));
                                },
                                "known-frame"},
                          Fault{"BufferTwiceInOneResult",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(kLogicalStream, true),
                                                Session::buffer(kLogicalStream, true),
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "buffer-returned-once"},
                          Fault{"BufferOfAStreamNotAskedFor",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(7, true),
                                                Session::buffer(kLogicalStream, true),
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "buffer-returned-once"},
                          Fault{"BuffersOfAStreamOutOfOrder",
                                [](Session& s) {
                                    s.submit(0);
                                    s.submit(1);
                                    s.shutter(0);
                                    s.shutter(1);
                                    s.final(0);
                                    s.final(1);
                                    s.buffers(1);
                                    s.buffers(0);
                                },
                                "buffer-order"},
                          Fault{"FinalMetadataOutOfOrder",
                                [](Session& s) {
                                    s.submit(0);
                                    s.submit(1);
                                    s.shutter(0);
                                    s.shutter(1);
                                    s.final(1);
                                    s.final(0);
                                    s.buffers(0);
                                    s.buffers(1);
                                },
                                "result-order"},
                          Fault{"WrongPattern",
                                [](Session& s) {
                                    s.inspect = [](int64_t, int32_t, int32_t) {
                                        return std::optional(
                                                std::make_pair(Rule::kBufferPattern,
                                                               std::string("holds frame 3")));
                                    };
                                    s.frame(0);
                                },
                                "buffer-pattern"},
                          Fault{"ReleaseFenceNeverSignalled",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {ReturnedBuffer{kLogicalStream, 0, true, 1, false},
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "release-fence"},
                          Fault{"ReleaseFenceWithTwoFds",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {ReturnedBuffer{kLogicalStream, 0, true, 2, true},
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "release-fence"},
                          Fault{"ResultWithNothing",
                                [](Session& s) {
                                    s.submit(0);
                                    s.result(Session::bufferResult(0, {}));
                                    s.shutter(0);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "result-not-empty"},
                          Fault{"ShutterOfAFrameNeverSubmitted", [](Session& s) { s.shutter(4); },
                                "known-frame"},
                          Fault{"RequestNeverCompletes",
                                [](Session& s) {
                                    s.submit(0);
                                    s.shutter(0);
                                    s.final(0);
                                },
                                "request-completes"}),
        [](const ::testing::TestParamInfo<Fault>& info) { return info.param.name; });

// Faults whose error notifications are expected (as during a flush), so that only the
// consistency between notifications, buffers and metadata is judged.
class ErrorConsistencyTest : public ::testing::TestWithParam<Fault> {};

TEST_P(ErrorConsistencyTest, BreaksItsRuleOnly) {
    Session session;
    session.submit(0);
    session.checker.expectErrorsInFlight();
    GetParam().play(session);
    session.checker.finish();
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{GetParam().rule});
}

INSTANTIATE_TEST_SUITE_P(
        Faults, ErrorConsistencyTest,
        ::testing::Values(Fault{"ErrorRequestWithAFilledBuffer",
                                [](Session& s) {
                                    s.checker.error(0, -1, kRequest);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(kLogicalStream, true),
                                                Session::buffer(kPhysicalStream, false)}));
                                },
                                "error-consistency"},
                          Fault{"ErrorRequestAfterTheShutter",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.checker.error(0, -1, kRequest);
                                    s.buffers(0, false);
                                },
                                "error-consistency"},
                          Fault{"ErrorBufferButTheBufferCameBackFilled",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.checker.error(0, kLogicalStream, kBuffer);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "error-consistency"},
                          Fault{"ErrorStatusWithoutErrorBuffer",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.final(0);
                                    s.result(Session::bufferResult(
                                            0, {Session::buffer(kLogicalStream, false),
                                                Session::buffer(kPhysicalStream, true)}));
                                },
                                "error-consistency"},
                          Fault{"FinalMetadataAfterErrorResult",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.checker.error(0, -1, kResult);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "error-consistency"},
                          Fault{"ErrorBufferForAStreamNotAskedFor",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.checker.error(0, 7, kBuffer);
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "error-consistency"},
                          Fault{"StillInFlightAfterFlush",
                                [](Session& s) {
                                    s.shutter(0);
                                    s.checker.checkNothingInFlight("flush");
                                    s.final(0);
                                    s.buffers(0);
                                },
                                "flush-completes"}),
        [](const ::testing::TestParamInfo<Fault>& info) { return info.param.name; });

TEST(ProtocolCheckerTest, ExpectedErrorsThatAgreeBreakNoRule) {
    Session session;
    session.submit(0);
    session.submit(1);
    session.submit(2);
    session.checker.expectErrorsInFlight();
    // Frame 0 was under way: it loses a buffer. Frame 1 lost its metadata. Frame 2 never started.
    session.shutter(0);
    session.checker.error(0, kPhysicalStream, kBuffer);
    session.final(0);
    session.result(Session::bufferResult(
            0, {Session::buffer(kLogicalStream, true), Session::buffer(kPhysicalStream, false)}));
    session.shutter(1);
    session.partial(1);
    session.checker.error(1, -1, kResult);
    session.buffers(1);
    session.checker.error(2, -1, kRequest);
    session.buffers(2, false);
    session.checker.checkNothingInFlight("flush");
    session.checker.finish();
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
    EXPECT_EQ(session.checker.counters().requestsCompleted, 3);
}

TEST(ProtocolCheckerTest, LostPhysicalResultExcusesItsMetadata) {
    Session session;
    session.submit(0);
    session.checker.expectErrorsInFlight();
    session.shutter(0);
    session.checker.error(0, kPhysicalStream, kResult);
    ResultReport final = Session::finalMetadata(0);
    final.physicalCameraIds.clear();
    session.result(final);
    session.buffers(0);
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
}

TEST(ProtocolCheckerTest, PhysicalSettingsAskForThatCamerasMetadata) {
    Session session;
    session.checker.requestSubmitted({0, {{kLogicalStream, 1}}, {"3"}}, Clock::now());
    session.shutter(0);
    ResultReport final = Session::finalMetadata(0);
    final.physicalCameraIds = {"3"};
    session.result(final);
    session.result(Session::bufferResult(0, {Session::buffer(kLogicalStream, true)}));
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
}

// The HAL buffer manager: requests carry no buffers; the device's buffers come back by id.
class BufferManagerTest : public ::testing::Test {
protected:
    BufferManagerTest() : session(true) {}

    void handOut() {
        session.checker.buffersHandedOut(kLogicalStream, {11, 12});
        session.checker.buffersHandedOut(kPhysicalStream, {21});
    }
    ResultReport buffersOf(int32_t frame, int64_t logical, int64_t physical) {
        return Session::bufferResult(frame, {Session::buffer(kLogicalStream, true, logical),
                                             Session::buffer(kPhysicalStream, true, physical)});
    }

    Session session;
};

TEST_F(BufferManagerTest, HandedOutBuffersComeBackThroughResultsAndReturns) {
    handOut();
    session.submit(0);
    session.shutter(0);
    session.final(0);
    EXPECT_EQ(session.result(buffersOf(0, 11, 21)), (std::vector<int64_t>{11, 21}));
    EXPECT_EQ(session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 12)}),
              std::vector<int64_t>{12});
    session.checker.finish();
    EXPECT_TRUE(session.checker.violations().empty()) << toString(session.checker.violations()[0]);
    EXPECT_EQ(session.checker.buffersHeld(kLogicalStream), 0u);
}

TEST_F(BufferManagerTest, AnIdNeverHandedOutBreaksBufferId) {
    handOut();
    session.submit(0);
    session.shutter(0);
    session.final(0);
    session.result(buffersOf(0, 99, 21));
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 11),
                                     Session::buffer(kLogicalStream, false, 12)});
    session.checker.finish();
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{"buffer-id"});
}

TEST_F(BufferManagerTest, ABufferComingBackTwiceBreaksReturnedOnce) {
    handOut();
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 11)});
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 11)});
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 12),
                                     Session::buffer(kPhysicalStream, false, 21)});
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{"buffer-returned-once"});
}

TEST_F(BufferManagerTest, AFilledBufferWithoutIdBreaksBufferId) {
    handOut();
    session.submit(0);
    session.shutter(0);
    session.final(0);
    session.result(buffersOf(0, 0, 21));
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 11),
                                     Session::buffer(kLogicalStream, false, 12)});
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{"buffer-id"});
}

TEST_F(BufferManagerTest, BuffersStillHeldAtTheEndBreakReturnedOnce) {
    handOut();
    session.checker.buffersReturned({Session::buffer(kLogicalStream, false, 11),
                                     Session::buffer(kLogicalStream, false, 12)});
    session.checker.finish();
    EXPECT_EQ(session.rulesBroken(), std::set<std::string>{"buffer-returned-once"});
}

}  // namespace
}  // namespace camera_harness
