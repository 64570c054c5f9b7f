/*
 * A legacy HAL3 device that does nothing but what its contract asks of every device: it takes
 * the acquire fences it is handed (and closes them), and gives each configured stream room for
 * kMaxBuffers buffers. Entry points count their calls.
 */
#pragma once

#include <hardware/camera3.h>

#include <cstdint>

namespace kovo::aidl2legacy::bench {

class NullLegacyDevice {
public:
    static constexpr uint32_t kMaxBuffers = 4;

    NullLegacyDevice();
    NullLegacyDevice(const NullLegacyDevice&) = delete;
    NullLegacyDevice& operator=(const NullLegacyDevice&) = delete;

    camera3_device_t* device() { return &mDevice; }
    uint64_t requests() const { return mRequests; }

    // The entry points, also for floors that call the device directly.
    static int sProcessCaptureRequest(const camera3_device* device,
                                      camera3_capture_request_t* request);
    static int sConfigureStreams(const camera3_device* device,
                                 camera3_stream_configuration_t* config);

private:
    camera3_device_ops_t mOps{};
    camera3_device_t mDevice{};
    uint64_t mRequests = 0;
};

}  // namespace kovo::aidl2legacy::bench
