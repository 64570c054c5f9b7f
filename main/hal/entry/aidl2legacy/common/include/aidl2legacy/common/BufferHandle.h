/*
 * One framework buffer imported by the buffer handle cache (IBufferHandleCacheMgr). A borrowed
 * view: `buffer` points at the imported handle inside the cache and stays valid while the cache
 * keeps that buffer (until it is removed, its stream leaves the configuration, or the cache is
 * reset, closed or destroyed). Copied freely; no locking.
 */
#pragma once

#include <cutils/native_handle.h>

#include <cstdint>

namespace kovo::aidl2legacy {

struct BufferHandle {
    int32_t streamId = -1;
    int64_t bufferId = 0;
    // Goes into camera3_stream_buffer::buffer.
    buffer_handle_t* buffer = nullptr;
};

}  // namespace kovo::aidl2legacy
