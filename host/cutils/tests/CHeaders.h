/*
 * Helpers compiled as C (CHeaders.c), so that the tests exercise the libcutils headers and
 * their inline wrappers through a C compiler.
 */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

// Brackets an empty section named `name` under the camera tag.
void traceCameraSectionFromC(const char* name);

// sizeof of NATIVE_HANDLE_DECLARE_STORAGE(name, 1, 2) as C sees it.
size_t handleStorageSizeFromC(void);

#ifdef __cplusplus
}
#endif
