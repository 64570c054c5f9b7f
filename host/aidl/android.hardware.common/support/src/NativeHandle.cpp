#define LOG_TAG "aidlcommonsupport"

#include <aidlcommonsupport/NativeHandle.h>
#include <fcntl.h>
#include <log/log.h>
#include <string.h>

namespace android {

using aidl::android::hardware::common::NativeHandle;

namespace {

native_handle_t* fromAidl(const NativeHandle& handle, bool doDup) {
    native_handle_t* to = native_handle_create(static_cast<int>(handle.fds.size()),
                                               static_cast<int>(handle.ints.size()));
    if (to == nullptr) return nullptr;
    for (size_t i = 0; i < handle.fds.size(); ++i) {
        int fd = handle.fds[i].get();
        to->data[i] = doDup ? fcntl(fd, F_DUPFD_CLOEXEC, 0) : fd;
        if (to->data[i] < 0) {
            ALOGE("Cannot duplicate fd %d: %s", fd, strerror(errno));
            to->numFds = static_cast<int>(i);
            native_handle_close(to);
            native_handle_delete(to);
            return nullptr;
        }
    }
    if (!handle.ints.empty()) {
        memcpy(to->data + handle.fds.size(), handle.ints.data(),
               handle.ints.size() * sizeof(int32_t));
    }
    return to;
}

NativeHandle toAidl(const native_handle_t* handle, bool doDup) {
    LOG_ALWAYS_FATAL_IF(handle == nullptr, "Cannot convert a null native_handle_t");
    NativeHandle out;
    out.fds.reserve(handle->numFds);
    for (int i = 0; i < handle->numFds; ++i) {
        int fd = handle->data[i];
        out.fds.emplace_back(doDup ? fcntl(fd, F_DUPFD_CLOEXEC, 0) : fd);
        if (out.fds.back().get() < 0) ALOGE("Cannot duplicate fd %d: %s", fd, strerror(errno));
    }
    out.ints.assign(handle->data + handle->numFds, handle->data + handle->numFds + handle->numInts);
    return out;
}

}  // namespace

bool isAidlNativeHandleEmpty(const NativeHandle& handle) {
    return handle.fds.empty() && handle.ints.empty();
}

native_handle_t* makeFromAidl(const NativeHandle& handle) {
    return fromAidl(handle, false);
}

native_handle_t* dupFromAidl(const NativeHandle& handle) {
    return fromAidl(handle, true);
}

NativeHandle makeToAidl(const native_handle_t* handle) {
    return toAidl(handle, false);
}

NativeHandle dupToAidl(const native_handle_t* handle) {
    return toAidl(handle, true);
}

}  // namespace android
