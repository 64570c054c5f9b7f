// Shutter and error notifications through the callback bridge.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "AllocationCounter.h"
#include "BenchFramework.h"
#include "BenchSupport.h"

namespace kovo::aidl2legacy::bench {
namespace {

using Callback = Aidl2LegacyCameraDeviceCallback;
using aidl::android::hardware::camera::device::ErrorCode;
using aidl::android::hardware::camera::device::ErrorMsg;
using aidl::android::hardware::camera::device::ShutterMsg;

// Argument: the legacy message type (CAMERA3_MSG_ERROR or CAMERA3_MSG_SHUTTER).
void notifyArguments(benchmark::internal::Benchmark* bench) {
    bench->ArgName("type")->Arg(CAMERA3_MSG_SHUTTER)->Arg(CAMERA3_MSG_ERROR);
}

void BM_Notify(benchmark::State& state) {
    auto framework = ndk::SharedRefBase::make<BenchFramework>();
    std::shared_ptr<Callback> bridge = Callback::create({0, framework});
    const camera3_callback_ops* ops = bridge.get();
    Camera3Stream stream;
    stream.id = 4;
    camera3_notify_msg msg{};
    msg.type = static_cast<int32_t>(state.range(0));
    if (msg.type == CAMERA3_MSG_SHUTTER) {
        msg.message.shutter = {1, 1000000, 1500000};
    } else {
        msg.message.error = {1, &stream.stream, CAMERA3_MSG_ERROR_BUFFER};
    }
    AllocationMeter meter(state);
    for (auto _ : state) ops->notify(ops, &msg);
}

// One virtual call with a ready message.
void BM_NotifyFloor(benchmark::State& state) {
    std::shared_ptr<aidl::android::hardware::camera::device::ICameraDeviceCallback> framework =
            ndk::SharedRefBase::make<BenchFramework>();
    std::vector<Callback::NotifyMsg> msgs(1);
    if (state.range(0) == CAMERA3_MSG_SHUTTER) {
        msgs[0] = ShutterMsg{1, 1000000, 1500000};
    } else {
        msgs[0] = ErrorMsg{1, 4, ErrorCode::ERROR_BUFFER};
    }
    AllocationMeter meter(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(framework.get());
        framework->notify(msgs);
    }
}

TARNIC_BENCHMARK_WITH_FLOOR(BM_Notify, notifyArguments);

}  // namespace
}  // namespace kovo::aidl2legacy::bench
