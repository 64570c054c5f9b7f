/*
 * One framework buffer imported by the buffer handle cache (IBufferHandleCacheMgr). `buffer`
 * points at the imported handle inside the cache and stays valid while the cache keeps that
 * buffer (until it is removed, its stream leaves the configuration, or the cache is reset, closed
 * or destroyed) or while someone holds `imported`. Copied freely; no locking.
 */
#pragma once

#include <cutils/native_handle.h>

#include <cstdint>
#include <memory>

namespace kovo::aidl2legacy {

class ImportedBuffer;

struct BufferHandle {
    int32_t streamId = -1;
    int64_t bufferId = 0;
    // Goes into camera3_stream_buffer::buffer.
    buffer_handle_t* buffer = nullptr;
    // Set for buffers handed out for the device's buffer manager: holding it keeps `buffer` and
    // the handle it points at alive after the cache lets go of them. Empty for request buffers.
    std::shared_ptr<ImportedBuffer> imported;
};

}  // namespace kovo::aidl2legacy
