/*
 * MockCameraModule: an Aidl2LegacyCameraModule with no legacy module behind it whose nine device
 * operations are GoogleMock methods, for tests of the code that calls the module. Without
 * expectations every operation answers 0 or null (wrap it in NiceMock to keep the output quiet).
 * Held through std::shared_ptr as the real module is; any thread may call it.
 */
#pragma once

#include <Aidl2LegacyCameraModule.h>
#include <StreamCombination.h>
#include <gmock/gmock.h>
#include <hardware/camera3.h>
#include <hardware/camera_common.h>

#include <cstdint>

namespace kovo::aidl2legacy::testing {

class MockCameraModule : public Aidl2LegacyCameraModule {
public:
    MockCameraModule() = default;

    MOCK_METHOD(int32_t, openDevice, (const char* cameraId, camera3_device_t** device), (override));
    MOCK_METHOD(int32_t, getCameraInfo, (int32_t instanceId, camera_info* info), (override));
    MOCK_METHOD(int32_t, setTorchMode, (const char* cameraId, bool on), (override));
    MOCK_METHOD(int32_t, getPhysicalCameraInfo,
                (int32_t physicalCameraId, const camera_metadata_t** characteristics), (override));
    MOCK_METHOD(int32_t, isStreamCombinationSupported,
                (int32_t instanceId, const StreamCombination* combination), (override));
    MOCK_METHOD(int32_t, getTorchStrengthLevel, (const char* cameraId, int32_t* level), (override));
    MOCK_METHOD(int32_t, turnOnTorchWithStrengthLevel, (const char* cameraId, int32_t level),
                (override));
    MOCK_METHOD(const camera_metadata_t*, constructDefaultRequestSettings,
                (int32_t instanceId, int32_t requestTemplate), (override));
    MOCK_METHOD(int32_t, getSessionCharacteristics,
                (int32_t instanceId, const StreamCombination* combination,
                 const camera_metadata_t** characteristics),
                (override));
};

}  // namespace kovo::aidl2legacy::testing
