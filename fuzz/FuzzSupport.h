/*
 * Pieces the fuzz targets share: a log sink that drops every line after each input (the targets
 * look for faults, not texts), packed metadata built from fuzzed entries, and fds the targets own.
 * Every target runs one input at a time on libFuzzer's thread.
 */
#pragma once

#include <fuzzer/FuzzedDataProvider.h>
#include <log/testing/LogCapture.h>
#include <sys/eventfd.h>
#include <system/camera_metadata.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kovo::aidl2legacy::fuzz {

struct MetadataDeleter {
    void operator()(camera_metadata_t* metadata) const { free_camera_metadata(metadata); }
};
using MetadataPtr = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

// Captures log lines for the whole run; clear() after each input keeps memory flat.
inline android::testing::LogCapture& logSink() {
    static auto* sink = new android::testing::LogCapture();
    return *sink;
}

// A well-formed packet of up to 8 fuzzed entries, known tags mostly.
inline MetadataPtr makeMetadata(FuzzedDataProvider& in) {
    static constexpr uint32_t kTags[] = {
            ANDROID_CONTROL_AE_MODE,
            ANDROID_CONTROL_AE_TARGET_FPS_RANGE,
            ANDROID_JPEG_GPS_PROCESSING_METHOD,
            ANDROID_LENS_FOCAL_LENGTH,
            ANDROID_SENSOR_TIMESTAMP,
            ANDROID_SENSOR_EXPOSURE_TIME,
    };
    const size_t entries = in.ConsumeIntegralInRange<size_t>(0, 8);
    const size_t dataCapacity = in.ConsumeIntegralInRange<size_t>(0, 512);
    MetadataPtr metadata(allocate_camera_metadata(entries, dataCapacity));
    if (metadata == nullptr) return nullptr;
    for (size_t i = 0; i < entries; ++i) {
        const uint32_t tag =
                in.ConsumeBool() ? in.PickValueInArray(kTags) : in.ConsumeIntegral<uint32_t>();
        const int type = get_camera_metadata_tag_type(tag);
        if (type < 0 || type >= NUM_TYPES) continue;
        const size_t count = in.ConsumeIntegralInRange<size_t>(0, 16);
        std::vector<uint8_t> data =
                in.ConsumeBytes<uint8_t>(count * camera_metadata_type_size[type]);
        data.resize(count * camera_metadata_type_size[type]);
        add_camera_metadata_entry(metadata.get(), tag, data.data(), count);
    }
    return metadata;
}

// A fence or buffer fd the target owns (an eventfd), or -1 when none could be made.
inline int makeFd() {
    return eventfd(0, EFD_CLOEXEC);
}

}  // namespace kovo::aidl2legacy::fuzz
