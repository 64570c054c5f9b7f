#include <errno.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system/graphics.h>
#include <unistd.h>
#include <virtual_camera/HostBuffer.h>

namespace virtual_camera {

size_t hostBufferSize(int32_t format, uint32_t width, uint32_t height, size_t blobSize) {
    switch (format) {
        case HAL_PIXEL_FORMAT_YCBCR_420_888:
        case HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED:
            // NV12: a full-size Y plane, then interleaved CbCr at half height.
            return static_cast<size_t>(width) * height + static_cast<size_t>(width) * (height / 2);
        case HAL_PIXEL_FORMAT_BLOB:
            return blobSize;
        default:
            return 0;
    }
}

int hostBufferPlanes(int32_t format) {
    switch (format) {
        case HAL_PIXEL_FORMAT_YCBCR_420_888:
        case HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED:
            return 2;
        default:
            return 1;
    }
}

std::unique_ptr<HostBuffer> HostBuffer::allocate(size_t size, int fdCount) {
    if (size == 0 || fdCount < 1 || fdCount > NATIVE_HANDLE_MAX_FDS) {
        errno = EINVAL;
        return nullptr;
    }
    int fd = memfd_create("host-gralloc", MFD_CLOEXEC);
    if (fd < 0) return nullptr;
    if (ftruncate(fd, static_cast<off_t>(size)) != 0) {
        int savedErrno = errno;
        close(fd);
        errno = savedErrno;
        return nullptr;
    }
    native_handle_t* handle = native_handle_create(fdCount, 0);
    if (handle == nullptr) {
        close(fd);
        return nullptr;
    }
    handle->data[0] = fd;
    for (int i = 1; i < fdCount; ++i) {
        handle->data[i] = fcntl(fd, F_DUPFD_CLOEXEC, 0);
        if (handle->data[i] < 0) {
            int savedErrno = errno;
            handle->numFds = i;
            native_handle_close(handle);
            native_handle_delete(handle);
            errno = savedErrno;
            return nullptr;
        }
    }
    return std::unique_ptr<HostBuffer>(new HostBuffer(handle, size));
}

HostBuffer::~HostBuffer() {
    native_handle_close(mHandle);
    native_handle_delete(const_cast<native_handle_t*>(mHandle));
}

std::unique_ptr<MappedBuffer> MappedBuffer::map(buffer_handle_t handle, bool writable) {
    if (handle == nullptr || handle->numFds < 1) {
        errno = EINVAL;
        return nullptr;
    }
    struct stat info;
    if (fstat(handle->data[0], &info) != 0) return nullptr;
    if (info.st_size <= 0) {
        errno = EINVAL;
        return nullptr;
    }
    size_t size = static_cast<size_t>(info.st_size);
    int protection = writable ? PROT_READ | PROT_WRITE : PROT_READ;
    void* data = mmap(nullptr, size, protection, MAP_SHARED, handle->data[0], 0);
    if (data == MAP_FAILED) return nullptr;
    return std::unique_ptr<MappedBuffer>(new MappedBuffer(data, size));
}

MappedBuffer::~MappedBuffer() {
    munmap(mData, mSize);
}

}  // namespace virtual_camera
