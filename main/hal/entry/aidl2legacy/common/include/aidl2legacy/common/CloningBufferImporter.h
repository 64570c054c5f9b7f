/*
 * The host's buffer importer: an imported buffer is a clone of the framework's native_handle with
 * duplicated fds, closed and freed again by freeBuffer(). Stateless; any thread.
 */
#pragma once

#include <aidl2legacy/common/IBufferImporter.h>

namespace kovo::aidl2legacy {

class CloningBufferImporter : public IBufferImporter {
public:
    int32_t importBuffer(const native_handle_t* raw, buffer_handle_t* out) override;
    int32_t freeBuffer(buffer_handle_t handle) override;
};

}  // namespace kovo::aidl2legacy
