#include <fmq/FmqInternal.h>
#include <fmq/GrantorMapping.h>
#include <limits.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <string>
#include <utility>

namespace android::hardware::details {

GrantorMapping::~GrantorMapping() {
    reset();
}

GrantorMapping::GrantorMapping(GrantorMapping&& other) noexcept
    : mBase(std::exchange(other.mBase, nullptr)),
      mLength(std::exchange(other.mLength, 0)),
      mAddress(std::exchange(other.mAddress, nullptr)) {}

GrantorMapping& GrantorMapping::operator=(GrantorMapping&& other) noexcept {
    if (this != &other) {
        reset();
        mBase = std::exchange(other.mBase, nullptr);
        mLength = std::exchange(other.mLength, 0);
        mAddress = std::exchange(other.mAddress, nullptr);
    }
    return *this;
}

void GrantorMapping::reset() {
    if (mBase != nullptr) munmap(mBase, mLength);
    mBase = nullptr;
    mLength = 0;
    mAddress = nullptr;
}

GrantorMapping GrantorMapping::map(const GrantorDescriptor& grantor, int fd) {
    const size_t page = pageSize();
    if (grantor.extent > INT_MAX - page) {
        logError("Grantor extent " + std::to_string(grantor.extent) + " is too large to map");
        return GrantorMapping();
    }
    size_t mapOffset = grantor.offset / page * page;
    size_t length = grantor.offset - mapOffset + grantor.extent;
    struct stat status;
    if (fstat(fd, &status) != 0) {
        logError("Cannot map fd " + std::to_string(fd) + ": " + strerror(errno));
        return GrantorMapping();
    }
    // A mapping past the end of a file maps, then faults on first access.
    if (S_ISREG(status.st_mode) &&
        static_cast<uint64_t>(status.st_size) < grantor.offset + grantor.extent) {
        logError("Grantor at " + std::to_string(grantor.offset) + " of " +
                 std::to_string(grantor.extent) + " bytes lies beyond the end of fd " +
                 std::to_string(fd) + " (" + std::to_string(status.st_size) + " bytes)");
        return GrantorMapping();
    }
    void* base = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd,
                      static_cast<off_t>(mapOffset));
    if (base == MAP_FAILED) {
        logError("mmap of fd " + std::to_string(fd) + " failed: " + strerror(errno));
        return GrantorMapping();
    }
    return GrantorMapping(base, length, static_cast<uint8_t*>(base) + (grantor.offset - mapOffset));
}

}  // namespace android::hardware::details
