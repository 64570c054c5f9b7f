// Value type of a camera metadata tag (vendor tag descriptions). AIDL enum
// android.hardware.camera.common.CameraMetadataType (V1) in the NDK backend's shape; printed by
// name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::common {

enum class CameraMetadataType : int32_t {
    BYTE = 0,
    INT32 = 1,
    FLOAT = 2,
    INT64 = 3,
    DOUBLE = 4,
    RATIONAL = 5,
};

[[nodiscard]] static inline std::string toString(CameraMetadataType val) {
    switch (val) {
        case CameraMetadataType::BYTE:
            return "BYTE";
        case CameraMetadataType::INT32:
            return "INT32";
        case CameraMetadataType::FLOAT:
            return "FLOAT";
        case CameraMetadataType::INT64:
            return "INT64";
        case CameraMetadataType::DOUBLE:
            return "DOUBLE";
        case CameraMetadataType::RATIONAL:
            return "RATIONAL";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::common

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::common::CameraMetadataType, 6>
        enum_values<::aidl::android::hardware::camera::common::CameraMetadataType> = {
                ::aidl::android::hardware::camera::common::CameraMetadataType::BYTE,
                ::aidl::android::hardware::camera::common::CameraMetadataType::INT32,
                ::aidl::android::hardware::camera::common::CameraMetadataType::FLOAT,
                ::aidl::android::hardware::camera::common::CameraMetadataType::INT64,
                ::aidl::android::hardware::camera::common::CameraMetadataType::DOUBLE,
                ::aidl::android::hardware::camera::common::CameraMetadataType::RATIONAL,
};

}  // namespace ndk::internal
