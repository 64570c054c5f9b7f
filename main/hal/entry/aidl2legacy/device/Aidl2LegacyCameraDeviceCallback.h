/*
 * Aidl2LegacyCameraDeviceCallback: the bridge from a legacy HAL3 device's callbacks
 * (camera3_callback_ops) to the framework's ICameraDeviceCallback. Not a binder object: the
 * legacy device is given the camera3_callback_ops base of this object (it sits right after the
 * virtual-table pointer), and the four static trampolines find the object again from it.
 *
 * Ownership: made by Aidl2LegacyCameraDevice::open with create() (std::make_shared), then held by
 * the session for its lifetime. The bridge holds a strong reference to the framework callback,
 * the session's buffer handle cache manager and a copy of the session's stream map, and owns the
 * 16 MiB result metadata queue that the framework reads through getCaptureResultMetadataQueue().
 *
 * Threads and locks:
 * - The trampolines run on the legacy device's threads; results and notifications may arrive at
 *   once. The setters and getCaptureResultMetadataQueue run on binder threads (through the
 *   session).
 * - mBufferIdLock guards mBufferIdMap and mBufferOwners; mValidBufferSizeLock guards
 *   mValidBufferSizeMap and is the mutex of mValidBufferSizeCond; mBufferHandleCacheMgrLock is
 *   taken only while the cache manager is replaced. The three are never held together, and no
 *   framework call is made under them.
 * - mCallback and mStreamMap are replaced and read without a lock: callers replace them only while
 *   no results flow. The result queue has a single writer by contract.
 */
#pragma once

#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <aidl/android/hardware/camera/device/BufferRequestStatus.h>
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/CaptureResult.h>
#include <aidl/android/hardware/camera/device/ErrorMsg.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/PhysicalCameraMetadata.h>
#include <aidl/android/hardware/camera/device/ShutterMsg.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/camera/device/StreamBufferRequestError.h>
#include <aidl/android/hardware/camera/device/StreamBufferRet.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <aidl2legacy/common/Camera3Stream.h>
#include <cutils/native_handle.h>
#include <fmq/AidlMessageQueue.h>
#include <hardware/camera3.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "Aidl2LegacyCameraLog.h"

namespace kovo::aidl2legacy {

class IBufferHandleCacheMgr;
class ImportedBuffer;
struct BufferHandle;

class Aidl2LegacyCameraDeviceCallback : public camera3_callback_ops {
public:
    using BufferRequest = aidl::android::hardware::camera::device::BufferRequest;
    using BufferRequestStatus = aidl::android::hardware::camera::device::BufferRequestStatus;
    using CameraMetadata = aidl::android::hardware::camera::device::CameraMetadata;
    using CaptureResult = aidl::android::hardware::camera::device::CaptureResult;
    using ErrorMsg = aidl::android::hardware::camera::device::ErrorMsg;
    using ICameraDeviceCallback = aidl::android::hardware::camera::device::ICameraDeviceCallback;
    using NotifyMsg = aidl::android::hardware::camera::device::NotifyMsg;
    using PhysicalCameraMetadata = aidl::android::hardware::camera::device::PhysicalCameraMetadata;
    using ShutterMsg = aidl::android::hardware::camera::device::ShutterMsg;
    using StreamBuffer = aidl::android::hardware::camera::device::StreamBuffer;
    using StreamBufferRequestError =
            aidl::android::hardware::camera::device::StreamBufferRequestError;
    using StreamBufferRet = aidl::android::hardware::camera::device::StreamBufferRet;
    using ResultMetadataQueue =
            android::AidlMessageQueue<int8_t,
                                      aidl::android::hardware::common::fmq::SynchronizedReadWrite>;
    using ResultQueueDescriptor = aidl::android::hardware::common::fmq::MQDescriptor<
            int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

    // Size of the result metadata queue in bytes (16 MiB).
    static constexpr size_t kResultQueueSize = 16777216;

    struct CreationInfo {
        int32_t instanceId;
        std::shared_ptr<ICameraDeviceCallback> callback;
    };

    // Keys of the buffer id map: handles carrying the same fds in the same order are one key,
    // whatever their address and ints, so a copy the legacy device made still finds its id.
    struct BufferHasher {
        size_t operator()(const native_handle* handle) const;
    };
    struct BufferComparator {
        bool operator()(const native_handle* lhs, const native_handle* rhs) const;
    };

    // Never returns an empty pointer: the process ends if the result queue cannot be made.
    static std::shared_ptr<Aidl2LegacyCameraDeviceCallback> create(const CreationInfo& info);

    explicit Aidl2LegacyCameraDeviceCallback(const CreationInfo& info);
    virtual ~Aidl2LegacyCameraDeviceCallback();

    Aidl2LegacyCameraDeviceCallback(const Aidl2LegacyCameraDeviceCallback&) = delete;
    Aidl2LegacyCameraDeviceCallback& operator=(const Aidl2LegacyCameraDeviceCallback&) = delete;

    // The entries of the camera3_callback_ops base. A null table does nothing (request buffers
    // answers CAMERA3_BUF_REQ_FAILED_UNKNOWN).
    static void sProcessCaptureResult(const camera3_callback_ops* ops,
                                      const camera3_capture_result* result);
    static void sNotify(const camera3_callback_ops* ops, const camera3_notify_msg* msg);
    static camera3_buffer_request_status sRequestStreamBuffers(
            const camera3_callback_ops* ops, uint32_t num_buffer_reqs,
            const camera3_buffer_request* buffer_reqs, uint32_t* num_returned_buf_reqs,
            camera3_stream_buffer_ret* returned_buf_reqs);
    static void sReturnStreamBuffers(const camera3_callback_ops* ops, uint32_t num_buffers,
                                     const camera3_stream_buffer* const* buffers);

    // Setup, from binder threads.
    void setCallback(const std::shared_ptr<ICameraDeviceCallback>& callback);
    void setBufferHandleCacheMgr(const std::shared_ptr<IBufferHandleCacheMgr>& mgr);
    void setStreamMap(const std::map<int, Camera3Stream>& streams);
    // Replaces `*desc` (closing its fds) by a descriptor with fresh duplicates of the queue's fds.
    void getCaptureResultMetadataQueue(ResultQueueDescriptor* desc);
    // Writes `metadata` into the result queue when the free space is strictly greater than its
    // size (fmqSize = that size, `out` empty); otherwise copies it into `out` (fmqSize = 0).
    void convertMetadataToFmq(const camera_metadata* metadata, int64_t& fmqSize,
                              CameraMetadata& out);

    // Capture results.
    void processCaptureResult(const camera3_capture_result* result);
    void convertCaptureResult(const camera3_capture_result& in, CaptureResult& out);
    // Legacy to AIDL; leaves the buffer's handle address in bufferId.
    void convertStreamBuffer(const camera3_stream_buffer& in, StreamBuffer& out);
    void convertPhysicalCameraMetadata(const std::string& physicalCameraId,
                                       const camera_metadata* metadata, PhysicalCameraMetadata& out);

    // Notifications.
    void notify(const camera3_notify_msg* msg);
    void convertNotifyMsg(const camera3_notify_msg& in, NotifyMsg& out);
    ErrorMsg convertErrorMsg(const camera3_error_msg& in);
    ShutterMsg convertShutterMsg(const camera3_shutter_msg& in);

    // Buffer ids of buffers handed out through the HAL buffer manager. An id is popped once; 0
    // means unknown. getCapResultBufferId is popBufferId under another name.
    void pushBufferId(const native_handle* const& handle, uint64_t bufferId, int streamId);
    uint64_t popBufferId(const native_handle* const& handle, int streamId);
    uint64_t getCapResultBufferId(const native_handle* const& handle, int streamId);

    // Valid-buffer counts: reset to each stream's max_buffers after a configuration (a repeated
    // stream id keeps its first value), and copied out or in under the lock.
    void endConfiguration(const camera3_stream_configuration& config);
    void getValidBufNum(std::unordered_map<int, unsigned int>& out);
    void setValidBufNum(const std::unordered_map<int, unsigned int>& in);

    // HAL buffer manager requests.
    camera3_buffer_request_status requestStreamBuffers(uint32_t num_buffer_reqs,
                                                       const camera3_buffer_request* buffer_reqs,
                                                       uint32_t* num_returned_buf_reqs,
                                                       camera3_stream_buffer_ret* returned_buf_reqs);
    void convertBufferRequest(const camera3_buffer_request& in, BufferRequest& out);
    void convertBufferRequestStatus(const BufferRequestStatus& in,
                                    camera3_buffer_request_status& out);
    void convertBufferRequestError(const StreamBufferRequestError& in,
                                   camera3_stream_buffer_req_status& out);
    // AIDL to legacy; `buffer` is left for the caller to set.
    void convertStreamBuffer(const StreamBuffer& in, camera3_stream_buffer& out);

    // HAL buffer manager returns.
    void returnStreamBuffers(uint32_t num_buffers, const camera3_stream_buffer* const* buffers);

protected:
    // The counting protocol of the valid-buffer counts, for the result, request and return
    // paths. Both look the stream up as at() does (validBufferCountLocked): a stream missing from
    // the counts ends the process. Counts are unsigned and wrap.
    //
    // One buffer came back: +1, a debug log naming `caller` (at mLogLevel >= 3), notify_all.
    void giveBackValidBuffer(int32_t streamId, const char* caller);
    // `count` buffers were handed to the device: -count, no signal.
    void takeValidBuffers(int32_t streamId, uint32_t count);

private:
    static constexpr log::Module kLogModule = log::kCallbackModule;

    using BufferIdMap =
            std::unordered_map<const native_handle*, uint64_t, BufferHasher, BufferComparator>;
    // By the very handle pointer the device was given, one share per hand-over.
    using BufferOwners =
            std::unordered_multimap<const native_handle*, std::shared_ptr<ImportedBuffer>>;

    static Aidl2LegacyCameraDeviceCallback* fromOps(const camera3_callback_ops* ops);

    // pushBufferId for a buffer handed to the device, which also keeps the imported buffer alive
    // until the device gives the handle back.
    void pushBufferId(const BufferHandle& buffer, uint64_t bufferId, int streamId);
    // Records the id. mBufferIdLock held.
    void recordBufferIdLocked(const native_handle* handle, uint64_t bufferId, int streamId);

    // A buffer the device hands back (in a result or a return), with the framework's id popped
    // from the id map (0 when unknown) and its release fence adopted.
    void convertReturnedBuffer(const camera3_stream_buffer& in, StreamBuffer& out);
    // The count of `streamId`, or the end of the process with the text a build without exceptions
    // gives for at() on a missing key, on every build. mValidBufferSizeLock held.
    uint32_t& validBufferCountLocked(int32_t streamId);
    // Blocks until each stream's count covers its request, at most one timeout per stream.
    void waitForValidBuffers(const std::vector<BufferRequest>& requests);

    int32_t mLogLevel;
    std::string mName;
    int32_t mInstanceId;
    std::shared_ptr<ICameraDeviceCallback> mCallback;
    std::mutex mBufferHandleCacheMgrLock;
    std::shared_ptr<IBufferHandleCacheMgr> mBufferHandleCacheMgr;
    std::unique_ptr<ResultMetadataQueue> mResultMetadataQueue;
    std::mutex mValidBufferSizeLock;
    std::unordered_map<int32_t, uint32_t> mValidBufferSizeMap;  // guarded by mValidBufferSizeLock
    std::condition_variable mValidBufferSizeCond;
    int32_t mBufferRequestTimeoutNs;
    std::map<int32_t, Camera3Stream> mStreamMap;
    std::mutex mBufferIdLock;
    // Per stream, the imported buffers handed to the device: the keys of mBufferIdMap and the
    // device's buffer_handle_t slots point into them, so each stays, whatever the cache does
    // meanwhile, until the device gives that handle back (a pop with it, whether or not an id is
    // found) or this bridge goes. Declared first so that it goes after the id map.
    std::unordered_map<int32_t, BufferOwners> mBufferOwners;  // guarded by mBufferIdLock
    std::unordered_map<int32_t, BufferIdMap> mBufferIdMap;    // guarded by mBufferIdLock
};

}  // namespace kovo::aidl2legacy
