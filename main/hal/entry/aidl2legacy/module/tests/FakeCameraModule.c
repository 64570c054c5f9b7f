/* The scripted camera module described in FakeCameraModule.h. */
#include "FakeCameraModule.h"

#include <errno.h>
#include <hardware/camera3.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <system/camera_metadata.h>
#include <system/graphics.h>

#ifdef FAKE_WITH_EXTENSIONS
#include <camera_module_extensions.h>
#endif

#define EXPORT __attribute__((visibility("default")))
#define TEMPLATE_COUNT CAMERA3_TEMPLATE_COUNT

EXPORT struct fake_camera_module_script fake_camera_module_script;
/* Filled from kModule by fake_camera_module_reset(); tests change its version. */
EXPORT camera_module_t HAL_MODULE_INFO_SYM;

static pthread_mutex_t sLock = PTHREAD_MUTEX_INITIALIZER;
static struct fake_camera_module_record sRecord;
static const camera_module_callbacks_t* sCallbacks;
static camera3_device_t sDevices[FAKE_CAMERA_COUNT];
static camera_metadata_t* sCharacteristics[FAKE_CAMERA_COUNT];
static camera_metadata_t* sPhysicalCharacteristics[2];
static camera_metadata_t* sSessionCharacteristics;
static camera_metadata_t* sDefaultSettings[TEMPLATE_COUNT];
static char sConflicting0[] = "1";
static char* sConflictingDevices[] = {sConflicting0};

/* format, width, height, direction */
static const int32_t kStreamConfigurations[] = {
        HAL_PIXEL_FORMAT_YCBCR_420_888, 1920, 1080, 0, /* output */
        HAL_PIXEL_FORMAT_BLOB,          4000, 3000, 0, /* output */
        HAL_PIXEL_FORMAT_YCBCR_420_888, 1920, 1080, 1, /* input */
        HAL_PIXEL_FORMAT_RAW16,         4000, 3000, 1, /* input only */
};

static void recordCall(const char* format, ...) {
    pthread_mutex_lock(&sLock);
    size_t used = strlen(sRecord.calls);
    if (used + 1 < sizeof(sRecord.calls)) {
        va_list args;
        va_start(args, format);
        vsnprintf(sRecord.calls + used, sizeof(sRecord.calls) - used, format, args);
        va_end(args);
    }
    pthread_mutex_unlock(&sLock);
}

static camera_metadata_t* makeMetadata(uint32_t tag, const void* data, size_t count) {
    camera_metadata_t* metadata = allocate_camera_metadata(1, 128);
    add_camera_metadata_entry(metadata, tag, data, count);
    sort_camera_metadata(metadata);
    return metadata;
}

static int parseCameraId(const char* id) {
    if (id == NULL) return -1;
    if (strcmp(id, "0") == 0) return 0;
    if (strcmp(id, "1") == 0) return 1;
    return -1;
}

static int closeDevice(struct hw_device_t* device) {
    int id = (int)((camera3_device_t*)device - sDevices);
    recordCall("close(%d);", id);
    pthread_mutex_lock(&sLock);
    --sRecord.open_devices;
    pthread_mutex_unlock(&sLock);
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
    pthread_mutex_lock(&sLock);
    ++sRecord.open_devices;
    pthread_mutex_unlock(&sLock);
    *device = &sDevices[id].common;
    return 0;
}

static int getNumberOfCameras(void) {
    recordCall("get_number_of_cameras;");
    return FAKE_CAMERA_COUNT;
}

static int getCameraInfo(int id, struct camera_info* info) {
    recordCall("get_camera_info(%d);", id);
    if (id < 0 || id >= FAKE_CAMERA_COUNT) return -EINVAL;
    info->facing = id;
    info->orientation = 90;
    info->device_version = fake_camera_module_script.device_version[id];
    info->static_camera_characteristics = sCharacteristics[id];
    if (HMI.common.module_api_version >= CAMERA_MODULE_API_VERSION_2_4) {
        info->resource_cost = 50;
        info->conflicting_devices = id == 0 ? sConflictingDevices : NULL;
        info->conflicting_devices_length = id == 0 ? 1 : 0;
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
    int id = parseCameraId(camera_id);
    if (id < 0) return -EINVAL;
    return id == 0 ? 0 : -ENOSYS;
}

static int init(void) {
    recordCall("init;");
    return fake_camera_module_script.init_status;
}

static int getPhysicalCameraInfo(int physical_id, camera_metadata_t** metadata) {
    recordCall("get_physical_camera_info(%d);", physical_id);
    if (physical_id != 2 && physical_id != 3) return -EINVAL;
    *metadata = sPhysicalCharacteristics[physical_id - 2];
    return 0;
}

static void recordCombination(const camera_stream_combination_t* streams,
                              const camera_metadata_t* session_parameters) {
    pthread_mutex_lock(&sLock);
    sRecord.combination_stream_count = streams->num_streams;
    sRecord.combination_operation_mode = streams->operation_mode;
    for (uint32_t i = 0; i < streams->num_streams && i < FAKE_MAX_STREAMS; ++i) {
        sRecord.combination_streams[i] = streams->streams[i];
        snprintf(sRecord.combination_physical_ids[i], sizeof(sRecord.combination_physical_ids[i]),
                 "%s", streams->streams[i].physical_camera_id);
        sRecord.combination_streams[i].physical_camera_id = NULL;
    }
    sRecord.session_parameters = session_parameters;
    pthread_mutex_unlock(&sLock);
}

static int isStreamCombinationSupported(int camera_id, const camera_stream_combination_t* streams) {
    recordCall("is_stream_combination_supported(%d);", camera_id);
    recordCombination(streams, NULL);
    return fake_camera_module_script.combination_status;
}

static void notifyDeviceStateChange(uint64_t state) {
    recordCall("notify_device_state_change(%llu);", (unsigned long long)state);
}

static struct hw_module_methods_t sMethods = {.open = openDevice};

static const camera_module_t kModule = {
        .common =
                {
                        .tag = HARDWARE_MODULE_TAG,
                        .module_api_version = CAMERA_MODULE_API_VERSION_2_5,
                        .id = CAMERA_HARDWARE_MODULE_ID,
                        .name = "Scripted test camera",
                        .author = "tests",
                        .methods = &sMethods,
                },
        .get_number_of_cameras = getNumberOfCameras,
        .get_camera_info = getCameraInfo,
        .set_callbacks = setCallbacks,
        .set_torch_mode = setTorchMode,
        .init = init,
        .get_physical_camera_info = getPhysicalCameraInfo,
        .is_stream_combination_supported = isStreamCombinationSupported,
        .notify_device_state_change = notifyDeviceStateChange,
};

EXPORT void fake_camera_module_reset(void) {
    pthread_mutex_lock(&sLock);
    HAL_MODULE_INFO_SYM = kModule;
    memset(&fake_camera_module_script, 0, sizeof(fake_camera_module_script));
    fake_camera_module_script.device_version[0] = CAMERA_DEVICE_API_VERSION_3_5;
    fake_camera_module_script.device_version[1] = CAMERA_DEVICE_API_VERSION_3_1;
    memset(&sRecord, 0, sizeof(sRecord));
    sRecord.torch_level = 1;
    sCallbacks = NULL;
    pthread_mutex_unlock(&sLock);
}

EXPORT void fake_camera_module_calls(char* out, size_t size) {
    pthread_mutex_lock(&sLock);
    snprintf(out, size, "%s", sRecord.calls);
    pthread_mutex_unlock(&sLock);
}

EXPORT struct fake_camera_module_record fake_camera_module_snapshot(void) {
    pthread_mutex_lock(&sLock);
    struct fake_camera_module_record copy = sRecord;
    pthread_mutex_unlock(&sLock);
    return copy;
}

EXPORT void fake_camera_module_fire_device_status(int camera_id, int status) {
    pthread_mutex_lock(&sLock);
    const camera_module_callbacks_t* callbacks = sCallbacks;
    pthread_mutex_unlock(&sLock);
    if (callbacks != NULL) callbacks->camera_device_status_change(callbacks, camera_id, status);
}

EXPORT void fake_camera_module_fire_torch_status(const char* camera_id, int status) {
    pthread_mutex_lock(&sLock);
    const camera_module_callbacks_t* callbacks = sCallbacks;
    pthread_mutex_unlock(&sLock);
    if (callbacks != NULL) callbacks->torch_mode_status_change(callbacks, camera_id, status);
}

EXPORT const camera_metadata_t* fake_camera_module_characteristics(int camera_id) {
    return sCharacteristics[camera_id];
}

EXPORT const camera_metadata_t* fake_camera_module_physical_characteristics(int physical_id) {
    return sPhysicalCharacteristics[physical_id - 2];
}

EXPORT const camera_metadata_t* fake_camera_module_session_characteristics(void) {
    return sSessionCharacteristics;
}

#ifdef FAKE_WITH_EXTENSIONS

EXPORT const camera_metadata_t* tarnic_camera_default_request_settings(int camera_id,
                                                                       int request_template) {
    recordCall("default_request_settings(%d,%d);", camera_id, request_template);
    if (camera_id != 0 || request_template < CAMERA3_TEMPLATE_PREVIEW ||
        request_template >= TEMPLATE_COUNT) {
        return NULL;
    }
    return sDefaultSettings[request_template];
}

EXPORT int tarnic_camera_get_session_characteristics(int camera_id,
                                                     const camera_stream_combination_t* streams,
                                                     const camera_metadata_t* session_parameters,
                                                     const camera_metadata_t** characteristics) {
    recordCall("get_session_characteristics(%d);", camera_id);
    recordCombination(streams, session_parameters);
    *characteristics = sSessionCharacteristics;
    return 0;
}

EXPORT int tarnic_camera_get_torch_strength_level(const char* camera_id, int32_t* level) {
    recordCall("get_torch_strength_level(%s);", camera_id);
    if (parseCameraId(camera_id) != 0) return -EINVAL;
    pthread_mutex_lock(&sLock);
    *level = sRecord.torch_level;
    pthread_mutex_unlock(&sLock);
    return 0;
}

EXPORT int tarnic_camera_turn_on_torch_with_strength_level(const char* camera_id, int32_t level) {
    recordCall("turn_on_torch_with_strength_level(%s,%d);", camera_id, level);
    if (parseCameraId(camera_id) != 0 || level < 1 || level > 10) return -EINVAL;
    pthread_mutex_lock(&sLock);
    sRecord.torch_level = level;
    pthread_mutex_unlock(&sLock);
    return 0;
}

#endif

__attribute__((constructor)) static void createMetadata(void) {
    for (int id = 0; id < FAKE_CAMERA_COUNT; ++id) {
        sCharacteristics[id] =
                makeMetadata(ANDROID_SCALER_AVAILABLE_STREAM_CONFIGURATIONS, kStreamConfigurations,
                             sizeof(kStreamConfigurations) / sizeof(int32_t));
    }
    for (int i = 0; i < 2; ++i) {
        int32_t orientation = 90 * i;
        sPhysicalCharacteristics[i] = makeMetadata(ANDROID_SENSOR_ORIENTATION, &orientation, 1);
    }
    uint8_t facing = 1;
    sSessionCharacteristics = makeMetadata(ANDROID_LENS_FACING, &facing, 1);
    for (int t = CAMERA3_TEMPLATE_PREVIEW; t < TEMPLATE_COUNT; ++t) {
        uint8_t intent = (uint8_t)t;
        sDefaultSettings[t] = makeMetadata(ANDROID_CONTROL_CAPTURE_INTENT, &intent, 1);
    }
    fake_camera_module_reset();
}

__attribute__((destructor)) static void freeMetadata(void) {
    for (int id = 0; id < FAKE_CAMERA_COUNT; ++id) free_camera_metadata(sCharacteristics[id]);
    for (int i = 0; i < 2; ++i) free_camera_metadata(sPhysicalCharacteristics[i]);
    free_camera_metadata(sSessionCharacteristics);
    for (int t = 0; t < TEMPLATE_COUNT; ++t) free_camera_metadata(sDefaultSettings[t]);
}
