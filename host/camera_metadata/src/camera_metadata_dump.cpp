// Readable listing of a packet for debugging.
#define LOG_TAG "camera_metadata"

#include <inttypes.h>
#include <log/log.h>
#include <stdio.h>
#include <string.h>
#include <system/camera_metadata.h>

#include "camera_metadata_layout.h"

using namespace android::metadata;

namespace {

// Values shown when verbosity is below 2.
constexpr uint32_t kShortListing = 16;

int valuesPerLine(uint8_t type) {
    switch (type) {
        case TYPE_BYTE:
            return 16;
        case TYPE_INT32:
        case TYPE_DOUBLE:
            return 4;
        case TYPE_FLOAT:
            return 8;
        default:
            return 2;
    }
}

void printValue(int fd, uint32_t tag, uint8_t type, const uint8_t* data) {
    char enumName[64];
    switch (type) {
        case TYPE_BYTE:
            if (camera_metadata_enum_snprint(tag, *data, enumName, sizeof(enumName)) == 0) {
                dprintf(fd, "%s ", enumName);
            } else {
                dprintf(fd, "%hhu ", *data);
            }
            break;
        case TYPE_INT32: {
            int32_t value;
            memcpy(&value, data, sizeof(value));
            if (camera_metadata_enum_snprint(tag, value, enumName, sizeof(enumName)) == 0) {
                dprintf(fd, "%s (%" PRId32 ") ", enumName, value);
            } else {
                dprintf(fd, "%" PRId32 " ", value);
            }
            break;
        }
        case TYPE_FLOAT: {
            float value;
            memcpy(&value, data, sizeof(value));
            dprintf(fd, "%0.8f ", value);
            break;
        }
        case TYPE_INT64: {
            int64_t value;
            memcpy(&value, data, sizeof(value));
            dprintf(fd, "%" PRId64 " ", value);
            break;
        }
        case TYPE_DOUBLE: {
            double value;
            memcpy(&value, data, sizeof(value));
            dprintf(fd, "%0.8f ", value);
            break;
        }
        case TYPE_RATIONAL: {
            camera_metadata_rational_t value;
            memcpy(&value, data, sizeof(value));
            dprintf(fd, "(%" PRId32 " / %" PRId32 ") ", value.numerator, value.denominator);
            break;
        }
    }
}

void printValues(int fd, const BufferEntry& entry, const uint8_t* data, uint32_t count,
                 int indentation) {
    size_t typeSize = camera_metadata_type_size[entry.type];
    int perLine = valuesPerLine(entry.type);
    for (uint32_t i = 0; i < count; i += perLine) {
        dprintf(fd, "%*s[ ", indentation + 4, "");
        for (uint32_t j = i; j < count && j < i + perLine; ++j) {
            printValue(fd, entry.tag, entry.type, data + j * typeSize);
        }
        dprintf(fd, "]\n");
    }
}

}  // namespace

void dump_camera_metadata(const camera_metadata_t* metadata, int fd, int verbosity) {
    dump_indented_camera_metadata(metadata, fd, verbosity, 0);
}

void dump_indented_camera_metadata(const camera_metadata_t* metadata, int fd, int verbosity,
                                   int indentation) {
    if (metadata == nullptr) {
        dprintf(fd, "%*sDumping camera metadata array: Not allocated\n", indentation, "");
        return;
    }
    dprintf(fd,
            "%*sDumping camera metadata array: %" PRIu32 " / %" PRIu32 " entries, %" PRIu32
            " / %" PRIu32 " bytes of extra data.\n",
            indentation, "", metadata->entry_count, metadata->entry_capacity, metadata->data_count,
            metadata->data_capacity);
    dprintf(fd, "%*sVersion: %" PRIu32 ", Flags: %08" PRIx32 "\n", indentation + 2, "",
            metadata->version, metadata->flags);

    const BufferEntry* entries = entriesOf(metadata);
    for (uint32_t i = 0; i < metadata->entry_count; ++i) {
        const BufferEntry& entry = entries[i];
        const char* section = get_local_camera_metadata_section_name(entry.tag, metadata);
        const char* name = get_local_camera_metadata_tag_name(entry.tag, metadata);
        const char* typeName =
                entry.type < NUM_TYPES ? camera_metadata_type_names[entry.type] : "unknown";
        dprintf(fd, "%*s%s.%s (%05" PRIx32 "): %s[%" PRIu32 "]\n", indentation + 2, "",
                section != nullptr ? section : "unknownSection",
                name != nullptr ? name : "unknownTag", entry.tag, typeName, entry.count);
        if (verbosity < 1 || entry.type >= NUM_TYPES) continue;

        const uint8_t* data = entry.data.value;
        size_t blockBytes = calculate_camera_metadata_entry_data_size(entry.type, entry.count);
        if (blockBytes > 0) {
            if (static_cast<size_t>(entry.data.offset) + blockBytes > metadata->data_count) {
                ALOGE("%s: Malformed entry data offset: %" PRIu32 " (max %" PRIu32 ")", __func__,
                      entry.data.offset, metadata->data_count);
                continue;
            }
            data = dataOf(metadata) + entry.data.offset;
        }
        uint32_t count = entry.count;
        if (verbosity < 2 && count > kShortListing) count = kShortListing;
        printValues(fd, entry, data, count, indentation);
    }
}
