/*
 * Module options, read from the environment variable VIRTUAL_CAMERA_OPTIONS: a comma-separated
 * list of key=value items (see README.md). Plain values; the module keeps one copy under its lock
 * and hands each opened device its own copy.
 */
#pragma once

#include <stdint.h>

#include <set>
#include <string_view>

namespace virtual_camera {

constexpr const char* kOptionsVariable = "VIRTUAL_CAMERA_OPTIONS";
constexpr int kMaxCameras = 8;

struct Options {
    int cameras = 2;
    bool halBufferManager = false;
    bool verbose = false;
    // Fault injection, by frame number.
    std::set<uint32_t> failRequest;
    std::set<uint32_t> failBuffer;
    std::set<uint32_t> failResult;
    std::set<uint32_t> rejectRequest;
};

// Unknown keys and bad values are logged and skipped; the rest still applies.
Options parseOptions(std::string_view text);

Options optionsFromEnvironment();

}  // namespace virtual_camera
