// An in-flight request moved to an offline session, with the streams still to deliver. AIDL
// parcelable android.hardware.camera.device.OfflineRequest (V3) in the NDK backend's shape: an
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

namespace aidl::android::hardware::camera::device {

class OfflineRequest {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.OfflineRequest";

    int32_t frameNumber = 0;
    std::vector<int32_t> pendingStreams;

    inline bool operator==(const OfflineRequest& _rhs) const {
        return std::tie(frameNumber, pendingStreams) ==
               std::tie(_rhs.frameNumber, _rhs.pendingStreams);
    }
    inline bool operator<(const OfflineRequest& _rhs) const {
        return std::tie(frameNumber, pendingStreams) <
               std::tie(_rhs.frameNumber, _rhs.pendingStreams);
    }
    inline bool operator!=(const OfflineRequest& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const OfflineRequest& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const OfflineRequest& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const OfflineRequest& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "OfflineRequest{";
        _aidl_os << "frameNumber: " << ::android::internal::ToString(frameNumber);
        _aidl_os << ", pendingStreams: " << ::android::internal::ToString(pendingStreams);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
