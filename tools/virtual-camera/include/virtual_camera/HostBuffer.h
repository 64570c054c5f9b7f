/*
 * "Host gralloc" buffers as the virtual camera expects them: a native_handle whose fds all refer
 * to one memfd (one fd, or a dup of it per plane), with no ints. Planes are contiguous: YUV_420_888
 * and IMPLEMENTATION_DEFINED are NV12 with stride = width; BLOB buffers have the size of the
 * camera's JPEG max size. HostBuffer owns one such buffer (allocates it, closes and frees it);
 * MappedBuffer maps any such handle's first fd for the lifetime of the object. Neither is shared
 * between threads by itself.
 */
#pragma once

#include <cutils/native_handle.h>
#include <stddef.h>
#include <stdint.h>

#include <memory>

namespace virtual_camera {

// Bytes a buffer of this stream needs; `blobSize` is the JPEG max size, used for BLOB. 0 for a
// format the virtual camera does not produce.
size_t hostBufferSize(int32_t format, uint32_t width, uint32_t height, size_t blobSize);

// Planes a buffer of this format has, hence how many fds its handle carries by default.
int hostBufferPlanes(int32_t format);

class HostBuffer {
public:
    // A zero-filled buffer of `size` bytes whose handle holds `fdCount` fds (>= 1) of one memfd.
    // Null on failure (errno tells why).
    static std::unique_ptr<HostBuffer> allocate(size_t size, int fdCount = 1);
    ~HostBuffer();
    HostBuffer(const HostBuffer&) = delete;
    HostBuffer& operator=(const HostBuffer&) = delete;

    buffer_handle_t handle() const { return mHandle; }
    // A stable address of the handle, as camera3_stream_buffer::buffer wants it.
    buffer_handle_t* handlePointer() { return &mHandle; }
    size_t size() const { return mSize; }

private:
    HostBuffer(buffer_handle_t handle, size_t size) : mHandle(handle), mSize(size) {}

    buffer_handle_t mHandle;
    size_t mSize;
};

class MappedBuffer {
public:
    // Maps fd[0] of `handle` whole (size from fstat), for reading, or reading and writing.
    // Null on failure (errno tells why).
    static std::unique_ptr<MappedBuffer> map(buffer_handle_t handle, bool writable);
    ~MappedBuffer();
    MappedBuffer(const MappedBuffer&) = delete;
    MappedBuffer& operator=(const MappedBuffer&) = delete;

    void* data() const { return mData; }
    size_t size() const { return mSize; }

private:
    MappedBuffer(void* data, size_t size) : mData(data), mSize(size) {}

    void* mData;
    size_t mSize;
};

}  // namespace virtual_camera
