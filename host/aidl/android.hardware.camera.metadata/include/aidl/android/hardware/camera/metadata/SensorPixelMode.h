// Values of android.sensor.pixelMode; a Stream lists the modes it is used in. AIDL enum
// android.hardware.camera.metadata.SensorPixelMode (V3) in the NDK backend's shape; printed by name
// through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::metadata {

enum class SensorPixelMode : int32_t {
    ANDROID_SENSOR_PIXEL_MODE_DEFAULT = 0,
    ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION = 1,
};

[[nodiscard]] static inline std::string toString(SensorPixelMode val) {
    switch (val) {
        case SensorPixelMode::ANDROID_SENSOR_PIXEL_MODE_DEFAULT:
            return "ANDROID_SENSOR_PIXEL_MODE_DEFAULT";
        case SensorPixelMode::ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION:
            return "ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION";
        default:
            return std::to_string(static_cast<int32_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::metadata

namespace ndk::internal {

template <>
constexpr inline std::array<::aidl::android::hardware::camera::metadata::SensorPixelMode, 2>
        enum_values<::aidl::android::hardware::camera::metadata::SensorPixelMode> = {
                ::aidl::android::hardware::camera::metadata::SensorPixelMode::
                        ANDROID_SENSOR_PIXEL_MODE_DEFAULT,
                ::aidl::android::hardware::camera::metadata::SensorPixelMode::
                        ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION,
};

}  // namespace ndk::internal
