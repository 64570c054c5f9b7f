/*
 * The HSV format and the camera-specific dataspaces (dynamic depth, JPEG APP segments, HEIF)
 * of android.hardware.graphics.common 1.2.
 */
#pragma once

#include <system/graphics-base-v1.0.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    HAL_PIXEL_FORMAT_HSV_888 = 0x37,
} android_pixel_format_v1_2_t;

typedef enum {
    HAL_DATASPACE_DISPLAY_BT2020 =
            HAL_DATASPACE_STANDARD_BT2020 | HAL_DATASPACE_TRANSFER_SRGB | HAL_DATASPACE_RANGE_FULL,
    HAL_DATASPACE_DYNAMIC_DEPTH = 0x1002,
    HAL_DATASPACE_JPEG_APP_SEGMENTS = 0x1003,
    HAL_DATASPACE_HEIF = 0x1004,
} android_dataspace_v1_2_t;

#ifdef __cplusplus
}
#endif
