/*
 * Platform-internal part of the camera metadata library: the vendor id a packet carries and the
 * process-wide vendor tag tables. Installed once by the camera service or a HAL process before
 * metadata is used; the tables must outlive every lookup.
 */
#pragma once

#include <system/camera_metadata.h>
#include <system/camera_vendor_tags.h>

#ifdef __cplusplus
extern "C" {
#endif

// Stores the vendor whose tags a packet uses; NULL is ignored.
ANDROID_API void set_camera_metadata_vendor_id(camera_metadata_t* meta, metadata_vendor_id_t id);
// CAMERA_METADATA_INVALID_VENDOR_ID for NULL or a packet without a vendor.
ANDROID_API metadata_vendor_id_t get_camera_metadata_vendor_id(const camera_metadata_t* meta);

// Tag lookups for an explicit vendor id.
ANDROID_API const char* get_local_camera_metadata_section_name_vendor_id(uint32_t tag,
                                                                         metadata_vendor_id_t id);
ANDROID_API const char* get_local_camera_metadata_tag_name_vendor_id(uint32_t tag,
                                                                     metadata_vendor_id_t id);
ANDROID_API int get_local_camera_metadata_tag_type_vendor_id(uint32_t tag, metadata_vendor_id_t id);

// Install (or, with NULL, remove) the table answering for vendor tags; both return 0.
ANDROID_API int set_camera_metadata_vendor_ops(const vendor_tag_ops_t* query_ops);
ANDROID_API int set_camera_metadata_vendor_cache_ops(
        const struct vendor_tag_cache_ops* query_cache_ops);

#ifdef __cplusplus
}
#endif
