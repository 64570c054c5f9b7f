#define LOG_TAG "VirtualCamera"

#include "Fence.h"

#include <errno.h>
#include <log/log.h>
#include <poll.h>
#include <stdint.h>
#include <string.h>
#include <sys/eventfd.h>

namespace virtual_camera {

bool waitFence(int fence, int timeoutMs) {
    if (fence < 0) return true;
    pollfd entry{fence, POLLIN, 0};
    int ready;
    do {
        ready = poll(&entry, 1, timeoutMs);
    } while (ready < 0 && errno == EINTR);
    if (ready < 0) {
        ALOGE("poll of fence %d failed: %s", fence, strerror(errno));
        return false;
    }
    if (ready == 0) {
        ALOGE("fence %d not ready after %d ms", fence, timeoutMs);
        return false;
    }
    return true;
}

UniqueFd makeSignalledFence() {
    UniqueFd fence(eventfd(1, EFD_CLOEXEC));
    if (!fence.valid()) ALOGE("eventfd failed: %s", strerror(errno));
    return fence;
}

}  // namespace virtual_camera
