// Start-of-exposure notification of a request (times in ns). AIDL parcelable
// android.hardware.camera.device.ShutterMsg (V3) in the NDK backend's shape: an aggregate with all
// six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class ShutterMsg {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.ShutterMsg";

    int32_t frameNumber = 0;
    int64_t timestamp = 0L;
    int64_t readoutTimestamp = 0L;

    inline bool operator==(const ShutterMsg& _rhs) const {
        return std::tie(frameNumber, timestamp, readoutTimestamp) ==
               std::tie(_rhs.frameNumber, _rhs.timestamp, _rhs.readoutTimestamp);
    }
    inline bool operator<(const ShutterMsg& _rhs) const {
        return std::tie(frameNumber, timestamp, readoutTimestamp) <
               std::tie(_rhs.frameNumber, _rhs.timestamp, _rhs.readoutTimestamp);
    }
    inline bool operator!=(const ShutterMsg& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const ShutterMsg& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const ShutterMsg& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const ShutterMsg& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "ShutterMsg{";
        _aidl_os << "frameNumber: " << ::android::internal::ToString(frameNumber);
        _aidl_os << ", timestamp: " << ::android::internal::ToString(timestamp);
        _aidl_os << ", readoutTimestamp: " << ::android::internal::ToString(readoutTimestamp);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
