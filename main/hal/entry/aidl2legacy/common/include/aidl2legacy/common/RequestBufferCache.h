/*
 * The imported buffers of one capture request, as IBufferHandleCacheMgr::importRequestBuffers
 * returns them. The handles are borrowed from the cache (see BufferHandle). A plain value; no
 * locking.
 */
#pragma once

#include <aidl2legacy/common/BufferHandle.h>

#include <cstdint>
#include <map>

namespace kovo::aidl2legacy {

struct RequestBufferCache {
    int32_t frameNumber = 0;
    // AIDL stream id to the request's buffer of that stream.
    std::map<int32_t, BufferHandle> bufferHandles;
};

}  // namespace kovo::aidl2legacy
