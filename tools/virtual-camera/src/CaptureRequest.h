/*
 * A capture request as the virtual camera keeps it after process_capture_request returned: the
 * device owns the acquire fences and copies of the settings; the stream records and buffer
 * handles stay the framework's and are only borrowed until the buffer is handed back. Moved from
 * the request thread to the pipeline thread; never shared.
 */
#pragma once

#include <hardware/camera3.h>
#include <stdint.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Metadata.h"
#include "UniqueFd.h"

namespace virtual_camera {

struct OutputBuffer {
    camera3_stream_t* stream = nullptr;
    buffer_handle_t* buffer = nullptr;  // null until the HAL buffer manager provides one
    UniqueFd acquireFence;
};

enum class Fault { kNone, kFailRequest, kFailBuffer, kFailResult };

struct CaptureRequest {
    uint32_t frameNumber = 0;
    // Shared with the following requests that repeat these settings.
    std::shared_ptr<const camera_metadata_t> settings;
    std::vector<OutputBuffer> buffers;
    // Physical cameras asked for by stream or by settings, sorted.
    std::vector<std::string> physicalCameras;
    std::map<std::string, MetadataPtr> physicalSettings;
    Fault fault = Fault::kNone;
};

}  // namespace virtual_camera
