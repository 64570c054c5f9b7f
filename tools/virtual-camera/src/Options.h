/*
 * Module options, read from the environment variable VIRTUAL_CAMERA_OPTIONS: a comma-separated
 * list of key=value items (see README.md). Plain values; the module keeps one copy under its lock
 * and hands each opened device its own copy.
 */
#pragma once

#include <stdint.h>

#include <optional>
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
    // Behaviours of legacy modules in the field.
    bool legacyDevice = false;      // devices at 3.3: no stream flush, reconfiguration query or HBM
    int partialResults = 2;         // 1: everything in the final result
    int openLimit = 0;              // devices open at once; beyond it open returns -EUSERS (0: any)
    bool backgroundThread = false;  // one per process, with its own fd
    std::optional<int> externalCamera;  // announced PRESENT through the module callbacks
    bool readoutTimestamp = true;       // false: the standard shutter message, garbage behind it
    bool unpaced = false;               // frames as fast as requests come, whatever the duration
};

// Unknown keys and bad values are logged and skipped; the rest still applies.
Options parseOptions(std::string_view text);

Options optionsFromEnvironment();

}  // namespace virtual_camera
