// Entries of a packet: adding, reading, finding, sorting, updating and deleting.
#define LOG_TAG "camera_metadata"

#include <errno.h>
#include <log/log.h>
#include <stdlib.h>
#include <string.h>
#include <system/camera_metadata.h>

#include <algorithm>

#include "camera_metadata_layout.h"

using namespace android::metadata;

namespace {

constexpr int kNotFound = -ENOENT;

bool isValidType(int type) {
    return type >= 0 && type < NUM_TYPES;
}

size_t payloadBytes(uint8_t type, size_t count) {
    return count * camera_metadata_type_size[type];
}

// An entry's out-of-line block must lie inside the data in use before bytes around it move.
bool blockInUse(const camera_metadata_t* metadata, const BufferEntry& entry, size_t blockBytes) {
    return blockBytes == 0 ||
           static_cast<size_t>(entry.data.offset) + blockBytes <= metadata->data_count;
}

// Removes the out-of-line block of `entry` and moves every later block down to close the gap.
void removeDataBlock(camera_metadata_t* metadata, const BufferEntry& entry, size_t blockBytes) {
    uint32_t removedOffset = entry.data.offset;
    uint8_t* start = dataOf(metadata) + removedOffset;
    memmove(start, start + blockBytes, metadata->data_count - removedOffset - blockBytes);
    BufferEntry* entries = entriesOf(metadata);
    for (uint32_t i = 0; i < metadata->entry_count; ++i) {
        BufferEntry& other = entries[i];
        if (calculate_camera_metadata_entry_data_size(other.type, other.count) > 0 &&
            other.data.offset > removedOffset) {
            other.data.offset -= blockBytes;
        }
    }
    metadata->data_count -= blockBytes;
}

template <typename Entry, typename Metadata>
int fillEntry(Metadata* src, size_t index, Entry* entry) {
    if (src == nullptr || entry == nullptr || index >= src->entry_count) return kError;
    auto& record = entriesOf(src)[index];
    if (!isValidType(record.type)) return kError;
    entry->index = index;
    entry->tag = record.tag;
    entry->type = record.type;
    entry->count = record.count;
    if (payloadBytes(record.type, record.count) > kInlineBytes) {
        entry->data.u8 = dataOf(src) + record.data.offset;
    } else {
        entry->data.u8 = record.data.value;
    }
    return kOk;
}

bool tagLess(const BufferEntry& a, const BufferEntry& b) {
    return a.tag < b.tag;
}

int compareTags(const void* a, const void* b) {
    uint32_t left = static_cast<const BufferEntry*>(a)->tag;
    uint32_t right = static_cast<const BufferEntry*>(b)->tag;
    return (left > right) - (left < right);
}

template <typename Entry, typename Metadata>
int findEntry(Metadata* src, uint32_t tag, Entry* entry) {
    if (src == nullptr) return kError;
    auto* begin = entriesOf(src);
    auto* end = begin + src->entry_count;
    auto* found = end;
    if (src->flags & kFlagSorted) {
        BufferEntry key{};
        key.tag = tag;
        // The C library's search, so that of duplicate tags the same one is found as on a device.
        auto* hit = bsearch(&key, begin, src->entry_count, sizeof(BufferEntry), compareTags);
        if (hit != nullptr) found = static_cast<decltype(begin)>(hit);
    } else {
        found = std::find_if(begin, end, [tag](const BufferEntry& e) { return e.tag == tag; });
    }
    if (found == end) return kNotFound;
    return fillEntry(src, static_cast<size_t>(found - begin), entry);
}

}  // namespace

int add_camera_metadata_entry(camera_metadata_t* dst, uint32_t tag, const void* data,
                              size_t data_count) {
    int type = get_local_camera_metadata_tag_type(tag, dst);
    if (type == -1) {
        ALOGE("%s: Unknown tag %04x.", __func__, tag);
        return kError;
    }
    if (!isValidType(type)) {
        ALOGE("%s: Tag %04x has an invalid type %d.", __func__, tag, type);
        return kError;
    }
    if (dst == nullptr || dst->entry_count == dst->entry_capacity) return kError;
    if (data_count > 0 && data == nullptr) return kError;
    if (data_count > UINT32_MAX) return kError;
    size_t blockBytes = calculate_camera_metadata_entry_data_size(type, data_count);
    if (blockBytes + dst->data_count > dst->data_capacity) return kError;

    size_t bytes = payloadBytes(type, data_count);
    BufferEntry* entry = entriesOf(dst) + dst->entry_count;
    memset(entry, 0, sizeof(*entry));
    entry->tag = tag;
    entry->type = static_cast<uint8_t>(type);
    entry->count = static_cast<uint32_t>(data_count);
    if (blockBytes == 0) {
        if (bytes > 0) memcpy(entry->data.value, data, bytes);
    } else {
        entry->data.offset = dst->data_count;
        memcpy(dataOf(dst) + entry->data.offset, data, bytes);
        dst->data_count += blockBytes;
    }
    dst->entry_count++;
    dst->flags &= ~kFlagSorted;
    return kOk;
}

int sort_camera_metadata(camera_metadata_t* dst) {
    if (dst == nullptr) return kError;
    if (dst->flags & kFlagSorted) return kOk;
    // Stable, so duplicate tags keep the order in which they were added.
    BufferEntry* entries = entriesOf(dst);
    std::stable_sort(entries, entries + dst->entry_count, tagLess);
    dst->flags |= kFlagSorted;
    return kOk;
}

int get_camera_metadata_entry(camera_metadata_t* src, size_t index, camera_metadata_entry_t* entry) {
    return fillEntry(src, index, entry);
}

int get_camera_metadata_ro_entry(const camera_metadata_t* src, size_t index,
                                 camera_metadata_ro_entry_t* entry) {
    return fillEntry(src, index, entry);
}

int find_camera_metadata_entry(camera_metadata_t* src, uint32_t tag,
                               camera_metadata_entry_t* entry) {
    return findEntry(src, tag, entry);
}

int find_camera_metadata_ro_entry(const camera_metadata_t* src, uint32_t tag,
                                  camera_metadata_ro_entry_t* entry) {
    return findEntry(src, tag, entry);
}

int delete_camera_metadata_entry(camera_metadata_t* dst, size_t index) {
    if (dst == nullptr || index >= dst->entry_count) return kError;
    BufferEntry* entry = entriesOf(dst) + index;
    size_t blockBytes = calculate_camera_metadata_entry_data_size(entry->type, entry->count);
    if (!blockInUse(dst, *entry, blockBytes)) return kError;
    if (blockBytes > 0) removeDataBlock(dst, *entry, blockBytes);
    memmove(entry, entry + 1, sizeof(BufferEntry) * (dst->entry_count - index - 1));
    dst->entry_count -= 1;
    return kOk;
}

int update_camera_metadata_entry(camera_metadata_t* dst, size_t index, const void* data,
                                 size_t data_count, camera_metadata_entry_t* updated_entry) {
    if (dst == nullptr || index >= dst->entry_count) return kError;
    if ((data_count > 0 && data == nullptr) || data_count > UINT32_MAX) return kError;
    BufferEntry* entry = entriesOf(dst) + index;
    if (!isValidType(entry->type)) return kError;
    size_t newBytes = calculate_camera_metadata_entry_data_size(entry->type, data_count);
    size_t oldBytes = calculate_camera_metadata_entry_data_size(entry->type, entry->count);
    if (!blockInUse(dst, *entry, oldBytes)) return kError;
    size_t bytes = payloadBytes(entry->type, data_count);

    if (newBytes != oldBytes) {
        if (dst->data_capacity < dst->data_count + newBytes - oldBytes) return kError;
        if (oldBytes != 0) removeDataBlock(dst, *entry, oldBytes);
        // A block of a new size goes to the end of the data area.
        if (newBytes != 0) {
            entry->data.offset = dst->data_count;
            memcpy(dataOf(dst) + entry->data.offset, data, bytes);
            dst->data_count += newBytes;
        }
    } else if (newBytes != 0) {
        memcpy(dataOf(dst) + entry->data.offset, data, bytes);
    }
    // Only the payload bytes are written: a shrunk entry keeps the rest of its old offset.
    if (newBytes == 0 && bytes > 0) memcpy(entry->data.value, data, bytes);
    entry->count = static_cast<uint32_t>(data_count);

    if (updated_entry != nullptr) get_camera_metadata_entry(dst, index, updated_entry);
    return kOk;
}
