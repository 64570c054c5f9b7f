/*
 * Camera constants shared by the camera HAL headers: which way a camera faces.
 */
#pragma once

#include <stdint.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

enum {
    CAMERA_FACING_BACK = 0,
    CAMERA_FACING_FRONT = 1,
    /* Removable cameras, from camera module API 2.4. */
    CAMERA_FACING_EXTERNAL = 2,
};

__END_DECLS
