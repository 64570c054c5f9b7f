// A complete set of streams to configure, with the operation mode and session parameters. AIDL
// parcelable android.hardware.camera.device.StreamConfiguration (V3) in the NDK backend's shape: an
// aggregate with all six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/Stream.h>
#include <aidl/android/hardware/camera/device/StreamConfigurationMode.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::device {

class StreamConfiguration {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.StreamConfiguration";

    std::vector<::aidl::android::hardware::camera::device::Stream> streams;
    ::aidl::android::hardware::camera::device::StreamConfigurationMode operationMode =
            ::aidl::android::hardware::camera::device::StreamConfigurationMode(0);
    ::aidl::android::hardware::camera::device::CameraMetadata sessionParams;
    int32_t streamConfigCounter = 0;
    bool multiResolutionInputImage = false;
    int64_t logId = 0L;

    inline bool operator==(const StreamConfiguration& _rhs) const {
        return std::tie(streams, operationMode, sessionParams, streamConfigCounter,
                        multiResolutionInputImage, logId) ==
               std::tie(_rhs.streams, _rhs.operationMode, _rhs.sessionParams,
                        _rhs.streamConfigCounter, _rhs.multiResolutionInputImage, _rhs.logId);
    }
    inline bool operator<(const StreamConfiguration& _rhs) const {
        return std::tie(streams, operationMode, sessionParams, streamConfigCounter,
                        multiResolutionInputImage, logId) <
               std::tie(_rhs.streams, _rhs.operationMode, _rhs.sessionParams,
                        _rhs.streamConfigCounter, _rhs.multiResolutionInputImage, _rhs.logId);
    }
    inline bool operator!=(const StreamConfiguration& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const StreamConfiguration& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const StreamConfiguration& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const StreamConfiguration& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "StreamConfiguration{";
        _aidl_os << "streams: " << ::android::internal::ToString(streams);
        _aidl_os << ", operationMode: " << ::android::internal::ToString(operationMode);
        _aidl_os << ", sessionParams: " << ::android::internal::ToString(sessionParams);
        _aidl_os << ", streamConfigCounter: " << ::android::internal::ToString(streamConfigCounter);
        _aidl_os << ", multiResolutionInputImage: "
                 << ::android::internal::ToString(multiResolutionInputImage);
        _aidl_os << ", logId: " << ::android::internal::ToString(logId);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
