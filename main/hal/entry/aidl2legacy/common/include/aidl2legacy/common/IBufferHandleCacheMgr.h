/*
 * The buffer handle cache of one camera session: framework buffers imported once per
 * (stream id, buffer id) and found again by their ids, since the framework sends a buffer's
 * handle only the first time it uses the id. The session creates one at open and shares it with
 * the callback bridge (std::shared_ptr); the cache owns every imported handle and releases them
 * all at the latest when it is destroyed.
 *
 * Thread-safe: every operation takes the manager's one lock, so binder threads and legacy device
 * threads may call at once. Every operation returns 0 or a negative errno value; after
 * closeCacheMgr() all but resetCacheMgr() fail with -ENODEV (leaving their outputs empty).
 *
 * Other binaries call these operations through the virtual table: the order of the virtual
 * functions is fixed and must not change.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BufferCache.h>
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <aidl2legacy/common/BufferHandle.h>
#include <aidl2legacy/common/IBufferImporter.h>
#include <aidl2legacy/common/RequestBufferCache.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace kovo::aidl2legacy {

class IBufferHandleCacheMgr {
public:
    using BufferCache = aidl::android::hardware::camera::device::BufferCache;
    using CaptureRequest = aidl::android::hardware::camera::device::CaptureRequest;
    using StreamBuffer = aidl::android::hardware::camera::device::StreamBuffer;
    using StreamConfiguration = aidl::android::hardware::camera::device::StreamConfiguration;

    // A cache that imports by cloning handles (CloningBufferImporter).
    static std::shared_ptr<IBufferHandleCacheMgr> create();
    // A cache that imports through `importer`; null when `importer` is null.
    static std::shared_ptr<IBufferHandleCacheMgr> create(std::unique_ptr<IBufferImporter> importer);

    virtual ~IBufferHandleCacheMgr() = default;

    // Releases every buffer; from now on the other operations fail with -ENODEV.
    virtual int32_t closeCacheMgr() = 0;
    // Releases the buffers of streams that are not part of `configuration`.
    virtual int32_t configureStreams(const StreamConfiguration& configuration) = 0;
    // Releases the named buffers; unknown ones are skipped.
    virtual int32_t removeBufferCaches(const std::vector<BufferCache>& caches) = 0;
    // Replaces `*caches` by one entry per request, in order: its frame number and, per stream, its
    // buffer (input and outputs). A buffer that carries a handle is imported and cached, replacing
    // an older buffer of the same ids; one without is looked up. Stream id -1 and buffer id 0 are
    // skipped. A buffer that can be neither imported nor found is left out (and logged); the first
    // such failure is the result.
    virtual int32_t importRequestBuffers(const std::vector<CaptureRequest>& requests,
                                         std::vector<RequestBufferCache>* caches) = 0;
    // The same for buffers the framework hands out for the device's buffer manager: `handles` is
    // replaced by one entry per buffer, keyed by buffer id.
    virtual int32_t importStreamBuffers(const std::vector<StreamBuffer>& buffers,
                                        std::map<int64_t, BufferHandle>& handles) = 0;
    // The cached buffer of (streamId, bufferId); -ENOENT when there is none.
    virtual int32_t getBufferHandle(int32_t streamId, int64_t bufferId, BufferHandle* handle) = 0;
    // The number of cached buffers of all streams.
    virtual int32_t getCachedBufferCount(size_t* count) = 0;
    // Writes one line per cached buffer to `fd`.
    virtual int32_t dump(int fd) = 0;
    // Releases every buffer; the cache stays usable (a closed one stays closed).
    virtual int32_t resetCacheMgr() = 0;
};

}  // namespace kovo::aidl2legacy
