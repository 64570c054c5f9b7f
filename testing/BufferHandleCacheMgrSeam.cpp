#include "BufferHandleCacheMgrSeam.h"

#include <aidl2legacy/common/CloningBufferImporter.h>

#include <cstdlib>
#include <mutex>
#include <optional>
#include <utility>

namespace kovo::aidl2legacy {
namespace {

std::mutex sFactoryLock;
std::optional<testing::ScopedCacheMgrFactory::Factory> sFactory;  // guarded by sFactoryLock
size_t sCreateCount = 0;                                          // guarded by sFactoryLock

}  // namespace

// Takes the place of the library's definition (see the header).
std::shared_ptr<IBufferHandleCacheMgr> IBufferHandleCacheMgr::create() {
    testing::ScopedCacheMgrFactory::Factory factory;
    {
        std::lock_guard<std::mutex> guard(sFactoryLock);
        if (sFactory.has_value()) {
            ++sCreateCount;
            factory = *sFactory;
        }
    }
    if (factory) return factory();
    return create(std::make_unique<CloningBufferImporter>());
}

namespace testing {

ScopedCacheMgrFactory::ScopedCacheMgrFactory(Factory factory) {
    std::lock_guard<std::mutex> guard(sFactoryLock);
    if (sFactory.has_value()) abort();  // one at a time
    sFactory = std::move(factory);
    sCreateCount = 0;
}

ScopedCacheMgrFactory::~ScopedCacheMgrFactory() {
    std::lock_guard<std::mutex> guard(sFactoryLock);
    sFactory.reset();
}

size_t ScopedCacheMgrFactory::createCount() const {
    std::lock_guard<std::mutex> guard(sFactoryLock);
    return sCreateCount;
}

}  // namespace testing
}  // namespace kovo::aidl2legacy
