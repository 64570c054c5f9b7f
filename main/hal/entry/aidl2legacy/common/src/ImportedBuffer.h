/*
 * Holder of one handle produced by an IBufferImporter: the handle is released through the same
 * importer when the holder goes or takes another handle. The handle's address (handle()) stays
 * the same for the holder's whole life, so a BufferHandle may point at it. Neither copied nor
 * moved; shared between the cache manager (under its lock) and whoever still needs the buffer
 * after the cache drops it (BufferHandle::imported), so the last of them releases the handle.
 */
#pragma once

#include <aidl2legacy/common/IBufferImporter.h>

#include <memory>
#include <utility>

namespace kovo::aidl2legacy {

class ImportedBuffer {
public:
    ImportedBuffer(std::shared_ptr<IBufferImporter> importer, buffer_handle_t handle)
        : mImporter(std::move(importer)), mHandle(handle) {}
    ~ImportedBuffer() { mImporter->freeBuffer(mHandle); }
    ImportedBuffer(const ImportedBuffer&) = delete;
    ImportedBuffer& operator=(const ImportedBuffer&) = delete;

    // Releases the held handle and keeps `handle` instead, at the same address.
    void reset(buffer_handle_t handle) {
        mImporter->freeBuffer(mHandle);
        mHandle = handle;
    }

    buffer_handle_t* handle() { return &mHandle; }

private:
    // Shared: a holder may outlive the cache manager that made it.
    const std::shared_ptr<IBufferImporter> mImporter;
    buffer_handle_t mHandle;
};

}  // namespace kovo::aidl2legacy
