/*
 * AIDL android.hardware.common.fmq.MQDescriptor<T, Flavor> (V1), NDK backend: everything another
 * endpoint needs to map a fast message queue. Owns its fds, so it is move-only. The type
 * parameters only tag the descriptor; no member uses them.
 */
#pragma once

#include <aidl/android/hardware/common/NativeHandle.h>
#include <aidl/android/hardware/common/fmq/GrantorDescriptor.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl {
namespace android {
namespace hardware {
namespace common {
namespace fmq {
template <typename T, typename Flavor>
class MQDescriptor {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.common.fmq.MQDescriptor";

    std::vector<::aidl::android::hardware::common::fmq::GrantorDescriptor> grantors;
    ::aidl::android::hardware::common::NativeHandle handle;
    int32_t quantum = 0;
    int32_t flags = 0;

    inline bool operator==(const MQDescriptor& _rhs) const {
        return std::tie(grantors, handle, quantum, flags) ==
               std::tie(_rhs.grantors, _rhs.handle, _rhs.quantum, _rhs.flags);
    }
    inline bool operator<(const MQDescriptor& _rhs) const {
        return std::tie(grantors, handle, quantum, flags) <
               std::tie(_rhs.grantors, _rhs.handle, _rhs.quantum, _rhs.flags);
    }
    inline bool operator!=(const MQDescriptor& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const MQDescriptor& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const MQDescriptor& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const MQDescriptor& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "MQDescriptor{";
        _aidl_os << "grantors: " << ::android::internal::ToString(grantors);
        _aidl_os << ", handle: " << ::android::internal::ToString(handle);
        _aidl_os << ", quantum: " << ::android::internal::ToString(quantum);
        _aidl_os << ", flags: " << ::android::internal::ToString(flags);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};
}  // namespace fmq
}  // namespace common
}  // namespace hardware
}  // namespace android
}  // namespace aidl
