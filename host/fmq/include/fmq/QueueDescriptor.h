/*
 * A queue endpoint's own description of its shared memory: the grantors, the fds they refer to
 * (owned), the handle's ints, the element size and the flavour flags. Built for a new queue or
 * imported from an AIDL MQDescriptor sent by another endpoint, which is checked so that a bad
 * descriptor can never make the queue touch memory outside its regions. Immutable once built;
 * owned by one queue. Move-only.
 */
#pragma once

#include <aidl/android/hardware/common/NativeHandle.h>
#include <aidl/android/hardware/common/fmq/GrantorDescriptor.h>
#include <android-base/unique_fd.h>
#include <fmq/MQDescriptorBase.h>
#include <stddef.h>
#include <stdint.h>

#include <optional>
#include <vector>

namespace android::hardware::details {

class QueueDescriptor {
public:
    QueueDescriptor(std::vector<GrantorDescriptor> grantors, std::vector<base::unique_fd> fds,
                    size_t quantum, uint32_t flags);
    QueueDescriptor(QueueDescriptor&&) = default;
    QueueDescriptor& operator=(QueueDescriptor&&) = default;

    // Empty (with an error log) unless the parts describe a queue of `quantum`-byte elements
    // whose regions lie within their fds; the fds are duplicated.
    static std::optional<QueueDescriptor> import(
            const std::vector<aidl::android::hardware::common::fmq::GrantorDescriptor>& grantors,
            const aidl::android::hardware::common::NativeHandle& handle, int32_t quantum,
            int32_t flags, size_t expectedQuantum);

    // The AIDL form, with fresh duplicates of the fds (owned by `handle`).
    void exportTo(std::vector<aidl::android::hardware::common::fmq::GrantorDescriptor>* grantors,
                  aidl::android::hardware::common::NativeHandle* handle) const;

    const std::vector<GrantorDescriptor>& getGrantors() const { return mGrantors; }
    size_t countGrantors() const { return mGrantors.size(); }
    int getFd(size_t grantorIndex) const { return mFds[mGrantors[grantorIndex].fdIndex].get(); }
    // Bytes of the ring.
    size_t getSize() const { return mGrantors[DATAPTRPOS].extent; }
    size_t getQuantum() const { return mQuantum; }
    uint32_t getFlags() const { return mFlags; }

private:
    std::vector<GrantorDescriptor> mGrantors;
    std::vector<base::unique_fd> mFds;
    std::vector<int32_t> mInts;
    size_t mQuantum;
    uint32_t mFlags;
};

}  // namespace android::hardware::details
