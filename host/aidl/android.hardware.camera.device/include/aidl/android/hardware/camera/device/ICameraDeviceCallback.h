// The framework's side of a session: results, notifications and HAL buffer manager traffic. AIDL
// interface android.hardware.camera.device.ICameraDeviceCallback (V3) in the NDK backend's shape;
// the virtual functions keep the generated order. Servers derive from BnCameraDeviceCallback;
// ICameraDeviceCallbackDefault answers every call with STATUS_UNKNOWN_TRANSACTION. Calls may come
// from any thread; an implementation does its own locking.
#pragma once

#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <aidl/android/hardware/camera/device/BufferRequestStatus.h>
#include <aidl/android/hardware/camera/device/CaptureResult.h>
#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamBufferRet.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace aidl::android::hardware::camera::device {

class ICameraDeviceCallback : public ::ndk::ICInterface {
public:
    static inline const char* descriptor = "android.hardware.camera.device.ICameraDeviceCallback";
    ICameraDeviceCallback();
    virtual ~ICameraDeviceCallback();

    static inline const int32_t version = 3;
    static inline const std::string hash = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";
    static constexpr uint32_t TRANSACTION_notify = FIRST_CALL_TRANSACTION + 0;
    static constexpr uint32_t TRANSACTION_processCaptureResult = FIRST_CALL_TRANSACTION + 1;
    static constexpr uint32_t TRANSACTION_requestStreamBuffers = FIRST_CALL_TRANSACTION + 2;
    static constexpr uint32_t TRANSACTION_returnStreamBuffers = FIRST_CALL_TRANSACTION + 3;

    static std::shared_ptr<ICameraDeviceCallback> fromBinder(const ::ndk::SpAIBinder& binder);

    virtual ::ndk::ScopedAStatus notify(
            const std::vector<::aidl::android::hardware::camera::device::NotifyMsg>& in_msgs) = 0;
    virtual ::ndk::ScopedAStatus processCaptureResult(
            const std::vector<::aidl::android::hardware::camera::device::CaptureResult>&
                    in_results) = 0;
    virtual ::ndk::ScopedAStatus requestStreamBuffers(
            const std::vector<::aidl::android::hardware::camera::device::BufferRequest>& in_bufReqs,
            std::vector<::aidl::android::hardware::camera::device::StreamBufferRet>* out_buffers,
            ::aidl::android::hardware::camera::device::BufferRequestStatus* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus returnStreamBuffers(
            const std::vector<::aidl::android::hardware::camera::device::StreamBuffer>&
                    in_buffers) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;
};

class ICameraDeviceCallbackDefault : public ICameraDeviceCallback {
public:
    ::ndk::ScopedAStatus notify(
            const std::vector<::aidl::android::hardware::camera::device::NotifyMsg>& in_msgs) override;
    ::ndk::ScopedAStatus processCaptureResult(
            const std::vector<::aidl::android::hardware::camera::device::CaptureResult>& in_results)
            override;
    ::ndk::ScopedAStatus requestStreamBuffers(
            const std::vector<::aidl::android::hardware::camera::device::BufferRequest>& in_bufReqs,
            std::vector<::aidl::android::hardware::camera::device::StreamBufferRet>* out_buffers,
            ::aidl::android::hardware::camera::device::BufferRequestStatus* _aidl_return) override;
    ::ndk::ScopedAStatus returnStreamBuffers(
            const std::vector<::aidl::android::hardware::camera::device::StreamBuffer>& in_buffers)
            override;
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
    ::ndk::SpAIBinder asBinder() override;
    bool isRemote() override;
};

}  // namespace aidl::android::hardware::camera::device
