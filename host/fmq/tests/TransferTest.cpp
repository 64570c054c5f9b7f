#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

#include "QueueTestUtils.h"

using namespace fmq_test;

namespace {

// Word k of the stream; any side can compute it without sharing state with the other.
uint64_t streamWord(uint64_t k) {
    uint64_t z = (k + 1) * 0x9E3779B97F4A7C15ull;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

// Order-sensitive checksum of the words a side has moved.
uint64_t addToChecksum(uint64_t checksum, uint64_t word) {
    return (checksum ^ word) * 0x100000001B3ull;
}

// Word-sized chunk lengths; with an odd ring size the chunks still start at every offset.
constexpr size_t kChunkWords[] = {511, 8190, 3, 4093, 1, 1023, 8192};
constexpr size_t kMaxChunkWords = 8192;

size_t chunkWords(size_t index, size_t remaining) {
    return std::min(kChunkWords[index % std::size(kChunkWords)], remaining);
}

struct Totals {
    uint64_t writtenChecksum = 0;
    uint64_t readChecksum = 0;
    uint64_t wrongWords = 0;
};

// Moves `totalWords` words from `writer` to `reader` on two threads and checks every word.
Totals transfer(ByteQueue& writer, ByteQueue& reader, size_t totalWords) {
    Totals totals;
    std::thread writing([&] {
        std::vector<uint64_t> chunk(kMaxChunkWords);
        uint64_t checksum = 0;
        for (size_t sent = 0, i = 0; sent < totalWords; ++i) {
            size_t words = chunkWords(i, totalWords - sent);
            for (size_t w = 0; w < words; ++w) {
                chunk[w] = streamWord(sent + w);
                checksum = addToChecksum(checksum, chunk[w]);
            }
            auto* bytes = reinterpret_cast<const int8_t*>(chunk.data());
            while (!writer.write(bytes, words * sizeof(uint64_t))) std::this_thread::yield();
            sent += words;
        }
        totals.writtenChecksum = checksum;
    });
    std::vector<uint64_t> chunk(kMaxChunkWords);
    uint64_t checksum = 0;
    for (size_t received = 0, i = 0; received < totalWords; ++i) {
        size_t words = chunkWords(i, totalWords - received);
        auto* bytes = reinterpret_cast<int8_t*>(chunk.data());
        while (!reader.read(bytes, words * sizeof(uint64_t))) std::this_thread::yield();
        for (size_t w = 0; w < words; ++w) {
            if (chunk[w] != streamWord(received + w)) ++totals.wrongWords;
            checksum = addToChecksum(checksum, chunk[w]);
        }
        received += words;
    }
    writing.join();
    totals.readChecksum = checksum;
    return totals;
}

TEST(TransferTest, OneGibibyteCrossesBetweenTwoMappings) {
    ByteQueue writer((1 << 20) + 12345);
    ByteQueue reader(writer.dupeDesc());
    ASSERT_TRUE(reader.isValid());
    Totals totals = transfer(writer, reader, (size_t{1} << 30) / sizeof(uint64_t));
    EXPECT_EQ(0u, totals.wrongWords);
    EXPECT_EQ(totals.writtenChecksum, totals.readChecksum);
    EXPECT_EQ(0u, reader.availableToRead());
}

// Both threads on one mapping, so a race detector sees every shared access.
TEST(TransferTest, ThreadsShareOneEndpoint) {
    ByteQueue queue(100003);
    Totals totals = transfer(queue, queue, (size_t{64} << 20) / sizeof(uint64_t));
    EXPECT_EQ(0u, totals.wrongWords);
    EXPECT_EQ(totals.writtenChecksum, totals.readChecksum);
}

}  // namespace
