// Counter-clockwise rotation the HAL applies to an output stream. AIDL enum
// android.hardware.camera.device.StreamRotation (V3) in the NDK backend's shape; printed by name
// through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::device {

enum class StreamRotation : int32_t {
    ROTATION_0 = 0,
    ROTATION_90 = 1,
    ROTATION_180 = 2,
    ROTATION_270 = 3,
};

[[nodiscard]] static inline std::string toString(StreamRotation val) {
    switch (val) {
        case StreamRotation::ROTATION_0:
            return "ROTATION_0";
        case StreamRotation::ROTATION_90:
            return "ROTATION_90";
        case StreamRotation::ROTATION_180:
            return "ROTATION_180";
        case StreamRotation::ROTATION_270:
            return "ROTATION_270";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::device

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::device::StreamRotation, 4>
        enum_values<::aidl::android::hardware::camera::device::StreamRotation> = {
                ::aidl::android::hardware::camera::device::StreamRotation::ROTATION_0,
                ::aidl::android::hardware::camera::device::StreamRotation::ROTATION_90,
                ::aidl::android::hardware::camera::device::StreamRotation::ROTATION_180,
                ::aidl::android::hardware::camera::device::StreamRotation::ROTATION_270,
};

}  // namespace ndk::internal
