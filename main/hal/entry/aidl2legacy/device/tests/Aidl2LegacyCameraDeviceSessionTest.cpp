#include <android/testing/binder_hooks.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "SessionTestSupport.h"

namespace kovo::aidl2legacy {
namespace {

using aidl::android::hardware::camera::device::ICameraDeviceSession;
using ::testing::_;
using ::testing::ElementsAre;
using testing::hasStatus;
using ::testing::InSequence;
using testing::pointerText;
using testing::RecordingCameraDeviceCallback;
using ::testing::Return;
using testing::ScriptableLegacyDevice;
using testing::Session;
using testing::SessionTest;
using Entry = ScriptableLegacyDevice::Entry;

constexpr int32_t kInstanceId = testing::kSessionInstanceId;

TEST_F(SessionTest, CreateInitializesTheLegacyDeviceWithTheBridgeTable) {
    Session::ResultInfo result{77};
    std::shared_ptr<Session> session = createSession(mLegacy.device(), result);
    ASSERT_NE(nullptr, session);
    EXPECT_EQ(77, result.status);
    EXPECT_EQ(static_cast<const camera3_callback_ops*>(mBridge.get()), mLegacy.callbackOps());
    EXPECT_EQ(0, mLegacy.closeCount());

    ScriptableLegacyDevice withoutBridge;
    EXPECT_CALL(withoutBridge.mock(), initialize(nullptr)).WillOnce(Return(0));
    EXPECT_NE(nullptr, Session::create({kInstanceId, withoutBridge.device(), nullptr}, result));
}

TEST_F(SessionTest, FailedInitializeClosesTheLegacyDeviceOnceAndReportsTheStatus) {
    EXPECT_CALL(mLegacy.mock(), initialize(_)).WillOnce(Return(-ENODEV));
    Session::ResultInfo result;
    EXPECT_EQ(nullptr, createSession(mLegacy.device(), result));
    EXPECT_EQ(-ENODEV, result.status);
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre("::initialize] Unable to initialize HAL device(-19)"));
}

TEST_F(SessionTest, OpenNeedsAFrameworkCallback) {
    std::shared_ptr<Session> session = createSession();
    EXPECT_EQ(-EINVAL, session->open(nullptr));
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::open] ICameraDeviceCallback is null, return ILLEGAL_ARGUMENT."));
    EXPECT_EQ(0u, mCacheMgrFactory.createCount());
}

// The death recipient is never created, so no link is made even to a remote callback, and the
// framework's death does not reach the session.
TEST_F(SessionTest, OpenLinksToDeathWithoutARecipient) {
    android::testing::RemoteBinder remote(mFramework);
    EXPECT_CALL(mLegacy.mock(), flush()).Times(0);
    std::shared_ptr<Session> session = openSession();
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::linkToDeath] Fail to link ICameraDeviceCallback to death",
                            "::open] FMQ request size:2097152"));
    EXPECT_EQ(0u, remote.deathLinkCount());
    EXPECT_EQ(1u, mCacheMgrFactory.createCount());

    remote.kill();
    EXPECT_EQ(0, mLegacy.closeCount());
}

TEST_F(SessionTest, SecondOpenReplacesCallbackQueueAndCacheManager) {
    std::shared_ptr<Session> session = openSession();
    Session::MetadataQueueDescriptor firstQueue;
    ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&firstQueue).isOk());
    ASSERT_EQ(1u, mCacheMgrs.size());
    {
        InSequence order;
        EXPECT_CALL(*mCacheMgrs[0], resetCacheMgr());
        EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr());
    }
    clearLogs();

    auto secondFramework = ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    EXPECT_EQ(0, session->open(secondFramework));
    EXPECT_THAT(
            sessionLogs(),
            ElementsAre("::open] mBinderCallback=" + pointerText(mFramework.get()) + " is not null.",
                        "::unlinkToDeath] Fail to unlink ICameraDeviceCallback to death",
                        "::linkToDeath] Fail to link ICameraDeviceCallback to death",
                        "::open] FMQ request size:2097152",
                        "::open] mBufferHandleCacheMgr:" + pointerText(mCacheMgrs[0].get()) +
                                " != nullptr"));
    EXPECT_EQ(2u, mCacheMgrs.size());

    // The queue was replaced: what goes into the first one does not reach the second.
    Session::MetadataQueueDescriptor secondQueue;
    ASSERT_TRUE(session->getCaptureRequestMetadataQueue(&secondQueue).isOk());
    Session::MetadataQueue oldQueue(firstQueue);
    Session::MetadataQueue newQueue(secondQueue);
    const int8_t byte = 1;
    ASSERT_TRUE(oldQueue.write(&byte, 1));
    EXPECT_EQ(0u, newQueue.availableToRead());
}

TEST_F(SessionTest, CloseReleasesEverythingAndRepeatsOnlyTheLegacyClose) {
    std::shared_ptr<Session> session = openSession();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(1);
    clearLogs();
    EXPECT_TRUE(session->close().isOk());
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::unlinkToDeath] Fail to unlink ICameraDeviceCallback to death"));

    clearLogs();
    EXPECT_CALL(mLegacy.mock(), close()).WillOnce(Return(-ENODEV));
    EXPECT_TRUE(hasStatus(session->close(), -ENODEV));
    EXPECT_EQ(2, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre("::close] mBinderCallback is null before close done."));
}

TEST_F(SessionTest, CloseWithoutCommonCloseStillReleasesCacheManagerAndCallback) {
    std::shared_ptr<Session> session = openSession();
    mLegacy.removeClose();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(1);
    clearLogs();
    EXPECT_TRUE(hasStatus(session->close(), -ENOSYS));
    EXPECT_THAT(sessionLogs(),
                ElementsAre("::close] Invalid camera3_device_t operations, ",
                            "::close] mCamera3Device:" + pointerText(mLegacy.device()) +
                                    ",mCamera3Device->common.close:(nil)",
                            "::unlinkToDeath] Fail to unlink ICameraDeviceCallback to death"));
}

TEST_F(SessionTest, CloseBeforeOpenStillClosesTheLegacyDevice) {
    std::shared_ptr<Session> session = createSession();
    EXPECT_TRUE(session->close().isOk());
    EXPECT_EQ(1, mLegacy.closeCount());
    EXPECT_THAT(sessionLogs(), ElementsAre("::close] mBinderCallback is null before close done."));
}

TEST_F(SessionTest, ServiceDiedFlushesThenClosesWhateverFails) {
    struct Case {
        int flushStatus;
        int closeStatus;
        std::vector<std::string> errors;
    };
    for (const Case& c :
         {Case{0, 0, {}}, Case{-ENODEV, 0, {"::serviceDied] fail to flush"}},
          Case{0, -EIO, {"::serviceDied] fail to close"}},
          Case{-ENODEV, -EIO, {"::serviceDied] fail to flush", "::serviceDied] fail to close"}}}) {
        ScriptableLegacyDevice legacy;
        {
            InSequence order;
            EXPECT_CALL(legacy.mock(), flush()).WillOnce(Return(c.flushStatus));
            EXPECT_CALL(legacy.mock(), close()).WillOnce(Return(c.closeStatus));
        }
        Session::ResultInfo result;
        std::shared_ptr<Session> session = createSession(legacy.device(), result);
        ASSERT_EQ(0, session->open(mFramework));
        clearLogs();

        session->serviceDied();
        std::vector<std::string> logs = sessionLogs();
        ASSERT_FALSE(logs.empty());
        EXPECT_EQ("::serviceDied] ICameraDeviceCallback " + pointerText(mFramework.get()) +
                          " has died; removing it - this:" + pointerText(session.get()) +
                          "; force to close camera device 3",
                  logs.front());
        std::vector<std::string> errors;
        for (const std::string& text : logs) {
            if (text.find("fail to") != std::string::npos) errors.push_back(text);
        }
        EXPECT_EQ(c.errors, errors) << c.flushStatus << "/" << c.closeStatus;
        EXPECT_EQ(1, legacy.closeCount());
    }
}

TEST_F(SessionTest, ServiceDiedAfterCloseClosesTheLegacyDeviceAgain) {
    std::shared_ptr<Session> session = openSession();
    session->close();
    session->serviceDied();
    EXPECT_EQ(2, mLegacy.closeCount());
}

TEST_F(SessionTest, DestructionNeitherClosesNorLogs) {
    std::shared_ptr<Session> session = openSession();
    EXPECT_CALL(*mCacheMgrs[0], closeCacheMgr()).Times(0);
    EXPECT_CALL(*mCacheMgrs[0], resetCacheMgr()).Times(0);
    clearLogs();
    session.reset();
    EXPECT_EQ(0, mLegacy.closeCount());
    EXPECT_TRUE(sessionLogs().empty());
}

TEST_F(SessionTest, SessionBindersInheritRealTimePriority) {
    std::shared_ptr<Session> session = createSession();
    ndk::SpAIBinder binder = session->asBinder();
    EXPECT_TRUE(android::testing::binderInheritsRt(binder.get()));
}

// The slot of a virtual function, from the Itanium representation of a pointer to it: the first
// word holds 1 + the function's byte offset in the virtual table.
template <typename MemberFunction>
ptrdiff_t vtableSlot(MemberFunction function) {
    static_assert(sizeof(function) == 2 * sizeof(ptrdiff_t));
    ptrdiff_t words[2];
    memcpy(words, &function, sizeof(words));
    EXPECT_EQ(1, words[0] % 2) << "not a virtual function";
    return (words[0] - 1) / static_cast<ptrdiff_t>(sizeof(void*));
}

struct SessionProbe : Session {
    static ptrdiff_t createBinderSlot() { return vtableSlot(&SessionProbe::createBinder); }
};

TEST(SessionLayoutTest, OwnVirtualFunctionsFollowCreateBinderInTheirFixedOrder) {
    const ptrdiff_t lastInterfaceSlot = vtableSlot(&ICameraDeviceSession::getInterfaceHash);
    EXPECT_EQ(lastInterfaceSlot + 1, SessionProbe::createBinderSlot());
    const std::vector<ptrdiff_t> ownSlots = {
            vtableSlot(&Session::open),
            vtableSlot(&Session::serviceDied),
            vtableSlot(&Session::linkToDeath),
            vtableSlot(&Session::unlinkToDeath),
            vtableSlot(&Session::convertMetadataFromFmq),
            vtableSlot(&Session::convertPhysicalCameraSetting),
            vtableSlot(&Session::convertStreamBuffer),
            vtableSlot(&Session::processOneCaptureRequest),
            vtableSlot(&Session::initialize),
    };
    for (size_t i = 0; i < ownSlots.size(); ++i) {
        EXPECT_EQ(lastInterfaceSlot + 2 + static_cast<ptrdiff_t>(i), ownSlots[i]) << i;
    }
}

TEST_F(SessionTest, FlushGivesTheLegacyResult) {
    std::shared_ptr<Session> session = createSession();
    EXPECT_CALL(mLegacy.mock(), flush()).WillOnce(Return(0)).WillOnce(Return(-ENODEV));
    EXPECT_TRUE(session->flush().isOk());
    EXPECT_TRUE(hasStatus(session->flush(), -ENODEV));
}

// Every optional legacy entry is tested before the call: a missing device, ops table or entry is
// logged (the entry's line differs in its blanks) and answered with -ENOSYS.
TEST_F(SessionTest, UncallableLegacyEntriesLogWhatIsMissing) {
    struct Operation {
        std::string name;  // as the log names the function
        Entry entry;
        std::string opsLine;  // with %s for the table and %e for the entry
        std::function<ndk::ScopedAStatus(Session&)> call;
    };
    const std::vector<Operation> operations = {
            {"flush", Entry::kFlush, " mCamera3Device->ops:%s,mCamera3Device->ops->flush:%e",
             [](Session& session) { return session.flush(); }},
            {"signalStreamFlush", Entry::kSignalStreamFlush,
             "mCamera3Device->ops:%s,mCamera3Device->ops->signal_stream_flush:%e",
             [](Session& session) { return session.signalStreamFlush({}, 0); }},
            {"isReconfigurationRequired", Entry::kIsReconfigurationRequired,
             "mCamera3Device->ops:%s,mCamera3Device->ops->is_reconfiguration_required:%e",
             [](Session& session) {
                 bool needed = true;
                 return session.isReconfigurationRequired({}, {}, &needed);
             }},
            {"processOneCaptureRequest", Entry::kProcessCaptureRequest,
             " mCamera3Device->ops:%s,mCamera3Device->ops->process_capture_request:%e",
             [](Session& session) {
                 Session::CaptureRequest request;
                 request.inputBuffer.streamId = -1;
                 int32_t processed = 5;
                 ndk::ScopedAStatus status = session.processCaptureRequest(
                         testing::movedInto(std::move(request)), {}, &processed);
                 EXPECT_EQ(5, processed);
                 return status;
             }},
    };
    for (const Operation& operation : operations) {
        ScriptableLegacyDevice withoutOps;
        withoutOps.removeOpsTable();
        ScriptableLegacyDevice withoutEntry;
        withoutEntry.removeEntry(operation.entry);
        std::string opsLine = operation.opsLine;
        opsLine.replace(opsLine.find("%s"), 2, pointerText(withoutEntry.device()->ops));
        opsLine.replace(opsLine.find("%e"), 2, "(nil)");
        const std::string prefix = "::" + operation.name + "] ";
        const std::string invalid = prefix + "Invalid camera3_device_t operations, ";
        struct Case {
            camera3_device_t* device;
            std::vector<std::string> errors;
        };
        const std::vector<Case> cases = {
                {nullptr, {invalid}},
                {withoutOps.device(),
                 {invalid, prefix + "mCamera3Device:" + pointerText(withoutOps.device()) + ","}},
                {withoutEntry.device(),
                 {invalid, prefix + "mCamera3Device:" + pointerText(withoutEntry.device()) + ",",
                  prefix + opsLine}},
        };
        for (const Case& c : cases) {
            // Made directly: initialize() would need the ops table.
            auto session = ndk::SharedRefBase::make<Session>(
                    Session::CreationInfo{kInstanceId, c.device, mBridge});
            ASSERT_EQ(0, session->open(mFramework));
            clearLogs();
            EXPECT_TRUE(hasStatus(operation.call(*session), -ENOSYS)) << operation.name;
            const std::vector<std::string> errors = sessionLogs();
            EXPECT_EQ(c.errors, errors) << operation.name << " " << c.errors.size();
        }
    }
}

TEST_F(SessionTest, QueueDescriptorsNeedAnOutArgument) {
    std::shared_ptr<Session> session = openSession();
    EXPECT_TRUE(hasStatus(session->getCaptureRequestMetadataQueue(nullptr), -EINVAL));
    EXPECT_TRUE(hasStatus(session->getCaptureResultMetadataQueue(nullptr), -EINVAL));
}

TEST_F(SessionTest, ResultQueueDescriptorMapsTheBridgesQueue) {
    std::shared_ptr<Session> session = openSession();
    Session::MetadataQueueDescriptor descriptor;
    ASSERT_TRUE(session->getCaptureResultMetadataQueue(&descriptor).isOk());
    Session::MetadataQueue framework(descriptor);

    testing::MetadataPtr metadata = testing::makeMetadata(90);
    int64_t fmqSize = 0;
    Aidl2LegacyCameraDeviceCallback::CameraMetadata inlineMetadata;
    mBridge->convertMetadataToFmq(metadata.get(), fmqSize, inlineMetadata);
    ASSERT_EQ(static_cast<int64_t>(get_camera_metadata_size(metadata.get())), fmqSize);
    std::vector<uint8_t> bytes(fmqSize);
    ASSERT_TRUE(framework.read(reinterpret_cast<int8_t*>(bytes.data()), bytes.size()));
    EXPECT_EQ(testing::bytesOf(metadata.get()), bytes);
}

// Ownership only: a leak or a double free shows under the address sanitizer.
TEST(MetadataReleaserTest, FreesEveryBlockOnceAndStaysUsable) {
    testing::MetadataPtr source = testing::makeMetadata(1);
    Session::MetadataReleaser releaser;
    releaser.push(clone_camera_metadata(source.get()));
    releaser.push(clone_camera_metadata(source.get()));
    releaser.releaseAll();
    releaser.releaseAll();
    releaser.push(clone_camera_metadata(source.get()));
}

}  // namespace
}  // namespace kovo::aidl2legacy
