#include <aidl/android/hardware/common/fmq/GrantorDescriptor.h>
#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <aidl/android/hardware/common/fmq/UnsynchronizedWrite.h>
#include <android/binder_enums.h>
#include <gtest/gtest.h>

#include <vector>

using namespace aidl::android::hardware::common::fmq;

namespace {

using Descriptor = MQDescriptor<int8_t, SynchronizedReadWrite>;

TEST(FmqTypesTest, DefaultsPrintAsGenerated) {
    EXPECT_EQ("GrantorDescriptor{fdIndex: 0, offset: 0, extent: 0}", GrantorDescriptor{}.toString());
    EXPECT_EQ(
            "MQDescriptor{grantors: [], handle: NativeHandle{fds: [], ints: []}, quantum: 0, "
            "flags: 0}",
            Descriptor{}.toString());
}

TEST(FmqTypesTest, FilledDescriptorPrintsEveryField) {
    Descriptor desc;
    desc.grantors = {{0, 0, 8}, {0, 8, 8}, {0, 16, 1000}};
    desc.quantum = 1;
    desc.flags = 1;
    desc.handle.fds.emplace_back(9);
    EXPECT_EQ(
            "MQDescriptor{grantors: [GrantorDescriptor{fdIndex: 0, offset: 0, extent: 8}, "
            "GrantorDescriptor{fdIndex: 0, offset: 8, extent: 8}, GrantorDescriptor{fdIndex: 0, "
            "offset: 16, extent: 1000}], handle: NativeHandle{fds: [fd:9], ints: []}, quantum: 1, "
            "flags: 1}",
            desc.toString());
    (void)desc.handle.fds[0].release();
}

TEST(FmqTypesTest, ComparisonsFollowFieldOrder) {
    EXPECT_LT((GrantorDescriptor{0, 8, 100}), (GrantorDescriptor{1, 0, 0}));
    EXPECT_LT((GrantorDescriptor{0, 8, 100}), (GrantorDescriptor{0, 16, 0}));
    EXPECT_GT((GrantorDescriptor{0, 8, 100}), (GrantorDescriptor{0, 8, 99}));
    EXPECT_EQ((GrantorDescriptor{1, 2, 3}), (GrantorDescriptor{1, 2, 3}));
    Descriptor quantumOnly, withFlags;
    quantumOnly.quantum = withFlags.quantum = 1;
    withFlags.flags = 1;
    EXPECT_LT(quantumOnly, withFlags);
    EXPECT_NE(quantumOnly, Descriptor());
}

TEST(FmqTypesTest, FlavourTagsNameTheirOnlyEnumerator) {
    EXPECT_EQ("EMPTY", toString(SynchronizedReadWrite::EMPTY));
    EXPECT_EQ("EMPTY", toString(UnsynchronizedWrite::EMPTY));
    EXPECT_EQ("3", toString(static_cast<UnsynchronizedWrite>(3)));
    std::vector<SynchronizedReadWrite> values;
    for (auto value : ndk::enum_range<SynchronizedReadWrite>()) values.push_back(value);
    EXPECT_EQ(std::vector<SynchronizedReadWrite>{SynchronizedReadWrite::EMPTY}, values);
}

}  // namespace
