/*
 * The settings the harness sends, built once per configuration from the device's preview
 * template: the request settings (frame duration, exposure and AE target range for the asked
 * frame rate), the settings of each physical camera (exposure and sensitivity), and the session
 * parameters. Packed bytes, ready for the request queue or inline. A plain value.
 */
#pragma once

#include <system/camera_metadata.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "CameraInfo.h"

namespace camera_harness {

struct RequestSettings {
    std::vector<uint8_t> request;
    std::vector<uint8_t> physical;
    std::vector<uint8_t> sessionParameters;

    // Null when the template cannot be read or edited.
    static std::optional<RequestSettings> build(const std::vector<uint8_t>& previewTemplate,
                                                const CameraInfo& camera, int32_t fps);
};

}  // namespace camera_harness
