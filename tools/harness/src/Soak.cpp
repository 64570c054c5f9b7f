#include "Soak.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace camera_harness {

namespace {

SoakSample highest(std::vector<SoakSample>::const_iterator begin,
                   std::vector<SoakSample>::const_iterator end) {
    SoakSample top;
    for (auto it = begin; it != end; ++it) {
        top.rssBytes = std::max(top.rssBytes, it->rssBytes);
        top.openFds = std::max(top.openFds, it->openFds);
    }
    return top;
}

double mebibytes(uint64_t bytes) {
    return static_cast<double>(bytes) / (1 << 20);
}

}  // namespace

SoakVerdict judgeSoak(const std::vector<SoakSample>& samples, int64_t frames) {
    SoakVerdict verdict;
    if (samples.size() < kMinSoakSamples) {
        verdict.text = "soak: too few samples (" + std::to_string(samples.size()) + ") to judge";
        return verdict;
    }
    const size_t quarter = samples.size() / 4;
    const SoakSample baseline = highest(samples.begin() + quarter, samples.begin() + 2 * quarter);
    const SoakSample end = highest(samples.end() - quarter, samples.end());
    // The harness's own share over the half of the run between the two windows' starts.
    const uint64_t own = kOwnBytesPerFrame * static_cast<uint64_t>(std::max<int64_t>(frames, 0)) / 2;
    const bool rssGrew = end.rssBytes > baseline.rssBytes + own + kRssSlackBytes;
    const bool fdsGrew = end.openFds > baseline.openFds;
    verdict.grew = rssGrew || fdsGrew;
    char text[256];
    snprintf(text, sizeof(text),
             "soak: rss %.1f -> %.1f MiB (allowed +%.1f), fds %zu -> %zu over %zu samples%s%s",
             mebibytes(baseline.rssBytes), mebibytes(end.rssBytes), mebibytes(own + kRssSlackBytes),
             baseline.openFds, end.openFds, samples.size(), rssGrew ? "; memory grew" : "",
             fdsGrew ? "; fds grew" : "");
    verdict.text = text;
    return verdict;
}

SoakMonitor::SoakMonitor(std::chrono::milliseconds interval) : mInterval(interval) {}

SoakMonitor::~SoakMonitor() {
    stop();
}

void SoakMonitor::start() {
    if (mRunning.exchange(true)) return;
    mThread = std::thread([this] {
        while (mRunning) {
            const SoakSample now = sample();
            {
                std::lock_guard<std::mutex> guard(mLock);
                mSamples.push_back(now);
            }
            std::this_thread::sleep_for(mInterval);
        }
    });
}

std::vector<SoakSample> SoakMonitor::stop() {
    mRunning = false;
    if (mThread.joinable()) mThread.join();
    std::lock_guard<std::mutex> guard(mLock);
    return mSamples;
}

SoakSample SoakMonitor::sample() {
    SoakSample now;
    if (FILE* statm = fopen("/proc/self/statm", "r")) {
        uint64_t size = 0;
        uint64_t resident = 0;
        if (fscanf(statm, "%" SCNu64 " %" SCNu64, &size, &resident) == 2) {
            now.rssBytes = resident * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
        }
        fclose(statm);
    }
    if (DIR* fds = opendir("/proc/self/fd")) {
        while (readdir(fds) != nullptr) ++now.openFds;
        closedir(fds);
        // ".", ".." and the directory's own fd.
        now.openFds -= std::min<size_t>(now.openFds, 3);
    }
    return now;
}

}  // namespace camera_harness
