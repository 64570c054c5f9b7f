// camera_harness: plays the camera provider and the camera framework over the AIDL camera device
// adapter, drives a legacy HAL3 module (the virtual camera by default) and reports.

#include <Aidl2LegacyCameraModule.h>
#include <camera_module_extensions.h>
#include <cutils/properties.h>
#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "CameraInfo.h"
#include "CpuMeter.h"
#include "FrameworkState.h"
#include "Metadata.h"
#include "Options.h"
#include "Progress.h"
#include "Provider.h"
#include "Report.h"
#include "SessionDriver.h"
#include "Soak.h"
#include "TraceFile.h"

namespace camera_harness {
namespace {

constexpr int kExitPassed = 0;
constexpr int kExitRulesBroken = 1;
constexpr int kExitSetUp = 2;

// The virtual camera of the build tree, found relative to this executable.
std::string defaultModulePath() {
    char self[PATH_MAX];
    ssize_t length = readlink("/proc/self/exe", self, sizeof(self) - 1);
    if (length <= 0) return CAMERA_HARNESS_DEFAULT_MODULE;
    std::string path(self, static_cast<size_t>(length));
    return path.substr(0, path.rfind('/') + 1) + CAMERA_HARNESS_DEFAULT_MODULE;
}

int setUpError(const std::string& message) {
    fprintf(stderr, "camera_harness: %s\n", message.c_str());
    return kExitSetUp;
}

// The virtual camera reads its options at every init(); the hbm scenario turns its buffer
// manager on, and --fps max its unpaced frames, before the module is loaded.
void addVirtualCameraOption(const char* item) {
    const char* current = getenv("VIRTUAL_CAMERA_OPTIONS");
    std::string options = current != nullptr && current[0] != '\0'
                                  ? std::string(current) + "," + item
                                  : std::string(item);
    setenv("VIRTUAL_CAMERA_OPTIONS", options.c_str(), 1);
}

// Whether the module's shutter messages carry readout timestamps, as it declares them through
// its optional entry point (absent: the standard message without one). The provider has loaded
// the module already; this only looks it up.
bool moduleHasReadoutTimestamps(const std::string& modulePath, int32_t cameraId) {
    void* library = dlopen(modulePath.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (library == nullptr) return false;
    auto entry = reinterpret_cast<tarnic_camera_has_readout_timestamp_t>(
            dlsym(library, TARNIC_CAMERA_HAS_READOUT_TIMESTAMP_SYM));
    bool has = entry != nullptr && entry(cameraId) != 0;
    dlclose(library);
    return has;
}

// The streams to configure: those asked for, all among the camera's outputs, or the defaults.
bool chooseStreams(const Options& options, const CameraInfo& camera,
                   std::vector<StreamDescription>* streams, std::string* error) {
    const int32_t fps = settingsFps(options);
    *streams = options.streams.empty() ? camera.defaultStreams(fps) : options.streams;
    if (streams->empty()) {
        *error = "the camera has no output that runs at " + std::to_string(fps) + " fps";
        return false;
    }
    for (const auto& stream : *streams) {
        if (camera.findOutput(stream) == nullptr) {
            *error = "the camera has no output " + toString(stream);
            return false;
        }
    }
    return true;
}

int run(const Options& options) {
    for (const auto& [key, value] : options.properties) {
        if (property_set(key.c_str(), value.c_str()) != 0) {
            return setUpError("cannot set property " + key + "=" + value);
        }
    }
    if (options.scenario == Scenario::kHbm) addVirtualCameraOption("hbm=1");
    if (options.fps == kUnpaced) addVirtualCameraOption("unpaced=1");

    const bool defaultModule = options.modulePath.empty();
    const std::string modulePath = defaultModule ? defaultModulePath() : options.modulePath;
    std::unique_ptr<TraceFile> trace;
    if (!options.tracePath.empty()) trace = std::make_unique<TraceFile>();
    CpuMeter meter(trace.get());

    // The module's share of the CPU, measured by the module library around every call into it.
    using kovo::aidl2legacy::Aidl2LegacyCameraModule;
    Aidl2LegacyCameraModule::setModuleCpuMeterEnabled(true);
    CpuMeter::setModuleClock(&Aidl2LegacyCameraModule::threadCpuInsideModuleNs);

    std::string error;
    std::unique_ptr<Provider> provider = Provider::load(modulePath, &error);
    if (!provider) return setUpError(error);
    std::shared_ptr<Provider::ICameraDevice> device = provider->device(options.cameraId);
    if (!device) {
        return setUpError(
                "camera " + std::to_string(options.cameraId) +
                " is not a usable camera of the module (usable: " + provider->cameraIds() + ")");
    }
    aidl::android::hardware::camera::device::CameraMetadata characteristics;
    if (!device->getCameraCharacteristics(&characteristics).isOk() ||
        viewMetadata(characteristics.metadata) == nullptr) {
        return setUpError("getCameraCharacteristics gave no usable characteristics");
    }
    const CameraInfo camera =
            CameraInfo::fromCharacteristics(viewMetadata(characteristics.metadata));
    if (options.scenario == Scenario::kHbm && !camera.halBufferManager) {
        return setUpError(
                "the hbm scenario needs a camera that advertises the HAL buffer "
                "manager (ANDROID_INFO_SUPPORTED_BUFFER_MANAGEMENT_VERSION)");
    }

    RunPlan plan;
    plan.scenario = options.scenario;
    plan.frames = options.frames;
    plan.fps = settingsFps(options);
    plan.unpaced = options.fps == kUnpaced;
    plan.batch = batchSize(options);
    plan.depth = options.depth;
    plan.bufferLayout = options.bufferLayout;
    plan.checkPatterns = options.patternChecking == PatternChecking::kOn ||
                         (options.patternChecking == PatternChecking::kAuto && defaultModule);
    if (!chooseStreams(options, camera, &plan.streams, &error)) return setUpError(error);

    auto state = std::make_shared<FrameworkState>(camera.partialResultCount, camera.halBufferManager,
                                                  plan.bufferLayout, plan.checkPatterns);
    if (!moduleHasReadoutTimestamps(modulePath, options.cameraId)) {
        state->setReadoutRule(ReadoutRule::kZero);
        if (camera.readoutTimestamps) {
            state->report(Rule::kReadoutUnsupported, std::nullopt,
                          "the module has no readout timestamps, but the characteristics do not "
                          "say ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED");
        }
    } else if (camera.readoutTimestamps) {
        state->setReadoutRule(ReadoutRule::kNotBeforeShutter);
    }
    if (options.jsonFrames) state->recordFrames();
    SessionDriver driver(device, camera, plan, state, trace.get());
    RunOutcome outcome;
    SoakMonitor soak;
    if (options.soak) soak.start();
    {
        Progress progress(stderr, plan.frames, [&state] { return state->snapshot(); });
        outcome = driver.run();
    }
    const std::vector<SoakSample> soakSamples = soak.stop();

    RunReport report;
    report.module = modulePath.substr(modulePath.rfind('/') + 1);
    report.cameraId = options.cameraId;
    report.plan = plan;
    report.halBufferManager = camera.halBufferManager;
    report.outcome = outcome;
    report.state = state->snapshot();
    report.shutterLatency = state->shutterLatency();
    report.finalLatency = state->finalLatency();
    report.shutterSpan = state->shutterSpan();
    report.cpu = CpuMeter::totals();
    report.violations = state->violations();
    report.frames = state->frameRecords();
    fputs(summaryText(report).c_str(), stdout);
    bool soakGrew = false;
    if (options.soak) {
        const SoakVerdict verdict = judgeSoak(soakSamples, plan.frames);
        printf("%s\n", verdict.text.c_str());
        soakGrew = verdict.grew;
    }
    fflush(stdout);

    if (!options.jsonPath.empty()) {
        std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(options.jsonPath.c_str(), "w"), fclose);
        const std::string json = jsonReport(report);
        if (!file || fwrite(json.data(), 1, json.size(), file.get()) != json.size()) {
            return setUpError("cannot write " + options.jsonPath + ": " + strerror(errno));
        }
    }
    if (trace && !trace->write(options.tracePath)) {
        return setUpError("cannot write " + options.tracePath + ": " + strerror(errno));
    }
    return report.violations.empty() && !soakGrew ? kExitPassed : kExitRulesBroken;
}

}  // namespace
}  // namespace camera_harness

int main(int argc, char** argv) {
    using namespace camera_harness;
    Options options;
    std::string error;
    if (!parseOptions(std::vector<std::string>(argv + 1, argv + argc), &options, &error)) {
        fprintf(stderr, "camera_harness: %s (see --help)\n", error.c_str());
        return kExitSetUp;
    }
    if (options.help) {
        fputs(usageText().c_str(), stdout);
        return kExitPassed;
    }
    return run(options);
}
