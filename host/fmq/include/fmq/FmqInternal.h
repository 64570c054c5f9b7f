/*
 * Layout and shared-memory helpers behind MessageQueueBase: where a new queue's regions go and
 * the memfd that backs them. Stateless and thread-safe.
 */
#pragma once

#include <android-base/unique_fd.h>
#include <fmq/MQDescriptorBase.h>
#include <stddef.h>

#include <vector>

namespace android::hardware::details {

// The run-time page size, the unit of mapping offsets and region sizes.
size_t pageSize();

// Grantors of a new queue with a ring of `dataBytes` bytes: counters first, then the ring (on
// fd 1 when the caller supplies the ring's memory, else on fd 0), then the optional event-flag
// word; offsets are running sums of 8-byte aligned extents. `regionSize` receives the size of
// fd 0, rounded up to pages. Empty (with an error log) when the layout exceeds the limits of the
// AIDL descriptor or of mapping.
std::vector<GrantorDescriptor> layoutNewQueue(size_t dataBytes, bool configureEventFlagWord,
                                              bool ringOnOwnFd, size_t* regionSize);

// A new zero-filled shared memory region of `size` bytes whose size can no longer change; an
// invalid fd (with an error log) on failure.
base::unique_fd createSharedRegion(const char* name, size_t size);

}  // namespace android::hardware::details
