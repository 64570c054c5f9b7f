// Validation of packets from elsewhere. Every blob sits at the very end of its heap block, so under
// the address sanitizer a read past the blob fails the test even when validation would reject it.
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>

#include <random>
#include <vector>

#include "MetadataTestUtil.h"

using namespace metadata_test;
using android::testing::LogCapture;

namespace {

constexpr int kValid = 0;
constexpr int kError = CAMERA_METADATA_VALIDATION_ERROR;
constexpr int kShifted = CAMERA_METADATA_VALIDATION_SHIFTED;

constexpr size_t kExposureEntry = 0;      // int64, data at offset 0
constexpr size_t kFocalLengthsEntry = 1;  // float[3], data at offset 8
constexpr size_t kRequestIdEntry = 2;     // int32, inline
constexpr size_t kAeModeEntry = 3;        // byte, inline
constexpr size_t kDataStart = kHeaderSize + 5 * kEntrySize;

size_t entryField(size_t entry, EntryOffset field) {
    return kHeaderSize + entry * kEntrySize + field;
}

// Four entries of five slots, 24 of 40 data bytes in use: 168 bytes.
std::vector<uint8_t> validImage() {
    MetadataPtr metadata(allocate_camera_metadata(5, 40));
    const int64_t exposure = 10000000;
    const float focalLengths[] = {1.0f, 2.5f, 4.75f};
    const int32_t requestId = 42;
    const uint8_t aeMode = ANDROID_CONTROL_AE_MODE_ON;
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure,
                                           1));
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS,
                                           focalLengths, 3));
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &requestId, 1));
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &aeMode, 1));
    return bytesOf(metadata.get());
}

int validate(const std::vector<uint8_t>& image, size_t shift = 0) {
    TailBuffer buffer(image, shift);
    size_t size = image.size();
    return validate_camera_metadata_structure(buffer.packet(), &size);
}

// Reads every value of every entry, so that an entry reaching outside the packet trips the
// address sanitizer.
unsigned touchEveryValue(const camera_metadata_t* metadata) {
    unsigned sum = 0;
    for (size_t i = 0; i < get_camera_metadata_entry_count(metadata); ++i) {
        camera_metadata_ro_entry_t entry;
        if (get_camera_metadata_ro_entry(metadata, i, &entry) != 0) continue;
        size_t bytes = entry.count * camera_metadata_type_size[entry.type];
        for (size_t b = 0; b < bytes; ++b) sum += entry.data.u8[b];
    }
    return sum;
}

struct Corruption {
    const char* name;
    void (*apply)(std::vector<uint8_t>& image);
    int expected;
};

const Corruption kCorruptions[] = {
        {"untouched", [](std::vector<uint8_t>&) {}, kValid},
        {"size field beyond the bytes held",
         [](std::vector<uint8_t>& i) { writeU32(i, kSizeField, i.size() + 8); }, kError},
        {"entry count above capacity",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntryCountField, 6); }, kError},
        {"data count above capacity",
         [](std::vector<uint8_t>& i) { writeU32(i, kDataCountField, 41); }, kError},
        {"entry capacity wrapping the entry end",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntryCapacityField, UINT32_MAX); }, kError},
        {"entry start plus capacity past the data start",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntriesStartField, kDataStart - 4); }, kError},
        {"data capacity wrapping the data end",
         [](std::vector<uint8_t>& i) { writeU32(i, kDataCapacityField, UINT32_MAX); }, kError},
        {"data end past the size",
         [](std::vector<uint8_t>& i) { writeU32(i, kDataCapacityField, 41); }, kError},
        {"data start past the size",
         [](std::vector<uint8_t>& i) { writeU32(i, kDataStartField, 0xfffffff0u); }, kError},
        {"entries read from the header",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntriesStartField, 0); }, kError},
        {"entries read from the data area",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntriesStartField, 120); }, kError},
        {"entries not 4-byte aligned",
         [](std::vector<uint8_t>& i) {
             writeU32(i, kEntryCapacityField, 4);
             writeU32(i, kEntriesStartField, 50);
         },
         kError},
        {"type one past the last",
         [](std::vector<uint8_t>& i) { i[entryField(kRequestIdEntry, kTypeField)] = NUM_TYPES; },
         kError},
        {"type 0xff",
         [](std::vector<uint8_t>& i) { i[entryField(kAeModeEntry, kTypeField)] = 0xff; }, kError},
        {"int64 tag stored as int32",
         [](std::vector<uint8_t>& i) { i[entryField(kExposureEntry, kTypeField)] = TYPE_INT32; },
         kError},
        {"tag past its section's end",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kAeModeEntry, kTagField), ANDROID_CONTROL_END);
         },
         kError},
        {"section between the Android and vendor sections",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kAeModeEntry, kTagField), 0x7fff0000u);
         },
         kError},
        {"count too large for the data area",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kFocalLengthsEntry, kCountField), 0x40000000u);
         },
         kError},
        {"largest count",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kExposureEntry, kCountField), UINT32_MAX);
         },
         kError},
        {"data offset not 8-byte aligned",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kExposureEntry, kDataField), 4); },
         kError},
        {"data past the capacity",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kFocalLengthsEntry, kDataField), 32); },
         kError},
        {"data offset near the top of the range",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kExposureEntry, kDataField), 0xfffffff8u);
         },
         kError},
        {"no elements but an offset",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kAeModeEntry, kCountField), 0); },
         kError},
        // What validation deliberately leaves alone.
        {"data past the bytes in use but inside the capacity",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kFocalLengthsEntry, kDataField), 24); },
         kValid},
        {"entry slots whose bytes run into the data area",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntryCapacityField, 70); }, kValid},
        {"entries overlapping the header",
         [](std::vector<uint8_t>& i) {
             writeU32(i, kEntryCountField, 0);
             writeU32(i, kEntriesStartField, 0);
         },
         kValid},
        {"vendor tag of any type",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kAeModeEntry, kTagField), 0x80000000u);
         },
         kValid},
        {"unknown version and flags",
         [](std::vector<uint8_t>& i) {
             writeU32(i, kVersionField, 7);
             writeU32(i, kFlagsField, 0xffff0000u);
         },
         kValid},
        {"sorted mark on unsorted entries",
         [](std::vector<uint8_t>& i) { writeU32(i, kFlagsField, 1); }, kValid},
        {"two entries sharing a data block",
         [](std::vector<uint8_t>& i) {
             writeU32(i, entryField(kFocalLengthsEntry, kDataField), 8);
             writeU32(i, entryField(kExposureEntry, kDataField), 8);
         },
         kValid},
        {"noise in unused inline bytes, padding and vendor id",
         [](std::vector<uint8_t>& i) {
             i[entryField(kAeModeEntry, kDataField) + 3] = 0x5a;
             writeU32(i, kPaddingField, 0xdeadbeef);
             writeU32(i, kVendorIdField, 0x12345678);
         },
         kValid},
        {"size field smaller than the bytes held",
         [](std::vector<uint8_t>& i) { i.resize(i.size() + 24, 0xee); }, kValid},
};

}  // namespace

TEST(ValidateTest, EachCorruptionIsRejectedWithoutReadingOutsideThePacket) {
    const std::vector<uint8_t> valid = validImage();
    ASSERT_EQ(168u, valid.size());
    for (const Corruption& corruption : kCorruptions) {
        SCOPED_TRACE(corruption.name);
        std::vector<uint8_t> image = valid;
        corruption.apply(image);
        LogCapture capture;
        EXPECT_EQ(corruption.expected, validate(image));
        // A rejection says why, once.
        EXPECT_EQ(corruption.expected == kValid ? 0u : 1u, capture.lines().size());
        // Checks are made relative to the packet start, whatever its address.
        for (size_t shift : {1, 4, 7}) {
            EXPECT_EQ(corruption.expected == kValid ? kShifted : kError, validate(image, shift))
                    << "at shift " << shift;
        }
        // Without an expected size the packet's own size is trusted.
        if (readU32(image, kSizeField) <= image.size()) {
            TailBuffer buffer(image);
            EXPECT_EQ(corruption.expected,
                      validate_camera_metadata_structure(buffer.packet(), nullptr));
        }
    }
}

// The platform would read such a record past the packet; it is rejected instead.
TEST(ValidateTest, EntryRecordPastTheBytesHeldIsRejectedUnread) {
    MetadataPtr empty(allocate_camera_metadata(0, 0));
    std::vector<uint8_t> image = bytesOf(empty.get());
    image.resize(kHeaderSize + 8);
    writeU32(image, kSizeField, image.size());
    writeU32(image, kEntryCountField, 1);
    writeU32(image, kEntryCapacityField, 1);
    writeU32(image, kDataStartField, image.size());
    for (bool withSize : {true, false}) {
        TailBuffer buffer(image);
        size_t size = image.size();
        LogCapture capture;
        EXPECT_EQ(kError,
                  validate_camera_metadata_structure(buffer.packet(), withSize ? &size : nullptr));
        EXPECT_EQ(1u, capture.lines().size());
    }
}

TEST(ValidateTest, EveryTruncationIsRejected) {
    const std::vector<uint8_t> valid = validImage();
    LogCapture quiet;
    for (size_t length = 0; length < valid.size(); ++length) {
        std::vector<uint8_t> truncated(valid.begin(), valid.begin() + length);
        EXPECT_EQ(kError, validate(truncated)) << length << " bytes";
    }
}

TEST(ValidateTest, NullIsRejected) {
    size_t size = 100;
    EXPECT_EQ(kError, validate_camera_metadata_structure(nullptr, &size));
    EXPECT_EQ(kError, validate_camera_metadata_structure(nullptr, nullptr));
}

TEST(ValidateTest, EmptyPacketIsValidEverywhere) {
    MetadataPtr metadata(allocate_camera_metadata(0, 0));
    std::vector<uint8_t> image = bytesOf(metadata.get());
    EXPECT_EQ(kValid, validate(image));
    EXPECT_EQ(kShifted, validate(image, 4));
}

// Random damage to header and entry fields, with values near the edges. Whatever passes must be
// readable and cloneable without leaving the packet's bytes: validation makes no promise about
// changing a packet in place.
TEST(ValidateTest, AcceptedDamagedPacketsStayInsideTheirBytes) {
    const std::vector<uint8_t> valid = validImage();
    const uint32_t kEdges[] = {0,   1,   4,    8,          16,         24,         40,
                               48,  120, 128,  160,        167,        168,        169,
                               176, 184, 1024, 0x7fffffff, 0x80000000, 0xfffffff8, 0xffffffff};
    const size_t kFields[] = {kSizeField,          kFlagsField,        kEntryCountField,
                              kEntryCapacityField, kEntriesStartField, kDataCountField,
                              kDataCapacityField,  kDataStartField};
    std::mt19937 generator(20240613);
    auto pick = [&generator](size_t bound) {
        return std::uniform_int_distribution<size_t>(0, bound - 1)(generator);
    };
    int accepted = 0;
    LogCapture quiet;
    for (int round = 0; round < 20000; ++round) {
        std::vector<uint8_t> image = valid;
        for (size_t damage = 1 + pick(3); damage > 0; --damage) {
            uint32_t value = pick(4) == 0 ? static_cast<uint32_t>(generator())
                                          : kEdges[pick(std::size(kEdges))];
            switch (pick(4)) {
                case 0:
                    writeU32(image, kFields[pick(std::size(kFields))], value);
                    break;
                case 1:
                    writeU32(image, entryField(pick(5), static_cast<EntryOffset>(4 * pick(3))),
                             value);
                    break;
                case 2:
                    image[entryField(pick(5), kTypeField)] = static_cast<uint8_t>(value);
                    break;
                default:
                    image[pick(image.size())] = static_cast<uint8_t>(value);
                    break;
            }
        }
        TailBuffer buffer(image);
        camera_metadata_t* packet = buffer.packet();
        size_t size = image.size();
        if (validate_camera_metadata_structure(packet, &size) != kValid) continue;
        ++accepted;

        touchEveryValue(packet);
        MetadataPtr clone(clone_camera_metadata(packet));
    }
    // The damage must leave enough packets valid for the walk above to mean something.
    EXPECT_GT(accepted, 500);
}

namespace {

struct BitFlip {
    const char* why;  // the rule that decides
    size_t offset;    // of the 32-bit field
    unsigned bit;
    int expected;
};

std::vector<uint8_t> flipped(const std::vector<uint8_t>& image, size_t offset, unsigned bit) {
    std::vector<uint8_t> copy = image;
    copy[offset + bit / 8] ^= static_cast<uint8_t>(1u << (bit % 8));
    return copy;
}

// The valid image holds: size 168, entry count 4 of capacity 5, entries at 48, data count 24 of
// capacity 40, data at 128. Each result follows from the checks alone, in their order.
const BitFlip kBitFlips[] = {
        {"size 169 above the bytes held", kSizeField, 0, kError},
        {"data end 168 past size 160", kSizeField, 3, kError},
        {"count 6 above capacity 5", kEntryCountField, 1, kError},
        {"count 5 reaches the zeroed spare slot: an empty entry of tag 0", kEntryCountField, 0,
         kValid},
        {"capacity 7: entries start + 7 (a count, not bytes) <= data start", kEntryCapacityField, 1,
         kValid},
        {"capacity 69: 48 + 69 <= 128", kEntryCapacityField, 6, kValid},
        {"capacity 133: 48 + 133 > 128", kEntryCapacityField, 7, kError},
        {"entries at 49 are not 4-aligned", kEntriesStartField, 0, kError},
        {"record read at 52 has tag 1 (rational) but type float", kEntriesStartField, 2, kError},
        {"record read at 32 has type 0xff", kEntriesStartField, 4, kError},
        {"data count 25 need not be aligned", kDataCountField, 0, kValid},
        {"data count 8: blocks past the data in use are not checked", kDataCountField, 4, kValid},
        {"data count 56 above capacity 40", kDataCountField, 5, kError},
        {"capacity 32 still holds every block and ends at 160 <= 168", kDataCapacityField, 3,
         kValid},
        {"data end 169 past size", kDataCapacityField, 0, kError},
        {"entries end 53 past data start 0", kDataStartField, 7, kError},
        {"frame duration is int64 too", entryField(kExposureEntry, kTagField), 0, kValid},
        {"sensitivity is int32, not int64", entryField(kExposureEntry, kTagField), 1, kError},
        {"vendor tags are not type-checked", entryField(kExposureEntry, kTagField), 31, kValid},
        {"section 0x4001 has no tags", entryField(kAeModeEntry, kTagField), 30, kError},
        {"AE lock is a byte too", entryField(kAeModeEntry, kTagField), 0, kValid},
        {"no elements and offset 0", entryField(kExposureEntry, kCountField), 0, kValid},
        {"5 int64 end at 40 <= capacity, past the data in use",
         entryField(kExposureEntry, kCountField), 2, kValid},
        {"9 int64 end at 72 > capacity", entryField(kExposureEntry, kCountField), 3, kError},
        {"one float is inline: its old offset is payload",
         entryField(kFocalLengthsEntry, kCountField), 1, kValid},
        {"7 floats end at 40 <= capacity", entryField(kFocalLengthsEntry, kCountField), 2, kValid},
        {"no elements but inline bytes 42", entryField(kRequestIdEntry, kCountField), 0, kError},
        {"3 int32 go out of line at offset 42, not 8-aligned",
         entryField(kRequestIdEntry, kCountField), 1, kError},
        {"3 bytes stay inline", entryField(kAeModeEntry, kCountField), 1, kValid},
        {"5 bytes go out of line at offset 1, not 8-aligned", entryField(kAeModeEntry, kCountField),
         2, kError},
        {"offset 4 is not 8-aligned", entryField(kExposureEntry, kDataField), 2, kError},
        {"offset 32: ends at 40, capacity not count decides",
         entryField(kExposureEntry, kDataField), 5, kValid},
        {"offset 24: ends at 40 <= capacity", entryField(kFocalLengthsEntry, kDataField), 4, kValid},
        {"offset 40: ends at 56 > capacity", entryField(kFocalLengthsEntry, kDataField), 5, kError},
        {"int64 stored as float", entryField(kExposureEntry, kTypeField), 0, kError},
        {"byte stored as int32", entryField(kAeModeEntry, kTypeField), 0, kError},
};

// Every bit of the header and of the entry slots, and a taste of the data area.
struct SweptField {
    const char* name;
    size_t offset;
    size_t bytes;
    bool checked;  // whether any check reads it
};

std::vector<SweptField> sweptFields() {
    std::vector<SweptField> fields = {
            {"size", kSizeField, 4, true},
            {"version", kVersionField, 4, false},
            {"flags", kFlagsField, 4, false},
            {"entry count", kEntryCountField, 4, true},
            {"entry capacity", kEntryCapacityField, 4, true},
            {"entries start", kEntriesStartField, 4, true},
            {"data count", kDataCountField, 4, true},
            {"data capacity", kDataCapacityField, 4, true},
            {"data start", kDataStartField, 4, true},
            {"padding", kPaddingField, 4, false},
            {"vendor id", kVendorIdField, 8, false},
            {"spare entry slot", entryField(4, kTagField), kEntrySize, false},
            {"data area", kDataStart, 40, false},
    };
    for (size_t entry : {kExposureEntry, kFocalLengthsEntry, kRequestIdEntry, kAeModeEntry}) {
        const bool inlineValue = entry == kRequestIdEntry || entry == kAeModeEntry;
        fields.push_back({"tag", entryField(entry, kTagField), 4, true});
        fields.push_back({"count", entryField(entry, kCountField), 4, true});
        // An inline payload is looked at only when the count is 0.
        fields.push_back({"data", entryField(entry, kDataField), 4, !inlineValue});
        fields.push_back({"type", entryField(entry, kTypeField), 1, true});
        fields.push_back({"reserved", entryField(entry, kTypeField) + 1, 3, false});
    }
    return fields;
}

}  // namespace

TEST(ValidateBitFlipTest, SingleFlipsGiveThePlatformsAnswer) {
    const std::vector<uint8_t> valid = validImage();
    LogCapture quiet;
    for (const BitFlip& flip : kBitFlips) {
        EXPECT_EQ(flip.expected, validate(flipped(valid, flip.offset, flip.bit)))
                << flip.why << " (offset " << flip.offset << ", bit " << flip.bit << ")";
    }
}

// Under the address sanitizer this also proves that no flip makes validation leave the packet.
TEST(ValidateBitFlipTest, EverySingleFlipKeepsTheInvariants) {
    const std::vector<uint8_t> valid = validImage();
    LogCapture quiet;
    size_t accepted = 0;
    for (const SweptField& field : sweptFields()) {
        for (unsigned bit = 0; bit < 8 * field.bytes; ++bit) {
            SCOPED_TRACE(::testing::Message()
                         << field.name << " at " << field.offset << ", bit " << bit);
            const std::vector<uint8_t> image = flipped(valid, field.offset, bit);
            const int result = validate(image);
            ASSERT_TRUE(result == kValid || result == kError) << result;
            if (!field.checked) {
                EXPECT_EQ(kValid, result);
            }
            // Alignment is judged relative to the packet start.
            EXPECT_EQ(result == kValid ? kShifted : kError, validate(image, 4));
            // Only the size field is compared with the bytes held.
            if (field.offset != kSizeField) {
                TailBuffer buffer(image);
                EXPECT_EQ(result, validate_camera_metadata_structure(buffer.packet(), nullptr));
            }
            if (result == kValid) {
                ++accepted;
                TailBuffer buffer(image);
                touchEveryValue(buffer.packet());
                MetadataPtr clone(clone_camera_metadata(buffer.packet()));
                EXPECT_NE(nullptr, clone);
            }
        }
    }
    EXPECT_GT(accepted, 0u);
}
