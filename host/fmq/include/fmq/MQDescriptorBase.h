/*
 * Shared-memory layout vocabulary of libfmq: queue flavours, the internal grantor record (one
 * region of a queue's memory) and the grantor indices. Plain types, no state.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <string>

namespace android::hardware {

enum MQFlavor : uint32_t {
    // One writer, one reader; a write never overwrites unread data.
    kSynchronizedReadWrite = 0x01,
    // One writer that may overwrite unread data, any number of readers.
    kUnsynchronizedWrite = 0x02,
};

struct GrantorDescriptor {
    uint32_t flags = 0;
    uint32_t fdIndex = 0;
    uint32_t offset = 0;
    uint64_t extent = 0;
};

namespace details {

typedef uint64_t RingBufferPosition;

enum GrantorType : int { READPTRPOS = 0, WRITEPTRPOS = 1, DATAPTRPOS = 2, EVFLAGWORDPOS = 3 };

// A queue has read counter, write counter and ring; the event-flag word is optional.
static constexpr int32_t kMinGrantorCount = DATAPTRPOS + 1;
static constexpr int32_t kMinGrantorCountForEvFlagSupport = EVFLAGWORDPOS + 1;

// Regions start on 8-byte boundaries so that the 64-bit counters are naturally aligned.
static inline size_t alignToWordBoundary(size_t length) {
    constexpr size_t kAlignmentSize = 8;
    return (length + kAlignmentSize - 1) & ~(kAlignmentSize - 1);
}

static inline bool isAlignedToWordBoundary(size_t offset) {
    constexpr size_t kAlignmentSize = 8;
    return (offset & (kAlignmentSize - 1)) == 0;
}

void logError(const std::string& message);

}  // namespace details

}  // namespace android::hardware
