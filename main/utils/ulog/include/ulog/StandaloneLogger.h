/*
 * StandaloneLogger: the ULogger that sULogger points at by default. Writes one line per message
 * to stderr, or appended to a file after openFile(). Thread-safe: each line is written with one
 * write(2) under a lock, so lines of concurrent threads never interleave.
 */
#pragma once

#include <ulog/ULogger.h>

#include <mutex>
#include <string>

namespace Strata::Utils::ULog {

class StandaloneLogger : public ULogger {
public:
    constexpr StandaloneLogger() : mFd(kStderrFd) {}
    ~StandaloneLogger() override;

    // The logger sULogger points at unless another one is installed.
    static StandaloneLogger& instance();

    // Sends lines to `path` (appended) instead of stderr; 0 or a negative errno value.
    int32_t openFile(const std::string& path);

    int32_t writeLog(uint32_t moduleId, const char* tag, int32_t level, const char* text,
                     int32_t length) override;
    int32_t writeRawLog(const char* text, int32_t length) override;
    int32_t flushLog(int32_t reason) override;
    void deinit() override;

private:
    static constexpr int kStderrFd = 2;

    void writeLocked(const char* data, size_t size);

    std::mutex mLock;
    int mFd;  // stderr unless a file was opened; owned only when not stderr
};

}  // namespace Strata::Utils::ULog
