/*
 * A fast message queue over shared memory: a ring of elements of T plus a 64-bit read counter and
 * a 64-bit write counter that count bytes ever read and written. Every endpoint (the queue that
 * made the memory, and each queue made from a descriptor of it) maps the same memory, so what one
 * writes another reads. Synchronized flavour only: one writer thread and one reader thread, which
 * may be in different endpoints; each side serialises its own calls.
 *
 * Reads and writes never block. The optional event-flag word is laid out and mapped (see
 * getEventFlagWord) but this stand-in has no EventFlag and no blocking calls.
 *
 * A queue whose construction failed is invalid (isValid() false); only isValid() may be called on
 * it (and dupeDesc() on AidlMessageQueue). Owns its mappings and fds.
 */
#pragma once

#include <android-base/unique_fd.h>
#include <fmq/FmqInternal.h>
#include <fmq/GrantorMapping.h>
#include <fmq/MQDescriptorBase.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace android {

namespace details {

template <typename T, typename = void>
struct IsFixedSizeParcelable : std::false_type {};
template <typename T>
struct IsFixedSizeParcelable<T, std::void_t<typename T::fixed_size>> : T::fixed_size {};

}  // namespace details

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
struct MessageQueueBase {
    static_assert(std::is_fundamental_v<T> || std::is_enum_v<T> ||
                          details::IsFixedSizeParcelable<T>::value,
                  "Only fundamental types, enums and fixed-size parcelables travel in a queue");
    static_assert(flavor == hardware::kSynchronizedReadWrite,
                  "Only the synchronized flavour is available");
    static_assert(std::atomic<uint64_t>::is_always_lock_free,
                  "The counters are shared between processes");

    typedef MQDescriptorType<T, flavor> Descriptor;
    enum Error : int { NONE, POINTER_CORRUPTION };

    // `length` consecutive slots of the ring.
    struct MemRegion {
        MemRegion() : MemRegion(nullptr, 0) {}
        MemRegion(T* base, size_t size) : address(base), length(size) {}

        T* getAddress() const { return address; }
        size_t getLength() const { return length; }
        size_t getLengthInBytes() const { return length * sizeof(T); }

    private:
        T* address;
        size_t length;
    };

    // The slots of one zero-copy write or read: up to the ring's end, then from its start.
    struct MemTransaction {
        MemTransaction() = default;
        MemTransaction(const MemRegion& firstRegion, const MemRegion& secondRegion)
            : first(firstRegion), second(secondRegion) {}

        // Slot `idx` of the transaction, or null beyond it.
        T* getSlot(size_t idx) {
            T* firstAddress;
            T* secondAddress;
            size_t firstCount;
            size_t secondCount;
            if (!getMemRegionInfo(idx, 1, &firstCount, &firstAddress, &secondCount, &secondAddress)) {
                return nullptr;
            }
            return firstCount != 0 ? firstAddress : secondAddress;
        }

        // Copies `nMessages` elements from `data` into the slots from `startIdx` on.
        bool copyTo(const T* data, size_t startIdx, size_t nMessages = 1) {
            if (data == nullptr) return false;
            T* firstAddress;
            T* secondAddress;
            size_t firstCount;
            size_t secondCount;
            if (!getMemRegionInfo(startIdx, nMessages, &firstCount, &firstAddress, &secondCount,
                                  &secondAddress)) {
                return false;
            }
            if (firstCount != 0) memcpy(firstAddress, data, firstCount * sizeof(T));
            if (secondCount != 0) {
                memcpy(secondAddress, data + firstCount, secondCount * sizeof(T));
            }
            return true;
        }

        // Copies `nMessages` elements from the slots from `startIdx` on into `data`.
        bool copyFrom(T* data, size_t startIdx, size_t nMessages = 1) {
            if (data == nullptr) return false;
            T* firstAddress;
            T* secondAddress;
            size_t firstCount;
            size_t secondCount;
            if (!getMemRegionInfo(startIdx, nMessages, &firstCount, &firstAddress, &secondCount,
                                  &secondAddress)) {
                return false;
            }
            if (firstCount != 0) memcpy(data, firstAddress, firstCount * sizeof(T));
            if (secondCount != 0) {
                memcpy(data + firstCount, secondAddress, secondCount * sizeof(T));
            }
            return true;
        }

        const MemRegion& getFirstRegion() const { return first; }
        const MemRegion& getSecondRegion() const { return second; }

    private:
        bool getMemRegionInfo(size_t startIdx, size_t nMessages, size_t* firstCount,
                              T** firstAddress, size_t* secondCount, T** secondAddress) const {
            size_t firstLength = first.getLength();
            size_t secondLength = second.getLength();
            if (startIdx > firstLength + secondLength ||
                nMessages > firstLength + secondLength - startIdx) {
                return false;
            }
            if (startIdx < firstLength) {
                *firstCount = std::min(nMessages, firstLength - startIdx);
                *firstAddress = first.getAddress() + startIdx;
                *secondCount = nMessages - *firstCount;
                *secondAddress = second.getAddress();
            } else {
                *firstCount = 0;
                *firstAddress = nullptr;
                *secondCount = nMessages;
                *secondAddress = second.getAddress() + (startIdx - firstLength);
            }
            return true;
        }

        MemRegion first;
        MemRegion second;
    };

    MessageQueueBase(const MessageQueueBase&) = delete;
    MessageQueueBase& operator=(const MessageQueueBase&) = delete;

    size_t getQuantumSize() const { return mDesc->getQuantum(); }
    size_t getQuantumCount() const { return mDesc->getSize() / mDesc->getQuantum(); }
    // The ring and both counters are mapped.
    bool isValid() const { return mRing != nullptr && mReadPtr != nullptr && mWritePtr != nullptr; }

    size_t availableToWrite(Error* errorDetected = nullptr,
                            std::string* errorMessage = nullptr) const {
        return availableToWriteBytes(errorDetected, errorMessage) / sizeof(T);
    }
    size_t availableToRead(Error* errorDetected = nullptr,
                           std::string* errorMessage = nullptr) const {
        return availableToReadBytes(errorDetected, errorMessage) / sizeof(T);
    }

    // All or nothing: false, with nothing written or read, when `count` elements do not fit or
    // are not there.
    bool write(const T* data) { return write(data, 1); }
    bool read(T* data) { return read(data, 1); }
    bool write(const T* data, size_t count) {
        MemTransaction tx;
        return beginWrite(count, &tx) && tx.copyTo(data, 0, count) && commitWrite(count);
    }
    bool read(T* data, size_t count) {
        MemTransaction tx;
        return beginRead(count, &tx) && tx.copyFrom(data, 0, count) && commitRead(count);
    }

    // Zero-copy: begin* hands out the slots, commit* publishes them to the other side.
    bool beginWrite(size_t nMessages, MemTransaction* result) const;
    bool commitWrite(size_t nMessages);
    bool beginRead(size_t nMessages, MemTransaction* result) const;
    bool commitRead(size_t nMessages);

    const Descriptor* getDesc() const { return mDesc.get(); }
    // The mapped event-flag word, or null when the queue has none. Not owned by the caller.
    std::atomic<uint32_t>* getEventFlagWord() const { return mEvFlagWord; }
    uint8_t* getRingBufferPtr() const { return mRing; }

protected:
    // A new queue with memory of its own; with a valid `bufferFd` the ring lives in that fd.
    MessageQueueBase(size_t numElementsInQueue, bool configureEventFlagWord,
                     base::unique_fd bufferFd, size_t bufferSize);
    // Another endpoint of the queue that `desc` describes; null `desc` makes an invalid queue.
    MessageQueueBase(std::unique_ptr<Descriptor> desc, bool resetPointers);
    ~MessageQueueBase() = default;

    std::unique_ptr<Descriptor> mDesc;

private:
    void initMemory(bool resetPointers);
    size_t availableToWriteBytes(Error* errorDetected, std::string* errorMessage) const;
    size_t availableToReadBytes(Error* errorDetected, std::string* errorMessage) const;
    // Sets the read counter to the write counter after the writer overran the reader.
    void resetAfterOverflow(uint64_t writePtr) const;
    // The nMessages slots from counter `position` on, split where the ring wraps.
    MemTransaction slotsAt(uint64_t position, size_t nMessages) const;

    hardware::details::GrantorMapping mReadMapping;
    hardware::details::GrantorMapping mWriteMapping;
    hardware::details::GrantorMapping mRingMapping;
    hardware::details::GrantorMapping mEvFlagMapping;
    std::atomic<uint64_t>* mReadPtr = nullptr;
    std::atomic<uint64_t>* mWritePtr = nullptr;
    uint8_t* mRing = nullptr;
    std::atomic<uint32_t>* mEvFlagWord = nullptr;
};

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
MessageQueueBase<MQDescriptorType, T, flavor>::MessageQueueBase(size_t numElementsInQueue,
                                                                bool configureEventFlagWord,
                                                                base::unique_fd bufferFd,
                                                                size_t bufferSize) {
    using hardware::details::logError;
    if (numElementsInQueue == 0) {
        logError("Requested queue size of 0.");
        return;
    }
    if (numElementsInQueue > std::numeric_limits<size_t>::max() / sizeof(T)) {
        logError("Requested message queue size too large. Size of elements: " +
                 std::to_string(sizeof(T)) +
                 ". Number of elements: " + std::to_string(numElementsInQueue));
        return;
    }
    size_t dataBytes = numElementsInQueue * sizeof(T);
    if (bufferFd.ok() && bufferSize < dataBytes) {
        logError("The supplied buffer size (" + std::to_string(bufferSize) +
                 ") is smaller than the queue size (" + std::to_string(dataBytes) + ")");
        return;
    }
    size_t regionSize = 0;
    std::vector<hardware::GrantorDescriptor> grantors = hardware::details::layoutNewQueue(
            dataBytes, configureEventFlagWord, bufferFd.ok(), &regionSize);
    if (grantors.empty()) return;
    std::vector<base::unique_fd> fds;
    fds.push_back(hardware::details::createSharedRegion("MessageQueue", regionSize));
    if (!fds.back().ok()) return;
    if (bufferFd.ok()) fds.push_back(std::move(bufferFd));
    mDesc = std::make_unique<Descriptor>(hardware::details::QueueDescriptor(
            std::move(grantors), std::move(fds), sizeof(T), flavor));
    initMemory(true);
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
MessageQueueBase<MQDescriptorType, T, flavor>::MessageQueueBase(std::unique_ptr<Descriptor> desc,
                                                                bool resetPointers)
    : mDesc(std::move(desc)) {
    if (mDesc == nullptr) return;
    initMemory(resetPointers);
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
void MessageQueueBase<MQDescriptorType, T, flavor>::initMemory(bool resetPointers) {
    using namespace hardware::details;
    auto mapGrantor = [this](int index) {
        return GrantorMapping::map(mDesc->getGrantors()[index], mDesc->getFd(index));
    };
    GrantorMapping readMapping = mapGrantor(READPTRPOS);
    GrantorMapping writeMapping = mapGrantor(WRITEPTRPOS);
    GrantorMapping ringMapping = mapGrantor(DATAPTRPOS);
    GrantorMapping evFlagMapping;
    bool withEvFlag = mDesc->countGrantors() >= kMinGrantorCountForEvFlagSupport;
    if (withEvFlag) evFlagMapping = mapGrantor(EVFLAGWORDPOS);
    if (readMapping.address() == nullptr || writeMapping.address() == nullptr ||
        ringMapping.address() == nullptr || (withEvFlag && evFlagMapping.address() == nullptr)) {
        logError("Could not map the queue's memory");
        return;
    }
    mReadMapping = std::move(readMapping);
    mWriteMapping = std::move(writeMapping);
    mRingMapping = std::move(ringMapping);
    mEvFlagMapping = std::move(evFlagMapping);
    mReadPtr = reinterpret_cast<std::atomic<uint64_t>*>(mReadMapping.address());
    mWritePtr = reinterpret_cast<std::atomic<uint64_t>*>(mWriteMapping.address());
    mRing = mRingMapping.address();
    mEvFlagWord = reinterpret_cast<std::atomic<uint32_t>*>(mEvFlagMapping.address());
    if (resetPointers) {
        mReadPtr->store(0, std::memory_order_release);
        mWritePtr->store(0, std::memory_order_release);
    }
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
size_t MessageQueueBase<MQDescriptorType, T, flavor>::availableToWriteBytes(
        Error* errorDetected, std::string* errorMessage) const {
    size_t queueSize = mDesc->getSize();
    size_t availableBytes = availableToReadBytes(errorDetected, errorMessage);
    if (queueSize < availableBytes) {
        std::string message = "The write pointer has become misaligned. Writing is not possible.";
        hardware::details::logError(message);
        if (errorDetected != nullptr) *errorDetected = POINTER_CORRUPTION;
        if (errorMessage != nullptr) *errorMessage = std::move(message);
        return 0;
    }
    return queueSize - availableBytes;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
size_t MessageQueueBase<MQDescriptorType, T, flavor>::availableToReadBytes(
        Error* errorDetected, std::string* errorMessage) const {
    uint64_t writePtr = mWritePtr->load(std::memory_order_acquire);
    uint64_t readPtr = mReadPtr->load(std::memory_order_acquire);
    if (writePtr < readPtr) {
        std::string message =
                "The write pointer is behind the read pointer. Reading and "
                "writing are not possible.";
        hardware::details::logError(message);
        if (errorDetected != nullptr) *errorDetected = POINTER_CORRUPTION;
        if (errorMessage != nullptr) *errorMessage = std::move(message);
        return 0;
    }
    if (errorDetected != nullptr) *errorDetected = NONE;
    return writePtr - readPtr;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
bool MessageQueueBase<MQDescriptorType, T, flavor>::beginWrite(size_t nMessages,
                                                               MemTransaction* result) const {
    *result = MemTransaction();
    if (nMessages > getQuantumCount() || nMessages > availableToWrite()) return false;
    uint64_t writePtr = mWritePtr->load(std::memory_order_relaxed);
    if (writePtr % sizeof(T) != 0) {
        hardware::details::logError("The write pointer has become misaligned.");
        return false;
    }
    *result = slotsAt(writePtr, nMessages);
    return true;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
bool MessageQueueBase<MQDescriptorType, T, flavor>::commitWrite(size_t nMessages) {
    uint64_t writePtr = mWritePtr->load(std::memory_order_relaxed);
    // Release: the reader that sees the new counter sees the bytes copied before it.
    mWritePtr->store(writePtr + nMessages * sizeof(T), std::memory_order_release);
    return true;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
bool MessageQueueBase<MQDescriptorType, T, flavor>::beginRead(size_t nMessages,
                                                              MemTransaction* result) const {
    *result = MemTransaction();
    uint64_t writePtr = mWritePtr->load(std::memory_order_acquire);
    uint64_t readPtr = mReadPtr->load(std::memory_order_relaxed);
    if (writePtr % sizeof(T) != 0 || readPtr % sizeof(T) != 0) {
        hardware::details::logError("The write or read pointer has become misaligned.");
        return false;
    }
    size_t queueSize = mDesc->getSize();
    if (writePtr - readPtr > queueSize) {
        resetAfterOverflow(writePtr);
        return false;
    }
    if (nMessages > getQuantumCount() || writePtr - readPtr < nMessages * sizeof(T)) return false;
    *result = slotsAt(readPtr, nMessages);
    return true;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
bool MessageQueueBase<MQDescriptorType, T, flavor>::commitRead(size_t nMessages) {
    uint64_t readPtr = mReadPtr->load(std::memory_order_relaxed);
    uint64_t writePtr = mWritePtr->load(std::memory_order_acquire);
    if (writePtr - readPtr > mDesc->getSize()) {
        resetAfterOverflow(writePtr);
        return false;
    }
    // Release: the writer that sees the new counter may reuse the slots just copied out.
    mReadPtr->store(readPtr + nMessages * sizeof(T), std::memory_order_release);
    return true;
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
void MessageQueueBase<MQDescriptorType, T, flavor>::resetAfterOverflow(uint64_t writePtr) const {
    hardware::details::logError("Read failed after an overflow. Resetting read pointer.");
    mReadPtr->store(writePtr, std::memory_order_release);
}

template <template <typename, hardware::MQFlavor> class MQDescriptorType, typename T,
          hardware::MQFlavor flavor>
typename MessageQueueBase<MQDescriptorType, T, flavor>::MemTransaction
MessageQueueBase<MQDescriptorType, T, flavor>::slotsAt(uint64_t position, size_t nMessages) const {
    size_t offset = position % mDesc->getSize();
    size_t contiguousMessages = (mDesc->getSize() - offset) / sizeof(T);
    T* address = reinterpret_cast<T*>(mRing + offset);
    if (contiguousMessages >= nMessages) {
        return MemTransaction(MemRegion(address, nMessages), MemRegion());
    }
    return MemTransaction(MemRegion(address, contiguousMessages),
                          MemRegion(reinterpret_cast<T*>(mRing), nMessages - contiguousMessages));
}

}  // namespace android
