/*
 * The session tests' fixture and builders: a session over a scriptable legacy device with a real
 * callback bridge, a recording framework callback and mock buffer handle cache managers handed
 * out through the cache manager seam; AIDL streams, metadata and fences to feed it.
 */
#pragma once

#include <aidl/android/hardware/camera/device/Stream.h>
#include <aidl/android/hardware/camera/device/StreamBuffer.h>
#include <aidl/android/hardware/common/NativeHandle.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "Aidl2LegacyCameraDeviceSession.h"
#include "BufferHandleCacheMgrSeam.h"
#include "DeviceTestSupport.h"
#include "RecordingCameraDeviceCallback.h"
#include "ScriptableLegacyDevice.h"

namespace kovo::aidl2legacy::testing {

using Session = Aidl2LegacyCameraDeviceSession;
using aidl::android::hardware::camera::device::Stream;
using aidl::android::hardware::camera::device::StreamBuffer;
using aidl::android::hardware::camera::device::StreamType;
using aidl::android::hardware::common::NativeHandle;

inline constexpr int32_t kSessionInstanceId = 3;

inline Stream makeStream(int32_t id, StreamType type = StreamType::OUTPUT, int32_t width = 640,
                         int32_t height = 480) {
    Stream stream;
    stream.id = id;
    stream.streamType = type;
    stream.width = width;
    stream.height = height;
    stream.format = aidl::android::hardware::graphics::common::PixelFormat::YCBCR_420_888;
    return stream;
}

inline Session::CameraMetadata toAidl(const camera_metadata_t* metadata) {
    Session::CameraMetadata aidl;
    const std::vector<uint8_t> bytes = bytesOf(metadata);
    aidl.metadata.assign(bytes.begin(), bytes.end());
    return aidl;
}

// Settings read from the queue reach the device as a clone, which is compact.
inline std::vector<uint8_t> clonedBytes(const camera_metadata_t* metadata) {
    MetadataPtr clone(clone_camera_metadata(metadata));
    return bytesOf(clone.get());
}

// A handle with duplicates of `fds` (owned by the handle) and `intCount` ints.
inline NativeHandle makeHandle(const std::vector<int>& fds, size_t intCount = 0) {
    NativeHandle handle;
    for (int fd : fds) handle.fds.emplace_back(dup(fd));
    handle.ints.assign(intCount, 7);
    return handle;
}

// A vector of move-only values (an initializer list would copy them).
template <typename T, typename... More>
std::vector<T> movedInto(T first, More... more) {
    std::vector<T> values;
    values.push_back(std::move(first));
    (values.push_back(std::move(more)), ...);
    return values;
}

inline StreamBuffer makeBuffer(int32_t streamId, int64_t bufferId, NativeHandle fence = {}) {
    StreamBuffer buffer;
    buffer.streamId = streamId;
    buffer.bufferId = bufferId;
    buffer.acquireFence = std::move(fence);
    return buffer;
}

// Whether two descriptors are open on the same file.
inline bool sameFile(int lhs, int rhs) {
    struct stat left {};
    struct stat right {};
    return fstat(lhs, &left) == 0 && fstat(rhs, &right) == 0 && left.st_dev == right.st_dev &&
           left.st_ino == right.st_ino;
}

class SessionTest : public LoggingTest {
protected:
    std::shared_ptr<Session> createSession(camera3_device_t* device, Session::ResultInfo& result) {
        return Session::create({kSessionInstanceId, device, mBridge}, result);
    }
    std::shared_ptr<Session> createSession() {
        Session::ResultInfo result;
        std::shared_ptr<Session> session = createSession(mLegacy.device(), result);
        EXPECT_NE(nullptr, session);
        return session;
    }
    std::shared_ptr<Session> openSession() {
        std::shared_ptr<Session> session = createSession();
        EXPECT_EQ(0, session->open(mFramework));
        return session;
    }
    // The session's log texts, without its name prefix.
    std::vector<std::string> sessionLogs() {
        std::vector<std::string> texts;
        for (const std::string& text : logsStartingWith("[3-aidl-session::")) {
            texts.push_back(text.substr(strlen("[3-aidl-session")));
        }
        return texts;
    }

    ScriptableLegacyDevice mLegacy;
    std::shared_ptr<RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    std::shared_ptr<Aidl2LegacyCameraDeviceCallback> mBridge =
            Aidl2LegacyCameraDeviceCallback::create({kSessionInstanceId, mFramework});
    // Every cache manager the sessions create, in creation order.
    std::vector<std::shared_ptr<::testing::NiceMock<MockBufferHandleCacheMgr>>> mCacheMgrs;
    ScopedCacheMgrFactory mCacheMgrFactory{[this] {
        mCacheMgrs.push_back(std::make_shared<::testing::NiceMock<MockBufferHandleCacheMgr>>());
        return mCacheMgrs.back();
    }};
};

}  // namespace kovo::aidl2legacy::testing
