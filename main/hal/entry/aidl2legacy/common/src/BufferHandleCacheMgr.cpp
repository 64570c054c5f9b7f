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
            BufferHandle handle;
            int32_t status = resolveLocked(buffer, &handle);
            if (status != 0) {
                ALOGE("%s: frame %d left without buffer %" PRId64 " of stream %d: %s", __func__,
                      request.frameNumber, buffer.bufferId, buffer.streamId, strerror(-status));
                if (result == 0) result = status;
                return;
            }
            cache.bufferHandles.insert_or_assign(buffer.streamId, handle);
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
        BufferHandle handle;
        int32_t status = namesNoBuffer(buffer) ? -EINVAL : resolveLocked(buffer, &handle);
        if (status != 0) {
            ALOGE("%s: left out buffer %" PRId64 " of stream %d: %s", __func__, buffer.bufferId,
                  buffer.streamId, strerror(-status));
            if (result == 0) result = status;
            continue;
        }
        handles.insert_or_assign(buffer.bufferId, handle);
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
    *handle = BufferHandle{streamId, bufferId, it->second.handle()};
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
        buffer_handle_t handle = *buffer.handle();
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

int32_t BufferHandleCacheMgr::resolveLocked(const StreamBuffer& buffer, BufferHandle* handle) {
    const Key key{buffer.streamId, buffer.bufferId};
    auto it = mBuffers.find(key);
    if (!android::isAidlNativeHandleEmpty(buffer.buffer)) {
        buffer_handle_t imported = nullptr;
        int32_t status = importLocked(buffer, &imported);
        if (status != 0) return status;
        if (it == mBuffers.end()) {
            it = mBuffers.try_emplace(key, *mImporter, imported).first;
        } else {
            it->second.reset(imported);
        }
    } else if (it == mBuffers.end()) {
        return -ENOENT;
    }
    *handle = BufferHandle{key.first, key.second, it->second.handle()};
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
