// The HAL buffer manager round trip: the device asks for one buffer on each of three streams and
// gives the three back. The framework's buffers are in the cache already, as in steady state.
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "AllocationCounter.h"
#include "BenchSession.h"
#include "BenchSupport.h"

namespace kovo::aidl2legacy::bench {
namespace {

using Callback = Aidl2LegacyCameraDeviceCallback;

constexpr int kStreams = 3;

void noArguments(benchmark::internal::Benchmark*) {}

void BM_BufferManagerRoundTrip(benchmark::State& state) {
    BenchSession fixture(kStreams);
    const camera3_callback_ops* ops = fixture.bridge.get();
    std::array<Camera3Stream, kStreams> streams{};
    std::array<camera3_buffer_request, kStreams> requests{};
    std::array<camera3_stream_buffer_ret, kStreams> records{};
    std::array<camera3_stream_buffer, kStreams> buffers{};
    std::array<const camera3_stream_buffer*, kStreams> returned{};
    for (int s = 0; s < kStreams; ++s) {
        streams[s].id = s;
        requests[s] = {&streams[s].stream, 1};
        records[s].output_buffers = &buffers[s];
        returned[s] = &buffers[s];
    }
    uint32_t count = 0;
    const auto roundTrip = [&] {
        ops->request_stream_buffers(ops, kStreams, requests.data(), &count, records.data());
        ops->return_stream_buffers(ops, kStreams, returned.data());
    };
    fixture.framework->sendHandles = true;
    roundTrip();
    fixture.framework->sendHandles = false;
    AllocationMeter meter(state);
    for (auto _ : state) roundTrip();
    if (count != kStreams) state.SkipWithError("buffers were refused");
}

// The two framework calls with ready records: the request (whose answer the framework builds)
// and the return.
void BM_BufferManagerRoundTripFloor(benchmark::State& state) {
    std::shared_ptr<aidl::android::hardware::camera::device::ICameraDeviceCallback> framework =
            ndk::SharedRefBase::make<BenchFramework>();
    std::vector<Callback::BufferRequest> requests(kStreams);
    std::vector<Callback::StreamBuffer> returned(kStreams);
    for (int s = 0; s < kStreams; ++s) {
        requests[s] = {s, 1};
        returned[s].streamId = s;
        returned[s].bufferId = BenchFramework::bufferIdOf(s);
    }
    std::vector<Callback::StreamBufferRet> answers;
    aidl::android::hardware::camera::device::BufferRequestStatus status;
    AllocationMeter meter(state);
    for (auto _ : state) {
        answers.clear();
        framework->requestStreamBuffers(requests, &answers, &status);
        framework->returnStreamBuffers(returned);
    }
}

TARNIC_BENCHMARK_WITH_FLOOR(BM_BufferManagerRoundTrip, noArguments);

}  // namespace
}  // namespace kovo::aidl2legacy::bench
