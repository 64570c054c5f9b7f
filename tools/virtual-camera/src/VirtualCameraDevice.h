/*
 * One virtual camera as a camera3_device_t. The module owns one per camera for as long as it is
 * loaded and hands out the same record at every open, so a second common.close of a closed device
 * is harmless. Between initialize and close a Pipeline produces the frames.
 *
 * Threads: configure_streams and process_capture_request come from one caller thread at a time;
 * flush, signal_stream_flush, dump and close may come from others. mLock guards the open state,
 * the options and the pipeline pointer; it is never held while waiting for the pipeline. The
 * request state (streams, last settings, last frame number) belongs to the caller thread of
 * configure_streams and process_capture_request.
 */
#pragma once

#include <hardware/camera3.h>
#include <stdint.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "CameraCharacteristics.h"
#include "Options.h"
#include "Pipeline.h"

namespace virtual_camera {

class VirtualCameraDevice {
public:
    // Told when the device opens (true) and closes (false).
    using OpenListener = std::function<void(const std::string& cameraId, bool open)>;

    VirtualCameraDevice(const CameraCharacteristics& characteristics, hw_module_t* module,
                        OpenListener listener);
    ~VirtualCameraDevice();
    VirtualCameraDevice(const VirtualCameraDevice&) = delete;
    VirtualCameraDevice& operator=(const VirtualCameraDevice&) = delete;

    // 0 and the device record, or -EBUSY when already open.
    int open(const Options& options, hw_device_t** device);
    bool isOpen() const;

private:
    static VirtualCameraDevice* fromDevice(const camera3_device* device);
    static int sClose(hw_device_t* device);

    int initialize(const camera3_callback_ops_t* callbacks);
    int configureStreams(camera3_stream_configuration_t* streamList);
    const camera_metadata_t* constructDefaultRequestSettings(int type);
    int processCaptureRequest(camera3_capture_request_t* request);
    void dump(int fd);
    int flush();
    void signalStreamFlush(uint32_t numStreams, const camera3_stream_t* const* streams);
    int isReconfigurationRequired(const camera_metadata_t* oldParameters,
                                  const camera_metadata_t* newParameters);
    int close(bool notifyListener);

    // -EINVAL (logged) unless `request` is one this device can take; fills `out` when it is.
    int checkRequest(const camera3_capture_request_t* request, CaptureRequest& out);
    std::shared_ptr<Pipeline> pipeline();

    static camera3_device_ops_t sOps;
    // A 3.3 device's table: no signal_stream_flush or is_reconfiguration_required.
    static camera3_device_ops_t sLegacyOps;

    camera3_device_t mDevice{};
    const CameraCharacteristics& mCharacteristics;
    const OpenListener mListener;

    mutable std::mutex mLock;
    bool mOpen = false;
    Options mOptions;
    std::shared_ptr<Pipeline> mPipeline;

    std::vector<camera3_stream_t*> mStreams;
    std::shared_ptr<const camera_metadata_t> mLastSettings;
    std::optional<uint32_t> mLastFrameNumber;
};

}  // namespace virtual_camera
