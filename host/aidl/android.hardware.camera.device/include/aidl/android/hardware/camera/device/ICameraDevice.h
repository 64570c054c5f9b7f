// One camera device as the framework sees it: static queries, torch, and opening a session. AIDL
// interface android.hardware.camera.device.ICameraDevice (V3) in the NDK backend's shape; the
// virtual functions keep the generated order. Servers derive from BnCameraDevice;
// ICameraDeviceDefault answers every call with STATUS_UNKNOWN_TRANSACTION. Calls may come from any
// thread; an implementation does its own locking.
#pragma once

#include <aidl/android/hardware/camera/common/CameraResourceCost.h>
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/ICameraInjectionSession.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <memory>
#include <string>

namespace aidl::android::hardware::camera::device {

class ICameraDevice : public ::ndk::ICInterface {
public:
    static inline const char* descriptor = "android.hardware.camera.device.ICameraDevice";
    ICameraDevice();
    virtual ~ICameraDevice();

    static inline const int32_t version = 3;
    static inline const std::string hash = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";
    static constexpr uint32_t TRANSACTION_getCameraCharacteristics = FIRST_CALL_TRANSACTION + 0;
    static constexpr uint32_t TRANSACTION_getPhysicalCameraCharacteristics =
            FIRST_CALL_TRANSACTION + 1;
    static constexpr uint32_t TRANSACTION_getResourceCost = FIRST_CALL_TRANSACTION + 2;
    static constexpr uint32_t TRANSACTION_isStreamCombinationSupported = FIRST_CALL_TRANSACTION + 3;
    static constexpr uint32_t TRANSACTION_open = FIRST_CALL_TRANSACTION + 4;
    static constexpr uint32_t TRANSACTION_openInjectionSession = FIRST_CALL_TRANSACTION + 5;
    static constexpr uint32_t TRANSACTION_setTorchMode = FIRST_CALL_TRANSACTION + 6;
    static constexpr uint32_t TRANSACTION_turnOnTorchWithStrengthLevel = FIRST_CALL_TRANSACTION + 7;
    static constexpr uint32_t TRANSACTION_getTorchStrengthLevel = FIRST_CALL_TRANSACTION + 8;
    static constexpr uint32_t TRANSACTION_constructDefaultRequestSettings =
            FIRST_CALL_TRANSACTION + 9;
    static constexpr uint32_t TRANSACTION_isStreamCombinationWithSettingsSupported =
            FIRST_CALL_TRANSACTION + 10;
    static constexpr uint32_t TRANSACTION_getSessionCharacteristics = FIRST_CALL_TRANSACTION + 11;

    static std::shared_ptr<ICameraDevice> fromBinder(const ::ndk::SpAIBinder& binder);

    virtual ::ndk::ScopedAStatus getCameraCharacteristics(
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getPhysicalCameraCharacteristics(
            const std::string& in_physicalCameraId,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getResourceCost(
            ::aidl::android::hardware::camera::common::CameraResourceCost* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus isStreamCombinationSupported(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_streams,
            bool* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus open(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_callback,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceSession>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus openInjectionSession(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_callback,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraInjectionSession>*
                    _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus setTorchMode(bool in_on) = 0;
    virtual ::ndk::ScopedAStatus turnOnTorchWithStrengthLevel(int32_t in_torchStrength) = 0;
    virtual ::ndk::ScopedAStatus getTorchStrengthLevel(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus constructDefaultRequestSettings(
            ::aidl::android::hardware::camera::device::RequestTemplate in_type,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus isStreamCombinationWithSettingsSupported(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_streams,
            bool* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getSessionCharacteristics(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_sessionConfig,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) = 0;
    virtual ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) = 0;
};

class ICameraDeviceDefault : public ICameraDevice {
public:
    ::ndk::ScopedAStatus getCameraCharacteristics(
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) override;
    ::ndk::ScopedAStatus getPhysicalCameraCharacteristics(
            const std::string& in_physicalCameraId,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) override;
    ::ndk::ScopedAStatus getResourceCost(
            ::aidl::android::hardware::camera::common::CameraResourceCost* _aidl_return) override;
    ::ndk::ScopedAStatus isStreamCombinationSupported(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_streams,
            bool* _aidl_return) override;
    ::ndk::ScopedAStatus open(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_callback,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceSession>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus openInjectionSession(
            const std::shared_ptr<::aidl::android::hardware::camera::device::ICameraDeviceCallback>&
                    in_callback,
            std::shared_ptr<::aidl::android::hardware::camera::device::ICameraInjectionSession>*
                    _aidl_return) override;
    ::ndk::ScopedAStatus setTorchMode(bool in_on) override;
    ::ndk::ScopedAStatus turnOnTorchWithStrengthLevel(int32_t in_torchStrength) override;
    ::ndk::ScopedAStatus getTorchStrengthLevel(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus constructDefaultRequestSettings(
            ::aidl::android::hardware::camera::device::RequestTemplate in_type,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) override;
    ::ndk::ScopedAStatus isStreamCombinationWithSettingsSupported(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_streams,
            bool* _aidl_return) override;
    ::ndk::ScopedAStatus getSessionCharacteristics(
            const ::aidl::android::hardware::camera::device::StreamConfiguration& in_sessionConfig,
            ::aidl::android::hardware::camera::device::CameraMetadata* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
    ::ndk::SpAIBinder asBinder() override;
    bool isRemote() override;
};

}  // namespace aidl::android::hardware::camera::device
