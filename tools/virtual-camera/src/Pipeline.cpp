#define LOG_TAG "VirtualCamera"
// Per-frame lines are verbose; the "verbose" option decides whether they are written.
#define LOG_NDEBUG 0

#include "Pipeline.h"

#include <errno.h>
#include <log/log.h>
#include <stdio.h>
#include <string.h>
#include <system/graphics.h>
#include <virtual_camera/HostBuffer.h>
#include <virtual_camera/Pattern.h>

#include <algorithm>

#include "Fence.h"
#include "MetadataBuilder.h"

namespace virtual_camera {
namespace {

// An acquire fence that does not signal within this time costs the buffer, not the device.
constexpr int kAcquireFenceTimeoutMs = 1000;
constexpr uint8_t kPipelineDepth = 2;
// What lies behind a standard shutter message when the module has no readout timestamp: not a
// time the frame could have been read out at.
constexpr uint64_t kGarbageReadout = 0x0BADF00D;

constexpr uint8_t u8(int value) {
    return static_cast<uint8_t>(value);
}

}  // namespace

Pipeline::Pipeline(const CameraCharacteristics& characteristics,
                   const camera3_callback_ops_t* callbacks, const Options& options)
    : mCharacteristics(characteristics),
      mCallbacks(callbacks),
      mOptions(options),
      mCameraId(characteristics.description().id) {
    if (mOptions.halBufferManager) {
        mBufferManager = std::make_unique<HalBufferManager>(callbacks, mCameraId);
    }
    mThread = std::thread(&Pipeline::run, this);
}

Pipeline::~Pipeline() {
    stop();
}

void Pipeline::setMinFrameDuration(int64_t duration) {
    std::lock_guard<std::mutex> guard(mLock);
    mMinFrameDuration = duration;
}

bool Pipeline::enqueue(CaptureRequest& request) {
    std::unique_lock<std::mutex> lock(mLock);
    mCond.wait(lock, [&] { return mStopping || mQueue.size() < kPipelineMaxDepth; });
    if (mStopping) return false;
    mQueue.push_back(std::move(request));
    mCond.notify_all();
    return true;
}

void Pipeline::flush() {
    if (std::this_thread::get_id() == mThread.get_id()) {
        // From inside one of our own callbacks: the thread cannot wait for itself.
        ALOGW("camera %s: flush from a result callback completes nothing", mCameraId.c_str());
        return;
    }
    std::unique_lock<std::mutex> lock(mLock);
    if (mStopping) return;
    uint64_t target = ++mFlushRequested;
    mCond.notify_all();
    mCond.wait(lock, [&] { return mFlushDone >= target; });
}

void Pipeline::waitIdle() {
    if (std::this_thread::get_id() == mThread.get_id()) return;
    std::unique_lock<std::mutex> lock(mLock);
    mCond.wait(lock, [&] { return mQueue.empty() && !mBusy; });
}

void Pipeline::signalStreamFlush(const std::vector<const camera3_stream_t*>& streams) {
    if (mBufferManager) mBufferManager->returnStreams(streams);
}

void Pipeline::stop() {
    if (!mThread.joinable()) return;
    flush();
    {
        std::lock_guard<std::mutex> guard(mLock);
        mStopping = true;
        mCond.notify_all();
    }
    mThread.join();
    if (mBufferManager) mBufferManager->returnAll();
}

void Pipeline::dump(int fd) {
    std::lock_guard<std::mutex> guard(mLock);
    dprintf(fd, "  frames done: %llu, queued: %zu, busy: %d, flushes: %llu\n",
            static_cast<unsigned long long>(mFramesDone), mQueue.size(), mBusy,
            static_cast<unsigned long long>(mFlushDone));
    dprintf(fd, "  min frame duration: %lld ns\n", static_cast<long long>(mMinFrameDuration));
    if (mBufferManager) {
        dprintf(fd, "  HAL buffer manager: %zu pooled buffers\n", mBufferManager->pooledCount());
    }
}

bool Pipeline::flushPending() {
    std::lock_guard<std::mutex> guard(mLock);
    return flushPendingLocked();
}

void Pipeline::run() {
    std::unique_lock<std::mutex> lock(mLock);
    while (true) {
        mCond.wait(lock, [&] { return mStopping || !mQueue.empty() || flushPendingLocked(); });
        if (flushPendingLocked()) {
            uint64_t target = mFlushRequested;
            std::deque<CaptureRequest> drained;
            drained.swap(mQueue);
            mBusy = true;
            mCond.notify_all();
            lock.unlock();
            for (CaptureRequest& request : drained) failRequest(request);
            drained.clear();
            if (mBufferManager) mBufferManager->returnAll();
            lock.lock();
            mBusy = false;
            mFlushDone = target;
            mCond.notify_all();
            continue;
        }
        if (mQueue.empty()) return;  // stopping

        CaptureRequest request = std::move(mQueue.front());
        mQueue.pop_front();
        mBusy = true;
        mCond.notify_all();
        lock.unlock();
        processFrame(request);
        request = CaptureRequest();
        lock.lock();
        mBusy = false;
        ++mFramesDone;
        mCond.notify_all();
    }
}

bool Pipeline::waitForStart(Clock::time_point start) {
    std::unique_lock<std::mutex> lock(mLock);
    mCond.wait_until(lock, start, [&] { return flushPendingLocked(); });
    return !flushPendingLocked();
}

void Pipeline::processFrame(CaptureRequest& request) {
    const uint32_t frameNumber = request.frameNumber;
    const camera_metadata_t* settings = request.settings.get();
    if (request.fault == Fault::kFailRequest) {
        ALOGI("camera %s: frame %u: injected request failure", mCameraId.c_str(), frameNumber);
        failRequest(request);
        return;
    }
    if (mBufferManager) {
        mBufferManager->acquire(request.buffers);
        if (std::none_of(request.buffers.begin(), request.buffers.end(),
                         [](const OutputBuffer& output) { return output.buffer != nullptr; })) {
            ALOGE("camera %s: frame %u: no output buffer available", mCameraId.c_str(), frameNumber);
            failRequest(request);
            return;
        }
    }

    int64_t minDuration;
    {
        std::lock_guard<std::mutex> guard(mLock);
        minDuration = mMinFrameDuration;
    }
    const int64_t duration = std::clamp(
            findInt64(settings, ANDROID_SENSOR_FRAME_DURATION).value_or(kDefaultFrameDuration),
            minDuration, kMaxFrameDuration);
    const auto period = std::chrono::nanoseconds(duration);
    // Keep the cadence of the previous frames unless more than a frame behind it.
    Clock::time_point now = Clock::now();
    Clock::time_point start = mNextStart.value_or(now);
    if (start + period < now) start = now;
    if (mOptions.unpaced) {
        // No sensor behind it: the frame starts now, only the timestamps stay apart.
        start = std::max(now, mNextStart.value_or(now));
        mNextStart = start + std::chrono::nanoseconds(1);
    } else {
        if (!waitForStart(start)) {
            failRequest(request);
            return;
        }
        mNextStart = start + period;
    }

    const int64_t timestamp =
            std::chrono::duration_cast<std::chrono::nanoseconds>(start.time_since_epoch()).count();
    const int64_t exposure = std::clamp(
            findInt64(settings, ANDROID_SENSOR_EXPOSURE_TIME).value_or(kDefaultExposureTime),
            kMinExposureTime, duration);
    notifyShutter(frameNumber, timestamp, timestamp + exposure);

    MetadataBuilder final(settings);
    MetadataBuilder early;
    // With one partial result the early keys travel in the final one.
    MetadataBuilder& earlyResult = mOptions.partialResults > 1 ? early : final;
    bool aeOff = findByte(settings, ANDROID_CONTROL_AE_MODE) == ANDROID_CONTROL_AE_MODE_OFF;
    bool awbOff = findByte(settings, ANDROID_CONTROL_AWB_MODE) == ANDROID_CONTROL_AWB_MODE_OFF;
    uint8_t afMode = findByte(settings, ANDROID_CONTROL_AF_MODE).value_or(0);
    bool afContinuous = afMode == ANDROID_CONTROL_AF_MODE_CONTINUOUS_PICTURE ||
                        afMode == ANDROID_CONTROL_AF_MODE_CONTINUOUS_VIDEO;
    earlyResult.set(ANDROID_CONTROL_AE_STATE, {u8(aeOff ? ANDROID_CONTROL_AE_STATE_INACTIVE
                                                        : ANDROID_CONTROL_AE_STATE_CONVERGED)});
    earlyResult.set(ANDROID_CONTROL_AF_STATE,
                    {u8(afContinuous ? ANDROID_CONTROL_AF_STATE_PASSIVE_FOCUSED
                                     : ANDROID_CONTROL_AF_STATE_INACTIVE)});
    earlyResult.set(ANDROID_CONTROL_AWB_STATE, {u8(awbOff ? ANDROID_CONTROL_AWB_STATE_INACTIVE
                                                          : ANDROID_CONTROL_AWB_STATE_CONVERGED)});
    if (mOptions.partialResults > 1) sendResult(frameNumber, early.build().get(), 1, {}, {}, {});

    // A flush that arrives now costs this frame its buffers but not its metadata.
    const bool flushing = flushPending();
    std::vector<camera3_stream_buffer_t> records;
    for (size_t i = 0; i < request.buffers.size(); ++i) {
        OutputBuffer& output = request.buffers[i];
        camera3_stream_buffer_t record{output.stream, output.buffer, CAMERA3_BUFFER_STATUS_OK, -1,
                                       -1};
        bool drop = output.buffer == nullptr || flushing ||
                    (request.fault == Fault::kFailBuffer && i == 0);
        if (drop || !writeBuffer(frameNumber, output, record)) {
            record.status = CAMERA3_BUFFER_STATUS_ERROR;
            record.release_fence = output.acquireFence.release();
            notifyError(frameNumber, output.stream, CAMERA3_MSG_ERROR_BUFFER);
        }
        records.push_back(record);
    }

    if (mBufferManager) {
        // Hold no spare buffers while idle: a configure_streams may come next.
        bool idle;
        {
            std::lock_guard<std::mutex> guard(mLock);
            idle = mQueue.empty();
        }
        if (idle) mBufferManager->returnAll();
    }

    if (request.fault == Fault::kFailResult) {
        ALOGI("camera %s: frame %u: injected result failure", mCameraId.c_str(), frameNumber);
        notifyError(frameNumber, nullptr, CAMERA3_MSG_ERROR_RESULT);
        sendResult(frameNumber, nullptr, 0, records, {}, {});
        return;
    }

    final.set(ANDROID_REQUEST_PIPELINE_DEPTH, {kPipelineDepth});
    final.set(ANDROID_SENSOR_EXPOSURE_TIME, {exposure});
    final.set(ANDROID_SENSOR_FRAME_DURATION, {duration});
    final.set(ANDROID_SENSOR_SENSITIVITY,
              {findInt32(settings, ANDROID_SENSOR_SENSITIVITY).value_or(kDefaultSensitivity)});
    final.set(ANDROID_SENSOR_TIMESTAMP, {timestamp});
    final.set(ANDROID_SENSOR_ROLLING_SHUTTER_SKEW, {duration / 2});
    const CameraDescription& description = mCharacteristics.description();
    if (mCharacteristics.isLogical()) {
        final.setStrings(ANDROID_LOGICAL_MULTI_CAMERA_ACTIVE_PHYSICAL_ID,
                         {description.physicalIds[0]});
    }

    std::vector<MetadataPtr> physicalMetadata;
    for (const std::string& id : request.physicalCameras) {
        auto found = request.physicalSettings.find(id);
        const camera_metadata_t* physicalSettings =
                found != request.physicalSettings.end() ? found->second.get() : settings;
        size_t index =
                std::find(description.physicalIds.begin(), description.physicalIds.end(), id) -
                description.physicalIds.begin();
        MetadataBuilder physical;
        physical.set(ANDROID_LENS_FOCAL_LENGTH,
                     {description.focalLengths[index % description.focalLengths.size()]});
        physical.set(
                ANDROID_SENSOR_EXPOSURE_TIME,
                {std::clamp(
                        findInt64(physicalSettings, ANDROID_SENSOR_EXPOSURE_TIME).value_or(exposure),
                        kMinExposureTime, duration)});
        physical.set(ANDROID_SENSOR_FRAME_DURATION, {duration});
        physical.set(ANDROID_SENSOR_SENSITIVITY,
                     {findInt32(physicalSettings, ANDROID_SENSOR_SENSITIVITY)
                              .value_or(kDefaultSensitivity)});
        physical.set(ANDROID_SENSOR_TIMESTAMP, {timestamp});
        physicalMetadata.push_back(physical.build());
    }
    sendResult(frameNumber, final.build().get(), static_cast<uint32_t>(mOptions.partialResults),
               records, request.physicalCameras, physicalMetadata);
    if (mOptions.verbose) {
        ALOGV("camera %s: frame %u done, timestamp %lld, %zu buffers", mCameraId.c_str(),
              frameNumber, static_cast<long long>(timestamp), records.size());
    }
}

bool Pipeline::writeBuffer(uint32_t frameNumber, OutputBuffer& output,
                           camera3_stream_buffer_t& record) {
    if (!waitFence(output.acquireFence.get(), kAcquireFenceTimeoutMs)) return false;
    output.acquireFence.reset();
    const camera3_stream_t* stream = output.stream;
    std::unique_ptr<MappedBuffer> mapped = MappedBuffer::map(*output.buffer, true);
    if (!mapped) {
        ALOGE("camera %s: frame %u: cannot map buffer: %s", mCameraId.c_str(), frameNumber,
              strerror(errno));
        return false;
    }
    size_t needed = hostBufferSize(stream->format, stream->width, stream->height, kJpegMaxSize);
    if (needed == 0 || mapped->size() < needed) {
        ALOGE("camera %s: frame %u: buffer of %zu bytes, stream %ux%u format 0x%x needs %zu",
              mCameraId.c_str(), frameNumber, mapped->size(), stream->width, stream->height,
              stream->format, needed);
        return false;
    }
    PatternStream patternStream{
            stream->width, stream->height, stream->format,
            stream->physical_camera_id != nullptr ? stream->physical_camera_id : ""};
    writePattern(mapped->data(), mapped->size(), frameNumber, patternStream);
    mapped.reset();
    // Created after the write, already signalled: ready before the result carries it.
    record.release_fence = makeSignalledFence().release();
    return true;
}

void Pipeline::failRequest(CaptureRequest& request) {
    notifyError(request.frameNumber, nullptr, CAMERA3_MSG_ERROR_REQUEST);
    std::vector<camera3_stream_buffer_t> records;
    for (OutputBuffer& output : request.buffers) {
        // Never waited on, so the acquire fence goes back as the release fence.
        records.push_back({output.stream, output.buffer, CAMERA3_BUFFER_STATUS_ERROR, -1,
                           output.acquireFence.release()});
    }
    sendResult(request.frameNumber, nullptr, 0, records, {}, {});
}

void Pipeline::notifyShutter(uint32_t frameNumber, int64_t timestamp, int64_t readoutTimestamp) {
    camera3_notify_msg_t message{};
    message.type = CAMERA3_MSG_SHUTTER;
    message.message.shutter.frame_number = frameNumber;
    message.message.shutter.timestamp = static_cast<uint64_t>(timestamp);
    message.message.shutter.readout_timestamp =
            mOptions.readoutTimestamp ? static_cast<uint64_t>(readoutTimestamp) : kGarbageReadout;
    mCallbacks->notify(mCallbacks, &message);
}

void Pipeline::notifyError(uint32_t frameNumber, camera3_stream_t* stream, int code) {
    if (mOptions.verbose) {
        ALOGV("camera %s: frame %u: error %d, stream %p", mCameraId.c_str(), frameNumber, code,
              stream);
    }
    camera3_notify_msg_t message{};
    message.type = CAMERA3_MSG_ERROR;
    message.message.error.frame_number = frameNumber;
    message.message.error.error_stream = stream;
    message.message.error.error_code = code;
    mCallbacks->notify(mCallbacks, &message);
}

void Pipeline::sendResult(uint32_t frameNumber, const camera_metadata_t* metadata, uint32_t partial,
                          const std::vector<camera3_stream_buffer_t>& buffers,
                          const std::vector<std::string>& physicalIds,
                          const std::vector<MetadataPtr>& physicalMetadata) {
    std::vector<const char*> ids;
    std::vector<const camera_metadata_t*> physical;
    for (size_t i = 0; i < physicalIds.size(); ++i) {
        ids.push_back(physicalIds[i].c_str());
        physical.push_back(physicalMetadata[i].get());
    }
    camera3_capture_result_t result{};
    result.frame_number = frameNumber;
    result.result = metadata;
    result.num_output_buffers = static_cast<uint32_t>(buffers.size());
    result.output_buffers = buffers.empty() ? nullptr : buffers.data();
    result.partial_result = partial;
    result.num_physcam_metadata = static_cast<uint32_t>(ids.size());
    result.physcam_ids = ids.empty() ? nullptr : ids.data();
    result.physcam_metadata = physical.empty() ? nullptr : physical.data();
    mCallbacks->process_capture_result(mCallbacks, &result);
}

}  // namespace virtual_camera
