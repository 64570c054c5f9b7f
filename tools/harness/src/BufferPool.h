/*
 * BufferPool: the framework's output buffers, made the way a gralloc allocator would make them on
 * this host (memfd buffers from virtual_camera::HostBuffer, one fd or one fd per plane), each
 * mapped for reading once so that returned buffers can be checked. Buffer ids are device-wide,
 * start at 1 and are never reused; a lease says whether the buffer's handle still has to be sent
 * (only the first use of an id carries it). Buffers are allocated on demand per stream, up to
 * the limit the caller gives.
 *
 * Not thread-safe: the owner (FrameworkState) calls it under its lock.
 */
#pragma once

#include <cutils/native_handle.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "Options.h"

namespace virtual_camera {
class HostBuffer;
class MappedBuffer;
}  // namespace virtual_camera

namespace camera_harness {

struct PoolStream {
    int32_t streamId = 0;
    int32_t format = 0;
    size_t bufferSize = 0;
};

// A buffer the device was given (every pool buffer is): what a BufferCache entry names.
struct CachedBuffer {
    int32_t streamId = 0;
    int64_t bufferId = 0;

    bool operator==(const CachedBuffer&) const = default;
};

class BufferPool {
public:
    struct Lease {
        int64_t bufferId = 0;
        bool firstUse = false;  // the handle must travel with this use
        buffer_handle_t handle = nullptr;
    };

    explicit BufferPool(BufferLayout layout);
    ~BufferPool();
    BufferPool(const BufferPool&) = delete;
    BufferPool& operator=(const BufferPool&) = delete;

    // Makes `streams` the configured set: streams that stay keep their buffers, streams that go
    // lose theirs (which must all be back). Returns the dropped buffers.
    std::vector<CachedBuffer> configure(const std::vector<PoolStream>& streams);

    // A free buffer of the stream, or a new one while fewer than `limit` are out. nullopt when
    // the stream is unknown, `limit` buffers are out, or allocation fails.
    std::optional<Lease> acquire(int32_t streamId, size_t limit);
    // Takes a buffer back; false when the id is unknown or the buffer is not out.
    bool release(int64_t bufferId);

    // Frees up to `count` free buffers of the stream (the oldest ids first), as a framework does
    // when its queue shrinks; returns them.
    std::vector<CachedBuffer> discardFree(int32_t streamId, size_t count);
    // Frees every buffer that is back; returns them.
    std::vector<CachedBuffer> discardAllFree();

    // Frees every buffer, out or not.
    void clear();

    size_t outstanding(int32_t streamId) const;
    size_t outstandingTotal() const;
    std::optional<int32_t> streamOf(int64_t bufferId) const;
    // The mapped contents of a buffer, or nullopt for an unknown id or a mapping failure.
    struct Contents {
        const void* data = nullptr;
        size_t size = 0;
    };
    std::optional<Contents> contents(int64_t bufferId) const;
    size_t allocatedCount() const { return mBuffers.size(); }

private:
    struct Buffer {
        int32_t streamId = 0;
        std::unique_ptr<virtual_camera::HostBuffer> memory;
        std::unique_ptr<virtual_camera::MappedBuffer> mapping;
        bool out = false;
    };
    struct Stream {
        PoolStream setup;
        size_t out = 0;
    };

    std::vector<CachedBuffer> discard(int32_t streamId, size_t count);

    BufferLayout mLayout;
    int64_t mNextBufferId = 1;
    std::map<int32_t, Stream> mStreams;
    std::map<int64_t, Buffer> mBuffers;  // ordered by id, so the oldest come first
};

}  // namespace camera_harness
