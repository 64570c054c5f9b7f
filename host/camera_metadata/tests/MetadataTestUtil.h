/*
 * Helpers shared by the camera_metadata tests: an owning packet pointer, byte images, and a heap
 * block that ends exactly where a packet's bytes end so that the address sanitizer reports any
 * read past it.
 */
#pragma once

#include <stdint.h>
#include <string.h>
#include <system/camera_metadata.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace metadata_test {

// Byte offsets of the header fields and of the fields of an entry record.
enum HeaderOffset : size_t {
    kSizeField = 0,
    kVersionField = 4,
    kFlagsField = 8,
    kEntryCountField = 12,
    kEntryCapacityField = 16,
    kEntriesStartField = 20,
    kDataCountField = 24,
    kDataCapacityField = 28,
    kDataStartField = 32,
    kPaddingField = 36,
    kVendorIdField = 40,
};
constexpr size_t kHeaderSize = 48;
constexpr size_t kEntrySize = 16;
enum EntryOffset : size_t {
    kTagField = 0,
    kCountField = 4,
    kDataField = 8,
    kTypeField = 12,
};

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

inline std::vector<uint8_t> bytesOf(const camera_metadata_t* metadata) {
    auto* start = reinterpret_cast<const uint8_t*>(metadata);
    return {start, start + get_camera_metadata_size(metadata)};
}

// Parses a hex listing such as "0000: 30 00 00 00"; the offset column is skipped.
inline std::vector<uint8_t> hexBytes(const std::string& listing) {
    std::vector<uint8_t> bytes;
    std::istringstream words(listing);
    std::string word;
    while (words >> word) {
        if (word.back() == ':') continue;
        bytes.push_back(static_cast<uint8_t>(std::stoul(word, nullptr, 16)));
    }
    return bytes;
}

inline uint32_t readU32(const std::vector<uint8_t>& bytes, size_t offset) {
    uint32_t value;
    memcpy(&value, bytes.data() + offset, sizeof(value));
    return value;
}

inline void writeU32(std::vector<uint8_t>& bytes, size_t offset, uint32_t value) {
    memcpy(bytes.data() + offset, &value, sizeof(value));
}

// `bytes` copied into a heap block of exactly `shift + bytes.size()` bytes, starting `shift`
// bytes in.
class TailBuffer {
public:
    explicit TailBuffer(const std::vector<uint8_t>& bytes, size_t shift = 0)
        : mStorage(new uint8_t[shift + bytes.size()]), mShift(shift) {
        if (!bytes.empty()) memcpy(mStorage.get() + shift, bytes.data(), bytes.size());
    }

    camera_metadata_t* packet() {
        return reinterpret_cast<camera_metadata_t*>(mStorage.get() + mShift);
    }

private:
    std::unique_ptr<uint8_t[]> mStorage;
    size_t mShift;
};

}  // namespace metadata_test
