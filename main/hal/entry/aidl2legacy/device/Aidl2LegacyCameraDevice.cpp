#include "Aidl2LegacyCameraDevice.h"

#include <Aidl2LegacyCameraModule.h>
#include <StreamCombination.h>
#include <aidl2legacy/utils/MetadataConversion.h>
#include <aidl2legacy/utils/StatusConversion.h>
#include <hardware/camera_common.h>

#include <cerrno>
#include <cstdlib>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "Aidl2LegacyCameraDeviceSession.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::Stream;

// The module's record of `config`. The stream array is left uninitialised apart from the listed
// fields, and its physical camera ids point into `config`: both live as long as the call.
std::unique_ptr<CombinationStream[]> makeStreamCombination(
        const aidl::android::hardware::camera::device::StreamConfiguration& config,
        const camera_metadata_t* sessionParameters, StreamCombination& combination) {
    std::unique_ptr<CombinationStream[]> streams(new CombinationStream[config.streams.size()]);
    for (size_t i = 0; i < config.streams.size(); ++i) {
        const Stream& stream = config.streams[i];
        CombinationStream& out = streams[i];
        out.streamType = static_cast<int32_t>(stream.streamType);
        out.width = static_cast<uint32_t>(stream.width);
        out.height = static_cast<uint32_t>(stream.height);
        out.format = static_cast<int32_t>(stream.format);
        out.usage = static_cast<uint32_t>(stream.usage);
        out.dataSpace = static_cast<int32_t>(stream.dataSpace);
        out.rotation = static_cast<int32_t>(stream.rotation);
        out.physicalCameraId =
                stream.physicalCameraId.empty() ? "-1" : stream.physicalCameraId.c_str();
        out.groupId = stream.groupId;
        out.useCase = static_cast<int64_t>(stream.useCase);
        out.dynamicRangeProfile = static_cast<int32_t>(stream.dynamicRangeProfile);
        out.colorSpace = stream.colorSpace;
    }
    combination.streamCount = static_cast<uint32_t>(config.streams.size());
    combination.streams = streams.get();
    combination.operationMode = static_cast<uint32_t>(config.operationMode);
    combination.sessionParameters = sessionParameters;
    return streams;
}

}  // namespace

std::shared_ptr<Aidl2LegacyCameraDevice> Aidl2LegacyCameraDevice::create(const CreationInfo& info) {
    return ndk::SharedRefBase::make<Aidl2LegacyCameraDevice>(info);
}

Aidl2LegacyCameraDevice::Aidl2LegacyCameraDevice(const CreationInfo& info)
    : mLogLevel(0),
      mName(std::to_string(info.instanceId) + "-aidl-device"),
      mInstanceId(info.instanceId),
      mModule(info.module),
      mExtraInfo(info.extraInfo) {
    A2L_LOGI("[%s] ctor", __func__);
    mLogLevel = log::readLogLevel();
    mIdText = std::to_string(mInstanceId);
}

Aidl2LegacyCameraDevice::~Aidl2LegacyCameraDevice() {
    A2L_LOGI("[%s] dtor", __func__);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::getCameraCharacteristics(CameraMetadata* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    out->metadata.clear();
    if (mModule == nullptr) A2L_FATAL("[%s] Aidl2LegacyCameraModule is null", __func__);

    camera_info info{};
    const int32_t status = mModule->getCameraInfo(mInstanceId, &info);
    if (status != 0) {
        A2L_LOGE("[%s] fail to getCameraCharacteristics, status=%d", __func__, status);
        return convertStatus(status);
    }
    if (mLogLevel >= 1) {
        A2L_LOGI("[%s] characteristics size:%zu entryCount:%zu", __func__,
                 get_camera_metadata_size(info.static_camera_characteristics),
                 get_camera_metadata_entry_count(info.static_camera_characteristics));
    }
    convertMetadata(info.static_camera_characteristics, *out);
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::getPhysicalCameraCharacteristics(
        const std::string& physicalCameraId, CameraMetadata* out) {
    A2L_LOGI("[%s] inPhysicalCameraId:%s", __func__, physicalCameraId.c_str());
    if (out == nullptr) return convertStatus(-EINVAL);
    out->metadata.clear();

    // Non-numeric text asks for physical camera 0.
    const camera_metadata_t* characteristics = nullptr;
    const int32_t status =
            mModule->getPhysicalCameraInfo(atoi(physicalCameraId.c_str()), &characteristics);
    if (status != 0) {
        A2L_LOGE("[%s] fail to getPhysicalCameraCharacteristics, status=%d", __func__, status);
        return convertStatus(status);
    }
    convertMetadata(characteristics, *out);
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::getResourceCost(CameraResourceCost* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    camera_info info{};
    mModule->getCameraInfo(mInstanceId, &info);
    out->resourceCost = info.resource_cost;
    out->conflictingDevices.resize(info.conflicting_devices_length);
    A2L_LOGI("[%s] conflicting_devices_length:%lu", __func__, info.conflicting_devices_length);
    for (size_t i = 0; i < info.conflicting_devices_length; ++i) {
        out->conflictingDevices[i] = info.conflicting_devices[i];
    }
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::isStreamCombinationSupported(
        const StreamConfiguration& streams, bool* out) {
    return queryStreamCombination(streams, nullptr, out);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::isStreamCombinationWithSettingsSupported(
        const StreamConfiguration& streams, bool* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    const camera_metadata_t* sessionParameters = nullptr;
    convertMetadata(streams.sessionParams, sessionParameters);
    return queryStreamCombination(streams, sessionParameters, out);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::queryStreamCombination(
        const StreamConfiguration& streams, const camera_metadata_t* sessionParameters, bool* out) {
    StreamCombination combination{};
    int32_t status;
    {
        std::unique_ptr<CombinationStream[]> records =
                makeStreamCombination(streams, sessionParameters, combination);
        status = mModule->isStreamCombinationSupported(mInstanceId, &combination);
    }
    // -EINVAL is the module's "not supported", not a failure.
    *out = status == 0;
    if (status == 0 || status == -EINVAL) return ndk::ScopedAStatus::ok();
    return convertStatus(status);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::getSessionCharacteristics(
        const StreamConfiguration& sessionConfig, CameraMetadata* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    const camera_metadata_t* sessionParameters = nullptr;
    convertMetadata(sessionConfig.sessionParams, sessionParameters);
    StreamCombination combination{};
    std::unique_ptr<CombinationStream[]> records =
            makeStreamCombination(sessionConfig, sessionParameters, combination);

    const camera_metadata_t* characteristics = nullptr;
    const int32_t status =
            mModule->getSessionCharacteristics(mInstanceId, &combination, &characteristics);
    convertMetadata(characteristics, *out);
    if (status == 0) return ndk::ScopedAStatus::ok();
    return convertStatus(status);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::open(
        const std::shared_ptr<ICameraDeviceCallback>& callback,
        std::shared_ptr<ICameraDeviceSession>* session) {
    if (session == nullptr || callback == nullptr) return convertStatus(-EINVAL);

    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> deviceCallback =
            Aidl2LegacyCameraDeviceCallback::create({mInstanceId, callback});
    if (deviceCallback == nullptr) {
        A2L_LOGE("[%s] fail to create AidlCameraDeviceCallback", __func__);
        session->reset();
        return convertStatus(-ENODEV);
    }

    // The module's status is not looked at: the device it hands out goes on as it is.
    camera3_device_t* device = nullptr;
    mModule->openDevice(mIdText.c_str(), &device);

    Aidl2LegacyCameraDeviceSession::ResultInfo result{};
    std::shared_ptr<Aidl2LegacyCameraDeviceSession> newSession =
            Aidl2LegacyCameraDeviceSession::create({mInstanceId, device, deviceCallback}, result);
    if (result.status != 0) {
        A2L_LOGE("[%s] fail to create AidlCameraDeviceSession, status=%d", __func__, result.status);
        session->reset();
        return convertStatus(result.status);
    }

    const int32_t status = newSession->open(callback);
    if (status != 0) {
        A2L_LOGE("[%s] open aidl session fail, status=%d", __func__, status);
        session->reset();
        return convertStatus(status);
    }
    *session = newSession;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::openInjectionSession(
        const std::shared_ptr<ICameraDeviceCallback>& /*callback*/,
        std::shared_ptr<ICameraInjectionSession>* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    return convertStatus(-ENOSYS);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::setTorchMode(bool on) {
    return convertStatus(mModule->setTorchMode(mIdText.c_str(), on));
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::turnOnTorchWithStrengthLevel(int32_t level) {
    const int32_t status = mModule->turnOnTorchWithStrengthLevel(mIdText.c_str(), level);
    if (status != 0) {
        A2L_LOGE("[%s] fail to turnOnTorchWithStrengthLevel, status=%d", __func__, status);
    }
    return convertStatus(status);
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::getTorchStrengthLevel(int32_t* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    int32_t level = -1;
    const int32_t status = mModule->getTorchStrengthLevel(mIdText.c_str(), &level);
    if (status != 0) {
        A2L_LOGE("[%s] fail to getTorchStrengthLevel, status=%d", __func__, status);
        return convertStatus(status);
    }
    *out = level;
    return ndk::ScopedAStatus::ok();
}

ndk::ScopedAStatus Aidl2LegacyCameraDevice::constructDefaultRequestSettings(RequestTemplate type,
                                                                            CameraMetadata* out) {
    if (out == nullptr) return convertStatus(-EINVAL);
    const camera_metadata_t* settings =
            mModule->constructDefaultRequestSettings(mInstanceId, static_cast<int32_t>(type));
    if (settings == nullptr) {
        A2L_LOGE("[%s] fail to constructDefaultRequestSettings", __func__);
        return convertStatus(-ENODEV);
    }
    convertMetadata(settings, *out);
    return ndk::ScopedAStatus::ok();
}

}  // namespace kovo::aidl2legacy
