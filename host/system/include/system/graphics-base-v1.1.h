/*
 * Depth and stencil formats, P010 and the BT.2020 limited-range dataspaces of
 * android.hardware.graphics.common 1.1. They are separate enums, so C++ needs a cast to store
 * them in the 1.0 types.
 */
#pragma once

#include <system/graphics-base-v1.0.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    HAL_PIXEL_FORMAT_DEPTH_16 = 0x30,
    HAL_PIXEL_FORMAT_DEPTH_24 = 0x31,
    HAL_PIXEL_FORMAT_DEPTH_24_STENCIL_8 = 0x32,
    HAL_PIXEL_FORMAT_DEPTH_32F = 0x33,
    HAL_PIXEL_FORMAT_DEPTH_32F_STENCIL_8 = 0x34,
    HAL_PIXEL_FORMAT_STENCIL_8 = 0x35,
    HAL_PIXEL_FORMAT_YCBCR_P010 = 0x36,
} android_pixel_format_v1_1_t;

typedef enum {
    HAL_DATASPACE_BT2020_ITU = HAL_DATASPACE_STANDARD_BT2020 | HAL_DATASPACE_TRANSFER_SMPTE_170M |
                               HAL_DATASPACE_RANGE_LIMITED,
    HAL_DATASPACE_BT2020_ITU_PQ = HAL_DATASPACE_STANDARD_BT2020 | HAL_DATASPACE_TRANSFER_ST2084 |
                                  HAL_DATASPACE_RANGE_LIMITED,
    HAL_DATASPACE_BT2020_ITU_HLG = HAL_DATASPACE_STANDARD_BT2020 | HAL_DATASPACE_TRANSFER_HLG |
                                   HAL_DATASPACE_RANGE_LIMITED,
    HAL_DATASPACE_BT2020_HLG =
            HAL_DATASPACE_STANDARD_BT2020 | HAL_DATASPACE_TRANSFER_HLG | HAL_DATASPACE_RANGE_FULL,
} android_dataspace_v1_1_t;

#ifdef __cplusplus
}
#endif
