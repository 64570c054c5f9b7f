// One buffer of a stream with its fences. streamId -1 marks an empty StreamBuffer; the handle
// travels only the first time a bufferId is used. AIDL parcelable
// android.hardware.camera.device.StreamBuffer (V3) in the NDK backend's shape: an aggregate with
// all six comparisons and toString(). Move-only: it owns file descriptors (copy them with
// ScopedFileDescriptor::dup()). No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/BufferStatus.h>
#include <aidl/android/hardware/common/NativeHandle.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class StreamBuffer {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.StreamBuffer";

    int32_t streamId = 0;
    int64_t bufferId = 0L;
    ::aidl::android::hardware::common::NativeHandle buffer;
    ::aidl::android::hardware::camera::device::BufferStatus status =
            ::aidl::android::hardware::camera::device::BufferStatus(0);
    ::aidl::android::hardware::common::NativeHandle acquireFence;
    ::aidl::android::hardware::common::NativeHandle releaseFence;

    inline bool operator==(const StreamBuffer& _rhs) const {
        return std::tie(streamId, bufferId, buffer, status, acquireFence, releaseFence) ==
               std::tie(_rhs.streamId, _rhs.bufferId, _rhs.buffer, _rhs.status, _rhs.acquireFence,
                        _rhs.releaseFence);
    }
    inline bool operator<(const StreamBuffer& _rhs) const {
        return std::tie(streamId, bufferId, buffer, status, acquireFence, releaseFence) <
               std::tie(_rhs.streamId, _rhs.bufferId, _rhs.buffer, _rhs.status, _rhs.acquireFence,
                        _rhs.releaseFence);
    }
    inline bool operator!=(const StreamBuffer& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const StreamBuffer& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const StreamBuffer& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const StreamBuffer& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "StreamBuffer{";
        _aidl_os << "streamId: " << ::android::internal::ToString(streamId);
        _aidl_os << ", bufferId: " << ::android::internal::ToString(bufferId);
        _aidl_os << ", buffer: " << ::android::internal::ToString(buffer);
        _aidl_os << ", status: " << ::android::internal::ToString(status);
        _aidl_os << ", acquireFence: " << ::android::internal::ToString(acquireFence);
        _aidl_os << ", releaseFence: " << ::android::internal::ToString(releaseFence);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
