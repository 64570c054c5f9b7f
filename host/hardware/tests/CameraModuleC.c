#include "CameraModuleC.h"

#include <errno.h>
#include <string.h>

static const camera3_callback_ops_t* sCallbacks;

static int closeDevice(struct hw_device_t* device) {
    (void)device;
    sCallbacks = NULL;
    return 0;
}

static int initialize(const struct camera3_device* device, const camera3_callback_ops_t* ops) {
    (void)device;
    sCallbacks = ops;
    return 0;
}

/* Multi-resolution input needs one more buffer per stream. */
static int configureStreams(const struct camera3_device* device,
                            camera3_stream_configuration_t* config) {
    (void)device;
    for (uint32_t i = 0; i < config->num_streams; ++i) {
        config->streams[i]->max_buffers = config->input_is_multi_resolution ? 3 : 2;
    }
    return 0;
}

static int processCaptureRequest(const struct camera3_device* device,
                                 camera3_capture_request_t* request) {
    (void)device;
    if (sCallbacks == NULL) return -ENODEV;

    camera3_notify_msg_t msg;
    memset(&msg, 0, sizeof(msg));
    msg.type = CAMERA3_MSG_SHUTTER;
    msg.message.shutter.frame_number = request->frame_number;
    msg.message.shutter.timestamp = CAMERA_MODULE_C_TIMESTAMP_NS;
    msg.message.shutter.readout_timestamp =
            CAMERA_MODULE_C_TIMESTAMP_NS + CAMERA_MODULE_C_READOUT_DELAY_NS + request->input_height;
    sCallbacks->notify(sCallbacks, &msg);

    camera3_capture_result_t result;
    memset(&result, 0, sizeof(result));
    result.frame_number = request->frame_number;
    result.num_output_buffers = request->num_output_buffers;
    result.output_buffers = request->output_buffers;
    result.input_buffer = request->input_buffer;
    sCallbacks->process_capture_result(sCallbacks, &result);
    return 0;
}

static camera3_device_ops_t sDeviceOps = {
        .initialize = initialize,
        .configure_streams = configureStreams,
        .process_capture_request = processCaptureRequest,
};

static camera3_device_t sDevice = {
        .common =
                {
                        .tag = HARDWARE_DEVICE_TAG,
                        .version = CAMERA_DEVICE_API_VERSION_3_6,
                        .module = &HAL_MODULE_INFO_SYM.common,
                        .close = closeDevice,
                },
        .ops = &sDeviceOps,
};

static int openDevice(const struct hw_module_t* module, const char* id,
                      struct hw_device_t** device) {
    (void)module;
    if (strcmp(id, "0") != 0) return -EINVAL;
    *device = &sDevice.common;
    return 0;
}

static int getNumberOfCameras(void) {
    return 1;
}

static struct hw_module_methods_t sMethods = {.open = openDevice};

camera_module_t HAL_MODULE_INFO_SYM __attribute__((visibility("default"))) = {
        .common =
                {
                        .tag = HARDWARE_MODULE_TAG,
                        .module_api_version = CAMERA_MODULE_API_VERSION_2_5,
                        .hal_api_version = HARDWARE_HAL_API_VERSION,
                        .id = CAMERA_HARDWARE_MODULE_ID,
                        .name = "C test camera",
                        .author = "tests",
                        .methods = &sMethods,
                },
        .get_number_of_cameras = getNumberOfCameras,
};
