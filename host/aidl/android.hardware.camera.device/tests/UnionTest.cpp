// Union behaviour: the default alternative, choosing an alternative (converting constructor,
// make, set), access by tag, comparisons across tags, and tag printing.

#include <aidl/android/hardware/camera/device/NotifyMsg.h>
#include <aidl/android/hardware/camera/device/StreamBuffersVal.h>
#include <android/binder_enums.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace {

namespace cd = ::aidl::android::hardware::camera::device;

using Notify = cd::NotifyMsg;
using BuffersVal = cd::StreamBuffersVal;

static_assert(Notify::error == Notify::Tag::error && Notify::shutter == Notify::Tag::shutter);
static_assert(static_cast<int32_t>(BuffersVal::Tag::buffers) == 1);

TEST(UnionTest, DefaultHoldsTheFirstAlternativeWithItsDefault) {
    Notify msg;
    EXPECT_EQ(msg.getTag(), Notify::error);
    EXPECT_EQ(msg.get<Notify::error>(), cd::ErrorMsg{});

    BuffersVal val;
    EXPECT_EQ(val.getTag(), BuffersVal::error);
    EXPECT_EQ(val.get<BuffersVal::error>(), cd::StreamBufferRequestError::UNKNOWN_ERROR);
}

TEST(UnionTest, ConvertingConstructorPicksTheAlternativeByType) {
    Notify shutter = cd::ShutterMsg{.frameNumber = 4, .timestamp = 10, .readoutTimestamp = 12};
    EXPECT_EQ(shutter.getTag(), Notify::shutter);
    EXPECT_EQ(shutter.get<Notify::shutter>().timestamp, 10);

    BuffersVal error = cd::StreamBufferRequestError::STREAM_DISCONNECTED;
    EXPECT_EQ(error.getTag(), BuffersVal::error);

    BuffersVal buffers = std::vector<cd::StreamBuffer>(3);
    EXPECT_EQ(buffers.getTag(), BuffersVal::buffers);
    EXPECT_EQ(buffers.get<BuffersVal::buffers>().size(), 3u);
}

TEST(UnionTest, MakeAndSetSelectTheNamedTag) {
    Notify msg = Notify::make<Notify::shutter>(cd::ShutterMsg{7, 70, 71});
    EXPECT_EQ(msg.getTag(), Notify::shutter);
    EXPECT_EQ(msg.get<Notify::shutter>().frameNumber, 7);

    msg.set<Notify::error>(cd::ErrorMsg{7, 2, cd::ErrorCode::ERROR_BUFFER});
    EXPECT_EQ(msg.getTag(), Notify::error);
    EXPECT_EQ(msg.get<Notify::error>().errorStreamId, 2);

    BuffersVal val;
    val.set<BuffersVal::buffers>(2u);  // forwards to the vector's constructor
    EXPECT_EQ(val.get<BuffersVal::buffers>().size(), 2u);
}

TEST(UnionTest, MutableGetChangesTheHeldValue) {
    Notify msg;
    msg.get<Notify::error>().errorCode = cd::ErrorCode::ERROR_DEVICE;
    EXPECT_EQ(msg, Notify(cd::ErrorMsg{0, 0, cd::ErrorCode::ERROR_DEVICE}));
}

TEST(UnionTest, GetWithTheWrongTagFails) {
    Notify msg;
    EXPECT_THROW(msg.get<Notify::shutter>(), std::bad_variant_access);
    const Notify& constMsg = msg;
    EXPECT_THROW(constMsg.get<Notify::shutter>(), std::bad_variant_access);
}

struct OrderCase {
    const char* name;
    Notify lhs;
    Notify rhs;
    int expected;  // sign of lhs <=> rhs
};

void PrintTo(const OrderCase& c, std::ostream* os) {
    *os << c.lhs.toString() << " vs " << c.rhs.toString();
}

class UnionOrderTest : public ::testing::TestWithParam<OrderCase> {};

TEST_P(UnionOrderTest, AllSixOperatorsAgree) {
    const OrderCase& c = GetParam();
    EXPECT_EQ(c.lhs == c.rhs, c.expected == 0);
    EXPECT_EQ(c.lhs != c.rhs, c.expected != 0);
    EXPECT_EQ(c.lhs < c.rhs, c.expected < 0);
    EXPECT_EQ(c.lhs > c.rhs, c.expected > 0);
    EXPECT_EQ(c.lhs <= c.rhs, c.expected <= 0);
    EXPECT_EQ(c.lhs >= c.rhs, c.expected >= 0);
}

INSTANTIATE_TEST_SUITE_P(
        Cases, UnionOrderTest,
        ::testing::Values(
                // A lower tag sorts first whatever the values hold.
                OrderCase{"ErrorBeforeShutter", cd::ErrorMsg{99, 99, cd::ErrorCode::ERROR_BUFFER},
                          cd::ShutterMsg{0, 0, 0}, -1},
                OrderCase{"ShutterAfterError", cd::ShutterMsg{}, cd::ErrorMsg{}, 1},
                OrderCase{"SameTagComparesValues", cd::ShutterMsg{1, 5, 0}, cd::ShutterMsg{1, 6, 0},
                          -1},
                OrderCase{"SameTagSameValue", cd::ShutterMsg{1, 5, 6}, cd::ShutterMsg{1, 5, 6}, 0},
                OrderCase{"DefaultEqualsDefaultError", Notify{}, cd::ErrorMsg{}, 0}),
        [](const auto& info) { return std::string(info.param.name); });

TEST(UnionTest, TagsPrintByNameElseAsNumber) {
    EXPECT_EQ(toString(Notify::Tag::error), "error");
    EXPECT_EQ(toString(BuffersVal::Tag::buffers), "buffers");
    EXPECT_EQ(toString(Notify::Tag(2)), "2");
    std::vector<Notify::Tag> tags;
    for (Notify::Tag t : ::ndk::enum_range<Notify::Tag>()) {
        tags.push_back(t);
    }
    EXPECT_EQ(tags, (std::vector<Notify::Tag>{Notify::error, Notify::shutter}));
}

TEST(UnionTest, MovingBuffersKeepsTheirFileDescriptorsOpen) {
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    close(fds[1]);
    {
        std::vector<cd::StreamBuffer> buffers(1);
        buffers[0].buffer.fds.emplace_back(fds[0]);
        BuffersVal val = BuffersVal::make<BuffersVal::buffers>(std::move(buffers));
        BuffersVal moved = std::move(val);
        ASSERT_EQ(moved.get<BuffersVal::buffers>().at(0).buffer.fds.at(0).get(), fds[0]);
        EXPECT_EQ(fcntl(fds[0], F_GETFD), 0) << "closed while still owned";
    }
    EXPECT_EQ(fcntl(fds[0], F_GETFD), -1) << "not closed by its last owner";
}

}  // namespace
