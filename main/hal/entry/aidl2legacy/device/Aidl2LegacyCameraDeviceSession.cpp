#include "Aidl2LegacyCameraDeviceSession.h"

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <aidl2legacy/utils/MetadataConversion.h>
#include <aidl2legacy/utils/NativeHandleConversion.h>
#include <aidl2legacy/utils/StatusConversion.h>
#include <aidl2legacy/utils/StreamConversion.h>
#include <android/binder_ibinder.h>
#include <android/binder_ibinder_platform.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "Aidl2LegacyCameraDeviceCallback.h"

// The error logs of a legacy entry that cannot be called: that the operations are invalid, the
// device when there is one, and the ops table with the entry (`opsFormat` names the entry) when
// there is one. `entry` is read only then.
#define LOG_UNCALLABLE_ENTRY(ops, opsFormat, entry)                                          \
    do {                                                                                     \
        A2L_LOGE("[%s::%s] Invalid camera3_device_t operations, ", mName.c_str(), __func__); \
        if (mCamera3Device != nullptr) {                                                     \
            A2L_LOGE("[%s::%s] mCamera3Device:%p,", mName.c_str(), __func__,                 \
                     static_cast<void*>(mCamera3Device));                                    \
        }                                                                                    \
        if ((ops) != nullptr) {                                                              \
            A2L_LOGE(opsFormat, mName.c_str(), __func__, static_cast<const void*>(ops),      \
                     reinterpret_cast<void*>(entry));                                        \
        }                                                                                    \
    } while (0)

namespace kovo::aidl2legacy {

using aidl::android::hardware::camera::device::Stream;
using aidl::android::hardware::common::NativeHandle;

Aidl2LegacyCameraDeviceSession::MetadataReleaser::~MetadataReleaser() {
    releaseAll();
}

void Aidl2LegacyCameraDeviceSession::MetadataReleaser::push(const camera_metadata_t* metadata) {
    mMetadataList.push_back(metadata);
}

void Aidl2LegacyCameraDeviceSession::MetadataReleaser::releaseAll() {
    for (const camera_metadata_t* metadata : mMetadataList) {
        free_camera_metadata(const_cast<camera_metadata_t*>(metadata));
    }
    mMetadataList.clear();
}

std::shared_ptr<Aidl2LegacyCameraDeviceSession> Aidl2LegacyCameraDeviceSession::create(
        const CreationInfo& info, ResultInfo& result) {
    std::shared_ptr<Aidl2LegacyCameraDeviceSession> session =
            ndk::SharedRefBase::make<Aidl2LegacyCameraDeviceSession>(info);
    const int32_t status = session != nullptr ? session->initialize() : -ENOSYS;
    if (status == 0) return session;
    result.status = status;
    return nullptr;
}

Aidl2LegacyCameraDeviceSession::Aidl2LegacyCameraDeviceSession(const CreationInfo& info)
    : mLogLevel(0),
      mName(std::to_string(info.instanceId) + "-aidl-session"),
      mInstanceId(info.instanceId),
      mCamera3Device(info.device),
      mDeviceCallback(info.callback),
      mMetadataReleaser(std::make_shared<MetadataReleaser>()),
      mReservedFlag(false) {}

Aidl2LegacyCameraDeviceSession::~Aidl2LegacyCameraDeviceSession() = default;

int32_t Aidl2LegacyCameraDeviceSession::initialize() {
    // The device and its ops table are trusted here: the module handed them out.
    const camera3_callback_ops* callbackOps = mDeviceCallback.get();
    const int32_t result = mCamera3Device->ops->initialize(mCamera3Device, callbackOps);
    if (result != 0) {
        A2L_LOGE("[%s::%s] Unable to initialize HAL device(%d)", mName.c_str(), __func__, result);
        mCamera3Device->common.close(&mCamera3Device->common);
    }
    return result;
}

ndk::SpAIBinder Aidl2LegacyCameraDeviceSession::createBinder() {
    ndk::SpAIBinder binder = BnCameraDeviceSession::createBinder();
    AIBinder_setInheritRt(binder.get(), true);
    return binder;
}

int32_t Aidl2LegacyCameraDeviceSession::open(const std::shared_ptr<ICameraDeviceCallback>& callback) {
    if (callback == nullptr) {
        A2L_LOGE("[%s::%s] ICameraDeviceCallback is null, return ILLEGAL_ARGUMENT.", mName.c_str(),
                 __func__);
        return -EINVAL;
    }
    if (mBinderCallback != nullptr) {
        A2L_LOGW("[%s::%s] mBinderCallback=%p is not null.", mName.c_str(), __func__,
                 static_cast<void*>(mBinderCallback.get()));
        unlinkToDeath();
    }
    mBinderCallback = callback;
    linkToDeath();

    A2L_LOGI("[%s::%s] FMQ request size:%zu", mName.c_str(), __func__, kRequestQueueSize);
    mRequestMetadataQueue = std::make_unique<MetadataQueue>(kRequestQueueSize, false);
    if (!mRequestMetadataQueue->isValid()) {
        A2L_FATAL("[%s::%s] Creating metadata queue (size %zu) failed.", mName.c_str(), __func__,
                  kRequestQueueSize);
    }

    std::lock_guard<std::mutex> guard(mLock);
    if (mBufferHandleCacheMgr != nullptr) {
        A2L_LOGE("[%s::%s] mBufferHandleCacheMgr:%p != nullptr", mName.c_str(), __func__,
                 static_cast<void*>(mBufferHandleCacheMgr.get()));
        mBufferHandleCacheMgr->resetCacheMgr();
        mBufferHandleCacheMgr->closeCacheMgr();
        mBufferHandleCacheMgr.reset();
    }
    mBufferHandleCacheMgr = IBufferHandleCacheMgr::create();
    if (mBufferHandleCacheMgr == nullptr) {
        A2L_LOGE("[%s::%s] IBufferHandleCacheMgr::create", mName.c_str(), __func__);
        return -ENODEV;
    }
    mDeviceCallback->setBufferHandleCacheMgr(mBufferHandleCacheMgr);
    return 0;
}

void Aidl2LegacyCameraDeviceSession::linkToDeath() {
    if (mBinderCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    const binder_status_t status =
            AIBinder_linkToDeath(mBinderCallback->asBinder().get(), mDeathRecipient.get(), this);
    if (status != STATUS_OK) {
        A2L_LOGW("[%s::%s] Fail to link ICameraDeviceCallback to death", mName.c_str(), __func__);
    }
}

void Aidl2LegacyCameraDeviceSession::unlinkToDeath() {
    if (mBinderCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    const binder_status_t status =
            AIBinder_unlinkToDeath(mBinderCallback->asBinder().get(), mDeathRecipient.get(), this);
    if (status != STATUS_OK) {
        A2L_LOGW("[%s::%s] Fail to unlink ICameraDeviceCallback to death", mName.c_str(), __func__);
    }
}

void Aidl2LegacyCameraDeviceSession::serviceDied() {
    A2L_LOGW(
            "[%s::%s] ICameraDeviceCallback %p has died; removing it - this:%p; force to close "
            "camera device %d",
            mName.c_str(), __func__, static_cast<void*>(mBinderCallback.get()),
            static_cast<void*>(this), mInstanceId);
    if (!flush().isOk()) A2L_LOGE("[%s::%s] fail to flush", mName.c_str(), __func__);
    if (!close().isOk()) A2L_LOGE("[%s::%s] fail to close", mName.c_str(), __func__);
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::close() {
    int32_t status;
    if (mCamera3Device != nullptr && mCamera3Device->common.close != nullptr) {
        status = mCamera3Device->common.close(&mCamera3Device->common);
    } else {
        A2L_LOGE("[%s::%s] Invalid camera3_device_t operations, ", mName.c_str(), __func__);
        if (mCamera3Device != nullptr) {
            A2L_LOGE("[%s::%s] mCamera3Device:%p,mCamera3Device->common.close:%p", mName.c_str(),
                     __func__, static_cast<void*>(mCamera3Device),
                     reinterpret_cast<void*>(mCamera3Device->common.close));
        }
        status = -ENOSYS;
    }
    {
        std::lock_guard<std::mutex> guard(mLock);
        if (mBufferHandleCacheMgr != nullptr) {
            mBufferHandleCacheMgr->closeCacheMgr();
            mBufferHandleCacheMgr.reset();
        }
    }
    if (mBinderCallback == nullptr) {
        A2L_LOGE("[%s::%s] mBinderCallback is null before close done.", mName.c_str(), __func__);
    } else {
        unlinkToDeath();
    }
    mBinderCallback.reset();
    return convertStatus(status);
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::flush() {
    // No lock: the flush runs beside the request and result traffic it is meant to end.
    const camera3_device_ops_t* ops = deviceOps();
    if (ops == nullptr || ops->flush == nullptr) {
        LOG_UNCALLABLE_ENTRY(ops, "[%s::%s]  mCamera3Device->ops:%p,mCamera3Device->ops->flush:%p",
                             ops->flush);
        return convertStatus(-ENOSYS);
    }
    return convertStatus(ops->flush(mCamera3Device));
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::getCaptureRequestMetadataQueue(
        MetadataQueueDescriptor* queue) {
    if (queue == nullptr) return convertStatus(-EINVAL);
    *queue = mRequestMetadataQueue->dupeDesc();
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::getCaptureResultMetadataQueue(
        MetadataQueueDescriptor* queue) {
    if (queue == nullptr) return convertStatus(-EINVAL);
    mDeviceCallback->getCaptureResultMetadataQueue(queue);
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::configureStreams(
        const StreamConfiguration& requestedConfiguration, std::vector<HalStream>* halStreams) {
    if (halStreams == nullptr) return convertStatus(-EINVAL);
    for (const Stream& stream : requestedConfiguration.streams) {
        A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, stream.toString().c_str());
    }
    {
        std::lock_guard<std::mutex> guard(mLock);
        if (mBufferHandleCacheMgr != nullptr) {
            mBufferHandleCacheMgr->configureStreams(requestedConfiguration);
        }
    }

    const size_t streamCount = requestedConfiguration.streams.size();
    // A real array even for no streams: devices may test the pointer before the count.
    auto streams = std::make_unique<camera3_stream_t*[]>(streamCount);
    camera3_stream_configuration configuration{};
    configuration.num_streams = static_cast<uint32_t>(streamCount);
    configuration.streams = streams.get();
    configuration.operation_mode = static_cast<uint32_t>(requestedConfiguration.operationMode);
    convertMetadata(requestedConfiguration.sessionParams, configuration.session_parameters);
    configuration.input_is_multi_resolution = requestedConfiguration.multiResolutionInputImage;

    // The old records go now, also for the legacy device. A repeated id keeps one record (the
    // later stream), and every slot of that id points at it.
    mStreamMap.clear();
    for (size_t i = 0; i < streamCount; ++i) {
        const Stream& stream = requestedConfiguration.streams[i];
        Camera3Stream record{};
        convertStream(stream, record);
        Camera3Stream& entry = mStreamMap[stream.id];
        entry = record;
        streams[i] = &entry.stream;
    }

    // Trusted like initialize(): configuring needs an opened device.
    const int32_t result = mCamera3Device->ops->configure_streams(mCamera3Device, &configuration);
    mDeviceCallback->endConfiguration(configuration);
    mDeviceCallback->setStreamMap(mStreamMap);

    convertHalStreamConfiguration(configuration, *halStreams);
    for (const HalStream& halStream : *halStreams) {
        A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, halStream.toString().c_str());
    }
    return convertStatus(result);
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::isReconfigurationRequired(
        const CameraMetadata& oldSessionParams, const CameraMetadata& newSessionParams,
        bool* reconfigurationNeeded) {
    if (reconfigurationNeeded == nullptr) return convertStatus(-EINVAL);
    const camera_metadata_t* oldParams = nullptr;
    const camera_metadata_t* newParams = nullptr;
    convertMetadata(oldSessionParams, oldParams);
    convertMetadata(newSessionParams, newParams);

    const camera3_device_ops_t* ops = deviceOps();
    if (ops == nullptr || ops->is_reconfiguration_required == nullptr) {
        LOG_UNCALLABLE_ENTRY(
                ops,
                "[%s::%s] "
                "mCamera3Device->ops:%p,mCamera3Device->ops->is_reconfiguration_required:%p",
                ops->is_reconfiguration_required);
        return convertStatus(-ENOSYS);
    }
    switch (ops->is_reconfiguration_required(mCamera3Device, oldParams, newParams)) {
        case 0:
            *reconfigurationNeeded = true;
            return ndk::ScopedAStatus::ok();
        case -EINVAL:
            *reconfigurationNeeded = false;
            return ndk::ScopedAStatus::ok();
        default:
            // Whatever the device said, the framework learns only that it cannot tell.
            return convertStatus(-ENOSYS);
    }
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::configureStreamsV2(const StreamConfiguration&,
                                                                      ConfigureStreamsRet* ret) {
    // The framework configures through configureStreams; this entry only answers.
    if (ret == nullptr) return convertStatus(-EINVAL);
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::processCaptureRequest(
        const std::vector<CaptureRequest>& requests, const std::vector<BufferCache>& cachesToRemove,
        int32_t* numRequestProcessed) {
    if (numRequestProcessed == nullptr) return convertStatus(-EINVAL);
    const std::shared_ptr<MetadataReleaser> releaser = mMetadataReleaser;
    std::vector<RequestBufferCache> caches;

    int32_t status = 0;
    {
        std::lock_guard<std::mutex> guard(mLock);
        if (mBufferHandleCacheMgr == nullptr) {
            A2L_LOGE("[%s::%s] Bad BufferHandleCacheMgr", mName.c_str(), __func__);
            *numRequestProcessed = 0;
            status = -ENODEV;
        } else {
            mBufferHandleCacheMgr->removeBufferCaches(cachesToRemove);
            mBufferHandleCacheMgr->importRequestBuffers(requests, &caches);
        }
    }

    if (status == 0) {
        for (const CaptureRequest& request : requests) {
            RequestBufferCache cache;
            const auto found = std::find_if(caches.begin(), caches.end(),
                                            [&request](const RequestBufferCache& candidate) {
                                                return candidate.frameNumber == request.frameNumber;
                                            });
            if (found != caches.end()) cache = *found;
            status = processOneCaptureRequest(cache, request);
            // A failed request leaves the caller's count as it was.
            if (status != 0) break;
        }
        if (status == 0) *numRequestProcessed = static_cast<int32_t>(requests.size());
    }

    // The settings cloned for this batch outlive its last process_capture_request, no longer.
    caches.clear();
    releaser->releaseAll();
    return convertStatus(status);
}

int32_t Aidl2LegacyCameraDeviceSession::processOneCaptureRequest(const RequestBufferCache& cache,
                                                                 const CaptureRequest& request) {
    camera3_capture_request record{};
    record.frame_number = static_cast<uint32_t>(request.frameNumber);
    const int32_t status =
            convertMetadataFromFmq(request.fmqSettingsSize, request.settings, record.settings);
    if (status != 0) {
        A2L_LOGE("[%s::%s] fail to convertMetadataFromFmq", mName.c_str(), __func__);
        return status;
    }

    // A physical setting that cannot be read goes down as null; the request still goes.
    const size_t physicalCount = request.physicalCameraSettings.size();
    std::vector<const char*> physicalIds;
    std::vector<const camera_metadata_t*> physicalSettings;
    physicalIds.reserve(physicalCount);
    physicalSettings.reserve(physicalCount);
    for (const PhysicalCameraSetting& setting : request.physicalCameraSettings) {
        const camera_metadata_t* settings = nullptr;
        convertPhysicalCameraSetting(setting, settings);
        physicalIds.push_back(setting.physicalCameraId.c_str());
        physicalSettings.push_back(settings);
    }
    record.num_physcam_settings = static_cast<uint32_t>(physicalCount);
    record.physcam_id = physicalIds.data();
    record.physcam_settings = physicalSettings.data();

    // Buffers that fail to resolve go down as built; the device reports them.
    camera3_stream_buffer inputBuffer{};
    if (request.inputBuffer.streamId != -1) {
        convertStreamBuffer(cache, request.inputBuffer, inputBuffer);
        record.input_buffer = &inputBuffer;
    }
    std::vector<camera3_stream_buffer> outputBuffers(request.outputBuffers.size());
    for (size_t k = 0; k < outputBuffers.size(); ++k) {
        convertStreamBuffer(cache, request.outputBuffers[k], outputBuffers[k]);
    }
    record.num_output_buffers = static_cast<uint32_t>(outputBuffers.size());
    record.output_buffers = outputBuffers.empty() ? nullptr : outputBuffers.data();
    record.input_width = request.inputWidth;
    record.input_height = request.inputHeight;

    const camera3_device_ops_t* ops = deviceOps();
    if (ops == nullptr || ops->process_capture_request == nullptr) {
        LOG_UNCALLABLE_ENTRY(
                ops,
                "[%s::%s]  mCamera3Device->ops:%p,mCamera3Device->ops->process_capture_request:%p",
                ops->process_capture_request);
        return -ENOSYS;
    }
    return ops->process_capture_request(mCamera3Device, &record);
}

int32_t Aidl2LegacyCameraDeviceSession::convertMetadataFromFmq(int64_t fmqSettingsSize,
                                                               const CameraMetadata& settings,
                                                               const camera_metadata_t*& out) {
    if (fmqSettingsSize == 0) {
        convertMetadata(settings, out);
        return 0;
    }
    // The framework's count, taken as unsigned: a negative one asks for more than any queue holds.
    const size_t size = static_cast<size_t>(fmqSettingsSize);
    // A size beyond what the queue holds fails the read; it is found out before allocating, so a
    // bogus size cannot ask for an absurd buffer.
    const bool fits =
            mRequestMetadataQueue == nullptr || size <= mRequestMetadataQueue->availableToRead();
    std::vector<int8_t> buffer(fits ? size : 0);
    if (!fits ||
        (mRequestMetadataQueue != nullptr && !mRequestMetadataQueue->read(buffer.data(), size))) {
        A2L_LOGE("[%s::%s] Failed to read from request metadata queue.", mName.c_str(), __func__);
        return -EINVAL;
    }
    // Validated against the bytes actually read, so that a header claiming more cannot make us
    // read past them. A malformed blob is dropped silently: the request goes on without settings.
    const auto* metadata = reinterpret_cast<const camera_metadata_t*>(buffer.data());
    if (validate_camera_metadata_structure(metadata, &size) != 0) {
        out = nullptr;
        return 0;
    }
    out = clone_camera_metadata(metadata);
    mMetadataReleaser->push(out);
    return 0;
}

int32_t Aidl2LegacyCameraDeviceSession::convertPhysicalCameraSetting(
        const PhysicalCameraSetting& setting, const camera_metadata_t*& out) {
    const int32_t status = convertMetadataFromFmq(setting.fmqSettingsSize, setting.settings, out);
    if (status != 0) {
        A2L_LOGE("[%s::%s] fail to convertMetadataFromFmq", mName.c_str(), __func__);
    }
    return status;
}

int32_t Aidl2LegacyCameraDeviceSession::convertStreamBuffer(const RequestBufferCache& cache,
                                                            const StreamBuffer& buffer,
                                                            camera3_stream_buffer& out) {
    // Stream id -1 or buffer id 0: no buffer of the framework's (the device's buffer manager
    // supplies it). Handles come only from the cache, never from the record.
    if (buffer.streamId != -1 && buffer.bufferId != 0) {
        const auto handle = cache.bufferHandles.find(buffer.streamId);
        if (handle == cache.bufferHandles.end()) {
            A2L_LOGE("[%s::%s] fail to find BufferHandle", mName.c_str(), __func__);
            return -ENODEV;
        }
        out.buffer = handle->second.buffer;
    }
    const auto stream = mStreamMap.find(buffer.streamId);
    if (stream != mStreamMap.end()) {
        out.stream = &stream->second.stream;
    } else {
        out.stream = nullptr;
        A2L_LOGE("[%s::%s] fail to find stream:%d", mName.c_str(), __func__, buffer.streamId);
    }
    out.status = static_cast<int>(buffer.status);

    // The device gets its own descriptor and closes it; the framework's stays the framework's.
    const auto duplicateFence = [this](const NativeHandle& fence) {
        if (isAidlNativeHandleNull(fence) || fence.fds.empty()) return -1;
        if (fence.fds.size() > 1) {
            A2L_LOGE("[%s::%s] invalid fence handle with %zu file descriptors", mName.c_str(),
                     __func__, fence.fds.size());
            return -1;
        }
        const int fd = dup(fence.fds[0].get());
        if (fd < 0) {
            A2L_LOGE("[%s::%s] failed to dup fence fd %d", mName.c_str(), __func__,
                     fence.fds[0].get());
        }
        return fd;
    };
    out.acquire_fence = duplicateFence(buffer.acquireFence);
    out.release_fence = -1;
    return 0;
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::signalStreamFlush(
        const std::vector<int32_t>& streamIds, int32_t /*streamConfigCounter*/) {
    // Resolved against the current configuration whatever the counter says.
    std::vector<const camera3_stream_t*> streams;
    streams.reserve(streamIds.size());
    for (const int32_t streamId : streamIds) {
        const auto stream = mStreamMap.find(streamId);
        if (stream == mStreamMap.end()) {
            A2L_LOGE("[%s::%s] unknown streamId %d", mName.c_str(), __func__, streamId);
            return convertStatus(-EINVAL);
        }
        streams.push_back(&stream->second.stream);
    }

    const camera3_device_ops_t* ops = deviceOps();
    if (ops == nullptr || ops->signal_stream_flush == nullptr) {
        LOG_UNCALLABLE_ENTRY(
                ops, "[%s::%s] mCamera3Device->ops:%p,mCamera3Device->ops->signal_stream_flush:%p",
                ops->signal_stream_flush);
        return convertStatus(-ENOSYS);
    }
    ops->signal_stream_flush(mCamera3Device, static_cast<uint32_t>(streams.size()), streams.data());
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::constructDefaultRequestSettings(
        RequestTemplate type, CameraMetadata* requestTemplate) {
    if (requestTemplate == nullptr) return convertStatus(-EINVAL);
    // The device keeps the template; a null one becomes whatever the conversion makes of it.
    const camera_metadata_t* settings = mCamera3Device->ops->construct_default_request_settings(
            mCamera3Device, static_cast<int>(type));
    convertMetadata(settings, *requestTemplate);
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::repeatingRequestEnd(int32_t,
                                                                       const std::vector<int32_t>&) {
    return ndk::ScopedAStatus::ok();
}

// Offline sessions are not offered: the outputs stay as the caller passed them.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::switchToOffline(
        const std::vector<int32_t>&, CameraOfflineSessionInfo*,
        std::shared_ptr<ICameraOfflineSession>*) {
    return ndk::ScopedAStatus::ok();
}

}  // namespace kovo::aidl2legacy
