#include <fcntl.h>
#include <fmq/FmqInternal.h>
#include <fmq/QueueDescriptor.h>
#include <limits.h>
#include <string.h>

#include <string>
#include <utility>

namespace android::hardware::details {

namespace {

using AidlGrantor = aidl::android::hardware::common::fmq::GrantorDescriptor;

// The limits of native_handle_t, which carries the fds on a device.
constexpr size_t kMaxHandleFds = 1024;
constexpr size_t kMaxHandleInts = 1024;

int dupCloexec(int fd) {
    return fcntl(fd, F_DUPFD_CLOEXEC, 0);
}

size_t minimumExtent(size_t index, size_t quantum) {
    switch (index) {
        case READPTRPOS:
        case WRITEPTRPOS:
            return sizeof(RingBufferPosition);
        case DATAPTRPOS:
            return quantum;
        case EVFLAGWORDPOS:
            return sizeof(uint32_t);
        default:
            return 0;
    }
}

// Why `grantor` (number `index`) cannot be part of a queue of `quantum`-byte elements whose
// handle has `fdCount` fds; empty if it can.
std::string checkGrantor(const AidlGrantor& grantor, size_t index, size_t fdCount, size_t quantum) {
    if (grantor.fdIndex < 0 || grantor.offset < 0 || grantor.extent < 0) {
        return "has a negative field";
    }
    if (static_cast<size_t>(grantor.fdIndex) >= fdCount) {
        return "refers to fd " + std::to_string(grantor.fdIndex) + " of " + std::to_string(fdCount);
    }
    if (!isAlignedToWordBoundary(grantor.offset)) return "has an unaligned offset";
    if (static_cast<uint64_t>(grantor.extent) > INT_MAX - pageSize()) return "is too large";
    if (static_cast<size_t>(grantor.extent) < minimumExtent(index, quantum)) {
        return "is too small";
    }
    if (index == DATAPTRPOS && grantor.extent % quantum != 0) {
        return "does not hold whole elements";
    }
    return {};
}

}  // namespace

QueueDescriptor::QueueDescriptor(std::vector<GrantorDescriptor> grantors,
                                 std::vector<base::unique_fd> fds, size_t quantum, uint32_t flags)
    : mGrantors(std::move(grantors)), mFds(std::move(fds)), mQuantum(quantum), mFlags(flags) {}

std::optional<QueueDescriptor> QueueDescriptor::import(
        const std::vector<AidlGrantor>& grantors,
        const aidl::android::hardware::common::NativeHandle& handle, int32_t quantum, int32_t flags,
        size_t expectedQuantum) {
    if (quantum < 0 || flags < 0) {
        logError("MQDescriptor has a negative quantum or flags");
        return std::nullopt;
    }
    if (static_cast<size_t>(quantum) != expectedQuantum) {
        logError("MQDescriptor quantum " + std::to_string(quantum) +
                 " does not match the element size " + std::to_string(expectedQuantum));
        return std::nullopt;
    }
    if (handle.fds.size() > kMaxHandleFds || handle.ints.size() > kMaxHandleInts) {
        logError("MQDescriptor handle has too many fds or ints");
        return std::nullopt;
    }
    if (grantors.size() < kMinGrantorCount) {
        logError("MQDescriptor has " + std::to_string(grantors.size()) + " grantors, needs " +
                 std::to_string(kMinGrantorCount));
        return std::nullopt;
    }
    std::vector<GrantorDescriptor> imported;
    for (size_t i = 0; i < grantors.size(); ++i) {
        std::string problem = checkGrantor(grantors[i], i, handle.fds.size(), expectedQuantum);
        if (!problem.empty()) {
            logError("MQDescriptor grantor " + std::to_string(i) + " " + problem);
            return std::nullopt;
        }
        imported.push_back({.flags = 0,
                            .fdIndex = static_cast<uint32_t>(grantors[i].fdIndex),
                            .offset = static_cast<uint32_t>(grantors[i].offset),
                            .extent = static_cast<uint64_t>(grantors[i].extent)});
    }
    std::vector<base::unique_fd> fds;
    for (const ndk::ScopedFileDescriptor& fd : handle.fds) {
        fds.emplace_back(dupCloexec(fd.get()));
        if (!fds.back().ok()) {
            logError("Cannot duplicate MQDescriptor fd " + std::to_string(fd.get()) + ": " +
                     strerror(errno));
            return std::nullopt;
        }
    }
    QueueDescriptor description(std::move(imported), std::move(fds), expectedQuantum,
                                static_cast<uint32_t>(flags));
    description.mInts = handle.ints;
    return description;
}

void QueueDescriptor::exportTo(std::vector<AidlGrantor>* grantors,
                               aidl::android::hardware::common::NativeHandle* handle) const {
    grantors->clear();
    for (const GrantorDescriptor& grantor : mGrantors) {
        grantors->push_back({.fdIndex = static_cast<int32_t>(grantor.fdIndex),
                             .offset = static_cast<int32_t>(grantor.offset),
                             .extent = static_cast<int64_t>(grantor.extent)});
    }
    handle->fds.clear();
    for (const base::unique_fd& fd : mFds) {
        int copy = dupCloexec(fd.get());
        if (copy < 0) logError(std::string("Cannot duplicate a queue fd: ") + strerror(errno));
        handle->fds.emplace_back(copy);
    }
    handle->ints = mInts;
}

}  // namespace android::hardware::details
