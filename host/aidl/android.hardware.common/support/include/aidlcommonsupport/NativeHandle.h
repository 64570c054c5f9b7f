/*
 * Conversions between native_handle_t and the AIDL NativeHandle. The make* forms move fd
 * ownership without duplicating (the source must then not close them); the dup* forms duplicate
 * every fd (close-on-exec) and leave the source alone. Stateless and thread-safe.
 */
#pragma once

#include <aidl/android/hardware/common/NativeHandle.h>
#include <cutils/native_handle.h>

namespace android {

// No fds and no ints.
bool isAidlNativeHandleEmpty(const aidl::android::hardware::common::NativeHandle& handle);

// A handle sharing `handle`'s fd numbers: free it with native_handle_delete only. Null on failure.
native_handle_t* makeFromAidl(const aidl::android::hardware::common::NativeHandle& handle);

// A handle with duplicated fds: free it with native_handle_close and native_handle_delete. Null on
// failure.
native_handle_t* dupFromAidl(const aidl::android::hardware::common::NativeHandle& handle);

// Takes over `handle`'s fds (which must not be closed through `handle` afterwards). `handle`
// must not be null.
aidl::android::hardware::common::NativeHandle makeToAidl(const native_handle_t* handle);

// Duplicates `handle`'s fds. `handle` must not be null.
aidl::android::hardware::common::NativeHandle dupToAidl(const native_handle_t* handle);

}  // namespace android
