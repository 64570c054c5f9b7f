/*
 * LatencySeries: durations of one kind (request to shutter, request to final result) and their
 * percentiles. Not thread-safe: owned by the ProtocolChecker, under its owner's lock.
 */
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace camera_harness {

class LatencySeries {
public:
    void add(std::chrono::nanoseconds duration) { mMs.push_back(duration.count() / 1e6); }
    size_t count() const { return mMs.size(); }
    // The nearest-rank percentile (0 < p <= 100) in milliseconds; 0 when empty.
    double percentileMs(double p) const;
    double maxMs() const;

private:
    std::vector<double> mMs;
};

}  // namespace camera_harness
