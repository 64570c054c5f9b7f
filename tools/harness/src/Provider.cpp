#include "Provider.h"

#include <Aidl2LegacyCameraDevice.h>
#include <Aidl2LegacyCameraModule.h>
#include <hardware/camera_common.h>

#include <cstring>

namespace camera_harness {

using kovo::aidl2legacy::Aidl2LegacyCameraDevice;
using kovo::aidl2legacy::Aidl2LegacyCameraModule;

std::unique_ptr<Provider> Provider::load(const std::string& modulePath, std::string* error) {
    std::unique_ptr<Provider> provider(new Provider());
    Aidl2LegacyCameraModule::StatusListener listener;
    // The module may announce cameras from inside set_callbacks, before load returns.
    listener.deviceStatusChanged = [announced = provider->mAnnounced](int32_t id, int32_t status) {
        std::lock_guard lock(announced->lock);
        announced->status[id] = status;
    };
    int32_t status = 0;
    auto module = Aidl2LegacyCameraModule::createFromLibrary(modulePath, listener, &status);
    if (!module) {
        *error = "cannot load the HAL module " + modulePath + ": " + strerror(-status);
        return nullptr;
    }
    provider->mModule = module;
    for (int32_t id : module->getUsableCameraIds()) {
        if (auto device = provider->makeDevice(id)) provider->mDevices[id] = device;
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

std::shared_ptr<Provider::ICameraDevice> Provider::makeDevice(int32_t cameraId) {
    Aidl2LegacyCameraDevice::CreationInfo info;
    info.instanceId = cameraId;
    info.module = mModule;
    return Aidl2LegacyCameraDevice::create(info);
}

bool Provider::announcedPresent(int32_t cameraId) const {
    std::lock_guard lock(mAnnounced->lock);
    auto it = mAnnounced->status.find(cameraId);
    return it != mAnnounced->status.end() && it->second == CAMERA_DEVICE_STATUS_PRESENT;
}

std::shared_ptr<Provider::ICameraDevice> Provider::device(int32_t cameraId) {
    auto it = mDevices.find(cameraId);
    if (it != mDevices.end()) return it->second;
    if (!announcedPresent(cameraId)) return nullptr;
    auto device = makeDevice(cameraId);
    if (device) mDevices[cameraId] = device;
    return device;
}

std::string Provider::cameraIds() const {
    std::string ids;
    for (const auto& [id, device] : mDevices) ids += (ids.empty() ? "" : ", ") + std::to_string(id);
    std::lock_guard lock(mAnnounced->lock);
    for (const auto& [id, status] : mAnnounced->status) {
        if (status == CAMERA_DEVICE_STATUS_PRESENT && mDevices.count(id) == 0) {
            ids += (ids.empty() ? "" : ", ") + std::to_string(id) + " (announced)";
        }
    }
    return ids;
}

}  // namespace camera_harness
