/*
 * One open session over a scriptable legacy device, with a real callback bridge, a real buffer
 * handle cache and a recording framework, for the fuzz targets of the framework's calls. Made
 * afresh for each input; single-threaded.
 */
#pragma once

#include <aidl/android/hardware/camera/device/StreamConfiguration.h>

#include <memory>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "Aidl2LegacyCameraDeviceSession.h"
#include "FuzzSupport.h"
#include "RecordingCameraDeviceCallback.h"
#include "ScriptableLegacyDevice.h"

namespace kovo::aidl2legacy::fuzz {

class SessionFixture {
public:
    using Session = Aidl2LegacyCameraDeviceSession;

    SessionFixture() {
        Session::ResultInfo info;
        mSession = Session::create({0, mLegacy.device(), mBridge}, info);
        if (mSession == nullptr || mSession->open(mFramework) != 0) abort();
    }
    ~SessionFixture() {
        if (mSession != nullptr) mSession->close();
    }

    testing::ScriptableLegacyDevice mLegacy;
    std::shared_ptr<testing::RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mBridge =
            Aidl2LegacyCameraDeviceCallback::create({0, mFramework});
    std::shared_ptr<Session> mSession;
};

}  // namespace kovo::aidl2legacy::fuzz
