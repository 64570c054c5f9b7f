/*
 * A scripted legacy camera module for the module library's tests, built as a HAL module .so in
 * two variants: with and without the optional entry points of camera_module_extensions.h. Tests
 * open the same .so with dlopen to reach the symbols below, then hand its path to the factory,
 * which gets the same loaded copy.
 *
 * The variant with extensions declares readout timestamps for camera 0 only.
 *
 * Two built-in cameras: camera 0 (device 3.5, torch) and camera 1 (device 3.1, too old), both
 * with the stream configurations of FakeCameraModule.c; physical cameras 2 and 3. Every call is
 * appended to a log, with the streams of combination queries; the log is guarded by a lock, so
 * entry points may run on any thread.
 */
#pragma once

#include <hardware/camera_common.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Written by the test before bring-up; fake_camera_module_reset() restores it. */
struct fake_camera_module_script {
    int init_status;
    int set_callbacks_status;
    uint32_t device_version[2];
    /* Version of the device that open hands out; 0 for the camera's own device version. */
    uint32_t opened_device_version;
    int combination_status;
};

/* Metadata the module hands out, for identity checks. */
enum {
    FAKE_STATIC_CHARACTERISTICS,
    FAKE_PHYSICAL_CHARACTERISTICS_2,
    FAKE_PHYSICAL_CHARACTERISTICS_3,
    FAKE_SESSION_CHARACTERISTICS,
    FAKE_STILL_CAPTURE_SETTINGS,
    FAKE_METADATA_COUNT
};

/* Which copy of tarnic_fake_shared_symbol() the module's own calls reach: FAKE_OWN_COPY for the
 * module's, another value for the test program's. */
#define FAKE_OWN_COPY 2
int fake_camera_module_shared_symbol(void);

/* Restores the script and HMI (version 2.5), clears the log and forgets the callbacks. */
void fake_camera_module_reset(void);
/* The calls so far, "name(arguments);" each, copied under the module's lock. */
void fake_camera_module_calls(char* out, size_t size);
/* Calls the callbacks the module was given, as a hot-plug or flash event would. */
void fake_camera_module_fire_device_status(int camera_id, int status);
void fake_camera_module_fire_torch_status(const char* camera_id, int status);

#ifdef __cplusplus
}
#endif
