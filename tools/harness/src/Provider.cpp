#include "Provider.h"

#include <Aidl2LegacyCameraDevice.h>
#include <Aidl2LegacyCameraModule.h>

#include <cstring>

namespace camera_harness {

using kovo::aidl2legacy::Aidl2LegacyCameraDevice;
using kovo::aidl2legacy::Aidl2LegacyCameraModule;

std::unique_ptr<Provider> Provider::load(const std::string& modulePath, std::string* error) {
    int32_t status = 0;
    auto module = Aidl2LegacyCameraModule::createFromLibrary(modulePath, {}, &status);
    if (!module) {
        *error = "cannot load the HAL module " + modulePath + ": " + strerror(-status);
        return nullptr;
    }
    std::unique_ptr<Provider> provider(new Provider());
    provider->mModule = module;
    for (int32_t id : module->getUsableCameraIds()) {
        Aidl2LegacyCameraDevice::CreationInfo info;
        info.instanceId = id;
        info.module = module;
        auto device = Aidl2LegacyCameraDevice::create(info);
        if (device) provider->mDevices[id] = device;
    }
    if (provider->mDevices.empty()) {
        *error = "the HAL module " + modulePath + " has no usable camera";
        return nullptr;
    }
    return provider;
}

Provider::~Provider() {
    // The devices go before the module they use.
    mDevices.clear();
}

std::shared_ptr<Provider::ICameraDevice> Provider::device(int32_t cameraId) const {
    auto it = mDevices.find(cameraId);
    return it == mDevices.end() ? nullptr : it->second;
}

std::string Provider::cameraIds() const {
    std::string ids;
    for (const auto& [id, device] : mDevices) ids += (ids.empty() ? "" : ", ") + std::to_string(id);
    return ids;
}

}  // namespace camera_harness
