// Loading a HAL module .so and bringing it up as a provider does.
#include <Aidl2LegacyCameraModule.h>
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>

#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "FakeModuleLibrary.h"

namespace kovo::aidl2legacy {
namespace {

using android::testing::LogCapture;
using testing::FakeModuleLibrary;

size_t countOpenFds() {
    size_t count = 0;
    DIR* dir = opendir("/proc/self/fd");
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
    return count;
}

class ModuleLoadingTest : public ::testing::Test {
protected:
    std::shared_ptr<Aidl2LegacyCameraModule> load(int32_t* status = nullptr) {
        return Aidl2LegacyCameraModule::createFromLibrary(mFake.path(), {}, status);
    }

    LogCapture mLog;
    FakeModuleLibrary mFake{FAKE_MODULE_PATH};
};

struct BringUpCase {
    uint16_t moduleApiVersion;
    const char* expectedCalls;

    friend void PrintTo(const BringUpCase& c, std::ostream* os) {
        *os << "module 0x" << std::hex << c.moduleApiVersion;
    }
};

class ModuleBringUpTest : public ModuleLoadingTest,
                          public ::testing::WithParamInterface<BringUpCase> {};

// init only from 2.4 and set_callbacks only from 2.1; both before anything else.
TEST_P(ModuleBringUpTest, CallsOnlyTheEntriesOfTheModuleVersionInProviderOrder) {
    mFake.module().common.module_api_version = GetParam().moduleApiVersion;
    int32_t status = 1;
    auto module = load(&status);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(0, status);
    EXPECT_EQ(GetParam().expectedCalls, mFake.calls());
    EXPECT_EQ(GetParam().moduleApiVersion, module->getModuleApiVersion());
    EXPECT_EQ(2, module->getNumberOfCameras());
}

INSTANTIATE_TEST_SUITE_P(
        Versions, ModuleBringUpTest,
        ::testing::Values(
                BringUpCase{CAMERA_MODULE_API_VERSION_2_0,
                            "get_number_of_cameras;get_camera_info(0);get_camera_info(1);"},
                BringUpCase{CAMERA_MODULE_API_VERSION_2_3,
                            "set_callbacks;get_number_of_cameras;get_camera_info(0);"
                            "get_camera_info(1);"},
                BringUpCase{CAMERA_MODULE_API_VERSION_2_4,
                            "init;set_callbacks;get_number_of_cameras;get_camera_info(0);"
                            "get_camera_info(1);"},
                BringUpCase{CAMERA_MODULE_API_VERSION_2_5,
                            "init;set_callbacks;get_number_of_cameras;get_camera_info(0);"
                            "get_camera_info(1);"}));

TEST_F(ModuleLoadingTest, CameraWithAnOldDeviceIsReportedAndRefused) {
    auto module = load();
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(std::vector<int32_t>{0}, module->getUsableCameraIds());
    EXPECT_EQ(1u,
              mLog.grep("Camera 1 is not usable: device version 0x301 is older than 3.2").size());

    uint32_t version = 0;
    EXPECT_EQ(0, module->getDeviceVersion(1, &version));
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_1), version);
    camera3_device_t* device = nullptr;
    EXPECT_EQ(-ENODEV, module->openDevice("1", &device));
    EXPECT_EQ(nullptr, device);
    EXPECT_FALSE(mFake.called("open(1)"));
}

struct FailureCase {
    int initStatus;
    int setCallbacksStatus;
    int32_t expectedStatus;
    const char* expectedCalls;
    const char* expectedLog;

    friend void PrintTo(const FailureCase& c, std::ostream* os) { *os << c.expectedLog; }
};

class ModuleBringUpFailureTest : public ModuleLoadingTest,
                                 public ::testing::WithParamInterface<FailureCase> {};

TEST_P(ModuleBringUpFailureTest, StopsAtTheFailingStepAndGivesNoModule) {
    mFake.script().init_status = GetParam().initStatus;
    mFake.script().set_callbacks_status = GetParam().setCallbacksStatus;
    int32_t status = 0;
    EXPECT_EQ(nullptr, load(&status));
    EXPECT_EQ(GetParam().expectedStatus, status);
    EXPECT_EQ(GetParam().expectedCalls, mFake.calls());
    EXPECT_EQ(1u, mLog.grep(GetParam().expectedLog).size());
}

INSTANTIATE_TEST_SUITE_P(
        Steps, ModuleBringUpFailureTest,
        ::testing::Values(FailureCase{-ENODEV, 0, -ENODEV, "init;", "init failed: -19"},
                          // A positive status is not an errno value; it still fails the bring-up.
                          FailureCase{3, 0, -ENODEV, "init;", "init failed: 3"},
                          FailureCase{0, -EINVAL, -EINVAL, "init;set_callbacks;",
                                      "set_callbacks failed: -22"}));

TEST_F(ModuleLoadingTest, MissingFileIsReportedWithTheLoaderMessage) {
    const char* path = "camera.missing-module.so";
    ASSERT_EQ(nullptr, dlopen(path, RTLD_NOW | RTLD_LOCAL));
    std::string loaderMessage = dlerror();

    int32_t status = 0;
    EXPECT_EQ(nullptr, Aidl2LegacyCameraModule::createFromLibrary(path, {}, &status));
    EXPECT_EQ(-EINVAL, status);
    EXPECT_EQ(1u, mLog.grep(loaderMessage).size());
}

TEST_F(ModuleLoadingTest, LibraryWithoutModuleSymbolIsReportedAndClosed) {
    void* library = dlopen(NO_HMI_MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(nullptr, library);
    ASSERT_EQ(nullptr, dlsym(library, HAL_MODULE_INFO_SYM_AS_STR));
    std::string loaderMessage = dlerror();
    dlclose(library);

    int32_t status = 0;
    EXPECT_EQ(nullptr, Aidl2LegacyCameraModule::createFromLibrary(NO_HMI_MODULE_PATH, {}, &status));
    EXPECT_EQ(-EINVAL, status);
    EXPECT_EQ(1u, mLog.grep(loaderMessage).size());
    EXPECT_EQ(nullptr, dlopen(NO_HMI_MODULE_PATH, RTLD_NOW | RTLD_NOLOAD));
}

TEST_F(ModuleLoadingTest, DestructionUnloadsTheLibraryAndLeavesNoFd) {
    // The variant the fixture does not hold open, so the module object holds the only reference.
    const char* path = FAKE_BASIC_MODULE_PATH;
    ASSERT_EQ(nullptr, dlopen(path, RTLD_NOW | RTLD_NOLOAD));
    size_t fdsBefore = countOpenFds();
    {
        auto module = Aidl2LegacyCameraModule::createFromLibrary(path, {}, nullptr);
        ASSERT_NE(nullptr, module);
        camera3_device_t* device = nullptr;
        ASSERT_EQ(0, module->openDevice("0", &device));
        EXPECT_EQ(0, device->common.close(&device->common));
        void* stillLoaded = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(nullptr, stillLoaded);
        dlclose(stillLoaded);
    }
    EXPECT_EQ(nullptr, dlopen(path, RTLD_NOW | RTLD_NOLOAD));
    EXPECT_EQ(fdsBefore, countOpenFds());
}

struct StatusEvents {
    std::mutex lock;
    std::vector<std::pair<int32_t, int32_t>> device;
    std::vector<std::pair<std::string, int32_t>> torch;

    Aidl2LegacyCameraModule::StatusListener listener() {
        return {[this](int32_t id, int32_t status) {
                    std::lock_guard<std::mutex> guard(lock);
                    device.emplace_back(id, status);
                },
                [this](const std::string& id, int32_t status) {
                    std::lock_guard<std::mutex> guard(lock);
                    torch.emplace_back(id, status);
                }};
    }
};

TEST_F(ModuleLoadingTest, TorchStatusReportedDuringBringUpReachesTheCreationListener) {
    StatusEvents events;
    auto module =
            Aidl2LegacyCameraModule::createFromLibrary(mFake.path(), events.listener(), nullptr);
    ASSERT_NE(nullptr, module);
    using Torch = std::pair<std::string, int32_t>;
    EXPECT_EQ(std::vector<Torch>{Torch("0", TORCH_MODE_STATUS_AVAILABLE_OFF)}, events.torch);
}

TEST_F(ModuleLoadingTest, StatusChangesReachTheCurrentListenerOnly) {
    StatusEvents first;
    StatusEvents second;
    auto module =
            Aidl2LegacyCameraModule::createFromLibrary(mFake.path(), first.listener(), nullptr);
    ASSERT_NE(nullptr, module);
    mFake.fireDeviceStatus(1, CAMERA_DEVICE_STATUS_NOT_PRESENT);
    mFake.fireTorchStatus("0", TORCH_MODE_STATUS_AVAILABLE_ON);
    module->setStatusListener(second.listener());
    mFake.fireDeviceStatus(2, CAMERA_DEVICE_STATUS_PRESENT);

    using Device = std::pair<int32_t, int32_t>;
    using Torch = std::pair<std::string, int32_t>;
    EXPECT_EQ(std::vector<Device>{Device(1, CAMERA_DEVICE_STATUS_NOT_PRESENT)}, first.device);
    EXPECT_EQ((std::vector<Torch>{Torch("0", TORCH_MODE_STATUS_AVAILABLE_OFF),
                                  Torch("0", TORCH_MODE_STATUS_AVAILABLE_ON)}),
              first.torch);
    EXPECT_EQ(std::vector<Device>{Device(2, CAMERA_DEVICE_STATUS_PRESENT)}, second.device);
    EXPECT_TRUE(second.torch.empty());
}

}  // namespace
}  // namespace kovo::aidl2legacy
