#include "NullLegacyDevice.h"

#include <unistd.h>

namespace kovo::aidl2legacy::bench {
namespace {

NullLegacyDevice* fromDevice(const camera3_device* device) {
    return static_cast<NullLegacyDevice*>(device->priv);
}

void takeFence(const camera3_stream_buffer_t& buffer) {
    if (buffer.acquire_fence >= 0) close(buffer.acquire_fence);
}

}  // namespace

NullLegacyDevice::NullLegacyDevice() {
    mOps.initialize = [](const camera3_device*, const camera3_callback_ops_t*) { return 0; };
    mOps.configure_streams = sConfigureStreams;
    mOps.process_capture_request = sProcessCaptureRequest;
    mDevice.common.version = CAMERA_DEVICE_API_VERSION_3_5;
    mDevice.common.close = [](hw_device_t*) { return 0; };
    mDevice.ops = &mOps;
    mDevice.priv = this;
}

int NullLegacyDevice::sProcessCaptureRequest(const camera3_device* device,
                                             camera3_capture_request_t* request) {
    ++fromDevice(device)->mRequests;
    if (request->input_buffer != nullptr) takeFence(*request->input_buffer);
    for (uint32_t i = 0; i < request->num_output_buffers; ++i) {
        takeFence(request->output_buffers[i]);
    }
    return 0;
}

int NullLegacyDevice::sConfigureStreams(const camera3_device*,
                                        camera3_stream_configuration_t* config) {
    for (uint32_t i = 0; i < config->num_streams; ++i)
        config->streams[i]->max_buffers = kMaxBuffers;
    return 0;
}

}  // namespace kovo::aidl2legacy::bench
