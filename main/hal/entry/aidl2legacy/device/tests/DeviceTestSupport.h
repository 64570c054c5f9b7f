/*
 * Shared pieces of the device library's tests: metadata packets, status comparison, and a fixture
 * base that records both log sinks (and keeps them off stderr).
 */
#pragma once

#include <aidl2legacy/utils/StatusConversion.h>
#include <android/binder_auto_utils.h>
#include <cutils/testing/PropertyHooks.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "RecordingULogger.h"

namespace kovo::aidl2legacy::testing {

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// A packet with one ANDROID_SENSOR_ORIENTATION entry of `value`, and room for `spareBytes` more
// data (to vary its size).
inline MetadataPtr makeMetadata(int32_t value, size_t spareBytes = 0) {
    MetadataPtr metadata(allocate_camera_metadata(1, 8 + spareBytes));
    add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_ORIENTATION, &value, 1);
    return metadata;
}

inline std::vector<uint8_t> bytesOf(const camera_metadata_t* metadata) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(metadata);
    return std::vector<uint8_t>(bytes, bytes + get_camera_metadata_size(metadata));
}

// A pointer as "%p" prints it in log messages.
inline std::string pointerText(const void* pointer) {
    char text[32];
    snprintf(text, sizeof(text), "%p", pointer);
    return text;
}

// Whether `actual` is what the library returns for the internal status `errnoValue`.
inline ::testing::AssertionResult hasStatus(const ndk::ScopedAStatus& actual, int errnoValue) {
    ndk::ScopedAStatus expected = convertStatus(errnoValue);
    if (actual.getExceptionCode() == expected.getExceptionCode() &&
        actual.getServiceSpecificError() == expected.getServiceSpecificError()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "got " << actual.getDescription() << ", expected "
                                         << expected.getDescription() << " (" << errnoValue << ")";
}

// Every kind of message enabled and recorded; properties cleared before and after.
class LoggingTest : public ::testing::Test {
protected:
    LoggingTest() {
        android::testing::clearProperties();
        mULog.set(/*level=*/5, /*mask=*/0x187000, /*mode=*/3);
    }
    ~LoggingTest() override { android::testing::clearProperties(); }

    // The unified logger's texts (base formats, without the Android error suffix).
    std::vector<std::string> logTexts() { return mULog.logger().texts(); }
    bool logged(const std::string& text) {
        std::vector<std::string> texts = logTexts();
        return std::find(texts.begin(), texts.end(), text) != texts.end();
    }
    // Texts that start with `prefix`.
    std::vector<std::string> logsStartingWith(const std::string& prefix) {
        std::vector<std::string> result;
        for (const std::string& text : logTexts()) {
            if (text.rfind(prefix, 0) == 0) result.push_back(text);
        }
        return result;
    }
    // Texts that start with `prefix`, as the Android log received them.
    std::vector<std::string> androidLogsStartingWith(const std::string& prefix) {
        std::vector<std::string> result;
        for (const auto& line : mAndroidLog.lines()) {
            if (line.text.rfind(prefix, 0) == 0) result.push_back(line.text);
        }
        return result;
    }
    void clearLogs() {
        mULog.logger().clear();
        mAndroidLog.clear();
    }

    ScopedULogState mULog;
    android::testing::LogCapture mAndroidLog;
};

}  // namespace kovo::aidl2legacy::testing
