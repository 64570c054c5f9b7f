/*
 * One callback bridge as a session sets it up, for the fuzz targets of the legacy device's
 * callbacks: a recording framework attached to the result queue, a real buffer handle cache and
 * kStreamCount configured streams (ids 1, 2, 3; max_buffers 4). Also a stream record that was
 * never configured. Made afresh for each input; single-threaded.
 */
#pragma once

#include <aidl2legacy/common/Camera3Stream.h>
#include <aidl2legacy/common/IBufferHandleCacheMgr.h>

#include <map>
#include <memory>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "FuzzSupport.h"
#include "RecordingCameraDeviceCallback.h"

namespace kovo::aidl2legacy::fuzz {

class BridgeFixture {
public:
    static constexpr int32_t kStreamCount = 3;
    static constexpr uint32_t kMaxBuffers = 4;

    BridgeFixture() {
        mBridge->setBufferHandleCacheMgr(mCache);
        Aidl2LegacyCameraDeviceCallback::ResultQueueDescriptor descriptor;
        mBridge->getCaptureResultMetadataQueue(&descriptor);
        mFramework->attachResultQueue(descriptor);
        std::vector<camera3_stream_t*> slots;
        for (int32_t id = 1; id <= kStreamCount; ++id) {
            Camera3Stream& record = mStreams[id];
            record.id = id;
            record.stream.max_buffers = kMaxBuffers;
            slots.push_back(&record.stream);
        }
        camera3_stream_configuration config{};
        config.num_streams = static_cast<uint32_t>(slots.size());
        config.streams = slots.data();
        mBridge->endConfiguration(config);
        mBridge->setStreamMap(mStreams);
        mUnconfigured.id = 6;
    }

    const camera3_callback_ops* ops() const { return mBridge.get(); }

    // A configured stream, the unconfigured one, or null; as a device holds them.
    camera3_stream_t* pickStream(FuzzedDataProvider& in) {
        const int32_t pick = in.ConsumeIntegralInRange<int32_t>(0, kStreamCount + 1);
        if (pick == 0) return nullptr;
        if (pick > kStreamCount) return &mUnconfigured.stream;
        return &mStreams.at(pick).stream;
    }
    camera3_stream_t* pickConfiguredStream(FuzzedDataProvider& in) {
        return &mStreams.at(in.ConsumeIntegralInRange<int32_t>(1, kStreamCount)).stream;
    }

    // A framework status: mostly OK, else a binder or service-specific failure.
    static ndk::ScopedAStatus frameworkStatus(FuzzedDataProvider& in) {
        switch (in.ConsumeIntegralInRange<int>(0, 3)) {
            case 1:
                return ndk::ScopedAStatus::fromExceptionCode(EX_TRANSACTION_FAILED);
            case 2:
                return ndk::ScopedAStatus::fromServiceSpecificErrorWithMessage(
                        in.ConsumeIntegral<int32_t>(), "fuzzed failure");
            default:
                return ndk::ScopedAStatus::ok();
        }
    }

    std::shared_ptr<testing::RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<testing::RecordingCameraDeviceCallback>();
    std::shared_ptr<IBufferHandleCacheMgr> mCache = IBufferHandleCacheMgr::create();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mBridge =
            Aidl2LegacyCameraDeviceCallback::create({0, mFramework});
    std::map<int32_t, Camera3Stream> mStreams;
    Camera3Stream mUnconfigured;
};

}  // namespace kovo::aidl2legacy::fuzz
