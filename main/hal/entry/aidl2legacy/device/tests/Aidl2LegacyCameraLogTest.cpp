#include <android/log.h>
#include <cutils/properties.h>
#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>

#include <string>
#include <vector>

#include "Aidl2LegacyCameraLog.h"
#include "RecordingULogger.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

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
    std::vector<std::string> androidTexts() const {
        std::vector<std::string> texts;
        for (const auto& line : mAndroidLog.lines()) texts.push_back(line.text);
        return texts;
    }

    testing::ScopedULogState mState;
    android::testing::LogCapture mAndroidLog;
};

TEST_F(LogMacrosTest, ModeSelectsTheSinks) {
    struct Case {
        uint32_t mode;
        bool android;
        bool uLogger;
    };
    for (const Case& c : {Case{0, false, false}, Case{1, true, false}, Case{2, false, true},
                          Case{8, false, true}, Case{3, true, true}}) {
        mState.set(/*level=*/5, /*mask=*/0x187000, c.mode);
        mAndroidLog.clear();
        mState.logger().clear();
        Logs<DeviceSite>::warning("w");
        EXPECT_EQ(c.android ? 1u : 0u, mAndroidLog.lines().size()) << "mode " << c.mode;
        EXPECT_EQ(c.uLogger ? 1u : 0u, mState.logger().lines().size()) << "mode " << c.mode;
    }
}

TEST_F(LogMacrosTest, DetailsLevelGatesEachKind) {
    struct Case {
        uint32_t level;
        std::vector<std::string> written;
    };
    for (const Case& c : {Case{1, {"e"}}, Case{2, {"w", "e"}}, Case{4, {"i", "w", "e"}},
                          Case{5, {"d", "i", "w", "e"}}}) {
        mState.set(c.level, /*mask=*/0x187000, /*mode=*/3);
        mState.logger().clear();
        Logs<CallbackSite>::debug("d");
        Logs<CallbackSite>::info("i");
        Logs<CallbackSite>::warning("w");
        Logs<CallbackSite>::error("e");
        std::vector<std::string> texts;
        for (const auto& line : mState.logger().lines()) texts.push_back(line.text.substr(10));
        EXPECT_EQ(c.written, texts) << "level " << c.level;
    }
}

TEST_F(LogMacrosTest, MaskGatesDeviceInfoAndCallbackDebugOnly) {
    struct Case {
        uint32_t mask;
        bool deviceInfo;
        bool callbackDebug;
    };
    for (const Case& c :
         {Case{0x187000, true, true}, Case{0x087000, false, false}, Case{0x100000, false, false},
          Case{0x101000, true, true}, Case{0x180000, true, false}}) {
        mState.set(/*level=*/5, c.mask, /*mode=*/2);
        mState.logger().clear();
        Logs<DeviceSite>::info("device-info");
        Logs<CallbackSite>::info("callback-info");
        Logs<CallbackSite>::debug("callback-debug");
        Logs<DeviceSite>::debug("device-debug");
        std::vector<std::string> expected;
        if (c.deviceInfo) expected.push_back("[obj::fn] device-info");
        expected.push_back("[obj::fn] callback-info");
        if (c.callbackDebug) expected.push_back("[obj::fn] callback-debug");
        expected.push_back("[obj::fn] device-debug");
        std::vector<std::string> texts;
        for (const auto& line : mState.logger().lines()) texts.push_back(line.text);
        EXPECT_EQ(expected, texts) << std::hex << "mask 0x" << c.mask;
    }
}

TEST_F(LogMacrosTest, KindsCarryTheirPrioritiesLevelsAndModule) {
    mState.set(/*level=*/5, /*mask=*/0x187000, /*mode=*/3);
    Logs<CallbackSite>::debug("d");
    Logs<DeviceSite>::info("i");
    Logs<DeviceSite>::warning("w");
    Logs<CallbackSite>::error("e");
    auto android = mAndroidLog.lines();
    ASSERT_EQ(4u, android.size());
    EXPECT_EQ(ANDROID_LOG_DEBUG, android[0].priority);
    EXPECT_EQ(ANDROID_LOG_INFO, android[1].priority);
    EXPECT_EQ(ANDROID_LOG_WARN, android[2].priority);
    EXPECT_EQ(ANDROID_LOG_ERROR, android[3].priority);
    for (const auto& line : android) EXPECT_EQ("tarnic_hal_aidl2legacy_device", line.tag);
    auto uLog = mState.logger().lines();
    ASSERT_EQ(4u, uLog.size());
    EXPECT_EQ(5, uLog[0].level);
    EXPECT_EQ(0x101001u, uLog[0].moduleId);
    EXPECT_EQ(3, uLog[1].level);
    EXPECT_EQ(0x187001u, uLog[1].moduleId);
    EXPECT_EQ(2, uLog[2].level);
    EXPECT_EQ(1, uLog[3].level);
    EXPECT_EQ("tarnic_hal_aidl2legacy_device", uLog[3].tag);
}

TEST_F(LogMacrosTest, ErrorsCarryTheSourceSuffixOnTheAndroidLogOnly) {
    mState.set(/*level=*/1, /*mask=*/0, /*mode=*/3);
    Logs<DeviceSite>::error("boom");
    EXPECT_THAT(androidTexts(),
                ElementsAre(MatchesRegex(R"(\[obj::fn\] boom \(error\)\{#[0-9]+:)"
                                         R"(main/hal/entry/aidl2legacy/device/tests/)"
                                         R"(Aidl2LegacyCameraLogTest\.cpp\})")));
    ASSERT_EQ(1u, mState.logger().lines().size());
    EXPECT_EQ("[obj::fn] boom", mState.logger().lines()[0].text);
}

TEST_F(LogMacrosTest, LongMessagesReachTheULoggerCutWithTheUncappedLength) {
    for (const log::Module* module : {&log::kDeviceModule, &log::kCallbackModule}) {
        mState.set(/*level=*/2, /*mask=*/0, /*mode=*/2);
        mState.logger().clear();
        std::string text(1500, 'x');
        if (module->formatOnHeap) {
            Logs<CallbackSite>::warning(text.c_str());
        } else {
            Logs<DeviceSite>::warning(text.c_str());
        }
        ASSERT_EQ(1u, mState.logger().lines().size());
        EXPECT_EQ(1500 + 10, mState.logger().lines()[0].length);
        EXPECT_EQ(1023u, mState.logger().lines()[0].text.size());
    }
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
    EXPECT_THAT(androidTexts(), ElementsAre("[obj::fn] 1"));
}

TEST_F(LogMacrosTest, LogLevelPrefersTheGeneralProperty) {
    struct Case {
        const char* general;
        const char* device;
        int32_t expected;
    };
    for (const Case& c : {Case{"", "", 0}, Case{"0", "3", 3}, Case{"2", "3", 2}, Case{"", "1", 1},
                          Case{"010", "", 8}}) {
        property_set("vendor.debug.camera.log", c.general);
        property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", c.device);
        EXPECT_EQ(c.expected, log::readLogLevel()) << c.general << "/" << c.device;
    }
    property_set("vendor.debug.camera.log", "");
    property_set("vendor.debug.camera.log.Aidl2LegacyCameraDevice", "");
}

// Begin and end each read the camera tag afresh: a section whose tag flips in between is only
// half written, never balanced by a stale decision.
TEST(TraceSectionTest, BeginAndEndTestTheCameraTagIndependently) {
    using android::testing::TraceEventKind;
    android::testing::TraceCapture capture;
    auto kinds = [&] {
        std::vector<TraceEventKind> result;
        for (const auto& event : capture.events()) result.push_back(event.kind);
        return result;
    };
    android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    { log::ScopedTrace section("notify"); }
    EXPECT_EQ(capture.events().front().name, "notify");
    {
        log::ScopedTrace section("turnedOff");
        android::testing::setTraceEnabledTags(ATRACE_TAG_HAL);
    }
    {
        log::ScopedTrace section("turnedOn");
        android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    }
    android::testing::setTraceEnabledTags(ATRACE_TAG_NOT_READY);
    EXPECT_EQ(kinds(), (std::vector<TraceEventKind>{TraceEventKind::Begin, TraceEventKind::End,
                                                    TraceEventKind::Begin, TraceEventKind::End}));
    EXPECT_EQ(capture.events()[2].name, "turnedOff");
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
