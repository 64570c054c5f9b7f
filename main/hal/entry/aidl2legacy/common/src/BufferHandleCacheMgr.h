/*
 * Our IBufferHandleCacheMgr: imported buffers in one ordered map keyed by (stream id, buffer id),
 * so that the buffers of one stream sit together. Made by IBufferHandleCacheMgr::create(); owns
 * its importer and every handle imported through it, sharing a buffer it handed out for the
 * device's buffer manager with the BufferHandle it went out in. mLock guards all state and is held
 * for the whole of each operation, importer calls included.
 */
#pragma once

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>

#include <mutex>
#include <utility>

#include "ImportedBuffer.h"

namespace kovo::aidl2legacy {

class BufferHandleCacheMgr : public IBufferHandleCacheMgr {
public:
    explicit BufferHandleCacheMgr(std::unique_ptr<IBufferImporter> importer);

    int32_t closeCacheMgr() override;
    int32_t configureStreams(const StreamConfiguration& configuration) override;
    int32_t removeBufferCaches(const std::vector<BufferCache>& caches) override;
    int32_t importRequestBuffers(const std::vector<CaptureRequest>& requests,
                                 std::vector<RequestBufferCache>* caches) override;
    int32_t importStreamBuffers(const std::vector<StreamBuffer>& buffers,
                                std::map<int64_t, BufferHandle>& handles) override;
    int32_t getBufferHandle(int32_t streamId, int64_t bufferId, BufferHandle* handle) override;
    int32_t getCachedBufferCount(size_t* count) override;
    int32_t dump(int fd) override;
    int32_t resetCacheMgr() override;

private:
    // Stream id, buffer id.
    using Key = std::pair<int32_t, int64_t>;
    using Buffers = std::map<Key, std::shared_ptr<ImportedBuffer>>;

    // Imports `buffer` when it carries a handle, else finds it in the cache; `*found` is its
    // entry. mLock held.
    int32_t resolveLocked(const StreamBuffer& buffer, Buffers::iterator* found);
    // Imports the buffer `buffer` carries into `*imported`. mLock held.
    int32_t importLocked(const StreamBuffer& buffer, buffer_handle_t* imported);

    std::mutex mLock;
    bool mClosed = false;
    const std::shared_ptr<IBufferImporter> mImporter;
    Buffers mBuffers;
};

}  // namespace kovo::aidl2legacy
