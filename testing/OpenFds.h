/*
 * The number of file descriptors open in this process, from /proc/self/fd, for tests that check
 * that what was opened is closed again. Not meaningful while other threads open or close fds.
 */
#pragma once

#include <dirent.h>

#include <cstddef>

namespace kovo::aidl2legacy::testing {

inline size_t countOpenFds() {
    DIR* dir = opendir("/proc/self/fd");
    if (dir == nullptr) return 0;
    size_t count = 0;
    while (const dirent* entry = readdir(dir)) {
        if (entry->d_name[0] != '.') ++count;
    }
    closedir(dir);
    return count - 1;  // the directory's own fd
}

}  // namespace kovo::aidl2legacy::testing
