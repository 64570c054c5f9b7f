// Color spaces of android.request.availableColorSpaceProfilesMap; Stream::colorSpace holds one of
// these values as a plain int. AIDL enum
// android.hardware.camera.metadata.RequestAvailableColorSpaceProfilesMap (V3) in the NDK backend's
// shape; printed by name through toString(), unknown values as decimal.
#pragma once

#include <android/binder_enums.h>

#include <array>
#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::metadata {

enum class RequestAvailableColorSpaceProfilesMap : int64_t {
    ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED = -1L,
    ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_SRGB = 0L,
    ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_DISPLAY_P3 = 7L,
    ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_BT2020_HLG = 16L,
};

[[nodiscard]] static inline std::string toString(RequestAvailableColorSpaceProfilesMap val) {
    switch (val) {
        case RequestAvailableColorSpaceProfilesMap::
                ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED:
            return "ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED";
        case RequestAvailableColorSpaceProfilesMap::ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_SRGB:
            return "ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_SRGB";
        case RequestAvailableColorSpaceProfilesMap::
                ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_DISPLAY_P3:
            return "ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_DISPLAY_P3";
        case RequestAvailableColorSpaceProfilesMap::
                ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_BT2020_HLG:
            return "ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_BT2020_HLG";
        default:
            return std::to_string(static_cast<int64_t>(val));
    }
}

}  // namespace aidl::android::hardware::camera::metadata

namespace ndk::internal {

template <>
constexpr inline std::array<
        ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap, 4>
        enum_values<
                ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap> = {
                ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap::
                        ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED,
                ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap::
                        ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_SRGB,
                ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap::
                        ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_DISPLAY_P3,
                ::aidl::android::hardware::camera::metadata::RequestAvailableColorSpaceProfilesMap::
                        ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_BT2020_HLG,
};

}  // namespace ndk::internal
