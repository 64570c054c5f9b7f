/*
 * Collects metadata entries by tag (setting a tag again replaces it) and packs them into a sorted
 * camera_metadata_t of exactly the needed size. Used to build static characteristics, request
 * templates and results. One thread at a time.
 */
#pragma once

#include <stdint.h>
#include <system/camera_metadata.h>

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "Metadata.h"

namespace virtual_camera {

class MetadataBuilder {
public:
    MetadataBuilder() = default;
    // Starts from the entries of `metadata` (may be null).
    explicit MetadataBuilder(const camera_metadata_t* metadata);

    void set(uint32_t tag, std::initializer_list<uint8_t> values);
    void set(uint32_t tag, std::initializer_list<int32_t> values);
    void set(uint32_t tag, std::initializer_list<float> values);
    void set(uint32_t tag, std::initializer_list<int64_t> values);
    void set(uint32_t tag, std::initializer_list<camera_metadata_rational_t> values);
    void set(uint32_t tag, const std::vector<uint8_t>& values);
    void set(uint32_t tag, const std::vector<int32_t>& values);
    void set(uint32_t tag, const std::vector<float>& values);
    void set(uint32_t tag, const std::vector<int64_t>& values);
    // Byte-typed tags that hold NUL-terminated strings, one after another.
    void setStrings(uint32_t tag, const std::vector<std::string>& strings);

    bool has(uint32_t tag) const { return mEntries.count(tag) != 0; }
    std::vector<int32_t> tags() const;

    MetadataPtr build() const;

private:
    struct Entry {
        uint8_t type;
        size_t count;
        std::vector<uint8_t> bytes;
    };

    template <typename Container>
    void setValues(uint32_t tag, const Container& values);
    void setRaw(uint32_t tag, uint8_t type, const void* data, size_t count);

    std::map<uint32_t, Entry> mEntries;
};

}  // namespace virtual_camera
