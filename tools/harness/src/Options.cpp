#include "Options.h"

#include <system/graphics.h>

#include <charconv>
#include <climits>
#include <functional>
#include <map>

namespace camera_harness {

namespace {

constexpr std::pair<Scenario, const char*> kScenarioNames[] = {
        {Scenario::kBasic, "basic"}, {Scenario::kBurst, "burst"},
        {Scenario::kFlush, "flush"}, {Scenario::kReconfigure, "reconfigure"},
        {Scenario::kHbm, "hbm"},     {Scenario::kLifecycle, "lifecycle"},
};

constexpr std::pair<int32_t, const char*> kFormatNames[] = {
        {HAL_PIXEL_FORMAT_YCBCR_420_888, "YUV_420_888"},
        {HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, "IMPLEMENTATION_DEFINED"},
        {HAL_PIXEL_FORMAT_BLOB, "BLOB"},
};

// A whole decimal number within [minimum, maximum].
std::optional<int32_t> parseNumber(const std::string& text, int32_t minimum, int32_t maximum) {
    int32_t value = 0;
    const char* end = text.data() + text.size();
    auto [next, status] = std::from_chars(text.data(), end, value);
    if (text.empty() || status != std::errc() || next != end) return std::nullopt;
    if (value < minimum || value > maximum) return std::nullopt;
    return value;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> items;
    size_t start = 0;
    while (true) {
        size_t end = text.find(separator, start);
        items.push_back(text.substr(start, end - start));
        if (end == std::string::npos) return items;
        start = end + 1;
    }
}

using Setter = std::function<bool(const std::string& value, Options* options)>;

bool setNumber(const std::string& value, int32_t minimum, int32_t maximum, int32_t* out) {
    auto number = parseNumber(value, minimum, maximum);
    if (!number) return false;
    *out = *number;
    return true;
}

const std::map<std::string, Setter>& valueOptions() {
    static const std::map<std::string, Setter> options = {
            {"--module",
             [](const std::string& v, Options* o) {
                 o->modulePath = v;
                 return !v.empty();
             }},
            {"--camera", [](const std::string& v,
                            Options* o) { return setNumber(v, 0, INT32_MAX, &o->cameraId); }},
            {"--scenario",
             [](const std::string& v, Options* o) {
                 auto scenario = scenarioFromName(v);
                 if (scenario) o->scenario = *scenario;
                 return scenario.has_value();
             }},
            {"--frames", [](const std::string& v,
                            Options* o) { return setNumber(v, 1, 10000000, &o->frames); }},
            {"--fps",
             [](const std::string& v, Options* o) {
                 if (v != "max") return setNumber(v, 1, kMaxFps, &o->fps);
                 o->fps = kUnpaced;
                 return true;
             }},
            {"--batch",
             [](const std::string& v, Options* o) { return setNumber(v, 1, 64, &o->batch); }},
            {"--depth",
             [](const std::string& v, Options* o) { return setNumber(v, 1, 64, &o->depth); }},
            {"--streams",
             [](const std::string& v, Options* o) {
                 o->streams.clear();
                 for (const auto& item : split(v, ',')) {
                     auto stream = parseStreamDescription(item);
                     if (!stream) return false;
                     o->streams.push_back(*stream);
                 }
                 return true;
             }},
            {"--buffer-layout",
             [](const std::string& v, Options* o) {
                 if (v == "single-fd") {
                     o->bufferLayout = BufferLayout::kSingleFd;
                 } else if (v == "fd-per-plane") {
                     o->bufferLayout = BufferLayout::kFdPerPlane;
                 } else {
                     return false;
                 }
                 return true;
             }},
            {"--check-pattern",
             [](const std::string& v, Options* o) {
                 if (v == "auto") {
                     o->patternChecking = PatternChecking::kAuto;
                 } else if (v == "on") {
                     o->patternChecking = PatternChecking::kOn;
                 } else if (v == "off") {
                     o->patternChecking = PatternChecking::kOff;
                 } else {
                     return false;
                 }
                 return true;
             }},
            {"--prop",
             [](const std::string& v, Options* o) {
                 size_t equals = v.find('=');
                 if (equals == 0 || equals == std::string::npos) return false;
                 o->properties.emplace_back(v.substr(0, equals), v.substr(equals + 1));
                 return true;
             }},
            {"--json",
             [](const std::string& v, Options* o) {
                 o->jsonPath = v;
                 return !v.empty();
             }},
            {"--trace",
             [](const std::string& v, Options* o) {
                 o->tracePath = v;
                 return !v.empty();
             }},
    };
    return options;
}

}  // namespace

bool parseOptions(const std::vector<std::string>& args, Options* options, std::string* error) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--help" || arg == "-h") {
            options->help = true;
            continue;
        }
        if (arg == "--json-frames") {
            options->jsonFrames = true;
            continue;
        }
        if (arg == "--soak") {
            options->soak = true;
            continue;
        }
        std::string name = arg;
        std::optional<std::string> value;
        if (size_t equals = arg.find('='); arg.starts_with("--") && equals != std::string::npos) {
            name = arg.substr(0, equals);
            value = arg.substr(equals + 1);
        }
        auto option = valueOptions().find(name);
        if (option == valueOptions().end()) {
            *error = "unknown option " + arg;
            return false;
        }
        if (!value) {
            if (i + 1 == args.size()) {
                *error = name + " needs a value";
                return false;
            }
            value = args[++i];
        }
        if (!option->second(*value, options)) {
            *error = "bad value for " + name + ": '" + *value + "'";
            return false;
        }
    }
    return true;
}

std::string usageText() {
    return R"(Usage: camera_harness [options]

Plays the camera provider and the camera framework over the AIDL camera device adapter, drives a
legacy HAL3 module (the virtual camera by default), checks the protocol and reports.

  --module PATH          HAL3 module .so to load (default: the virtual camera of the build)
  --camera ID            camera to drive (default 0), any id the module reports or announces
  --scenario NAME        basic (default), burst, flush, reconfigure, hbm or lifecycle
  --frames N             capture requests to submit (default 90)
  --fps N                frame rate asked for, 1..100000 (default 30), or max: unpaced, as
                         fast as the pipeline takes requests (adds unpaced=1 to
                         VIRTUAL_CAMERA_OPTIONS; shutter spacing is not judged)
  --streams LIST         output streams, WxH:FORMAT[@PHYSICAL_ID],... with FORMAT one of
                         YUV_420_888, IMPLEMENTATION_DEFINED, BLOB (default: chosen from the
                         camera's configurations for the frame rate)
  --batch N              requests per processCaptureRequest call (default 1, burst 4)
  --depth N              most requests in flight (default: smallest maxBuffers of the streams)
  --buffer-layout L      single-fd (default) or fd-per-plane
  --check-pattern M      auto (default: on for the virtual camera), on or off
  --prop KEY=VALUE       set a system property before the devices are made (repeatable), e.g.
                         vendor.debug.camera.log=3
  --json FILE            write the full report as JSON
  --json-frames          add every frame's timestamps and latencies to the JSON report
  --trace FILE           write a Chrome/Perfetto JSON trace of the adapter and the harness
  --soak                 sample memory and open fds during the run and fail when either grows
                         in the steady state beyond the harness's own records
  --help                 this text

Scenarios:
  basic        one session, one configuration, one request per call
  burst        batches of several requests per call
  flush        flushes several times under load; every request must still complete
  reconfigure  runs, reconfigures with one stream dropped and one changed, runs again, and
               makes the device forget dropped buffers
  hbm          basic with the HAL buffer manager: adds hbm=1 to VIRTUAL_CAMERA_OPTIONS and
               requires the camera to advertise it
  lifecycle    open, open again (must fail), every request template, configure, capture, close,
               calls after close (must not reach the module), close again, reopen and capture

The exit status is 0 when no rule was broken, 1 when one was, 2 for a usage or set-up error.
)";
}

int32_t settingsFps(const Options& options) {
    constexpr int32_t kUnpacedSettingsFps = 1000;
    return options.fps == kUnpaced ? kUnpacedSettingsFps : options.fps;
}

int32_t batchSize(const Options& options) {
    constexpr int32_t kBurstBatch = 4;
    if (options.batch > 0) return options.batch;
    return options.scenario == Scenario::kBurst ? kBurstBatch : 1;
}

const char* scenarioName(Scenario scenario) {
    for (const auto& [value, name] : kScenarioNames) {
        if (value == scenario) return name;
    }
    return "?";
}

std::optional<Scenario> scenarioFromName(const std::string& name) {
    for (const auto& [value, text] : kScenarioNames) {
        if (name == text) return value;
    }
    return std::nullopt;
}

std::string formatName(int32_t format) {
    for (const auto& [value, name] : kFormatNames) {
        if (value == format) return name;
    }
    return std::to_string(format);
}

std::optional<int32_t> formatFromName(const std::string& name) {
    for (const auto& [value, text] : kFormatNames) {
        if (name == text) return value;
    }
    return std::nullopt;
}

std::optional<StreamDescription> parseStreamDescription(const std::string& text) {
    StreamDescription stream;
    std::string rest = text;
    if (size_t at = rest.find('@'); at != std::string::npos) {
        stream.physicalCameraId = rest.substr(at + 1);
        if (stream.physicalCameraId.empty()) return std::nullopt;
        rest.resize(at);
    }
    size_t colon = rest.find(':');
    size_t times = rest.find('x');
    if (colon == std::string::npos || times == std::string::npos || times > colon) {
        return std::nullopt;
    }
    auto width = parseNumber(rest.substr(0, times), 1, 65535);
    auto height = parseNumber(rest.substr(times + 1, colon - times - 1), 1, 65535);
    auto format = formatFromName(rest.substr(colon + 1));
    if (!width || !height || !format) return std::nullopt;
    stream.width = *width;
    stream.height = *height;
    stream.format = *format;
    return stream;
}

std::string toString(const StreamDescription& stream) {
    std::string text = std::to_string(stream.width) + "x" + std::to_string(stream.height) + ":" +
                       formatName(stream.format);
    if (!stream.physicalCameraId.empty()) text += "@" + stream.physicalCameraId;
    return text;
}

}  // namespace camera_harness
