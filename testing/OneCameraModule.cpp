#include "OneCameraModule.h"

#include <cerrno>

namespace kovo::aidl2legacy::testing {

OneCameraModule* OneCameraModule::sCurrent = nullptr;

OneCameraModule::OneCameraModule(camera3_device_t* device) : mDevice(device) {
    mMethods.open = sOpen;
    mRecord.common.tag = HARDWARE_MODULE_TAG;
    mRecord.common.module_api_version = CAMERA_MODULE_API_VERSION_2_4;
    mRecord.common.id = CAMERA_HARDWARE_MODULE_ID;
    mRecord.common.name = "One test camera";
    mRecord.common.methods = &mMethods;
    mRecord.get_number_of_cameras = sNumberOfCameras;
    mRecord.get_camera_info = sCameraInfo;
    sCurrent = this;
}

OneCameraModule::~OneCameraModule() {
    sCurrent = nullptr;
}

void OneCameraModule::refuseOpens(int status, int allowedOpens) {
    mRefusal = status;
    mAllowedOpens = allowedOpens;
    mOpens = 0;
}

void OneCameraModule::setCharacteristics(const camera_metadata_t* characteristics) {
    mCharacteristics = characteristics;
}

int OneCameraModule::sOpen(const hw_module_t*, const char*, hw_device_t** device) {
    if (sCurrent->mRefusal != 0 && sCurrent->mOpens++ >= sCurrent->mAllowedOpens) {
        return sCurrent->mRefusal;
    }
    *device = &sCurrent->mDevice->common;
    return 0;
}

int OneCameraModule::sNumberOfCameras() {
    return 1;
}

int OneCameraModule::sCameraInfo(int id, camera_info* info) {
    if (id != 0) return -EINVAL;
    info->device_version = sCurrent->mDevice->common.version;
    info->static_camera_characteristics = const_cast<camera_metadata_t*>(sCurrent->mCharacteristics);
    return 0;
}

}  // namespace kovo::aidl2legacy::testing
