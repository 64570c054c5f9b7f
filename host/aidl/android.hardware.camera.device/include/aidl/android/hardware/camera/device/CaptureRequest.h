// One capture request: settings (inline or in the request queue), an optional reprocess input and
// the output buffers. AIDL parcelable android.hardware.camera.device.CaptureRequest (V3) in the NDK
// backend's shape: an aggregate with all six comparisons and toString(). Move-only: it owns file
// descriptors (copy them with ScopedFileDescriptor::dup()). No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraSetting.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <android/binder_parcelable_utils.h>
#include <android/binder_to_string.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace aidl::android::hardware::camera::device {

class CaptureRequest {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.CaptureRequest";

    int32_t frameNumber = 0;
    int64_t fmqSettingsSize = 0L;
    ::aidl::android::hardware::camera::device::CameraMetadata settings;
    ::aidl::android::hardware::camera::device::StreamBuffer inputBuffer;
    int32_t inputWidth = 0;
    int32_t inputHeight = 0;
    std::vector<::aidl::android::hardware::camera::device::StreamBuffer> outputBuffers;
    std::vector<::aidl::android::hardware::camera::device::PhysicalCameraSetting>
            physicalCameraSettings;

    inline bool operator==(const CaptureRequest& _rhs) const {
        return std::tie(frameNumber, fmqSettingsSize, settings, inputBuffer, inputWidth,
                        inputHeight, outputBuffers, physicalCameraSettings) ==
               std::tie(_rhs.frameNumber, _rhs.fmqSettingsSize, _rhs.settings, _rhs.inputBuffer,
                        _rhs.inputWidth, _rhs.inputHeight, _rhs.outputBuffers,
                        _rhs.physicalCameraSettings);
    }
    inline bool operator<(const CaptureRequest& _rhs) const {
        return std::tie(frameNumber, fmqSettingsSize, settings, inputBuffer, inputWidth,
                        inputHeight, outputBuffers, physicalCameraSettings) <
               std::tie(_rhs.frameNumber, _rhs.fmqSettingsSize, _rhs.settings, _rhs.inputBuffer,
                        _rhs.inputWidth, _rhs.inputHeight, _rhs.outputBuffers,
                        _rhs.physicalCameraSettings);
    }
    inline bool operator!=(const CaptureRequest& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CaptureRequest& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CaptureRequest& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CaptureRequest& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CaptureRequest{";
        _aidl_os << "frameNumber: " << ::android::internal::ToString(frameNumber);
        _aidl_os << ", fmqSettingsSize: " << ::android::internal::ToString(fmqSettingsSize);
        _aidl_os << ", settings: " << ::android::internal::ToString(settings);
        _aidl_os << ", inputBuffer: " << ::android::internal::ToString(inputBuffer);
        _aidl_os << ", inputWidth: " << ::android::internal::ToString(inputWidth);
        _aidl_os << ", inputHeight: " << ::android::internal::ToString(inputHeight);
        _aidl_os << ", outputBuffers: " << ::android::internal::ToString(outputBuffers);
        _aidl_os << ", physicalCameraSettings: "
                 << ::android::internal::ToString(physicalCameraSettings);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
