/*
 * Answers a stream-combination query from a camera's static characteristics, for modules that
 * cannot answer it themselves: every stream's format, size and direction must be listed in
 * ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS. Stateless; any thread.
 */
#pragma once

#include <system/camera_metadata.h>

#include <cstdint>

#include "StreamCombination.h"

namespace kovo::aidl2legacy {

// 0 when every stream is listed, -EINVAL when one is not, -ENOSYS for an operation mode other
// than the normal one (its configurations live elsewhere). `characteristics` must be valid.
int32_t checkStaticStreamConfigurations(const camera_metadata_t* characteristics,
                                        const StreamCombination& combination);

}  // namespace kovo::aidl2legacy
