/*
 * Helpers shared by the queue tests: the camera's queue type, and views of the process's fds and
 * mappings to prove that nothing leaks.
 */
#pragma once

#include <aidl/android/hardware/common/fmq/MQDescriptor.h>
#include <aidl/android/hardware/common/fmq/SynchronizedReadWrite.h>
#include <dirent.h>
#include <fmq/AidlMessageQueue.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace fmq_test {

using aidl::android::hardware::common::fmq::MQDescriptor;
using aidl::android::hardware::common::fmq::SynchronizedReadWrite;
template <typename T>
using Queue = android::AidlMessageQueue<T, SynchronizedReadWrite>;
using ByteQueue = Queue<int8_t>;
using ByteDescriptor = MQDescriptor<int8_t, SynchronizedReadWrite>;

// A caller-supplied ring buffer of `size` bytes.
inline android::base::unique_fd makeBuffer(size_t size) {
    android::base::unique_fd fd(memfd_create("buffer", MFD_CLOEXEC));
    if (ftruncate(fd.get(), static_cast<off_t>(size)) != 0) fd.reset();
    return fd;
}

inline int countOpenFds() {
    int count = 0;
    DIR* dir = opendir("/proc/self/fd");
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
    return count;
}

inline int countQueueMappings() {
    std::ifstream maps("/proc/self/maps");
    int count = 0;
    for (std::string line; std::getline(maps, line);) {
        if (line.find("memfd:MessageQueue") != std::string::npos) ++count;
    }
    return count;
}

}  // namespace fmq_test
