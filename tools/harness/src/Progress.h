/*
 * Progress: shows how a run goes while it runs, on its own thread. On a terminal it redraws one
 * bar line ten times a second; otherwise it prints a plain line every second. stop() (or the
 * destructor) ends the thread and finishes the line.
 */
#pragma once

#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>

#include "FrameworkState.h"

namespace camera_harness {

class Progress {
public:
    using Source = std::function<StateSnapshot()>;

    // Reports on `out` the progress towards `frames` completed requests.
    Progress(FILE* out, int64_t frames, Source source);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void stop();

private:
    void loop();
    void print(const StateSnapshot& snapshot, double seconds, bool last);

    FILE* mOut;
    const int64_t mFrames;
    Source mSource;
    const bool mTerminal;
    std::mutex mLock;
    std::condition_variable mWake;
    bool mStopping = false;  // guarded by mLock
    std::thread mThread;
};

}  // namespace camera_harness
