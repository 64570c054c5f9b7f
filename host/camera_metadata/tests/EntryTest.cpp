// Adding, finding, sorting, updating and deleting entries, including the platform's quirks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>

#include <vector>

#include "MetadataTestUtil.h"

using namespace metadata_test;
using android::testing::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

std::vector<int32_t> int32Values(const camera_metadata_ro_entry_t& entry) {
    return {entry.data.i32, entry.data.i32 + entry.count};
}

std::vector<int32_t> findInt32(const camera_metadata_t* metadata, uint32_t tag) {
    camera_metadata_ro_entry_t entry;
    EXPECT_EQ(0, find_camera_metadata_ro_entry(metadata, tag, &entry));
    return int32Values(entry);
}

// Three out-of-line int32 entries: {1,2} at data offset 0, {3,4,5} at 8, {6,7} at 24.
class EntryTest : public testing::Test {
protected:
    void SetUp() override {
        mMetadata.reset(allocate_camera_metadata(5, 64));
        const int32_t fps[] = {1, 2}, crop[] = {3, 4, 5}, sensitivity[] = {6, 7};
        ASSERT_EQ(0, add_camera_metadata_entry(mMetadata.get(), ANDROID_CONTROL_AE_TARGET_FPS_RANGE,
                                               fps, 2));
        ASSERT_EQ(0,
                  add_camera_metadata_entry(mMetadata.get(), ANDROID_SCALER_CROP_REGION, crop, 3));
        ASSERT_EQ(0,
                  add_camera_metadata_entry(mMetadata.get(), ANDROID_SENSOR_INFO_SENSITIVITY_RANGE,
                                            sensitivity, 2));
    }

    uint32_t dataOffsetOf(size_t index) const {
        return readU32(bytesOf(mMetadata.get()), kHeaderSize + index * kEntrySize + kDataField);
    }

    MetadataPtr mMetadata;
};

}  // namespace

TEST_F(EntryTest, EveryTypeReadsBackThroughFind) {
    MetadataPtr metadata(allocate_camera_metadata(6, 64));
    const uint8_t mode = ANDROID_CONTROL_AE_MODE_ON;
    const float aperture = 1.8f;
    const int64_t timestamp = -5;
    const double gps[] = {1.5, -2.25, 3.0};
    const camera_metadata_rational_t step = {1, 3};
    const int32_t orientation = 90;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &mode, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_LENS_APERTURE, &aperture, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_TIMESTAMP, &timestamp, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_GPS_COORDINATES, gps, 3));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_COMPENSATION_STEP,
                                           &step, 1));
    ASSERT_EQ(0,
              add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_ORIENTATION, &orientation, 1));

    for (bool sorted : {false, true}) {
        SCOPED_TRACE(sorted ? "sorted" : "unsorted");
        if (sorted) {
            ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
        }
        camera_metadata_ro_entry_t entry;
        ASSERT_EQ(0, find_camera_metadata_ro_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &entry));
        EXPECT_EQ(TYPE_BYTE, entry.type);
        EXPECT_EQ(mode, entry.data.u8[0]);
        ASSERT_EQ(0, find_camera_metadata_ro_entry(metadata.get(), ANDROID_LENS_APERTURE, &entry));
        EXPECT_EQ(aperture, entry.data.f[0]);
        ASSERT_EQ(0,
                  find_camera_metadata_ro_entry(metadata.get(), ANDROID_SENSOR_TIMESTAMP, &entry));
        EXPECT_EQ(timestamp, entry.data.i64[0]);
        ASSERT_EQ(0, find_camera_metadata_ro_entry(metadata.get(), ANDROID_JPEG_GPS_COORDINATES,
                                                   &entry));
        EXPECT_EQ(3u, entry.count);
        EXPECT_EQ(-2.25, entry.data.d[1]);
        ASSERT_EQ(0, find_camera_metadata_ro_entry(metadata.get(),
                                                   ANDROID_CONTROL_AE_COMPENSATION_STEP, &entry));
        EXPECT_EQ(3, entry.data.r[0].denominator);
        EXPECT_THAT(findInt32(metadata.get(), ANDROID_JPEG_ORIENTATION), ElementsAre(90));
    }
}

TEST_F(EntryTest, EntryViewPointsIntoThePacket) {
    camera_metadata_entry_t entry;
    ASSERT_EQ(0, find_camera_metadata_entry(mMetadata.get(), ANDROID_SCALER_CROP_REGION, &entry));
    EXPECT_EQ(1u, entry.index);
    entry.data.i32[0] = 30;
    EXPECT_THAT(findInt32(mMetadata.get(), ANDROID_SCALER_CROP_REGION), ElementsAre(30, 4, 5));
}

TEST(AddEntryTest, ZeroCountEntryNeedsNoData) {
    MetadataPtr metadata(allocate_camera_metadata(1, 0));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SCALER_CROP_REGION, nullptr, 0));
    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(0, get_camera_metadata_ro_entry(metadata.get(), 0, &entry));
    EXPECT_EQ(0u, entry.count);
    EXPECT_NE(nullptr, entry.data.u8);
    EXPECT_EQ(0, validate_camera_metadata_structure(metadata.get(), nullptr));
}

TEST(AddEntryTest, RejectsWhatItCannotStore) {
    MetadataPtr metadata(allocate_camera_metadata(2, 8));
    const int64_t values[] = {1, 2};
    struct Case {
        const char* name;
        uint32_t tag;
        const void* data;
        size_t count;
    };
    const Case kCases[] = {
            {"data missing", ANDROID_SENSOR_EXPOSURE_TIME, nullptr, 1},
            {"vendor tag without vendor tables", 0x80000001u, values, 1},
            {"section beyond the Android sections", 0x00400000u, values, 1},
            {"tag past its section's end", ANDROID_SENSOR_END, values, 1},
            {"data past the capacity", ANDROID_SENSOR_EXPOSURE_TIME, values, 2},
    };
    for (const Case& c : kCases) {
        EXPECT_EQ(1, add_camera_metadata_entry(metadata.get(), c.tag, c.data, c.count)) << c.name;
    }
    EXPECT_EQ(0u, get_camera_metadata_entry_count(metadata.get()));

    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, values, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_QUALITY, values, 1));
    EXPECT_EQ(1, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_QUALITY, values, 1))
            << "entries full";
}

TEST(AddEntryTest, UnknownTagIsLogged) {
    LogCapture capture;
    MetadataPtr metadata(allocate_camera_metadata(1, 0));
    uint8_t value = 0;
    EXPECT_EQ(1, add_camera_metadata_entry(metadata.get(), 0x00400000u, &value, 1));
    EXPECT_THAT(capture.grep("Unknown tag"), Not(IsEmpty()));
}

TEST(AddEntryTest, AddingClearsTheSortedMark) {
    MetadataPtr metadata(allocate_camera_metadata(2, 0));
    uint8_t value = 1;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_QUALITY, &value, 1));
    ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &value, 1));
    EXPECT_EQ(0u, readU32(bytesOf(metadata.get()), kFlagsField));
    // Still found: the search falls back to scanning.
    camera_metadata_ro_entry_t entry;
    EXPECT_EQ(0, find_camera_metadata_ro_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &entry));
}

TEST_F(EntryTest, MissingTagIsNotFoundWhetherSortedOrNot) {
    camera_metadata_ro_entry_t entry;
    EXPECT_EQ(-2, find_camera_metadata_ro_entry(mMetadata.get(), ANDROID_JPEG_QUALITY, &entry));
    ASSERT_EQ(0, sort_camera_metadata(mMetadata.get()));
    EXPECT_EQ(-2, find_camera_metadata_ro_entry(mMetadata.get(), ANDROID_JPEG_QUALITY, &entry));
    EXPECT_EQ(-2, find_camera_metadata_ro_entry(mMetadata.get(), 0xffffffffu, &entry));

    MetadataPtr empty(allocate_camera_metadata(0, 0));
    ASSERT_EQ(0, sort_camera_metadata(empty.get()));
    EXPECT_EQ(-2, find_camera_metadata_ro_entry(empty.get(), ANDROID_JPEG_QUALITY, &entry));
}

TEST_F(EntryTest, FindWithoutAnEntryToFillFails) {
    EXPECT_EQ(1, find_camera_metadata_entry(mMetadata.get(), ANDROID_SCALER_CROP_REGION, nullptr));
    EXPECT_EQ(-2, find_camera_metadata_entry(mMetadata.get(), ANDROID_JPEG_QUALITY, nullptr));
}

TEST_F(EntryTest, GetRejectsAnIndexPastTheEntries) {
    camera_metadata_entry_t entry;
    EXPECT_EQ(0, get_camera_metadata_entry(mMetadata.get(), 2, &entry));
    EXPECT_EQ(1, get_camera_metadata_entry(mMetadata.get(), 3, &entry));
    EXPECT_EQ(1, delete_camera_metadata_entry(mMetadata.get(), 3));
    int32_t value = 0;
    EXPECT_EQ(1, update_camera_metadata_entry(mMetadata.get(), 3, &value, 1, nullptr));
}

TEST(SortTest, OrdersByTagAndKeepsDuplicatesInInsertionOrder) {
    MetadataPtr metadata(allocate_camera_metadata(4, 0));
    const int32_t first = 1, second = 2, other = 3;
    uint8_t quality = 90;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &first, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_QUALITY, &quality, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &second, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_PRECAPTURE_ID, &other,
                                           1));

    camera_metadata_ro_entry_t entry;
    EXPECT_THAT(findInt32(metadata.get(), ANDROID_REQUEST_ID), ElementsAre(1))
            << "an unsorted search takes the first match";
    ASSERT_EQ(0, sort_camera_metadata(metadata.get()));
    std::vector<uint32_t> tags;
    for (size_t i = 0; i < 4; ++i) {
        ASSERT_EQ(0, get_camera_metadata_ro_entry(metadata.get(), i, &entry));
        tags.push_back(entry.tag);
    }
    EXPECT_THAT(tags, ElementsAre(ANDROID_CONTROL_AE_PRECAPTURE_ID, ANDROID_JPEG_QUALITY,
                                  ANDROID_REQUEST_ID, ANDROID_REQUEST_ID));
    ASSERT_EQ(0, get_camera_metadata_ro_entry(metadata.get(), 3, &entry));
    EXPECT_EQ(2, entry.data.i32[0]);
}

// A sorted packet is searched with the C library's bsearch, which stops at the first probe that
// matches: among duplicates that is not necessarily the first one.
TEST(SortTest, SortedSearchFindsTheDuplicateThatBsearchProbes) {
    constexpr uint32_t kLow = ANDROID_CONTROL_AE_PRECAPTURE_ID;
    constexpr uint32_t kMid = ANDROID_REQUEST_ID;
    constexpr uint32_t kHigh = ANDROID_SENSOR_SENSITIVITY;
    struct Case {
        std::vector<uint32_t> tags;  // added in ascending order
        uint32_t wanted;
        int32_t foundIndex;  // the first probe that matches
    };
    const Case kCases[] = {
            {{kMid, kMid}, kMid, 1},
            {{kMid, kMid, kMid}, kMid, 1},
            {{kMid, kMid, kMid, kMid}, kMid, 2},
            {{kLow, kMid, kMid, kMid, kHigh}, kMid, 2},
            {{kLow, kLow, kMid, kHigh}, kLow, 1},
            {{kLow, kMid, kHigh, kHigh}, kHigh, 2},
    };
    for (const Case& c : kCases) {
        MetadataPtr metadata(allocate_camera_metadata(c.tags.size(), 0));
        for (size_t i = 0; i < c.tags.size(); ++i) {
            const int32_t index = static_cast<int32_t>(i);
            ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), c.tags[i], &index, 1));
        }
        // Marked sorted by hand, so that no sort can reorder the duplicates.
        std::vector<uint8_t> image = bytesOf(metadata.get());
        writeU32(image, kFlagsField, 1);
        TailBuffer sorted(image);
        EXPECT_THAT(findInt32(sorted.packet(), c.wanted), ElementsAre(c.foundIndex))
                << c.tags.size() << " entries, found index " << c.foundIndex;
    }
}

TEST(SortTest, APacketMarkedSortedIsLeftAsIs) {
    MetadataPtr metadata(allocate_camera_metadata(2, 0));
    uint8_t value = 1;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_QUALITY, &value, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &value, 1));
    std::vector<uint8_t> image = bytesOf(metadata.get());
    image[kFlagsField] = 1;
    TailBuffer marked(image);
    ASSERT_EQ(0, sort_camera_metadata(marked.packet()));
    EXPECT_EQ(image, bytesOf(marked.packet()));
}

TEST_F(EntryTest, UpdateToTheSameRoundedSizeRewritesInPlace) {
    const int32_t values[] = {30, 40, 50, 60};  // 16 bytes, like the 3 it replaces
    camera_metadata_entry_t updated;
    ASSERT_EQ(0, update_camera_metadata_entry(mMetadata.get(), 1, values, 4, &updated));
    EXPECT_EQ(8u, dataOffsetOf(1));
    EXPECT_EQ(4u, updated.count);
    EXPECT_EQ(60, updated.data.i32[3]);
    EXPECT_EQ(32u, get_camera_metadata_data_count(mMetadata.get()));
}

TEST_F(EntryTest, GrowingAnEntryMovesItsDataToTheEnd) {
    const int32_t values[] = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(0, update_camera_metadata_entry(mMetadata.get(), 0, values, 6, nullptr));
    // The later blocks close the gap, then the grown block follows them.
    EXPECT_EQ(0u, dataOffsetOf(1));
    EXPECT_EQ(16u, dataOffsetOf(2));
    EXPECT_EQ(24u, dataOffsetOf(0));
    EXPECT_EQ(48u, get_camera_metadata_data_count(mMetadata.get()));
    EXPECT_THAT(findInt32(mMetadata.get(), ANDROID_CONTROL_AE_TARGET_FPS_RANGE),
                ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_THAT(findInt32(mMetadata.get(), ANDROID_SCALER_CROP_REGION), ElementsAre(3, 4, 5));
    EXPECT_THAT(findInt32(mMetadata.get(), ANDROID_SENSOR_INFO_SENSITIVITY_RANGE),
                ElementsAre(6, 7));
    size_t size = get_camera_metadata_size(mMetadata.get());
    EXPECT_EQ(0, validate_camera_metadata_structure(mMetadata.get(), &size));
}

TEST_F(EntryTest, UpdatePastTheDataCapacityChangesNothing) {
    std::vector<uint8_t> before = bytesOf(mMetadata.get());
    std::vector<int32_t> values(16, 9);  // 64 bytes where 32 are free
    EXPECT_EQ(1, update_camera_metadata_entry(mMetadata.get(), 0, values.data(), values.size(),
                                              nullptr));
    EXPECT_EQ(before, bytesOf(mMetadata.get()));
}

TEST(UpdateEntryTest, ShrinkingToInlineKeepsTheUnwrittenOffsetBytes) {
    MetadataPtr metadata(allocate_camera_metadata(2, 264));
    const std::vector<uint8_t> first(256, 7);
    const uint8_t second[6] = {1, 2, 3, 4, 5, 6};
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_JPEG_GPS_PROCESSING_METHOD,
                                           first.data(), first.size()));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(),
                                           ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS, second, 6));
    const size_t secondData = kHeaderSize + kEntrySize + kDataField;
    ASSERT_EQ(256u, readU32(bytesOf(metadata.get()), secondData));

    const uint8_t shorter = 0xaa;
    ASSERT_EQ(0, update_camera_metadata_entry(metadata.get(), 1, &shorter, 1, nullptr));
    EXPECT_EQ(0x000001aau, readU32(bytesOf(metadata.get()), secondData));
    EXPECT_EQ(256u, get_camera_metadata_data_count(metadata.get()));
    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(0, get_camera_metadata_ro_entry(metadata.get(), 1, &entry));
    EXPECT_EQ(0xaa, entry.data.u8[0]);
}

TEST(UpdateEntryTest, UpdatingToNoElementsLeavesAStaleOffsetThatFailsValidation) {
    MetadataPtr metadata(allocate_camera_metadata(2, 16));
    const int64_t first = 1, second = 2;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &first, 1));
    ASSERT_EQ(0,
              add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_FRAME_DURATION, &second, 1));
    ASSERT_EQ(0, update_camera_metadata_entry(metadata.get(), 1, nullptr, 0, nullptr));
    EXPECT_EQ(8u, readU32(bytesOf(metadata.get()), kHeaderSize + kEntrySize + kDataField));
    EXPECT_EQ(1, validate_camera_metadata_structure(metadata.get(), nullptr));
}

TEST_F(EntryTest, DeleteClosesTheGapAndKeepsTheSortedMark) {
    ASSERT_EQ(0, sort_camera_metadata(mMetadata.get()));
    // Sorted order: AE target fps range, scaler crop region, sensitivity range.
    ASSERT_EQ(0, delete_camera_metadata_entry(mMetadata.get(), 1));
    std::vector<uint8_t> after = bytesOf(mMetadata.get());

    EXPECT_EQ(2u, get_camera_metadata_entry_count(mMetadata.get()));
    EXPECT_EQ(16u, get_camera_metadata_data_count(mMetadata.get()));
    EXPECT_EQ(1u, readU32(after, kFlagsField));
    EXPECT_EQ(0u, dataOffsetOf(0));
    EXPECT_EQ(8u, dataOffsetOf(1));
    EXPECT_THAT(findInt32(mMetadata.get(), ANDROID_SENSOR_INFO_SENSITIVITY_RANGE),
                ElementsAre(6, 7));
    camera_metadata_ro_entry_t entry;
    EXPECT_EQ(-2,
              find_camera_metadata_ro_entry(mMetadata.get(), ANDROID_SCALER_CROP_REGION, &entry));

    // The vacated entry slot still holds the record that moved down, and the data tail keeps
    // the old sensitivity values.
    size_t movedSlot = kHeaderSize + kEntrySize;
    EXPECT_TRUE(std::equal(after.begin() + movedSlot, after.begin() + movedSlot + kEntrySize,
                           after.begin() + movedSlot + kEntrySize));
    size_t dataStart = readU32(after, kDataStartField);
    EXPECT_EQ(6u, readU32(after, dataStart + 24));
}
