#include <cutils/properties.h>
#include <cutils/testing/PropertyHooks.h>
#include <errno.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr char kKey[] = "vendor.debug.camera.test";

class PropertiesTest : public ::testing::Test {
protected:
    void SetUp() override { android::testing::clearProperties(); }
    void TearDown() override { android::testing::clearProperties(); }
};

TEST_F(PropertiesTest, IntegersParseLikeStrtoimaxWithBaseZero) {
    struct Case {
        const char* value;  // nullptr: property missing
        int32_t int32;      // default -7
        int64_t int64;      // default -7
    };
    const Case kCases[] = {
            {nullptr, -7, -7},
            {"", -7, -7},
            {"-42", -42, -42},
            {" +7", 7, 7},
            {"010", 8, 8},
            {"08", 0, 0},
            {"0x1F", 31, 31},
            {"-0X10", -16, -16},
            {"12abc", 12, 12},
            {"abc", -7, -7},
            {"-", -7, -7},
            {"2147483647", INT32_MAX, INT32_MAX},
            {"-2147483648", INT32_MIN, INT32_MIN},
            {"2147483648", -7, 2147483648LL},
            {"-2147483649", -7, -2147483649LL},
            {"9223372036854775807", -7, INT64_MAX},
            {"-9223372036854775808", -7, INT64_MIN},
            {"9223372036854775808", -7, -7},
            {"-9223372036854775809", -7, -7},
    };
    for (const Case& c : kCases) {
        android::testing::clearProperties();
        if (c.value != nullptr) {
            ASSERT_EQ(0, property_set(kKey, c.value)) << c.value;
        }
        const char* shown = c.value != nullptr ? c.value : "(missing)";
        EXPECT_EQ(c.int32, property_get_int32(kKey, -7)) << shown;
        EXPECT_EQ(c.int64, property_get_int64(kKey, -7)) << shown;
    }
}

TEST_F(PropertiesTest, IntegerParsingPreservesErrnoEvenOnOverflow) {
    ASSERT_EQ(0, property_set(kKey, "99999999999999999999999"));
    errno = EDOM;
    EXPECT_EQ(5, property_get_int64(kKey, 5));
    EXPECT_EQ(EDOM, errno);
}

TEST_F(PropertiesTest, BooleansAcceptOnlyTheExactWords) {
    const std::map<std::string, int8_t> kCases = {
            {"1", 1},    {"y", 1},    {"yes", 1},   {"true", 1}, {"on", 1}, {"0", 0},
            {"n", 0},    {"no", 0},   {"false", 0}, {"off", 0},  {"Y", -1}, {"TRUE", -1},
            {" on", -1}, {"on ", -1}, {"2", -1},    {"of", -1},  {"", -1},
    };
    for (const auto& [value, expected] : kCases) {
        ASSERT_EQ(0, property_set(kKey, value.c_str()));
        EXPECT_EQ(expected, property_get_bool(kKey, -1)) << '"' << value << '"';
    }
}

TEST_F(PropertiesTest, GetFallsBackToTheDefaultCutToTheBuffer) {
    char value[PROPERTY_VALUE_MAX + 1];
    value[PROPERTY_VALUE_MAX] = 'x';
    EXPECT_EQ(4, property_get(kKey, value, "fall"));
    EXPECT_STREQ("fall", value);
    EXPECT_EQ(0, property_get(kKey, value, nullptr));
    EXPECT_STREQ("", value);
    EXPECT_EQ(91, property_get(kKey, value, std::string(200, 'd').c_str()));
    EXPECT_EQ(std::string(91, 'd'), value);
    EXPECT_EQ('x', value[PROPERTY_VALUE_MAX]);

    ASSERT_EQ(0, property_set(kKey, "stored"));
    EXPECT_EQ(6, property_get(kKey, value, "fall"));
    EXPECT_STREQ("stored", value);
    ASSERT_EQ(0, property_set(kKey, nullptr));  // empty again
    EXPECT_EQ(4, property_get(kKey, value, "fall"));
}

TEST_F(PropertiesTest, NullKeyYieldsTheDefault) {
    EXPECT_EQ(3, property_get_int32(nullptr, 3));
    EXPECT_EQ(-4, property_get_int64(nullptr, -4));
    EXPECT_EQ(1, property_get_bool(nullptr, 1));
    EXPECT_EQ(-1, property_set(nullptr, "1"));
}

TEST_F(PropertiesTest, SetRejectsIllegalNamesLongValuesAndReadOnlyChanges) {
    for (const char* name : {"", ".a", "a.", "a..b", "a b", "a/b"}) {
        EXPECT_EQ(-1, property_set(name, "1")) << name;
    }
    EXPECT_EQ(0, property_set("Vendor.debug-1_x@2:3.a", "1"));
    EXPECT_EQ(-1, property_set(kKey, std::string(92, 'v').c_str()));
    EXPECT_EQ(0, property_set(kKey, std::string(91, 'v').c_str()));

    EXPECT_EQ(0, property_set("ro.camera.x", "1"));
    EXPECT_EQ(-1, property_set("ro.camera.x", "2"));
    EXPECT_EQ(1, property_get_int32("ro.camera.x", 0));
}

TEST_F(PropertiesTest, ListVisitsEveryPropertyAndMayWriteFromTheCallback) {
    ASSERT_EQ(0, property_set("a.one", "1"));
    ASSERT_EQ(0, property_set("b.two", "2"));
    std::map<std::string, std::string> seen;
    auto visit = [](const char* key, const char* value, void* cookie) {
        (*static_cast<std::map<std::string, std::string>*>(cookie))[key] = value;
        property_set("c.written", "3");
    };
    EXPECT_EQ(0, property_list(visit, &seen));
    EXPECT_EQ((std::map<std::string, std::string>{{"a.one", "1"}, {"b.two", "2"}}), seen);
    EXPECT_EQ(3, property_get_int32("c.written", 0));
}

TEST_F(PropertiesTest, ConcurrentReadersSeeWholeValues) {
    const std::string kValues[] = {std::string(40, 'a'), std::string(60, 'b')};
    int badReads = 0;
    std::thread writer([&] {
        for (int i = 0; i < 1000; ++i) property_set(kKey, kValues[i % 2].c_str());
    });
    std::thread reader([&] {
        char value[PROPERTY_VALUE_MAX];
        for (int i = 0; i < 1000; ++i) {
            property_get(kKey, value, kValues[0].c_str());
            if (value != kValues[0] && value != kValues[1]) ++badReads;
        }
    });
    writer.join();
    reader.join();
    EXPECT_EQ(0, badReads);
}

}  // namespace
