// Structural check of packets that arrive from another process. It makes the platform
// library's checks, in its order and with its quirks, so that it accepts and rejects exactly the
// same packets. Every read goes through memcpy, so any address alignment works. The one addition:
// an entry record that would lie past the bytes held (the expected size, or else the packet's own
// size) is rejected instead of read.
#define LOG_TAG "camera_metadata"

#include <inttypes.h>
#include <log/log.h>
#include <stdint.h>
#include <string.h>
#include <system/camera_metadata.h>

#include "camera_metadata_layout.h"

using namespace android::metadata;

namespace {

// Checks one entry record; `header` is an aligned copy of the packet's header.
bool validateEntry(const camera_metadata_t& header, const uint8_t* packet, size_t bytesHeld,
                   uint32_t index) {
    size_t entryOffset = header.entries_start + sizeof(BufferEntry) * index;
    // Offsets are relative to the packet start: its aligned copy is what gets used.
    if (entryOffset % kEntryAlignment != 0) {
        ALOGE("%s: Entry index %" PRIu32 " had bad alignment (offset %zu), alignment should be %zu",
              __func__, index, entryOffset, kEntryAlignment);
        return false;
    }
    // The platform library would read past the packet here.
    if (entryOffset + sizeof(BufferEntry) > bytesHeld) {
        ALOGE("%s: Entry index %" PRIu32 " (offset %zu) ends past the %zu bytes of the packet",
              __func__, index, entryOffset, bytesHeld);
        return false;
    }
    BufferEntry entry;
    memcpy(&entry, packet + entryOffset, sizeof(entry));

    if (entry.type >= NUM_TYPES) {
        ALOGE("%s: Entry index %" PRIu32 " had a bad type %d", __func__, index, entry.type);
        return false;
    }
    // Vendor tag types are not known across processes, so only Android tags are checked.
    if ((entry.tag >> 16) < VENDOR_SECTION) {
        int tagType = get_local_camera_metadata_tag_type(entry.tag, &header);
        if (tagType != static_cast<int>(entry.type)) {
            const char* tagName = get_camera_metadata_tag_name(entry.tag);
            ALOGE("%s: Entry index %" PRIu32 " had tag type %d, but the type was %d (tag %#" PRIx32
                  ", name %s)",
                  __func__, index, tagType, entry.type, entry.tag,
                  tagName != nullptr ? tagName : "unknown");
            return false;
        }
    }

    size_t typeSize = camera_metadata_type_size[entry.type];
    if (entry.count != 0 && typeSize > (SIZE_MAX - kDataAlignment + 1) / entry.count) {
        ALOGE("%s: Entry size calculation overflow: count %" PRIu32 ", type %d", __func__,
              entry.count, entry.type);
        return false;
    }
    size_t dataSize = calculate_camera_metadata_entry_data_size(entry.type, entry.count);

    if (dataSize != 0) {
        size_t dataOffset = static_cast<size_t>(header.data_start) + entry.data.offset;
        if (dataOffset % kDataAlignment != 0) {
            ALOGE("%s: Entry index %" PRIu32
                  " had bad data alignment (offset %zu), alignment "
                  "should be %zu",
                  __func__, index, dataOffset, kDataAlignment);
            return false;
        }
        size_t dataEnd = entry.data.offset + dataSize;
        if (dataEnd < entry.data.offset || dataEnd > header.data_capacity) {
            ALOGE("%s: Entry index %" PRIu32 " data ends (%zu) beyond the capacity %" PRIu32,
                  __func__, index, dataEnd, header.data_capacity);
            return false;
        }
    } else if (entry.count == 0 && entry.data.offset != 0) {
        const char* tagName = get_camera_metadata_tag_name(entry.tag);
        ALOGE("%s: Entry index %" PRIu32 " had 0 items, but offset was non-0 (%" PRIu32
              "), tag name: %s",
              __func__, index, entry.data.offset, tagName != nullptr ? tagName : "unknown");
        return false;
    }
    // Inline payloads may hold any bytes.
    return true;
}

}  // namespace

int validate_camera_metadata_structure(const camera_metadata_t* metadata,
                                       const size_t* expected_size) {
    if (metadata == nullptr) {
        ALOGE("%s: metadata is null!", __func__);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    // A packet away from an 8-byte boundary is checked as if it were copied onto one.
    uintptr_t address = reinterpret_cast<uintptr_t>(metadata);
    uintptr_t shift = alignTo(address, kPacketAlignment) - address;

    if (expected_size != nullptr && *expected_size < sizeof(camera_metadata_t)) {
        ALOGE("%s: Metadata size (%zu) should be <= expected size (%zu)", __func__,
              sizeof(camera_metadata_t), *expected_size);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    const auto* packet = reinterpret_cast<const uint8_t*>(metadata);
    camera_metadata_t header;
    memcpy(&header, packet, sizeof(header));

    if (expected_size != nullptr && header.size > *expected_size) {
        ALOGE("%s: Metadata size (%" PRIu32 ") should be <= expected size (%zu)", __func__,
              header.size, *expected_size);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    if (header.entry_count > header.entry_capacity) {
        ALOGE("%s: Entry count (%" PRIu32 ") should be <= entry capacity (%" PRIu32 ")", __func__,
              header.entry_count, header.entry_capacity);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    if (header.data_count > header.data_capacity) {
        ALOGE("%s: Data count (%" PRIu32 ") should be <= data capacity (%" PRIu32 ")", __func__,
              header.data_count, header.data_capacity);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    // The entry capacity, a count, is added to a byte offset, as the platform library does.
    uint32_t entriesEnd = header.entries_start + header.entry_capacity;
    if (entriesEnd < header.entries_start || entriesEnd > header.data_start) {
        ALOGE("%s: Entry start + capacity (%" PRIu32 ") should be <= data start (%" PRIu32 ")",
              __func__, entriesEnd, header.data_start);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }
    uint32_t dataEnd = header.data_start + header.data_capacity;
    if (dataEnd < header.data_start || dataEnd > header.size) {
        ALOGE("%s: Data start + capacity (%" PRIu32 ") should be <= total size (%" PRIu32 ")",
              __func__, dataEnd, header.size);
        return CAMERA_METADATA_VALIDATION_ERROR;
    }

    const size_t bytesHeld = expected_size != nullptr ? *expected_size : header.size;
    for (uint32_t i = 0; i < header.entry_count; ++i) {
        if (!validateEntry(header, packet, bytesHeld, i)) return CAMERA_METADATA_VALIDATION_ERROR;
    }
    return shift == 0 ? 0 : CAMERA_METADATA_VALIDATION_SHIFTED;
}
