// The class as other binaries see it (virtual-table order, the object test doubles start from),
// and modules handed in by the caller.
#include <Aidl2LegacyCameraModule.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>

#include <cstring>
#include <ostream>
#include <vector>

#include "StreamCombinations.h"

namespace kovo::aidl2legacy {
namespace {

using android::testing::LogCapture;
using testing::CombinationBuilder;
using testing::makeStream;

// Records which of the nine operations ran.
class SlotProbe : public Aidl2LegacyCameraModule {
public:
    int32_t openDevice(const char*, camera3_device_t**) override { return hit(1); }
    int32_t getCameraInfo(int32_t, camera_info*) override { return hit(2); }
    int32_t setTorchMode(const char*, bool) override { return hit(3); }
    int32_t getPhysicalCameraInfo(int32_t, const camera_metadata_t**) override { return hit(4); }
    int32_t isStreamCombinationSupported(int32_t, const StreamCombination*) override {
        return hit(5);
    }
    int32_t getTorchStrengthLevel(const char*, int32_t*) override { return hit(6); }
    int32_t turnOnTorchWithStrengthLevel(const char*, int32_t) override { return hit(7); }
    const camera_metadata_t* constructDefaultRequestSettings(int32_t, int32_t) override {
        hit(8);
        return nullptr;
    }
    int32_t getSessionCharacteristics(int32_t, const StreamCombination*,
                                      const camera_metadata_t**) override {
        return hit(9);
    }

    std::vector<int> hits;

private:
    int32_t hit(int operation) {
        hits.push_back(operation);
        return 0;
    }
};

// The device library calls the operations through fixed slots (Itanium ABI: the destructor
// takes the first two entries).
TEST(ModuleInterfaceTest, NineOperationsFollowTheDestructorInOrder) {
    SlotProbe probe;
    void** table = *reinterpret_cast<void***>(&probe);
    Aidl2LegacyCameraModule* self = &probe;
    reinterpret_cast<int32_t (*)(void*, const char*, camera3_device_t**)>(table[2])(self, "0",
                                                                                    nullptr);
    reinterpret_cast<int32_t (*)(void*, int32_t, camera_info*)>(table[3])(self, 0, nullptr);
    reinterpret_cast<int32_t (*)(void*, const char*, bool)>(table[4])(self, "0", true);
    reinterpret_cast<int32_t (*)(void*, int32_t, const camera_metadata_t**)>(table[5])(self, 0,
                                                                                       nullptr);
    reinterpret_cast<int32_t (*)(void*, int32_t, const StreamCombination*)>(table[6])(self, 0,
                                                                                      nullptr);
    reinterpret_cast<int32_t (*)(void*, const char*, int32_t*)>(table[7])(self, "0", nullptr);
    reinterpret_cast<int32_t (*)(void*, const char*, int32_t)>(table[8])(self, "0", 1);
    reinterpret_cast<const camera_metadata_t* (*)(void*, int32_t, int32_t)>(table[9])(self, 0, 1);
    reinterpret_cast<int32_t (*)(void*, int32_t, const StreamCombination*, const camera_metadata_t**)>(
            table[10])(self, 0, nullptr, nullptr);
    EXPECT_EQ((std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}), probe.hits);
}

class NoModule : public Aidl2LegacyCameraModule {};

TEST(ModuleInterfaceTest, ObjectWithoutModuleFailsEveryOperationCleanly) {
    LogCapture log;
    NoModule module;
    camera3_device_t* device = nullptr;
    camera_info info{};
    const camera_metadata_t* metadata = nullptr;
    int32_t level = 0;
    CombinationBuilder combination({makeStream(CAMERA3_STREAM_OUTPUT, 0x23, 640, 480)});
    EXPECT_EQ(-ENODEV, module.openDevice("0", &device));
    EXPECT_EQ(-ENODEV, module.getCameraInfo(0, &info));
    EXPECT_EQ(-ENODEV, module.setTorchMode("0", true));
    EXPECT_EQ(-ENODEV, module.getPhysicalCameraInfo(0, &metadata));
    EXPECT_EQ(-ENODEV, module.isStreamCombinationSupported(0, combination.get()));
    EXPECT_EQ(-ENODEV, module.getTorchStrengthLevel("0", &level));
    EXPECT_EQ(-ENODEV, module.turnOnTorchWithStrengthLevel("0", 1));
    EXPECT_EQ(nullptr, module.constructDefaultRequestSettings(0, 1));
    EXPECT_EQ(-ENODEV, module.getSessionCharacteristics(0, combination.get(), &metadata));
    EXPECT_EQ(0, module.getNumberOfCameras());
    EXPECT_TRUE(module.getUsableCameraIds().empty());
    EXPECT_EQ(0, module.getModuleApiVersion());
    uint32_t version = 0;
    EXPECT_EQ(-ENODEV, module.getDeviceVersion(0, &version));
    EXPECT_EQ(nullptr, device);
    EXPECT_EQ(nullptr, metadata);
}

// A module record built in the test and handed in.
struct HandedInModule {
    static inline int setCallbacksCalls = 0;
    static inline camera_metadata_t* characteristics = nullptr;

    static int open(const hw_module_t*, const char*, hw_device_t**) { return -EBUSY; }
    static int numberOfCameras() { return 1; }
    static int cameraInfo(int, camera_info* info) {
        info->device_version = CAMERA_DEVICE_API_VERSION_3_4;
        info->static_camera_characteristics = characteristics;
        return 0;
    }
    static int setCallbacks(const camera_module_callbacks_t*) {
        ++setCallbacksCalls;
        return 0;
    }
    static int torchLevel(const char*, int32_t* level) {
        *level = 4;
        return 0;
    }
    // Stands in for every entry newer than the record's version.
    template <typename... Arguments>
    static int tooNew(Arguments...) {
        ADD_FAILURE() << "an entry newer than the module version was called";
        return 0;
    }
};

class HandedInModuleTest : public ::testing::Test {
protected:
    void SetUp() override {
        HandedInModule::setCallbacksCalls = 0;
        const int32_t configuration[] = {HAL_PIXEL_FORMAT_BLOB, 640, 480, 0};
        mCharacteristics = allocate_camera_metadata(1, 32);
        add_camera_metadata_entry(mCharacteristics, ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS,
                                  configuration, 4);
        HandedInModule::characteristics = mCharacteristics;

        mModule.common.tag = HARDWARE_MODULE_TAG;
        mModule.common.module_api_version = CAMERA_MODULE_API_VERSION_2_1;
        mModule.common.id = CAMERA_HARDWARE_MODULE_ID;
        mModule.common.methods = &mMethods;
        mModule.get_number_of_cameras = HandedInModule::numberOfCameras;
        mModule.get_camera_info = HandedInModule::cameraInfo;
        mModule.set_callbacks = HandedInModule::setCallbacks;
        mModule.init = HandedInModule::tooNew<>;
        mModule.set_torch_mode = HandedInModule::tooNew<const char*, bool>;
        mModule.get_physical_camera_info = HandedInModule::tooNew<int, camera_metadata_t**>;
        mModule.is_stream_combination_supported =
                HandedInModule::tooNew<int, const camera_stream_combination_t*>;
    }
    void TearDown() override { free_camera_metadata(mCharacteristics); }

    LogCapture mLog;
    hw_module_methods_t mMethods{HandedInModule::open};
    camera_module_t mModule{};
    camera_metadata_t* mCharacteristics = nullptr;
};

TEST_F(HandedInModuleTest, EntriesNewerThanTheModuleVersionAreNeverCalled) {
    auto module = Aidl2LegacyCameraModule::createFromModule(&mModule, {}, {}, nullptr);
    ASSERT_NE(nullptr, module);
    EXPECT_EQ(1, HandedInModule::setCallbacksCalls);

    const camera_metadata_t* metadata = nullptr;
    EXPECT_EQ(-ENOSYS, module->setTorchMode("0", true));
    EXPECT_EQ(-ENOSYS, module->getPhysicalCameraInfo(0, &metadata));
    CombinationBuilder listed({makeStream(CAMERA3_STREAM_OUTPUT, HAL_PIXEL_FORMAT_BLOB, 640, 480)});
    EXPECT_EQ(0, module->isStreamCombinationSupported(0, listed.get()));
    camera3_device_t* device = nullptr;
    EXPECT_EQ(-EBUSY, module->openDevice("0", &device));
}

TEST_F(HandedInModuleTest, CallerSuppliedEntryPointsAreUsed) {
    Aidl2LegacyCameraModule::ExtensionEntryPoints extensions;
    extensions.getTorchStrengthLevel = HandedInModule::torchLevel;
    auto module = Aidl2LegacyCameraModule::createFromModule(&mModule, extensions, {}, nullptr);
    ASSERT_NE(nullptr, module);
    int32_t level = 0;
    EXPECT_EQ(0, module->getTorchStrengthLevel("0", &level));
    EXPECT_EQ(4, level);
    EXPECT_EQ(-ENOSYS, module->turnOnTorchWithStrengthLevel("0", 1));
}

TEST_F(HandedInModuleTest, MalformedStaticCharacteristicsFailTheFallbackQuery) {
    // More entries in use than the packet has slots for.
    std::vector<uint64_t> bytes(get_camera_metadata_size(mCharacteristics) / sizeof(uint64_t));
    std::memcpy(bytes.data(), mCharacteristics, get_camera_metadata_size(mCharacteristics));
    const uint32_t entryCount = 50;
    std::memcpy(reinterpret_cast<uint8_t*>(bytes.data()) + 12, &entryCount, sizeof(entryCount));
    HandedInModule::characteristics = reinterpret_cast<camera_metadata_t*>(bytes.data());

    auto module = Aidl2LegacyCameraModule::createFromModule(&mModule, {}, {}, nullptr);
    ASSERT_NE(nullptr, module);
    CombinationBuilder combination(
            {makeStream(CAMERA3_STREAM_OUTPUT, HAL_PIXEL_FORMAT_BLOB, 640, 480)});
    EXPECT_EQ(-ENODEV, module->isStreamCombinationSupported(0, combination.get()));
    EXPECT_EQ(1u, mLog.grep("static characteristics are missing or malformed").size());
}

struct RejectedCase {
    const char* name;
    void (*spoil)(camera_module_t&);

    friend void PrintTo(const RejectedCase& c, std::ostream* os) { *os << c.name; }
};

class RejectedModuleTest : public HandedInModuleTest,
                           public ::testing::WithParamInterface<RejectedCase> {};

TEST_P(RejectedModuleTest, IsRefusedBeforeAnyEntryIsCalled) {
    GetParam().spoil(mModule);
    int32_t status = 0;
    EXPECT_EQ(nullptr, Aidl2LegacyCameraModule::createFromModule(&mModule, {}, {}, &status));
    EXPECT_EQ(-EINVAL, status);
    EXPECT_EQ(0, HandedInModule::setCallbacksCalls);
    EXPECT_EQ(1u, mLog.lines().size());
}

INSTANTIATE_TEST_SUITE_P(
        Records, RejectedModuleTest,
        ::testing::Values(
                RejectedCase{"WrongTag", [](camera_module_t& m) { m.common.tag = 0x1234; }},
                RejectedCase{"NotACameraModule", [](camera_module_t& m) { m.common.id = "gralloc"; }},
                RejectedCase{"Version10",
                             [](camera_module_t& m) {
                                 m.common.module_api_version = CAMERA_MODULE_API_VERSION_1_0;
                             }},
                RejectedCase{"Version30",
                             [](camera_module_t& m) {
                                 m.common.module_api_version = HARDWARE_MODULE_API_VERSION(3, 0);
                             }},
                RejectedCase{"NoOpen", [](camera_module_t& m) { m.common.methods = nullptr; }},
                RejectedCase{"NoCameraInfo",
                             [](camera_module_t& m) { m.get_camera_info = nullptr; }}),
        [](const ::testing::TestParamInfo<RejectedCase>& info) { return info.param.name; });

TEST(HandedInModuleNullTest, NullModuleIsRefused) {
    int32_t status = 0;
    EXPECT_EQ(nullptr, Aidl2LegacyCameraModule::createFromModule(nullptr, {}, {}, &status));
    EXPECT_EQ(-EINVAL, status);
}

}  // namespace
}  // namespace kovo::aidl2legacy
