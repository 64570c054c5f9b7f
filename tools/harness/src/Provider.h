/*
 * Provider: plays the camera provider. It loads a legacy HAL3 module through
 * Aidl2LegacyCameraModule and makes one Aidl2LegacyCameraDevice per usable camera, as a provider
 * service does at start. It owns the module and the devices for the whole run; used from the
 * main thread only.
 */
#pragma once

#include <aidl/android/hardware/camera/device/ICameraDevice.h>

#include <cstdint>
#include <map>
#include <memory>
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

    // The device of a usable camera, or null.
    std::shared_ptr<ICameraDevice> device(int32_t cameraId) const;
    std::string cameraIds() const;

private:
    Provider() = default;

    std::shared_ptr<kovo::aidl2legacy::Aidl2LegacyCameraModule> mModule;
    std::map<int32_t, std::shared_ptr<ICameraDevice>> mDevices;
};

}  // namespace camera_harness
