// Generated toString() text of the camera types, character for character, through the shared
// ::android::internal::ToString helper.

#include <aidl/android/hardware/camera/common/CameraResourceCost.h>
#include <aidl/android/hardware/camera/common/VendorTag.h>
#include <aidl/android/hardware/camera/common/VendorTagSection.h>
#include <aidl/android/hardware/camera/device/BufferCache.h>
#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <aidl/android/hardware/camera/device/BufferRequestStatus.h>
#include <aidl/android/hardware/camera/device/CameraBlob.h>
#include <aidl/android/hardware/camera/device/CameraOfflineSessionInfo.h>
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/CaptureResult.h>
#include <aidl/android/hardware/camera/device/ConfigureStreamsRet.h>
#include <aidl/android/hardware/camera/device/HalStream.h>
#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraMetadata.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraSetting.h>
#include <aidl/android/hardware/camera/device/StreamBufferRet.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <android/binder_to_string.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace {

namespace cc = ::aidl::android::hardware::camera::common;
namespace cd = ::aidl::android::hardware::camera::device;
namespace gc = ::aidl::android::hardware::graphics::common;
namespace meta = ::aidl::android::hardware::camera::metadata;

struct PrintCase {
    const char* name;
    std::function<std::string()> print;
    std::string expected;
};

void PrintTo(const PrintCase& c, std::ostream* os) {
    *os << c.name;
}

template <typename T>
PrintCase defaultOf(const char* name, std::string expected) {
    return {name, [] { return T{}.toString(); }, std::move(expected)};
}

// fd 7 is printed, never owned: the number is released before the handle closes it.
cd::StreamBuffer streamBufferWithReleaseFence7() {
    cd::StreamBuffer sb;
    sb.streamId = 1;
    sb.bufferId = 2;
    sb.releaseFence.fds.emplace_back(7);
    return sb;
}

void forgetFds(cd::StreamBuffer& sb) {
    for (auto& fd : sb.releaseFence.fds) {
        (void)fd.release();
    }
}

const std::string kStreamBuffer1b =
        "StreamBuffer{streamId: 1, bufferId: 2, buffer: NativeHandle{fds: [], ints: []}, status: "
        "OK, "
        "acquireFence: NativeHandle{fds: [], ints: []}, releaseFence: NativeHandle{fds: [fd:7], "
        "ints: []}}";

const std::string kDefaultStreamBuffer =
        "StreamBuffer{streamId: 0, bufferId: 0, buffer: NativeHandle{fds: [], ints: []}, status: "
        "OK, "
        "acquireFence: NativeHandle{fds: [], ints: []}, releaseFence: NativeHandle{fds: [], ints: "
        "[]}}";

cd::Stream previewStream() {
    cd::Stream s;
    s.id = 0;
    s.streamType = cd::StreamType::OUTPUT;
    s.width = 1920;
    s.height = 1080;
    s.format = gc::PixelFormat::IMPLEMENTATION_DEFINED;
    s.usage = gc::BufferUsage::GPU_TEXTURE;
    s.dataSpace = gc::Dataspace::UNKNOWN;
    s.groupId = -1;
    s.sensorPixelModesUsed = {meta::SensorPixelMode::ANDROID_SENSOR_PIXEL_MODE_DEFAULT};
    s.dynamicRangeProfile = meta::RequestAvailableDynamicRangeProfilesMap::
            ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_STANDARD;
    s.useCase =
            meta::ScalerAvailableStreamUseCases::ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_PREVIEW;
    s.colorSpace = -1;
    return s;
}

const std::vector<PrintCase> kWorkedExamples = {
        {"StreamBufferIdsOnly",
         [] {
             cd::StreamBuffer sb;
             sb.streamId = 1;
             sb.bufferId = 2;
             return sb.toString();
         },
         "StreamBuffer{streamId: 1, bufferId: 2, buffer: NativeHandle{fds: [], ints: []}, status: "
         "OK, acquireFence: NativeHandle{fds: [], ints: []}, releaseFence: NativeHandle{fds: [], "
         "ints: []}}"},
        {"StreamBufferWithReleaseFence",
         [] {
             cd::StreamBuffer sb = streamBufferWithReleaseFence7();
             std::string text = sb.toString();
             forgetFds(sb);
             return text;
         },
         kStreamBuffer1b},
        {"NotifyMsgShutter",
         [] {
             cd::NotifyMsg msg = cd::ShutterMsg{3, 1000000, 1500000};
             return msg.toString();
         },
         "NotifyMsg{shutter: ShutterMsg{frameNumber: 3, timestamp: 1000000, readoutTimestamp: "
         "1500000}}"},
        {"BufferRequest",
         [] {
             return cd::BufferRequest{0, 4}.toString();
         },
         "BufferRequest{streamId: 0, numBuffersRequested: 4}"},
        {"VectorOfBufferRequests",
         [] { return ::android::internal::ToString(std::vector<cd::BufferRequest>(2)); },
         "[BufferRequest{streamId: 0, numBuffersRequested: 0}, BufferRequest{streamId: 0, "
         "numBuffersRequested: 0}]"},
        {"StreamBuffersValWithBuffer",
         [] {
             std::vector<cd::StreamBuffer> buffers;
             buffers.push_back(streamBufferWithReleaseFence7());
             auto val =
                     cd::StreamBuffersVal::make<cd::StreamBuffersVal::buffers>(std::move(buffers));
             std::string text = val.toString();
             forgetFds(val.get<cd::StreamBuffersVal::buffers>()[0]);
             return text;
         },
         "StreamBuffersVal{buffers: [" + kStreamBuffer1b + "]}"},
        {"StreamBuffersValEmptyBuffers",
         [] {
             cd::StreamBuffersVal val;
             val.set<cd::StreamBuffersVal::buffers>();
             return val.toString();
         },
         "StreamBuffersVal{buffers: []}"},
        {"CameraMetadataBytes",
         [] {
             return cd::CameraMetadata{{1, 200, 0}}.toString();
         },
         "CameraMetadata{metadata: [1, 200, 0]}"},
        {"PhysicalCameraSettingWithEmptyId",
         [] {
             return cd::PhysicalCameraSetting{0, "", {{1, 200, 0}}}.toString();
         },
         "PhysicalCameraSetting{fmqSettingsSize: 0, physicalCameraId: , settings: "
         "CameraMetadata{metadata: [1, 200, 0]}}"},
        {"ErrorMsgRequest",
         [] {
             return cd::ErrorMsg{9, -1, cd::ErrorCode::ERROR_REQUEST}.toString();
         },
         "ErrorMsg{frameNumber: 9, errorStreamId: -1, errorCode: ERROR_REQUEST}"},
        {"PreviewStream", [] { return previewStream().toString(); },
         "Stream{id: 0, streamType: OUTPUT, width: 1920, height: 1080, format: "
         "IMPLEMENTATION_DEFINED, usage: GPU_TEXTURE, dataSpace: UNKNOWN, rotation: ROTATION_0, "
         "physicalCameraId: , bufferSize: 0, groupId: -1, sensorPixelModesUsed: "
         "[ANDROID_SENSOR_PIXEL_MODE_DEFAULT], dynamicRangeProfile: "
         "ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_STANDARD, useCase: "
         "ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_PREVIEW, colorSpace: -1}"},
        {"PreviewHalStream",
         [] {
             cd::HalStream hs;
             hs.overrideFormat = gc::PixelFormat::YCBCR_420_888;
             hs.producerUsage = gc::BufferUsage::CAMERA_OUTPUT;
             hs.maxBuffers = 8;
             return hs.toString();
         },
         "HalStream{id: 0, overrideFormat: YCBCR_420_888, producerUsage: CAMERA_OUTPUT, "
         "consumerUsage: CPU_READ_NEVER, maxBuffers: 8, overrideDataSpace: UNKNOWN, "
         "physicalCameraId: , supportOffline: false, enableHalBufferManager: false}"},
        {"BufferRequestStatusName",
         [] { return cd::toString(cd::BufferRequestStatus::FAILED_PARTIAL); }, "FAILED_PARTIAL"},
        {"BufferRequestStatusUnknown", [] { return cd::toString(cd::BufferRequestStatus(7)); }, "7"},
        {"NotifyMsgTagName", [] { return cd::toString(cd::NotifyMsg::Tag::shutter); }, "shutter"},
        {"CombinedUsageBits",
         [] {
             cd::Stream s;
             s.usage = gc::BufferUsage(static_cast<int64_t>(gc::BufferUsage::GPU_TEXTURE) |
                                       static_cast<int64_t>(gc::BufferUsage::COMPOSER_OVERLAY));
             return ::android::internal::ToString(s.usage);
         },
         "2304"},
};

const std::vector<PrintCase> kDefaults = {
        defaultOf<cd::NotifyMsg>(
                "NotifyMsg",
                "NotifyMsg{error: ErrorMsg{frameNumber: 0, errorStreamId: 0, errorCode: 0}}"),
        defaultOf<cd::StreamBufferRet>(
                "StreamBufferRet",
                "StreamBufferRet{streamId: 0, val: StreamBuffersVal{error: UNKNOWN_ERROR}}"),
        defaultOf<cd::StreamBuffersVal>("StreamBuffersVal",
                                        "StreamBuffersVal{error: UNKNOWN_ERROR}"),
        defaultOf<cd::BufferCache>("BufferCache", "BufferCache{streamId: 0, bufferId: 0}"),
        defaultOf<cd::BufferRequest>("BufferRequest",
                                     "BufferRequest{streamId: 0, numBuffersRequested: 0}"),
        defaultOf<cd::CameraBlob>("CameraBlob", "CameraBlob{blobId: 0, blobSizeBytes: 0}"),
        defaultOf<cd::CameraMetadata>("CameraMetadata", "CameraMetadata{metadata: []}"),
        defaultOf<cd::CameraOfflineSessionInfo>(
                "CameraOfflineSessionInfo",
                "CameraOfflineSessionInfo{offlineStreams: [], offlineRequests: []}"),
        defaultOf<cd::CaptureRequest>(
                "CaptureRequest",
                "CaptureRequest{frameNumber: 0, fmqSettingsSize: 0, settings: "
                "CameraMetadata{metadata: []}, inputBuffer: " +
                        kDefaultStreamBuffer +
                        ", inputWidth: 0, inputHeight: 0, outputBuffers: [], "
                        "physicalCameraSettings: []}"),
        defaultOf<cd::CaptureResult>(
                "CaptureResult",
                "CaptureResult{frameNumber: 0, fmqResultSize: 0, result: "
                "CameraMetadata{metadata: []}, outputBuffers: [], inputBuffer: " +
                        kDefaultStreamBuffer + ", partialResult: 0, physicalCameraMetadata: []}"),
        defaultOf<cd::ConfigureStreamsRet>("ConfigureStreamsRet",
                                           "ConfigureStreamsRet{halStreams: []}"),
        defaultOf<cd::ErrorMsg>("ErrorMsg",
                                "ErrorMsg{frameNumber: 0, errorStreamId: 0, errorCode: 0}"),
        defaultOf<cd::HalStream>(
                "HalStream",
                "HalStream{id: 0, overrideFormat: UNSPECIFIED, producerUsage: CPU_READ_NEVER, "
                "consumerUsage: CPU_READ_NEVER, maxBuffers: 0, overrideDataSpace: UNKNOWN, "
                "physicalCameraId: , supportOffline: false, enableHalBufferManager: false}"),
        defaultOf<cd::OfflineRequest>("OfflineRequest",
                                      "OfflineRequest{frameNumber: 0, pendingStreams: []}"),
        defaultOf<cd::OfflineStream>(
                "OfflineStream",
                "OfflineStream{id: 0, numOutstandingBuffers: 0, circulatingBufferIds: []}"),
        defaultOf<cd::PhysicalCameraMetadata>(
                "PhysicalCameraMetadata",
                "PhysicalCameraMetadata{fmqMetadataSize: 0, physicalCameraId: , metadata: "
                "CameraMetadata{metadata: []}}"),
        defaultOf<cd::PhysicalCameraSetting>(
                "PhysicalCameraSetting",
                "PhysicalCameraSetting{fmqSettingsSize: 0, physicalCameraId: , settings: "
                "CameraMetadata{metadata: []}}"),
        defaultOf<cd::ShutterMsg>("ShutterMsg",
                                  "ShutterMsg{frameNumber: 0, timestamp: 0, readoutTimestamp: 0}"),
        defaultOf<cd::Stream>(
                "Stream",
                "Stream{id: 0, streamType: OUTPUT, width: 0, height: 0, format: UNSPECIFIED, "
                "usage: CPU_READ_NEVER, dataSpace: UNKNOWN, rotation: ROTATION_0, "
                "physicalCameraId: , bufferSize: 0, groupId: 0, sensorPixelModesUsed: [], "
                "dynamicRangeProfile: 0, useCase: "
                "ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_DEFAULT, "
                "colorSpace: 0}"),
        defaultOf<cd::StreamBuffer>("StreamBuffer", kDefaultStreamBuffer),
        defaultOf<cd::StreamConfiguration>(
                "StreamConfiguration",
                "StreamConfiguration{streams: [], operationMode: NORMAL_MODE, sessionParams: "
                "CameraMetadata{metadata: []}, streamConfigCounter: 0, "
                "multiResolutionInputImage: false, logId: 0}"),
        defaultOf<cc::CameraResourceCost>(
                "CameraResourceCost",
                "CameraResourceCost{resourceCost: 0, conflictingDevices: []}"),
        defaultOf<cc::VendorTag>("VendorTag", "VendorTag{tagId: 0, tagName: , tagType: BYTE}"),
        defaultOf<cc::VendorTagSection>("VendorTagSection",
                                        "VendorTagSection{sectionName: , tags: []}"),
};

class PrintTest : public ::testing::TestWithParam<PrintCase> {};

TEST_P(PrintTest, PrintsTheGeneratedText) {
    EXPECT_EQ(GetParam().print(), GetParam().expected);
}

std::string caseName(const ::testing::TestParamInfo<PrintCase>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(WorkedExamples, PrintTest, ::testing::ValuesIn(kWorkedExamples), caseName);
INSTANTIATE_TEST_SUITE_P(DefaultConstructed, PrintTest, ::testing::ValuesIn(kDefaults), caseName);

}  // namespace
