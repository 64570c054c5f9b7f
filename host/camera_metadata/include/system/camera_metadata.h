/*
 * Packed camera metadata: one contiguous, relocatable block (header, entry records, data area)
 * that carries camera settings, results and characteristics between processes. The caller owns
 * every packet it allocates or places; nothing here keeps a reference. Functions are reentrant;
 * a packet is not locked, so one thread at a time may change it. The vendor tag tables are
 * process-wide and are installed before any packet is used.
 *
 * Return values: 0 for success, 1 for an error and -ENOENT when find does not see the tag.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <system/camera_metadata_tags.h>
#include <system/camera_vendor_tags.h>

#ifndef ANDROID_API
#define ANDROID_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Element types of an entry.
enum {
    TYPE_BYTE = 0,      // uint8_t
    TYPE_INT32 = 1,     // int32_t
    TYPE_FLOAT = 2,     // float
    TYPE_INT64 = 3,     // int64_t
    TYPE_DOUBLE = 4,    // double
    TYPE_RATIONAL = 5,  // camera_metadata_rational_t
    NUM_TYPES
};

typedef struct camera_metadata_rational {
    int32_t numerator;
    int32_t denominator;
} camera_metadata_rational_t;

// A view of one entry; data points into the packet itself.
typedef struct camera_metadata_entry {
    size_t index;
    uint32_t tag;
    uint8_t type;
    size_t count;  // elements, not bytes
    union {
        uint8_t* u8;
        int32_t* i32;
        float* f;
        int64_t* i64;
        double* d;
        camera_metadata_rational_t* r;
    } data;
} camera_metadata_entry_t;

typedef struct camera_metadata_ro_entry {
    size_t index;
    uint32_t tag;
    uint8_t type;
    size_t count;
    union {
        const uint8_t* u8;
        const int32_t* i32;
        const float* f;
        const int64_t* i64;
        const double* d;
        const camera_metadata_rational_t* r;
    } data;
} camera_metadata_ro_entry_t;

typedef struct camera_metadata camera_metadata_t;

// Deprecated vendor tag interface of HAL3 devices; superseded by vendor_tag_ops_t.
typedef struct vendor_tag_query_ops vendor_tag_query_ops_t;
struct vendor_tag_query_ops {
    const char* (*get_camera_vendor_section_name)(const vendor_tag_query_ops_t* v, uint32_t tag);
    const char* (*get_camera_vendor_tag_name)(const vendor_tag_query_ops_t* v, uint32_t tag);
    int (*get_camera_vendor_tag_type)(const vendor_tag_query_ops_t* v, uint32_t tag);
    int (*get_camera_vendor_tag_count)(const vendor_tag_query_ops_t* v);
    void (*get_camera_vendor_tags)(const vendor_tag_query_ops_t* v, uint32_t* tag_array);
};

// Results of validate_camera_metadata_structure besides 0.
enum {
    CAMERA_METADATA_VALIDATION_ERROR = 1,
    // Well formed, but not at an 8-byte aligned address: copy it before use.
    CAMERA_METADATA_VALIDATION_SHIFTED = 2,
};

ANDROID_API extern const size_t camera_metadata_type_size[NUM_TYPES];
ANDROID_API extern const char* camera_metadata_type_names[NUM_TYPES];
// {first tag, one past the last tag} of each section.
ANDROID_API extern unsigned int camera_metadata_section_bounds[ANDROID_SECTION_COUNT][2];
ANDROID_API extern const char* camera_metadata_section_names[ANDROID_SECTION_COUNT];

// --- Allocation and placement ---

// A zero-filled packet with room for the given entries and data bytes; NULL if out of memory.
ANDROID_API camera_metadata_t* allocate_camera_metadata(size_t entry_capacity, size_t data_capacity);

// Lays out an empty packet at dst (which should be 8-byte aligned); only the header is written.
// NULL if dst is NULL or dst_size is too small.
ANDROID_API camera_metadata_t* place_camera_metadata(void* dst, size_t dst_size,
                                                     size_t entry_capacity, size_t data_capacity);

// A heap copy of src_size bytes at src, kept only when it validates (including against
// src_size); NULL otherwise.
ANDROID_API camera_metadata_t* allocate_copy_camera_metadata_checked(const camera_metadata_t* src,
                                                                     size_t src_size);

ANDROID_API void free_camera_metadata(camera_metadata_t* metadata);

// --- Sizes ---

ANDROID_API size_t calculate_camera_metadata_size(size_t entry_count, size_t data_count);
// Bytes an entry of that many elements takes in the data area (0 when stored inline).
ANDROID_API size_t calculate_camera_metadata_entry_data_size(uint8_t type, size_t data_count);
// The packet's total size; 1 for NULL.
ANDROID_API size_t get_camera_metadata_size(const camera_metadata_t* metadata);
// The size a copy without spare capacity would have; 1 for NULL.
ANDROID_API size_t get_camera_metadata_compact_size(const camera_metadata_t* metadata);
ANDROID_API size_t get_camera_metadata_entry_count(const camera_metadata_t* metadata);
ANDROID_API size_t get_camera_metadata_entry_capacity(const camera_metadata_t* metadata);
ANDROID_API size_t get_camera_metadata_data_count(const camera_metadata_t* metadata);
ANDROID_API size_t get_camera_metadata_data_capacity(const camera_metadata_t* metadata);
// Alignment every packet start needs (8).
ANDROID_API size_t get_camera_metadata_alignment(void);

// --- Copying ---

// Places a compact copy of src at dst; NULL if dst is NULL or smaller than the compact size.
ANDROID_API camera_metadata_t* copy_camera_metadata(void* dst, size_t dst_size,
                                                    const camera_metadata_t* src);

// A new compact packet with the entries of src; NULL for a NULL src or when out of memory.
ANDROID_API camera_metadata_t* clone_camera_metadata(const camera_metadata_t* src);

// Adds every entry of src after those of dst. Fails when dst lacks capacity or when both carry
// different valid vendor ids.
ANDROID_API int append_camera_metadata(camera_metadata_t* dst, const camera_metadata_t* src);

// --- Checking packets from elsewhere ---

// Checks that a packet is self-consistent and that every entry lies inside it. expected_size, if
// given, is the number of bytes the caller holds at metadata; without it the packet's own size
// field is trusted. Returns 0, CAMERA_METADATA_VALIDATION_ERROR, or
// CAMERA_METADATA_VALIDATION_SHIFTED for a good packet at a misaligned address.
ANDROID_API int validate_camera_metadata_structure(const camera_metadata_t* metadata,
                                                   const size_t* expected_size);

// --- Entries ---

// Adds an entry of data_count elements of the tag's type. Duplicate tags are not detected.
ANDROID_API int add_camera_metadata_entry(camera_metadata_t* dst, uint32_t tag, const void* data,
                                          size_t data_count);

// Orders the entries by tag so that find can bisect; a packet already marked sorted is left alone.
ANDROID_API int sort_camera_metadata(camera_metadata_t* dst);

ANDROID_API int get_camera_metadata_entry(camera_metadata_t* src, size_t index,
                                          camera_metadata_entry_t* entry);
ANDROID_API int get_camera_metadata_ro_entry(const camera_metadata_t* src, size_t index,
                                             camera_metadata_ro_entry_t* entry);

// 0 and the entry, -ENOENT when the tag is absent, 1 on a bad argument.
ANDROID_API int find_camera_metadata_entry(camera_metadata_t* src, uint32_t tag,
                                           camera_metadata_entry_t* entry);
ANDROID_API int find_camera_metadata_ro_entry(const camera_metadata_t* src, uint32_t tag,
                                              camera_metadata_ro_entry_t* entry);

// Removes an entry and closes the gap in the data area; the sorted mark is kept.
ANDROID_API int delete_camera_metadata_entry(camera_metadata_t* dst, size_t index);

// Replaces an entry's values (same type, any count). Data that changes its rounded size moves to
// the end of the data area. updated_entry, if given, receives the new view.
ANDROID_API int update_camera_metadata_entry(camera_metadata_t* dst, size_t index, const void* data,
                                             size_t data_count,
                                             camera_metadata_entry_t* updated_entry);

// --- Tags ---

// Section name ("android.sensor"), short tag name ("timestamp") and TYPE_* of a tag; NULL or -1
// when unknown. Vendor tags are answered by the installed vendor tag ops.
ANDROID_API const char* get_camera_metadata_section_name(uint32_t tag);
ANDROID_API const char* get_camera_metadata_tag_name(uint32_t tag);
ANDROID_API int get_camera_metadata_tag_type(uint32_t tag);

// As above, but vendor tags are looked up for the vendor id of meta (which may be NULL).
ANDROID_API const char* get_local_camera_metadata_section_name(uint32_t tag,
                                                               const camera_metadata_t* meta);
ANDROID_API const char* get_local_camera_metadata_tag_name(uint32_t tag,
                                                           const camera_metadata_t* meta);
ANDROID_API int get_local_camera_metadata_tag_type(uint32_t tag, const camera_metadata_t* meta);

// Retired: always fails. Install a vendor_tag_ops_t with set_camera_metadata_vendor_ops instead.
ANDROID_API int set_camera_metadata_vendor_tag_ops(const vendor_tag_query_ops_t* query_ops);

// Characteristics tags that apps may only read with the camera permission.
ANDROID_API const int32_t* get_camera_metadata_permission_needed(uint32_t* tag_count);

// Writes the name of an enumerated tag's value into dst; 0, or -1 when the tag or value is unknown.
ANDROID_API int camera_metadata_enum_snprint(uint32_t tag, uint32_t value, char* dst, size_t size);
// The value of an enumerated tag called name (size characters); 0, or -1 when unknown.
ANDROID_API int camera_metadata_enum_value(uint32_t tag, const char* name, size_t size,
                                           uint32_t* value);

// --- Debugging ---

// Writes a readable listing to fd: verbosity 0 lists the entries, 1 adds up to 16 values each,
// 2 and above every value.
ANDROID_API void dump_camera_metadata(const camera_metadata_t* metadata, int fd, int verbosity);
ANDROID_API void dump_indented_camera_metadata(const camera_metadata_t* metadata, int fd,
                                               int verbosity, int indentation);

#ifdef __cplusplus
}
#endif
