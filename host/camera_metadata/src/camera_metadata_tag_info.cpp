// Tag names and types: the Android table, the installed vendor tag tables, and enum value names.
#define LOG_TAG "camera_metadata"

#include <camera_metadata_hidden.h>
#include <log/log.h>
#include <string.h>
#include <system/camera_metadata.h>

#include <atomic>
#include <iterator>

#include "camera_metadata_layout.h"
#include "camera_metadata_tag_table.h"

using namespace android::metadata;

namespace {

std::atomic<const vendor_tag_ops_t*> sVendorOps{nullptr};
std::atomic<const vendor_tag_cache_ops*> sVendorCacheOps{nullptr};

bool isVendorTag(uint32_t tag) {
    return (tag >> 16) >= VENDOR_SECTION;
}

// The Android table entry of a tag, or null when the tag is not in the table.
const TagInfo* androidTagInfo(uint32_t tag) {
    uint32_t section = tag >> 16;
    if (section >= ANDROID_SECTION_COUNT || tag >= camera_metadata_section_bounds[section][1]) {
        return nullptr;
    }
    return &kTagInfo[section][tag & 0xFFFF];
}

metadata_vendor_id_t vendorIdOf(const camera_metadata_t* meta) {
    return meta == nullptr ? CAMERA_METADATA_INVALID_VENDOR_ID : meta->vendor_id;
}

const TagEnum* findTagEnum(uint32_t tag) {
    for (size_t i = 0; i < kTagEnumCount; ++i) {
        if (kTagEnums[i].tag == tag) return &kTagEnums[i];
    }
    return nullptr;
}

// Characteristics that reveal the sensor's calibration; the framework hides them from apps
// without the camera permission.
constexpr int32_t kPermissionNeededTags[] = {
        ANDROID_LENS_POSE_ROTATION,
        ANDROID_LENS_POSE_TRANSLATION,
        ANDROID_LENS_INTRINSIC_CALIBRATION,
        ANDROID_LENS_RADIAL_DISTORTION,
        ANDROID_LENS_POSE_REFERENCE,
        ANDROID_LENS_DISTORTION,
        ANDROID_LENS_DISTORTION_MAXIMUM_RESOLUTION,
        ANDROID_LENS_INTRINSIC_CALIBRATION_MAXIMUM_RESOLUTION,
        ANDROID_SENSOR_REFERENCE_ILLUMINANT1,
        ANDROID_SENSOR_REFERENCE_ILLUMINANT2,
        ANDROID_SENSOR_CALIBRATION_TRANSFORM1,
        ANDROID_SENSOR_CALIBRATION_TRANSFORM2,
        ANDROID_SENSOR_COLOR_TRANSFORM1,
        ANDROID_SENSOR_COLOR_TRANSFORM2,
        ANDROID_SENSOR_FORWARD_MATRIX1,
        ANDROID_SENSOR_FORWARD_MATRIX2,
};

}  // namespace

const char* get_local_camera_metadata_section_name_vendor_id(uint32_t tag, metadata_vendor_id_t id) {
    if (isVendorTag(tag)) {
        const vendor_tag_cache_ops* cacheOps = sVendorCacheOps.load();
        if (cacheOps != nullptr && id != CAMERA_METADATA_INVALID_VENDOR_ID) {
            return cacheOps->get_section_name(tag, id);
        }
        const vendor_tag_ops_t* ops = sVendorOps.load();
        if (ops != nullptr) return ops->get_section_name(ops, tag);
    }
    uint32_t section = tag >> 16;
    return section < ANDROID_SECTION_COUNT ? camera_metadata_section_names[section] : nullptr;
}

const char* get_local_camera_metadata_tag_name_vendor_id(uint32_t tag, metadata_vendor_id_t id) {
    if (isVendorTag(tag)) {
        const vendor_tag_cache_ops* cacheOps = sVendorCacheOps.load();
        if (cacheOps != nullptr && id != CAMERA_METADATA_INVALID_VENDOR_ID) {
            return cacheOps->get_tag_name(tag, id);
        }
        const vendor_tag_ops_t* ops = sVendorOps.load();
        if (ops != nullptr) return ops->get_tag_name(ops, tag);
    }
    const TagInfo* info = androidTagInfo(tag);
    return info != nullptr ? info->name : nullptr;
}

int get_local_camera_metadata_tag_type_vendor_id(uint32_t tag, metadata_vendor_id_t id) {
    if (isVendorTag(tag)) {
        const vendor_tag_cache_ops* cacheOps = sVendorCacheOps.load();
        if (cacheOps != nullptr && id != CAMERA_METADATA_INVALID_VENDOR_ID) {
            return cacheOps->get_tag_type(tag, id);
        }
        const vendor_tag_ops_t* ops = sVendorOps.load();
        if (ops != nullptr) return ops->get_tag_type(ops, tag);
    }
    const TagInfo* info = androidTagInfo(tag);
    return info != nullptr ? info->type : -1;
}

const char* get_local_camera_metadata_section_name(uint32_t tag, const camera_metadata_t* meta) {
    return get_local_camera_metadata_section_name_vendor_id(tag, vendorIdOf(meta));
}

const char* get_local_camera_metadata_tag_name(uint32_t tag, const camera_metadata_t* meta) {
    return get_local_camera_metadata_tag_name_vendor_id(tag, vendorIdOf(meta));
}

int get_local_camera_metadata_tag_type(uint32_t tag, const camera_metadata_t* meta) {
    return get_local_camera_metadata_tag_type_vendor_id(tag, vendorIdOf(meta));
}

const char* get_camera_metadata_section_name(uint32_t tag) {
    return get_local_camera_metadata_section_name(tag, nullptr);
}

const char* get_camera_metadata_tag_name(uint32_t tag) {
    return get_local_camera_metadata_tag_name(tag, nullptr);
}

int get_camera_metadata_tag_type(uint32_t tag) {
    return get_local_camera_metadata_tag_type(tag, nullptr);
}

int set_camera_metadata_vendor_tag_ops(const vendor_tag_query_ops_t* /*query_ops*/) {
    ALOGE("%s: This function has been deprecated", __func__);
    return kError;
}

int set_camera_metadata_vendor_ops(const vendor_tag_ops_t* query_ops) {
    sVendorOps.store(query_ops);
    return kOk;
}

int set_camera_metadata_vendor_cache_ops(const struct vendor_tag_cache_ops* query_cache_ops) {
    sVendorCacheOps.store(query_cache_ops);
    return kOk;
}

const int32_t* get_camera_metadata_permission_needed(uint32_t* tag_count) {
    if (tag_count == nullptr) return nullptr;
    *tag_count = std::size(kPermissionNeededTags);
    return kPermissionNeededTags;
}

int camera_metadata_enum_snprint(uint32_t tag, uint32_t value, char* dst, size_t size) {
    const char* text = "error: not an enum";
    int result = -1;
    if (const TagEnum* tagEnum = findTagEnum(tag)) {
        for (const EnumValue& candidate : tagEnum->values) {
            if (static_cast<uint32_t>(candidate.value) == value) {
                text = candidate.name;
                result = 0;
                break;
            }
        }
    }
    if (dst != nullptr && size > 0) {
        strncpy(dst, text, size - 1);
        dst[size - 1] = '\0';
    }
    return result;
}

int camera_metadata_enum_value(uint32_t tag, const char* name, size_t size, uint32_t* value) {
    if (name == nullptr || value == nullptr) return -1;
    const TagEnum* tagEnum = findTagEnum(tag);
    if (tagEnum == nullptr) return -1;
    for (const EnumValue& candidate : tagEnum->values) {
        if (strlen(candidate.name) == size && strncmp(candidate.name, name, size) == 0) {
            *value = static_cast<uint32_t>(candidate.value);
            return 0;
        }
    }
    return -1;
}
