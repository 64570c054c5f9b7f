/*
 * Aidl2LegacyCameraDeviceSession: the ICameraDeviceSession binder object over one opened legacy
 * camera3_device_t.
 *
 * Ownership: made by Aidl2LegacyCameraDevice::open with create() (ndk::SharedRefBase::make) and
 * held by the framework. The session holds the callback bridge, the framework callback, the
 * buffer handle cache manager (shared with the bridge) and the 2 MiB request metadata queue. It
 * never owns the legacy device: close() (or a failed initialize()) closes it through
 * common.close, and destroying the session does not.
 *
 * Threads and locks: binder threads call in; session binder threads inherit real-time priority.
 * mLock guards mBufferHandleCacheMgr and is held only around its replacement, its release and the
 * calls into it. mBinderCallback, mCamera3Device, mStreamMap and the request conversion state are
 * not locked: the framework does not overlap open/close, nor capture requests with each other or
 * with stream configuration.
 *
 * The order of the virtual functions is fixed (other binaries rely on it): the
 * ICameraDeviceSession methods, createBinder, then the session's own, from open to initialize.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/BufferCache.h>
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/CameraOfflineSessionInfo.h>
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/ConfigureStreamsRet.h>
#include <aidl/android/hardware/camera/device/HalStream.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraSetting.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <aidl2legacy/common/Camera3Stream.h>
#include <aidl2legacy/common/RequestBufferCache.h>
#include <android/binder_auto_utils.h>
#include <fmq/AidlMessageQueue.h>
#include <hardware/camera3.h>
#include <system/camera_metadata.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Aidl2LegacyCameraLog.h"

namespace kovo::aidl2legacy {

class Aidl2LegacyCameraDeviceCallback;
class IBufferHandleCacheMgr;

class Aidl2LegacyCameraDeviceSession
    : public aidl::android::hardware::camera::device::BnCameraDeviceSession {
public:
    using BufferCache = aidl::android::hardware::camera::device::BufferCache;
    using CameraMetadata = aidl::android::hardware::camera::device::CameraMetadata;
    using CameraOfflineSessionInfo =
            aidl::android::hardware::camera::device::CameraOfflineSessionInfo;
    using CaptureRequest = aidl::android::hardware::camera::device::CaptureRequest;
    using ConfigureStreamsRet = aidl::android::hardware::camera::device::ConfigureStreamsRet;
    using HalStream = aidl::android::hardware::camera::device::HalStream;
    using ICameraDeviceCallback = aidl::android::hardware::camera::device::ICameraDeviceCallback;
    using ICameraOfflineSession = aidl::android::hardware::camera::device::ICameraOfflineSession;
    using PhysicalCameraSetting = aidl::android::hardware::camera::device::PhysicalCameraSetting;
    using RequestTemplate = aidl::android::hardware::camera::device::RequestTemplate;
    using StreamBuffer = aidl::android::hardware::camera::device::StreamBuffer;
    using StreamConfiguration = aidl::android::hardware::camera::device::StreamConfiguration;
    using MetadataQueue =
            android::AidlMessageQueue<int8_t,
                                      aidl::android::hardware::common::fmq::SynchronizedReadWrite>;
    using MetadataQueueDescriptor = aidl::android::hardware::common::fmq::MQDescriptor<
            int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

    // Size of the request metadata queue in bytes (2 MiB).
    static constexpr size_t kRequestQueueSize = 2097152;

    struct CreationInfo {
        int32_t instanceId;
        // The opened legacy device; not owned (closed through its common.close).
        camera3_device_t* device;
        std::shared_ptr<Aidl2LegacyCameraDeviceCallback> callback;
    };

    struct ResultInfo {
        // 0 unless create() failed.
        int32_t status = 0;
    };

    // Owns the settings cloned while one batch of capture requests is converted, so that they
    // outlive the batch's process_capture_request calls; releaseAll() frees them after it. No
    // lock: one batch at a time.
    class MetadataReleaser {
    public:
        MetadataReleaser() = default;
        ~MetadataReleaser();
        MetadataReleaser(const MetadataReleaser&) = delete;
        MetadataReleaser& operator=(const MetadataReleaser&) = delete;

        void push(const camera_metadata_t* metadata);
        // Frees every held block in push order; keeps the list's capacity.
        void releaseAll();

    private:
        std::vector<const camera_metadata_t*> mMetadataList;
    };

    // The session with the legacy device initialised, or empty with the reason in `result`
    // (the legacy device is then closed already).
    static std::shared_ptr<Aidl2LegacyCameraDeviceSession> create(const CreationInfo& info,
                                                                  ResultInfo& result);

    explicit Aidl2LegacyCameraDeviceSession(const CreationInfo& info);
    ~Aidl2LegacyCameraDeviceSession() override;

    // ICameraDeviceSession, in interface order.
    ndk::ScopedAStatus close() override;
    ndk::ScopedAStatus configureStreams(const StreamConfiguration& requestedConfiguration,
                                        std::vector<HalStream>* halStreams) override;
    ndk::ScopedAStatus constructDefaultRequestSettings(RequestTemplate type,
                                                       CameraMetadata* requestTemplate) override;
    ndk::ScopedAStatus flush() override;
    ndk::ScopedAStatus getCaptureRequestMetadataQueue(MetadataQueueDescriptor* queue) override;
    ndk::ScopedAStatus getCaptureResultMetadataQueue(MetadataQueueDescriptor* queue) override;
    ndk::ScopedAStatus isReconfigurationRequired(const CameraMetadata& oldSessionParams,
                                                 const CameraMetadata& newSessionParams,
                                                 bool* reconfigurationNeeded) override;
    ndk::ScopedAStatus processCaptureRequest(const std::vector<CaptureRequest>& requests,
                                             const std::vector<BufferCache>& cachesToRemove,
                                             int32_t* numRequestProcessed) override;
    ndk::ScopedAStatus signalStreamFlush(const std::vector<int32_t>& streamIds,
                                         int32_t streamConfigCounter) override;
    ndk::ScopedAStatus switchToOffline(const std::vector<int32_t>& streamsToKeep,
                                       CameraOfflineSessionInfo* offlineSessionInfo,
                                       std::shared_ptr<ICameraOfflineSession>* session) override;
    ndk::ScopedAStatus repeatingRequestEnd(int32_t frameNumber,
                                           const std::vector<int32_t>& streamIds) override;
    ndk::ScopedAStatus configureStreamsV2(const StreamConfiguration& requestedConfiguration,
                                          ConfigureStreamsRet* ret) override;

    // The session's own operations; statuses are 0 or a negative errno value.
    //
    // Stores the framework callback, makes the request queue and the buffer handle cache
    // manager (also handed to the bridge). A second open replaces both.
    virtual int32_t open(const std::shared_ptr<ICameraDeviceCallback>& callback);
    // Flushes, then closes: the forced close when the framework has gone.
    virtual void serviceDied();
    virtual void linkToDeath();
    virtual void unlinkToDeath();
    // Request settings: `fmqSettingsSize` bytes from the request queue (cloned and kept until
    // the end of the batch) or, for 0, the inline settings. An unreadable size is -EINVAL; a
    // malformed blob gives null settings and 0.
    virtual int32_t convertMetadataFromFmq(int64_t fmqSettingsSize, const CameraMetadata& settings,
                                           const camera_metadata_t*& out);
    virtual int32_t convertPhysicalCameraSetting(const PhysicalCameraSetting& setting,
                                                 const camera_metadata_t*& out);
    // One buffer of a request: the imported handle from `cache`, the configured stream (null when
    // unknown) and a duplicate of the acquire fence, which the device then owns. -ENODEV, with
    // `out` untouched, when the buffer was not imported.
    virtual int32_t convertStreamBuffer(const RequestBufferCache& cache, const StreamBuffer& buffer,
                                        camera3_stream_buffer& out);
    // Builds one legacy request and hands it to the device: the device's result, or the failure
    // that kept the request from going down.
    virtual int32_t processOneCaptureRequest(const RequestBufferCache& cache,
                                             const CaptureRequest& request);
    // Initialises the legacy device with the bridge's callback table; closes it on failure.
    virtual int32_t initialize();

protected:
    // The base's binder, set to inherit the caller's real-time priority.
    ndk::SpAIBinder createBinder() override;

private:
    static constexpr log::Module kLogModule = log::kDeviceModule;

    // The legacy device's ops table; null when there is no device or no table.
    const camera3_device_ops_t* deviceOps() const {
        return mCamera3Device != nullptr ? mCamera3Device->ops : nullptr;
    }

    int32_t mLogLevel;
    std::string mName;
    int32_t mInstanceId;
    camera3_device_t* mCamera3Device;
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mDeviceCallback;
    // Never created, so death links fail (and are logged); serviceDied() runs only when called.
    ndk::ScopedAIBinder_DeathRecipient mDeathRecipient;
    std::shared_ptr<ICameraDeviceCallback> mBinderCallback;
    std::mutex mLock;
    std::shared_ptr<IBufferHandleCacheMgr> mBufferHandleCacheMgr;  // guarded by mLock
    std::unique_ptr<MetadataQueue> mRequestMetadataQueue;
    std::shared_ptr<MetadataReleaser> mMetadataReleaser;
    // Kept for layout compatibility; what it is for is not settled, and nothing reads it yet.
    bool mReservedFlag;
    std::map<int32_t, Camera3Stream> mStreamMap;
};

}  // namespace kovo::aidl2legacy
