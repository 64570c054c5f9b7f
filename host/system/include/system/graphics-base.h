/*
 * All versions of the graphics enums.
 */
#pragma once

#include <system/graphics-base-v1.0.h>
#include <system/graphics-base-v1.1.h>
#include <system/graphics-base-v1.2.h>
