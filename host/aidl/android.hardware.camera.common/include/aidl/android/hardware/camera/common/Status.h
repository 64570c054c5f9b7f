// Codes that camera interfaces carry in service-specific errors
// (ScopedAStatus::fromServiceSpecificError(static_cast<int32_t>(Status::...))). AIDL enum
// android.hardware.camera.common.Status (V1) in the NDK backend's shape; printed by name through
// toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::common {

enum class Status : int32_t {
    OK = 0,
    ILLEGAL_ARGUMENT = 1,
    CAMERA_IN_USE = 2,
    MAX_CAMERAS_IN_USE = 3,
    OPERATION_NOT_SUPPORTED = 4,
    CAMERA_DISCONNECTED = 5,
    INTERNAL_ERROR = 6,
};

[[nodiscard]] static inline std::string toString(Status val) {
    switch (val) {
        case Status::OK:
            return "OK";
        case Status::ILLEGAL_ARGUMENT:
            return "ILLEGAL_ARGUMENT";
        case Status::CAMERA_IN_USE:
            return "CAMERA_IN_USE";
        case Status::MAX_CAMERAS_IN_USE:
            return "MAX_CAMERAS_IN_USE";
        case Status::OPERATION_NOT_SUPPORTED:
            return "OPERATION_NOT_SUPPORTED";
        case Status::CAMERA_DISCONNECTED:
            return "CAMERA_DISCONNECTED";
        case Status::INTERNAL_ERROR:
            return "INTERNAL_ERROR";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::common

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::common::Status, 7>
        enum_values<::aidl::android::hardware::camera::common::Status> = {
                ::aidl::android::hardware::camera::common::Status::OK,
                ::aidl::android::hardware::camera::common::Status::ILLEGAL_ARGUMENT,
                ::aidl::android::hardware::camera::common::Status::CAMERA_IN_USE,
                ::aidl::android::hardware::camera::common::Status::MAX_CAMERAS_IN_USE,
                ::aidl::android::hardware::camera::common::Status::OPERATION_NOT_SUPPORTED,
                ::aidl::android::hardware::camera::common::Status::CAMERA_DISCONNECTED,
                ::aidl::android::hardware::camera::common::Status::INTERNAL_ERROR,
};

}  // namespace ndk::internal
