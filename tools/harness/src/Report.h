/*
 * The end of a run: everything the harness measured and checked, printed as the summary table
 * and written as the JSON report. Plain values and functions.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CpuMeter.h"
#include "FrameworkState.h"
#include "LatencySeries.h"
#include "Rules.h"
#include "SessionDriver.h"

namespace camera_harness {

struct RunReport {
    std::string module;
    int32_t cameraId = 0;
    RunPlan plan;
    bool halBufferManager = false;
    RunOutcome outcome;
    StateSnapshot state;
    LatencySeries shutterLatency;
    LatencySeries finalLatency;
    std::optional<ShutterSpan> shutterSpan;
    CpuMeter::Totals cpu;
    std::vector<Violation> violations;
    std::vector<FrameRecord> frames;  // with --json-frames

    // Frames per second over the first session's shutter timestamps; 0 with fewer than two.
    double measuredFps() const;
    // Adapter CPU time per completed request, in microseconds.
    double adapterCpuPerFrameUs() const;
};

// The summary table; lists at most `maxViolations` broken rules one by one.
std::string summaryText(const RunReport& report, size_t maxViolations = 20);

// The full report as one JSON object.
std::string jsonReport(const RunReport& report);

}  // namespace camera_harness
