/*
 * Graphics constants shared by HALs: pixel formats (HAL_PIXEL_FORMAT_*), buffer transforms
 * (HAL_TRANSFORM_*) and dataspaces (HAL_DATASPACE_*). This host copy carries the enums that the
 * camera HAL headers and their users need.
 */
#pragma once

#include <system/graphics-base.h>
