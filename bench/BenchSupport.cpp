#include "BenchSupport.h"

#include <cstdint>
#include <vector>

namespace kovo::aidl2legacy::bench {

MetadataPtr makeMetadata(size_t size) {
    const size_t dataCapacity = size - calculate_camera_metadata_size(1, 0);
    MetadataPtr metadata(allocate_camera_metadata(1, dataCapacity));
    std::vector<int32_t> values(dataCapacity / sizeof(int32_t), 7);
    add_camera_metadata_entry(metadata.get(), ANDROID_SENSOR_ORIENTATION, values.data(),
                              values.size());
    return metadata;
}

}  // namespace kovo::aidl2legacy::bench
