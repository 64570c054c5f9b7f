#include "Metadata.h"

#include <string.h>

namespace virtual_camera {
namespace {

std::optional<camera_metadata_ro_entry_t> findEntry(const camera_metadata_t* metadata, uint32_t tag,
                                                    uint8_t type) {
    if (metadata == nullptr) return std::nullopt;
    camera_metadata_ro_entry_t entry;
    if (find_camera_metadata_ro_entry(metadata, tag, &entry) != 0) return std::nullopt;
    if (entry.type != type || entry.count == 0) return std::nullopt;
    return entry;
}

}  // namespace

std::optional<int64_t> findInt64(const camera_metadata_t* metadata, uint32_t tag) {
    auto entry = findEntry(metadata, tag, TYPE_INT64);
    if (!entry) return std::nullopt;
    return entry->data.i64[0];
}

std::optional<int32_t> findInt32(const camera_metadata_t* metadata, uint32_t tag) {
    auto entry = findEntry(metadata, tag, TYPE_INT32);
    if (!entry) return std::nullopt;
    return entry->data.i32[0];
}

std::optional<uint8_t> findByte(const camera_metadata_t* metadata, uint32_t tag) {
    auto entry = findEntry(metadata, tag, TYPE_BYTE);
    if (!entry) return std::nullopt;
    return entry->data.u8[0];
}

bool sameEntry(const camera_metadata_t* a, const camera_metadata_t* b, uint32_t tag) {
    camera_metadata_ro_entry_t entryA;
    camera_metadata_ro_entry_t entryB;
    bool hasA = a != nullptr && find_camera_metadata_ro_entry(a, tag, &entryA) == 0;
    bool hasB = b != nullptr && find_camera_metadata_ro_entry(b, tag, &entryB) == 0;
    if (hasA != hasB) return false;
    if (!hasA) return true;
    if (entryA.type != entryB.type || entryA.count != entryB.count) return false;
    size_t bytes = entryA.count * camera_metadata_type_size[entryA.type];
    return memcmp(entryA.data.u8, entryB.data.u8, bytes) == 0;
}

}  // namespace virtual_camera
