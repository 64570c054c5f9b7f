// Error notification: the request (frameNumber), the stream for buffer errors, and the kind. AIDL
// parcelable android.hardware.camera.device.ErrorMsg (V3) in the NDK backend's shape: an aggregate
// with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/ErrorCode.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class ErrorMsg {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.ErrorMsg";

    int32_t frameNumber = 0;
    int32_t errorStreamId = 0;
    ::aidl::android::hardware::camera::device::ErrorCode errorCode =
            ::aidl::android::hardware::camera::device::ErrorCode(0);

    inline bool operator==(const ErrorMsg& _rhs) const {
        return std::tie(frameNumber, errorStreamId, errorCode) ==
               std::tie(_rhs.frameNumber, _rhs.errorStreamId, _rhs.errorCode);
    }
    inline bool operator<(const ErrorMsg& _rhs) const {
        return std::tie(frameNumber, errorStreamId, errorCode) <
               std::tie(_rhs.frameNumber, _rhs.errorStreamId, _rhs.errorCode);
    }
    inline bool operator!=(const ErrorMsg& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const ErrorMsg& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const ErrorMsg& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const ErrorMsg& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "ErrorMsg{";
        _aidl_os << "frameNumber: " << ::android::internal::ToString(frameNumber);
        _aidl_os << ", errorStreamId: " << ::android::internal::ToString(errorStreamId);
        _aidl_os << ", errorCode: " << ::android::internal::ToString(errorCode);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
