/*
 * A camera module written in C (CameraModuleC.c), exported as HAL_MODULE_INFO_SYM, so that the
 * tests drive C-built HAL code from C++ as the adapter does. Its single camera "0" answers each
 * capture request with a shutter message and a result on the caller's thread.
 */
#pragma once

#include <hardware/camera3.h>

#ifdef __cplusplus
extern "C" {
#endif

extern camera_module_t HAL_MODULE_INFO_SYM;

/* Readout timestamp of every shutter: the exposure start plus this, plus the input height. */
#define CAMERA_MODULE_C_READOUT_DELAY_NS 1000
#define CAMERA_MODULE_C_TIMESTAMP_NS 5000

#ifdef __cplusplus
}
#endif
