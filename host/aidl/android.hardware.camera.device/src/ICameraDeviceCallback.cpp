// Binder plumbing of ICameraDeviceCallback: its binder class, fromBinder, the Bn base and the
// Default implementation.

#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>

#include "InterfaceSupport.h"

namespace aidl::android::hardware::camera::device {

ICameraDeviceCallback::ICameraDeviceCallback() {}
ICameraDeviceCallback::~ICameraDeviceCallback() {}

std::shared_ptr<ICameraDeviceCallback> ICameraDeviceCallback::fromBinder(
        const ::ndk::SpAIBinder& binder) {
    return internal::interfaceFromBinder<ICameraDeviceCallback>(binder);
}

BnCameraDeviceCallback::BnCameraDeviceCallback() {}
BnCameraDeviceCallback::~BnCameraDeviceCallback() {}

::ndk::ScopedAStatus BnCameraDeviceCallback::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = ICameraDeviceCallback::version;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus BnCameraDeviceCallback::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = ICameraDeviceCallback::hash;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder BnCameraDeviceCallback::createBinder() {
    return ::ndk::SpAIBinder(AIBinder_new(internal::interfaceClass<ICameraDeviceCallback>(),
                                          static_cast<void*>(this)));
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::notify(
        const std::vector<::aidl::android::hardware::camera::device::NotifyMsg>& /*in_msgs*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::processCaptureResult(
        const std::vector<::aidl::android::hardware::camera::device::CaptureResult>& /*in_results*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::requestStreamBuffers(
        const std::vector<::aidl::android::hardware::camera::device::BufferRequest>& /*in_bufReqs*/,
        std::vector<::aidl::android::hardware::camera::device::StreamBufferRet>* /*out_buffers*/,
        ::aidl::android::hardware::camera::device::BufferRequestStatus* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::returnStreamBuffers(
        const std::vector<::aidl::android::hardware::camera::device::StreamBuffer>& /*in_buffers*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = 0;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus ICameraDeviceCallbackDefault::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = "";
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder ICameraDeviceCallbackDefault::asBinder() {
    return ::ndk::SpAIBinder();
}

bool ICameraDeviceCallbackDefault::isRemote() {
    return false;
}

}  // namespace aidl::android::hardware::camera::device
