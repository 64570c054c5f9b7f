// Capture requests through the session: batches of 1 and 4 requests of three output buffers,
// with or without acquire fences, each with 4 KiB of settings through the request queue. The
// buffers were imported by an earlier batch, as in steady state.
#include <benchmark/benchmark.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <vector>

#include "AllocationCounter.h"
#include "BenchSession.h"
#include "BenchSupport.h"

namespace kovo::aidl2legacy::bench {
namespace {

using Session = BenchSession::Session;

constexpr int kStreams = 3;
constexpr size_t kSettingsSize = 4096;

// Arguments: requests per batch, acquire fences (0/1).
void requestArguments(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"batch", "fences"});
    for (int batch : {1, 4}) {
        for (int fences : {0, 1}) bench->Args({batch, fences});
    }
}

// The framework's fences for a batch: one per output buffer, kept open by the framework.
struct Fences {
    explicit Fences(size_t count) : fds(count) {
        for (int& fd : fds) fd = eventfd(0, EFD_CLOEXEC);
    }
    ~Fences() {
        for (int fd : fds) close(fd);
    }
    std::vector<int> fds;
};

// A batch of `batch` requests; buffer handles only when `withHandles` (the cache imports them).
std::vector<Session::CaptureRequest> makeBatch(int batch, const Fences* fences, bool withHandles,
                                               int handleFd) {
    std::vector<Session::CaptureRequest> requests(batch);
    for (int r = 0; r < batch; ++r) {
        Session::CaptureRequest& request = requests[r];
        request.frameNumber = r;
        request.fmqSettingsSize = kSettingsSize;
        request.inputBuffer.streamId = -1;
        request.outputBuffers.resize(kStreams);
        for (int s = 0; s < kStreams; ++s) {
            Session::StreamBuffer& buffer = request.outputBuffers[s];
            buffer.streamId = s;
            buffer.bufferId = 1 + r * kStreams + s;
            if (withHandles) buffer.buffer.fds.emplace_back(dup(handleFd));
            if (fences != nullptr) {
                buffer.acquireFence.fds.emplace_back(dup(fences->fds[r * kStreams + s]));
            }
        }
    }
    return requests;
}

// What a case and its floor share: the arguments, the session, the settings and the fences.
struct RequestSetup {
    explicit RequestSetup(const benchmark::State& state)
        : batch(static_cast<int>(state.range(0))),
          withFences(state.range(1) != 0),
          fences(batch * kStreams) {}

    const int batch;
    const bool withFences;
    BenchSession fixture{kStreams};
    MetadataPtr settings = makeMetadata(kSettingsSize);
    const int8_t* bytes = reinterpret_cast<const int8_t*>(settings.get());
    Fences fences;
};

void BM_Request(benchmark::State& state) {
    RequestSetup setup(state);
    auto& [batch, withFences, fixture, settings, bytes, fences] = setup;
    const int handleFd = eventfd(0, EFD_CLOEXEC);
    const std::vector<Session::BufferCache> noCachesToRemove;
    int32_t processed = 0;
    {
        std::vector<Session::CaptureRequest> first = makeBatch(batch, nullptr, true, handleFd);
        for (int r = 0; r < batch; ++r) fixture.requestQueue->write(bytes, kSettingsSize);
        fixture.session->processCaptureRequest(first, noCachesToRemove, &processed);
    }
    const std::vector<Session::CaptureRequest> requests =
            makeBatch(batch, withFences ? &fences : nullptr, false, handleFd);
    AllocationMeter meter(state);
    for (auto _ : state) {
        for (int r = 0; r < batch; ++r) fixture.requestQueue->write(bytes, kSettingsSize);
        fixture.session->processCaptureRequest(requests, noCachesToRemove, &processed);
    }
    close(handleFd);
    if (processed != batch) state.SkipWithError("a request was refused");
}

// Per request: the framework's write into the queue, the read out of it, the validate and clone
// of the settings, one dup per acquire fence, and one call into the device with a ready record.
void BM_RequestFloor(benchmark::State& state) {
    RequestSetup setup(state);
    auto& [batch, withFences, fixture, settings, bytes, fences] = setup;
    Session::MetadataQueue queue(Session::kRequestQueueSize, false);
    std::vector<int8_t> copy(kSettingsSize);
    std::array<Camera3Stream, kStreams> streams{};
    std::array<camera3_stream_buffer, kStreams> buffers{};
    std::array<buffer_handle_t, kStreams> handles{};
    for (int s = 0; s < kStreams; ++s) {
        buffers[s] = {&streams[s].stream, &handles[s], CAMERA3_BUFFER_STATUS_OK, -1, -1};
    }
    camera3_capture_request record{};
    record.num_output_buffers = kStreams;
    record.output_buffers = buffers.data();
    const camera3_device_t* device = fixture.legacy.device();
    AllocationMeter meter(state);
    for (auto _ : state) {
        for (int r = 0; r < batch; ++r) queue.write(bytes, kSettingsSize);
        for (int r = 0; r < batch; ++r) {
            queue.read(copy.data(), kSettingsSize);
            size_t size = kSettingsSize;
            const auto* packet = reinterpret_cast<const camera_metadata_t*>(copy.data());
            if (validate_camera_metadata_structure(packet, &size) != 0) abort();
            camera_metadata_t* clone = clone_camera_metadata(packet);
            record.frame_number = static_cast<uint32_t>(r);
            record.settings = clone;
            for (int s = 0; s < kStreams; ++s) {
                buffers[s].acquire_fence = withFences ? dup(fences.fds[r * kStreams + s]) : -1;
            }
            device->ops->process_capture_request(device, &record);
            free_camera_metadata(clone);
        }
    }
}

TARNIC_BENCHMARK_WITH_FLOOR(BM_Request, requestArguments);

}  // namespace
}  // namespace kovo::aidl2legacy::bench
