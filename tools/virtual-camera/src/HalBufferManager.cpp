#define LOG_TAG "VirtualCamera"

#include "HalBufferManager.h"

#include <log/log.h>

#include <algorithm>

namespace virtual_camera {
namespace {

// Buffers asked for per stream at a time: one for the frame, one spare for the next.
constexpr uint32_t kBuffersPerRequest = 2;

}  // namespace

HalBufferManager::HalBufferManager(const camera3_callback_ops_t* callbacks, std::string cameraId)
    : mCallbacks(callbacks), mCameraId(std::move(cameraId)) {}

HalBufferManager::~HalBufferManager() {
    returnAll();
}

void HalBufferManager::acquire(std::vector<OutputBuffer>& buffers) {
    std::vector<OutputBuffer*> missing;
    {
        std::lock_guard<std::mutex> guard(mLock);
        for (OutputBuffer& output : buffers) {
            if (output.buffer != nullptr) continue;
            auto& pool = mPool[output.stream];
            if (pool.empty()) {
                missing.push_back(&output);
                continue;
            }
            output.buffer = pool.front().buffer;
            output.acquireFence = std::move(pool.front().acquireFence);
            pool.pop_front();
        }
    }
    if (missing.empty()) return;

    uint32_t count = static_cast<uint32_t>(missing.size());
    std::vector<camera3_buffer_request_t> requests(count);
    std::vector<camera3_stream_buffer_ret_t> returned(count);
    std::vector<camera3_stream_buffer_t> storage(count * kBuffersPerRequest);
    for (uint32_t i = 0; i < count; ++i) {
        requests[i] = {missing[i]->stream, kBuffersPerRequest};
        returned[i] = {};
        returned[i].output_buffers = &storage[i * kBuffersPerRequest];
    }
    uint32_t returnedCount = 0;
    camera3_buffer_request_status_t status = mCallbacks->request_stream_buffers(
            mCallbacks, count, requests.data(), &returnedCount, returned.data());
    if (status != CAMERA3_BUF_REQ_OK && status != CAMERA3_BUF_REQ_FAILED_PARTIAL) {
        ALOGE("camera %s: request_stream_buffers for %u streams failed with status %d",
              mCameraId.c_str(), count, status);
        return;
    }

    std::lock_guard<std::mutex> guard(mLock);
    for (uint32_t i = 0; i < std::min(count, returnedCount); ++i) {
        const camera3_stream_buffer_ret_t& entry = returned[i];
        if (entry.status != CAMERA3_PS_BUF_REQ_OK) {
            ALOGE("camera %s: no buffer for stream %p, status %d", mCameraId.c_str(),
                  missing[i]->stream, entry.status);
            continue;
        }
        uint32_t received = std::min(entry.num_output_buffers, kBuffersPerRequest);
        for (uint32_t j = 0; j < received; ++j) {
            const camera3_stream_buffer_t& buffer = entry.output_buffers[j];
            UniqueFd fence(buffer.acquire_fence);
            if (buffer.buffer == nullptr || *buffer.buffer == nullptr) {
                ALOGE("camera %s: request_stream_buffers gave a null buffer", mCameraId.c_str());
                continue;
            }
            if (missing[i]->buffer == nullptr) {
                missing[i]->buffer = buffer.buffer;
                missing[i]->acquireFence = std::move(fence);
            } else {
                mPool[missing[i]->stream].push_back({buffer.buffer, std::move(fence)});
            }
        }
    }
}

void HalBufferManager::returnStreams(const std::vector<const camera3_stream_t*>& streams) {
    std::vector<std::pair<camera3_stream_t*, PooledBuffer>> taken;
    {
        std::lock_guard<std::mutex> guard(mLock);
        for (auto& [stream, pool] : mPool) {
            if (std::find(streams.begin(), streams.end(), stream) == streams.end()) continue;
            for (PooledBuffer& buffer : pool) taken.emplace_back(stream, std::move(buffer));
            pool.clear();
        }
    }
    returnBuffers(std::move(taken));
}

void HalBufferManager::returnAll() {
    std::vector<std::pair<camera3_stream_t*, PooledBuffer>> taken;
    {
        std::lock_guard<std::mutex> guard(mLock);
        for (auto& [stream, pool] : mPool) {
            for (PooledBuffer& buffer : pool) taken.emplace_back(stream, std::move(buffer));
        }
        mPool.clear();
    }
    returnBuffers(std::move(taken));
}

size_t HalBufferManager::pooledCount() const {
    std::lock_guard<std::mutex> guard(mLock);
    size_t count = 0;
    for (const auto& [stream, pool] : mPool) count += pool.size();
    return count;
}

void HalBufferManager::returnBuffers(std::vector<std::pair<camera3_stream_t*, PooledBuffer>> buffers) {
    if (buffers.empty()) return;
    std::vector<camera3_stream_buffer_t> records;
    records.reserve(buffers.size());
    for (auto& [stream, pooled] : buffers) {
        // Never waited on, so the acquire fence goes back as the release fence.
        records.push_back({stream, pooled.buffer, CAMERA3_BUFFER_STATUS_ERROR, -1,
                           pooled.acquireFence.release()});
    }
    std::vector<const camera3_stream_buffer_t*> pointers;
    for (const camera3_stream_buffer_t& record : records) pointers.push_back(&record);
    mCallbacks->return_stream_buffers(mCallbacks, static_cast<uint32_t>(pointers.size()),
                                      pointers.data());
}

}  // namespace virtual_camera
