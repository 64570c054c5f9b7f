#include "MetadataQueue.h"

namespace camera_harness {

std::unique_ptr<MetadataQueue> MetadataQueue::attach(const MetadataQueueDescriptor& descriptor) {
    auto queue = std::make_unique<Queue>(descriptor, true);
    if (!queue->isValid() || queue->availableToWrite() == 0) return nullptr;
    return std::unique_ptr<MetadataQueue>(new MetadataQueue(std::move(queue)));
}

bool MetadataQueue::write(const std::vector<uint8_t>& bytes) {
    return mQueue->write(reinterpret_cast<const int8_t*>(bytes.data()), bytes.size());
}

std::optional<std::vector<uint8_t>> MetadataQueue::read(size_t size) {
    std::vector<uint8_t> bytes(size);
    if (!mQueue->read(reinterpret_cast<int8_t*>(bytes.data()), size)) return std::nullopt;
    return bytes;
}

size_t MetadataQueue::discardUnread() {
    size_t unread = mQueue->availableToRead();
    std::vector<int8_t> bytes(unread);
    return unread != 0 && mQueue->read(bytes.data(), unread) ? unread : 0;
}

}  // namespace camera_harness
