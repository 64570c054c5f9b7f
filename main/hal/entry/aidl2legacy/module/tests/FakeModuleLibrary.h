/*
 * The tests' handle on a scripted camera module .so (FakeCameraModule.h): opens and resets it,
 * and reaches its script, metadata, call log and event triggers through dlsym. Keeps the library
 * loaded while it lives, so an Aidl2LegacyCameraModule made from the same path shares the copy.
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
        if (mHandle == nullptr) ADD_FAILURE() << dlerror();
        symbol("fake_camera_module_reset", mReset);
        symbol("fake_camera_module_calls", mCalls);
        symbol("fake_camera_module_fire_device_status", mFireDevice);
        symbol("fake_camera_module_fire_torch_status", mFireTorch);
        symbol("fake_camera_module_script", mScript);
        symbol("fake_camera_module_metadata", mMetadata);
        symbol(HAL_MODULE_INFO_SYM_AS_STR, mModule);
        mReset();
    }
    ~FakeModuleLibrary() { dlclose(mHandle); }
    FakeModuleLibrary(const FakeModuleLibrary&) = delete;
    FakeModuleLibrary& operator=(const FakeModuleLibrary&) = delete;

    const std::string& path() const { return mPath; }
    void reset() { mReset(); }
    struct fake_camera_module_script& script() {
        return *mScript;
    }
    camera_module_t& module() { return *mModule; }
    const camera_metadata_t* metadata(int which) const { return mMetadata[which]; }
    std::string calls() const {
        char text[4096];
        mCalls(text, sizeof(text));
        return text;
    }
    bool called(const std::string& call) const { return calls().find(call) != std::string::npos; }
    void fireDeviceStatus(int cameraId, int status) { mFireDevice(cameraId, status); }
    void fireTorchStatus(const char* cameraId, int status) { mFireTorch(cameraId, status); }

private:
    template <typename Pointer>
    void symbol(const char* name, Pointer& out) {
        out = reinterpret_cast<Pointer>(dlsym(mHandle, name));
        ASSERT_NE(nullptr, out) << name;
    }

    std::string mPath;
    void* mHandle;
    decltype(&fake_camera_module_reset) mReset = nullptr;
    decltype(&fake_camera_module_calls) mCalls = nullptr;
    decltype(&fake_camera_module_fire_device_status) mFireDevice = nullptr;
    decltype(&fake_camera_module_fire_torch_status) mFireTorch = nullptr;
    struct fake_camera_module_script* mScript = nullptr;
    camera_metadata_t** mMetadata = nullptr;
    camera_module_t* mModule = nullptr;
};

}  // namespace kovo::aidl2legacy::testing
