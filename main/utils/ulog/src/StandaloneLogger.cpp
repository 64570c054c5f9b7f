#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/syscall.h>
#include <time.h>
#include <ulog/StandaloneLogger.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace Strata::Utils::ULog {
namespace {

char levelLetter(int32_t level) {
    switch (level) {
        case ULogger::kLevelError:
            return 'E';
        case ULogger::kLevelWarning:
            return 'W';
        case ULogger::kLevelInfo:
            return 'I';
        case ULogger::kLevelDebug:
            return 'D';
        default:
            return 'V';
    }
}

}  // namespace

StandaloneLogger::~StandaloneLogger() {
    deinit();
}

int32_t StandaloneLogger::openFile(const std::string& path) {
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) return -errno;
    std::lock_guard<std::mutex> guard(mLock);
    if (mFd != kStderrFd) close(mFd);
    mFd = fd;
    return 0;
}

int32_t StandaloneLogger::writeLog(uint32_t moduleId, const char* tag, int32_t level,
                                   const char* text, int32_t length) {
    if (text == nullptr || length < 0) return -EINVAL;
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    char line[1200];
    int size = snprintf(line, sizeof(line), "%lld.%06ld %5ld %c %s [0x%06x]: %s\n",
                        static_cast<long long>(now.tv_sec), now.tv_nsec / 1000,
                        static_cast<long>(syscall(SYS_gettid)), levelLetter(level),
                        tag != nullptr ? tag : "", moduleId, text);
    if (size < 0) return -EINVAL;
    size_t used = std::min(static_cast<size_t>(size), sizeof(line) - 1);
    line[used - 1] = '\n';
    std::lock_guard<std::mutex> guard(mLock);
    writeLocked(line, used);
    return 0;
}

int32_t StandaloneLogger::writeRawLog(const char* text, int32_t length) {
    if (text == nullptr || length < 0) return -EINVAL;
    std::lock_guard<std::mutex> guard(mLock);
    writeLocked(text, strnlen(text, static_cast<size_t>(length)));
    return 0;
}

int32_t StandaloneLogger::flushLog(int32_t /*reason*/) {
    std::lock_guard<std::mutex> guard(mLock);
    // Lines are written unbuffered; make them durable when they go to a file.
    if (mFd != kStderrFd) fsync(mFd);
    return 0;
}

void StandaloneLogger::deinit() {
    std::lock_guard<std::mutex> guard(mLock);
    if (mFd != kStderrFd) close(mFd);
    mFd = kStderrFd;
}

void StandaloneLogger::writeLocked(const char* data, size_t size) {
    while (size > 0) {
        ssize_t written = write(mFd, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        data += written;
        size -= static_cast<size_t>(written);
    }
}

}  // namespace Strata::Utils::ULog
