// State of one StreamBuffer. AIDL enum android.hardware.camera.device.BufferStatus (V3) in the NDK
// backend's shape; printed by name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::device {

enum class BufferStatus : int32_t {
    OK = 0,
    ERROR = 1,
};

[[nodiscard]] static inline std::string toString(BufferStatus val) {
    switch (val) {
        case BufferStatus::OK:
            return "OK";
        case BufferStatus::ERROR:
            return "ERROR";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::device

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::device::BufferStatus, 2>
        enum_values<::aidl::android::hardware::camera::device::BufferStatus> = {
                ::aidl::android::hardware::camera::device::BufferStatus::OK,
                ::aidl::android::hardware::camera::device::BufferStatus::ERROR,
};

}  // namespace ndk::internal
