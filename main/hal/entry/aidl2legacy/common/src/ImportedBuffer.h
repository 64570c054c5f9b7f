/*
 * Holder of one handle produced by an IBufferImporter: the handle is released through the same
 * importer when the holder goes or takes another handle. The handle's address (handle()) stays
 * the same for the holder's whole life, so a BufferHandle may point at it. Neither copied nor
 * moved; the cache manager keeps holders in place inside its map, under its lock.
 */
#pragma once

#include <aidl2legacy/common/IBufferImporter.h>

namespace kovo::aidl2legacy {

class ImportedBuffer {
public:
    ImportedBuffer(IBufferImporter& importer, buffer_handle_t handle)
        : mImporter(importer), mHandle(handle) {}
    ~ImportedBuffer() { mImporter.freeBuffer(mHandle); }
    ImportedBuffer(const ImportedBuffer&) = delete;
    ImportedBuffer& operator=(const ImportedBuffer&) = delete;

    // Releases the held handle and keeps `handle` instead, at the same address.
    void reset(buffer_handle_t handle) {
        mImporter.freeBuffer(mHandle);
        mHandle = handle;
    }

    buffer_handle_t* handle() { return &mHandle; }

private:
    IBufferImporter& mImporter;
    buffer_handle_t mHandle;
};

}  // namespace kovo::aidl2legacy
