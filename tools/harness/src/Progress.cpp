#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace camera_harness {

namespace {

constexpr int kBarWidth = 30;

}  // namespace

Progress::Progress(FILE* out, int64_t frames, Source source)
    : mOut(out),
      mFrames(std::max<int64_t>(1, frames)),
      mSource(std::move(source)),
      mTerminal(isatty(fileno(out)) != 0),
      mThread([this] { loop(); }) {}

Progress::~Progress() {
    stop();
}

void Progress::stop() {
    {
        std::lock_guard lock(mLock);
        if (mStopping) return;
        mStopping = true;
    }
    mWake.notify_all();
    mThread.join();
}

void Progress::loop() {
    const auto start = std::chrono::steady_clock::now();
    const auto period = mTerminal ? std::chrono::milliseconds(100) : std::chrono::seconds(1);
    std::unique_lock lock(mLock);
    while (true) {
        bool stopping = mWake.wait_for(lock, period, [this] { return mStopping; });
        lock.unlock();
        double seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        print(mSource(), seconds, stopping);
        lock.lock();
        if (stopping) return;
    }
}

void Progress::print(const StateSnapshot& snapshot, double seconds, bool last) {
    const int64_t done = snapshot.protocol.requestsCompleted;
    const double fps = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    if (!mTerminal) {
        if (!last) {
            fprintf(mOut,
                    "progress: %lld/%lld requests completed, %zu in flight, %.0f fps, %zu "
                    "violations\n",
                    static_cast<long long>(done), static_cast<long long>(mFrames),
                    snapshot.inFlight, fps, snapshot.violations);
        }
        return;
    }
    const int filled = static_cast<int>(std::min<int64_t>(kBarWidth, done * kBarWidth / mFrames));
    std::string bar(static_cast<size_t>(filled), '#');
    bar.resize(kBarWidth, '.');
    fprintf(mOut, "\r[%s] %lld/%lld  %.0f fps  %zu violations ", bar.c_str(),
            static_cast<long long>(done), static_cast<long long>(mFrames), fps, snapshot.violations);
    if (last) fputc('\n', mOut);
    fflush(mOut);
}

}  // namespace camera_harness
