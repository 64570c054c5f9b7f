/*
 * How IBufferHandleCacheMgr turns a framework buffer into a handle it may keep: a device build
 * imports through the platform's buffer mapper, the host clones the handle
 * (CloningBufferImporter), tests inject their own. Owned by the cache manager, which calls it
 * under its own lock, and by the imported buffers it made: freeBuffer() runs on whichever thread
 * lets go of a buffer last, outside that lock. An implementation that keeps state locks it.
 */
#pragma once

#include <cutils/native_handle.h>

#include <cstdint>

namespace kovo::aidl2legacy {

class IBufferImporter {
public:
    virtual ~IBufferImporter() = default;

    // Imports `raw` (borrowed: its fds stay the caller's) into `*out`, a handle this importer
    // owns until freeBuffer(). 0 or a negative errno value, leaving `*out` alone on failure.
    virtual int32_t importBuffer(const native_handle_t* raw, buffer_handle_t* out) = 0;
    // Releases a handle that importBuffer() produced.
    virtual int32_t freeBuffer(buffer_handle_t handle) = 0;
};

}  // namespace kovo::aidl2legacy
