/*
 * Vendor tag description tables. A HAL module hands out a vendor_tag_ops_t that describes the
 * tags of its vendor sections (tags >= CAMERA_METADATA_VENDOR_TAG_BOUNDARY); the metadata library
 * consults the table installed process-wide for names and types of such tags. The cache flavour
 * answers for several vendors at once, keyed by the vendor id stored in each packet.
 */
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CAMERA_METADATA_VENDOR_TAG_BOUNDARY 0x80000000u
#define CAMERA_METADATA_INVALID_VENDOR_ID UINT64_MAX

typedef uint64_t metadata_vendor_id_t;

typedef struct vendor_tag_ops vendor_tag_ops_t;
struct vendor_tag_ops {
    // Number of vendor tags, or -1 on error.
    int (*get_tag_count)(const vendor_tag_ops_t* v);
    // Fills tag_array, which holds get_tag_count() elements.
    void (*get_all_tags)(const vendor_tag_ops_t* v, uint32_t* tag_array);
    // Section name of a vendor tag, or NULL when the tag is unknown.
    const char* (*get_section_name)(const vendor_tag_ops_t* v, uint32_t tag);
    // Name of a vendor tag without its section, or NULL when the tag is unknown.
    const char* (*get_tag_name)(const vendor_tag_ops_t* v, uint32_t tag);
    // TYPE_* of a vendor tag, or -1 when the tag is unknown.
    int (*get_tag_type)(const vendor_tag_ops_t* v, uint32_t tag);

    void* reserved[8];
};

struct vendor_tag_cache_ops {
    int (*get_tag_count)(metadata_vendor_id_t id);
    void (*get_all_tags)(uint32_t* tag_array, metadata_vendor_id_t id);
    const char* (*get_section_name)(uint32_t tag, metadata_vendor_id_t id);
    const char* (*get_tag_name)(uint32_t tag, metadata_vendor_id_t id);
    int (*get_tag_type)(uint32_t tag, metadata_vendor_id_t id);

    void* reserved[8];
};

#ifdef __cplusplus
}
#endif
