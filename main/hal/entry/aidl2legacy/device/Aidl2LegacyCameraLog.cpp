#include "Aidl2LegacyCameraLog.h"

#include <android/log.h>
#include <cutils/properties.h>
#include <cutils/trace.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

// The fortified formatter of the C library, called directly as a fortified build would.
extern "C" int __vsnprintf_chk(char* buffer, size_t maxLength, int flag, size_t objectSize,
                               const char* format, va_list args);

namespace kovo::aidl2legacy::log {
namespace {

bool androidLogEnabled() {
    return (ULogger::sMode & ULogger::kModeAndroidLog) != 0;
}

bool uLoggerEnabled() {
    return (ULogger::sMode & ULogger::kModeULoggerMask) != 0;
}

// Formats into a zeroed 1024-byte buffer and hands the text to the unified logger. The length
// passed on is the formatter's result as it stands, even when the text was cut off.
void writeULog(const Module& module, uint32_t level, const char* format, va_list args) {
    auto emit = [&](char* buffer, int length) {
        if (length < 0) return;
        buffer[kFormatBufferSize - 1] = '\0';
        ULogger::sULogger->writeLog(module.id, kTag, static_cast<int32_t>(level), buffer, length);
    };
    if (module.formatOnHeap) {
        std::unique_ptr<char[]> buffer(new char[kFormatBufferSize]());
        int length = __vsnprintf_chk(buffer.get(), kFormatBufferSize, 0, kFormatBufferSize, format,
                                     args);
        emit(buffer.get(), length);
    } else {
        char buffer[kFormatBufferSize] = {};
        int length = vsnprintf(buffer, kFormatBufferSize, format, args);
        emit(buffer, length);
    }
}

// Both sinks of one message: the Android log with `androidFormat`, the unified logger with
// `baseFormat` over the same arguments.
void writeBoth(const Module& module, int priority, uint32_t level, const char* androidFormat,
               const char* baseFormat, va_list args) {
    if (androidLogEnabled()) {
        va_list androidArgs;
        va_copy(androidArgs, args);
        __android_log_vprint(priority, kTag, androidFormat, androidArgs);
        va_end(androidArgs);
    }
    if (uLoggerEnabled()) writeULog(module, level, baseFormat, args);
}

}  // namespace

void write(const Module& module, int priority, uint32_t level, const char* format, ...) {
    va_list args;
    va_start(args, format);
    writeBoth(module, priority, level, format, format, args);
    va_end(args);
}

void writeError(const Module& module, const char* androidFormat, const char* baseFormat, ...) {
    va_list args;
    va_start(args, baseFormat);
    writeBoth(module, kPriorityError, ULogger::kLevelError, androidFormat, baseFormat, args);
    va_end(args);
}

void fatal(const Module& module, const char* androidFormat, const char* baseFormat, ...) {
    va_list args;
    va_start(args, baseFormat);
    if (uLoggerEnabled()) {
        va_list uLogArgs;
        va_copy(uLogArgs, args);
        writeULog(module, ULogger::kLevelError, baseFormat, uLogArgs);
        va_end(uLogArgs);
        ULogger::sULogger->flushLog(1);
    }
    // liblog formats an assertion into a buffer of the same size.
    char message[kFormatBufferSize];
    vsnprintf(message, sizeof(message), androidFormat, args);
    va_end(args);
    __android_log_assert(nullptr, kTag, "%s", message);
}

int32_t readLogLevel() {
    int32_t level = property_get_int32("vendor.debug.camera.log", 0);
    if (level == 0) {
        level = property_get_int32("vendor.debug.camera.log.Aidl2LegacyCameraDevice", 0);
    }
    return level;
}

ScopedTrace::ScopedTrace(const char* name) {
    if ((atrace_get_enabled_tags() & ATRACE_TAG_CAMERA) != 0) atrace_begin_body(name);
}

ScopedTrace::~ScopedTrace() {
    if ((atrace_get_enabled_tags() & ATRACE_TAG_CAMERA) != 0) atrace_end_body();
}

}  // namespace kovo::aidl2legacy::log
