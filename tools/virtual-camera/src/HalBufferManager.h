/*
 * The HAL-buffer-manager side of one open device: asks the framework for output buffers through
 * request_stream_buffers when a frame needs them, keeps the spare ones in a small per-stream pool,
 * and gives pooled buffers back through return_stream_buffers (status ERROR, the acquire fence
 * handed back as release fence). The pipeline thread acquires; any thread may return. mLock guards
 * the pool and is never held during a framework call.
 */
#pragma once

#include <hardware/camera3.h>

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "CaptureRequest.h"
#include "UniqueFd.h"

namespace virtual_camera {

class HalBufferManager {
public:
    HalBufferManager(const camera3_callback_ops_t* callbacks, std::string cameraId);
    ~HalBufferManager();
    HalBufferManager(const HalBufferManager&) = delete;
    HalBufferManager& operator=(const HalBufferManager&) = delete;

    // Gives each buffer without a handle one from the pool or from the framework. Buffers the
    // framework could not provide keep a null handle (logged).
    void acquire(std::vector<OutputBuffer>& buffers);
    // Returns the pooled buffers of `streams` to the framework.
    void returnStreams(const std::vector<const camera3_stream_t*>& streams);
    void returnAll();
    size_t pooledCount() const;

private:
    struct PooledBuffer {
        buffer_handle_t* buffer;
        UniqueFd acquireFence;
    };

    void returnBuffers(std::vector<std::pair<camera3_stream_t*, PooledBuffer>> buffers);

    const camera3_callback_ops_t* mCallbacks;
    const std::string mCameraId;
    mutable std::mutex mLock;
    std::map<camera3_stream_t*, std::deque<PooledBuffer>> mPool;
};

}  // namespace virtual_camera
