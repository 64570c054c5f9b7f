#include <aidl2legacy/common/CloningBufferImporter.h>
#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <log/testing/LogCapture.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace kovo::aidl2legacy {
namespace {

using BufferCache = IBufferHandleCacheMgr::BufferCache;
using CaptureRequest = IBufferHandleCacheMgr::CaptureRequest;
using StreamBuffer = IBufferHandleCacheMgr::StreamBuffer;
using Ids = std::initializer_list<std::pair<int32_t, int64_t>>;

int countOpenFds() {
    DIR* dir = opendir("/proc/self/fd");
    int count = 0;
    while (dir != nullptr && readdir(dir) != nullptr) ++count;
    if (dir != nullptr) closedir(dir);
    return count;
}

ino_t inodeOf(int fd) {
    struct stat st {};
    return fstat(fd, &st) == 0 ? st.st_ino : 0;
}

// Framework buffers (stream id, buffer id): one memfd each and the buffer id as the int. Without
// handles only the ids travel, as for buffers the framework has sent before.
std::vector<StreamBuffer> makeBuffers(Ids ids, bool withHandles = true) {
    std::vector<StreamBuffer> buffers;
    for (auto [streamId, bufferId] : ids) {
        StreamBuffer& buffer = buffers.emplace_back();
        buffer.streamId = streamId;
        buffer.bufferId = bufferId;
        if (!withHandles) continue;
        buffer.buffer.fds.emplace_back(memfd_create("camera-buffer", MFD_CLOEXEC));
        buffer.buffer.ints = {static_cast<int32_t>(bufferId)};
    }
    return buffers;
}

CaptureRequest makeRequest(int32_t frameNumber, std::vector<StreamBuffer> outputs) {
    CaptureRequest request;
    request.frameNumber = frameNumber;
    request.inputBuffer.streamId = -1;
    request.outputBuffers = std::move(outputs);
    return request;
}

// A cloning importer that counts, remembers the fd it was shown and can refuse.
class CountingImporter : public CloningBufferImporter {
public:
    struct Counts {
        std::atomic<int> imports{0}, frees{0}, lastRawFd{-1};
    };
    explicit CountingImporter(Counts& counts, int32_t refusal = 0)
        : mCounts(counts), mRefusal(refusal) {}
    int32_t importBuffer(const native_handle_t* raw, buffer_handle_t* out) override {
        mCounts.lastRawFd = raw->data[0];
        ++mCounts.imports;
        return mRefusal != 0 ? mRefusal : CloningBufferImporter::importBuffer(raw, out);
    }
    int32_t freeBuffer(buffer_handle_t handle) override {
        ++mCounts.frees;
        return CloningBufferImporter::freeBuffer(handle);
    }

private:
    Counts& mCounts;
    const int32_t mRefusal;
};

class BufferHandleCacheMgrTest : public ::testing::Test {
protected:
    // Imports one request's outputs; the framework's handles are closed again on return.
    std::map<int32_t, BufferHandle> importRequest(int32_t frameNumber,
                                                  std::vector<StreamBuffer> outputs,
                                                  int32_t expectedStatus = 0) {
        std::vector<CaptureRequest> requests;
        requests.push_back(makeRequest(frameNumber, std::move(outputs)));
        std::vector<RequestBufferCache> caches;
        EXPECT_EQ(expectedStatus, mMgr->importRequestBuffers(requests, &caches));
        EXPECT_EQ(1u, caches.size());
        EXPECT_EQ(frameNumber, caches.at(0).frameNumber);
        return caches.at(0).bufferHandles;
    }

    size_t cachedCount() {
        size_t count = 0;
        EXPECT_EQ(0, mMgr->getCachedBufferCount(&count));
        return count;
    }

    // Each cached buffer holds one fd of its own.
    int extraFds() { return countOpenFds() - mFdsBefore; }

    const int mFdsBefore = countOpenFds();
    std::shared_ptr<IBufferHandleCacheMgr> mMgr = IBufferHandleCacheMgr::create();
};

TEST_F(BufferHandleCacheMgrTest, RequestBuffersAreClonedOnceAndFoundAgainByTheirIds) {
    std::vector<CaptureRequest> requests;
    requests.push_back(makeRequest(5, makeBuffers({{1, 10}, {-1, 0}, {2, 0}, {-1, 9}})));
    requests[0].inputBuffer = std::move(makeBuffers({{3, 30}})[0]);
    requests.push_back(makeRequest(6, makeBuffers({{1, 11}})));
    const int frameworkFd = requests[0].outputBuffers[0].buffer.fds[0].get();
    std::vector<RequestBufferCache> caches(3);
    ASSERT_EQ(0, mMgr->importRequestBuffers(requests, &caches));

    ASSERT_EQ(2u, caches.size());
    EXPECT_EQ(6, caches[1].frameNumber);
    EXPECT_EQ(11, caches[1].bufferHandles.at(1).bufferId);
    const auto& first = caches[0].bufferHandles;
    ASSERT_EQ(2u, first.size());  // no stream -1, no buffer id 0
    EXPECT_EQ(30, first.at(3).bufferId);
    buffer_handle_t imported = *first.at(1).buffer;
    ASSERT_EQ(std::make_pair(1, 1), std::make_pair(imported->numFds, imported->numInts));
    EXPECT_NE(frameworkFd, imported->data[0]);
    EXPECT_EQ(inodeOf(frameworkFd), inodeOf(imported->data[0]));
    EXPECT_EQ(10, imported->data[1]);
    EXPECT_NE(-1, fcntl(frameworkFd, F_GETFD));  // still the framework's
    requests.clear();
    EXPECT_EQ(3, extraFds());

    auto again = importRequest(7, makeBuffers({{3, 30}, {1, 10}}, false));
    EXPECT_EQ(first.at(1).buffer, again.at(1).buffer);
    EXPECT_EQ(first.at(3).buffer, again.at(3).buffer);
    EXPECT_EQ(3, extraFds());
}

TEST_F(BufferHandleCacheMgrTest, BufferNeverSeenIsLeftOutAndLogged) {
    android::testing::LogCapture capture;
    EXPECT_TRUE(importRequest(7, makeBuffers({{1, 10}}, false), -ENOENT).empty());
    EXPECT_EQ(1u, capture.grep("frame 7").size());
    EXPECT_EQ(0u, cachedCount());
}

TEST_F(BufferHandleCacheMgrTest, NewHandleForCachedIdsReplacesTheBufferAtTheSameAddress) {
    buffer_handle_t* slot = importRequest(1, makeBuffers({{1, 10}})).at(1).buffer;
    std::vector<StreamBuffer> replacement = makeBuffers({{1, 10}});
    const ino_t inode = inodeOf(replacement[0].buffer.fds[0].get());
    EXPECT_EQ(slot, importRequest(2, std::move(replacement)).at(1).buffer);
    EXPECT_EQ(inode, inodeOf((*slot)->data[0]));
    EXPECT_EQ(1, extraFds());
}

TEST_F(BufferHandleCacheMgrTest, RemovalAndReconfigurationReleaseOnlyTheirBuffers) {
    importRequest(1, makeBuffers({{1, 10}, {1, 11}, {2, 20}, {3, 30}, {4, 40}}));
    EXPECT_EQ(0, mMgr->removeBufferCaches({BufferCache{1, 11}, BufferCache{5, 50}}));
    IBufferHandleCacheMgr::StreamConfiguration configuration;
    for (int32_t id : {3, 1, 5}) configuration.streams.emplace_back().id = id;
    EXPECT_EQ(0, mMgr->configureStreams(configuration));
    EXPECT_EQ(2u, cachedCount());
    EXPECT_EQ(2, extraFds());
    BufferHandle found;
    EXPECT_EQ(0, mMgr->getBufferHandle(1, 10, &found));
    EXPECT_EQ(0, mMgr->getBufferHandle(3, 30, &found));
    EXPECT_EQ(-ENOENT, mMgr->getBufferHandle(1, 11, &found));
}

TEST_F(BufferHandleCacheMgrTest, ResetEmptiesTheCacheAndCloseEndsIt) {
    importRequest(1, makeBuffers({{1, 10}, {2, 20}}));
    EXPECT_EQ(0, mMgr->resetCacheMgr());
    EXPECT_EQ(0, extraFds());
    EXPECT_EQ(1u, importRequest(2, makeBuffers({{1, 10}})).size());

    EXPECT_EQ(0, mMgr->closeCacheMgr());
    EXPECT_EQ(0, extraFds());
    EXPECT_EQ(0, mMgr->resetCacheMgr());  // does not reopen it
    std::vector<RequestBufferCache> caches(1);
    EXPECT_EQ(-ENODEV, mMgr->importRequestBuffers({}, &caches));
    EXPECT_TRUE(caches.empty());
    std::map<int64_t, BufferHandle> handles{{1, BufferHandle{}}};
    EXPECT_EQ(-ENODEV, mMgr->importStreamBuffers(makeBuffers({{1, 12}}), handles));
    EXPECT_TRUE(handles.empty());
    EXPECT_EQ(0, extraFds());
}

TEST_F(BufferHandleCacheMgrTest, BufferManagerBuffersAreKeyedByBufferIdInTheSameCache) {
    std::map<int64_t, BufferHandle> handles{{7, BufferHandle{}}};
    EXPECT_EQ(-EINVAL,
              mMgr->importStreamBuffers(makeBuffers({{4, 100}, {4, 101}, {4, 0}}), handles));
    ASSERT_EQ(2u, handles.size());
    EXPECT_NE(handles.at(100).buffer, handles.at(101).buffer);

    std::map<int64_t, BufferHandle> again;
    EXPECT_EQ(-ENOENT, mMgr->importStreamBuffers(makeBuffers({{4, 101}, {4, 102}}, false), again));
    ASSERT_EQ(1u, again.size());
    EXPECT_EQ(handles.at(101).buffer, again.at(101).buffer);
    EXPECT_EQ(handles.at(100).buffer, importRequest(1, makeBuffers({{4, 100}}, false)).at(4).buffer);
    // The device may still hold them: they outlive the cache until the last handle lets go.
    mMgr.reset();
    EXPECT_EQ(2, extraFds());
    EXPECT_EQ(1, (*handles.at(101).buffer)->numFds);
    handles.clear();
    again.clear();
    EXPECT_EQ(0, extraFds());
}

TEST_F(BufferHandleCacheMgrTest, InjectedImporterGetsAViewOfTheFrameworkFdsAndFreesAll) {
    CountingImporter::Counts counts;
    mMgr = IBufferHandleCacheMgr::create(std::make_unique<CountingImporter>(counts));
    std::vector<StreamBuffer> buffers = makeBuffers({{1, 10}});
    const int frameworkFd = buffers[0].buffer.fds[0].get();
    importRequest(1, std::move(buffers));
    EXPECT_EQ(frameworkFd, counts.lastRawFd.load());  // not a duplicate
    importRequest(2, makeBuffers({{1, 10}, {2, 20}}));
    EXPECT_EQ(std::make_pair(3, 1), std::make_pair(counts.imports.load(), counts.frees.load()));
    mMgr.reset();
    EXPECT_EQ(3, counts.frees.load());
    EXPECT_EQ(nullptr, IBufferHandleCacheMgr::create(nullptr));
}

TEST_F(BufferHandleCacheMgrTest, RefusedImportIsLeftOut) {
    CountingImporter::Counts counts;
    mMgr = IBufferHandleCacheMgr::create(std::make_unique<CountingImporter>(counts, -ENOMEM));
    EXPECT_TRUE(importRequest(1, makeBuffers({{1, 10}}), -ENOMEM).empty());
    EXPECT_EQ(0u, cachedCount());
}

// A binder thread imports requests while a device thread imports buffer-manager buffers.
TEST_F(BufferHandleCacheMgrTest, ImportsFromTwoThreadsAtOnce) {
    constexpr int kRounds = 200, kBuffers = 8;
    std::atomic<int> failures{0};
    std::thread binder([&] {
        for (int i = 0; i < kRounds; ++i) {
            std::vector<CaptureRequest> requests;
            requests.push_back(makeRequest(i, makeBuffers({{1, i % kBuffers + 1}}, i < kBuffers)));
            std::vector<RequestBufferCache> caches;
            failures += mMgr->importRequestBuffers(requests, &caches) != 0;
        }
    });
    std::thread device([&] {
        for (int i = 0; i < kRounds; ++i) {
            std::map<int64_t, BufferHandle> handles;
            auto buffers = makeBuffers({{2, i % kBuffers + 1}}, i < kBuffers || i % 3 == 0);
            failures += mMgr->importStreamBuffers(buffers, handles) != 0;
            size_t count = 0;
            failures += mMgr->getCachedBufferCount(&count) != 0 || count > 2 * kBuffers;
        }
    });
    binder.join();
    device.join();
    EXPECT_EQ(0, failures.load());
    EXPECT_EQ(2 * kBuffers, extraFds());
}

}  // namespace
}  // namespace kovo::aidl2legacy
