// Description of one vendor metadata tag. AIDL parcelable android.hardware.camera.common.VendorTag
// (V1) in the NDK backend's shape: an aggregate with all six comparisons and toString(). Copyable.
// No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/common/CameraMetadataType.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::common {

class VendorTag {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.common.VendorTag";

    int32_t tagId = 0;
    std::string tagName;
    ::aidl::android::hardware::camera::common::CameraMetadataType tagType =
            ::aidl::android::hardware::camera::common::CameraMetadataType(0);

    inline bool operator==(const VendorTag& _rhs) const {
        return std::tie(tagId, tagName, tagType) == std::tie(_rhs.tagId, _rhs.tagName, _rhs.tagType);
    }
    inline bool operator<(const VendorTag& _rhs) const {
        return std::tie(tagId, tagName, tagType) < std::tie(_rhs.tagId, _rhs.tagName, _rhs.tagType);
    }
    inline bool operator!=(const VendorTag& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const VendorTag& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const VendorTag& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const VendorTag& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "VendorTag{";
        _aidl_os << "tagId: " << ::android::internal::ToString(tagId);
        _aidl_os << ", tagName: " << ::android::internal::ToString(tagName);
        _aidl_os << ", tagType: " << ::android::internal::ToString(tagType);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::common
