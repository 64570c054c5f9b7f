// One (stream id, buffer id) entry of the HAL's imported-buffer cache that the framework asks it to
// drop. AIDL parcelable android.hardware.camera.device.BufferCache (V3) in the NDK backend's shape:
// an aggregate with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class BufferCache {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.BufferCache";

    int32_t streamId = 0;
    int64_t bufferId = 0L;

    inline bool operator==(const BufferCache& _rhs) const {
        return std::tie(streamId, bufferId) == std::tie(_rhs.streamId, _rhs.bufferId);
    }
    inline bool operator<(const BufferCache& _rhs) const {
        return std::tie(streamId, bufferId) < std::tie(_rhs.streamId, _rhs.bufferId);
    }
    inline bool operator!=(const BufferCache& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const BufferCache& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const BufferCache& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const BufferCache& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "BufferCache{";
        _aidl_os << "streamId: " << ::android::internal::ToString(streamId);
        _aidl_os << ", bufferId: " << ::android::internal::ToString(bufferId);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
