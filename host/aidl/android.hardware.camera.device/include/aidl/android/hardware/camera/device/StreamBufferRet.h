// The framework's answer to one BufferRequest: buffers or an error. AIDL parcelable
// android.hardware.camera.device.StreamBufferRet (V3) in the NDK backend's shape: an aggregate with
// all six comparisons and toString(). Move-only: it owns file descriptors (copy them with
// ScopedFileDescriptor::dup()). No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/StreamBuffersVal.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class StreamBufferRet {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.StreamBufferRet";

    int32_t streamId = 0;
    ::aidl::android::hardware::camera::device::StreamBuffersVal val;

    inline bool operator==(const StreamBufferRet& _rhs) const {
        return std::tie(streamId, val) == std::tie(_rhs.streamId, _rhs.val);
    }
    inline bool operator<(const StreamBufferRet& _rhs) const {
        return std::tie(streamId, val) < std::tie(_rhs.streamId, _rhs.val);
    }
    inline bool operator!=(const StreamBufferRet& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const StreamBufferRet& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const StreamBufferRet& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const StreamBufferRet& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "StreamBufferRet{";
        _aidl_os << "streamId: " << ::android::internal::ToString(streamId);
        _aidl_os << ", val: " << ::android::internal::ToString(val);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
