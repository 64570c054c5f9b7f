/*
 * The part of libbase's unique_fd that libfmq's interface needs: sole ownership of one file
 * descriptor, closed on destruction. Move-only; not thread-safe for concurrent use of one object.
 */
#pragma once

#include <errno.h>
#include <unistd.h>

namespace android::base {

class unique_fd {
public:
    unique_fd() = default;
    explicit unique_fd(int fd) : mFd(fd) {}
    ~unique_fd() { reset(); }

    unique_fd(const unique_fd&) = delete;
    unique_fd& operator=(const unique_fd&) = delete;
    unique_fd(unique_fd&& other) noexcept : mFd(other.release()) {}
    unique_fd& operator=(unique_fd&& other) noexcept {
        reset(other.release());
        return *this;
    }

    // Closes the held descriptor (keeping errno) and takes `fd`.
    void reset(int fd = -1) {
        if (mFd >= 0 && mFd != fd) {
            int savedErrno = errno;
            ::close(mFd);
            errno = savedErrno;
        }
        mFd = fd;
    }

    int get() const { return mFd; }
    bool ok() const { return mFd >= 0; }

    [[nodiscard]] int release() {
        int fd = mFd;
        mFd = -1;
        return fd;
    }

private:
    int mFd = -1;
};

}  // namespace android::base
