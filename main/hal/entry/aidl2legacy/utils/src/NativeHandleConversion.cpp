#include <aidl2legacy/utils/NativeHandleConversion.h>

namespace kovo::aidl2legacy {

bool isAidlNativeHandleNull(const aidl::android::hardware::common::NativeHandle& handle) {
    return handle.fds.empty() && handle.ints.empty();
}

}  // namespace kovo::aidl2legacy
