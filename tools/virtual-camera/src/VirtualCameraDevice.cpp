#define LOG_TAG "VirtualCamera"

#include "VirtualCameraDevice.h"

#include <errno.h>
#include <hardware/gralloc.h>
#include <log/log.h>
#include <stdio.h>

#include <algorithm>
#include <set>

namespace virtual_camera {

camera3_device_ops_t VirtualCameraDevice::sOps = {
        .initialize =
                [](const camera3_device* device, const camera3_callback_ops_t* callbacks) {
                    return fromDevice(device)->initialize(callbacks);
                },
        .configure_streams =
                [](const camera3_device* device, camera3_stream_configuration_t* streamList) {
                    return fromDevice(device)->configureStreams(streamList);
                },
        // Gone since device 3.2.
        .register_stream_buffers = nullptr,
        .construct_default_request_settings =
                [](const camera3_device* device, int type) {
                    return fromDevice(device)->constructDefaultRequestSettings(type);
                },
        .process_capture_request =
                [](const camera3_device* device, camera3_capture_request_t* request) {
                    return fromDevice(device)->processCaptureRequest(request);
                },
        .get_metadata_vendor_tag_ops = nullptr,
        .dump = [](const camera3_device* device, int fd) { fromDevice(device)->dump(fd); },
        .flush = [](const camera3_device* device) { return fromDevice(device)->flush(); },
        .signal_stream_flush =
                [](const camera3_device* device, uint32_t numStreams,
                   const camera3_stream_t* const* streams) {
                    fromDevice(device)->signalStreamFlush(numStreams, streams);
                },
        .is_reconfiguration_required =
                [](const camera3_device* device, const camera_metadata_t* oldParameters,
                   const camera_metadata_t* newParameters) {
                    return fromDevice(device)->isReconfigurationRequired(oldParameters,
                                                                         newParameters);
                },
        .reserved = {},
};

camera3_device_ops_t VirtualCameraDevice::sLegacyOps = [] {
    camera3_device_ops_t ops = sOps;
    ops.signal_stream_flush = nullptr;
    ops.is_reconfiguration_required = nullptr;
    return ops;
}();

VirtualCameraDevice::VirtualCameraDevice(const CameraCharacteristics& characteristics,
                                         hw_module_t* module, OpenListener listener)
    : mCharacteristics(characteristics), mListener(std::move(listener)) {
    mDevice.common.tag = HARDWARE_DEVICE_TAG;
    mDevice.common.version = CAMERA_DEVICE_API_VERSION_3_6;
    mDevice.common.module = module;
    mDevice.common.close = sClose;
    mDevice.ops = &sOps;
    mDevice.priv = this;
}

VirtualCameraDevice::~VirtualCameraDevice() {
    close(false);
}

VirtualCameraDevice* VirtualCameraDevice::fromDevice(const camera3_device* device) {
    return static_cast<VirtualCameraDevice*>(device->priv);
}

int VirtualCameraDevice::sClose(hw_device_t* device) {
    return fromDevice(reinterpret_cast<camera3_device_t*>(device))->close(true);
}

int VirtualCameraDevice::open(const Options& options, hw_device_t** device) {
    {
        std::lock_guard<std::mutex> guard(mLock);
        if (mOpen) return -EBUSY;
        mOpen = true;
        mOptions = options;
        mDevice.common.version = options.legacyDevice ? CAMERA_DEVICE_API_VERSION_3_3
                                                      : CAMERA_DEVICE_API_VERSION_3_6;
        mDevice.ops = options.legacyDevice ? &sLegacyOps : &sOps;
    }
    mStreams.clear();
    mLastSettings.reset();
    mLastFrameNumber.reset();
    *device = &mDevice.common;
    if (mListener) mListener(mCharacteristics.description().id, true);
    return 0;
}

bool VirtualCameraDevice::isOpen() const {
    std::lock_guard<std::mutex> guard(mLock);
    return mOpen;
}

std::shared_ptr<Pipeline> VirtualCameraDevice::pipeline() {
    std::lock_guard<std::mutex> guard(mLock);
    return mPipeline;
}

int VirtualCameraDevice::initialize(const camera3_callback_ops_t* callbacks) {
    const char* id = mCharacteristics.description().id.c_str();
    std::lock_guard<std::mutex> guard(mLock);
    if (!mOpen || mPipeline != nullptr) {
        ALOGE("camera %s: initialize on a device that is %s", id,
              mOpen ? "already initialized" : "not open");
        return -ENODEV;
    }
    if (callbacks == nullptr || callbacks->process_capture_result == nullptr ||
        callbacks->notify == nullptr ||
        (mOptions.halBufferManager && (callbacks->request_stream_buffers == nullptr ||
                                       callbacks->return_stream_buffers == nullptr))) {
        ALOGE("camera %s: initialize with incomplete callbacks", id);
        return -ENODEV;
    }
    mPipeline = std::make_shared<Pipeline>(mCharacteristics, callbacks, mOptions);
    return 0;
}

int VirtualCameraDevice::configureStreams(camera3_stream_configuration_t* streamList) {
    const char* id = mCharacteristics.description().id.c_str();
    std::shared_ptr<Pipeline> pipeline = this->pipeline();
    if (pipeline == nullptr) {
        ALOGE("camera %s: configure_streams before initialize", id);
        return -ENODEV;
    }
    if (streamList == nullptr || streamList->num_streams == 0 || streamList->streams == nullptr) {
        ALOGE("camera %s: configure_streams without streams", id);
        return -EINVAL;
    }
    std::vector<camera3_stream_t*> streams(streamList->streams,
                                           streamList->streams + streamList->num_streams);
    std::vector<StreamDescription> descriptions;
    for (camera3_stream_t* stream : streams) {
        if (stream == nullptr || std::count(streams.begin(), streams.end(), stream) > 1) {
            ALOGE("camera %s: configure_streams with a null or repeated stream", id);
            return -EINVAL;
        }
        descriptions.push_back(
                {stream->stream_type, stream->width, stream->height, stream->format,
                 stream->rotation,
                 stream->physical_camera_id != nullptr ? stream->physical_camera_id : ""});
    }
    if (int status = mCharacteristics.checkStreams(descriptions, streamList->operation_mode);
        status != 0) {
        ALOGE("camera %s: stream configuration rejected", id);
        return status;
    }

    // The framework may configure as soon as it has the last result, before this frame's thread
    // has finished with it.
    pipeline->waitIdle();
    pipeline->signalStreamFlush({mStreams.begin(), mStreams.end()});
    int64_t minDuration = 0;
    for (camera3_stream_t* stream : streams) {
        stream->usage |= GRALLOC_USAGE_SW_WRITE_OFTEN | GRALLOC_USAGE_HW_CAMERA_WRITE;
        stream->max_buffers = kMaxBuffers;
        minDuration = std::max(minDuration, mCharacteristics.minFrameDuration(
                                                    stream->format, stream->width, stream->height));
    }
    pipeline->setMinFrameDuration(minDuration);
    mStreams = std::move(streams);
    mLastSettings.reset();
    ALOGI("camera %s: %zu streams configured, min frame duration %lld ns", id, mStreams.size(),
          static_cast<long long>(minDuration));
    return 0;
}

const camera_metadata_t* VirtualCameraDevice::constructDefaultRequestSettings(int type) {
    const camera_metadata_t* settings = mCharacteristics.defaultSettings(type);
    if (settings == nullptr) {
        ALOGE("camera %s: no request template %d", mCharacteristics.description().id.c_str(), type);
    }
    return settings;
}

int VirtualCameraDevice::checkRequest(const camera3_capture_request_t* request,
                                      CaptureRequest& out) {
    const char* id = mCharacteristics.description().id.c_str();
    if (request == nullptr) {
        ALOGE("camera %s: null capture request", id);
        return -EINVAL;
    }
    const uint32_t frameNumber = request->frame_number;
    auto reject = [&](const char* why) {
        ALOGE("camera %s: frame %u rejected: %s", id, frameNumber, why);
        return -EINVAL;
    };
    if (mStreams.empty()) return reject("no streams configured");
    if (request->input_buffer != nullptr) return reject("reprocessing is not supported");
    if (request->num_output_buffers == 0 || request->output_buffers == nullptr) {
        return reject("no output buffers");
    }
    if (mLastFrameNumber && frameNumber <= *mLastFrameNumber) {
        return reject("frame number not above the previous one");
    }
    if (request->settings != nullptr) {
        if (validate_camera_metadata_structure(request->settings, nullptr) != 0) {
            return reject("malformed settings");
        }
        out.settings = std::shared_ptr<const camera_metadata_t>(
                clone_camera_metadata(request->settings), MetadataDeleter());
    } else if (mLastSettings != nullptr) {
        out.settings = mLastSettings;
    } else {
        return reject("no settings in the first request after configure_streams");
    }

    std::set<std::string> physicalCameras;
    for (uint32_t i = 0; i < request->num_output_buffers; ++i) {
        const camera3_stream_buffer_t& buffer = request->output_buffers[i];
        if (std::find(mStreams.begin(), mStreams.end(), buffer.stream) == mStreams.end()) {
            return reject("buffer of an unconfigured stream");
        }
        for (const OutputBuffer& earlier : out.buffers) {
            if (earlier.stream == buffer.stream) return reject("two buffers of one stream");
        }
        if (buffer.status != CAMERA3_BUFFER_STATUS_OK) return reject("buffer status not OK");
        bool missing = buffer.buffer == nullptr || *buffer.buffer == nullptr;
        if (missing && !mOptions.halBufferManager) return reject("null buffer handle");
        if (!missing && (*buffer.buffer)->numFds < 1) return reject("buffer handle without fds");
        if (buffer.stream->physical_camera_id != nullptr &&
            buffer.stream->physical_camera_id[0] != '\0') {
            physicalCameras.insert(buffer.stream->physical_camera_id);
        }
        out.buffers.push_back({buffer.stream, missing ? nullptr : buffer.buffer, UniqueFd()});
    }

    if (request->num_physcam_settings > 0 &&
        (request->physcam_id == nullptr || request->physcam_settings == nullptr)) {
        return reject("physical camera settings without ids or settings");
    }
    for (uint32_t i = 0; i < request->num_physcam_settings; ++i) {
        const char* physicalId = request->physcam_id[i];
        const camera_metadata_t* settings = request->physcam_settings[i];
        if (physicalId == nullptr || !mCharacteristics.isPhysicalCamera(physicalId)) {
            return reject("settings for an unknown physical camera");
        }
        if (settings == nullptr || validate_camera_metadata_structure(settings, nullptr) != 0 ||
            get_camera_metadata_entry_count(settings) == 0) {
            return reject("empty or malformed physical camera settings");
        }
        if (!out.physicalSettings.emplace(physicalId, cloneMetadata(settings)).second) {
            return reject("two settings for one physical camera");
        }
        physicalCameras.insert(physicalId);
    }
    out.frameNumber = frameNumber;
    out.physicalCameras.assign(physicalCameras.begin(), physicalCameras.end());
    return 0;
}

int VirtualCameraDevice::processCaptureRequest(camera3_capture_request_t* request) {
    std::shared_ptr<Pipeline> pipeline = this->pipeline();
    if (pipeline == nullptr) {
        ALOGE("camera %s: process_capture_request before initialize",
              mCharacteristics.description().id.c_str());
        return -ENODEV;
    }
    CaptureRequest capture;
    if (int status = checkRequest(request, capture); status != 0) return status;
    const uint32_t frameNumber = capture.frameNumber;
    if (mOptions.rejectRequest.count(frameNumber) != 0) {
        ALOGI("camera %s: frame %u: injected rejection", mCharacteristics.description().id.c_str(),
              frameNumber);
        return -EINVAL;
    }
    if (mOptions.failRequest.count(frameNumber) != 0) {
        capture.fault = Fault::kFailRequest;
    } else if (mOptions.failBuffer.count(frameNumber) != 0) {
        capture.fault = Fault::kFailBuffer;
    } else if (mOptions.failResult.count(frameNumber) != 0) {
        capture.fault = Fault::kFailResult;
    }
    // Accepted: the acquire fences are the device's from here on.
    for (uint32_t i = 0; i < request->num_output_buffers; ++i) {
        capture.buffers[i].acquireFence.reset(request->output_buffers[i].acquire_fence);
    }
    std::shared_ptr<const camera_metadata_t> settings = capture.settings;
    if (!pipeline->enqueue(capture)) {
        for (OutputBuffer& output : capture.buffers) output.acquireFence.release();
        ALOGE("camera %s: frame %u: device is closing", mCharacteristics.description().id.c_str(),
              frameNumber);
        return -ENODEV;
    }
    mLastSettings = std::move(settings);
    mLastFrameNumber = frameNumber;
    return 0;
}

void VirtualCameraDevice::dump(int fd) {
    std::shared_ptr<Pipeline> pipeline = this->pipeline();
    dprintf(fd, "Virtual camera %s (%zu physical cameras, HAL buffer manager %s): %s\n",
            mCharacteristics.description().id.c_str(),
            mCharacteristics.description().physicalIds.size(),
            mOptions.halBufferManager ? "on" : "off", isOpen() ? "open" : "closed");
    if (pipeline != nullptr) pipeline->dump(fd);
}

int VirtualCameraDevice::flush() {
    std::shared_ptr<Pipeline> pipeline = this->pipeline();
    if (pipeline == nullptr) {
        ALOGE("camera %s: flush before initialize", mCharacteristics.description().id.c_str());
        return -ENODEV;
    }
    pipeline->flush();
    return 0;
}

void VirtualCameraDevice::signalStreamFlush(uint32_t numStreams,
                                            const camera3_stream_t* const* streams) {
    std::shared_ptr<Pipeline> pipeline = this->pipeline();
    if (pipeline == nullptr || (numStreams > 0 && streams == nullptr)) return;
    pipeline->signalStreamFlush({streams, streams + numStreams});
}

int VirtualCameraDevice::isReconfigurationRequired(const camera_metadata_t* oldParameters,
                                                   const camera_metadata_t* newParameters) {
    for (uint32_t tag : kSessionKeys) {
        if (!sameEntry(oldParameters, newParameters, tag)) return 0;
    }
    return -EINVAL;
}

int VirtualCameraDevice::close(bool notifyListener) {
    std::shared_ptr<Pipeline> pipeline;
    {
        std::lock_guard<std::mutex> guard(mLock);
        if (!mOpen) {
            if (notifyListener) {
                ALOGW("camera %s: close of a closed device",
                      mCharacteristics.description().id.c_str());
            }
            return 0;
        }
        mOpen = false;
        pipeline = std::move(mPipeline);
    }
    // Everything still pending completes before close returns; no callback comes after.
    if (pipeline != nullptr) pipeline->stop();
    pipeline.reset();
    mStreams.clear();
    mLastSettings.reset();
    mLastFrameNumber.reset();
    if (notifyListener && mListener) mListener(mCharacteristics.description().id, false);
    return 0;
}

}  // namespace virtual_camera
