#include "LegacyStreamCombination.h"

#include <cstring>

namespace kovo::aidl2legacy {

LegacyStreamCombination::LegacyStreamCombination(const StreamCombination& combination)
    : mStreams(combination.streamCount) {
    for (uint32_t i = 0; i < combination.streamCount; ++i) {
        // The leading bytes of a CombinationStream are a camera_stream_t.
        std::memcpy(&mStreams[i], &combination.streams[i], sizeof(camera_stream_t));
        // The device marks a stream of no physical camera "-1"; legacy modules expect an empty id.
        const char* physicalCameraId = mStreams[i].physical_camera_id;
        if (physicalCameraId != nullptr && std::strcmp(physicalCameraId, kNoPhysicalCamera) == 0) {
            mStreams[i].physical_camera_id = "";
        }
    }
    mCombination.num_streams = combination.streamCount;
    mCombination.streams = mStreams.data();
    mCombination.operation_mode = combination.operationMode;
}

}  // namespace kovo::aidl2legacy
