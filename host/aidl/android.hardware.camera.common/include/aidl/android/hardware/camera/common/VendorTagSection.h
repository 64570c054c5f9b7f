// A named group of vendor tags. AIDL parcelable android.hardware.camera.common.VendorTagSection
// (V1) in the NDK backend's shape: an aggregate with all six comparisons and toString(). Copyable.
// No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/common/VendorTag.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::common {

class VendorTagSection {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.common.VendorTagSection";

    std::string sectionName;
    std::vector<::aidl::android::hardware::camera::common::VendorTag> tags;

    inline bool operator==(const VendorTagSection& _rhs) const {
        return std::tie(sectionName, tags) == std::tie(_rhs.sectionName, _rhs.tags);
    }
    inline bool operator<(const VendorTagSection& _rhs) const {
        return std::tie(sectionName, tags) < std::tie(_rhs.sectionName, _rhs.tags);
    }
    inline bool operator!=(const VendorTagSection& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const VendorTagSection& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const VendorTagSection& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const VendorTagSection& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "VendorTagSection{";
        _aidl_os << "sectionName: " << ::android::internal::ToString(sectionName);
        _aidl_os << ", tags: " << ::android::internal::ToString(tags);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::common
