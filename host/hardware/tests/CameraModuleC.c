/* A camera module written in C, found by the test through its exported symbol name. */
#include <errno.h>
#include <hardware/camera3.h>
#include <string.h>

static camera3_device_t sDevice = {
        .common = {.tag = HARDWARE_DEVICE_TAG, .version = CAMERA_DEVICE_API_VERSION_3_6},
};

static int openDevice(const struct hw_module_t* module, const char* id,
                      struct hw_device_t** device) {
    if (strcmp(id, "0") != 0) return -EINVAL;
    sDevice.common.module = (struct hw_module_t*)module;
    *device = &sDevice.common;
    return 0;
}

static struct hw_module_methods_t sMethods = {.open = openDevice};

__attribute__((visibility("default"))) camera_module_t HAL_MODULE_INFO_SYM = {
        .common =
                {
                        .tag = HARDWARE_MODULE_TAG,
                        .module_api_version = CAMERA_MODULE_API_VERSION_2_5,
                        .id = CAMERA_HARDWARE_MODULE_ID,
                        .methods = &sMethods,
                },
};
