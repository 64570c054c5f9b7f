/*
 * AIDL android.hardware.common.NativeHandle (V2), NDK backend: the fds and ints of a
 * native_handle_t. Owns its fds, so it is move-only.
 */
#pragma once

#include <android/binder_auto_utils.h>
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
class NativeHandle {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.common.NativeHandle";

    std::vector<::ndk::ScopedFileDescriptor> fds;
    std::vector<int32_t> ints;

    inline bool operator==(const NativeHandle& _rhs) const {
        return std::tie(fds, ints) == std::tie(_rhs.fds, _rhs.ints);
    }
    inline bool operator<(const NativeHandle& _rhs) const {
        return std::tie(fds, ints) < std::tie(_rhs.fds, _rhs.ints);
    }
    inline bool operator!=(const NativeHandle& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const NativeHandle& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const NativeHandle& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const NativeHandle& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "NativeHandle{";
        _aidl_os << "fds: " << ::android::internal::ToString(fds);
        _aidl_os << ", ints: " << ::android::internal::ToString(ints);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};
}  // namespace common
}  // namespace hardware
}  // namespace android
}  // namespace aidl
