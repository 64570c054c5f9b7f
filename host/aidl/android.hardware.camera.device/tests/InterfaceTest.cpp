// Interface plumbing: Bn classes report this package version and hash, fromBinder() returns the
// local object behind a binder, and the Default classes refuse every call.

#include <aidl/android/hardware/camera/device/BnCameraDevice.h>
#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/BnCameraInjectionSession.h>
#include <aidl/android/hardware/camera/device/BnCameraOfflineSession.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace cc = ::aidl::android::hardware::camera::common;
namespace cd = ::aidl::android::hardware::camera::device;
namespace fmq = ::aidl::android::hardware::common::fmq;

using ::ndk::ScopedAStatus;
using MetadataQueueDesc = fmq::MQDescriptor<int8_t, fmq::SynchronizedReadWrite>;

constexpr char kHash[] = "ac7c7f74993871015f73daff1ea0c7f4d4f85ca7";

// Transaction codes follow declaration order; V3 appended its methods at the end.
static_assert(cd::ICameraDevice::TRANSACTION_getCameraCharacteristics == 1);
static_assert(cd::ICameraDevice::TRANSACTION_getSessionCharacteristics == 12);
static_assert(cd::ICameraDeviceSession::TRANSACTION_processCaptureRequest == 8);
static_assert(cd::ICameraDeviceSession::TRANSACTION_configureStreamsV2 == 12);
static_assert(cd::ICameraDeviceCallback::TRANSACTION_returnStreamBuffers == 4);
static_assert(cd::ICameraOfflineSession::TRANSACTION_setCallback == 3);
static_assert(cd::ICameraInjectionSession::TRANSACTION_getCameraDeviceSession == 2);

class MockDevice : public cd::BnCameraDevice {
public:
    MOCK_METHOD(ScopedAStatus, getCameraCharacteristics, (cd::CameraMetadata*), (override));
    MOCK_METHOD(ScopedAStatus, getPhysicalCameraCharacteristics,
                (const std::string&, cd::CameraMetadata*), (override));
    MOCK_METHOD(ScopedAStatus, getResourceCost, (cc::CameraResourceCost*), (override));
    MOCK_METHOD(ScopedAStatus, isStreamCombinationSupported,
                (const cd::StreamConfiguration&, bool*), (override));
    MOCK_METHOD(ScopedAStatus, open,
                (const std::shared_ptr<cd::ICameraDeviceCallback>&,
                 std::shared_ptr<cd::ICameraDeviceSession>*),
                (override));
    MOCK_METHOD(ScopedAStatus, openInjectionSession,
                (const std::shared_ptr<cd::ICameraDeviceCallback>&,
                 std::shared_ptr<cd::ICameraInjectionSession>*),
                (override));
    MOCK_METHOD(ScopedAStatus, setTorchMode, (bool), (override));
    MOCK_METHOD(ScopedAStatus, turnOnTorchWithStrengthLevel, (int32_t), (override));
    MOCK_METHOD(ScopedAStatus, getTorchStrengthLevel, (int32_t*), (override));
    MOCK_METHOD(ScopedAStatus, constructDefaultRequestSettings,
                (cd::RequestTemplate, cd::CameraMetadata*), (override));
    MOCK_METHOD(ScopedAStatus, isStreamCombinationWithSettingsSupported,
                (const cd::StreamConfiguration&, bool*), (override));
    MOCK_METHOD(ScopedAStatus, getSessionCharacteristics,
                (const cd::StreamConfiguration&, cd::CameraMetadata*), (override));
};

class MockSession : public cd::BnCameraDeviceSession {
public:
    MOCK_METHOD(ScopedAStatus, close, (), (override));
    MOCK_METHOD(ScopedAStatus, configureStreams,
                (const cd::StreamConfiguration&, std::vector<cd::HalStream>*), (override));
    MOCK_METHOD(ScopedAStatus, constructDefaultRequestSettings,
                (cd::RequestTemplate, cd::CameraMetadata*), (override));
    MOCK_METHOD(ScopedAStatus, flush, (), (override));
    MOCK_METHOD(ScopedAStatus, getCaptureRequestMetadataQueue, (MetadataQueueDesc*), (override));
    MOCK_METHOD(ScopedAStatus, getCaptureResultMetadataQueue, (MetadataQueueDesc*), (override));
    MOCK_METHOD(ScopedAStatus, isReconfigurationRequired,
                (const cd::CameraMetadata&, const cd::CameraMetadata&, bool*), (override));
    MOCK_METHOD(ScopedAStatus, processCaptureRequest,
                (const std::vector<cd::CaptureRequest>&, const std::vector<cd::BufferCache>&,
                 int32_t*),
                (override));
    MOCK_METHOD(ScopedAStatus, signalStreamFlush, (const std::vector<int32_t>&, int32_t),
                (override));
    MOCK_METHOD(ScopedAStatus, switchToOffline,
                (const std::vector<int32_t>&, cd::CameraOfflineSessionInfo*,
                 std::shared_ptr<cd::ICameraOfflineSession>*),
                (override));
    MOCK_METHOD(ScopedAStatus, repeatingRequestEnd, (int32_t, const std::vector<int32_t>&),
                (override));
    MOCK_METHOD(ScopedAStatus, configureStreamsV2,
                (const cd::StreamConfiguration&, cd::ConfigureStreamsRet*), (override));
};

class MockCallback : public cd::BnCameraDeviceCallback {
public:
    MOCK_METHOD(ScopedAStatus, notify, (const std::vector<cd::NotifyMsg>&), (override));
    MOCK_METHOD(ScopedAStatus, processCaptureResult, (const std::vector<cd::CaptureResult>&),
                (override));
    MOCK_METHOD(ScopedAStatus, requestStreamBuffers,
                (const std::vector<cd::BufferRequest>&, std::vector<cd::StreamBufferRet>*,
                 cd::BufferRequestStatus*),
                (override));
    MOCK_METHOD(ScopedAStatus, returnStreamBuffers, (const std::vector<cd::StreamBuffer>&),
                (override));
};

class MockOfflineSession : public cd::BnCameraOfflineSession {
public:
    MOCK_METHOD(ScopedAStatus, close, (), (override));
    MOCK_METHOD(ScopedAStatus, getCaptureResultMetadataQueue, (MetadataQueueDesc*), (override));
    MOCK_METHOD(ScopedAStatus, setCallback, (const std::shared_ptr<cd::ICameraDeviceCallback>&),
                (override));
};

class MockInjectionSession : public cd::BnCameraInjectionSession {
public:
    MOCK_METHOD(ScopedAStatus, configureInjectionStreams,
                (const cd::StreamConfiguration&, const cd::CameraMetadata&), (override));
    MOCK_METHOD(ScopedAStatus, getCameraDeviceSession, (std::shared_ptr<cd::ICameraDeviceSession>*),
                (override));
};

// Each server type with the interface it serves.
template <typename Server, typename Interface>
struct Pair {
    using ServerType = Server;
    using InterfaceType = Interface;
};

template <typename P>
class BnTest : public ::testing::Test {};

using ServerTypes = ::testing::Types<Pair<MockDevice, cd::ICameraDevice>,
                                     Pair<MockSession, cd::ICameraDeviceSession>,
                                     Pair<MockCallback, cd::ICameraDeviceCallback>,
                                     Pair<MockOfflineSession, cd::ICameraOfflineSession>,
                                     Pair<MockInjectionSession, cd::ICameraInjectionSession>>;
TYPED_TEST_SUITE(BnTest, ServerTypes);

TYPED_TEST(BnTest, ReportsVersionThreeAndItsHash) {
    std::shared_ptr<typename TypeParam::InterfaceType> server =
            ::ndk::SharedRefBase::make<typename TypeParam::ServerType>();
    int32_t version = 0;
    std::string hash;
    EXPECT_TRUE(server->getInterfaceVersion(&version).isOk());
    EXPECT_TRUE(server->getInterfaceHash(&hash).isOk());
    EXPECT_EQ(version, 3);
    EXPECT_EQ(hash, kHash);
}

TYPED_TEST(BnTest, FromBinderReturnsTheSameLocalObject) {
    using Interface = typename TypeParam::InterfaceType;
    auto server = ::ndk::SharedRefBase::make<typename TypeParam::ServerType>();
    ::ndk::SpAIBinder binder = server->asBinder();
    ASSERT_NE(binder.get(), nullptr);
    EXPECT_EQ(Interface::fromBinder(binder).get(), server.get());
    EXPECT_FALSE(server->isRemote());
}

TYPED_TEST(BnTest, FromBinderOfNothingIsNull) {
    EXPECT_EQ(TypeParam::InterfaceType::fromBinder(::ndk::SpAIBinder()), nullptr);
}

TEST(FromBinderTest, RefusesABinderOfAnotherInterface) {
    auto session = ::ndk::SharedRefBase::make<MockSession>();
    EXPECT_EQ(cd::ICameraDevice::fromBinder(session->asBinder()), nullptr);
    EXPECT_EQ(cd::ICameraOfflineSession::fromBinder(session->asBinder()), nullptr);
    EXPECT_NE(cd::ICameraDeviceSession::fromBinder(session->asBinder()), nullptr);
}

TEST(FromBinderTest, CallsReachTheImplementation) {
    auto device = ::ndk::SharedRefBase::make<MockDevice>();
    auto session = ::ndk::SharedRefBase::make<MockSession>();
    EXPECT_CALL(*device, open(::testing::IsNull(), ::testing::NotNull()))
            .WillOnce([&](const auto&, std::shared_ptr<cd::ICameraDeviceSession>* out) {
                *out = session;
                return ScopedAStatus::ok();
            });
    std::shared_ptr<cd::ICameraDevice> remote = cd::ICameraDevice::fromBinder(device->asBinder());
    ASSERT_NE(remote, nullptr);
    std::shared_ptr<cd::ICameraDeviceSession> opened;
    EXPECT_TRUE(remote->open(nullptr, &opened).isOk());
    EXPECT_EQ(opened, session);
}

TEST(ServiceNameTest, IsTheDescriptorAndTheInstance) {
    EXPECT_EQ(cd::BnCameraDevice::makeServiceName("internal/0"),
              "android.hardware.camera.device.ICameraDevice/internal/0");
}

// Each Default class refuses a real call as an unknown transaction and reports no version.
template <typename Default>
void expectRefuses(const std::function<ScopedAStatus(Default&)>& call) {
    auto object = ::ndk::SharedRefBase::make<Default>();
    ScopedAStatus status = call(*object);
    EXPECT_EQ(status.getExceptionCode(), EX_TRANSACTION_FAILED);
    EXPECT_EQ(status.getStatus(), STATUS_UNKNOWN_TRANSACTION);
    int32_t version = -1;
    std::string hash = "unset";
    EXPECT_TRUE(object->getInterfaceVersion(&version).isOk());
    EXPECT_TRUE(object->getInterfaceHash(&hash).isOk());
    EXPECT_EQ(version, 0);
    EXPECT_EQ(hash, "");
    EXPECT_EQ(object->asBinder().get(), nullptr);
    EXPECT_FALSE(object->isRemote());
}

TEST(DefaultTest, RefusesCallsAndReportsNoVersion) {
    expectRefuses<cd::ICameraDeviceDefault>([](auto& d) { return d.setTorchMode(true); });
    expectRefuses<cd::ICameraDeviceSessionDefault>([](auto& s) { return s.flush(); });
    expectRefuses<cd::ICameraDeviceCallbackDefault>([](auto& c) { return c.notify({}); });
    expectRefuses<cd::ICameraOfflineSessionDefault>([](auto& o) { return o.close(); });
    expectRefuses<cd::ICameraInjectionSessionDefault>([](auto& i) {
        std::shared_ptr<cd::ICameraDeviceSession> session;
        return i.getCameraDeviceSession(&session);
    });
}

}  // namespace
