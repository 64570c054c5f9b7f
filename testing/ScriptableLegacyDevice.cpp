#include "ScriptableLegacyDevice.h"

#include <system/camera_metadata.h>

#include <cerrno>
#include <cstring>

namespace kovo::aidl2legacy::testing {

using ::testing::_;
using ::testing::Invoke;
using ::testing::Return;

ScriptableLegacyDevice::ScriptableLegacyDevice() {
    mOps = {};
    mOps.initialize = sInitialize;
    mOps.configure_streams = sConfigureStreams;
    mOps.construct_default_request_settings = sConstructDefaultRequestSettings;
    mOps.process_capture_request = sProcessCaptureRequest;
    mOps.dump = sDump;
    mOps.flush = sFlush;
    mOps.signal_stream_flush = sSignalStreamFlush;
    mOps.is_reconfiguration_required = sIsReconfigurationRequired;

    mDevice = {};
    mDevice.common.tag = HARDWARE_DEVICE_TAG;
    mDevice.common.version = CAMERA_DEVICE_API_VERSION_3_6;
    mDevice.common.close = sClose;
    mDevice.ops = &mOps;
    mDevice.priv = this;

    ON_CALL(mMock, initialize(_)).WillByDefault(Return(0));
    ON_CALL(mMock, configureStreams(_))
            .WillByDefault(Invoke([](camera3_stream_configuration_t* configuration) {
                for (uint32_t i = 0; i < configuration->num_streams; ++i) {
                    camera3_stream_t* stream = configuration->streams[i];
                    stream->max_buffers = kDefaultMaxBuffers;
                    stream->usage |= stream->stream_type == CAMERA3_STREAM_INPUT ? 0x2 : 0x20000;
                }
                return 0;
            }));
    ON_CALL(mMock, constructDefaultRequestSettings(_)).WillByDefault(Return(nullptr));
    ON_CALL(mMock, processCaptureRequest(_)).WillByDefault(Return(0));
    ON_CALL(mMock, flush()).WillByDefault(Return(0));
    ON_CALL(mMock, isReconfigurationRequired(_, _)).WillByDefault(Return(-EINVAL));
    ON_CALL(mMock, close()).WillByDefault(Return(0));
}

ScriptableLegacyDevice::~ScriptableLegacyDevice() = default;

void ScriptableLegacyDevice::removeEntry(Entry entry) {
    switch (entry) {
        case Entry::kInitialize:
            mOps.initialize = nullptr;
            break;
        case Entry::kConfigureStreams:
            mOps.configure_streams = nullptr;
            break;
        case Entry::kConstructDefaultRequestSettings:
            mOps.construct_default_request_settings = nullptr;
            break;
        case Entry::kProcessCaptureRequest:
            mOps.process_capture_request = nullptr;
            break;
        case Entry::kDump:
            mOps.dump = nullptr;
            break;
        case Entry::kFlush:
            mOps.flush = nullptr;
            break;
        case Entry::kSignalStreamFlush:
            mOps.signal_stream_flush = nullptr;
            break;
        case Entry::kIsReconfigurationRequired:
            mOps.is_reconfiguration_required = nullptr;
            break;
    }
}

const camera3_callback_ops_t* ScriptableLegacyDevice::callbackOps() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mCallbackOps;
}

std::vector<CapturedConfiguration> ScriptableLegacyDevice::configurations() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mConfigurations;
}

std::vector<CapturedRequest> ScriptableLegacyDevice::takeRequests() {
    std::lock_guard<std::mutex> guard(mLock);
    return std::move(mRequests);
}

size_t ScriptableLegacyDevice::requestCount() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mRequestCount;
}

std::vector<std::vector<camera3_stream_t*>> ScriptableLegacyDevice::streamFlushes() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mStreamFlushes;
}

int ScriptableLegacyDevice::closeCount() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mCloseCount;
}

ScriptableLegacyDevice* ScriptableLegacyDevice::from(const camera3_device* device) {
    return static_cast<ScriptableLegacyDevice*>(device->priv);
}

std::optional<std::vector<uint8_t>> ScriptableLegacyDevice::copyMetadata(
        const camera_metadata_t* metadata) {
    if (metadata == nullptr) return std::nullopt;
    const auto* bytes = reinterpret_cast<const uint8_t*>(metadata);
    return std::vector<uint8_t>(bytes, bytes + get_camera_metadata_size(metadata));
}

CapturedBuffer ScriptableLegacyDevice::copyBuffer(const camera3_stream_buffer_t& buffer) {
    CapturedBuffer copy;
    copy.stream = buffer.stream;
    copy.buffer = buffer.buffer;
    copy.status = buffer.status;
    copy.acquireFenceNumber = buffer.acquire_fence;
    // A record left zero-filled carries 0, which is stdin rather than a fence handed over.
    if (buffer.acquire_fence > 0) copy.acquireFence.reset(buffer.acquire_fence);
    copy.releaseFence = buffer.release_fence;
    return copy;
}

int ScriptableLegacyDevice::sInitialize(const camera3_device* device,
                                        const camera3_callback_ops_t* callbackOps) {
    ScriptableLegacyDevice* self = from(device);
    {
        std::lock_guard<std::mutex> guard(self->mLock);
        self->mCallbackOps = callbackOps;
    }
    return self->mMock.initialize(callbackOps);
}

int ScriptableLegacyDevice::sConfigureStreams(const camera3_device* device,
                                              camera3_stream_configuration_t* configuration) {
    ScriptableLegacyDevice* self = from(device);
    CapturedConfiguration copy;
    for (uint32_t i = 0; i < configuration->num_streams; ++i) {
        copy.streams.push_back(configuration->streams[i]);
        copy.streamValues.push_back(*configuration->streams[i]);
    }
    copy.operationMode = configuration->operation_mode;
    copy.sessionParameters = copyMetadata(configuration->session_parameters);
    copy.inputIsMultiResolution = configuration->input_is_multi_resolution;
    {
        std::lock_guard<std::mutex> guard(self->mLock);
        self->mConfigurations.push_back(std::move(copy));
    }
    return self->mMock.configureStreams(configuration);
}

const camera_metadata_t* ScriptableLegacyDevice::sConstructDefaultRequestSettings(
        const camera3_device* device, int type) {
    return from(device)->mMock.constructDefaultRequestSettings(type);
}

int ScriptableLegacyDevice::sProcessCaptureRequest(const camera3_device* device,
                                                   camera3_capture_request_t* request) {
    ScriptableLegacyDevice* self = from(device);
    CapturedRequest copy;
    copy.frameNumber = request->frame_number;
    copy.settings = copyMetadata(request->settings);
    for (uint32_t i = 0; i < request->num_physcam_settings; ++i) {
        copy.physicalIds.emplace_back(request->physcam_id[i] ? request->physcam_id[i] : "");
        copy.physicalSettings.push_back(copyMetadata(request->physcam_settings[i]));
    }
    if (request->input_buffer != nullptr) copy.inputBuffer = copyBuffer(*request->input_buffer);
    for (uint32_t i = 0; i < request->num_output_buffers; ++i) {
        copy.outputBuffers.push_back(copyBuffer(request->output_buffers[i]));
    }
    copy.inputWidth = request->input_width;
    copy.inputHeight = request->input_height;
    {
        std::lock_guard<std::mutex> guard(self->mLock);
        self->mRequests.push_back(std::move(copy));
        ++self->mRequestCount;
    }
    return self->mMock.processCaptureRequest(request);
}

void ScriptableLegacyDevice::sDump(const camera3_device* device, int fd) {
    from(device)->mMock.dump(fd);
}

int ScriptableLegacyDevice::sFlush(const camera3_device* device) {
    return from(device)->mMock.flush();
}

void ScriptableLegacyDevice::sSignalStreamFlush(const camera3_device* device, uint32_t numStreams,
                                                const camera3_stream_t* const* streams) {
    ScriptableLegacyDevice* self = from(device);
    {
        std::lock_guard<std::mutex> guard(self->mLock);
        std::vector<camera3_stream_t*> flushed;
        for (uint32_t i = 0; i < numStreams; ++i) {
            flushed.push_back(const_cast<camera3_stream_t*>(streams[i]));
        }
        self->mStreamFlushes.push_back(std::move(flushed));
    }
    self->mMock.signalStreamFlush(numStreams, streams);
}

int ScriptableLegacyDevice::sIsReconfigurationRequired(const camera3_device* device,
                                                       const camera_metadata_t* oldParams,
                                                       const camera_metadata_t* newParams) {
    return from(device)->mMock.isReconfigurationRequired(oldParams, newParams);
}

int ScriptableLegacyDevice::sClose(hw_device_t* device) {
    ScriptableLegacyDevice* self = from(reinterpret_cast<camera3_device*>(device));
    {
        std::lock_guard<std::mutex> guard(self->mLock);
        ++self->mCloseCount;
    }
    return self->mMock.close();
}

}  // namespace kovo::aidl2legacy::testing
