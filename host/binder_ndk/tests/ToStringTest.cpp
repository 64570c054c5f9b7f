#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <android/binder_auto_utils.h>
#include <android/binder_to_string.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "TestInterface.h"

using aidl::android::hardware::common::fmq::SynchronizedReadWrite;
using android::internal::ToString;

namespace {

struct Printable {
    std::string toString() const { return "Printable{}"; }
};

TEST(ToStringTest, ScalarsAndStrings) {
    EXPECT_EQ("true", ToString(true));
    EXPECT_EQ("false", ToString(false));
    EXPECT_EQ("A", ToString(u'A'));
    EXPECT_EQ("\xC3\xA9", ToString(u'\u00E9'));
    EXPECT_EQ("\xE2\x82\xAC", ToString(u'\u20AC'));
    EXPECT_EQ("-5", ToString(int8_t{-5}));
    EXPECT_EQ("200", ToString(uint8_t{200}));
    EXPECT_EQ("-9000000000", ToString(int64_t{-9000000000}));
    EXPECT_EQ("0.500000", ToString(0.5));
    EXPECT_EQ("0.000000", ToString(0.0f));
    EXPECT_EQ("plain 'text'", ToString(std::string("plain 'text'")));
    EXPECT_EQ("", ToString(std::string()));
}

TEST(ToStringTest, BinderTypes) {
    EXPECT_EQ("fd:-1", ToString(ndk::ScopedFileDescriptor()));
    ndk::ScopedFileDescriptor fd(7);
    EXPECT_EQ("fd:7", ToString(fd));
    (void)fd.release();

    std::atomic<int> destructions = 0;
    std::shared_ptr<binder_test::ITest> object =
            ndk::SharedRefBase::make<binder_test::TestImpl>(&destructions);
    ndk::SpAIBinder binder = object->asBinder();
    char expected[32];
    snprintf(expected, sizeof(expected), "binder:%p", static_cast<void*>(binder.get()));
    EXPECT_EQ(expected, ToString(binder));
    EXPECT_EQ("<interface>", ToString(*object));
    EXPECT_EQ("<interface>", ToString(object));
    EXPECT_EQ("(null)", ToString(std::shared_ptr<binder_test::ITest>()));
}

TEST(ToStringTest, WrappersMembersEnumsAndRanges) {
    EXPECT_EQ("(null)", ToString(std::optional<int32_t>()));
    EXPECT_EQ("3", ToString(std::optional<int32_t>(3)));
    EXPECT_EQ("Printable{}", ToString(std::make_unique<Printable>()));
    EXPECT_EQ("EMPTY", ToString(SynchronizedReadWrite::EMPTY));
    EXPECT_EQ("5", ToString(static_cast<SynchronizedReadWrite>(5)));
    EXPECT_EQ("[]", ToString(std::vector<int32_t>()));
    EXPECT_EQ("[true, false]", ToString(std::vector<bool>{true, false}));
    EXPECT_EQ("[1, 200, 0]", ToString(std::vector<uint8_t>{1, 200, 0}));
    EXPECT_EQ("[[a, ], []]", ToString(std::vector<std::vector<std::string>>{{"a", ""}, {}}));
    EXPECT_EQ("[Printable{}, Printable{}]", ToString(std::vector<Printable>(2)));
}

}  // namespace
