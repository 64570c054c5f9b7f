#include "SessionDriver.h"

#include <aidl/android/hardware/camera/common/Status.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/metadata/RequestAvailableColorSpaceProfilesMap.h>
#include <aidlcommonsupport/NativeHandle.h>
#include <dirent.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <system/graphics.h>
#include <unistd.h>
#include <virtual_camera/HostBuffer.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <thread>

#include "CpuMeter.h"
#include "FrameworkCallback.h"
#include "Metadata.h"
#include "MetadataQueue.h"
#include "TraceFile.h"

namespace camera_harness {

namespace {

using aidl::android::hardware::camera::device::BufferStatus;
using aidl::android::hardware::camera::device::CameraMetadata;
using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::PhysicalCameraSetting;
using aidl::android::hardware::camera::device::RequestTemplate;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamConfiguration;
using aidl::android::hardware::camera::device::StreamConfigurationMode;
using aidl::android::hardware::camera::device::StreamRotation;
using aidl::android::hardware::camera::device::StreamType;
using aidl::android::hardware::common::NativeHandle;
using CameraStatus = aidl::android::hardware::camera::common::Status;
namespace gc = aidl::android::hardware::graphics::common;
namespace cm = aidl::android::hardware::camera::metadata;

// How long the device may go without completing anything while the harness waits.
constexpr std::chrono::milliseconds kStallTimeout{5000};
// Settings travel with the first request after a configuration and then with every n-th.
constexpr int32_t kSettingsEvery = 4;
// Flushes spread over the flush scenario.
constexpr int32_t kFlushes = 4;
// Requests of the second session, which only shows whether descriptors grow per session.
constexpr int32_t kSecondSessionFrames = 4;

size_t countOpenFds() {
    std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir("/proc/self/fd"), closedir);
    if (!dir) return 0;
    size_t count = 0;
    while (dirent* entry = readdir(dir.get())) {
        if (entry->d_name[0] != '.') ++count;
    }
    return count - 1;  // the directory's own descriptor
}

// An acquire fence that is already signalled, as a consumer that released the buffer hands it.
NativeHandle signalledFence() {
    NativeHandle fence;
    int fd = eventfd(1, EFD_CLOEXEC);
    if (fd >= 0) fence.fds.emplace_back(fd);
    return fence;
}

}  // namespace

SessionDriver::SessionDriver(std::shared_ptr<ICameraDevice> device, const CameraInfo& camera,
                             const RunPlan& plan, std::shared_ptr<FrameworkState> state,
                             TraceFile* trace)
    : mDevice(std::move(device)),
      mCamera(camera),
      mPlan(plan),
      mState(std::move(state)),
      mTrace(trace) {}

SessionDriver::~SessionDriver() = default;

RunOutcome SessionDriver::run() {
    const auto start = Clock::now();
    mOutcome.fdsBefore = countOpenFds();
    queryDevice();
    const bool opened = open();
    if (opened && mPlan.scenario == Scenario::kLifecycle) {
        openAgain();
        queryTemplates();
    }
    if (opened && configure(mPlan.streams)) {
        const int32_t frames = mPlan.frames;
        switch (mPlan.scenario) {
            case Scenario::kBasic:
            case Scenario::kBurst:
            case Scenario::kHbm:
            case Scenario::kLifecycle:
                submit(frames, nullptr);
                break;
            case Scenario::kFlush: {
                // Flushes spread evenly over the run, each with requests in flight.
                int32_t flushes = 0;
                submit(frames, [&](int32_t submitted) {
                    if (flushes < kFlushes &&
                        int64_t{submitted} * (kFlushes + 1) >= int64_t{flushes + 1} * frames) {
                        flush();
                        ++flushes;
                    }
                });
                break;
            }
            case Scenario::kReconfigure:
                if (submit(frames / 2, nullptr)) {
                    drain("before reconfiguring");
                    reconfigure();
                    submit(frames - frames / 2, nullptr);
                }
                break;
        }
        drain("at the end");
        forgetAllBuffers();
    }
    close();
    if (mPlan.scenario == Scenario::kLifecycle) callsAfterClose();
    release();
    mOutcome.fdsAfterFirst = countOpenFds();
    if (opened && !mStalled && mPlan.secondSession) secondSession();
    mOutcome.elapsed = Clock::now() - start;
    mOutcome.fdsAfter = countOpenFds();
    // The first session may leave what the module makes once per process; another may not.
    const size_t baseline = mOutcome.secondSession ? mOutcome.fdsAfterFirst : mOutcome.fdsBefore;
    if (mOutcome.fdsAfter > baseline) {
        mState->report(Rule::kFdLeak, std::nullopt,
                       std::to_string(mOutcome.fdsAfter - baseline) +
                               " more file descriptors open after " +
                               (mOutcome.secondSession ? "a second session (" : "close (") +
                               std::to_string(baseline) + " before, " +
                               std::to_string(mOutcome.fdsAfter) + " after)");
    }
    return mOutcome;
}

void SessionDriver::secondSession() {
    mState->markOpen();
    mOutcome.secondSession = true;
    if (open() && configure(mPlan.streams)) {
        submit(kSecondSessionFrames, nullptr);
        drain("at the end of the second session");
        forgetAllBuffers();
    }
    close();
    release();
}

bool SessionDriver::secondOpenSurvives() {
    // Sanitizers turn a crash into their own exit status; this one says open returned.
    constexpr int kReturned = 42;
    constexpr auto kPatience = std::chrono::seconds(5);
    fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        auto callback = ndk::SharedRefBase::make<FrameworkCallback>(mState, nullptr);
        std::shared_ptr<ICameraDeviceSession> second;
        (void)mDevice->open(callback, &second);
        _exit(kReturned);
    }
    if (child < 0) return true;  // no probe: the open below tells
    int status = 0;
    const auto deadline = Clock::now() + kPatience;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            mState->report(Rule::kSecondOpen, std::nullopt,
                           "a second open did not return within 5 s");
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == kReturned) return true;
    mState->report(Rule::kSecondOpen, std::nullopt,
                   WIFSIGNALED(status) ? "a second open ended the provider: " +
                                                 std::string(strsignal(WTERMSIG(status)))
                                       : "a second open ended the provider with exit status " +
                                                 std::to_string(WEXITSTATUS(status)));
    return false;
}

void SessionDriver::openAgain() {
    // Tried in a child first: a crash there is reported, not suffered.
    if (!secondOpenSurvives()) {
        mOutcome.secondOpen = "crashed";
        return;
    }
    auto callback = ndk::SharedRefBase::make<FrameworkCallback>(mState, mTrace);
    std::shared_ptr<ICameraDeviceSession> second;
    ndk::ScopedAStatus status;
    {
        HarnessSpan span(mTrace, "second open");
        CpuMeter::AdapterCall cpu;
        status = mDevice->open(callback, &second);
    }
    if (!status.isOk()) {
        const int32_t code = status.getServiceSpecificError();
        mOutcome.secondOpen =
                "refused: " + (code != 0 ? aidl::android::hardware::camera::common::toString(
                                                   static_cast<CameraStatus>(code))
                                         : status.getDescription());
        return;
    }
    // A module may allow it; the framework then has two sessions and closes the second.
    mOutcome.secondOpen = "accepted";
    if (second) {
        CpuMeter::AdapterCall cpu;
        check(second->close(), "close of the second session");
    }
}

void SessionDriver::queryTemplates() {
    for (auto type : {RequestTemplate::PREVIEW, RequestTemplate::STILL_CAPTURE,
                      RequestTemplate::VIDEO_RECORD, RequestTemplate::VIDEO_SNAPSHOT,
                      RequestTemplate::ZERO_SHUTTER_LAG, RequestTemplate::MANUAL}) {
        CameraMetadata settings;
        ndk::ScopedAStatus status;
        {
            CpuMeter::AdapterCall cpu;
            status = mSession->constructDefaultRequestSettings(type, &settings);
        }
        // A template the module lacks is an answer, not a fault.
        bool usable = status.isOk() && viewMetadata(settings.metadata) != nullptr;
        (usable ? mOutcome.templatesSupported : mOutcome.templatesMissing)
                .push_back(aidl::android::hardware::camera::device::toString(type));
    }
}

void SessionDriver::callsAfterClose() {
    if (!mSession) return;
    HarnessSpan span(mTrace, "calls after close");
    CpuMeter::AdapterCall cpu;
    auto reached = [&](const std::string& what) {
        mState->report(Rule::kCallAfterClose, std::nullopt,
                       what + " after close: the call reached the closed legacy device");
    };
    if (mSession->flush().isOk()) reached("flush answered OK");
    CameraMetadata settings;
    if (mSession->constructDefaultRequestSettings(RequestTemplate::PREVIEW, &settings).isOk() &&
        !settings.metadata.empty()) {
        reached("constructDefaultRequestSettings gave a template");
    }
    if (mSession->close().isOk()) reached("a second close answered OK");
}

bool SessionDriver::check(const ndk::ScopedAStatus& status, const std::string& call) {
    if (status.isOk()) return true;
    mState->report(Rule::kCallStatus, std::nullopt, call + " failed: " + status.getDescription());
    return false;
}

void SessionDriver::queryDevice() {
    HarnessSpan span(mTrace, "device queries");
    CpuMeter::AdapterCall cpu;
    aidl::android::hardware::camera::common::CameraResourceCost cost;
    check(mDevice->getResourceCost(&cost), "getResourceCost");
    for (const auto& id : mCamera.physicalCameraIds) {
        CameraMetadata characteristics;
        if (check(mDevice->getPhysicalCameraCharacteristics(id, &characteristics),
                  "getPhysicalCameraCharacteristics(" + id + ")") &&
            viewMetadata(characteristics.metadata) == nullptr) {
            mState->report(
                    Rule::kCallStatus, std::nullopt,
                    "getPhysicalCameraCharacteristics(" + id + ") gave no usable characteristics");
        }
    }
}

bool SessionDriver::open() {
    mCallback = ndk::SharedRefBase::make<FrameworkCallback>(mState, mTrace);
    {
        HarnessSpan span(mTrace, "open");
        CpuMeter::AdapterCall cpu;
        if (!check(mDevice->open(mCallback, &mSession), "open")) return false;
    }
    if (!mSession) {
        mState->report(Rule::kCallStatus, std::nullopt, "open returned no session");
        return false;
    }

    MetadataQueueDescriptor requestQueue;
    MetadataQueueDescriptor resultQueue;
    CameraMetadata preview;
    {
        CpuMeter::AdapterCall cpu;
        check(mSession->getCaptureRequestMetadataQueue(&requestQueue),
              "getCaptureRequestMetadataQueue");
        check(mSession->getCaptureResultMetadataQueue(&resultQueue),
              "getCaptureResultMetadataQueue");
        check(mSession->constructDefaultRequestSettings(RequestTemplate::PREVIEW, &preview),
              "constructDefaultRequestSettings");
    }
    mRequestQueue = MetadataQueue::attach(requestQueue);
    mCallback->setResultQueue(MetadataQueue::attach(resultQueue));
    mPreviewTemplate = preview.metadata;
    mSettings = RequestSettings::build(mPreviewTemplate, mCamera, mPlan.fps);
    if (!mSettings) {
        mState->report(Rule::kCallStatus, std::nullopt,
                       "constructDefaultRequestSettings gave no usable preview template");
        return false;
    }
    return true;
}

bool SessionDriver::configure(const std::vector<StreamDescription>& descriptions) {
    std::vector<Stream> streams;
    for (const auto& description : descriptions) {
        // Streams that stay keep their ids, as the framework keeps them.
        auto old = std::find_if(mStreams.begin(), mStreams.end(), [&](const Stream& stream) {
            return stream.width == description.width && stream.height == description.height &&
                   static_cast<int32_t>(stream.format) == description.format &&
                   stream.physicalCameraId == description.physicalCameraId;
        });
        Stream stream;
        stream.id = old != mStreams.end() ? old->id : mNextStreamId++;
        stream.streamType = StreamType::OUTPUT;
        stream.width = description.width;
        stream.height = description.height;
        stream.format = static_cast<gc::PixelFormat>(description.format);
        stream.usage = gc::BufferUsage::CPU_READ_OFTEN;
        stream.dataSpace = description.format == HAL_PIXEL_FORMAT_BLOB ? gc::Dataspace::JFIF
                                                                       : gc::Dataspace::UNKNOWN;
        stream.rotation = StreamRotation::ROTATION_0;
        stream.physicalCameraId = description.physicalCameraId;
        stream.bufferSize = description.format == HAL_PIXEL_FORMAT_BLOB
                                    ? static_cast<int32_t>(mCamera.jpegMaxSize)
                                    : 0;
        stream.groupId = -1;
        stream.sensorPixelModesUsed = {cm::SensorPixelMode::ANDROID_SENSOR_PIXEL_MODE_DEFAULT};
        stream.dynamicRangeProfile = cm::RequestAvailableDynamicRangeProfilesMap::
                ANDROID_REQUEST_AVAILABLE_DYNAMIC_RANGE_PROFILES_MAP_STANDARD;
        stream.useCase =
                cm::ScalerAvailableStreamUseCases::ANDROID_SCALER_AVAILABLE_STREAM_USE_CASES_DEFAULT;
        stream.colorSpace = static_cast<int32_t>(
                cm::RequestAvailableColorSpaceProfilesMap::
                        ANDROID_REQUEST_AVAILABLE_COLOR_SPACE_PROFILES_MAP_UNSPECIFIED);
        streams.push_back(stream);
    }

    StreamConfiguration configuration;
    configuration.streams = streams;
    configuration.operationMode = StreamConfigurationMode::NORMAL_MODE;
    configuration.sessionParams.metadata = mSettings->sessionParameters;
    configuration.streamConfigCounter = mStreamConfigCounter++;

    std::vector<HalStream> halStreams;
    bool supported = false;
    {
        HarnessSpan span(mTrace, "configureStreams");
        CpuMeter::AdapterCall cpu;
        // Not part of the framework's path to a session: the answer is reported, not judged.
        if (check(mDevice->isStreamCombinationSupported(configuration, &supported),
                  "isStreamCombinationSupported")) {
            mOutcome.combinationsRefused += supported ? 0 : 1;
        }
        if (!check(mSession->configureStreams(configuration, &halStreams), "configureStreams")) {
            return false;
        }
    }

    std::vector<ConfiguredStream> configured;
    for (const auto& stream : streams) {
        auto hal = std::find_if(halStreams.begin(), halStreams.end(),
                                [&](const HalStream& h) { return h.id == stream.id; });
        if (hal == halStreams.end() || hal->maxBuffers < 1) {
            mState->report(Rule::kCallStatus, std::nullopt,
                           "configureStreams gave no HalStream with maxBuffers for stream " +
                                   std::to_string(stream.id));
            return false;
        }
        StreamDescription description{stream.width, stream.height,
                                      static_cast<int32_t>(stream.format), stream.physicalCameraId};
        size_t size = virtual_camera::hostBufferSize(description.format, description.width,
                                                     description.height, mCamera.jpegMaxSize);
        configured.push_back({stream.id, description, size, hal->maxBuffers});
        if (!mOutcome.secondSession)
            mOutcome.streams.push_back({stream.id, description, hal->maxBuffers,
                                        static_cast<int64_t>(hal->producerUsage)});
    }
    if (halStreams.size() != streams.size()) {
        mState->report(Rule::kCallStatus, std::nullopt,
                       "configureStreams gave " + std::to_string(halStreams.size()) +
                               " HalStreams for " + std::to_string(streams.size()) + " streams");
    }

    const int64_t minFrameDuration = mPlan.unpaced ? 0 : mCamera.minFrameDurationNs(descriptions);
    for (const auto& dropped : mState->configure(configured, minFrameDuration)) {
        mPendingCacheRemovals.push_back(BufferCache{dropped.streamId, dropped.bufferId});
    }
    mStreams = streams;
    mSettingsSent = false;
    ++mOutcome.configurations;

    int32_t smallest = INT32_MAX;
    for (const auto& stream : configured) smallest = std::min(smallest, stream.maxBuffers);
    mOutcome.depth = mPlan.depth > 0 ? mPlan.depth : smallest;
    return true;
}

bool SessionDriver::submit(int32_t count, const std::function<void(int32_t submitted)>& afterCall) {
    int32_t submitted = 0;
    while (submitted < count && !mStalled) {
        const int32_t batch = std::min({mPlan.batch, mOutcome.depth, count - submitted});
        if (!mState->waitForRoom(static_cast<size_t>(std::max(1, mOutcome.depth - batch + 1)),
                                 kStallTimeout)) {
            mState->report(Rule::kRequestCompletes, std::nullopt,
                           "nothing completed for " + std::to_string(kStallTimeout.count()) +
                                   " ms; submission stopped");
            mStalled = true;
            break;
        }
        std::vector<CaptureRequest> requests(static_cast<size_t>(batch));
        std::vector<SubmittedRequest> records(static_cast<size_t>(batch));
        for (int32_t i = 0; i < batch; ++i) {
            if (!buildRequest(mNextFrameNumber++, &requests[i], &records[i])) {
                // The buffers taken for the batch are the framework's again.
                std::vector<int64_t> taken;
                for (const auto& record : records) {
                    for (const auto& buffer : record.buffers) taken.push_back(buffer.bufferId);
                }
                mState->releaseBuffers(taken);
                mStalled = true;
                return false;
            }
        }
        sendBatch(requests, records);
        submitted += batch;
        if (afterCall) afterCall(submitted);
    }
    return !mStalled;
}

bool SessionDriver::buildRequest(int32_t frameNumber, CaptureRequest* request,
                                 SubmittedRequest* record) {
    request->frameNumber = frameNumber;
    record->frameNumber = frameNumber;
    if (!mSettingsSent || frameNumber % kSettingsEvery == 0) {
        attachSettings(mSettings->request, &request->fmqSettingsSize, &request->settings.metadata);
        mSettingsSent = true;
    }
    request->inputBuffer.streamId = -1;
    request->inputBuffer.bufferId = 0;

    const bool halBufferManager = mState->halBufferManager();
    for (const auto& stream : mStreams) {
        StreamBuffer buffer;
        buffer.streamId = stream.id;
        buffer.status = BufferStatus::OK;
        if (!halBufferManager) {
            auto lease = mState->acquireBuffer(stream.id, kStallTimeout);
            if (!lease) {
                mState->report(Rule::kRequestCompletes, frameNumber,
                               "no buffer of stream " + std::to_string(stream.id) +
                                       " came back; submission stopped");
                return false;
            }
            buffer.bufferId = lease->bufferId;
            if (lease->firstUse) buffer.buffer = android::dupToAidl(lease->handle);
            // Every other request hands over a fence, as a consumer releasing the buffer does.
            if (frameNumber % 2 == 1) buffer.acquireFence = signalledFence();
        }
        record->buffers.push_back({stream.id, buffer.bufferId});
        request->outputBuffers.push_back(std::move(buffer));
    }

    // Every other request on a logical camera carries settings for each physical camera.
    if (frameNumber % 2 == 1) {
        for (const auto& id : mCamera.physicalCameraIds) {
            PhysicalCameraSetting setting;
            setting.physicalCameraId = id;
            attachSettings(mSettings->physical, &setting.fmqSettingsSize,
                           &setting.settings.metadata);
            request->physicalCameraSettings.push_back(std::move(setting));
            record->physicalSettingIds.push_back(id);
        }
    }
    return true;
}

void SessionDriver::attachSettings(const std::vector<uint8_t>& bytes, int64_t* queuedSize,
                                   std::vector<uint8_t>* inlineBytes) {
    bool queued = mRequestQueue && mRequestQueue->write(bytes);
    if (queued) {
        *queuedSize = static_cast<int64_t>(bytes.size());
    } else {
        *inlineBytes = bytes;
    }
    mState->countSettings(queued);
}

void SessionDriver::sendBatch(std::vector<CaptureRequest>& requests,
                              const std::vector<SubmittedRequest>& records) {
    std::vector<BufferCache> caches = std::move(mPendingCacheRemovals);
    mPendingCacheRemovals.clear();
    mOutcome.cachesRemoved += static_cast<int64_t>(caches.size());

    const auto when = Clock::now();
    for (const auto& record : records) mState->requestSubmitted(record, when);
    int32_t processed = -1;
    ndk::ScopedAStatus status;
    {
        HarnessSpan span(mTrace, "processCaptureRequest", requests.front().frameNumber);
        CpuMeter::AdapterCall cpu;
        status = mSession->processCaptureRequest(requests, caches, &processed);
    }
    if (status.isOk() && processed == static_cast<int32_t>(requests.size())) return;

    std::vector<int32_t> frames;
    for (const auto& record : records) frames.push_back(record.frameNumber);
    std::string batch = frames.size() == 1 ? std::string()
                                           : " (batch of frames " + std::to_string(frames.front()) +
                                                     ".." + std::to_string(frames.back()) + ")";
    mState->report(Rule::kRequestAccepted, frames.front(),
                   status.isOk() ? "processCaptureRequest accepted " + std::to_string(processed) +
                                           " of " + std::to_string(requests.size()) + " requests"
                                 : "processCaptureRequest failed" + batch + ": " +
                                           status.getDescription());
    // Without a count the framework takes none of the batch as accepted; with one, the rest.
    if (status.isOk()) frames.erase(frames.begin(), frames.begin() + std::max(0, processed));
    mState->requestsRejected(frames);
    // Settings of requests the device never read would put the queue out of step.
    if (mRequestQueue) mRequestQueue->discardUnread();
}

void SessionDriver::flush() {
    mState->expectErrorsInFlight();
    {
        HarnessSpan span(mTrace, "flush");
        CpuMeter::AdapterCall cpu;
        check(mSession->flush(), "flush");
    }
    ++mOutcome.flushes;
    mState->checkNothingInFlight("flush");
}

std::vector<StreamDescription> SessionDriver::reconfiguredStreams() const {
    // Drop the last stream; add the first one's format at its smallest other size.
    std::vector<StreamDescription> descriptions = mPlan.streams;
    const StreamDescription first = descriptions.front();
    if (descriptions.size() > 1) descriptions.pop_back();
    std::optional<StreamDescription> added;
    for (const auto& output : mCamera.outputs) {
        StreamDescription other{output.width, output.height, output.format, first.physicalCameraId};
        if (output.format != first.format ||
            std::find(descriptions.begin(), descriptions.end(), other) != descriptions.end()) {
            continue;
        }
        if (!added || int64_t{other.width} * other.height < int64_t{added->width} * added->height) {
            added = other;
        }
    }
    if (added) descriptions.push_back(*added);
    return descriptions;
}

void SessionDriver::reconfigure() {
    std::vector<int32_t> ids;
    for (const auto& stream : mStreams) ids.push_back(stream.id);
    std::vector<StreamDescription> descriptions = reconfiguredStreams();
    {
        HarnessSpan span(mTrace, "signalStreamFlush");
        CpuMeter::AdapterCall cpu;
        // Oneway: the framework never sees its status.
        (void)mSession->signalStreamFlush(ids, mStreamConfigCounter - 1);
        bool required = false;
        CameraMetadata params;
        params.metadata = mSettings->sessionParameters;
        // OPERATION_NOT_SUPPORTED: the device cannot tell, so the framework reconfigures.
        ndk::ScopedAStatus status = mSession->isReconfigurationRequired(params, params, &required);
        if (status.getServiceSpecificError() !=
            static_cast<int32_t>(CameraStatus::OPERATION_NOT_SUPPORTED)) {
            check(status, "isReconfigurationRequired");
        }
    }
    if (!configure(descriptions)) return;
    // A framework whose buffer queue shrank frees buffers of a stream that stays.
    const int32_t kept = mStreams.front().id;
    for (const auto& freed : mState->discardFreeBuffers(kept, 2)) {
        mPendingCacheRemovals.push_back(BufferCache{freed.streamId, freed.bufferId});
    }
}

void SessionDriver::drain(const char* when) {
    if (!mState->waitUntilIdle(kStallTimeout)) {
        mState->report(Rule::kRequestCompletes, std::nullopt,
                       std::string("requests still in flight ") + when +
                               " after nothing completed for " +
                               std::to_string(kStallTimeout.count()) + " ms");
    }
}

void SessionDriver::forgetAllBuffers() {
    for (const auto& freed : mState->discardAllFreeBuffers()) {
        mPendingCacheRemovals.push_back(BufferCache{freed.streamId, freed.bufferId});
    }
    if (mPendingCacheRemovals.empty()) return;
    std::vector<BufferCache> caches = std::move(mPendingCacheRemovals);
    mPendingCacheRemovals.clear();
    mOutcome.cachesRemoved += static_cast<int64_t>(caches.size());
    int32_t processed = -1;
    HarnessSpan span(mTrace, "processCaptureRequest");
    CpuMeter::AdapterCall cpu;
    if (check(mSession->processCaptureRequest({}, caches, &processed),
              "processCaptureRequest without requests") &&
        processed != 0) {
        mState->report(
                Rule::kCallStatus, std::nullopt,
                "processCaptureRequest without requests processed " + std::to_string(processed));
    }
}

void SessionDriver::close() {
    if (mSession) {
        HarnessSpan span(mTrace, "close");
        CpuMeter::AdapterCall cpu;
        check(mSession->close(), "close");
    }
    mState->markClosed();
    mState->finish();
    mState->dropAllBuffers();
    mPendingCacheRemovals.clear();
}

void SessionDriver::release() {
    mSession.reset();
    if (mCallback) mCallback->setResultQueue(nullptr);
    mCallback.reset();
    mRequestQueue.reset();
}

}  // namespace camera_harness
