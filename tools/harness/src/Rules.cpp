#include "Rules.h"

namespace camera_harness {

namespace {

struct RuleText {
    const char* name;
    const char* description;
    const char* owner;  // what produces what the rule judges
};

constexpr const char* kAdapter = "adapter";
constexpr const char* kModule = "module";

constexpr RuleText kRules[] = {
        {"shutter-once", "one shutter per request, for a frame in flight", kModule},
        {"shutter-order", "shutters in increasing frame order with increasing timestamps", kModule},
        {"shutter-spacing",
         "shutter timestamps no closer than the configured minimum frame duration (10% tolerance)",
         kModule},
        {"readout-timestamp", "a supported readout timestamp is not before its shutter timestamp",
         kModule},
        {"readout-unsupported",
         "a module without readout timestamps: characteristics say NOT_SUPPORTED, shutters carry 0",
         kAdapter},
        {"shutter-before-result", "no metadata or filled buffer of a frame before its shutter",
         kModule},
        {"final-metadata-once", "the final metadata exactly once, unless the result was lost",
         kModule},
        {"partial-result", "partial indices 1..partial result count, each once, only with metadata",
         kModule},
        {"sensor-timestamp", "final metadata carries ANDROID_SENSOR_TIMESTAMP = shutter timestamp",
         kModule},
        {"physical-metadata", "final result: one metadata per requested physical camera", kModule},
        {"result-metadata", "result metadata readable from the queue or inline, well formed",
         kAdapter},
        {"result-not-empty", "a result carries metadata or buffers", kAdapter},
        {"result-order", "final metadata in increasing frame order", kModule},
        {"known-frame", "callbacks name frames that are in flight", kAdapter},
        {"buffer-returned-once", "every buffer back exactly once, only buffers that were sent",
         kAdapter},
        {"buffer-id", "returned buffers carry their own id (0 for framework-managed ones)",
         kAdapter},
        {"buffer-order", "buffers of one stream come back in frame order", kModule},
        {"buffer-pattern", "a filled buffer holds the pattern of its frame and stream", kModule},
        {"jpeg-blob", "a filled BLOB buffer is a JPEG with its camera3_jpeg_blob trailer", kModule},
        {"release-fence", "a release fence has at most one fd and signals", kModule},
        {"error-consistency", "error notifications agree with buffer statuses and metadata",
         kModule},
        {"no-device-errors", "no error notification unless the scenario expects one (flush)",
         kModule},
        {"request-accepted", "processCaptureRequest accepts every request", kModule},
        {"request-completes", "every accepted request completes", kModule},
        {"flush-completes", "nothing is in flight once flush returns", kModule},
        {"buffer-request", "buffer manager calls name configured streams within maxBuffers",
         kModule},
        {"call-status", "session and device calls succeed", kAdapter},
        {"no-callback-after-close", "no callback once close has returned", kAdapter},
        {"call-after-close", "session calls after close do not reach the legacy device", kAdapter},
        {"second-open", "a second open of an open camera answers a status and the provider lives",
         kAdapter},
        {"fd-leak", "no file descriptors left over by a session after the module's first", kAdapter},
};
static_assert(std::size(kRules) == static_cast<size_t>(Rule::kCount));

}  // namespace

const char* ruleName(Rule rule) {
    return rule < Rule::kCount ? kRules[static_cast<size_t>(rule)].name : "?";
}

const char* ruleDescription(Rule rule) {
    return rule < Rule::kCount ? kRules[static_cast<size_t>(rule)].description : "?";
}

const char* ruleOwner(Rule rule) {
    return rule < Rule::kCount ? kRules[static_cast<size_t>(rule)].owner : "?";
}

std::string toString(const Violation& violation) {
    std::string text;
    if (violation.frameNumber) text = "frame " + std::to_string(*violation.frameNumber) + ": ";
    return text + violation.what + " (rule: " + ruleName(violation.rule) + ", " +
           ruleOwner(violation.rule) + ")";
}

}  // namespace camera_harness
