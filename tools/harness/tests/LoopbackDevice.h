/*
 * LoopbackDevice: an ICameraDevice test double whose session answers every capture request at
 * once, on the calling thread, the way a correct device does: a shutter, the final metadata
 * (through the result queue), and every buffer filled with the virtual camera's pattern. It reads
 * settings from the request queue, keeps the buffers it was sent by (stream, buffer id) like an
 * adapter's cache, and records what it saw. Like a guarded device it refuses a second open while
 * a session is open (CAMERA_IN_USE) and answers nothing usable once closed. A Fault makes it break
 * one rule on one frame, or misbehave across sessions.
 *
 * Calls come from the harness's submitting thread only; the records are read after the run.
 */
#pragma once

#include <aidl/android/hardware/camera/device/ICameraDevice.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <fmq/AidlMessageQueue.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace camera_harness::testing {

struct LoopbackRecord {
    int32_t configurations = 0;
    int32_t flushes = 0;
    std::vector<size_t> batchSizes;
    size_t handlesReceived = 0;
    size_t settingsRead = 0;
    size_t unknownBuffers = 0;  // ids sent without a handle that were never cached
    std::vector<std::pair<int32_t, int64_t>> cachesRemoved;
    size_t buffersCachedAtClose = 0;
    int32_t openSessions = 0;
};

struct LoopbackFault {
    enum Kind {
        kNone,
        kWrongBufferId,
        kNoShutter,
        kRejectRequest,
        kOneTimeFd,          // an fd made at the first open and kept
        kFdPerSession,       // an fd left behind by every session
        kReachesAfterClose,  // a closed session still answers as an open one
        kCrashOnSecondOpen,  // a second open ends the process, as a device over a null one does
    } kind = kNone;
    int32_t frameNumber = -1;
};

class LoopbackDevice : public aidl::android::hardware::camera::device::ICameraDeviceDefault {
public:
    using CameraMetadata = aidl::android::hardware::camera::device::CameraMetadata;
    using ICameraDeviceCallback = aidl::android::hardware::camera::device::ICameraDeviceCallback;
    using ICameraDeviceSession = aidl::android::hardware::camera::device::ICameraDeviceSession;
    using StreamConfiguration = aidl::android::hardware::camera::device::StreamConfiguration;

    explicit LoopbackDevice(LoopbackFault fault = {}) : mFault(fault) {}
    ~LoopbackDevice();

    ndk::ScopedAStatus open(const std::shared_ptr<ICameraDeviceCallback>& callback,
                            std::shared_ptr<ICameraDeviceSession>* session) override;
    ndk::ScopedAStatus isStreamCombinationSupported(const StreamConfiguration& streams,
                                                    bool* supported) override;
    ndk::ScopedAStatus getResourceCost(
            aidl::android::hardware::camera::common::CameraResourceCost* cost) override;
    ndk::ScopedAStatus getPhysicalCameraCharacteristics(const std::string& id,
                                                        CameraMetadata* characteristics) override;

    const LoopbackRecord& record() const { return mRecord; }

    // A preview template with an exposure time; what constructDefaultRequestSettings answers.
    static std::vector<uint8_t> previewTemplate();

private:
    LoopbackFault mFault;
    LoopbackRecord mRecord;
    std::vector<int> mKeptFds;  // what kOneTimeFd and kFdPerSession hold
};

}  // namespace camera_harness::testing
