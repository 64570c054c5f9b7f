#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "CameraModuleC.h"
#include "HalLayout.h"

namespace {

// Records what the C device calls back with. The ops table comes first, so the pointer the
// device hands back is the address of the whole record.
struct Recorder {
    camera3_callback_ops_t ops;
    std::vector<camera3_notify_msg_t> messages;
    std::vector<camera3_capture_result_t> results;

    static Recorder* from(const camera3_callback_ops_t* ops) {
        return reinterpret_cast<Recorder*>(const_cast<camera3_callback_ops_t*>(ops));
    }
};

class HalHeadersTest : public ::testing::Test {
protected:
    void SetUp() override {
        mRecorder.ops.process_capture_result = [](const camera3_callback_ops_t* ops,
                                                  const camera3_capture_result_t* result) {
            Recorder::from(ops)->results.push_back(*result);
        };
        mRecorder.ops.notify = [](const camera3_callback_ops_t* ops,
                                  const camera3_notify_msg_t* msg) {
            Recorder::from(ops)->messages.push_back(*msg);
        };
        ASSERT_EQ(0, HAL_MODULE_INFO_SYM.common.methods->open(&HAL_MODULE_INFO_SYM.common, "0",
                                                              TO_HW_DEVICE_T_OPEN(&mDevice)));
        ASSERT_EQ(0, mDevice->ops->initialize(mDevice, &mRecorder.ops));
    }

    void TearDown() override { EXPECT_EQ(0, mDevice->common.close(&mDevice->common)); }

    Recorder mRecorder{};
    camera3_device_t* mDevice = nullptr;
};

TEST(HalModuleTest, LoaderFindsTheModuleRecordByItsSymbolName) {
    void* self = dlopen(nullptr, RTLD_NOW);
    ASSERT_NE(nullptr, self);
    auto* module = static_cast<camera_module_t*>(dlsym(self, HAL_MODULE_INFO_SYM_AS_STR));
    dlclose(self);
    ASSERT_EQ(&HAL_MODULE_INFO_SYM, module);
    EXPECT_EQ(static_cast<uint32_t>(HARDWARE_MODULE_TAG), module->common.tag);
    EXPECT_STREQ(CAMERA_HARDWARE_MODULE_ID, module->common.id);
    EXPECT_EQ(CAMERA_MODULE_API_VERSION_2_5, module->common.version_major);
    EXPECT_EQ(1, module->get_number_of_cameras());
}

TEST_F(HalHeadersTest, OpenedDeviceIsACamera3DeviceOfItsModule) {
    EXPECT_EQ(static_cast<uint32_t>(HARDWARE_DEVICE_TAG), mDevice->common.tag);
    EXPECT_EQ(static_cast<uint32_t>(CAMERA_DEVICE_API_VERSION_3_6), mDevice->common.version);
    EXPECT_EQ(&HAL_MODULE_INFO_SYM.common, mDevice->common.module);
    hw_device_t* other = nullptr;
    EXPECT_EQ(-EINVAL,
              HAL_MODULE_INFO_SYM.common.methods->open(&HAL_MODULE_INFO_SYM.common, "1", &other));
}

TEST_F(HalHeadersTest, MultiResolutionFlagReachesTheDevice) {
    camera3_stream_t stream{};
    camera3_stream_t* streams[] = {&stream};
    camera3_stream_configuration_t config{};
    config.num_streams = 1;
    config.streams = streams;
    ASSERT_EQ(0, mDevice->ops->configure_streams(mDevice, &config));
    EXPECT_EQ(2u, stream.max_buffers);

    config.input_is_multi_resolution = true;
    ASSERT_EQ(0, mDevice->ops->configure_streams(mDevice, &config));
    EXPECT_EQ(3u, stream.max_buffers);
}

TEST_F(HalHeadersTest, InputSizeGoesDownAndReadoutTimestampComesBack) {
    camera3_stream_t stream{};
    camera3_stream_buffer_t output{};
    output.stream = &stream;
    output.acquire_fence = -1;
    output.release_fence = -1;
    camera3_capture_request_t request{};
    request.frame_number = 12;
    request.num_output_buffers = 1;
    request.output_buffers = &output;
    request.input_width = 640;
    request.input_height = 480;
    ASSERT_EQ(0, mDevice->ops->process_capture_request(mDevice, &request));

    ASSERT_EQ(1u, mRecorder.messages.size());
    const camera3_notify_msg_t& msg = mRecorder.messages[0];
    EXPECT_EQ(CAMERA3_MSG_SHUTTER, msg.type);
    EXPECT_EQ(12u, msg.message.shutter.frame_number);
    EXPECT_EQ(static_cast<uint64_t>(CAMERA_MODULE_C_TIMESTAMP_NS), msg.message.shutter.timestamp);
    EXPECT_EQ(static_cast<uint64_t>(CAMERA_MODULE_C_TIMESTAMP_NS +
                                    CAMERA_MODULE_C_READOUT_DELAY_NS + 480),
              msg.message.shutter.readout_timestamp);

    ASSERT_EQ(1u, mRecorder.results.size());
    EXPECT_EQ(12u, mRecorder.results[0].frame_number);
    EXPECT_EQ(&output, mRecorder.results[0].output_buffers);
}

}  // namespace
