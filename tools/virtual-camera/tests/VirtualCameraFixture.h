/*
 * Test fixture that plays the camera framework against the virtual camera module, loaded with
 * dlopen exactly as a provider loads it. FrameworkRecorder serves camera3_callback_ops (from the
 * module's threads) and records, per frame, everything the device sent; StreamBuffers hands out
 * memfd buffers and takes them back. The fixture owns the device it opens and closes it.
 */
#pragma once

#include <gtest/gtest.h>
#include <hardware/camera3.h>
#include <virtual_camera/HostBuffer.h>
#include <virtual_camera/Pattern.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace virtual_camera::testing {

struct MetadataFree {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using Metadata = std::unique_ptr<camera_metadata_t, MetadataFree>;

// Copy of `settings` with the frame duration set.
Metadata withFrameDuration(const camera_metadata_t* settings, int64_t duration);

// The buffers of one stream; handed out by the test or by request_stream_buffers.
class StreamBuffers {
public:
    StreamBuffers(camera3_stream_t* stream, size_t count);
    // A free buffer, waiting (bounded) for one to come back when `wait`; null when none.
    buffer_handle_t* take(bool wait);
    // False when the buffer is not one of ours or is not out.
    bool giveBack(buffer_handle_t* buffer);
    size_t outstanding() const;
    camera3_stream_t* stream() const { return mStream; }

private:
    camera3_stream_t* mStream;
    mutable std::mutex mLock;
    std::condition_variable mCond;
    std::vector<std::unique_ptr<HostBuffer>> mBuffers;
    std::vector<bool> mOut;
};

struct ReturnedBuffer {
    camera3_stream_t* stream = nullptr;
    buffer_handle_t* buffer = nullptr;
    int status = -1;
    bool fenceReady = false;
    PatternStatus pattern = PatternStatus::kUntouched;
    bool ours = false;  // one of the buffers handed out, and out at the time
};

struct FrameRecord {
    uint64_t shutterTimestamp = 0;
    uint64_t readoutTimestamp = 0;
    int shutters = 0;
    bool resultBeforeShutter = false;
    std::vector<std::pair<int, camera3_stream_t*>> errors;  // error code, stream
    std::vector<uint32_t> partials;                         // partial_result of metadata results
    std::optional<int64_t> finalTimestamp;                  // ANDROID_SENSOR_TIMESTAMP
    std::vector<std::string> physicalIds;
    std::vector<std::optional<int64_t>> physicalTimestamps;
    std::vector<ReturnedBuffer> buffers;

    int count(int errorCode) const;
};

class FrameworkRecorder {
public:
    FrameworkRecorder();
    const camera3_callback_ops_t* ops() const { return &mHolder.ops; }

    void addStream(StreamBuffers* buffers);
    std::map<uint32_t, FrameRecord> frames() const;
    // Waits (bounded, for liveness only) until `count` buffers came back in results.
    bool waitForBuffers(size_t count);
    size_t returnedThroughBufferManager() const;
    std::vector<std::pair<std::string, int>> torchEvents() const;
    std::vector<std::pair<int, int>> deviceStatusEvents() const;
    const camera_module_callbacks_t* moduleCallbacks() const { return &mModuleHolder.callbacks; }

    // HAL buffer manager behaviour: the overall status to answer with (OK serves buffers) and a
    // stream that gets `streamStatus` instead of buffers.
    void failBufferRequests(camera3_buffer_request_status_t status, camera3_stream_t* stream,
                            camera3_stream_buffer_req_status_t streamStatus);

private:
    struct Holder {
        camera3_callback_ops_t ops;
        FrameworkRecorder* self;
    };
    struct ModuleHolder {
        camera_module_callbacks_t callbacks;
        FrameworkRecorder* self;
    };

    void processCaptureResult(const camera3_capture_result_t* result);
    void notify(const camera3_notify_msg_t* message);
    camera3_buffer_request_status_t requestStreamBuffers(uint32_t count,
                                                         const camera3_buffer_request_t* requests,
                                                         uint32_t* returnedCount,
                                                         camera3_stream_buffer_ret_t* returned);
    void returnStreamBuffers(uint32_t count, const camera3_stream_buffer_t* const* buffers);
    StreamBuffers* buffersOf(const camera3_stream_t* stream) const;

    Holder mHolder;
    ModuleHolder mModuleHolder;
    mutable std::mutex mLock;
    std::condition_variable mCond;
    std::vector<StreamBuffers*> mStreams;
    std::map<uint32_t, FrameRecord> mFrames;
    size_t mBuffersInResults = 0;
    size_t mBuffersReturned = 0;
    std::vector<std::pair<std::string, int>> mTorchEvents;
    std::vector<std::pair<int, int>> mDeviceStatusEvents;
    camera3_buffer_request_status_t mRequestStatus = CAMERA3_BUF_REQ_OK;
    camera3_stream_t* mFailedStream = nullptr;
    camera3_stream_buffer_req_status_t mFailedStreamStatus = CAMERA3_PS_BUF_REQ_OK;
};

class VirtualCameraTest : public ::testing::Test {
public:
    // The module, loaded once per process.
    static camera_module_t* module();

protected:
    static int openFdCount();

    void TearDown() override;

    // Sets VIRTUAL_CAMERA_OPTIONS and re-initialises the module; reset after each test.
    void useOptions(const char* options);
    camera3_device_t* openCamera(const char* id = "0");
    void closeCamera();
    camera3_stream_t* addStream(uint32_t width, uint32_t height, int format,
                                const char* physicalId = "");
    int configure();
    // The preview template with `frameDuration`, or null to repeat the previous settings.
    Metadata previewSettings(int64_t frameDuration);
    // A request with one buffer of each stream (null handles when `halBuffers`).
    int submit(uint32_t frameNumber, const camera_metadata_t* settings, bool halBuffers = false,
               const std::vector<std::pair<const char*, const camera_metadata_t*>>& physical = {});

    FrameworkRecorder mRecorder;
    camera3_device_t* mDevice = nullptr;
    std::deque<camera3_stream_t> mStreams;
    std::deque<StreamBuffers> mBuffers;
};

// Checks every HAL3 rule the recorder can see for frames [first, last], except those frames in
// `rejected`; `expectPhysical` lists the physical ids each final result must carry.
void expectProtocolKept(const std::map<uint32_t, FrameRecord>& frames, uint32_t first,
                        uint32_t last, size_t buffersPerFrame,
                        const std::vector<std::string>& expectPhysical = {});

}  // namespace virtual_camera::testing
