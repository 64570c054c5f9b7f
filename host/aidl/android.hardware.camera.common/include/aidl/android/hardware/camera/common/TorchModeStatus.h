// Torch state of a camera device as a provider reports it. AIDL enum
// android.hardware.camera.common.TorchModeStatus (V1) in the NDK backend's shape; printed by name
// through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::common {

enum class TorchModeStatus : int32_t {
    NOT_AVAILABLE = 0,
    AVAILABLE_OFF = 1,
    AVAILABLE_ON = 2,
};

[[nodiscard]] static inline std::string toString(TorchModeStatus val) {
    switch (val) {
        case TorchModeStatus::NOT_AVAILABLE:
            return "NOT_AVAILABLE";
        case TorchModeStatus::AVAILABLE_OFF:
            return "AVAILABLE_OFF";
        case TorchModeStatus::AVAILABLE_ON:
            return "AVAILABLE_ON";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::common

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::common::TorchModeStatus, 3>
        enum_values<::aidl::android::hardware::camera::common::TorchModeStatus> = {
                ::aidl::android::hardware::camera::common::TorchModeStatus::NOT_AVAILABLE,
                ::aidl::android::hardware::camera::common::TorchModeStatus::AVAILABLE_OFF,
                ::aidl::android::hardware::camera::common::TorchModeStatus::AVAILABLE_ON,
};

}  // namespace ndk::internal
