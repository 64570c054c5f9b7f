// A legacy entry through the guarded device that the module hands out, beside the same call made
// on the module's device directly (the floor), with the CPU meter off and on; and a shutter
// through the callback table interposed for modules without readout timestamps, beside the
// bridge's table called directly.
#include <Aidl2LegacyCameraModule.h>
#include <benchmark/benchmark.h>
#include <hardware/camera3.h>

#include <memory>

#include "OneCameraModule.h"

namespace kovo::aidl2legacy {
namespace {

camera3_device_ops_t sLegacyOps{};
camera3_device_t sLegacy{};
const camera3_callback_ops_t* sGivenCallbacks = nullptr;

int processCaptureRequest(const camera3_device*, camera3_capture_request_t* request) {
    benchmark::DoNotOptimize(request->frame_number);
    return 0;
}

int initialize(const camera3_device*, const camera3_callback_ops_t* callbacks) {
    sGivenCallbacks = callbacks;
    return 0;
}

int hasReadout(int) {
    return 1;
}

// The module object and one opened (guarded) device; `readout`: the module declares readout
// timestamps, so no callback table is interposed.
struct Opened {
    testing::OneCameraModule fake{&sLegacy};
    std::shared_ptr<Aidl2LegacyCameraModule> module;
    camera3_device_t* device = nullptr;

    explicit Opened(bool readout) {
        sLegacyOps.initialize = initialize;
        sLegacyOps.process_capture_request = processCaptureRequest;
        sLegacy.common.tag = HARDWARE_DEVICE_TAG;
        sLegacy.common.version = CAMERA_DEVICE_API_VERSION_3_5;
        sLegacy.ops = &sLegacyOps;
        Aidl2LegacyCameraModule::ExtensionEntryPoints extensions;
        if (readout) extensions.hasReadoutTimestamp = hasReadout;
        module = Aidl2LegacyCameraModule::createFromModule(fake.record(), extensions, {}, nullptr);
        if (module != nullptr) module->openDevice("0", &device);
    }
};

void captureRequest(benchmark::State& state, bool guarded, bool meter) {
    Opened opened(true);
    if (opened.device == nullptr) {
        state.SkipWithError("no device");
        return;
    }
    camera3_device_t* device = guarded ? opened.device : &sLegacy;
    Aidl2LegacyCameraModule::setModuleCpuMeterEnabled(meter);
    camera3_capture_request_t request{};
    for (auto _ : state) {
        ++request.frame_number;
        benchmark::DoNotOptimize(device->ops->process_capture_request(device, &request));
    }
    Aidl2LegacyCameraModule::setModuleCpuMeterEnabled(false);
}

void BM_ProcessCaptureRequestFloor(benchmark::State& state) {
    captureRequest(state, false, false);
}
void BM_ProcessCaptureRequestGuarded(benchmark::State& state) {
    captureRequest(state, true, false);
}
void BM_ProcessCaptureRequestGuardedMetered(benchmark::State& state) {
    captureRequest(state, true, true);
}
BENCHMARK(BM_ProcessCaptureRequestFloor);
BENCHMARK(BM_ProcessCaptureRequestGuarded);
BENCHMARK(BM_ProcessCaptureRequestGuardedMetered);

void noteShutter(const camera3_callback_ops_t*, const camera3_notify_msg_t* msg) {
    benchmark::DoNotOptimize(msg->message.shutter.readout_timestamp);
}

void shutter(benchmark::State& state, bool interposed) {
    Opened opened(!interposed);
    camera3_callback_ops_t bridge{};
    bridge.notify = noteShutter;
    if (opened.device == nullptr || opened.device->ops->initialize(opened.device, &bridge) != 0) {
        state.SkipWithError("no device");
        return;
    }
    const camera3_callback_ops_t* callbacks = sGivenCallbacks;
    camera3_notify_msg_t msg{};
    msg.type = CAMERA3_MSG_SHUTTER;
    for (auto _ : state) {
        ++msg.message.shutter.frame_number;
        callbacks->notify(callbacks, &msg);
    }
}

void BM_ShutterFloor(benchmark::State& state) {
    shutter(state, false);
}
void BM_ShutterInterposed(benchmark::State& state) {
    shutter(state, true);
}
BENCHMARK(BM_ShutterFloor);
BENCHMARK(BM_ShutterInterposed);

}  // namespace
}  // namespace kovo::aidl2legacy
