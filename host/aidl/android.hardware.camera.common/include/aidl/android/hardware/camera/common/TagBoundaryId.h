// First tag number of the platform and of the vendor tag ranges. AIDL enum
// android.hardware.camera.common.TagBoundaryId (V1) in the NDK backend's shape; printed by name
// through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::common {

enum class TagBoundaryId : int64_t {
    AOSP = 0L,
    VENDOR = 2147483648L,
};

[[nodiscard]] static inline std::string toString(TagBoundaryId val) {
    switch (val) {
        case TagBoundaryId::AOSP:
            return "AOSP";
        case TagBoundaryId::VENDOR:
            return "VENDOR";
        default:
            return std::to_string(static_cast<int64_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::common

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::common::TagBoundaryId, 2>
        enum_values<::aidl::android::hardware::camera::common::TagBoundaryId> = {
                ::aidl::android::hardware::camera::common::TagBoundaryId::AOSP,
                ::aidl::android::hardware::camera::common::TagBoundaryId::VENDOR,
};

}  // namespace ndk::internal
