/*
 * What the harness needs from a camera's static characteristics: partial result count, JPEG max
 * size, whether the HAL buffer manager is on, the physical cameras of a logical camera, the
 * output configurations with their minimum frame durations, and the AE frame-rate ranges. Read
 * once, then a plain value.
 */
#pragma once

#include <system/camera_metadata.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Options.h"

namespace camera_harness {

struct OutputConfiguration {
    int32_t format = 0;
    int32_t width = 0;
    int32_t height = 0;
    int64_t minFrameDurationNs = 0;  // 0 when the camera lists none
};

struct CameraInfo {
    int32_t partialResultCount = 1;
    size_t jpegMaxSize = 0;
    bool halBufferManager = false;
    // The framework trusts shutter readout timestamps unless the camera says they are missing.
    bool readoutTimestamps = true;
    std::vector<std::string> physicalCameraIds;
    std::vector<OutputConfiguration> outputs;
    std::vector<std::pair<int32_t, int32_t>> fpsRanges;

    static CameraInfo fromCharacteristics(const camera_metadata_t* characteristics);

    const OutputConfiguration* findOutput(const StreamDescription& stream) const;
    // The longest minimum frame duration of the streams: frames of them come no closer.
    int64_t minFrameDurationNs(const std::vector<StreamDescription>& streams) const;

    // A preview YUV stream of at most 640x480, an IMPLEMENTATION_DEFINED stream of at most
    // 320x240 (on the first physical camera of a logical camera), and the smallest BLOB stream,
    // each only when a size of that format can run at `fps`.
    std::vector<StreamDescription> defaultStreams(int32_t fps) const;
};

}  // namespace camera_harness
