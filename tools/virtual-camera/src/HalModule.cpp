// The C ABI of the module: HAL_MODULE_INFO_SYM and the optional extension entry points, each a
// thin call into VirtualCameraModule. Only these symbols are exported.
#include <camera_module_extensions.h>
#include <errno.h>
#include <hardware/camera_common.h>
#include <hardware/hardware.h>

#include "VirtualCameraModule.h"

#define VIRTUAL_CAMERA_EXPORT __attribute__((visibility("default")))

using virtual_camera::VirtualCameraModule;

namespace {

VirtualCameraModule& module() {
    return VirtualCameraModule::instance();
}

int openDevice(const hw_module_t*, const char* id, hw_device_t** device) {
    return module().open(id, device);
}

hw_module_methods_t sMethods = {.open = openDevice};

// The virtual camera defines no vendor tags.
int getTagCount(const vendor_tag_ops_t*) {
    return 0;
}
void getAllTags(const vendor_tag_ops_t*, uint32_t*) {}
const char* getSectionName(const vendor_tag_ops_t*, uint32_t) {
    return nullptr;
}
const char* getTagName(const vendor_tag_ops_t*, uint32_t) {
    return nullptr;
}
int getTagType(const vendor_tag_ops_t*, uint32_t) {
    return -1;
}

void getVendorTagOps(vendor_tag_ops_t* ops) {
    if (ops == nullptr) return;
    *ops = {};
    ops->get_tag_count = getTagCount;
    ops->get_all_tags = getAllTags;
    ops->get_section_name = getSectionName;
    ops->get_tag_name = getTagName;
    ops->get_tag_type = getTagType;
}

int openLegacy(const hw_module_t*, const char*, uint32_t, hw_device_t**) {
    return -ENOSYS;
}

}  // namespace

extern "C" {

VIRTUAL_CAMERA_EXPORT camera_module_t HAL_MODULE_INFO_SYM = {
        .common =
                {
                        .tag = HARDWARE_MODULE_TAG,
                        .module_api_version = CAMERA_MODULE_API_VERSION_2_5,
                        .hal_api_version = HARDWARE_HAL_API_VERSION,
                        .id = CAMERA_HARDWARE_MODULE_ID,
                        .name = "Virtual camera",
                        .author = "Tarnic",
                        .methods = &sMethods,
                        .dso = nullptr,
                        .reserved = {},
                },
        .get_number_of_cameras = [] { return module().getNumberOfCameras(); },
        .get_camera_info = [](int id,
                              camera_info* info) { return module().getCameraInfo(id, info); },
        .set_callbacks =
                [](const camera_module_callbacks_t* callbacks) {
                    return module().setCallbacks(callbacks);
                },
        .get_vendor_tag_ops = getVendorTagOps,
        .open_legacy = openLegacy,
        .set_torch_mode = [](const char* id,
                             bool enabled) { return module().setTorchMode(id, enabled); },
        .init = [] { return module().init(); },
        .get_physical_camera_info =
                [](int id, camera_metadata_t** metadata) {
                    return module().getPhysicalCameraInfo(id, metadata);
                },
        .is_stream_combination_supported =
                [](int id, const camera_stream_combination_t* streams) {
                    return module().isStreamCombinationSupported(id, streams);
                },
        .notify_device_state_change =
                [](uint64_t state) { module().notifyDeviceStateChange(state); },
        .reserved = {},
};

VIRTUAL_CAMERA_EXPORT const camera_metadata_t* tarnic_camera_default_request_settings(
        int camera_id, int request_template) {
    return module().defaultRequestSettings(camera_id, request_template);
}

VIRTUAL_CAMERA_EXPORT int tarnic_camera_get_session_characteristics(
        int camera_id, const camera_stream_combination_t* streams,
        const camera_metadata_t* /*session_parameters*/, const camera_metadata_t** characteristics) {
    return module().getSessionCharacteristics(camera_id, streams, characteristics);
}

VIRTUAL_CAMERA_EXPORT int tarnic_camera_get_torch_strength_level(const char* camera_id,
                                                                 int32_t* level) {
    return module().getTorchStrengthLevel(camera_id, level);
}

VIRTUAL_CAMERA_EXPORT int tarnic_camera_turn_on_torch_with_strength_level(const char* camera_id,
                                                                          int32_t level) {
    return module().turnOnTorchWithStrengthLevel(camera_id, level);
}

// Whether shutter messages carry the readout timestamp after `timestamp`.
VIRTUAL_CAMERA_EXPORT int tarnic_camera_has_readout_timestamp(int camera_id) {
    return module().hasReadoutTimestamp(camera_id);
}

}  // extern "C"

// The exports must keep the signatures the loader looks them up with.
static_assert(std::is_same_v<decltype(&tarnic_camera_default_request_settings),
                             tarnic_camera_default_request_settings_t>);
static_assert(std::is_same_v<decltype(&tarnic_camera_get_session_characteristics),
                             tarnic_camera_get_session_characteristics_t>);
static_assert(std::is_same_v<decltype(&tarnic_camera_get_torch_strength_level),
                             tarnic_camera_get_torch_strength_level_t>);
static_assert(std::is_same_v<decltype(&tarnic_camera_turn_on_torch_with_strength_level),
                             tarnic_camera_turn_on_torch_with_strength_level_t>);
static_assert(std::is_same_v<decltype(&tarnic_camera_has_readout_timestamp),
                             tarnic_camera_has_readout_timestamp_t>);
