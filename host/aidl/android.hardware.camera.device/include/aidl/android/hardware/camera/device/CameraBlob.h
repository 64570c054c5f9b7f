// The transport trailer a HAL writes at the very end of a BLOB (JPEG) buffer. AIDL parcelable
// android.hardware.camera.device.CameraBlob (V3) in the NDK backend's shape: an aggregate with all
// six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/CameraBlobId.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class CameraBlob {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.CameraBlob";

    ::aidl::android::hardware::camera::device::CameraBlobId blobId =
            ::aidl::android::hardware::camera::device::CameraBlobId(0);
    int32_t blobSizeBytes = 0;

    inline bool operator==(const CameraBlob& _rhs) const {
        return std::tie(blobId, blobSizeBytes) == std::tie(_rhs.blobId, _rhs.blobSizeBytes);
    }
    inline bool operator<(const CameraBlob& _rhs) const {
        return std::tie(blobId, blobSizeBytes) < std::tie(_rhs.blobId, _rhs.blobSizeBytes);
    }
    inline bool operator!=(const CameraBlob& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CameraBlob& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CameraBlob& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CameraBlob& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CameraBlob{";
        _aidl_os << "blobId: " << ::android::internal::ToString(blobId);
        _aidl_os << ", blobSizeBytes: " << ::android::internal::ToString(blobSizeBytes);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
