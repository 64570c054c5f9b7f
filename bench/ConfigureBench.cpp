// configureStreams with three output streams, over and over, as the framework reconfigures.
#include <aidl2legacy/utils/StreamConversion.h>
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "AllocationCounter.h"
#include "BenchSession.h"
#include "BenchSupport.h"

namespace kovo::aidl2legacy::bench {
namespace {

using Session = BenchSession::Session;

constexpr int kStreams = 3;

void noArguments(benchmark::internal::Benchmark*) {}

void BM_ConfigureStreams(benchmark::State& state) {
    BenchSession fixture(kStreams);
    const Session::StreamConfiguration configuration = BenchSession::configurationOf(kStreams);
    std::vector<Session::HalStream> halStreams;
    AllocationMeter meter(state);
    for (auto _ : state) {
        halStreams.clear();
        fixture.session->configureStreams(configuration, &halStreams);
    }
}

// The streams converted into legacy records, one call into the device, and the HalStreams the
// framework gets back.
void BM_ConfigureStreamsFloor(benchmark::State& state) {
    BenchSession fixture(kStreams);
    const Session::StreamConfiguration configuration = BenchSession::configurationOf(kStreams);
    std::array<Camera3Stream, kStreams> records{};
    std::array<camera3_stream_t*, kStreams> pointers{};
    camera3_stream_configuration legacy{};
    legacy.num_streams = kStreams;
    legacy.streams = pointers.data();
    const camera3_device_t* device = fixture.legacy.device();
    std::vector<Session::HalStream> halStreams;
    AllocationMeter meter(state);
    for (auto _ : state) {
        halStreams.clear();
        for (int i = 0; i < kStreams; ++i) {
            records[i] = Camera3Stream{};
            convertStream(configuration.streams[i], records[i]);
            pointers[i] = &records[i].stream;
        }
        device->ops->configure_streams(device, &legacy);
        convertHalStreamConfiguration(legacy, halStreams);
    }
}

TARNIC_BENCHMARK_WITH_FLOOR(BM_ConfigureStreams, noArguments);

}  // namespace
}  // namespace kovo::aidl2legacy::bench
