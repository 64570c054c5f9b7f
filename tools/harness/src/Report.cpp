#include "Report.h"

#include <cstdarg>
#include <cstdio>
#include <map>

#include "JsonWriter.h"

namespace camera_harness {

namespace {

constexpr double kPercentiles[] = {50, 90, 99};

std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));

std::string format(const char* text, ...) {
    char line[512];
    va_list args;
    va_start(args, text);
    vsnprintf(line, sizeof(line), text, args);
    va_end(args);
    return line;
}

long long ll(int64_t value) {
    return static_cast<long long>(value);
}

std::string latencyRow(const char* name, const LatencySeries& series) {
    std::string row = format("  %-20s", name);
    for (double p : kPercentiles) row += format("%9.2f", series.percentileMs(p));
    return row + format("%9.2f\n", series.maxMs());
}

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const auto& item : items) text += (text.empty() ? "" : ", ") + item;
    return text.empty() ? "none" : text;
}

std::map<Rule, size_t> countByRule(const std::vector<Violation>& violations) {
    std::map<Rule, size_t> counts;
    for (const auto& violation : violations) ++counts[violation.rule];
    return counts;
}

void writeLatency(JsonWriter& json, const char* name, const LatencySeries& series) {
    json.key(name).beginObject().field("count", static_cast<int64_t>(series.count()));
    json.field("p50", series.percentileMs(50)).field("p90", series.percentileMs(90));
    json.field("p99", series.percentileMs(99)).field("max", series.maxMs()).endObject();
}

}  // namespace

double RunReport::measuredFps() const {
    if (!shutterSpan || shutterSpan->shutters < 2 || shutterSpan->last <= shutterSpan->first) {
        return 0;
    }
    return static_cast<double>(shutterSpan->shutters - 1) * 1e9 /
           static_cast<double>(shutterSpan->last - shutterSpan->first);
}

double RunReport::adapterCpuPerFrameUs() const {
    const int64_t frames = state.protocol.requestsCompleted;
    if (frames == 0) return 0;
    return static_cast<double>(cpu.callsNs + cpu.sectionsNs) / 1000.0 / static_cast<double>(frames);
}

std::string summaryText(const RunReport& report, size_t maxViolations) {
    const ProtocolCounters& p = report.state.protocol;
    const TransportCounters& t = report.state.transport;
    const RunOutcome& o = report.outcome;
    const RunPlan& plan = report.plan;
    std::string text;

    text += format("camera_harness: scenario %s, camera %d of %s\n", scenarioName(plan.scenario),
                   report.cameraId, report.module.c_str());
    const std::string rate = plan.unpaced ? std::string("unpaced (shutter spacing not judged)")
                                          : format("%d fps", plan.fps);
    text += format("  %d frames asked at %s, depth %d, batch %d, %s buffers%s%s\n", plan.frames,
                   rate.c_str(), o.depth, plan.batch,
                   plan.bufferLayout == BufferLayout::kFdPerPlane ? "fd-per-plane" : "single-fd",
                   report.halBufferManager ? ", HAL buffer manager" : "",
                   plan.checkPatterns ? ", patterns checked" : "");
    text += "streams\n";
    text += format("  %-4s %-11s %-23s %-9s %s\n", "id", "size", "format", "physical", "maxBuffers");
    for (const auto& stream : o.streams) {
        std::string size = format("%dx%d", stream.description.width, stream.description.height);
        text += format("  %-4d %-11s %-23s %-9s %d\n", stream.streamId, size.c_str(),
                       formatName(stream.description.format).c_str(),
                       stream.description.physicalCameraId.empty()
                               ? "-"
                               : stream.description.physicalCameraId.c_str(),
                       stream.maxBuffers);
    }

    text += "counts\n";
    text += format("  %-20s %lld submitted, %lld completed, %lld rejected\n", "requests",
                   ll(p.requestsSubmitted), ll(p.requestsCompleted), ll(p.requestsRejected));
    text += format("  %-20s %lld\n", "shutters", ll(p.shutters));
    text += format("  %-20s %lld partial, %lld final, %lld physical, %lld calls\n", "results",
                   ll(p.partialResults), ll(p.finalResults), ll(p.physicalMetadata),
                   ll(p.resultCalls));
    text += format("  %-20s %lld filled, %lld error, %lld contents checked\n", "buffers",
                   ll(p.buffersFilled), ll(p.buffersError), ll(p.patternsChecked));
    if (report.halBufferManager) {
        text += format("  %-20s %lld handed out, %lld returned unused\n", "buffer manager",
                       ll(p.buffersHandedOut), ll(p.buffersReturnedUnused));
    }
    text += format("  %-20s request %lld, result %lld, buffer %lld, device %lld\n", "errors",
                   ll(p.errorRequest), ll(p.errorResult), ll(p.errorBuffer), ll(p.errorDevice));
    text += format("  %-20s results %lld queued, %lld inline; settings %lld queued, %lld inline\n",
                   "metadata", ll(t.resultMetadataQueued), ll(t.resultMetadataInline),
                   ll(t.settingsQueued), ll(t.settingsInline));
    text += format(
            "  %-20s %d configurations (%d refused by isStreamCombinationSupported), %d "
            "flushes, %lld buffer caches removed\n",
            "session", o.configurations, o.combinationsRefused, o.flushes, ll(o.cachesRemoved));
    text += format("  %-20s %.2f fps by shutter timestamps, %.2f s in all\n", "frame rate",
                   report.measuredFps(), static_cast<double>(o.elapsed.count()) / 1e9);
    if (o.secondSession) {
        text += format("  %-20s %zu before open, %zu after close, %zu after a second session\n",
                       "file descriptors", o.fdsBefore, o.fdsAfterFirst, o.fdsAfter);
    } else {
        text += format("  %-20s %zu before open, %zu after close\n", "file descriptors",
                       o.fdsBefore, o.fdsAfter);
    }
    if (plan.scenario == Scenario::kLifecycle) {
        text += format("  %-20s %s\n", "second open", o.secondOpen.c_str());
        text += format("  %-20s %s; missing: %s\n", "request templates",
                       joined(o.templatesSupported).c_str(), joined(o.templatesMissing).c_str());
    }

    text += format("%-22s%9s%9s%9s%9s\n", "latency (ms)", "p50", "p90", "p99", "max");
    text += latencyRow("request to shutter", report.shutterLatency);
    text += latencyRow("request to final", report.finalLatency);

    const double frames = static_cast<double>(std::max<int64_t>(1, p.requestsCompleted));
    text += "adapter CPU per frame\n";
    text += format("  %-20s %.1f us (calls %.1f us, callbacks %.1f us over %lld sections)\n",
                   "adapter", report.adapterCpuPerFrameUs(),
                   static_cast<double>(report.cpu.callsNs) / 1000.0 / frames,
                   static_cast<double>(report.cpu.sectionsNs) / 1000.0 / frames,
                   ll(report.cpu.sections));
    if (report.cpu.moduleMeasured) {
        text += format("  %-20s %.1f us (inside the adapter's calls, not counted above)\n",
                       "legacy module", static_cast<double>(report.cpu.moduleNs) / 1000.0 / frames);
    } else {
        text += format("  %-20s not measured (included in the adapter's calls)\n", "legacy module");
    }
    if (report.cpu.moduleMeasured) {
        // The module library reads the thread clock around each call into the module; about one
        // of the two reads falls outside the module's share.
        text +=
                format("  %-20s %lld ns per bracket, about %lld ns per call into the module, "
                       "included above\n",
                       "meter cost", ll(report.cpu.meterCostNs), ll(report.cpu.meterCostNs / 2));
    } else {
        text += format("  %-20s %lld ns per bracket, included above\n", "meter cost",
                       ll(report.cpu.meterCostNs));
    }
    text += format("  %-20s %.1f us\n", "harness callbacks",
                   static_cast<double>(report.cpu.callbacksNs) / 1000.0 / frames);

    if (report.violations.empty()) {
        text += "rules: all kept\n";
        return text;
    }
    text += format("rules broken: %zu violation%s\n", report.violations.size(),
                   report.violations.size() == 1 ? "" : "s");
    for (const auto& [rule, count] : countByRule(report.violations)) {
        text += format("  %-24s %-8s %zu\n", ruleName(rule), ruleOwner(rule), count);
    }
    for (size_t i = 0; i < report.violations.size() && i < maxViolations; ++i) {
        text += "  " + toString(report.violations[i]) + "\n";
    }
    if (report.violations.size() > maxViolations) {
        text += format("  ... and %zu more\n", report.violations.size() - maxViolations);
    }
    return text;
}

std::string jsonReport(const RunReport& report) {
    const ProtocolCounters& p = report.state.protocol;
    const TransportCounters& t = report.state.transport;
    const RunOutcome& o = report.outcome;
    JsonWriter json;
    json.beginObject();
    json.field("module", report.module).field("camera", report.cameraId);
    json.field("scenario", scenarioName(report.plan.scenario));
    json.field("frames", report.plan.frames).field("fps", report.plan.fps);
    json.field("unpaced", report.plan.unpaced);
    json.field("batch", report.plan.batch).field("depth", o.depth);
    json.field("bufferLayout",
               report.plan.bufferLayout == BufferLayout::kFdPerPlane ? "fd-per-plane" : "single-fd");
    json.field("halBufferManager", report.halBufferManager);
    json.field("patternsChecked", report.plan.checkPatterns);

    json.key("streams").beginArray();
    for (const auto& stream : o.streams) {
        json.beginObject().field("id", stream.streamId);
        json.field("width", stream.description.width).field("height", stream.description.height);
        json.field("format", formatName(stream.description.format));
        json.field("physicalCameraId", stream.description.physicalCameraId);
        json.field("maxBuffers", stream.maxBuffers).field("producerUsage", stream.producerUsage);
        json.endObject();
    }
    json.endArray();

    json.key("counts").beginObject();
    json.field("requestsSubmitted", p.requestsSubmitted);
    json.field("requestsCompleted", p.requestsCompleted);
    json.field("requestsRejected", p.requestsRejected).field("shutters", p.shutters);
    json.field("resultCalls", p.resultCalls).field("partialResults", p.partialResults);
    json.field("finalResults", p.finalResults).field("physicalMetadata", p.physicalMetadata);
    json.field("buffersFilled", p.buffersFilled).field("buffersError", p.buffersError);
    json.field("patternsChecked", p.patternsChecked);
    json.field("buffersHandedOut", p.buffersHandedOut);
    json.field("buffersReturnedUnused", p.buffersReturnedUnused);
    json.field("errorDevice", p.errorDevice).field("errorRequest", p.errorRequest);
    json.field("errorResult", p.errorResult).field("errorBuffer", p.errorBuffer);
    json.field("resultMetadataQueued", t.resultMetadataQueued);
    json.field("resultMetadataInline", t.resultMetadataInline);
    json.field("settingsQueued", t.settingsQueued).field("settingsInline", t.settingsInline);
    json.field("configurations", o.configurations).field("flushes", o.flushes);
    json.field("combinationsRefused", o.combinationsRefused);
    json.field("bufferCachesRemoved", o.cachesRemoved);
    json.endObject();

    json.key("latencyMs").beginObject();
    writeLatency(json, "requestToShutter", report.shutterLatency);
    writeLatency(json, "requestToFinalResult", report.finalLatency);
    json.endObject();

    json.key("adapterCpu").beginObject();
    json.field("perFrameUs", report.adapterCpuPerFrameUs());
    json.field("callsNs", report.cpu.callsNs).field("sectionsNs", report.cpu.sectionsNs);
    json.field("sections", report.cpu.sections);
    json.field("harnessCallbacksNs", report.cpu.callbacksNs);
    json.field("moduleMeasured", report.cpu.moduleMeasured);
    json.field("moduleNs", report.cpu.moduleNs);
    json.field("meterCostNsPerBracket", report.cpu.meterCostNs);
    json.endObject();

    if (report.plan.scenario == Scenario::kLifecycle) {
        json.key("lifecycle").beginObject().field("secondOpen", o.secondOpen);
        json.key("templatesSupported").beginArray();
        for (const auto& name : o.templatesSupported) json.value(name);
        json.endArray().key("templatesMissing").beginArray();
        for (const auto& name : o.templatesMissing) json.value(name);
        json.endArray().endObject();
    }

    json.field("measuredFps", report.measuredFps());
    json.field("elapsedSeconds", static_cast<double>(o.elapsed.count()) / 1e9);
    json.field("fdsBeforeOpen", static_cast<int64_t>(o.fdsBefore));
    json.field("fdsAfterFirstClose", static_cast<int64_t>(o.fdsAfterFirst));
    json.field("fdsAfterClose", static_cast<int64_t>(o.fdsAfter));
    json.field("secondSession", o.secondSession);

    json.key("violations").beginArray();
    for (const auto& violation : report.violations) {
        json.beginObject().field("rule", ruleName(violation.rule));
        json.field("owner", ruleOwner(violation.rule));
        if (violation.frameNumber) json.field("frame", *violation.frameNumber);
        json.field("what", violation.what).field("text", toString(violation)).endObject();
    }
    json.endArray();
    if (!report.frames.empty()) {
        json.key("perFrame").beginArray();
        for (const auto& frame : report.frames) {
            json.beginObject().field("frame", frame.frameNumber);
            if (frame.shutterTimestamp) json.field("shutterTimestamp", *frame.shutterTimestamp);
            if (frame.readoutTimestamp) json.field("readoutTimestamp", *frame.readoutTimestamp);
            if (frame.shutterLatencyNs) json.field("shutterLatencyNs", *frame.shutterLatencyNs);
            if (frame.finalLatencyNs) json.field("finalLatencyNs", *frame.finalLatencyNs);
            json.field("errors", frame.errors).endObject();
        }
        json.endArray();
    }
    json.field("passed", report.violations.empty());
    json.endObject();
    return json.text() + "\n";
}

}  // namespace camera_harness
