#include "Aidl2LegacyCameraDeviceCallback.h"

#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <aidl2legacy/utils/MetadataConversion.h>
#include <system/camera_metadata.h>

#include <utility>

namespace kovo::aidl2legacy {

std::shared_ptr<Aidl2LegacyCameraDeviceCallback> Aidl2LegacyCameraDeviceCallback::create(
        const CreationInfo& info) {
    return std::make_shared<Aidl2LegacyCameraDeviceCallback>(info);
}

Aidl2LegacyCameraDeviceCallback::Aidl2LegacyCameraDeviceCallback(const CreationInfo& info)
    : camera3_callback_ops{sProcessCaptureResult, sNotify, sRequestStreamBuffers,
                           sReturnStreamBuffers},
      mLogLevel(0),
      mName(std::to_string(info.instanceId) + "-aidl2legacy-callback"),
      mInstanceId(info.instanceId),
      mCallback(info.callback),
      mBufferRequestTimeoutNs(1000000000) {
    A2L_LOGI("[%s::%s] ctor", mName.c_str(), __func__);
    mLogLevel = log::readLogLevel();
    A2L_LOGI("[%s::%s] FMQ result size:%zu", mName.c_str(), __func__, kResultQueueSize);
    mResultMetadataQueue = std::make_unique<ResultMetadataQueue>(kResultQueueSize, false);
    if (mResultMetadataQueue == nullptr || !mResultMetadataQueue->isValid()) {
        A2L_FATAL("[%s::%s] Creating metadata queue (size %zu) failed.", mName.c_str(), __func__,
                  kResultQueueSize);
    }
}

Aidl2LegacyCameraDeviceCallback::~Aidl2LegacyCameraDeviceCallback() {
    A2L_LOGI("[%s::%s] dtor", mName.c_str(), __func__);
}

Aidl2LegacyCameraDeviceCallback* Aidl2LegacyCameraDeviceCallback::fromOps(
        const camera3_callback_ops* ops) {
    return static_cast<Aidl2LegacyCameraDeviceCallback*>(const_cast<camera3_callback_ops*>(ops));
}

void Aidl2LegacyCameraDeviceCallback::sProcessCaptureResult(const camera3_callback_ops* ops,
                                                            const camera3_capture_result* result) {
    Aidl2LegacyCameraDeviceCallback* self = fromOps(ops);
    if (self == nullptr) return;
    self->processCaptureResult(result);
}

void Aidl2LegacyCameraDeviceCallback::sNotify(const camera3_callback_ops* ops,
                                              const camera3_notify_msg* msg) {
    Aidl2LegacyCameraDeviceCallback* self = fromOps(ops);
    if (self == nullptr) return;
    self->notify(msg);
}

camera3_buffer_request_status Aidl2LegacyCameraDeviceCallback::sRequestStreamBuffers(
        const camera3_callback_ops* ops, uint32_t num_buffer_reqs,
        const camera3_buffer_request* buffer_reqs, uint32_t* num_returned_buf_reqs,
        camera3_stream_buffer_ret* returned_buf_reqs) {
    Aidl2LegacyCameraDeviceCallback* self = fromOps(ops);
    if (self == nullptr) return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
    return self->requestStreamBuffers(num_buffer_reqs, buffer_reqs, num_returned_buf_reqs,
                                      returned_buf_reqs);
}

void Aidl2LegacyCameraDeviceCallback::sReturnStreamBuffers(
        const camera3_callback_ops* ops, uint32_t num_buffers,
        const camera3_stream_buffer* const* buffers) {
    Aidl2LegacyCameraDeviceCallback* self = fromOps(ops);
    if (self == nullptr) return;
    self->returnStreamBuffers(num_buffers, buffers);
}

void Aidl2LegacyCameraDeviceCallback::setCallback(
        const std::shared_ptr<ICameraDeviceCallback>& callback) {
    mCallback = callback;
    A2L_LOGI("[%s::%s] set callback to %p", mName.c_str(), __func__,
             static_cast<void*>(callback.get()));
}

void Aidl2LegacyCameraDeviceCallback::setBufferHandleCacheMgr(
        const std::shared_ptr<IBufferHandleCacheMgr>& mgr) {
    std::lock_guard<std::mutex> guard(mBufferHandleCacheMgrLock);
    mBufferHandleCacheMgr = mgr;
}

void Aidl2LegacyCameraDeviceCallback::setStreamMap(const std::map<int, Camera3Stream>& streams) {
    mStreamMap = streams;
}

void Aidl2LegacyCameraDeviceCallback::getCaptureResultMetadataQueue(ResultQueueDescriptor* desc) {
    *desc = mResultMetadataQueue->dupeDesc();
}

void Aidl2LegacyCameraDeviceCallback::convertMetadataToFmq(const camera_metadata* metadata,
                                                           int64_t& fmqSize, CameraMetadata& out) {
    if (metadata == nullptr) {
        fmqSize = 0;
        out.metadata.clear();
        return;
    }
    // The size travels as 32 bits; larger packets are cut to their low bits, as on the device.
    const uint32_t size = static_cast<uint32_t>(get_camera_metadata_size(metadata));
    if (mResultMetadataQueue != nullptr && mResultMetadataQueue->availableToWrite() > size &&
        mResultMetadataQueue->write(reinterpret_cast<const int8_t*>(metadata), size)) {
        fmqSize = size;
        out.metadata.clear();
        return;
    }
    fmqSize = 0;
    convertMetadata(metadata, out);
}

// Not wired yet: the capture result path.
void Aidl2LegacyCameraDeviceCallback::processCaptureResult(const camera3_capture_result*) {}

// Not wired yet: the capture result path.
void Aidl2LegacyCameraDeviceCallback::convertCaptureResult(const camera3_capture_result&,
                                                           CaptureResult&) {}

// Not wired yet: the capture result path.
void Aidl2LegacyCameraDeviceCallback::convertStreamBuffer(const camera3_stream_buffer&,
                                                          StreamBuffer&) {}

// Not wired yet: the capture result path.
void Aidl2LegacyCameraDeviceCallback::convertPhysicalCameraMetadata(const std::string&,
                                                                    const camera_metadata*,
                                                                    PhysicalCameraMetadata&) {}

// Not wired yet: the notify path.
void Aidl2LegacyCameraDeviceCallback::notify(const camera3_notify_msg*) {}

// Not wired yet: the notify path.
void Aidl2LegacyCameraDeviceCallback::convertNotifyMsg(const camera3_notify_msg&, NotifyMsg&) {}

// Not wired yet: the notify path.
Aidl2LegacyCameraDeviceCallback::ErrorMsg Aidl2LegacyCameraDeviceCallback::convertErrorMsg(
        const camera3_error_msg&) {
    return ErrorMsg{};
}

// Not wired yet: the notify path.
Aidl2LegacyCameraDeviceCallback::ShutterMsg Aidl2LegacyCameraDeviceCallback::convertShutterMsg(
        const camera3_shutter_msg&) {
    return ShutterMsg{};
}

size_t Aidl2LegacyCameraDeviceCallback::BufferHasher::operator()(const native_handle* handle) const {
    if (handle == nullptr) return 0;
    // Sign-extended fd numbers, arithmetic modulo 2^64.
    uint64_t hash = 31 + static_cast<uint64_t>(static_cast<int64_t>(handle->numFds));
    for (int i = 0; i < handle->numFds; ++i) {
        hash = hash * 31 + static_cast<uint64_t>(static_cast<int64_t>(handle->data[i]));
    }
    return hash;
}

bool Aidl2LegacyCameraDeviceCallback::BufferComparator::operator()(const native_handle* lhs,
                                                                   const native_handle* rhs) const {
    if (lhs->numFds != rhs->numFds) return false;
    for (int i = 0; i < lhs->numFds; ++i) {
        if (lhs->data[i] != rhs->data[i]) return false;
    }
    return true;
}

void Aidl2LegacyCameraDeviceCallback::pushBufferId(const native_handle* const& handle,
                                                   uint64_t bufferId, int streamId) {
    std::lock_guard<std::mutex> guard(mBufferIdLock);
    BufferIdMap& ids = mBufferIdMap.emplace(streamId, BufferIdMap{}).first->second;
    // An equal key already present keeps its first handle pointer; only the id changes.
    ids[handle] = bufferId;
}

uint64_t Aidl2LegacyCameraDeviceCallback::popBufferId(const native_handle* const& handle,
                                                      int streamId) {
    std::lock_guard<std::mutex> guard(mBufferIdLock);
    if (handle == nullptr) return 0;
    auto stream = mBufferIdMap.find(streamId);
    if (stream == mBufferIdMap.end()) return 0;
    auto entry = stream->second.find(handle);
    if (entry == stream->second.end()) return 0;
    const uint64_t bufferId = entry->second;
    stream->second.erase(entry);
    if (stream->second.empty()) mBufferIdMap.erase(stream);
    A2L_LOGI("[%s::%s] buffer_handle_t:%p, bufId:%lu", mName.c_str(), __func__,
             static_cast<const void*>(handle), bufferId);
    return bufferId;
}

uint64_t Aidl2LegacyCameraDeviceCallback::getCapResultBufferId(const native_handle* const& handle,
                                                               int streamId) {
    return popBufferId(handle, streamId);
}

void Aidl2LegacyCameraDeviceCallback::endConfiguration(const camera3_stream_configuration& config) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    if (!mValidBufferSizeMap.empty()) mValidBufferSizeMap.clear();
    for (uint32_t i = 0; i < config.num_streams; ++i) {
        const camera3_stream_t* stream = config.streams[i];
        mValidBufferSizeMap.emplace(Camera3Stream::fromStream(stream)->id, stream->max_buffers);
    }
}

void Aidl2LegacyCameraDeviceCallback::getValidBufNum(std::unordered_map<int, unsigned int>& out) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    out = mValidBufferSizeMap;
}

void Aidl2LegacyCameraDeviceCallback::setValidBufNum(const std::unordered_map<int, unsigned int>& in) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    mValidBufferSizeMap = in;
}

void Aidl2LegacyCameraDeviceCallback::giveBackValidBuffer(int32_t streamId, const char* caller) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    uint32_t& count = mValidBufferSizeMap.at(streamId);
    ++count;
    if (mLogLevel >= 3) {
        A2L_LOGD("[%s::%s] ValidBufferSizeMap streamId:%d size:%u", mName.c_str(), caller, streamId,
                 count);
    }
    mValidBufferSizeCond.notify_all();
}

void Aidl2LegacyCameraDeviceCallback::takeValidBuffers(int32_t streamId, uint32_t count) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    mValidBufferSizeMap.at(streamId) -= count;
}

// Not wired yet: the HAL buffer manager request path.
camera3_buffer_request_status Aidl2LegacyCameraDeviceCallback::requestStreamBuffers(
        uint32_t, const camera3_buffer_request*, uint32_t*, camera3_stream_buffer_ret*) {
    return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
}

// Not wired yet: the HAL buffer manager request path.
void Aidl2LegacyCameraDeviceCallback::convertBufferRequest(const camera3_buffer_request&,
                                                           BufferRequest&) {}

// Not wired yet: the HAL buffer manager request path.
void Aidl2LegacyCameraDeviceCallback::convertBufferRequestStatus(const BufferRequestStatus&,
                                                                 camera3_buffer_request_status&) {}

// Not wired yet: the HAL buffer manager request path.
void Aidl2LegacyCameraDeviceCallback::convertBufferRequestError(const StreamBufferRequestError&,
                                                                camera3_stream_buffer_req_status&) {
}

// Not wired yet: the HAL buffer manager request path.
void Aidl2LegacyCameraDeviceCallback::convertStreamBuffer(const StreamBuffer&,
                                                          camera3_stream_buffer&) {}

// Not wired yet: the HAL buffer manager return path.
void Aidl2LegacyCameraDeviceCallback::returnStreamBuffers(uint32_t,
                                                          const camera3_stream_buffer* const*) {}

}  // namespace kovo::aidl2legacy
