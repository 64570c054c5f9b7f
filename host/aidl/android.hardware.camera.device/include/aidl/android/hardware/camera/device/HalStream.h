// The HAL's answer for one configured stream: real format, usages and buffer count. AIDL parcelable
// android.hardware.camera.device.HalStream (V3) in the NDK backend's shape: an aggregate with all
// six comparisons and toString(). Copyable. No locking: a plain value.
#pragma once

#include <aidl/android/hardware/graphics/common/BufferUsage.h>
#include <aidl/android/hardware/graphics/common/Dataspace.h>
#include <aidl/android/hardware/graphics/common/PixelFormat.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>

namespace aidl::android::hardware::camera::device {

class HalStream {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.HalStream";

    int32_t id = 0;
    ::aidl::android::hardware::graphics::common::PixelFormat overrideFormat =
            ::aidl::android::hardware::graphics::common::PixelFormat(0);
    ::aidl::android::hardware::graphics::common::BufferUsage producerUsage =
            ::aidl::android::hardware::graphics::common::BufferUsage(0);
    ::aidl::android::hardware::graphics::common::BufferUsage consumerUsage =
            ::aidl::android::hardware::graphics::common::BufferUsage(0);
    int32_t maxBuffers = 0;
    ::aidl::android::hardware::graphics::common::Dataspace overrideDataSpace =
            ::aidl::android::hardware::graphics::common::Dataspace(0);
    std::string physicalCameraId;
    bool supportOffline = false;
    bool enableHalBufferManager = false;

    inline bool operator==(const HalStream& _rhs) const {
        return std::tie(id, overrideFormat, producerUsage, consumerUsage, maxBuffers,
                        overrideDataSpace, physicalCameraId, supportOffline,
                        enableHalBufferManager) ==
               std::tie(_rhs.id, _rhs.overrideFormat, _rhs.producerUsage, _rhs.consumerUsage,
                        _rhs.maxBuffers, _rhs.overrideDataSpace, _rhs.physicalCameraId,
                        _rhs.supportOffline, _rhs.enableHalBufferManager);
    }
    inline bool operator<(const HalStream& _rhs) const {
        return std::tie(id, overrideFormat, producerUsage, consumerUsage, maxBuffers,
                        overrideDataSpace, physicalCameraId, supportOffline,
                        enableHalBufferManager) <
               std::tie(_rhs.id, _rhs.overrideFormat, _rhs.producerUsage, _rhs.consumerUsage,
                        _rhs.maxBuffers, _rhs.overrideDataSpace, _rhs.physicalCameraId,
                        _rhs.supportOffline, _rhs.enableHalBufferManager);
    }
    inline bool operator!=(const HalStream& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const HalStream& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const HalStream& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const HalStream& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "HalStream{";
        _aidl_os << "id: " << ::android::internal::ToString(id);
        _aidl_os << ", overrideFormat: " << ::android::internal::ToString(overrideFormat);
        _aidl_os << ", producerUsage: " << ::android::internal::ToString(producerUsage);
        _aidl_os << ", consumerUsage: " << ::android::internal::ToString(consumerUsage);
        _aidl_os << ", maxBuffers: " << ::android::internal::ToString(maxBuffers);
        _aidl_os << ", overrideDataSpace: " << ::android::internal::ToString(overrideDataSpace);
        _aidl_os << ", physicalCameraId: " << ::android::internal::ToString(physicalCameraId);
        _aidl_os << ", supportOffline: " << ::android::internal::ToString(supportOffline);
        _aidl_os << ", enableHalBufferManager: "
                 << ::android::internal::ToString(enableHalBufferManager);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
