/*
 * The camera HAL module: camera_module_t (the HAL_MODULE_INFO_SYM of a camera .so), the static
 * description of each camera (camera_info) and the version numbers of the module and device
 * interfaces. The module owns every record and string it hands out. A field added after the
 * module's common.module_api_version must not be read.
 */
#pragma once

#include <cutils/native_handle.h>
#include <hardware/gralloc.h>
#include <hardware/hardware.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>
#include <sys/types.h>
#include <system/camera.h>
#include <system/camera_vendor_tags.h>

__BEGIN_DECLS

typedef struct camera_metadata camera_metadata_t;

#define CAMERA_HARDWARE_MODULE_ID "camera"

/* Module API versions. Every value up to HARDWARE_MODULE_API_VERSION(1, 0xFF) counts as 1.0. */
#define CAMERA_MODULE_API_VERSION_1_0 HARDWARE_MODULE_API_VERSION(1, 0)
/* camera_info.device_version and static_camera_characteristics become valid. */
#define CAMERA_MODULE_API_VERSION_2_0 HARDWARE_MODULE_API_VERSION(2, 0)
/* set_callbacks and the device status callback. */
#define CAMERA_MODULE_API_VERSION_2_1 HARDWARE_MODULE_API_VERSION(2, 1)
/* get_vendor_tag_ops. */
#define CAMERA_MODULE_API_VERSION_2_2 HARDWARE_MODULE_API_VERSION(2, 2)
/* open_legacy. */
#define CAMERA_MODULE_API_VERSION_2_3 HARDWARE_MODULE_API_VERSION(2, 3)
/* set_torch_mode, init, torch status callback, resource costs, external cameras. */
#define CAMERA_MODULE_API_VERSION_2_4 HARDWARE_MODULE_API_VERSION(2, 4)
/* get_physical_camera_info, is_stream_combination_supported, notify_device_state_change. */
#define CAMERA_MODULE_API_VERSION_2_5 HARDWARE_MODULE_API_VERSION(2, 5)
#define CAMERA_MODULE_API_VERSION_CURRENT CAMERA_MODULE_API_VERSION_2_5

/* Device API versions. 1.0 to 3.1 are no longer supported; CURRENT is 3.5, not 3.6. */
#define CAMERA_DEVICE_API_VERSION_1_0 HARDWARE_DEVICE_API_VERSION(1, 0)
#define CAMERA_DEVICE_API_VERSION_2_0 HARDWARE_DEVICE_API_VERSION(2, 0)
#define CAMERA_DEVICE_API_VERSION_2_1 HARDWARE_DEVICE_API_VERSION(2, 1)
#define CAMERA_DEVICE_API_VERSION_3_0 HARDWARE_DEVICE_API_VERSION(3, 0)
#define CAMERA_DEVICE_API_VERSION_3_1 HARDWARE_DEVICE_API_VERSION(3, 1)
#define CAMERA_DEVICE_API_VERSION_3_2 HARDWARE_DEVICE_API_VERSION(3, 2)
#define CAMERA_DEVICE_API_VERSION_3_3 HARDWARE_DEVICE_API_VERSION(3, 3)
#define CAMERA_DEVICE_API_VERSION_3_4 HARDWARE_DEVICE_API_VERSION(3, 4)
#define CAMERA_DEVICE_API_VERSION_3_5 HARDWARE_DEVICE_API_VERSION(3, 5)
#define CAMERA_DEVICE_API_VERSION_3_6 HARDWARE_DEVICE_API_VERSION(3, 6)
#define CAMERA_DEVICE_API_VERSION_CURRENT CAMERA_DEVICE_API_VERSION_3_5

typedef struct camera_info {
    /* CAMERA_FACING_*; EXTERNAL only from module 2.4. */
    int facing;

    /* Clockwise rotation (0, 90, 180, 270) that shows the image upright; not for EXTERNAL. */
    int orientation;

    /* The device's common.version (module 2.0). */
    uint32_t device_version;

    /* Sorted, HAL-owned, valid and unchanged for the module's lifetime (module 2.0). */
    const camera_metadata_t* static_camera_characteristics;

    /* 0..100 (module 2.4; assume 100 before). */
    int resource_cost;

    /* Ids of the cameras that cannot be open together with this one, or NULL (module 2.4). */
    char** conflicting_devices;
    size_t conflicting_devices_length;
} camera_info_t;

typedef enum camera_device_status {
    CAMERA_DEVICE_STATUS_NOT_PRESENT = 0,
    CAMERA_DEVICE_STATUS_PRESENT = 1,
    CAMERA_DEVICE_STATUS_ENUMERATING = 2,
} camera_device_status_t;

typedef enum torch_mode_status {
    TORCH_MODE_STATUS_NOT_AVAILABLE = 0,
    TORCH_MODE_STATUS_AVAILABLE_OFF = 1,
    TORCH_MODE_STATUS_AVAILABLE_ON = 2,
} torch_mode_status_t;

/* Called by the module; the pointers stay valid while the module is loaded. */
typedef struct camera_module_callbacks {
    /* new_status is a camera_device_status_t (module 2.1). */
    void (*camera_device_status_change)(const struct camera_module_callbacks*, int camera_id,
                                        int new_status);

    /* new_status is a torch_mode_status_t (module 2.4). */
    void (*torch_mode_status_change)(const struct camera_module_callbacks*, const char* camera_id,
                                     int new_status);
} camera_module_callbacks_t;

/* One stream of a stream-combination query (module 2.5). */
typedef struct camera_stream {
    int stream_type;
    uint32_t width;
    uint32_t height;
    int format;
    uint32_t usage;
    android_dataspace_t data_space;
    int rotation;
    const char* physical_camera_id;
} camera_stream_t;

typedef struct camera_stream_combination {
    uint32_t num_streams;
    camera_stream_t* streams;
    uint32_t operation_mode;
} camera_stream_combination_t;

/* Physical device states; a 64-bit enum because of the vendor range. */
typedef enum device_state {
    NORMAL = 0,
    BACK_COVERED = 1 << 0,
    FRONT_COVERED = 1 << 1,
    FOLDED = 1 << 2,
    VENDOR_STATE_START = 1LL << 32,
} device_state_t;

typedef struct camera_module {
    /* common.methods->open opens a device at its newest version; id is the decimal camera
     * number. 0, or -ENODEV, -EINVAL, -EBUSY, -EUSERS. */
    hw_module_t common;

    /* Number of built-in cameras, numbered from 0; never changes. */
    int (*get_number_of_cameras)(void);

    /* 0, -ENODEV or -EINVAL. */
    int (*get_camera_info)(int camera_id, struct camera_info* info);

    /* Module 2.1. 0, -ENODEV or -EINVAL. */
    int (*set_callbacks)(const camera_module_callbacks_t* callbacks);

    /* Module 2.2. */
    void (*get_vendor_tag_ops)(vendor_tag_ops_t* ops);

    /* Module 2.3. 0, -ENOSYS, -EOPNOTSUPP, -EINVAL, -EBUSY or -EUSERS. */
    int (*open_legacy)(const struct hw_module_t* module, const char* id, uint32_t halVersion,
                       struct hw_device_t** device);

    /* Module 2.4. 0, -ENOSYS (no flash unit), -EBUSY, -EUSERS or -EINVAL. */
    int (*set_torch_mode)(const char* camera_id, bool enabled);

    /* Module 2.4; called once, right after loading, before anything else. 0 or -ENODEV. */
    int (*init)();

    /* Module 2.5. 0, -ENODEV or -EINVAL. */
    int (*get_physical_camera_info)(int physical_camera_id, camera_metadata_t** static_metadata);

    /* Module 2.5. 0 if supported, -EINVAL if not, -ENOSYS if the query is unsupported. */
    int (*is_stream_combination_supported)(int camera_id,
                                           const camera_stream_combination_t* streams);

    /* Module 2.5. deviceState holds device_state_t bits. */
    void (*notify_device_state_change)(uint64_t deviceState);

    void* reserved[2];
} camera_module_t;

__END_DECLS
