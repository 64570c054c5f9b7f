// Notify messages from the legacy device: any type, error code and stream, the framework
// failing at times.
#include "BridgeFixture.h"

using namespace kovo::aidl2legacy;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    fuzz::BridgeFixture fixture;
    while (in.remaining_bytes() > 0) {
        fixture.mFramework->setNotifyStatus([status = in.ConsumeIntegralInRange<int>(0, 3), &in] {
            return status == 0 ? ndk::ScopedAStatus::ok() : fuzz::BridgeFixture::frameworkStatus(in);
        });
        camera3_notify_msg msg{};
        msg.type =
                in.ConsumeBool() ? in.ConsumeIntegralInRange<int>(0, 3) : in.ConsumeIntegral<int>();
        if (msg.type == CAMERA3_MSG_ERROR) {
            msg.message.error.frame_number = in.ConsumeIntegral<uint32_t>();
            msg.message.error.error_stream = fixture.pickStream(in);
            msg.message.error.error_code = in.ConsumeIntegral<int>();
        } else {
            msg.message.shutter.frame_number = in.ConsumeIntegral<uint32_t>();
            msg.message.shutter.timestamp = in.ConsumeIntegral<uint64_t>();
            msg.message.shutter.readout_timestamp = in.ConsumeIntegral<uint64_t>();
        }
        fixture.ops()->notify(fixture.ops(), &msg);
    }
    return 0;
}
