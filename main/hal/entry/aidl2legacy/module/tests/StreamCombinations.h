/*
 * Builders of the records a device hands to the stream-combination operations, for the tests.
 * The combination points into the builder's own storage; keep the builder alive while it is used.
 */
#pragma once

#include <hardware/camera3.h>

#include <cstdint>
#include <vector>

#include "StreamCombination.h"

namespace kovo::aidl2legacy::testing {

inline CombinationStream makeStream(int32_t type, int32_t format, uint32_t width, uint32_t height,
                                    const char* physicalCameraId = "-1") {
    CombinationStream stream{};
    stream.streamType = type;
    stream.format = format;
    stream.width = width;
    stream.height = height;
    stream.physicalCameraId = physicalCameraId;
    return stream;
}

class CombinationBuilder {
public:
    CombinationBuilder(std::vector<CombinationStream> streams,
                       uint32_t operationMode = CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE,
                       const camera_metadata_t* sessionParameters = nullptr)
        : mStreams(std::move(streams)) {
        mCombination.streamCount = static_cast<uint32_t>(mStreams.size());
        mCombination.streams = mStreams.data();
        mCombination.operationMode = operationMode;
        mCombination.sessionParameters = sessionParameters;
    }
    CombinationBuilder(const CombinationBuilder&) = delete;
    CombinationBuilder& operator=(const CombinationBuilder&) = delete;

    const StreamCombination* get() const { return &mCombination; }

private:
    std::vector<CombinationStream> mStreams;
    StreamCombination mCombination{};
};

}  // namespace kovo::aidl2legacy::testing
