#include <aidl/android/hardware/camera/common/Status.h>
#include <aidl2legacy/utils/EnumValue.h>
#include <aidl2legacy/utils/MetadataConversion.h>
#include <aidl2legacy/utils/NativeHandleConversion.h>
#include <aidl2legacy/utils/StatusConversion.h>
#include <aidl2legacy/utils/StreamConversion.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>

namespace kovo::aidl2legacy {
namespace {

using namespace aidl::android::hardware::camera::device;
using aidl::android::hardware::camera::common::Status;
using aidl::android::hardware::camera::metadata::SensorPixelMode;
using aidl::android::hardware::common::NativeHandle;
using aidl::android::hardware::graphics::common::BufferUsage;
using aidl::android::hardware::graphics::common::Dataspace;
using aidl::android::hardware::graphics::common::PixelFormat;

TEST(ConversionTest, StatusIsOkOnlyForZeroAndErrorsAreServiceSpecific) {
    EXPECT_TRUE(convertStatus(0).isOk());
    const std::pair<int, Status> cases[] = {{-EINVAL, Status::ILLEGAL_ARGUMENT},
                                            {-EBUSY, Status::CAMERA_IN_USE},
                                            {-EUSERS, Status::MAX_CAMERAS_IN_USE},
                                            {-ENOSYS, Status::OPERATION_NOT_SUPPORTED},
                                            {-EOPNOTSUPP, Status::OPERATION_NOT_SUPPORTED},
                                            {-ENODEV, Status::INTERNAL_ERROR},
                                            {-ENOMEM, Status::INTERNAL_ERROR},
                                            {EINVAL, Status::INTERNAL_ERROR}};
    for (auto [errorValue, expected] : cases) {
        ndk::ScopedAStatus status = convertStatus(errorValue);
        EXPECT_FALSE(status.isOk()) << errorValue;
        EXPECT_EQ(EX_SERVICE_SPECIFIC, status.getExceptionCode()) << errorValue;
        EXPECT_EQ(static_cast<int32_t>(expected), status.getServiceSpecificError()) << errorValue;
    }
}

TEST(ConversionTest, OnlyAHandleWithoutFdsAndIntsIsNull) {
    NativeHandle handle;
    EXPECT_TRUE(isAidlNativeHandleNull(handle));
    handle.ints = {7};
    EXPECT_FALSE(isAidlNativeHandleNull(handle));
    handle.ints.clear();
    handle.fds.emplace_back(dup(STDERR_FILENO));
    EXPECT_FALSE(isAidlNativeHandleNull(handle));
}

// Settings with the AE mode (entry 0, inline) and the exposure time (entry 1, in the data area).
CameraMetadata makeSettings() {
    std::unique_ptr<camera_metadata_t, void (*)(camera_metadata_t*)> settings(
            allocate_camera_metadata(4, 64), free_camera_metadata);
    uint8_t aeMode = 1;
    int64_t exposureNs = 33'000'000;
    add_camera_metadata_entry(settings.get(), ANDROID_CONTROL_AE_MODE, &aeMode, 1);
    add_camera_metadata_entry(settings.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposureNs, 1);
    CameraMetadata aidl;
    EXPECT_EQ(0, convertMetadata(settings.get(), aidl));
    EXPECT_EQ(get_camera_metadata_size(settings.get()), aidl.metadata.size());
    return aidl;
}

TEST(ConversionTest, MetadataRoundTripGivesAViewOfTheSameBytes) {
    CameraMetadata aidl = makeSettings();
    const camera_metadata_t* view = nullptr;
    ASSERT_EQ(0, convertMetadata(aidl, view));
    EXPECT_EQ(static_cast<const void*>(aidl.metadata.data()), view);
    CameraMetadata again;
    ASSERT_EQ(0, convertMetadata(view, again));
    EXPECT_EQ(aidl, again);

    // Nothing converts to nothing, both ways.
    EXPECT_EQ(0, convertMetadata(CameraMetadata{}, view));
    EXPECT_EQ(nullptr, view);
    EXPECT_EQ(0, convertMetadata(view, again));
    EXPECT_TRUE(again.metadata.empty());
}

TEST(ConversionTest, MalformedMetadataGivesNothingAndOneLogLineWithItsSize) {
    auto putU32 = [](std::vector<uint8_t>& bytes, size_t offset, uint32_t value) {
        std::memcpy(bytes.data() + offset, &value, sizeof(value));
    };
    const std::function<void(std::vector<uint8_t>&)> corruptions[] = {
            [](auto& bytes) { bytes.resize(bytes.size() - 16); },    // truncated
            [](auto& bytes) { bytes.resize(20); },                   // not even a header
            [&](auto& bytes) { putU32(bytes, 12, 5); },              // count > capacity
            [](auto& bytes) { bytes[48 + 12] = 9; },                 // no such type
            [&](auto& bytes) { putU32(bytes, 48 + 16 + 8, 4096); },  // value outside
            [](auto& bytes) { bytes[48 + 16 + 12] = TYPE_BYTE; },    // wrong type for tag
    };
    for (size_t i = 0; i < std::size(corruptions); ++i) {
        CameraMetadata aidl = makeSettings();
        corruptions[i](aidl.metadata);
        android::testing::LogCapture capture;
        const camera_metadata_t* view = reinterpret_cast<const camera_metadata_t*>(&aidl);
        EXPECT_EQ(-EINVAL, convertMetadata(aidl, view)) << i;
        EXPECT_EQ(nullptr, view) << i;
        int ourLines = 0;
        for (const auto& line : capture.lines()) {
            ourLines += line.tag == "tarnic_hal_aidl2legacy_utils" &&
                        line.text.find(std::to_string(aidl.metadata.size())) != std::string::npos;
        }
        EXPECT_EQ(1, ourLines) << i;

        // A legacy packet carries no size of its own to hold a truncated one against.
        if (aidl.metadata.size() != makeSettings().metadata.size()) continue;
        CameraMetadata copy = makeSettings();
        EXPECT_EQ(-EINVAL,
                  convertMetadata(reinterpret_cast<const camera_metadata_t*>(aidl.metadata.data()),
                                  copy))
                << i;
        EXPECT_TRUE(copy.metadata.empty()) << i;
    }
}

Stream makeStream(int32_t id, StreamType type, PixelFormat format, const char* physicalId) {
    Stream stream;
    stream.id = id;
    stream.streamType = type;
    stream.width = 1920;
    stream.height = 1080;
    stream.format = format;
    stream.usage = BufferUsage(0x1'0000'0100);
    stream.dataSpace = Dataspace::JFIF;
    stream.rotation = StreamRotation::ROTATION_90;
    stream.physicalCameraId = physicalId;
    return stream;
}

// The device answers configure_streams by writing usage, max_buffers and, for an
// implementation-defined format, the real format and data space into the records.
TEST(ConversionTest, StreamsComeBackAsTheDeviceLeftThemInSlotOrder) {
    Camera3Stream preview{}, input{}, zsl{};
    preview.stream.max_buffers = 9;  // left over from an earlier configuration
    preview.stream.priv = &preview;
    convertStream(makeStream(10, StreamType::OUTPUT, PixelFormat::IMPLEMENTATION_DEFINED, ""),
                  preview);
    convertStream(makeStream(11, StreamType::INPUT, PixelFormat::YCBCR_420_888, "3"), input);
    convertStream(makeStream(12, StreamType::OUTPUT, PixelFormat::RAW16, ""), zsl);
    const camera3_stream_t& s = preview.stream;
    EXPECT_EQ(std::make_tuple(CAMERA3_STREAM_OUTPUT, 1920u, 1080u,
                              HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, 0x100u,
                              HAL_DATASPACE_V0_JFIF, CAMERA3_STREAM_ROTATION_90, 0u, (void*)0),
              std::make_tuple(s.stream_type, s.width, s.height, s.format, s.usage, s.data_space,
                              s.rotation, s.max_buffers, s.priv));
    EXPECT_STREQ("", s.physical_camera_id);
    EXPECT_STREQ("3", input.stream.physical_camera_id);

    auto answer = [](Camera3Stream& record, int format, int dataSpace, uint32_t usage,
                     uint32_t maxBuffers) {
        record.stream.format = format;
        record.stream.data_space = static_cast<android_dataspace_t>(dataSpace);
        record.stream.usage = usage;
        record.stream.max_buffers = maxBuffers;
    };
    answer(preview, HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_DATASPACE_V0_BT709, 0x20003, 4);
    answer(input, HAL_PIXEL_FORMAT_YCBCR_420_888, HAL_DATASPACE_V0_JFIF, 0x3, 2);
    answer(zsl, HAL_PIXEL_FORMAT_RAW16, HAL_DATASPACE_V0_JFIF, 0x20000, 6);
    zsl.stream.stream_type = CAMERA3_STREAM_BIDIRECTIONAL;
    // Two slots share one record when the framework repeats a stream id.
    camera3_stream_t* slots[] = {&zsl.stream, &preview.stream, &input.stream, &zsl.stream};
    camera3_stream_configuration configuration{};
    configuration.num_streams = 4;
    configuration.streams = slots;
    std::vector<HalStream> halStreams(1);
    ASSERT_EQ(0, convertHalStreamConfiguration(configuration, halStreams));

    auto halStream = [](int32_t id, PixelFormat format, int64_t producer, int64_t consumer,
                        int32_t maxBuffers, Dataspace dataSpace, const char* physicalId) {
        return HalStream{id,
                         format,
                         BufferUsage(producer),
                         BufferUsage(consumer),
                         maxBuffers,
                         dataSpace,
                         physicalId,
                         false,
                         false};
    };
    const auto yuv = PixelFormat::YCBCR_420_888;
    const HalStream zslStream =
            halStream(12, PixelFormat::RAW16, 0x20000, 0x20000, 6, Dataspace::JFIF, "");
    EXPECT_EQ((std::vector<HalStream>{
                      zslStream,
                      halStream(10, yuv, 0x20003, 0, 4, Dataspace(HAL_DATASPACE_V0_BT709), ""),
                      halStream(11, yuv, 0, 0x3, 2, Dataspace::JFIF, "3"), zslStream}),
              halStreams);

    slots[1] = nullptr;
    EXPECT_EQ(-EINVAL, convertHalStreamConfiguration(configuration, halStreams));
    EXPECT_TRUE(halStreams.empty());
}

// Data spaces are bit fields; the framework may set bits no legacy enumerator has.
TEST(ConversionTest, EveryDataSpacePassesThroughBothWaysUnchanged) {
    for (const int32_t value : {int32_t{HAL_DATASPACE_V0_JFIF}, int32_t{0x40000000},
                                std::numeric_limits<int32_t>::min(), int32_t{-1}}) {
        SCOPED_TRACE(value);
        Stream in = makeStream(4, StreamType::OUTPUT, PixelFormat::BLOB, "");
        in.dataSpace = Dataspace(value);
        Camera3Stream record{};
        ASSERT_EQ(0, convertStream(in, record));
        EXPECT_EQ(value, enumValue(record.stream.data_space));

        camera3_stream_t* slots[] = {&record.stream};
        camera3_stream_configuration configuration{};
        configuration.num_streams = 1;
        configuration.streams = slots;
        std::vector<HalStream> halStreams;
        ASSERT_EQ(0, convertHalStreamConfiguration(configuration, halStreams));
        ASSERT_EQ(1u, halStreams.size());
        EXPECT_EQ(Dataspace(value), halStreams[0].overrideDataSpace);
    }
}

TEST(ConversionTest, StreamAttributesAreKeptAndWhatDoesNotFitIsLeftOut) {
    Stream in = makeStream(7, StreamType::OUTPUT, PixelFormat::BLOB, "");
    in.groupId = 3;
    in.bufferSize = 4'000'000;
    in.sensorPixelModesUsed = {SensorPixelMode::ANDROID_SENSOR_PIXEL_MODE_MAXIMUM_RESOLUTION};
    in.useCase = decltype(in.useCase)(0x10000);
    Camera3Stream out{};
    ASSERT_EQ(0, convertStream(in, out));
    EXPECT_EQ(std::make_tuple(7, 3, 4'000'000, int64_t{0x10000}, 0b10u),
              std::make_tuple(out.id, out.groupId, out.bufferSize, out.useCase,
                              out.sensorPixelModesUsed));

    in.physicalCameraId.assign(Camera3Stream::kPhysicalCameraIdCapacity, 'x');
    in.sensorPixelModesUsed.push_back(SensorPixelMode(40));
    EXPECT_EQ(-EINVAL, convertStream(in, out));
    EXPECT_STREQ("", out.stream.physical_camera_id);
    EXPECT_EQ(std::make_tuple(7, 3, 0b10u),
              std::make_tuple(out.id, out.groupId, out.sensorPixelModesUsed));
}

}  // namespace
}  // namespace kovo::aidl2legacy
