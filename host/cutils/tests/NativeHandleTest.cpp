#include <cutils/native_handle.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <utility>

#include "CHeaders.h"

namespace {

size_t openFdCount() {
    using std::filesystem::directory_iterator;
    return std::distance(directory_iterator("/proc/self/fd"), directory_iterator());
}

bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

// A handle owning both ends of a fresh pipe, followed by three ints.
native_handle_t* makePipeHandle() {
    native_handle_t* handle = native_handle_create(2, 3);
    if (handle == nullptr || pipe(handle->data) != 0) return nullptr;
    handle->data[2] = 7;
    handle->data[3] = -8;
    handle->data[4] = 9;
    return handle;
}

TEST(NativeHandleTest, CreateChecksCountsAgainstTheLimits) {
    const std::pair<int, int> kBad[] = {{-1, 0}, {0, -1}, {1025, 0}, {0, 1025}};
    for (auto [numFds, numInts] : kBad) {
        errno = 0;
        EXPECT_EQ(nullptr, native_handle_create(numFds, numInts)) << numFds << "," << numInts;
        EXPECT_EQ(EINVAL, errno) << numFds << "," << numInts;
    }
    const std::pair<int, int> kGood[] = {{0, 0}, {1024, 1024}};
    for (auto [numFds, numInts] : kGood) {
        native_handle_t* handle = native_handle_create(numFds, numInts);
        ASSERT_NE(nullptr, handle);
        EXPECT_EQ(12, handle->version);
        EXPECT_EQ(numFds, handle->numFds);
        EXPECT_EQ(numInts, handle->numInts);
        EXPECT_EQ(0, native_handle_delete(handle));
    }
}

TEST(NativeHandleTest, InitChecksAlignmentButNotCounts) {
    NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 2);
    EXPECT_EQ(24u, sizeof(storage));
    EXPECT_EQ(24u, handleStorageSizeFromC());
    errno = 0;
    EXPECT_EQ(nullptr, native_handle_init(storage + 1, 1, 2));
    EXPECT_EQ(EINVAL, errno);

    native_handle_t* handle = native_handle_init(storage, 2000, -5);
    ASSERT_EQ(reinterpret_cast<native_handle_t*>(storage), handle);
    EXPECT_EQ(12, handle->version);
    EXPECT_EQ(2000, handle->numFds);
    EXPECT_EQ(-5, handle->numInts);
}

TEST(NativeHandleTest, CloneOwnsDuplicatedFdsAndCopiesInts) {
    native_handle_t* original = makePipeHandle();
    ASSERT_NE(nullptr, original);
    size_t before = openFdCount();

    native_handle_t* clone = native_handle_clone(original);
    ASSERT_NE(nullptr, clone);
    EXPECT_EQ(before + 2, openFdCount());
    ASSERT_EQ(2, clone->numFds);
    ASSERT_EQ(3, clone->numInts);
    for (int i = 0; i < 2; ++i) {
        struct stat a, b;
        ASSERT_EQ(0, fstat(original->data[i], &a));
        ASSERT_EQ(0, fstat(clone->data[i], &b));
        EXPECT_NE(original->data[i], clone->data[i]);
        EXPECT_EQ(a.st_ino, b.st_ino);
    }
    EXPECT_EQ(0, memcmp(&original->data[2], &clone->data[2], 3 * sizeof(int)));

    EXPECT_EQ(0, native_handle_close(clone));
    EXPECT_EQ(0, native_handle_delete(clone));
    EXPECT_EQ(before, openFdCount());
    EXPECT_TRUE(isOpen(original->data[0]) && isOpen(original->data[1]));
    native_handle_close(original);
    native_handle_delete(original);
}

TEST(NativeHandleTest, FailedCloneClosesWhatItDuplicatedAndKeepsTheDupError) {
    native_handle_t* original = makePipeHandle();
    ASSERT_NE(nullptr, original);
    int writeEnd = std::exchange(original->data[1], -1);  // fails after data[0] was duplicated
    size_t before = openFdCount();

    errno = 0;
    EXPECT_EQ(nullptr, native_handle_clone(original));
    EXPECT_EQ(EBADF, errno);
    EXPECT_EQ(before, openFdCount());

    original->data[1] = writeEnd;
    native_handle_close(original);
    native_handle_delete(original);
}

TEST(NativeHandleTest, CloseOnlyClosesAndDeleteOnlyFrees) {
    for (auto closeFn : {native_handle_close, native_handle_close_with_tag}) {
        native_handle_t* handle = makePipeHandle();
        ASSERT_NE(nullptr, handle);
        int readEnd = handle->data[0];
        errno = EAGAIN;
        EXPECT_EQ(0, closeFn(handle));
        EXPECT_EQ(EAGAIN, errno);
        EXPECT_FALSE(isOpen(readEnd) || isOpen(handle->data[1]));
        // The record is untouched and still needs its delete.
        EXPECT_EQ(2, handle->numFds);
        EXPECT_EQ(readEnd, handle->data[0]);
        EXPECT_EQ(0, native_handle_delete(handle));
    }

    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    int fds[] = {handle->data[0], handle->data[1]};
    EXPECT_EQ(0, native_handle_delete(handle));
    EXPECT_TRUE(isOpen(fds[0]) && isOpen(fds[1]));
    close(fds[0]);
    close(fds[1]);
}

TEST(NativeHandleTest, WrongVersionIsRejectedWithoutClosingOrFreeing) {
    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    handle->version = 16;
    size_t before = openFdCount();
    EXPECT_EQ(-EINVAL, native_handle_close(handle));
    EXPECT_EQ(-EINVAL, native_handle_close_with_tag(handle));
    EXPECT_EQ(-EINVAL, native_handle_delete(handle));
    EXPECT_EQ(before, openFdCount());

    handle->version = sizeof(native_handle_t);
    native_handle_close(handle);
    native_handle_delete(handle);
    EXPECT_EQ(0, native_handle_close(nullptr));
    EXPECT_EQ(0, native_handle_delete(nullptr));
}

}  // namespace
