#define ATRACE_TAG ATRACE_TAG_CAMERA

#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <thread>
#include <vector>

#include "CHeaders.h"

using android::testing::setTraceEnabledTags;
using android::testing::setTraceRecorder;
using android::testing::TraceCapture;
using android::testing::TraceEvent;
using android::testing::TraceEventKind;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

namespace {

class TraceTest : public ::testing::Test {
protected:
    void TearDown() override { setTraceEnabledTags(ATRACE_TAG_NOT_READY); }
};

auto isEvent(TraceEventKind kind, const std::string& name) {
    return AllOf(Field(&TraceEvent::kind, kind), Field(&TraceEvent::name, name));
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
}

using TraceDeathTest = TraceTest;

TEST_F(TraceDeathTest, FreshProcessHasOnlyTheNotReadyBit) {
    // A re-executed child sees the word before any test has touched it.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exit(atrace_get_enabled_tags() == ATRACE_TAG_NOT_READY ? 0 : 1),
                ::testing::ExitedWithCode(0), "");
}

TEST_F(TraceTest, WrappersStayQuietUnlessTheirTagIsEnabled) {
    TraceCapture capture;
    const uint64_t kQuietWords[] = {ATRACE_TAG_NOT_READY, 0, ATRACE_TAG_HAL | ATRACE_TAG_ALWAYS,
                                    ~static_cast<uint64_t>(ATRACE_TAG_CAMERA)};
    for (uint64_t word : kQuietWords) {
        setTraceEnabledTags(word);
        EXPECT_FALSE(ATRACE_ENABLED());
        emitEveryKind();
        traceCameraSectionFromC("fromC");
    }
    EXPECT_THAT(capture.events(), IsEmpty());
}

TEST_F(TraceTest, EveryWrapperReachesTheRecorderWhenTheCameraTagIsEnabled) {
    TraceCapture capture;
    setTraceEnabledTags(ATRACE_TAG_CAMERA);
    EXPECT_TRUE(ATRACE_ENABLED());
    emitEveryKind();

    struct Expected {
        TraceEventKind kind;
        std::string name;
        std::string track;
        int64_t value;
    };
    const std::vector<Expected> kExpected = {
            {TraceEventKind::Begin, "section", "", 0},
            {TraceEventKind::End, "", "", 0},
            {TraceEventKind::AsyncBegin, "async", "", 5},
            {TraceEventKind::AsyncEnd, "async", "", 5},
            {TraceEventKind::AsyncBegin, "onTrack", "track", 6},
            {TraceEventKind::AsyncEnd, "", "track", 6},
            {TraceEventKind::Instant, "instant", "", 0},
            {TraceEventKind::Instant, "instantOnTrack", "track", 0},
            {TraceEventKind::Counter, "counter", "", -3},
            {TraceEventKind::Counter, "counter64", "", 1LL << 40},
    };
    std::vector<TraceEvent> events = capture.events();
    ASSERT_EQ(kExpected.size(), events.size());
    for (size_t i = 0; i < events.size(); ++i) {
        EXPECT_EQ(kExpected[i].kind, events[i].kind) << i;
        EXPECT_EQ(kExpected[i].name, events[i].name) << i;
        EXPECT_EQ(kExpected[i].track, events[i].track) << i;
        EXPECT_EQ(kExpected[i].value, events[i].value) << i;
        EXPECT_EQ(gettid(), events[i].tid) << i;
    }
}

TEST_F(TraceTest, InlineWrappersCompiledAsCReachTheRecorder) {
    TraceCapture capture;
    setTraceEnabledTags(ATRACE_TAG_NOT_READY | ATRACE_TAG_ALWAYS | ATRACE_TAG_CAMERA);
    traceCameraSectionFromC("fromC");
    EXPECT_THAT(capture.events(), ElementsAre(isEvent(TraceEventKind::Begin, "fromC"),
                                              isEvent(TraceEventKind::End, "")));
}

TEST_F(TraceTest, SectionsCarryTheCallingThreadAndArriveInTimeOrder) {
    TraceCapture capture;
    setTraceEnabledTags(ATRACE_TAG_CAMERA);
    std::vector<pid_t> tids(3);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < tids.size(); ++t) {
        threads.emplace_back([&tids, t] {
            tids[t] = gettid();
            for (int i = 0; i < 50; ++i) {
                ATRACE_BEGIN("outer");
                ATRACE_BEGIN("inner");
                ATRACE_END();
                ATRACE_END();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();

    std::vector<TraceEvent> events = capture.events();
    ASSERT_EQ(tids.size() * 200, events.size());
    std::map<pid_t, std::vector<std::string>> stacks;
    for (size_t i = 0; i < events.size(); ++i) {
        if (i > 0) {
            EXPECT_LE(events[i - 1].timestampNs, events[i].timestampNs);
        }
        std::vector<std::string>& stack = stacks[events[i].tid];
        if (events[i].kind == TraceEventKind::Begin) {
            EXPECT_EQ(stack.empty() ? "outer" : "inner", events[i].name);
            stack.push_back(events[i].name);
        } else {
            ASSERT_FALSE(stack.empty());
            stack.pop_back();
        }
    }
    std::vector<pid_t> seen;
    for (const auto& [tid, stack] : stacks) {
        EXPECT_THAT(stack, IsEmpty());
        seen.push_back(tid);
    }
    std::sort(tids.begin(), tids.end());
    EXPECT_EQ(tids, seen);
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
