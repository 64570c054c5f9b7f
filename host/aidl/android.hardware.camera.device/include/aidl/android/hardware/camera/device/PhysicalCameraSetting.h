// Request settings for one physical camera of a logical camera. AIDL parcelable
// android.hardware.camera.device.PhysicalCameraSetting (V3) in the NDK backend's shape: an
// aggregate with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class PhysicalCameraSetting {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.PhysicalCameraSetting";

    int64_t fmqSettingsSize = 0L;
    std::string physicalCameraId;
    ::aidl::android::hardware::camera::device::CameraMetadata settings;

    inline bool operator==(const PhysicalCameraSetting& _rhs) const {
        return std::tie(fmqSettingsSize, physicalCameraId, settings) ==
               std::tie(_rhs.fmqSettingsSize, _rhs.physicalCameraId, _rhs.settings);
    }
    inline bool operator<(const PhysicalCameraSetting& _rhs) const {
        return std::tie(fmqSettingsSize, physicalCameraId, settings) <
               std::tie(_rhs.fmqSettingsSize, _rhs.physicalCameraId, _rhs.settings);
    }
    inline bool operator!=(const PhysicalCameraSetting& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const PhysicalCameraSetting& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const PhysicalCameraSetting& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const PhysicalCameraSetting& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "PhysicalCameraSetting{";
        _aidl_os << "fmqSettingsSize: " << ::android::internal::ToString(fmqSettingsSize);
        _aidl_os << ", physicalCameraId: " << ::android::internal::ToString(physicalCameraId);
        _aidl_os << ", settings: " << ::android::internal::ToString(settings);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
