#define LOG_TAG "VirtualCamera"

#include "VirtualCameraModule.h"

#include <errno.h>
#include <hardware/camera3.h>
#include <log/log.h>
#include <poll.h>
#include <string.h>
#include <sys/eventfd.h>
#include <system/camera.h>

#include <charconv>
#include <thread>

extern "C" camera_module_t HAL_MODULE_INFO_SYM;

namespace virtual_camera {
namespace {

constexpr int kResourceCost = 50;
constexpr float kWideFocalLength = 4.38f;
constexpr float kTeleFocalLength = 9.0f;
constexpr float kFrontFocalLength = 2.5f;

std::vector<CameraDescription> publicCameraDescriptions(int count) {
    std::vector<CameraDescription> descriptions;
    descriptions.push_back({"0",
                            CAMERA_FACING_BACK,
                            90,
                            true,
                            true,
                            {kWideFocalLength, kTeleFocalLength},
                            {std::to_string(count), std::to_string(count + 1)}});
    if (count > 1)
        descriptions.push_back(
                {"1", CAMERA_FACING_FRONT, 270, false, false, {kFrontFocalLength}, {}});
    for (int id = 2; id < count; ++id) {
        descriptions.push_back(
                {std::to_string(id), CAMERA_FACING_BACK, 90, false, true, {kWideFocalLength}, {}});
    }
    return descriptions;
}

std::vector<CameraDescription> physicalCameraDescriptions(const CameraDescription& logical) {
    return {{logical.physicalIds[0], CAMERA_FACING_BACK, 90, false, true, {kWideFocalLength}, {}},
            {logical.physicalIds[1], CAMERA_FACING_BACK, 90, false, true, {kTeleFocalLength}, {}}};
}

// Like a module that starts a worker at its first open and keeps it (and its fd) for the life of
// the process: a legacy module has no call that would end it.
void startBackgroundThread() {
    static std::once_flag started;
    std::call_once(started, [] {
        int fd = eventfd(0, EFD_CLOEXEC);
        if (fd < 0) {
            ALOGE("background thread: eventfd failed: %s", strerror(errno));
            return;
        }
        std::thread([fd] {
            pollfd entry{fd, POLLIN, 0};
            while (true) poll(&entry, 1, -1);
        }).detach();
        ALOGI("background thread started");
    });
}

// Strict decimal camera id, -1 when it is not one.
int parseCameraId(const char* text) {
    if (text == nullptr) return -1;
    int value = -1;
    const char* end = text + strlen(text);
    auto [next, error] = std::from_chars(text, end, value);
    return (error == std::errc() && next == end && next != text) ? value : -1;
}

}  // namespace

VirtualCameraModule& VirtualCameraModule::instance() {
    static VirtualCameraModule module;
    return module;
}

void VirtualCameraModule::ensureLoadedLocked() {
    if (!mLoaded) loadLocked();
}

void VirtualCameraModule::loadLocked() {
    if (mLoaded) {
        for (const Camera& camera : mCameras) {
            if (camera.device->isOpen()) {
                ALOGE("init with camera %s open: options left as they were",
                      camera.characteristics->description().id.c_str());
                return;
            }
        }
        for (Camera& camera : mCameras) mRetired.push_back(std::move(camera));
        for (Camera& camera : mPhysicalCameras) mRetired.push_back(std::move(camera));
        for (Camera& camera : mExternalCameras) mRetired.push_back(std::move(camera));
        mCameras.clear();
        mPhysicalCameras.clear();
        mExternalCameras.clear();
    }
    mOptions = optionsFromEnvironment();
    std::vector<CameraDescription> descriptions = publicCameraDescriptions(mOptions.cameras);
    for (const CameraDescription& description : physicalCameraDescriptions(descriptions.front())) {
        Options physicalOptions = mOptions;
        physicalOptions.halBufferManager = false;
        mPhysicalCameras.push_back(
                {std::make_unique<CameraCharacteristics>(description, physicalOptions), nullptr});
    }
    auto makeCamera = [this](CameraDescription description) {
        Camera camera;
        camera.characteristics =
                std::make_unique<CameraCharacteristics>(std::move(description), mOptions);
        camera.device = std::make_unique<VirtualCameraDevice>(
                *camera.characteristics, &HAL_MODULE_INFO_SYM.common,
                [this](const std::string& id, bool open) { deviceOpenChanged(id, open); });
        return camera;
    };
    for (CameraDescription& description : descriptions) {
        mCameras.push_back(makeCamera(std::move(description)));
    }
    if (mOptions.externalCamera) {
        mExternalCameras.push_back(makeCamera({std::to_string(*mOptions.externalCamera),
                                               CAMERA_FACING_EXTERNAL,
                                               0,
                                               false,
                                               false,
                                               {kFrontFocalLength},
                                               {}}));
    }
    mLoaded = true;
    ALOGI("%d cameras, HAL buffer manager %s", mOptions.cameras,
          mOptions.halBufferManager ? "on" : "off");
}

VirtualCameraModule::Camera* VirtualCameraModule::publicCameraLocked(int cameraId) {
    ensureLoadedLocked();
    if (cameraId >= 0 && cameraId < static_cast<int>(mCameras.size())) return &mCameras[cameraId];
    for (Camera& camera : mExternalCameras) {
        if (cameraId == *mOptions.externalCamera) return &camera;
    }
    return nullptr;
}

VirtualCameraModule::Camera* VirtualCameraModule::publicCameraLocked(const char* cameraId) {
    return publicCameraLocked(parseCameraId(cameraId));
}

int VirtualCameraModule::init() {
    std::lock_guard<std::mutex> guard(mLock);
    loadLocked();
    return 0;
}

int VirtualCameraModule::getNumberOfCameras() {
    std::lock_guard<std::mutex> guard(mLock);
    ensureLoadedLocked();
    return static_cast<int>(mCameras.size());
}

int VirtualCameraModule::getCameraInfo(int cameraId, camera_info* info) {
    std::lock_guard<std::mutex> guard(mLock);
    Camera* camera = publicCameraLocked(cameraId);
    if (camera == nullptr || info == nullptr) {
        ALOGE("get_camera_info: bad camera %d or null info", cameraId);
        return -EINVAL;
    }
    const CameraDescription& description = camera->characteristics->description();
    info->facing = description.facing;
    info->orientation = description.orientation;
    info->device_version =
            mOptions.legacyDevice ? CAMERA_DEVICE_API_VERSION_3_3 : CAMERA_DEVICE_API_VERSION_3_6;
    info->static_camera_characteristics = camera->characteristics->staticMetadata();
    info->resource_cost = kResourceCost;
    info->conflicting_devices = nullptr;
    info->conflicting_devices_length = 0;
    return 0;
}

int VirtualCameraModule::setCallbacks(const camera_module_callbacks_t* callbacks) {
    {
        std::lock_guard<std::mutex> guard(mLock);
        mCallbacks = callbacks;
    }
    announceExternalCamera();
    return 0;
}

void VirtualCameraModule::announceExternalCamera() {
    const camera_module_callbacks_t* callbacks;
    std::string id;
    {
        std::lock_guard<std::mutex> guard(mLock);
        ensureLoadedLocked();
        if (mExternalCameras.empty()) return;
        callbacks = mCallbacks;
        id = mExternalCameras.front().characteristics->description().id;
    }
    if (callbacks != nullptr && callbacks->camera_device_status_change != nullptr) {
        ALOGI("external camera %s present", id.c_str());
        callbacks->camera_device_status_change(callbacks, std::stoi(id),
                                               CAMERA_DEVICE_STATUS_PRESENT);
    }
}

int VirtualCameraModule::open(const char* cameraId, hw_device_t** device) {
    VirtualCameraDevice* cameraDevice;
    Options options;
    {
        std::lock_guard<std::mutex> guard(mLock);
        Camera* camera = publicCameraLocked(cameraId);
        if (camera == nullptr || device == nullptr) {
            ALOGE("open: bad camera id \"%s\" or null device", cameraId != nullptr ? cameraId : "");
            return -EINVAL;
        }
        cameraDevice = camera->device.get();
        options = mOptions;
        if (options.openLimit > 0 && !cameraDevice->isOpen()) {
            int openCount = 0;
            for (auto* cameras : {&mCameras, &mExternalCameras}) {
                for (const Camera& other : *cameras) openCount += other.device->isOpen() ? 1 : 0;
            }
            if (openCount >= options.openLimit) {
                ALOGE("open of camera %s refused: %d of %d cameras open", cameraId, openCount,
                      options.openLimit);
                return -EUSERS;
            }
        } else if (options.openLimit > 0) {
            ALOGE("open of camera %s refused: already open", cameraId);
            return -EUSERS;
        }
    }
    if (options.backgroundThread) startBackgroundThread();
    int status = cameraDevice->open(options, device);
    if (status != 0) ALOGE("open of camera %s failed: %s", cameraId, strerror(-status));
    return status;
}

int VirtualCameraModule::torchCheckLocked(Camera* camera, const char* cameraId) {
    if (camera == nullptr) {
        ALOGE("torch: bad camera id \"%s\"", cameraId != nullptr ? cameraId : "");
        return -EINVAL;
    }
    if (!camera->characteristics->description().flash) return -ENOSYS;
    if (camera->device->isOpen()) return -EBUSY;
    return 0;
}

void VirtualCameraModule::turnOffTorchLocked(Camera& camera) {
    camera.torchOn = false;
    // The next time it comes on, the torch starts from the default strength.
    camera.torchLevel = kTorchDefaultLevel;
}

int VirtualCameraModule::setTorchMode(const char* cameraId, bool enabled) {
    {
        std::lock_guard<std::mutex> guard(mLock);
        Camera* camera = publicCameraLocked(cameraId);
        if (int status = torchCheckLocked(camera, cameraId); status != 0) return status;
        if (enabled) {
            camera->torchOn = true;
        } else {
            turnOffTorchLocked(*camera);
        }
    }
    torchStatusChanged(cameraId,
                       enabled ? TORCH_MODE_STATUS_AVAILABLE_ON : TORCH_MODE_STATUS_AVAILABLE_OFF);
    return 0;
}

int VirtualCameraModule::turnOnTorchWithStrengthLevel(const char* cameraId, int32_t level) {
    {
        std::lock_guard<std::mutex> guard(mLock);
        Camera* camera = publicCameraLocked(cameraId);
        if (int status = torchCheckLocked(camera, cameraId); status != 0) return status;
        if (level < 1 || level > kTorchMaxLevel) {
            ALOGE("torch strength %d outside 1..%d", level, kTorchMaxLevel);
            return -EINVAL;
        }
        camera->torchOn = true;
        camera->torchLevel = level;
    }
    torchStatusChanged(cameraId, TORCH_MODE_STATUS_AVAILABLE_ON);
    return 0;
}

int VirtualCameraModule::getTorchStrengthLevel(const char* cameraId, int32_t* level) {
    std::lock_guard<std::mutex> guard(mLock);
    Camera* camera = publicCameraLocked(cameraId);
    if (camera == nullptr || level == nullptr) return -EINVAL;
    if (!camera->characteristics->description().flash) return -ENOSYS;
    *level = camera->torchLevel;
    return 0;
}

int VirtualCameraModule::hasReadoutTimestamp(int cameraId) {
    std::lock_guard<std::mutex> guard(mLock);
    return publicCameraLocked(cameraId) != nullptr && mOptions.readoutTimestamp ? 1 : 0;
}

void VirtualCameraModule::torchStatusChanged(const std::string& cameraId, int status) {
    const camera_module_callbacks_t* callbacks;
    {
        std::lock_guard<std::mutex> guard(mLock);
        callbacks = mCallbacks;
    }
    if (callbacks != nullptr && callbacks->torch_mode_status_change != nullptr) {
        callbacks->torch_mode_status_change(callbacks, cameraId.c_str(), status);
    }
}

void VirtualCameraModule::deviceOpenChanged(const std::string& cameraId, bool open) {
    {
        std::lock_guard<std::mutex> guard(mLock);
        Camera* camera = publicCameraLocked(cameraId.c_str());
        if (camera == nullptr || !camera->characteristics->description().flash) return;
        turnOffTorchLocked(*camera);
    }
    // An open camera owns its flash unit.
    torchStatusChanged(cameraId,
                       open ? TORCH_MODE_STATUS_NOT_AVAILABLE : TORCH_MODE_STATUS_AVAILABLE_OFF);
}

int VirtualCameraModule::getPhysicalCameraInfo(int physicalCameraId,
                                               camera_metadata_t** staticMetadata) {
    std::lock_guard<std::mutex> guard(mLock);
    ensureLoadedLocked();
    int index = physicalCameraId - static_cast<int>(mCameras.size());
    if (staticMetadata == nullptr || index < 0 ||
        index >= static_cast<int>(mPhysicalCameras.size())) {
        ALOGE("get_physical_camera_info: bad physical camera %d or null metadata", physicalCameraId);
        return -EINVAL;
    }
    // The signature is not const, but the characteristics must never change.
    *staticMetadata = const_cast<camera_metadata_t*>(
            mPhysicalCameras[index].characteristics->staticMetadata());
    return 0;
}

int VirtualCameraModule::checkCombinationLocked(int cameraId,
                                                const camera_stream_combination_t* streams) {
    Camera* camera = publicCameraLocked(cameraId);
    if (camera == nullptr || streams == nullptr ||
        (streams->num_streams > 0 && streams->streams == nullptr)) {
        ALOGE("stream combination query: bad camera %d or null streams", cameraId);
        return -EINVAL;
    }
    std::vector<StreamDescription> descriptions;
    for (uint32_t i = 0; i < streams->num_streams; ++i) {
        const camera_stream_t& stream = streams->streams[i];
        descriptions.push_back(
                {stream.stream_type, stream.width, stream.height, stream.format, stream.rotation,
                 stream.physical_camera_id != nullptr ? stream.physical_camera_id : ""});
    }
    return camera->characteristics->checkStreams(descriptions, streams->operation_mode);
}

int VirtualCameraModule::isStreamCombinationSupported(int cameraId,
                                                      const camera_stream_combination_t* streams) {
    std::lock_guard<std::mutex> guard(mLock);
    return checkCombinationLocked(cameraId, streams);
}

int VirtualCameraModule::getSessionCharacteristics(int cameraId,
                                                   const camera_stream_combination_t* streams,
                                                   const camera_metadata_t** characteristics) {
    std::lock_guard<std::mutex> guard(mLock);
    if (characteristics == nullptr) return -EINVAL;
    if (int status = checkCombinationLocked(cameraId, streams); status != 0) return status;
    *characteristics = mCameras[cameraId].characteristics->sessionCharacteristics();
    return 0;
}

const camera_metadata_t* VirtualCameraModule::defaultRequestSettings(int cameraId,
                                                                     int requestTemplate) {
    std::lock_guard<std::mutex> guard(mLock);
    Camera* camera = publicCameraLocked(cameraId);
    return camera != nullptr ? camera->characteristics->defaultSettings(requestTemplate) : nullptr;
}

void VirtualCameraModule::notifyDeviceStateChange(uint64_t deviceState) {
    ALOGI("device state 0x%llx", static_cast<unsigned long long>(deviceState));
}

}  // namespace virtual_camera
