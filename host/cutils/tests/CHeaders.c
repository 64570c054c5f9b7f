#define ATRACE_TAG ATRACE_TAG_CAMERA

#include "CHeaders.h"

#include <cutils/native_handle.h>
#include <cutils/properties.h>
#include <cutils/trace.h>

void traceCameraSectionFromC(const char* name) {
    ATRACE_BEGIN(name);
    ATRACE_END();
}

size_t handleStorageSizeFromC(void) {
    NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 2);
    return sizeof(storage);
}
