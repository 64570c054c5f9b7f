#include "Aidl2LegacyCameraDeviceCallback.h"

#include <aidl/android/hardware/camera/device/BufferStatus.h>
#include <aidl/android/hardware/camera/device/ErrorCode.h>
#include <aidl/android/hardware/camera/device/StreamBuffersVal.h>
#include <aidl/android/hardware/common/NativeHandle.h>
#include <aidl2legacy/common/BufferHandle.h>
#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <aidl2legacy/utils/EnumValue.h>
#include <aidl2legacy/utils/MetadataConversion.h>
#include <aidl2legacy/utils/NativeHandleConversion.h>
#include <android/binder_auto_utils.h>
#include <android/log.h>
#include <system/camera_metadata.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <utility>

#include "ThreadScratch.h"

namespace kovo::aidl2legacy {

using aidl::android::hardware::camera::device::BufferStatus;
using aidl::android::hardware::camera::device::ErrorCode;
using aidl::android::hardware::camera::device::StreamBuffersVal;
using aidl::android::hardware::common::NativeHandle;

namespace {

// The containers of the per-frame framework calls, one set per device thread.
struct ResultsTag;
struct NotifyTag;
struct BufferRequestsTag;
struct ReturnedBuffersTag;

// Closes the release fences adopted into `buffer` and keeps its capacity.
void closeReleaseFence(aidl::android::hardware::camera::device::StreamBuffer& buffer) {
    buffer.releaseFence.fds.clear();
}

}  // namespace

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

void Aidl2LegacyCameraDeviceCallback::processCaptureResult(const camera3_capture_result* result) {
    log::ScopedTrace trace("processCaptureResult");
    if (result == nullptr) {
        A2L_LOGE("[%s::%s] camera3_capture_result invalid", mName.c_str(), __func__);
        return;
    }
    ThreadScratch<std::vector<CaptureResult>, ResultsTag> scratch;
    std::vector<CaptureResult>& results = scratch.get();
    results.resize(1);
    // Nothing of the previous result on this thread may show: its fences are closed already,
    // and this is the one field the conversion leaves alone without an input buffer.
    results[0].inputBuffer = StreamBuffer{};
    convertCaptureResult(*result, results[0]);
    if (mCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    ndk::ScopedAStatus status = mCallback->processCaptureResult(results);
    // The adopted fences close right after the call, whatever it answered.
    closeReleaseFence(results[0].inputBuffer);
    for (StreamBuffer& buffer : results[0].outputBuffers) closeReleaseFence(buffer);
    if (!status.isOk()) {
        // The ids were popped already; without the framework's word the credit stays taken.
        A2L_LOGE("[%s::%s] processCaptureResult transaction failed: %s.", mName.c_str(), __func__,
                 status.getMessage());
        return;
    }
    for (const StreamBuffer& buffer : results[0].outputBuffers) {
        if (buffer.bufferId != 0) giveBackValidBuffer(buffer.streamId, __func__);
    }
}

void Aidl2LegacyCameraDeviceCallback::convertCaptureResult(const camera3_capture_result& in,
                                                           CaptureResult& out) {
    out.frameNumber = static_cast<int32_t>(in.frame_number);
    out.partialResult = static_cast<int32_t>(in.partial_result);
    // The framework reads the queue back in this order: the result's metadata, then each
    // physical camera's.
    convertMetadataToFmq(in.result, out.fmqResultSize, out.result);
    out.physicalCameraMetadata.resize(in.num_physcam_metadata);
    for (uint32_t i = 0; i < in.num_physcam_metadata; ++i) {
        if (in.physcam_ids[i] == nullptr) {
            A2L_FATAL("[%s::%s] Invalid physical camera id", mName.c_str(), __func__);
        }
        convertPhysicalCameraMetadata(std::string(in.physcam_ids[i]), in.physcam_metadata[i],
                                      out.physicalCameraMetadata[i]);
    }
    if (in.input_buffer != nullptr) {
        convertStreamBuffer(*in.input_buffer, out.inputBuffer);
    } else {
        out.inputBuffer.streamId = -1;
    }
    out.outputBuffers.resize(in.num_output_buffers);
    for (uint32_t i = 0; i < in.num_output_buffers; ++i) {
        convertReturnedBuffer(in.output_buffers[i], out.outputBuffers[i]);
    }

    if (!log::willWrite(kLogModule, log::Kind::kInfo)) return;
    std::string summary = "frameNumber:" + std::to_string(out.frameNumber) +
                          " partialResult:" + std::to_string(out.partialResult) + " phyResultCamId:";
    for (const PhysicalCameraMetadata& physical : out.physicalCameraMetadata) {
        summary += physical.physicalCameraId;
        summary += ',';
    }
    summary += ' ';
    if (out.inputBuffer.streamId != -1) {
        summary += out.inputBuffer.toString();
        summary += ", ";
    }
    for (const StreamBuffer& buffer : out.outputBuffers) {
        summary += buffer.toString();
        summary += ", ";
    }
    A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, summary.c_str());
}

void Aidl2LegacyCameraDeviceCallback::convertStreamBuffer(const camera3_stream_buffer& in,
                                                          StreamBuffer& out) {
    // A device that names no stream gets the id of "no buffer" rather than a read through null.
    out.streamId = in.stream != nullptr ? Camera3Stream::fromStream(in.stream)->id : -1;
    out.status = static_cast<BufferStatus>(in.status);
    // The input buffer keeps its handle's address as its id; output buffers replace it.
    out.bufferId = static_cast<int64_t>(reinterpret_cast<uintptr_t>(in.buffer));
    if (in.release_fence != -1) {
        // Adopted, not duplicated: the fence closes with `out`, after the framework call.
        out.releaseFence.fds.clear();
        out.releaseFence.fds.emplace_back(in.release_fence);
    }
}

void Aidl2LegacyCameraDeviceCallback::convertReturnedBuffer(const camera3_stream_buffer& in,
                                                            StreamBuffer& out) {
    convertStreamBuffer(in, out);
    out.bufferId =
            in.buffer != nullptr ? static_cast<int64_t>(popBufferId(*in.buffer, out.streamId)) : 0;
}

void Aidl2LegacyCameraDeviceCallback::convertPhysicalCameraMetadata(
        const std::string& physicalCameraId, const camera_metadata* metadata,
        PhysicalCameraMetadata& out) {
    out.physicalCameraId = physicalCameraId;
    convertMetadataToFmq(metadata, out.fmqMetadataSize, out.metadata);
}

void Aidl2LegacyCameraDeviceCallback::notify(const camera3_notify_msg* msg) {
    log::ScopedTrace trace("notify");
    if (msg == nullptr) {
        A2L_LOGE("[%s::%s] camera3_notify_msg invalid", mName.c_str(), __func__);
        return;
    }
    // A message of unknown type still goes out, as the default (zero error) message.
    ThreadScratch<std::vector<NotifyMsg>, NotifyTag> scratch;
    std::vector<NotifyMsg>& msgs = scratch.get();
    msgs.resize(1);
    msgs[0] = NotifyMsg{};
    convertNotifyMsg(*msg, msgs[0]);
    if (mCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    ndk::ScopedAStatus status = mCallback->notify(msgs);
    if (!status.isOk()) {
        A2L_LOGE("[%s::%s] notify transaction failed: %s.", mName.c_str(), __func__,
                 status.getMessage());
    }
}

void Aidl2LegacyCameraDeviceCallback::convertNotifyMsg(const camera3_notify_msg& in,
                                                       NotifyMsg& out) {
    switch (in.type) {
        case CAMERA3_MSG_SHUTTER:
            out.set<NotifyMsg::shutter>(convertShutterMsg(in.message.shutter));
            break;
        case CAMERA3_MSG_ERROR:
            out.set<NotifyMsg::error>(convertErrorMsg(in.message.error));
            break;
        default:
            A2L_LOGE("[%s::%s] Type converion failed. Unknown msg type 0x%x", mName.c_str(),
                     __func__, static_cast<unsigned int>(in.type));
            break;
    }
    if (mLogLevel >= 3 && log::willWrite(kLogModule, log::Kind::kDebug)) {
        A2L_LOGD("[%s::%s] %s", mName.c_str(), __func__, out.toString().c_str());
    }
}

Aidl2LegacyCameraDeviceCallback::ErrorMsg Aidl2LegacyCameraDeviceCallback::convertErrorMsg(
        const camera3_error_msg& in) {
    ErrorMsg out;
    out.frameNumber = static_cast<int32_t>(in.frame_number);
    // Read from the stream record itself: any stream the device holds converts.
    out.errorStreamId =
            in.error_stream != nullptr ? Camera3Stream::fromStream(in.error_stream)->id : -1;
    out.errorCode = static_cast<ErrorCode>(in.error_code);
    return out;
}

Aidl2LegacyCameraDeviceCallback::ShutterMsg Aidl2LegacyCameraDeviceCallback::convertShutterMsg(
        const camera3_shutter_msg& in) {
    ShutterMsg out;
    out.frameNumber = static_cast<int32_t>(in.frame_number);
    out.timestamp = static_cast<int64_t>(in.timestamp);
    out.readoutTimestamp = static_cast<int64_t>(in.readout_timestamp);
    return out;
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
    recordBufferIdLocked(handle, bufferId, streamId);
}

void Aidl2LegacyCameraDeviceCallback::pushBufferId(const BufferHandle& buffer, uint64_t bufferId,
                                                   int streamId) {
    const native_handle* handle = *buffer.buffer;
    std::lock_guard<std::mutex> guard(mBufferIdLock);
    recordBufferIdLocked(handle, bufferId, streamId);
    if (buffer.imported != nullptr) mBufferOwners[streamId].emplace(handle, buffer.imported);
}

void Aidl2LegacyCameraDeviceCallback::recordBufferIdLocked(const native_handle* handle,
                                                           uint64_t bufferId, int streamId) {
    BufferIdMap& ids = mBufferIdMap.try_emplace(streamId).first->second;
    // An equal key already present keeps its first handle pointer; only the id changes.
    ids[handle] = bufferId;
}

uint64_t Aidl2LegacyCameraDeviceCallback::popBufferId(const native_handle* const& handle,
                                                      int streamId) {
    // Released after the lock: the last holder of a buffer closes its fds.
    std::shared_ptr<ImportedBuffer> released;
    std::lock_guard<std::mutex> guard(mBufferIdLock);
    if (handle == nullptr) return 0;
    // The device gave this handle back: one share of it goes, even when its id is gone already (a
    // buffer handed over twice under one id). A map key equal to it is erased below, if any.
    if (auto owners = mBufferOwners.find(streamId); owners != mBufferOwners.end()) {
        if (auto owner = owners->second.find(handle); owner != owners->second.end()) {
            released = std::move(owner->second);
            owners->second.erase(owner);
            if (owners->second.empty()) mBufferOwners.erase(owners);
        }
    }
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
    uint32_t& count = validBufferCountLocked(streamId);
    ++count;
    if (mLogLevel >= 3) {
        A2L_LOGD("[%s::%s] ValidBufferSizeMap streamId:%d size:%u", mName.c_str(), caller, streamId,
                 count);
    }
    mValidBufferSizeCond.notify_all();
}

void Aidl2LegacyCameraDeviceCallback::takeValidBuffers(int32_t streamId, uint32_t count) {
    std::lock_guard<std::mutex> guard(mValidBufferSizeLock);
    validBufferCountLocked(streamId) -= count;
}

uint32_t& Aidl2LegacyCameraDeviceCallback::validBufferCountLocked(int32_t streamId) {
    auto count = mValidBufferSizeMap.find(streamId);
    if (count == mValidBufferSizeMap.end()) {
        // What the device's libc++ does for at() without exceptions: an abort message, in place.
        // libstdc++ would throw through the legacy device's thread instead.
        __android_log_assert(nullptr, "libc++", "unordered_map::at: key not found");
    }
    return count->second;
}

camera3_buffer_request_status Aidl2LegacyCameraDeviceCallback::requestStreamBuffers(
        uint32_t num_buffer_reqs, const camera3_buffer_request* buffer_reqs,
        uint32_t* num_returned_buf_reqs, camera3_stream_buffer_ret* returned_buf_reqs) {
    *num_returned_buf_reqs = 0;
    ThreadScratch<std::vector<BufferRequest>, BufferRequestsTag> scratch;
    std::vector<BufferRequest>& requests = scratch.get();
    requests.resize(num_buffer_reqs);
    for (uint32_t i = 0; i < num_buffer_reqs; ++i) {
        convertBufferRequest(buffer_reqs[i], requests[i]);
    }
    waitForValidBuffers(requests);

    if (mLogLevel >= 1 && log::willWrite(kLogModule, log::Kind::kInfo)) {
        std::string text = "[HBM] framework requestStreamBuffers +, ";
        for (const BufferRequest& request : requests) text += request.toString() + ", ";
        A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, text.c_str());
    }
    if (mCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    std::vector<StreamBufferRet> answers;
    BufferRequestStatus overall = BufferRequestStatus::OK;
    ndk::ScopedAStatus status = mCallback->requestStreamBuffers(requests, &answers, &overall);
    if (mLogLevel >= 1 && log::willWrite(kLogModule, log::Kind::kInfo)) {
        std::string text =
                "[HBM] framework requestStreamBuffers -, BufferRequestStatus:" + toString(overall) +
                ", ";
        for (const StreamBufferRet& ret : answers) text += ret.toString() + ", ";
        A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, text.c_str());
    }
    if (!status.isOk()) {
        A2L_LOGE("[%s::%s] requestStreamBuffers transaction failed: %s.", mName.c_str(), __func__,
                 status.getMessage());
        return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
    }
    switch (overall) {
        case BufferRequestStatus::FAILED_CONFIGURING:
            return CAMERA3_BUF_REQ_FAILED_CONFIGURING;
        case BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS:
            return CAMERA3_BUF_REQ_FAILED_ILLEGAL_ARGUMENTS;
        case BufferRequestStatus::OK:
        case BufferRequestStatus::FAILED_PARTIAL:
        case BufferRequestStatus::FAILED_UNKNOWN:
            break;
        default:
            A2L_LOGE("[%s::%s] Unknown buffer request error code %d", mName.c_str(), __func__,
                     static_cast<int32_t>(overall));
            return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
    }
    if (answers.size() != num_buffer_reqs) {
        A2L_LOGE("[%s::%s] Expect %d buffer requests returned, only got %zu", mName.c_str(),
                 __func__, static_cast<int32_t>(num_buffer_reqs), answers.size());
        return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
    }
    // The device sized each record's output_buffers for what it asked for: more would not fit.
    for (uint32_t i = 0; i < num_buffer_reqs; ++i) {
        if (answers[i].val.getTag() == StreamBuffersVal::buffers &&
            answers[i].val.get<StreamBuffersVal::buffers>().size() >
                    buffer_reqs[i].num_buffers_requested) {
            A2L_LOGE("[%s::%s] Stream %d got %zu buffers, only %u requested", mName.c_str(),
                     __func__, answers[i].streamId,
                     answers[i].val.get<StreamBuffersVal::buffers>().size(),
                     buffer_reqs[i].num_buffers_requested);
            return CAMERA3_BUF_REQ_FAILED_UNKNOWN;
        }
    }

    camera3_buffer_request_status result;
    convertBufferRequestStatus(overall, result);
    *num_returned_buf_reqs = num_buffer_reqs;
    for (uint32_t i = 0; i < num_buffer_reqs; ++i) {
        const StreamBufferRet& answer = answers[i];
        camera3_stream_buffer_ret& ret = returned_buf_reqs[i];
        std::map<int64_t, BufferHandle> handles;
        if (answer.val.getTag() == StreamBuffersVal::buffers) {
            mBufferHandleCacheMgr->importStreamBuffers(answer.val.get<StreamBuffersVal::buffers>(),
                                                       handles);
        }
        auto stream = mStreamMap.find(answer.streamId);
        if (stream != mStreamMap.end()) {
            ret.stream = &stream->second.stream;
        } else {
            A2L_LOGE("[%s::%s] Unknown streamId %d", mName.c_str(), __func__, answer.streamId);
            ret.stream = nullptr;
        }
        switch (answer.val.getTag()) {
            case StreamBuffersVal::error:
                // num_output_buffers stays as the device left it, and comes off the count below.
                convertBufferRequestError(answer.val.get<StreamBuffersVal::error>(), ret.status);
                break;
            case StreamBuffersVal::buffers: {
                const std::vector<StreamBuffer>& buffers =
                        answer.val.get<StreamBuffersVal::buffers>();
                ret.status = CAMERA3_PS_BUF_REQ_OK;
                ret.num_output_buffers = static_cast<uint32_t>(buffers.size());
                for (size_t j = 0; j < buffers.size(); ++j) {
                    camera3_stream_buffer& buffer = ret.output_buffers[j];
                    convertStreamBuffer(buffers[j], buffer);
                    auto handle = handles.find(buffers[j].bufferId);
                    if (handle == handles.end()) {
                        A2L_FATAL("[%s::%s] fail to find BufferHandle", mName.c_str(), __func__);
                    }
                    buffer.buffer = handle->second.buffer;
                    pushBufferId(handle->second, static_cast<uint64_t>(buffers[j].bufferId),
                                 answer.streamId);
                }
                break;
            }
            default:
                A2L_FATAL("[%s::%s] Unknown Tag %d", mName.c_str(), __func__,
                          static_cast<int32_t>(answer.val.getTag()));
        }
        takeValidBuffers(answer.streamId, ret.num_output_buffers);
    }
    return result;
}

void Aidl2LegacyCameraDeviceCallback::waitForValidBuffers(const std::vector<BufferRequest>& requests) {
    std::unique_lock<std::mutex> lock(mValidBufferSizeLock);
    for (const BufferRequest& request : requests) {
        // Each stream gets a full timeout of its own.
        const auto deadline = std::chrono::steady_clock::now() +
                              std::chrono::nanoseconds(mBufferRequestTimeoutNs);
        const auto requested = static_cast<uint32_t>(request.numBuffersRequested);
        const bool covered = mValidBufferSizeCond.wait_until(lock, deadline, [&] {
            return validBufferCountLocked(request.streamId) >= requested;
        });
        if (!covered) {
            // The framework is asked regardless; it has the final word on its buffers.
            A2L_LOGW(
                    "[%s::%s] Wait for valid buffer timeout, StmId=%d, ValBufSize=%u, "
                    "NumBufReq=%d",
                    mName.c_str(), "requestStreamBuffers", request.streamId,
                    validBufferCountLocked(request.streamId), request.numBuffersRequested);
        }
    }
}

void Aidl2LegacyCameraDeviceCallback::convertBufferRequest(const camera3_buffer_request& in,
                                                           BufferRequest& out) {
    out.streamId = Camera3Stream::fromStream(in.stream)->id;
    out.numBuffersRequested = static_cast<int32_t>(in.num_buffers_requested);
}

void Aidl2LegacyCameraDeviceCallback::convertBufferRequestStatus(const BufferRequestStatus& in,
                                                                 camera3_buffer_request_status& out) {
    setEnumValue(out, static_cast<int32_t>(in));
}

void Aidl2LegacyCameraDeviceCallback::convertBufferRequestError(
        const StreamBufferRequestError& in, camera3_stream_buffer_req_status& out) {
    setEnumValue(out, static_cast<int32_t>(in));
}

void Aidl2LegacyCameraDeviceCallback::convertStreamBuffer(const StreamBuffer& in,
                                                          camera3_stream_buffer& out) {
    auto stream = mStreamMap.find(in.streamId);
    if (stream != mStreamMap.end()) {
        out.stream = &stream->second.stream;
    } else {
        A2L_LOGE("[%s::%s] Unknown streamId %d", mName.c_str(), __func__, in.streamId);
        out.stream = nullptr;
    }
    out.status = static_cast<int>(in.status);
    // The duplicate belongs to the device; the framework's handle keeps and closes its own fd.
    out.acquire_fence = [this](const NativeHandle& fence) {
        if (isAidlNativeHandleNull(fence)) return -1;
        switch (fence.fds.size()) {
            case 0:
                return -1;
            case 1: {
                const int fd = dup(fence.fds[0].get());
                if (fd < 0) {
                    A2L_LOGE("[%s::%s] failed to dup fence fd %d", mName.c_str(), __func__,
                             fence.fds[0].get());
                }
                return fd;
            }
            default:
                A2L_LOGE("[%s::%s] invalid fence handle with %zu file descriptors", mName.c_str(),
                         __func__, fence.fds.size());
                return -1;
        }
    }(in.acquireFence);
    out.release_fence = -1;
}

void Aidl2LegacyCameraDeviceCallback::returnStreamBuffers(
        uint32_t num_buffers, const camera3_stream_buffer* const* buffers) {
    ThreadScratch<std::vector<StreamBuffer>, ReturnedBuffersTag> scratch;
    std::vector<StreamBuffer>& returned = scratch.get();
    returned.resize(num_buffers);
    for (uint32_t i = 0; i < num_buffers; ++i) {
        convertReturnedBuffer(*buffers[i], returned[i]);
    }
    if (log::willWrite(kLogModule, log::Kind::kInfo)) {
        std::string text = "[HBM] framework returnStreamBuffers +, ";
        for (const StreamBuffer& buffer : returned) {
            text += buffer.toString();
            text += ", ";
        }
        A2L_LOGI("[%s::%s] %s", mName.c_str(), __func__, text.c_str());
    }
    if (mCallback == nullptr) {
        A2L_FATAL("[%s::%s] CameraDeviceCallback is null", mName.c_str(), __func__);
    }
    ndk::ScopedAStatus status = mCallback->returnStreamBuffers(returned);
    for (StreamBuffer& buffer : returned) closeReleaseFence(buffer);
    A2L_LOGI("[%s::%s] [HBM] framework returnStreamBuffers -", mName.c_str(), __func__);
    if (!status.isOk()) {
        // The popped ids are gone; the credit stays taken.
        A2L_LOGE("[%s::%s] returnStreamBuffers transaction failed: %s.", mName.c_str(), __func__,
                 status.getMessage());
        return;
    }
    for (const StreamBuffer& buffer : returned) {
        if (buffer.bufferId != 0) giveBackValidBuffer(buffer.streamId, __func__);
    }
}

}  // namespace kovo::aidl2legacy
