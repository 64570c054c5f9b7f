/*
 * The framework rules the harness checks, their names as reports print them, and one broken
 * rule (Violation). Plain values.
 */
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace camera_harness {

enum class Rule {
    kShutterOnce,
    kShutterOrder,
    kShutterSpacing,
    kReadoutTimestamp,
    kReadoutUnsupported,
    kShutterBeforeResult,
    kFinalMetadataOnce,
    kPartialResult,
    kSensorTimestamp,
    kPhysicalMetadata,
    kResultMetadata,
    kResultNotEmpty,
    kResultOrder,
    kKnownFrame,
    kBufferReturnedOnce,
    kBufferId,
    kBufferOrder,
    kBufferPattern,
    kJpegBlob,
    kReleaseFence,
    kErrorConsistency,
    kNoDeviceErrors,
    kRequestAccepted,
    kRequestCompletes,
    kFlushCompletes,
    kBufferRequest,
    kCallStatus,
    kNoCallbackAfterClose,
    kCallAfterClose,
    kSecondOpen,
    kFdLeak,
    kCount,
};

// "shutter-once", "buffer-id", ...
const char* ruleName(Rule rule);
// One line saying what the rule asks for.
const char* ruleDescription(Rule rule);
// Whose fault a broken rule is: "adapter" or "module".
const char* ruleOwner(Rule rule);

struct Violation {
    Rule rule = Rule::kCount;
    std::optional<int32_t> frameNumber;
    std::string what;
};

// "frame 5: unexpected ERROR_REQUEST (rule: no-device-errors, module)"
std::string toString(const Violation& violation);

}  // namespace camera_harness
