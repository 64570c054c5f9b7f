#include "VirtualCameraFixture.h"

#include <dirent.h>
#include <dlfcn.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

namespace virtual_camera::testing {
namespace {

// Bounds every wait so that a device that loses a frame fails the test instead of hanging it.
constexpr auto kLivenessTimeout = std::chrono::seconds(10);
constexpr size_t kBuffersPerStream = 8;
constexpr size_t kJpegMaxSize = 6 * 1024 * 1024;

std::optional<int64_t> sensorTimestamp(const camera_metadata_t* metadata) {
    camera_metadata_ro_entry_t entry;
    if (find_camera_metadata_ro_entry(metadata, ANDROID_SENSOR_TIMESTAMP, &entry) != 0 ||
        entry.count != 1) {
        return std::nullopt;
    }
    return entry.data.i64[0];
}

PatternStatus checkBuffer(const camera3_stream_t* stream, buffer_handle_t handle,
                          uint32_t frameNumber) {
    std::unique_ptr<MappedBuffer> mapped = MappedBuffer::map(handle, false);
    if (!mapped) return PatternStatus::kTooSmall;
    PatternStream patternStream{stream->width, stream->height, stream->format,
                                stream->physical_camera_id};
    return checkPattern(mapped->data(), mapped->size(), frameNumber, patternStream).status;
}

bool fenceReady(int fence) {
    if (fence < 0) return true;
    pollfd entry{fence, POLLIN, 0};
    return poll(&entry, 1, 0) == 1;
}

}  // namespace

Metadata withFrameDuration(const camera_metadata_t* settings, int64_t duration) {
    Metadata copy(allocate_camera_metadata(get_camera_metadata_entry_count(settings) + 1,
                                           get_camera_metadata_data_count(settings) + 8));
    append_camera_metadata(copy.get(), settings);
    camera_metadata_entry_t entry;
    if (find_camera_metadata_entry(copy.get(), ANDROID_SENSOR_FRAME_DURATION, &entry) == 0) {
        update_camera_metadata_entry(copy.get(), entry.index, &duration, 1, nullptr);
    } else {
        add_camera_metadata_entry(copy.get(), ANDROID_SENSOR_FRAME_DURATION, &duration, 1);
    }
    return copy;
}

StreamBuffers::StreamBuffers(camera3_stream_t* stream, size_t count) : mStream(stream) {
    size_t size = hostBufferSize(stream->format, stream->width, stream->height, kJpegMaxSize);
    for (size_t i = 0; i < count; ++i) {
        mBuffers.push_back(HostBuffer::allocate(size, hostBufferPlanes(stream->format)));
        mOut.push_back(false);
    }
}

buffer_handle_t* StreamBuffers::take(bool wait) {
    std::unique_lock<std::mutex> lock(mLock);
    auto freeBuffer = [&] { return std::find(mOut.begin(), mOut.end(), false); };
    if (wait) mCond.wait_for(lock, kLivenessTimeout, [&] { return freeBuffer() != mOut.end(); });
    auto it = freeBuffer();
    if (it == mOut.end()) return nullptr;
    *it = true;
    return mBuffers[it - mOut.begin()]->handlePointer();
}

bool StreamBuffers::giveBack(buffer_handle_t* buffer) {
    std::lock_guard<std::mutex> guard(mLock);
    for (size_t i = 0; i < mBuffers.size(); ++i) {
        if (mBuffers[i]->handlePointer() != buffer) continue;
        if (!mOut[i]) return false;
        mOut[i] = false;
        mCond.notify_all();
        return true;
    }
    return false;
}

size_t StreamBuffers::outstanding() const {
    std::lock_guard<std::mutex> guard(mLock);
    return std::count(mOut.begin(), mOut.end(), true);
}

int FrameRecord::count(int errorCode) const {
    return std::count_if(errors.begin(), errors.end(),
                         [&](const auto& error) { return error.first == errorCode; });
}

FrameworkRecorder::FrameworkRecorder() {
    mHolder.self = this;
    mHolder.ops.process_capture_result = [](const camera3_callback_ops_t* ops,
                                            const camera3_capture_result_t* result) {
        reinterpret_cast<const Holder*>(ops)->self->processCaptureResult(result);
    };
    mHolder.ops.notify = [](const camera3_callback_ops_t* ops, const camera3_notify_msg_t* msg) {
        reinterpret_cast<const Holder*>(ops)->self->notify(msg);
    };
    mHolder.ops.request_stream_buffers = [](const camera3_callback_ops_t* ops, uint32_t count,
                                            const camera3_buffer_request_t* requests,
                                            uint32_t* returnedCount,
                                            camera3_stream_buffer_ret_t* returned) {
        return reinterpret_cast<const Holder*>(ops)->self->requestStreamBuffers(
                count, requests, returnedCount, returned);
    };
    mHolder.ops.return_stream_buffers = [](const camera3_callback_ops_t* ops, uint32_t count,
                                           const camera3_stream_buffer_t* const* buffers) {
        reinterpret_cast<const Holder*>(ops)->self->returnStreamBuffers(count, buffers);
    };
    mModuleHolder.self = this;
    mModuleHolder.callbacks.camera_device_status_change =
            [](const camera_module_callbacks_t* callbacks, int id, int status) {
                auto* self = reinterpret_cast<const ModuleHolder*>(callbacks)->self;
                std::lock_guard<std::mutex> guard(self->mLock);
                self->mDeviceStatusEvents.emplace_back(id, status);
            };
    mModuleHolder.callbacks.torch_mode_status_change =
            [](const camera_module_callbacks_t* callbacks, const char* id, int status) {
                auto* self = reinterpret_cast<const ModuleHolder*>(callbacks)->self;
                std::lock_guard<std::mutex> guard(self->mLock);
                self->mTorchEvents.emplace_back(id, status);
            };
}

void FrameworkRecorder::addStream(StreamBuffers* buffers) {
    std::lock_guard<std::mutex> guard(mLock);
    mStreams.push_back(buffers);
}

StreamBuffers* FrameworkRecorder::buffersOf(const camera3_stream_t* stream) const {
    for (StreamBuffers* buffers : mStreams) {
        if (buffers->stream() == stream) return buffers;
    }
    return nullptr;
}

std::map<uint32_t, FrameRecord> FrameworkRecorder::frames() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mFrames;
}

bool FrameworkRecorder::waitForBuffers(size_t count) {
    std::unique_lock<std::mutex> lock(mLock);
    return mCond.wait_for(lock, kLivenessTimeout, [&] { return mBuffersInResults >= count; });
}

size_t FrameworkRecorder::returnedThroughBufferManager() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mBuffersReturned;
}

std::vector<std::pair<int, int>> FrameworkRecorder::deviceStatusEvents() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mDeviceStatusEvents;
}

std::vector<std::pair<std::string, int>> FrameworkRecorder::torchEvents() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mTorchEvents;
}

void FrameworkRecorder::failBufferRequests(camera3_buffer_request_status_t status,
                                           camera3_stream_t* stream,
                                           camera3_stream_buffer_req_status_t streamStatus) {
    std::lock_guard<std::mutex> guard(mLock);
    mRequestStatus = status;
    mFailedStream = stream;
    mFailedStreamStatus = streamStatus;
}

void FrameworkRecorder::processCaptureResult(const camera3_capture_result_t* result) {
    std::lock_guard<std::mutex> guard(mLock);
    FrameRecord& frame = mFrames[result->frame_number];
    if (frame.shutters == 0 && frame.count(CAMERA3_MSG_ERROR_REQUEST) == 0) {
        frame.resultBeforeShutter = true;
    }
    if (result->result != nullptr) {
        frame.partials.push_back(result->partial_result);
        // The final result is the one with the sensor timestamp, whatever the partial count.
        if (std::optional<int64_t> timestamp = sensorTimestamp(result->result)) {
            frame.finalTimestamp = timestamp;
            for (uint32_t i = 0; i < result->num_physcam_metadata; ++i) {
                frame.physicalIds.emplace_back(result->physcam_ids[i]);
                frame.physicalTimestamps.push_back(sensorTimestamp(result->physcam_metadata[i]));
            }
        }
    }
    for (uint32_t i = 0; i < result->num_output_buffers; ++i) {
        const camera3_stream_buffer_t& buffer = result->output_buffers[i];
        ReturnedBuffer returned{buffer.stream, buffer.buffer, buffer.status,
                                fenceReady(buffer.release_fence), PatternStatus::kUntouched};
        if (buffer.release_fence >= 0) close(buffer.release_fence);
        if (buffer.status == CAMERA3_BUFFER_STATUS_OK && buffer.buffer != nullptr) {
            returned.pattern = checkBuffer(buffer.stream, *buffer.buffer, result->frame_number);
        }
        StreamBuffers* buffers = buffersOf(buffer.stream);
        returned.ours = buffers != nullptr && buffers->giveBack(buffer.buffer);
        frame.buffers.push_back(returned);
    }
    mBuffersInResults += result->num_output_buffers;
    mCond.notify_all();
}

void FrameworkRecorder::notify(const camera3_notify_msg_t* message) {
    std::lock_guard<std::mutex> guard(mLock);
    if (message->type == CAMERA3_MSG_SHUTTER) {
        FrameRecord& frame = mFrames[message->message.shutter.frame_number];
        frame.shutters++;
        frame.shutterTimestamp = message->message.shutter.timestamp;
        frame.readoutTimestamp = message->message.shutter.readout_timestamp;
    } else {
        const camera3_error_msg_t& error = message->message.error;
        mFrames[error.frame_number].errors.emplace_back(error.error_code, error.error_stream);
    }
}

camera3_buffer_request_status_t FrameworkRecorder::requestStreamBuffers(
        uint32_t count, const camera3_buffer_request_t* requests, uint32_t* returnedCount,
        camera3_stream_buffer_ret_t* returned) {
    std::lock_guard<std::mutex> guard(mLock);
    *returnedCount = 0;
    if (mRequestStatus != CAMERA3_BUF_REQ_OK && mRequestStatus != CAMERA3_BUF_REQ_FAILED_PARTIAL) {
        return mRequestStatus;
    }
    bool partial = false;
    for (uint32_t i = 0; i < count; ++i) {
        camera3_stream_buffer_ret_t& entry = returned[i];
        entry.stream = requests[i].stream;
        entry.num_output_buffers = 0;
        entry.status = mFailedStreamStatus;
        StreamBuffers* buffers = buffersOf(requests[i].stream);
        if (requests[i].stream == mFailedStream || buffers == nullptr) {
            partial = true;
            continue;
        }
        for (uint32_t j = 0; j < requests[i].num_buffers_requested; ++j) {
            buffer_handle_t* handle = buffers->take(false);
            if (handle == nullptr) break;
            entry.output_buffers[entry.num_output_buffers++] = {requests[i].stream, handle,
                                                                CAMERA3_BUFFER_STATUS_OK,
                                                                eventfd(1, EFD_CLOEXEC), -1};
        }
        entry.status = CAMERA3_PS_BUF_REQ_OK;
    }
    *returnedCount = count;
    return partial ? CAMERA3_BUF_REQ_FAILED_PARTIAL : CAMERA3_BUF_REQ_OK;
}

void FrameworkRecorder::returnStreamBuffers(uint32_t count,
                                            const camera3_stream_buffer_t* const* buffers) {
    std::lock_guard<std::mutex> guard(mLock);
    for (uint32_t i = 0; i < count; ++i) {
        const camera3_stream_buffer_t& buffer = *buffers[i];
        StreamBuffers* owner = buffersOf(buffer.stream);
        EXPECT_TRUE(owner != nullptr && owner->giveBack(buffer.buffer));
        EXPECT_EQ(buffer.status, CAMERA3_BUFFER_STATUS_ERROR);
        if (buffer.release_fence >= 0) close(buffer.release_fence);
        mBuffersReturned++;
    }
}

camera_module_t* VirtualCameraTest::module() {
    static camera_module_t* sModule = [] {
        void* library = dlopen(VIRTUAL_CAMERA_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) ADD_FAILURE() << dlerror();
        return library != nullptr
                       ? static_cast<camera_module_t*>(dlsym(library, HAL_MODULE_INFO_SYM_AS_STR))
                       : nullptr;
    }();
    return sModule;
}

int VirtualCameraTest::openFdCount() {
    DIR* directory = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(directory) != nullptr) ++count;
    closedir(directory);
    return count;
}

void VirtualCameraTest::TearDown() {
    closeCamera();
    module()->set_callbacks(nullptr);
    unsetenv("VIRTUAL_CAMERA_OPTIONS");
    module()->init();
}

void VirtualCameraTest::useOptions(const char* options) {
    setenv("VIRTUAL_CAMERA_OPTIONS", options, 1);
    ASSERT_EQ(module()->init(), 0);
}

camera3_device_t* VirtualCameraTest::openCamera(const char* id) {
    hw_device_t* device = nullptr;
    if (module()->common.methods->open(&module()->common, id, &device) != 0) return nullptr;
    mDevice = reinterpret_cast<camera3_device_t*>(device);
    EXPECT_EQ(mDevice->ops->initialize(mDevice, mRecorder.ops()), 0);
    return mDevice;
}

void VirtualCameraTest::closeCamera() {
    if (mDevice != nullptr) {
        EXPECT_EQ(mDevice->common.close(&mDevice->common), 0);
    }
    mDevice = nullptr;
}

camera3_stream_t* VirtualCameraTest::addStream(uint32_t width, uint32_t height, int format,
                                               const char* physicalId) {
    camera3_stream_t stream{};
    stream.stream_type = CAMERA3_STREAM_OUTPUT;
    stream.width = width;
    stream.height = height;
    stream.format = format;
    stream.data_space = HAL_DATASPACE_UNKNOWN;
    stream.physical_camera_id = physicalId;
    camera3_stream_t* added = &mStreams.emplace_back(stream);
    mRecorder.addStream(&mBuffers.emplace_back(added, kBuffersPerStream));
    return added;
}

int VirtualCameraTest::configure() {
    std::vector<camera3_stream_t*> streams;
    for (camera3_stream_t& stream : mStreams) streams.push_back(&stream);
    camera3_stream_configuration_t configuration{};
    configuration.num_streams = static_cast<uint32_t>(streams.size());
    configuration.streams = streams.data();
    configuration.operation_mode = CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE;
    return mDevice->ops->configure_streams(mDevice, &configuration);
}

Metadata VirtualCameraTest::previewSettings(int64_t frameDuration) {
    return withFrameDuration(
            mDevice->ops->construct_default_request_settings(mDevice, CAMERA3_TEMPLATE_PREVIEW),
            frameDuration);
}

int VirtualCameraTest::submit(
        uint32_t frameNumber, const camera_metadata_t* settings, bool halBuffers,
        const std::vector<std::pair<const char*, const camera_metadata_t*>>& physical) {
    std::vector<camera3_stream_buffer_t> outputs;
    for (StreamBuffers& buffers : mBuffers) {
        camera3_stream_buffer_t output{buffers.stream(), nullptr, CAMERA3_BUFFER_STATUS_OK, -1, -1};
        if (!halBuffers) {
            output.buffer = buffers.take(true);
            EXPECT_NE(output.buffer, nullptr) << "no free buffer for frame " << frameNumber;
            output.acquire_fence = eventfd(1, EFD_CLOEXEC);
        }
        outputs.push_back(output);
    }
    std::vector<const char*> physicalIds;
    std::vector<const camera_metadata_t*> physicalSettings;
    for (const auto& [id, metadata] : physical) {
        physicalIds.push_back(id);
        physicalSettings.push_back(metadata);
    }
    camera3_capture_request_t request{};
    request.frame_number = frameNumber;
    request.settings = settings;
    request.num_output_buffers = static_cast<uint32_t>(outputs.size());
    request.output_buffers = outputs.data();
    request.num_physcam_settings = static_cast<uint32_t>(physicalIds.size());
    request.physcam_id = physicalIds.data();
    request.physcam_settings = physicalSettings.data();
    int status = mDevice->ops->process_capture_request(mDevice, &request);
    if (status != 0) {
        // A rejected request leaves buffers and fences with the caller.
        for (size_t i = 0; i < outputs.size(); ++i) {
            if (outputs[i].buffer != nullptr) mBuffers[i].giveBack(outputs[i].buffer);
            if (outputs[i].acquire_fence >= 0) {
                EXPECT_EQ(close(outputs[i].acquire_fence), 0) << "device closed a rejected fence";
            }
        }
    }
    return status;
}

void expectProtocolKept(const std::map<uint32_t, FrameRecord>& frames, uint32_t first, uint32_t last,
                        size_t buffersPerFrame, const std::vector<std::string>& expectPhysical) {
    uint64_t previousTimestamp = 0;
    for (uint32_t frameNumber = first; frameNumber <= last; ++frameNumber) {
        SCOPED_TRACE("frame " + std::to_string(frameNumber));
        auto found = frames.find(frameNumber);
        ASSERT_NE(found, frames.end());
        const FrameRecord& frame = found->second;
        ASSERT_EQ(frame.buffers.size(), buffersPerFrame);
        for (const ReturnedBuffer& buffer : frame.buffers) {
            // A buffer the HAL buffer manager never got comes back as a null handle in error.
            EXPECT_TRUE(buffer.ours ||
                        (buffer.buffer == nullptr && buffer.status == CAMERA3_BUFFER_STATUS_ERROR));
        }

        if (frame.count(CAMERA3_MSG_ERROR_REQUEST) > 0) {
            EXPECT_EQ(frame.errors.size(), 1u);
            EXPECT_EQ(frame.shutters, 0);
            EXPECT_TRUE(frame.partials.empty());
            for (const ReturnedBuffer& buffer : frame.buffers) {
                EXPECT_EQ(buffer.status, CAMERA3_BUFFER_STATUS_ERROR);
            }
            continue;
        }
        EXPECT_EQ(frame.shutters, 1);
        EXPECT_FALSE(frame.resultBeforeShutter);
        EXPECT_GT(frame.shutterTimestamp, previousTimestamp);
        EXPECT_GE(frame.readoutTimestamp, frame.shutterTimestamp);
        previousTimestamp = frame.shutterTimestamp;

        bool resultLost = frame.count(CAMERA3_MSG_ERROR_RESULT) > 0;
        EXPECT_EQ(std::count(frame.partials.begin(), frame.partials.end(), 1u), 1);
        EXPECT_EQ(std::count(frame.partials.begin(), frame.partials.end(), 2u), resultLost ? 0 : 1);
        if (!resultLost) {
            EXPECT_EQ(frame.finalTimestamp, static_cast<int64_t>(frame.shutterTimestamp));
            EXPECT_EQ(frame.physicalIds, expectPhysical);
            for (const auto& timestamp : frame.physicalTimestamps) {
                EXPECT_EQ(timestamp, static_cast<int64_t>(frame.shutterTimestamp));
            }
        }
        for (const ReturnedBuffer& buffer : frame.buffers) {
            long dropped = std::count(frame.errors.begin(), frame.errors.end(),
                                      std::make_pair(int{CAMERA3_MSG_ERROR_BUFFER}, buffer.stream));
            EXPECT_LE(dropped, 1);
            EXPECT_EQ(buffer.status,
                      dropped ? CAMERA3_BUFFER_STATUS_ERROR : CAMERA3_BUFFER_STATUS_OK);
            if (buffer.status == CAMERA3_BUFFER_STATUS_OK) {
                EXPECT_EQ(buffer.pattern, PatternStatus::kOk) << toString(buffer.pattern);
                EXPECT_TRUE(buffer.fenceReady);
            }
        }
    }
}

}  // namespace virtual_camera::testing
