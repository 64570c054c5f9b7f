// Cost (0..100) of having a camera open and the devices that cannot be open with it. AIDL
// parcelable android.hardware.camera.common.CameraResourceCost (V1) in the NDK backend's shape: an
// aggregate with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::common {

class CameraResourceCost {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.common.CameraResourceCost";

    int32_t resourceCost = 0;
    std::vector<std::string> conflictingDevices;

    inline bool operator==(const CameraResourceCost& _rhs) const {
        return std::tie(resourceCost, conflictingDevices) ==
               std::tie(_rhs.resourceCost, _rhs.conflictingDevices);
    }
    inline bool operator<(const CameraResourceCost& _rhs) const {
        return std::tie(resourceCost, conflictingDevices) <
               std::tie(_rhs.resourceCost, _rhs.conflictingDevices);
    }
    inline bool operator!=(const CameraResourceCost& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CameraResourceCost& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CameraResourceCost& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CameraResourceCost& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CameraResourceCost{";
        _aidl_os << "resourceCost: " << ::android::internal::ToString(resourceCost);
        _aidl_os << ", conflictingDevices: " << ::android::internal::ToString(conflictingDevices);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::common
