/*
 * Packed camera metadata as the harness handles it: owned packets (MetadataPtr), validated views
 * of bytes that came from the device, and the few reads and edits the harness needs. Plain
 * functions; a packet is used by one thread at a time.
 */
#pragma once

#include <system/camera_metadata.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace camera_harness {

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// The packet held in `bytes` when it validates against their size; null when it does not or when
// `bytes` is empty. The view lives as long as the bytes.
const camera_metadata_t* viewMetadata(const std::vector<uint8_t>& bytes);

// An owned copy of `source` (which may be null) with room for `extraEntries` more entries and
// `extraData` more data bytes.
MetadataPtr copyMetadata(const camera_metadata_t* source, size_t extraEntries, size_t extraData);

// Replaces the values of `tag` or adds it; false when the packet lacks room or the type is wrong.
bool setEntry(camera_metadata_t* metadata, uint32_t tag, const void* data, size_t count);

std::vector<uint8_t> toBytes(const camera_metadata_t* metadata);

std::optional<int64_t> findInt64(const camera_metadata_t* metadata, uint32_t tag);
std::optional<int32_t> findInt32(const camera_metadata_t* metadata, uint32_t tag);
std::optional<uint8_t> findByte(const camera_metadata_t* metadata, uint32_t tag);
// Every value of the tag, or nothing when it is absent or has another type.
std::vector<int32_t> findInt32s(const camera_metadata_t* metadata, uint32_t tag);
std::vector<int64_t> findInt64s(const camera_metadata_t* metadata, uint32_t tag);
std::vector<uint8_t> findBytes(const camera_metadata_t* metadata, uint32_t tag);

}  // namespace camera_harness
