// One (partial) capture result: metadata (inline or in the result queue) and returned buffers. AIDL
// parcelable android.hardware.camera.device.CaptureResult (V3) in the NDK backend's shape: an
// aggregate with all six comparisons and toString(). Move-only: it owns file descriptors (copy them
// with ScopedFileDescriptor::dup()). No locking: a plain value.
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraMetadata.h>
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

class CaptureResult {
public:
    typedef std::false_type fixed_size;
    static inline const char* descriptor = "android.hardware.camera.device.CaptureResult";

    int32_t frameNumber = 0;
    int64_t fmqResultSize = 0L;
    ::aidl::android::hardware::camera::device::CameraMetadata result;
    std::vector<::aidl::android::hardware::camera::device::StreamBuffer> outputBuffers;
    ::aidl::android::hardware::camera::device::StreamBuffer inputBuffer;
    int32_t partialResult = 0;
    std::vector<::aidl::android::hardware::camera::device::PhysicalCameraMetadata>
            physicalCameraMetadata;

    inline bool operator==(const CaptureResult& _rhs) const {
        return std::tie(frameNumber, fmqResultSize, result, outputBuffers, inputBuffer,
                        partialResult, physicalCameraMetadata) ==
               std::tie(_rhs.frameNumber, _rhs.fmqResultSize, _rhs.result, _rhs.outputBuffers,
                        _rhs.inputBuffer, _rhs.partialResult, _rhs.physicalCameraMetadata);
    }
    inline bool operator<(const CaptureResult& _rhs) const {
        return std::tie(frameNumber, fmqResultSize, result, outputBuffers, inputBuffer,
                        partialResult, physicalCameraMetadata) <
               std::tie(_rhs.frameNumber, _rhs.fmqResultSize, _rhs.result, _rhs.outputBuffers,
                        _rhs.inputBuffer, _rhs.partialResult, _rhs.physicalCameraMetadata);
    }
    inline bool operator!=(const CaptureResult& _rhs) const { return !(*this == _rhs); }
    inline bool operator>(const CaptureResult& _rhs) const { return _rhs < *this; }
    inline bool operator>=(const CaptureResult& _rhs) const { return !(*this < _rhs); }
    inline bool operator<=(const CaptureResult& _rhs) const { return !(_rhs < *this); }

    static const ::ndk::parcelable_stability_t _aidl_stability = ::ndk::STABILITY_VINTF;
    inline std::string toString() const {
        std::ostringstream _aidl_os;
        _aidl_os << "CaptureResult{";
        _aidl_os << "frameNumber: " << ::android::internal::ToString(frameNumber);
        _aidl_os << ", fmqResultSize: " << ::android::internal::ToString(fmqResultSize);
        _aidl_os << ", result: " << ::android::internal::ToString(result);
        _aidl_os << ", outputBuffers: " << ::android::internal::ToString(outputBuffers);
        _aidl_os << ", inputBuffer: " << ::android::internal::ToString(inputBuffer);
        _aidl_os << ", partialResult: " << ::android::internal::ToString(partialResult);
        _aidl_os << ", physicalCameraMetadata: "
                 << ::android::internal::ToString(physicalCameraMetadata);
        _aidl_os << "}";
        return _aidl_os.str();
    }
};

}  // namespace aidl::android::hardware::camera::device
