/*
 * A ULogger that records what it receives, and a scope that installs it as sULogger with given
 * statics and restores the previous logger and statics afterwards. Recording is thread-safe.
 * With echo on, every line and flush also goes to stderr, so that death tests can match them.
 */
#pragma once

#include <ulog/ULogger.h>

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

namespace kovo::aidl2legacy::testing {

class RecordingULogger : public Strata::Utils::ULog::ULogger {
public:
    struct Line {
        uint32_t moduleId;
        std::string tag;
        int32_t level;
        std::string text;
        int32_t length;
    };

    int32_t writeLog(uint32_t moduleId, const char* tag, int32_t level, const char* text,
                     int32_t length) override {
        if (mEcho) fprintf(stderr, "ulog level=%d %s\n", level, text);
        std::lock_guard<std::mutex> guard(mLock);
        mLines.push_back({moduleId, tag, level, text, length});
        return 0;
    }
    int32_t writeRawLog(const char*, int32_t) override { return 0; }
    int32_t flushLog(int32_t reason) override {
        if (mEcho) fprintf(stderr, "ulog flush %d\n", reason);
        std::lock_guard<std::mutex> guard(mLock);
        mFlushes.push_back(reason);
        return 0;
    }

    void setEcho(bool echo) { mEcho = echo; }

    std::vector<Line> lines() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mLines;
    }
    // The texts of the recorded lines, in order.
    std::vector<std::string> texts() const {
        std::lock_guard<std::mutex> guard(mLock);
        std::vector<std::string> result;
        for (const Line& line : mLines) result.push_back(line.text);
        return result;
    }
    std::vector<int32_t> flushes() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mFlushes;
    }
    void clear() {
        std::lock_guard<std::mutex> guard(mLock);
        mLines.clear();
        mFlushes.clear();
    }

private:
    mutable std::mutex mLock;
    std::vector<Line> mLines;
    std::vector<int32_t> mFlushes;
    bool mEcho = false;
};

class ScopedULogState {
public:
    using ULogger = Strata::Utils::ULog::ULogger;

    ScopedULogState()
        : mLevel(ULogger::sDetailsLevel),
          mMask(ULogger::sNormalDetailsMask),
          mMode(ULogger::sMode),
          mPrevious(ULogger::sULogger) {
        ULogger::sULogger = &mLogger;
    }
    ~ScopedULogState() {
        ULogger::sDetailsLevel = mLevel;
        ULogger::sNormalDetailsMask = mMask;
        ULogger::sMode = mMode;
        ULogger::sULogger = mPrevious;
    }
    ScopedULogState(const ScopedULogState&) = delete;
    ScopedULogState& operator=(const ScopedULogState&) = delete;

    void set(uint32_t level, uint32_t mask, uint32_t mode) {
        ULogger::sDetailsLevel = level;
        ULogger::sNormalDetailsMask = mask;
        ULogger::sMode = mode;
    }
    RecordingULogger& logger() { return mLogger; }

private:
    uint32_t mLevel;
    uint32_t mMask;
    uint32_t mMode;
    ULogger* mPrevious;
    RecordingULogger mLogger;
};

}  // namespace kovo::aidl2legacy::testing
