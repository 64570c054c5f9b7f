// One stream the framework asks to configure. AIDL parcelable android.hardware.camera.device.Stream
// (V3) in the NDK backend's shape: an aggregate with all six comparisons and toString(). Copyable.
// No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/StreamRotation.h>
#include <aidl/android/hardware/camera/device/StreamType.h>
#include <aidl/android/hardware/camera/metadata/RequestAvailableDynamicRangeProfilesMap.h>
#include <aidl/android/hardware/camera/metadata/ScalerAvailableStreamUseCases.h>
#include <aidl/android/hardware/camera/metadata/SensorPixelMode.h>
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
#include <vector>

namespace aidl::android::hardware::camera::device {

class Stream {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.Stream";

    int32_t id = 0;
    ::aidl::android::hardware::camera::device::StreamType streamType =
            ::aidl::android::hardware::camera::device::StreamType(0);
    int32_t width = 0;
    int32_t height = 0;
    ::aidl::android::hardware::graphics::common::PixelFormat format =
            ::aidl::android::hardware::graphics::common::PixelFormat(0);
    ::aidl::android::hardware::graphics::common::BufferUsage usage =
            ::aidl::android::hardware::graphics::common::BufferUsage(0);
    ::aidl::android::hardware::graphics::common::Dataspace dataSpace =
            ::aidl::android::hardware::graphics::common::Dataspace(0);
    ::aidl::android::hardware::camera::device::StreamRotation rotation =
            ::aidl::android::hardware::camera::device::StreamRotation(0);
    std::string physicalCameraId;
    int32_t bufferSize = 0;
    int32_t groupId = 0;
    std::vector<::aidl::android::hardware::camera::metadata::SensorPixelMode> sensorPixelModesUsed;
    ::aidl::android::hardware::camera::metadata::RequestAvailableDynamicRangeProfilesMap dynamicRangeProfile =
            ::aidl::android::hardware::camera::metadata::RequestAvailableDynamicRangeProfilesMap(0);
    ::aidl::android::hardware::camera::metadata::ScalerAvailableStreamUseCases useCase =
            ::aidl::android::hardware::camera::metadata::ScalerAvailableStreamUseCases(0);
    int32_t colorSpace = 0;

    inline bool operator==(const Stream& _rhs) const {
        return std::tie(id, streamType, width, height, format, usage, dataSpace, rotation,
                        physicalCameraId, bufferSize, groupId, sensorPixelModesUsed,
                        dynamicRangeProfile, useCase, colorSpace) ==
               std::tie(_rhs.id, _rhs.streamType, _rhs.width, _rhs.height, _rhs.format, _rhs.usage,
                        _rhs.dataSpace, _rhs.rotation, _rhs.physicalCameraId, _rhs.bufferSize,
                        _rhs.groupId, _rhs.sensorPixelModesUsed, _rhs.dynamicRangeProfile,
                        _rhs.useCase, _rhs.colorSpace);
    }
    inline bool operator<(const Stream& _rhs) const {
        return std::tie(id, streamType, width, height, format, usage, dataSpace, rotation,
                        physicalCameraId, bufferSize, groupId, sensorPixelModesUsed,
                        dynamicRangeProfile, useCase, colorSpace) <
               std::tie(_rhs.id, _rhs.streamType, _rhs.width, _rhs.height, _rhs.format, _rhs.usage,
                        _rhs.dataSpace, _rhs.rotation, _rhs.physicalCameraId, _rhs.bufferSize,
                        _rhs.groupId, _rhs.sensorPixelModesUsed, _rhs.dynamicRangeProfile,
                        _rhs.useCase, _rhs.colorSpace);
    }
    inline bool operator!=(const Stream& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const Stream& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const Stream& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const Stream& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "Stream{";
        _aidl_os << "id: " << ::android::internal::ToString(id);
        _aidl_os << ", streamType: " << ::android::internal::ToString(streamType);
        _aidl_os << ", width: " << ::android::internal::ToString(width);
        _aidl_os << ", height: " << ::android::internal::ToString(height);
        _aidl_os << ", format: " << ::android::internal::ToString(format);
        _aidl_os << ", usage: " << ::android::internal::ToString(usage);
        _aidl_os << ", dataSpace: " << ::android::internal::ToString(dataSpace);
        _aidl_os << ", rotation: " << ::android::internal::ToString(rotation);
        _aidl_os << ", physicalCameraId: " << ::android::internal::ToString(physicalCameraId);
        _aidl_os << ", bufferSize: " << ::android::internal::ToString(bufferSize);
        _aidl_os << ", groupId: " << ::android::internal::ToString(groupId);
        _aidl_os << ", sensorPixelModesUsed: "
                 << ::android::internal::ToString(sensorPixelModesUsed);
        _aidl_os << ", dynamicRangeProfile: " << ::android::internal::ToString(dynamicRangeProfile);
        _aidl_os << ", useCase: " << ::android::internal::ToString(useCase);
        _aidl_os << ", colorSpace: " << ::android::internal::ToString(colorSpace);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
