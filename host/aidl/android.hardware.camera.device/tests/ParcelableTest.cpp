// Parcelable value semantics: aggregates, lexicographic comparisons in declaration order, and
// which types are move-only because they own file descriptors.

#include <aidl/android/hardware/camera/common/CameraResourceCost.h>
#include <aidl/android/hardware/camera/common/VendorTagSection.h>
#include <aidl/android/hardware/camera/device/BufferCache.h>
#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <aidl/android/hardware/camera/device/CameraBlob.h>
#include <aidl/android/hardware/camera/device/CameraOfflineSessionInfo.h>
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/CaptureResult.h>
#include <aidl/android/hardware/camera/device/ConfigureStreamsRet.h>
#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraMetadata.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraSetting.h>
#include <aidl/android/hardware/camera/device/StreamBufferRet.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

namespace cc = ::aidl::android::hardware::camera::common;
namespace cd = ::aidl::android::hardware::camera::device;

template <typename T>
constexpr bool kCopyable = std::is_copy_constructible_v<T>&& std::is_copy_assignable_v<T>&&
        std::is_nothrow_move_constructible_v<T>;

template <typename T>
constexpr bool kMoveOnly = !std::is_copy_constructible_v<T> && !std::is_copy_assignable_v<T> &&
                           std::is_move_constructible_v<T> && std::is_move_assignable_v<T>;

template <typename... T>
constexpr bool kAggregates = (std::is_aggregate_v<T> && ...);

static_assert(kAggregates<cd::BufferCache, cd::BufferRequest, cd::CameraBlob, cd::CameraMetadata,
                          cd::CameraOfflineSessionInfo, cd::CaptureRequest, cd::CaptureResult,
                          cd::ConfigureStreamsRet, cd::ErrorMsg, cd::HalStream, cd::OfflineRequest,
                          cd::OfflineStream, cd::PhysicalCameraMetadata, cd::PhysicalCameraSetting,
                          cd::ShutterMsg, cd::Stream, cd::StreamBuffer, cd::StreamBufferRet,
                          cd::StreamConfiguration, cc::CameraResourceCost, cc::VendorTag,
                          cc::VendorTagSection>);

static_assert(kCopyable<cd::BufferCache> && kCopyable<cd::CameraMetadata> &&
              kCopyable<cd::CameraOfflineSessionInfo> && kCopyable<cd::ConfigureStreamsRet> &&
              kCopyable<cd::HalStream> && kCopyable<cd::NotifyMsg> &&
              kCopyable<cd::PhysicalCameraSetting> && kCopyable<cd::Stream> &&
              kCopyable<cd::StreamConfiguration> && kCopyable<cc::VendorTagSection>);

static_assert(kMoveOnly<cd::StreamBuffersVal> && kMoveOnly<cd::StreamBufferRet>);

// These hold their fds only inside vectors, whose copy constructor is declared whatever the
// element: a copy fails to compile, but the traits cannot tell. Moving must stay cheap and safe.
static_assert(std::is_nothrow_move_constructible_v<cd::StreamBuffer> &&
              std::is_nothrow_move_constructible_v<cd::CaptureRequest> &&
              std::is_nothrow_move_constructible_v<cd::CaptureResult>);

TEST(ParcelableTest, DesignatedInitialisersLeaveOtherFieldsAtTheirDefaults) {
    cd::ErrorMsg error{
            .frameNumber = 5, .errorStreamId = -1, .errorCode = cd::ErrorCode::ERROR_REQUEST};
    EXPECT_EQ(error.toString(),
              "ErrorMsg{frameNumber: 5, errorStreamId: -1, errorCode: ERROR_REQUEST}");

    cd::StreamConfiguration config;
    config.streamConfigCounter = 3;
    EXPECT_EQ(config.operationMode, cd::StreamConfigurationMode::NORMAL_MODE);
    EXPECT_EQ(config.logId, 0);
    EXPECT_FALSE(config.multiResolutionInputImage);
}

// Sign of the expected lhs <=> rhs, checked through all six operators.
template <typename T>
void expectOrder(const T& lhs, const T& rhs, int expected) {
    EXPECT_EQ(lhs == rhs, expected == 0) << lhs.toString() << " vs " << rhs.toString();
    EXPECT_EQ(lhs != rhs, expected != 0);
    EXPECT_EQ(lhs < rhs, expected < 0);
    EXPECT_EQ(lhs > rhs, expected > 0);
    EXPECT_EQ(lhs <= rhs, expected <= 0);
    EXPECT_EQ(lhs >= rhs, expected >= 0);
}

TEST(ParcelableTest, FirstDifferingFieldInDeclarationOrderDecides) {
    expectOrder(cd::ShutterMsg{1, 900, 900}, cd::ShutterMsg{2, 0, 0}, -1);
    expectOrder(cd::ShutterMsg{2, 5, 0}, cd::ShutterMsg{2, 4, 900}, 1);
    expectOrder(cd::ShutterMsg{2, 5, 7}, cd::ShutterMsg{2, 5, 7}, 0);
    expectOrder(cd::BufferCache{1, 9}, cd::BufferCache{2, 1}, -1);
    // The last field takes part too.
    expectOrder(cd::BufferCache{1, 9}, cd::BufferCache{1, 10}, -1);
    expectOrder(cd::CameraBlob{cd::CameraBlobId::JPEG, 100},
                cd::CameraBlob{cd::CameraBlobId::JPEG_APP_SEGMENTS, 1}, -1);
}

TEST(ParcelableTest, NestedValuesAndVectorsCompareLexicographically) {
    expectOrder(cd::CameraMetadata{{1, 2}}, cd::CameraMetadata{{1, 2, 0}}, -1);
    expectOrder(cd::CameraMetadata{{200}}, cd::CameraMetadata{{1, 255}}, 1);
    expectOrder(cd::PhysicalCameraSetting{0, "2", {{1}}}, cd::PhysicalCameraSetting{0, "10", {{0}}},
                1);
    cd::HalStream a;
    cd::HalStream b;
    b.enableHalBufferManager = true;
    expectOrder(a, b, -1);
    cd::Stream s1;
    cd::Stream s2;
    s2.sensorPixelModesUsed.push_back(::aidl::android::hardware::camera::metadata::SensorPixelMode::
                                              ANDROID_SENSOR_PIXEL_MODE_DEFAULT);
    expectOrder(s1, s2, -1);
    cc::VendorTagSection v1{"a", {cc::VendorTag{1, "x", cc::CameraMetadataType::BYTE}}};
    cc::VendorTagSection v2{"a", {cc::VendorTag{1, "x", cc::CameraMetadataType::INT32}}};
    expectOrder(v1, v2, -1);
}

TEST(ParcelableTest, BuffersCompareTheirFileDescriptorNumbers) {
    cd::StreamBuffer a;
    cd::StreamBuffer b;
    expectOrder(a, b, 0);
    // Numbers only: nothing is opened, and the numbers are released before the handles close them.
    a.acquireFence.fds.emplace_back(100);
    b.acquireFence.fds.emplace_back(101);
    expectOrder(a, b, -1);
    b.bufferId = -1;
    expectOrder(a, b, 1);
    (void)a.acquireFence.fds[0].release();
    (void)b.acquireFence.fds[0].release();
}

TEST(ParcelableTest, StreamBufferRetComparesItsUnion) {
    cd::StreamBufferRet error;
    cd::StreamBufferRet empty{0, std::vector<cd::StreamBuffer>()};
    expectOrder(error, empty, -1);
    cd::StreamBufferRet otherStream{1, cd::StreamBufferRequestError::NO_BUFFER_AVAILABLE};
    expectOrder(empty, otherStream, -1);
}

}  // namespace
