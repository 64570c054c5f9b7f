// The texts built only for a line that will be written: at every gate setting each line is
// either written byte for byte as the records print, to exactly the sinks the mode selects, or
// not written at all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "CallbackTestSupport.h"
#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::ShutterMsg;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRet;
using testing::DeviceBuffer;
using testing::DeviceBufferRequest;
using Callback = Aidl2LegacyCameraDeviceCallback;

struct Gate {
    uint32_t level;
    uint32_t mask;
    uint32_t mode;
    bool callbackInfo;
    bool callbackDebug;
    bool deviceInfo;
};

std::ostream& operator<<(std::ostream& out, const Gate& gate) {
    return out << "level " << gate.level << std::hex << " mask 0x" << gate.mask << " mode 0x"
               << gate.mode << std::dec;
}

constexpr Gate kGates[] = {
        {5, 0x187000, 3, true, true, true},    {5, 0x187000, 1, true, true, true},
        {5, 0x187000, 2, true, true, true},    {5, 0x187000, 8, true, true, true},
        {5, 0x187000, 0, false, false, false}, {5, 0x187000, 4, false, false, false},
        {4, 0x187000, 3, true, false, true},   {3, 0x187000, 3, true, false, true},
        {2, 0x187000, 3, false, false, false}, {5, 0x087000, 3, true, false, false},
        {5, 0x100000, 3, true, false, false},  {5, 0x101000, 3, true, true, true},
        {5, 0x180000, 3, true, false, true},
};

// Checks both sinks for the lines starting with `prefix`: `expected` where the gate passes and
// the mode selects the sink, nothing elsewhere.
void expectWritten(const Gate& gate, bool passes, const std::string& prefix,
                   const std::vector<std::string>& expected, const std::vector<std::string>& android,
                   const std::vector<std::string>& uLogger) {
    const std::vector<std::string> none;
    EXPECT_EQ(passes && (gate.mode & 0x1) != 0 ? expected : none, android) << gate << " " << prefix;
    EXPECT_EQ(passes && (gate.mode & 0xA) != 0 ? expected : none, uLogger) << gate << " " << prefix;
}

class CallbackGateTest : public testing::BridgeTest {
protected:
    // One frame of a device that manages its buffers, with every gated text of the bridge on its
    // way: two buffers asked for, one given back, one delivered in a result, and a shutter.
    void runFrame() {
        configure({{5, 4}});
        mFramework->setBufferRequestHandler([this](const std::vector<BufferRequest>& requests,
                                                   std::vector<StreamBufferRet>* answers,
                                                   BufferRequestStatus* status) {
            std::vector<StreamBuffer> buffers;
            for (int32_t i = 0; i < requests[0].numBuffersRequested; ++i) {
                buffers.push_back(testing::frameworkBuffer(5, ++mLastBufferId));
            }
            answers->push_back(testing::frameworkAnswer(5, std::move(buffers)));
            mAnswerText = answers->back().toString();
            *status = BufferRequestStatus::OK;
            return ndk::ScopedAStatus::ok();
        });
        DeviceBufferRequest request({{stream(5), 2}});
        ASSERT_EQ(CAMERA3_BUF_REQ_OK, request.send(ops()));
        const camera3_stream_buffer* giveBack = &request.records[0].output_buffers[0];
        ops()->return_stream_buffers(ops(), 1, &giveBack);

        DeviceBuffer input(40);
        camera3_stream_buffer inputBuffer{stream(5), input.pointer(), CAMERA3_BUFFER_STATUS_OK, -1,
                                          -1};
        const char* ids[] = {"cam2", "cam3"};
        const camera_metadata_t* physical[] = {nullptr, nullptr};
        camera3_capture_result result{
                7, nullptr, 1,       &request.records[0].output_buffers[1], &inputBuffer, 1,
                2, ids,     physical};
        ops()->process_capture_result(ops(), &result);

        camera3_notify_msg shutter{CAMERA3_MSG_SHUTTER, {.shutter = {7, 2, 3}}};
        ops()->notify(ops(), &shutter);
    }

    void expectLine(const Gate& gate, bool passes, const std::string& function,
                    const std::string& start, const std::vector<std::string>& texts) {
        const std::string prefix = "[3-aidl2legacy-callback::" + function + "] " + start;
        std::vector<std::string> expected;
        for (const std::string& text : texts) {
            expected.push_back("[3-aidl2legacy-callback::" + function + "] " + text);
        }
        expectWritten(gate, passes, prefix, expected, androidLogsStartingWith(prefix),
                      logsStartingWith(prefix));
    }

    int64_t mLastBufferId = 0;
    std::string mAnswerText;
};

TEST_F(CallbackGateTest, EachTextIsWrittenUnchangedOrNotBuiltAtAll) {
    for (int32_t logLevel : {0, 1, 3}) {
        for (const Gate& gate : kGates) {
            mFramework = ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
            startBridge(logLevel);
            mULog.set(gate.level, gate.mask, gate.mode);
            runFrame();
            SCOPED_TRACE(::testing::Message() << "mLogLevel " << logLevel);

            expectLine(gate, gate.callbackInfo && logLevel >= 1, "requestStreamBuffers",
                       "[HBM] framework requestStreamBuffers",
                       {"[HBM] framework requestStreamBuffers +, " +
                                BufferRequest{5, 2}.toString() + ", ",
                        "[HBM] framework requestStreamBuffers -, BufferRequestStatus:OK, " +
                                mAnswerText + ", "});

            const auto returned = mFramework->returnedBuffers();
            ASSERT_EQ(1u, returned.size());
            ASSERT_EQ(1u, returned[0].size());
            expectLine(gate, gate.callbackInfo, "returnStreamBuffers",
                       "[HBM] framework returnStreamBuffers",
                       {"[HBM] framework returnStreamBuffers +, " + returned[0][0].text + ", ",
                        "[HBM] framework returnStreamBuffers -"});

            const auto results = mFramework->results();
            ASSERT_EQ(1u, results.size());
            ASSERT_EQ(1u, results[0].outputBuffers.size());
            EXPECT_NE(0, results[0].outputBuffers[0].bufferId);
            expectLine(
                    gate, gate.callbackInfo, "convertCaptureResult", "",
                    {"frameNumber:7 partialResult:1 phyResultCamId:cam2,cam3, " +
                     results[0].inputBuffer.text + ", " + results[0].outputBuffers[0].text + ", "});

            expectLine(gate, gate.callbackDebug && logLevel >= 3, "convertNotifyMsg", "",
                       {Callback::NotifyMsg(ShutterMsg{7, 2, 3}).toString()});
        }
    }
}

class SessionGateTest : public testing::SessionTest {};

TEST_F(SessionGateTest, StreamTextsOfAConfigurationAreWrittenUnchangedOrNotBuiltAtAll) {
    std::shared_ptr<testing::Session> session = openSession();
    testing::Session::StreamConfiguration configuration;
    configuration.streams = {testing::makeStream(1), testing::makeStream(4)};
    for (const Gate& gate : kGates) {
        mULog.set(gate.level, gate.mask, gate.mode);
        clearLogs();
        std::vector<testing::Session::HalStream> halStreams;
        ASSERT_TRUE(session->configureStreams(configuration, &halStreams).isOk());
        ASSERT_EQ(2u, halStreams.size());

        const std::string prefix = "[3-aidl-session::configureStreams] ";
        std::vector<std::string> expected;
        for (const auto& stream : configuration.streams) {
            expected.push_back(prefix + stream.toString());
        }
        for (const auto& halStream : halStreams) {
            expected.push_back(prefix + halStream.toString());
        }
        expectWritten(gate, gate.deviceInfo, prefix, expected, androidLogsStartingWith(prefix),
                      logsStartingWith(prefix));
    }
}

}  // namespace
}  // namespace kovo::aidl2legacy
