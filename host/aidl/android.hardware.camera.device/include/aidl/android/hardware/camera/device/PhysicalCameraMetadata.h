// Result metadata of one physical camera of a logical camera. AIDL parcelable
// android.hardware.camera.device.PhysicalCameraMetadata (V3) in the NDK backend's shape: an
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

class PhysicalCameraMetadata {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.PhysicalCameraMetadata";

    int64_t fmqMetadataSize = 0L;
    std::string physicalCameraId;
    ::aidl::android::hardware::camera::device::CameraMetadata metadata;

    inline bool operator==(const PhysicalCameraMetadata& _rhs) const {
        return std::tie(fmqMetadataSize, physicalCameraId, metadata) ==
               std::tie(_rhs.fmqMetadataSize, _rhs.physicalCameraId, _rhs.metadata);
    }
    inline bool operator<(const PhysicalCameraMetadata& _rhs) const {
        return std::tie(fmqMetadataSize, physicalCameraId, metadata) <
               std::tie(_rhs.fmqMetadataSize, _rhs.physicalCameraId, _rhs.metadata);
    }
    inline bool operator!=(const PhysicalCameraMetadata& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const PhysicalCameraMetadata& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const PhysicalCameraMetadata& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const PhysicalCameraMetadata& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "PhysicalCameraMetadata{";
        _aidl_os << "fmqMetadataSize: " << ::android::internal::ToString(fmqMetadataSize);
        _aidl_os << ", physicalCameraId: " << ::android::internal::ToString(physicalCameraId);
        _aidl_os << ", metadata: " << ::android::internal::ToString(metadata);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
