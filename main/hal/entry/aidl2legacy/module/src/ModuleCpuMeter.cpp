#include "ModuleCpuMeter.h"

#include <time.h>

namespace kovo::aidl2legacy {
namespace {

thread_local uint64_t tInsideNs = 0;
thread_local bool tInside = false;

uint64_t threadCpuNs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000000000u + static_cast<uint64_t>(now.tv_nsec);
}

}  // namespace

std::atomic<bool> ModuleCpuMeter::sEnabled{false};

uint64_t ModuleCpuMeter::threadInsideNs() {
    return tInsideNs;
}

void ModuleCpuMeter::InsideModule::enter() {
    if (tInside) return;
    tInside = true;
    mMeasured = true;
    mStartNs = threadCpuNs();
}

void ModuleCpuMeter::InsideModule::leave() {
    const uint64_t end = threadCpuNs();
    if (end > mStartNs) tInsideNs += end - mStartNs;
    tInside = false;
}

}  // namespace kovo::aidl2legacy
