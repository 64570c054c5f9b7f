/*
 * The logging and trace family used by every function of the device, the session and the
 * callback bridge. Each message goes to the Android log and to the unified logger
 * (Strata::Utils::ULog::ULogger), gated by the ULogger statics, which are read afresh at every
 * message. Arguments are evaluated once, and only after the gate passed.
 *
 * A class that logs declares `static constexpr log::Module kLogModule` (kDeviceModule for the
 * device and the session, kCallbackModule for the callback bridge); the macros pick it up from
 * the enclosing scope. Format strings carry their own "[%s::%s] " prefix.
 *
 * Thread-safe: every message formats into its own buffer; both sinks serialise their lines.
 */
#pragma once

#include <ulog/ULogger.h>

#include <cstddef>
#include <cstdint>

namespace kovo::aidl2legacy::log {

struct Module {
    uint32_t id;
    // The callback bridge formats into a heap buffer: its functions have large frames already.
    bool formatOnHeap;
};

inline constexpr Module kDeviceModule{0x187001, false};
inline constexpr Module kCallbackModule{0x101001, true};

inline constexpr char kTag[] = "tarnic_hal_aidl2legacy_device";
inline constexpr size_t kFormatBufferSize = 1024;

// Android log priorities and unified-logger levels of the four kinds.
inline constexpr int kPriorityDebug = 3;
inline constexpr int kPriorityInfo = 4;
inline constexpr int kPriorityWarning = 5;
inline constexpr int kPriorityError = 6;

using Strata::Utils::ULog::ULogger;

inline bool debugEnabled(const Module& module) {
    if (ULogger::sDetailsLevel < ULogger::kLevelDebug) return false;
    return module.id != kCallbackModule.id || (ULogger::sNormalDetailsMask & 0x101000) == 0x101000;
}

inline bool infoEnabled(const Module& module) {
    if (ULogger::sDetailsLevel < ULogger::kLevelInfo) return false;
    return module.id != kDeviceModule.id || ((ULogger::sNormalDetailsMask & (1u << 20)) != 0 &&
                                             (ULogger::sNormalDetailsMask & 0x87000) != 0);
}

inline bool warningEnabled() {
    return ULogger::sDetailsLevel >= ULogger::kLevelWarning;
}

enum class Kind { kDebug, kInfo, kWarning };

// Whether a message of `kind` from `module` reaches a sink: its gate passes and sMode selects
// the Android log or the unified logger. Call sites ask it before building a text that exists
// only for that message.
inline bool willWrite(const Module& module, Kind kind) {
    if ((ULogger::sMode & (ULogger::kModeAndroidLog | ULogger::kModeULoggerMask)) == 0) {
        return false;
    }
    switch (kind) {
        case Kind::kDebug:
            return debugEnabled(module);
        case Kind::kInfo:
            return infoEnabled(module);
        case Kind::kWarning:
            return warningEnabled();
    }
    return false;
}

// Debug, info and warning messages: the same format to both sinks.
void write(const Module& module, int priority, uint32_t level, const char* format, ...)
        __attribute__((format(printf, 4, 5)));

// Error messages: the Android log gets `androidFormat` (the base format with the
// " (%s){#%d:%s}" suffix, whose three arguments come last); the unified logger gets the base
// format, which ignores those trailing arguments.
void writeError(const Module& module, const char* androidFormat, const char* baseFormat, ...)
        __attribute__((format(printf, 2, 4)));

// Fatal assertion: the unified logger (when enabled) gets the base text and a flushLog(1), then
// __android_log_assert ends the process whatever sMode holds.
[[noreturn]] void fatal(const Module& module, const char* androidFormat, const char* baseFormat,
                        ...) __attribute__((format(printf, 2, 4)));

// The per-object debug level: "vendor.debug.camera.log", and when that is 0 the property named
// after the device class (the callback bridge reads the same one on purpose).
int32_t readLogLevel();

// A trace section bracketing a whole function. Begin and end each test the camera tag afresh.
class ScopedTrace {
public:
    explicit ScopedTrace(const char* name);
    ~ScopedTrace();
    ScopedTrace(const ScopedTrace&) = delete;
    ScopedTrace& operator=(const ScopedTrace&) = delete;
};

}  // namespace kovo::aidl2legacy::log

#define A2L_LOG_SUFFIX " (%s){#%d:%s}"

#define A2L_LOGD(format, ...)                                                                     \
    do {                                                                                          \
        if (::kovo::aidl2legacy::log::debugEnabled(kLogModule))                                   \
            ::kovo::aidl2legacy::log::write(kLogModule, ::kovo::aidl2legacy::log::kPriorityDebug, \
                                            ::Strata::Utils::ULog::ULogger::kLevelDebug, format,  \
                                            ##__VA_ARGS__);                                       \
    } while (0)

#define A2L_LOGI(format, ...)                                                                    \
    do {                                                                                         \
        if (::kovo::aidl2legacy::log::infoEnabled(kLogModule))                                   \
            ::kovo::aidl2legacy::log::write(kLogModule, ::kovo::aidl2legacy::log::kPriorityInfo, \
                                            ::Strata::Utils::ULog::ULogger::kLevelInfo, format,  \
                                            ##__VA_ARGS__);                                      \
    } while (0)

#define A2L_LOGW(format, ...)                                                              \
    do {                                                                                   \
        if (::kovo::aidl2legacy::log::warningEnabled())                                    \
            ::kovo::aidl2legacy::log::write(                                               \
                    kLogModule, ::kovo::aidl2legacy::log::kPriorityWarning,                \
                    ::Strata::Utils::ULog::ULogger::kLevelWarning, format, ##__VA_ARGS__); \
    } while (0)

#define A2L_LOGE(format, ...)                                                                      \
    ::kovo::aidl2legacy::log::writeError(kLogModule, format A2L_LOG_SUFFIX, format, ##__VA_ARGS__, \
                                         __func__, __LINE__, __FILE__)

#define A2L_FATAL(format, ...)                                                                \
    ::kovo::aidl2legacy::log::fatal(kLogModule, format A2L_LOG_SUFFIX, format, ##__VA_ARGS__, \
                                    __func__, __LINE__, __FILE__)
