#include <aidl/android/hardware/camera/common/Status.h>
#include <aidl2legacy/utils/StatusConversion.h>

#include <cerrno>

namespace kovo::aidl2legacy {

using aidl::android::hardware::camera::common::Status;

namespace {

Status toCameraStatus(int status) {
    switch (status) {
        case -EINVAL:
            return Status::ILLEGAL_ARGUMENT;
        case -EBUSY:
            return Status::CAMERA_IN_USE;
        case -EUSERS:
            return Status::MAX_CAMERAS_IN_USE;
        case -ENOSYS:
        case -EOPNOTSUPP:
            return Status::OPERATION_NOT_SUPPORTED;
        default:
            return Status::INTERNAL_ERROR;
    }
}

}  // namespace

ndk::ScopedAStatus convertStatus(int status) {
    if (status == 0) return ndk::ScopedAStatus::ok();
    return ndk::ScopedAStatus::fromServiceSpecificError(
            static_cast<int32_t>(toCameraStatus(status)));
}

}  // namespace kovo::aidl2legacy
