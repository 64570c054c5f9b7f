#include <aidl/android/hardware/common/NativeHandle.h>
#include <aidlcommonsupport/NativeHandle.h>
#include <cutils/native_handle.h>
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using aidl::android::hardware::common::NativeHandle;

namespace {

bool sameFile(int a, int b) {
    struct stat first, second;
    return fstat(a, &first) == 0 && fstat(b, &second) == 0 && first.st_ino == second.st_ino &&
           first.st_dev == second.st_dev;
}

int countOpenFds() {
    int count = 0;
    DIR* dir = opendir("/proc/self/fd");
    while (readdir(dir) != nullptr) ++count;
    closedir(dir);
    return count;
}

bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

// Two fresh fds of one pipe and two ints.
native_handle_t* makeHandle() {
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return nullptr;
    native_handle_t* handle = native_handle_create(2, 2);
    handle->data[0] = fds[0];
    handle->data[1] = fds[1];
    handle->data[2] = 5;
    handle->data[3] = -6;
    return handle;
}

TEST(NativeHandleTest, PrintsAndComparesItsFdNumbers) {
    NativeHandle empty;
    EXPECT_EQ("NativeHandle{fds: [], ints: []}", empty.toString());
    EXPECT_TRUE(android::isAidlNativeHandleEmpty(empty));

    NativeHandle handle;
    handle.fds.emplace_back(12);
    handle.fds.emplace_back(13);
    handle.ints = {5, 6};
    EXPECT_EQ("NativeHandle{fds: [fd:12, fd:13], ints: [5, 6]}", handle.toString());
    EXPECT_FALSE(android::isAidlNativeHandleEmpty(handle));
    EXPECT_NE(empty, handle);
    EXPECT_LT(empty, handle);
    for (auto& fd : handle.fds) (void)fd.release();
}

TEST(NativeHandleTest, DupConversionsLeaveTheSourceItsOwnFds) {
    native_handle_t* source = makeHandle();
    ASSERT_NE(nullptr, source);
    NativeHandle aidl = android::dupToAidl(source);
    ASSERT_EQ(2u, aidl.fds.size());
    EXPECT_EQ((std::vector<int32_t>{5, -6}), aidl.ints);
    for (int i = 0; i < 2; ++i) {
        EXPECT_NE(source->data[i], aidl.fds[i].get());
        EXPECT_TRUE(sameFile(source->data[i], aidl.fds[i].get()));
        EXPECT_EQ(FD_CLOEXEC, fcntl(aidl.fds[i].get(), F_GETFD));
    }

    native_handle_t* back = android::dupFromAidl(aidl);
    ASSERT_NE(nullptr, back);
    EXPECT_EQ(2, back->numFds);
    EXPECT_EQ(2, back->numInts);
    EXPECT_EQ(-6, back->data[3]);
    EXPECT_NE(aidl.fds[0].get(), back->data[0]);
    EXPECT_TRUE(sameFile(aidl.fds[0].get(), back->data[0]));
    int backFd = back->data[0];
    native_handle_close(back);
    native_handle_delete(back);
    EXPECT_FALSE(isOpen(backFd));
    EXPECT_TRUE(isOpen(aidl.fds[0].get()));

    native_handle_close(source);
    native_handle_delete(source);
}

TEST(NativeHandleTest, MakeConversionsHandTheSameFdsOver) {
    native_handle_t* source = makeHandle();
    ASSERT_NE(nullptr, source);
    int fd = source->data[0];
    NativeHandle aidl = android::makeToAidl(source);
    native_handle_delete(source);
    ASSERT_EQ(fd, aidl.fds[0].get());

    native_handle_t* shared = android::makeFromAidl(aidl);
    ASSERT_NE(nullptr, shared);
    EXPECT_EQ(fd, shared->data[0]);
    EXPECT_EQ(5, shared->data[2]);
    native_handle_delete(shared);
    EXPECT_TRUE(isOpen(fd));
    aidl = NativeHandle();
    EXPECT_FALSE(isOpen(fd));
}

TEST(NativeHandleTest, FailedDuplicationLeaksNothing) {
    int fds[2];
    ASSERT_EQ(0, pipe2(fds, O_CLOEXEC));
    NativeHandle aidl;
    aidl.fds.emplace_back(fds[0]);
    aidl.fds.emplace_back(-1);
    aidl.fds.emplace_back(fds[1]);
    const int fdsBefore = countOpenFds();
    EXPECT_EQ(nullptr, android::dupFromAidl(aidl));
    EXPECT_EQ(fdsBefore, countOpenFds());
}

}  // namespace
