#include "BufferPool.h"

#include <virtual_camera/HostBuffer.h>

#include <set>

namespace camera_harness {

BufferPool::BufferPool(BufferLayout layout) : mLayout(layout) {}

BufferPool::~BufferPool() = default;

std::vector<CachedBuffer> BufferPool::configure(const std::vector<PoolStream>& streams) {
    std::set<int32_t> kept;
    for (const auto& stream : streams) kept.insert(stream.streamId);

    std::vector<CachedBuffer> dropped;
    for (auto it = mBuffers.begin(); it != mBuffers.end();) {
        if (kept.count(it->second.streamId) != 0) {
            ++it;
            continue;
        }
        dropped.push_back({it->second.streamId, it->first});
        it = mBuffers.erase(it);
    }

    std::map<int32_t, Stream> configured;
    for (const auto& stream : streams) {
        auto old = mStreams.find(stream.streamId);
        size_t out = old == mStreams.end() ? 0 : old->second.out;
        configured[stream.streamId] = Stream{stream, out};
    }
    mStreams = std::move(configured);
    return dropped;
}

std::optional<BufferPool::Lease> BufferPool::acquire(int32_t streamId, size_t limit) {
    auto stream = mStreams.find(streamId);
    if (stream == mStreams.end() || stream->second.out >= limit) return std::nullopt;

    for (auto& [id, buffer] : mBuffers) {
        if (buffer.streamId == streamId && !buffer.out) {
            buffer.out = true;
            ++stream->second.out;
            return Lease{id, false, buffer.memory->handle()};
        }
    }

    const PoolStream& setup = stream->second.setup;
    int fds = mLayout == BufferLayout::kFdPerPlane ? virtual_camera::hostBufferPlanes(setup.format)
                                                   : 1;
    Buffer buffer;
    buffer.streamId = streamId;
    buffer.memory = virtual_camera::HostBuffer::allocate(setup.bufferSize, fds);
    if (!buffer.memory) return std::nullopt;
    buffer.mapping = virtual_camera::MappedBuffer::map(buffer.memory->handle(), false);
    buffer.out = true;
    int64_t id = mNextBufferId++;
    buffer_handle_t handle = buffer.memory->handle();
    mBuffers.emplace(id, std::move(buffer));
    ++stream->second.out;
    return Lease{id, true, handle};
}

bool BufferPool::release(int64_t bufferId) {
    auto it = mBuffers.find(bufferId);
    if (it == mBuffers.end() || !it->second.out) return false;
    it->second.out = false;
    auto stream = mStreams.find(it->second.streamId);
    if (stream != mStreams.end()) --stream->second.out;
    return true;
}

std::vector<CachedBuffer> BufferPool::discardFree(int32_t streamId, size_t count) {
    return discard(streamId, count);
}

std::vector<CachedBuffer> BufferPool::discardAllFree() {
    return discard(-1, SIZE_MAX);
}

std::vector<CachedBuffer> BufferPool::discard(int32_t streamId, size_t count) {
    std::vector<CachedBuffer> dropped;
    for (auto it = mBuffers.begin(); it != mBuffers.end() && dropped.size() < count;) {
        const Buffer& buffer = it->second;
        if (buffer.out || (streamId != -1 && buffer.streamId != streamId)) {
            ++it;
            continue;
        }
        dropped.push_back({buffer.streamId, it->first});
        it = mBuffers.erase(it);
    }
    return dropped;
}

void BufferPool::clear() {
    mBuffers.clear();
    for (auto& [id, stream] : mStreams) stream.out = 0;
}

size_t BufferPool::outstanding(int32_t streamId) const {
    auto stream = mStreams.find(streamId);
    return stream == mStreams.end() ? 0 : stream->second.out;
}

size_t BufferPool::outstandingTotal() const {
    size_t total = 0;
    for (const auto& [id, buffer] : mBuffers) total += buffer.out ? 1 : 0;
    return total;
}

std::optional<int32_t> BufferPool::streamOf(int64_t bufferId) const {
    auto it = mBuffers.find(bufferId);
    if (it == mBuffers.end()) return std::nullopt;
    return it->second.streamId;
}

std::optional<BufferPool::Contents> BufferPool::contents(int64_t bufferId) const {
    auto it = mBuffers.find(bufferId);
    if (it == mBuffers.end() || !it->second.mapping) return std::nullopt;
    return Contents{it->second.mapping->data(), it->second.mapping->size()};
}

}  // namespace camera_harness
