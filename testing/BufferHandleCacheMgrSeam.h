/*
 * A link seam for IBufferHandleCacheMgr::create(): a test binary that uses ScopedCacheMgrFactory
 * links this file's definition of create(), which takes the place of the library's for every
 * caller in the process (the product calls it through the dynamic linker). While a
 * ScopedCacheMgrFactory is alive, create() returns what its factory makes (an empty pointer
 * included); otherwise it makes a real cache with the cloning importer, as the library does.
 *
 * MockBufferHandleCacheMgr is a GoogleMock cache manager to hand out through the seam; without
 * expectations every operation answers 0 and leaves its outputs alone.
 *
 * One ScopedCacheMgrFactory at a time; create() may run on any thread while one is installed.
 */
#pragma once

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace kovo::aidl2legacy::testing {

class MockBufferHandleCacheMgr : public IBufferHandleCacheMgr {
public:
    using BufferHandles = std::map<int64_t, BufferHandle>;

    MOCK_METHOD(int32_t, closeCacheMgr, (), (override));
    MOCK_METHOD(int32_t, configureStreams, (const StreamConfiguration& configuration), (override));
    MOCK_METHOD(int32_t, removeBufferCaches, (const std::vector<BufferCache>& caches), (override));
    MOCK_METHOD(int32_t, importRequestBuffers,
                (const std::vector<CaptureRequest>& requests,
                 std::vector<RequestBufferCache>* caches),
                (override));
    MOCK_METHOD(int32_t, importStreamBuffers,
                (const std::vector<StreamBuffer>& buffers, BufferHandles& handles), (override));
    MOCK_METHOD(int32_t, getBufferHandle,
                (int32_t streamId, int64_t bufferId, BufferHandle* handle), (override));
    MOCK_METHOD(int32_t, getCachedBufferCount, (size_t * count), (override));
    MOCK_METHOD(int32_t, dump, (int fd), (override));
    MOCK_METHOD(int32_t, resetCacheMgr, (), (override));
};

class ScopedCacheMgrFactory {
public:
    using Factory = std::function<std::shared_ptr<IBufferHandleCacheMgr>()>;

    explicit ScopedCacheMgrFactory(Factory factory);
    ~ScopedCacheMgrFactory();
    ScopedCacheMgrFactory(const ScopedCacheMgrFactory&) = delete;
    ScopedCacheMgrFactory& operator=(const ScopedCacheMgrFactory&) = delete;

    // Number of create() calls while this factory was installed.
    size_t createCount() const;
};

}  // namespace kovo::aidl2legacy::testing
