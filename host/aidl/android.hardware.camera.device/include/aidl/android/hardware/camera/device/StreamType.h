// Direction of a stream. AIDL enum android.hardware.camera.device.StreamType (V3) in the NDK
// backend's shape; printed by name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::device {

enum class StreamType : int32_t {
    OUTPUT = 0,
    INPUT = 1,
};

[[nodiscard]] static inline std::string toString(StreamType val) {
    switch (val) {
        case StreamType::OUTPUT:
            return "OUTPUT";
        case StreamType::INPUT:
            return "INPUT";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::device

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::device::StreamType, 2>
        enum_values<::aidl::android::hardware::camera::device::StreamType> = {
                ::aidl::android::hardware::camera::device::StreamType::OUTPUT,
                ::aidl::android::hardware::camera::device::StreamType::INPUT,
};

}  // namespace ndk::internal
