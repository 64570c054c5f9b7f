/*
 * The one place where an internal status (0 or a negative errno value) becomes the status an AIDL
 * camera method returns. Errors travel as service-specific errors carrying
 * aidl::android::hardware::camera::common::Status:
 *
 *   0                      OK (ScopedAStatus::ok())
 *   -EINVAL                ILLEGAL_ARGUMENT
 *   -EBUSY                 CAMERA_IN_USE
 *   -EUSERS                MAX_CAMERAS_IN_USE
 *   -ENOSYS, -EOPNOTSUPP   OPERATION_NOT_SUPPORTED
 *   -ENODEV, anything else INTERNAL_ERROR
 *
 * Stateless; any thread.
 */
#pragma once

#include <android/binder_auto_utils.h>

namespace kovo::aidl2legacy {

ndk::ScopedAStatus convertStatus(int status);

}  // namespace kovo::aidl2legacy
