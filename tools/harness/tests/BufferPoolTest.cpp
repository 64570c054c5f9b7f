#include <gtest/gtest.h>
#include <sys/stat.h>
#include <system/graphics.h>
#include <virtual_camera/HostBuffer.h>

#include <set>

#include "BufferPool.h"

namespace camera_harness {
namespace {

constexpr size_t kYuvSize = 640 * 480 * 3 / 2;
constexpr size_t kBlobSize = 65536;
const PoolStream kYuv{0, HAL_PIXEL_FORMAT_YCBCR_420_888, kYuvSize};
const PoolStream kBlob{1, HAL_PIXEL_FORMAT_BLOB, kBlobSize};

TEST(BufferPoolTest, IdsAreDeviceWideFromOneAndNeverReused) {
    BufferPool pool(BufferLayout::kSingleFd);
    pool.configure({kYuv, kBlob});
    std::vector<int64_t> ids;
    for (int i = 0; i < 3; ++i) {
        ids.push_back(pool.acquire(kYuv.streamId, 8)->bufferId);
        ids.push_back(pool.acquire(kBlob.streamId, 8)->bufferId);
    }
    EXPECT_EQ(ids, (std::vector<int64_t>{1, 2, 3, 4, 5, 6}));

    EXPECT_EQ(pool.discardFree(kYuv.streamId, 8).size(), 0u);  // all out
    ASSERT_TRUE(pool.release(1));
    EXPECT_EQ(pool.discardFree(kYuv.streamId, 8), (std::vector<CachedBuffer>{{0, 1}}));
    // With buffer 1 gone the stream gets a new one under a new id.
    pool.release(3);
    pool.release(5);
    EXPECT_EQ(pool.acquire(kYuv.streamId, 3)->bufferId, 3);
    EXPECT_EQ(pool.acquire(kYuv.streamId, 3)->bufferId, 5);
    EXPECT_EQ(pool.acquire(kYuv.streamId, 3)->bufferId, 7);
}

TEST(BufferPoolTest, OnlyTheFirstUseOfAnIdCarriesTheHandle) {
    BufferPool pool(BufferLayout::kSingleFd);
    pool.configure({kYuv});
    auto first = pool.acquire(kYuv.streamId, 1);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->firstUse);
    EXPECT_FALSE(pool.acquire(kYuv.streamId, 1)) << "the limit is one buffer out";
    ASSERT_TRUE(pool.release(first->bufferId));
    EXPECT_FALSE(pool.release(first->bufferId)) << "already back";
    auto again = pool.acquire(kYuv.streamId, 1);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->bufferId, first->bufferId);
    EXPECT_FALSE(again->firstUse);
    EXPECT_EQ(again->handle, first->handle);
}

TEST(BufferPoolTest, ReconfigurationKeepsBuffersOfStreamsThatStay) {
    BufferPool pool(BufferLayout::kSingleFd);
    pool.configure({kYuv, kBlob});
    int64_t yuv = pool.acquire(kYuv.streamId, 8)->bufferId;
    int64_t blob = pool.acquire(kBlob.streamId, 8)->bufferId;
    pool.release(yuv);
    pool.release(blob);

    EXPECT_EQ(pool.configure({kYuv}), (std::vector<CachedBuffer>{{kBlob.streamId, blob}}));
    EXPECT_FALSE(pool.acquire(kBlob.streamId, 8)) << "the stream is gone";
    auto kept = pool.acquire(kYuv.streamId, 8);
    EXPECT_EQ(kept->bufferId, yuv);
    EXPECT_FALSE(kept->firstUse);
}

struct Layout {
    const char* name;
    BufferLayout layout;
    PoolStream stream;
    int fds;
    size_t size;
};

class BufferLayoutTest : public ::testing::TestWithParam<Layout> {};

// Like a host gralloc buffer: every fd of the handle is the same memfd, sized for the format.
TEST_P(BufferLayoutTest, HandlesCarryOneMemfdPerPlaneOrOnce) {
    const Layout& layout = GetParam();
    BufferPool pool(layout.layout);
    pool.configure({layout.stream});
    auto lease = pool.acquire(layout.stream.streamId, 1);
    ASSERT_TRUE(lease);
    ASSERT_EQ(lease->handle->numFds, layout.fds);
    std::set<ino_t> files;
    for (int i = 0; i < lease->handle->numFds; ++i) {
        struct stat info {};
        ASSERT_EQ(fstat(lease->handle->data[i], &info), 0);
        EXPECT_EQ(static_cast<size_t>(info.st_size), layout.size);
        files.insert(info.st_ino);
    }
    EXPECT_EQ(files.size(), 1u);
    auto contents = pool.contents(lease->bufferId);
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->size, layout.size);
}

INSTANTIATE_TEST_SUITE_P(
        Layouts, BufferLayoutTest,
        ::testing::Values(Layout{"YuvSingleFd", BufferLayout::kSingleFd, kYuv, 1, kYuvSize},
                          Layout{"YuvFdPerPlane", BufferLayout::kFdPerPlane, kYuv, 2, kYuvSize},
                          Layout{"BlobFdPerPlane", BufferLayout::kFdPerPlane, kBlob, 1, kBlobSize}),
        [](const ::testing::TestParamInfo<Layout>& info) { return info.param.name; });

}  // namespace
}  // namespace camera_harness
