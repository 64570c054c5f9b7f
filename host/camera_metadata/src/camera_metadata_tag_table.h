/*
 * The Android tag table: short name and type of every tag of every section, and the names of the
 * values of enumerated tags. Constant data, safe from any thread.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <system/camera_metadata_tags.h>

#include <span>

namespace android::metadata {

struct TagInfo {
    const char* name;
    uint8_t type;
};

struct EnumValue {
    const char* name;
    int64_t value;
};

struct TagEnum {
    uint32_t tag;
    std::span<const EnumValue> values;
};

// Indexed by section, then by tag & 0xFFFF; camera_metadata_section_bounds gives the lengths.
extern const TagInfo* const kTagInfo[ANDROID_SECTION_COUNT];

extern const TagEnum kTagEnums[];
extern const size_t kTagEnumCount;

}  // namespace android::metadata
