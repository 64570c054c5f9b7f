/*
 * The libhardware module and device records: every HAL module .so exports one hw_module_t (or
 * a record that begins with one) under the symbol HAL_MODULE_INFO_SYM_AS_STR, and every opened
 * device begins with an hw_device_t. The module owns both records; the caller releases a device
 * through its close entry.
 */
#pragma once

#include <cutils/native_handle.h>
#include <stdint.h>
#include <sys/cdefs.h>
#include <system/graphics.h>

__BEGIN_DECLS

#define MAKE_TAG_CONSTANT(A, B, C, D) (((A) << 24) | ((B) << 16) | ((C) << 8) | (D))

#define HARDWARE_MODULE_TAG MAKE_TAG_CONSTANT('H', 'W', 'M', 'T')
#define HARDWARE_DEVICE_TAG MAKE_TAG_CONSTANT('H', 'W', 'D', 'T')

#define HARDWARE_MAKE_API_VERSION(maj, min) ((((maj)&0xff) << 8) | ((min)&0xff))

#define HARDWARE_MAKE_API_VERSION_2(maj, min, hdr) \
    ((((maj)&0xff) << 24) | (((min)&0xff) << 16) | ((hdr)&0xffff))
#define HARDWARE_API_VERSION_2_MAJ_MIN_MASK 0xffff0000
#define HARDWARE_API_VERSION_2_HEADER_MASK 0x0000ffff

#define HARDWARE_HAL_API_VERSION HARDWARE_MAKE_API_VERSION(1, 0)

#define HARDWARE_MODULE_API_VERSION(maj, min) HARDWARE_MAKE_API_VERSION(maj, min)
#define HARDWARE_MODULE_API_VERSION_2(maj, min, hdr) HARDWARE_MAKE_API_VERSION_2(maj, min, hdr)
#define HARDWARE_DEVICE_API_VERSION(maj, min) HARDWARE_MAKE_API_VERSION(maj, min)
#define HARDWARE_DEVICE_API_VERSION_2(maj, min, hdr) HARDWARE_MAKE_API_VERSION_2(maj, min, hdr)

struct hw_module_t;
struct hw_module_methods_t;
struct hw_device_t;

typedef struct hw_module_t {
    /* HARDWARE_MODULE_TAG */
    uint32_t tag;

    /* Version of the module's own interface, e.g. CAMERA_MODULE_API_VERSION_2_4. */
    uint16_t module_api_version;
#define version_major module_api_version

    /* Version of this record; 0 is the only valid value. */
    uint16_t hal_api_version;
#define version_minor hal_api_version

    const char* id;
    const char* name;
    const char* author;
    struct hw_module_methods_t* methods;

    /* The dlopen handle, filled in by whoever loaded the module. */
    void* dso;

#ifdef __LP64__
    uint64_t reserved[32 - 7];
#else
    uint32_t reserved[32 - 7];
#endif
} hw_module_t;

typedef struct hw_module_methods_t {
    /* Opens the device named `id`; 0 or a negative errno. */
    int (*open)(const struct hw_module_t* module, const char* id, struct hw_device_t** device);
} hw_module_methods_t;

typedef struct hw_device_t {
    /* HARDWARE_DEVICE_TAG */
    uint32_t tag;

    /* Version of the device interface, e.g. CAMERA_DEVICE_API_VERSION_3_5. */
    uint32_t version;

    struct hw_module_t* module;

#ifdef __LP64__
    uint64_t reserved[12];
#else
    uint32_t reserved[12];
#endif

    int (*close)(struct hw_device_t* device);
} hw_device_t;

#ifdef __cplusplus
#define TO_HW_DEVICE_T_OPEN(x) reinterpret_cast<struct hw_device_t**>(x)
#else
#define TO_HW_DEVICE_T_OPEN(x) (struct hw_device_t**)(x)
#endif

/* Name of the module record every HAL exports, as an identifier and as the dlsym string. */
#define HAL_MODULE_INFO_SYM HMI
#define HAL_MODULE_INFO_SYM_AS_STR "HMI"

__END_DECLS
