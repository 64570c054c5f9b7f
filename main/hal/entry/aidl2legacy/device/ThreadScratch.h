/*
 * ThreadScratch: a per-thread object that keeps its capacity from one call to the next, for the
 * containers the per-frame paths fill and drop on every call. Each `Tag` names one use and has
 * one object per thread. A nested use on the same thread (a framework call that re-enters the
 * same path) gets a fresh object of its own instead, so the two never share one.
 *
 * The object is handed out as it was left: the caller resets whatever it reads.
 */
#pragma once

#include <optional>

namespace kovo::aidl2legacy {

template <typename T, typename Tag>
class ThreadScratch {
public:
    ThreadScratch() {
        if (sInUse) {
            mObject = &mNested.emplace();
        } else {
            sInUse = true;
            mObject = &sObject;
        }
    }
    ~ThreadScratch() {
        if (mObject == &sObject) sInUse = false;
    }
    ThreadScratch(const ThreadScratch&) = delete;
    ThreadScratch& operator=(const ThreadScratch&) = delete;

    T& get() { return *mObject; }

private:
    static inline thread_local T sObject{};
    static inline thread_local bool sInUse = false;
    std::optional<T> mNested;
    T* mObject;
};

}  // namespace kovo::aidl2legacy
