#include "LoopbackDevice.h"

#include <aidl/android/hardware/camera/device/BnCameraDeviceSession.h>
#include <aidlcommonsupport/NativeHandle.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <virtual_camera/HostBuffer.h>
#include <virtual_camera/Pattern.h>

#include <cstdlib>

#include "Metadata.h"

namespace camera_harness::testing {

namespace {

using namespace aidl::android::hardware::camera::device;
using aidl::android::hardware::common::fmq::MQDescriptor;
using aidl::android::hardware::common::fmq::SynchronizedReadWrite;
using Queue = android::AidlMessageQueue<int8_t, SynchronizedReadWrite>;

constexpr size_t kQueueSize = 65536;
constexpr int32_t kMaxBuffers = 4;
constexpr int32_t kIllegalArgument = 3;
constexpr int32_t kCameraInUse = 2;
constexpr int32_t kInternalError = 6;

struct HandleDeleter {
    void operator()(native_handle_t* handle) const {
        native_handle_close(handle);
        native_handle_delete(handle);
    }
};
using OwnedHandle = std::unique_ptr<native_handle_t, HandleDeleter>;

class LoopbackSession : public ICameraDeviceSessionDefault {
public:
    LoopbackSession(std::shared_ptr<ICameraDeviceCallback> callback, LoopbackFault fault,
                    LoopbackRecord* record)
        : mCallback(std::move(callback)), mFault(fault), mRecord(record) {}

    ndk::ScopedAStatus close() override {
        if (closedDevice()) return ndk::ScopedAStatus::fromServiceSpecificError(kInternalError);
        mRecord->buffersCachedAtClose = mCache.size();
        mCache.clear();
        if (!mClosed) --mRecord->openSessions;
        mClosed = true;
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus configureStreams(const StreamConfiguration& configuration,
                                        std::vector<HalStream>* halStreams) override {
        ++mRecord->configurations;
        mStreams.clear();
        halStreams->clear();
        for (const auto& stream : configuration.streams) {
            mStreams[stream.id] = stream;
            HalStream hal;
            hal.id = stream.id;
            hal.overrideFormat = stream.format;
            hal.maxBuffers = kMaxBuffers;
            halStreams->push_back(hal);
        }
        // Buffers of streams that are gone are forgotten, as an adapter's cache does.
        std::erase_if(mCache,
                      [&](const auto& entry) { return mStreams.count(entry.first.first) == 0; });
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus constructDefaultRequestSettings(RequestTemplate,
                                                       CameraMetadata* settings) override {
        if (!closedDevice()) settings->metadata = LoopbackDevice::previewTemplate();
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus flush() override {
        if (closedDevice()) return ndk::ScopedAStatus::fromServiceSpecificError(kInternalError);
        ++mRecord->flushes;
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus getCaptureRequestMetadataQueue(
            MQDescriptor<int8_t, SynchronizedReadWrite>* queue) override {
        *queue = mRequestQueue.dupeDesc();
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus getCaptureResultMetadataQueue(
            MQDescriptor<int8_t, SynchronizedReadWrite>* queue) override {
        *queue = mResultQueue.dupeDesc();
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus isReconfigurationRequired(const CameraMetadata&, const CameraMetadata&,
                                                 bool* required) override {
        *required = false;
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus signalStreamFlush(const std::vector<int32_t>&, int32_t) override {
        return ndk::ScopedAStatus::ok();
    }

    ndk::ScopedAStatus processCaptureRequest(const std::vector<CaptureRequest>& requests,
                                             const std::vector<BufferCache>& cachesToRemove,
                                             int32_t* processed) override {
        mRecord->batchSizes.push_back(requests.size());
        for (const auto& cache : cachesToRemove) {
            mRecord->cachesRemoved.emplace_back(cache.streamId, cache.bufferId);
            mCache.erase({cache.streamId, cache.bufferId});
        }
        for (const auto& request : requests) {
            if (mFault.kind == LoopbackFault::kRejectRequest &&
                request.frameNumber == mFault.frameNumber) {
                readSettings(request);
                return ndk::ScopedAStatus::fromServiceSpecificError(kIllegalArgument);
            }
            readSettings(request);
            capture(request);
        }
        *processed = static_cast<int32_t>(requests.size());
        return ndk::ScopedAStatus::ok();
    }

private:
    // A guarded device answers no call once closed; kReachesAfterClose plays one that does.
    bool closedDevice() const {
        return mClosed && mFault.kind != LoopbackFault::kReachesAfterClose;
    }

    void readSettings(const CaptureRequest& request) {
        auto read = [&](int64_t size) {
            if (size <= 0) return;
            std::vector<uint8_t> bytes(static_cast<size_t>(size));
            if (mRequestQueue.read(reinterpret_cast<int8_t*>(bytes.data()), bytes.size()) &&
                viewMetadata(bytes) != nullptr) {
                ++mRecord->settingsRead;
            }
        };
        read(request.fmqSettingsSize);
        for (const auto& physical : request.physicalCameraSettings) {
            read(physical.fmqSettingsSize);
        }
    }

    void capture(const CaptureRequest& request) {
        const int32_t frame = request.frameNumber;
        const int64_t timestamp = ++mTimestamp * 1000;
        if (mFault.kind != LoopbackFault::kNoShutter || frame != mFault.frameNumber) {
            mCallback->notify(
                    {NotifyMsg::make<NotifyMsg::shutter>(ShutterMsg{frame, timestamp, 0})});
        }

        CaptureResult result;
        result.frameNumber = frame;
        result.partialResult = 1;
        result.inputBuffer.streamId = -1;
        MetadataPtr metadata = copyMetadata(nullptr, 1, 8);
        setEntry(metadata.get(), ANDROID_SENSOR_TIMESTAMP, &timestamp, 1);
        std::vector<uint8_t> bytes = toBytes(metadata.get());
        if (mResultQueue.write(reinterpret_cast<const int8_t*>(bytes.data()), bytes.size())) {
            result.fmqResultSize = static_cast<int64_t>(bytes.size());
        } else {
            result.result.metadata = bytes;
        }

        std::set<std::string> physicalIds;
        for (const auto& setting : request.physicalCameraSettings) {
            physicalIds.insert(setting.physicalCameraId);
        }
        for (const auto& buffer : request.outputBuffers) {
            const Stream& stream = mStreams.at(buffer.streamId);
            if (!stream.physicalCameraId.empty()) physicalIds.insert(stream.physicalCameraId);
            StreamBuffer returned;
            returned.streamId = buffer.streamId;
            returned.bufferId =
                    mFault.kind == LoopbackFault::kWrongBufferId && frame == mFault.frameNumber
                            ? buffer.bufferId + 100
                            : 0;
            returned.status = fill(buffer, stream, frame) ? BufferStatus::OK : BufferStatus::ERROR;
            result.outputBuffers.push_back(std::move(returned));
        }
        for (const auto& id : physicalIds) {
            PhysicalCameraMetadata physical;
            physical.physicalCameraId = id;
            physical.metadata.metadata = bytes;
            result.physicalCameraMetadata.push_back(std::move(physical));
        }
        std::vector<CaptureResult> results;
        results.push_back(std::move(result));
        mCallback->processCaptureResult(results);
    }

    // Writes the frame's pattern into the buffer the request names; false if it is unknown.
    bool fill(const StreamBuffer& buffer, const Stream& stream, int32_t frame) {
        const std::pair<int32_t, int64_t> key{buffer.streamId, buffer.bufferId};
        if (!buffer.buffer.fds.empty()) {
            mCache[key] = OwnedHandle(android::dupFromAidl(buffer.buffer));
            ++mRecord->handlesReceived;
        }
        auto cached = mCache.find(key);
        if (cached == mCache.end()) {
            ++mRecord->unknownBuffers;
            return false;
        }
        auto mapping = virtual_camera::MappedBuffer::map(cached->second.get(), true);
        virtual_camera::PatternStream pattern{
                static_cast<uint32_t>(stream.width), static_cast<uint32_t>(stream.height),
                static_cast<int32_t>(stream.format), stream.physicalCameraId};
        return mapping && virtual_camera::writePattern(mapping->data(), mapping->size(),
                                                       static_cast<uint32_t>(frame), pattern);
    }

    std::shared_ptr<ICameraDeviceCallback> mCallback;
    LoopbackFault mFault;
    LoopbackRecord* mRecord;
    bool mClosed = false;
    Queue mRequestQueue{kQueueSize};
    Queue mResultQueue{kQueueSize};
    std::map<int32_t, Stream> mStreams;
    std::map<std::pair<int32_t, int64_t>, OwnedHandle> mCache;
    int64_t mTimestamp = 0;
};

}  // namespace

ndk::ScopedAStatus LoopbackDevice::open(const std::shared_ptr<ICameraDeviceCallback>& callback,
                                        std::shared_ptr<ICameraDeviceSession>* session) {
    if (mRecord.openSessions > 0) {
        if (mFault.kind == LoopbackFault::kCrashOnSecondOpen) abort();
        return ndk::ScopedAStatus::fromServiceSpecificError(kCameraInUse);
    }
    const bool keepFd = mFault.kind == LoopbackFault::kFdPerSession ||
                        (mFault.kind == LoopbackFault::kOneTimeFd && mKeptFds.empty());
    if (keepFd) mKeptFds.push_back(eventfd(0, EFD_CLOEXEC));
    ++mRecord.openSessions;
    *session = ndk::SharedRefBase::make<LoopbackSession>(callback, mFault, &mRecord);
    return ndk::ScopedAStatus::ok();
}

LoopbackDevice::~LoopbackDevice() {
    for (int fd : mKeptFds) ::close(fd);
}

ndk::ScopedAStatus LoopbackDevice::isStreamCombinationSupported(const StreamConfiguration&,
                                                                bool* supported) {
    *supported = true;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus LoopbackDevice::getResourceCost(
        aidl::android::hardware::camera::common::CameraResourceCost* cost) {
    cost->resourceCost = 50;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus LoopbackDevice::getPhysicalCameraCharacteristics(const std::string&,
                                                                    CameraMetadata* characteristics) {
    characteristics->metadata = previewTemplate();
    return ndk::ScopedAStatus::ok();
}

std::vector<uint8_t> LoopbackDevice::previewTemplate() {
    MetadataPtr metadata = copyMetadata(nullptr, 2, 16);
    const int64_t exposure = 10000000;
    const uint8_t mode = ANDROID_CONTROL_MODE_AUTO;
    setEntry(metadata.get(), ANDROID_SENSOR_EXPOSURE_TIME, &exposure, 1);
    setEntry(metadata.get(), ANDROID_CONTROL_MODE, &mode, 1);
    return toBytes(metadata.get());
}

}  // namespace camera_harness::testing
