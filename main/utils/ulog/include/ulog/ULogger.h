/*
 * ULogger: the unified logger of the maker's camera stack, reduced to what this tree needs.
 *
 * Log sites read the statics at every message (never cached), so a change of level, mask or mode
 * takes effect with the next message. sULogger is the process-wide sink; it points at a
 * StandaloneLogger unless someone installs another logger. The statics are plain words written
 * by whoever configures logging and read without synchronisation, as on the device.
 *
 * The virtual-table order is an ABI that other binaries rely on: writeLog is the fourth slot and
 * flushLog the eleventh (the destructor takes the first two). Do not reorder.
 */
#pragma once

#include <cstdint>

namespace Strata::Utils::ULog {

class ULogger {
public:
    // Detail levels as log sites use them.
    static constexpr uint32_t kLevelError = 1;
    static constexpr uint32_t kLevelWarning = 2;
    static constexpr uint32_t kLevelInfo = 3;
    static constexpr uint32_t kLevelDebug = 5;

    // sMode bits: the Android log, and the two bits that route text to sULogger.
    static constexpr uint32_t kModeAndroidLog = 0x1;
    static constexpr uint32_t kModeULoggerMask = 0xA;

    // Defaults on the host: warnings and errors only, every module's detail bits on, Android log
    // only (both sinks end on stderr here, so enabling both would print every line twice).
    static constexpr uint32_t kDefaultDetailsLevel = kLevelWarning;
    static constexpr uint32_t kDefaultNormalDetailsMask = 0x00187000;
    static constexpr uint32_t kDefaultMode = kModeAndroidLog;

    static uint32_t sDetailsLevel;
    static uint32_t sNormalDetailsMask;
    static uint32_t sMode;
    static ULogger* sULogger;

    virtual ~ULogger();

    // Prepares the sink; 0 or a negative errno value.
    virtual int32_t init();
    // Emits one line. `text` is NUL-terminated; `length` is what the formatter returned and may
    // exceed the text actually held when it was cut off.
    virtual int32_t writeLog(uint32_t moduleId, const char* tag, int32_t level, const char* text,
                             int32_t length) = 0;
    // Emits text as it is, without a line header.
    virtual int32_t writeRawLog(const char* text, int32_t length) = 0;
    virtual void setDetailsLevel(uint32_t level);
    virtual uint32_t getDetailsLevel() const;
    virtual void setNormalDetailsMask(uint32_t mask);
    virtual uint32_t getNormalDetailsMask() const;
    virtual void setMode(uint32_t mode);
    // Pushes buffered lines out; `reason` 1 means the process is about to abort.
    virtual int32_t flushLog(int32_t reason) = 0;
    // Releases the sink; further lines may be dropped.
    virtual void deinit();
};

}  // namespace Strata::Utils::ULog
