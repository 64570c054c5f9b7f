// The module library over a scripted legacy module: bring-up as a provider does it, the operations
// a device calls, and the class as other binaries see it.
#include <Aidl2LegacyCameraModule.h>
#include <StreamCombination.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "FakeModuleLibrary.h"
#include "OpenFds.h"

// The process's copy of a symbol the fake modules carry as well.
extern "C" int tarnic_fake_shared_symbol() {
    return FAKE_OWN_COPY + 1;
}

namespace kovo::aidl2legacy {
namespace {

using ::testing::ElementsAre;
using Module = Aidl2LegacyCameraModule;

constexpr int32_t kYuv = HAL_PIXEL_FORMAT_YCBCR_420_888;
constexpr int32_t kBlob = HAL_PIXEL_FORMAT_BLOB;
constexpr int32_t kOutput = CAMERA3_STREAM_OUTPUT;
constexpr uint32_t kNormal = CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE;

CombinationStream makeStream(int32_t type, int32_t format, uint32_t width, uint32_t height,
                             const char* physicalCameraId = "-1") {
    CombinationStream stream{};
    stream.streamType = type;
    stream.format = format;
    stream.width = width;
    stream.height = height;
    stream.physicalCameraId = physicalCameraId;
    return stream;
}

// A combination as a device hands it over, pointing into the builder's own streams.
class CombinationBuilder {
public:
    explicit CombinationBuilder(std::vector<CombinationStream> streams, uint32_t mode = kNormal,
                                const camera_metadata_t* sessionParameters = nullptr)
        : mStreams(std::move(streams)),
          mCombination{static_cast<uint32_t>(mStreams.size()), mStreams.data(), mode,
                       sessionParameters} {}
    const StreamCombination* get() const { return &mCombination; }

private:
    std::vector<CombinationStream> mStreams;
    StreamCombination mCombination;
};

class ModuleTest : public ::testing::Test {
protected:
    void bringUp(uint16_t moduleApiVersion = CAMERA_MODULE_API_VERSION_2_5) {
        mFake.module().common.module_api_version = moduleApiVersion;
        mModule = Module::createFromLibrary(mFake.path(), {}, nullptr);
        ASSERT_NE(nullptr, mModule);
    }

    android::testing::LogCapture mLog;
    testing::FakeModuleLibrary mFake{FAKE_MODULE_PATH};
    std::shared_ptr<Module> mModule;
};

// The virtual-table slot of a member function, from its Itanium pointer-to-member form: the first
// word is 1 + the slot's byte offset.
template <typename Function>
ptrdiff_t vtableSlot(Function function) {
    ptrdiff_t words[2];
    static_assert(sizeof(function) == sizeof(words));
    std::memcpy(words, &function, sizeof(words));
    return (words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*));
}

// The device library calls the operations through fixed slots, after the destructor's two.
TEST(ModuleInterfaceTest, NineOperationsFollowTheDestructorInOrder) {
    EXPECT_THAT(
            (std::vector<ptrdiff_t>{
                    vtableSlot(&Module::openDevice), vtableSlot(&Module::getCameraInfo),
                    vtableSlot(&Module::setTorchMode), vtableSlot(&Module::getPhysicalCameraInfo),
                    vtableSlot(&Module::isStreamCombinationSupported),
                    vtableSlot(&Module::getTorchStrengthLevel),
                    vtableSlot(&Module::turnOnTorchWithStrengthLevel),
                    vtableSlot(&Module::constructDefaultRequestSettings),
                    vtableSlot(&Module::getSessionCharacteristics)}),
            ElementsAre(2, 3, 4, 5, 6, 7, 8, 9, 10));
}

class NoModule : public Module {};

TEST(ModuleInterfaceTest, ObjectWithoutModuleFailsEveryOperationCleanly) {
    android::testing::LogCapture log;
    NoModule module;
    camera3_device_t* device = nullptr;
    camera_info info{};
    const camera_metadata_t* metadata = nullptr;
    int32_t level = 0;
    uint32_t version = 0;
    CombinationBuilder combination({makeStream(kOutput, kYuv, 640, 480)});
    EXPECT_THAT((std::vector<int32_t>{
                        module.openDevice("0", &device), module.getCameraInfo(0, &info),
                        module.setTorchMode("0", true), module.getPhysicalCameraInfo(0, &metadata),
                        module.isStreamCombinationSupported(0, combination.get()),
                        module.getTorchStrengthLevel("0", &level),
                        module.turnOnTorchWithStrengthLevel("0", 1),
                        module.getSessionCharacteristics(0, combination.get(), &metadata),
                        module.getDeviceVersion(0, &version)}),
                ::testing::Each(-ENODEV));
    EXPECT_EQ(nullptr, module.constructDefaultRequestSettings(0, 1));
    EXPECT_EQ(0, module.getNumberOfCameras());
    EXPECT_EQ(nullptr, metadata);
    // What a device goes on with is refused at once instead of crashing.
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(-ENODEV, device->ops->initialize(device, nullptr));
}

// init only from 2.4 and set_callbacks only from 2.1; both before anything else. Camera 1 has a
// device older than 3.2 and is left out.
TEST_F(ModuleTest, BringUpCallsOnlyTheEntriesOfTheModuleVersionInProviderOrder) {
    const std::string cameras = "get_number_of_cameras;get_camera_info(0);get_camera_info(1);";
    for (const auto& [version, calls] : std::vector<std::pair<uint16_t, std::string>>{
                 {CAMERA_MODULE_API_VERSION_2_0, cameras},
                 {CAMERA_MODULE_API_VERSION_2_3, "set_callbacks;" + cameras},
                 {CAMERA_MODULE_API_VERSION_2_4, "init;set_callbacks;" + cameras},
                 {CAMERA_MODULE_API_VERSION_2_5, "init;set_callbacks;" + cameras}}) {
        mFake.reset();
        mLog.clear();
        bringUp(version);
        EXPECT_EQ(calls, mFake.calls()) << version;
        EXPECT_EQ(version, mModule->getModuleApiVersion());
        EXPECT_EQ(2, mModule->getNumberOfCameras());
        EXPECT_EQ(std::vector<int32_t>{0}, mModule->getUsableCameraIds());
        EXPECT_EQ(
                1u,
                mLog.grep("Camera 1 is not usable: device version 0x301 is older than 3.2").size());
    }
}

TEST_F(ModuleTest, FailingBringUpStepStopsItAndGivesNoModule) {
    struct Case {
        int initStatus;
        int setCallbacksStatus;
        int32_t status;
        std::string calls;
        std::string log;
    };
    // A positive status is not an errno value; it still fails the bring-up.
    for (const Case& c :
         {Case{-ENODEV, 0, -ENODEV, "init;", "init failed: -19"},
          Case{3, 0, -ENODEV, "init;", "init failed: 3"},
          Case{0, -EINVAL, -EINVAL, "init;set_callbacks;", "set_callbacks failed: -22"}}) {
        mFake.reset();
        mFake.script().init_status = c.initStatus;
        mFake.script().set_callbacks_status = c.setCallbacksStatus;
        int32_t status = 0;
        EXPECT_EQ(nullptr, Module::createFromLibrary(mFake.path(), {}, &status)) << c.log;
        EXPECT_EQ(c.status, status) << c.log;
        EXPECT_EQ(c.calls, mFake.calls()) << c.log;
        EXPECT_EQ(1u, mLog.grep(c.log).size()) << c.log;
    }
}

// A missing file or one without a module record: the loader's message is logged and nothing stays
// loaded (none of its code has run as a module's).
TEST_F(ModuleTest, LibrariesThatAreNoModuleAreReportedAndClosed) {
    for (const char* path : {"camera.missing-module.so", NO_HMI_MODULE_PATH}) {
        void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (library != nullptr) dlsym(library, HAL_MODULE_INFO_SYM_AS_STR);
        const std::string loaderMessage = dlerror();
        if (library != nullptr) dlclose(library);

        int32_t status = 0;
        EXPECT_EQ(nullptr, Module::createFromLibrary(path, {}, &status));
        EXPECT_EQ(-EINVAL, status);
        EXPECT_EQ(1u, mLog.grep(loaderMessage).size()) << path;
        EXPECT_EQ(nullptr, dlopen(path, RTLD_NOW | RTLD_NOLOAD)) << path;
    }
}

// RTLD_LOCAL keeps a module's symbols to itself, not its calls: they bind to the process's copy
// of a symbol it carries too. RTLD_DEEPBIND, where offered, makes it use its own.
TEST_F(ModuleTest, ModuleUsesItsOwnCopyOfASymbolOnlyWhenDeepBound) {
    bringUp();
    auto sharedSymbol = [](const char* path) {
        void* library = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
        if (library == nullptr) return -1;
        auto call = reinterpret_cast<int (*)()>(dlsym(library, "fake_camera_module_shared_symbol"));
        const int copy = call != nullptr ? call() : -1;
        dlclose(library);
        return copy;
    };
    EXPECT_EQ(FAKE_OWN_COPY + 1, sharedSymbol(FAKE_MODULE_PATH));

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizer runtimes refuse RTLD_DEEPBIND";
#elif !defined(RTLD_DEEPBIND)
    int32_t status = 0;
    EXPECT_EQ(nullptr, Module::createFromLibrary(FAKE_DEEPBIND_MODULE_PATH, {}, &status,
                                                 Module::LibraryIsolation::kDeepBind));
    EXPECT_EQ(-ENOSYS, status);
#else
    auto deepBound = Module::createFromLibrary(FAKE_DEEPBIND_MODULE_PATH, {}, nullptr,
                                               Module::LibraryIsolation::kDeepBind);
    ASSERT_NE(nullptr, deepBound);
    EXPECT_EQ(FAKE_OWN_COPY, sharedSymbol(FAKE_DEEPBIND_MODULE_PATH));
#endif
}

// The variant without the optional entry points, which the fixture does not hold open: it stays
// loaded after the module object is gone, as the module's threads might still run.
TEST(ModuleWithoutExtensionsTest, AnswersTheFallbacksAndStaysLoaded) {
    android::testing::LogCapture log;
    const char* path = FAKE_BASIC_MODULE_PATH;
    const size_t fdsBefore = testing::countOpenFds();
    {
        auto module = Module::createFromLibrary(path, {}, nullptr);
        ASSERT_NE(nullptr, module);
        EXPECT_EQ(nullptr, module->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_PREVIEW));
        CombinationBuilder combination({makeStream(kOutput, kYuv, 1920, 1080)});
        const camera_metadata_t* characteristics = nullptr;
        EXPECT_EQ(-ENOSYS,
                  module->getSessionCharacteristics(0, combination.get(), &characteristics));
        EXPECT_EQ(nullptr, characteristics);
        int32_t level = -1;
        EXPECT_EQ(-ENOSYS, module->getTorchStrengthLevel("0", &level));
        EXPECT_EQ(-1, level);
        EXPECT_EQ(-ENOSYS, module->turnOnTorchWithStrengthLevel("0", 3));
        camera3_device_t* device = nullptr;
        ASSERT_EQ(0, module->openDevice("0", &device));
        EXPECT_EQ(0, device->common.close(&device->common));
    }
    void* stillLoaded = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    EXPECT_NE(nullptr, stillLoaded);
    if (stillLoaded != nullptr) dlclose(stillLoaded);
    EXPECT_EQ(fdsBefore, testing::countOpenFds());
}

// Handed in at 2.1 with one entry point of the caller's: entries newer than the version are never
// called, and only the given extension is used.
TEST_F(ModuleTest, HandedInModuleUsesTheEntriesOfItsVersionAndTheGivenExtensions) {
    mFake.module().common.module_api_version = CAMERA_MODULE_API_VERSION_2_1;
    Module::ExtensionEntryPoints extensions;
    extensions.getTorchStrengthLevel = [](const char*, int32_t* level) {
        *level = 4;
        return 0;
    };
    int32_t status = 1;
    auto module = Module::createFromModule(&mFake.module(), extensions, {}, &status);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(0, status);
    const camera_metadata_t* metadata = nullptr;
    EXPECT_EQ(-ENOSYS, module->setTorchMode("0", true));
    EXPECT_EQ(-ENOSYS, module->getPhysicalCameraInfo(0, &metadata));
    CombinationBuilder listed({makeStream(kOutput, kBlob, 4000, 3000)});
    EXPECT_EQ(0, module->isStreamCombinationSupported(0, listed.get()));
    int32_t level = 0;
    EXPECT_EQ(0, module->getTorchStrengthLevel("0", &level));
    EXPECT_EQ(4, level);
    EXPECT_EQ(-ENOSYS, module->turnOnTorchWithStrengthLevel("0", 1));
    EXPECT_EQ(
            "set_callbacks;get_number_of_cameras;get_camera_info(0);get_camera_info(1);"
            "get_camera_info(0);",
            mFake.calls());
}

TEST_F(ModuleTest, BrokenModuleRecordsAreRefusedBeforeAnyEntryIsCalled) {
    const std::vector<std::function<void(camera_module_t&)>> spoils = {
            [](camera_module_t& m) { m.common.tag = 0x1234; },
            [](camera_module_t& m) { m.common.id = "gralloc"; },
            [](camera_module_t& m) { m.common.module_api_version = CAMERA_MODULE_API_VERSION_1_0; },
            [](camera_module_t& m) { m.common.module_api_version = 0x300; },
            [](camera_module_t& m) { m.common.methods = nullptr; },
            [](camera_module_t& m) { m.get_camera_info = nullptr; },
    };
    for (size_t i = 0; i < spoils.size(); ++i) {
        camera_module_t record = mFake.module();
        spoils[i](record);
        mLog.clear();
        int32_t status = 0;
        EXPECT_EQ(nullptr, Module::createFromModule(&record, {}, {}, &status)) << i;
        EXPECT_EQ(-EINVAL, status) << i;
        EXPECT_EQ(1u, mLog.lines().size()) << i;
    }
    int32_t status = 0;
    EXPECT_EQ(nullptr, Module::createFromModule(nullptr, {}, {}, &status));
    EXPECT_EQ(-EINVAL, status);
    EXPECT_EQ("", mFake.calls());
}

struct StatusEvents {
    std::mutex lock;
    std::vector<std::pair<std::string, int32_t>> events;

    Module::StatusListener listener() {
        auto record = [this](std::string event, int32_t status) {
            std::lock_guard<std::mutex> guard(lock);
            events.emplace_back(std::move(event), status);
        };
        return {[record](int32_t id, int32_t status) { record(std::to_string(id), status); },
                [record](const std::string& id, int32_t status) { record("torch " + id, status); }};
    }
};

// The first torch status arrives during the bring-up, while set_callbacks runs.
TEST_F(ModuleTest, StatusChangesReachTheCurrentListenerOnly) {
    StatusEvents first;
    StatusEvents second;
    mModule = Module::createFromLibrary(mFake.path(), first.listener(), nullptr);
    ASSERT_NE(nullptr, mModule);
    mFake.fireDeviceStatus(1, CAMERA_DEVICE_STATUS_NOT_PRESENT);
    mFake.fireTorchStatus("0", TORCH_MODE_STATUS_AVAILABLE_ON);
    mModule->setStatusListener(second.listener());
    mFake.fireDeviceStatus(2, CAMERA_DEVICE_STATUS_PRESENT);

    using Event = std::pair<std::string, int32_t>;
    EXPECT_THAT(first.events, ElementsAre(Event("torch 0", TORCH_MODE_STATUS_AVAILABLE_OFF),
                                          Event("1", CAMERA_DEVICE_STATUS_NOT_PRESENT),
                                          Event("torch 0", TORCH_MODE_STATUS_AVAILABLE_ON)));
    EXPECT_THAT(second.events, ElementsAre(Event("2", CAMERA_DEVICE_STATUS_PRESENT)));
}

// Announcements make any id usable or unusable; a built-in camera too old stays unusable.
TEST_F(ModuleTest, AnnouncedCamerasBecomeUsableAndUnusable) {
    bringUp();
    camera_info info{};
    camera3_device_t* device = nullptr;
    EXPECT_EQ(-ENODEV, mModule->getCameraInfo(1000, &info));
    EXPECT_EQ(-ENODEV, mModule->openDevice("1000", &device));

    mFake.fireDeviceStatus(1000, CAMERA_DEVICE_STATUS_PRESENT);
    mFake.fireDeviceStatus(1, CAMERA_DEVICE_STATUS_PRESENT);
    EXPECT_EQ((std::vector<int32_t>{0, 1000}), mModule->getUsableCameraIds());
    mModule->openDevice("1000", &device);
    mModule->getCameraInfo(1000, &info);
    EXPECT_TRUE(mFake.called("open(1000);get_camera_info(1000);")) << mFake.calls();

    mFake.fireDeviceStatus(1000, CAMERA_DEVICE_STATUS_NOT_PRESENT);
    mFake.fireDeviceStatus(0, CAMERA_DEVICE_STATUS_ENUMERATING);
    EXPECT_EQ(std::vector<int32_t>{}, mModule->getUsableCameraIds());
    const std::string callsBefore = mFake.calls();
    EXPECT_EQ(-ENODEV, mModule->openDevice("1000", &device));
    EXPECT_EQ(-ENODEV, mModule->openDevice("0", &device));
    EXPECT_EQ(-ENODEV, mModule->getCameraInfo(0, &info));
    EXPECT_EQ(callsBefore, mFake.calls());
    mFake.fireDeviceStatus(0, CAMERA_DEVICE_STATUS_PRESENT);
    EXPECT_EQ(std::vector<int32_t>{0}, mModule->getUsableCameraIds());
}

// Ids past the built-in cameras ("7") were never announced; camera 1's device is too old.
TEST_F(ModuleTest, OpenDeviceOpensOnlyUsableCamerasNamedByADecimalId) {
    bringUp();
    camera3_device_t* opened = nullptr;
    ASSERT_EQ(0, mModule->openDevice("0", &opened));
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_5), opened->common.version);
    EXPECT_EQ(&mFake.module().common, opened->common.module);
    EXPECT_EQ(0, opened->common.close(&opened->common));
    // The refused ones still hand out a device, whose initialize answers the status.
    for (const auto& [id, status] :
         std::vector<std::pair<const char*, int32_t>>{{"", -EINVAL},
                                                      {"abc", -EINVAL},
                                                      {"-1", -EINVAL},
                                                      {"-0", -EINVAL},
                                                      {"0 ", -EINVAL},
                                                      {"99999999999", -EINVAL},
                                                      {"1", -ENODEV},
                                                      {"7", -ENODEV},
                                                      {nullptr, -EINVAL}}) {
        mFake.reset();
        camera3_device_t* device = nullptr;
        EXPECT_EQ(status, mModule->openDevice(id, &device)) << id;
        ASSERT_NE(nullptr, device) << id;
        EXPECT_EQ(status, device->ops->initialize(device, nullptr)) << id;
        EXPECT_FALSE(mFake.called("open(")) << id;
    }
    EXPECT_EQ(-EINVAL, mModule->openDevice("0", nullptr));

    camera3_device_t* device = nullptr;
    mFake.script().opened_device_version = CAMERA_DEVICE_API_VERSION_3_1;
    EXPECT_EQ(-ENODEV, mModule->openDevice("0", &device));
    EXPECT_TRUE(mFake.called("open(0);close(0);"));
}

// Before 2.4 the record's cost fields are not the module's: they read as "unknown".
TEST_F(ModuleTest, CameraInfoCarriesTheCostFieldsOfTheModuleVersion) {
    for (const auto& [version, cost, conflicts] :
         {std::tuple{CAMERA_MODULE_API_VERSION_2_5, 50, 1u},
          std::tuple{CAMERA_MODULE_API_VERSION_2_3, 100, 0u}}) {
        bringUp(version);
        camera_info info{};
        info.resource_cost = 7;
        info.conflicting_devices_length = 9;
        ASSERT_EQ(0, mModule->getCameraInfo(0, &info));
        EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_5), info.device_version);
        EXPECT_EQ(mFake.metadata(FAKE_STATIC_CHARACTERISTICS), info.static_camera_characteristics);
        EXPECT_EQ(cost, info.resource_cost);
        EXPECT_EQ(conflicts, info.conflicting_devices_length);
    }
}

TEST_F(ModuleTest, TorchModeAndPhysicalCameraInfoReachTheModule) {
    bringUp();
    EXPECT_EQ(0, mModule->setTorchMode("0", true));
    const camera_metadata_t* characteristics = nullptr;
    ASSERT_EQ(0, mModule->getPhysicalCameraInfo(3, &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_PHYSICAL_CHARACTERISTICS_3), characteristics);
    EXPECT_EQ(-EINVAL, mModule->getPhysicalCameraInfo(9, &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_PHYSICAL_CHARACTERISTICS_3), characteristics);
    EXPECT_TRUE(mFake.called("set_torch_mode(0,1);get_physical_camera_info(3);"));
}

// The module sees legacy streams, with an empty physical camera id for the device's "-1"; when it
// cannot answer, the static configurations do.
TEST_F(ModuleTest, CombinationQueryHandsTheLegacyStreamsToTheModuleAt25) {
    bringUp();
    CombinationStream preview = makeStream(kOutput, kYuv, 1920, 1080);
    preview.usage = 0x900;
    preview.dataSpace = 0x8c20000;
    preview.rotation = 1;
    preview.groupId = 77;  // not part of the legacy stream
    CombinationBuilder combination({preview, makeStream(kOutput, kBlob, 4000, 3000, "2")}, 0x8001);
    mFake.script().combination_status = -EINVAL;
    EXPECT_EQ(-EINVAL, mModule->isStreamCombinationSupported(0, combination.get()));
    EXPECT_TRUE(
            mFake.called("is_stream_combination_supported(0,mode 8001:"
                         "[0 1920x1080 23 900 8c20000 1 ][0 4000x3000 21 0 0 0 2]);"))
            << mFake.calls();

    mFake.script().combination_status = -ENOSYS;
    CombinationBuilder listed({makeStream(kOutput, kYuv, 1920, 1080)});
    CombinationBuilder unlisted({makeStream(kOutput, kYuv, 640, 480)});
    EXPECT_EQ(0, mModule->isStreamCombinationSupported(0, listed.get()));
    EXPECT_EQ(-EINVAL, mModule->isStreamCombinationSupported(0, unlisted.get()));
}

TEST_F(ModuleTest, ModuleBefore25IsAnsweredFromStaticConfigurations) {
    struct Case {
        std::vector<CombinationStream> streams;
        int32_t status;
        uint32_t operationMode = kNormal;
    };
    const int32_t bidirectional = CAMERA3_STREAM_BIDIRECTIONAL;
    const std::vector<Case> cases = {
            {{makeStream(kOutput, kYuv, 1920, 1080), makeStream(kOutput, kBlob, 4000, 3000)}, 0},
            {{makeStream(kOutput, kYuv, 1920, 1080), makeStream(kOutput, kBlob, 1920, 1080)},
             -EINVAL},
            {{makeStream(kOutput, HAL_PIXEL_FORMAT_RAW16, 4000, 3000)}, -EINVAL},
            {{makeStream(CAMERA3_STREAM_INPUT, HAL_PIXEL_FORMAT_RAW16, 4000, 3000)}, 0},
            {{makeStream(bidirectional, kYuv, 1920, 1080)}, 0},
            {{makeStream(bidirectional, kBlob, 4000, 3000)}, -EINVAL},
            {{makeStream(kOutput, kYuv, 1920, 1080)},
             -ENOSYS,
             CAMERA3_STREAM_CONFIGURATION_CONSTRAINED_HIGH_SPEED_MODE},
    };
    bringUp(CAMERA_MODULE_API_VERSION_2_4);
    for (size_t i = 0; i < cases.size(); ++i) {
        CombinationBuilder combination(cases[i].streams, cases[i].operationMode);
        EXPECT_EQ(cases[i].status, mModule->isStreamCombinationSupported(0, combination.get())) << i;
    }
    EXPECT_FALSE(mFake.called("is_stream_combination_supported"));

    // Characteristics the module hands out must be well formed before they are read.
    static std::vector<uint64_t> malformed;
    const camera_metadata_t* good = mFake.metadata(FAKE_STATIC_CHARACTERISTICS);
    malformed.resize(get_camera_metadata_size(good) / sizeof(uint64_t));
    std::memcpy(malformed.data(), good, get_camera_metadata_size(good));
    reinterpret_cast<uint32_t*>(malformed.data())[3] = 50;  // more entries than it has room for
    mFake.module().get_camera_info = [](int, camera_info* info) {
        info->static_camera_characteristics = reinterpret_cast<camera_metadata_t*>(malformed.data());
        return 0;
    };
    EXPECT_EQ(-ENODEV,
              mModule->isStreamCombinationSupported(0, CombinationBuilder(cases[0].streams).get()));
    EXPECT_EQ(1u, mLog.grep("static characteristics are missing or malformed").size());
}

TEST_F(ModuleTest, OptionalEntryPointsServeSettingsCharacteristicsAndTorchStrength) {
    bringUp();
    EXPECT_EQ(mFake.metadata(FAKE_STILL_CAPTURE_SETTINGS),
              mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_STILL_CAPTURE));
    EXPECT_EQ(nullptr, mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_MANUAL));
    EXPECT_EQ(nullptr, mModule->constructDefaultRequestSettings(1, CAMERA3_TEMPLATE_PREVIEW));
    EXPECT_FALSE(mFake.called("default_request_settings(1,"));

    const camera_metadata_t* parameters = mFake.metadata(FAKE_STILL_CAPTURE_SETTINGS);
    CombinationBuilder combination({makeStream(kOutput, kYuv, 1280, 720, "3")}, kNormal, parameters);
    const camera_metadata_t* characteristics = nullptr;
    EXPECT_EQ(0, mModule->getSessionCharacteristics(0, combination.get(), &characteristics));
    EXPECT_EQ(mFake.metadata(FAKE_SESSION_CHARACTERISTICS), characteristics);
    char expected[128];
    snprintf(expected, sizeof(expected), "mode 0:[0 1280x720 23 0 0 0 3],%p);",
             static_cast<const void*>(parameters));
    EXPECT_TRUE(mFake.called(expected)) << mFake.calls();

    EXPECT_EQ(0, mModule->turnOnTorchWithStrengthLevel("0", 5));
    int32_t level = 0;
    EXPECT_EQ(0, mModule->getTorchStrengthLevel("0", &level));
    EXPECT_EQ(5, level);
    EXPECT_EQ(-EINVAL, mModule->turnOnTorchWithStrengthLevel("0", 11));
}

// Binder threads call operations while the module reports status changes from its own thread and
// the provider swaps listeners.
TEST_F(ModuleTest, OperationsCallbacksAndListenerSwapsRunConcurrently) {
    constexpr int kRounds = 200;
    std::atomic<int> deviceEvents{0};
    auto countingListener = [&deviceEvents]() {
        Module::StatusListener listener;
        listener.deviceStatusChanged = [&deviceEvents](int32_t, int32_t) { ++deviceEvents; };
        return listener;
    };
    bringUp();
    mModule->setStatusListener(countingListener());
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int caller = 0; caller < 4; ++caller) {
        threads.emplace_back([&]() {
            CombinationBuilder combination({makeStream(kOutput, kYuv, 1920, 1080)});
            for (int round = 0; round < kRounds; ++round) {
                camera_info info{};
                int32_t level = 0;
                if (mModule->getCameraInfo(0, &info) != 0 ||
                    mModule->isStreamCombinationSupported(0, combination.get()) != 0 ||
                    mModule->setTorchMode("0", round % 2 == 0) != 0 ||
                    mModule->getTorchStrengthLevel("0", &level) != 0 ||
                    mModule->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_STILL_CAPTURE) ==
                            nullptr) {
                    ++failures;
                }
            }
        });
    }
    threads.emplace_back([&]() {
        for (int round = 0; round < kRounds; ++round)
            mFake.fireDeviceStatus(0, CAMERA_DEVICE_STATUS_PRESENT);
    });
    threads.emplace_back([&]() {
        for (int round = 0; round < kRounds; ++round)
            mModule->setStatusListener(countingListener());
    });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, failures.load());
    // Every listener counts into the same place, so no event is lost across the swaps.
    EXPECT_EQ(kRounds, deviceEvents.load());
}

}  // namespace
}  // namespace kovo::aidl2legacy
