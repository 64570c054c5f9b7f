#include <gtest/gtest.h>
#include <system/graphics.h>

#include <functional>

#include "Options.h"

namespace camera_harness {
namespace {

struct GoodArguments {
    const char* name;
    std::vector<std::string> args;
    std::function<void(const Options&)> check;
};

class GoodArgumentsTest : public ::testing::TestWithParam<GoodArguments> {};

TEST_P(GoodArgumentsTest, Parse) {
    Options options;
    std::string error;
    ASSERT_TRUE(parseOptions(GetParam().args, &options, &error)) << error;
    GetParam().check(options);
}

INSTANTIATE_TEST_SUITE_P(
        Options, GoodArgumentsTest,
        ::testing::Values(
                GoodArguments{"Defaults",
                              {},
                              [](const Options& o) {
                                  EXPECT_EQ(o.scenario, Scenario::kBasic);
                                  EXPECT_TRUE(o.modulePath.empty());
                                  EXPECT_TRUE(o.streams.empty());
                                  EXPECT_EQ(batchSize(o), 1);
                              }},
                GoodArguments{"ValuesAfterOrWithEquals",
                              {"--scenario", "flush", "--frames=5000", "--fps", "960", "--camera=1",
                               "--depth", "3"},
                              [](const Options& o) {
                                  EXPECT_EQ(o.scenario, Scenario::kFlush);
                                  EXPECT_EQ(o.frames, 5000);
                                  EXPECT_EQ(o.fps, 960);
                                  EXPECT_EQ(o.cameraId, 1);
                                  EXPECT_EQ(o.depth, 3);
                              }},
                GoodArguments{"UnpacedLifecycleOnAnAnnouncedCamera",
                              {"--fps", "max", "--scenario", "lifecycle", "--camera", "1000",
                               "--json-frames"},
                              [](const Options& o) {
                                  EXPECT_EQ(o.fps, kUnpaced);
                                  EXPECT_EQ(settingsFps(o), 1000);
                                  EXPECT_EQ(o.scenario, Scenario::kLifecycle);
                                  EXPECT_EQ(o.cameraId, 1000);
                                  EXPECT_TRUE(o.jsonFrames);
                              }},
                GoodArguments{"BurstBatchesUnlessTold",
                              {"--scenario", "burst"},
                              [](const Options& o) { EXPECT_EQ(batchSize(o), 4); }},
                GoodArguments{"ExplicitBatch",
                              {"--scenario", "burst", "--batch", "2"},
                              [](const Options& o) { EXPECT_EQ(batchSize(o), 2); }},
                GoodArguments{"Streams",
                              {"--streams",
                               "640x480:YUV_420_888,320x240:IMPLEMENTATION_DEFINED@2,"
                               "640x480:BLOB"},
                              [](const Options& o) {
                                  EXPECT_EQ(o.streams,
                                            (std::vector<StreamDescription>{
                                                    {640, 480, HAL_PIXEL_FORMAT_YCBCR_420_888, ""},
                                                    {320, 240,
                                                     HAL_PIXEL_FORMAT_IMPLEMENTATION_DEFINED, "2"},
                                                    {640, 480, HAL_PIXEL_FORMAT_BLOB, ""}}));
                              }},
                GoodArguments{"PropertiesRepeat",
                              {"--prop", "vendor.debug.camera.log=3", "--prop", "a.b=x=y"},
                              [](const Options& o) {
                                  ASSERT_EQ(o.properties.size(), 2u);
                                  EXPECT_EQ(o.properties[0].first, "vendor.debug.camera.log");
                                  EXPECT_EQ(o.properties[0].second, "3");
                                  EXPECT_EQ(o.properties[1].second, "x=y");
                              }},
                GoodArguments{"LayoutPatternAndFiles",
                              {"--buffer-layout", "fd-per-plane", "--check-pattern", "off",
                               "--json", "r.json", "--trace", "t.json", "--module", "m.so"},
                              [](const Options& o) {
                                  EXPECT_EQ(o.bufferLayout, BufferLayout::kFdPerPlane);
                                  EXPECT_EQ(o.patternChecking, PatternChecking::kOff);
                                  EXPECT_EQ(o.jsonPath, "r.json");
                                  EXPECT_EQ(o.tracePath, "t.json");
                                  EXPECT_EQ(o.modulePath, "m.so");
                              }},
                GoodArguments{"Help", {"--help"}, [](const Options& o) { EXPECT_TRUE(o.help); }}),
        [](const ::testing::TestParamInfo<GoodArguments>& info) { return info.param.name; });

struct BadArguments {
    const char* name;
    std::vector<std::string> args;
    const char* error;
};

class BadArgumentsTest : public ::testing::TestWithParam<BadArguments> {};

TEST_P(BadArgumentsTest, AreRefusedWithTheReason) {
    Options options;
    std::string error;
    EXPECT_FALSE(parseOptions(GetParam().args, &options, &error));
    EXPECT_EQ(error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
        Options, BadArgumentsTest,
        ::testing::Values(
                BadArguments{"UnknownOption", {"--speed", "3"}, "unknown option --speed"},
                BadArguments{"MissingValue", {"--frames"}, "--frames needs a value"},
                BadArguments{"NotANumber", {"--fps", "30x"}, "bad value for --fps: '30x'"},
                BadArguments{"FpsOutOfRange", {"--fps", "100001"}, "bad value for --fps: '100001'"},
                BadArguments{"NoFrames", {"--frames", "0"}, "bad value for --frames: '0'"},
                BadArguments{"UnknownScenario",
                             {"--scenario", "soak"},
                             "bad value for --scenario: 'soak'"},
                BadArguments{"UnknownFormat",
                             {"--streams", "640x480:RAW16"},
                             "bad value for --streams: '640x480:RAW16'"},
                BadArguments{"StreamWithoutSize",
                             {"--streams", "x480:BLOB"},
                             "bad value for --streams: 'x480:BLOB'"},
                BadArguments{"EmptyPhysicalId",
                             {"--streams", "64x48:BLOB@"},
                             "bad value for --streams: '64x48:BLOB@'"},
                BadArguments{"PropertyWithoutKey", {"--prop", "=1"}, "bad value for --prop: '=1'"},
                BadArguments{"UnknownLayout",
                             {"--buffer-layout", "planar"},
                             "bad value for --buffer-layout: 'planar'"}),
        [](const ::testing::TestParamInfo<BadArguments>& info) { return info.param.name; });

TEST(OptionsTest, StreamSpecsPrintAsTheyAreWritten) {
    for (const char* text :
         {"640x480:YUV_420_888", "176x144:IMPLEMENTATION_DEFINED@3", "4032x3024:BLOB"}) {
        auto stream = parseStreamDescription(text);
        ASSERT_TRUE(stream) << text;
        EXPECT_EQ(toString(*stream), text);
    }
}

}  // namespace
}  // namespace camera_harness
