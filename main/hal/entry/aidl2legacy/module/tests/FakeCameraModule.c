/* The scripted camera module described in FakeCameraModule.h. */
#include "FakeCameraModule.h"

#include <errno.h>
#include <hardware/camera3.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>

#ifdef FAKE_WITH_EXTENSIONS
#include <camera_module_extensions.h>
#endif

#define EXPORT __attribute__((visibility("default")))

EXPORT struct fake_camera_module_script fake_camera_module_script;
EXPORT camera_metadata_t* fake_camera_module_metadata[FAKE_METADATA_COUNT];
/* Filled from kModule by fake_camera_module_reset(); tests change its version. */
EXPORT camera_module_t HAL_MODULE_INFO_SYM;

static pthread_mutex_t sLock = PTHREAD_MUTEX_INITIALIZER;
static char sCalls[4096];
static const camera_module_callbacks_t* sCallbacks;
static int32_t sTorchLevel;
static camera3_device_t sDevices[2];
static char sConflicting[] = "1";
static char* sConflictingDevices[] = {sConflicting};

/* format, width, height, direction (0 output, 1 input) */
static const int32_t kStreamConfigurations[] = {
        HAL_PIXEL_FORMAT_YCBCR_420_888, 1920, 1080, 0, HAL_PIXEL_FORMAT_BLOB,  4000, 3000, 0,
        HAL_PIXEL_FORMAT_YCBCR_420_888, 1920, 1080, 1, HAL_PIXEL_FORMAT_RAW16, 4000, 3000, 1,
};

static void recordCall(const char* format, ...) {
    pthread_mutex_lock(&sLock);
    size_t used = strlen(sCalls);
    va_list args;
    va_start(args, format);
    vsnprintf(sCalls + used, sizeof(sCalls) - used, format, args);
    va_end(args);
    pthread_mutex_unlock(&sLock);
}

static void recordStreams(const camera_stream_combination_t* streams) {
    recordCall("mode %x:", streams->operation_mode);
    for (uint32_t i = 0; i < streams->num_streams; ++i) {
        const camera_stream_t* s = &streams->streams[i];
        recordCall("[%d %ux%u %x %x %x %d %s]", s->stream_type, s->width, s->height, s->format,
                   s->usage, s->data_space, s->rotation, s->physical_camera_id);
    }
}

static int parseCameraId(const char* id) {
    return strcmp(id, "0") == 0 ? 0 : strcmp(id, "1") == 0 ? 1 : -1;
}

static int closeDevice(struct hw_device_t* device) {
    recordCall("close(%d);", (int)((camera3_device_t*)device - sDevices));
    return 0;
}

static int openDevice(const struct hw_module_t* module, const char* name,
                      struct hw_device_t** device) {
    recordCall("open(%s);", name);
    int id = parseCameraId(name);
    if (id < 0) return -EINVAL;
    uint32_t version = fake_camera_module_script.opened_device_version;
    sDevices[id].common.tag = HARDWARE_DEVICE_TAG;
    sDevices[id].common.version =
            version != 0 ? version : fake_camera_module_script.device_version[id];
    sDevices[id].common.module = (struct hw_module_t*)module;
    sDevices[id].common.close = closeDevice;
    *device = &sDevices[id].common;
    return 0;
}

static int getNumberOfCameras(void) {
    recordCall("get_number_of_cameras;");
    return 2;
}

static int getCameraInfo(int id, struct camera_info* info) {
    recordCall("get_camera_info(%d);", id);
    if (id < 0 || id > 1) return -EINVAL;
    info->device_version = fake_camera_module_script.device_version[id];
    info->static_camera_characteristics = fake_camera_module_metadata[FAKE_STATIC_CHARACTERISTICS];
    if (HAL_MODULE_INFO_SYM.common.module_api_version >= CAMERA_MODULE_API_VERSION_2_4) {
        info->resource_cost = 50;
        info->conflicting_devices = sConflictingDevices;
        info->conflicting_devices_length = 1;
    }
    return 0;
}

static int setCallbacks(const camera_module_callbacks_t* callbacks) {
    recordCall("set_callbacks;");
    if (fake_camera_module_script.set_callbacks_status != 0) {
        return fake_camera_module_script.set_callbacks_status;
    }
    pthread_mutex_lock(&sLock);
    sCallbacks = callbacks;
    pthread_mutex_unlock(&sLock);
    /* Modules report the torch state they start in as soon as they can. */
    fake_camera_module_fire_torch_status("0", TORCH_MODE_STATUS_AVAILABLE_OFF);
    return 0;
}

static int setTorchMode(const char* camera_id, bool enabled) {
    recordCall("set_torch_mode(%s,%d);", camera_id, enabled);
    return parseCameraId(camera_id) == 0 ? 0 : -ENOSYS;
}

static int init(void) {
    recordCall("init;");
    return fake_camera_module_script.init_status;
}

static int getPhysicalCameraInfo(int physical_id, camera_metadata_t** metadata) {
    recordCall("get_physical_camera_info(%d);", physical_id);
    if (physical_id != 2 && physical_id != 3) return -EINVAL;
    *metadata = fake_camera_module_metadata[FAKE_PHYSICAL_CHARACTERISTICS_2 + physical_id - 2];
    return 0;
}

static int isStreamCombinationSupported(int camera_id, const camera_stream_combination_t* streams) {
    recordCall("is_stream_combination_supported(%d,", camera_id);
    recordStreams(streams);
    recordCall(");");
    return fake_camera_module_script.combination_status;
}

static struct hw_module_methods_t sMethods = {.open = openDevice};

static const camera_module_t kModule = {
        .common = {.tag = HARDWARE_MODULE_TAG,
                   .module_api_version = CAMERA_MODULE_API_VERSION_2_5,
                   .id = CAMERA_HARDWARE_MODULE_ID,
                   .name = "Scripted test camera",
                   .methods = &sMethods},
        .get_number_of_cameras = getNumberOfCameras,
        .get_camera_info = getCameraInfo,
        .set_callbacks = setCallbacks,
        .set_torch_mode = setTorchMode,
        .init = init,
        .get_physical_camera_info = getPhysicalCameraInfo,
        .is_stream_combination_supported = isStreamCombinationSupported,
};

/* A symbol the test program defines too, as a platform library both would carry. */
EXPORT __attribute__((noinline)) int tarnic_fake_shared_symbol(void) {
    return FAKE_OWN_COPY;
}

EXPORT int fake_camera_module_shared_symbol(void) {
    return tarnic_fake_shared_symbol();
}

EXPORT void fake_camera_module_reset(void) {
    pthread_mutex_lock(&sLock);
    HAL_MODULE_INFO_SYM = kModule;
    struct fake_camera_module_script script = {
            .device_version = {CAMERA_DEVICE_API_VERSION_3_5, CAMERA_DEVICE_API_VERSION_3_1}};
    fake_camera_module_script = script;
    sCalls[0] = '\0';
    sCallbacks = NULL;
    sTorchLevel = 1;
    pthread_mutex_unlock(&sLock);
}

EXPORT void fake_camera_module_calls(char* out, size_t size) {
    pthread_mutex_lock(&sLock);
    snprintf(out, size, "%s", sCalls);
    pthread_mutex_unlock(&sLock);
}

static const camera_module_callbacks_t* callbacks(void) {
    pthread_mutex_lock(&sLock);
    const camera_module_callbacks_t* current = sCallbacks;
    pthread_mutex_unlock(&sLock);
    return current;
}

EXPORT void fake_camera_module_fire_device_status(int camera_id, int status) {
    const camera_module_callbacks_t* current = callbacks();
    if (current != NULL) current->camera_device_status_change(current, camera_id, status);
}

EXPORT void fake_camera_module_fire_torch_status(const char* camera_id, int status) {
    const camera_module_callbacks_t* current = callbacks();
    if (current != NULL) current->torch_mode_status_change(current, camera_id, status);
}

#ifdef FAKE_WITH_EXTENSIONS

EXPORT const camera_metadata_t* tarnic_camera_default_request_settings(int camera_id,
                                                                       int request_template) {
    recordCall("default_request_settings(%d,%d);", camera_id, request_template);
    return request_template == CAMERA3_TEMPLATE_STILL_CAPTURE
                   ? fake_camera_module_metadata[FAKE_STILL_CAPTURE_SETTINGS]
                   : NULL;
}

EXPORT int tarnic_camera_get_session_characteristics(int camera_id,
                                                     const camera_stream_combination_t* streams,
                                                     const camera_metadata_t* session_parameters,
                                                     const camera_metadata_t** characteristics) {
    recordCall("get_session_characteristics(%d,", camera_id);
    recordStreams(streams);
    recordCall(",%p);", (const void*)session_parameters);
    *characteristics = fake_camera_module_metadata[FAKE_SESSION_CHARACTERISTICS];
    return 0;
}

EXPORT int tarnic_camera_has_readout_timestamp(int camera_id) {
    return camera_id == 0;
}

EXPORT int tarnic_camera_get_torch_strength_level(const char* camera_id, int32_t* level) {
    recordCall("get_torch_strength_level(%s);", camera_id);
    pthread_mutex_lock(&sLock);
    *level = sTorchLevel;
    pthread_mutex_unlock(&sLock);
    return 0;
}

EXPORT int tarnic_camera_turn_on_torch_with_strength_level(const char* camera_id, int32_t level) {
    recordCall("turn_on_torch_with_strength_level(%s,%d);", camera_id, level);
    if (level < 1 || level > 10) return -EINVAL;
    pthread_mutex_lock(&sLock);
    sTorchLevel = level;
    pthread_mutex_unlock(&sLock);
    return 0;
}

#endif

__attribute__((constructor)) static void createMetadata(void) {
    for (int i = 0; i < FAKE_METADATA_COUNT; ++i) {
        fake_camera_module_metadata[i] = allocate_camera_metadata(1, sizeof(kStreamConfigurations));
    }
    add_camera_metadata_entry(fake_camera_module_metadata[FAKE_STATIC_CHARACTERISTICS],
                              ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS, kStreamConfigurations,
                              sizeof(kStreamConfigurations) / sizeof(int32_t));
    fake_camera_module_reset();
}

__attribute__((destructor)) static void freeMetadata(void) {
    for (int i = 0; i < FAKE_METADATA_COUNT; ++i)
        free_camera_metadata(fake_camera_module_metadata[i]);
}
