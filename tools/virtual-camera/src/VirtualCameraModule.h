/*
 * The state behind HAL_MODULE_INFO_SYM and the exported extension entry points: the options, the
 * cameras (public ones numbered 0..N-1, physical ones N and N+1 behind camera 0, and an optional
 * external one announced through the module callbacks), their devices, torch state and the
 * framework's module callbacks. One instance per loaded module.
 *
 * Every entry may come from any thread. mLock guards all members; module callbacks are called
 * after it is released. Characteristics and device records handed out stay valid while the module
 * is loaded, also across an init() that changes the camera set (the old ones are retired, not
 * freed).
 */
#pragma once

#include <hardware/camera_common.h>
#include <stdint.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "CameraCharacteristics.h"
#include "Options.h"
#include "VirtualCameraDevice.h"

namespace virtual_camera {

class VirtualCameraModule {
public:
    static VirtualCameraModule& instance();

    // Reads VIRTUAL_CAMERA_OPTIONS again; the camera set changes only while no device is open.
    int init();
    int getNumberOfCameras();
    int getCameraInfo(int cameraId, camera_info* info);
    int setCallbacks(const camera_module_callbacks_t* callbacks);
    int open(const char* cameraId, hw_device_t** device);
    int setTorchMode(const char* cameraId, bool enabled);
    int getPhysicalCameraInfo(int physicalCameraId, camera_metadata_t** staticMetadata);
    int isStreamCombinationSupported(int cameraId, const camera_stream_combination_t* streams);
    void notifyDeviceStateChange(uint64_t deviceState);

    const camera_metadata_t* defaultRequestSettings(int cameraId, int requestTemplate);
    int getSessionCharacteristics(int cameraId, const camera_stream_combination_t* streams,
                                  const camera_metadata_t** characteristics);
    int getTorchStrengthLevel(const char* cameraId, int32_t* level);
    int hasReadoutTimestamp(int cameraId);
    int turnOnTorchWithStrengthLevel(const char* cameraId, int32_t level);

private:
    struct Camera {
        std::unique_ptr<CameraCharacteristics> characteristics;
        std::unique_ptr<VirtualCameraDevice> device;  // null for physical cameras
        bool torchOn = false;
        int32_t torchLevel = kTorchDefaultLevel;
    };

    VirtualCameraModule() = default;
    // Builds the cameras from the environment on first use, and again on init().
    void loadLocked();
    void ensureLoadedLocked();
    // Public or external camera.
    Camera* publicCameraLocked(int cameraId);
    Camera* publicCameraLocked(const char* cameraId);
    // Checks shared by the torch entries; 0 when the torch of `camera` may change.
    int torchCheckLocked(Camera* camera, const char* cameraId);
    void turnOffTorchLocked(Camera& camera);
    void torchStatusChanged(const std::string& cameraId, int status);
    void deviceOpenChanged(const std::string& cameraId, bool open);
    int checkCombinationLocked(int cameraId, const camera_stream_combination_t* streams);
    void announceExternalCamera();

    std::mutex mLock;
    bool mLoaded = false;
    Options mOptions;
    std::vector<Camera> mCameras;
    std::vector<Camera> mPhysicalCameras;
    std::vector<Camera> mExternalCameras;  // none or one
    std::vector<Camera> mRetired;
    const camera_module_callbacks_t* mCallbacks = nullptr;
};

}  // namespace virtual_camera
