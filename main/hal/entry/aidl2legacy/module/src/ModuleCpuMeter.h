/*
 * ModuleCpuMeter: the CPU time (CLOCK_THREAD_CPUTIME_ID) each thread spends inside the legacy
 * module, for a harness that wants the adapter's own CPU apart from the module's.
 *
 * Every call into the module (guarded device entries and the module's own entries) is wrapped in
 * an InsideModule scope. While the meter is off a scope costs one predictable branch. While it is
 * on, the outermost scope of a thread reads the thread's CPU clock at both ends and adds the
 * difference to that thread's total; a callback the module makes into the adapter from inside an
 * entry is therefore counted as the module's. The switch is process-wide; totals are per thread.
 */
#pragma once

#include <atomic>
#include <cstdint>

namespace kovo::aidl2legacy {

class ModuleCpuMeter {
public:
    static void setEnabled(bool enabled) { sEnabled.store(enabled, std::memory_order_relaxed); }
    // Nanoseconds the calling thread has spent inside the module while the meter was on.
    static uint64_t threadInsideNs();

    class InsideModule {
    public:
        InsideModule() {
            if (sEnabled.load(std::memory_order_relaxed)) enter();
        }
        ~InsideModule() {
            if (mMeasured) leave();
        }
        InsideModule(const InsideModule&) = delete;
        InsideModule& operator=(const InsideModule&) = delete;

    private:
        void enter();
        void leave();

        bool mMeasured = false;  // the outermost scope of its thread, with the meter on
        uint64_t mStartNs = 0;
    };

private:
    static std::atomic<bool> sEnabled;
};

}  // namespace kovo::aidl2legacy
