// Streams and in-flight requests that continue in an offline session. AIDL parcelable
// android.hardware.camera.device.CameraOfflineSessionInfo (V3) in the NDK backend's shape: an
// aggregate with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/OfflineRequest.h>
#include <aidl/android/hardware/camera/device/OfflineStream.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::device {

class CameraOfflineSessionInfo {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor =
            "android.hardware.camera.device.CameraOfflineSessionInfo";

    std::vector<::aidl::android::hardware::camera::device::OfflineStream> offlineStreams;
    std::vector<::aidl::android::hardware::camera::device::OfflineRequest> offlineRequests;

    inline bool operator==(const CameraOfflineSessionInfo& _rhs) const {
        return std::tie(offlineStreams, offlineRequests) ==
               std::tie(_rhs.offlineStreams, _rhs.offlineRequests);
    }
    inline bool operator<(const CameraOfflineSessionInfo& _rhs) const {
        return std::tie(offlineStreams, offlineRequests) <
               std::tie(_rhs.offlineStreams, _rhs.offlineRequests);
    }
    inline bool operator!=(const CameraOfflineSessionInfo& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CameraOfflineSessionInfo& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CameraOfflineSessionInfo& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CameraOfflineSessionInfo& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CameraOfflineSessionInfo{";
        _aidl_os << "offlineStreams: " << ::android::internal::ToString(offlineStreams);
        _aidl_os << ", offlineRequests: " << ::android::internal::ToString(offlineRequests);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
