/*
 * android::AidlMessageQueue<T, U>: the fast message queue whose descriptor travels as the AIDL
 * MQDescriptor<T, U>. U is the AIDL flavour tag; this stand-in implements SynchronizedReadWrite.
 * Not copyable or movable: hold it by std::unique_ptr. Threads: see MessageQueueBase.h.
 *
 * configureEventFlagWord = true lays out and maps the event-flag word, but there is no EventFlag
 * and no blocking read or write on the host.
 */
#pragma once

#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <aidl/android/hardware/common/fmq/UnsynchronizedWrite.h>
#include <android-base/unique_fd.h>
#include <fmq/AidlMQDescriptorShim.h>
#include <fmq/MQDescriptorBase.h>
#include <fmq/MessageQueueBase.h>
#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <utility>

namespace android {

template <typename T>
struct FlavorTypeToValue;

template <>
struct FlavorTypeToValue<aidl::android::hardware::common::fmq::SynchronizedReadWrite> {
    static constexpr hardware::MQFlavor value = hardware::kSynchronizedReadWrite;
};

template <>
struct FlavorTypeToValue<aidl::android::hardware::common::fmq::UnsynchronizedWrite> {
    static constexpr hardware::MQFlavor value = hardware::kUnsynchronizedWrite;
};

typedef uint64_t RingBufferPosition;

template <typename T, typename U>
struct AidlMessageQueue final
    : public MessageQueueBase<details::AidlMQDescriptorShim, T, FlavorTypeToValue<U>::value> {
    typedef details::AidlMQDescriptorShim<T, FlavorTypeToValue<U>::value> Descriptor;
    typedef aidl::android::hardware::common::fmq::MQDescriptor<T, U> AidlDescriptor;

    // Attaches to the queue `desc` describes (its fds are duplicated; the caller keeps `desc`).
    // With `resetPointers` both counters start at 0, discarding unread data.
    AidlMessageQueue(const AidlDescriptor& desc, bool resetPointers = true)
        : Base(import(desc), resetPointers) {}

    // A new queue of `numElementsInQueue` elements with memory of its own; with a valid
    // `bufferFd` (taken over; at least numElementsInQueue * sizeof(T) bytes) the ring lives there.
    AidlMessageQueue(size_t numElementsInQueue, bool configureEventFlagWord,
                     base::unique_fd bufferFd, size_t bufferSize)
        : Base(numElementsInQueue, configureEventFlagWord, std::move(bufferFd), bufferSize) {}
    AidlMessageQueue(size_t numElementsInQueue, bool configureEventFlagWord = false)
        : AidlMessageQueue(numElementsInQueue, configureEventFlagWord, base::unique_fd(), 0) {}

    // A descriptor for another endpoint, holding fresh duplicates of the queue's fds; empty when
    // construction failed before the queue's memory existed.
    AidlDescriptor dupeDesc() const {
        AidlDescriptor desc;
        if (this->mDesc == nullptr) return desc;
        this->mDesc->exportTo(&desc.grantors, &desc.handle);
        desc.quantum = static_cast<int32_t>(this->mDesc->getQuantum());
        desc.flags = static_cast<int32_t>(this->mDesc->getFlags());
        return desc;
    }

private:
    typedef MessageQueueBase<details::AidlMQDescriptorShim, T, FlavorTypeToValue<U>::value> Base;

    static std::unique_ptr<Descriptor> import(const AidlDescriptor& desc) {
        auto description = hardware::details::QueueDescriptor::import(
                desc.grantors, desc.handle, desc.quantum, desc.flags, sizeof(T));
        if (!description) return nullptr;
        return std::make_unique<Descriptor>(std::move(*description));
    }
};

}  // namespace android
