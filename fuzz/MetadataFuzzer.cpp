// Packed metadata from outside, as the framework sends it: either raw bytes, or a well-formed
// packet with a few bytes changed. A view of a packet that validates must copy back to the bytes
// it came from (the packet may be shorter than the bytes it arrived in).
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl2legacy/utils/MetadataConversion.h>

#include <algorithm>
#include <cstdlib>

#include "FuzzSupport.h"

using aidl::android::hardware::camera::device::CameraMetadata;
using namespace kovo::aidl2legacy;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    CameraMetadata aidl;
    if (in.ConsumeBool()) {
        aidl.metadata = in.ConsumeRemainingBytes<uint8_t>();
    } else {
        fuzz::MetadataPtr packet = fuzz::makeMetadata(in);
        if (packet == nullptr) return 0;
        const auto* bytes = reinterpret_cast<const uint8_t*>(packet.get());
        aidl.metadata.assign(bytes, bytes + get_camera_metadata_size(packet.get()));
        const size_t changes = in.ConsumeIntegralInRange<size_t>(0, 4);
        for (size_t i = 0; i < changes && !aidl.metadata.empty(); ++i) {
            const size_t at = in.ConsumeIntegralInRange<size_t>(0, aidl.metadata.size() - 1);
            aidl.metadata[at] = in.ConsumeIntegral<uint8_t>();
        }
    }

    const camera_metadata_t* view = nullptr;
    if (convertMetadata(aidl, view) != 0 || view == nullptr) return 0;
    for (size_t i = 0; i < get_camera_metadata_entry_count(view); ++i) {
        camera_metadata_ro_entry_t entry;
        if (get_camera_metadata_ro_entry(view, i, &entry) != 0) abort();
        camera_metadata_ro_entry_t found;
        find_camera_metadata_ro_entry(view, entry.tag, &found);
    }
    CameraMetadata back;
    if (convertMetadata(view, back) != 0 || back.metadata.size() > aidl.metadata.size() ||
        !std::equal(back.metadata.begin(), back.metadata.end(), aidl.metadata.begin())) {
        abort();
    }
    fuzz::MetadataPtr clone(clone_camera_metadata(view));
    if (clone == nullptr) abort();
    return 0;
}
