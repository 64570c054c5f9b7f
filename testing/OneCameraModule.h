/*
 * OneCameraModule: a legacy camera module record (camera_module_t, API 2.4) with one camera, id 0,
 * whose open hands out a given camera3_device_t or refuses with a scripted status, for tests and
 * benchmarks of what Aidl2LegacyCameraModule makes of a module handed in to it.
 *
 * The module's C entries reach the object through a static, so only one may live at a time; it
 * is meant for one thread (the test's) and the calls the library makes on it.
 */
#pragma once

#include <hardware/camera3.h>
#include <hardware/camera_common.h>

namespace kovo::aidl2legacy::testing {

class OneCameraModule {
public:
    explicit OneCameraModule(camera3_device_t* device);
    ~OneCameraModule();
    OneCameraModule(const OneCameraModule&) = delete;
    OneCameraModule& operator=(const OneCameraModule&) = delete;

    camera_module_t* record() { return &mRecord; }
    // Every open after the first `allowedOpens` fails with `status`; 0 refuses nothing.
    void refuseOpens(int status, int allowedOpens = 0);
    // The static characteristics get_camera_info reports (null at first).
    void setCharacteristics(const camera_metadata_t* characteristics);

private:
    static int sOpen(const hw_module_t* module, const char* id, hw_device_t** device);
    static int sNumberOfCameras();
    static int sCameraInfo(int id, camera_info* info);

    static OneCameraModule* sCurrent;

    camera_module_t mRecord{};
    hw_module_methods_t mMethods{};
    camera3_device_t* mDevice;
    const camera_metadata_t* mCharacteristics = nullptr;
    int mRefusal = 0;
    int mAllowedOpens = 0;
    int mOpens = 0;
};

}  // namespace kovo::aidl2legacy::testing
