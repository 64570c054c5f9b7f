/*
 * The virtual sensor of one open device: a thread that takes accepted requests in order, paces
 * them by their frame duration on CLOCK_MONOTONIC, and for each sends the shutter, the early
 * partial result, writes the output buffers (pattern, release fence) and sends the final result.
 * Every notify and process_capture_result of the device comes from this thread; buffers are also
 * returned to the HAL buffer manager from the threads that call signalStreamFlush and stop.
 *
 * enqueue, flush, waitIdle, signalStreamFlush and stop may be called from any thread. mLock guards
 * the queue, the flush counters and the stream limits; it is never held during a callback.
 */
#pragma once

#include <hardware/camera3.h>
#include <stdint.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "CameraCharacteristics.h"
#include "CaptureRequest.h"
#include "HalBufferManager.h"
#include "Options.h"

namespace virtual_camera {

class Pipeline {
public:
    Pipeline(const CameraCharacteristics& characteristics, const camera3_callback_ops_t* callbacks,
             const Options& options);
    ~Pipeline();
    Pipeline(const Pipeline&) = delete;
    Pipeline& operator=(const Pipeline&) = delete;

    // Shortest frame duration the configured streams allow.
    void setMinFrameDuration(int64_t duration);
    // Blocks while kPipelineMaxDepth requests wait. False once stopped (request untouched).
    bool enqueue(CaptureRequest& request);
    // Completes everything accepted so far, with errors for what had not started; returns when
    // done.
    void flush();
    // Waits until nothing is queued or in progress.
    void waitIdle();
    void signalStreamFlush(const std::vector<const camera3_stream_t*>& streams);
    // Flushes, ends the thread and returns pooled buffers. Idempotent.
    void stop();
    void dump(int fd);

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void processFrame(CaptureRequest& request);
    bool flushPendingLocked() const { return mFlushRequested != mFlushDone; }
    bool flushPending();
    bool waitForStart(Clock::time_point start);

    void failRequest(CaptureRequest& request);
    void notifyShutter(uint32_t frameNumber, int64_t timestamp, int64_t readoutTimestamp);
    void notifyError(uint32_t frameNumber, camera3_stream_t* stream, int code);
    // Fills the buffer; false when it could not be written (nothing written then).
    bool writeBuffer(uint32_t frameNumber, OutputBuffer& output, camera3_stream_buffer_t& record);
    void sendResult(uint32_t frameNumber, const camera_metadata_t* metadata, uint32_t partial,
                    const std::vector<camera3_stream_buffer_t>& buffers,
                    const std::vector<std::string>& physicalIds,
                    const std::vector<MetadataPtr>& physicalMetadata);

    const CameraCharacteristics& mCharacteristics;
    const camera3_callback_ops_t* mCallbacks;
    const Options mOptions;
    const std::string mCameraId;
    std::unique_ptr<HalBufferManager> mBufferManager;  // HAL buffer manager mode only

    std::mutex mLock;
    std::condition_variable mCond;
    std::deque<CaptureRequest> mQueue;
    bool mBusy = false;
    bool mStopping = false;
    uint64_t mFlushRequested = 0;
    uint64_t mFlushDone = 0;
    int64_t mMinFrameDuration = 0;
    uint64_t mFramesDone = 0;

    // Pipeline thread only.
    std::optional<Clock::time_point> mNextStart;

    std::thread mThread;
};

}  // namespace virtual_camera
