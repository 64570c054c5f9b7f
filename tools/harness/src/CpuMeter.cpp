#include "CpuMeter.h"

#include <cutils/testing/TraceHooks.h>
#include <cutils/trace.h>
#include <time.h>

#include "TraceFile.h"

namespace camera_harness {

namespace {

using android::testing::TraceEvent;
using android::testing::TraceEventKind;

std::atomic<int64_t> sCallsNs{0};
std::atomic<int64_t> sSectionsNs{0};
std::atomic<int64_t> sCallbacksNs{0};
std::atomic<int64_t> sSections{0};
std::atomic<int64_t> sModuleNs{0};
std::atomic<CpuMeter::ModuleClock> sModuleClock{nullptr};
std::atomic<int64_t> sMeterCostNs{0};

enum class Bracket { kCall, kSection };

// The adapter bracket open on this thread, if any.
struct ThreadState {
    int depth = 0;
    Bracket outermost = Bracket::kCall;
    int64_t startNs = 0;
    int64_t harnessNsAtStart = 0;
    int64_t harnessNs = 0;  // the harness's callback CPU on this thread so far
    uint64_t moduleNsAtStart = 0;
};
thread_local ThreadState tThread;

int64_t threadCpuNs() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000000000 + now.tv_nsec;
}

uint64_t moduleNs() {
    CpuMeter::ModuleClock clock = sModuleClock.load(std::memory_order_relaxed);
    return clock != nullptr ? clock() : 0;
}

// What a bracket costs: its clock reads, measured on an empty one.
int64_t measureBracketCost() {
    constexpr int kRounds = 10000;
    int64_t start = threadCpuNs();
    for (int i = 0; i < kRounds; ++i) {
        threadCpuNs();
        moduleNs();
        moduleNs();
        threadCpuNs();
    }
    return (threadCpuNs() - start) / kRounds;
}

void openBracket(Bracket kind) {
    ThreadState& thread = tThread;
    if (thread.depth++ != 0) return;
    thread.outermost = kind;
    thread.harnessNsAtStart = thread.harnessNs;
    thread.moduleNsAtStart = moduleNs();
    thread.startNs = threadCpuNs();
}

void closeBracket() {
    ThreadState& thread = tThread;
    if (thread.depth == 0 || --thread.depth != 0) return;
    const int64_t end = threadCpuNs();
    const auto inModule = static_cast<int64_t>(moduleNs() - thread.moduleNsAtStart);
    int64_t spent = end - thread.startNs - (thread.harnessNs - thread.harnessNsAtStart) - inModule;
    sModuleNs += inModule;
    if (thread.outermost == Bracket::kCall) {
        sCallsNs += spent;
    } else {
        sSectionsNs += spent;
        ++sSections;
    }
}

}  // namespace

CpuMeter::CpuMeter(TraceFile* trace) {
    sMeterCostNs = measureBracketCost();
    android::testing::setTraceEnabledTags(ATRACE_TAG_CAMERA);
    android::testing::setTraceRecorder([trace](const TraceEvent& event) {
        if (event.kind == TraceEventKind::Begin) openBracket(Bracket::kSection);
        if (trace != nullptr) trace->adapterEvent(event);
        if (event.kind == TraceEventKind::End) closeBracket();
    });
}

CpuMeter::~CpuMeter() {
    android::testing::setTraceRecorder(nullptr);
}

CpuMeter::Totals CpuMeter::totals() {
    return Totals{sCallsNs.load(),    sSectionsNs.load(), sCallbacksNs.load(),
                  sSections.load(),   sModuleNs.load(),   sModuleClock.load() != nullptr,
                  sMeterCostNs.load()};
}

void CpuMeter::setModuleClock(ModuleClock clock) {
    sModuleClock = clock;
}

CpuMeter::AdapterCall::AdapterCall() {
    openBracket(Bracket::kCall);
}

CpuMeter::AdapterCall::~AdapterCall() {
    closeBracket();
}

CpuMeter::HarnessCallback::HarnessCallback() : mStartNs(threadCpuNs()) {}

CpuMeter::HarnessCallback::~HarnessCallback() {
    int64_t spent = threadCpuNs() - mStartNs;
    tThread.harnessNs += spent;
    sCallbacksNs += spent;
}

}  // namespace camera_harness
