// The device openDevice hands out, over a scriptable legacy device: what reaches the module's
// device, what a refused open and a closed device answer, the interposed callbacks of a module
// without readout timestamps, and the CPU meter.
#include <Aidl2LegacyCameraModule.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <system/camera_metadata.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "OneCameraModule.h"
#include "ScriptableLegacyDevice.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::_;
using ::testing::Return;
using Module = Aidl2LegacyCameraModule;
using testing::ScriptableLegacyDevice;
using Entry = ScriptableLegacyDevice::Entry;

int withReadout(int) {
    return 1;
}

int withoutReadout(int) {
    return 0;
}

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// The bridge side: a callback table that records what reaches it.
struct RecordingBridge : camera3_callback_ops_t {
    std::vector<camera3_notify_msg_t> notes;
    std::vector<const camera3_notify_msg_t*> notePointers;
    std::vector<const camera3_capture_result_t*> results;

    RecordingBridge() : camera3_callback_ops_t{} {
        process_capture_result = [](const camera3_callback_ops_t* ops,
                                    const camera3_capture_result_t* result) {
            static_cast<RecordingBridge*>(const_cast<camera3_callback_ops_t*>(ops))
                    ->results.push_back(result);
        };
        notify = [](const camera3_callback_ops_t* ops, const camera3_notify_msg_t* msg) {
            auto* self = static_cast<RecordingBridge*>(const_cast<camera3_callback_ops_t*>(ops));
            self->notes.push_back(*msg);
            self->notePointers.push_back(msg);
        };
    }
};

class GuardTest : public ::testing::Test {
protected:
    void bringUp(tarnic_camera_has_readout_timestamp_t hasReadout = withReadout) {
        Module::ExtensionEntryPoints extensions;
        extensions.hasReadoutTimestamp = hasReadout;
        mModule = Module::createFromModule(mFake.record(), extensions, {}, nullptr);
        ASSERT_NE(nullptr, mModule);
    }
    camera3_device_t* open() {
        camera3_device_t* device = nullptr;
        EXPECT_EQ(0, mModule->openDevice("0", &device));
        return device;
    }

    android::testing::LogCapture mLog;
    ScriptableLegacyDevice mLegacy;
    testing::OneCameraModule mFake{mLegacy.device()};
    std::shared_ptr<Module> mModule;
};

TEST_F(GuardTest, EveryEntryReachesTheModuleDeviceWithItsArguments) {
    bringUp();
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);
    EXPECT_NE(mLegacy.device(), device);
    EXPECT_EQ(mLegacy.device()->common.version, device->common.version);

    MetadataPtr settings(allocate_camera_metadata(1, 8));
    camera3_stream_t stream{};
    camera3_stream_t* streams[] = {&stream};
    camera3_stream_configuration_t configuration{};
    configuration.num_streams = 1;
    configuration.streams = streams;
    camera3_capture_request_t request{};
    request.frame_number = 17;
    auto& mock = mLegacy.mock();
    RecordingBridge bridge;
    EXPECT_CALL(mock, initialize(&bridge)).WillOnce(Return(0));
    EXPECT_CALL(mock, configureStreams(&configuration)).WillOnce(Return(-EINVAL));
    EXPECT_CALL(mock, constructDefaultRequestSettings(CAMERA3_TEMPLATE_MANUAL))
            .WillOnce(Return(settings.get()));
    EXPECT_CALL(mock, processCaptureRequest(&request)).WillOnce(Return(-ENODEV));
    EXPECT_CALL(mock, dump(5));
    EXPECT_CALL(mock, flush()).WillOnce(Return(-EBUSY));
    EXPECT_CALL(mock, signalStreamFlush(1u, _));
    EXPECT_CALL(mock, isReconfigurationRequired(settings.get(), nullptr)).WillOnce(Return(-ENOSYS));
    EXPECT_CALL(mock, close()).WillOnce(Return(-EIO));

    const camera3_device_ops_t* ops = device->ops;
    EXPECT_EQ(0, ops->initialize(device, &bridge));
    EXPECT_EQ(-EINVAL, ops->configure_streams(device, &configuration));
    EXPECT_EQ(settings.get(), ops->construct_default_request_settings(device, 6));
    EXPECT_EQ(-ENODEV, ops->process_capture_request(device, &request));
    ops->dump(device, 5);
    EXPECT_EQ(-EBUSY, ops->flush(device));
    ops->signal_stream_flush(device, 1, streams);
    EXPECT_EQ(-ENOSYS, ops->is_reconfiguration_required(device, settings.get(), nullptr));
    EXPECT_EQ(-EIO, device->common.close(&device->common));
    EXPECT_EQ(std::vector<std::vector<camera3_stream_t*>>{{&stream}}, mLegacy.streamFlushes());
}

// A 3.3 device without the newer entries, or without a table or close at all.
TEST_F(GuardTest, EntriesTheModuleDeviceLacksStayNull) {
    bringUp();
    mLegacy.removeEntry(Entry::kSignalStreamFlush);
    mLegacy.removeEntry(Entry::kIsReconfigurationRequired);
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(nullptr, device->ops->signal_stream_flush);
    EXPECT_EQ(nullptr, device->ops->is_reconfiguration_required);
    EXPECT_EQ(nullptr, device->ops->register_stream_buffers);
    EXPECT_NE(nullptr, device->ops->flush);

    mLegacy.removeOpsTable();
    mLegacy.removeClose();
    device = open();
    ASSERT_NE(nullptr, device);
    EXPECT_EQ(nullptr, device->ops);
    EXPECT_EQ(nullptr, device->common.close);
}

TEST_F(GuardTest, AfterCloseNoEntryReachesTheModuleDevice) {
    bringUp();
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);
    ASSERT_EQ(0, device->common.close(&device->common));
    ASSERT_EQ(1, mLegacy.closeCount());

    auto& mock = mLegacy.mock();
    EXPECT_CALL(mock, initialize(_)).Times(0);
    EXPECT_CALL(mock, configureStreams(_)).Times(0);
    EXPECT_CALL(mock, constructDefaultRequestSettings(_)).Times(0);
    EXPECT_CALL(mock, processCaptureRequest(_)).Times(0);
    EXPECT_CALL(mock, dump(_)).Times(0);
    EXPECT_CALL(mock, flush()).Times(0);
    EXPECT_CALL(mock, signalStreamFlush(_, _)).Times(0);
    EXPECT_CALL(mock, isReconfigurationRequired(_, _)).Times(0);
    EXPECT_CALL(mock, close()).Times(0);

    const camera3_device_ops_t* ops = device->ops;
    camera3_stream_configuration_t configuration{};
    camera3_capture_request_t request{};
    EXPECT_EQ(-ENODEV, ops->initialize(device, nullptr));
    EXPECT_EQ(-ENODEV, ops->configure_streams(device, &configuration));
    EXPECT_EQ(nullptr, ops->construct_default_request_settings(device, 1));
    EXPECT_EQ(-ENODEV, ops->process_capture_request(device, &request));
    ops->dump(device, 1);
    EXPECT_EQ(-ENODEV, ops->flush(device));
    ops->signal_stream_flush(device, 0, nullptr);
    EXPECT_EQ(-ENODEV, ops->is_reconfiguration_required(device, nullptr, nullptr));
    EXPECT_EQ(-ENODEV, device->common.close(&device->common));
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_EQ(9u, mLog.grep("the camera device is closed").size());

    // A new open of the camera is a new device, not the closed one.
    camera3_device_t* reopened = open();
    EXPECT_NE(device, reopened);
}

// The framework gets the status through the session's failed initialize, and nothing is closed.
TEST_F(GuardTest, RefusedOpenGivesADeviceWhoseInitializeFailsWithTheModuleStatus) {
    bringUp();
    for (int status : {-EBUSY, -EUSERS, -ENODEV, -EIO}) {
        mFake.refuseOpens(status);
        camera3_device_t* device = nullptr;
        EXPECT_EQ(status, mModule->openDevice("0", &device)) << status;
        ASSERT_NE(nullptr, device) << status;
        EXPECT_EQ(status, device->ops->initialize(device, nullptr)) << status;
        EXPECT_EQ(-ENODEV, device->ops->flush(device)) << status;
        EXPECT_EQ(0, device->common.close(&device->common)) << status;
        EXPECT_EQ(0, device->common.close(&device->common)) << status;
    }
    EXPECT_EQ(0, mLegacy.closeCount());
}

TEST_F(GuardTest, ModuleWithoutReadoutTimestampsHandsShuttersOnWithReadoutZero) {
    for (auto hasReadout : {tarnic_camera_has_readout_timestamp_t{withoutReadout},
                            tarnic_camera_has_readout_timestamp_t{nullptr}}) {
        bringUp(hasReadout);
        camera3_device_t* device = open();
        ASSERT_NE(nullptr, device);
        RecordingBridge bridge;
        ASSERT_EQ(0, device->ops->initialize(device, &bridge));
        const camera3_callback_ops_t* given = mLegacy.callbackOps();
        ASSERT_NE(nullptr, given);
        ASSERT_NE(&bridge, given);
        EXPECT_EQ(nullptr, given->request_stream_buffers);
        EXPECT_EQ(nullptr, given->return_stream_buffers);

        // What lies behind a standard shutter message is whatever the module's stack held.
        camera3_notify_msg_t shutter;
        std::memset(&shutter, 0xa5, sizeof(shutter));
        shutter.type = CAMERA3_MSG_SHUTTER;
        shutter.message.shutter.frame_number = 12;
        shutter.message.shutter.timestamp = 1000;
        camera3_notify_msg_t error{};
        error.type = CAMERA3_MSG_ERROR;
        error.message.error.frame_number = 13;
        error.message.error.error_code = CAMERA3_MSG_ERROR_REQUEST;
        camera3_capture_result_t result{};
        given->notify(given, &shutter);
        given->notify(given, &error);
        given->process_capture_result(given, &result);

        ASSERT_EQ(2u, bridge.notes.size());
        EXPECT_EQ(CAMERA3_MSG_SHUTTER, bridge.notes[0].type);
        EXPECT_EQ(12u, bridge.notes[0].message.shutter.frame_number);
        EXPECT_EQ(1000u, bridge.notes[0].message.shutter.timestamp);
        EXPECT_EQ(0u, bridge.notes[0].message.shutter.readout_timestamp);
        EXPECT_EQ(&error, bridge.notePointers[1]);
        EXPECT_EQ(std::vector<const camera3_capture_result_t*>{&result}, bridge.results);
    }
}

TEST_F(GuardTest, ModuleWithReadoutTimestampsGetsTheBridgeTableItself) {
    bringUp(withReadout);
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);
    RecordingBridge bridge;
    ASSERT_EQ(0, device->ops->initialize(device, &bridge));
    EXPECT_EQ(&bridge, mLegacy.callbackOps());
}

uint8_t readoutKey(const camera_metadata_t* characteristics) {
    camera_metadata_ro_entry_t entry{};
    if (find_camera_metadata_ro_entry(characteristics, ANDROID_SENSOR_READOUT_TIMESTAMP, &entry) !=
        0) {
        return 0xff;
    }
    return entry.data.u8[0];
}

// The copy keeps the module's entries, is made once, and outlives the call.
TEST_F(GuardTest, CharacteristicsSayReadoutUnsupportedUnlessTheModuleSaysOtherwise) {
    constexpr uint8_t kAbsent = 0xff;
    MetadataPtr plain(allocate_camera_metadata(1, 0));
    const int32_t orientation = 90;
    add_camera_metadata_entry(plain.get(), ANDROID_SENSOR_ORIENTATION, &orientation, 1);
    MetadataPtr declared(allocate_camera_metadata(1, 0));
    const uint8_t hardware = ANDROID_SENSOR_READOUT_TIMESTAMP_HARDWARE;
    add_camera_metadata_entry(declared.get(), ANDROID_SENSOR_READOUT_TIMESTAMP, &hardware, 1);
    struct Case {
        tarnic_camera_has_readout_timestamp_t hasReadout;
        const camera_metadata_t* characteristics;
        bool copied;
        uint8_t key;
    };
    for (const Case& c :
         {Case{withReadout, plain.get(), false, kAbsent},
          Case{withoutReadout, plain.get(), true, ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED},
          Case{nullptr, plain.get(), true, ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED},
          Case{nullptr, declared.get(), false, hardware}}) {
        mFake.setCharacteristics(c.characteristics);
        bringUp(c.hasReadout);
        camera_info first{};
        camera_info second{};
        ASSERT_EQ(0, mModule->getCameraInfo(0, &first));
        ASSERT_EQ(0, mModule->getCameraInfo(0, &second));
        EXPECT_EQ(c.copied, first.static_camera_characteristics != c.characteristics);
        EXPECT_EQ(first.static_camera_characteristics, second.static_camera_characteristics);
        EXPECT_EQ(c.key, readoutKey(first.static_camera_characteristics));
        camera_metadata_ro_entry_t entry{};
        EXPECT_EQ(c.characteristics == plain.get(),
                  find_camera_metadata_ro_entry(first.static_camera_characteristics,
                                                ANDROID_SENSOR_ORIENTATION, &entry) == 0);
    }
}

// A flush under way when close begins finishes on the device; close reaches the module after it.
TEST_F(GuardTest, CloseWaitsForACallInFlightAndNoneStartsAfter) {
    bringUp();
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);
    std::mutex lock;
    std::condition_variable changed;
    bool flushing = false;
    bool release = false;
    std::vector<std::string> order;
    EXPECT_CALL(mLegacy.mock(), flush()).WillOnce([&] {
        std::unique_lock<std::mutex> guard(lock);
        flushing = true;
        changed.notify_all();
        changed.wait(guard, [&] { return release; });
        order.push_back("flush");
        return 0;
    });
    EXPECT_CALL(mLegacy.mock(), close()).WillOnce([&] {
        std::lock_guard<std::mutex> guard(lock);
        order.push_back("close");
        return 0;
    });
    std::thread flusher([&] { EXPECT_EQ(0, device->ops->flush(device)); });
    {
        std::unique_lock<std::mutex> guard(lock);
        changed.wait(guard, [&] { return flushing; });
    }
    std::atomic<int> closeStatus{1};
    std::thread closer([&] { closeStatus = device->common.close(&device->common); });
    // Close has begun (or is about to): new calls are refused while the flush is still inside.
    while (mLog.grep("the camera device is closed").empty()) {
        device->ops->construct_default_request_settings(device, 1);
        std::this_thread::yield();
    }
    EXPECT_EQ(0, mLegacy.closeCount());
    {
        std::lock_guard<std::mutex> guard(lock);
        release = true;
        changed.notify_all();
    }
    flusher.join();
    closer.join();
    EXPECT_EQ(0, closeStatus.load());
    EXPECT_EQ((std::vector<std::string>{"flush", "close"}), order);
}

// Burns CPU inside the module's flush; the meter sees it only while on.
TEST_F(GuardTest, CpuMeterCountsTimeInsideTheModuleOnlyWhileOn) {
    constexpr uint64_t kBurnNs = 5'000'000;
    auto threadCpuNs = [] {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000u + now.tv_nsec;
    };
    ON_CALL(mLegacy.mock(), flush()).WillByDefault([&] {
        const uint64_t start = threadCpuNs();
        while (threadCpuNs() - start < kBurnNs) {
        }
        return 0;
    });
    bringUp();
    camera3_device_t* device = open();
    ASSERT_NE(nullptr, device);

    const uint64_t before = Module::threadCpuInsideModuleNs();
    device->ops->flush(device);
    EXPECT_EQ(before, Module::threadCpuInsideModuleNs());

    Module::setModuleCpuMeterEnabled(true);
    device->ops->flush(device);
    Module::setModuleCpuMeterEnabled(false);
    const uint64_t inside = Module::threadCpuInsideModuleNs() - before;
    EXPECT_GE(inside, kBurnNs);

    uint64_t elsewhere = 0;
    std::thread([&] { elsewhere = Module::threadCpuInsideModuleNs(); }).join();
    EXPECT_EQ(0u, elsewhere);
}

}  // namespace
}  // namespace kovo::aidl2legacy
