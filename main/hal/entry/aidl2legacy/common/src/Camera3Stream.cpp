#include <aidl2legacy/common/Camera3Stream.h>

#include <cerrno>
#include <cstring>

namespace kovo::aidl2legacy {

Camera3Stream::Camera3Stream(const Camera3Stream& other) : Camera3StreamFields(other) {
    pointAtOwnPhysicalCameraId(other);
}

Camera3Stream& Camera3Stream::operator=(const Camera3Stream& other) {
    Camera3StreamFields::operator=(other);
    pointAtOwnPhysicalCameraId(other);
    return *this;
}

void Camera3Stream::pointAtOwnPhysicalCameraId(const Camera3Stream& source) {
    stream.physical_camera_id =
            source.stream.physical_camera_id == nullptr ? nullptr : physicalCameraId;
}

int32_t Camera3Stream::setPhysicalCameraId(std::string_view id) {
    stream.physical_camera_id = physicalCameraId;
    if (id.size() >= kPhysicalCameraIdCapacity) {
        physicalCameraId[0] = '\0';
        return -EINVAL;
    }
    std::memcpy(physicalCameraId, id.data(), id.size());
    std::memset(physicalCameraId + id.size(), 0, kPhysicalCameraIdCapacity - id.size());
    return 0;
}

}  // namespace kovo::aidl2legacy
