// The bridge under a legacy device's four callback threads at once: buffer requests, returns,
// results and notifications, against a framework that hands out a fixed pool of buffer ids.
#include <aidl/android/hardware/camera/device/BnCameraDeviceCallback.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "CallbackTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::CaptureResult;
using aidl::android::hardware::camera::device::NotifyMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamBuffersVal;
using testing::MetadataPtr;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;

constexpr size_t kBuffers = 100000;
// (stream id, max_buffers); the framework's pool of each stream has max_buffers ids.
const std::vector<std::pair<int32_t, uint32_t>> kStreams = {{1, 6}, {2, 4}};

// Hands out ids from each stream's pool and takes each back exactly once, from a result or a
// return; reads result metadata from the queue and checks it names its frame. Every call first
// takes both of the bridge's locks (through its accessors), which would deadlock if the bridge
// made the call holding one.
class PoolFramework : public aidl::android::hardware::camera::device::BnCameraDeviceCallback {
public:
    PoolFramework(Aidl2LegacyCameraDeviceCallback& bridge,
                  const testing::ResultQueueDescriptor& descriptor)
        : mBridge(bridge), mQueue(descriptor) {
        for (const auto& [streamId, maxBuffers] : kStreams) {
            for (uint32_t i = 1; i <= maxBuffers; ++i) {
                const int64_t bufferId = streamId * 100 + i;
                mFree[streamId].insert(bufferId);
                mHandles[bufferId] = ndk::ScopedFileDescriptor(testing::makeFence());
            }
        }
    }

    ndk::ScopedAStatus requestStreamBuffers(const std::vector<BufferRequest>& requests,
                                            std::vector<StreamBufferRet>* answers,
                                            BufferRequestStatus* status) override {
        probeBridgeLocks();
        std::lock_guard<std::mutex> guard(mLock);
        *status = BufferRequestStatus::OK;
        for (const BufferRequest& request : requests) {
            std::set<int64_t>& free = mFree[request.streamId];
            if (free.size() < static_cast<size_t>(request.numBuffersRequested)) {
                StreamBufferRet& answer = answers->emplace_back();
                answer.streamId = request.streamId;
                answer.val.set<StreamBuffersVal::error>(
                        StreamBufferRequestError::NO_BUFFER_AVAILABLE);
                *status = BufferRequestStatus::FAILED_PARTIAL;
                continue;
            }
            std::vector<StreamBuffer> buffers(request.numBuffersRequested);
            for (StreamBuffer& buffer : buffers) {
                buffer.streamId = request.streamId;
                buffer.bufferId = *free.begin();
                free.erase(free.begin());
                // The handle travels with the first use of an id only.
                if (mSent.insert(buffer.bufferId).second) {
                    buffer.buffer.fds.push_back(mHandles[buffer.bufferId].dup());
                }
                ++mTally.handedOut;
            }
            answers->push_back(testing::frameworkAnswer(request.streamId, std::move(buffers)));
        }
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus processCaptureResult(const std::vector<CaptureResult>& results) override {
        probeBridgeLocks();
        std::lock_guard<std::mutex> guard(mLock);
        for (const CaptureResult& result : results) {
            std::vector<uint8_t> bytes = readQueue(result.fmqResultSize);
            camera_metadata_ro_entry_t entry{};
            if (bytes.empty() ||
                find_camera_metadata_ro_entry(reinterpret_cast<camera_metadata_t*>(bytes.data()),
                                              ANDROID_SENSOR_ORIENTATION, &entry) != 0 ||
                entry.data.i32[0] != result.frameNumber) {
                ++mTally.anomalies;
            }
            for (const auto& physical : result.physicalCameraMetadata) {
                if (readQueue(physical.fmqMetadataSize).empty()) ++mTally.anomalies;
            }
            takeBack(result.outputBuffers);
        }
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus returnStreamBuffers(const std::vector<StreamBuffer>& buffers) override {
        probeBridgeLocks();
        std::lock_guard<std::mutex> guard(mLock);
        takeBack(buffers);
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus notify(const std::vector<NotifyMsg>& msgs) override {
        probeBridgeLocks();
        std::lock_guard<std::mutex> guard(mLock);
        mTally.notifications += msgs.size();
        return ndk::ScopedAStatus::ok();
    }

    struct Tally {
        size_t handedOut = 0;
        size_t takenBack = 0;
        size_t anomalies = 0;
        size_t notifications = 0;
    };
    Tally tally() const {
        std::lock_guard<std::mutex> guard(mLock);
        return mTally;
    }

private:
    void probeBridgeLocks() {
        testing::Counts counts;
        mBridge.getValidBufNum(counts);
        const native_handle* none = nullptr;
        mBridge.popBufferId(none, 0);
    }
    // An id that is not out (or 0, an unknown handle) is an anomaly.
    void takeBack(const std::vector<StreamBuffer>& buffers) {
        for (const StreamBuffer& buffer : buffers) {
            if (buffer.bufferId / 100 != buffer.streamId ||
                !mFree[buffer.streamId].insert(buffer.bufferId).second) {
                ++mTally.anomalies;
            }
            ++mTally.takenBack;
        }
    }
    std::vector<uint8_t> readQueue(int64_t size) {
        std::vector<uint8_t> bytes(size > 0 ? static_cast<size_t>(size) : 0);
        if (size > 0 && !mQueue.read(reinterpret_cast<int8_t*>(bytes.data()), bytes.size())) {
            bytes.clear();
        }
        return bytes;
    }

    Aidl2LegacyCameraDeviceCallback& mBridge;
    mutable std::mutex mLock;
    testing::ResultMetadataQueue mQueue;
    std::map<int32_t, std::set<int64_t>> mFree;
    std::map<int64_t, ndk::ScopedFileDescriptor> mHandles;
    std::set<int64_t> mSent;
    Tally mTally;
};

// Buffers the device holds, on their way to a result or a return.
class HeldBuffers {
public:
    void push(const camera3_stream_buffer& buffer) {
        std::lock_guard<std::mutex> guard(mLock);
        mBuffers.push_back(buffer);
        mCondition.notify_one();
    }
    // Up to `count` buffers; empty once closed and drained.
    std::vector<camera3_stream_buffer> take(size_t count) {
        std::unique_lock<std::mutex> lock(mLock);
        mCondition.wait(lock, [&] { return !mBuffers.empty() || mClosed; });
        std::vector<camera3_stream_buffer> taken;
        while (!mBuffers.empty() && taken.size() < count) {
            taken.push_back(mBuffers.front());
            mBuffers.pop_front();
        }
        return taken;
    }
    void close() {
        std::lock_guard<std::mutex> guard(mLock);
        mClosed = true;
        mCondition.notify_all();
    }

private:
    std::mutex mLock;
    std::condition_variable mCondition;
    std::deque<camera3_stream_buffer> mBuffers;
    bool mClosed = false;
};

class CallbackStressTest : public testing::BridgeTest {
protected:
    // Log only warnings: a line per buffer would only slow the threads down.
    CallbackStressTest() { mULog.set(2, 0x187000, 3); }
};

TEST_F(CallbackStressTest, FourDeviceThreadsBalanceEveryIdAndCredit) {
    configure(kStreams);
    std::shared_ptr<PoolFramework> framework;
    {
        testing::ResultQueueDescriptor descriptor;
        mBridge->getCaptureResultMetadataQueue(&descriptor);
        framework = ndk::SharedRefBase::make<PoolFramework>(*mBridge, descriptor);
    }
    mBridge->setCallback(framework);
    const camera3_callback_ops* table = ops();
    HeldBuffers forResults;
    HeldBuffers forReturns;

    std::thread requester([&] {
        size_t handed = 0;
        for (uint32_t round = 0; handed < kBuffers; ++round) {
            testing::DeviceBufferRequest request(
                    {{stream(1), 1 + round % 3}, {stream(2), 1 + round % 2}});
            request.send(table);
            for (const camera3_stream_buffer_ret& record : request.records) {
                if (record.status != CAMERA3_PS_BUF_REQ_OK) continue;
                for (uint32_t i = 0; i < record.num_output_buffers; ++i, ++handed) {
                    // One buffer in four goes back unused.
                    (handed % 4 == 3 ? forReturns : forResults).push(record.output_buffers[i]);
                }
            }
        }
        forResults.close();
        forReturns.close();
    });
    std::thread resulter([&] {
        const char* ids[] = {"2", "3"};
        MetadataPtr physical = testing::makeMetadata(0);
        const camera_metadata_t* physicalMetadata[] = {physical.get(), physical.get()};
        for (uint32_t frame = 1;; ++frame) {
            std::vector<camera3_stream_buffer> buffers = forResults.take(3);
            if (buffers.empty()) break;
            if (frame % 5 == 0) buffers[0].release_fence = testing::makeFence();
            MetadataPtr metadata = testing::makeMetadata(static_cast<int32_t>(frame));
            camera3_capture_result result{frame,
                                          metadata.get(),
                                          static_cast<uint32_t>(buffers.size()),
                                          buffers.data(),
                                          nullptr,
                                          1,
                                          frame % 8 == 0 ? 2u : 0u,
                                          ids,
                                          physicalMetadata};
            table->process_capture_result(table, &result);
        }
    });
    std::thread returner([&] {
        for (;;) {
            std::vector<camera3_stream_buffer> buffers = forReturns.take(3);
            if (buffers.empty()) break;
            std::vector<const camera3_stream_buffer*> pointers;
            for (const camera3_stream_buffer& buffer : buffers) pointers.push_back(&buffer);
            table->return_stream_buffers(table, static_cast<uint32_t>(pointers.size()),
                                         pointers.data());
        }
    });
    std::thread notifier([&] {
        camera3_notify_msg msg{};
        for (uint32_t frame = 1; frame <= kBuffers / 2; ++frame) {
            msg.type = frame % 4 == 0 ? CAMERA3_MSG_ERROR : CAMERA3_MSG_SHUTTER;
            if (msg.type == CAMERA3_MSG_ERROR) {
                msg.message.error = {frame, stream(2), CAMERA3_MSG_ERROR_BUFFER};
            } else {
                msg.message.shutter = {frame, frame * 1000ull, frame * 1000ull + 10};
            }
            table->notify(table, &msg);
        }
    });
    requester.join();
    resulter.join();
    returner.join();
    notifier.join();

    const PoolFramework::Tally tally = framework->tally();
    EXPECT_GE(tally.handedOut, kBuffers);
    EXPECT_EQ(tally.handedOut, tally.takenBack);
    EXPECT_EQ(0u, tally.anomalies);
    EXPECT_EQ(kBuffers / 2, tally.notifications);
    EXPECT_THAT(counts(), UnorderedElementsAre(Pair(1, 6u), Pair(2, 4u)));
    // No id is left behind in the bridge.
    for (const auto& [streamId, maxBuffers] : kStreams) {
        for (int64_t bufferId = streamId * 100 + 1; bufferId <= streamId * 100 + maxBuffers;
             ++bufferId) {
            BufferHandle handle;
            ASSERT_EQ(0, mCacheMgr->getBufferHandle(streamId, bufferId, &handle)) << bufferId;
            EXPECT_EQ(0u, mBridge->popBufferId(*handle.buffer, streamId)) << bufferId;
        }
    }
    mBridge->setCallback(mFramework);
}

}  // namespace
}  // namespace kovo::aidl2legacy
