/*
 * Optional entry points that a legacy HAL3 camera module .so may export beside
 * HAL_MODULE_INFO_SYM, for the AIDL camera device operations that camera_module_t cannot answer
 * without an open device. The aidl2legacy module looks each one up with dlsym() when it loads the
 * module; a module that does not export one gets the documented fallback (-ENOSYS or null).
 *
 * All of them may be called from several binder threads at once, with or without a device open.
 */
#pragma once

#include <hardware/camera_common.h>
#include <stdint.h>
#include <sys/cdefs.h>
#include <system/camera_metadata.h>

__BEGIN_DECLS

/*
 * Default request settings of `request_template` (a camera3_request_template_t value) for the
 * camera `camera_id`, as construct_default_request_settings of an open device would return them.
 * The metadata stays owned by the module and valid while the module is loaded. Null when the
 * template is unsupported. Fallback when absent: null.
 */
#define TARNIC_CAMERA_DEFAULT_REQUEST_SETTINGS_SYM "tarnic_camera_default_request_settings"
typedef const camera_metadata_t* (*tarnic_camera_default_request_settings_t)(int camera_id,
                                                                             int request_template);

/*
 * Characteristics that change for the given stream combination and session parameters
 * (`session_parameters` may be null). On success stores metadata owned by the module and valid
 * while the module is loaded, and returns 0; otherwise a negative errno value (-EINVAL for a
 * combination the camera does not support). Fallback when absent: -ENOSYS.
 */
#define TARNIC_CAMERA_GET_SESSION_CHARACTERISTICS_SYM "tarnic_camera_get_session_characteristics"
typedef int (*tarnic_camera_get_session_characteristics_t)(
        int camera_id, const camera_stream_combination_t* streams,
        const camera_metadata_t* session_parameters, const camera_metadata_t** characteristics);

/*
 * Torch strength of the flash unit of `camera_id` (a decimal camera id string). Returns 0 and
 * stores the level, or a negative errno value. Fallback when absent: -ENOSYS.
 */
#define TARNIC_CAMERA_GET_TORCH_STRENGTH_LEVEL_SYM "tarnic_camera_get_torch_strength_level"
typedef int (*tarnic_camera_get_torch_strength_level_t)(const char* camera_id, int32_t* level);

/*
 * Turns the torch of `camera_id` on at `level` (1 .. the camera's maximum strength). Returns 0 or
 * a negative errno value (-EINVAL for a level out of range). Fallback when absent: -ENOSYS.
 */
#define TARNIC_CAMERA_TURN_ON_TORCH_WITH_STRENGTH_LEVEL_SYM \
    "tarnic_camera_turn_on_torch_with_strength_level"
typedef int (*tarnic_camera_turn_on_torch_with_strength_level_t)(const char* camera_id,
                                                                 int32_t level);

/*
 * Whether the shutter messages of camera `camera_id` carry the readout timestamp that follows
 * `timestamp` in camera3_shutter_msg (returns non-zero) or are the standard message without it
 * (returns 0). Absent: the standard message.
 */
#define TARNIC_CAMERA_HAS_READOUT_TIMESTAMP_SYM "tarnic_camera_has_readout_timestamp"
typedef int (*tarnic_camera_has_readout_timestamp_t)(int camera_id);

__END_DECLS
