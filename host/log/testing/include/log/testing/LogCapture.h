/*
 * Test-only hook of the liblog stand-in: while a LogCapture is alive, every line that would go
 * to stderr is recorded instead. One capture at a time; lines may arrive from any thread.
 */
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace android::testing {

struct LogLine {
    int priority;
    std::string tag;
    std::string text;
};

class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogLine> lines() const;
    // Texts of the captured lines whose text contains `needle`.
    std::vector<std::string> grep(const std::string& needle) const;
    void clear();

    void record(int priority, const char* tag, const char* text);

private:
    mutable std::mutex mLock;
    std::vector<LogLine> mLines;
};

}  // namespace android::testing
