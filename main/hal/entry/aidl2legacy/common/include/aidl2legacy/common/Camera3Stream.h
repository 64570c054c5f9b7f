/*
 * One configured stream: the legacy camera3_stream_t that the legacy device is given, followed by
 * the AIDL stream's id and the attributes the legacy record has no room for. The device hands back
 * the address of the embedded record; fromStream() turns it into the Camera3Stream again.
 *
 * A plain value owned by whoever holds it (the session's stream map, the callback bridge's copy).
 * A value-initialised record (`Camera3Stream record{}`) is the start value for convertStream().
 * stream.physical_camera_id is null or points at the record's own physicalCameraId, also in
 * copies; only setPhysicalCameraId() sets it. No locking.
 */
#pragma once

#include <hardware/camera3.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace kovo::aidl2legacy {

// The fields of a Camera3Stream, trivially copyable, so that a copy cannot miss one.
struct Camera3StreamFields {
    // Room for a physical camera id and its terminating NUL.
    static constexpr size_t kPhysicalCameraIdCapacity = 128;

    camera3_stream_t stream{};
    // AIDL Stream::id.
    int32_t id = 0;
    // AIDL Stream::groupId, bufferSize and colorSpace.
    int32_t groupId = 0;
    int32_t bufferSize = 0;
    int32_t colorSpace = 0;
    // AIDL RequestAvailableDynamicRangeProfilesMap and ScalerAvailableStreamUseCases values.
    int64_t dynamicRangeProfile = 0;
    int64_t useCase = 0;
    // Bit (1 << mode) for each SensorPixelMode the stream is used in; 0 means the default mode.
    uint32_t sensorPixelModesUsed = 0;
    char physicalCameraId[kPhysicalCameraIdCapacity] = {};
};

struct Camera3Stream : Camera3StreamFields {
    Camera3Stream() = default;
    // Copies every field, then points stream.physical_camera_id at this record's own id.
    Camera3Stream(const Camera3Stream& other);
    Camera3Stream& operator=(const Camera3Stream& other);

    // Stores `id` and points stream.physical_camera_id at it. An id that does not fit leaves an
    // empty id and gives -EINVAL.
    int32_t setPhysicalCameraId(std::string_view id);

    // The Camera3Stream whose embedded record `stream` is.
    static Camera3Stream* fromStream(camera3_stream_t* stream) {
        return reinterpret_cast<Camera3Stream*>(stream);
    }
    static const Camera3Stream* fromStream(const camera3_stream_t* stream) {
        return reinterpret_cast<const Camera3Stream*>(stream);
    }

private:
    // After a copy from `source`: the id pointer is set exactly when it was set in `source`.
    void pointAtOwnPhysicalCameraId(const Camera3Stream& source);
};

static_assert(std::is_standard_layout_v<Camera3Stream>);
static_assert(offsetof(Camera3Stream, stream) == 0);
static_assert(sizeof(Camera3Stream) == sizeof(Camera3StreamFields));

}  // namespace kovo::aidl2legacy
