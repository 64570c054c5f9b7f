// Packets as a whole: allocation, placement, sizes, copies, appending, and the vendor id.
#define LOG_TAG "camera_metadata"

#include <camera_metadata_hidden.h>
#include <log/log.h>
#include <stdlib.h>
#include <string.h>
#include <system/camera_metadata.h>

#include "camera_metadata_layout.h"

using namespace android::metadata;

const size_t camera_metadata_type_size[NUM_TYPES] = {
        sizeof(uint8_t), sizeof(int32_t), sizeof(float),
        sizeof(int64_t), sizeof(double),  sizeof(camera_metadata_rational_t),
};

const char* camera_metadata_type_names[NUM_TYPES] = {
        "byte", "int32", "float", "int64", "double", "rational",
};

size_t calculate_camera_metadata_size(size_t entry_count, size_t data_count) {
    size_t size = alignTo(sizeof(camera_metadata_t), kEntryAlignment);
    size = alignTo(size + sizeof(BufferEntry) * entry_count, kDataAlignment);
    return alignTo(size + data_count, kPacketAlignment);
}

size_t calculate_camera_metadata_entry_data_size(uint8_t type, size_t data_count) {
    if (type >= NUM_TYPES) return 0;
    size_t bytes = data_count * camera_metadata_type_size[type];
    return bytes <= kInlineBytes ? 0 : alignTo(bytes, kDataAlignment);
}

camera_metadata_t* place_camera_metadata(void* dst, size_t dst_size, size_t entry_capacity,
                                         size_t data_capacity) {
    if (dst == nullptr) return nullptr;
    // The header holds 32-bit sizes; larger requests would wrap.
    constexpr size_t kMaxCapacity = UINT32_MAX;
    if (entry_capacity > kMaxCapacity / sizeof(BufferEntry) || data_capacity > kMaxCapacity) {
        ALOGE("%s: Capacity too large: %zu entries, %zu data bytes", __func__, entry_capacity,
              data_capacity);
        return nullptr;
    }
    size_t needed = calculate_camera_metadata_size(entry_capacity, data_capacity);
    if (needed > kMaxCapacity) {
        ALOGE("%s: Metadata of %zu bytes does not fit a 32-bit size", __func__, needed);
        return nullptr;
    }
    if (needed > dst_size) {
        ALOGE("%s: Memory needed to place camera metadata (%zu) > dst size (%zu)", __func__, needed,
              dst_size);
        return nullptr;
    }
    auto* metadata = static_cast<camera_metadata_t*>(dst);
    metadata->version = kCurrentVersion;
    metadata->flags = 0;
    metadata->entry_count = 0;
    metadata->entry_capacity = static_cast<uint32_t>(entry_capacity);
    metadata->entries_start = alignTo(sizeof(camera_metadata_t), kEntryAlignment);
    metadata->data_count = 0;
    metadata->data_capacity = static_cast<uint32_t>(data_capacity);
    metadata->size = static_cast<uint32_t>(needed);
    metadata->data_start =
            alignTo(metadata->entries_start + sizeof(BufferEntry) * entry_capacity, kDataAlignment);
    metadata->vendor_id = CAMERA_METADATA_INVALID_VENDOR_ID;
    return metadata;
}

camera_metadata_t* allocate_camera_metadata(size_t entry_capacity, size_t data_capacity) {
    size_t size = calculate_camera_metadata_size(entry_capacity, data_capacity);
    void* buffer = calloc(1, size);
    camera_metadata_t* metadata = place_camera_metadata(buffer, size, entry_capacity, data_capacity);
    if (metadata == nullptr) free(buffer);
    return metadata;
}

camera_metadata_t* allocate_copy_camera_metadata_checked(const camera_metadata_t* src,
                                                         size_t src_size) {
    if (src == nullptr) return nullptr;
    if (src_size < sizeof(camera_metadata_t)) {
        ALOGE("%s: Source size too small (%zu < %zu)", __func__, src_size,
              sizeof(camera_metadata_t));
        return nullptr;
    }
    void* buffer = calloc(1, src_size);
    if (buffer == nullptr) return nullptr;
    memcpy(buffer, src, src_size);
    auto* metadata = static_cast<camera_metadata_t*>(buffer);
    if (validate_camera_metadata_structure(metadata, &src_size) != kOk) {
        free(buffer);
        return nullptr;
    }
    return metadata;
}

void free_camera_metadata(camera_metadata_t* metadata) {
    free(metadata);
}

size_t get_camera_metadata_size(const camera_metadata_t* metadata) {
    return metadata == nullptr ? kError : metadata->size;
}

size_t get_camera_metadata_compact_size(const camera_metadata_t* metadata) {
    if (metadata == nullptr) return kError;
    return calculate_camera_metadata_size(metadata->entry_count, metadata->data_count);
}

size_t get_camera_metadata_entry_count(const camera_metadata_t* metadata) {
    return metadata == nullptr ? 0 : metadata->entry_count;
}

size_t get_camera_metadata_entry_capacity(const camera_metadata_t* metadata) {
    return metadata == nullptr ? 0 : metadata->entry_capacity;
}

size_t get_camera_metadata_data_count(const camera_metadata_t* metadata) {
    return metadata == nullptr ? 0 : metadata->data_count;
}

size_t get_camera_metadata_data_capacity(const camera_metadata_t* metadata) {
    return metadata == nullptr ? 0 : metadata->data_capacity;
}

size_t get_camera_metadata_alignment() {
    return kPacketAlignment;
}

camera_metadata_t* copy_camera_metadata(void* dst, size_t dst_size, const camera_metadata_t* src) {
    if (src == nullptr || dst == nullptr) return nullptr;
    size_t needed = get_camera_metadata_compact_size(src);
    if (dst_size < needed) {
        ALOGE("%s: Memory needed to place camera metadata (%zu) > dst size (%zu)", __func__, needed,
              dst_size);
        return nullptr;
    }
    camera_metadata_t* metadata =
            place_camera_metadata(dst, dst_size, src->entry_count, src->data_count);
    metadata->flags = src->flags;
    metadata->entry_count = src->entry_count;
    metadata->data_count = src->data_count;
    metadata->vendor_id = src->vendor_id;
    memcpy(entriesOf(metadata), entriesOf(src), sizeof(BufferEntry) * metadata->entry_count);
    memcpy(dataOf(metadata), dataOf(src), metadata->data_count);
    return metadata;
}

int append_camera_metadata(camera_metadata_t* dst, const camera_metadata_t* src) {
    if (dst == nullptr || src == nullptr) return kError;
    uint32_t entryCount = dst->entry_count + src->entry_count;
    uint32_t dataCount = dst->data_count + src->data_count;
    if (entryCount < src->entry_count || dataCount < src->data_count) return kError;
    if (dst->entry_capacity < entryCount || dst->data_capacity < dataCount) return kError;
    if (dst->vendor_id != CAMERA_METADATA_INVALID_VENDOR_ID &&
        src->vendor_id != CAMERA_METADATA_INVALID_VENDOR_ID && dst->vendor_id != src->vendor_id) {
        ALOGE("%s: Append for metadata from different vendors is not supported!", __func__);
        return kError;
    }

    BufferEntry* appended = entriesOf(dst) + dst->entry_count;
    memcpy(appended, entriesOf(src), sizeof(BufferEntry) * src->entry_count);
    memcpy(dataOf(dst) + dst->data_count, dataOf(src), src->data_count);
    // The appended data blocks now start after dst's own.
    if (dst->data_count != 0) {
        for (uint32_t i = 0; i < src->entry_count; ++i) {
            BufferEntry& entry = appended[i];
            if (calculate_camera_metadata_entry_data_size(entry.type, entry.count) > 0) {
                entry.data.offset += dst->data_count;
            }
        }
    }

    if (dst->entry_count == 0) {
        dst->flags |= src->flags & kFlagSorted;
    } else if (src->entry_count != 0) {
        dst->flags &= ~kFlagSorted;
    }
    dst->entry_count = entryCount;
    dst->data_count = dataCount;
    if (dst->vendor_id == CAMERA_METADATA_INVALID_VENDOR_ID) dst->vendor_id = src->vendor_id;
    return kOk;
}

camera_metadata_t* clone_camera_metadata(const camera_metadata_t* src) {
    if (src == nullptr) return nullptr;
    camera_metadata_t* clone = allocate_camera_metadata(src->entry_count, src->data_count);
    if (clone != nullptr && append_camera_metadata(clone, src) != kOk) {
        free_camera_metadata(clone);
        return nullptr;
    }
    return clone;
}

void set_camera_metadata_vendor_id(camera_metadata_t* meta, metadata_vendor_id_t id) {
    if (meta != nullptr) meta->vendor_id = id;
}

metadata_vendor_id_t get_camera_metadata_vendor_id(const camera_metadata_t* meta) {
    return meta == nullptr ? CAMERA_METADATA_INVALID_VENDOR_ID : meta->vendor_id;
}
