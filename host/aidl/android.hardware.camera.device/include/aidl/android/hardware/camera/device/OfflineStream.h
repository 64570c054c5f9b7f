// A stream kept in an offline session and its outstanding buffers. AIDL parcelable
// android.hardware.camera.device.OfflineStream (V3) in the NDK backend's shape: an aggregate with
// all six comparisons and toString(). Copyable. No locking: a plain value.
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

class OfflineStream {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.OfflineStream";

    int32_t id = 0;
    int32_t numOutstandingBuffers = 0;
    std::vector<int64_t> circulatingBufferIds;

    inline bool operator==(const OfflineStream& _rhs) const {
        return std::tie(id, numOutstandingBuffers, circulatingBufferIds) ==
               std::tie(_rhs.id, _rhs.numOutstandingBuffers, _rhs.circulatingBufferIds);
    }
    inline bool operator<(const OfflineStream& _rhs) const {
        return std::tie(id, numOutstandingBuffers, circulatingBufferIds) <
               std::tie(_rhs.id, _rhs.numOutstandingBuffers, _rhs.circulatingBufferIds);
    }
    inline bool operator!=(const OfflineStream& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const OfflineStream& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const OfflineStream& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const OfflineStream& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "OfflineStream{";
        _aidl_os << "id: " << ::android::internal::ToString(id);
        _aidl_os << ", numOutstandingBuffers: "
                 << ::android::internal::ToString(numOutstandingBuffers);
        _aidl_os << ", circulatingBufferIds: "
                 << ::android::internal::ToString(circulatingBufferIds);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
