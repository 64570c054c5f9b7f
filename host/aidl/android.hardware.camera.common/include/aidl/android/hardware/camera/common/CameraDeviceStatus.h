// Presence of a camera device as a provider reports it. AIDL enum
// android.hardware.camera.common.CameraDeviceStatus (V1) in the NDK backend's shape; printed by
// name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::common {

enum class CameraDeviceStatus : int32_t {
    NOT_PRESENT = 0,
    PRESENT = 1,
    ENUMERATING = 2,
};

[[nodiscard]] static inline std::string toString(CameraDeviceStatus val) {
    switch (val) {
        case CameraDeviceStatus::NOT_PRESENT:
            return "NOT_PRESENT";
        case CameraDeviceStatus::PRESENT:
            return "PRESENT";
        case CameraDeviceStatus::ENUMERATING:
            return "ENUMERATING";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::common

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::common::CameraDeviceStatus, 3>
        enum_values<::aidl::android::hardware::camera::common::CameraDeviceStatus> = {
                ::aidl::android::hardware::camera::common::CameraDeviceStatus::NOT_PRESENT,
                ::aidl::android::hardware::camera::common::CameraDeviceStatus::PRESENT,
                ::aidl::android::hardware::camera::common::CameraDeviceStatus::ENUMERATING,
};

}  // namespace ndk::internal
