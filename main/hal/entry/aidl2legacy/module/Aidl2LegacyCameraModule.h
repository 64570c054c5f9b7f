/*
 * Aidl2LegacyCameraModule: one legacy HAL3 camera module (camera_module_t), brought up the way a
 * camera provider brings it up, and the operations the AIDL camera devices need from it.
 *
 * The module comes either from a HAL module .so loaded by path (the object owns the library and
 * closes it last, when it is destroyed) or from a camera_module_t the caller hands in and keeps
 * alive. The provider and every device built on the module share the object through
 * std::shared_ptr.
 *
 * The nine virtual operations are called by the devices in a fixed virtual-table order that the
 * device library relies on; keep them first and in this order. Statuses are 0 or a negative
 * errno value. Ids that name a built-in camera whose device is older than 3.2 answer -ENODEV.
 *
 * Threads: every operation may run on several binder threads at once; the state read by the
 * operations is fixed once the factory returns, and the module's entry points are called
 * concurrently as the camera service would. Status callbacks from the module may arrive on any
 * thread; the listener is swapped under mListenerLock and called outside it.
 */
#pragma once

#include <camera_module_extensions.h>
#include <hardware/camera3.h>
#include <hardware/camera_common.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "StreamCombination.h"

namespace kovo::aidl2legacy {

class Aidl2LegacyCameraModule {
    struct PrivateTag {};
    // Owns a dlopen() handle.
    using LibraryHandle = std::unique_ptr<void, int (*)(void*)>;

public:
    // The optional entry points of camera_module_extensions.h; null ones are absent.
    struct ExtensionEntryPoints {
        tarnic_camera_default_request_settings_t defaultRequestSettings = nullptr;
        tarnic_camera_get_session_characteristics_t getSessionCharacteristics = nullptr;
        tarnic_camera_get_torch_strength_level_t getTorchStrengthLevel = nullptr;
        tarnic_camera_turn_on_torch_with_strength_level_t turnOnTorchWithStrengthLevel = nullptr;
    };

    // Status changes reported by the module, called on the module's thread. Either may be empty.
    struct StatusListener {
        // status is a camera_device_status_t value.
        std::function<void(int32_t cameraId, int32_t status)> deviceStatusChanged;
        // status is a torch_mode_status_t value.
        std::function<void(const std::string& cameraId, int32_t status)> torchStatusChanged;
    };

    // Loads the HAL module .so at `path` and brings it up. Null on failure, with the reason
    // logged and stored in `*status` (when given).
    static std::shared_ptr<Aidl2LegacyCameraModule> createFromLibrary(const std::string& path,
                                                                      StatusListener listener,
                                                                      int32_t* status);

    // Brings up a module that the caller loaded and keeps loaded for longer than the returned
    // object lives; nothing of it may have been called yet. `extensions` are the entry points
    // to use for it, if any. The module's callbacks lead to the returned object, so the module
    // must not call them once that object is gone.
    static std::shared_ptr<Aidl2LegacyCameraModule> createFromModule(
            camera_module_t* module, const ExtensionEntryPoints& extensions,
            StatusListener listener, int32_t* status);

    Aidl2LegacyCameraModule(PrivateTag, camera_module_t* module, LibraryHandle library,
                            const ExtensionEntryPoints& extensions, StatusListener listener);
    virtual ~Aidl2LegacyCameraModule();

    Aidl2LegacyCameraModule(const Aidl2LegacyCameraModule&) = delete;
    Aidl2LegacyCameraModule& operator=(const Aidl2LegacyCameraModule&) = delete;

    // Opens the legacy device of the decimal camera id. The device is closed through its
    // common.close by whoever opened it.
    virtual int32_t openDevice(const char* cameraId, camera3_device_t** device);
    // The module's camera_info; records older modules lack read as resource cost 100 and no
    // conflicting devices. The metadata stays owned by the module.
    virtual int32_t getCameraInfo(int32_t instanceId, camera_info* info);
    // -ENOSYS before module 2.4.
    virtual int32_t setTorchMode(const char* cameraId, bool on);
    // -ENOSYS before module 2.5. The metadata stays owned by the module.
    virtual int32_t getPhysicalCameraInfo(int32_t physicalCameraId,
                                          const camera_metadata_t** characteristics);
    // 0 when supported, -EINVAL when not. Modules before 2.5 (or without the query) are answered
    // from the camera's static stream configurations.
    virtual int32_t isStreamCombinationSupported(int32_t instanceId,
                                                 const StreamCombination* combination);
    // -ENOSYS without the optional entry point.
    virtual int32_t getTorchStrengthLevel(const char* cameraId, int32_t* level);
    // -ENOSYS without the optional entry point.
    virtual int32_t turnOnTorchWithStrengthLevel(const char* cameraId, int32_t level);
    // Null on failure or without the optional entry point; owned by the module.
    virtual const camera_metadata_t* constructDefaultRequestSettings(int32_t instanceId,
                                                                     int32_t requestTemplate);
    // -ENOSYS without the optional entry point. The metadata stays owned by the module.
    virtual int32_t getSessionCharacteristics(int32_t instanceId,
                                              const StreamCombination* combination,
                                              const camera_metadata_t** characteristics);

    // For the provider. The module's get_number_of_cameras(); 0 without a module.
    int32_t getNumberOfCameras() const;
    // The ids of the built-in cameras whose device is at least 3.2.
    std::vector<int32_t> getUsableCameraIds() const;
    // common.module_api_version; 0 without a module.
    uint16_t getModuleApiVersion() const;
    // The device version the module reports for the camera (asked afresh, so it also serves
    // external cameras).
    int32_t getDeviceVersion(int32_t cameraId, uint32_t* version) const;
    // Replaces the listener; a call already under way may still reach the previous one.
    void setStatusListener(StatusListener listener);

protected:
    // No module behind it: every operation answers -ENODEV or null. For test doubles.
    Aidl2LegacyCameraModule();

private:
    // The record handed to set_callbacks, with the way back to its owner.
    struct ModuleCallbacks : camera_module_callbacks_t {
        Aidl2LegacyCameraModule* owner;
    };

    static std::shared_ptr<Aidl2LegacyCameraModule> create(camera_module_t* module,
                                                           LibraryHandle library,
                                                           const ExtensionEntryPoints& extensions,
                                                           StatusListener listener, int32_t* status);
    static void sCameraDeviceStatusChange(const camera_module_callbacks_t* callbacks, int cameraId,
                                          int newStatus);
    static void sTorchModeStatusChange(const camera_module_callbacks_t* callbacks,
                                       const char* cameraId, int newStatus);

    int32_t bringUp();
    int32_t checkModuleRecord() const;
    // 0 for a camera the operations may use, else the status to answer (logged).
    int32_t checkCamera(const char* caller, int32_t cameraId) const;
    int32_t checkCamera(const char* caller, const char* cameraId, int32_t* number) const;
    int32_t isInStaticConfigurations(int32_t cameraId, const StreamCombination& combination);
    std::shared_ptr<const StatusListener> listener() const;

    // Declared first so that the library is closed after everything else is gone.
    LibraryHandle mLibrary;
    camera_module_t* mModule = nullptr;
    uint16_t mApiVersion = 0;
    ExtensionEntryPoints mExtensions;
    ModuleCallbacks mCallbacks{};
    // Per built-in camera: 0 when usable, else the status its operations answer.
    std::vector<int32_t> mCameraStatus;

    mutable std::mutex mListenerLock;
    std::shared_ptr<const StatusListener> mListener;  // guarded by mListenerLock
};

}  // namespace kovo::aidl2legacy
