/*
 * Test-only hook of the libcutils stand-in's property store. Thread-safe; tests call it between
 * cases so that properties set by one case never leak into the next.
 */
#pragma once

namespace android::testing {

// Removes every property, "ro." ones included.
void clearProperties();

}  // namespace android::testing
