// A session that finishes in-flight requests after the framework switched it offline. AIDL
// interface android.hardware.camera.device.ICameraOfflineSession (V3) in the NDK backend's shape;
// the virtual functions keep the generated order. Servers derive from BnCameraOfflineSession;
// ICameraOfflineSessionDefault answers every call with STATUS_UNKNOWN_TRANSACTION. Calls may come
// from any thread; an implementation does its own locking.
#pragma once

#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>

namespace aidl::android::hardware::camera::device {

class ICameraOfflineSession : public ::ndk::ICInterface {
public:
    static inline const char* descriptor = "android.hardware.camera.device.ICameraOfflineSession";
    ICameraOfflineSession();
    virtual ~ICameraOfflineSession();

    static inline const int32_t version = 3;
    static inline const std::string hash = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";
    static constexpr uint32_t TRANSACTION_close = FIRST_CALL_TRANSACTION + 0;
    static constexpr uint32_t TRANSACTION_getCaptureResultMetadataQueue = FIRST_CALL_TRANSACTION + 1;
    static constexpr uint32_t TRANSACTION_setCallback = FIRST_CALL_TRANSACTION + 2;

    static std::shared_ptr<ICameraOfflineSession> fromBinder(const ::ndk::SpAIBinder& binder);

    virtual ::ndk::ScopedAStatus close() = 0;
    virtual ::ndk::ScopedAStatus getCaptureResultMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus setCallback(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_cb) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;
};

class ICameraOfflineSessionDefault : public ICameraOfflineSession {
public:
    ::ndk::ScopedAStatus close() override;
    ::ndk::ScopedAStatus getCaptureResultMetadataQueue(
            ::aidl::android::hardware::common::fmq::MQDescriptor<
                    int8_t, ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus setCallback(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_cb) override;
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
    ::ndk::SpAIBinder asBinder() override;
    bool isRemote() override;
};

}  // namespace aidl::android::hardware::camera::device
