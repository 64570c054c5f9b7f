/*
 * The --soak check: samples the process's resident memory and open fds while a run goes, then
 * judges whether either grew in the steady state. The first quarter of the run is warm-up; the
 * highest sample of the second quarter is the baseline and the highest of the last quarter must
 * not exceed it, apart from what the harness keeps itself (kOwnBytesPerFrame for each frame, its
 * latency samples and frame records) and allocator slack (kRssSlackBytes). A SoakMonitor samples
 * on its own thread between start() and stop(); judgeSoak() is a pure function over samples.
 */
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace camera_harness {

struct SoakSample {
    uint64_t rssBytes = 0;
    size_t openFds = 0;
};

struct SoakVerdict {
    bool grew = false;
    std::string text;  // one line: baseline and end of both, and what grew
};

constexpr uint64_t kOwnBytesPerFrame = 256;
// Four seconds at the sampling interval: shorter runs show warm-up, not a trend.
constexpr size_t kMinSoakSamples = 40;
constexpr uint64_t kRssSlackBytes = 8u << 20;

// `frames` is the number of frames the run covered (for the harness's own share). Fewer than
// kMinSoakSamples samples cannot show a trend: never a growth.
SoakVerdict judgeSoak(const std::vector<SoakSample>& samples, int64_t frames);

class SoakMonitor {
public:
    explicit SoakMonitor(std::chrono::milliseconds interval = std::chrono::milliseconds(100));
    ~SoakMonitor();
    SoakMonitor(const SoakMonitor&) = delete;
    SoakMonitor& operator=(const SoakMonitor&) = delete;

    void start();
    // Stops sampling and returns every sample taken.
    std::vector<SoakSample> stop();

    // This process now.
    static SoakSample sample();

private:
    const std::chrono::milliseconds mInterval;
    std::atomic<bool> mRunning = false;
    std::thread mThread;
    std::mutex mLock;
    std::vector<SoakSample> mSamples;  // guarded by mLock
};

}  // namespace camera_harness
