// Server base of ICameraOfflineSession: answers the interface version and hash of this package
// version and creates the object's binder. A server class derives from it and is made with
// ndk::SharedRefBase::make; its own virtual functions follow createBinder().
#pragma once

#include <aidl/android/hardware/camera/device/ICameraOfflineSession.h>
#include <android/binder_interface_utils.h>

#include <cstdint>
#include <string>

namespace aidl::android::hardware::camera::device {

class BnCameraOfflineSession : public ::ndk::BnCInterface<ICameraOfflineSession> {
public:
    BnCameraOfflineSession();
    virtual ~BnCameraOfflineSession();
    ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) final;
    ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) final;

protected:
    ::ndk::SpAIBinder createBinder() override;
};

}  // namespace aidl::android::hardware::camera::device
