/*
 * Aidl2LegacyCameraModule: one legacy HAL3 camera module (camera_module_t), brought up the way a
 * camera provider brings it up, and the operations the AIDL camera devices need from it.
 *
 * The module comes either from a HAL module .so loaded by path (loaded once and never unloaded,
 * as a device process keeps its HAL: the module's threads may outlive any object) or from a
 * camera_module_t the caller hands in and keeps alive. The provider and every device built on the
 * module share the object through std::shared_ptr.
 *
 * openDevice hands out a guarded device of the object's own (GuardedDevice) in place of the
 * module's: it refuses calls after close and turns a refused open into a device whose initialize
 * fails with the module's status. The object keeps every guard it hands out (a few hundred bytes
 * per open) until it is destroyed, because a session may call its device after closing it.
 *
 * The nine virtual operations are called by the devices in a fixed virtual-table order that the
 * device library relies on; keep them first and in this order. Statuses are 0 or a negative
 * errno value. Ids that name a built-in camera whose device is older than 3.2, a camera announced
 * as not present, or an external camera never announced present answer -ENODEV.
 *
 * Threads: every operation may run on several binder threads at once, and the module's entry
 * points are called concurrently as the camera service would. Status callbacks from the module
 * may arrive on any thread; the listener is swapped under mListenerLock and called outside it.
 * mCameraLock guards the announced cameras, mHandedOutLock the guards and characteristics copies.
 */
#pragma once

#include <camera_module_extensions.h>
#include <hardware/camera3.h>
#include <hardware/camera_common.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "StreamCombination.h"

namespace kovo::aidl2legacy {

class GuardedDevice;

class Aidl2LegacyCameraModule {
    struct PrivateTag {};

public:
    // The optional entry points of camera_module_extensions.h; null ones are absent.
    struct ExtensionEntryPoints {
        tarnic_camera_default_request_settings_t defaultRequestSettings = nullptr;
        tarnic_camera_get_session_characteristics_t getSessionCharacteristics = nullptr;
        tarnic_camera_get_torch_strength_level_t getTorchStrengthLevel = nullptr;
        tarnic_camera_turn_on_torch_with_strength_level_t turnOnTorchWithStrengthLevel = nullptr;
        tarnic_camera_has_readout_timestamp_t hasReadoutTimestamp = nullptr;
    };

    // How a module .so is loaded. kLocal: RTLD_LOCAL, which keeps the module's symbols out of the
    // process's scope but still binds the module's calls into platform libraries to the copies
    // the process has loaded. kDeepBind adds RTLD_DEEPBIND, so a module that carries its own
    // copy of a symbol uses that copy; only where the C library offers it (glibc, not bionic),
    // else the load fails with -ENOSYS. Sanitizer runtimes refuse it.
    enum class LibraryIsolation { kLocal, kDeepBind };

    // Status changes reported by the module, called on the module's thread. Either may be empty.
    struct StatusListener {
        // status is a camera_device_status_t value.
        std::function<void(int32_t cameraId, int32_t status)> deviceStatusChanged;
        // status is a torch_mode_status_t value.
        std::function<void(const std::string& cameraId, int32_t status)> torchStatusChanged;
    };

    // Loads the HAL module .so at `path` and brings it up. Null on failure, with the reason
    // logged and stored in `*status` (when given). A library that loaded stays loaded.
    static std::shared_ptr<Aidl2LegacyCameraModule> createFromLibrary(
            const std::string& path, StatusListener listener, int32_t* status,
            LibraryIsolation isolation = LibraryIsolation::kLocal);

    // Brings up a module that the caller loaded and keeps loaded for longer than the returned
    // object lives; nothing of it may have been called yet. `extensions` are the entry points
    // to use for it, if any. The module's callbacks lead to the returned object, so the module
    // must not call them once that object is gone.
    static std::shared_ptr<Aidl2LegacyCameraModule> createFromModule(
            camera_module_t* module, const ExtensionEntryPoints& extensions,
            StatusListener listener, int32_t* status);

    Aidl2LegacyCameraModule(PrivateTag, camera_module_t* module,
                            const ExtensionEntryPoints& extensions, StatusListener listener);
    virtual ~Aidl2LegacyCameraModule();

    Aidl2LegacyCameraModule(const Aidl2LegacyCameraModule&) = delete;
    Aidl2LegacyCameraModule& operator=(const Aidl2LegacyCameraModule&) = delete;

    // Opens the legacy device of the decimal camera id and hands out its guard, closed through
    // its common.close by whoever opened it. On failure the status is returned and, unless
    // `device` is null, a guard whose initialize fails with that status is handed out.
    virtual int32_t openDevice(const char* cameraId, camera3_device_t** device);
    // The module's camera_info; records older modules lack read as resource cost 100 and no
    // conflicting devices. The metadata stays owned by the module, or by this object when the
    // camera's shutters carry no readout timestamps and its characteristics do not say so: then
    // it is a copy with ANDROID_SENSOR_READOUT_TIMESTAMP set to NOT_SUPPORTED.
    virtual int32_t getCameraInfo(int32_t instanceId, camera_info* info);
    // -ENOSYS before module 2.4.
    virtual int32_t setTorchMode(const char* cameraId, bool on);
    // -ENOSYS before module 2.5. The metadata stays owned by the module, or is this object's
    // copy with the readout key as for getCameraInfo when the module declares no readout
    // timestamps at all.
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
    // The ids of the built-in cameras whose device is at least 3.2 and of the cameras announced
    // present, less those announced not present.
    std::vector<int32_t> getUsableCameraIds() const;
    // common.module_api_version; 0 without a module.
    uint16_t getModuleApiVersion() const;
    // The device version the module reports for the camera (asked afresh, so it also serves
    // external cameras).
    int32_t getDeviceVersion(int32_t cameraId, uint32_t* version) const;
    // Replaces the listener; a call already under way may still reach the previous one.
    void setStatusListener(StatusListener listener);

    // Meter of the CPU time spent inside the legacy module (every guarded device entry, and the
    // module's own entries); off by default, and then a guarded entry costs one indirect call.
    // Callbacks the module makes into the adapter from inside an entry count as the module's.
    static void setModuleCpuMeterEnabled(bool enabled);
    // CPU time (CLOCK_THREAD_CPUTIME_ID) the calling thread has spent inside the module while the
    // meter was on, in nanoseconds. Monotonic per thread.
    static uint64_t threadCpuInsideModuleNs();

protected:
    // No module behind it: every operation answers -ENODEV or null. For test doubles.
    Aidl2LegacyCameraModule();

private:
    // The record handed to set_callbacks, with the way back to its owner.
    struct ModuleCallbacks : camera_module_callbacks_t {
        Aidl2LegacyCameraModule* owner;
    };

    struct MetadataDeleter {
        void operator()(camera_metadata_t* metadata) const;
    };
    using MetadataCopy = std::unique_ptr<camera_metadata_t, MetadataDeleter>;

    static std::shared_ptr<Aidl2LegacyCameraModule> create(camera_module_t* module,
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
    int32_t openLegacyDevice(const char* cameraId, camera3_device_t** device);
    bool hasReadoutTimestamps(int32_t cameraId) const;
    void setAnnounced(int32_t cameraId, int32_t status);
    camera3_device_t* guard(camera3_device_t* device, bool standardShutter);
    camera3_device_t* refusedGuard(int32_t status);
    // The characteristics to hand out for `characteristics` of the module: the same, or this
    // object's copy (kept in `copies` under `id`) that says readout timestamps are not supported.
    const camera_metadata_t* withReadoutKey(std::map<int32_t, MetadataCopy>& copies, int32_t id,
                                            const camera_metadata_t* characteristics);
    std::shared_ptr<const StatusListener> listener() const;

    camera_module_t* mModule = nullptr;
    uint16_t mApiVersion = 0;
    ExtensionEntryPoints mExtensions;
    ModuleCallbacks mCallbacks{};
    // Per built-in camera: 0 when usable, else the status its operations answer.
    std::vector<int32_t> mCameraStatus;

    mutable std::mutex mCameraLock;
    std::map<int32_t, bool> mAnnounced;  // camera id -> present; guarded by mCameraLock

    std::mutex mHandedOutLock;
    std::vector<std::unique_ptr<GuardedDevice>> mGuards;               // guarded by mHandedOutLock
    std::map<int32_t, std::unique_ptr<GuardedDevice>> mRefusedGuards;  // by status, likewise
    std::map<int32_t, MetadataCopy> mCharacteristics;                  // by camera id, likewise
    std::map<int32_t, MetadataCopy> mPhysicalCharacteristics;          // likewise

    mutable std::mutex mListenerLock;
    std::shared_ptr<const StatusListener> mListener;  // guarded by mListenerLock
};

}  // namespace kovo::aidl2legacy
