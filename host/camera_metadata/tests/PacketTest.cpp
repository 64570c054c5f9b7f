// Byte images of packets and the operations on whole packets: sizes, placement, copies, clones
// and appends.
#include <camera_metadata_hidden.h>
#include <gtest/gtest.h>
#include <system/camera_metadata.h>

#include <vector>

#include "MetadataTestUtil.h"

using namespace metadata_test;

namespace {

const std::vector<uint8_t> kEmptyImage = hexBytes(R"(
0000: 30 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00
0010: 00 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00
0020: 30 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff)");

const std::vector<uint8_t> kRequestIdImage = hexBytes(R"(
0000: 40 00 00 00 01 00 00 00 00 00 00 00 01 00 00 00
0010: 01 00 00 00 30 00 00 00 00 00 00 00 00 00 00 00
0020: 40 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff
0030: 01 00 0c 00 01 00 00 00 2a 00 00 00 01 00 00 00)");

const std::vector<uint8_t> kExposureAndFocalLengthsImage = hexBytes(R"(
0000: 68 00 00 00 01 00 00 00 00 00 00 00 02 00 00 00
0010: 02 00 00 00 30 00 00 00 18 00 00 00 18 00 00 00
0020: 50 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff
0030: 00 00 0e 00 01 00 00 00 00 00 00 00 03 00 00 00
0040: 02 00 09 00 03 00 00 00 08 00 00 00 02 00 00 00
0050: 80 96 98 00 00 00 00 00 00 00 80 3f 00 00 20 40
0060: 00 00 98 40 00 00 00 00)");

const std::vector<uint8_t> kSortedExposureAndFocalLengthsImage = hexBytes(R"(
0000: 68 00 00 00 01 00 00 00 01 00 00 00 02 00 00 00
0010: 02 00 00 00 30 00 00 00 18 00 00 00 18 00 00 00
0020: 50 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff
0030: 02 00 09 00 03 00 00 00 08 00 00 00 02 00 00 00
0040: 00 00 0e 00 01 00 00 00 00 00 00 00 03 00 00 00
0050: 80 96 98 00 00 00 00 00 00 00 80 3f 00 00 20 40
0060: 00 00 98 40 00 00 00 00)");

const int64_t kExposure = 10000000;
const float kFocalLengths[] = {1.0f, 2.5f, 4.75f};

MetadataPtr exposureThenFocalLengths() {
    MetadataPtr metadata(allocate_camera_metadata(2, 24));
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &kExposure,
                                           1));
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS,
                                           kFocalLengths, 3));
    return metadata;
}

}  // namespace

TEST(PacketImageTest, EmptyPacketIsABareHeader) {
    MetadataPtr metadata(allocate_camera_metadata(0, 0));
    EXPECT_EQ(kEmptyImage, bytesOf(metadata.get()));
    EXPECT_EQ(0, validate_camera_metadata_structure(metadata.get(), nullptr));
}

TEST(PacketImageTest, Int32ValueIsStoredInsideItsEntry) {
    MetadataPtr metadata(allocate_camera_metadata(1, 0));
    int32_t requestId = 42;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &requestId, 1));
    EXPECT_EQ(kRequestIdImage, bytesOf(metadata.get()));

    ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
    std::vector<uint8_t> sorted = kRequestIdImage;
    sorted[kFlagsField] = 0x01;
    EXPECT_EQ(sorted, bytesOf(metadata.get()));
}

TEST(PacketImageTest, LargerValuesGoToTheDataAreaInInsertionOrder) {
    MetadataPtr metadata = exposureThenFocalLengths();
    EXPECT_EQ(kExposureAndFocalLengthsImage, bytesOf(metadata.get()));
}

TEST(PacketImageTest, SortingMovesEntryRecordsButNotData) {
    MetadataPtr metadata = exposureThenFocalLengths();
    ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
    EXPECT_EQ(kSortedExposureAndFocalLengthsImage, bytesOf(metadata.get()));

    MetadataPtr clone(clone_camera_metadata(metadata.get()));
    EXPECT_EQ(kSortedExposureAndFocalLengthsImage, bytesOf(clone.get()));
}

TEST(PacketImageTest, ImageDependsOnInsertionOrder) {
    MetadataPtr metadata(allocate_camera_metadata(2, 24));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS,
                                           kFocalLengths, 3));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &kExposure,
                                           1));
    ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
    std::vector<uint8_t> image = bytesOf(metadata.get());

    EXPECT_NE(kSortedExposureAndFocalLengthsImage, image);
    EXPECT_EQ(24u, readU32(image, kDataCountField));
    EXPECT_EQ(ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS, readU32(image, kHeaderSize + kTagField));
    EXPECT_EQ(0u, readU32(image, kHeaderSize + kDataField));
    EXPECT_EQ(ANDROID_SENSOR_EXPOSURE_TIME, readU32(image, kHeaderSize + kEntrySize + kTagField));
    EXPECT_EQ(16u, readU32(image, kHeaderSize + kEntrySize + kDataField));
}

TEST(PacketImageTest, DataCapacityIsStoredUnroundedButTheSizeIsRounded) {
    MetadataPtr metadata(allocate_camera_metadata(10, 100));
    std::vector<uint8_t> header(bytesOf(metadata.get()));
    header.resize(kHeaderSize);
    EXPECT_EQ(hexBytes(R"(
0000: 38 01 00 00 01 00 00 00 00 00 00 00 00 00 00 00
0010: 0a 00 00 00 30 00 00 00 00 00 00 00 64 00 00 00
0020: d0 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff)"),
              header);
}

TEST(PacketSizeTest, SizesFollowTheRoundingRules) {
    struct Case {
        size_t entries, data, size;
    };
    for (const Case& c : {Case{0, 0, 48}, Case{0, 1, 56}, Case{1, 0, 64}, Case{1, 1, 72},
                          Case{2, 24, 104}, Case{3, 9, 112}, Case{10, 100, 312}}) {
        SCOPED_TRACE(testing::Message() << c.entries << " entries, " << c.data << " bytes");
        EXPECT_EQ(c.size, calculate_camera_metadata_size(c.entries, c.data));
        MetadataPtr metadata(allocate_camera_metadata(c.entries, c.data));
        EXPECT_EQ(c.size, get_camera_metadata_size(metadata.get()));
        EXPECT_EQ(c.entries, get_camera_metadata_entry_capacity(metadata.get()));
        EXPECT_EQ(c.data, get_camera_metadata_data_capacity(metadata.get()));
    }
    EXPECT_EQ(8u, get_camera_metadata_alignment());
}

TEST(PacketSizeTest, EntryDataSizeCountsOnlyOutOfLineBytes) {
    const size_t kExpected[][6] = {{0, 0, 0, 0, 0, 8},       // byte
                                   {0, 0, 8, 16, 16, 24},    // int32
                                   {0, 0, 8, 16, 16, 24},    // float
                                   {0, 8, 16, 24, 32, 40},   // int64
                                   {0, 8, 16, 24, 32, 40},   // double
                                   {0, 8, 16, 24, 32, 40}};  // rational
    for (uint8_t type = 0; type < NUM_TYPES; ++type) {
        for (size_t count = 0; count < 6; ++count) {
            EXPECT_EQ(kExpected[type][count], calculate_camera_metadata_entry_data_size(type, count))
                    << camera_metadata_type_names[type] << " x" << count;
        }
    }
    EXPECT_EQ(0u, calculate_camera_metadata_entry_data_size(NUM_TYPES, 100));
}

TEST(PacketSizeTest, CompactSizeIgnoresSpareCapacity) {
    MetadataPtr metadata(allocate_camera_metadata(5, 100));
    int64_t exposure = 1;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure,
                                           1));
    EXPECT_EQ(calculate_camera_metadata_size(1, 8),
              get_camera_metadata_compact_size(metadata.get()));
    EXPECT_EQ(calculate_camera_metadata_size(5, 100), get_camera_metadata_size(metadata.get()));
}

TEST(PlaceTest, WritesOnlyTheHeaderAndReportsTheNeededSize) {
    std::vector<uint8_t> buffer(200, 0xab);
    camera_metadata_t* metadata = place_camera_metadata(buffer.data(), buffer.size(), 2, 10);
    ASSERT_EQ(static_cast<void*>(buffer.data()), metadata);
    EXPECT_EQ(calculate_camera_metadata_size(2, 10), readU32(buffer, kSizeField));
    EXPECT_EQ(80u, readU32(buffer, kDataStartField));
    EXPECT_EQ(0xababababu, readU32(buffer, kPaddingField));
    for (size_t i = kHeaderSize; i < buffer.size(); ++i) ASSERT_EQ(0xab, buffer[i]) << i;
    EXPECT_EQ(CAMERA_METADATA_INVALID_VENDOR_ID, get_camera_metadata_vendor_id(metadata));
}

TEST(PlaceTest, RefusesABufferTooSmall) {
    std::vector<uint8_t> buffer(64);
    EXPECT_EQ(nullptr, place_camera_metadata(buffer.data(), 47, 0, 0));
    EXPECT_EQ(nullptr, place_camera_metadata(buffer.data(), 63, 1, 0));
    EXPECT_NE(nullptr, place_camera_metadata(buffer.data(), 64, 1, 0));
}

TEST(PlaceTest, RefusesCapacitiesBeyondThirtyTwoBitSizes) {
    std::vector<uint8_t> buffer(64);
    EXPECT_EQ(nullptr, place_camera_metadata(buffer.data(), SIZE_MAX, SIZE_MAX / 8, 0));
    EXPECT_EQ(nullptr, place_camera_metadata(buffer.data(), SIZE_MAX, 0, UINT32_MAX));
    EXPECT_EQ(nullptr, allocate_camera_metadata(SIZE_MAX / 16, 0));
}

TEST(CopyTest, CopyIsCompactAndKeepsFlagsAndVendorId) {
    MetadataPtr source(allocate_camera_metadata(10, 200));
    int64_t exposure = 5;
    int32_t requestId = 7;
    ASSERT_EQ(0,
              add_camera_metadata_entry(source.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(source.get(), ANDROID_REQUEST_ID, &requestId, 1));
    ASSERT_EQ(0, sort_camera_metadata(source.get()));
    set_camera_metadata_vendor_id(source.get(), 77);

    size_t compact = get_camera_metadata_compact_size(source.get());
    std::vector<uint8_t> buffer(compact + 8);
    EXPECT_EQ(nullptr, copy_camera_metadata(buffer.data(), compact - 1, source.get()));
    camera_metadata_t* copy = copy_camera_metadata(buffer.data(), buffer.size(), source.get());
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(compact, get_camera_metadata_size(copy));
    EXPECT_EQ(2u, get_camera_metadata_entry_capacity(copy));
    EXPECT_EQ(8u, get_camera_metadata_data_capacity(copy));
    EXPECT_EQ(77u, get_camera_metadata_vendor_id(copy));
    EXPECT_EQ(0, validate_camera_metadata_structure(copy, &compact));

    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(0, find_camera_metadata_ro_entry(copy, ANDROID_SENSOR_EXPOSURE_TIME, &entry));
    EXPECT_EQ(5, entry.data.i64[0]);
    EXPECT_EQ(1u, bytesOf(copy)[kFlagsField]);
}

TEST(CloneTest, CloneOfACompactPacketIsByteIdentical) {
    MetadataPtr metadata = exposureThenFocalLengths();
    MetadataPtr clone(clone_camera_metadata(metadata.get()));
    EXPECT_EQ(bytesOf(metadata.get()), bytesOf(clone.get()));
}

TEST(CloneTest, CloneDropsSpareCapacityAndTakesTheVendorId) {
    MetadataPtr metadata(allocate_camera_metadata(8, 64));
    int32_t requestId = 3;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &requestId, 1));
    set_camera_metadata_vendor_id(metadata.get(), 9);
    MetadataPtr clone(clone_camera_metadata(metadata.get()));
    EXPECT_EQ(get_camera_metadata_compact_size(metadata.get()),
              get_camera_metadata_size(clone.get()));
    EXPECT_EQ(9u, get_camera_metadata_vendor_id(clone.get()));
}

TEST(CheckedCopyTest, KeepsOnlyValidPackets) {
    MetadataPtr metadata = exposureThenFocalLengths();
    std::vector<uint8_t> image = bytesOf(metadata.get());

    EXPECT_EQ(nullptr, allocate_copy_camera_metadata_checked(metadata.get(), 40));
    EXPECT_EQ(nullptr, allocate_copy_camera_metadata_checked(metadata.get(), image.size() - 1));

    MetadataPtr copy(allocate_copy_camera_metadata_checked(metadata.get(), image.size()));
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(image, bytesOf(copy.get()));

    // Extra trailing bytes are allowed and copied along.
    image.resize(image.size() + 16, 0);
    MetadataPtr larger(allocate_copy_camera_metadata_checked(
            reinterpret_cast<const camera_metadata_t*>(image.data()), image.size()));
    EXPECT_NE(nullptr, larger);

    image[kHeaderSize + kTypeField] = TYPE_INT32;  // exposure time is an int64 tag
    EXPECT_EQ(nullptr,
              allocate_copy_camera_metadata_checked(
                      reinterpret_cast<const camera_metadata_t*>(image.data()), image.size()));
}

class AppendTest : public testing::Test {
protected:
    static MetadataPtr withRequestIdAndExposure(size_t spareEntries, size_t spareData) {
        MetadataPtr metadata(allocate_camera_metadata(2 + spareEntries, 8 + spareData));
        int32_t requestId = 1;
        int64_t exposure = 100;
        EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME,
                                               &exposure, 1));
        EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &requestId, 1));
        return metadata;
    }
};

TEST_F(AppendTest, AppendedDataOffsetsFollowTheExistingData) {
    MetadataPtr dst = withRequestIdAndExposure(4, 40);
    MetadataPtr src(allocate_camera_metadata(2, 24));
    int64_t frameDuration = 33000000;
    ASSERT_EQ(0, add_camera_metadata_entry(src.get(), ANDROID_SENSOR_FRAME_DURATION, &frameDuration,
                                           1));
    ASSERT_EQ(0, add_camera_metadata_entry(src.get(), ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS,
                                           kFocalLengths, 3));

    ASSERT_EQ(0, append_camera_metadata(dst.get(), src.get()));
    EXPECT_EQ(4u, get_camera_metadata_entry_count(dst.get()));
    EXPECT_EQ(32u, get_camera_metadata_data_count(dst.get()));
    std::vector<uint8_t> image = bytesOf(dst.get());
    EXPECT_EQ(8u, readU32(image, kHeaderSize + 2 * kEntrySize + kDataField));
    EXPECT_EQ(16u, readU32(image, kHeaderSize + 3 * kEntrySize + kDataField));

    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(0, find_camera_metadata_ro_entry(dst.get(), ANDROID_SENSOR_FRAME_DURATION, &entry));
    EXPECT_EQ(frameDuration, entry.data.i64[0]);
    ASSERT_EQ(0, find_camera_metadata_ro_entry(dst.get(), ANDROID_LENS_INFO_AVAILABLE_FOCAL_LENGTHS,
                                               &entry));
    EXPECT_EQ(4.75f, entry.data.f[2]);
    ASSERT_EQ(0, find_camera_metadata_ro_entry(dst.get(), ANDROID_SENSOR_EXPOSURE_TIME, &entry));
    EXPECT_EQ(100, entry.data.i64[0]);
}

TEST_F(AppendTest, SortedMarkFollowsWhichSideHadEntries) {
    struct Case {
        const char* name;
        bool dstHasEntries, dstSorted, srcHasEntries, srcSorted, expectSorted;
    };
    const Case kCases[] = {
            {"onto empty sorted dst, unsorted src", false, true, true, false, true},
            {"onto empty unsorted dst, sorted src", false, false, true, true, true},
            {"onto empty unsorted dst, unsorted src", false, false, true, false, false},
            {"both with entries", true, true, true, true, false},
            {"empty src keeps sorted dst", true, true, false, true, true},
            {"empty src keeps unsorted dst", true, false, false, true, false},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        MetadataPtr dst = c.dstHasEntries ? withRequestIdAndExposure(2, 8)
                                          : MetadataPtr(allocate_camera_metadata(2, 8));
        MetadataPtr src = c.srcHasEntries ? withRequestIdAndExposure(0, 0)
                                          : MetadataPtr(allocate_camera_metadata(0, 0));
        if (c.dstSorted) sort_camera_metadata(dst.get());
        if (c.srcSorted) sort_camera_metadata(src.get());
        ASSERT_EQ(0, append_camera_metadata(dst.get(), src.get()));
        EXPECT_EQ(c.expectSorted ? 1u : 0u, readU32(bytesOf(dst.get()), kFlagsField));
    }
}

TEST_F(AppendTest, FailsWithoutRoomOrAcrossVendors) {
    MetadataPtr src = withRequestIdAndExposure(0, 0);
    MetadataPtr noEntryRoom(allocate_camera_metadata(1, 100));
    MetadataPtr noDataRoom(allocate_camera_metadata(10, 7));
    EXPECT_EQ(1, append_camera_metadata(noEntryRoom.get(), src.get()));
    EXPECT_EQ(1, append_camera_metadata(noDataRoom.get(), src.get()));
    EXPECT_EQ(0u, get_camera_metadata_entry_count(noEntryRoom.get()));

    MetadataPtr dst(allocate_camera_metadata(4, 16));
    set_camera_metadata_vendor_id(dst.get(), 1);
    set_camera_metadata_vendor_id(src.get(), 2);
    EXPECT_EQ(1, append_camera_metadata(dst.get(), src.get()));
    set_camera_metadata_vendor_id(src.get(), 1);
    EXPECT_EQ(0, append_camera_metadata(dst.get(), src.get()));
}

TEST_F(AppendTest, DstWithoutVendorTakesTheSourceVendor) {
    MetadataPtr src = withRequestIdAndExposure(0, 0);
    set_camera_metadata_vendor_id(src.get(), 42);
    MetadataPtr dst(allocate_camera_metadata(2, 8));
    ASSERT_EQ(0, append_camera_metadata(dst.get(), src.get()));
    EXPECT_EQ(42u, get_camera_metadata_vendor_id(dst.get()));
}

TEST(NullArgumentTest, EveryFunctionFailsCleanly) {
    MetadataPtr metadata(allocate_camera_metadata(1, 8));
    int32_t value = 1;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &value, 1));
    camera_metadata_t* m = metadata.get();
    camera_metadata_entry_t entry;
    camera_metadata_ro_entry_t roEntry;
    std::vector<uint8_t> buffer(256);

    EXPECT_EQ(1u, get_camera_metadata_size(nullptr));
    EXPECT_EQ(1u, get_camera_metadata_compact_size(nullptr));
    EXPECT_EQ(0u, get_camera_metadata_entry_count(nullptr));
    EXPECT_EQ(0u, get_camera_metadata_entry_capacity(nullptr));
    EXPECT_EQ(0u, get_camera_metadata_data_count(nullptr));
    EXPECT_EQ(0u, get_camera_metadata_data_capacity(nullptr));
    EXPECT_EQ(CAMERA_METADATA_INVALID_VENDOR_ID, get_camera_metadata_vendor_id(nullptr));
    set_camera_metadata_vendor_id(nullptr, 1);
    free_camera_metadata(nullptr);

    EXPECT_EQ(nullptr, place_camera_metadata(nullptr, 100, 0, 0));
    EXPECT_EQ(nullptr, allocate_copy_camera_metadata_checked(nullptr, 100));
    EXPECT_EQ(nullptr, copy_camera_metadata(buffer.data(), buffer.size(), nullptr));
    EXPECT_EQ(nullptr, copy_camera_metadata(nullptr, buffer.size(), m));
    EXPECT_EQ(nullptr, clone_camera_metadata(nullptr));
    EXPECT_EQ(1, append_camera_metadata(nullptr, m));
    EXPECT_EQ(1, append_camera_metadata(m, nullptr));

    EXPECT_EQ(1, add_camera_metadata_entry(nullptr, ANDROID_REQUEST_ID, &value, 1));
    EXPECT_EQ(1, sort_camera_metadata(nullptr));
    EXPECT_EQ(1, get_camera_metadata_entry(nullptr, 0, &entry));
    EXPECT_EQ(1, get_camera_metadata_entry(m, 0, nullptr));
    EXPECT_EQ(1, get_camera_metadata_ro_entry(nullptr, 0, &roEntry));
    EXPECT_EQ(1, find_camera_metadata_entry(nullptr, ANDROID_REQUEST_ID, &entry));
    EXPECT_EQ(1, find_camera_metadata_ro_entry(nullptr, ANDROID_REQUEST_ID, &roEntry));
    EXPECT_EQ(1, delete_camera_metadata_entry(nullptr, 0));
    EXPECT_EQ(1, update_camera_metadata_entry(nullptr, 0, &value, 1, nullptr));
    EXPECT_EQ(1, update_camera_metadata_entry(m, 0, nullptr, 1, nullptr));

    EXPECT_EQ(0, camera_metadata_enum_snprint(ANDROID_CONTROL_AE_MODE, 0, nullptr, 0));
    uint32_t enumValue;
    EXPECT_EQ(-1, camera_metadata_enum_value(ANDROID_CONTROL_AE_MODE, nullptr, 2, &enumValue));
    EXPECT_EQ(-1, camera_metadata_enum_value(ANDROID_CONTROL_AE_MODE, "ON", 2, nullptr));
    EXPECT_EQ(nullptr, get_camera_metadata_permission_needed(nullptr));

    // The packet came through untouched.
    EXPECT_EQ(0, find_camera_metadata_ro_entry(m, ANDROID_REQUEST_ID, &roEntry));
    EXPECT_EQ(1, roEntry.data.i32[0]);
}
