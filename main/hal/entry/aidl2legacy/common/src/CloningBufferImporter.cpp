#define LOG_TAG "tarnic_hal_aidl2legacy_common"

#include <aidl2legacy/common/CloningBufferImporter.h>
#include <log/log.h>

#include <cerrno>
#include <cstring>

namespace kovo::aidl2legacy {

int32_t CloningBufferImporter::importBuffer(const native_handle_t* raw, buffer_handle_t* out) {
    if (raw == nullptr || out == nullptr) return -EINVAL;
    native_handle_t* clone = native_handle_clone(raw);
    if (clone == nullptr) {
        int error = errno != 0 ? errno : ENOMEM;
        ALOGE("Cannot clone a buffer handle of %d fds and %d ints: %s", raw->numFds, raw->numInts,
              strerror(error));
        return -error;
    }
    *out = clone;
    return 0;
}

int32_t CloningBufferImporter::freeBuffer(buffer_handle_t handle) {
    if (handle == nullptr) return -EINVAL;
    native_handle_close(handle);
    return native_handle_delete(const_cast<native_handle_t*>(handle));
}

}  // namespace kovo::aidl2legacy
