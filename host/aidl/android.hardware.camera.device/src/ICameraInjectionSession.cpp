// Binder plumbing of ICameraInjectionSession: its binder class, fromBinder, the Bn base and the
// Default implementation.

#include <aidl/android/hardware/camera/device/BnCameraInjectionSession.h>
#include <aidl/android/hardware/camera/device/ICameraInjectionSession.h>

#include "InterfaceSupport.h"

namespace aidl::android::hardware::camera::device {

ICameraInjectionSession::ICameraInjectionSession() {}
ICameraInjectionSession::~ICameraInjectionSession() {}

std::shared_ptr<ICameraInjectionSession> ICameraInjectionSession::fromBinder(
        const ::ndk::SpAIBinder& binder) {
    return internal::interfaceFromBinder<ICameraInjectionSession>(binder);
}

BnCameraInjectionSession::BnCameraInjectionSession() {}
BnCameraInjectionSession::~BnCameraInjectionSession() {}

::ndk::ScopedAStatus BnCameraInjectionSession::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = ICameraInjectionSession::version;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus BnCameraInjectionSession::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = ICameraInjectionSession::hash;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder BnCameraInjectionSession::createBinder() {
    return ::ndk::SpAIBinder(AIBinder_new(internal::interfaceClass<ICameraInjectionSession>(),
                                          static_cast<void*>(this)));
}

::ndk::ScopedAStatus ICameraInjectionSessionDefault::configureInjectionStreams(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_requestedConfiguration*/,
        const ::aidl::android::hardware::camera::device::CameraMetadata& /*in_characteristics*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraInjectionSessionDefault::getCameraDeviceSession(
        std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraDeviceSession>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraInjectionSessionDefault::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = 0;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus ICameraInjectionSessionDefault::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = "";
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder ICameraInjectionSessionDefault::asBinder() {
    return ::ndk::SpAIBinder();
}

bool ICameraInjectionSessionDefault::isRemote() {
    return false;
}

}  // namespace aidl::android::hardware::camera::device
