#include "Metadata.h"

namespace camera_harness {

namespace {

template <typename T>
std::vector<T> findValues(const camera_metadata_t* metadata, uint32_t tag, uint8_t type) {
    camera_metadata_ro_entry_t entry;
    if (metadata == nullptr || find_camera_metadata_ro_entry(metadata, tag, &entry) != 0 ||
        entry.type != type) {
        return {};
    }
    const auto* values = static_cast<const T*>(static_cast<const void*>(entry.data.u8));
    return std::vector<T>(values, values + entry.count);
}

template <typename T>
std::optional<T> firstOf(const std::vector<T>& values) {
    if (values.empty()) return std::nullopt;
    return values.front();
}

}  // namespace

const camera_metadata_t* viewMetadata(const std::vector<uint8_t>& bytes) {
    if (bytes.empty()) return nullptr;
    const auto* metadata = reinterpret_cast<const camera_metadata_t*>(bytes.data());
    size_t size = bytes.size();
    return validate_camera_metadata_structure(metadata, &size) == 0 ? metadata : nullptr;
}

MetadataPtr copyMetadata(const camera_metadata_t* source, size_t extraEntries, size_t extraData) {
    size_t entries = extraEntries;
    size_t data = extraData;
    if (source != nullptr) {
        entries += get_camera_metadata_entry_count(source);
        data += get_camera_metadata_data_count(source);
    }
    MetadataPtr copy(allocate_camera_metadata(entries, data));
    if (copy && source != nullptr && append_camera_metadata(copy.get(), source) != 0) {
        copy.reset();
    }
    return copy;
}

bool setEntry(camera_metadata_t* metadata, uint32_t tag, const void* data, size_t count) {
    camera_metadata_entry_t entry;
    if (find_camera_metadata_entry(metadata, tag, &entry) == 0) {
        return update_camera_metadata_entry(metadata, entry.index, data, count, nullptr) == 0;
    }
    return add_camera_metadata_entry(metadata, tag, data, count) == 0;
}

std::vector<uint8_t> toBytes(const camera_metadata_t* metadata) {
    if (metadata == nullptr) return {};
    const auto* begin = reinterpret_cast<const uint8_t*>(metadata);
    return std::vector<uint8_t>(begin, begin + get_camera_metadata_size(metadata));
}

std::optional<int64_t> findInt64(const camera_metadata_t* metadata, uint32_t tag) {
    return firstOf(findInt64s(metadata, tag));
}

std::optional<int32_t> findInt32(const camera_metadata_t* metadata, uint32_t tag) {
    return firstOf(findInt32s(metadata, tag));
}

std::optional<uint8_t> findByte(const camera_metadata_t* metadata, uint32_t tag) {
    return firstOf(findBytes(metadata, tag));
}

std::vector<int32_t> findInt32s(const camera_metadata_t* metadata, uint32_t tag) {
    return findValues<int32_t>(metadata, tag, TYPE_INT32);
}

std::vector<int64_t> findInt64s(const camera_metadata_t* metadata, uint32_t tag) {
    return findValues<int64_t>(metadata, tag, TYPE_INT64);
}

std::vector<uint8_t> findBytes(const camera_metadata_t* metadata, uint32_t tag) {
    return findValues<uint8_t>(metadata, tag, TYPE_BYTE);
}

}  // namespace camera_harness
