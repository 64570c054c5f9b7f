/*
 * AIDL android.hardware.common.fmq.GrantorDescriptor (V1), NDK backend: one region of a fast
 * message queue's shared memory (which fd, where, how long).
 */
#pragma once

#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl {
namespace android {
namespace hardware {
namespace common {
namespace fmq {
class GrantorDescriptor {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.common.fmq.GrantorDescriptor";

    int32_t fdIndex = 0;
    int32_t offset = 0;
    int64_t extent = 0L;

    inline bool operator==(const GrantorDescriptor& _rhs) const {
        return std::tie(fdIndex, offset, extent) == std::tie(_rhs.fdIndex, _rhs.offset, _rhs.extent);
    }
    inline bool operator<(const GrantorDescriptor& _rhs) const {
        return std::tie(fdIndex, offset, extent) < std::tie(_rhs.fdIndex, _rhs.offset, _rhs.extent);
    }
    inline bool operator!=(const GrantorDescriptor& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const GrantorDescriptor& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const GrantorDescriptor& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const GrantorDescriptor& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "GrantorDescriptor{";
        _aidl_os << "fdIndex: " << ::android::internal::ToString(fdIndex);
        _aidl_os << ", offset: " << ::android::internal::ToString(offset);
        _aidl_os << ", extent: " << ::android::internal::ToString(extent);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};
}  // namespace fmq
}  // namespace common
}  // namespace hardware
}  // namespace android
}  // namespace aidl
