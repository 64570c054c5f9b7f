/*
 * Aidl2LegacyCameraDevice: the ICameraDevice binder object of one camera. It keeps no camera
 * state: static queries, torch and default settings are answered by the in-house module and
 * translated into AIDL types and binder statuses; open() builds the callback bridge, has the
 * module open the legacy device, and hands back a session that owns everything it made.
 *
 * Ownership: made by the provider with create() (ndk::SharedRefBase::make); shares the module with
 * the provider. The device keeps neither the sessions nor the bridges it makes.
 *
 * Threads: binder threads, possibly at once. No lock: the members are fixed after construction,
 * and the module is safe to call from several threads.
 */
#pragma once

#include <aidl/android/hardware/camera/common/CameraResourceCost.h>
#include <aidl/android/hardware/camera/device/BnCameraDevice.h>
#include <aidl/android/hardware/camera/device/CameraMetadata.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceCallback.h>
#include <aidl/android/hardware/camera/device/ICameraDeviceSession.h>
#include <aidl/android/hardware/camera/device/ICameraInjectionSession.h>
#include <aidl/android/hardware/camera/device/RequestTemplate.h>
#include <aidl/android/hardware/camera/device/StreamConfiguration.h>
#include <android/binder_auto_utils.h>
#include <system/camera_metadata.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "Aidl2LegacyCameraLog.h"

namespace kovo::aidl2legacy {

class Aidl2LegacyCameraModule;

class Aidl2LegacyCameraDevice : public aidl::android::hardware::camera::device::BnCameraDevice {
public:
    using CameraMetadata = aidl::android::hardware::camera::device::CameraMetadata;
    using CameraResourceCost = aidl::android::hardware::camera::common::CameraResourceCost;
    using ICameraDeviceCallback = aidl::android::hardware::camera::device::ICameraDeviceCallback;
    using ICameraDeviceSession = aidl::android::hardware::camera::device::ICameraDeviceSession;
    using ICameraInjectionSession = aidl::android::hardware::camera::device::ICameraInjectionSession;
    using RequestTemplate = aidl::android::hardware::camera::device::RequestTemplate;
    using StreamConfiguration = aidl::android::hardware::camera::device::StreamConfiguration;

    struct CreationInfo {
        // Passed to the module's id-based operations; its decimal text is the camera id.
        int32_t instanceId;
        std::shared_ptr<Aidl2LegacyCameraModule> module;
        // Kept; no operation of the device reads it.
        std::map<int32_t, std::string> extraInfo;
    };

    // Does not fail.
    static std::shared_ptr<Aidl2LegacyCameraDevice> create(const CreationInfo& info);

    explicit Aidl2LegacyCameraDevice(const CreationInfo& info);
    ~Aidl2LegacyCameraDevice() override;

    // ICameraDevice, in interface order.
    ndk::ScopedAStatus getCameraCharacteristics(CameraMetadata* out) override;
    ndk::ScopedAStatus getPhysicalCameraCharacteristics(const std::string& physicalCameraId,
                                                        CameraMetadata* out) override;
    // OK whatever the module answers: a failed query reads as cost 0 and no conflicts.
    ndk::ScopedAStatus getResourceCost(CameraResourceCost* out) override;
    // `out` must not be null (it is written without a test).
    ndk::ScopedAStatus isStreamCombinationSupported(const StreamConfiguration& streams,
                                                    bool* out) override;
    ndk::ScopedAStatus open(const std::shared_ptr<ICameraDeviceCallback>& callback,
                            std::shared_ptr<ICameraDeviceSession>* session) override;
    // Not supported.
    ndk::ScopedAStatus openInjectionSession(const std::shared_ptr<ICameraDeviceCallback>& callback,
                                            std::shared_ptr<ICameraInjectionSession>* out) override;
    ndk::ScopedAStatus setTorchMode(bool on) override;
    ndk::ScopedAStatus turnOnTorchWithStrengthLevel(int32_t level) override;
    // `*out` is left alone when the module fails.
    ndk::ScopedAStatus getTorchStrengthLevel(int32_t* out) override;
    ndk::ScopedAStatus constructDefaultRequestSettings(RequestTemplate type,
                                                       CameraMetadata* out) override;
    ndk::ScopedAStatus isStreamCombinationWithSettingsSupported(const StreamConfiguration& streams,
                                                                bool* out) override;
    // Converts what the module left in the characteristics, also when it failed.
    ndk::ScopedAStatus getSessionCharacteristics(const StreamConfiguration& sessionConfig,
                                                 CameraMetadata* out) override;

private:
    static constexpr log::Module kLogModule = log::kDeviceModule;

    // Both stream-combination queries; `sessionParameters` may be null.
    ndk::ScopedAStatus queryStreamCombination(const StreamConfiguration& streams,
                                              const camera_metadata_t* sessionParameters, bool* out);

    int32_t mLogLevel;
    std::string mName;
    int32_t mInstanceId;
    std::string mIdText;
    std::shared_ptr<Aidl2LegacyCameraModule> mModule;
    std::map<int32_t, std::string> mExtraInfo;
};

}  // namespace kovo::aidl2legacy
