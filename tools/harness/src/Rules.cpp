#include "Rules.h"

namespace camera_harness {

namespace {

struct RuleText {
    const char* name;
    const char* description;
};

constexpr RuleText kRules[] = {
        {"shutter-once", "one shutter per request, for a frame in flight"},
        {"shutter-order", "shutters in increasing frame order with increasing timestamps"},
        {"shutter-before-result", "no metadata or filled buffer of a frame before its shutter"},
        {"final-metadata-once", "the final metadata exactly once, unless the result was lost"},
        {"partial-result",
         "partial indices 1..partial result count, each once, only with metadata"},
        {"sensor-timestamp", "final metadata carries ANDROID_SENSOR_TIMESTAMP = shutter timestamp"},
        {"physical-metadata", "final result: one metadata per requested physical camera"},
        {"result-metadata", "result metadata readable from the queue or inline, well formed"},
        {"result-not-empty", "a result carries metadata or buffers"},
        {"result-order", "final metadata in increasing frame order"},
        {"known-frame", "callbacks name frames that are in flight"},
        {"buffer-returned-once", "every buffer back exactly once, only buffers that were sent"},
        {"buffer-id", "returned buffers carry their own id (0 for framework-managed ones)"},
        {"buffer-order", "buffers of one stream come back in frame order"},
        {"buffer-pattern", "a filled buffer holds the pattern of its frame and stream"},
        {"release-fence", "a release fence has at most one fd and signals"},
        {"error-consistency", "error notifications agree with buffer statuses and metadata"},
        {"no-device-errors", "no error notification unless the scenario expects one (flush)"},
        {"request-accepted", "processCaptureRequest accepts every request"},
        {"request-completes", "every accepted request completes"},
        {"flush-completes", "nothing is in flight once flush returns"},
        {"buffer-request", "buffer manager calls name configured streams within maxBuffers"},
        {"call-status", "session and device calls succeed"},
        {"no-callback-after-close", "no callback once close has returned"},
        {"fd-leak", "no file descriptor left over after close"},
};
static_assert(std::size(kRules) == static_cast<size_t>(Rule::kCount));

}  // namespace

const char* ruleName(Rule rule) {
    return rule < Rule::kCount ? kRules[static_cast<size_t>(rule)].name : "?";
}

const char* ruleDescription(Rule rule) {
    return rule < Rule::kCount ? kRules[static_cast<size_t>(rule)].description : "?";
}

std::string toString(const Violation& violation) {
    std::string text;
    if (violation.frameNumber) text = "frame " + std::to_string(*violation.frameNumber) + ": ";
    return text + violation.what + " (rule: " + ruleName(violation.rule) + ")";
}

}  // namespace camera_harness
