// Enum printing (names, duplicate values, unknown values) and enumerator iteration for the enums
// of the camera packages.

#include <aidl/android/hardware/camera/common/CameraDeviceStatus.h>
#include <aidl/android/hardware/camera/common/CameraMetadataType.h>
#include <aidl/android/hardware/camera/common/Status.h>
#include <aidl/android/hardware/camera/common/TagBoundaryId.h>
#include <aidl/android/hardware/camera/common/TorchModeStatus.h>
#include <aidl/android/hardware/camera/device/BufferRequestStatus.h>
#include <aidl/android/hardware/camera/device/BufferStatus.h>
#include <aidl/android/hardware/camera/device/CameraBlobId.h>
#include <aidl/android/hardware/camera/device/ErrorCode.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/device/StreamBufferRequestError.h>
#include <aidl/android/hardware/camera/device/StreamConfigurationMode.h>
#include <aidl/android/hardware/camera/device/StreamRotation.h>
#include <aidl/android/hardware/camera/device/StreamType.h>
#include <aidl/android/hardware/camera/metadata/RequestAvailableColorSpaceProfilesMap.h>
#include <aidl/android/hardware/camera/metadata/RequestAvailableDynamicRangeProfilesMap.h>
#include <aidl/android/hardware/camera/metadata/ScalerAvailableStreamUseCases.h>
#include <aidl/android/hardware/camera/metadata/SensorPixelMode.h>
#include <aidl/android/hardware/graphics/common/BufferUsage.h>
#include <aidl/android/hardware/graphics/common/Dataspace.h>
#include <aidl/android/hardware/graphics/common/PixelFormat.h>
#include <android/binder_enums.h>
#include <android/binder_to_string.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

namespace cc = ::aidl::android::hardware::camera::common;
namespace cd = ::aidl::android::hardware::camera::device;
namespace gc = ::aidl::android::hardware::graphics::common;
namespace meta = ::aidl::android::hardware::camera::metadata;

// Backing types decide how unknown values print and how legacy values convert.
static_assert(std::is_same_v<std::underlying_type_t<gc::BufferUsage>, int64_t>);
static_assert(std::is_same_v<std::underlying_type_t<gc::PixelFormat>, int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<gc::Dataspace>, int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<cc::TagBoundaryId>, int64_t>);
static_assert(std::is_same_v<std::underlying_type_t<meta::RequestAvailableDynamicRangeProfilesMap>,
                             int64_t>);
static_assert(std::is_same_v<std::underlying_type_t<meta::ScalerAvailableStreamUseCases>, int64_t>);
static_assert(std::is_same_v<std::underlying_type_t<cd::StreamConfigurationMode>, int32_t>);

struct NameCase {
    std::string printed;
    std::string expected;
};

void PrintTo(const NameCase& c, std::ostream* os) {
    *os << c.printed;
}

class EnumNameTest : public ::testing::TestWithParam<NameCase> {};

TEST_P(EnumNameTest, PrintsTheFirstDeclaredNameOrTheDecimalValue) {
    EXPECT_EQ(GetParam().printed, GetParam().expected);
}

template <typename E>
std::string print(E e) {
    return ::android::internal::ToString(e);
}

template <typename E>
E combine(E a, E b) {
    using B = std::underlying_type_t<E>;
    return E(static_cast<B>(a) | static_cast<B>(b));
}

INSTANTIATE_TEST_SUITE_P(
        Names, EnumNameTest,
        ::testing::Values(
                NameCase{print(gc::PixelFormat::BLOB), "BLOB"},
                NameCase{print(gc::PixelFormat::Y8), "Y8"},
                NameCase{print(cd::StreamConfigurationMode::VENDOR_MODE_7), "VENDOR_MODE_7"},
                NameCase{print(cc::Status::INTERNAL_ERROR), "INTERNAL_ERROR"},
                NameCase{print(cc::TagBoundaryId::VENDOR), "VENDOR"},
                NameCase{print(gc::BufferUsage::VENDOR_MASK_HI), "VENDOR_MASK_HI"},
                NameCase{print(meta::RequestAvailableColorSpaceProfilesMap::
                                       ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED),
                         "ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED"},
                NameCase{print(cd::RequestTemplate::VENDOR_TEMPLATE_START),
                         "VENDOR_TEMPLATE_START"}));

INSTANTIATE_TEST_SUITE_P(
        DuplicateValues, EnumNameTest,
        ::testing::Values(NameCase{print(gc::Dataspace::STANDARD_UNSPECIFIED), "UNKNOWN"},
                          NameCase{print(gc::Dataspace::RANGE_UNSPECIFIED), "UNKNOWN"},
                          NameCase{print(gc::Dataspace::DISPLAY_P3_LINEAR), "DCI_P3_LINEAR"},
                          NameCase{print(gc::BufferUsage::CPU_WRITE_NEVER), "CPU_READ_NEVER"},
                          NameCase{print(gc::BufferUsage(0)), "CPU_READ_NEVER"}));

INSTANTIATE_TEST_SUITE_P(
        UnknownValues, EnumNameTest,
        ::testing::Values(NameCase{print(cd::ErrorCode(0)), "0"},
                          NameCase{print(cd::StreamType(-3)), "-3"},
                          NameCase{print(meta::RequestAvailableDynamicRangeProfilesMap(0)), "0"},
                          NameCase{print(combine(gc::BufferUsage::GPU_TEXTURE,
                                                 gc::BufferUsage::CAMERA_OUTPUT)),
                                   "131328"},
                          NameCase{print(gc::BufferUsage(int64_t{1} << 40)), "1099511627776"},
                          NameCase{print(cc::TagBoundaryId(-5)), "-5"},
                          // The legacy deprecated dataspace codes are not enumerators.
                          NameCase{print(gc::Dataspace(0x101)), "257"}));

// Every enumerator, duplicates included, in declaration order.
template <typename E>
std::vector<std::string> allNames() {
    std::vector<std::string> names;
    for (E e : ::ndk::enum_range<E>()) {
        names.push_back(toString(e));
    }
    return names;
}

TEST(EnumRangeTest, IteratesEveryEnumeratorIncludingDuplicates) {
    EXPECT_EQ(allNames<gc::PixelFormat>().size(), 33u);
    EXPECT_EQ(allNames<gc::Dataspace>().size(), 63u);
    EXPECT_EQ(allNames<gc::BufferUsage>().size(), 27u);
    EXPECT_EQ(allNames<cc::Status>().size(), 7u);
    EXPECT_EQ(allNames<cc::CameraDeviceStatus>().size(), 3u);
    EXPECT_EQ(allNames<cc::TorchModeStatus>().size(), 3u);
    EXPECT_EQ(allNames<cc::CameraMetadataType>().size(), 6u);
    EXPECT_EQ(allNames<meta::SensorPixelMode>().size(), 2u);
    EXPECT_EQ(allNames<meta::RequestAvailableDynamicRangeProfilesMap>().size(), 13u);
    EXPECT_EQ(allNames<meta::ScalerAvailableStreamUseCases>().size(), 8u);
    EXPECT_EQ(allNames<meta::RequestAvailableColorSpaceProfilesMap>().size(), 4u);
    EXPECT_EQ(allNames<cd::StreamConfigurationMode>().size(), 10u);
    EXPECT_EQ(allNames<cd::RequestTemplate>().size(), 7u);
}

TEST(EnumRangeTest, WalksInDeclarationOrder) {
    EXPECT_EQ(allNames<cd::ErrorCode>(), (std::vector<std::string>{"ERROR_DEVICE", "ERROR_REQUEST",
                                                                   "ERROR_RESULT", "ERROR_BUFFER"}));
    // A duplicate keeps its place in the walk and prints as the first enumerator of its value.
    std::vector<int64_t> usages;
    for (gc::BufferUsage u : ::ndk::enum_range<gc::BufferUsage>()) {
        usages.push_back(static_cast<int64_t>(u));
    }
    ASSERT_GE(usages.size(), 6u);
    EXPECT_EQ(std::vector<int64_t>(usages.begin(), usages.begin() + 6),
              (std::vector<int64_t>{15, 0, 2, 3, 240, 0}));
    EXPECT_EQ(allNames<gc::BufferUsage>()[5], "CPU_READ_NEVER");
}

// An enum without duplicate values has a name for every enumerator, and all names differ.
template <typename E>
void expectDistinctNames() {
    std::vector<std::string> names = allNames<E>();
    std::set<std::string> distinct(names.begin(), names.end());
    EXPECT_EQ(distinct.size(), names.size());
    for (const std::string& name : names) {
        EXPECT_FALSE(name.empty() || isdigit(name[0]) || name[0] == '-') << name;
    }
}

TEST(EnumRangeTest, EveryEnumeratorWithItsOwnValuePrintsItsOwnName) {
    expectDistinctNames<gc::PixelFormat>();
    expectDistinctNames<cc::Status>();
    expectDistinctNames<cc::TagBoundaryId>();
    expectDistinctNames<meta::RequestAvailableDynamicRangeProfilesMap>();
    expectDistinctNames<meta::ScalerAvailableStreamUseCases>();
    expectDistinctNames<meta::RequestAvailableColorSpaceProfilesMap>();
    expectDistinctNames<cd::BufferRequestStatus>();
    expectDistinctNames<cd::BufferStatus>();
    expectDistinctNames<cd::CameraBlobId>();
    expectDistinctNames<cd::RequestTemplate>();
    expectDistinctNames<cd::StreamBufferRequestError>();
    expectDistinctNames<cd::StreamConfigurationMode>();
    expectDistinctNames<cd::StreamRotation>();
    expectDistinctNames<cd::StreamType>();
}

// Composite dataspaces are exactly their standard, transfer and range parts.
struct DataspaceParts {
    gc::Dataspace composite;
    gc::Dataspace standard;
    gc::Dataspace transfer;
    gc::Dataspace range;
};

void PrintTo(const DataspaceParts& p, std::ostream* os) {
    *os << toString(p.composite);
}

class DataspaceCompositionTest : public ::testing::TestWithParam<DataspaceParts> {};

TEST_P(DataspaceCompositionTest, CompositeIsTheUnionOfItsParts) {
    const DataspaceParts& p = GetParam();
    auto bits = [](gc::Dataspace d) { return static_cast<int32_t>(d); };
    EXPECT_EQ(bits(p.composite), bits(p.standard) | bits(p.transfer) | bits(p.range))
            << toString(p.composite);
    EXPECT_EQ(bits(p.composite) & bits(gc::Dataspace::STANDARD_MASK), bits(p.standard));
    EXPECT_EQ(bits(p.composite) & bits(gc::Dataspace::TRANSFER_MASK), bits(p.transfer));
    EXPECT_EQ(bits(p.composite) & bits(gc::Dataspace::RANGE_MASK), bits(p.range));
}

using D = gc::Dataspace;
INSTANTIATE_TEST_SUITE_P(
        Composites, DataspaceCompositionTest,
        ::testing::Values(
                DataspaceParts{D::SRGB_LINEAR, D::STANDARD_BT709, D::TRANSFER_LINEAR, D::RANGE_FULL},
                DataspaceParts{D::SCRGB_LINEAR, D::STANDARD_BT709, D::TRANSFER_LINEAR,
                               D::RANGE_EXTENDED},
                DataspaceParts{D::SRGB, D::STANDARD_BT709, D::TRANSFER_SRGB, D::RANGE_FULL},
                DataspaceParts{D::SCRGB, D::STANDARD_BT709, D::TRANSFER_SRGB, D::RANGE_EXTENDED},
                DataspaceParts{D::JFIF, D::STANDARD_BT601_625, D::TRANSFER_SMPTE_170M, D::RANGE_FULL},
                DataspaceParts{D::BT601_625, D::STANDARD_BT601_625, D::TRANSFER_SMPTE_170M,
                               D::RANGE_LIMITED},
                DataspaceParts{D::BT601_525, D::STANDARD_BT601_525, D::TRANSFER_SMPTE_170M,
                               D::RANGE_LIMITED},
                DataspaceParts{D::BT709, D::STANDARD_BT709, D::TRANSFER_SMPTE_170M, D::RANGE_LIMITED},
                DataspaceParts{D::DCI_P3_LINEAR, D::STANDARD_DCI_P3, D::TRANSFER_LINEAR,
                               D::RANGE_FULL},
                DataspaceParts{D::DCI_P3, D::STANDARD_DCI_P3, D::TRANSFER_GAMMA2_6, D::RANGE_FULL},
                DataspaceParts{D::DISPLAY_P3, D::STANDARD_DCI_P3, D::TRANSFER_SRGB, D::RANGE_FULL},
                DataspaceParts{D::ADOBE_RGB, D::STANDARD_ADOBE_RGB, D::TRANSFER_GAMMA2_2,
                               D::RANGE_FULL},
                DataspaceParts{D::ADOBE_RGB_LINEAR, D::STANDARD_ADOBE_RGB, D::TRANSFER_LINEAR,
                               D::RANGE_FULL},
                DataspaceParts{D::BT2020_LINEAR, D::STANDARD_BT2020, D::TRANSFER_LINEAR,
                               D::RANGE_FULL},
                DataspaceParts{D::BT2020, D::STANDARD_BT2020, D::TRANSFER_SMPTE_170M, D::RANGE_FULL},
                DataspaceParts{D::BT2020_PQ, D::STANDARD_BT2020, D::TRANSFER_ST2084, D::RANGE_FULL},
                DataspaceParts{D::BT2020_LINEAR_EXTENDED, D::STANDARD_BT2020, D::TRANSFER_LINEAR,
                               D::RANGE_EXTENDED},
                DataspaceParts{D::BT2020_ITU, D::STANDARD_BT2020, D::TRANSFER_SMPTE_170M,
                               D::RANGE_LIMITED},
                DataspaceParts{D::BT2020_ITU_PQ, D::STANDARD_BT2020, D::TRANSFER_ST2084,
                               D::RANGE_LIMITED},
                DataspaceParts{D::BT2020_ITU_HLG, D::STANDARD_BT2020, D::TRANSFER_HLG,
                               D::RANGE_LIMITED},
                DataspaceParts{D::BT2020_HLG, D::STANDARD_BT2020, D::TRANSFER_HLG, D::RANGE_FULL},
                DataspaceParts{D::DISPLAY_BT2020, D::STANDARD_BT2020, D::TRANSFER_SRGB,
                               D::RANGE_FULL},
                DataspaceParts{D::BT709_FULL_RANGE, D::STANDARD_BT709, D::TRANSFER_SMPTE_170M,
                               D::RANGE_FULL}));

// Fields are whole shifted sub-ranges of the masks.
TEST(DataspaceTest, PartsLieInsideTheirMasks) {
    auto bits = [](gc::Dataspace d) { return static_cast<int32_t>(d); };
    EXPECT_EQ(bits(D::STANDARD_MASK), 63 << bits(D::STANDARD_SHIFT));
    EXPECT_EQ(bits(D::TRANSFER_MASK), 31 << bits(D::TRANSFER_SHIFT));
    EXPECT_EQ(bits(D::RANGE_MASK), 7 << bits(D::RANGE_SHIFT));
}

}  // namespace
