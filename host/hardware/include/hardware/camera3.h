/*
 * The legacy HAL3 camera device: camera3_device_t and its operations (called by the framework
 * side, one process_capture_request at a time), camera3_callback_ops (called by the device from
 * its own threads, notify possibly concurrently), and the records they exchange. Each record is
 * owned by its caller and valid only during the call, except stream records, which the
 * framework side owns and keeps valid until a later configure_streams drops them or the device
 * is closed.
 *
 * This system's header extends three records at their ends: the stream configuration (multi-
 * resolution input flag), the capture request (input size) and the shutter message (readout
 * timestamp). Code built against the shorter records still reads the common prefix correctly;
 * a device built against this header reads the extensions, so callers always write them, with 0
 * where they do not apply.
 */
#pragma once

#include <hardware/camera_common.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>
#include <system/camera_metadata.h>

__BEGIN_DECLS

struct camera3_device;

typedef enum camera3_stream_type {
    CAMERA3_STREAM_OUTPUT = 0,
    CAMERA3_STREAM_INPUT = 1,
    CAMERA3_STREAM_BIDIRECTIONAL = 2,
    CAMERA3_NUM_STREAM_TYPES
} camera3_stream_type_t;

/* Counter-clockwise rotation to apply to the stream's output. */
typedef enum camera3_stream_rotation {
    CAMERA3_STREAM_ROTATION_0 = 0,
    CAMERA3_STREAM_ROTATION_90 = 1,
    CAMERA3_STREAM_ROTATION_180 = 2,
    CAMERA3_STREAM_ROTATION_270 = 3
} camera3_stream_rotation_t;

typedef enum camera3_stream_configuration_mode {
    CAMERA3_STREAM_CONFIGURATION_NORMAL_MODE = 0,
    CAMERA3_STREAM_CONFIGURATION_CONSTRAINED_HIGH_SPEED_MODE = 1,
    CAMERA3_VENDOR_STREAM_CONFIGURATION_MODE_START = 0x8000
} camera3_stream_configuration_mode_t;

typedef struct camera3_stream {
    /* camera3_stream_type_t */
    int stream_type;
    uint32_t width;
    uint32_t height;

    /* HAL_PIXEL_FORMAT_* */
    int format;

    /* GRALLOC_USAGE_*: the consumer's bits on entry (0 for input), the device's on return. */
    uint32_t usage;

    /* Set by the device in configure_streams. */
    uint32_t max_buffers;

    /* The device's own; never looked at by the framework side. */
    void* priv;

    /* Device 3.3; V0 encoding from 3.4. */
    android_dataspace_t data_space;

    /* camera3_stream_rotation_t (device 3.3). */
    int rotation;

    /* Device 3.5. Never NULL: empty unless the stream belongs to a physical camera. */
    const char* physical_camera_id;

    void* reserved[6];
} camera3_stream_t;

typedef struct camera3_stream_configuration {
    uint32_t num_streams;
    camera3_stream_t** streams;

    /* camera3_stream_configuration_mode_t (device 3.3). */
    uint32_t operation_mode;

    /* Device 3.5; may be NULL. */
    const camera_metadata_t* session_parameters;

    /* Extension: the input stream may receive images of several sizes. */
    bool input_is_multi_resolution;
} camera3_stream_configuration_t;

typedef enum camera3_buffer_status {
    CAMERA3_BUFFER_STATUS_OK = 0,
    CAMERA3_BUFFER_STATUS_ERROR = 1
} camera3_buffer_status_t;

typedef struct camera3_stream_buffer {
    camera3_stream_t* stream;

    /* Points at the handle; the record does not hold the handle itself. */
    buffer_handle_t* buffer;

    /* camera3_buffer_status_t */
    int status;

    /* Fence fd or -1; the device waits on it and sets it to -1 when it hands the buffer back. */
    int acquire_fence;

    /* Fence fd or -1, set by the device on return (the acquire fence if it never waited). */
    int release_fence;
} camera3_stream_buffer_t;

/* Only for register_stream_buffers, which no supported device version uses. */
typedef struct camera3_stream_buffer_set {
    camera3_stream_t* stream;
    uint32_t num_buffers;
    buffer_handle_t** buffers;
} camera3_stream_buffer_set_t;

/* Trailer in the last bytes of a BLOB buffer; the JPEG data starts at byte 0. */
typedef struct camera3_jpeg_blob {
    uint16_t jpeg_blob_id;
    uint32_t jpeg_size;
} camera3_jpeg_blob_t;

enum { CAMERA3_JPEG_BLOB_ID = 0x00FF, CAMERA3_JPEG_APP_SEGMENTS_BLOB_ID = 0x0100 };

typedef enum camera3_msg_type {
    CAMERA3_MSG_ERROR = 1,
    CAMERA3_MSG_SHUTTER = 2,
    CAMERA3_NUM_MESSAGES
} camera3_msg_type_t;

typedef enum camera3_error_msg_code {
    /* Fatal; frame_number is unused. */
    CAMERA3_MSG_ERROR_DEVICE = 1,
    /* Nothing will be produced for the frame. */
    CAMERA3_MSG_ERROR_REQUEST = 2,
    /* No metadata for the frame; its buffers still come. */
    CAMERA3_MSG_ERROR_RESULT = 3,
    /* One buffer of error_stream was dropped. */
    CAMERA3_MSG_ERROR_BUFFER = 4,
    CAMERA3_MSG_NUM_ERRORS
} camera3_error_msg_code_t;

typedef struct camera3_error_msg {
    /* 0 when not applicable. */
    uint32_t frame_number;

    /* NULL when not applicable. */
    camera3_stream_t* error_stream;

    /* camera3_error_msg_code_t */
    int error_code;
} camera3_error_msg_t;

typedef struct camera3_shutter_msg {
    uint32_t frame_number;

    /* Start of exposure in ns; equals the result's ANDROID_SENSOR_TIMESTAMP. */
    uint64_t timestamp;

    /* Extension: start of readout in ns, same time base as timestamp. */
    uint64_t readout_timestamp;
} camera3_shutter_msg_t;

typedef struct camera3_notify_msg {
    /* camera3_msg_type_t or a private value. */
    int type;

    union {
        camera3_error_msg_t error;
        camera3_shutter_msg_t shutter;
        /* Fixes the size of the union. */
        uint8_t generic[32];
    } message;
} camera3_notify_msg_t;

typedef enum camera3_request_template {
    CAMERA3_TEMPLATE_PREVIEW = 1,
    CAMERA3_TEMPLATE_STILL_CAPTURE = 2,
    CAMERA3_TEMPLATE_VIDEO_RECORD = 3,
    CAMERA3_TEMPLATE_VIDEO_SNAPSHOT = 4,
    CAMERA3_TEMPLATE_ZERO_SHUTTER_LAG = 5,
    CAMERA3_TEMPLATE_MANUAL = 6,
    CAMERA3_TEMPLATE_COUNT,
    CAMERA3_VENDOR_TEMPLATE_START = 0x40000000
} camera3_request_template_t;

typedef struct camera3_capture_request {
    uint32_t frame_number;

    /* NULL repeats the previous settings; not allowed right after configure_streams. */
    const camera_metadata_t* settings;

    /* NULL for a new capture, else the buffer to reprocess. */
    camera3_stream_buffer_t* input_buffer;

    uint32_t num_output_buffers;
    const camera3_stream_buffer_t* output_buffers;

    /* Device 3.5: per physical camera settings. */
    uint32_t num_physcam_settings;
    const char** physcam_id;
    const camera_metadata_t** physcam_settings;

    /* Extension: size of the input buffer of a reprocess request, 0 without one. */
    int32_t input_width;
    int32_t input_height;
} camera3_capture_request_t;

typedef struct camera3_capture_result {
    uint32_t frame_number;

    /* NULL when the call carries no metadata. */
    const camera_metadata_t* result;

    uint32_t num_output_buffers;
    const camera3_stream_buffer_t* output_buffers;

    /* Device 3.2: the reprocessed input buffer, handed back. */
    const camera3_stream_buffer_t* input_buffer;

    /* Device 3.2: 1..partial result count, 0 when the call carries only buffers. */
    uint32_t partial_result;

    /* Device 3.5: per physical camera metadata. */
    uint32_t num_physcam_metadata;
    const char** physcam_ids;
    const camera_metadata_t** physcam_metadata;
} camera3_capture_result_t;

typedef enum camera3_buffer_request_status {
    CAMERA3_BUF_REQ_OK = 0,
    /* Some streams failed; see each stream's status. */
    CAMERA3_BUF_REQ_FAILED_PARTIAL = 1,
    /* Nothing returned: a configure_streams is under way. */
    CAMERA3_BUF_REQ_FAILED_CONFIGURING = 2,
    /* Nothing returned: an unknown or repeated stream was asked for. */
    CAMERA3_BUF_REQ_FAILED_ILLEGAL_ARGUMENTS = 3,
    CAMERA3_BUF_REQ_FAILED_UNKNOWN = 4,
    CAMERA3_BUF_REQ_NUM_STATUS
} camera3_buffer_request_status_t;

typedef enum camera3_stream_buffer_req_status {
    CAMERA3_PS_BUF_REQ_OK = 0,
    /* Timed out; may be retried. */
    CAMERA3_PS_BUF_REQ_NO_BUFFER_AVAILABLE = 1,
    /* The device holds max_buffers; retry after returning one. */
    CAMERA3_PS_BUF_REQ_MAX_BUFFER_EXCEEDED = 2,
    /* Will never succeed again. */
    CAMERA3_PS_BUF_REQ_STREAM_DISCONNECTED = 3,
    /* Fatal; the device should send ERROR_DEVICE. */
    CAMERA3_PS_BUF_REQ_UNKNOWN_ERROR = 4,
    CAMERA3_PS_BUF_REQ_NUM_STATUS
} camera3_stream_buffer_req_status_t;

typedef struct camera3_buffer_request {
    camera3_stream_t* stream;
    uint32_t num_buffers_requested;
} camera3_buffer_request_t;

typedef struct camera3_stream_buffer_ret {
    camera3_stream_t* stream;
    camera3_stream_buffer_req_status_t status;

    /* 0 unless status is OK, then the requested count. */
    uint32_t num_output_buffers;

    /* Provided by the device, with room for num_buffers_requested entries. */
    camera3_stream_buffer_t* output_buffers;
} camera3_stream_buffer_ret_t;

/* Handed to initialize; the device passes the same pointer back as the first argument. */
typedef struct camera3_callback_ops {
    void (*process_capture_result)(const struct camera3_callback_ops*,
                                   const camera3_capture_result_t* result);

    void (*notify)(const struct camera3_callback_ops*, const camera3_notify_msg_t* msg);

    /* Device 3.6 buffer management; the device allocates returned_buf_reqs (num_buffer_reqs
     * entries) and each entry's output_buffers. */
    camera3_buffer_request_status_t (*request_stream_buffers)(
            const struct camera3_callback_ops*, uint32_t num_buffer_reqs,
            const camera3_buffer_request_t* buffer_reqs, uint32_t* num_returned_buf_reqs,
            camera3_stream_buffer_ret_t* returned_buf_reqs);

    /* Device 3.6; blocks while a configure_streams is in progress. */
    void (*return_stream_buffers)(const struct camera3_callback_ops*, uint32_t num_buffers,
                                  const camera3_stream_buffer_t* const* buffers);
} camera3_callback_ops_t;

typedef struct camera3_device_ops {
    /* Once, after open, before anything else. 0 or -ENODEV. */
    int (*initialize)(const struct camera3_device*, const camera3_callback_ops_t* callback_ops);

    /* Only while no capture is in flight. 0, -EINVAL (invalid configuration) or -ENODEV. */
    int (*configure_streams)(const struct camera3_device*,
                             camera3_stream_configuration_t* stream_list);

    /* Device 3.1 and older only; NULL from 3.2. */
    int (*register_stream_buffers)(const struct camera3_device*,
                                   const camera3_stream_buffer_set_t* buffer_set);

    /* type is a camera3_request_template_t. Device-owned, valid until close; NULL on a fatal
     * error. */
    const camera_metadata_t* (*construct_default_request_settings)(const struct camera3_device*,
                                                                   int type);

    /* One call at a time. 0, -EINVAL (the caller keeps buffers and fences) or -ENODEV. */
    int (*process_capture_request)(const struct camera3_device*, camera3_capture_request_t* request);

    /* Device 3.1 and older only; NULL from 3.2. */
    void (*get_metadata_vendor_tag_ops)(const struct camera3_device*, vendor_tag_query_ops_t* ops);

    /* Returns within 10 ms. */
    void (*dump)(const struct camera3_device*, int fd);

    /* Device 3.1; may run beside process_capture_request. 0, -EINVAL or -ENODEV. */
    int (*flush)(const struct camera3_device*);

    /* Device 3.6: a configure_streams is coming; return these streams' buffers. */
    void (*signal_stream_flush)(const struct camera3_device*, uint32_t num_streams,
                                const camera3_stream_t* const* streams);

    /* Device 3.6. 0 if required, -EINVAL if not, -ENOSYS if the query is unsupported. */
    int (*is_reconfiguration_required)(const struct camera3_device*,
                                       const camera_metadata_t* old_session_params,
                                       const camera_metadata_t* new_session_params);

    void* reserved[6];
} camera3_device_ops_t;

typedef struct camera3_device {
    /* common.version is CAMERA_DEVICE_API_VERSION_3_x; common.close closes the device. */
    hw_device_t common;
    camera3_device_ops_t* ops;
    void* priv;
} camera3_device_t;

__END_DECLS
