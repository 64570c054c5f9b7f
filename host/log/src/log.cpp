#include <android/log.h>
#include <errno.h>
#include <log/testing/LogCapture.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>

namespace {

// liblog formats every message into a buffer of this size; longer text is cut off.
constexpr size_t kLogBufSize = 1024;

std::mutex sSinkLock;
android::testing::LogCapture* sCapture = nullptr;

char priorityLetter(int prio) {
    static constexpr char kLetters[] = "??VDIWEFS";
    return (prio >= 0 && prio <= ANDROID_LOG_SILENT) ? kLetters[prio] : '?';
}

const char* defaultTag(const char* tag) {
    return tag != nullptr ? tag : program_invocation_short_name;
}

// One logcat-like line ("threadtime" form), written with a single write(2) so that lines of
// concurrent threads never interleave.
void writeToStderr(int prio, const char* tag, const char* text) {
    timeval now;
    gettimeofday(&now, nullptr);
    tm local;
    localtime_r(&now.tv_sec, &local);
    char stamp[32];
    strftime(stamp, sizeof(stamp), "%m-%d %H:%M:%S", &local);

    char line[kLogBufSize + 160];
    int length = snprintf(line, sizeof(line), "%s.%03ld %5d %5ld %c %s: %s\n", stamp,
                          static_cast<long>(now.tv_usec / 1000), getpid(),
                          static_cast<long>(syscall(SYS_gettid)), priorityLetter(prio), tag, text);
    if (length < 0) return;
    size_t size = std::min(static_cast<size_t>(length), sizeof(line) - 1);
    if (line[size - 1] != '\n') line[size - 1] = '\n';
    ssize_t ignored = write(STDERR_FILENO, line, size);
    (void)ignored;
}

void emit(int prio, const char* tag, const char* text) {
    {
        std::lock_guard<std::mutex> guard(sSinkLock);
        if (sCapture != nullptr) {
            sCapture->record(prio, tag, text);
            return;
        }
    }
    writeToStderr(prio, tag, text);
}

}  // namespace

extern "C" int __android_log_write(int prio, const char* tag, const char* text) {
    int savedErrno = errno;
    emit(prio, defaultTag(tag), text != nullptr ? text : "");
    errno = savedErrno;
    return 1;
}

extern "C" int __android_log_vprint(int prio, const char* tag, const char* fmt, va_list ap) {
    int savedErrno = errno;
    char buf[kLogBufSize];
    vsnprintf(buf, sizeof(buf), fmt, ap);
    emit(prio, defaultTag(tag), buf);
    errno = savedErrno;
    return 1;
}

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int result = __android_log_vprint(prio, tag, fmt, ap);
    va_end(ap);
    return result;
}

extern "C" void __android_log_assert(const char* cond, const char* tag, const char* fmt, ...) {
    char buf[kLogBufSize];
    if (fmt != nullptr) {
        va_list ap;
        va_start(ap, fmt);
        vsnprintf(buf, sizeof(buf), fmt, ap);
        va_end(ap);
    } else if (cond != nullptr) {
        snprintf(buf, sizeof(buf), "Assertion failed: %s", cond);
    } else {
        snprintf(buf, sizeof(buf), "Unspecified assertion failed");
    }
    // The message reaches stderr even while a test captures the log: a death test matches it.
    char line[kLogBufSize + 1];
    int length = snprintf(line, sizeof(line), "%s\n", buf);
    ssize_t ignored =
            write(STDERR_FILENO, line, std::min(static_cast<size_t>(length), sizeof(line) - 1));
    (void)ignored;
    emit(ANDROID_LOG_FATAL, defaultTag(tag), buf);
    abort();
}

namespace android::testing {

LogCapture::LogCapture() {
    std::lock_guard<std::mutex> guard(sSinkLock);
    sCapture = this;
}

LogCapture::~LogCapture() {
    std::lock_guard<std::mutex> guard(sSinkLock);
    if (sCapture == this) sCapture = nullptr;
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mLines;
}

std::vector<std::string> LogCapture::grep(const std::string& needle) const {
    std::lock_guard<std::mutex> guard(mLock);
    std::vector<std::string> found;
    for (const LogLine& line : mLines) {
        if (line.text.find(needle) != std::string::npos) found.push_back(line.text);
    }
    return found;
}

void LogCapture::clear() {
    std::lock_guard<std::mutex> guard(mLock);
    mLines.clear();
}

void LogCapture::record(int priority, const char* tag, const char* text) {
    std::lock_guard<std::mutex> guard(mLock);
    mLines.push_back({priority, tag, text});
}

}  // namespace android::testing
