// The tag table, vendor tag tables, enum value names and the debug listing.
#include <camera_metadata_hidden.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <system/camera_metadata.h>

#include <string>

#include "MetadataTestUtil.h"

using namespace metadata_test;
using testing::HasSubstr;
using testing::Not;

namespace {

struct Section {
    const char* name;
    uint32_t tagCount;
};

const Section kSections[ANDROID_SECTION_COUNT] = {
        {"android.colorCorrection", 5},
        {"android.control", 60},
        {"android.demosaic", 1},
        {"android.edge", 3},
        {"android.flash", 11},
        {"android.flash.info", 4},
        {"android.hotPixel", 2},
        {"android.jpeg", 10},
        {"android.lens", 16},
        {"android.lens.info", 8},
        {"android.noiseReduction", 3},
        {"android.quirks", 5},
        {"android.request", 22},
        {"android.scaler", 28},
        {"android.sensor", 35},
        {"android.sensor.info", 15},
        {"android.shading", 3},
        {"android.statistics", 23},
        {"android.statistics.info", 9},
        {"android.tonemap", 8},
        {"android.led", 2},
        {"android.info", 6},
        {"android.blackLevel", 1},
        {"android.sync", 2},
        {"android.reprocess", 2},
        {"android.depth", 15},
        {"android.logicalMultiCamera", 4},
        {"android.distortionCorrection", 2},
        {"android.heic", 6},
        {"android.heic.info", 2},
        {"android.automotive", 1},
        {"android.automotive.lens", 1},
        {"android.extension", 2},
        {"android.jpegr", 6},
};

// Sample vendor section: 0x80000000 is an int32 "vendor.sample.gain", nothing else exists.
constexpr uint32_t kVendorTag = 0x80000000u;

const char* vendorSectionName(const vendor_tag_ops_t*, uint32_t tag) {
    return tag == kVendorTag ? "vendor.sample" : nullptr;
}
const char* vendorTagName(const vendor_tag_ops_t*, uint32_t tag) {
    return tag == kVendorTag ? "gain" : nullptr;
}
int vendorTagType(const vendor_tag_ops_t*, uint32_t tag) {
    return tag == kVendorTag ? TYPE_INT32 : -1;
}

// A cache holding two vendors: id 1 calls the tag "one.gain" (byte), id 2 "two.gain" (float).
const char* cacheSectionName(uint32_t, metadata_vendor_id_t id) {
    return id == 1 ? "one" : "two";
}
const char* cacheTagName(uint32_t, metadata_vendor_id_t) {
    return "gain";
}
int cacheTagType(uint32_t, metadata_vendor_id_t id) {
    return id == 1 ? TYPE_BYTE : TYPE_FLOAT;
}

// Installs vendor tag tables for one test and removes them afterwards.
class VendorTagTest : public testing::Test {
protected:
    void SetUp() override {
        mOps.get_section_name = vendorSectionName;
        mOps.get_tag_name = vendorTagName;
        mOps.get_tag_type = vendorTagType;
        mCacheOps.get_section_name = cacheSectionName;
        mCacheOps.get_tag_name = cacheTagName;
        mCacheOps.get_tag_type = cacheTagType;
        ASSERT_EQ(0, set_camera_metadata_vendor_ops(&mOps));
    }
    void TearDown() override {
        set_camera_metadata_vendor_ops(nullptr);
        set_camera_metadata_vendor_cache_ops(nullptr);
    }

    vendor_tag_ops_t mOps{};
    vendor_tag_cache_ops mCacheOps{};
};

std::string dumpToString(const camera_metadata_t* metadata, int verbosity, int indentation = 0) {
    FILE* file = tmpfile();
    dump_indented_camera_metadata(metadata, fileno(file), verbosity, indentation);
    rewind(file);
    std::string text;
    char chunk[256];
    size_t length;
    while ((length = fread(chunk, 1, sizeof(chunk), file)) > 0) text.append(chunk, length);
    fclose(file);
    return text;
}

int countOf(const std::string& text, const std::string& needle) {
    int count = 0;
    for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace

TEST(TagTableTest, SectionsHaveTheirNamesAndBounds) {
    uint32_t total = 0;
    for (uint32_t section = 0; section < ANDROID_SECTION_COUNT; ++section) {
        SCOPED_TRACE(kSections[section].name);
        uint32_t start = section << 16;
        EXPECT_STREQ(kSections[section].name, camera_metadata_section_names[section]);
        EXPECT_EQ(start, camera_metadata_section_bounds[section][0]);
        EXPECT_EQ(start + kSections[section].tagCount, camera_metadata_section_bounds[section][1]);
        total += kSections[section].tagCount;

        for (uint32_t tag = start; tag < start + kSections[section].tagCount; ++tag) {
            EXPECT_STREQ(kSections[section].name, get_camera_metadata_section_name(tag));
            EXPECT_NE(nullptr, get_camera_metadata_tag_name(tag)) << std::hex << tag;
            int type = get_camera_metadata_tag_type(tag);
            EXPECT_TRUE(type >= 0 && type < NUM_TYPES) << std::hex << tag;
        }
        // One past the last tag keeps its section but is no tag.
        uint32_t end = start + kSections[section].tagCount;
        EXPECT_STREQ(kSections[section].name, get_camera_metadata_section_name(end));
        EXPECT_EQ(nullptr, get_camera_metadata_tag_name(end));
        EXPECT_EQ(-1, get_camera_metadata_tag_type(end));
    }
    EXPECT_EQ(323u, total);
}

TEST(TagTableTest, SampleTagsHaveTheirValuesNamesAndTypes) {
    struct Case {
        uint32_t tag, value;
        const char* name;
        int type;
    };
    const Case kCases[] = {
            {ANDROID_COLOR_CORRECTION_MODE, 0x00000000, "mode", TYPE_BYTE},
            {ANDROID_COLOR_CORRECTION_TRANSFORM, 0x00000001, "transform", TYPE_RATIONAL},
            {ANDROID_CONTROL_AE_TARGET_FPS_RANGE, 0x00010005, "aeTargetFpsRange", TYPE_INT32},
            {ANDROID_CONTROL_LOW_LIGHT_BOOST_STATE, 0x0001003B, "lowLightBoostState", TYPE_BYTE},
            {ANDROID_FLASH_TORCH_STRENGTH_DEFAULT_LEVEL, 0x0004000A, "torchStrengthDefaultLevel",
             TYPE_INT32},
            {ANDROID_JPEG_GPS_COORDINATES, 0x00070000, "gpsCoordinates", TYPE_DOUBLE},
            {ANDROID_LENS_APERTURE, 0x00080000, "aperture", TYPE_FLOAT},
            {ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP, 0x000C0015,
             "availableColorSpaceProfilesMap", TYPE_INT64},
            {ANDROID_SCALER_RAW_CROP_REGION, 0x000D001B, "rawCropRegion", TYPE_INT32},
            {ANDROID_SENSOR_TIMESTAMP, 0x000E0010, "timestamp", TYPE_INT64},
            {ANDROID_SENSOR_READOUT_TIMESTAMP, 0x000E0022, "readoutTimestamp", TYPE_BYTE},
            {ANDROID_SENSOR_INFO_BINNING_FACTOR, 0x000F000E, "binningFactor", TYPE_INT32},
            {ANDROID_STATISTICS_LENS_INTRINSIC_SAMPLES, 0x00110016, "lensIntrinsicSamples",
             TYPE_FLOAT},
            {ANDROID_INFO_DEVICE_ID, 0x00150005, "deviceId", TYPE_INT32},
            {ANDROID_SYNC_FRAME_NUMBER, 0x00170000, "frameNumber", TYPE_INT64},
            {ANDROID_LOGICAL_MULTI_CAMERA_PHYSICAL_IDS, 0x001A0000, "physicalIds", TYPE_BYTE},
            {ANDROID_JPEGR_AVAILABLE_JPEG_R_STALL_DURATIONS_MAXIMUM_RESOLUTION, 0x00210005,
             "availableJpegRStallDurationsMaximumResolution", TYPE_INT64},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.value, c.tag);
        EXPECT_STREQ(c.name, get_camera_metadata_tag_name(c.tag));
        EXPECT_EQ(c.type, get_camera_metadata_tag_type(c.tag));
    }
}

TEST(TagTableTest, TagsOutsideTheAndroidSectionsAreUnknown) {
    for (uint32_t tag : {0x00220000u, 0x7fff0000u, 0x80000000u, 0xffffffffu}) {
        SCOPED_TRACE(testing::Message() << std::hex << tag);
        EXPECT_EQ(nullptr, get_camera_metadata_section_name(tag));
        EXPECT_EQ(nullptr, get_camera_metadata_tag_name(tag));
        EXPECT_EQ(-1, get_camera_metadata_tag_type(tag));
    }
}

TEST_F(VendorTagTest, InstalledVendorOpsDescribeVendorTags) {
    EXPECT_STREQ("vendor.sample", get_camera_metadata_section_name(kVendorTag));
    EXPECT_STREQ("gain", get_camera_metadata_tag_name(kVendorTag));
    EXPECT_EQ(TYPE_INT32, get_camera_metadata_tag_type(kVendorTag));
    EXPECT_EQ(-1, get_camera_metadata_tag_type(kVendorTag + 1));
    // Android tags are still answered by the table.
    EXPECT_STREQ("timestamp", get_camera_metadata_tag_name(ANDROID_SENSOR_TIMESTAMP));

    MetadataPtr metadata(allocate_camera_metadata(1, 0));
    int32_t gain = 3;
    EXPECT_EQ(0, add_camera_metadata_entry(metadata.get(), kVendorTag, &gain, 1));
    EXPECT_EQ(1, add_camera_metadata_entry(metadata.get(), kVendorTag + 1, &gain, 1));
}

TEST_F(VendorTagTest, CacheOpsAnswerForThePacketsVendor) {
    ASSERT_EQ(0, set_camera_metadata_vendor_cache_ops(&mCacheOps));
    MetadataPtr metadata(allocate_camera_metadata(1, 0));

    // Without a vendor id the plain vendor ops answer.
    EXPECT_EQ(TYPE_INT32, get_local_camera_metadata_tag_type(kVendorTag, metadata.get()));
    set_camera_metadata_vendor_id(metadata.get(), 1);
    EXPECT_STREQ("one", get_local_camera_metadata_section_name(kVendorTag, metadata.get()));
    EXPECT_STREQ("gain", get_local_camera_metadata_tag_name(kVendorTag, metadata.get()));
    EXPECT_EQ(TYPE_BYTE, get_local_camera_metadata_tag_type(kVendorTag, metadata.get()));
    EXPECT_EQ(TYPE_FLOAT, get_local_camera_metadata_tag_type_vendor_id(kVendorTag, 2));
    // The global lookups never use the cache.
    EXPECT_EQ(TYPE_INT32, get_camera_metadata_tag_type(kVendorTag));

    uint8_t gain = 3;
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), kVendorTag, &gain, 1));
    camera_metadata_ro_entry_t entry;
    ASSERT_EQ(0, get_camera_metadata_ro_entry(metadata.get(), 0, &entry));
    EXPECT_EQ(TYPE_BYTE, entry.type);
}

TEST(VendorTagDeprecatedTest, QueryOpsCannotBeInstalled) {
    vendor_tag_query_ops_t ops{};
    EXPECT_EQ(1, set_camera_metadata_vendor_tag_ops(&ops));
    EXPECT_EQ(-1, get_camera_metadata_tag_type(kVendorTag));
}

TEST(EnumNameTest, ValuesAndNamesConvertBothWays) {
    char name[32];
    EXPECT_EQ(0, camera_metadata_enum_snprint(ANDROID_CONTROL_AE_MODE, ANDROID_CONTROL_AE_MODE_ON,
                                              name, sizeof(name)));
    EXPECT_STREQ("ON", name);
    EXPECT_EQ(0, camera_metadata_enum_snprint(ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP,
                                              static_cast<uint32_t>(-1), name, sizeof(name)));
    EXPECT_STREQ("UNSPECIFIED", name);

    uint32_t value = 0;
    EXPECT_EQ(0,
              camera_metadata_enum_value(ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL, "FULL", 4, &value));
    EXPECT_EQ(uint32_t{ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL_FULL}, value);
    EXPECT_EQ(-1,
              camera_metadata_enum_value(ANDROID_INFO_SUPPORTED_HARDWARE_LEVEL, "FUL", 3, &value));
    EXPECT_EQ(-1, camera_metadata_enum_value(ANDROID_SENSOR_TIMESTAMP, "ON", 2, &value));
}

TEST(EnumNameTest, UnknownValuesAndTruncationAreReported) {
    char name[8];
    EXPECT_EQ(-1, camera_metadata_enum_snprint(ANDROID_CONTROL_AE_MODE, 99, name, sizeof(name)));
    EXPECT_STREQ("error: ", name);
    EXPECT_EQ(-1, camera_metadata_enum_snprint(ANDROID_SENSOR_TIMESTAMP, 0, name, sizeof(name)));
    EXPECT_EQ(0, camera_metadata_enum_snprint(ANDROID_REQUEST_AVAILABLE_CAPABILITIES,
                                              ANDROID_REQUEST_AVAILABLE_CAPABILITIES_MANUAL_SENSOR,
                                              name, 7));
    EXPECT_STREQ("MANUAL", name);
}

TEST(DumpTest, ListsEntriesWithNamesTypesAndValues) {
    MetadataPtr metadata(allocate_camera_metadata(3, 200));
    int32_t requestId = 42;
    uint8_t aeMode = ANDROID_CONTROL_AE_MODE_ON_AUTO_FLASH;
    std::vector<int32_t> keys(20, 7);
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_ID, &requestId, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_CONTROL_AE_MODE, &aeMode, 1));
    ASSERT_EQ(0, add_camera_metadata_entry(metadata.get(), ANDROID_REQUEST_AVAILABLE_RESULT_KEYS,
                                           keys.data(), keys.size()));

    std::string brief = dumpToString(metadata.get(), 0);
    EXPECT_THAT(brief, HasSubstr("3 / 3 entries, 80 / 200 bytes of extra data"));
    EXPECT_THAT(brief, HasSubstr("android.request.id (c0001): int32[1]\n"));
    EXPECT_THAT(brief, Not(HasSubstr("[ 42 ]")));

    std::string values = dumpToString(metadata.get(), 1, 2);
    EXPECT_THAT(values, HasSubstr("  Dumping camera metadata array"));
    EXPECT_THAT(values, HasSubstr("[ 42 ]"));
    EXPECT_THAT(values, HasSubstr("[ ON_AUTO_FLASH ]"));
    // Verbosity 1 shows 16 of the 20 keys, 4 per line; verbosity 2 shows them all.
    EXPECT_EQ(4, countOf(values, "[ 7 7 7 7 ]"));
    EXPECT_EQ(5, countOf(dumpToString(metadata.get(), 2), "[ 7 7 7 7 ]"));

    EXPECT_THAT(dumpToString(nullptr, 2), HasSubstr("Not allocated"));
}
