/*
 * Sole owner of one file descriptor; closes it when destroyed or reset. Not thread-safe.
 */
#pragma once

#include <unistd.h>

#include <utility>

namespace virtual_camera {

class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : mFd(fd) {}
    ~UniqueFd() { reset(); }
    UniqueFd(UniqueFd&& other) noexcept : mFd(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;

    int get() const { return mFd; }
    bool valid() const { return mFd >= 0; }
    // Gives up ownership; the caller now owns the fd.
    int release() { return std::exchange(mFd, -1); }
    void reset(int fd = -1) {
        if (mFd >= 0) ::close(mFd);
        mFd = fd;
    }

private:
    int mFd = -1;
};

}  // namespace virtual_camera
