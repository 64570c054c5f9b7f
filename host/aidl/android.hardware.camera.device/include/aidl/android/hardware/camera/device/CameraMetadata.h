// The bytes of one packed camera_metadata_t buffer; empty means no metadata. AIDL parcelable
// android.hardware.camera.device.CameraMetadata (V3) in the NDK backend's shape: an aggregate with
// all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::device {

class CameraMetadata {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.CameraMetadata";

    std::vector<uint8_t> metadata;

    inline bool operator==(const CameraMetadata& _rhs) const {
        return std::tie(metadata) == std::tie(_rhs.metadata);
    }
    inline bool operator<(const CameraMetadata& _rhs) const {
        return std::tie(metadata) < std::tie(_rhs.metadata);
    }
    inline bool operator!=(const CameraMetadata& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CameraMetadata& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CameraMetadata& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CameraMetadata& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CameraMetadata{";
        _aidl_os << "metadata: " << ::android::internal::ToString(metadata);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
