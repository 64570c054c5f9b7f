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
        {"entries overlapping the header",
         [](std::vector<uint8_t>& i) { writeU32(i, kEntriesStartField, 0); }, kError},
        {"entry slots running into the data area",
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
        {"data past the bytes in use",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kFocalLengthsEntry, kDataField), 24); },
         kError},
        {"no elements but an offset",
         [](std::vector<uint8_t>& i) { writeU32(i, entryField(kAeModeEntry, kCountField), 0); },
         kError},
        // What validation deliberately leaves alone.
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
// readable, cloneable and changeable without leaving the packet's bytes.
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
        if (clone != nullptr) touchEveryValue(clone.get());

        const int64_t values[4] = {};
        add_camera_metadata_entry(packet, ANDROID_SENSOR_FRAME_DURATION, values, 2);
        update_camera_metadata_entry(packet, 0, values, 3, nullptr);
        delete_camera_metadata_entry(packet, 1);
        sort_camera_metadata(packet);
        touchEveryValue(packet);
    }
    // The damage must leave enough packets valid for the walk above to mean something.
    EXPECT_GT(accepted, 500);
}
