/*
 * Provider: plays the camera provider. It loads a legacy HAL3 module through
 * Aidl2LegacyCameraModule and makes one Aidl2LegacyCameraDevice per usable camera, as a provider
 * service does at start, and one for a camera the module announces present (an external camera)
 * when it is asked for. It owns the module and the devices for the whole run; used from the main
 * thread only, while announcements arrive on the module's threads (mAnnounced has its own lock).
 */
#pragma once

#include <aidl/android/hardware/camera/device/ICameraDevice.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace kovo::aidl2legacy {
class Aidl2LegacyCameraModule;
}

namespace camera_harness {

class Provider {
public:
    using ICameraDevice = aidl::android::hardware::camera::device::ICameraDevice;

    // Null (with `error` saying why) when the module cannot be loaded or has no usable camera.
    static std::unique_ptr<Provider> load(const std::string& modulePath, std::string* error);
    ~Provider();

    // The device of a usable or announced camera, or null.
    std::shared_ptr<ICameraDevice> device(int32_t cameraId);
    std::string cameraIds() const;

private:
    // Cameras the module announced through its device status callback, with the last status.
    struct Announcements {
        std::mutex lock;
        std::map<int32_t, int32_t> status;
    };

    Provider() = default;
    std::shared_ptr<ICameraDevice> makeDevice(int32_t cameraId);
    bool announcedPresent(int32_t cameraId) const;

    std::shared_ptr<Announcements> mAnnounced = std::make_shared<Announcements>();
    std::shared_ptr<kovo::aidl2legacy::Aidl2LegacyCameraModule> mModule;
    std::map<int32_t, std::shared_ptr<ICameraDevice>> mDevices;
};

}  // namespace camera_harness
