#include "ProtocolChecker.h"

#include <algorithm>

namespace camera_harness {

namespace {

const char* errorName(int32_t code) {
    switch (static_cast<NotifyError>(code)) {
        case NotifyError::kDevice:
            return "ERROR_DEVICE";
        case NotifyError::kRequest:
            return "ERROR_REQUEST";
        case NotifyError::kResult:
            return "ERROR_RESULT";
        case NotifyError::kBuffer:
            return "ERROR_BUFFER";
    }
    return "unknown error";
}

std::string streamText(int32_t streamId) {
    return "stream " + std::to_string(streamId);
}

}  // namespace

ProtocolChecker::ProtocolChecker(int32_t partialResultCount, bool halBufferManager)
    : mPartialResultCount(partialResultCount), mHalBufferManager(halBufferManager) {}

void ProtocolChecker::configureStreams(const std::vector<CheckedStream>& streams,
                                       int64_t minFrameDurationNs) {
    mMinFrameDurationNs = minFrameDurationNs;
    mStreams.clear();
    for (const auto& stream : streams) mStreams[stream.streamId] = stream.physicalCameraId;
}

void ProtocolChecker::newSession() {
    mSpanClosed = true;
    mLastShutterFrame.reset();
    mLastShutterTimestamp.reset();
    mLastFinalFrame.reset();
    mLastBufferFrame.clear();
}

void ProtocolChecker::requestSubmitted(const SubmittedRequest& request, Clock::time_point when) {
    Frame& frame = mFrames[request.frameNumber];
    frame = Frame{};
    frame.submitted = when;
    for (const auto& buffer : request.buffers) {
        frame.slots[buffer.streamId].bufferId = buffer.bufferId;
        auto stream = mStreams.find(buffer.streamId);
        if (stream != mStreams.end() && !stream->second.empty()) {
            frame.physicalCameraIds.insert(stream->second);
        }
    }
    frame.physicalCameraIds.insert(request.physicalSettingIds.begin(),
                                   request.physicalSettingIds.end());
    ++mCounters.requestsSubmitted;
}

std::vector<int64_t> ProtocolChecker::requestsRejected(const std::vector<int32_t>& frameNumbers) {
    std::vector<int64_t> released;
    for (int32_t frameNumber : frameNumbers) {
        auto frame = mFrames.find(frameNumber);
        if (frame == mFrames.end()) continue;
        for (const auto& [streamId, slot] : frame->second.slots) {
            if (slot.bufferId != 0 && !slot.returned) released.push_back(slot.bufferId);
        }
        mFrames.erase(frame);
        ++mCounters.requestsRejected;
    }
    return released;
}

void ProtocolChecker::expectErrorsInFlight() {
    for (auto& [frameNumber, frame] : mFrames) frame.errorsExpected = true;
}

ProtocolChecker::Frame* ProtocolChecker::findFrame(int32_t frameNumber, const char* what) {
    auto frame = mFrames.find(frameNumber);
    if (frame != mFrames.end()) return &frame->second;
    report(Rule::kKnownFrame, frameNumber, std::string(what) + " for a frame not in flight");
    return nullptr;
}

void ProtocolChecker::shutter(int32_t frameNumber, int64_t timestamp, Clock::time_point when,
                              int64_t readoutTimestamp) {
    ++mCounters.shutters;
    Frame* frame = findFrame(frameNumber, "shutter");
    if (frame == nullptr) return;
    if (frame->shutter) {
        report(Rule::kShutterOnce, frameNumber, "second shutter");
        return;
    }
    if (frame->errorRequest) {
        report(Rule::kErrorConsistency, frameNumber, "shutter after ERROR_REQUEST");
    }
    if (mLastShutterFrame && frameNumber <= *mLastShutterFrame) {
        report(Rule::kShutterOrder, frameNumber,
               "shutter after the shutter of frame " + std::to_string(*mLastShutterFrame));
    }
    if (mLastShutterTimestamp && timestamp <= *mLastShutterTimestamp) {
        report(Rule::kShutterOrder, frameNumber,
               "shutter timestamp " + std::to_string(timestamp) + " not after the previous " +
                       std::to_string(*mLastShutterTimestamp));
    } else if (mLastShutterTimestamp &&
               static_cast<double>(timestamp - *mLastShutterTimestamp) <
                       static_cast<double>(mMinFrameDurationNs) * (1 - kShutterSpacingTolerance)) {
        report(Rule::kShutterSpacing, frameNumber,
               "shutter " + std::to_string(timestamp - *mLastShutterTimestamp) +
                       " ns after the previous one, minimum frame duration " +
                       std::to_string(mMinFrameDurationNs) + " ns");
    }
    if (mReadoutRule == ReadoutRule::kNotBeforeShutter && readoutTimestamp < timestamp) {
        report(Rule::kReadoutTimestamp, frameNumber,
               "readout timestamp " + std::to_string(readoutTimestamp) +
                       " before the shutter timestamp " + std::to_string(timestamp));
    } else if (mReadoutRule == ReadoutRule::kZero && readoutTimestamp != 0) {
        report(Rule::kReadoutUnsupported, frameNumber,
               "readout timestamp " + std::to_string(readoutTimestamp) +
                       " from a module that has none");
    }
    if (frame->resultBeforeShutter) {
        report(Rule::kShutterBeforeResult, frameNumber,
               "shutter after metadata or a filled buffer of the frame");
    }
    if (frame->sensorTimestamp && *frame->sensorTimestamp != timestamp) {
        report(Rule::kSensorTimestamp, frameNumber,
               "ANDROID_SENSOR_TIMESTAMP " + std::to_string(*frame->sensorTimestamp) +
                       " differs from the shutter timestamp " + std::to_string(timestamp));
    }
    frame->shutter = true;
    frame->shutterTimestamp = timestamp;
    frame->record.shutterTimestamp = timestamp;
    frame->record.readoutTimestamp = readoutTimestamp;
    frame->record.shutterLatencyNs = (when - frame->submitted).count();
    mLastShutterFrame = frameNumber;
    mLastShutterTimestamp = timestamp;
    if (!mSpanClosed) {
        if (mSpan.shutters++ == 0) mSpan.first = timestamp;
        mSpan.last = timestamp;
    }
    mShutterLatency.add(when - frame->submitted);
}

void ProtocolChecker::error(int32_t frameNumber, int32_t streamId, int32_t errorCode) {
    const char* name = errorName(errorCode);
    switch (static_cast<NotifyError>(errorCode)) {
        case NotifyError::kDevice:
            ++mCounters.errorDevice;
            report(Rule::kNoDeviceErrors, std::nullopt, "unexpected ERROR_DEVICE");
            return;
        case NotifyError::kRequest:
            ++mCounters.errorRequest;
            break;
        case NotifyError::kResult:
            ++mCounters.errorResult;
            break;
        case NotifyError::kBuffer:
            ++mCounters.errorBuffer;
            break;
        default:
            report(Rule::kErrorConsistency, frameNumber,
                   "unknown error code " + std::to_string(errorCode));
            return;
    }

    Frame* frame = findFrame(frameNumber, name);
    if (frame == nullptr) return;
    std::string subject = name;
    if (errorCode != static_cast<int32_t>(NotifyError::kRequest) && streamId != -1) {
        subject += " for " + streamText(streamId);
    }
    if (!frame->errorsExpected) report(Rule::kNoDeviceErrors, frameNumber, "unexpected " + subject);

    switch (static_cast<NotifyError>(errorCode)) {
        case NotifyError::kRequest: {
            bool filledBuffer = std::any_of(frame->slots.begin(), frame->slots.end(),
                                            [](const auto& slot) { return slot.second.filled; });
            if (frame->errorRequest) {
                report(Rule::kErrorConsistency, frameNumber, "second ERROR_REQUEST");
            } else if (frame->shutter) {
                report(Rule::kErrorConsistency, frameNumber, "ERROR_REQUEST after the shutter");
            } else if (!frame->partials.empty()) {
                report(Rule::kErrorConsistency, frameNumber, "ERROR_REQUEST after metadata");
            } else if (filledBuffer) {
                report(Rule::kErrorConsistency, frameNumber, "ERROR_REQUEST after a filled buffer");
            }
            frame->errorRequest = true;
            break;
        }
        case NotifyError::kResult: {
            if (streamId == -1) {
                if (frame->finalMetadata) {
                    report(Rule::kErrorConsistency, frameNumber,
                           "ERROR_RESULT after the final metadata");
                }
                frame->errorResult = true;
                break;
            }
            auto stream = mStreams.find(streamId);
            if (stream == mStreams.end() || stream->second.empty()) {
                report(Rule::kErrorConsistency, frameNumber,
                       subject + ", which is no physical camera's stream");
            } else {
                frame->lostPhysicalResults.insert(stream->second);
            }
            break;
        }
        case NotifyError::kBuffer: {
            auto slot = frame->slots.find(streamId);
            if (slot == frame->slots.end()) {
                report(Rule::kErrorConsistency, frameNumber,
                       subject + ", which the request did not ask for");
            } else if (slot->second.errorNotified) {
                report(Rule::kErrorConsistency, frameNumber, "second " + subject);
            } else if (slot->second.filled) {
                report(Rule::kErrorConsistency, frameNumber,
                       subject + " after that buffer came back filled");
            } else {
                slot->second.errorNotified = true;
            }
            break;
        }
        case NotifyError::kDevice:
            break;
    }
    completeIfDone(frameNumber);
}

std::vector<int64_t> ProtocolChecker::result(const ResultReport& report,
                                             const BufferInspector& inspect,
                                             Clock::time_point when) {
    ++mCounters.resultCalls;
    const int32_t frameNumber = report.frameNumber;
    std::vector<int64_t> released;
    Frame* frame = findFrame(frameNumber, "result");
    if (frame == nullptr) {
        // Buffers that the buffer manager handed out are still known by their ids.
        for (const auto& buffer : report.buffers) {
            if (mHalBufferManager && buffer.bufferId != 0) {
                int64_t id = takeBackHeld(buffer.streamId, buffer.bufferId, "result");
                if (id != 0) released.push_back(id);
            }
        }
        return released;
    }

    if (!report.hasMetadata && report.buffers.empty() && !report.hasInputBuffer) {
        this->report(Rule::kResultNotEmpty, frameNumber, "result without metadata or buffers");
    }
    const int32_t partial = report.partialResult;
    if (report.hasMetadata) {
        if (frame->errorRequest) {
            this->report(Rule::kErrorConsistency, frameNumber, "metadata after ERROR_REQUEST");
        }
        if (!frame->shutter && !frame->errorRequest) frame->resultBeforeShutter = true;
        if (partial < 1 || partial > mPartialResultCount) {
            this->report(Rule::kPartialResult, frameNumber,
                         "partial result " + std::to_string(partial) + " outside 1.." +
                                 std::to_string(mPartialResultCount));
        } else if (partial == mPartialResultCount) {
            checkFinalMetadata(frameNumber, *frame, report, when);
        } else if (!frame->partials.insert(partial).second) {
            this->report(Rule::kPartialResult, frameNumber,
                         "partial result " + std::to_string(partial) + " twice");
        } else {
            ++mCounters.partialResults;
        }
        if (partial != mPartialResultCount && !report.physicalCameraIds.empty()) {
            this->report(Rule::kPhysicalMetadata, frameNumber,
                         "physical metadata in partial result " + std::to_string(partial));
        }
    } else {
        if (partial != 0) {
            this->report(Rule::kPartialResult, frameNumber,
                         "partial result " + std::to_string(partial) + " without metadata");
        }
        if (!report.physicalCameraIds.empty()) {
            this->report(Rule::kPhysicalMetadata, frameNumber,
                         "physical metadata without result metadata");
        }
    }

    for (const auto& buffer : report.buffers) {
        int64_t id = returnBuffer(frameNumber, *frame, buffer);
        if (id == 0) continue;
        released.push_back(id);
        if (buffer.filled && inspect) {
            ++mCounters.patternsChecked;
            if (auto problem = inspect(id, buffer.streamId, frameNumber)) {
                this->report(problem->first, frameNumber,
                             streamText(buffer.streamId) + ": " + problem->second);
            }
        }
    }
    completeIfDone(frameNumber);
    return released;
}

void ProtocolChecker::checkFinalMetadata(int32_t frameNumber, Frame& frame,
                                         const ResultReport& report, Clock::time_point when) {
    if (frame.finalMetadata) {
        this->report(Rule::kFinalMetadataOnce, frameNumber, "second final metadata");
        return;
    }
    frame.finalMetadata = true;
    frame.record.finalLatencyNs = (when - frame.submitted).count();
    frame.partials.insert(report.partialResult);
    ++mCounters.finalResults;
    mFinalLatency.add(when - frame.submitted);
    if (frame.errorResult) {
        this->report(Rule::kErrorConsistency, frameNumber, "final metadata after ERROR_RESULT");
    }
    if (mLastFinalFrame && frameNumber < *mLastFinalFrame) {
        this->report(Rule::kResultOrder, frameNumber,
                     "final metadata after that of frame " + std::to_string(*mLastFinalFrame));
    }
    mLastFinalFrame = std::max(frameNumber, mLastFinalFrame.value_or(frameNumber));

    if (!report.metadataReadable) {
        // Already reported as unreadable; its contents cannot be checked.
    } else if (!report.sensorTimestamp) {
        this->report(Rule::kSensorTimestamp, frameNumber,
                     "final metadata without ANDROID_SENSOR_TIMESTAMP");
    } else if (frame.shutter && *report.sensorTimestamp != frame.shutterTimestamp) {
        this->report(Rule::kSensorTimestamp, frameNumber,
                     "ANDROID_SENSOR_TIMESTAMP " + std::to_string(*report.sensorTimestamp) +
                             " differs from the shutter timestamp " +
                             std::to_string(frame.shutterTimestamp));
    }
    frame.sensorTimestamp = report.sensorTimestamp;

    mCounters.physicalMetadata += static_cast<int64_t>(report.physicalCameraIds.size());
    std::multiset<std::string> received(report.physicalCameraIds.begin(),
                                        report.physicalCameraIds.end());
    for (const auto& id : frame.physicalCameraIds) {
        size_t count = received.count(id);
        if (count == 0 && frame.lostPhysicalResults.count(id) == 0) {
            this->report(Rule::kPhysicalMetadata, frameNumber,
                         "no metadata of physical camera " + id);
        } else if (count > 1) {
            this->report(Rule::kPhysicalMetadata, frameNumber,
                         std::to_string(count) + " metadata of physical camera " + id);
        }
    }
    for (const auto& id : std::set<std::string>(received.begin(), received.end())) {
        if (frame.physicalCameraIds.count(id) == 0) {
            this->report(Rule::kPhysicalMetadata, frameNumber,
                         "metadata of physical camera " + id + ", which was not requested");
        }
    }
}

int64_t ProtocolChecker::returnBuffer(int32_t frameNumber, Frame& frame,
                                      const ReturnedBuffer& buffer) {
    const std::string stream = streamText(buffer.streamId);
    if (buffer.releaseFenceFds > 1) {
        report(Rule::kReleaseFence, frameNumber,
               stream + ": release fence with " + std::to_string(buffer.releaseFenceFds) + " fds");
    } else if (buffer.releaseFenceFds == 1 && !buffer.releaseFenceSignalled) {
        report(Rule::kReleaseFence, frameNumber, stream + ": release fence never signalled");
    }

    auto slot = frame.slots.find(buffer.streamId);
    if (slot == frame.slots.end()) {
        report(Rule::kBufferReturnedOnce, frameNumber,
               "buffer of " + stream + ", which the request did not ask for");
        return mHalBufferManager && buffer.bufferId != 0
                       ? takeBackHeld(buffer.streamId, buffer.bufferId, "result")
                       : 0;
    }
    if (slot->second.returned) {
        report(Rule::kBufferReturnedOnce, frameNumber, "second buffer of " + stream);
        return 0;
    }

    int64_t id = 0;
    if (!mHalBufferManager) {
        id = slot->second.bufferId;
        if (buffer.bufferId != 0 && buffer.bufferId != id) {
            report(Rule::kBufferId, frameNumber,
                   "buffer of " + stream + " came back as id " + std::to_string(buffer.bufferId) +
                           ", sent as id " + std::to_string(id));
        }
    } else if (buffer.bufferId != 0) {
        id = takeBackHeld(buffer.streamId, buffer.bufferId, "result");
    } else if (buffer.filled) {
        report(Rule::kBufferId, frameNumber, "filled buffer of " + stream + " came back without id");
    }

    slot->second.returned = true;
    slot->second.filled = buffer.filled;
    auto last = mLastBufferFrame.find(buffer.streamId);
    if (last != mLastBufferFrame.end() && frameNumber < last->second) {
        report(Rule::kBufferOrder, frameNumber,
               "buffer of " + stream + " after that of frame " + std::to_string(last->second));
    }
    mLastBufferFrame[buffer.streamId] =
            std::max(frameNumber, last == mLastBufferFrame.end() ? frameNumber : last->second);
    if (buffer.filled) {
        ++mCounters.buffersFilled;
        if (frame.errorRequest) {
            report(Rule::kErrorConsistency, frameNumber, "filled buffer after ERROR_REQUEST");
        } else if (slot->second.errorNotified) {
            report(Rule::kErrorConsistency, frameNumber,
                   "buffer of " + stream + " came back filled after ERROR_BUFFER");
        }
        if (!frame.shutter && !frame.errorRequest) frame.resultBeforeShutter = true;
    } else {
        ++mCounters.buffersError;
    }
    return id;
}

void ProtocolChecker::buffersHandedOut(int32_t streamId, const std::vector<int64_t>& bufferIds) {
    for (int64_t id : bufferIds) mHeldBuffers[id] = streamId;
    mCounters.buffersHandedOut += static_cast<int64_t>(bufferIds.size());
}

std::vector<int64_t> ProtocolChecker::buffersReturned(const std::vector<ReturnedBuffer>& buffers) {
    std::vector<int64_t> released;
    for (const auto& buffer : buffers) {
        ++mCounters.buffersReturnedUnused;
        if (buffer.releaseFenceFds > 1) {
            report(Rule::kReleaseFence, std::nullopt,
                   "returned buffer " + std::to_string(buffer.bufferId) + ": release fence with " +
                           std::to_string(buffer.releaseFenceFds) + " fds");
        }
        if (buffer.bufferId == 0) {
            report(Rule::kBufferId, std::nullopt,
                   "buffer of " + streamText(buffer.streamId) + " returned without id");
            continue;
        }
        int64_t id = takeBackHeld(buffer.streamId, buffer.bufferId, "returnStreamBuffers");
        if (id != 0) released.push_back(id);
    }
    return released;
}

int64_t ProtocolChecker::takeBackHeld(int32_t streamId, int64_t bufferId, const std::string& where) {
    auto held = mHeldBuffers.find(bufferId);
    if (held == mHeldBuffers.end()) {
        bool before = mCameBack.count(bufferId) != 0;
        report(before ? Rule::kBufferReturnedOnce : Rule::kBufferId, std::nullopt,
               where + ": buffer " + std::to_string(bufferId) + " of " + streamText(streamId) +
                       (before ? " came back a second time" : " was never handed out"));
        return 0;
    }
    mCameBack.insert(bufferId);
    if (held->second != streamId) {
        report(Rule::kBufferId, std::nullopt,
               where + ": buffer " + std::to_string(bufferId) + " of " + streamText(held->second) +
                       " came back as one of " + streamText(streamId));
    }
    mHeldBuffers.erase(held);
    return bufferId;
}

size_t ProtocolChecker::buffersHeld(int32_t streamId) const {
    return static_cast<size_t>(
            std::count_if(mHeldBuffers.begin(), mHeldBuffers.end(),
                          [&](const auto& held) { return held.second == streamId; }));
}

void ProtocolChecker::completeIfDone(int32_t frameNumber) {
    auto it = mFrames.find(frameNumber);
    if (it == mFrames.end()) return;
    const Frame& frame = it->second;
    bool metadataDone = frame.finalMetadata || frame.errorRequest || frame.errorResult;
    bool buffersDone = std::all_of(frame.slots.begin(), frame.slots.end(),
                                   [](const auto& slot) { return slot.second.returned; });
    if (!metadataDone || !buffersDone) return;

    if (!frame.shutter && !frame.errorRequest)
        report(Rule::kShutterOnce, frameNumber, "no shutter");
    for (const auto& [streamId, slot] : frame.slots) {
        if (!slot.filled && !slot.errorNotified && !frame.errorRequest) {
            report(Rule::kErrorConsistency, frameNumber,
                   "buffer of " + streamText(streamId) +
                           " came back as ERROR without ERROR_BUFFER or ERROR_REQUEST");
        }
    }
    ++mCounters.requestsCompleted;
    if (mRecordFrames) {
        FrameRecord record = frame.record;
        record.frameNumber = frameNumber;
        record.errors = frame.errorRequest || frame.errorResult ||
                        std::any_of(frame.slots.begin(), frame.slots.end(),
                                    [](const auto& slot) { return slot.second.errorNotified; });
        mFrameRecords.push_back(record);
    }
    mFrames.erase(it);
}

std::string ProtocolChecker::missingParts(const Frame& frame) {
    std::string missing;
    auto add = [&](const std::string& part) { missing += (missing.empty() ? "" : ", ") + part; };
    if (!frame.shutter && !frame.errorRequest) add("shutter");
    if (!frame.finalMetadata && !frame.errorRequest && !frame.errorResult) add("final metadata");
    for (const auto& [streamId, slot] : frame.slots) {
        if (!slot.returned) add("buffer of " + streamText(streamId));
    }
    return missing;
}

void ProtocolChecker::checkNothingInFlight(const std::string& after) {
    for (const auto& [frameNumber, frame] : mFrames) {
        report(Rule::kFlushCompletes, frameNumber,
               "still in flight after " + after + " returned (missing " + missingParts(frame) + ")");
    }
}

void ProtocolChecker::finish() {
    for (const auto& [frameNumber, frame] : mFrames) {
        report(Rule::kRequestCompletes, frameNumber,
               "never completed (missing " + missingParts(frame) + ")");
    }
    mFrames.clear();
    for (const auto& [bufferId, streamId] : mHeldBuffers) {
        report(Rule::kBufferReturnedOnce, std::nullopt,
               "buffer " + std::to_string(bufferId) + " of " + streamText(streamId) +
                       " was handed to the device and never came back");
    }
    mHeldBuffers.clear();
}

void ProtocolChecker::report(Rule rule, std::optional<int32_t> frameNumber, std::string what) {
    mViolations.push_back(Violation{rule, frameNumber, std::move(what)});
}

std::optional<ShutterSpan> ProtocolChecker::shutterSpan() const {
    if (mSpan.shutters == 0) return std::nullopt;
    return mSpan;
}

}  // namespace camera_harness
