#define LOG_TAG "VirtualCamera"

#include "Options.h"

#include <log/log.h>
#include <stdlib.h>

#include <charconv>
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
    std::optional<uint32_t> number = parseNumber(value);
    if (!number) return false;
    if (key == "cameras") {
        if (*number < 1 || *number > static_cast<uint32_t>(kMaxCameras)) return false;
        options.cameras = static_cast<int>(*number);
    } else if (key == "hbm" || key == "verbose") {
        if (*number > 1) return false;
        (key == "hbm" ? options.halBufferManager : options.verbose) = *number == 1;
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
    return options;
}

Options optionsFromEnvironment() {
    const char* text = getenv(kOptionsVariable);
    return parseOptions(text != nullptr ? text : "");
}

}  // namespace virtual_camera
