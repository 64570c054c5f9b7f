#define LOG_TAG "VirtualCamera"

#include "MetadataBuilder.h"

#include <log/log.h>

#include <type_traits>

namespace virtual_camera {
namespace {

template <typename T>
constexpr uint8_t typeOf() {
    if constexpr (std::is_same_v<T, uint8_t>) return TYPE_BYTE;
    if constexpr (std::is_same_v<T, int32_t>) return TYPE_INT32;
    if constexpr (std::is_same_v<T, float>) return TYPE_FLOAT;
    if constexpr (std::is_same_v<T, int64_t>) return TYPE_INT64;
    if constexpr (std::is_same_v<T, camera_metadata_rational_t>) return TYPE_RATIONAL;
}

}  // namespace

MetadataBuilder::MetadataBuilder(const camera_metadata_t* metadata) {
    if (metadata == nullptr) return;
    size_t count = get_camera_metadata_entry_count(metadata);
    for (size_t i = 0; i < count; ++i) {
        camera_metadata_ro_entry_t entry;
        if (get_camera_metadata_ro_entry(metadata, i, &entry) != 0) continue;
        setRaw(entry.tag, entry.type, entry.data.u8, entry.count);
    }
}

template <typename Container>
void MetadataBuilder::setValues(uint32_t tag, const Container& values) {
    using T = std::decay_t<decltype(*values.begin())>;
    setRaw(tag, typeOf<T>(), values.size() != 0 ? &*values.begin() : nullptr, values.size());
}

void MetadataBuilder::set(uint32_t tag, std::initializer_list<uint8_t> values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, std::initializer_list<int32_t> values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, std::initializer_list<float> values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, std::initializer_list<int64_t> values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, std::initializer_list<camera_metadata_rational_t> values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, const std::vector<uint8_t>& values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, const std::vector<int32_t>& values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, const std::vector<float>& values) {
    setValues(tag, values);
}
void MetadataBuilder::set(uint32_t tag, const std::vector<int64_t>& values) {
    setValues(tag, values);
}

void MetadataBuilder::setStrings(uint32_t tag, const std::vector<std::string>& strings) {
    std::vector<uint8_t> bytes;
    for (const std::string& text : strings) {
        bytes.insert(bytes.end(), text.begin(), text.end());
        bytes.push_back(0);
    }
    setValues(tag, bytes);
}

void MetadataBuilder::setRaw(uint32_t tag, uint8_t type, const void* data, size_t count) {
    // A wrong type is a mistake in our own tables: stop at once rather than emit bad metadata.
    int expected = get_camera_metadata_tag_type(tag);
    LOG_ALWAYS_FATAL_IF(expected != type, "tag 0x%x set with type %d, table says %d", tag, type,
                        expected);
    const auto* bytes = static_cast<const uint8_t*>(data);
    size_t size = count * camera_metadata_type_size[type];
    mEntries[tag] = Entry{type, count, std::vector<uint8_t>(bytes, bytes + size)};
}

std::vector<int32_t> MetadataBuilder::tags() const {
    std::vector<int32_t> tags;
    tags.reserve(mEntries.size());
    for (const auto& [tag, entry] : mEntries) tags.push_back(static_cast<int32_t>(tag));
    return tags;
}

MetadataPtr MetadataBuilder::build() const {
    size_t dataSize = 0;
    for (const auto& [tag, entry] : mEntries) {
        dataSize += calculate_camera_metadata_entry_data_size(entry.type, entry.count);
    }
    MetadataPtr metadata(allocate_camera_metadata(mEntries.size(), dataSize));
    LOG_ALWAYS_FATAL_IF(metadata == nullptr, "out of memory for metadata");
    for (const auto& [tag, entry] : mEntries) {
        int status = add_camera_metadata_entry(metadata.get(), tag, entry.bytes.data(), entry.count);
        LOG_ALWAYS_FATAL_IF(status != 0, "adding tag 0x%x failed", tag);
    }
    sort_camera_metadata(metadata.get());
    return metadata;
}

}  // namespace virtual_camera
