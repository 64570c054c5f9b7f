#define LOG_TAG "tarnic_hal_aidl2legacy_utils"

#include <aidl2legacy/utils/MetadataConversion.h>
#include <log/log.h>

#include <cerrno>

namespace kovo::aidl2legacy {

using aidl::android::hardware::camera::device::CameraMetadata;

int32_t convertMetadata(const CameraMetadata& in, const camera_metadata_t*& out) {
    out = nullptr;
    if (in.metadata.empty()) return 0;
    const auto* packet = reinterpret_cast<const camera_metadata_t*>(in.metadata.data());
    const size_t size = in.metadata.size();
    if (validate_camera_metadata_structure(packet, &size) != 0) {
        ALOGE("%s: dropping malformed camera metadata of %zu bytes", __func__, size);
        return -EINVAL;
    }
    out = packet;
    return 0;
}

int32_t convertMetadata(const camera_metadata_t* const& in, CameraMetadata& out) {
    out.metadata.clear();
    if (in == nullptr) return 0;
    if (validate_camera_metadata_structure(in, nullptr) != 0) {
        ALOGE("%s: dropping malformed camera metadata at %p", __func__, in);
        return -EINVAL;
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(in);
    out.metadata.assign(bytes, bytes + get_camera_metadata_size(in));
    return 0;
}

}  // namespace kovo::aidl2legacy
