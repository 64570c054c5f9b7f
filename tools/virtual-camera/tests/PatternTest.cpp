#include <gtest/gtest.h>
#include <hardware/camera3.h>
#include <string.h>
#include <system/graphics.h>
#include <virtual_camera/HostBuffer.h>
#include <virtual_camera/Pattern.h>

#include <functional>
#include <vector>

namespace virtual_camera {
namespace {

constexpr uint32_t kFrame = 41;
const PatternStream kYuv{320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888, ""};

struct Damage {
    const char* name;
    std::function<void(std::vector<uint8_t>&)> apply;
    uint32_t checkedFrame;
    PatternStream checkedStream;
    PatternStatus expected;
};

class PatternCheckTest : public ::testing::TestWithParam<Damage> {};

TEST_P(PatternCheckTest, ReportsWhatWasWrittenAndWhatWasDamaged) {
    const Damage& damage = GetParam();
    std::vector<uint8_t> buffer(hostBufferSize(kYuv.format, kYuv.width, kYuv.height, 0));
    ASSERT_TRUE(writePattern(buffer.data(), buffer.size(), kFrame, kYuv));
    damage.apply(buffer);
    EXPECT_EQ(checkPattern(buffer.data(), buffer.size(), damage.checkedFrame, damage.checkedStream)
                      .status,
              damage.expected);
}

INSTANTIATE_TEST_SUITE_P(
        Buffers, PatternCheckTest,
        ::testing::Values(
                Damage{"Intact", [](auto&) {}, kFrame, kYuv, PatternStatus::kOk},
                Damage{"OtherFrame", [](auto&) {}, kFrame + 1, kYuv, PatternStatus::kWrongFrame},
                Damage{"OtherSize", [](auto&) {}, kFrame,
                       PatternStream{320, 180, HAL_PIXEL_FORMAT_YCBCR_420_888, ""},
                       PatternStatus::kWrongStream},
                Damage{"OtherFormat", [](auto&) {}, kFrame,
                       PatternStream{320, 240, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, ""},
                       PatternStatus::kWrongStream},
                Damage{"OtherPhysicalCamera", [](auto&) {}, kFrame,
                       PatternStream{320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888, "2"},
                       PatternStatus::kWrongStream},
                Damage{"Untouched", [](auto& bytes) { std::fill(bytes.begin(), bytes.end(), 0); },
                       kFrame, kYuv, PatternStatus::kUntouched},
                Damage{"HeaderBitFlip", [](auto& bytes) { bytes[8] ^= 1; }, kFrame, kYuv,
                       PatternStatus::kDamaged},
                Damage{"LastPageFromAnOlderFrame",
                       [](auto& bytes) {
                           std::vector<uint8_t> older(bytes.size());
                           writePattern(older.data(), older.size(), kFrame - 1, kYuv);
                           size_t last = (bytes.size() - sizeof(PageStamp)) / kPatternPageSize *
                                         kPatternPageSize;
                           memcpy(&bytes[last], &older[last], sizeof(PageStamp));
                       },
                       kFrame, kYuv, PatternStatus::kDamaged}),
        [](const auto& info) { return std::string(info.param.name); });

TEST(PatternTest, BlobCarriesAJpegTrailerThatTheCheckerVerifies) {
    const PatternStream blob{640, 480, HAL_PIXEL_FORMAT_BLOB, ""};
    std::vector<uint8_t> buffer(3 * kPatternPageSize + 100);
    ASSERT_TRUE(writePattern(buffer.data(), buffer.size(), kFrame, blob));
    camera3_jpeg_blob_t trailer;
    memcpy(&trailer, &buffer[buffer.size() - sizeof(trailer)], sizeof(trailer));
    EXPECT_EQ(trailer.jpeg_blob_id, CAMERA3_JPEG_BLOB_ID);
    EXPECT_EQ(trailer.jpeg_size, buffer.size() - sizeof(trailer));
    EXPECT_EQ(checkPattern(buffer.data(), buffer.size(), kFrame, blob).status, PatternStatus::kOk);

    buffer[buffer.size() - sizeof(trailer)] ^= 0xFF;
    EXPECT_EQ(checkPattern(buffer.data(), buffer.size(), kFrame, blob).status,
              PatternStatus::kDamaged);
}

TEST(PatternTest, RefusesBuffersTooSmallForTheHeader) {
    std::vector<uint8_t> buffer(sizeof(PatternHeader) - 1);
    EXPECT_FALSE(writePattern(buffer.data(), buffer.size(), kFrame, kYuv));
    EXPECT_EQ(checkPattern(buffer.data(), buffer.size(), kFrame, kYuv).status,
              PatternStatus::kTooSmall);
}

TEST(HostBufferTest, PlanesShareOneMemfdThatMapsAtTheFormatSize) {
    size_t size = hostBufferSize(HAL_PIXEL_FORMAT_YCBCR_420_888, 320, 240, 0);
    EXPECT_EQ(size, 320u * 240u * 3 / 2);
    std::unique_ptr<HostBuffer> buffer = HostBuffer::allocate(size, 2);
    ASSERT_NE(buffer, nullptr);
    ASSERT_EQ(buffer->handle()->numFds, 2);
    std::unique_ptr<MappedBuffer> writer = MappedBuffer::map(buffer->handle(), true);
    ASSERT_NE(writer, nullptr);
    EXPECT_EQ(writer->size(), size);
    ASSERT_TRUE(writePattern(writer->data(), writer->size(), kFrame, kYuv));

    // The second plane's fd reaches the same memory.
    native_handle_t* second = native_handle_create(1, 0);
    second->data[0] = buffer->handle()->data[1];
    std::unique_ptr<MappedBuffer> reader = MappedBuffer::map(second, false);
    native_handle_delete(second);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(checkPattern(reader->data(), reader->size(), kFrame, kYuv).status, PatternStatus::kOk);
}

}  // namespace
}  // namespace virtual_camera
