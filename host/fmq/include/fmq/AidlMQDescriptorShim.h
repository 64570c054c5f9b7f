/*
 * The descriptor type of AidlMessageQueue: the queue's own QueueDescriptor, tagged with the
 * element type and flavour it was made for.
 */
#pragma once

#include <fmq/MQDescriptorBase.h>
#include <fmq/QueueDescriptor.h>

#include <utility>

namespace android::details {

template <typename T, hardware::MQFlavor flavor>
class AidlMQDescriptorShim : public hardware::details::QueueDescriptor {
public:
    explicit AidlMQDescriptorShim(QueueDescriptor&& description)
        : QueueDescriptor(std::move(description)) {}
};

}  // namespace android::details
