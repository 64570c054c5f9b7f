/*
 * One mapped grantor of a queue: owns the mmap region that covers it (from the page boundary
 * below its offset) and unmaps it on destruction. Move-only; owned by one queue endpoint.
 */
#pragma once

#include <fmq/MQDescriptorBase.h>
#include <stddef.h>
#include <stdint.h>

namespace android::hardware::details {

class GrantorMapping {
public:
    GrantorMapping() = default;
    ~GrantorMapping();
    GrantorMapping(const GrantorMapping&) = delete;
    GrantorMapping& operator=(const GrantorMapping&) = delete;
    GrantorMapping(GrantorMapping&& other) noexcept;
    GrantorMapping& operator=(GrantorMapping&& other) noexcept;

    // Maps `grantor` of `fd` read-write and shared; empty (with an error log) when the grantor is
    // too large, lies beyond the end of a regular file, or mmap fails.
    static GrantorMapping map(const GrantorDescriptor& grantor, int fd);

    // Start of the grantor's bytes, or null when nothing is mapped.
    uint8_t* address() const { return mAddress; }

private:
    GrantorMapping(void* base, size_t length, uint8_t* address)
        : mBase(base), mLength(length), mAddress(address) {}
    void reset();

    void* mBase = nullptr;
    size_t mLength = 0;
    uint8_t* mAddress = nullptr;
};

}  // namespace android::hardware::details
