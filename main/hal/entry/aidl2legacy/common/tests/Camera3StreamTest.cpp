#include <aidl2legacy/common/Camera3Stream.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <memory>
#include <string>

namespace kovo::aidl2legacy {
namespace {

// The source dies before the copies are read: a pointer left at it also trips the address
// sanitizer.
TEST(Camera3StreamTest, CopiesPointAtTheirOwnPhysicalCameraId) {
    auto source = std::make_unique<Camera3Stream>();
    source->id = 4;
    ASSERT_EQ(0, source->setPhysicalCameraId("physical-1"));
    Camera3Stream constructed(*source);
    Camera3Stream assigned{};
    ASSERT_EQ(0, assigned.setPhysicalCameraId("a-longer-physical-id"));
    assigned = *source;
    auto map = std::make_unique<std::map<int32_t, Camera3Stream>>();
    (*map)[4] = *source;
    std::map<int32_t, Camera3Stream> mapCopy(*map);
    map.reset();
    source.reset();

    for (Camera3Stream* copy : {&constructed, &assigned, &mapCopy.at(4)}) {
        EXPECT_EQ(copy->physicalCameraId, copy->stream.physical_camera_id);
        EXPECT_STREQ("physical-1", copy->stream.physical_camera_id);
        EXPECT_EQ(4, Camera3Stream::fromStream(&copy->stream)->id);
    }
}

TEST(Camera3StreamTest, AnUnsetIdStaysNullInCopies) {
    Camera3Stream zero{};
    Camera3Stream assigned{};
    ASSERT_EQ(0, assigned.setPhysicalCameraId("1"));
    assigned = zero;
    EXPECT_EQ(nullptr, Camera3Stream(zero).stream.physical_camera_id);
    EXPECT_EQ(nullptr, assigned.stream.physical_camera_id);
}

TEST(Camera3StreamTest, AnIdThatDoesNotFitLeavesItEmpty) {
    Camera3Stream stream{};
    std::string longest(Camera3Stream::kPhysicalCameraIdCapacity - 1, 'a');
    ASSERT_EQ(0, stream.setPhysicalCameraId(longest));
    EXPECT_EQ(longest, stream.stream.physical_camera_id);
    ASSERT_EQ(0, stream.setPhysicalCameraId("b"));
    EXPECT_STREQ("b", stream.stream.physical_camera_id);

    EXPECT_EQ(-EINVAL, stream.setPhysicalCameraId(longest + "a"));
    EXPECT_EQ(stream.physicalCameraId, stream.stream.physical_camera_id);
    EXPECT_STREQ("", stream.stream.physical_camera_id);
}

}  // namespace
}  // namespace kovo::aidl2legacy
