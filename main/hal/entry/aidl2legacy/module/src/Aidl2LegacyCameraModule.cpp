#define LOG_TAG "Aidl2LegacyCameraModule"

#include "Aidl2LegacyCameraModule.h"

#include <dlfcn.h>
#include <log/log.h>
#include <system/camera_metadata.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include "GuardedDevice.h"
#include "LegacyStreamCombination.h"
#include "ModuleCpuMeter.h"
#include "StaticStreamConfigurations.h"

namespace kovo::aidl2legacy {
namespace {

// get_number_of_cameras() beyond this is taken for a broken module rather than a camera count.
constexpr int kMaxCameras = 256;
constexpr int kUnknownResourceCost = 100;

using InsideModule = ModuleCpuMeter::InsideModule;

int loaderFlags(Aidl2LegacyCameraModule::LibraryIsolation isolation) {
    if (isolation == Aidl2LegacyCameraModule::LibraryIsolation::kLocal) {
        return RTLD_NOW | RTLD_LOCAL;
    }
#ifdef RTLD_DEEPBIND
    return RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND;
#else
    return -1;
#endif
}

void setStatus(int32_t* out, int32_t status) {
    if (out != nullptr) *out = status;
}

const char* dlErrorText() {
    const char* text = dlerror();
    return text != nullptr ? text : "unknown error";
}

// An entry of camera_module_t, or null when the module's API version predates it: the record of
// an older module may end before the field.
template <typename Entry>
Entry moduleEntry(const camera_module_t& module, Entry camera_module_t::*field,
                  uint16_t sinceVersion) {
    return module.common.module_api_version >= sinceVersion ? module.*field : nullptr;
}

template <typename Entry>
Entry librarySymbol(void* library, const char* name) {
    return reinterpret_cast<Entry>(dlsym(library, name));
}

bool isValid(const StreamCombination* combination) {
    return combination != nullptr && (combination->streamCount == 0 || combination->streams);
}

}  // namespace

std::shared_ptr<Aidl2LegacyCameraModule> Aidl2LegacyCameraModule::createFromLibrary(
        const std::string& path, StatusListener listener, int32_t* status,
        LibraryIsolation isolation) {
    if (path.empty()) {
        // dlopen("") would hand back the process itself.
        ALOGE("No camera module path given");
        setStatus(status, -EINVAL);
        return nullptr;
    }
    const int flags = loaderFlags(isolation);
    if (flags < 0) {
        ALOGE("Cannot load camera module %s: this C library has no RTLD_DEEPBIND", path.c_str());
        setStatus(status, -ENOSYS);
        return nullptr;
    }
    // Never closed: the module's threads may run as long as the process does.
    void* library = dlopen(path.c_str(), flags);
    if (library == nullptr) {
        ALOGE("Cannot load camera module %s: %s", path.c_str(), dlErrorText());
        setStatus(status, -EINVAL);
        return nullptr;
    }
    dlerror();
    auto* module = static_cast<camera_module_t*>(dlsym(library, HAL_MODULE_INFO_SYM_AS_STR));
    if (module == nullptr) {
        ALOGE("Camera module %s has no %s: %s", path.c_str(), HAL_MODULE_INFO_SYM_AS_STR,
              dlErrorText());
        // No module code has run yet, so nothing of it can still be running.
        dlclose(library);
        setStatus(status, -EINVAL);
        return nullptr;
    }
    ExtensionEntryPoints extensions;
    extensions.defaultRequestSettings = librarySymbol<tarnic_camera_default_request_settings_t>(
            library, TARNIC_CAMERA_DEFAULT_REQUEST_SETTINGS_SYM);
    extensions.getSessionCharacteristics =
            librarySymbol<tarnic_camera_get_session_characteristics_t>(
                    library, TARNIC_CAMERA_GET_SESSION_CHARACTERISTICS_SYM);
    extensions.getTorchStrengthLevel = librarySymbol<tarnic_camera_get_torch_strength_level_t>(
            library, TARNIC_CAMERA_GET_TORCH_STRENGTH_LEVEL_SYM);
    extensions.turnOnTorchWithStrengthLevel =
            librarySymbol<tarnic_camera_turn_on_torch_with_strength_level_t>(
                    library, TARNIC_CAMERA_TURN_ON_TORCH_WITH_STRENGTH_LEVEL_SYM);
    extensions.hasReadoutTimestamp = librarySymbol<tarnic_camera_has_readout_timestamp_t>(
            library, TARNIC_CAMERA_HAS_READOUT_TIMESTAMP_SYM);
    return create(module, extensions, std::move(listener), status);
}

std::shared_ptr<Aidl2LegacyCameraModule> Aidl2LegacyCameraModule::createFromModule(
        camera_module_t* module, const ExtensionEntryPoints& extensions, StatusListener listener,
        int32_t* status) {
    if (module == nullptr) {
        ALOGE("No camera module given");
        setStatus(status, -EINVAL);
        return nullptr;
    }
    return create(module, extensions, std::move(listener), status);
}

std::shared_ptr<Aidl2LegacyCameraModule> Aidl2LegacyCameraModule::create(
        camera_module_t* module, const ExtensionEntryPoints& extensions, StatusListener listener,
        int32_t* status) {
    auto object = std::make_shared<Aidl2LegacyCameraModule>(PrivateTag{}, module, extensions,
                                                            std::move(listener));
    int32_t result = object->bringUp();
    setStatus(status, result);
    return result == 0 ? object : nullptr;
}

Aidl2LegacyCameraModule::Aidl2LegacyCameraModule()
    : mListener(std::make_shared<const StatusListener>()) {}

Aidl2LegacyCameraModule::Aidl2LegacyCameraModule(PrivateTag, camera_module_t* module,
                                                 const ExtensionEntryPoints& extensions,
                                                 StatusListener listener)
    : mModule(module),
      mExtensions(extensions),
      mListener(std::make_shared<const StatusListener>(std::move(listener))) {
    mCallbacks.camera_device_status_change = sCameraDeviceStatusChange;
    mCallbacks.torch_mode_status_change = sTorchModeStatusChange;
    mCallbacks.owner = this;
}

Aidl2LegacyCameraModule::~Aidl2LegacyCameraModule() = default;

void Aidl2LegacyCameraModule::MetadataDeleter::operator()(camera_metadata_t* metadata) const {
    free_camera_metadata(metadata);
}

int32_t Aidl2LegacyCameraModule::checkModuleRecord() const {
    const hw_module_t& common = mModule->common;
    if (common.tag != HARDWARE_MODULE_TAG) {
        ALOGE("Camera module tag is 0x%x, not 0x%x", common.tag, HARDWARE_MODULE_TAG);
        return -EINVAL;
    }
    if (common.id == nullptr || strcmp(common.id, CAMERA_HARDWARE_MODULE_ID) != 0) {
        ALOGE("Module id is %s, not %s", common.id != nullptr ? common.id : "(null)",
              CAMERA_HARDWARE_MODULE_ID);
        return -EINVAL;
    }
    // Before 2.0 camera_info has no device version; after 2.x the record is unknown.
    if (common.module_api_version < CAMERA_MODULE_API_VERSION_2_0 ||
        common.module_api_version >= HARDWARE_MODULE_API_VERSION(3, 0)) {
        ALOGE("Camera module API version 0x%x is not supported (2.0 to 2.x)",
              common.module_api_version);
        return -EINVAL;
    }
    if (common.methods == nullptr || common.methods->open == nullptr ||
        mModule->get_number_of_cameras == nullptr || mModule->get_camera_info == nullptr) {
        ALOGE("Camera module lacks open, get_number_of_cameras or get_camera_info");
        return -EINVAL;
    }
    return 0;
}

int32_t Aidl2LegacyCameraModule::bringUp() {
    int32_t status = checkModuleRecord();
    if (status != 0) return status;
    mApiVersion = mModule->common.module_api_version;

    auto init = moduleEntry(*mModule, &camera_module_t::init, CAMERA_MODULE_API_VERSION_2_4);
    InsideModule inside;
    if (init != nullptr && (status = init()) != 0) {
        ALOGE("Camera module init failed: %d", status);
        return status < 0 ? status : -ENODEV;
    }
    auto setCallbacks =
            moduleEntry(*mModule, &camera_module_t::set_callbacks, CAMERA_MODULE_API_VERSION_2_1);
    if (setCallbacks != nullptr && (status = setCallbacks(&mCallbacks)) != 0) {
        ALOGE("Camera module set_callbacks failed: %d", status);
        return status < 0 ? status : -ENODEV;
    }

    int count = mModule->get_number_of_cameras();
    if (count < 0 || count > kMaxCameras) {
        ALOGE("Camera module reports %d cameras", count);
        return -ENODEV;
    }
    mCameraStatus.assign(count, 0);
    for (int id = 0; id < count; ++id) {
        uint32_t version = 0;
        if ((status = getDeviceVersion(id, &version)) != 0) {
            ALOGE("Camera %d is not usable: get_camera_info failed: %d", id, status);
            mCameraStatus[id] = -ENODEV;
        } else if (version < CAMERA_DEVICE_API_VERSION_3_2) {
            ALOGE("Camera %d is not usable: device version 0x%x is older than 3.2", id, version);
            mCameraStatus[id] = -ENODEV;
        }
    }
    ALOGI("Camera module %s (API 0x%x): %d cameras, %zu usable; optional entry points:%s%s%s%s%s",
          mModule->common.name != nullptr ? mModule->common.name : "(unnamed)", mApiVersion, count,
          getUsableCameraIds().size(),
          mExtensions.defaultRequestSettings != nullptr ? " default-settings" : "",
          mExtensions.getSessionCharacteristics != nullptr ? " session-characteristics" : "",
          mExtensions.getTorchStrengthLevel != nullptr ? " get-torch-strength" : "",
          mExtensions.turnOnTorchWithStrengthLevel != nullptr ? " set-torch-strength" : "",
          mExtensions.hasReadoutTimestamp != nullptr ? " readout-timestamps" : "");
    return 0;
}

int32_t Aidl2LegacyCameraModule::checkCamera(const char* caller, int32_t cameraId) const {
    if (mModule == nullptr) {
        ALOGE("%s: no camera module", caller);
        return -ENODEV;
    }
    if (cameraId < 0) {
        ALOGE("%s: camera id %d is negative", caller, cameraId);
        return -EINVAL;
    }
    const bool builtIn = static_cast<size_t>(cameraId) < mCameraStatus.size();
    int32_t status = builtIn ? mCameraStatus[cameraId] : -ENODEV;
    {
        std::lock_guard<std::mutex> guard(mCameraLock);
        auto announced = mAnnounced.find(cameraId);
        if (announced != mAnnounced.end() && !announced->second) {
            status = -ENODEV;
        } else if (announced != mAnnounced.end() && !builtIn) {
            status = 0;
        }
    }
    if (status != 0) ALOGE("%s: camera %d is not usable", caller, cameraId);
    return status;
}

int32_t Aidl2LegacyCameraModule::checkCamera(const char* caller, const char* cameraId,
                                             int32_t* number) const {
    if (cameraId == nullptr) {
        ALOGE("%s: no camera id", caller);
        return -EINVAL;
    }
    if (mModule == nullptr) {
        ALOGE("%s: no camera module", caller);
        return -ENODEV;
    }
    const char* end = cameraId + strlen(cameraId);
    auto [rest, error] = std::from_chars(cameraId, end, *number);
    if (error != std::errc() || rest != end || end == cameraId || cameraId[0] == '-') {
        ALOGE("%s: camera id \"%s\" is not a camera number", caller, cameraId);
        return -EINVAL;
    }
    return checkCamera(caller, *number);
}

int32_t Aidl2LegacyCameraModule::openDevice(const char* cameraId, camera3_device_t** device) {
    if (device == nullptr) return -EINVAL;
    camera3_device_t* opened = nullptr;
    int32_t number = 0;
    int32_t status = checkCamera(__func__, cameraId, &number);
    if (status == 0) status = openLegacyDevice(cameraId, &opened);
    *device = status == 0 ? guard(opened, !hasReadoutTimestamps(number)) : refusedGuard(status);
    return status;
}

int32_t Aidl2LegacyCameraModule::openLegacyDevice(const char* cameraId, camera3_device_t** device) {
    InsideModule inside;
    hw_device_t* opened = nullptr;
    int32_t status = mModule->common.methods->open(&mModule->common, cameraId, &opened);
    if (status != 0) {
        ALOGE("%s: camera %s: open failed: %d", __func__, cameraId, status);
        return status;
    }
    if (opened == nullptr) {
        ALOGE("%s: camera %s: open returned no device", __func__, cameraId);
        return -ENODEV;
    }
    if (opened->tag != HARDWARE_DEVICE_TAG || opened->version < CAMERA_DEVICE_API_VERSION_3_2) {
        ALOGE("%s: camera %s: device tag 0x%x version 0x%x is not a HAL3 device of 3.2 or later",
              __func__, cameraId, opened->tag, opened->version);
        if (opened->tag == HARDWARE_DEVICE_TAG && opened->close != nullptr) opened->close(opened);
        return -ENODEV;
    }
    ALOGI("%s: camera %s opened, device version 0x%x", __func__, cameraId, opened->version);
    *device = reinterpret_cast<camera3_device_t*>(opened);
    return 0;
}

camera3_device_t* Aidl2LegacyCameraModule::guard(camera3_device_t* device, bool standardShutter) {
    auto guarded = std::make_unique<GuardedDevice>(device, standardShutter);
    camera3_device_t* handedOut = guarded->device();
    std::lock_guard<std::mutex> lock(mHandedOutLock);
    mGuards.push_back(std::move(guarded));
    return handedOut;
}

camera3_device_t* Aidl2LegacyCameraModule::refusedGuard(int32_t status) {
    // A refused guard never changes, so one per status serves every refused open.
    std::lock_guard<std::mutex> lock(mHandedOutLock);
    std::unique_ptr<GuardedDevice>& refused = mRefusedGuards[status];
    if (refused == nullptr) refused = std::make_unique<GuardedDevice>(status);
    return refused->device();
}

bool Aidl2LegacyCameraModule::hasReadoutTimestamps(int32_t cameraId) const {
    auto has = mExtensions.hasReadoutTimestamp;
    if (has == nullptr) return false;
    InsideModule inside;
    return has(cameraId) != 0;
}

const camera_metadata_t* Aidl2LegacyCameraModule::withReadoutKey(
        std::map<int32_t, MetadataCopy>& copies, int32_t id,
        const camera_metadata_t* characteristics) {
    camera_metadata_ro_entry_t entry{};
    if (characteristics == nullptr ||
        validate_camera_metadata_structure(characteristics, nullptr) != 0 ||
        find_camera_metadata_ro_entry(characteristics, ANDROID_SENSOR_READOUT_TIMESTAMP, &entry) ==
                0) {
        return characteristics;
    }
    std::lock_guard<std::mutex> lock(mHandedOutLock);
    MetadataCopy& copy = copies[id];
    if (copy == nullptr) {
        // The value is one byte, held in the entry itself: no more data room is needed.
        copy.reset(allocate_camera_metadata(get_camera_metadata_entry_count(characteristics) + 1,
                                            get_camera_metadata_data_count(characteristics)));
        const uint8_t notSupported = ANDROID_SENSOR_READOUT_TIMESTAMP_NOT_SUPPORTED;
        if (copy == nullptr || append_camera_metadata(copy.get(), characteristics) != 0 ||
            add_camera_metadata_entry(copy.get(), ANDROID_SENSOR_READOUT_TIMESTAMP, &notSupported,
                                      1) != 0) {
            ALOGE("Camera %d: cannot add the readout timestamp key to the characteristics", id);
            copy.reset();
            return characteristics;
        }
    }
    return copy.get();
}

int32_t Aidl2LegacyCameraModule::getCameraInfo(int32_t instanceId, camera_info* info) {
    if (info == nullptr) return -EINVAL;
    int32_t status = checkCamera(__func__, instanceId);
    if (status != 0) return status;
    {
        InsideModule inside;
        status = mModule->get_camera_info(instanceId, info);
    }
    if (status != 0) {
        ALOGE("%s: camera %d: get_camera_info failed: %d", __func__, instanceId, status);
        return status;
    }
    if (!hasReadoutTimestamps(instanceId)) {
        info->static_camera_characteristics = const_cast<camera_metadata_t*>(
                withReadoutKey(mCharacteristics, instanceId, info->static_camera_characteristics));
    }
    if (mApiVersion < CAMERA_MODULE_API_VERSION_2_4) {
        info->resource_cost = kUnknownResourceCost;
        info->conflicting_devices = nullptr;
        info->conflicting_devices_length = 0;
    } else if (info->conflicting_devices == nullptr) {
        info->conflicting_devices_length = 0;
    }
    return 0;
}

int32_t Aidl2LegacyCameraModule::setTorchMode(const char* cameraId, bool on) {
    int32_t number = 0;
    int32_t status = checkCamera(__func__, cameraId, &number);
    if (status != 0) return status;
    auto setTorch =
            moduleEntry(*mModule, &camera_module_t::set_torch_mode, CAMERA_MODULE_API_VERSION_2_4);
    if (setTorch == nullptr) return -ENOSYS;
    InsideModule inside;
    return setTorch(cameraId, on);
}

int32_t Aidl2LegacyCameraModule::getPhysicalCameraInfo(int32_t physicalCameraId,
                                                       const camera_metadata_t** characteristics) {
    if (characteristics == nullptr) return -EINVAL;
    if (mModule == nullptr) {
        ALOGE("%s: no camera module", __func__);
        return -ENODEV;
    }
    auto getInfo = moduleEntry(*mModule, &camera_module_t::get_physical_camera_info,
                               CAMERA_MODULE_API_VERSION_2_5);
    if (getInfo == nullptr) return -ENOSYS;
    camera_metadata_t* metadata = nullptr;
    int32_t status = 0;
    {
        InsideModule inside;
        status = getInfo(physicalCameraId, &metadata);
    }
    if (status != 0) return status;
    *characteristics =
            mExtensions.hasReadoutTimestamp != nullptr
                    ? metadata
                    : withReadoutKey(mPhysicalCharacteristics, physicalCameraId, metadata);
    return 0;
}

int32_t Aidl2LegacyCameraModule::isStreamCombinationSupported(int32_t instanceId,
                                                              const StreamCombination* combination) {
    if (!isValid(combination)) return -EINVAL;
    int32_t status = checkCamera(__func__, instanceId);
    if (status != 0) return status;
    auto isSupported = moduleEntry(*mModule, &camera_module_t::is_stream_combination_supported,
                                   CAMERA_MODULE_API_VERSION_2_5);
    if (isSupported != nullptr) {
        LegacyStreamCombination legacy(*combination);
        InsideModule inside;
        status = isSupported(instanceId, legacy.get());
        if (status != -ENOSYS) return status;
    }
    return isInStaticConfigurations(instanceId, *combination);
}

int32_t Aidl2LegacyCameraModule::isInStaticConfigurations(int32_t cameraId,
                                                          const StreamCombination& combination) {
    camera_info info{};
    int32_t status = 0;
    {
        InsideModule inside;
        status = mModule->get_camera_info(cameraId, &info);
    }
    if (status != 0) {
        ALOGE("Camera %d: get_camera_info failed: %d", cameraId, status);
        return status;
    }
    const camera_metadata_t* characteristics = info.static_camera_characteristics;
    if (characteristics == nullptr ||
        validate_camera_metadata_structure(characteristics, nullptr) != 0) {
        ALOGE("Camera %d: static characteristics are missing or malformed", cameraId);
        return -ENODEV;
    }
    return checkStaticStreamConfigurations(characteristics, combination);
}

int32_t Aidl2LegacyCameraModule::getTorchStrengthLevel(const char* cameraId, int32_t* level) {
    if (level == nullptr) return -EINVAL;
    int32_t number = 0;
    int32_t status = checkCamera(__func__, cameraId, &number);
    if (status != 0) return status;
    auto getLevel = mExtensions.getTorchStrengthLevel;
    if (getLevel == nullptr) return -ENOSYS;
    InsideModule inside;
    return getLevel(cameraId, level);
}

int32_t Aidl2LegacyCameraModule::turnOnTorchWithStrengthLevel(const char* cameraId, int32_t level) {
    int32_t number = 0;
    int32_t status = checkCamera(__func__, cameraId, &number);
    if (status != 0) return status;
    auto turnOn = mExtensions.turnOnTorchWithStrengthLevel;
    if (turnOn == nullptr) return -ENOSYS;
    InsideModule inside;
    return turnOn(cameraId, level);
}

const camera_metadata_t* Aidl2LegacyCameraModule::constructDefaultRequestSettings(
        int32_t instanceId, int32_t requestTemplate) {
    if (checkCamera(__func__, instanceId) != 0) return nullptr;
    auto construct = mExtensions.defaultRequestSettings;
    if (construct == nullptr) return nullptr;
    InsideModule inside;
    return construct(instanceId, requestTemplate);
}

int32_t Aidl2LegacyCameraModule::getSessionCharacteristics(
        int32_t instanceId, const StreamCombination* combination,
        const camera_metadata_t** characteristics) {
    if (!isValid(combination) || characteristics == nullptr) return -EINVAL;
    int32_t status = checkCamera(__func__, instanceId);
    if (status != 0) return status;
    auto getCharacteristics = mExtensions.getSessionCharacteristics;
    if (getCharacteristics == nullptr) return -ENOSYS;
    LegacyStreamCombination legacy(*combination);
    const camera_metadata_t* metadata = nullptr;
    {
        InsideModule inside;
        status = getCharacteristics(instanceId, legacy.get(), combination->sessionParameters,
                                    &metadata);
    }
    if (status == 0) *characteristics = metadata;
    return status;
}

int32_t Aidl2LegacyCameraModule::getNumberOfCameras() const {
    return static_cast<int32_t>(mCameraStatus.size());
}

std::vector<int32_t> Aidl2LegacyCameraModule::getUsableCameraIds() const {
    std::vector<int32_t> ids;
    std::lock_guard<std::mutex> guard(mCameraLock);
    for (size_t id = 0; id < mCameraStatus.size(); ++id) {
        auto announced = mAnnounced.find(static_cast<int32_t>(id));
        const bool absent = announced != mAnnounced.end() && !announced->second;
        if (mCameraStatus[id] == 0 && !absent) ids.push_back(static_cast<int32_t>(id));
    }
    for (const auto& [id, present] : mAnnounced) {
        if (present && static_cast<size_t>(id) >= mCameraStatus.size()) ids.push_back(id);
    }
    return ids;
}

void Aidl2LegacyCameraModule::setAnnounced(int32_t cameraId, int32_t status) {
    if (cameraId < 0) return;
    std::lock_guard<std::mutex> guard(mCameraLock);
    // Enumerating: not usable yet.
    mAnnounced[cameraId] = status == CAMERA_DEVICE_STATUS_PRESENT;
}

uint16_t Aidl2LegacyCameraModule::getModuleApiVersion() const {
    return mApiVersion;
}

int32_t Aidl2LegacyCameraModule::getDeviceVersion(int32_t cameraId, uint32_t* version) const {
    if (version == nullptr || cameraId < 0) return -EINVAL;
    if (mModule == nullptr) return -ENODEV;
    camera_info info{};
    InsideModule inside;
    int32_t status = mModule->get_camera_info(cameraId, &info);
    if (status == 0) *version = info.device_version;
    return status;
}

void Aidl2LegacyCameraModule::setStatusListener(StatusListener listener) {
    auto replacement = std::make_shared<const StatusListener>(std::move(listener));
    std::lock_guard<std::mutex> guard(mListenerLock);
    // The previous listener is released after the lock, with `replacement`'s old value.
    std::swap(mListener, replacement);
}

void Aidl2LegacyCameraModule::setModuleCpuMeterEnabled(bool enabled) {
    ModuleCpuMeter::setEnabled(enabled);
}

uint64_t Aidl2LegacyCameraModule::threadCpuInsideModuleNs() {
    return ModuleCpuMeter::threadInsideNs();
}

std::shared_ptr<const Aidl2LegacyCameraModule::StatusListener> Aidl2LegacyCameraModule::listener()
        const {
    std::lock_guard<std::mutex> guard(mListenerLock);
    return mListener;
}

void Aidl2LegacyCameraModule::sCameraDeviceStatusChange(const camera_module_callbacks_t* callbacks,
                                                        int cameraId, int newStatus) {
    if (callbacks == nullptr) {
        ALOGE("Device status change without the callbacks record");
        return;
    }
    Aidl2LegacyCameraModule* self = static_cast<const ModuleCallbacks*>(callbacks)->owner;
    ALOGI("Camera %d: device status %d", cameraId, newStatus);
    // Usable before the provider hears of it, so that it can open the camera at once.
    self->setAnnounced(cameraId, newStatus);
    auto listener = self->listener();
    if (listener->deviceStatusChanged) listener->deviceStatusChanged(cameraId, newStatus);
}

void Aidl2LegacyCameraModule::sTorchModeStatusChange(const camera_module_callbacks_t* callbacks,
                                                     const char* cameraId, int newStatus) {
    if (callbacks == nullptr || cameraId == nullptr) {
        ALOGE("Torch status change without the callbacks record or a camera id");
        return;
    }
    const Aidl2LegacyCameraModule* self = static_cast<const ModuleCallbacks*>(callbacks)->owner;
    ALOGI("Camera %s: torch status %d", cameraId, newStatus);
    auto listener = self->listener();
    if (listener->torchStatusChanged) listener->torchStatusChanged(cameraId, newStatus);
}

}  // namespace kovo::aidl2legacy
