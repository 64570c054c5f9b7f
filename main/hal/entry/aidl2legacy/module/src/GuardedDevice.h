/*
 * GuardedDevice: the camera3_device_t that Aidl2LegacyCameraModule::openDevice hands out in place
 * of the module's own device. Its entries forward to the module's device until common.close;
 * from then on every entry answers -ENODEV (null for default settings) without reaching the
 * module, and a second close does nothing. An entry the module's device leaves null stays null.
 *
 * A refused open gets a guard that is closed from the start and whose initialize answers the
 * module's open status, so a session over it fails cleanly instead of touching a null device.
 *
 * For a module whose shutter messages are the standard record (no readout timestamp behind
 * `timestamp`), initialize gives the module the guard's own callback table, which forwards to the
 * caller's and hands shutters on with readout timestamp 0.
 *
 * Owned by the module object, which keeps every guard it made until it is destroyed: the session
 * holds the pointer past close. Threads: entries may run on any thread at once. A call that has
 * started when close begins finishes first (close waits for it); none starts after. So close
 * must not come from inside an entry on the same thread (from a callback the module makes there),
 * as it would wait for itself; the framework closes from its own threads.
 */
#pragma once

#include <hardware/camera3.h>

#include <atomic>
#include <cstdint>

namespace kovo::aidl2legacy {

class GuardedDevice {
public:
    // Over a device the module opened. `standardShutter`: its shutters lack readout timestamps.
    GuardedDevice(camera3_device_t* device, bool standardShutter);
    // For an open the module refused with `openStatus`.
    explicit GuardedDevice(int32_t openStatus);
    GuardedDevice(const GuardedDevice&) = delete;
    GuardedDevice& operator=(const GuardedDevice&) = delete;

    camera3_device_t* device() { return &mDevice; }

private:
    // The callback table handed to the module, with the way back to the caller's table.
    struct Callbacks : camera3_callback_ops_t {
        const camera3_callback_ops_t* target = nullptr;
    };

    // Brackets one forwarded call: admits it unless closed, and lets close wait for it.
    class Call {
    public:
        explicit Call(const camera3_device* device);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        // The module's device, or null once closed.
        camera3_device_t* legacy() const { return mLegacy; }

    private:
        GuardedDevice* mGuard;
        camera3_device_t* mLegacy = nullptr;
    };

    static GuardedDevice* from(const camera3_device* device);
    // Calls entry kEntry of the module's device, or answers -ENODEV (null, nothing) once closed.
    template <auto kEntry, typename... Args>
    static auto forward(const char* entry, const camera3_device* device, Args... args);
    void fillOps(const camera3_device_ops_t* legacyOps);

    static int sInitialize(const camera3_device* device, const camera3_callback_ops_t* ops);
    static int sConfigureStreams(const camera3_device* device,
                                 camera3_stream_configuration_t* streams);
    static int sRegisterStreamBuffers(const camera3_device* device,
                                      const camera3_stream_buffer_set_t* bufferSet);
    static const camera_metadata_t* sConstructDefaultRequestSettings(const camera3_device* device,
                                                                     int type);
    static int sProcessCaptureRequest(const camera3_device* device,
                                      camera3_capture_request_t* request);
    static void sGetMetadataVendorTagOps(const camera3_device* device, vendor_tag_query_ops_t* ops);
    static void sDump(const camera3_device* device, int fd);
    static int sFlush(const camera3_device* device);
    static void sSignalStreamFlush(const camera3_device* device, uint32_t numStreams,
                                   const camera3_stream_t* const* streams);
    static int sIsReconfigurationRequired(const camera3_device* device,
                                          const camera_metadata_t* oldParams,
                                          const camera_metadata_t* newParams);
    static int sClose(hw_device_t* device);

    static void sProcessCaptureResult(const camera3_callback_ops_t* ops,
                                      const camera3_capture_result_t* result);
    static void sNotify(const camera3_callback_ops_t* ops, const camera3_notify_msg_t* msg);
    static camera3_buffer_request_status_t sRequestStreamBuffers(
            const camera3_callback_ops_t* ops, uint32_t numRequests,
            const camera3_buffer_request_t* requests, uint32_t* numReturned,
            camera3_stream_buffer_ret_t* returned);
    static void sReturnStreamBuffers(const camera3_callback_ops_t* ops, uint32_t numBuffers,
                                     const camera3_stream_buffer_t* const* buffers);

    // Handed out; its priv leads back to the guard.
    camera3_device_t mDevice{};
    camera3_device_ops_t mOps{};
    camera3_device_t* const mLegacy;
    const int32_t mOpenStatus;
    const bool mStandardShutter;
    Callbacks mCallbacks{};
    // Calls in flight in the low bits, kClosed once close has begun.
    std::atomic<uint32_t> mState{0};
};

}  // namespace kovo::aidl2legacy
