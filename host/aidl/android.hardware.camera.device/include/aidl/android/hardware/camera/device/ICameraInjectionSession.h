// A session whose frames come from an injected external camera. AIDL interface
// android.hardware.camera.device.ICameraInjectionSession (V3) in the NDK backend's shape; the
// virtual functions keep the generated order. Servers derive from BnCameraInjectionSession;
// ICameraInjectionSessionDefault answers every call with STATUS_UNKNOWN_TRANSACTION. Calls may come
// from any thread; an implementation does its own locking.
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>

namespace aidl::android::hardware::camera::device {

class ICameraInjectionSession : public ::ndk::ICInterface {
public:
    static inline const char* descriptor = "android.hardware.camera.device.ICameraInjectionSession";
    ICameraInjectionSession();
    virtual ~ICameraInjectionSession();

    static inline const int32_t version = 3;
    static inline const std::string hash = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";
    static constexpr uint32_t TRANSACTION_configureInjectionStreams = FIRST_CALL_TRANSACTION + 0;
    static constexpr uint32_t TRANSACTION_getCameraDeviceSession = FIRST_CALL_TRANSACTION + 1;

    static std::shared_ptr<ICameraInjectionSession> fromBinder(const ::ndk::SpAIBinder& binder);

    virtual ::ndk::ScopedAStatus configureInjectionStreams(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_characteristics) = 0;
    virtual ::ndk::ScopedAStatus getCameraDeviceSession(
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceSession>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;
};

class ICameraInjectionSessionDefault : public ICameraInjectionSession {
public:
    ::ndk::ScopedAStatus configureInjectionStreams(
            const ::aidl::android::hardware::camera::device::StreamConfiguration&
                    in_requestedConfiguration,
            const ::aidl::android::hardware::camera::device::CameraMetadata& in_characteristics)
            override;
    ::ndk::ScopedAStatus getCameraDeviceSession(
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceSession>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
    ::ndk::SpAIBinder asBinder() override;
    bool isRemote() override;
};

}  // namespace aidl::android::hardware::camera::device
