/*
 * The records a camera device hands to the module's stream-combination operations. They cross
 * from the device library into the module library, so their layout is fixed (64-bit,
 * little-endian) and checked below. The caller owns both records and everything they point to;
 * the module reads them during the call only.
 */
#pragma once

#include <hardware/camera_common.h>

#include <cstddef>
#include <cstdint>

namespace kovo::aidl2legacy {

// One stream. The first 40 bytes are laid out as the legacy camera_stream_t, so they can be
// handed to a module unchanged; the rest carries what camera_stream_t has no room for.
struct CombinationStream {
    int32_t streamType;
    uint32_t width;
    uint32_t height;
    int32_t format;
    uint32_t usage;  // low 32 bits of the framework usage
    int32_t dataSpace;
    int32_t rotation;
    // NUL-terminated, "-1" when the stream is not tied to a physical camera.
    const char* physicalCameraId;
    int32_t groupId;
    uint8_t reserved0[20];
    int64_t useCase;
    int32_t dynamicRangeProfile;  // low 32 bits
    int32_t colorSpace;
    uint8_t reserved1[80];
};

struct StreamCombination {
    uint32_t streamCount;
    const CombinationStream* streams;
    uint32_t operationMode;
    const camera_metadata_t* sessionParameters;  // may be null
};

static_assert(sizeof(CombinationStream) == 160);
static_assert(offsetof(CombinationStream, streamType) == 0);
static_assert(offsetof(CombinationStream, width) == 4);
static_assert(offsetof(CombinationStream, height) == 8);
static_assert(offsetof(CombinationStream, format) == 12);
static_assert(offsetof(CombinationStream, usage) == 16);
static_assert(offsetof(CombinationStream, dataSpace) == 20);
static_assert(offsetof(CombinationStream, rotation) == 24);
static_assert(offsetof(CombinationStream, physicalCameraId) == 32);
static_assert(offsetof(CombinationStream, groupId) == 40);
static_assert(offsetof(CombinationStream, useCase) == 64);
static_assert(offsetof(CombinationStream, dynamicRangeProfile) == 72);
static_assert(offsetof(CombinationStream, colorSpace) == 76);

// The legacy prefix must match field for field for the copy into camera_stream_t.
static_assert(sizeof(camera_stream_t) == 40);
static_assert(offsetof(camera_stream_t, stream_type) == offsetof(CombinationStream, streamType));
static_assert(offsetof(camera_stream_t, width) == offsetof(CombinationStream, width));
static_assert(offsetof(camera_stream_t, height) == offsetof(CombinationStream, height));
static_assert(offsetof(camera_stream_t, format) == offsetof(CombinationStream, format));
static_assert(offsetof(camera_stream_t, usage) == offsetof(CombinationStream, usage));
static_assert(offsetof(camera_stream_t, data_space) == offsetof(CombinationStream, dataSpace));
static_assert(offsetof(camera_stream_t, rotation) == offsetof(CombinationStream, rotation));
static_assert(offsetof(camera_stream_t, physical_camera_id) ==
              offsetof(CombinationStream, physicalCameraId));

static_assert(sizeof(StreamCombination) == 32);
static_assert(offsetof(StreamCombination, streamCount) == 0);
static_assert(offsetof(StreamCombination, streams) == 8);
static_assert(offsetof(StreamCombination, operationMode) == 16);
static_assert(offsetof(StreamCombination, sessionParameters) == 24);

}  // namespace kovo::aidl2legacy
