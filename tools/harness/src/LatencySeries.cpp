#include "LatencySeries.h"

#include <algorithm>
#include <cmath>

namespace camera_harness {

double LatencySeries::percentileMs(double p) const {
    if (mMs.empty()) return 0;
    std::vector<double> sorted = mMs;
    size_t rank = static_cast<size_t>(std::ceil(p / 100 * sorted.size()));
    size_t index = std::clamp<size_t>(rank, 1, sorted.size()) - 1;
    std::nth_element(sorted.begin(), sorted.begin() + index, sorted.end());
    return sorted[index];
}

double LatencySeries::maxMs() const {
    return mMs.empty() ? 0 : *std::max_element(mMs.begin(), mMs.end());
}

}  // namespace camera_harness
