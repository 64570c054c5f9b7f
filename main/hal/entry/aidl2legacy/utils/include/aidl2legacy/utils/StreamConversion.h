/*
 * Streams between the AIDL configuration records and the legacy stream records the device is
 * configured with. Stateless; any thread. Both return 0 or -EINVAL.
 */
#pragma once

#include <aidl/android/hardware/camera/device/HalStream.h>
#include <aidl/android/hardware/camera/device/Stream.h>
#include <aidl2legacy/common/Camera3Stream.h>
#include <hardware/camera3.h>

#include <cstdint>
#include <vector>

namespace kovo::aidl2legacy {

// Replaces `out` by the stream `in` describes: the legacy record's type, size, format, usage
// (the low 32 bits), data space, rotation and physical camera id (never null afterwards), with
// max_buffers, priv and reserved zero; and the AIDL id and the attributes the legacy record
// lacks. A physical camera id that does not fit, or a sensor pixel mode outside 0..31, is left
// out with -EINVAL; everything else is still converted.
int32_t convertStream(const aidl::android::hardware::camera::device::Stream& in, Camera3Stream& out);

// Replaces `out` by one HalStream per slot of `in.streams`, in slot order, from the records as
// the device left them; each slot must point into a Camera3Stream. Output streams report their
// usage as producer usage, input streams as consumer usage, bidirectional streams as both. A
// null slot gives an empty `out` and -EINVAL.
int32_t convertHalStreamConfiguration(
        const camera3_stream_configuration& in,
        std::vector<aidl::android::hardware::camera::device::HalStream>& out);

}  // namespace kovo::aidl2legacy
