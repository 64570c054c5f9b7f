#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <numeric>
#include <vector>

#include "QueueTestUtils.h"

using namespace fmq_test;
using aidl::android::hardware::common::fmq::GrantorDescriptor;

namespace {

struct LayoutCase {
    const char* name;
    size_t elementSize;
    size_t count;
    bool eventFlag;
    size_t bufferSize;     // 0: the queue allocates the ring itself
    const char* grantors;  // "fdIndex:offset/extent" of each grantor
    const char* fdSizes;
};

template <typename T>
void expectLayout(const LayoutCase& c) {
    android::base::unique_fd buffer;
    if (c.bufferSize != 0) buffer = makeBuffer(c.bufferSize);
    Queue<T> queue(c.count, c.eventFlag, std::move(buffer), c.bufferSize);
    ASSERT_TRUE(queue.isValid());
    auto desc = queue.dupeDesc();
    EXPECT_EQ(static_cast<int32_t>(sizeof(T)), desc.quantum);
    EXPECT_EQ(1, desc.flags);
    std::string grantors;
    for (const GrantorDescriptor& g : desc.grantors) {
        grantors += (grantors.empty() ? "" : " ") + std::to_string(g.fdIndex) + ":" +
                    std::to_string(g.offset) + "/" + std::to_string(g.extent);
    }
    EXPECT_EQ(c.grantors, grantors);
    std::string fdSizes;
    for (const ndk::ScopedFileDescriptor& fd : desc.handle.fds) {
        struct stat status;
        ASSERT_EQ(0, fstat(fd.get(), &status));
        fdSizes += (fdSizes.empty() ? "" : " ") + std::to_string(status.st_size);
    }
    EXPECT_EQ(c.fdSizes, fdSizes);
    EXPECT_EQ(c.eventFlag, queue.getEventFlagWord() != nullptr);
}

TEST(AidlMessageQueueTest, LayoutOfTheSharedMemory) {
    const LayoutCase cases[] = {
            {"1000 bytes", 1, 1000, false, 0, "0:0/8 0:8/8 0:16/1000", "4096"},
            {"1000 bytes, flag", 1, 1000, true, 0, "0:0/8 0:8/8 0:16/1000 0:1016/4", "4096"},
            {"13 bytes, flag", 1, 13, true, 0, "0:0/8 0:8/8 0:16/13 0:32/4", "4096"},
            {"flag on next page", 1, 4080, true, 0, "0:0/8 0:8/8 0:16/4080 0:4096/4", "8192"},
            {"4096 bytes, flag", 1, 4096, true, 0, "0:0/8 0:8/8 0:16/4096 0:4112/4", "8192"},
            {"ten uint32_t, flag", 4, 10, true, 0, "0:0/8 0:8/8 0:16/40 0:56/4", "4096"},
            {"ring in caller's fd", 1, 64, true, 100, "0:0/8 0:8/8 1:0/64 0:16/4", "4096 100"},
    };
    for (const LayoutCase& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.elementSize == 1) {
            expectLayout<int8_t>(c);
        } else {
            expectLayout<uint32_t>(c);
        }
    }
}

TEST(AidlMessageQueueTest, CountersCountBytesAtTheirGrantors) {
    Queue<uint32_t> queue(10);
    auto desc = queue.dupeDesc();
    void* memory = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, desc.handle.fds[0].get(), 0);
    ASSERT_NE(MAP_FAILED, memory);
    auto* counters = static_cast<const uint64_t*>(memory);

    uint32_t values[3] = {1, 2, 3};
    ASSERT_TRUE(queue.write(values, 3));
    uint32_t out[2];
    ASSERT_TRUE(queue.read(out, 2));
    EXPECT_EQ(8u, counters[0]);
    EXPECT_EQ(12u, counters[1]);
    EXPECT_EQ(2u, *reinterpret_cast<const uint32_t*>(static_cast<uint8_t*>(memory) + 16 + 4));
    munmap(memory, 4096);
}

TEST(AidlMessageQueueTest, WritesAndReadsAreAllOrNothing) {
    ByteQueue queue(16);
    ASSERT_TRUE(queue.isValid());
    EXPECT_EQ(1u, queue.getQuantumSize());
    EXPECT_EQ(16u, queue.getQuantumCount());
    std::vector<int8_t> data(17);
    std::iota(data.begin(), data.end(), 0);

    EXPECT_FALSE(queue.write(data.data(), 17));
    EXPECT_EQ(0u, queue.availableToRead());
    EXPECT_TRUE(queue.write(data.data(), 16));
    EXPECT_EQ(0u, queue.availableToWrite());
    EXPECT_FALSE(queue.write(data.data(), 1));

    std::vector<int8_t> out(17, -1);
    EXPECT_FALSE(queue.read(out.data(), 17));
    EXPECT_EQ(16u, queue.availableToRead());
    EXPECT_TRUE(queue.read(out.data(), 16));
    EXPECT_TRUE(std::equal(data.begin(), data.begin() + 16, out.begin()));
    EXPECT_FALSE(queue.read(out.data(), 1));
    EXPECT_EQ(16u, queue.availableToWrite());
}

TEST(AidlMessageQueueTest, EmptyAndNullTransfers) {
    ByteQueue queue(16);
    int8_t byte = 5;
    struct Case {
        const char* name;
        std::function<bool()> call;
        bool expected;
    };
    const std::vector<Case> cases = {
            {"write nothing", [&] { return queue.write(&byte, 0); }, true},
            {"write nothing from null", [&] { return queue.write(nullptr, 0); }, false},
            {"write one from null", [&] { return queue.write(nullptr, 1); }, false},
            {"read nothing", [&] { return queue.read(&byte, 0); }, true},
            {"read nothing into null", [&] { return queue.read(nullptr, 0); }, false},
            {"read from empty", [&] { return queue.read(&byte); }, false},
    };
    for (const Case& c : cases) EXPECT_EQ(c.expected, c.call()) << c.name;
    EXPECT_EQ(0u, queue.availableToRead());
}

// Every start offset in the ring and every length: the bytes come back in order, and ring byte i
// holds the byte written at counter value i modulo the ring size.
TEST(AidlMessageQueueTest, WrapsAroundAtEveryOffset) {
    constexpr size_t kSize = 24;
    for (size_t start = 0; start < kSize; ++start) {
        for (size_t length = 1; length <= kSize; ++length) {
            ByteQueue queue(kSize);
            std::vector<int8_t> data(kSize);
            ASSERT_TRUE(queue.write(data.data(), start));
            ASSERT_TRUE(queue.read(data.data(), start));
            std::vector<int8_t> in(length);
            for (size_t i = 0; i < length; ++i) in[i] = static_cast<int8_t>(100 + start + i);
            ASSERT_TRUE(queue.write(in.data(), length));
            for (size_t i = 0; i < length; ++i) {
                ASSERT_EQ(in[i], static_cast<int8_t>(queue.getRingBufferPtr()[(start + i) % kSize]))
                        << "start " << start << " length " << length;
            }
            std::vector<int8_t> out(length);
            ASSERT_TRUE(queue.read(out.data(), length));
            ASSERT_EQ(in, out) << "start " << start << " length " << length;
        }
    }
}

TEST(AidlMessageQueueTest, MultiByteElementsAreNeverSplitAtTheWrap) {
    Queue<uint32_t> queue(5);
    uint32_t values[5] = {1, 2, 3, 4, 5};
    ASSERT_TRUE(queue.write(values, 3));
    ASSERT_TRUE(queue.read(values, 3));
    uint32_t in[4] = {0xAABBCCDD, 0x11223344, 0x55667788, 0x99AABBCC};
    ASSERT_TRUE(queue.write(in, 4));
    uint32_t out[4];
    ASSERT_TRUE(queue.read(out, 4));
    EXPECT_TRUE(std::equal(in, in + 4, out));
}

TEST(AidlMessageQueueTest, ZeroCopyTransactionSpansTheWrap) {
    ByteQueue queue(1000);
    std::vector<int8_t> data(1000, 1);
    ASSERT_TRUE(queue.write(data.data(), 700));
    ASSERT_TRUE(queue.read(data.data(), 700));

    ByteQueue::MemTransaction tx;
    ASSERT_TRUE(queue.beginWrite(600, &tx));
    EXPECT_EQ(queue.getRingBufferPtr() + 700,
              reinterpret_cast<uint8_t*>(tx.getFirstRegion().getAddress()));
    EXPECT_EQ(300u, tx.getFirstRegion().getLength());
    EXPECT_EQ(queue.getRingBufferPtr(),
              reinterpret_cast<uint8_t*>(tx.getSecondRegion().getAddress()));
    EXPECT_EQ(300u, tx.getSecondRegion().getLength());
    EXPECT_EQ(nullptr, tx.getSlot(600));
    std::vector<int8_t> in(600);
    std::iota(in.begin(), in.end(), 0);
    EXPECT_FALSE(tx.copyTo(in.data(), 1, 600));
    ASSERT_TRUE(tx.copyTo(in.data(), 0, 600));
    EXPECT_EQ(0u, queue.availableToRead());  // nothing is visible before the commit
    ASSERT_TRUE(queue.commitWrite(600));

    ASSERT_TRUE(queue.beginRead(600, &tx));
    EXPECT_EQ(in[299], *tx.getSlot(299));
    EXPECT_EQ(in[300], *tx.getSlot(300));
    std::vector<int8_t> out(600);
    ASSERT_TRUE(tx.copyFrom(out.data(), 0, 600));
    ASSERT_TRUE(queue.commitRead(600));
    EXPECT_EQ(in, out);
    EXPECT_EQ(1000u, queue.availableToWrite());
}

TEST(AidlMessageQueueTest, CorruptCountersAreDetected) {
    ByteQueue queue(1000);
    auto desc = queue.dupeDesc();
    void* memory =
            mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, desc.handle.fds[0].get(), 0);
    ASSERT_NE(MAP_FAILED, memory);
    auto* counters = static_cast<uint64_t*>(memory);

    counters[0] = 10;
    counters[1] = 5;
    ByteQueue::Error error = ByteQueue::NONE;
    EXPECT_EQ(0u, queue.availableToRead(&error));
    EXPECT_EQ(ByteQueue::POINTER_CORRUPTION, error);

    // The writer overran the reader: the read fails and skips to the write counter.
    counters[0] = 0;
    counters[1] = 1500;
    std::string message;
    EXPECT_EQ(0u, queue.availableToWrite(&error, &message));
    EXPECT_EQ(ByteQueue::POINTER_CORRUPTION, error);
    EXPECT_FALSE(message.empty());
    int8_t byte;
    EXPECT_FALSE(queue.read(&byte));
    EXPECT_EQ(1500u, counters[0]);
    EXPECT_EQ(1500u, counters[1]);
    munmap(memory, 4096);
}

TEST(AidlMessageQueueTest, EndpointsFromADescriptorShareTheQueue) {
    ByteQueue queue(64, true);
    std::vector<int8_t> in = {1, 2, 3, 4, 5};
    ASSERT_TRUE(queue.write(in.data(), 5));
    {
        // Attaching discards unread data by default.
        ByteQueue other(queue.dupeDesc());
        ASSERT_TRUE(other.isValid());
        EXPECT_EQ(0u, queue.availableToRead());
        ASSERT_TRUE(queue.write(in.data(), 5));
        std::vector<int8_t> out(5);
        ASSERT_TRUE(other.read(out.data(), 5));
        EXPECT_EQ(in, out);
        ASSERT_TRUE(other.write(in.data(), 3));
        EXPECT_EQ(3u, queue.availableToRead());
        other.getEventFlagWord()->store(0x2);
        EXPECT_EQ(0x2u, queue.getEventFlagWord()->load());
    }
    ByteQueue keeping(queue.dupeDesc(), false);
    EXPECT_EQ(3u, keeping.availableToRead());
}

TEST(AidlMessageQueueTest, RingInTheCallersBuffer) {
    android::base::unique_fd buffer = makeBuffer(100);
    int probe = dup(buffer.get());
    int fdsBefore = countOpenFds();
    {
        ByteQueue queue(64, false, std::move(buffer), 100);
        ASSERT_TRUE(queue.isValid());
        int8_t in[3] = {7, 8, 9};
        ASSERT_TRUE(queue.write(in, 3));
        int8_t stored[3];
        ASSERT_EQ(3, pread(probe, stored, 3, 0));
        EXPECT_TRUE(std::equal(in, in + 3, stored));
    }
    // The queue took the buffer's fd over and closed it.
    EXPECT_EQ(fdsBefore - 1, countOpenFds());
    close(probe);
}

TEST(AidlMessageQueueTest, DupeDescDuplicatesTheFdsEveryTime) {
    ByteQueue queue(100, false, makeBuffer(100), 100);
    ASSERT_TRUE(queue.isValid());
    auto first = queue.dupeDesc();
    auto second = queue.dupeDesc();
    ASSERT_EQ(2u, first.handle.fds.size());
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_NE(first.handle.fds[i].get(), second.handle.fds[i].get());
        struct stat a, b;
        ASSERT_EQ(0, fstat(first.handle.fds[i].get(), &a));
        ASSERT_EQ(0, fstat(second.handle.fds[i].get(), &b));
        EXPECT_EQ(a.st_ino, b.st_ino);
    }
    EXPECT_NE(first.handle.fds[0].get(), first.handle.fds[1].get());
}

TEST(AidlMessageQueueTest, FdsAndMappingsLiveExactlyAsLongAsTheirOwners) {
    const int fdsBefore = countOpenFds();
    const int mappingsBefore = countQueueMappings();
    {
        auto queue = std::make_unique<ByteQueue>(4096);
        EXPECT_EQ(fdsBefore + 1, countOpenFds());
        auto desc = std::make_unique<ByteDescriptor>(queue->dupeDesc());
        EXPECT_EQ(fdsBefore + 2, countOpenFds());
        auto other = std::make_unique<ByteQueue>(*desc);
        EXPECT_EQ(fdsBefore + 3, countOpenFds());
        desc.reset();
        EXPECT_EQ(fdsBefore + 2, countOpenFds());
        other.reset();
        EXPECT_EQ(fdsBefore + 1, countOpenFds());
        EXPECT_EQ(mappingsBefore + 3, countQueueMappings());
    }
    EXPECT_EQ(fdsBefore, countOpenFds());
    EXPECT_EQ(mappingsBefore, countQueueMappings());
}

TEST(AidlMessageQueueTest, NewQueuesThatCannotExistAreInvalid) {
    const size_t kMaxBytes = INT_MAX - getpagesize();
    const int fdsBefore = countOpenFds();
    EXPECT_FALSE(ByteQueue(0).isValid());
    EXPECT_FALSE(Queue<uint64_t>(SIZE_MAX / 4).isValid());
    EXPECT_FALSE(ByteQueue(kMaxBytes + 1).isValid());
    EXPECT_FALSE(ByteQueue(64, false, makeBuffer(63), 63).isValid());
    EXPECT_EQ(fdsBefore, countOpenFds());
    EXPECT_EQ(0, countQueueMappings());
    EXPECT_TRUE(ByteQueue(kMaxBytes).isValid());

    auto empty = ByteQueue(0).dupeDesc();
    EXPECT_EQ(ByteDescriptor{}, empty);
}

TEST(AidlMessageQueueTest, DescriptorsThatCannotDescribeAQueueGiveInvalidQueues) {
    int pipeFds[2];
    ASSERT_EQ(0, pipe(pipeFds));
    android::base::unique_fd pipeRead(pipeFds[0]), pipeWrite(pipeFds[1]);
    struct Case {
        const char* name;
        std::function<void(ByteDescriptor&)> spoil;
    };
    const std::vector<Case> cases = {
            {"two grantors", [](auto& d) { d.grantors.resize(2); }},
            {"wrong quantum", [](auto& d) { d.quantum = 2; }},
            {"negative quantum", [](auto& d) { d.quantum = -1; }},
            {"negative flags", [](auto& d) { d.flags = -1; }},
            {"negative fd index", [](auto& d) { d.grantors[0].fdIndex = -1; }},
            {"fd index past the fds", [](auto& d) { d.grantors[2].fdIndex = 1; }},
            {"negative offset", [](auto& d) { d.grantors[1].offset = -8; }},
            {"unaligned offset", [](auto& d) { d.grantors[1].offset = 4; }},
            {"negative extent", [](auto& d) { d.grantors[2].extent = -1; }},
            {"empty ring", [](auto& d) { d.grantors[2].extent = 0; }},
            {"short counter", [](auto& d) { d.grantors[0].extent = 4; }},
            {"short event flag word", [](auto& d) { d.grantors[3].extent = 2; }},
            {"extent too large to map", [](auto& d) { d.grantors[2].extent = INT_MAX; }},
            {"ring beyond the file", [](auto& d) { d.grantors[2].offset = 4096; }},
            {"no fds", [](auto& d) { d.handle.fds.clear(); }},
            {"closed fd", [](auto& d) { d.handle.fds[0].set(-1); }},
            {"pipe fd", [&](auto& d) { d.handle.fds[0].set(dup(pipeRead.get())); }},
            {"read-only fd",
             [](auto& d) {
                 std::string path = "/proc/self/fd/" + std::to_string(d.handle.fds[0].get());
                 d.handle.fds[0].set(open(path.c_str(), O_RDONLY | O_CLOEXEC));
             }},
    };
    ByteQueue queue(1000, true);
    const int fdsBefore = countOpenFds();
    const int mappingsBefore = countQueueMappings();
    for (const Case& c : cases) {
        auto desc = queue.dupeDesc();
        c.spoil(desc);
        EXPECT_FALSE(ByteQueue(desc).isValid()) << c.name;
    }
    EXPECT_EQ(fdsBefore, countOpenFds());
    EXPECT_EQ(mappingsBefore, countQueueMappings());
    EXPECT_TRUE(ByteQueue(queue.dupeDesc()).isValid());
}

}  // namespace
