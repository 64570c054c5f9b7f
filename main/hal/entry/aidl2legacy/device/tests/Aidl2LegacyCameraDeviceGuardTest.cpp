// The device over a real module object whose legacy module refuses a second open, and whose
// device must not be reached once closed: the framework sees statuses, the process lives.
#include <Aidl2LegacyCameraModule.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "Aidl2LegacyCameraDevice.h"
#include "DeviceTestSupport.h"
#include "OneCameraModule.h"
#include "RecordingCameraDeviceCallback.h"
#include "ScriptableLegacyDevice.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::CameraMetadata;
using aidl::android::hardware::camera::device::ICameraDeviceSession;
using aidl::android::hardware::camera::device::RequestTemplate;
using ::testing::_;
using testing::hasStatus;
using Framework = testing::RecordingCameraDeviceCallback;

class GuardedOpenTest : public testing::LoggingTest {
protected:
    testing::ScriptableLegacyDevice mLegacy;
    testing::OneCameraModule mFake{mLegacy.device()};
    std::shared_ptr<Aidl2LegacyCameraModule> mModule =
            Aidl2LegacyCameraModule::createFromModule(mFake.record(), {}, {}, nullptr);
    std::shared_ptr<Aidl2LegacyCameraDevice> mDevice =
            Aidl2LegacyCameraDevice::create({0, mModule, {}});
    std::shared_ptr<Framework> mFramework = ndk::SharedRefBase::make<Framework>();
};

TEST_F(GuardedOpenTest, SecondOpenTheModuleRefusesGivesTheFrameworkItsStatus) {
    for (int refusal : {-EBUSY, -EUSERS}) {
        mFake.refuseOpens(refusal, /*allowedOpens=*/1);
        const int closes = mLegacy.closeCount();
        std::shared_ptr<ICameraDeviceSession> first;
        ASSERT_TRUE(mDevice->open(mFramework, &first).isOk());
        std::shared_ptr<ICameraDeviceSession> second;
        EXPECT_TRUE(hasStatus(mDevice->open(mFramework, &second), refusal)) << refusal;
        EXPECT_EQ(nullptr, second);
        EXPECT_TRUE(logged("[open] fail to create AidlCameraDeviceSession, status=" +
                           std::to_string(refusal)));
        // The refused open closed nothing; the first session still owns the device.
        EXPECT_EQ(closes, mLegacy.closeCount());
        EXPECT_TRUE(first->close().isOk());
        EXPECT_EQ(closes + 1, mLegacy.closeCount());
    }
}

TEST_F(GuardedOpenTest, SessionCallsAfterCloseNeverReachTheLegacyDevice) {
    std::shared_ptr<ICameraDeviceSession> session;
    ASSERT_TRUE(mDevice->open(mFramework, &session).isOk());
    ASSERT_TRUE(session->close().isOk());
    ASSERT_EQ(1, mLegacy.closeCount());

    EXPECT_CALL(mLegacy.mock(), flush()).Times(0);
    EXPECT_CALL(mLegacy.mock(), constructDefaultRequestSettings(_)).Times(0);
    EXPECT_CALL(mLegacy.mock(), close()).Times(0);
    EXPECT_TRUE(hasStatus(session->flush(), -ENODEV));
    CameraMetadata settings;
    settings.metadata = {1, 2, 3};
    EXPECT_TRUE(
            session->constructDefaultRequestSettings(RequestTemplate::PREVIEW, &settings).isOk());
    EXPECT_TRUE(settings.metadata.empty());
    EXPECT_TRUE(hasStatus(session->close(), -ENODEV));
    EXPECT_EQ(1, mLegacy.closeCount());
    ::testing::Mock::VerifyAndClearExpectations(&mLegacy.mock());

    // The camera opens again on a fresh device.
    std::shared_ptr<ICameraDeviceSession> reopened;
    ASSERT_TRUE(mDevice->open(mFramework, &reopened).isOk());
    EXPECT_TRUE(reopened->close().isOk());
    EXPECT_EQ(2, mLegacy.closeCount());
}

}  // namespace
}  // namespace kovo::aidl2legacy
