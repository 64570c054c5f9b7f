// Capture results from the legacy device: metadata and physical camera metadata of any shape,
// buffers of any stream with known, unknown, repeated or no handles, fences, and a framework that
// fails at times. Physical camera ids are never null (a fatal assertion by design).
#include <cutils/native_handle.h>

#include <array>
#include <string>

#include "BridgeFixture.h"

using namespace kovo::aidl2legacy;

namespace {

// Handles as the device holds them: fd numbers used only as keys, never opened or closed.
struct DeviceHandles {
    DeviceHandles() {
        for (size_t i = 0; i < handles.size(); ++i) {
            handles[i] = native_handle_create(i == 0 ? 0 : 1, 1);
            if (i > 0) handles[i]->data[0] = 1000 + static_cast<int>(i % 3);
            pointers[i] = handles[i];
        }
    }
    ~DeviceHandles() {
        for (native_handle_t* handle : handles) native_handle_delete(handle);
    }
    std::array<native_handle_t*, 5> handles;
    std::array<buffer_handle_t, 5> pointers;
};

camera3_stream_buffer deviceBuffer(FuzzedDataProvider& in, fuzz::BridgeFixture& fixture,
                                   DeviceHandles& handles) {
    camera3_stream_buffer buffer{};
    buffer.stream = fixture.pickStream(in);
    const size_t pick = in.ConsumeIntegralInRange<size_t>(0, handles.pointers.size());
    buffer.buffer = pick < handles.pointers.size() ? &handles.pointers[pick] : nullptr;
    buffer.status = in.ConsumeIntegral<int>();
    buffer.acquire_fence = in.ConsumeIntegral<int>();
    // Adopted by the bridge: only a fence this target made, or none.
    buffer.release_fence = in.ConsumeBool() ? fuzz::makeFd() : -1;
    return buffer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzedDataProvider in(data, size);
    fuzz::logSink().clear();
    fuzz::BridgeFixture fixture;
    DeviceHandles handles;
    while (in.remaining_bytes() > 0) {
        // Ids the bridge knows, as if handed out earlier: only for configured streams.
        for (int i = in.ConsumeIntegralInRange<int>(0, 3); i > 0; --i) {
            const size_t pick = in.ConsumeIntegralInRange<size_t>(0, handles.pointers.size() - 1);
            fixture.mBridge->pushBufferId(handles.pointers[pick], in.ConsumeIntegral<uint64_t>(),
                                          in.ConsumeIntegralInRange<int>(1, 3));
        }
        fixture.mFramework->setProcessCaptureResultStatus(
                [failing = in.ConsumeIntegralInRange<int>(0, 3) == 0] {
                    return failing ? ndk::ScopedAStatus::fromExceptionCode(EX_TRANSACTION_FAILED)
                                   : ndk::ScopedAStatus::ok();
                });

        camera3_capture_result result{};
        result.frame_number = in.ConsumeIntegral<uint32_t>();
        result.partial_result = in.ConsumeIntegral<uint32_t>();
        fuzz::MetadataPtr metadata = in.ConsumeBool() ? fuzz::makeMetadata(in) : nullptr;
        result.result = metadata.get();

        const uint32_t physicalCount = in.ConsumeIntegralInRange<uint32_t>(0, 3);
        std::vector<std::string> ids(physicalCount);
        std::vector<const char*> idPointers(physicalCount);
        std::vector<fuzz::MetadataPtr> physical(physicalCount);
        std::vector<const camera_metadata_t*> physicalPointers(physicalCount);
        for (uint32_t i = 0; i < physicalCount; ++i) {
            ids[i] = in.ConsumeRandomLengthString(16);
            idPointers[i] = ids[i].c_str();
            if (in.ConsumeBool()) physical[i] = fuzz::makeMetadata(in);
            physicalPointers[i] = physical[i].get();
        }
        result.num_physcam_metadata = physicalCount;
        result.physcam_ids = idPointers.data();
        result.physcam_metadata = physicalPointers.data();

        camera3_stream_buffer input{};
        if (in.ConsumeBool()) {
            input = deviceBuffer(in, fixture, handles);
            result.input_buffer = &input;
        }
        std::vector<camera3_stream_buffer> outputs(in.ConsumeIntegralInRange<size_t>(0, 4));
        for (camera3_stream_buffer& output : outputs) output = deviceBuffer(in, fixture, handles);
        result.num_output_buffers = static_cast<uint32_t>(outputs.size());
        result.output_buffers = outputs.data();

        fixture.ops()->process_capture_result(fixture.ops(), &result);
    }
    return 0;
}
