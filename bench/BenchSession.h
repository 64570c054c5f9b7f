/*
 * An opened session over a NullLegacyDevice, with the bridge and the bench framework attached as
 * a provider would attach them, `streamCount` output streams of 640x480 YUV configured (ids 0 up),
 * and the framework's side of the request settings queue.
 */
#pragma once

#include <memory>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "Aidl2LegacyCameraDeviceSession.h"
#include "BenchFramework.h"
#include "NullLegacyDevice.h"

namespace kovo::aidl2legacy::bench {

struct BenchSession {
    using Session = Aidl2LegacyCameraDeviceSession;

    explicit BenchSession(int streamCount);
    ~BenchSession();
    BenchSession(const BenchSession&) = delete;
    BenchSession& operator=(const BenchSession&) = delete;

    static Session::StreamConfiguration configurationOf(int streamCount);

    NullLegacyDevice legacy;
    std::shared_ptr<BenchFramework> framework = ndk::SharedRefBase::make<BenchFramework>();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> bridge;
    std::shared_ptr<Session> session;
    std::unique_ptr<Session::MetadataQueue> requestQueue;
};

}  // namespace kovo::aidl2legacy::bench
