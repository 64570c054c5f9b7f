#define LOG_TAG "tarnic_hal_aidl2legacy_common"

#include "BufferHandleCacheMgr.h"

#include <aidl2legacy/common/CloningBufferImporter.h>
#include <aidlcommonsupport/NativeHandle.h>
#include <log/log.h>
#include <stdio.h>

#include <cerrno>
#include <cinttypes>
#include <cstring>
#include <set>

namespace kovo::aidl2legacy {

namespace {

// Frees the record of a handle that borrows the framework's fds, leaving the fds open.
struct NativeHandleViewDeleter {
    void operator()(native_handle_t* view) const { native_handle_delete(view); }
};

using NativeHandleView = std::unique_ptr<native_handle_t, NativeHandleViewDeleter>;

bool namesNoBuffer(const IBufferHandleCacheMgr::StreamBuffer& buffer) {
    return buffer.streamId == -1 || buffer.bufferId == 0;
}

int32_t failClosed(const char* operation) {
    ALOGE("%s: the buffer handle cache is closed", operation);
    return -ENODEV;
}

}  // namespace

std::shared_ptr<IBufferHandleCacheMgr> IBufferHandleCacheMgr::create() {
    return create(std::make_unique<CloningBufferImporter>());
}

std::shared_ptr<IBufferHandleCacheMgr> IBufferHandleCacheMgr::create(
        std::unique_ptr<IBufferImporter> importer) {
    if (importer == nullptr) {
        ALOGE("A buffer handle cache needs a buffer importer");
        return nullptr;
    }
    return std::make_shared<BufferHandleCacheMgr>(std::move(importer));
}

BufferHandleCacheMgr::BufferHandleCacheMgr(std::unique_ptr<IBufferImporter> importer)
    : mImporter(std::move(importer)) {}

int32_t BufferHandleCacheMgr::closeCacheMgr() {
    std::lock_guard lock(mLock);
    mBuffers.clear();
    mClosed = true;
    return 0;
}

int32_t BufferHandleCacheMgr::configureStreams(const StreamConfiguration& configuration) {
    std::lock_guard lock(mLock);
    if (mClosed) return failClosed(__func__);
    std::set<int32_t> streamIds;
    for (const auto& stream : configuration.streams) streamIds.insert(stream.id);
    std::erase_if(mBuffers,
                  [&](const auto& entry) { return streamIds.count(entry.first.first) == 0; });
    return 0;
}

int32_t BufferHandleCacheMgr::removeBufferCaches(const std::vector<BufferCache>& caches) {
    std::lock_guard lock(mLock);
    if (mClosed) return failClosed(__func__);
    for (const auto& cache : caches) mBuffers.erase(Key{cache.streamId, cache.bufferId});
    return 0;
}

int32_t BufferHandleCacheMgr::importRequestBuffers(const std::vector<CaptureRequest>& requests,
                                                   std::vector<RequestBufferCache>* caches) {
    if (caches == nullptr) {
        ALOGE("%s: no place for the request buffers", __func__);
        return -EINVAL;
    }
    std::lock_guard lock(mLock);
    caches->clear();
    if (mClosed) return failClosed(__func__);

    int32_t result = 0;
    caches->reserve(requests.size());
    for (const auto& request : requests) {
        RequestBufferCache cache;
        cache.frameNumber = request.frameNumber;
        auto resolveInto = [&](const StreamBuffer& buffer) {
            if (namesNoBuffer(buffer)) return;
            Buffers::iterator found;
            int32_t status = resolveLocked(buffer, &found);
            if (status != 0) {
                ALOGE("%s: frame %d left without buffer %" PRId64 " of stream %d: %s", __func__,
                      request.frameNumber, buffer.bufferId, buffer.streamId, strerror(-status));
                if (result == 0) result = status;
                return;
            }
            // No share of the buffer here: the request path takes no reference count.
            cache.bufferHandles.insert_or_assign(buffer.streamId,
                                                 BufferHandle{buffer.streamId, buffer.bufferId,
                                                              found->second->handle(), nullptr});
        };
        resolveInto(request.inputBuffer);
        for (const auto& buffer : request.outputBuffers) resolveInto(buffer);
        caches->push_back(std::move(cache));
    }
    return result;
}

int32_t BufferHandleCacheMgr::importStreamBuffers(const std::vector<StreamBuffer>& buffers,
                                                  std::map<int64_t, BufferHandle>& handles) {
    std::lock_guard lock(mLock);
    handles.clear();
    if (mClosed) return failClosed(__func__);

    int32_t result = 0;
    for (const auto& buffer : buffers) {
        Buffers::iterator found;
        int32_t status = namesNoBuffer(buffer) ? -EINVAL : resolveLocked(buffer, &found);
        if (status != 0) {
            ALOGE("%s: left out buffer %" PRId64 " of stream %d: %s", __func__, buffer.bufferId,
                  buffer.streamId, strerror(-status));
            if (result == 0) result = status;
            continue;
        }
        // The device keeps this buffer until it gives it back, whatever the cache does meanwhile.
        handles.insert_or_assign(buffer.bufferId,
                                 BufferHandle{buffer.streamId, buffer.bufferId,
                                              found->second->handle(), found->second});
    }
    return result;
}

int32_t BufferHandleCacheMgr::getBufferHandle(int32_t streamId, int64_t bufferId,
                                              BufferHandle* handle) {
    if (handle == nullptr) return -EINVAL;
    std::lock_guard lock(mLock);
    if (mClosed) return failClosed(__func__);
    auto it = mBuffers.find(Key{streamId, bufferId});
    if (it == mBuffers.end()) return -ENOENT;
    *handle = BufferHandle{streamId, bufferId, it->second->handle(), nullptr};
    return 0;
}

int32_t BufferHandleCacheMgr::getCachedBufferCount(size_t* count) {
    if (count == nullptr) return -EINVAL;
    std::lock_guard lock(mLock);
    *count = mBuffers.size();
    return mClosed ? failClosed(__func__) : 0;
}

int32_t BufferHandleCacheMgr::dump(int fd) {
    if (fd < 0) return -EINVAL;
    std::lock_guard lock(mLock);
    if (mClosed) return failClosed(__func__);
    if (dprintf(fd, "BufferHandleCacheMgr: %zu cached buffers\n", mBuffers.size()) < 0) {
        return -errno;
    }
    for (auto& [key, buffer] : mBuffers) {
        buffer_handle_t handle = *buffer->handle();
        if (dprintf(fd, "  stream %d buffer %" PRId64 ": handle %p, %d fds, %d ints\n", key.first,
                    key.second, handle, handle->numFds, handle->numInts) < 0) {
            return -errno;
        }
    }
    return 0;
}

int32_t BufferHandleCacheMgr::resetCacheMgr() {
    std::lock_guard lock(mLock);
    mBuffers.clear();
    return 0;
}

int32_t BufferHandleCacheMgr::resolveLocked(const StreamBuffer& buffer, Buffers::iterator* found) {
    const Key key{buffer.streamId, buffer.bufferId};
    auto it = mBuffers.find(key);
    if (!android::isAidlNativeHandleEmpty(buffer.buffer)) {
        buffer_handle_t imported = nullptr;
        int32_t status = importLocked(buffer, &imported);
        if (status != 0) return status;
        if (it == mBuffers.end()) {
            it = mBuffers.emplace(key, std::make_shared<ImportedBuffer>(mImporter, imported)).first;
        } else if (it->second.use_count() == 1) {
            // Nobody else holds the old buffer: the new one takes its place at the same address.
            it->second->reset(imported);
        } else {
            // The device still holds the old buffer; it goes when the device gives it back.
            it->second = std::make_shared<ImportedBuffer>(mImporter, imported);
        }
    } else if (it == mBuffers.end()) {
        return -ENOENT;
    }
    *found = it;
    return 0;
}

int32_t BufferHandleCacheMgr::importLocked(const StreamBuffer& buffer, buffer_handle_t* imported) {
    NativeHandleView view(android::makeFromAidl(buffer.buffer));
    if (view == nullptr) return -EINVAL;
    int32_t status = mImporter->importBuffer(view.get(), imported);
    if (status == 0 && *imported == nullptr) return -EINVAL;
    return status;
}

}  // namespace kovo::aidl2legacy
