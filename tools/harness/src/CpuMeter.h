/*
 * CpuMeter: the CPU time the adapter spends, measured with each thread's CLOCK_THREAD_CPUTIME_ID.
 *
 *  - Calls: the harness brackets each of its calls into the adapter (AdapterCall). The time
 *    includes whatever the legacy module does inside the call.
 *  - Callbacks: the adapter brackets its result and notify paths with camera trace sections. The
 *    meter installs the libcutils trace recorder (camera tag on), which runs on the tracing
 *    thread, and reads that thread's CPU clock when the outermost section begins and ends.
 *
 * From both, the CPU time of the harness's own callback code that ran inside (HarnessCallback)
 * is subtracted, and so is the time the thread spent inside the legacy module when a module clock
 * is set, so what is left is the adapter's (plus the meter's small cost, see meterCostNs). Nested
 * brackets on one thread count once, at the outermost. Paths without a trace section (the
 * buffer manager's requests and returns) are not measured.
 *
 * One meter at a time (it owns the process's trace recorder). Totals are atomics; the brackets
 * keep their state per thread.
 */
#pragma once

#include <atomic>
#include <cstdint>

namespace camera_harness {

class TraceFile;

class CpuMeter {
public:
    struct Totals {
        int64_t callsNs = 0;      // adapter CPU inside the harness's calls
        int64_t sectionsNs = 0;   // adapter CPU inside its trace sections on device threads
        int64_t callbacksNs = 0;  // the harness's own callback CPU
        int64_t sections = 0;
        int64_t moduleNs = 0;         // inside the legacy module, within the brackets above
        bool moduleMeasured = false;  // a module clock was set
        int64_t meterCostNs = 0;      // CPU one bracket costs the meter itself
    };

    // The calling thread's CPU time inside the legacy module, monotonic per thread.
    using ModuleClock = uint64_t (*)();
    // Null: the module's share stays in the adapter's figures.
    static void setModuleClock(ModuleClock clock);

    // Turns the camera trace tag on and installs the recorder; events also go to `trace` when it
    // is not null.
    explicit CpuMeter(TraceFile* trace);
    // Removes the recorder.
    ~CpuMeter();
    CpuMeter(const CpuMeter&) = delete;
    CpuMeter& operator=(const CpuMeter&) = delete;

    static Totals totals();

    // Brackets one call from the harness into the adapter.
    class AdapterCall {
    public:
        AdapterCall();
        ~AdapterCall();
        AdapterCall(const AdapterCall&) = delete;
        AdapterCall& operator=(const AdapterCall&) = delete;
    };

    // Brackets the harness's own code in a callback.
    class HarnessCallback {
    public:
        HarnessCallback();
        ~HarnessCallback();
        HarnessCallback(const HarnessCallback&) = delete;
        HarnessCallback& operator=(const HarnessCallback&) = delete;

    private:
        int64_t mStartNs;
    };
};

}  // namespace camera_harness
