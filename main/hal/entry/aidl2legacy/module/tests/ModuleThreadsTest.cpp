// Binder threads calling operations while the module reports status changes from its own thread.
#include <Aidl2LegacyCameraModule.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/graphics.h>

#include <atomic>
#include <thread>
#include <vector>

#include "FakeModuleLibrary.h"
#include "StreamCombinations.h"

namespace kovo::aidl2legacy {
namespace {

using android::testing::LogCapture;
using testing::CombinationBuilder;
using testing::FakeModuleLibrary;
using testing::makeStream;

constexpr int kRounds = 200;
constexpr int kCallers = 4;

TEST(ModuleThreadsTest, OperationsCallbacksAndListenerSwapsRunConcurrently) {
    LogCapture log;
    FakeModuleLibrary fake(FAKE_MODULE_PATH);
    std::atomic<int> deviceEvents{0};
    auto countingListener = [&deviceEvents]() {
        Aidl2LegacyCameraModule::StatusListener listener;
        listener.deviceStatusChanged = [&deviceEvents](int32_t, int32_t) { ++deviceEvents; };
        return listener;
    };
    auto module =
            Aidl2LegacyCameraModule::createFromLibrary(fake.path(), countingListener(), nullptr);
    ASSERT_NE(nullptr, module);

    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int caller = 0; caller < kCallers; ++caller) {
        threads.emplace_back([&]() {
            CombinationBuilder combination({makeStream(
                    CAMERA3_STREAM_OUTPUT, HAL_PIXEL_FORMAT_YCBCR_420_888, 1920, 1080)});
            for (int round = 0; round < kRounds; ++round) {
                camera_info info{};
                int32_t level = 0;
                if (module->getCameraInfo(0, &info) != 0 ||
                    module->isStreamCombinationSupported(0, combination.get()) != 0 ||
                    module->setTorchMode("0", round % 2 == 0) != 0 ||
                    module->getTorchStrengthLevel("0", &level) != 0 ||
                    module->constructDefaultRequestSettings(0, CAMERA3_TEMPLATE_STILL_CAPTURE) ==
                            nullptr) {
                    ++failures;
                }
            }
        });
    }
    threads.emplace_back([&]() {
        for (int round = 0; round < kRounds; ++round) {
            fake.fireDeviceStatus(0, CAMERA_DEVICE_STATUS_PRESENT);
        }
    });
    threads.emplace_back([&]() {
        for (int round = 0; round < kRounds; ++round) module->setStatusListener(countingListener());
    });
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(0, failures.load());
    // Every listener counts into the same place, so no event is lost across the swaps.
    EXPECT_EQ(kRounds, deviceEvents.load());
}

}  // namespace
}  // namespace kovo::aidl2legacy
