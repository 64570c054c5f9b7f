/*
 * A scripted legacy camera module for the module library's tests, built as a HAL module .so in
 * two variants: with and without the optional entry points of camera_module_extensions.h. Tests
 * open the same .so with dlopen to reach the script and the record below, then hand its path to
 * the factory, which gets the same loaded copy.
 *
 * Two built-in cameras: camera 0 (device 3.5, torch, a few stream configurations) and camera 1
 * (device 3.1, too old). Physical cameras 2 and 3 have characteristics. The record is guarded by
 * an internal lock, so entry points may run on any thread.
 */
#pragma once

#include <hardware/camera_common.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define FAKE_CAMERA_COUNT 2
#define FAKE_MAX_STREAMS 4

/* Written by the test before the module is brought up; fake_camera_module_reset() restores it. */
struct fake_camera_module_script {
    int init_status;
    int set_callbacks_status;
    uint32_t device_version[FAKE_CAMERA_COUNT];
    /* Version of the device that open hands out; 0 for the camera's own device version. */
    uint32_t opened_device_version;
    int combination_status;
};

/* What the module saw. */
struct fake_camera_module_record {
    char calls[4096]; /* "name(argument);" per call, in order */
    int open_devices;
    uint32_t combination_stream_count;
    uint32_t combination_operation_mode;
    camera_stream_t combination_streams[FAKE_MAX_STREAMS];
    char combination_physical_ids[FAKE_MAX_STREAMS][16];
    const camera_metadata_t* session_parameters;
    int32_t torch_level;
};

/* Restores the script and HMI's version (2.5), clears the record and forgets the callbacks. */
void fake_camera_module_reset(void);
/* The recorded calls, copied under the module's lock. */
void fake_camera_module_calls(char* out, size_t size);
/* A copy of the record, taken under the module's lock. */
struct fake_camera_module_record fake_camera_module_snapshot(void);
/* Calls the callbacks the module was given, as a hot-plug or flash event would. */
void fake_camera_module_fire_device_status(int camera_id, int status);
void fake_camera_module_fire_torch_status(const char* camera_id, int status);
/* Static characteristics of a camera, of a physical camera, and the session characteristics. */
const camera_metadata_t* fake_camera_module_characteristics(int camera_id);
const camera_metadata_t* fake_camera_module_physical_characteristics(int physical_id);
const camera_metadata_t* fake_camera_module_session_characteristics(void);

extern struct fake_camera_module_script fake_camera_module_script;

#ifdef __cplusplus
}
#endif
