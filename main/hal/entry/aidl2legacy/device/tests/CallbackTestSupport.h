/*
 * Shared pieces of the callback bridge's path tests: a fixture that sets the bridge up as a
 * session does (framework callback attached to the result queue, streams configured) and checks
 * that no test leaves an fd open, buffers as a legacy device holds them, and fences.
 */
#pragma once

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <cutils/native_handle.h>
#include <cutils/properties.h>
#include <fcntl.h>
#include <sys/eventfd.h>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "DeviceTestSupport.h"
#include "OpenFds.h"
#include "RecordingCameraDeviceCallback.h"

namespace kovo::aidl2legacy::testing {

using Counts = std::unordered_map<int, unsigned int>;

// A fence the device hands over (an eventfd); -1 when none could be made.
inline int makeFence() {
    return eventfd(0, EFD_CLOEXEC);
}

inline bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) >= 0;
}

// What a framework that has gone answers.
inline ndk::ScopedAStatus deadFramework() {
    return ndk::ScopedAStatus::fromServiceSpecificErrorWithMessage(10, "dead framework");
}

// A buffer as the legacy device holds it: a handle whose fd number is only a key (never opened
// or closed), and the buffer_handle_t that a camera3_stream_buffer points at.
class DeviceBuffer {
public:
    explicit DeviceBuffer(int fdNumber) : mHandle(native_handle_create(1, 0)) {
        mHandle->data[0] = fdNumber;
        mPointer = mHandle;
    }
    ~DeviceBuffer() { native_handle_delete(mHandle); }
    DeviceBuffer(const DeviceBuffer&) = delete;
    DeviceBuffer& operator=(const DeviceBuffer&) = delete;

    buffer_handle_t* pointer() { return &mPointer; }
    const native_handle* const& key() const { return mPointer; }

private:
    native_handle_t* mHandle;
    buffer_handle_t mPointer;
};

// A buffer as the framework hands it out through the buffer manager, its handle (a fresh fd)
// included.
inline aidl::android::hardware::camera::device::StreamBuffer frameworkBuffer(int32_t streamId,
                                                                             int64_t bufferId) {
    aidl::android::hardware::camera::device::StreamBuffer buffer;
    buffer.streamId = streamId;
    buffer.bufferId = bufferId;
    buffer.buffer.fds.emplace_back(makeFence());
    return buffer;
}

inline aidl::android::hardware::camera::device::StreamBufferRet frameworkAnswer(
        int32_t streamId,
        std::vector<aidl::android::hardware::camera::device::StreamBuffer> buffers) {
    using aidl::android::hardware::camera::device::StreamBuffersVal;
    aidl::android::hardware::camera::device::StreamBufferRet answer;
    answer.streamId = streamId;
    answer.val.set<StreamBuffersVal::buffers>(std::move(buffers));
    return answer;
}

// One request_stream_buffers call as the device makes it: the records it provides have room for
// kCapacity buffers per stream.
struct DeviceBufferRequest {
    static constexpr size_t kCapacity = 4;

    explicit DeviceBufferRequest(const std::vector<std::pair<camera3_stream_t*, uint32_t>>& asks)
        : requests(asks.size()), records(asks.size()), buffers(asks.size()) {
        for (size_t i = 0; i < asks.size(); ++i) {
            requests[i] = {asks[i].first, asks[i].second};
            records[i].output_buffers = buffers[i].data();
        }
    }
    camera3_buffer_request_status send(const camera3_callback_ops* ops) {
        return ops->request_stream_buffers(ops, static_cast<uint32_t>(requests.size()),
                                           requests.data(), &returned, records.data());
    }
    buffer_handle_t handle(size_t record, size_t buffer) const {
        return *records[record].output_buffers[buffer].buffer;
    }

    std::vector<camera3_buffer_request> requests;
    std::vector<camera3_stream_buffer_ret> records;
    std::vector<std::array<camera3_stream_buffer, kCapacity>> buffers;
    uint32_t returned = 99;
};

class BridgeTest : public LoggingTest {
protected:
    BridgeTest() { startBridge(0); }
    void SetUp() override { mOpenFds = countOpenFds(); }
    // The cache keeps the handles it imported until it is reset; the bridge keeps those the device
    // still holds, so tests give back every buffer they were handed.
    void TearDown() override {
        mCacheMgr->resetCacheMgr();
        EXPECT_EQ(mOpenFds, countOpenFds());
    }

    // A new bridge whose debug level is `logLevel`, with the framework attached to its queue.
    void startBridge(int32_t logLevel) {
        property_set("vendor.debug.camera.log", std::to_string(logLevel).c_str());
        mBridge = Aidl2LegacyCameraDeviceCallback::create({3, mFramework});
        mBridge->setBufferHandleCacheMgr(mCacheMgr);
        ResultQueueDescriptor descriptor;
        mBridge->getCaptureResultMetadataQueue(&descriptor);
        mFramework->attachResultQueue(descriptor);
        clearLogs();
    }

    // Configures streams given as (stream id, max_buffers), as the session's configureStreams
    // does after the device configured them. The fixture keeps the first record of an id.
    void configure(const std::vector<std::pair<int32_t, uint32_t>>& streams) {
        mStreams.clear();
        std::vector<Camera3Stream> records(streams.size());
        std::vector<camera3_stream_t*> pointers;
        for (size_t i = 0; i < streams.size(); ++i) {
            records[i].id = streams[i].first;
            records[i].stream.max_buffers = streams[i].second;
            pointers.push_back(&records[i].stream);
            mStreams.emplace(records[i].id, records[i]);
        }
        camera3_stream_configuration config{};
        config.num_streams = static_cast<uint32_t>(pointers.size());
        config.streams = pointers.data();
        mBridge->endConfiguration(config);
        mBridge->setStreamMap(mStreams);
    }

    camera3_stream_t* stream(int32_t id) { return &mStreams.at(id).stream; }

    Counts counts() {
        Counts out;
        mBridge->getValidBufNum(out);
        return out;
    }

    const camera3_callback_ops* ops() const { return mBridge.get(); }

    std::shared_ptr<RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    std::shared_ptr<IBufferHandleCacheMgr> mCacheMgr = IBufferHandleCacheMgr::create();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mBridge;
    std::map<int32_t, Camera3Stream> mStreams;
    size_t mOpenFds = 0;
};

}  // namespace kovo::aidl2legacy::testing
