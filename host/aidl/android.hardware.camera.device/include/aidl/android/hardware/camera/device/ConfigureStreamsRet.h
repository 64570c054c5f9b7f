// Answer of ICameraDeviceSession::configureStreamsV2. AIDL parcelable
// android.hardware.camera.device.ConfigureStreamsRet (V3) in the NDK backend's shape: an aggregate
// with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/HalStream.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::device {

class ConfigureStreamsRet {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.ConfigureStreamsRet";

    std::vector<::aidl::android::hardware::camera::device::HalStream> halStreams;

    inline bool operator==(const ConfigureStreamsRet& _rhs) const {
        return std::tie(halStreams) == std::tie(_rhs.halStreams);
    }
    inline bool operator<(const ConfigureStreamsRet& _rhs) const {
        return std::tie(halStreams) < std::tie(_rhs.halStreams);
    }
    inline bool operator!=(const ConfigureStreamsRet& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const ConfigureStreamsRet& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const ConfigureStreamsRet& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const ConfigureStreamsRet& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "ConfigureStreamsRet{";
        _aidl_os << "halStreams: " << ::android::internal::ToString(halStreams);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
