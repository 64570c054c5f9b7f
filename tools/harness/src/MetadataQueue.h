/*
 * The framework's endpoint of one camera metadata queue (request settings or result metadata),
 * attached through the descriptor the session hands out. Single reader, single writer: each
 * endpoint is used by one side only, and the owner serialises its calls.
 */
#pragma once

#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <fmq/AidlMessageQueue.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace camera_harness {

using MetadataQueueDescriptor = aidl::android::hardware::common::fmq::MQDescriptor<
        int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

class MetadataQueue {
public:
    // Null when the descriptor does not describe a usable queue (the framework then sends and
    // expects everything inline).
    static std::unique_ptr<MetadataQueue> attach(const MetadataQueueDescriptor& descriptor);

    // All of `bytes` or nothing; false when the queue lacks room.
    bool write(const std::vector<uint8_t>& bytes);
    // Exactly `size` bytes, or nullopt when fewer are waiting.
    std::optional<std::vector<uint8_t>> read(size_t size);
    // Drops whatever the other side left unread, so that the next item starts in step.
    size_t discardUnread();

private:
    using Queue =
            android::AidlMessageQueue<int8_t,
                                      aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

    explicit MetadataQueue(std::unique_ptr<Queue> queue) : mQueue(std::move(queue)) {}

    std::unique_ptr<Queue> mQueue;
};

}  // namespace camera_harness
