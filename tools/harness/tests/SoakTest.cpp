#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Options.h"
#include "Soak.h"

namespace camera_harness {
namespace {

constexpr uint64_t kMiB = 1 << 20;

// 80 samples: a warm-up that grows, then `steady(i)` for i in 0..59.
std::vector<SoakSample> run(const std::function<SoakSample(int)>& steady) {
    std::vector<SoakSample> samples;
    for (int i = 0; i < 20; ++i) samples.push_back({static_cast<uint64_t>(i) * 4 * kMiB, 5});
    for (int i = 0; i < 60; ++i) samples.push_back(steady(i));
    return samples;
}

TEST(SoakTest, OnlySteadyStateGrowthBeyondTheHarnessShareBreaksTheRule) {
    struct Case {
        std::string name;
        std::function<SoakSample(int)> steady;
        int64_t frames;
        bool grew;
        std::string says;
    };
    const std::vector<Case> cases = {
            {"flat, in-flight fds come and go",
             [](int i) {
                 return SoakSample{100 * kMiB, static_cast<size_t>(40 + i % 3)};
             },
             1000, false, ""},
            {"noise under the slack",
             [](int i) {
                 return SoakSample{100 * kMiB + i % 2 * 6 * kMiB, 40};
             },
             1000, false, ""},
            {"the harness's own records",
             [](int i) {
                 return SoakSample{100 * kMiB + static_cast<uint64_t>(i) * kMiB / 3, 40};
             },
             200000, false, ""},
            {"memory leak",
             [](int i) {
                 return SoakSample{100 * kMiB + i * kMiB, 40};
             },
             1000, true, "memory grew"},
            {"fd leak",
             [](int i) {
                 return SoakSample{100 * kMiB, static_cast<size_t>(40 + i)};
             },
             1000, true, "fds grew"},
    };
    for (const Case& c : cases) {
        const SoakVerdict verdict = judgeSoak(run(c.steady), c.frames);
        EXPECT_EQ(c.grew, verdict.grew) << c.name << ": " << verdict.text;
        if (!c.says.empty()) {
            EXPECT_NE(std::string::npos, verdict.text.find(c.says)) << c.name;
        }
    }
    std::vector<SoakSample> shortRun(kMinSoakSamples - 1, SoakSample{kMiB, 1});
    shortRun.back() = SoakSample{100 * kMiB, 9};
    EXPECT_FALSE(judgeSoak(shortRun, 0).grew);
}

TEST(SoakTest, SampleSeesThisProcessFds) {
    const SoakSample before = SoakMonitor::sample();
    int fds[2];
    ASSERT_EQ(0, pipe(fds));
    EXPECT_EQ(before.openFds + 2, SoakMonitor::sample().openFds);
    close(fds[0]);
    close(fds[1]);
    EXPECT_GT(before.rssBytes, 0u);
}

TEST(SoakTest, SoakIsAFlagOfTheCommandLine) {
    Options options;
    std::string error;
    ASSERT_TRUE(parseOptions({"--soak", "--frames=10"}, &options, &error)) << error;
    EXPECT_TRUE(options.soak);
}

}  // namespace
}  // namespace camera_harness
