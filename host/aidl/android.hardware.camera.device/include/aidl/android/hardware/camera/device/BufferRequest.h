// How many buffers the HAL buffer manager asks for on one stream. AIDL parcelable
// android.hardware.camera.device.BufferRequest (V3) in the NDK backend's shape: an aggregate with
// all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class BufferRequest {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.BufferRequest";

    int32_t streamId = 0;
    int32_t numBuffersRequested = 0;

    inline bool operator==(const BufferRequest& _rhs) const {
        return std::tie(streamId, numBuffersRequested) ==
               std::tie(_rhs.streamId, _rhs.numBuffersRequested);
    }
    inline bool operator<(const BufferRequest& _rhs) const {
        return std::tie(streamId, numBuffersRequested) <
               std::tie(_rhs.streamId, _rhs.numBuffersRequested);
    }
    inline bool operator!=(const BufferRequest& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const BufferRequest& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const BufferRequest& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const BufferRequest& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "BufferRequest{";
        _aidl_os << "streamId: " << ::android::internal::ToString(streamId);
        _aidl_os << ", numBuffersRequested: " << ::android::internal::ToString(numBuffersRequested);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
