// Binder plumbing of ICameraOfflineSession: its binder class, fromBinder, the Bn base and the
// Default implementation.

#include <aidl/android/hardware/camera/device/BnCameraOfflineSession.h>
#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>

#include "InterfaceSupport.h"

namespace aidl::android::hardware::camera::device {

ICameraOfflineSession::ICameraOfflineSession() {}
ICameraOfflineSession::~ICameraOfflineSession() {}

std::shared_ptr<ICameraOfflineSession> ICameraOfflineSession::fromBinder(
        const ::ndk::SpAIBinder& binder) {
    return internal::interfaceFromBinder<ICameraOfflineSession>(binder);
}

BnCameraOfflineSession::BnCameraOfflineSession() {}
BnCameraOfflineSession::~BnCameraOfflineSession() {}

::ndk::ScopedAStatus BnCameraOfflineSession::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = ICameraOfflineSession::version;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus BnCameraOfflineSession::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = ICameraOfflineSession::hash;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder BnCameraOfflineSession::createBinder() {
    return ::ndk::SpAIBinder(AIBinder_new(internal::interfaceClass<ICameraOfflineSession>(),
                                          static_cast<void*>(this)));
}

::ndk::ScopedAStatus ICameraOfflineSessionDefault::close() {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraOfflineSessionDefault::getCaptureResultMetadataQueue(
        ::aidl::android::hardware::common::fmq::MQDescriptor<
                int8_t,
                ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraOfflineSessionDefault::setCallback(
        const std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraDeviceCallback>& /*in_cb*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraOfflineSessionDefault::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = 0;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus ICameraOfflineSessionDefault::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = "";
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder ICameraOfflineSessionDefault::asBinder() {
    return ::ndk::SpAIBinder();
}

bool ICameraOfflineSessionDefault::isRemote() {
    return false;
}

}  // namespace aidl::android::hardware::camera::device
