/*
 * Host stand-in for the parcelable helpers of the binder NDK: the stability levels that
 * generated parcelables declare.
 */
#pragma once

#include <stdint.h>

namespace ndk {

typedef int32_t parcelable_stability_t;

enum {
    STABILITY_LOCAL,
    STABILITY_VINTF,
};

}  // namespace ndk
