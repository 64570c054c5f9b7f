#include <android/log.h>
#include <cutils/properties.h>
#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Aidl2LegacyCameraLog.h"
#include "RecordingULogger.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::ElementsAre;

struct DeviceSite {
    static constexpr log::Module kLogModule = log::kDeviceModule;
};
struct CallbackSite {
    static constexpr log::Module kLogModule = log::kCallbackModule;
};

template <typename Site>
struct Logs : Site {
    using Site::kLogModule;
    static void debug(const char* text) { A2L_LOGD("[%s::%s] %s", "obj", "fn", text); }
    static void info(const char* text) { A2L_LOGI("[%s::%s] %s", "obj", "fn", text); }
    static void warning(const char* text) { A2L_LOGW("[%s::%s] %s", "obj", "fn", text); }
    static void error(const char* text) { A2L_LOGE("[%s::%s] %s", "obj", "fn", text); }
};

class LogMacrosTest : public ::testing::Test {
protected:
    // The unified logger's texts, cleared for the next round.
    std::vector<std::string> takeTexts() {
        std::vector<std::string> texts = mState.logger().texts();
        mState.logger().clear();
        return texts;
    }

    testing::ScopedULogState mState;
    android::testing::LogCapture mAndroidLog;
};

// Bit 0 of the mode is the Android log, bits 1 to 3 the unified logger.
TEST_F(LogMacrosTest, ModeSelectsTheSinks) {
    for (const auto& [mode, android, uLogger] :
         {std::tuple{0u, 0u, 0u}, {1u, 1u, 0u}, {2u, 0u, 1u}, {8u, 0u, 1u}, {3u, 1u, 1u}}) {
        mState.set(/*level=*/5, /*mask=*/0x187000, mode);
        mAndroidLog.clear();
        Logs<DeviceSite>::warning("w");
        EXPECT_EQ(android, mAndroidLog.lines().size()) << "mode " << mode;
        EXPECT_EQ(uLogger, takeTexts().size()) << "mode " << mode;
    }
}

TEST_F(LogMacrosTest, DetailsLevelGatesEachKind) {
    for (const auto& [level, written] : {std::pair{1u, std::vector<std::string>{"e"}},
                                         {2u, {"w", "e"}},
                                         {4u, {"i", "w", "e"}},
                                         {5u, {"d", "i", "w", "e"}}}) {
        mState.set(level, /*mask=*/0x187000, /*mode=*/3);
        Logs<CallbackSite>::debug("d");
        Logs<CallbackSite>::info("i");
        Logs<CallbackSite>::warning("w");
        Logs<CallbackSite>::error("e");
        std::vector<std::string> texts;
        for (const std::string& text : takeTexts()) texts.push_back(text.substr(10));
        EXPECT_EQ(written, texts) << "level " << level;
    }
}

// Device info needs bit 20 and one of the 0x87000 bits; callback debug needs all of 0x101000.
TEST_F(LogMacrosTest, MaskGatesDeviceInfoAndCallbackDebugOnly) {
    for (const auto& [mask, deviceInfo, callbackDebug] : {std::tuple{0x187000u, true, true},
                                                          {0x087000u, false, false},
                                                          {0x100000u, false, false},
                                                          {0x101000u, true, true},
                                                          {0x180000u, true, false}}) {
        mState.set(/*level=*/5, mask, /*mode=*/2);
        Logs<DeviceSite>::info("device-info");
        Logs<CallbackSite>::info("callback-info");
        Logs<CallbackSite>::debug("callback-debug");
        Logs<DeviceSite>::debug("device-debug");
        std::vector<std::string> expected;
        if (deviceInfo) expected.push_back("[obj::fn] device-info");
        expected.push_back("[obj::fn] callback-info");
        if (callbackDebug) expected.push_back("[obj::fn] callback-debug");
        expected.push_back("[obj::fn] device-debug");
        EXPECT_EQ(expected, takeTexts()) << std::hex << "mask 0x" << mask;
    }
}

// Errors carry the source suffix on the Android log only.
TEST_F(LogMacrosTest, KindsCarryTheirPrioritiesLevelsModuleAndSuffix) {
    mState.set(/*level=*/5, /*mask=*/0x187000, /*mode=*/3);
    Logs<CallbackSite>::debug("d");
    Logs<DeviceSite>::info("i");
    Logs<DeviceSite>::warning("w");
    Logs<CallbackSite>::error("boom");
    std::vector<int> priorities;
    for (const auto& line : mAndroidLog.lines()) {
        priorities.push_back(line.priority);
        EXPECT_EQ("tarnic_hal_aidl2legacy_device", line.tag);
    }
    EXPECT_THAT(priorities, ElementsAre(ANDROID_LOG_DEBUG, ANDROID_LOG_INFO, ANDROID_LOG_WARN,
                                        ANDROID_LOG_ERROR));
    EXPECT_THAT(mAndroidLog.lines().back().text,
                ::testing::MatchesRegex(R"(\[obj::fn\] boom \(error\)\{#[0-9]+:)"
                                        R"(main/hal/entry/aidl2legacy/device/tests/)"
                                        R"(Aidl2LegacyCameraLogTest\.cpp\})"));
    std::vector<std::tuple<int32_t, uint32_t, std::string>> uLog;
    for (const auto& line : mState.logger().lines()) {
        uLog.emplace_back(line.level, line.moduleId, line.text);
        EXPECT_EQ("tarnic_hal_aidl2legacy_device", line.tag);
    }
    EXPECT_THAT(uLog, ElementsAre(std::tuple(5, 0x101001u, "[obj::fn] d"),
                                  std::tuple(3, 0x187001u, "[obj::fn] i"),
                                  std::tuple(2, 0x187001u, "[obj::fn] w"),
                                  std::tuple(1, 0x101001u, "[obj::fn] boom")));
}

// The length passed on is the formatter's, uncapped, whichever buffer the module formats into.
TEST_F(LogMacrosTest, LongMessagesReachTheULoggerCutWithTheUncappedLength) {
    mState.set(/*level=*/2, /*mask=*/0, /*mode=*/2);
    const std::string text(1500, 'x');
    Logs<DeviceSite>::warning(text.c_str());
    Logs<CallbackSite>::warning(text.c_str());
    for (const auto& line : mState.logger().lines()) {
        EXPECT_EQ(1500 + 10, line.length);
        EXPECT_EQ(1023u, line.text.size());
    }
    EXPECT_EQ(2u, mState.logger().lines().size());
}

TEST_F(LogMacrosTest, ArgumentsAreEvaluatedOnlyOnceAndOnlyPastTheGate) {
    struct DeviceLogs : DeviceSite {
        static void info(int* counter) { A2L_LOGI("[%s::%s] %d", "obj", "fn", ++*counter); }
    };
    int counter = 0;
    mState.set(/*level=*/2, /*mask=*/0x187000, /*mode=*/3);
    DeviceLogs::info(&counter);
    EXPECT_EQ(0, counter);
    mState.set(/*level=*/3, /*mask=*/0x187000, /*mode=*/3);
    DeviceLogs::info(&counter);
    EXPECT_EQ(1, counter);
    EXPECT_EQ("[obj::fn] 1", mAndroidLog.lines().at(0).text);
}

TEST_F(LogMacrosTest, LogLevelPrefersTheGeneralProperty) {
    for (const auto& [general, device, expected] :
         {std::tuple{"", "", 0}, {"0", "3", 3}, {"2", "3", 2}, {"", "1", 1}, {"010", "", 8}}) {
        property_set("vendor.debug.camera.log", general);
        property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", device);
        EXPECT_EQ(expected, log::readLogLevel()) << general << "/" << device;
    }
    property_set("vendor.debug.camera.log", "");
    property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", "");
}

// Begin and end each read the camera tag afresh: a section whose tag flips in between is only
// half written, never balanced by a stale decision.
TEST(TraceSectionTest, BeginAndEndTestTheCameraTagIndependently) {
    using android::testing::TraceEventKind;
    android::testing::TraceCapture capture;
    android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    { log::ScopedTrace section("notify"); }
    {
        log::ScopedTrace section("turnedOff");
        android::testing::setTraceEnabledTags(ATRACE_TAG_HAL);
    }
    {
        log::ScopedTrace section("turnedOn");
        android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    }
    android::testing::setTraceEnabledTags(ATRACE_TAG_NOT_READY);
    std::vector<std::pair<TraceEventKind, std::string>> events;
    for (const auto& event : capture.events()) events.emplace_back(event.kind, event.name);
    EXPECT_THAT(events, ElementsAre(std::pair(TraceEventKind::Begin, "notify"),
                                    std::pair(TraceEventKind::End, ""),
                                    std::pair(TraceEventKind::Begin, "turnedOff"),
                                    std::pair(TraceEventKind::End, "")));
}

TEST(LogMacrosDeathTest, FatalFlushesTheULoggerAndAbortsWithTheSuffixedText) {
    auto fatalAt = [](uint32_t mode) {
        testing::ScopedULogState state;
        state.set(/*level=*/0, /*mask=*/0, mode);
        state.logger().setEcho(true);
        struct Site : DeviceSite {
            static void fail() { A2L_FATAL("[%s::%s] broken %d", "obj", "fn", 7); }
        };
        Site::fail();
    };
    EXPECT_DEATH(fatalAt(0), "\\[obj::fn\\] broken 7 \\(fail\\)\\{#[0-9]+:main/hal/entry/");
    EXPECT_DEATH(fatalAt(2),
                 "ulog level=1 \\[obj::fn\\] broken 7.*ulog flush 1.*broken 7 \\(fail\\)");
}

}  // namespace
}  // namespace kovo::aidl2legacy
