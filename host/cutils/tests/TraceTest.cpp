#define ATRACE_TAG ATRACE_TAG_CAMERA

#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <thread>
#include <tuple>
#include <vector>

#include "CHeaders.h"

using android::testing::setTraceEnabledTags;
using android::testing::setTraceRecorder;
using android::testing::TraceCapture;
using android::testing::TraceEvent;
using Kind = android::testing::TraceEventKind;

namespace {

class TraceTest : public ::testing::Test {
protected:
    void TearDown() override { setTraceEnabledTags(ATRACE_TAG_NOT_READY); }
};

using Summary = std::tuple<Kind, std::string, std::string, int64_t>;

std::vector<Summary> summarize(const std::vector<TraceEvent>& events) {
    std::vector<Summary> out;
    for (const TraceEvent& e : events) out.emplace_back(e.kind, e.name, e.track, e.value);
    return out;
}

void emitEveryKind() {
    ATRACE_BEGIN("section");
    ATRACE_END();
    ATRACE_ASYNC_BEGIN("async", 5);
    ATRACE_ASYNC_END("async", 5);
    ATRACE_ASYNC_FOR_TRACK_BEGIN("track", "onTrack", 6);
    ATRACE_ASYNC_FOR_TRACK_END("track", 6);
    ATRACE_INSTANT("instant");
    ATRACE_INSTANT_FOR_TRACK("track", "instantOnTrack");
    ATRACE_INT("counter", -3);
    ATRACE_INT64("counter64", 1LL << 40);
    traceCameraSectionFromC("fromC");
}

TEST(TraceDeathTest, FreshProcessHasOnlyTheNotReadyBit) {
    // The re-executed child sees the word before any test has touched it.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exit(atrace_get_enabled_tags() == ATRACE_TAG_NOT_READY ? 0 : 1),
                ::testing::ExitedWithCode(0), "");
}

TEST_F(TraceTest, WrappersStayQuietUnlessTheCameraTagIsEnabled) {
    TraceCapture capture;
    for (uint64_t word :
         {uint64_t{ATRACE_TAG_NOT_READY}, uint64_t{ATRACE_TAG_HAL | ATRACE_TAG_ALWAYS},
          ~uint64_t{ATRACE_TAG_CAMERA}}) {
        setTraceEnabledTags(word);
        EXPECT_FALSE(ATRACE_ENABLED());
        emitEveryKind();
    }
    EXPECT_TRUE(capture.events().empty());
}

TEST_F(TraceTest, EveryWrapperInCAndCppReachesTheRecorderWhenEnabled) {
    TraceCapture capture;
    setTraceEnabledTags(ATRACE_TAG_NOT_READY | ATRACE_TAG_CAMERA);
    emitEveryKind();
    std::vector<Summary> expected = {
            {Kind::Begin, "section", "", 0},
            {Kind::End, "", "", 0},
            {Kind::AsyncBegin, "async", "", 5},
            {Kind::AsyncEnd, "async", "", 5},
            {Kind::AsyncBegin, "onTrack", "track", 6},
            {Kind::AsyncEnd, "", "track", 6},
            {Kind::Instant, "instant", "", 0},
            {Kind::Instant, "instantOnTrack", "track", 0},
            {Kind::Counter, "counter", "", -3},
            {Kind::Counter, "counter64", "", 1LL << 40},
            {Kind::Begin, "fromC", "", 0},
            {Kind::End, "", "", 0},
    };
    EXPECT_EQ(expected, summarize(capture.events()));
    for (const TraceEvent& event : capture.events()) EXPECT_EQ(gettid(), event.tid);
}

TEST_F(TraceTest, SectionsCarryTheCallingThreadAndArriveInTimeOrder) {
    TraceCapture capture;
    setTraceEnabledTags(ATRACE_TAG_CAMERA);
    std::map<pid_t, int> sectionsPerThread;
    std::vector<std::thread> threads;
    std::vector<pid_t> tids(3);
    for (pid_t& tid : tids) {
        threads.emplace_back([&tid] {
            tid = gettid();
            for (int i = 0; i < 50; ++i) {
                ATRACE_BEGIN("outer");
                ATRACE_BEGIN("inner");
                ATRACE_END();
                ATRACE_END();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    std::map<pid_t, std::vector<std::string>> stacks;
    int64_t last = 0;
    for (const TraceEvent& event : capture.events()) {
        EXPECT_LE(last, event.timestampNs);
        last = event.timestampNs;
        std::vector<std::string>& stack = stacks[event.tid];
        if (event.kind == Kind::Begin) {
            EXPECT_EQ(stack.empty() ? "outer" : "inner", event.name);
            stack.push_back(event.name);
            sectionsPerThread[event.tid]++;
        } else {
            ASSERT_FALSE(stack.empty());
            stack.pop_back();
        }
    }
    EXPECT_EQ((std::map<pid_t, int>{{tids[0], 100}, {tids[1], 100}, {tids[2], 100}}),
              sectionsPerThread);
}

TEST_F(TraceTest, ReplacedRecorderIsNotCalledAgain) {
    setTraceEnabledTags(ATRACE_TAG_CAMERA);
    int firstCalls = 0;
    int secondCalls = 0;
    setTraceRecorder([&](const TraceEvent&) { ++firstCalls; });
    ATRACE_BEGIN("a");
    setTraceRecorder([&](const TraceEvent&) { ++secondCalls; });
    ATRACE_END();
    setTraceRecorder(nullptr);
    ATRACE_INSTANT("dropped");
    EXPECT_EQ(1, firstCalls);
    EXPECT_EQ(1, secondCalls);
}

}  // namespace
