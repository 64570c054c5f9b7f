// An open capture session of one camera device: stream configuration, requests, flush, and the two
// metadata queues. AIDL interface android.hardware.camera.device.ICameraDeviceSession (V3) in the
// NDK backend's shape; the virtual functions keep the generated order. Servers derive from
// BnCameraDeviceSession; ICameraDeviceSessionDefault answers every call with
// STATUS_UNKNOWN_TRANSACTION. Calls may come from any thread; an implementation does its own
// locking.
#pragma once

#include <aidl/android/hardware/camera/device/BufferCache.h>
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/CameraOfflineSessionInfo.h>
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/ConfigureStreamsRet.h>
#include <aidl/android/hardware/camera/device/HalStream.h>
#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace aidl::android::hardware::camera::device {

class ICameraDeviceSession : public ::ndk::ICInterface {
public:
    static inline const char* descriptor = "android.hardware.camera.device.ICameraDeviceSession";
    ICameraDeviceSession();
    virtual ~ICameraDeviceSession();

    static inline const int32_t version = 3;
    static inline const std::string hash = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";
    static constexpr uint32_t TRANSACTION_close = FIRST_CALL_TRANSACTION + 0;
    static constexpr uint32_t TRANSACTION_configureStreams = FIRST_CALL_TRANSACTION + 1;
    static constexpr uint32_t TRANSACTION_constructDefaultRequestSettings =
            FIRST_CALL_TRANSACTION + 2;
    static constexpr uint32_t TRANSACTION_flush = FIRST_CALL_TRANSACTION + 3;
    static constexpr uint32_t TRANSACTION_getCaptureRequestMetadataQueue =
            FIRST_CALL_TRANSACTION + 4;
    static constexpr uint32_t TRANSACTION_getCaptureResultMetadataQueue = FIRST_CALL_TRANSACTION + 5;
    static constexpr uint32_t TRANSACTION_isReconfigurationRequired = FIRST_CALL_TRANSACTION + 6;
    static constexpr uint32_t TRANSACTION_processCaptureRequest = FIRST_CALL_TRANSACTION + 7;
    static constexpr uint32_t TRANSACTION_signalStreamFlush = FIRST_CALL_TRANSACTION + 8;
    static constexpr uint32_t TRANSACTION_switchToOffline = FIRST_CALL_TRANSACTION + 9;
    static constexpr uint32_t TRANSACTION_repeatingRequestEnd = FIRST_CALL_TRANSACTION + 10;
    static constexpr uint32_t TRANSACTION_configureStreamsV2 = FIRST_CALL_TRANSACTION + 11;

    static std::shared_ptr<ICameraDeviceSession> fromBinder(const ::ndk::SpAIBinder& binder);

    virtual ::ndk::ScopedAStatus close() = 0;
    virtual ::ndk::ScopedAStatus configureStreams(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            std::vector<::aidl::android::hardware::camera::device::HalStream>* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus constructDefaultRequestSettings(
            ::aidl::android::hardware::camera::device::RequestTemplate in_type,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus flush() = 0;
    virtual ::ndk::ScopedAStatus getCaptureRequestMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getCaptureResultMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus isReconfigurationRequired(
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_oldSessionParams,
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_newSessionParams,
            bool* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus processCaptureRequest(
            const std::vector<::aidl::android::hardware::camera::device::CaptureRequest>& in_requests,
            const std::vector<::aidl::android::hardware::camera::device::BufferCache>&
                    in_cachesToRemove,
            int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus signalStreamFlush(const std::vector<int32_t>& in_streamIds,
                                                   int32_t in_streamConfigCounter) = 0;
    virtual ::ndk::ScopedAStatus switchToOffline(
            const std::vector<int32_t>& in_streamsToKeep,
            ::aidl::android::hardware::camera::device::CameraOfflineSessionInfo* out_offlineSessionInfo,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraOfflineSession>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus repeatingRequestEnd(int32_t in_frameNumber,
                                                     const std::vector<int32_t>& in_streamIds) = 0;
    virtual ::ndk::ScopedAStatus configureStreamsV2(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            ::aidl::android::hardware::camera::device::ConfigureStreamsRet* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;
};

class ICameraDeviceSessionDefault : public ICameraDeviceSession {
public:
    ::ndk::ScopedAStatus close() override;
    ::ndk::ScopedAStatus configureStreams(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            std::vector<::aidl::android::hardware::camera::device::HalStream>* _aidl_return) override;
    ::ndk::ScopedAStatus constructDefaultRequestSettings(
            ::aidl::android::hardware::camera::device::RequestTemplate in_type,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) override;
    ::ndk::ScopedAStatus flush() override;
    ::ndk::ScopedAStatus getCaptureRequestMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus getCaptureResultMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus isReconfigurationRequired(
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_oldSessionParams,
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_newSessionParams,
            bool* _aidl_return) override;
    ::ndk::ScopedAStatus processCaptureRequest(
            const std::vector<::aidl::android::hardware::camera::device::CaptureRequest>& in_requests,
            const std::vector<::aidl::android::hardware::camera::device::BufferCache>&
                    in_cachesToRemove,
            int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus signalStreamFlush(const std::vector<int32_t>& in_streamIds,
                                           int32_t in_streamConfigCounter) override;
    ::ndk::ScopedAStatus switchToOffline(
            const std::vector<int32_t>& in_streamsToKeep,
            ::aidl::android::hardware::camera::device::CameraOfflineSessionInfo* out_offlineSessionInfo,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraOfflineSession>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus repeatingRequestEnd(int32_t in_frameNumber,
                                             const std::vector<int32_t>& in_streamIds) override;
    ::ndk::ScopedAStatus configureStreamsV2(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            ::aidl::android::hardware::camera::device::ConfigureStreamsRet* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
    ::ndk::SpAIBinder asBinder() override;
    bool isRemote() override;
};

}  // namespace aidl::android::hardware::camera::device
