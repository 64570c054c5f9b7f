#define LOG_TAG "Aidl2LegacyCameraModule"

#include "GuardedDevice.h"

#include <log/log.h>

#include <cerrno>
#include <type_traits>
#include <utility>

#include "ModuleCpuMeter.h"

namespace kovo::aidl2legacy {
namespace {

constexpr uint32_t kClosed = 1u << 31;

using InsideModule = ModuleCpuMeter::InsideModule;

// The entry of the module's table, or null where it has none (so the guard's stays null too).
template <typename Entry>
Entry ifPresent(const camera3_device_ops_t* ops, Entry camera3_device_ops_t::*field, Entry guarded) {
    return ops == nullptr || ops->*field == nullptr ? nullptr : guarded;
}

void logClosed(const char* entry) {
    ALOGE("%s: the camera device is closed", entry);
}

}  // namespace

GuardedDevice::GuardedDevice(camera3_device_t* device, bool standardShutter)
    : mLegacy(device), mOpenStatus(0), mStandardShutter(standardShutter) {
    mDevice.common = device->common;
    mDevice.common.close = device->common.close != nullptr ? sClose : nullptr;
    mDevice.priv = this;
    fillOps(device->ops);
    mDevice.ops = device->ops != nullptr ? &mOps : nullptr;
}

GuardedDevice::GuardedDevice(int32_t openStatus)
    : mLegacy(nullptr), mOpenStatus(openStatus), mStandardShutter(false), mState(kClosed) {
    mDevice.common.tag = HARDWARE_DEVICE_TAG;
    mDevice.common.version = CAMERA_DEVICE_API_VERSION_3_2;
    mDevice.common.close = sClose;
    mDevice.priv = this;
    // Every entry answers, so that whatever the caller does next fails with a status.
    camera3_device_ops_t all{};
    all.initialize = sInitialize;
    all.configure_streams = sConfigureStreams;
    all.register_stream_buffers = sRegisterStreamBuffers;
    all.construct_default_request_settings = sConstructDefaultRequestSettings;
    all.process_capture_request = sProcessCaptureRequest;
    all.get_metadata_vendor_tag_ops = sGetMetadataVendorTagOps;
    all.dump = sDump;
    all.flush = sFlush;
    all.signal_stream_flush = sSignalStreamFlush;
    all.is_reconfiguration_required = sIsReconfigurationRequired;
    fillOps(&all);
    mDevice.ops = &mOps;
}

void GuardedDevice::fillOps(const camera3_device_ops_t* legacy) {
    using Ops = camera3_device_ops_t;
    mOps.initialize = ifPresent(legacy, &Ops::initialize, sInitialize);
    mOps.configure_streams = ifPresent(legacy, &Ops::configure_streams, sConfigureStreams);
    mOps.register_stream_buffers =
            ifPresent(legacy, &Ops::register_stream_buffers, sRegisterStreamBuffers);
    mOps.construct_default_request_settings = ifPresent(
            legacy, &Ops::construct_default_request_settings, sConstructDefaultRequestSettings);
    mOps.process_capture_request =
            ifPresent(legacy, &Ops::process_capture_request, sProcessCaptureRequest);
    mOps.get_metadata_vendor_tag_ops =
            ifPresent(legacy, &Ops::get_metadata_vendor_tag_ops, sGetMetadataVendorTagOps);
    mOps.dump = ifPresent(legacy, &Ops::dump, sDump);
    mOps.flush = ifPresent(legacy, &Ops::flush, sFlush);
    mOps.signal_stream_flush = ifPresent(legacy, &Ops::signal_stream_flush, sSignalStreamFlush);
    mOps.is_reconfiguration_required =
            ifPresent(legacy, &Ops::is_reconfiguration_required, sIsReconfigurationRequired);
}

GuardedDevice* GuardedDevice::from(const camera3_device* device) {
    return static_cast<GuardedDevice*>(device->priv);
}

GuardedDevice::Call::Call(const camera3_device* device) : mGuard(from(device)) {
    if ((mGuard->mState.fetch_add(1, std::memory_order_acquire) & kClosed) == 0) {
        mLegacy = mGuard->mLegacy;
    }
}

GuardedDevice::Call::~Call() {
    // The last call to leave after close began lets close go on.
    if (mGuard->mState.fetch_sub(1, std::memory_order_release) == kClosed + 1) {
        mGuard->mState.notify_all();
    }
}

int GuardedDevice::sInitialize(const camera3_device* device, const camera3_callback_ops_t* ops) {
    GuardedDevice* self = from(device);
    if (self->mOpenStatus != 0) return self->mOpenStatus;
    Call call(device);
    camera3_device_t* legacy = call.legacy();
    if (legacy == nullptr) {
        logClosed(__func__);
        return -ENODEV;
    }
    if (self->mStandardShutter && ops != nullptr) {
        Callbacks& callbacks = self->mCallbacks;
        callbacks.target = ops;
        callbacks.process_capture_result = sProcessCaptureResult;
        callbacks.notify = sNotify;
        callbacks.request_stream_buffers =
                ops->request_stream_buffers != nullptr ? sRequestStreamBuffers : nullptr;
        callbacks.return_stream_buffers =
                ops->return_stream_buffers != nullptr ? sReturnStreamBuffers : nullptr;
        ops = &callbacks;
    }
    InsideModule inside;
    return legacy->ops->initialize(legacy, ops);
}

template <auto kEntry, typename... Args>
auto GuardedDevice::forward(const char* entry, const camera3_device* device, Args... args) {
    using Result = decltype((std::declval<camera3_device_ops_t&>().*kEntry)(nullptr, args...));
    Call call(device);
    camera3_device_t* legacy = call.legacy();
    if (legacy == nullptr) {
        logClosed(entry);
        if constexpr (std::is_void_v<Result>) {
            return;
        } else if constexpr (std::is_pointer_v<Result>) {
            return Result{nullptr};
        } else {
            return Result{-ENODEV};
        }
    }
    InsideModule inside;
    return (legacy->ops->*kEntry)(legacy, args...);
}

int GuardedDevice::sConfigureStreams(const camera3_device* device,
                                     camera3_stream_configuration_t* streams) {
    return forward<&camera3_device_ops_t::configure_streams>(__func__, device, streams);
}

int GuardedDevice::sRegisterStreamBuffers(const camera3_device* device,
                                          const camera3_stream_buffer_set_t* bufferSet) {
    return forward<&camera3_device_ops_t::register_stream_buffers>(__func__, device, bufferSet);
}

const camera_metadata_t* GuardedDevice::sConstructDefaultRequestSettings(const camera3_device* device,
                                                                         int type) {
    return forward<&camera3_device_ops_t::construct_default_request_settings>(__func__, device,
                                                                              type);
}

int GuardedDevice::sProcessCaptureRequest(const camera3_device* device,
                                          camera3_capture_request_t* request) {
    return forward<&camera3_device_ops_t::process_capture_request>(__func__, device, request);
}

void GuardedDevice::sGetMetadataVendorTagOps(const camera3_device* device,
                                             vendor_tag_query_ops_t* ops) {
    forward<&camera3_device_ops_t::get_metadata_vendor_tag_ops>(__func__, device, ops);
}

void GuardedDevice::sDump(const camera3_device* device, int fd) {
    forward<&camera3_device_ops_t::dump>(__func__, device, fd);
}

int GuardedDevice::sFlush(const camera3_device* device) {
    return forward<&camera3_device_ops_t::flush>(__func__, device);
}

void GuardedDevice::sSignalStreamFlush(const camera3_device* device, uint32_t numStreams,
                                       const camera3_stream_t* const* streams) {
    forward<&camera3_device_ops_t::signal_stream_flush>(__func__, device, numStreams, streams);
}

int GuardedDevice::sIsReconfigurationRequired(const camera3_device* device,
                                              const camera_metadata_t* oldParams,
                                              const camera_metadata_t* newParams) {
    return forward<&camera3_device_ops_t::is_reconfiguration_required>(__func__, device, oldParams,
                                                                       newParams);
}

int GuardedDevice::sClose(hw_device_t* device) {
    GuardedDevice* self = from(reinterpret_cast<camera3_device_t*>(device));
    // A refused open has nothing to close.
    if (self->mLegacy == nullptr) return 0;
    uint32_t state = self->mState.fetch_or(kClosed, std::memory_order_acq_rel);
    if ((state & kClosed) != 0) {
        logClosed(__func__);
        return -ENODEV;
    }
    // Calls that started before close finish on the device they started on.
    for (state |= kClosed; state != kClosed; state = self->mState.load(std::memory_order_acquire)) {
        self->mState.wait(state, std::memory_order_acquire);
    }
    InsideModule inside;
    return self->mLegacy->common.close(&self->mLegacy->common);
}

void GuardedDevice::sProcessCaptureResult(const camera3_callback_ops_t* ops,
                                          const camera3_capture_result_t* result) {
    const camera3_callback_ops_t* target = static_cast<const Callbacks*>(ops)->target;
    target->process_capture_result(target, result);
}

void GuardedDevice::sNotify(const camera3_callback_ops_t* ops, const camera3_notify_msg_t* msg) {
    const camera3_callback_ops_t* target = static_cast<const Callbacks*>(ops)->target;
    if (msg == nullptr || msg->type != CAMERA3_MSG_SHUTTER) {
        target->notify(target, msg);
        return;
    }
    // Only the standard part is the module's; what lies behind it is not a readout timestamp.
    camera3_notify_msg_t shutter{};
    shutter.type = CAMERA3_MSG_SHUTTER;
    shutter.message.shutter.frame_number = msg->message.shutter.frame_number;
    shutter.message.shutter.timestamp = msg->message.shutter.timestamp;
    target->notify(target, &shutter);
}

camera3_buffer_request_status_t GuardedDevice::sRequestStreamBuffers(
        const camera3_callback_ops_t* ops, uint32_t numRequests,
        const camera3_buffer_request_t* requests, uint32_t* numReturned,
        camera3_stream_buffer_ret_t* returned) {
    const camera3_callback_ops_t* target = static_cast<const Callbacks*>(ops)->target;
    return target->request_stream_buffers(target, numRequests, requests, numReturned, returned);
}

void GuardedDevice::sReturnStreamBuffers(const camera3_callback_ops_t* ops, uint32_t numBuffers,
                                         const camera3_stream_buffer_t* const* buffers) {
    const camera3_callback_ops_t* target = static_cast<const Callbacks*>(ops)->target;
    target->return_stream_buffers(target, numBuffers, buffers);
}

}  // namespace kovo::aidl2legacy
