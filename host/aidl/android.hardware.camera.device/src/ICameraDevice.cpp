// Binder plumbing of ICameraDevice: its binder class, fromBinder, the Bn base and the Default
// implementation.

#include <aidl/android/hardware/camera/device/BnCameraDevice.h>
#include <aidl/android/hardware/camera/device/ICameraDevice.h>

#include "InterfaceSupport.h"

namespace aidl::android::hardware::camera::device {

ICameraDevice::ICameraDevice() {}
ICameraDevice::~ICameraDevice() {}

std::shared_ptr<ICameraDevice> ICameraDevice::fromBinder(const ::ndk::SpAIBinder& binder) {
    return internal::interfaceFromBinder<ICameraDevice>(binder);
}

BnCameraDevice::BnCameraDevice() {}
BnCameraDevice::~BnCameraDevice() {}

::ndk::ScopedAStatus BnCameraDevice::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = ICameraDevice::version;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus BnCameraDevice::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = ICameraDevice::hash;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder BnCameraDevice::createBinder() {
    return ::ndk::SpAIBinder(
            AIBinder_new(internal::interfaceClass<ICameraDevice>(), static_cast<void*>(this)));
}

::ndk::ScopedAStatus ICameraDeviceDefault::getCameraCharacteristics(
        ::aidl::android::hardware::camera::device::CameraMetadata* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::getPhysicalCameraCharacteristics(
        const std::string& /*in_physicalCameraId*/,
        ::aidl::android::hardware::camera::device::CameraMetadata* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::getResourceCost(
        ::aidl::android::hardware::camera::common::CameraResourceCost* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::isStreamCombinationSupported(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_streams*/,
        bool* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::open(
        const std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraDeviceCallback>& /*in_callback*/,
        std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraDeviceSession>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::openInjectionSession(
        const std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraDeviceCallback>& /*in_callback*/,
        std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraInjectionSession>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::setTorchMode(bool /*in_on*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::turnOnTorchWithStrengthLevel(int32_t /*in_torchStrength*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::getTorchStrengthLevel(int32_t* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::constructDefaultRequestSettings(
        ::aidl::android::hardware::camera::device::RequestTemplate /*in_type*/,
        ::aidl::android::hardware::camera::device::CameraMetadata* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::isStreamCombinationWithSettingsSupported(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_streams*/,
        bool* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::getSessionCharacteristics(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_sessionConfig*/,
        ::aidl::android::hardware::camera::device::CameraMetadata* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceDefault::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = 0;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus ICameraDeviceDefault::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = "";
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder ICameraDeviceDefault::asBinder() {
    return ::ndk::SpAIBinder();
}

bool ICameraDeviceDefault::isRemote() {
    return false;
}

}  // namespace aidl::android::hardware::camera::device
