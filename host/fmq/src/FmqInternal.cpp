#define LOG_TAG "FMQ"

#include <errno.h>
#include <fcntl.h>
#include <fmq/FmqInternal.h>
#include <limits.h>
#include <log/log.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

namespace android::hardware::details {

void logError(const std::string& message) {
    ALOGE("%s", message.c_str());
}

size_t pageSize() {
    return static_cast<size_t>(getpagesize());
}

std::vector<GrantorDescriptor> layoutNewQueue(size_t dataBytes, bool configureEventFlagWord,
                                              bool ringOnOwnFd, size_t* regionSize) {
    // Mapping computes lengths as int, and the AIDL descriptor carries offsets as int32.
    if (dataBytes > static_cast<size_t>(INT_MAX) - pageSize()) {
        logError("Queue size " + std::to_string(dataBytes) + " bytes exceeds the maximum of " +
                 std::to_string(INT_MAX - pageSize()));
        return {};
    }
    std::vector<GrantorDescriptor> grantors(
            configureEventFlagWord ? kMinGrantorCountForEvFlagSupport : kMinGrantorCount);
    size_t offset = 0;
    auto place = [&](GrantorType type, size_t extent) {
        grantors[type] = {
                .flags = 0, .fdIndex = 0, .offset = static_cast<uint32_t>(offset), .extent = extent};
        offset = alignToWordBoundary(offset + extent);
    };
    place(READPTRPOS, sizeof(RingBufferPosition));
    place(WRITEPTRPOS, sizeof(RingBufferPosition));
    if (ringOnOwnFd) {
        grantors[DATAPTRPOS] = {.flags = 0, .fdIndex = 1, .offset = 0, .extent = dataBytes};
    } else {
        place(DATAPTRPOS, dataBytes);
    }
    if (configureEventFlagWord) place(EVFLAGWORDPOS, sizeof(uint32_t));
    // Page-rounding makes the padding after the last region irrelevant.
    *regionSize = (offset + pageSize() - 1) / pageSize() * pageSize();
    return grantors;
}

base::unique_fd createSharedRegion(const char* name, size_t size) {
    base::unique_fd fd(memfd_create(name, MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!fd.ok()) {
        logError(std::string("memfd_create failed: ") + strerror(errno));
        return fd;
    }
    if (ftruncate(fd.get(), static_cast<off_t>(size)) != 0) {
        logError("Could not size the queue's memory to " + std::to_string(size) +
                 " bytes: " + strerror(errno));
        return base::unique_fd();
    }
    // Frozen size, as ashmem: no endpoint can shrink the memory under another's mapping.
    if (fcntl(fd.get(), F_ADD_SEALS, F_SEAL_GROW | F_SEAL_SHRINK) != 0) {
        logError(std::string("Could not seal the queue's memory: ") + strerror(errno));
        return base::unique_fd();
    }
    return fd;
}

}  // namespace android::hardware::details
