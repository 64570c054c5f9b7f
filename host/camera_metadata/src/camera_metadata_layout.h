/*
 * The private layout of a packet, shared by the sources of the library. Every field is a fixed
 * width native-endian integer, so the bytes are the same on every 64-bit little-endian target.
 * The structs are only 4-byte aligned so that a packet at an address 4 mod 8 can still be read.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <system/camera_metadata.h>

typedef uint64_t packed_vendor_id_t __attribute__((aligned(4)));

struct camera_metadata {
    uint32_t size;
    uint32_t version;
    uint32_t flags;
    uint32_t entry_count;
    uint32_t entry_capacity;
    uint32_t entries_start;  // from the packet start
    uint32_t data_count;
    uint32_t data_capacity;
    uint32_t data_start;  // from the packet start
    uint32_t padding;
    packed_vendor_id_t vendor_id;
};

namespace android::metadata {

struct BufferEntry {
    uint32_t tag;
    uint32_t count;  // elements
    union {
        uint32_t offset;   // from data_start, when the payload is larger than 4 bytes
        uint8_t value[4];  // the payload itself otherwise
    } data;
    uint8_t type;
    uint8_t reserved[3];
};

static_assert(sizeof(camera_metadata) == 48);
static_assert(offsetof(camera_metadata, data_start) == 32);
static_assert(offsetof(camera_metadata, vendor_id) == 40);
static_assert(sizeof(BufferEntry) == 16);
static_assert(offsetof(BufferEntry, type) == 12);

constexpr uint32_t kCurrentVersion = 1;
constexpr uint32_t kFlagSorted = 0x1;
constexpr size_t kEntryAlignment = 4;
constexpr size_t kDataAlignment = 8;
constexpr size_t kPacketAlignment = 8;
// Payloads up to this size live in the entry record itself.
constexpr size_t kInlineBytes = 4;

constexpr int kOk = 0;
constexpr int kError = 1;

constexpr size_t alignTo(size_t value, size_t alignment) {
    return (value + alignment - 1) & ~(alignment - 1);
}

inline BufferEntry* entriesOf(camera_metadata_t* metadata) {
    return reinterpret_cast<BufferEntry*>(reinterpret_cast<uint8_t*>(metadata) +
                                          metadata->entries_start);
}

inline const BufferEntry* entriesOf(const camera_metadata_t* metadata) {
    return reinterpret_cast<const BufferEntry*>(reinterpret_cast<const uint8_t*>(metadata) +
                                                metadata->entries_start);
}

inline uint8_t* dataOf(camera_metadata_t* metadata) {
    return reinterpret_cast<uint8_t*>(metadata) + metadata->data_start;
}

inline const uint8_t* dataOf(const camera_metadata_t* metadata) {
    return reinterpret_cast<const uint8_t*>(metadata) + metadata->data_start;
}

}  // namespace android::metadata
