// Binder plumbing of ICameraDeviceSession: its binder class, fromBinder, the Bn base and the
// Default implementation.

#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>

#include "InterfaceSupport.h"

namespace aidl::android::hardware::camera::device {

ICameraDeviceSession::ICameraDeviceSession() {}
ICameraDeviceSession::~ICameraDeviceSession() {}

std::shared_ptr<ICameraDeviceSession> ICameraDeviceSession::fromBinder(
        const ::ndk::SpAIBinder& binder) {
    return internal::interfaceFromBinder<ICameraDeviceSession>(binder);
}

BnCameraDeviceSession::BnCameraDeviceSession() {}
BnCameraDeviceSession::~BnCameraDeviceSession() {}

::ndk::ScopedAStatus BnCameraDeviceSession::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = ICameraDeviceSession::version;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus BnCameraDeviceSession::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = ICameraDeviceSession::hash;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder BnCameraDeviceSession::createBinder() {
    return ::ndk::SpAIBinder(AIBinder_new(internal::interfaceClass<ICameraDeviceSession>(),
                                          static_cast<void*>(this)));
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::close() {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::configureStreams(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_requestedConfiguration*/,
        std::vector<::aidl::android::hardware::camera::device::HalStream>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::constructDefaultRequestSettings(
        ::aidl::android::hardware::camera::device::RequestTemplate /*in_type*/,
        ::aidl::android::hardware::camera::device::CameraMetadata* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::flush() {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::getCaptureRequestMetadataQueue(
        ::aidl::android::hardware::common::fmq::MQDescriptor<
                int8_t,
                ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::getCaptureResultMetadataQueue(
        ::aidl::android::hardware::common::fmq::MQDescriptor<
                int8_t,
                ::aidl::android::hardware::common::fmq::SynchronizedReadWrite>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::isReconfigurationRequired(
        const ::aidl::android::hardware::camera::device::CameraMetadata& /*in_oldSessionParams*/,
        const ::aidl::android::hardware::camera::device::CameraMetadata& /*in_newSessionParams*/,
        bool* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::processCaptureRequest(
        const std::vector<::aidl::android::hardware::camera::device::CaptureRequest>& /*in_requests*/,
        const std::vector<::aidl::android::hardware::camera::device::BufferCache>& /*in_cachesToRemove*/,
        int32_t* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::signalStreamFlush(
        const std::vector<int32_t>& /*in_streamIds*/, int32_t /*in_streamConfigCounter*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::switchToOffline(
        const std::vector<int32_t>& /*in_streamsToKeep*/,
        ::aidl::android::hardware::camera::device::CameraOfflineSessionInfo* /*out_offlineSessionInfo*/,
        std::shared_ptr<
                ::aidl::android::hardware::camera::device::ICameraOfflineSession>* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::repeatingRequestEnd(
        int32_t /*in_frameNumber*/, const std::vector<int32_t>& /*in_streamIds*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::configureStreamsV2(
        const ::aidl::android::hardware::camera::device::StreamConfiguration& /*in_requestedConfiguration*/,
        ::aidl::android::hardware::camera::device::ConfigureStreamsRet* /*_aidl_return*/) {
    return internal::unknownTransaction();
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::getInterfaceVersion(int32_t* _aidl_return) {
    *_aidl_return = 0;
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::ScopedAStatus ICameraDeviceSessionDefault::getInterfaceHash(std::string* _aidl_return) {
    *_aidl_return = "";
    return ::ndk::ScopedAStatus(AStatus_newOk());
}

::ndk::SpAIBinder ICameraDeviceSessionDefault::asBinder() {
    return ::ndk::SpAIBinder();
}

bool ICameraDeviceSessionDefault::isRemote() {
    return false;
}

}  // namespace aidl::android::hardware::camera::device
