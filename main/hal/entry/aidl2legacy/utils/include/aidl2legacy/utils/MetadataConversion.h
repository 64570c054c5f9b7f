/*
 * Camera metadata between the AIDL CameraMetadata (the packed bytes in a vector) and the legacy
 * camera_metadata_t. Stateless; any thread. Both return 0 or -EINVAL.
 */
#pragma once

#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <system/camera_metadata.h>

#include <cstdint>

namespace kovo::aidl2legacy {

// A view of `in`'s bytes, owned by `in` and valid while its vector is left alone. Null for
// empty metadata, and for bytes that are not a well-formed packet of exactly their size
// (-EINVAL).
int32_t convertMetadata(const aidl::android::hardware::camera::device::CameraMetadata& in,
                        const camera_metadata_t*& out);

// A copy of the packet's bytes; empty for null. A packet that is malformed (or not 8-byte
// aligned) gives empty and -EINVAL.
int32_t convertMetadata(const camera_metadata_t* const& in,
                        aidl::android::hardware::camera::device::CameraMetadata& out);

}  // namespace kovo::aidl2legacy
