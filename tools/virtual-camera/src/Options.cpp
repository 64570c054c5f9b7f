#define LOG_TAG "VirtualCamera"

#include "Options.h"

#include <log/log.h>
#include <stdlib.h>

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace virtual_camera {
namespace {

std::optional<uint32_t> parseNumber(std::string_view text) {
    uint32_t value = 0;
    const char* end = text.data() + text.size();
    auto [next, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || next != end || text.empty()) return std::nullopt;
    return value;
}

// True when the item was understood.
bool applyItem(Options& options, std::string_view key, std::string_view value) {
    if (key == "device_api") {
        if (value != "3.3" && value != "3.6") return false;
        options.legacyDevice = value == "3.3";
        return true;
    }
    std::optional<uint32_t> number = parseNumber(value);
    if (!number) return false;
    if (key == "cameras") {
        if (*number < 1 || *number > static_cast<uint32_t>(kMaxCameras)) return false;
        options.cameras = static_cast<int>(*number);
    } else if (key == "hbm" || key == "verbose") {
        if (*number > 1) return false;
        (key == "hbm" ? options.halBufferManager : options.verbose) = *number == 1;
    } else if (key == "background_thread" || key == "readout_timestamp" || key == "unpaced") {
        if (*number > 1) return false;
        bool on = *number == 1;
        if (key == "background_thread") options.backgroundThread = on;
        if (key == "readout_timestamp") options.readoutTimestamp = on;
        if (key == "unpaced") options.unpaced = on;
    } else if (key == "partial_results") {
        if (*number < 1 || *number > 2) return false;
        options.partialResults = static_cast<int>(*number);
    } else if (key == "open_limit") {
        if (*number > static_cast<uint32_t>(kMaxCameras)) return false;
        options.openLimit = static_cast<int>(*number);
    } else if (key == "external_camera") {
        // Clear of the public and physical ids.
        if (*number < static_cast<uint32_t>(kMaxCameras) + 2 || *number > INT32_MAX) return false;
        options.externalCamera = static_cast<int>(*number);
    } else if (key == "fail_request") {
        options.failRequest.insert(*number);
    } else if (key == "fail_buffer") {
        options.failBuffer.insert(*number);
    } else if (key == "fail_result") {
        options.failResult.insert(*number);
    } else if (key == "reject_request") {
        options.rejectRequest.insert(*number);
    } else {
        return false;
    }
    return true;
}

}  // namespace

Options parseOptions(std::string_view text) {
    Options options;
    while (!text.empty()) {
        size_t comma = text.find(',');
        std::string_view item = text.substr(0, comma);
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
        if (item.empty()) continue;
        size_t equals = item.find('=');
        if (equals == std::string_view::npos ||
            !applyItem(options, item.substr(0, equals), item.substr(equals + 1))) {
            ALOGE("%s: ignoring bad option \"%s\"", kOptionsVariable, std::string(item).c_str());
        }
    }
    if (options.legacyDevice && options.halBufferManager) {
        ALOGE("%s: the HAL buffer manager needs devices above 3.3; hbm ignored", kOptionsVariable);
        options.halBufferManager = false;
    }
    return options;
}

Options optionsFromEnvironment() {
    const char* text = getenv(kOptionsVariable);
    return parseOptions(text != nullptr ? text : "");
}

}  // namespace virtual_camera
