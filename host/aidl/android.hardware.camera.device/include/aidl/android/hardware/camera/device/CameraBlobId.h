// Id of the CameraBlob trailer of a BLOB buffer; the legacy CAMERA3_JPEG_BLOB_ID and
// CAMERA3_JPEG_APP_SEGMENTS_BLOB_ID numbers. AIDL enum android.hardware.camera.device.CameraBlobId
// (V3) in the NDK backend's shape; printed by name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::device {

enum class CameraBlobId : int32_t {
    JPEG = 255,
    JPEG_APP_SEGMENTS = 256,
};

[[nodiscard]] static inline std::string toString(CameraBlobId val) {
    switch (val) {
        case CameraBlobId::JPEG:
            return "JPEG";
        case CameraBlobId::JPEG_APP_SEGMENTS:
            return "JPEG_APP_SEGMENTS";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::device

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::device::CameraBlobId, 2>
        enum_values<::aidl::android::hardware::camera::device::CameraBlobId> = {
                ::aidl::android::hardware::camera::device::CameraBlobId::JPEG,
                ::aidl::android::hardware::camera::device::CameraBlobId::JPEG_APP_SEGMENTS,
};

}  // namespace ndk::internal
