// Faults from outside over many calls: a framework that fails one call in ten, a framework that
// dies while results arrive, one that never drains the result queue, and sessions opened, used
// and closed over and over. Nothing may be lost, leaked or left open.
#include <aidl/android/hardware/camera/device/CaptureRequest.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <random>
#include <thread>
#include <vector>

#include "CallbackTestSupport.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::CaptureRequest;
using aidl::android::hardware::camera::device::HalStream;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamConfiguration;
using ::testing::_;
using testing::bytesOf;
using testing::DeviceBufferRequest;
using testing::makeMetadata;
using testing::MetadataPtr;
using Framework = testing::RecordingCameraDeviceCallback;

class FaultTest : public testing::BridgeTest {};

// Every buffer the framework hands out comes back exactly once, in a result or a return, whether
// or not the call that carries it fails; failed buffer requests import nothing.
TEST_F(FaultTest, FrameworkFailingOneCallInTenLosesNoBufferAndLeaksNoFd) {
    constexpr int kRounds = 2000;
    std::mt19937 random(14);
    std::bernoulli_distribution failing(0.1);
    auto status = [&] {
        return failing(random) ? testing::deadFramework() : ndk::ScopedAStatus::ok();
    };
    int64_t lastId = 0;
    std::map<int64_t, int> handedOut;
    mFramework->setBufferRequestHandler([&](const std::vector<BufferRequest>& requests,
                                            std::vector<StreamBufferRet>* answers,
                                            BufferRequestStatus* overall) {
        *overall = BufferRequestStatus::OK;
        ndk::ScopedAStatus result = status();
        for (const BufferRequest& request : requests) {
            std::vector<StreamBuffer> buffers;
            buffers.push_back(testing::frameworkBuffer(request.streamId, ++lastId));
            if (result.isOk()) handedOut[lastId] = 0;
            answers->push_back(testing::frameworkAnswer(request.streamId, std::move(buffers)));
        }
        return result;
    });
    mFramework->setProcessCaptureResultStatus(status);
    mFramework->setReturnStreamBuffersStatus(status);
    mFramework->setNotifyStatus(status);

    for (int round = 0; round < kRounds; ++round) {
        // A configuration refills the credit that failed framework calls keep taken.
        configure({{5, 1}});
        DeviceBufferRequest request({{stream(5), 1}});
        if (request.send(ops()) != CAMERA3_BUF_REQ_OK) continue;
        camera3_notify_msg shutter{};
        shutter.type = CAMERA3_MSG_SHUTTER;
        shutter.message.shutter.frame_number = static_cast<uint32_t>(round);
        ops()->notify(ops(), &shutter);
        if (round % 2 == 0) {
            const camera3_stream_buffer* returned[] = {&request.records[0].output_buffers[0]};
            ops()->return_stream_buffers(ops(), 1, returned);
        } else {
            camera3_capture_result result{};
            result.frame_number = static_cast<uint32_t>(round);
            result.num_output_buffers = 1;
            result.output_buffers = request.records[0].output_buffers;
            ops()->process_capture_result(ops(), &result);
        }
        if (round % 100 == 0) clearLogs();
    }

    for (const auto& returned : mFramework->returnedBuffers()) {
        for (const auto& buffer : returned) ++handedOut[buffer.bufferId];
    }
    for (const auto& result : mFramework->results()) {
        for (const auto& buffer : result.outputBuffers) ++handedOut[buffer.bufferId];
    }
    EXPECT_GT(handedOut.size(), static_cast<size_t>(kRounds * 8 / 10));
    for (const auto& [bufferId, times] : handedOut) {
        EXPECT_EQ(1, times) << "buffer " << bufferId;
    }
}

// Once the queue is full, results carry their metadata inline; what went into the queue is still
// there, in order, for a framework that reads it later.
TEST_F(FaultTest, ResultsToAFrameworkThatNeverDrainsKeepTheirMetadata) {
    auto idle = ndk::SharedRefBase::make<Framework>();
    auto bridge = Aidl2LegacyCameraDeviceCallback::create({3, idle});
    constexpr int kResults = 40;
    constexpr size_t kSpare = 1 << 20;  // about 16 results fill the queue
    std::vector<std::vector<uint8_t>> sent;
    for (int frame = 0; frame < kResults; ++frame) {
        MetadataPtr metadata = makeMetadata(frame, kSpare);
        sent.push_back(bytesOf(metadata.get()));
        camera3_capture_result result{};
        result.frame_number = static_cast<uint32_t>(frame);
        result.result = metadata.get();
        result.partial_result = 1;
        bridge->sProcessCaptureResult(bridge.get(), &result);
    }

    testing::ResultQueueDescriptor descriptor;
    bridge->getCaptureResultMetadataQueue(&descriptor);
    testing::ResultMetadataQueue reader(descriptor, false);
    const std::vector<Framework::RecordedResult> results = idle->results();
    ASSERT_EQ(static_cast<size_t>(kResults), results.size());
    int inline_ = 0;
    for (int frame = 0; frame < kResults; ++frame) {
        const Framework::RecordedMetadata& metadata = results[frame].metadata;
        if (metadata.fmqSize == 0) {
            ++inline_;
            EXPECT_EQ(sent[frame], metadata.bytes) << "frame " << frame;
            continue;
        }
        std::vector<uint8_t> bytes(static_cast<size_t>(metadata.fmqSize));
        ASSERT_TRUE(reader.read(reinterpret_cast<int8_t*>(bytes.data()), bytes.size()));
        EXPECT_EQ(sent[frame], bytes) << "frame " << frame;
    }
    EXPECT_GT(inline_, kResults / 2);
    EXPECT_EQ(0u, reader.availableToRead());
}

constexpr int kCycles = 1000;

class SessionFaultTest : public testing::LoggingTest {
protected:
    void SetUp() override { mOpenFds = testing::countOpenFds(); }
    void TearDown() override { EXPECT_EQ(mOpenFds, testing::countOpenFds()); }

    testing::ScriptableLegacyDevice mLegacy;
    size_t mOpenFds = 0;
};

// The device's result thread runs until the device is closed; the framework's death flushes and
// closes the session meanwhile, and every result sent reaches the framework.
TEST_F(SessionFaultTest, FrameworkDyingWhileResultsArriveLosesNone) {
    auto framework = ndk::SharedRefBase::make<Framework>();
    auto bridge = Aidl2LegacyCameraDeviceCallback::create({3, framework});
    testing::ResultQueueDescriptor descriptor;
    bridge->getCaptureResultMetadataQueue(&descriptor);
    framework->attachResultQueue(descriptor);
    testing::Session::ResultInfo info;
    auto session = testing::Session::create({3, mLegacy.device(), bridge}, info);
    ASSERT_NE(nullptr, session);
    ASSERT_EQ(0, session->open(framework));

    std::atomic<bool> stop = false;
    std::atomic<uint32_t> sent = 0;
    std::thread device([&] {
        const camera3_callback_ops* ops = mLegacy.callbackOps();
        MetadataPtr metadata = makeMetadata(1);
        while (!stop) {
            camera3_notify_msg shutter{};
            shutter.type = CAMERA3_MSG_SHUTTER;
            shutter.message.shutter.frame_number = sent;
            ops->notify(ops, &shutter);
            camera3_capture_result result{};
            result.frame_number = sent;
            result.result = metadata.get();
            result.partial_result = 1;
            ops->process_capture_result(ops, &result);
            ++sent;
        }
    });
    ON_CALL(mLegacy.mock(), close()).WillByDefault([&] {
        stop = true;
        device.join();
        return 0;
    });
    while (sent < 50) std::this_thread::yield();
    session->serviceDied();

    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_EQ(sent.load(), framework->results().size());
    EXPECT_EQ(sent.load(), framework->notifications().size());
    for (const auto& result : framework->results()) EXPECT_FALSE(result.metadata.readFailed);
}

// Open, configure, one capture with a new buffer, flush and close, again and again over one legacy
// device: every session closes it once, every capture comes back, and no fd stays open.
TEST_F(SessionFaultTest, OpenCaptureFlushCloseCyclesReleaseEverything) {
    size_t results = 0;
    for (int cycle = 0; cycle < kCycles; ++cycle) {
        auto framework = ndk::SharedRefBase::make<Framework>();
        auto bridge = Aidl2LegacyCameraDeviceCallback::create({3, framework});
        testing::Session::ResultInfo info;
        auto session = testing::Session::create({3, mLegacy.device(), bridge}, info);
        ASSERT_NE(nullptr, session);
        ASSERT_EQ(0, session->open(framework));
        StreamConfiguration configuration;
        configuration.streams.push_back(testing::makeStream(1));
        std::vector<HalStream> halStreams;
        ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());

        ON_CALL(mLegacy.mock(), processCaptureRequest(_))
                .WillByDefault([&](camera3_capture_request_t* request) {
                    const camera3_callback_ops* ops = mLegacy.callbackOps();
                    camera3_stream_buffer buffer = request->output_buffers[0];
                    buffer.acquire_fence = -1;
                    buffer.release_fence = testing::makeFence();
                    camera3_capture_result result{};
                    result.frame_number = request->frame_number;
                    result.num_output_buffers = 1;
                    result.output_buffers = &buffer;
                    ops->process_capture_result(ops, &result);
                    return 0;
                });
        std::vector<CaptureRequest> requests(1);
        requests[0].frameNumber = cycle;
        MetadataPtr settings = makeMetadata(cycle);
        requests[0].settings = testing::toAidl(settings.get());
        StreamBuffer& buffer = requests[0].outputBuffers.emplace_back();
        buffer.streamId = 1;
        buffer.bufferId = 1;
        buffer.buffer.fds.emplace_back(testing::makeFence());
        buffer.acquireFence.fds.emplace_back(testing::makeFence());
        int32_t processed = 0;
        ASSERT_TRUE(session->processCaptureRequest(requests, {}, &processed).isOk());
        EXPECT_EQ(1, processed);
        EXPECT_TRUE(session->flush().isOk());
        EXPECT_TRUE(session->close().isOk());
        mLegacy.takeRequests();
        results += framework->results().size();
        clearLogs();
    }
    EXPECT_EQ(kCycles, mLegacy.closeCount());
    EXPECT_EQ(static_cast<size_t>(kCycles), results);
}

}  // namespace
}  // namespace kovo::aidl2legacy
