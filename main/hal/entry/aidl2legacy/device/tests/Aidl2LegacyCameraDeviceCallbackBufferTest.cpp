#include <cutils/native_handle.h>
#include <cutils/properties.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Aidl2LegacyCameraDeviceCallback.h"
#include "DeviceTestSupport.h"
#include "RecordingCameraDeviceCallback.h"

namespace kovo::aidl2legacy {
namespace {

using ::testing::ElementsAre;
using testing::pointerText;
using testing::RecordingCameraDeviceCallback;
using ::testing::UnorderedElementsAre;
using Callback = Aidl2LegacyCameraDeviceCallback;
using Counts = std::unordered_map<int, unsigned int>;
using ::testing::Pair;

struct HandleDeleter {
    // The fd numbers are made up: free the handle without closing them.
    void operator()(native_handle_t* handle) const { native_handle_delete(handle); }
};
using HandlePtr = std::unique_ptr<native_handle_t, HandleDeleter>;

HandlePtr makeHandle(const std::vector<int>& fds, const std::vector<int>& ints = {}) {
    HandlePtr handle(
            native_handle_create(static_cast<int>(fds.size()), static_cast<int>(ints.size())));
    for (size_t i = 0; i < fds.size(); ++i) handle->data[i] = fds[i];
    for (size_t i = 0; i < ints.size(); ++i) handle->data[fds.size() + i] = ints[i];
    return handle;
}

// Reaches the counting protocol that the result, request and return paths share.
class CountingCallback : public Callback {
public:
    using Callback::Callback;
    using Callback::giveBackValidBuffer;
    using Callback::takeValidBuffers;
};

class BufferBookkeepingTest : public testing::LoggingTest {
protected:
    std::shared_ptr<CountingCallback> makeCallback() {
        return std::make_shared<CountingCallback>(Callback::CreationInfo{3, mFramework});
    }
    // Configures streams with the given (stream id, max_buffers) pairs.
    void configure(Callback& callback, const std::vector<std::pair<int32_t, uint32_t>>& streams) {
        std::vector<Camera3Stream> records(streams.size());
        std::vector<camera3_stream_t*> pointers;
        for (size_t i = 0; i < streams.size(); ++i) {
            records[i].id = streams[i].first;
            records[i].stream.max_buffers = streams[i].second;
            pointers.push_back(&records[i].stream);
        }
        camera3_stream_configuration config{};
        config.num_streams = static_cast<uint32_t>(pointers.size());
        config.streams = pointers.data();
        callback.endConfiguration(config);
    }
    Counts counts(Callback& callback) {
        Counts out;
        callback.getValidBufNum(out);
        return out;
    }

    std::shared_ptr<RecordingCameraDeviceCallback> mFramework =
            ndk::SharedRefBase::make<RecordingCameraDeviceCallback>();
    std::shared_ptr<CountingCallback> mCallback = makeCallback();
};

TEST(BufferKeyTest, HashFollowsTheFdsOnly) {
    struct Case {
        std::vector<int> fds;
        std::vector<int> ints;
        uint64_t hash;
    };
    // 31 + numFds, then h * 31 + fd per fd; fds sign-extended, modulo 2^64.
    for (const Case& c : {Case{{3, 4}, {}, 31810}, Case{{3, 4}, {9, 9}, 31810},
                          Case{{4, 3}, {}, 31840}, Case{{}, {5}, 31}, Case{{-1}, {}, 991}}) {
        HandlePtr handle = makeHandle(c.fds, c.ints);
        EXPECT_EQ(c.hash, Callback::BufferHasher()(handle.get())) << ::testing::PrintToString(c.fds);
    }
    EXPECT_EQ(0u, Callback::BufferHasher()(nullptr));
}

TEST(BufferKeyTest, HandlesAreEqualWhenTheirFdsMatchInOrder) {
    struct Case {
        std::vector<int> lhsFds;
        std::vector<int> lhsInts;
        std::vector<int> rhsFds;
        std::vector<int> rhsInts;
        bool equal;
    };
    for (const Case& c :
         {Case{{3, 4}, {}, {3, 4}, {}, true}, Case{{3, 4}, {1}, {3, 4}, {2, 2}, true},
          Case{{}, {1}, {}, {}, true}, Case{{3, 4}, {}, {4, 3}, {}, false},
          Case{{3, 4}, {}, {3, 4, 5}, {}, false}}) {
        HandlePtr lhs = makeHandle(c.lhsFds, c.lhsInts);
        HandlePtr rhs = makeHandle(c.rhsFds, c.rhsInts);
        EXPECT_EQ(c.equal, Callback::BufferComparator()(lhs.get(), rhs.get()))
                << ::testing::PrintToString(c.lhsFds) << " vs "
                << ::testing::PrintToString(c.rhsFds);
    }
}

TEST_F(BufferBookkeepingTest, AnIdIsFoundOnceThroughAnyHandleWithItsFds) {
    HandlePtr pushed = makeHandle({30, 31}, {1});
    HandlePtr copy = makeHandle({30, 31}, {2, 3});
    const native_handle* pushedKey = pushed.get();
    const native_handle* copyKey = copy.get();
    mCallback->pushBufferId(pushedKey, 42, 5);
    EXPECT_EQ(42u, mCallback->popBufferId(copyKey, 5));
    EXPECT_EQ(0u, mCallback->popBufferId(pushedKey, 5));
}

TEST_F(BufferBookkeepingTest, OtherFdsStreamsAndNullFindNothingAndKeepTheId) {
    HandlePtr pushed = makeHandle({30, 31});
    HandlePtr reversed = makeHandle({31, 30});
    HandlePtr longer = makeHandle({30, 31, 32});
    const native_handle* pushedKey = pushed.get();
    const native_handle* reversedKey = reversed.get();
    const native_handle* longerKey = longer.get();
    const native_handle* nullKey = nullptr;
    mCallback->pushBufferId(pushedKey, 42, 5);
    clearLogs();
    EXPECT_EQ(0u, mCallback->popBufferId(reversedKey, 5));
    EXPECT_EQ(0u, mCallback->popBufferId(longerKey, 5));
    EXPECT_EQ(0u, mCallback->popBufferId(pushedKey, 6));
    EXPECT_EQ(0u, mCallback->popBufferId(nullKey, 5));
    EXPECT_TRUE(logTexts().empty());
    EXPECT_EQ(42u, mCallback->popBufferId(pushedKey, 5));
}

TEST_F(BufferBookkeepingTest, PushingAHandleAgainKeepsTheLastId) {
    HandlePtr handle = makeHandle({30});
    const native_handle* key = handle.get();
    mCallback->pushBufferId(key, 1, 5);
    mCallback->pushBufferId(key, 2, 5);
    mCallback->pushBufferId(key, 3, 6);
    EXPECT_EQ(2u, mCallback->popBufferId(key, 5));
    EXPECT_EQ(0u, mCallback->popBufferId(key, 5));
    EXPECT_EQ(3u, mCallback->popBufferId(key, 6));
}

TEST_F(BufferBookkeepingTest, PopsNameTheHandleAndTheId) {
    HandlePtr handle = makeHandle({30});
    const native_handle* key = handle.get();
    mCallback->pushBufferId(key, 42, 5);
    mCallback->pushBufferId(key, 43, 6);
    clearLogs();
    mCallback->popBufferId(key, 5);
    mCallback->getCapResultBufferId(key, 6);
    const std::string line =
            "[3-aidl2legacy-callback::popBufferId] buffer_handle_t:" + pointerText(key) + ", bufId:";
    EXPECT_THAT(logTexts(), ElementsAre(line + "42", line + "43"));
}

TEST_F(BufferBookkeepingTest, EndConfigurationStartsEachStreamAtItsMaxBuffers) {
    mCallback->setValidBufNum({{1, 8}});
    configure(*mCallback, {{5, 2}, {9, 4}, {5, 7}});
    EXPECT_THAT(counts(*mCallback), UnorderedElementsAre(Pair(5, 2u), Pair(9, 4u)));
    configure(*mCallback, {});
    EXPECT_TRUE(counts(*mCallback).empty());
}

TEST_F(BufferBookkeepingTest, CountsWrapBelowZeroAndBack) {
    configure(*mCallback, {{5, 2}});
    mCallback->takeValidBuffers(5, 3);
    EXPECT_THAT(counts(*mCallback), ElementsAre(Pair(5, 4294967295u)));
    mCallback->giveBackValidBuffer(5, "returnStreamBuffers");
    EXPECT_THAT(counts(*mCallback), ElementsAre(Pair(5, 0u)));
}

TEST_F(BufferBookkeepingTest, GivenBackBuffersAreLoggedFromLogLevelThree) {
    configure(*mCallback, {{5, 2}});
    mCallback->giveBackValidBuffer(5, "processCaptureResult");
    EXPECT_TRUE(logsStartingWith("[3-aidl2legacy-callback::processCaptureResult]").empty());

    property_set("vendor.debug.camera.log", "3");
    std::shared_ptr<CountingCallback> verbose = makeCallback();
    configure(*verbose, {{5, 2}});
    verbose->giveBackValidBuffer(5, "processCaptureResult");
    EXPECT_THAT(logsStartingWith("[3-aidl2legacy-callback::processCaptureResult]"),
                ElementsAre("[3-aidl2legacy-callback::processCaptureResult] ValidBufferSizeMap "
                            "streamId:5 size:3"));
}

using BufferBookkeepingDeathTest = BufferBookkeepingTest;

// On the device at() aborts in place. On the host libstdc++ throws from at() instead, and the
// process ends because nothing up a device or binder thread catches it; the noexcept frame
// stands for such a thread here, since the death test itself would catch the exception.
TEST_F(BufferBookkeepingDeathTest, CountsOfStreamsOutsideTheConfigurationEndTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    configure(*mCallback, {{5, 2}});
    EXPECT_DEATH([&]() noexcept { mCallback->giveBackValidBuffer(6, "returnStreamBuffers"); }(), "");
    EXPECT_DEATH([&]() noexcept { mCallback->takeValidBuffers(6, 1); }(), "");
    configure(*mCallback, {});
    EXPECT_DEATH([&]() noexcept { mCallback->giveBackValidBuffer(5, "returnStreamBuffers"); }(), "");
}

}  // namespace
}  // namespace kovo::aidl2legacy
