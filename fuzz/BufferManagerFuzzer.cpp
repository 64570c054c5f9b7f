// The HAL buffer manager: the device asks for buffers and the framework answers anything (any
// status, entry count, stream, error value, buffer count, fence), the device gives buffers back
// or delivers them in results, and meanwhile the framework makes the cache drop buffers the
// device holds. Steered around the designed ends: requests never exceed a stream's count (no
// one-second wait), answers name configured streams, and every buffer carries a handle with a
// non-zero id (so the cache always produces it).
#include <aidl/android/hardware/camera/device/StreamBuffersVal.h>
#include <aidl2legacy/utils/EnumValue.h>
#include <unistd.h>

#include <array>
#include <unordered_map>

#include "BridgeFixture.h"

using namespace kovo::aidl2legacy;
using aidl::android::hardware::camera::device::BufferRequest;
using aidl::android::hardware::camera::device::BufferRequestStatus;
using aidl::android::hardware::camera::device::BufferStatus;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamBufferRequestError;
using aidl::android::hardware::camera::device::StreamBufferRet;
using aidl::android::hardware::camera::device::StreamBuffersVal;

namespace {

constexpr size_t kCapacity = 4;

struct Held {
    camera3_stream_buffer buffer;
    int64_t bufferId;
};

StreamBuffer frameworkBuffer(FuzzedDataProvider& in, int32_t streamId, int64_t& lastId,
                             const std::vector<Held>& held) {
    StreamBuffer buffer;
    buffer.streamId = in.ConsumeBool() ? streamId : in.ConsumeIntegralInRange<int32_t>(1, 3);
    // A fresh id, or one the device still holds: the cache then replaces that buffer.
    buffer.bufferId = !held.empty() && in.ConsumeBool()
                              ? held[in.ConsumeIntegralInRange<size_t>(0, held.size() - 1)].bufferId
                              : ++lastId;
    buffer.buffer.fds.emplace_back(fuzz::makeFd());
    buffer.buffer.ints.assign(in.ConsumeIntegralInRange<size_t>(0, 2), 7);
    buffer.status = in.ConsumeBool() ? BufferStatus::OK : BufferStatus::ERROR;
    for (int i = in.ConsumeIntegralInRange<int>(0, 2); i > 0; --i) {
        buffer.acquireFence.fds.emplace_back(fuzz::makeFd());
    }
    return buffer;
}

void request(FuzzedDataProvider& in, fuzz::BridgeFixture& fixture, int64_t& lastId,
             std::vector<Held>& held) {
    std::unordered_map<int, unsigned int> counts;
    fixture.mBridge->getValidBufNum(counts);
    const size_t asks = in.ConsumeIntegralInRange<size_t>(0, 3);
    std::vector<camera3_buffer_request> requests(asks);
    std::vector<camera3_stream_buffer_ret> records(asks);
    std::vector<std::array<camera3_stream_buffer, kCapacity>> buffers(asks);
    for (size_t i = 0; i < asks; ++i) {
        requests[i].stream = fixture.pickConfiguredStream(in);
        const unsigned int count = counts[Camera3Stream::fromStream(requests[i].stream)->id];
        requests[i].num_buffers_requested =
                in.ConsumeIntegralInRange<uint32_t>(0, std::min<unsigned int>(count, kCapacity));
        counts[Camera3Stream::fromStream(requests[i].stream)->id] -=
                requests[i].num_buffers_requested;
        records[i].output_buffers = buffers[i].data();
        records[i].num_output_buffers = in.ConsumeIntegralInRange<uint32_t>(0, 1);
    }
    // Per answer entry, the ids of the buffers it gave.
    std::vector<std::vector<int64_t>> givenIds;
    fixture.mFramework->setBufferRequestHandler([&](const std::vector<BufferRequest>& asked,
                                                    std::vector<StreamBufferRet>* answers,
                                                    BufferRequestStatus* status) {
        *status = in.ConsumeBool() ? BufferRequestStatus(in.ConsumeIntegralInRange(0, 4))
                                   : BufferRequestStatus(in.ConsumeIntegral<int32_t>());
        size_t entries = asked.size();
        if (in.ConsumeIntegralInRange(0, 7) == 0) entries = in.ConsumeIntegralInRange(0, 4);
        for (size_t i = 0; i < entries; ++i) {
            StreamBufferRet& answer = answers->emplace_back();
            answer.streamId = i < asked.size() && in.ConsumeBool()
                                      ? asked[i].streamId
                                      : in.ConsumeIntegralInRange<int32_t>(1, 3);
            std::vector<int64_t>& ids = givenIds.emplace_back();
            if (in.ConsumeIntegralInRange(0, 3) == 0) {
                answer.val.set<StreamBuffersVal::error>(
                        StreamBufferRequestError(in.ConsumeIntegral<int32_t>()));
                continue;
            }
            const int32_t wanted = i < asked.size() ? asked[i].numBuffersRequested : 1;
            std::vector<StreamBuffer> given;
            for (int32_t n = in.ConsumeIntegralInRange<int32_t>(0, wanted + 1); n > 0; --n) {
                given.push_back(frameworkBuffer(in, answer.streamId, lastId, held));
                ids.push_back(given.back().bufferId);
            }
            answer.val.set<StreamBuffersVal::buffers>(std::move(given));
        }
        return fuzz::BridgeFixture::frameworkStatus(in);
    });
    uint32_t returned = 0;
    fixture.ops()->request_stream_buffers(fixture.ops(), static_cast<uint32_t>(asks),
                                          requests.data(), &returned, records.data());
    for (uint32_t i = 0; i < returned; ++i) {
        // The device reads the status as an integer: the framework may send any value.
        if (enumValue(records[i].status) != CAMERA3_PS_BUF_REQ_OK) continue;
        // An error entry whose value happens to be OK hands over nothing.
        if (givenIds[i].size() < records[i].num_output_buffers) continue;
        for (uint32_t j = 0; j < records[i].num_output_buffers; ++j) {
            camera3_stream_buffer& buffer = records[i].output_buffers[j];
            // The device owns the duplicated acquire fence.
            if (buffer.acquire_fence >= 0) close(buffer.acquire_fence);
            buffer.acquire_fence = -1;
            held.push_back({buffer, givenIds[i][j]});
        }
    }
}

// The device gives held buffers back (through return_stream_buffers or in a result).
void giveBack(FuzzedDataProvider& in, fuzz::BridgeFixture& fixture, std::vector<Held>& held) {
    std::vector<camera3_stream_buffer> buffers;
    for (size_t n = in.ConsumeIntegralInRange<size_t>(0, 4); n > 0 && !held.empty(); --n) {
        const size_t pick = in.ConsumeIntegralInRange<size_t>(0, held.size() - 1);
        camera3_stream_buffer buffer = held[pick].buffer;
        held.erase(held.begin() + static_cast<std::ptrdiff_t>(pick));
        buffer.status = in.ConsumeIntegralInRange(0, 1);
        buffer.release_fence = in.ConsumeBool() ? fuzz::makeFd() : -1;
        buffers.push_back(buffer);
    }
    if (in.ConsumeBool()) {
        fixture.mFramework->setReturnStreamBuffersStatus(
                [failing = in.ConsumeIntegralInRange(0, 3) == 0] {
                    return failing ? ndk::ScopedAStatus::fromExceptionCode(EX_TRANSACTION_FAILED)
                                   : ndk::ScopedAStatus::ok();
                });
        std::vector<const camera3_stream_buffer*> pointers;
        for (const camera3_stream_buffer& buffer : buffers) pointers.push_back(&buffer);
        fixture.ops()->return_stream_buffers(fixture.ops(), static_cast<uint32_t>(pointers.size()),
                                             pointers.data());
    } else {
        camera3_capture_result result{};
        result.frame_number = in.ConsumeIntegral<uint32_t>();
        result.num_output_buffers = static_cast<uint32_t>(buffers.size());
        result.output_buffers = buffers.data();
        fixture.ops()->process_capture_result(fixture.ops(), &result);
    }
}

// The framework makes the cache let go of buffers, some of which the device may hold.
void dropCaches(FuzzedDataProvider& in, fuzz::BridgeFixture& fixture, int64_t lastId) {
    if (in.ConsumeBool()) {
        std::vector<IBufferHandleCacheMgr::BufferCache> caches(in.ConsumeIntegralInRange(0, 3));
        for (auto& cache : caches) {
            cache.streamId = in.ConsumeIntegralInRange<int32_t>(1, 3);
            cache.bufferId = in.ConsumeIntegralInRange<int64_t>(1, std::max<int64_t>(lastId, 1));
        }
        fixture.mCache->removeBufferCaches(caches);
    } else {
        IBufferHandleCacheMgr::StreamConfiguration configuration;
        for (int32_t id = 1; id <= 3; ++id) {
            if (in.ConsumeBool()) configuration.streams.emplace_back().id = id;
        }
        fixture.mCache->configureStreams(configuration);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    fuzz::BridgeFixture fixture;
    std::vector<Held> held;
    int64_t lastId = 0;
    while (in.remaining_bytes() > 0) {
        switch (in.ConsumeIntegralInRange(0, 2)) {
            case 0:
                request(in, fixture, lastId, held);
                break;
            case 1:
                giveBack(in, fixture, held);
                break;
            default:
                dropCaches(in, fixture, lastId);
                break;
        }
    }
    return 0;
}
