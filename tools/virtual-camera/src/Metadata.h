/*
 * Ownership of packed camera metadata and typed reads of single entries. MetadataPtr is the sole
 * owner of a camera_metadata_t; the readers only borrow. No shared state.
 */
#pragma once

#include <stdint.h>
#include <system/camera_metadata.h>

#include <memory>
#include <optional>

namespace virtual_camera {

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

inline MetadataPtr cloneMetadata(const camera_metadata_t* metadata) {
    return MetadataPtr(metadata != nullptr ? clone_camera_metadata(metadata) : nullptr);
}

// The first value of `tag`, when present with the expected type and at least one value.
std::optional<int64_t> findInt64(const camera_metadata_t* metadata, uint32_t tag);
std::optional<int32_t> findInt32(const camera_metadata_t* metadata, uint32_t tag);
std::optional<uint8_t> findByte(const camera_metadata_t* metadata, uint32_t tag);

// True when both hold `tag` with the same type and bytes, or neither holds it.
bool sameEntry(const camera_metadata_t* a, const camera_metadata_t* b, uint32_t tag);

}  // namespace virtual_camera
