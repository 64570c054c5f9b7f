/*
 * Compile-time checks of the LP64 layout of the HAL records and of the constant values that
 * other binaries depend on. Included by a C and a C++ translation unit, so that both compilers
 * agree with the platform ABI.
 */
#pragma once

#include <assert.h>
#include <hardware/camera3.h>
#include <hardware/camera_common.h>
#include <hardware/gralloc.h>
#include <hardware/hardware.h>
#include <stddef.h>
#include <system/camera.h>
#include <system/graphics.h>

/* The struct tag and the typedef name are the same type of this size. */
#define CHECK_SIZE(tag, name, size) \
    static_assert(sizeof(struct tag) == (size) && sizeof(name) == (size), #name " size")
#define CHECK_OFFSET(name, field, offset) \
    static_assert(offsetof(name, field) == (offset), #name "." #field " offset")

#ifdef __LP64__

CHECK_SIZE(native_handle, native_handle_t, 12);
CHECK_OFFSET(native_handle_t, data, 12);

CHECK_SIZE(hw_module_t, hw_module_t, 248);
CHECK_OFFSET(hw_module_t, module_api_version, 4);
CHECK_OFFSET(hw_module_t, version_major, 4);
CHECK_OFFSET(hw_module_t, hal_api_version, 6);
CHECK_OFFSET(hw_module_t, version_minor, 6);
CHECK_OFFSET(hw_module_t, id, 8);
CHECK_OFFSET(hw_module_t, methods, 32);
CHECK_OFFSET(hw_module_t, dso, 40);
CHECK_OFFSET(hw_module_t, reserved, 48);
CHECK_SIZE(hw_module_methods_t, hw_module_methods_t, 8);
CHECK_SIZE(hw_device_t, hw_device_t, 120);
CHECK_OFFSET(hw_device_t, module, 8);
CHECK_OFFSET(hw_device_t, reserved, 16);
CHECK_OFFSET(hw_device_t, close, 112);

CHECK_SIZE(camera_info, camera_info_t, 48);
CHECK_OFFSET(camera_info_t, device_version, 8);
CHECK_OFFSET(camera_info_t, static_camera_characteristics, 16);
CHECK_OFFSET(camera_info_t, resource_cost, 24);
CHECK_OFFSET(camera_info_t, conflicting_devices, 32);
CHECK_OFFSET(camera_info_t, conflicting_devices_length, 40);
CHECK_SIZE(camera_module_callbacks, camera_module_callbacks_t, 16);
CHECK_SIZE(camera_stream, camera_stream_t, 40);
CHECK_OFFSET(camera_stream_t, data_space, 20);
CHECK_OFFSET(camera_stream_t, rotation, 24);
CHECK_OFFSET(camera_stream_t, physical_camera_id, 32);
CHECK_SIZE(camera_stream_combination, camera_stream_combination_t, 24);
CHECK_OFFSET(camera_stream_combination_t, streams, 8);
CHECK_OFFSET(camera_stream_combination_t, operation_mode, 16);
static_assert(sizeof(device_state_t) == 8, "device_state_t is a 64-bit enum");
CHECK_SIZE(vendor_tag_ops, vendor_tag_ops_t, 104);
CHECK_SIZE(vendor_tag_query_ops, vendor_tag_query_ops_t, 40);

CHECK_SIZE(camera_module, camera_module_t, 344);
CHECK_OFFSET(camera_module_t, get_number_of_cameras, 248);
CHECK_OFFSET(camera_module_t, get_camera_info, 256);
CHECK_OFFSET(camera_module_t, set_callbacks, 264);
CHECK_OFFSET(camera_module_t, get_vendor_tag_ops, 272);
CHECK_OFFSET(camera_module_t, open_legacy, 280);
CHECK_OFFSET(camera_module_t, set_torch_mode, 288);
CHECK_OFFSET(camera_module_t, init, 296);
CHECK_OFFSET(camera_module_t, get_physical_camera_info, 304);
CHECK_OFFSET(camera_module_t, is_stream_combination_supported, 312);
CHECK_OFFSET(camera_module_t, notify_device_state_change, 320);
CHECK_OFFSET(camera_module_t, reserved, 328);

CHECK_SIZE(camera3_stream, camera3_stream_t, 96);
CHECK_OFFSET(camera3_stream_t, usage, 16);
CHECK_OFFSET(camera3_stream_t, max_buffers, 20);
CHECK_OFFSET(camera3_stream_t, priv, 24);
CHECK_OFFSET(camera3_stream_t, data_space, 32);
CHECK_OFFSET(camera3_stream_t, rotation, 36);
CHECK_OFFSET(camera3_stream_t, physical_camera_id, 40);
CHECK_OFFSET(camera3_stream_t, reserved, 48);

CHECK_SIZE(camera3_stream_configuration, camera3_stream_configuration_t, 40);
CHECK_OFFSET(camera3_stream_configuration_t, streams, 8);
CHECK_OFFSET(camera3_stream_configuration_t, operation_mode, 16);
CHECK_OFFSET(camera3_stream_configuration_t, session_parameters, 24);
CHECK_OFFSET(camera3_stream_configuration_t, input_is_multi_resolution, 32);
static_assert(sizeof(((camera3_stream_configuration_t*)0)->input_is_multi_resolution) == 1,
              "one-byte multi-resolution flag");

CHECK_SIZE(camera3_stream_buffer, camera3_stream_buffer_t, 32);
CHECK_OFFSET(camera3_stream_buffer_t, buffer, 8);
CHECK_OFFSET(camera3_stream_buffer_t, status, 16);
CHECK_OFFSET(camera3_stream_buffer_t, acquire_fence, 20);
CHECK_OFFSET(camera3_stream_buffer_t, release_fence, 24);
CHECK_SIZE(camera3_stream_buffer_set, camera3_stream_buffer_set_t, 24);
CHECK_OFFSET(camera3_stream_buffer_set_t, num_buffers, 8);
CHECK_OFFSET(camera3_stream_buffer_set_t, buffers, 16);
CHECK_SIZE(camera3_jpeg_blob, camera3_jpeg_blob_t, 8);
CHECK_OFFSET(camera3_jpeg_blob_t, jpeg_size, 4);

CHECK_SIZE(camera3_error_msg, camera3_error_msg_t, 24);
CHECK_OFFSET(camera3_error_msg_t, error_stream, 8);
CHECK_OFFSET(camera3_error_msg_t, error_code, 16);
CHECK_SIZE(camera3_shutter_msg, camera3_shutter_msg_t, 24);
CHECK_OFFSET(camera3_shutter_msg_t, timestamp, 8);
CHECK_OFFSET(camera3_shutter_msg_t, readout_timestamp, 16);
CHECK_SIZE(camera3_notify_msg, camera3_notify_msg_t, 40);
CHECK_OFFSET(camera3_notify_msg_t, message, 8);

CHECK_SIZE(camera3_capture_request, camera3_capture_request_t, 72);
CHECK_OFFSET(camera3_capture_request_t, settings, 8);
CHECK_OFFSET(camera3_capture_request_t, input_buffer, 16);
CHECK_OFFSET(camera3_capture_request_t, num_output_buffers, 24);
CHECK_OFFSET(camera3_capture_request_t, output_buffers, 32);
CHECK_OFFSET(camera3_capture_request_t, num_physcam_settings, 40);
CHECK_OFFSET(camera3_capture_request_t, physcam_id, 48);
CHECK_OFFSET(camera3_capture_request_t, physcam_settings, 56);
CHECK_OFFSET(camera3_capture_request_t, input_width, 64);
CHECK_OFFSET(camera3_capture_request_t, input_height, 68);

CHECK_SIZE(camera3_capture_result, camera3_capture_result_t, 64);
CHECK_OFFSET(camera3_capture_result_t, result, 8);
CHECK_OFFSET(camera3_capture_result_t, num_output_buffers, 16);
CHECK_OFFSET(camera3_capture_result_t, output_buffers, 24);
CHECK_OFFSET(camera3_capture_result_t, input_buffer, 32);
CHECK_OFFSET(camera3_capture_result_t, partial_result, 40);
CHECK_OFFSET(camera3_capture_result_t, num_physcam_metadata, 44);
CHECK_OFFSET(camera3_capture_result_t, physcam_ids, 48);
CHECK_OFFSET(camera3_capture_result_t, physcam_metadata, 56);

CHECK_SIZE(camera3_buffer_request, camera3_buffer_request_t, 16);
CHECK_OFFSET(camera3_buffer_request_t, num_buffers_requested, 8);
CHECK_SIZE(camera3_stream_buffer_ret, camera3_stream_buffer_ret_t, 24);
CHECK_OFFSET(camera3_stream_buffer_ret_t, status, 8);
CHECK_OFFSET(camera3_stream_buffer_ret_t, num_output_buffers, 12);
CHECK_OFFSET(camera3_stream_buffer_ret_t, output_buffers, 16);

CHECK_SIZE(camera3_callback_ops, camera3_callback_ops_t, 32);
CHECK_OFFSET(camera3_callback_ops_t, notify, 8);
CHECK_OFFSET(camera3_callback_ops_t, request_stream_buffers, 16);
CHECK_OFFSET(camera3_callback_ops_t, return_stream_buffers, 24);

CHECK_SIZE(camera3_device_ops, camera3_device_ops_t, 128);
CHECK_OFFSET(camera3_device_ops_t, configure_streams, 8);
CHECK_OFFSET(camera3_device_ops_t, register_stream_buffers, 16);
CHECK_OFFSET(camera3_device_ops_t, construct_default_request_settings, 24);
CHECK_OFFSET(camera3_device_ops_t, process_capture_request, 32);
CHECK_OFFSET(camera3_device_ops_t, get_metadata_vendor_tag_ops, 40);
CHECK_OFFSET(camera3_device_ops_t, dump, 48);
CHECK_OFFSET(camera3_device_ops_t, flush, 56);
CHECK_OFFSET(camera3_device_ops_t, signal_stream_flush, 64);
CHECK_OFFSET(camera3_device_ops_t, is_reconfiguration_required, 72);
CHECK_OFFSET(camera3_device_ops_t, reserved, 80);

CHECK_SIZE(camera3_device, camera3_device_t, 136);
CHECK_OFFSET(camera3_device_t, ops, 120);
CHECK_OFFSET(camera3_device_t, priv, 128);

#endif /* __LP64__ */

static_assert(sizeof(android_dataspace_t) == 4, "dataspace is a 4-byte enum");
static_assert(HARDWARE_MODULE_TAG == 0x48574D54 && HARDWARE_DEVICE_TAG == 0x48574454, "tags");
static_assert(HARDWARE_MAKE_API_VERSION_2(1, 2, 3) == 0x01020003, "version 2 encoding");
static_assert(CAMERA_MODULE_API_VERSION_2_4 == 0x0204, "module version 2.4");
static_assert(CAMERA_MODULE_API_VERSION_CURRENT == 0x0205, "current module version");
static_assert(CAMERA_DEVICE_API_VERSION_3_6 == 0x0306, "device version 3.6");
static_assert(CAMERA_DEVICE_API_VERSION_CURRENT == 0x0305, "current device version");
static_assert(CAMERA_FACING_EXTERNAL == 2, "facing");
static_assert(CAMERA3_TEMPLATE_COUNT == 7 && CAMERA3_VENDOR_TEMPLATE_START == 0x40000000,
              "templates");
static_assert(CAMERA3_MSG_NUM_ERRORS == 5 && CAMERA3_NUM_MESSAGES == 3, "messages");
static_assert(CAMERA3_BUF_REQ_NUM_STATUS == 5 && CAMERA3_PS_BUF_REQ_NUM_STATUS == 5, "statuses");
static_assert(CAMERA3_JPEG_APP_SEGMENTS_BLOB_ID == 0x100, "blob ids");
static_assert(GRALLOC_USAGE_HW_MASK == 0x71F00 && GRALLOC_USAGE_HW_IMAGE_ENCODER == 0x8000000,
              "usage");

/* Composed dataspaces against their numeric platform values. */
static_assert(HAL_DATASPACE_V0_JFIF == 146931712 && HAL_DATASPACE_V0_BT709 == 281083904 &&
                      HAL_DATASPACE_V0_SRGB == 142671872 && HAL_DATASPACE_DISPLAY_P3 == 143261696,
              "V0 dataspaces");
static_assert(HAL_DATASPACE_BT2020_HLG == 168165376 && HAL_DATASPACE_BT2020_ITU_HLG == 302383104,
              "HLG dataspaces");
static_assert(HAL_DATASPACE_HEIF == 4100 && HAL_DATASPACE_JPEG_APP_SEGMENTS == 4099 &&
                      HAL_DATASPACE_DYNAMIC_DEPTH == 4098 && HAL_DATASPACE_DEPTH == 4096,
              "camera dataspaces");
static_assert(HAL_PIXEL_FORMAT_YCBCR_P010 == 54 && HAL_PIXEL_FORMAT_DEPTH_16 == 48 &&
                      HAL_PIXEL_FORMAT_RGBA_1010102 == 43 && HAL_PIXEL_FORMAT_Y16 == 0x20363159,
              "pixel formats");
