#include "Aidl2LegacyCameraDeviceSession.h"

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <aidl2legacy/utils/StatusConversion.h>
#include <android/binder_ibinder.h>
#include <android/binder_ibinder_platform.h>

#include <cerrno>

#include "Aidl2LegacyCameraDeviceCallback.h"

namespace kovo::aidl2legacy {

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
    const camera3_device_ops_t* ops = mCamera3Device != nullptr ? mCamera3Device->ops : nullptr;
    if (ops == nullptr || ops->flush == nullptr) {
        A2L_LOGE("[%s::%s] Invalid camera3_device_t operations, ", mName.c_str(), __func__);
        if (mCamera3Device != nullptr) {
            A2L_LOGE("[%s::%s] mCamera3Device:%p,", mName.c_str(), __func__,
                     static_cast<void*>(mCamera3Device));
        }
        if (ops != nullptr) {
            A2L_LOGE("[%s::%s]  mCamera3Device->ops:%p,mCamera3Device->ops->flush:%p", mName.c_str(),
                     __func__, static_cast<const void*>(ops), reinterpret_cast<void*>(ops->flush));
        }
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

// Not wired yet: stream configuration.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::configureStreams(const StreamConfiguration&,
                                                                    std::vector<HalStream>*) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: stream configuration.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::isReconfigurationRequired(const CameraMetadata&,
                                                                             const CameraMetadata&,
                                                                             bool*) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: stream configuration.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::configureStreamsV2(const StreamConfiguration&,
                                                                      ConfigureStreamsRet*) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: capture requests.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::processCaptureRequest(
        const std::vector<CaptureRequest>&, const std::vector<BufferCache>&, int32_t*) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: capture requests.
int32_t Aidl2LegacyCameraDeviceSession::convertMetadataFromFmq(int64_t, const CameraMetadata&,
                                                               const camera_metadata_t*&) {
    return -ENOSYS;
}

// Not wired yet: capture requests.
int32_t Aidl2LegacyCameraDeviceSession::convertPhysicalCameraSetting(const PhysicalCameraSetting&,
                                                                     const camera_metadata_t*&) {
    return -ENOSYS;
}

// Not wired yet: capture requests.
int32_t Aidl2LegacyCameraDeviceSession::convertStreamBuffer(const RequestBufferCache&,
                                                            const StreamBuffer&,
                                                            camera3_stream_buffer&) {
    return -ENOSYS;
}

// Not wired yet: capture requests.
int32_t Aidl2LegacyCameraDeviceSession::processOneCaptureRequest(const RequestBufferCache&,
                                                                 const CaptureRequest&) {
    return -ENOSYS;
}

// Not wired yet: stream flush.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::signalStreamFlush(const std::vector<int32_t>&,
                                                                     int32_t) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: default request settings.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::constructDefaultRequestSettings(RequestTemplate,
                                                                                   CameraMetadata*) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: repeating request end.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::repeatingRequestEnd(int32_t,
                                                                       const std::vector<int32_t>&) {
    return convertStatus(-ENOSYS);
}

// Not wired yet: offline sessions.
ndk::ScopedAStatus Aidl2LegacyCameraDeviceSession::switchToOffline(
        const std::vector<int32_t>&, CameraOfflineSessionInfo*,
        std::shared_ptr<ICameraOfflineSession>*) {
    return convertStatus(-ENOSYS);
}

}  // namespace kovo::aidl2legacy
