/*
 * The tests' handle on a scripted camera module .so (FakeCameraModule.h): opens it, resets it,
 * and reaches its script, record and event triggers through dlsym. Keeps the library loaded for
 * its own lifetime, so an Aidl2LegacyCameraModule made from the same path shares the copy.
 */
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>

#include "FakeCameraModule.h"

namespace kovo::aidl2legacy::testing {

class FakeModuleLibrary {
public:
    explicit FakeModuleLibrary(std::string path)
        : mPath(std::move(path)), mHandle(dlopen(mPath.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(nullptr, mHandle) << dlerror();
        if (mHandle == nullptr) return;
        mReset = bind<decltype(&fake_camera_module_reset)>("fake_camera_module_reset");
        mCalls = bind<decltype(&fake_camera_module_calls)>("fake_camera_module_calls");
        mSnapshot = bind<decltype(&fake_camera_module_snapshot)>("fake_camera_module_snapshot");
        mFireDevice = bind<decltype(&fake_camera_module_fire_device_status)>(
                "fake_camera_module_fire_device_status");
        mFireTorch = bind<decltype(&fake_camera_module_fire_torch_status)>(
                "fake_camera_module_fire_torch_status");
        mCharacteristics = bind<decltype(&fake_camera_module_characteristics)>(
                "fake_camera_module_characteristics");
        mPhysical = bind<decltype(&fake_camera_module_physical_characteristics)>(
                "fake_camera_module_physical_characteristics");
        mSession = bind<decltype(&fake_camera_module_session_characteristics)>(
                "fake_camera_module_session_characteristics");
        mScript = static_cast<struct fake_camera_module_script*>(
                dlsym(mHandle, "fake_camera_module_script"));
        mModule = static_cast<camera_module_t*>(dlsym(mHandle, HAL_MODULE_INFO_SYM_AS_STR));
        mReset();
    }
    ~FakeModuleLibrary() {
        if (mHandle != nullptr) dlclose(mHandle);
    }
    FakeModuleLibrary(const FakeModuleLibrary&) = delete;
    FakeModuleLibrary& operator=(const FakeModuleLibrary&) = delete;

    const std::string& path() const { return mPath; }
    bool loaded() const { return mHandle != nullptr; }
    struct fake_camera_module_script& script() {
        return *mScript;
    }
    camera_module_t& module() { return *mModule; }
    void setModuleApiVersion(uint16_t version) { mModule->common.module_api_version = version; }

    std::string calls() const {
        char text[sizeof(fake_camera_module_record::calls)];
        mCalls(text, sizeof(text));
        return text;
    }
    fake_camera_module_record record() const { return mSnapshot(); }
    void fireDeviceStatus(int cameraId, int status) { mFireDevice(cameraId, status); }
    void fireTorchStatus(const char* cameraId, int status) { mFireTorch(cameraId, status); }
    const camera_metadata_t* characteristics(int cameraId) const {
        return mCharacteristics(cameraId);
    }
    const camera_metadata_t* physicalCharacteristics(int id) const { return mPhysical(id); }
    const camera_metadata_t* sessionCharacteristics() const { return mSession(); }

private:
    template <typename Function>
    Function bind(const char* name) {
        auto function = reinterpret_cast<Function>(dlsym(mHandle, name));
        EXPECT_NE(nullptr, function) << name;
        return function;
    }

    std::string mPath;
    void* mHandle;
    decltype(&fake_camera_module_reset) mReset = nullptr;
    decltype(&fake_camera_module_calls) mCalls = nullptr;
    decltype(&fake_camera_module_snapshot) mSnapshot = nullptr;
    decltype(&fake_camera_module_fire_device_status) mFireDevice = nullptr;
    decltype(&fake_camera_module_fire_torch_status) mFireTorch = nullptr;
    decltype(&fake_camera_module_characteristics) mCharacteristics = nullptr;
    decltype(&fake_camera_module_physical_characteristics) mPhysical = nullptr;
    decltype(&fake_camera_module_session_characteristics) mSession = nullptr;
    struct fake_camera_module_script* mScript = nullptr;
    camera_module_t* mModule = nullptr;
};

}  // namespace kovo::aidl2legacy::testing
