/*
 * The harness command line: what to load, which camera, which scenario, which streams, and where
 * the reports go. parseOptions() fills an Options record from argv; it has no side effects, so
 * the caller applies properties and environment afterwards. Plain values, no threads.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace camera_harness {

enum class Scenario { kBasic, kBurst, kFlush, kReconfigure, kHbm, kLifecycle };

enum class BufferLayout { kSingleFd, kFdPerPlane };

enum class PatternChecking { kAuto, kOn, kOff };

// One output stream as asked for on the command line: WxH:FORMAT[@PHYSICAL_ID].
struct StreamDescription {
    int32_t width = 0;
    int32_t height = 0;
    int32_t format = 0;  // HAL_PIXEL_FORMAT_*
    std::string physicalCameraId;

    bool operator==(const StreamDescription&) const = default;
};

// --fps max: no frame duration asked for; requests go as fast as the pipeline takes them.
constexpr int32_t kUnpaced = 0;
constexpr int32_t kMaxFps = 100000;

struct Options {
    std::string modulePath;  // empty: the virtual camera of the build tree
    int32_t cameraId = 0;
    Scenario scenario = Scenario::kBasic;
    int32_t frames = 90;
    int32_t fps = 30;                        // kUnpaced: as fast as the pipeline allows
    std::vector<StreamDescription> streams;  // empty: chosen from the camera's configurations
    int32_t batch = 0;                       // 0: the scenario's default
    int32_t depth = 0;                       // 0: the smallest maxBuffers of the configured streams
    BufferLayout bufferLayout = BufferLayout::kSingleFd;
    PatternChecking patternChecking = PatternChecking::kAuto;
    std::vector<std::pair<std::string, std::string>> properties;
    std::string jsonPath;
    bool jsonFrames = false;  // per-frame detail in the JSON report
    std::string tracePath;
    bool soak = false;  // sample memory and fds during the run; growth breaks a rule
    bool help = false;
};

// Fills `options` from the arguments after the program name. On a bad argument returns false
// with `error` saying which and why.
bool parseOptions(const std::vector<std::string>& args, Options* options, std::string* error);

std::string usageText();

// The frame rate streams and settings are chosen for: --fps, or 1000 when unpaced.
int32_t settingsFps(const Options& options);

// Requests per processCaptureRequest call: --batch, else 4 for the burst scenario and 1 otherwise.
int32_t batchSize(const Options& options);

// "basic", "burst", ... and back; nullopt for an unknown name.
const char* scenarioName(Scenario scenario);
std::optional<Scenario> scenarioFromName(const std::string& name);

// YUV_420_888, IMPLEMENTATION_DEFINED and BLOB by name and back; other formats print as numbers.
std::string formatName(int32_t format);
std::optional<int32_t> formatFromName(const std::string& name);

// "640x480:YUV_420_888@2" and back; nullopt for a malformed item.
std::optional<StreamDescription> parseStreamDescription(const std::string& text);
std::string toString(const StreamDescription& stream);

}  // namespace camera_harness
