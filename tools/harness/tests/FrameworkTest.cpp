// The framework side as the adapter meets it: FrameworkState with its pattern checks and buffer
// pool, and FrameworkCallback reading results from the result queue and serving the HAL buffer
// manager, driven here with the records a device would send.

#include <aidl/android/hardware/camera/device/BufferRequest.h>
#include <gtest/gtest.h>
#include <hardware/camera3.h>
#include <sys/eventfd.h>
#include <system/graphics.h>
#include <virtual_camera/HostBuffer.h>
#include <virtual_camera/Pattern.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <set>

#include "FrameworkCallback.h"
#include "FrameworkState.h"
#include "Metadata.h"

namespace camera_harness {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::BufferStatus;
using aidl::android::hardware::camera::device::CaptureResult;
using aidl::android::hardware::camera::device::ErrorCode;
using aidl::android::hardware::camera::device::ErrorMsg;
using aidl::android::hardware::camera::device::NotifyMsg;
using aidl::android::hardware::camera::device::PhysicalCameraMetadata;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamBuffersVal;
using HalQueue =
        android::AidlMessageQueue<int8_t, aidl::android::hardware::common::fmq::SynchronizedReadWrite>;

constexpr std::chrono::milliseconds kNoWait{0};
constexpr int64_t kTimestamp = 123456789;
const StreamDescription kPreview{320, 240, HAL_PIXEL_FORMAT_YCBCR_420_888, ""};
const StreamDescription kPhysical{176, 144, HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, "2"};

size_t sizeOf(const StreamDescription& description) {
    return virtual_camera::hostBufferSize(description.format, description.width, description.height,
                                          0);
}

virtual_camera::PatternStream patternOf(const StreamDescription& description) {
    return {static_cast<uint32_t>(description.width), static_cast<uint32_t>(description.height),
            description.format, description.physicalCameraId};
}

std::vector<uint8_t> metadataWithTimestamp(int64_t timestamp) {
    MetadataPtr metadata = copyMetadata(nullptr, 1, 8);
    setEntry(metadata.get(), ANDROID_SENSOR_TIMESTAMP, &timestamp, 1);
    return toBytes(metadata.get());
}

std::set<std::string> rulesBroken(const FrameworkState& state) {
    std::set<std::string> rules;
    for (const auto& violation : state.violations()) rules.insert(ruleName(violation.rule));
    return rules;
}

// One frame over a preview stream and a physical camera's stream, each with maxBuffers 2.
class FrameworkTest : public ::testing::Test {
protected:
    explicit FrameworkTest(bool halBufferManager = false)
        : state(std::make_shared<FrameworkState>(1, halBufferManager, BufferLayout::kSingleFd,
                                                 true)),
          callback(ndk::SharedRefBase::make<FrameworkCallback>(state, nullptr)) {
        state->configure({{0, kPreview, sizeOf(kPreview), 2}, {1, kPhysical, sizeOf(kPhysical), 2}});
    }

    // Submits frame `frame` with a buffer of each stream; returns the leases.
    std::vector<BufferPool::Lease> submit(int32_t frame) {
        std::vector<BufferPool::Lease> leases;
        SubmittedRequest request{frame, {}, {}};
        for (int32_t stream : {0, 1}) {
            leases.push_back(*state->acquireBuffer(stream, kNoWait));
            request.buffers.push_back({stream, leases.back().bufferId});
        }
        state->requestSubmitted(request, Clock::now());
        return leases;
    }

    void shutter(int32_t frame) {
        callback->notify({NotifyMsg::make<NotifyMsg::shutter>(ShutterMsg{frame, kTimestamp, 0})});
    }

    // A final result with its metadata inline and both buffers filled.
    static CaptureResult finalResult(int32_t frame) {
        CaptureResult result;
        result.frameNumber = frame;
        result.partialResult = 1;
        result.result.metadata = metadataWithTimestamp(kTimestamp);
        result.inputBuffer.streamId = -1;
        for (int32_t stream : {0, 1}) {
            StreamBuffer buffer;
            buffer.streamId = stream;
            buffer.status = BufferStatus::OK;
            result.outputBuffers.push_back(std::move(buffer));
        }
        PhysicalCameraMetadata physical;
        physical.physicalCameraId = "2";
        physical.metadata.metadata = metadataWithTimestamp(kTimestamp);
        result.physicalCameraMetadata.push_back(std::move(physical));
        return result;
    }

    void deliver(CaptureResult result) {
        std::vector<CaptureResult> results;
        results.push_back(std::move(result));
        callback->processCaptureResult(results);
    }

    std::shared_ptr<FrameworkState> state;
    std::shared_ptr<FrameworkCallback> callback;
};

struct Jpeg {
    const char* name;
    std::function<void(uint8_t* data, size_t size)> write;
    const char* problem;  // nullptr: a JPEG
};

class JpegCheckTest : public ::testing::TestWithParam<Jpeg> {};

// A BLOB buffer must hold a JPEG, whatever module wrote it: patterns are not checked here.
TEST_P(JpegCheckTest, FilledBlobBuffersHoldAJpeg) {
    constexpr size_t kSize = 8192;
    const StreamDescription blob{640, 480, HAL_PIXEL_FORMAT_BLOB, ""};
    auto state = std::make_shared<FrameworkState>(1, false, BufferLayout::kSingleFd, false);
    auto callback = ndk::SharedRefBase::make<FrameworkCallback>(state, nullptr);
    state->configure({{0, blob, kSize, 2}});
    auto lease = state->acquireBuffer(0, kNoWait);
    ASSERT_TRUE(lease);
    state->requestSubmitted({0, {{0, lease->bufferId}}, {}}, Clock::now());
    {
        auto mapping = virtual_camera::MappedBuffer::map(lease->handle, true);
        ASSERT_TRUE(mapping);
        GetParam().write(static_cast<uint8_t*>(mapping->data()), mapping->size());
    }
    callback->notify({NotifyMsg::make<NotifyMsg::shutter>(ShutterMsg{0, kTimestamp, 0})});
    CaptureResult result;
    result.partialResult = 1;
    result.result.metadata = metadataWithTimestamp(kTimestamp);
    result.inputBuffer.streamId = -1;
    StreamBuffer buffer;
    buffer.status = BufferStatus::OK;
    result.outputBuffers.push_back(std::move(buffer));
    std::vector<CaptureResult> results;
    results.push_back(std::move(result));
    callback->processCaptureResult(results);

    auto violations = state->violations();
    if (GetParam().problem == nullptr) {
        EXPECT_TRUE(violations.empty()) << toString(violations.front());
    } else {
        ASSERT_EQ(violations.size(), 1u);
        EXPECT_EQ(violations[0].rule, Rule::kJpegBlob);
        EXPECT_NE(violations[0].what.find(GetParam().problem), std::string::npos)
                << violations[0].what;
    }
}

// SOI at 0, EOI right before a trailer at the end, trailer size `jpegSize`.
void writeJpeg(uint8_t* data, size_t size, uint32_t jpegSize, uint16_t id = CAMERA3_JPEG_BLOB_ID) {
    data[0] = 0xFF;
    data[1] = 0xD8;
    if (jpegSize >= 2 && jpegSize <= size) {
        data[jpegSize - 2] = 0xFF;
        data[jpegSize - 1] = 0xD9;
    }
    camera3_jpeg_blob_t blob{id, jpegSize};
    memcpy(data + size - sizeof(blob), &blob, sizeof(blob));
}

INSTANTIATE_TEST_SUITE_P(
        Buffers, JpegCheckTest,
        ::testing::Values(
                Jpeg{"Whole", [](uint8_t* d, size_t n) { writeJpeg(d, n, 1000); }, nullptr},
                Jpeg{"UpToTheTrailer",
                     [](uint8_t* d, size_t n) {
                         writeJpeg(d, n, static_cast<uint32_t>(n - sizeof(camera3_jpeg_blob_t)));
                     },
                     nullptr},
                Jpeg{"NoStartOfImage",
                     [](uint8_t* d, size_t n) {
                         writeJpeg(d, n, 1000);
                         d[1] = 0;
                     },
                     "no start of image"},
                Jpeg{"NoEndOfImage",
                     [](uint8_t* d, size_t n) {
                         writeJpeg(d, n, 1000);
                         d[999] = 0;
                     },
                     "no end of image"},
                Jpeg{"WrongTrailerId", [](uint8_t* d, size_t n) { writeJpeg(d, n, 1000, 0x1234); },
                     "trailer id"},
                Jpeg{"SizeOverTheTrailer",
                     [](uint8_t* d, size_t n) { writeJpeg(d, n, static_cast<uint32_t>(n)); },
                     "trailer size"},
                Jpeg{"Untouched", [](uint8_t*, size_t) {}, "trailer id"}),
        [](const auto& info) { return std::string(info.param.name); });

struct Written {
    const char* name;
    int32_t frameOffset;  // pattern of another frame
    bool logicalPatternInPhysicalBuffer;
    bool written;
    const char* problem;  // nullptr: no rule broken
};

class PatternCheckTest : public FrameworkTest, public ::testing::WithParamInterface<Written> {};

TEST_P(PatternCheckTest, FilledBuffersMustHoldTheirFramesPattern) {
    const Written& written = GetParam();
    constexpr int32_t kFrame = 5;
    auto leases = submit(kFrame);
    if (written.written) {
        for (size_t i = 0; i < leases.size(); ++i) {
            StreamDescription description = i == 0 ? kPreview : kPhysical;
            if (i == 1 && written.logicalPatternInPhysicalBuffer)
                description.physicalCameraId.clear();
            auto mapping = virtual_camera::MappedBuffer::map(leases[i].handle, true);
            ASSERT_TRUE(mapping);
            virtual_camera::writePattern(mapping->data(), mapping->size(),
                                         kFrame + (i == 1 ? written.frameOffset : 0),
                                         patternOf(description));
        }
    }
    shutter(kFrame);
    deliver(finalResult(kFrame));

    auto violations = state->violations();
    if (written.problem == nullptr) {
        EXPECT_TRUE(violations.empty()) << toString(violations[0]);
        return;
    }
    ASSERT_FALSE(violations.empty());
    EXPECT_EQ(rulesBroken(*state), std::set<std::string>{"buffer-pattern"});
    EXPECT_NE(toString(violations.back()).find(written.problem), std::string::npos)
            << toString(violations.back());
}

INSTANTIATE_TEST_SUITE_P(
        Buffers, PatternCheckTest,
        ::testing::Values(Written{"RightFrameAndStream", 0, false, true, nullptr},
                          Written{"OlderFrame", -1, false, true, "stream 1: buffer 2 holds frame 4"},
                          Written{"LogicalCamerasPattern", 0, true, true, "wrong stream"},
                          Written{"NeverWritten", 0, false, false, "untouched"}),
        [](const ::testing::TestParamInfo<Written>& info) { return info.param.name; });

TEST_F(FrameworkTest, BuffersCanBeTakenAgainOnlyOnceBack) {
    submit(0);
    submit(1);
    EXPECT_FALSE(state->acquireBuffer(0, kNoWait)) << "maxBuffers of the stream are out";
    shutter(0);
    // Both buffers of frame 0 come back as errors, each after an expected ERROR_BUFFER.
    state->expectErrorsInFlight();
    CaptureResult result = finalResult(0);
    for (auto& buffer : result.outputBuffers) {
        buffer.status = BufferStatus::ERROR;
        callback->notify({NotifyMsg::make<NotifyMsg::error>(
                ErrorMsg{0, buffer.streamId, ErrorCode::ERROR_BUFFER})});
    }
    deliver(std::move(result));
    EXPECT_TRUE(state->violations().empty()) << toString(state->violations()[0]);
    EXPECT_TRUE(state->acquireBuffer(0, kNoWait));
}

// Result metadata is read from the queue in the framework's order: the result's own, then each
// physical camera's that has a queued size; the others come inline.
TEST_F(FrameworkTest, ReadsResultMetadataFromTheQueueInOrder) {
    HalQueue halSide(4096);
    callback->setResultQueue(MetadataQueue::attach(halSide.dupeDesc()));
    std::vector<uint8_t> result = metadataWithTimestamp(kTimestamp);
    std::vector<uint8_t> physical = metadataWithTimestamp(kTimestamp + 1);
    ASSERT_TRUE(halSide.write(reinterpret_cast<const int8_t*>(result.data()), result.size()));
    ASSERT_TRUE(halSide.write(reinterpret_cast<const int8_t*>(physical.data()), physical.size()));

    auto leases = submit(0);
    for (size_t i = 0; i < leases.size(); ++i) {
        auto mapping = virtual_camera::MappedBuffer::map(leases[i].handle, true);
        virtual_camera::writePattern(mapping->data(), mapping->size(), 0,
                                     patternOf(i == 0 ? kPreview : kPhysical));
    }
    shutter(0);
    CaptureResult queued = finalResult(0);
    queued.result.metadata.clear();
    queued.fmqResultSize = static_cast<int64_t>(result.size());
    queued.physicalCameraMetadata[0].metadata.metadata.clear();
    queued.physicalCameraMetadata[0].fmqMetadataSize = static_cast<int64_t>(physical.size());
    deliver(std::move(queued));

    EXPECT_TRUE(state->violations().empty()) << toString(state->violations()[0]);
    EXPECT_EQ(state->snapshot().transport.resultMetadataQueued, 2);
    EXPECT_EQ(state->snapshot().transport.resultMetadataInline, 0);
    EXPECT_EQ(halSide.availableToRead(), 0u);
}

TEST_F(FrameworkTest, MetadataMissingFromTheQueueOrMalformedBreaksResultMetadata) {
    HalQueue halSide(4096);
    callback->setResultQueue(MetadataQueue::attach(halSide.dupeDesc()));
    submit(0);
    shutter(0);
    CaptureResult partial = finalResult(0);
    partial.outputBuffers.clear();
    partial.physicalCameraMetadata.clear();
    partial.result.metadata.clear();
    partial.fmqResultSize = 64;  // nothing was written
    deliver(std::move(partial));
    CaptureResult malformed = finalResult(0);
    malformed.result.metadata.assign(64, 0xff);
    deliver(std::move(malformed));

    auto violations = state->violations();
    ASSERT_FALSE(violations.empty());
    EXPECT_EQ(toString(violations[0]),
              "frame 0: could not read 64 bytes of metadata from the result queue (rule: "
              "result-metadata, adapter)");
    EXPECT_EQ(std::count_if(violations.begin(), violations.end(),
                            [](const Violation& v) { return v.rule == Rule::kResultMetadata; }),
              2);
}

TEST_F(FrameworkTest, ReleaseFencesAreWaitedOnInsideTheCall) {
    auto leases = submit(0);
    for (size_t i = 0; i < leases.size(); ++i) {
        auto mapping = virtual_camera::MappedBuffer::map(leases[i].handle, true);
        virtual_camera::writePattern(mapping->data(), mapping->size(), 0,
                                     patternOf(i == 0 ? kPreview : kPhysical));
    }
    shutter(0);
    CaptureResult result = finalResult(0);
    result.outputBuffers[0].releaseFence.fds.emplace_back(eventfd(1, EFD_CLOEXEC));
    result.outputBuffers[1].releaseFence.fds.emplace_back(eventfd(1, EFD_CLOEXEC));
    result.outputBuffers[1].releaseFence.fds.emplace_back(eventfd(1, EFD_CLOEXEC));
    deliver(std::move(result));
    EXPECT_EQ(rulesBroken(*state), std::set<std::string>{"release-fence"});
}

TEST_F(FrameworkTest, CallbacksAfterCloseBreakTheirRule) {
    state->markClosed();
    shutter(0);
    EXPECT_EQ(rulesBroken(*state), std::set<std::string>{"no-callback-after-close"});
}

class BufferManagerCallbackTest : public FrameworkTest {
protected:
    BufferManagerCallbackTest() : FrameworkTest(true) {}

    BufferRequestStatus request(std::vector<BufferRequest> requests,
                                std::vector<StreamBufferRet>* buffers) {
        BufferRequestStatus status = BufferRequestStatus::OK;
        EXPECT_TRUE(callback->requestStreamBuffers(requests, buffers, &status).isOk());
        return status;
    }
};

TEST_F(BufferManagerCallbackTest, HandsOutBuffersWithTheirHandleOnlyTheFirstTime) {
    std::vector<StreamBufferRet> buffers;
    ASSERT_EQ(request({{0, 2}}, &buffers), BufferRequestStatus::OK);
    ASSERT_EQ(buffers.size(), 1u);
    const auto& first = buffers[0].val.get<StreamBuffersVal::buffers>();
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].bufferId, 1);
    EXPECT_EQ(first[1].bufferId, 2);
    EXPECT_EQ(first[0].buffer.fds.size(), 1u);

    StreamBuffer back;
    back.streamId = 0;
    back.bufferId = 1;
    back.status = BufferStatus::ERROR;
    std::vector<StreamBuffer> returned;
    returned.push_back(std::move(back));
    callback->returnStreamBuffers(returned);

    std::vector<StreamBufferRet> again;
    ASSERT_EQ(request({{0, 1}}, &again), BufferRequestStatus::OK);
    const auto& reused = again[0].val.get<StreamBuffersVal::buffers>();
    ASSERT_EQ(reused.size(), 1u);
    EXPECT_EQ(reused[0].bufferId, 1);
    EXPECT_TRUE(reused[0].buffer.fds.empty());
    EXPECT_TRUE(state->violations().empty()) << toString(state->violations()[0]);
}

TEST_F(BufferManagerCallbackTest, AsksBeyondMaxBuffersOrForUnknownStreamsAreRefused) {
    std::vector<StreamBufferRet> buffers;
    EXPECT_EQ(request({{0, 2}, {1, 3}}, &buffers), BufferRequestStatus::FAILED_PARTIAL);
    ASSERT_EQ(buffers.size(), 2u);
    EXPECT_EQ(buffers[1].val.get<StreamBuffersVal::error>(),
              StreamBufferRequestError::MAX_BUFFER_EXCEEDED);

    std::vector<StreamBufferRet> unknown;
    EXPECT_EQ(request({{7, 1}}, &unknown), BufferRequestStatus::FAILED_ILLEGAL_ARGUMENTS);
    EXPECT_EQ(rulesBroken(*state), std::set<std::string>{"buffer-request"});
    EXPECT_EQ(state->violations().size(), 2u);
}

}  // namespace
}  // namespace camera_harness
