/*
 * Tests on AIDL native handles (buffers and fences). Stateless; any thread.
 */
#pragma once

#include <aidl/android/hardware/common/NativeHandle.h>

namespace kovo::aidl2legacy {

// True when the handle carries neither fds nor ints: no buffer, or no fence.
bool isAidlNativeHandleNull(const aidl::android::hardware::common::NativeHandle& handle);

}  // namespace kovo::aidl2legacy
