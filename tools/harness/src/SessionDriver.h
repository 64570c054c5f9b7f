/*
 * SessionDriver: plays the camera framework on one ICameraDevice for one scenario. It opens a
 * session with a FrameworkCallback, attaches both metadata queues, configures streams, submits
 * requests from its own thread (one processCaptureRequest call at a time, bounded by the depth
 * and the streams' maxBuffers), flushes and reconfigures as the scenario asks, makes the device
 * forget the buffers it drops and closes the session. A short second session then shows whether
 * file descriptors grow per session (what the module keeps from its first session is its own).
 * What it sees goes to FrameworkState; run() returns what the report needs.
 *
 * One driver per run, used from one thread; callbacks arrive on the device's threads.
 */
#pragma once

#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/ICameraDevice.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CameraInfo.h"
#include "FrameworkState.h"
#include "Options.h"
#include "RequestSettings.h"

namespace camera_harness {

class FrameworkCallback;
class MetadataQueue;
class TraceFile;

struct RunPlan {
    Scenario scenario = Scenario::kBasic;
    int32_t frames = 0;
    int32_t fps = 30;      // the rate settings ask for
    bool unpaced = false;  // requests as fast as the pipeline takes them; spacing not judged
    int32_t batch = 1;     // requests per processCaptureRequest call
    int32_t depth = 0;     // 0: the smallest maxBuffers
    std::vector<StreamDescription> streams;
    BufferLayout bufferLayout = BufferLayout::kSingleFd;
    bool checkPatterns = false;
    bool secondSession = true;  // a short second session for the fd rule
};

// A configured stream with the device's answer, for the report.
struct StreamReport {
    int32_t streamId = 0;
    StreamDescription description;
    int32_t maxBuffers = 0;
    int64_t producerUsage = 0;
};

struct RunOutcome {
    std::vector<StreamReport> streams;  // every configuration, in order
    int32_t depth = 0;
    int32_t flushes = 0;
    int32_t configurations = 0;
    int32_t combinationsRefused = 0;  // configurations isStreamCombinationSupported said no to
    int64_t cachesRemoved = 0;
    size_t fdsBefore = 0;      // before the first open
    size_t fdsAfterFirst = 0;  // after the first session's close
    size_t fdsAfter = 0;       // after the second session's close
    bool secondSession = false;
    // lifecycle: what a second open of the open camera answered, and the request templates.
    std::string secondOpen;
    std::vector<std::string> templatesSupported;
    std::vector<std::string> templatesMissing;
    std::chrono::nanoseconds elapsed{0};
};

class SessionDriver {
public:
    using ICameraDevice = aidl::android::hardware::camera::device::ICameraDevice;

    SessionDriver(std::shared_ptr<ICameraDevice> device, const CameraInfo& camera,
                  const RunPlan& plan, std::shared_ptr<FrameworkState> state, TraceFile* trace);
    ~SessionDriver();

    RunOutcome run();

private:
    using BufferCache = aidl::android::hardware::camera::device::BufferCache;
    using CaptureRequest = aidl::android::hardware::camera::device::CaptureRequest;
    using ICameraDeviceSession = aidl::android::hardware::camera::device::ICameraDeviceSession;
    using Stream = aidl::android::hardware::camera::device::Stream;

    // What the framework asks a device before it opens it: resource cost, physical cameras.
    void queryDevice();
    bool open();
    // lifecycle: a second open while the first session is open, every request template, and
    // calls on the closed session.
    void openAgain();
    // False (reported) when a second open ends or hangs a child process that tries it first.
    bool secondOpenSurvives();
    void queryTemplates();
    void callsAfterClose();
    void secondSession();
    bool configure(const std::vector<StreamDescription>& descriptions);
    // Submits `count` requests; `afterCall` runs after every processCaptureRequest call with
    // the number submitted so far in this phase. False when the device stalled.
    bool submit(int32_t count, const std::function<void(int32_t submitted)>& afterCall);
    bool buildRequest(int32_t frameNumber, CaptureRequest* request, SubmittedRequest* record);
    void attachSettings(const std::vector<uint8_t>& bytes, int64_t* queuedSize,
                        std::vector<uint8_t>* inlineBytes);
    void sendBatch(std::vector<CaptureRequest>& requests,
                   const std::vector<SubmittedRequest>& records);
    void flush();
    void reconfigure();
    void drain(const char* when);
    void forgetAllBuffers();
    void close();
    // Lets go of the session, its callback and queues.
    void release();
    // Checks an AIDL status; false (and a call-status violation) when it is not OK.
    bool check(const ndk::ScopedAStatus& status, const std::string& call);
    std::vector<StreamDescription> reconfiguredStreams() const;

    std::shared_ptr<ICameraDevice> mDevice;
    const CameraInfo& mCamera;
    RunPlan mPlan;
    std::shared_ptr<FrameworkState> mState;
    TraceFile* mTrace;
    std::shared_ptr<FrameworkCallback> mCallback;
    std::shared_ptr<ICameraDeviceSession> mSession;
    std::unique_ptr<MetadataQueue> mRequestQueue;
    std::optional<RequestSettings> mSettings;
    std::vector<uint8_t> mPreviewTemplate;
    std::vector<Stream> mStreams;  // the current configuration
    std::vector<BufferCache> mPendingCacheRemovals;
    int32_t mNextFrameNumber = 0;
    int32_t mNextStreamId = 0;
    int32_t mStreamConfigCounter = 0;
    bool mSettingsSent = false;  // since the last configuration
    bool mStalled = false;
    RunOutcome mOutcome;
};

}  // namespace camera_harness
